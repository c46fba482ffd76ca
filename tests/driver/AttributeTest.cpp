// What a program may set at an environment, a connection and a statement.

#include <algorithm>

#include "tests/driver/ConformanceTest.h"

namespace {

class Attribute : public ConformanceTest
{
protected:
  std::string StateOf(SQLSMALLINT kind, SQLHANDLE handle) const
  {
    const auto records = calls.Diagnostics(kind, handle);
    return records.empty() ? "none" : records.front().state;
  }

  // Sets a number at the environment and gives the SQLSTATE of what came of it.
  std::string SetEnvironment(SQLINTEGER attribute, SQLULEN value)
  {
    const auto pointer = reinterpret_cast<SQLPOINTER>(value);
    const SQLRETURN result = calls.SetEnvAttr(session.env, attribute, pointer, 0);
    return result == SQL_SUCCESS ? "set" : StateOf(SQL_HANDLE_ENV, session.env);
  }

  std::string SetConnection(SQLINTEGER attribute, SQLULEN value)
  {
    const SQLRETURN result = calls.SetConnectNumber(session.dbc, attribute, value);
    return result == SQL_SUCCESS ? "set" : session.ConnectionState();
  }

  std::string SetStatement(SQLINTEGER attribute, SQLULEN value)
  {
    const SQLRETURN result = calls.SetStatementNumber(stmt, attribute, value);
    return result == SQL_SUCCESS ? "set" : session.State();
  }

  // A number that the connection gives back, or the SQLSTATE.
  std::string Connection(SQLINTEGER attribute) const
  {
    SQLUINTEGER number = 4711;
    const SQLRETURN result = calls.GetConnectAttribute(session.dbc, attribute, &number);
    return result == SQL_SUCCESS ? std::to_string(number) : session.ConnectionState();
  }

  SQLULEN Statement(SQLINTEGER attribute) const
  {
    SQLULEN number = 4711;
    EXPECT_EQ(calls.GetStatementAttribute(stmt, attribute, &number), SQL_SUCCESS) << attribute;
    return number;
  }
};

}  // namespace

TEST_P(Attribute, OfAnEnvironmentIsTheVersionOfOdbc)
{
  SQLINTEGER version = 0;
  SQLINTEGER length = 0;
  for (const SQLULEN known : {SQL_OV_ODBC2, SQL_OV_ODBC3, SQL_OV_ODBC3_80}) {
    EXPECT_EQ(SetEnvironment(SQL_ATTR_ODBC_VERSION, known), "set");
    EXPECT_EQ(calls.GetEnvAttr(session.env, SQL_ATTR_ODBC_VERSION, &version, 0, &length),
              SQL_SUCCESS);
    EXPECT_EQ(version, static_cast<SQLINTEGER>(known));
    EXPECT_EQ(length, SQLINTEGER{sizeof(version)});
  }
  EXPECT_EQ(SetEnvironment(SQL_ATTR_ODBC_VERSION, 4), "HY024");
}

TEST_P(Attribute, OfAnEnvironmentThatIsFixedCanBeRead)
{
  EXPECT_EQ(SetEnvironment(SQL_ATTR_OUTPUT_NTS, SQL_TRUE), "set");
  EXPECT_EQ(SetEnvironment(SQL_ATTR_OUTPUT_NTS, SQL_FALSE), "HYC00");
  EXPECT_EQ(SetEnvironment(SQL_ATTR_CONNECTION_POOLING, 0), "HYC00");
  EXPECT_EQ(SetEnvironment(SQL_ATTR_CP_MATCH, 0), "HYC00");
  EXPECT_EQ(SetEnvironment(4711, 0), "HY092");
  const std::pair<SQLINTEGER, SQLINTEGER> fixed[] = {
      {SQL_ATTR_OUTPUT_NTS, SQL_TRUE}, {SQL_ATTR_CONNECTION_POOLING, 0}, {SQL_ATTR_CP_MATCH, 0}};
  for (const auto& [attribute, expected] : fixed) {
    SQLINTEGER value = 4711;
    EXPECT_EQ(calls.GetEnvAttr(session.env, attribute, &value, 0, nullptr), SQL_SUCCESS);
    EXPECT_EQ(value, expected) << attribute;
  }
  EXPECT_EQ(calls.GetEnvAttr(session.env, 4711, nullptr, 0, nullptr), SQL_ERROR);
  EXPECT_EQ(StateOf(SQL_HANDLE_ENV, session.env), "HY092");
}

