#include "sql/RowSql.h"

#include "tests/unit/foundation/Texts.h"
#include "tests/unit/sql/TableRow.h"
#include "tests/unit/sql/TypeTexts.h"

#include <gtest/gtest.h>

namespace {

std::string ByKey(const TableRow& row)
{
  return TextOf(DeleteByKeySql(row.schema));
}

std::string Matching(const TableRow& source, const TableRow& target)
{
  return TextOf(DeleteMatchingSql(source.schema, target.schema));
}

}  // namespace

TEST(DeleteByKeySql, HasAllKeyColumns)
{
  TableRow row("T");
  row.Text("K1", "O'Neil").Key().Integer("K2", 7).Key();
  EXPECT_EQ(ByKey(row), "DELETE FROM T WHERE [K1]='O''Neil' AND [K2]=7;");
}

TEST(DeleteByKeySql, LeavesNoTraceOfOtherColumns)
{
  TableRow row("T");
  row.Text("A", "a").Integer("K1", 1).Key().Text("B", "b").Text("C", "c").Integer("K2", 2).Key();
  EXPECT_EQ(ByKey(row.Text("D", "d")), "DELETE FROM T WHERE [K1]=1 AND [K2]=2;");
}

TEST(DeleteByKeySql, OfOneColumnHasNoConjunction)
{
  EXPECT_EQ(ByKey(TableRow("T").Text("A", "a").Integer("K", 1).Key()),
            "DELETE FROM T WHERE [K]=1;");
}

TEST(DeleteByKeySql, WithoutKeyColumnsIsBare)
{
  EXPECT_EQ(ByKey(TableRow("T")), "DELETE FROM T WHERE ;");
  TableRow row("T");
  row.Text("A", "a");
  row.Last().isUnique = true;
  row.schema.hasKey = true;
  EXPECT_EQ(ByKey(row), "DELETE FROM T WHERE ;");
}

TEST(DeleteByKeySql, HasEachTypesLiteral)
{
  for (int32_t type = -11; type <= 99; ++type) {
    EXPECT_EQ(ByKey(TableRow("T").Column("A", type).StoreManyForms().Key()),
              std::string("DELETE FROM T WHERE [A]=") + TextsOfType(type).literal + ";")
        << type;
  }
}

TEST(DeleteByKeySql, ComparesAnEmptyTextWithTheKeyword)
{
  EXPECT_EQ(ByKey(TableRow("T").Text("K1", "").Key()), "DELETE FROM T WHERE [K1]=NULL;");
}

TEST(DeleteByKeySql, HasNothingForATypeWithoutALiteral)
{
  EXPECT_EQ(ByKey(TableRow("T").Column("K1", SQL_WCHAR).Key()), "DELETE FROM T WHERE [K1]=;");
}

TEST(DeleteByKeySql, HasTheColumnsOwnValueWhateverItsAlternate)
{
  TableRow row("T");
  row.Text("K", "own").Key().Alternate("K2").Text("K2", "other");
  EXPECT_EQ(ByKey(row), "DELETE FROM T WHERE [K]='own';");
}

TEST(DeleteByKeySql, HasHiddenKeyColumns)
{
  EXPECT_EQ(ByKey(TableRow("T").Integer("K", 1).Key().Hidden()), "DELETE FROM T WHERE [K]=1;");
}

TEST(DeleteByKeySql, HasNamesAsTheyStand)
{
  EXPECT_EQ(ByKey(TableRow("Two Words").Integer("a]b", 1).Key()),
            "DELETE FROM Two Words WHERE [a]b]=1;");
}

TEST(DeleteMatchingSql, HasAllColumnsThatBothHave)
{
  TableRow source("T");
  source.Text("K1", "O'Neil").Integer("K2", 7).Text("A", "x");
  TableRow target("U");
  target.Text("K1", "").Integer("K2", 0).Text("A", "");
  EXPECT_EQ(Matching(source, target), "DELETE FROM U WHERE [K1]='O''Neil' AND [K2]=7 AND [A]='x';");
}

TEST(DeleteMatchingSql, KeepsTheOrderOfTheSource)
{
  EXPECT_EQ(Matching(TableRow("S").Integer("B", 2).Integer("A", 1),
                     TableRow("T").Integer("A", 0).Integer("B", 0)),
            "DELETE FROM T WHERE [B]=2 AND [A]=1;");
}

