#include <cstring>

#include "tests/driver/ConformanceTest.h"

namespace {

const SQLLEN Untouched = -77;
const SQLSMALLINT NoSuchType = 4711;

class Fetch : public ConformanceTest
{
protected:
  template <typename Value>
  SQLRETURN Get(SQLSMALLINT type, Value& value)
  {
    length = Untouched;
    return calls.GetData(stmt, 1, type, &value, 0, &length);
  }

  SQLLEN length = Untouched;
};

class Conversion : public Fetch
{
};

}  // namespace

TEST_P(Fetch, CutTextIsAWarningWithTheWholeLengthAndATerminator)
{
  TextBuffer text = calls.Buffer(4);
  ASSERT_EQ(calls.BindCol(stmt, 1, calls.TextType(), text.Data(), text.Bytes(), &length),
            SQL_SUCCESS);
  Make("SELECT 'abcdef'");
  EXPECT_EQ(calls.Fetch(stmt), SQL_SUCCESS_WITH_INFO);
  EXPECT_EQ(session.State(), "01004");
  EXPECT_EQ(text.Text(), "abc");
  EXPECT_EQ(length, calls.Argument("abcdef").Bytes());
  EXPECT_TRUE(text.IsKeptInside());
}

TEST_P(Fetch, TextThatJustFitsIsNotCut)
{
  TextBuffer text = calls.Buffer(4);
  ASSERT_EQ(calls.BindCol(stmt, 1, calls.TextType(), text.Data(), text.Bytes(), &length),
            SQL_SUCCESS);
  Make("SELECT 'abc'");
  EXPECT_EQ(calls.Fetch(stmt), SQL_SUCCESS);
  EXPECT_EQ(text.Text(), "abc");
}

TEST_P(Fetch, TextThatFitsWithoutItsTerminatorIsCut)
{
  TextBuffer text = calls.Buffer(4);
  calls.BindCol(stmt, 1, calls.TextType(), text.Data(), text.Bytes(), &length);
  Make("SELECT 'abcd'");
  EXPECT_EQ(calls.Fetch(stmt), SQL_SUCCESS_WITH_INFO);
  EXPECT_EQ(text.Text(), "abc");
}

TEST_P(Fetch, EachCutColumnOfARowIsCut)
{
  TextBuffer first = calls.Buffer(2);
  TextBuffer second = calls.Buffer(3);
  calls.BindCol(stmt, 1, calls.TextType(), first.Data(), first.Bytes(), nullptr);
  calls.BindCol(stmt, 2, calls.TextType(), second.Data(), second.Bytes(), nullptr);
  Make("SELECT 'abc','def'");
  EXPECT_EQ(calls.Fetch(stmt), SQL_SUCCESS_WITH_INFO);
  EXPECT_EQ(first.Text() + "," + second.Text(), "a,de");
}

TEST_P(Fetch, BufferOfOneUnitTakesTheTerminator)
{
  TextBuffer text = calls.Buffer(1);
  calls.BindCol(stmt, 1, calls.TextType(), text.Data(), text.Bytes(), &length);
  Make("SELECT 'abc'");
  EXPECT_EQ(calls.Fetch(stmt), SQL_SUCCESS_WITH_INFO);
  EXPECT_EQ(text.Text(), "");
  EXPECT_TRUE(text.IsKeptInside());
}

TEST_P(Fetch, BufferOfNoLengthIsNotWritten)
{
  TextBuffer text = calls.Buffer(4);
  calls.BindCol(stmt, 1, calls.TextType(), text.Data(), 0, &length);
  Make("SELECT 'abc'");
  EXPECT_EQ(calls.Fetch(stmt), SQL_SUCCESS_WITH_INFO);
  EXPECT_TRUE(text.IsUntouched());
  EXPECT_EQ(length, calls.Argument("abc").Bytes());
}

TEST_P(Fetch, WideBufferOfOddLengthIsNotOverrun)
{
  TextBuffer text(true, 4);
  calls.BindCol(stmt, 1, SQL_C_WCHAR, text.Data(), text.Bytes() - 1, &length);
  Make("SELECT 'abcdef'");
  EXPECT_EQ(calls.Fetch(stmt), SQL_SUCCESS_WITH_INFO);
  EXPECT_EQ(text.Text(), "ab");
}

