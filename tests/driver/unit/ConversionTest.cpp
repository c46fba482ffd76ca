#include "driver/Conversion.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>

namespace {

// One conversion into a poisoned buffer.
class Converted
{
public:
  Converted(const Cell& cell, SQLSMALLINT cType, SQLLEN capacity = 0,
            SQLSMALLINT sqlType = SQL_WVARCHAR)
  {
    std::memset(buffer, 0xBD, sizeof(buffer));
    Target target;
    target.cType = cType;
    target.buffer = buffer;
    target.capacity = capacity;
    target.length = target.indicator = &length;
    result = ConvertCell(cell, PlainType(sqlType), target, diagnostics);
  }

  std::string State() const
  {
    return diagnostics.Count() == 0 ? "none" : diagnostics.Record(0).state;
  }

  template <typename Value>
  Value As() const
  {
    Value value;
    std::memcpy(&value, buffer, sizeof(value));
    return value;
  }

  bool IsUntouchedFrom(size_t start) const
  {
    for (size_t i = start; i < sizeof(buffer); ++i)
      if (buffer[i] != 0xBD)
        return false;
    return true;
  }

  SQLRETURN result = -99;
  SQLLEN length = -77;
  unsigned char buffer[64];

private:
  Diagnostics diagnostics;
};

Cell RealCell(double value)
{
  Cell cell;
  cell.kind = CellKind::Real;
  cell.real = value;
  return cell;
}

}  // namespace

TEST(ConvertCell, FixedTypesWriteTheirOwnSizeAndNoMore)
{
  const struct
  {
    SQLSMALLINT type;
    SQLLEN size;
  } cases[] = {
      {SQL_C_STINYINT, 1}, {SQL_C_UTINYINT, 1}, {SQL_C_TINYINT, 1},
      {SQL_C_BIT, 1},      {SQL_C_SSHORT, 2},   {SQL_C_USHORT, 2},
      {SQL_C_SHORT, 2},    {SQL_C_SLONG, 4},    {SQL_C_ULONG, 4},
      {SQL_C_LONG, 4},     {SQL_C_FLOAT, 4},    {SQL_C_DOUBLE, 8},
      {SQL_C_SBIGINT, 8},  {SQL_C_UBIGINT, 8},  {SQL_C_NUMERIC, sizeof(SQL_NUMERIC_STRUCT)}};
  for (const auto& c : cases) {
    const Converted one(Cell::OfInteger(1), c.type);
    EXPECT_EQ(one.result, SQL_SUCCESS) << c.type;
    EXPECT_EQ(one.length, c.size) << c.type;
    EXPECT_TRUE(one.IsUntouchedFrom(static_cast<size_t>(c.size))) << c.type;
    EXPECT_FALSE(one.IsUntouchedFrom(0)) << c.type;
  }
}

TEST(ConvertCell, LimitsOfEachNumberTypeFitAndTheNextNumberDoesNot)
{
  const struct
  {
    SQLSMALLINT type;
    int64_t least;
    int64_t most;
  } cases[] = {{SQL_C_STINYINT, -128, 127},
               {SQL_C_UTINYINT, 0, 255},
               {SQL_C_SSHORT, -32768, 32767},
               {SQL_C_USHORT, 0, 65535},
               {SQL_C_SLONG, INT32_MIN, INT32_MAX},
               {SQL_C_ULONG, 0, UINT32_MAX},
               {SQL_C_BIT, 0, 1}};
  for (const auto& c : cases) {
    EXPECT_EQ(Converted(Cell::OfInteger(c.least), c.type).result, SQL_SUCCESS) << c.type;
    EXPECT_EQ(Converted(Cell::OfInteger(c.most), c.type).result, SQL_SUCCESS) << c.type;
    for (int64_t outside : {c.least - 1, c.most + 1}) {
      const Converted number(Cell::OfInteger(outside), c.type);
      EXPECT_EQ(number.result, SQL_ERROR) << c.type << " " << outside;
      EXPECT_EQ(number.State(), "22003") << c.type;
      EXPECT_TRUE(number.IsUntouchedFrom(0)) << c.type;
    }
  }
}

TEST(ConvertCell, RealsThatNoIntegerHoldsAreRefused)
{
  for (double value : {1e30, -1e30, 9223372036854775808.0, static_cast<double>(INFINITY),
                       static_cast<double>(NAN)}) {
    const Converted number(RealCell(value), SQL_C_SBIGINT);
    EXPECT_EQ(number.result, SQL_ERROR) << value;
    EXPECT_EQ(number.State(), "22003") << value;
  }
}

