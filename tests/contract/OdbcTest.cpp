// ODBC as far as the update relies on it, on every kind that the machine has.
#include "tests/contract/ContractTest.h"
#include "tests/contract/OdbcStatements.h"

#include <sql.h>
#include <sqlext.h>
#include <sqlucode.h>

#include <stdint.h>
#include <string.h>
#include <wchar.h>

namespace {

const wchar_t Poison = static_cast<wchar_t>(0xBDBD);
constexpr SQLLEN LengthPoison = -12345;

SQLWCHAR* InputText(const wchar_t* text)
{
  return const_cast<SQLWCHAR*>(text);
}

// A buffer that a text is fetched into, with its length word.
struct FetchedText
{
  FetchedText() { memset(text, 0xBD, sizeof(text)); }

  wchar_t text[64];
  SQLLEN bytes = LengthPoison;
};

std::string TestName(const testing::TestParamInfo<std::string>& info)
{
  return info.param;
}

}  // namespace

// A connection to a database that holds the table Parts, and a statement on it.
class OdbcContract : public ContractTest, public testing::WithParamInterface<std::string>
{
protected:
  OdbcContract()
  {
    std::string connectionString = NewDatabase(GetParam());
    path.assign(connectionString.begin(), connectionString.end());
    path.push_back(L'\0');
    EXPECT_EQ(SQL_SUCCESS, SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &environment));
    EXPECT_EQ(SQL_SUCCESS,
              SQLSetEnvAttr(environment, SQL_ATTR_ODBC_VERSION,
                            reinterpret_cast<SQLPOINTER>(uintptr_t{SQL_OV_ODBC3}), SQL_IS_INTEGER));
    EXPECT_EQ(SQL_SUCCESS, SQLAllocHandle(SQL_HANDLE_DBC, environment, &connection));
    EXPECT_TRUE(SQL_SUCCEEDED(Connect(path.data())));
    for (const wchar_t* sql : SetupStatements) {
      EXPECT_EQ(SQL_SUCCESS, SQLAllocHandle(SQL_HANDLE_STMT, connection, &statement));
      EXPECT_EQ(SQL_SUCCESS, Execute(sql));
      EXPECT_EQ(SQL_SUCCESS, SQLFreeHandle(SQL_HANDLE_STMT, statement));
    }
    EXPECT_EQ(SQL_SUCCESS, SQLAllocHandle(SQL_HANDLE_STMT, connection, &statement));
  }

  ~OdbcContract() override
  {
    (void)SQLDisconnect(connection);
    (void)SQLFreeHandle(SQL_HANDLE_DBC, connection);
    (void)SQLFreeHandle(SQL_HANDLE_ENV, environment);
  }

  SQLRETURN Connect(wchar_t* text)
  {
    return SQLDriverConnectW(connection, nullptr, text, SQL_NTS, completed, 512, &completedLength,
                             SQL_DRIVER_NOPROMPT);
  }

  SQLRETURN Execute(const wchar_t* sql)
  {
    return SQLExecDirectW(statement, InputText(sql), SQL_NTS);
  }

  SQLRETURN Columns(const wchar_t* table)
  {
    return SQLColumnsW(statement, nullptr, 0, nullptr, 0, InputText(table), SQL_NTS, nullptr, 0);
  }

  SQLRETURN Tables()
  {
    return SQLTablesW(statement, nullptr, 0, nullptr, 0, nullptr, 0, InputText(L"TABLE"), 5);
  }

  SQLRETURN BindText(SQLUSMALLINT column, FetchedText& text,
                     SQLLEN bytes = sizeof(FetchedText::text))
  {
    return SQLBindCol(statement, column, SQL_C_WCHAR, text.text, bytes, &text.bytes);
  }

  std::vector<wchar_t> path;
  SQLHENV environment = SQL_NULL_HENV;
  SQLHDBC connection = SQL_NULL_HDBC;
  SQLHSTMT statement = SQL_NULL_HSTMT;
  SQLWCHAR completed[512] = {};
  SQLSMALLINT completedLength = 0;
};

INSTANTIATE_TEST_SUITE_P(On, OdbcContract, testing::ValuesIn(OdbcKinds()), TestName);