TEST_P(Fetch, NullWritesTheIndicatorAlone)
{
  TextBuffer text = calls.Buffer(4);
  SQLINTEGER number = 12345;
  SQLLEN numberLength = Untouched;
  calls.BindCol(stmt, 1, calls.TextType(), text.Data(), text.Bytes(), &length);
  calls.BindCol(stmt, 2, SQL_C_LONG, &number, 0, &numberLength);
  Make("SELECT NULL,NULL");
  EXPECT_EQ(calls.Fetch(stmt), SQL_SUCCESS);
  EXPECT_EQ(length, SQL_NULL_DATA);
  EXPECT_EQ(numberLength, SQL_NULL_DATA);
  EXPECT_TRUE(text.IsUntouched());
  EXPECT_EQ(number, 12345);
}

TEST_P(Fetch, NullWithoutAnIndicatorIsAnError)
{
  TextBuffer text = calls.Buffer(4);
  calls.BindCol(stmt, 1, calls.TextType(), text.Data(), text.Bytes(), nullptr);
  Make("SELECT NULL");
  EXPECT_EQ(calls.Fetch(stmt), SQL_ERROR);
  EXPECT_EQ(session.State(), "22002");
  EXPECT_TRUE(text.IsUntouched());
}

TEST_P(Fetch, BadTypeInABindingIsAnErrorAndHarmsNothing)
{
  SQLINTEGER number = 0;
  ASSERT_EQ(calls.BindCol(stmt, 1, SQL_C_LONG, &number, 0, &length), SQL_SUCCESS);
  TextBuffer other = calls.Buffer(4);
  EXPECT_EQ(calls.BindCol(stmt, 2, NoSuchType, other.Data(), other.Bytes(), nullptr), SQL_ERROR);
  EXPECT_EQ(session.State(), "HY003");
  EXPECT_EQ(calls.BindCol(stmt, 1, NoSuchType, other.Data(), other.Bytes(), nullptr), SQL_ERROR);
  Make("SELECT 7,'text'");
  EXPECT_EQ(calls.Fetch(stmt), SQL_SUCCESS);
  EXPECT_EQ(number, 7);
  EXPECT_TRUE(other.IsUntouched());
}

TEST_P(Fetch, BadTypeInGetDataIsAnErrorAndHarmsNothing)
{
  MakeRow("SELECT 'text'");
  TextBuffer text = calls.Buffer(9);
  EXPECT_EQ(calls.GetData(stmt, 1, NoSuchType, text.Data(), text.Bytes(), &length), SQL_ERROR);
  EXPECT_EQ(session.State(), "HY003");
  EXPECT_TRUE(text.IsUntouched());
  EXPECT_EQ(session.Field(1), "text");
}

TEST_P(Fetch, ColumnsWithoutABindingAreSkipped)
{
  SQLINTEGER number = 0;
  calls.BindCol(stmt, 3, SQL_C_LONG, &number, 0, &length);
  Make("SELECT 'a','b',7");
  EXPECT_EQ(calls.Fetch(stmt), SQL_SUCCESS);
  EXPECT_EQ(number, 7);
}

TEST_P(Fetch, BindingsStayFromStatementToStatement)
{
  SQLINTEGER number = 0;
  calls.BindCol(stmt, 1, SQL_C_LONG, &number, 0, &length);
  for (const char* sql : {"SELECT 7", "SELECT 8"}) {
    number = 0;
    MakeRow(sql);
    EXPECT_EQ(number, sql[7] - '0');
  }
}

TEST_P(Fetch, UnboundColumnIsLeftAlone)
{
  SQLINTEGER first = 0;
  SQLINTEGER second = 0;
  calls.BindCol(stmt, 1, SQL_C_LONG, &first, 0, nullptr);
  calls.BindCol(stmt, 2, SQL_C_LONG, &second, 0, nullptr);
  EXPECT_EQ(calls.BindCol(stmt, 1, SQL_C_LONG, nullptr, 0, nullptr), SQL_SUCCESS);
  MakeRow("SELECT 7,8");
  EXPECT_EQ(first, 0);
  EXPECT_EQ(second, 8);
  calls.FreeStmt(stmt, SQL_UNBIND);
  MakeRow("SELECT 7,9");
  EXPECT_EQ(second, 8);
}

