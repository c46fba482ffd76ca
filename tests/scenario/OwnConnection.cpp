#include "tests/scenario/OwnConnection.h"

#include "tests/doubles/FilesDouble.h"
#include "tests/doubles/LiveOdbc.h"
#include "tests/doubles/Text.h"

#include <gtest/gtest.h>

OwnConnection::OwnConnection(const std::string& path)
{
  if (!Files().Exists(path))
    Files().Put(path, "");
  WideText text(ConnectionStringOf(path));
  (void)SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &environment);
  (void)SQLSetEnvAttr(environment, SQL_ATTR_ODBC_VERSION,
                      reinterpret_cast<SQLPOINTER>(uintptr_t{SQL_OV_ODBC3}), SQL_IS_INTEGER);
  (void)SQLAllocHandle(SQL_HANDLE_DBC, environment, &connection);
  EXPECT_EQ(SQLDriverConnectW(connection, nullptr, text.data(), SQL_NTS, nullptr, 0, nullptr,
                              SQL_DRIVER_NOPROMPT),
            SQL_SUCCESS)
      << path;
}

OwnConnection::~OwnConnection()
{
  (void)SQLDisconnect(connection);
  (void)SQLFreeHandle(SQL_HANDLE_DBC, connection);
  (void)SQLFreeHandle(SQL_HANDLE_ENV, environment);
}

SQLRETURN OwnConnection::Execute(const std::string& sql)
{
  SQLHSTMT statement = SQL_NULL_HSTMT;
  WideText text(sql);
  (void)SQLAllocHandle(SQL_HANDLE_STMT, connection, &statement);
  const SQLRETURN code = SQLExecDirectW(statement, text.data(), SQL_NTS);
  (void)SQLFreeHandle(SQL_HANDLE_STMT, statement);
  return code;
}
