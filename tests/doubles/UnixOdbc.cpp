#include "tests/doubles/UnixOdbc.h"

#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>

namespace {

[[noreturn]] void EndWithoutLibrary()
{
  (void)fprintf(stderr, "unixODBC (libodbc.so.2) can't be used: %s\n", dlerror());
  abort();
}

template <typename Function>
void Load(void* library, Function*& function, const char* name)
{
  function = reinterpret_cast<Function*>(dlsym(library, name));
  if (function == nullptr)
    EndWithoutLibrary();
}

}  // namespace

UnixOdbc LoadUnixOdbc()
{
  void* const library = dlopen("libodbc.so.2", RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr)
    EndWithoutLibrary();
  UnixOdbc odbc = {};
  Load(library, odbc.AllocHandle, "SQLAllocHandle");
  Load(library, odbc.FreeHandle, "SQLFreeHandle");
  Load(library, odbc.SetEnvAttr, "SQLSetEnvAttr");
  Load(library, odbc.SetConnectAttrW, "SQLSetConnectAttrW");
  Load(library, odbc.DriverConnectW, "SQLDriverConnectW");
  Load(library, odbc.Disconnect, "SQLDisconnect");
  Load(library, odbc.ExecDirectW, "SQLExecDirectW");
  Load(library, odbc.ColumnsW, "SQLColumnsW");
  Load(library, odbc.TablesW, "SQLTablesW");
  Load(library, odbc.BindCol, "SQLBindCol");
  Load(library, odbc.Fetch, "SQLFetch");
  Load(library, odbc.CloseCursor, "SQLCloseCursor");
  Load(library, odbc.NumResultCols, "SQLNumResultCols");
  Load(library, odbc.GetData, "SQLGetData");
  Load(library, odbc.GetDiagRecW, "SQLGetDiagRecW");
  return odbc;
}