TEST_P(Fetch, OneLengthWordMayServeAllColumns)
{
  SQLINTEGER number = 0;
  TextBuffer text = calls.Buffer(9);
  calls.BindCol(stmt, 1, SQL_C_LONG, &number, 0, &length);
  calls.BindCol(stmt, 2, calls.TextType(), text.Data(), text.Bytes(), &length);
  MakeRow("SELECT 7,'abc'");
  EXPECT_EQ(length, calls.Argument("abc").Bytes());
  MakeRow("SELECT 7,NULL");
  EXPECT_EQ(length, SQL_NULL_DATA);
}

TEST_P(Fetch, FixedSizesIgnoreTheBufferLength)
{
  SQLINTEGER number = 0;
  SQLDOUBLE real = 0;
  TIMESTAMP_STRUCT moment = {};
  calls.BindCol(stmt, 1, SQL_C_LONG, &number, 1, nullptr);
  calls.BindCol(stmt, 2, SQL_C_DOUBLE, &real, 0, nullptr);
  calls.BindCol(stmt, 3, SQL_C_TYPE_TIMESTAMP, &moment, 3, nullptr);
  MakeRow("SELECT 70000,2.5,'2007-03-09 01:02:03'");
  EXPECT_EQ(number, 70000);
  EXPECT_EQ(real, 2.5);
  EXPECT_EQ(moment.second, 3);
}

TEST_P(Fetch, ScrollsForwardOnly)
{
  Make("SELECT 1 UNION ALL SELECT 2");
  EXPECT_EQ(calls.FetchScroll(stmt, SQL_FETCH_NEXT, 0), SQL_SUCCESS);
  EXPECT_EQ(session.Field(1), "1");
  EXPECT_EQ(calls.FetchScroll(stmt, SQL_FETCH_FIRST, 0), SQL_ERROR);
  EXPECT_EQ(session.State(), "HY106");
  EXPECT_EQ(calls.FetchScroll(stmt, SQL_FETCH_NEXT, 0), SQL_SUCCESS);
  EXPECT_EQ(session.Field(1), "2");
}

TEST_P(Fetch, FetchedRowsAndTheirStatusAreTold)
{
  SQLULEN rows = 99;
  SQLUSMALLINT status = 99;
  ASSERT_EQ(
      calls.SetStatementNumber(stmt, SQL_ATTR_ROWS_FETCHED_PTR, reinterpret_cast<SQLULEN>(&rows)),
      SQL_SUCCESS);
  ASSERT_EQ(
      calls.SetStatementNumber(stmt, SQL_ATTR_ROW_STATUS_PTR, reinterpret_cast<SQLULEN>(&status)),
      SQL_SUCCESS);
  MakeRow("SELECT 1");
  EXPECT_EQ(rows, 1U);
  EXPECT_EQ(status, SQL_ROW_SUCCESS);
  EXPECT_EQ(calls.Fetch(stmt), SQL_NO_DATA);
  EXPECT_EQ(rows, 0U);
}

TEST_P(Fetch, TextComesInPieces)
{
  MakeRow("SELECT 'abcdefgh'");
  const SQLLEN unit = calls.IsWide() ? 2 : 1;
  const struct
  {
    SQLRETURN result;
    const char* text;
    SQLLEN rest;
  } pieces[] = {
      {SQL_SUCCESS_WITH_INFO, "abc", 8}, {SQL_SUCCESS_WITH_INFO, "def", 5}, {SQL_SUCCESS, "gh", 2}};
  for (const auto& piece : pieces) {
    TextBuffer text = calls.Buffer(4);
    EXPECT_EQ(calls.GetData(stmt, 1, calls.TextType(), text.Data(), text.Bytes(), &length),
              piece.result);
    EXPECT_EQ(text.Text(), piece.text);
    EXPECT_EQ(length, piece.rest * unit);
  }
  TextBuffer text = calls.Buffer(4);
  EXPECT_EQ(calls.GetData(stmt, 1, calls.TextType(), text.Data(), text.Bytes(), &length),
            SQL_NO_DATA);
}