TEST_P(OdbcContract, NoCallTakesANullHandle)
{
  SQLHANDLE handle = SQL_NULL_HANDLE;
  SQLHSTMT none = SQL_NULL_HSTMT;
  EXPECT_EQ(SQL_INVALID_HANDLE, SQLAllocHandle(SQL_HANDLE_DBC, none, &handle));
  EXPECT_EQ(SQL_INVALID_HANDLE, SQLAllocHandle(SQL_HANDLE_STMT, none, &handle));
  EXPECT_EQ(SQL_INVALID_HANDLE, SQLFreeHandle(SQL_HANDLE_STMT, none));
  EXPECT_EQ(SQL_INVALID_HANDLE, SQLFreeHandle(SQL_HANDLE_DBC, none));
  EXPECT_EQ(SQL_INVALID_HANDLE, SQLFreeHandle(SQL_HANDLE_ENV, none));
  EXPECT_EQ(SQL_INVALID_HANDLE, SQLSetEnvAttr(none, SQL_ATTR_ODBC_VERSION, nullptr, 0));
  EXPECT_EQ(SQL_INVALID_HANDLE, SQLSetConnectAttrW(none, SQL_ATTR_LOGIN_TIMEOUT, nullptr, 0));
  EXPECT_EQ(SQL_INVALID_HANDLE, SQLDisconnect(none));
  EXPECT_EQ(SQL_INVALID_HANDLE, SQLExecDirectW(none, InputText(SelectParts), SQL_NTS));
  EXPECT_EQ(SQL_INVALID_HANDLE,
            SQLColumnsW(none, nullptr, 0, nullptr, 0, InputText(L"Parts"), SQL_NTS, nullptr, 0));
  EXPECT_EQ(SQL_INVALID_HANDLE,
            SQLTablesW(none, nullptr, 0, nullptr, 0, nullptr, 0, InputText(L"TABLE"), 5));
  EXPECT_EQ(SQL_INVALID_HANDLE, SQLBindCol(none, 1, SQL_C_WCHAR, &handle, 4, nullptr));
  EXPECT_EQ(SQL_INVALID_HANDLE, SQLFetch(none));
  EXPECT_EQ(SQL_INVALID_HANDLE, SQLCloseCursor(none));
}

TEST_P(OdbcContract, AConnectionNeedsAVersionToBeAllocated)
{
  SQLHENV second = SQL_NULL_HENV;
  SQLHDBC none = SQL_NULL_HDBC;
  ASSERT_EQ(SQL_SUCCESS, SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &second));
  EXPECT_EQ(SQL_ERROR, SQLAllocHandle(SQL_HANDLE_DBC, second, &none));
  EXPECT_EQ(nullptr, none);
  EXPECT_EQ(SQL_SUCCESS, SQLFreeHandle(SQL_HANDLE_ENV, second));
}

TEST_P(OdbcContract, AttributesOfAConnectionCanBeSetBeforeItConnects)
{
  SQLHDBC second = SQL_NULL_HDBC;
  ASSERT_EQ(SQL_SUCCESS, SQLAllocHandle(SQL_HANDLE_DBC, environment, &second));
  EXPECT_EQ(SQL_SUCCESS, SQLSetConnectAttrW(second, SQL_ATTR_LOGIN_TIMEOUT,
                                            reinterpret_cast<SQLPOINTER>(uintptr_t{5}), 0));
  EXPECT_EQ(SQL_SUCCESS, SQLSetConnectAttrW(second, SQL_ATTR_ACCESS_MODE,
                                            reinterpret_cast<SQLPOINTER>(SQL_MODE_READ_WRITE), 0));
  EXPECT_EQ(SQL_SUCCESS, SQLFreeHandle(SQL_HANDLE_DBC, second));
}

TEST_P(OdbcContract, AConnectionStringThatLeadsNowhereFails)
{
  SQLHDBC connected = connection;
  ASSERT_EQ(SQL_SUCCESS, SQLAllocHandle(SQL_HANDLE_DBC, environment, &connection));
  wchar_t nowhere[] = L"DRIVER={Kestrel ODBC Driver};UID=;PWD=;DBQ=C:\\KestrelContract\\none.mdb";
  wchar_t empty[] = L"";
  EXPECT_EQ(SQL_ERROR, Connect(nowhere));
  EXPECT_EQ(SQL_ERROR, Connect(empty));
  EXPECT_EQ(SQL_ERROR, SQLDisconnect(connection));
  EXPECT_EQ(SQL_SUCCESS, SQLFreeHandle(SQL_HANDLE_DBC, connection));
  connection = connected;
}

