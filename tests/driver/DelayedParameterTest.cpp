// Values that a program hands over after it has asked for the statement to be executed.

#include "tests/driver/ConformanceTest.h"

namespace {

class DelayedParameter : public ConformanceTest
{
protected:
  void SetUp() override
  {
    ConformanceTest::SetUp();
    Make("CREATE TABLE [T] ([Id] LONG, [Name] MEMO, [B] LONGBINARY, [D] DATETIME)");
  }

  // Binds a value that is handed over later; its token is its number.
  void Delay(SQLUSMALLINT number, SQLSMALLINT cType, SQLSMALLINT sqlType)
  {
    EXPECT_EQ(calls.BindParameter(stmt, number, SQL_PARAM_INPUT, cType, sqlType, 0, 0,
                                  reinterpret_cast<SQLPOINTER>(SQLULEN{number}), 0, &atExecution),
              SQL_SUCCESS);
  }

  // The number of the parameter that is asked for, 0 if the statement has run, or -1 if it failed.
  int Ask()
  {
    SQLPOINTER token = nullptr;
    const SQLRETURN result = calls.ParamData(stmt, &token);
    if (result == SQL_NEED_DATA)
      return static_cast<int>(reinterpret_cast<intptr_t>(token));
    return result == SQL_SUCCESS ? 0 : -1;
  }

  SQLRETURN Put(TextArgument text) { return calls.PutData(stmt, text.Data(), text.Bytes()); }

  SQLLEN atExecution = SQL_DATA_AT_EXEC;
};

}  // namespace

TEST_P(DelayedParameter, ComesInPieces)
{
  Delay(1, calls.TextType(), SQL_WVARCHAR);
  EXPECT_EQ(session.Run("INSERT INTO [T] ([Name]) VALUES (?)"), SQL_NEED_DATA);
  EXPECT_EQ(Ask(), 1);
  EXPECT_EQ(Put(calls.Argument("ab")), SQL_SUCCESS);
  EXPECT_EQ(Put(calls.Argument("cä")), SQL_SUCCESS);
  EXPECT_EQ(Ask(), 0);
  EXPECT_EQ(session.Select("SELECT [Name] FROM [T]"), Lines{"abcä"});
}

TEST_P(DelayedParameter, SeveralAreAskedForInTheirOrderAmongOthers)
{
  SQLINTEGER id = 7;
  calls.BindParameter(stmt, 2, SQL_PARAM_INPUT, SQL_C_LONG, SQL_INTEGER, 0, 0, &id, 0, nullptr);
  Delay(1, calls.TextType(), SQL_WVARCHAR);
  Delay(3, SQL_C_BINARY, SQL_LONGVARBINARY);
  atExecution = SQL_LEN_DATA_AT_EXEC(2);
  unsigned char bytes[] = {0, 255};
  EXPECT_EQ(session.Run("INSERT INTO [T] ([Name],[Id],[B]) VALUES (?,?,?)"), SQL_NEED_DATA);
  EXPECT_EQ(Ask(), 1);
  EXPECT_EQ(Put(calls.Argument("x")), SQL_SUCCESS);
  EXPECT_EQ(Ask(), 3);
  EXPECT_EQ(calls.PutData(stmt, bytes, sizeof(bytes)), SQL_SUCCESS);
  EXPECT_EQ(Ask(), 0);
  EXPECT_EQ(session.Select("SELECT [Name],[Id],HEX([B]) FROM [T]"), Lines{"x|7|00FF"});
}

TEST_P(DelayedParameter, OfAFixedSizeComesWhole)
{
  Delay(1, SQL_C_SLONG, SQL_INTEGER);
  Delay(2, SQL_C_TYPE_TIMESTAMP, SQL_TYPE_TIMESTAMP);
  SQLINTEGER id = -5;
  SQL_TIMESTAMP_STRUCT moment = {2007, 3, 9, 0, 0, 0, 0};
  EXPECT_EQ(session.Run("INSERT INTO [T] ([Id],[D]) VALUES (?,?)"), SQL_NEED_DATA);
  EXPECT_EQ(Ask(), 1);
  EXPECT_EQ(calls.PutData(stmt, &id, 0), SQL_SUCCESS);
  EXPECT_EQ(calls.PutData(stmt, &id, 0), SQL_ERROR);
  EXPECT_EQ(session.State(), "HY020");
  EXPECT_EQ(Ask(), 2);
  EXPECT_EQ(calls.PutData(stmt, &moment, sizeof(moment)), SQL_SUCCESS);
  EXPECT_EQ(Ask(), 0);
  EXPECT_EQ(session.Select("SELECT * FROM [T]"), Lines{"-5|NULL|NULL|2007-03-09 00:00:00"});
}

