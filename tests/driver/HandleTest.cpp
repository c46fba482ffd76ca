#include <functional>

#include "tests/driver/ConformanceTest.h"

namespace {

using Call = std::function<SQLRETURN(const OdbcCalls&, SQLHANDLE)>;

struct NamedCall
{
  const char* name;
  SQLSMALLINT kind;
  Call call;
};

template <typename Function>
Function Found(const OdbcCalls& calls, const char* name)
{
  return reinterpret_cast<Function>(calls.FindAddress(name));
}

SQLCHAR Name[] = "T";

// A call of each function that takes a handle, with arguments that are fine but for the handle.
std::vector<NamedCall> StatementCalls()
{
  static SQLINTEGER number;
  static SQLSMALLINT small;
  static SQLLEN length;
  static ColumnDescription description;
  const SQLSMALLINT kind = SQL_HANDLE_STMT;
  return {
      {"BindCol", kind, [](auto& c, auto h) { return c.BindCol(h, 1, 4, &number, 0, &length); }},
      {"BindParameter", kind,
       [](auto& c, auto h) { return c.BindParameter(h, 1, 1, 4, 4, 0, 0, &number, 0, nullptr); }},
      {"Cancel", kind, [](auto& c, auto h) { return c.Cancel(h); }},
      {"CloseCursor", kind, [](auto& c, auto h) { return c.CloseCursor(h); }},
      {"ColAttribute", kind, [](auto& c, auto h) { return c.ColAttribute(h, 1, 1001, length); }},
      {"Columns", kind, [](auto& c, auto h) { return c.Columns(h, "T", std::nullopt); }},
      {"DescribeCol", kind, [](auto& c, auto h) { return c.DescribeCol(h, 1, description); }},
      {"DescribeParam", kind,
       [](auto& c, auto h) { return c.DescribeParam(h, 1, nullptr, nullptr, nullptr, nullptr); }},
      {"ExecDirect", kind, [](auto& c, auto h) { return c.ExecDirect(h, "SELECT 1"); }},
      {"Execute", kind, [](auto& c, auto h) { return c.Execute(h); }},
      {"Fetch", kind, [](auto& c, auto h) { return c.Fetch(h); }},
      {"FetchScroll", kind, [](auto& c, auto h) { return c.FetchScroll(h, SQL_FETCH_NEXT, 0); }},
      {"FreeStmt", kind, [](auto& c, auto h) { return c.FreeStmt(h, SQL_CLOSE); }},
      {"FreeHandle", kind, [](auto& c, auto h) { return c.FreeHandle(SQL_HANDLE_STMT, h); }},
      {"GetData", kind, [](auto& c, auto h) { return c.GetData(h, 1, 4, &number, 0, &length); }},
      {"GetStmtAttr", kind,
       [](auto& c, auto h) { return c.GetStatementAttribute(h, SQL_ATTR_QUERY_TIMEOUT, &length); }},
      {"GetTypeInfo", kind, [](auto& c, auto h) { return c.GetTypeInfo(h, SQL_ALL_TYPES); }},
      {"MoreResults", kind, [](auto& c, auto h) { return c.MoreResults(h); }},
      {"NumParams", kind, [](auto& c, auto h) { return c.NumParams(h, &small); }},
      {"NumResultCols", kind, [](auto& c, auto h) { return c.NumResultCols(h, &small); }},
      {"Prepare", kind, [](auto& c, auto h) { return c.Prepare(h, "SELECT 1"); }},
      {"PrimaryKeys", kind, [](auto& c, auto h) { return c.PrimaryKeys(h, "T"); }},
      {"RowCount", kind, [](auto& c, auto h) { return c.RowCount(h, &length); }},
      {"SetStmtAttr", kind,
       [](auto& c, auto h) { return c.SetStatementNumber(h, SQL_ATTR_QUERY_TIMEOUT, 1); }},
      {"SpecialColumns", kind, [](auto& c, auto h) { return c.SpecialColumns(h, "T"); }},
      {"Statistics", kind, [](auto& c, auto h) { return c.Statistics(h, "T", SQL_INDEX_ALL); }},
      {"Tables", kind,
       [](auto& c, auto h) { return c.Tables(h, std::nullopt, std::nullopt, "T", "TABLE"); }},
  };
}

std::vector<NamedCall> ConnectionCalls()
{
  static SQLHANDLE made;
  static SQLUINTEGER number;
  static SQLINTEGER length;
  static SQLUSMALLINT supported;
  static TextBuffer text(true, 50);
  const SQLSMALLINT kind = SQL_HANDLE_DBC;
  return {
      {"AllocHandle", kind,
       [](auto& c, auto h) { return c.AllocHandle(SQL_HANDLE_STMT, h, &made); }},
      {"Disconnect", kind, [](auto& c, auto h) { return c.Disconnect(h); }},
      {"DriverConnect", kind, [](auto& c, auto h) { return c.DriverConnect(h, "DBQ=/absent"); }},
      {"EndTran", kind, [](auto& c, auto h) { return c.EndTran(SQL_HANDLE_DBC, h, SQL_COMMIT); }},
      {"FreeHandle", kind, [](auto& c, auto h) { return c.FreeHandle(SQL_HANDLE_DBC, h); }},
      {"GetConnectAttr", kind,
       [](auto& c, auto h) { return c.GetConnectAttribute(h, SQL_ATTR_AUTOCOMMIT, &number); }},
      {"GetFunctions", kind,
       [](auto& c, auto h) { return c.GetFunctions(h, SQL_API_SQLFETCH, &supported); }},
      {"GetInfo", kind,
       [](auto& c, auto h) { return c.GetInfoNumber(h, SQL_GETDATA_EXTENSIONS, number); }},
      {"NativeSql", kind, [](auto& c, auto h) { return c.NativeSql(h, "SELECT 1", text, length); }},
      {"SetConnectAttr", kind,
       [](auto& c, auto h) { return c.SetConnectNumber(h, SQL_ATTR_LOGIN_TIMEOUT, 1); }},
  };
}

std::vector<NamedCall> EnvironmentCalls()
{
  static SQLHANDLE made;
  const SQLSMALLINT kind = SQL_HANDLE_ENV;
  return {
      {"AllocHandle", kind,
       [](auto& c, auto h) { return c.AllocHandle(SQL_HANDLE_DBC, h, &made); }},
      {"EndTran", kind, [](auto& c, auto h) { return c.EndTran(SQL_HANDLE_ENV, h, SQL_COMMIT); }},
      {"FreeHandle", kind, [](auto& c, auto h) { return c.FreeHandle(SQL_HANDLE_ENV, h); }},
      {"SetEnvAttr", kind,
       [](auto& c, auto h) { return c.SetEnvAttr(h, SQL_ATTR_OUTPUT_NTS, nullptr, 0); }},
  };
}

std::vector<NamedCall> AllCalls()
{
  std::vector<NamedCall> all = StatementCalls();
  for (const auto& more : {ConnectionCalls(), EnvironmentCalls()})
    all.insert(all.end(), more.begin(), more.end());
  return all;
}

// Functions that a driver for one file in one process can do without.
struct OptionalCall
{
  const char* name;
  SQLUSMALLINT number;
  bool needsRow;
  Call call;
};

std::vector<OptionalCall> OptionalCalls()
{
  return {
      {"SQLSetPos", SQL_API_SQLSETPOS, true,
       [](auto& c, auto h) {
         return Found<decltype(&::SQLSetPos)>(c, "SQLSetPos")(h, 1, SQL_POSITION,
                                                              SQL_LOCK_NO_CHANGE);
       }},
      {"SQLBulkOperations", SQL_API_SQLBULKOPERATIONS, true,
       [](auto& c, auto h) {
         return Found<decltype(&::SQLBulkOperations)>(c, "SQLBulkOperations")(h, SQL_ADD);
       }},
      {"SQLProcedures", SQL_API_SQLPROCEDURES, false,
       [](auto& c, auto h) {
         return Found<decltype(&::SQLProcedures)>(c, "SQLProcedures")(h, nullptr, 0, nullptr, 0,
                                                                      Name, SQL_NTS);
       }},
      {"SQLProcedureColumns", SQL_API_SQLPROCEDURECOLUMNS, false,
       [](auto& c, auto h) {
         return Found<decltype(&::SQLProcedureColumns)>(c, "SQLProcedureColumns")(
             h, nullptr, 0, nullptr, 0, Name, SQL_NTS, Name, SQL_NTS);
       }},
      {"SQLForeignKeys", SQL_API_SQLFOREIGNKEYS, false,
       [](auto& c, auto h) {
         return Found<decltype(&::SQLForeignKeys)>(c, "SQLForeignKeys")(
             h, nullptr, 0, nullptr, 0, Name, SQL_NTS, nullptr, 0, nullptr, 0, nullptr, 0);
       }},
      {"SQLTablePrivileges", SQL_API_SQLTABLEPRIVILEGES, false,
       [](auto& c, auto h) {
         return Found<decltype(&::SQLTablePrivileges)>(c, "SQLTablePrivileges")(
             h, nullptr, 0, nullptr, 0, Name, SQL_NTS);
       }},
      {"SQLColumnPrivileges", SQL_API_SQLCOLUMNPRIVILEGES, false,
       [](auto& c, auto h) {
         return Found<decltype(&::SQLColumnPrivileges)>(c, "SQLColumnPrivileges")(
             h, nullptr, 0, nullptr, 0, Name, SQL_NTS, Name, SQL_NTS);
       }},
      {"SQLSetCursorName", SQL_API_SQLSETCURSORNAME, false,
       [](auto& c, auto h) {
         return Found<decltype(&::SQLSetCursorName)>(c, "SQLSetCursorName")(h, Name, SQL_NTS);
       }},
  };
}

class Handle : public ConformanceTest
{
protected:
  bool ThroughManager() const { return GetParam().throughManager; }
};

// The checks of the driver itself. With a manager before it the manager answers, and it looks into
// the memory of a stale handle to see if it is one.
class DriverHandle : public ConformanceTest
{
};

}  // namespace