TEST_P(OdbcContract, AConnectionIsDisconnectedOnce)
{
  EXPECT_EQ(SQL_SUCCESS, SQLDisconnect(connection));
  EXPECT_EQ(SQL_ERROR, SQLDisconnect(connection));
}

TEST_P(OdbcContract, WhatIsInUseIsNotFreed)
{
  EXPECT_EQ(SQL_ERROR, SQLFreeHandle(SQL_HANDLE_ENV, environment));
  EXPECT_EQ(SQL_ERROR, SQLFreeHandle(SQL_HANDLE_DBC, connection));
  EXPECT_EQ(SQL_SUCCESS, Execute(SelectParts));
  AllowMisuse();
}

TEST_P(OdbcContract, AStatementNeedsAConnectionThatIsConnected)
{
  SQLHSTMT none = connection;
  ASSERT_EQ(SQL_SUCCESS, SQLDisconnect(connection));
  EXPECT_EQ(SQL_ERROR, SQLAllocHandle(SQL_HANDLE_STMT, connection, &none));
  EXPECT_EQ(nullptr, none);
  AllowMisuse();
}

TEST_P(OdbcContract, AnUpdateTellsWhetherItTouchedARow)
{
  EXPECT_EQ(SQL_SUCCESS, Execute(UpdateOfARow));
  EXPECT_EQ(SQL_NO_DATA, Execute(UpdateOfNoRow));
  EXPECT_EQ(SQL_NO_DATA, Execute(DeleteOfNoRow));
}

TEST_P(OdbcContract, AMissingTableIsAnErrorAndHasNothingToFetch)
{
  EXPECT_EQ(SQL_ERROR, Execute(SelectMissing));
  EXPECT_EQ(SQL_ERROR, SQLFetch(statement));
  EXPECT_EQ(SQL_SUCCESS, Execute(SelectParts));
}

TEST_P(OdbcContract, AStatementWithoutRowsHasNothingToFetch)
{
  ASSERT_EQ(SQL_SUCCESS, Execute(UpdateOfARow));
  EXPECT_EQ(SQL_ERROR, SQLFetch(statement));
  EXPECT_EQ(SQL_ERROR, SQLCloseCursor(statement));
}

TEST_P(OdbcContract, RowsAreFetchedUntilThereAreNoMore)
{
  FetchedText name;
  ASSERT_EQ(SQL_SUCCESS, Execute(SelectParts));
  ASSERT_EQ(SQL_SUCCESS, BindText(2, name));
  EXPECT_EQ(SQL_SUCCESS, SQLFetch(statement));
  EXPECT_STREQ(L"Bolt", name.text);
  EXPECT_EQ(8, name.bytes);
  EXPECT_EQ(Poison, name.text[5]);
  EXPECT_EQ(SQL_SUCCESS, SQLFetch(statement));
  EXPECT_EQ(SQL_SUCCESS, SQLFetch(statement));
  EXPECT_EQ(SQL_NO_DATA, SQLFetch(statement));
  EXPECT_EQ(SQL_NO_DATA, SQLFetch(statement));
}

TEST_P(OdbcContract, ANullWritesTheLengthWordAlone)
{
  FetchedText name;
  ASSERT_EQ(SQL_SUCCESS, Execute(SelectParts));
  ASSERT_EQ(SQL_SUCCESS, BindText(2, name));
  (void)SQLFetch(statement);
  EXPECT_EQ(SQL_SUCCESS, SQLFetch(statement));
  EXPECT_EQ(SQL_NULL_DATA, name.bytes);
  EXPECT_STREQ(L"Bolt", name.text);
}

TEST_P(OdbcContract, TextBeyondAsciiComesAsItIs)
{
  FetchedText name;
  ASSERT_EQ(SQL_SUCCESS, Execute(SelectParts));
  ASSERT_EQ(SQL_SUCCESS, BindText(2, name));
  for (int row = 0; row < 3; ++row)
    EXPECT_EQ(SQL_SUCCESS, SQLFetch(statement));
  EXPECT_STREQ(L"\x00E9\x20AC\xD83D\xDE00", name.text);
  EXPECT_EQ(8, name.bytes);
}