TEST_P(Fetch, LengthMayBeAskedBeforeTheText)
{
  MakeRow("SELECT 'abc'");
  TextBuffer text = calls.Buffer(4);
  EXPECT_EQ(calls.GetData(stmt, 1, calls.TextType(), text.Data(), 0, &length),
            SQL_SUCCESS_WITH_INFO);
  EXPECT_EQ(length, calls.Argument("abc").Bytes());
  EXPECT_EQ(session.Field(1), "abc");
}

TEST_P(Fetch, LongTextComesWhole)
{
  Make("CREATE TABLE [T] ([A] MEMO)");
  std::string text;
  while (text.size() < 100000)
    text += "A line of some length, number " + std::to_string(text.size()) + "\r\n";
  Make("INSERT INTO [T] VALUES ('" + text + "')");
  EXPECT_EQ(session.Select("SELECT [A] FROM [T]"), Lines{text});
}

TEST_P(Fetch, BinaryComesInPieces)
{
  MakeRow("SELECT x'0102030405'");
  unsigned char bytes[3] = {};
  EXPECT_EQ(calls.GetData(stmt, 1, SQL_C_BINARY, bytes, sizeof(bytes), &length),
            SQL_SUCCESS_WITH_INFO);
  EXPECT_EQ(length, 5);
  EXPECT_EQ(std::memcmp(bytes, "\1\2\3", 3), 0);
  EXPECT_EQ(calls.GetData(stmt, 1, SQL_C_BINARY, bytes, sizeof(bytes), &length), SQL_SUCCESS);
  EXPECT_EQ(length, 2);
  EXPECT_EQ(std::memcmp(bytes, "\4\5\3", 3), 0);
  EXPECT_EQ(calls.GetData(stmt, 1, SQL_C_BINARY, bytes, sizeof(bytes), &length), SQL_NO_DATA);
}

TEST_P(Fetch, GetDataKnowsNoColumnBeyondTheLast)
{
  MakeRow("SELECT 1");
  SQLINTEGER number = 5;
  EXPECT_EQ(calls.GetData(stmt, 2, SQL_C_LONG, &number, 0, &length), SQL_ERROR);
  EXPECT_EQ(session.State(), "07009");
  EXPECT_EQ(number, 5);
}

TEST_P(Fetch, GetDataNeedsARow)
{
  Make("SELECT 1");
  SQLINTEGER number = 5;
  EXPECT_EQ(Get(SQL_C_LONG, number), SQL_ERROR);
  EXPECT_EQ(calls.Fetch(stmt), SQL_SUCCESS);
  EXPECT_EQ(calls.Fetch(stmt), SQL_NO_DATA);
  EXPECT_EQ(Get(SQL_C_LONG, number), SQL_ERROR);
  EXPECT_EQ(number, 5);
}

TEST_P(Conversion, NumbersFitEveryNumberType)
{
  MakeRow("SELECT 42");
  SQLSCHAR tiny = 0;
  SQLSMALLINT small = 0;
  SQLINTEGER number = 0;
  SQLBIGINT big = 0;
  SQLREAL real = 0;
  SQLDOUBLE twice = 0;
  EXPECT_EQ(Get(SQL_C_STINYINT, tiny), SQL_SUCCESS);
  EXPECT_EQ(length, 1);
  EXPECT_EQ(Get(SQL_C_SSHORT, small), SQL_SUCCESS);
  EXPECT_EQ(length, 2);
  EXPECT_EQ(Get(SQL_C_SLONG, number), SQL_SUCCESS);
  EXPECT_EQ(length, 4);
  EXPECT_EQ(Get(SQL_C_SBIGINT, big), SQL_SUCCESS);
  EXPECT_EQ(length, 8);
  EXPECT_EQ(Get(SQL_C_FLOAT, real), SQL_SUCCESS);
  EXPECT_EQ(length, 4);
  EXPECT_EQ(Get(SQL_C_DOUBLE, twice), SQL_SUCCESS);
  EXPECT_EQ(length, 8);
  EXPECT_EQ(tiny + small + number + big, 4 * 42);
  EXPECT_EQ(static_cast<SQLDOUBLE>(real) + twice, 2 * 42.0);
}