TEST_P(Handle, NullIsInvalidInEveryCall)
{
  for (const NamedCall& named : AllCalls())
    EXPECT_EQ(named.call(calls, nullptr), SQL_INVALID_HANDLE) << named.name;
  EXPECT_EQ(calls.Disconnect(nullptr), SQL_INVALID_HANDLE);
}

TEST_P(Handle, NullHasNoDiagnostics)
{
  TextBuffer state = calls.Buffer(6);
  TextBuffer message = calls.Buffer(9);
  SQLINTEGER native = 0;
  SQLSMALLINT length = 0;
  for (const SQLSMALLINT kind :
       std::initializer_list<SQLSMALLINT>{SQL_HANDLE_ENV, SQL_HANDLE_DBC, SQL_HANDLE_STMT})
    EXPECT_EQ(calls.GetDiagRec(kind, nullptr, 1, state, native, message, length),
              SQL_INVALID_HANDLE);
}

TEST_P(Handle, ConnectionInUseIsNotFreed)
{
  EXPECT_EQ(calls.FreeHandle(SQL_HANDLE_DBC, session.dbc), SQL_ERROR);
  EXPECT_EQ(session.ConnectionState(), "HY010");
  EXPECT_EQ(session.Select("SELECT 1"), Lines{"1"});
}