TEST_P(OdbcContract, ATextThatIsTooLongIsCutWithATerminator)
{
  FetchedText name;
  ASSERT_EQ(SQL_SUCCESS, Execute(SelectParts));
  ASSERT_EQ(SQL_SUCCESS, BindText(2, name, 4 * sizeof(wchar_t)));
  EXPECT_EQ(SQL_SUCCESS_WITH_INFO, SQLFetch(statement));
  EXPECT_STREQ(L"Bol", name.text);
  EXPECT_EQ(8, name.bytes);
  EXPECT_EQ(Poison, name.text[4]);
}

TEST_P(OdbcContract, ATextOfTheExactSizeFits)
{
  FetchedText name;
  ASSERT_EQ(SQL_SUCCESS, Execute(SelectParts));
  ASSERT_EQ(SQL_SUCCESS, BindText(2, name, 5 * sizeof(wchar_t)));
  EXPECT_EQ(SQL_SUCCESS, SQLFetch(statement));
  EXPECT_STREQ(L"Bolt", name.text);
}

TEST_P(OdbcContract, ANumberIgnoresTheLengthOfItsBuffer)
{
  SQLINTEGER id = 0;
  SQLLEN bytes = LengthPoison;
  ASSERT_EQ(SQL_SUCCESS, Execute(SelectParts));
  ASSERT_EQ(SQL_SUCCESS, SQLBindCol(statement, 1, SQL_C_LONG, &id, 0, &bytes));
  EXPECT_EQ(SQL_SUCCESS, SQLFetch(statement));
  EXPECT_EQ(1, id);
  EXPECT_EQ(4, bytes);
}

TEST_P(OdbcContract, ABitIsOneByte)
{
  unsigned char flags[2] = {0xBD, 0xBD};
  SQLLEN bytes = LengthPoison;
  ASSERT_EQ(SQL_SUCCESS, Execute(SelectParts));
  ASSERT_EQ(SQL_SUCCESS, SQLBindCol(statement, 3, SQL_C_BIT, flags, 1, &bytes));
  EXPECT_EQ(SQL_SUCCESS, SQLFetch(statement));
  EXPECT_EQ(1, flags[0]);
  EXPECT_EQ(0xBD, flags[1]);
  EXPECT_EQ(1, bytes);
}

TEST_P(OdbcContract, AnUnknownTypeIsNotBoundAndHarmsNothing)
{
  FetchedText refused;
  FetchedText name;
  ASSERT_EQ(SQL_SUCCESS, Execute(SelectParts));
  EXPECT_EQ(SQL_ERROR,
            SQLBindCol(statement, 1, 0, refused.text, sizeof(refused.text), &refused.bytes));
  ASSERT_EQ(SQL_SUCCESS, BindText(2, name));
  EXPECT_EQ(SQL_SUCCESS, SQLFetch(statement));
  EXPECT_STREQ(L"Bolt", name.text);
  EXPECT_EQ(Poison, refused.text[0]);
  EXPECT_EQ(LengthPoison, refused.bytes);
}

TEST_P(OdbcContract, BindingsMayShareALengthWord)
{
  FetchedText name;
  SQLINTEGER id = 0;
  ASSERT_EQ(SQL_SUCCESS, Execute(SelectParts));
  ASSERT_EQ(SQL_SUCCESS, SQLBindCol(statement, 1, SQL_C_LONG, &id, 4, &name.bytes));
  ASSERT_EQ(SQL_SUCCESS, BindText(2, name));
  EXPECT_EQ(SQL_SUCCESS, SQLFetch(statement));
  EXPECT_EQ(1, id);
  EXPECT_STREQ(L"Bolt", name.text);
}

TEST_P(OdbcContract, AnOpenResultIsClosedBeforeTheNextStatement)
{
  ASSERT_EQ(SQL_SUCCESS, Execute(SelectParts));
  EXPECT_EQ(SQL_ERROR, Execute(SelectParts));
  EXPECT_EQ(SQL_SUCCESS, SQLCloseCursor(statement));
  EXPECT_EQ(SQL_ERROR, SQLCloseCursor(statement));
  EXPECT_EQ(SQL_SUCCESS, Execute(SelectParts));
}