TEST_P(Conversion, UnsignedAndUnmarkedNumberTypesAreKnown)
{
  MakeRow("SELECT 200");
  SQLCHAR byte = 0;
  SQLUSMALLINT small = 0;
  SQLUINTEGER number = 0;
  SQLUBIGINT big = 0;
  EXPECT_EQ(Get(SQL_C_UTINYINT, byte), SQL_SUCCESS);
  EXPECT_EQ(byte, 200);
  EXPECT_EQ(Get(SQL_C_TINYINT, byte), SQL_ERROR);
  EXPECT_EQ(session.State(), "22003");
  EXPECT_EQ(Get(SQL_C_USHORT, small), SQL_SUCCESS);
  EXPECT_EQ(Get(SQL_C_SHORT, small), SQL_SUCCESS);
  EXPECT_EQ(Get(SQL_C_ULONG, number), SQL_SUCCESS);
  EXPECT_EQ(Get(SQL_C_LONG, number), SQL_SUCCESS);
  EXPECT_EQ(Get(SQL_C_UBIGINT, big), SQL_SUCCESS);
  EXPECT_EQ(small + number + big, 3U * 200);
}

TEST_P(Conversion, NumberThatDoesNotFitIsAnErrorAndWritesNothing)
{
  const struct
  {
    const char* sql;
    SQLSMALLINT type;
  } cases[] = {{"SELECT 128", SQL_C_STINYINT},
               {"SELECT -1", SQL_C_UTINYINT},
               {"SELECT 32768", SQL_C_SSHORT},
               {"SELECT -1", SQL_C_USHORT},
               {"SELECT 2147483648", SQL_C_SLONG},
               {"SELECT -1", SQL_C_ULONG},
               {"SELECT 1e19", SQL_C_SBIGINT},
               {"SELECT -1", SQL_C_UBIGINT},
               {"SELECT 2", SQL_C_BIT},
               {"SELECT '99999999999'", SQL_C_SLONG},
               {"SELECT 1e300", SQL_C_FLOAT}};
  for (const auto& c : cases) {
    SQLBIGINT value = 0x1122334455667788;
    MakeRow(c.sql);
    EXPECT_EQ(Get(c.type, value), SQL_ERROR) << c.sql << " as " << c.type;
    EXPECT_EQ(session.State(), "22003") << c.sql << " as " << c.type;
    EXPECT_EQ(value, 0x1122334455667788) << c.sql << " as " << c.type;
  }
}

TEST_P(Conversion, LostFractionIsAWarning)
{
  SQLINTEGER number = 0;
  for (const char* sql : {"SELECT 7.5", "SELECT '7.5'"}) {
    MakeRow(sql);
    EXPECT_EQ(Get(SQL_C_LONG, number), SQL_SUCCESS_WITH_INFO) << sql;
    EXPECT_EQ(session.State(), "01S07") << sql;
    EXPECT_EQ(number, 7) << sql;
  }
}

TEST_P(Conversion, TextBecomesANumberWithBlanksAroundIt)
{
  SQLINTEGER number = 0;
  SQLDOUBLE real = 0;
  MakeRow("SELECT '  -42 '");
  EXPECT_EQ(Get(SQL_C_LONG, number), SQL_SUCCESS);
  EXPECT_EQ(number, -42);
  MakeRow("SELECT '1.5e2'");
  EXPECT_EQ(Get(SQL_C_DOUBLE, real), SQL_SUCCESS);
  EXPECT_EQ(real, 150.0);
}

TEST_P(Conversion, TextThatIsNoNumberIsAnError)
{
  SQLINTEGER number = 5;
  TIMESTAMP_STRUCT moment = {};
  for (const char* sql : {"SELECT 'seven'", "SELECT ''", "SELECT '7x'"}) {
    MakeRow(sql);
    EXPECT_EQ(Get(SQL_C_LONG, number), SQL_ERROR) << sql;
    EXPECT_EQ(session.State(), "22018") << sql;
    EXPECT_EQ(Get(SQL_C_TYPE_TIMESTAMP, moment), SQL_ERROR) << sql;
  }
  EXPECT_EQ(number, 5);
}