TEST_P(Handle, EnvironmentInUseIsNotFreed)
{
  EXPECT_EQ(calls.FreeHandle(SQL_HANDLE_ENV, session.env), SQL_ERROR);
  EXPECT_EQ(calls.Diagnostics(SQL_HANDLE_ENV, session.env).at(0).state, "HY010");
  EXPECT_EQ(session.Select("SELECT 1"), Lines{"1"});
}

TEST_P(Handle, StatementsGoWithTheirConnection)
{
  Make("CREATE TABLE [T] ([A] LONG)");
  Make("INSERT INTO [T] VALUES (1)");
  SQLHSTMT second = nullptr;
  ASSERT_EQ(calls.AllocHandle(SQL_HANDLE_STMT, session.dbc, &second), SQL_SUCCESS);
  ASSERT_EQ(calls.ExecDirect(second, "SELECT * FROM [T]"), SQL_SUCCESS);
  ASSERT_EQ(calls.Fetch(second), SQL_SUCCESS);
  session.stmt = nullptr;
  ASSERT_EQ(session.Disconnect(), SQL_SUCCESS);
  EXPECT_EQ(folder.Names(), Lines{"test.mdb"});
  if (!ThroughManager()) {
    EXPECT_EQ(calls.Fetch(second), SQL_INVALID_HANDLE);
    EXPECT_EQ(calls.FreeHandle(SQL_HANDLE_STMT, stmt), SQL_INVALID_HANDLE);
  }
}

