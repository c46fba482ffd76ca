// A parameter's value in each type that a program's buffer can have.

#include <cstdint>
#include <limits>

#include "tests/driver/ConformanceTest.h"

namespace {

class ParameterType : public ConformanceTest
{
protected:
  // What SQL sees of one value.
  template <typename Value>
  Lines Seen(SQLSMALLINT cType, Value value, SQLSMALLINT sqlType = SQL_BIGINT)
  {
    return Select(cType, sqlType, &value, nullptr);
  }

  Lines Select(SQLSMALLINT cType, SQLSMALLINT sqlType, SQLPOINTER value, SQLLEN* length)
  {
    calls.FreeStmt(stmt, SQL_CLOSE);
    EXPECT_EQ(calls.BindParameter(stmt, 1, SQL_PARAM_INPUT, cType, sqlType, 0, 0, value, 0, length),
              SQL_SUCCESS);
    return session.Select("SELECT ?1, TYPEOF(?1)");
  }

  Lines SeenText(const std::string& text, SQLSMALLINT sqlType)
  {
    TextArgument argument = calls.Argument(text);
    return Select(calls.TextType(), sqlType, argument.Data(), nullptr);
  }

  Lines SeenDecimal(SQLSCHAR scale, bool isNegative, const std::vector<SQLCHAR>& digits)
  {
    SQL_NUMERIC_STRUCT decimal = {};
    decimal.precision = 38;
    decimal.scale = scale;
    decimal.sign = isNegative ? 0 : 1;
    std::copy(digits.begin(), digits.end(), decimal.val);
    return Select(SQL_C_NUMERIC, SQL_WVARCHAR, &decimal, nullptr);
  }
};

}  // namespace

TEST_P(ParameterType, WholeNumbersKeepTheirSignAndTheirLimits)
{
  EXPECT_EQ(Seen(SQL_C_BIT, SQLCHAR{7}), Lines{"1|integer"});
  EXPECT_EQ(Seen(SQL_C_BIT, SQLCHAR{0}), Lines{"0|integer"});
  EXPECT_EQ(Seen(SQL_C_TINYINT, SQLSCHAR{-128}), Lines{"-128|integer"});
  EXPECT_EQ(Seen(SQL_C_STINYINT, SQLSCHAR{-1}), Lines{"-1|integer"});
  EXPECT_EQ(Seen(SQL_C_UTINYINT, SQLCHAR{255}), Lines{"255|integer"});
  EXPECT_EQ(Seen(SQL_C_SHORT, SQLSMALLINT{-32768}), Lines{"-32768|integer"});
  EXPECT_EQ(Seen(SQL_C_SSHORT, SQLSMALLINT{-2}), Lines{"-2|integer"});
  EXPECT_EQ(Seen(SQL_C_USHORT, SQLUSMALLINT{65535}), Lines{"65535|integer"});
  EXPECT_EQ(Seen(SQL_C_SLONG, SQLINTEGER{-3}), Lines{"-3|integer"});
  EXPECT_EQ(Seen(SQL_C_ULONG, SQLUINTEGER{4294967295U}), Lines{"4294967295|integer"});
  EXPECT_EQ(Seen(SQL_C_SBIGINT, int64_t{INT64_MIN}), Lines{"-9223372036854775808|integer"});
  EXPECT_EQ(Seen(SQL_C_UBIGINT, uint64_t{INT64_MAX}), Lines{"9223372036854775807|integer"});
}

TEST_P(ParameterType, NumbersBeyondWholeNumbersAreReal)
{
  EXPECT_EQ(Seen(SQL_C_UBIGINT, uint64_t{1} << 63), Lines{"9223372036854775808|real"});
  EXPECT_EQ(Seen(SQL_C_FLOAT, 0.25F, SQL_REAL), Lines{"0.25|real"});
  EXPECT_EQ(Seen(SQL_C_DOUBLE, -1e300, SQL_DOUBLE).front().substr(0, 6), "-1e+30");
}