TEST_P(Conversion, BitsAreZeroAndOne)
{
  Make("CREATE TABLE [T] ([A] BIT)");
  Make("INSERT INTO [T] VALUES (0)");
  Make("INSERT INTO [T] VALUES (1)");
  EXPECT_EQ(session.Select("SELECT [A] FROM [T] ORDER BY [A]"), (Lines{"0", "1"}));
  SQLCHAR bit = 9;
  MakeRow("SELECT [A] FROM [T] ORDER BY [A]");
  EXPECT_EQ(Get(SQL_C_BIT, bit), SQL_SUCCESS);
  EXPECT_EQ(bit, 0);
  EXPECT_EQ(length, 1);
  ASSERT_EQ(calls.Fetch(stmt), SQL_SUCCESS);
  EXPECT_EQ(Get(SQL_C_BIT, bit), SQL_SUCCESS);
  EXPECT_EQ(bit, 1);
}

TEST_P(Conversion, NumbersBecomeText)
{
  Make("CREATE TABLE [T] ([A] LONG, [B] DOUBLE, [C] DECIMAL(10,2), [D] BYTE, [E] REAL)");
  Make("INSERT INTO [T] VALUES (-70000, 2.5, 12.25, 200, 0.5)");
  EXPECT_EQ(session.Select("SELECT * FROM [T]"), Lines{"-70000|2.5|12.25|200|0.5"});
}

TEST_P(Conversion, NumberTextThatLosesDigitsIsAnError)
{
  MakeRow("SELECT 123456");
  TextBuffer text = calls.Buffer(4);
  EXPECT_EQ(calls.GetData(stmt, 1, calls.TextType(), text.Data(), text.Bytes(), &length),
            SQL_ERROR);
  EXPECT_EQ(session.State(), "22003");
}

TEST_P(Conversion, DoublesKeepEveryBitAsDoubles)
{
  Make("CREATE TABLE [T] ([A] DOUBLE)");
  Make("INSERT INTO [T] VALUES (0.1)");
  MakeRow("SELECT [A] FROM [T]");
  SQLDOUBLE real = 0;
  EXPECT_EQ(Get(SQL_C_DOUBLE, real), SQL_SUCCESS);
  EXPECT_EQ(real, 0.1);
}

TEST_P(Conversion, MomentsBecomeDatesAndTimes)
{
  Make("CREATE TABLE [T] ([A] DATETIME)");
  Make("INSERT INTO [T] VALUES ('2007-03-09 13:14:15')");
  MakeRow("SELECT [A] FROM [T]");
  TIMESTAMP_STRUCT moment = {};
  DATE_STRUCT date = {};
  TIME_STRUCT time = {};
  EXPECT_EQ(Get(SQL_C_TYPE_TIMESTAMP, moment), SQL_SUCCESS);
  EXPECT_EQ(length, static_cast<SQLLEN>(sizeof(moment)));
  EXPECT_EQ(moment.year * 10000 + moment.month * 100 + moment.day, 20070309);
  EXPECT_EQ(moment.hour * 10000 + moment.minute * 100 + moment.second, 131415);
  EXPECT_EQ(moment.fraction, 0U);
  EXPECT_EQ(Get(SQL_C_TYPE_DATE, date), SQL_SUCCESS_WITH_INFO);
  EXPECT_EQ(session.State(), "01S07");
  EXPECT_EQ(date.year * 10000 + date.month * 100 + date.day, 20070309);
  EXPECT_EQ(Get(SQL_C_TYPE_TIME, time), SQL_SUCCESS);
  EXPECT_EQ(time.hour * 10000 + time.minute * 100 + time.second, 131415);
}