TEST_P(Attribute, OfOdbc2AnUpdateOfNoRowIsPlainSuccess)
{
  Make("CREATE TABLE [T] ([A] LONG)");
  EXPECT_EQ(session.Run("UPDATE [T] SET [A]=1"), SQL_NO_DATA);
  EXPECT_EQ(SetEnvironment(SQL_ATTR_ODBC_VERSION, SQL_OV_ODBC2), "set");
  EXPECT_EQ(session.Run("UPDATE [T] SET [A]=1"), SQL_SUCCESS);
}

TEST_P(Attribute, OfAConnectionIsKept)
{
  EXPECT_EQ(SetConnection(SQL_ATTR_LOGIN_TIMEOUT, 7), "set");
  EXPECT_EQ(SetConnection(SQL_ATTR_ACCESS_MODE, SQL_MODE_READ_ONLY), "set");
  EXPECT_EQ(SetConnection(SQL_ATTR_METADATA_ID, SQL_TRUE), "set");
  EXPECT_EQ(Connection(SQL_ATTR_LOGIN_TIMEOUT), "7");
  EXPECT_EQ(Connection(SQL_ATTR_ACCESS_MODE), std::to_string(SQL_MODE_READ_ONLY));
  EXPECT_EQ(Connection(SQL_ATTR_METADATA_ID), std::to_string(SQL_TRUE));
  EXPECT_EQ(SetConnection(SQL_ATTR_ACCESS_MODE, SQL_MODE_READ_WRITE), "set");
  EXPECT_EQ(SetConnection(SQL_ATTR_METADATA_ID, SQL_FALSE), "set");
  EXPECT_EQ(Connection(SQL_ATTR_ACCESS_MODE), std::to_string(SQL_MODE_READ_WRITE));
  EXPECT_EQ(Connection(SQL_ATTR_METADATA_ID), std::to_string(SQL_FALSE));
}

TEST_P(Attribute, OfAConnectionThatIsFixedCanBeRead)
{
  EXPECT_EQ(SetConnection(SQL_ATTR_CONNECTION_TIMEOUT, 9), "set");
  EXPECT_EQ(Connection(SQL_ATTR_CONNECTION_TIMEOUT), "0");
  EXPECT_EQ(SetConnection(SQL_ATTR_TXN_ISOLATION, SQL_TXN_SERIALIZABLE), "set");
  EXPECT_EQ(SetConnection(SQL_ATTR_TXN_ISOLATION, SQL_TXN_READ_COMMITTED), "01S02");
  EXPECT_EQ(Connection(SQL_ATTR_TXN_ISOLATION), std::to_string(SQL_TXN_SERIALIZABLE));
  EXPECT_EQ(SetConnection(SQL_ATTR_ASYNC_ENABLE, SQL_ASYNC_ENABLE_OFF), "set");
  EXPECT_EQ(SetConnection(SQL_ATTR_ASYNC_ENABLE, SQL_ASYNC_ENABLE_ON), "HYC00");
  EXPECT_EQ(Connection(SQL_ATTR_ASYNC_ENABLE), std::to_string(SQL_ASYNC_ENABLE_OFF));
  EXPECT_EQ(Connection(SQL_ATTR_AUTO_IPD), std::to_string(SQL_FALSE));
  EXPECT_EQ(SetConnection(SQL_ATTR_PACKET_SIZE, 512), "set");
  EXPECT_EQ(SetConnection(SQL_ATTR_QUIET_MODE, 0), "set");
}

TEST_P(Attribute, OfAConnectionThatThereIsNotIsRefused)
{
  for (const SQLINTEGER attribute :
       {SQL_ATTR_CURRENT_CATALOG, SQL_ATTR_TRANSLATE_LIB, SQL_ATTR_TRANSLATE_OPTION})
    EXPECT_EQ(SetConnection(attribute, 0), "HYC00") << attribute;
  for (const SQLINTEGER attribute : {SQL_ATTR_PACKET_SIZE, SQL_ATTR_QUIET_MODE,
                                     SQL_ATTR_TRANSLATE_LIB, SQL_ATTR_TRANSLATE_OPTION})
    EXPECT_EQ(Connection(attribute), "HYC00") << attribute;
  EXPECT_EQ(SetConnection(SQL_ATTR_ACCESS_MODE, 4711), "HY024");
  EXPECT_EQ(SetConnection(SQL_ATTR_AUTOCOMMIT, 4711), "HY024");
  EXPECT_EQ(SetConnection(4711, 0), "HY092");
  EXPECT_EQ(Connection(4711), "HY092");
}

TEST_P(Attribute, OfAConnectionTellsIfItIsDead)
{
  EXPECT_EQ(Connection(SQL_ATTR_CONNECTION_DEAD), std::to_string(SQL_CD_FALSE));
  session.Disconnect();
  EXPECT_EQ(Connection(SQL_ATTR_CONNECTION_DEAD), std::to_string(SQL_CD_TRUE));
}