TEST_P(Handle, StatementsMayBeFreedInAnyOrder)
{
  Make("CREATE TABLE [T] ([A] LONG)");
  Make("INSERT INTO [T] VALUES (1)");
  SQLHSTMT made[3] = {};
  for (SQLHSTMT& handle : made) {
    ASSERT_EQ(calls.AllocHandle(SQL_HANDLE_STMT, session.dbc, &handle), SQL_SUCCESS);
    ASSERT_EQ(calls.ExecDirect(handle, "SELECT * FROM [T]"), SQL_SUCCESS);
  }
  for (int index : {1, 0, 2}) {
    EXPECT_EQ(calls.Fetch(made[index]), SQL_SUCCESS);
    EXPECT_EQ(calls.FreeHandle(SQL_HANDLE_STMT, made[index]), SQL_SUCCESS);
  }
  EXPECT_EQ(session.Select("SELECT * FROM [T]"), Lines{"1"});
}

TEST_P(Handle, StatementNeedsAConnection)
{
  SQLHANDLE dbc = nullptr;
  SQLHANDLE made = nullptr;
  ASSERT_EQ(calls.AllocHandle(SQL_HANDLE_DBC, session.env, &dbc), SQL_SUCCESS);
  EXPECT_EQ(calls.AllocHandle(SQL_HANDLE_STMT, dbc, &made), SQL_ERROR);
  EXPECT_EQ(calls.Diagnostics(SQL_HANDLE_DBC, dbc).at(0).state, "08003");
  EXPECT_EQ(calls.FreeHandle(SQL_HANDLE_DBC, dbc), SQL_SUCCESS);
}

TEST_P(Handle, DisconnectNeedsAConnection)
{
  ASSERT_EQ(session.Disconnect(), SQL_SUCCESS);
  EXPECT_EQ(calls.Disconnect(session.dbc), SQL_ERROR);
  EXPECT_EQ(session.ConnectionState(), "08003");
}

TEST_P(Handle, OptionalFunctionsWorkOrSayThatTheyDoNot)
{
  Make("CREATE TABLE [T] ([A] LONG)");
  const OdbcCalls& narrow = ThroughManager() ? ManagerCalls(false) : DriverCalls(false);
  for (const OptionalCall& optional : OptionalCalls()) {
    SQLUSMALLINT supported = 9;
    calls.FreeStmt(stmt, SQL_CLOSE);
    ASSERT_EQ(calls.GetFunctions(session.dbc, optional.number, &supported), SQL_SUCCESS);
    if (narrow.FindAddress(optional.name) == nullptr) {
      EXPECT_EQ(supported, SQL_FALSE) << optional.name << " is not exported";
      continue;
    }
    if (optional.needsRow)
      MakeRow("SELECT 1");
    const SQLRETURN result = optional.call(narrow, stmt);
    if (supported == SQL_FALSE) {
      EXPECT_EQ(result, SQL_ERROR) << optional.name;
      const std::string state = session.State();
      EXPECT_TRUE(state == "IM001" || state == "HYC00") << optional.name << ": " << state;
    } else {
      EXPECT_TRUE(SQL_SUCCEEDED(result)) << optional.name << ": " << session.State();
    }
  }
}

