#include "tests/faults/FailureKinds.h"

#include <windows.h>

#include <errno.h>
#include <sql.h>
#include <sqlext.h>

namespace {

struct Codes
{
  const char* function;
  std::vector<int> codes;
};

// The code is the result.
const Codes Statuses[] = {
    {"RegOpenKeyExW",
     {ERROR_FILE_NOT_FOUND, ERROR_ACCESS_DENIED, ERROR_INVALID_HANDLE, ERROR_KEY_DELETED}},
    {"RegCreateKeyExW", {ERROR_ACCESS_DENIED, ERROR_INVALID_HANDLE, ERROR_KEY_DELETED}},
    {"RegQueryValueExW",
     {ERROR_FILE_NOT_FOUND, ERROR_ACCESS_DENIED, ERROR_INVALID_HANDLE, ERROR_MORE_DATA,
      ERROR_KEY_DELETED}},
    {"RegEnumKeyExW",
     {ERROR_NO_MORE_ITEMS, ERROR_ACCESS_DENIED, ERROR_INVALID_HANDLE, ERROR_MORE_DATA,
      ERROR_KEY_DELETED}},
    {"RegEnumKeyExW with a name", {ERROR_MORE_DATA, ERROR_ACCESS_DENIED}},
    {"RegEnumValueW",
     {ERROR_NO_MORE_ITEMS, ERROR_ACCESS_DENIED, ERROR_INVALID_HANDLE, ERROR_MORE_DATA,
      ERROR_KEY_DELETED}},
    {"RegSetValueExW", {ERROR_ACCESS_DENIED, ERROR_INVALID_HANDLE, ERROR_KEY_DELETED}},
    {"RegCloseKey", {ERROR_INVALID_HANDLE}},
    {"MsiReinstallProductW",
     {ERROR_UNKNOWN_PRODUCT, ERROR_INSTALL_FAILURE, ERROR_INSTALL_USEREXIT,
      ERROR_INSTALL_ALREADY_RUNNING, ERROR_INSTALL_SERVICE_FAILURE}},
    {"_wfopen_s", {ENOENT, EACCES, EMFILE, EINVAL}},
};

// The code is the last error.
const Codes LastErrors[] = {
    {"FindFirstFileW", {ERROR_FILE_NOT_FOUND, ERROR_PATH_NOT_FOUND, ERROR_ACCESS_DENIED}},
    {"FindNextFileW", {ERROR_NO_MORE_FILES, ERROR_ACCESS_DENIED}},
    {"FindClose", {ERROR_INVALID_HANDLE}},
    {"GetModuleFileNameExA", {ERROR_INVALID_HANDLE, ERROR_PARTIAL_COPY}},
    {"CloseHandle", {ERROR_INVALID_HANDLE}},
    {"CreateProcessW", {ERROR_FILE_NOT_FOUND, ERROR_ACCESS_DENIED, ERROR_BAD_EXE_FORMAT}},
    {"GetEnvironmentVariableW", {ERROR_ENVVAR_NOT_FOUND}},
    {"SetEnvironmentVariableW", {ERROR_NOT_ENOUGH_MEMORY, ERROR_INVALID_PARAMETER}},
    {"GetLongPathNameW", {ERROR_FILE_NOT_FOUND, ERROR_ACCESS_DENIED}},
    {"SHGetSpecialFolderPathW", {ERROR_FILE_NOT_FOUND}},
    {"SHGetSpecialFolderPathA", {ERROR_FILE_NOT_FOUND}},
    {"GetFileVersionInfoSizeA", {ERROR_FILE_NOT_FOUND, ERROR_RESOURCE_TYPE_NOT_FOUND}},
    {"GetFileVersionInfoA", {ERROR_ACCESS_DENIED, ERROR_RESOURCE_DATA_NOT_FOUND}},
    {"VerQueryValueA", {ERROR_RESOURCE_NAME_NOT_FOUND}},
    {"MultiByteToWideChar", {ERROR_INSUFFICIENT_BUFFER, ERROR_NO_UNICODE_TRANSLATION}},
    {"fread", {0}},
    {"fseek", {-1}},
    {"ftell", {-1}},
    {"fclose", {EOF}},
};

// Each of them in two forms: nothing is done, or everything is and the code says otherwise.
const Codes OdbcFailures[] = {
    {"SQLAllocHandle", {SQL_ERROR, SQL_INVALID_HANDLE}},
    {"SQLSetEnvAttr", {SQL_ERROR, SQL_INVALID_HANDLE}},
    {"SQLSetConnectAttrW", {SQL_ERROR, SQL_INVALID_HANDLE, SQL_STILL_EXECUTING}},
    {"SQLDriverConnectW", {SQL_ERROR, SQL_INVALID_HANDLE, SQL_NO_DATA, SQL_STILL_EXECUTING}},
    {"SQLDisconnect", {SQL_ERROR, SQL_INVALID_HANDLE, SQL_STILL_EXECUTING}},
    {"SQLFreeHandle", {SQL_ERROR, SQL_INVALID_HANDLE}},
    {"SQLExecDirectW",
     {SQL_ERROR, SQL_INVALID_HANDLE, SQL_NO_DATA, SQL_NEED_DATA, SQL_STILL_EXECUTING}},
    {"SQLColumnsW", {SQL_ERROR, SQL_INVALID_HANDLE, SQL_NO_DATA, SQL_STILL_EXECUTING}},
    {"SQLTablesW", {SQL_ERROR, SQL_INVALID_HANDLE, SQL_NO_DATA, SQL_STILL_EXECUTING}},
    {"SQLBindCol", {SQL_ERROR, SQL_INVALID_HANDLE}},
    {"SQLFetch", {SQL_ERROR, SQL_INVALID_HANDLE, SQL_NO_DATA, SQL_STILL_EXECUTING}},
    {"SQLCloseCursor", {SQL_ERROR, SQL_INVALID_HANDLE}},
};

// Success is claimed and nothing was done. One that claims a connection or a handle would hand out
// what isn't there, which is no failure but a broken driver manager.
const char* const FalseSuccesses[] = {"SQLExecDirectW", "SQLColumnsW", "SQLTablesW", "SQLBindCol",
                                      "SQLFetch"};

// A fetch that says for ever that there is a row, or that it isn't done yet, is asked again for
// ever, as in every program.
bool CountsForGood(const std::string& function, int code)
{
  return function != "SQLFetch" || (code != SQL_SUCCESS_WITH_INFO && code != SQL_STILL_EXECUTING);
}

std::vector<FailureKind> AllKinds()
{
  std::vector<FailureKind> kinds;
  for (const Codes& row : Statuses) {
    for (const int code : row.codes)
      kinds.push_back({row.function, "", code});
  }
  for (const Codes& row : LastErrors) {
    for (const int code : row.codes)
      kinds.push_back({row.function, "", code});
  }
  for (const Codes& row : OdbcFailures) {
    for (const char* form : {"", " afterwards"}) {
      for (const int code : row.codes)
        kinds.push_back({row.function, form, code, CountsForGood(row.function, code)});
    }
  }
  for (const char* function : FalseSuccesses)
    kinds.push_back(
        {function, "", SQL_SUCCESS_WITH_INFO, CountsForGood(function, SQL_SUCCESS_WITH_INFO)});
  for (const std::string& function : OdbcFunctions())
    kinds.push_back({function, " with info", SQL_SUCCESS_WITH_INFO});
  return kinds;
}

}  // namespace

const std::vector<std::string>& OdbcFunctions()
{
  static const std::vector<std::string> functions = [] {
    std::vector<std::string> names;
    for (const Codes& row : OdbcFailures)
      names.emplace_back(row.function);
    return names;
  }();
  return functions;
}

const std::vector<FailureKind>& FailureKinds()
{
  static const std::vector<FailureKind> kinds = AllKinds();
  return kinds;
}

std::vector<FailureKind> LastingFailureKinds()
{
  std::vector<FailureKind> kinds;
  for (const FailureKind& kind : FailureKinds()) {
    if (kind.forGood)
      kinds.push_back(kind);
  }
  return kinds;
}
