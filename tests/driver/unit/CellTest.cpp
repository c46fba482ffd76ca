#include "driver/Cell.h"

#include <gtest/gtest.h>

#include <limits>

#include "driver/Conversion.h"
#include "driver/Types.h"

namespace {

std::string KindName(CellKind kind)
{
  static const char* const names[] = {"null", "integer", "real", "text", "binary", "moment"};
  return names[static_cast<size_t>(kind)];
}

// What a value becomes in a column of a type: its kind, and its text.
std::string Fitted(Cell cell, SQLSMALLINT sqlType)
{
  FitToType(cell, sqlType);
  return KindName(cell.kind) + " " + CellText(cell);
}

std::string Fitted(std::string_view text, SQLSMALLINT sqlType)
{
  return Fitted(Cell::OfText(text), sqlType);
}

Cell RealCell(double value)
{
  Cell cell;
  cell.kind = CellKind::Real;
  cell.real = value;
  return cell;
}

Cell BinaryCell(std::string_view bytes)
{
  Cell cell;
  cell.kind = CellKind::Binary;
  cell.bytes = bytes;
  return cell;
}

// A decimal of a number: the state or "none", and the lowest byte of the digits.
std::string Decimal(const Cell& cell, SQLSMALLINT scale)
{
  SQL_NUMERIC_STRUCT decimal = {};
  decimal.sign = 1;
  Target target;
  target.cType = SQL_C_NUMERIC;
  target.buffer = &decimal;
  Diagnostics diagnostics;
  (void)ConvertToDecimal(cell, scale, target, diagnostics);
  const std::string state = diagnostics.Count() == 0 ? "none" : diagnostics.Record(0).state;
  return state + " " + (decimal.sign == 0 ? "-" : "") + std::to_string(decimal.val[0]);
}

}  // namespace

TEST(FitToType, BitIsEveryWordAndNumberThatMeansYesOrNo)
{
  for (const char* yes : {"true", "YES", "1", "-1", "0.5", " 2 "})
    EXPECT_EQ(Fitted(yes, SQL_BIT), "integer 1") << yes;
  for (const char* no : {"False", "no", "0", "0.0"})
    EXPECT_EQ(Fitted(no, SQL_BIT), "integer 0") << no;
  EXPECT_EQ(Fitted("perhaps", SQL_BIT), "text perhaps");
  EXPECT_EQ(Fitted(RealCell(0.25), SQL_BIT), "integer 1");
  EXPECT_EQ(Fitted(RealCell(0), SQL_BIT), "integer 0");
  EXPECT_EQ(Fitted(BinaryCell("\x01"), SQL_BIT), "binary 01");
}

TEST(FitToType, DateIsTextThatIsOne)
{
  EXPECT_EQ(Fitted("9/3/2007", SQL_TYPE_TIMESTAMP), "moment 2007-03-09 00:00:00");
  EXPECT_EQ(Fitted("some day", SQL_TYPE_TIMESTAMP), "text some day");
  EXPECT_EQ(Fitted(Cell::OfInteger(5), SQL_TYPE_TIMESTAMP), "integer 5");
}

TEST(FitToType, BytesAndTextTakeTheTypeOfTheColumn)
{
  EXPECT_EQ(Fitted("AB", SQL_LONGVARBINARY), "binary 4142");
  EXPECT_EQ(Fitted(Cell::OfInteger(5), SQL_LONGVARBINARY), "integer 5");
  EXPECT_EQ(Fitted(BinaryCell("AB"), SQL_WVARCHAR), "text AB");
  EXPECT_EQ(Fitted(BinaryCell("AB"), SQL_INTEGER), "binary 4142");
}

TEST(WriteReal, WritesZeroAndLimitsOfThePlainForm)
{
  EXPECT_EQ(WriteReal(0), "0");
  EXPECT_EQ(WriteReal(-0.5), "-0.5");
  EXPECT_EQ(WriteReal(1e-7), "0.0000001");
  EXPECT_EQ(WriteReal(9e-8), "9e-08");
  EXPECT_EQ(WriteReal(1e20), "1e+20");
}

TEST(ReadNumber, TakesOneSign)
{
  bool isInteger = false;
  int64_t integer = 0;
  double real = 0;
  EXPECT_TRUE(ReadNumber("+5", isInteger, integer, real));
  EXPECT_EQ(integer, 5);
  for (const char* text : {"++5", "+", "", "+-", "-"})
    EXPECT_FALSE(ReadNumber(text, isInteger, integer, real)) << text;
}

TEST(ConvertToDecimal, KeepsTheDigitsOfItsScale)
{
  EXPECT_EQ(Decimal(Cell::OfInteger(-2), 1), "none -20");
  EXPECT_EQ(Decimal(RealCell(0.25), 2), "none 25");
  EXPECT_EQ(Decimal(RealCell(0.125), 1), "01S07 1");
  EXPECT_EQ(Decimal(RealCell(1.05), 0), "01S07 1");
  EXPECT_EQ(Decimal(RealCell(1.5), 3), "none 220");  // 1500 is 0x5DC
  EXPECT_EQ(Decimal(Cell::OfText("1.50"), 1), "none 15");
}

TEST(ConvertToDecimal, RefusesWhatHasNoPlaceInIt)
{
  EXPECT_EQ(Decimal(RealCell(1e19), 25), "22003 0");
  EXPECT_EQ(Decimal(RealCell(1e25), 0), "22003 0");
  EXPECT_EQ(Decimal(RealCell(std::numeric_limits<double>::infinity()), 0), "22003 0");
  EXPECT_EQ(Decimal(Cell::OfText("many"), 0), "22018 0");
}

TEST(ConvertToNumber, InfinityIsARealOfEverySize)
{
  float stored = 0;
  Target target;
  target.cType = SQL_C_FLOAT;
  target.buffer = &stored;
  Diagnostics diagnostics;
  const Cell infinite = RealCell(std::numeric_limits<double>::infinity());
  EXPECT_EQ(ConvertToNumber(infinite, target, diagnostics), SQL_SUCCESS);
  EXPECT_EQ(stored, std::numeric_limits<float>::infinity());
  EXPECT_EQ(ConvertToNumber(RealCell(1e39), target, diagnostics), SQL_ERROR);
}
