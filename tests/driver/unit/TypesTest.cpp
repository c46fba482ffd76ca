#include "driver/Types.h"

#include <gtest/gtest.h>

#include <string>

namespace {

// The type of a declaration with its figures: NAME|size|digits.
std::string Declared(const char* declaration)
{
  const ColumnType column = ReadDeclaredType(declaration);
  if (column.type == nullptr)
    return "none";
  return std::string(column.type->name) + "|" + std::to_string(column.size) + "|" +
         (column.digits == NoDigits ? "none" : std::to_string(column.digits));
}

}  // namespace

TEST(ReadDeclaredType, NoDeclarationIsNoType)
{
  EXPECT_EQ(Declared(nullptr), "none");
  EXPECT_EQ(Declared(""), "none");
}

TEST(ReadDeclaredType, UnknownWordsAreJudgedAsSqliteDoes)
{
  EXPECT_EQ(Declared("POINT"), "BIGINT|19|0");
  EXPECT_EQ(Declared("NATIVE CHARACTERS"), "VARCHAR|255|none");
  EXPECT_EQ(Declared("SHORTTEXT"), "MEMO|1073741823|none");
  EXPECT_EQ(Declared("MYCLOB"), "MEMO|1073741823|none");
  EXPECT_EQ(Declared("BIGBLOB"), "LONGBINARY|1073741823|none");
  EXPECT_EQ(Declared("GUID"), "DOUBLE|15|none");
}

TEST(ReadDeclaredType, FiguresAreThoseOfTypesThatHaveThem)
{
  EXPECT_EQ(Declared("TEXT(0)"), "TEXT|255|none");
  EXPECT_EQ(Declared("TEXT(7,2)"), "TEXT|7|none");
  EXPECT_EQ(Declared("DECIMAL(7,2)"), "DECIMAL|7|2");
  EXPECT_EQ(Declared("DECIMAL(7)"), "DECIMAL|7|0");
  EXPECT_EQ(Declared("LONG(7)"), "LONG|10|0");
}

TEST(PlainType, OfANumberThatIsNoTypeIsText)
{
  EXPECT_STREQ(PlainType(4711).type->name, "TEXT");
  EXPECT_STREQ(PlainType(SQL_BIGINT).type->name, "BIGINT");
}

TEST(TypeKinds, KnowNarrowTextAndAllNumbers)
{
  for (const SQLSMALLINT type : std::initializer_list<SQLSMALLINT>{
           SQL_CHAR, SQL_VARCHAR, SQL_LONGVARCHAR, SQL_WCHAR, SQL_WVARCHAR, SQL_WLONGVARCHAR}) {
    EXPECT_TRUE(IsTextType(type)) << type;
    EXPECT_FALSE(IsNumberType(type)) << type;
    EXPECT_FALSE(IsBinaryType(type)) << type;
  }
  for (const SQLSMALLINT type : std::initializer_list<SQLSMALLINT>{
           SQL_TINYINT, SQL_SMALLINT, SQL_INTEGER, SQL_BIGINT, SQL_NUMERIC, SQL_DECIMAL, SQL_FLOAT,
           SQL_REAL, SQL_DOUBLE}) {
    EXPECT_TRUE(IsNumberType(type)) << type;
    EXPECT_FALSE(IsTextType(type)) << type;
  }
}

TEST(DefaultCType, IsTheOneThatTheTypeConvertsToWithoutLoss)
{
  const std::pair<SQLSMALLINT, SQLSMALLINT> types[] = {{SQL_BIT, SQL_C_BIT},
                                                       {SQL_TINYINT, SQL_C_UTINYINT},
                                                       {SQL_SMALLINT, SQL_C_SSHORT},
                                                       {SQL_INTEGER, SQL_C_SLONG},
                                                       {SQL_BIGINT, SQL_C_SBIGINT},
                                                       {SQL_REAL, SQL_C_FLOAT},
                                                       {SQL_FLOAT, SQL_C_DOUBLE},
                                                       {SQL_DOUBLE, SQL_C_DOUBLE},
                                                       {SQL_BINARY, SQL_C_BINARY},
                                                       {SQL_VARBINARY, SQL_C_BINARY},
                                                       {SQL_LONGVARBINARY, SQL_C_BINARY},
                                                       {SQL_DATE, SQL_C_TYPE_DATE},
                                                       {SQL_TYPE_DATE, SQL_C_TYPE_DATE},
                                                       {SQL_TIME, SQL_C_TYPE_TIME},
                                                       {SQL_TYPE_TIME, SQL_C_TYPE_TIME},
                                                       {SQL_TIMESTAMP, SQL_C_TYPE_TIMESTAMP},
                                                       {SQL_TYPE_TIMESTAMP, SQL_C_TYPE_TIMESTAMP},
                                                       {SQL_WCHAR, SQL_C_WCHAR},
                                                       {SQL_WVARCHAR, SQL_C_WCHAR},
                                                       {SQL_WLONGVARCHAR, SQL_C_WCHAR},
                                                       {SQL_VARCHAR, SQL_C_CHAR},
                                                       {SQL_NUMERIC, SQL_C_CHAR},
                                                       {4711, SQL_C_CHAR}};
  for (const auto& [sqlType, cType] : types)
    EXPECT_EQ(DefaultCType(sqlType), cType) << sqlType;
}
