#include "tests/driver/ConformanceTest.h"

namespace {

class Parameter : public ConformanceTest
{
protected:
  void SetUp() override
  {
    ConformanceTest::SetUp();
    Make("CREATE TABLE [T] ([Id] LONG PRIMARY KEY, [Name] TEXT(20), [Real] DOUBLE, [D] DATETIME)");
  }

  SQLRETURN Bind(SQLUSMALLINT number, SQLSMALLINT cType, SQLSMALLINT sqlType, SQLPOINTER value,
                 SQLLEN* length)
  {
    return calls.BindParameter(stmt, number, SQL_PARAM_INPUT, cType, sqlType, 20, 0, value, 0,
                               length);
  }

  void BindText(SQLUSMALLINT number, TextArgument& text, SQLLEN* length)
  {
    EXPECT_EQ(Bind(number, calls.TextType(), SQL_WVARCHAR, text.Data(), length), SQL_SUCCESS);
  }
};

}  // namespace

TEST_P(Parameter, NumbersTextAndMomentsAreStored)
{
  SQLINTEGER id = 7;
  SQLDOUBLE real = 2.5;
  TextArgument name = calls.Argument("it's ä");
  TIMESTAMP_STRUCT moment = {2007, 3, 9, 13, 14, 15, 0};
  EXPECT_EQ(Bind(1, SQL_C_LONG, SQL_INTEGER, &id, nullptr), SQL_SUCCESS);
  BindText(2, name, nullptr);
  EXPECT_EQ(Bind(3, SQL_C_DOUBLE, SQL_DOUBLE, &real, nullptr), SQL_SUCCESS);
  EXPECT_EQ(Bind(4, SQL_C_TYPE_TIMESTAMP, SQL_TYPE_TIMESTAMP, &moment, nullptr), SQL_SUCCESS);
  Make("INSERT INTO [T] VALUES (?,?,?,?)");
  session.Reset();
  EXPECT_EQ(session.Select("SELECT * FROM [T]"), Lines{"7|it's ä|2.5|2007-03-09 13:14:15"});
}

TEST_P(Parameter, ValuesAreReadWhenTheStatementIsExecuted)
{
  SQLINTEGER id = 0;
  Bind(1, SQL_C_LONG, SQL_INTEGER, &id, nullptr);
  ASSERT_EQ(calls.Prepare(stmt, "INSERT INTO [T] ([Id]) VALUES (?)"), SQL_SUCCESS);
  for (id = 1; id <= 3; ++id)
    EXPECT_EQ(calls.Execute(stmt), SQL_SUCCESS);
  session.Reset();
  EXPECT_EQ(session.Select("SELECT [Id] FROM [T]"), (Lines{"1", "2", "3"}));
}

TEST_P(Parameter, NullIndicatorStoresNull)
{
  SQLINTEGER id = 1;
  SQLLEN null = SQL_NULL_DATA;
  TextArgument name = calls.Argument("unused");
  Bind(1, SQL_C_LONG, SQL_INTEGER, &id, nullptr);
  BindText(2, name, &null);
  Make("INSERT INTO [T] ([Id],[Name]) VALUES (?,?)");
  session.Reset();
  EXPECT_EQ(session.Select("SELECT [Id],[Name] FROM [T]"), Lines{"1|NULL"});
}

TEST_P(Parameter, TextMayBeCountedOrTerminated)
{
  SQLINTEGER id = 1;
  TextArgument name = calls.Argument("abcdef");
  SQLLEN length = calls.Argument("abc").Bytes();
  Bind(1, SQL_C_LONG, SQL_INTEGER, &id, nullptr);
  BindText(2, name, &length);
  Make("INSERT INTO [T] ([Id],[Name]) VALUES (?,?)");
  id = 2;
  length = SQL_NTS;
  Make("INSERT INTO [T] ([Id],[Name]) VALUES (?,?)");
  session.Reset();
  EXPECT_EQ(session.Select("SELECT [Name] FROM [T] ORDER BY [Id]"), (Lines{"abc", "abcdef"}));
}

TEST_P(Parameter, TextStaysTextInATextColumn)
{
  SQLINTEGER id = 1;
  TextArgument name = calls.Argument("007");
  Bind(1, SQL_C_LONG, SQL_INTEGER, &id, nullptr);
  BindText(2, name, nullptr);
  Make("INSERT INTO [T] ([Id],[Name]) VALUES (?,?)");
  Make("SELECT [Name] FROM [T] WHERE [Id]=? AND [Name]=?");
  EXPECT_EQ(session.Rest(), Lines{"007"});
}

TEST_P(Parameter, TextMatchesWithoutRegardToCase)
{
  Make("INSERT INTO [T] ([Id],[Name]) VALUES (1,'Bolt')");
  TextArgument name = calls.Argument("BOLT");
  BindText(1, name, nullptr);
  Make("SELECT [Id] FROM [T] WHERE [Name]=?");
  EXPECT_EQ(session.Rest(), Lines{"1"});
}

TEST_P(Parameter, UpdateThatTouchesNoRowGivesNoData)
{
  SQLINTEGER id = 9;
  Bind(1, SQL_C_LONG, SQL_INTEGER, &id, nullptr);
  EXPECT_EQ(session.Run("UPDATE [T] SET [Name]='x' WHERE [Id]=?"), SQL_NO_DATA);
}

TEST_P(Parameter, MissingBindingIsAnError)
{
  EXPECT_EQ(session.Run("SELECT ?"), SQL_ERROR);
  EXPECT_EQ(session.State(), "07002");
}

TEST_P(Parameter, NumberIsCounted)
{
  SQLSMALLINT count = -1;
  ASSERT_EQ(calls.Prepare(stmt, "SELECT * FROM [T] WHERE [Id]=? AND [Name]=? AND '?'<>''"),
            SQL_SUCCESS);
  EXPECT_EQ(calls.NumParams(stmt, &count), SQL_SUCCESS);
  EXPECT_EQ(count, 2);
}

TEST_P(Parameter, BytesAreStored)
{
  unsigned char bytes[] = {0, 1, 0xFF, 0};
  SQLLEN length = sizeof(bytes);
  Make("CREATE TABLE [B] ([A] LONGBINARY)");
  EXPECT_EQ(Bind(1, SQL_C_BINARY, SQL_LONGVARBINARY, bytes, &length), SQL_SUCCESS);
  Make("INSERT INTO [B] VALUES (?)");
  session.Reset();
  EXPECT_EQ(session.Select("SELECT HEX([A]) FROM [B]"), Lines{"0001FF00"});
  EXPECT_EQ(session.Select("SELECT [A] FROM [B]"), Lines{"0001FF00"});
}

TEST_P(Parameter, BadTypeIsAnErrorAndHarmsNothing)
{
  SQLINTEGER id = 1;
  EXPECT_EQ(Bind(1, SQL_C_LONG, SQL_INTEGER, &id, nullptr), SQL_SUCCESS);
  EXPECT_EQ(Bind(1, 4711, SQL_INTEGER, &id, nullptr), SQL_ERROR);
  EXPECT_EQ(session.State(), "HY003");
  Make("INSERT INTO [T] ([Id]) VALUES (?)");
}

INSTANTIATE_TEST_SUITE_P(Each, Parameter, AllWays(), WayName);