TEST_P(Handle, FunctionsInUseAreToldAsSupported)
{
  SQLUSMALLINT supported[SQL_API_ODBC3_ALL_FUNCTIONS_SIZE] = {};
  ASSERT_EQ(calls.GetFunctions(session.dbc, SQL_API_ODBC3_ALL_FUNCTIONS, supported), SQL_SUCCESS);
  for (int number : {SQL_API_SQLALLOCHANDLE,  SQL_API_SQLBINDCOL,       SQL_API_SQLBINDPARAMETER,
                     SQL_API_SQLCLOSECURSOR,  SQL_API_SQLCOLATTRIBUTE,  SQL_API_SQLCOLUMNS,
                     SQL_API_SQLDESCRIBECOL,  SQL_API_SQLDRIVERCONNECT, SQL_API_SQLENDTRAN,
                     SQL_API_SQLEXECDIRECT,   SQL_API_SQLEXECUTE,       SQL_API_SQLFETCH,
                     SQL_API_SQLFETCHSCROLL,  SQL_API_SQLGETDATA,       SQL_API_SQLGETDIAGREC,
                     SQL_API_SQLGETTYPEINFO,  SQL_API_SQLPREPARE,       SQL_API_SQLPRIMARYKEYS,
                     SQL_API_SQLROWCOUNT,     SQL_API_SQLTABLES,        SQL_API_SQLCANCEL,
                     SQL_API_SQLNUMRESULTCOLS}) {
    EXPECT_TRUE(SQL_FUNC_EXISTS(supported, number)) << number;
    SQLUSMALLINT one = SQL_FALSE;
    EXPECT_EQ(calls.GetFunctions(session.dbc, static_cast<SQLUSMALLINT>(number), &one),
              SQL_SUCCESS);
    EXPECT_EQ(one, SQL_TRUE) << number;
  }
}

TEST_P(Handle, UnknownAttributesAreRefused)
{
  SQLULEN value = 0;
  EXPECT_EQ(calls.SetStatementNumber(stmt, 4711, 1), SQL_ERROR);
  EXPECT_EQ(session.State(), "HY092");
  EXPECT_EQ(calls.GetStatementAttribute(stmt, 4711, &value), SQL_ERROR);
  EXPECT_EQ(session.State(), "HY092");
}

TEST_P(Handle, AttributesAreKept)
{
  SQLULEN timeout = 99;
  EXPECT_EQ(calls.SetStatementNumber(stmt, SQL_ATTR_QUERY_TIMEOUT, 3), SQL_SUCCESS);
  EXPECT_EQ(calls.GetStatementAttribute(stmt, SQL_ATTR_QUERY_TIMEOUT, &timeout), SQL_SUCCESS);
  EXPECT_EQ(timeout, 3U);
  SQLUINTEGER autocommit = 99;
  EXPECT_EQ(calls.GetConnectAttribute(session.dbc, SQL_ATTR_AUTOCOMMIT, &autocommit), SQL_SUCCESS);
  EXPECT_EQ(autocommit, SQLUINTEGER{SQL_AUTOCOMMIT_ON});
  EXPECT_EQ(calls.SetConnectNumber(session.dbc, SQL_ATTR_AUTOCOMMIT, SQL_AUTOCOMMIT_OFF),
            SQL_SUCCESS);
  EXPECT_EQ(calls.GetConnectAttribute(session.dbc, SQL_ATTR_AUTOCOMMIT, &autocommit), SQL_SUCCESS);
  EXPECT_EQ(autocommit, SQLUINTEGER{SQL_AUTOCOMMIT_OFF});
}

TEST_P(Handle, CursorsOtherThanForwardOnlyAreNotPromised)
{
  const SQLRETURN result = calls.SetStatementNumber(stmt, SQL_ATTR_CURSOR_TYPE, SQL_CURSOR_DYNAMIC);
  const std::string state = session.State();
  EXPECT_TRUE((result == SQL_SUCCESS_WITH_INFO && state == "01S02") ||
              (result == SQL_ERROR && state == "HYC00"))
      << result << " " << state;
  SQLULEN type = 99;
  EXPECT_EQ(calls.GetStatementAttribute(stmt, SQL_ATTR_CURSOR_TYPE, &type), SQL_SUCCESS);
  EXPECT_EQ(type, SQLULEN{SQL_CURSOR_FORWARD_ONLY});
}