TEST(DeleteMatchingSql, LeavesNoTraceOfColumnsThatOneSideLacks)
{
  TableRow source("S");
  source.Integer("X", 0).Integer("A", 1).Integer("Y", 0).Integer("B", 2).Integer("Z", 0);
  TableRow target("T");
  target.Integer("V", 0).Integer("A", 0).Integer("W", 0).Integer("B", 0);
  EXPECT_EQ(Matching(source, target), "DELETE FROM T WHERE [A]=1 AND [B]=2;");
}

TEST(DeleteMatchingSql, LeavesOutAColumnOfAnotherType)
{
  TableRow source("S");
  source.Text("A", "x").Integer("B", 1);
  TableRow target("T");
  target.Text("A", "", SQL_WLONGVARCHAR).Integer("B", 0);
  EXPECT_EQ(Matching(source, target), "DELETE FROM T WHERE [B]=1;");
}

TEST(DeleteMatchingSql, HasTheSourcesSpellingOfNames)
{
  EXPECT_EQ(Matching(TableRow("S").Integer("name", 1), TableRow("T").Integer("NAME", 0)),
            "DELETE FROM T WHERE [name]=1;");
}

TEST(DeleteMatchingSql, HasNoRegardForKeys)
{
  EXPECT_EQ(Matching(TableRow("S").Integer("A", 1).Key().Integer("B", 2),
                     TableRow("T").Integer("A", 0).Integer("B", 0).Key()),
            "DELETE FROM T WHERE [A]=1 AND [B]=2;");
}

TEST(DeleteMatchingSql, HasHiddenColumns)
{
  EXPECT_EQ(Matching(TableRow("S").Integer("A", 1).Hidden(), TableRow("T").Integer("A", 0)),
            "DELETE FROM T WHERE [A]=1;");
}

TEST(DeleteMatchingSql, HasTheColumnsOwnValueWhateverItsAlternate)
{
  TableRow source("S");
  source.Text("A", "own").Alternate("A2").Text("A2", "other");
  EXPECT_EQ(Matching(source, TableRow("T").Text("A", "")), "DELETE FROM T WHERE [A]='own';");
}

TEST(DeleteMatchingSql, WithoutACommonColumnIsBare)
{
  EXPECT_EQ(Matching(TableRow("S").Integer("A", 1), TableRow("T").Integer("B", 0)),
            "DELETE FROM T WHERE ;");
  EXPECT_EQ(Matching(TableRow("S"), TableRow("T")), "DELETE FROM T WHERE ;");
}

TEST(DeleteMatchingSql, HasEachTypesLiteral)
{
  for (int32_t type = -11; type <= 99; ++type) {
    EXPECT_EQ(Matching(TableRow("S").Column("A", type).StoreManyForms().Integer("B", 2),
                       TableRow("T").Column("A", type).Integer("B", 0)),
              std::string("DELETE FROM T WHERE [A]=") + TextsOfType(type).literal + " AND [B]=2;")
        << type;
  }
}

TEST(DeleteMatchingSql, ComparesAnEmptyTextWithTheKeyword)
{
  EXPECT_EQ(Matching(TableRow("S").Text("A", ""), TableRow("T").Text("A", "")),
            "DELETE FROM T WHERE [A]=NULL;");
}

TEST(DeleteSql, FollowsTheBuffersFromRowToRow)
{
  TableRow source("S");
  source.Integer("A", 1).Key();
  TableRow target("T");
  target.Integer("A", 0);
  const ColumnPairs pairs(source.schema, target.schema);
  for (const int32_t value : {1, 22, -333}) {
    source.Store(value);
    StatementText byKey;
    AppendDeleteByKeySql(byKey, source.schema);
    EXPECT_EQ(Utf8(byKey.Text()), "DELETE FROM S WHERE [A]=" + std::to_string(value) + ";");
    StatementText matching;
    AppendDeleteMatchingSql(matching, pairs);
    EXPECT_EQ(Utf8(matching.Text()), "DELETE FROM T WHERE [A]=" + std::to_string(value) + ";");
  }
}
