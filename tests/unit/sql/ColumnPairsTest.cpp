#include "sql/ColumnPairs.h"

#include "tests/unit/database/DatabaseMachine.h"
#include "tests/unit/foundation/Texts.h"
#include "tests/unit/sql/TableRow.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>

namespace {

// The place of a column in its schema, counted from 0.
std::string PlaceOf(const TableColumn* column, const TableSchema& schema)
{
  const auto found = std::find(std::begin(schema.columns), std::end(schema.columns), column);
  return std::to_string(found - std::begin(schema.columns));
}

// Each pair as "source=target", with the place of its alternate if it has one.
Lines PairsOf(const TableRow& source, const TableRow& target)
{
  const ColumnPairs pairs(source.schema, target.schema);
  Lines lines;
  for (const ColumnPair& pair : pairs) {
    std::string line =
        PlaceOf(pair.source, source.schema) + "=" + PlaceOf(pair.target, target.schema);
    if (pair.alternate != nullptr)
      line += " " + PlaceOf(pair.alternate, source.schema);
    lines.push_back(line);
  }
  return lines;
}

}  // namespace

TEST(ColumnPairs, AreTheColumnsThatBothTablesHaveInTheOrderOfTheSource)
{
  TableRow source("S");
  source.Text("C", "").Text("X", "").Text("A", "").Integer("B", 0);
  TableRow target("T");
  target.Text("A", "").Integer("B", 0).Text("C", "").Text("Y", "");
  EXPECT_EQ(PairsOf(source, target), (Lines{"0=2", "2=0", "3=1"}));
}

TEST(ColumnPairs, HaveTheTargetsName)
{
  const TableRow source("S");
  const TableRow target("T");
  EXPECT_EQ(TextOf(ColumnPairs(source.schema, target.schema).TargetName()), "T");
}

TEST(ColumnPairs, OfTablesWithoutColumnsAreNone)
{
  EXPECT_TRUE(PairsOf(TableRow("S"), TableRow("T")).empty());
  EXPECT_TRUE(PairsOf(TableRow("S").Text("A", ""), TableRow("T")).empty());
  EXPECT_TRUE(PairsOf(TableRow("S"), TableRow("T").Text("A", "")).empty());
}

TEST(ColumnPairs, HaveTheSameNameInAnyCase)
{
  EXPECT_EQ(PairsOf(TableRow("S").Text("name", ""), TableRow("T").Text("NAME", "")), Lines{"0=0"});
  EXPECT_TRUE(PairsOf(TableRow("S").Text("name", ""), TableRow("T").Text("name ", "")).empty());
}

TEST(ColumnPairs, HaveTheSameType)
{
  for (int32_t source = -11; source <= 99; ++source) {
    TableRow target("T");
    for (int32_t type = -11; type <= 99; ++type)
      target.Column("A", type);
    const Lines expected = {"0=" + std::to_string(source + 11)};
    EXPECT_EQ(PairsOf(TableRow("S").Column("a", source), target), expected) << source;
  }
}

TEST(ColumnPairs, OfColumnsOfAnotherTypeAreNone)
{
  for (int32_t source = -11; source <= 99; ++source) {
    TableRow target("T");
    for (int32_t type = -11; type <= 99; ++type)
      target.Column("A", type == source ? 100 : type);
    EXPECT_TRUE(PairsOf(TableRow("S").Column("A", source), target).empty()) << source;
  }
}

TEST(ColumnPairs, HaveTheFirstOfTheTargetsColumnsOfAName)
{
  TableRow target("T");
  target.Integer("A", 0).Text("a", "").Text("A", "");
  EXPECT_EQ(PairsOf(TableRow("S").Text("A", ""), target), Lines{"0=1"});
}

TEST(ColumnPairs, OfTwoSourceColumnsOfANameHaveTheSamePartner)
{
  EXPECT_EQ(PairsOf(TableRow("S").Text("A", "").Text("a", ""), TableRow("T").Text("A", "")),
            (Lines{"0=0", "1=0"}));
}

TEST(ColumnPairs, HaveNoRegardForSizeOrFlags)
{
  TableRow source("S");
  source.Column("A", SQL_WVARCHAR, 5).Hidden().Column("B", SQL_WVARCHAR, 255).Key();
  TableRow target("T");
  target.Column("A", SQL_WVARCHAR, 50).Nullable().Column("B", SQL_WVARCHAR, 0).Hidden();
  EXPECT_EQ(PairsOf(source, target), (Lines{"0=0", "1=1"}));
}

TEST(ColumnPairs, HaveTheAlternateOfTheSource)
{
  TableRow source("S");
  source.Text("A", "").Alternate("a_2").Text("B", "").Text("A_2", "").Text("C", "").Alternate("Z");
  TableRow target("T");
  target.Text("A", "").Alternate("B").Text("B", "").Alternate("A").Text("C", "");
  EXPECT_EQ(PairsOf(source, target), (Lines{"0=0 2", "1=1", "3=2"}));
}

TEST(ColumnPairs, MayBeAsManyAsATableHasColumns)
{
  TableRow source("S");
  TableRow target("T");
  for (int i = 0; i < 300; ++i) {
    source.Integer("C" + std::to_string(i), i);
    target.Integer("C" + std::to_string(i), i);
  }
  const Lines pairs = PairsOf(source, target);
  ASSERT_EQ(pairs.size(), 255u);
  EXPECT_EQ(pairs.back(), "254=254");
}