TEST_P(ParameterType, DecimalsAreTheirDigits)
{
  EXPECT_EQ(SeenDecimal(0, false, {}), Lines{"0|text"});
  EXPECT_EQ(SeenDecimal(2, true, {5}), Lines{"-0.05|text"});
  EXPECT_EQ(SeenDecimal(2, false, {0x39, 0x30}), Lines{"123.45|text"});
  EXPECT_EQ(SeenDecimal(0, false, std::vector<SQLCHAR>(16, 0xFF)),
            Lines{"340282366920938463463374607431768211455|text"});
}

TEST_P(ParameterType, DatesAndTimesArePartsOfAMoment)
{
  EXPECT_EQ(Seen(SQL_C_DATE, SQL_DATE_STRUCT{2007, 3, 9}, SQL_TYPE_TIMESTAMP),
            Lines{"2007-03-09 00:00:00|text"});
  EXPECT_EQ(Seen(SQL_C_TIME, SQL_TIME_STRUCT{1, 2, 3}, SQL_TYPE_TIMESTAMP),
            Lines{"1899-12-30 01:02:03|text"});
  EXPECT_EQ(Seen(SQL_C_TYPE_DATE, SQL_DATE_STRUCT{2007, 3, 9}, SQL_TYPE_TIMESTAMP),
            Lines{"2007-03-09 00:00:00|text"});
  EXPECT_EQ(Seen(SQL_C_TYPE_TIME, SQL_TIME_STRUCT{1, 2, 3}, SQL_TYPE_TIMESTAMP),
            Lines{"1899-12-30 01:02:03|text"});
  EXPECT_EQ(Seen(SQL_C_TIMESTAMP, SQL_TIMESTAMP_STRUCT{2007, 3, 9, 1, 2, 3, 500000000},
                 SQL_TYPE_TIMESTAMP),
            Lines{"2007-03-09 01:02:03.5|text"});
}

TEST_P(ParameterType, DatesThatThereAreNotAreRefused)
{
  for (const SQL_TIMESTAMP_STRUCT& moment :
       std::initializer_list<SQL_TIMESTAMP_STRUCT>{{2007, 2, 30, 0, 0, 0, 0},
                                                   {0, 1, 1, 0, 0, 0, 0},
                                                   {10000, 1, 1, 0, 0, 0, 0},
                                                   {2007, 0, 1, 0, 0, 0, 0},
                                                   {2007, 1, 1, 0, 0, 0, 1000000000}})
    EXPECT_EQ(Seen(SQL_C_TYPE_TIMESTAMP, moment, SQL_TYPE_TIMESTAMP),
              Lines{"statement failed: 22018"});
}

TEST_P(ParameterType, TextForANumberIsReadAsOne)
{
  EXPECT_EQ(SeenText(" 12 ", SQL_INTEGER), Lines{"12|integer"});
  EXPECT_EQ(SeenText("1.5", SQL_DOUBLE), Lines{"1.5|real"});
  EXPECT_EQ(SeenText("1", SQL_BIT), Lines{"1|integer"});
  EXPECT_EQ(SeenText("twelve", SQL_INTEGER), Lines{"statement failed: 22018"});
  EXPECT_EQ(SeenText("012", SQL_WVARCHAR), Lines{"012|text"});
}

TEST_P(ParameterType, BytesAndTextBecomeWhatTheParameterIs)
{
  char bytes[] = "abc";
  SQLLEN length = 3;
  EXPECT_EQ(Select(SQL_C_BINARY, SQL_VARBINARY, bytes, &length), Lines{"616263|blob"});
  EXPECT_EQ(Select(SQL_C_BINARY, SQL_VARCHAR, bytes, &length), Lines{"abc|text"});
  EXPECT_EQ(SeenText("abc", SQL_VARBINARY), Lines{"616263|blob"});
  // Bytes have no terminator.
  length = SQL_NTS;
  EXPECT_EQ(Select(SQL_C_BINARY, SQL_VARBINARY, bytes, &length), Lines{"|blob"});
}