TEST_P(DelayedParameter, OfEachFixedTypeTakesAsManyBytesAsTheTypeHas)
{
  const SQLSMALLINT types[] = {SQL_C_BIT,   SQL_C_TINYINT, SQL_C_STINYINT, SQL_C_UTINYINT,
                               SQL_C_SHORT, SQL_C_SSHORT,  SQL_C_USHORT,   SQL_C_LONG,
                               SQL_C_ULONG, SQL_C_SBIGINT, SQL_C_UBIGINT};
  // Behind a value of one byte stands what belongs to no value.
  unsigned char one[8] = {1, 0, 0, 0, 0, 0, 0, 0};
  for (const SQLSMALLINT type : types) {
    Delay(1, type, SQL_BIGINT);
    EXPECT_EQ(session.Run("SELECT ?"), SQL_NEED_DATA) << type;
    EXPECT_EQ(Ask(), 1);
    EXPECT_EQ(calls.PutData(stmt, one, 0), SQL_SUCCESS) << type;
    EXPECT_EQ(Ask(), 0);
    EXPECT_EQ(session.Rest(), Lines{"1"}) << type;
  }
}

TEST_P(DelayedParameter, OfARealOrADateTakesItsWholeStructure)
{
  double real = 2.5;
  SQL_DATE_STRUCT date = {2007, 3, 9};
  SQL_TIME_STRUCT time = {13, 14, 15};
  float single = 0.25F;
  SQL_TIMESTAMP_STRUCT moment = {2007, 3, 9, 13, 14, 15, 0};
  SQL_NUMERIC_STRUCT decimal = {5, 1, 1, {25}};
  const std::tuple<SQLSMALLINT, SQLSMALLINT, SQLPOINTER, const char*> values[] = {
      {SQL_C_DOUBLE, SQL_DOUBLE, &real, "2.5"},
      {SQL_C_FLOAT, SQL_REAL, &single, "0.25"},
      {SQL_C_TIMESTAMP, SQL_TYPE_TIMESTAMP, &moment, "2007-03-09 13:14:15"},
      {SQL_C_TYPE_DATE, SQL_TYPE_TIMESTAMP, &date, "2007-03-09 00:00:00"},
      {SQL_C_DATE, SQL_TYPE_TIMESTAMP, &date, "2007-03-09 00:00:00"},
      {SQL_C_TYPE_TIME, SQL_TYPE_TIMESTAMP, &time, "1899-12-30 13:14:15"},
      {SQL_C_TIME, SQL_TYPE_TIMESTAMP, &time, "1899-12-30 13:14:15"},
      {SQL_C_NUMERIC, SQL_WVARCHAR, &decimal, "2.5"}};
  for (const auto& [cType, sqlType, value, expected] : values) {
    Delay(1, cType, sqlType);
    EXPECT_EQ(session.Run("SELECT ?"), SQL_NEED_DATA) << cType;
    EXPECT_EQ(Ask(), 1);
    EXPECT_EQ(calls.PutData(stmt, value, 0), SQL_SUCCESS) << cType;
    EXPECT_EQ(Ask(), 0) << cType << " " << session.State();
    EXPECT_EQ(session.Rest(), Lines{expected}) << cType;
  }
}

TEST_P(DelayedParameter, MayBeNullOrEmpty)
{
  Delay(1, calls.TextType(), SQL_WVARCHAR);
  EXPECT_EQ(session.Run("INSERT INTO [T] ([Id],[Name]) VALUES (1,?)"), SQL_NEED_DATA);
  EXPECT_EQ(Ask(), 1);
  EXPECT_EQ(calls.PutData(stmt, nullptr, SQL_NULL_DATA), SQL_SUCCESS);
  EXPECT_EQ(Put(calls.Argument("x")), SQL_ERROR);
  EXPECT_EQ(session.State(), "HY020");
  EXPECT_EQ(Ask(), 0);
  EXPECT_EQ(session.Run("INSERT INTO [T] ([Id],[Name]) VALUES (2,?)"), SQL_NEED_DATA);
  EXPECT_EQ(Ask(), 1);
  EXPECT_EQ(Ask(), 0);
  EXPECT_EQ(session.Run("INSERT INTO [T] ([Id],[Name]) VALUES (3,?)"), SQL_NEED_DATA);
  EXPECT_EQ(Ask(), 1);
  EXPECT_EQ(calls.PutData(stmt, nullptr, 0), SQL_SUCCESS);
  EXPECT_EQ(Ask(), 0);
  EXPECT_EQ(session.Select("SELECT [Name] FROM [T] ORDER BY [Id]"), (Lines{"NULL", "", ""}));
}