TEST_P(Conversion, OldDateTypesAreTheNewOnes)
{
  MakeRow("SELECT '2007-03-09'");
  TIMESTAMP_STRUCT moment = {};
  DATE_STRUCT date = {};
  EXPECT_EQ(Get(SQL_C_TIMESTAMP, moment), SQL_SUCCESS);
  EXPECT_EQ(moment.day, 9);
  EXPECT_EQ(Get(SQL_C_DATE, date), SQL_SUCCESS);
  EXPECT_EQ(date.month, 3);
}

TEST_P(Conversion, DatesAreReadFromBothKindsOfText)
{
  const struct
  {
    const char* text;
    int date;
    int time;
  } cases[] = {{"9/3/2007", 20070309, 0},
               {"09/03/2007", 20070309, 0},
               {"31/12/1999", 19991231, 0},
               {"9/3/2007 1:02:03", 20070309, 10203},
               {"9/3/2007 13:14:15", 20070309, 131415},
               {"2007-03-09", 20070309, 0},
               {"2007-03-09 13:14:15", 20070309, 131415},
               {"2007-03-09T13:14:15", 20070309, 131415},
               {"2000-02-29", 20000229, 0}};
  Make("CREATE TABLE [T] ([A] DATETIME)");
  for (const auto& c : cases) {
    Make("INSERT INTO [T] VALUES ('" + std::string(c.text) + "')");
    MakeRow("SELECT [A] FROM [T]");
    TIMESTAMP_STRUCT moment = {};
    EXPECT_EQ(Get(SQL_C_TYPE_TIMESTAMP, moment), SQL_SUCCESS) << c.text;
    EXPECT_EQ(moment.year * 10000 + moment.month * 100 + moment.day, c.date) << c.text;
    EXPECT_EQ(moment.hour * 10000 + moment.minute * 100 + moment.second, c.time) << c.text;
    Make("DELETE FROM [T]");
  }
}

TEST_P(Conversion, TextThatIsNoDateIsAnErrorAndWritesNothing)
{
  for (const char* text : {"31/2/2007", "2007-13-01", "2007-02-29", "9/3", "9/3/2007 25:00:00",
                           "yesterday", "0/1/2007", "2007-03-09 12:60:00"}) {
    TIMESTAMP_STRUCT moment = {};
    moment.year = 77;
    MakeRow("SELECT '" + std::string(text) + "'");
    EXPECT_EQ(Get(SQL_C_TYPE_TIMESTAMP, moment), SQL_ERROR) << text;
    EXPECT_TRUE(session.State() == "22018" || session.State() == "22007") << session.State();
    EXPECT_EQ(moment.year, 77) << text;
  }
}

TEST_P(Conversion, DefaultTypeFollowsTheColumn)
{
  Make("CREATE TABLE [T] ([A] LONG, [B] DOUBLE)");
  Make("INSERT INTO [T] VALUES (7, 2.5)");
  MakeRow("SELECT [A] FROM [T]");
  SQLINTEGER number = 0;
  EXPECT_EQ(Get(SQL_C_DEFAULT, number), SQL_SUCCESS);
  EXPECT_EQ(number, 7);
  MakeRow("SELECT [B] FROM [T]");
  SQLDOUBLE real = 0;
  EXPECT_EQ(Get(SQL_C_DEFAULT, real), SQL_SUCCESS);
  EXPECT_EQ(real, 2.5);
}

TEST_P(Conversion, NumericStructHoldsDecimals)
{
  Make("CREATE TABLE [T] ([A] DECIMAL(10,2))");
  Make("INSERT INTO [T] VALUES (-12.25)");
  MakeRow("SELECT [A] FROM [T]");
  SQL_NUMERIC_STRUCT numeric = {};
  ASSERT_TRUE(SQL_SUCCEEDED(Get(SQL_C_NUMERIC, numeric))) << session.State();
  EXPECT_EQ(numeric.sign, 0);
  int value = numeric.val[0] + 256 * numeric.val[1];
  for (int scale = numeric.scale; scale < 2; ++scale)
    value *= 10;
  EXPECT_EQ(value, 1225);
}

INSTANTIATE_TEST_SUITE_P(Each, Fetch, AllWays(), WayName);
INSTANTIATE_TEST_SUITE_P(Each, Conversion, AllWays(), WayName);