TEST_P(Attribute, OfAConnectionThatIsATextIsEmpty)
{
  TextBuffer catalogue = calls.Buffer(20);
  EXPECT_EQ(calls.GetConnectAttribute(session.dbc, SQL_ATTR_CURRENT_CATALOG, nullptr), SQL_SUCCESS);
  const auto get = calls.Entry<decltype(&::SQLGetConnectAttr)>(
      calls.IsWide() ? "SQLGetConnectAttrW" : "SQLGetConnectAttr");
  SQLINTEGER length = -1;
  EXPECT_EQ(get(session.dbc, SQL_ATTR_CURRENT_CATALOG, catalogue.Data(),
                static_cast<SQLINTEGER>(catalogue.Bytes()), &length),
            SQL_SUCCESS);
  EXPECT_EQ(catalogue.Text(), "");
  EXPECT_EQ(length, 0);
  EXPECT_EQ(get(session.dbc, SQL_ATTR_CURRENT_CATALOG, catalogue.Data(), -1, &length), SQL_ERROR);
  EXPECT_EQ(session.ConnectionState(), "HY090");
}

TEST_P(Attribute, MetadataOfAConnectionPassesToItsStatements)
{
  EXPECT_EQ(Statement(SQL_ATTR_METADATA_ID), SQLULEN{SQL_FALSE});
  EXPECT_EQ(SetConnection(SQL_ATTR_METADATA_ID, SQL_TRUE), "set");
  ASSERT_EQ(calls.FreeHandle(SQL_HANDLE_STMT, session.stmt), SQL_SUCCESS);
  ASSERT_EQ(calls.AllocHandle(SQL_HANDLE_STMT, session.dbc, &session.stmt), SQL_SUCCESS);
  stmt = session.stmt;
  EXPECT_EQ(Statement(SQL_ATTR_METADATA_ID), SQLULEN{SQL_TRUE});
}

TEST_P(Attribute, ReadOnlyConnectionWritesNothing)
{
  Make("CREATE TABLE [T] ([A] LONG)");
  session.Disconnect();
  EXPECT_EQ(SetConnection(SQL_ATTR_ACCESS_MODE, SQL_MODE_READ_ONLY), "set");
  ASSERT_EQ(session.Connect(database), SQL_SUCCESS);
  EXPECT_EQ(session.Run("INSERT INTO [T] VALUES (1)"), SQL_ERROR);
  EXPECT_EQ(session.State(), "42000");
  EXPECT_EQ(session.Select("SELECT COUNT(*) FROM [T]"), Lines{"0"});
}

TEST_P(Attribute, OfAStatementThatIsANumberIsKept)
{
  for (const SQLINTEGER attribute :
       {SQL_ATTR_QUERY_TIMEOUT, SQL_ATTR_MAX_ROWS, SQL_ATTR_NOSCAN, SQL_ATTR_RETRIEVE_DATA,
        SQL_ATTR_METADATA_ID, SQL_ATTR_ROW_BIND_TYPE, SQL_ATTR_PARAM_BIND_TYPE}) {
    EXPECT_EQ(SetStatement(attribute, 1), "set") << attribute;
    EXPECT_EQ(Statement(attribute), 1U) << attribute;
    EXPECT_EQ(SetStatement(attribute, 0), "set") << attribute;
    EXPECT_EQ(Statement(attribute), 0U) << attribute;
  }
}

TEST_P(Attribute, OfAStatementThatIsAnAddressIsKept)
{
  SQLULEN place = 0;
  for (const SQLINTEGER attribute :
       {SQL_ATTR_ROW_BIND_OFFSET_PTR, SQL_ATTR_PARAM_BIND_OFFSET_PTR, SQL_ATTR_ROWS_FETCHED_PTR,
        SQL_ATTR_ROW_STATUS_PTR, SQL_ATTR_PARAMS_PROCESSED_PTR, SQL_ATTR_PARAM_STATUS_PTR}) {
    EXPECT_EQ(calls.SetStatementPointer(stmt, attribute, &place), SQL_SUCCESS);
    EXPECT_EQ(Statement(attribute), reinterpret_cast<SQLULEN>(&place)) << attribute;
    EXPECT_EQ(calls.GetStatementAttribute(stmt, attribute, nullptr), SQL_SUCCESS);
  }
  EXPECT_EQ(calls.GetStatementAttribute(stmt, SQL_ATTR_APP_ROW_DESC, nullptr), SQL_SUCCESS);
}

TEST_P(Attribute, OfAStatementThatHasOneValueTakesThatAlone)
{
  EXPECT_EQ(SetStatement(SQL_ATTR_ROW_ARRAY_SIZE, 1), "set");
  EXPECT_EQ(SetStatement(SQL_ATTR_ROW_ARRAY_SIZE, 10), "01S02");
  EXPECT_EQ(Statement(SQL_ATTR_ROW_ARRAY_SIZE), 1U);
}