TEST_P(OdbcContract, AStatementIsFreedWithItsResultOpen)
{
  ASSERT_EQ(SQL_SUCCESS, Execute(SelectParts));
  EXPECT_EQ(SQL_SUCCESS, SQLFetch(statement));
  EXPECT_EQ(SQL_SUCCESS, SQLFreeHandle(SQL_HANDLE_STMT, statement));
}

TEST_P(OdbcContract, TheCatalogueTellsTheColumnsOfATable)
{
  FetchedText table;
  FetchedText name;
  SQLSMALLINT type = 0;
  SQLINTEGER size = 0;
  SQLSMALLINT nullable = -1;
  SQLLEN bytes = 0;
  ASSERT_EQ(SQL_SUCCESS, Columns(L"Parts"));
  ASSERT_EQ(SQL_SUCCESS, BindText(3, table));
  ASSERT_EQ(SQL_SUCCESS, BindText(4, name));
  ASSERT_EQ(SQL_SUCCESS, SQLBindCol(statement, 5, SQL_C_SSHORT, &type, 2, &bytes));
  ASSERT_EQ(SQL_SUCCESS, SQLBindCol(statement, 7, SQL_C_SLONG, &size, 4, &bytes));
  ASSERT_EQ(SQL_SUCCESS, SQLBindCol(statement, 11, SQL_C_SSHORT, &nullable, 2, &bytes));
  ASSERT_EQ(SQL_SUCCESS, SQLFetch(statement));
  EXPECT_STREQ(L"Parts", table.text);
  EXPECT_EQ(10, table.bytes);
  EXPECT_STREQ(L"Id", name.text);
  EXPECT_EQ(SQL_INTEGER, type);
  EXPECT_EQ(10, size);
  EXPECT_EQ(SQL_NO_NULLS, nullable);
  ASSERT_EQ(SQL_SUCCESS, SQLFetch(statement));
  EXPECT_STREQ(L"Name", name.text);
  EXPECT_EQ(SQL_WVARCHAR, type);
  EXPECT_EQ(20, size);
  EXPECT_EQ(SQL_NULLABLE, nullable);
  ASSERT_EQ(SQL_SUCCESS, SQLFetch(statement));
  EXPECT_EQ(SQL_BIT, type);
  EXPECT_EQ(SQL_NO_DATA, SQLFetch(statement));
  EXPECT_EQ(SQL_SUCCESS, SQLCloseCursor(statement));
}

TEST_P(OdbcContract, TheNameOfATableIsAPatternWithoutRegardToCase)
{
  for (const wchar_t* pattern : {L"Parts", L"PARTS", L"P_rts", L"P%"}) {
    ASSERT_EQ(SQL_SUCCESS, Columns(pattern));
    EXPECT_EQ(SQL_SUCCESS, SQLFetch(statement)) << testing::PrintToString(pattern);
    EXPECT_EQ(SQL_SUCCESS, SQLCloseCursor(statement));
  }
}

TEST_P(OdbcContract, AnUnknownTableHasNoColumns)
{
  for (const wchar_t* pattern : {L"Missing", L"Part", L""}) {
    ASSERT_EQ(SQL_SUCCESS, Columns(pattern));
    EXPECT_EQ(SQL_NO_DATA, SQLFetch(statement)) << testing::PrintToString(pattern);
    EXPECT_EQ(SQL_SUCCESS, SQLCloseCursor(statement));
  }
}

TEST_P(OdbcContract, TheCatalogueTellsTheTables)
{
  FetchedText table;
  FetchedText type;
  ASSERT_EQ(SQL_SUCCESS, Tables());
  ASSERT_EQ(SQL_SUCCESS, BindText(3, table));
  ASSERT_EQ(SQL_SUCCESS, BindText(4, type));
  EXPECT_EQ(SQL_SUCCESS, SQLFetch(statement));
  EXPECT_STREQ(L"Parts", table.text);
  EXPECT_STREQ(L"TABLE", type.text);
  EXPECT_EQ(SQL_NO_DATA, SQLFetch(statement));
}
