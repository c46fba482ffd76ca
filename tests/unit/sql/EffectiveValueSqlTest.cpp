// The literal that a target gets for a column that may have another one for the language.
#include "sql/ValueSql.h"

#include "tests/unit/foundation/Texts.h"
#include "tests/unit/sql/TableRow.h"

#include <gtest/gtest.h>

namespace {

// Of the column that was added first.
std::string Effective(const TableRow& row)
{
  return TextOf(EffectiveValueSql(row.schema, *row.schema.columns[0]));
}

}  // namespace

TEST(EffectiveValueSql, IsTheAlternatesValueIfItHasOne)
{
  EXPECT_EQ(Effective(TableRow("T").Text("A", "x").Alternate("A2").Text("A2", "y's")), "'y''s'");
}

TEST(EffectiveValueSql, IsItsOwnValueWithoutAnAlternate)
{
  EXPECT_EQ(Effective(TableRow("T").Text("A", "x").Text("A2", "y")), "'x'");
}

TEST(EffectiveValueSql, IsItsOwnValueIfTheFlagIsOffWhateverTheName)
{
  TableRow row("T");
  row.Text("A", "x").Alternate("A2");
  row.Last().hasAlternate = false;
  EXPECT_EQ(Effective(row.Text("A2", "y")), "'x'");
}

TEST(EffectiveValueSql, IsItsOwnValueIfTheAlternateIsEmpty)
{
  EXPECT_EQ(Effective(TableRow("T").Text("A", "x").Alternate("A2").Text("A2", "")), "'x'");
}

TEST(EffectiveValueSql, IsItsOwnValueIfThereIsNoSuchColumn)
{
  EXPECT_EQ(Effective(TableRow("T").Text("A", "x").Alternate("A3").Text("A2", "y")), "'x'");
}

TEST(EffectiveValueSql, IsNullIfBothAreEmpty)
{
  EXPECT_EQ(Effective(TableRow("T").Text("A", "").Alternate("A2").Text("A2", "")), "NULL");
}

TEST(EffectiveValueSql, IsTheAlternatesValueIfItsOwnIsEmpty)
{
  EXPECT_EQ(Effective(TableRow("T").Text("A", "").Alternate("A2").Text("A2", "y")), "'y'");
}

TEST(EffectiveValueSql, FindsTheFirstAlternateOfTheNameInAnyCase)
{
  TableRow row("T");
  row.Text("A", "x").Alternate("name_FR").Text("NAME_fr", "first").Text("name_FR", "second");
  EXPECT_EQ(Effective(row), "'first'");
}

TEST(EffectiveValueSql, LooksNoFurtherThanTheFirstOfTheName)
{
  TableRow row("T");
  row.Text("A", "x").Alternate("A2").Text("A2", "").Text("A2", "second");
  EXPECT_EQ(Effective(row), "'x'");
}

TEST(EffectiveValueSql, TakesATextOfTheLettersOfNullForAValue)
{
  for (const char* value : {"NULL", "null"}) {
    EXPECT_EQ(Effective(TableRow("T").Text("A", "x").Alternate("A2").Text("A2", value)),
              std::string("'") + value + "'");
  }
}

TEST(EffectiveValueSql, TakesZeroForAValue)
{
  EXPECT_EQ(Effective(TableRow("T").Text("A", "x").Alternate("N").Integer("N", 0)), "0");
  EXPECT_EQ(Effective(TableRow("T").Text("A", "x").Alternate("N").Bit("N", 0)), "0");
  EXPECT_EQ(Effective(TableRow("T").Text("A", "x").Alternate("N").Number("N", 0)), "0.000000");
  EXPECT_EQ(Effective(TableRow("T").Text("A", "x").Alternate("N").Date("N", 0, 0, 0)), "'0/0/0'");
}

TEST(EffectiveValueSql, IsEmptyForAnAlternateOfATypeWithoutALiteral)
{
  for (const int32_t type : {SQL_CHAR, SQL_WCHAR, SQL_BIGINT, SQL_BINARY})
    EXPECT_EQ(Effective(TableRow("T").Text("A", "x").Alternate("A2").Text("A2", "y", type)), "");
}

TEST(EffectiveValueSql, IsTheAlternatesOwnAndNotThatOfTheAlternatesAlternate)
{
  TableRow row("T");
  row.Text("A", "x").Alternate("A2").Text("A2", "y").Alternate("A3").Text("A3", "z");
  EXPECT_EQ(Effective(row), "'y'");
}

TEST(EffectiveValueSql, MayHaveItselfForAnAlternate)
{
  EXPECT_EQ(Effective(TableRow("T").Text("A", "x").Alternate("A")), "'x'");
  EXPECT_EQ(Effective(TableRow("T").Text("A", "").Alternate("A")), "NULL");
}

TEST(EffectiveValueSql, TakesAHiddenAlternate)
{
  EXPECT_EQ(Effective(TableRow("T").Text("A", "x").Alternate("A2").Text("A2", "y").Hidden()),
            "'y'");
}

TEST(EffectiveValueSql, IsItsOwnValueIfTheAlternateHasNoBuffer)
{
  TableRow row("T");
  TableColumn& alternate = row.Text("A", "x").Alternate("A2").Text("A2", "y").Last();
  delete[] alternate.valueBuffer;
  alternate.valueBuffer = nullptr;
  EXPECT_EQ(Effective(row), "'x'");
}

TEST(EffectiveColumn, IsTheOneWhoseLiteralCounts)
{
  TableRow row("T");
  row.Text("Own", "x").Text("Empty", "").Text("Full", "y").Integer("Zero", 0);
  row.Column("Formless", SQL_CHAR);
  const TableColumn& own = *row.schema.columns[0];
  EXPECT_EQ(&EffectiveColumn(own, nullptr), &own);
  EXPECT_EQ(&EffectiveColumn(own, row.schema.columns[1]), &own);
  for (const int alternate : {2, 3, 4})
    EXPECT_EQ(&EffectiveColumn(own, row.schema.columns[alternate]), row.schema.columns[alternate]);
}