TEST(ConvertCell, NullGoesToTheIndicatorAlone)
{
  const Converted null(Cell(), SQL_C_SLONG);
  EXPECT_EQ(null.result, SQL_SUCCESS);
  EXPECT_EQ(null.length, SQL_NULL_DATA);
  EXPECT_TRUE(null.IsUntouchedFrom(0));
}

TEST(ConvertCell, TextIsNeverWrittenBeyondItsBuffer)
{
  const Cell text = Cell::OfText("a\xF0\x9F\x94\xA9zzzzzzzz");
  for (SQLLEN capacity = 0; capacity < 20; ++capacity) {
    const Converted narrow(text, SQL_C_CHAR, capacity);
    EXPECT_TRUE(narrow.IsUntouchedFrom(static_cast<size_t>(capacity))) << capacity;
    EXPECT_EQ(narrow.length, 13);
    const Converted wide(text, SQL_C_WCHAR, capacity);
    EXPECT_TRUE(wide.IsUntouchedFrom(static_cast<size_t>(capacity))) << capacity;
    EXPECT_EQ(wide.length, 22);
  }
}

TEST(ConvertCell, EveryKnownTypeTakesEveryKindOfValueWithoutHarm)
{
  Cell moment;
  moment.kind = CellKind::Moment;
  moment.moment = {2007, 3, 9, 0, 0, 0, 0};
  Cell bytes = Cell::OfText("\x01\xFF");
  bytes.kind = CellKind::Binary;
  int known = 0;
  for (SQLSMALLINT type = -200; type < 200; ++type) {
    if (!IsKnownCType(type))
      continue;
    ++known;
    for (const Cell& cell : {Cell(), Cell::OfInteger(-5), RealCell(0.5), Cell::OfText("x"),
                             Cell::OfText("5"), moment, bytes})
      for (const int sqlType : {SQL_INTEGER, SQL_WVARCHAR, SQL_TYPE_TIMESTAMP, SQL_VARBINARY}) {
        const Converted value(cell, type, 8, static_cast<SQLSMALLINT>(sqlType));
        EXPECT_TRUE(value.result == SQL_SUCCESS || value.State() != "none") << type;
        EXPECT_TRUE(value.IsUntouchedFrom(sizeof(SQL_NUMERIC_STRUCT) + 9)) << type;
      }
  }
  EXPECT_GE(known, 20);
}

TEST(WriteReal, ReadsBackAsTheSameNumber)
{
  EXPECT_EQ(WriteReal(0.1), "0.1");
  EXPECT_EQ(WriteReal(2.5), "2.5");
  for (double value : {1.0 / 3, 1e300, -1e-300, 123456789.123456789, 5e-324, 0.1 + 0.2}) {
    bool isInteger = true;
    int64_t integer = 0;
    double real = 0;
    ASSERT_TRUE(ReadNumber(WriteReal(value), isInteger, integer, real)) << WriteReal(value);
    EXPECT_EQ(isInteger ? static_cast<double>(integer) : real, value);
  }
}

TEST(ConvertCell, NegativeLengthIsNoRoom)
{
  Cell bytes = Cell::OfText("\x01\x02\x03");
  bytes.kind = CellKind::Binary;
  for (const int type : {SQL_C_BINARY, SQL_C_CHAR, SQL_C_WCHAR}) {
    const Converted value(bytes, static_cast<SQLSMALLINT>(type), -1, SQL_VARBINARY);
    EXPECT_EQ(value.result, SQL_SUCCESS_WITH_INFO) << type;
    EXPECT_EQ(value.State(), "01004") << type;
    EXPECT_TRUE(value.IsUntouchedFrom(0)) << type;
  }
}

TEST(ReadNumber, TakesWholeNumbersAndNothingElse)
{
  bool isInteger = false;
  int64_t integer = 0;
  double real = 0;
  EXPECT_TRUE(ReadNumber(" -9223372036854775808 ", isInteger, integer, real));
  EXPECT_TRUE(isInteger);
  EXPECT_EQ(integer, INT64_MIN);
  EXPECT_TRUE(ReadNumber("9223372036854775808", isInteger, integer, real));
  EXPECT_FALSE(isInteger);
  EXPECT_TRUE(ReadNumber("-.5e1", isInteger, integer, real));
  EXPECT_EQ(real, -5.0);
  for (const char* text : {"", " ", "x", "1x", "1 2", "--1", "1e", ".", "0x10", "inf", "nan"})
    EXPECT_FALSE(ReadNumber(text, isInteger, integer, real)) << text;
}