TEST_P(ParameterType, DefaultIsThatOfTheParameter)
{
  SQLINTEGER number = 4;
  SQLDOUBLE real = 0.5;
  EXPECT_EQ(Select(SQL_C_DEFAULT, SQL_INTEGER, &number, nullptr), Lines{"4|integer"});
  EXPECT_EQ(Select(SQL_C_DEFAULT, SQL_FLOAT, &real, nullptr), Lines{"0.5|real"});
}

TEST_P(ParameterType, AddressesAreMovedByTheOffset)
{
  struct Row
  {
    SQLINTEGER id;
    SQLLEN length;
  };
  Row rows[] = {{1, 0}, {2, SQL_NULL_DATA}, {3, 0}};
  SQLULEN offset = 0;
  Make("CREATE TABLE [T] ([Id] LONG)");
  ASSERT_EQ(calls.BindParameter(stmt, 1, SQL_PARAM_INPUT, SQL_C_LONG, SQL_INTEGER, 0, 0,
                                &rows[0].id, 0, &rows[0].length),
            SQL_SUCCESS);
  ASSERT_EQ(calls.SetStatementPointer(stmt, SQL_ATTR_PARAM_BIND_OFFSET_PTR, &offset), SQL_SUCCESS);
  ASSERT_EQ(calls.Prepare(stmt, "INSERT INTO [T] VALUES (?)"), SQL_SUCCESS);
  for (; offset < sizeof(rows); offset += sizeof(Row))
    EXPECT_EQ(calls.Execute(stmt), SQL_SUCCESS);
  calls.SetStatementPointer(stmt, SQL_ATTR_PARAM_BIND_OFFSET_PTR, nullptr);
  session.Reset();
  EXPECT_EQ(session.Select("SELECT [Id] FROM [T]"), (Lines{"1", "NULL", "3"}));
}

TEST_P(ParameterType, StatusTellsWhatBecameOfTheSet)
{
  SQLINTEGER id = 1;
  SQLULEN processed = 99;
  SQLUSMALLINT status = 99;
  Make("CREATE TABLE [T] ([Id] LONG PRIMARY KEY)");
  calls.SetStatementPointer(stmt, SQL_ATTR_PARAMS_PROCESSED_PTR, &processed);
  calls.SetStatementPointer(stmt, SQL_ATTR_PARAM_STATUS_PTR, &status);
  calls.BindParameter(stmt, 1, SQL_PARAM_INPUT, SQL_C_LONG, SQL_INTEGER, 0, 0, &id, 0, nullptr);
  EXPECT_EQ(session.Run("INSERT INTO [T] VALUES (?)"), SQL_SUCCESS);
  EXPECT_EQ(processed, 1U);
  EXPECT_EQ(status, SQL_PARAM_SUCCESS);
  EXPECT_EQ(session.Run("INSERT INTO [T] VALUES (?)"), SQL_ERROR);
  EXPECT_EQ(status, SQL_PARAM_ERROR);
  status = 99;
  TextArgument text = calls.Argument("no number");
  calls.BindParameter(stmt, 1, SQL_PARAM_INPUT, calls.TextType(), SQL_INTEGER, 0, 0, text.Data(), 0,
                      nullptr);
  EXPECT_EQ(session.Run("INSERT INTO [T] VALUES (?)"), SQL_ERROR);
  EXPECT_EQ(session.State(), "22018");
  EXPECT_EQ(status, SQL_PARAM_ERROR);
}

TEST_P(ParameterType, MayBeBoundAnew)
{
  SQLINTEGER first = 1;
  SQLINTEGER second = 2;
  for (SQLINTEGER* const value : {&first, &second})
    EXPECT_EQ(Select(SQL_C_LONG, SQL_INTEGER, value, nullptr),
              Lines{std::to_string(*value) + "|integer"});
}

INSTANTIATE_TEST_SUITE_P(Each, ParameterType, StraightWays(), WayName);