TEST_P(Handle, CancelOfNothingIsPlainSuccess)
{
  EXPECT_EQ(calls.Cancel(stmt), SQL_SUCCESS);
  EXPECT_EQ(session.Select("SELECT 1"), Lines{"1"});
}

TEST_P(DriverHandle, HandleOfAnotherKindIsInvalidInEveryCall)
{
  for (const NamedCall& named : AllCalls()) {
    const std::pair<SQLSMALLINT, SQLHANDLE> handles[] = {
        {SQL_HANDLE_ENV, session.env}, {SQL_HANDLE_DBC, session.dbc}, {SQL_HANDLE_STMT, stmt}};
    for (const auto& [kind, handle] : handles) {
      if (kind != named.kind) {
        EXPECT_EQ(named.call(calls, handle), SQL_INVALID_HANDLE) << named.name << " of " << kind;
      }
    }
  }
  EXPECT_EQ(session.Select("SELECT 1"), Lines{"1"});
}

TEST_P(DriverHandle, AddressOfAnythingElseIsInvalidInEveryCall)
{
  std::vector<unsigned char> anything(4096, 0x41);
  for (const NamedCall& named : AllCalls())
    EXPECT_EQ(named.call(calls, anything.data()), SQL_INVALID_HANDLE) << named.name;
  EXPECT_EQ(StatementCalls().front().call(calls, reinterpret_cast<SQLHANDLE>(8)),
            SQL_INVALID_HANDLE);
}

TEST_P(DriverHandle, FreedStatementIsInvalidInEveryCall)
{
  const SQLHSTMT freed = stmt;
  ASSERT_EQ(calls.FreeHandle(SQL_HANDLE_STMT, freed), SQL_SUCCESS);
  session.stmt = nullptr;
  for (const NamedCall& named : StatementCalls())
    EXPECT_EQ(named.call(calls, freed), SQL_INVALID_HANDLE) << named.name;
}

TEST_P(DriverHandle, FreedStatementIsInvalidThoughItsPlaceIsTakenAgain)
{
  const SQLHSTMT freed = stmt;
  ASSERT_EQ(calls.FreeHandle(SQL_HANDLE_STMT, freed), SQL_SUCCESS);
  ASSERT_EQ(calls.AllocHandle(SQL_HANDLE_STMT, session.dbc, &session.stmt), SQL_SUCCESS);
  EXPECT_EQ(calls.ExecDirect(freed, "SELECT 1"), SQL_INVALID_HANDLE);
  EXPECT_EQ(calls.FreeHandle(SQL_HANDLE_STMT, freed), SQL_INVALID_HANDLE);
  EXPECT_EQ(session.Select("SELECT 1"), Lines{"1"});
}

TEST_P(DriverHandle, FreedConnectionAndEnvironmentAreInvalidInEveryCall)
{
  session.Disconnect();
  const SQLHDBC dbc = session.dbc;
  ASSERT_EQ(calls.FreeHandle(SQL_HANDLE_DBC, dbc), SQL_SUCCESS);
  for (const NamedCall& named : ConnectionCalls())
    EXPECT_EQ(named.call(calls, dbc), SQL_INVALID_HANDLE) << named.name;
  const SQLHENV env = session.env;
  ASSERT_EQ(calls.FreeHandle(SQL_HANDLE_ENV, env), SQL_SUCCESS);
  for (const NamedCall& named : EnvironmentCalls())
    EXPECT_EQ(named.call(calls, env), SQL_INVALID_HANDLE) << named.name;
}

INSTANTIATE_TEST_SUITE_P(Each, Handle, AllWays(), WayName);
INSTANTIATE_TEST_SUITE_P(Each, DriverHandle,
                         testing::Values(Way{"WideStraight", false, true},
                                         Way{"NarrowStraight", false, false}),
                         WayName);