TEST_P(DelayedParameter, TextMayEndWithATerminator)
{
  Delay(1, calls.TextType(), SQL_WVARCHAR);
  TextArgument text = calls.Argument("abc");
  EXPECT_EQ(session.Run("INSERT INTO [T] ([Name]) VALUES (?)"), SQL_NEED_DATA);
  EXPECT_EQ(Ask(), 1);
  EXPECT_EQ(calls.PutData(stmt, text.Data(), SQL_NTS), SQL_SUCCESS);
  EXPECT_EQ(Ask(), 0);
  EXPECT_EQ(session.Select("SELECT [Name] FROM [T]"), Lines{"abc"});
}

TEST_P(DelayedParameter, TypeMayBeThatOfTheColumn)
{
  Delay(1, SQL_C_DEFAULT, SQL_INTEGER);
  SQLINTEGER id = 12;
  EXPECT_EQ(session.Run("INSERT INTO [T] ([Id]) VALUES (?)"), SQL_NEED_DATA);
  EXPECT_EQ(Ask(), 1);
  EXPECT_EQ(calls.PutData(stmt, &id, 0), SQL_SUCCESS);
  EXPECT_EQ(Ask(), 0);
  EXPECT_EQ(session.Select("SELECT [Id] FROM [T]"), Lines{"12"});
}

TEST_P(DelayedParameter, IsRefusedWhenNoneIsWaitedFor)
{
  SQLINTEGER id = 1;
  SQLPOINTER token = nullptr;
  EXPECT_EQ(calls.ParamData(stmt, &token), SQL_ERROR);
  EXPECT_EQ(session.State(), "HY010");
  EXPECT_EQ(calls.PutData(stmt, &id, 0), SQL_ERROR);
  EXPECT_EQ(session.State(), "HY010");
  Delay(1, SQL_C_SLONG, SQL_INTEGER);
  EXPECT_EQ(session.Run("SELECT ?"), SQL_NEED_DATA);
  EXPECT_EQ(calls.PutData(stmt, &id, 0), SQL_ERROR);  // it was not asked for yet
  EXPECT_EQ(session.State(), "HY010");
}

TEST_P(DelayedParameter, BadPiecesAreRefused)
{
  Delay(1, calls.TextType(), SQL_WVARCHAR);
  EXPECT_EQ(session.Run("INSERT INTO [T] ([Name]) VALUES (?)"), SQL_NEED_DATA);
  EXPECT_EQ(calls.ParamData(stmt, nullptr), SQL_NEED_DATA);
  EXPECT_EQ(calls.PutData(stmt, nullptr, 4), SQL_ERROR);
  EXPECT_EQ(session.State(), "HY009");
  TextArgument text = calls.Argument("abc");
  EXPECT_EQ(calls.PutData(stmt, text.Data(), -7), SQL_ERROR);
  EXPECT_EQ(session.State(), "HY090");
  EXPECT_EQ(Put(calls.Argument("good")), SQL_SUCCESS);
  EXPECT_EQ(Ask(), 0);
  EXPECT_EQ(session.Select("SELECT [Name] FROM [T]"), Lines{"good"});
}

TEST_P(DelayedParameter, CancelGivesTheStatementUp)
{
  Delay(1, calls.TextType(), SQL_WVARCHAR);
  EXPECT_EQ(session.Run("INSERT INTO [T] ([Name]) VALUES (?)"), SQL_NEED_DATA);
  EXPECT_EQ(Ask(), 1);
  EXPECT_EQ(calls.Cancel(stmt), SQL_SUCCESS);
  EXPECT_EQ(Put(calls.Argument("x")), SQL_ERROR);
  EXPECT_EQ(session.State(), "HY010");
  EXPECT_EQ(session.Select("SELECT COUNT(*) FROM [T]"), Lines{"0"});
}

INSTANTIATE_TEST_SUITE_P(Each, DelayedParameter, StraightWays(), WayName);