TEST_P(Attribute, OfAStatementThatIsNotSupportedIsRefused)
{
  SQLULEN value = 0;
  for (const SQLINTEGER attribute :
       {SQL_ATTR_FETCH_BOOKMARK_PTR, SQL_ATTR_PARAM_OPERATION_PTR, SQL_ATTR_ROW_OPERATION_PTR}) {
    EXPECT_EQ(SetStatement(attribute, 0), "HYC00") << attribute;
    EXPECT_EQ(calls.GetStatementAttribute(stmt, attribute, &value), SQL_ERROR);
    EXPECT_EQ(session.State(), "HYC00") << attribute;
  }
  EXPECT_EQ(SetStatement(SQL_ATTR_ROW_NUMBER, 1), "HYC00");
}

TEST_P(Attribute, RowNumberIsThatOfTheRow)
{
  Make("SELECT 1 UNION ALL SELECT 2");
  EXPECT_EQ(Statement(SQL_ATTR_ROW_NUMBER), 0U);
  EXPECT_EQ(calls.Fetch(stmt), SQL_SUCCESS);
  EXPECT_EQ(calls.Fetch(stmt), SQL_SUCCESS);
  EXPECT_EQ(Statement(SQL_ATTR_ROW_NUMBER), 2U);
  EXPECT_EQ(calls.Fetch(stmt), SQL_NO_DATA);
}

TEST_P(Attribute, FunctionsAreListedForBothVersionsOfOdbc)
{
  SQLUSMALLINT odbc2[100] = {};
  EXPECT_EQ(calls.GetFunctions(session.dbc, SQL_API_ALL_FUNCTIONS, odbc2), SQL_SUCCESS);
  EXPECT_EQ(odbc2[SQL_API_SQLFETCH], SQL_TRUE);
  EXPECT_EQ(odbc2[SQL_API_SQLSETPOS], SQL_FALSE);
  EXPECT_EQ(calls.GetFunctions(session.dbc, SQL_API_SQLFETCH, nullptr), SQL_ERROR);
  EXPECT_EQ(session.ConnectionState(), "HY009");
}

TEST_P(Attribute, InfoTellsVersionAccessAndSource)
{
  const auto info = [&](SQLUSMALLINT item) {
    TextBuffer text = calls.Buffer(200);
    SQLSMALLINT length = -1;
    EXPECT_EQ(calls.GetInfoText(session.dbc, item, text, length), SQL_SUCCESS) << item;
    return text.Text();
  };
  EXPECT_EQ(info(SQL_DBMS_VER).substr(0, 3), "03.");
  EXPECT_EQ(info(SQL_DBMS_VER).size(), std::string("03.40.0001").size());
  EXPECT_EQ(info(SQL_DATA_SOURCE_NAME), "");
  EXPECT_EQ(info(SQL_DATA_SOURCE_READ_ONLY), "N");
  session.Disconnect();
  EXPECT_EQ(info(SQL_DATABASE_NAME), "");
  EXPECT_EQ(info(SQL_DATA_SOURCE_READ_ONLY), "N");
  EXPECT_EQ(SetConnection(SQL_ATTR_ACCESS_MODE, SQL_MODE_READ_ONLY), "set");
  ASSERT_EQ(session.ConnectWith(RequestFor(database) + ";DSN=plans"), SQL_SUCCESS);
  EXPECT_EQ(info(SQL_DATA_SOURCE_READ_ONLY), "Y");
  EXPECT_EQ(info(SQL_DATA_SOURCE_NAME), "plans");
  SQLUINTEGER number = 0;
  EXPECT_EQ(calls.GetInfoNumber(session.dbc, 4711, number), SQL_ERROR);
  EXPECT_EQ(session.ConnectionState(), "HY096");
}

TEST_P(Attribute, CursorNameIsGivenOrMadeUp)
{
  TextBuffer name = calls.Buffer(40);
  SQLSMALLINT length = -1;
  EXPECT_EQ(calls.GetCursorName(stmt, name, length), SQL_SUCCESS);
  EXPECT_EQ(name.Text().substr(0, 7), "SQL_CUR");
  EXPECT_EQ(length, static_cast<SQLSMALLINT>(name.Text().size()));
  EXPECT_EQ(calls.SetCursorName(stmt, "mine"), SQL_SUCCESS);
  EXPECT_EQ(calls.GetCursorName(stmt, name, length), SQL_SUCCESS);
  EXPECT_EQ(name.Text(), "mine");
}

INSTANTIATE_TEST_SUITE_P(Each, Attribute, StraightWays(), WayName);
