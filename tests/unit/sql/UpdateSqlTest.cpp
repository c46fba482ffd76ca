#include "sql/RowSql.h"

#include "tests/unit/foundation/Texts.h"
#include "tests/unit/sql/TableRow.h"
#include "tests/unit/sql/TypeTexts.h"

#include <gtest/gtest.h>

namespace {

std::string Update(const TableRow& source, const TableRow& target)
{
  return TextOf(UpdateSql(source.schema, target.schema));
}

// Keyed on K1 and K2, with A and B besides.
class UpdateOfT : public testing::Test
{
protected:
  UpdateOfT() : source("S"), target("T")
  {
    target.Text("K1", "").Key().Integer("K2", 0).Key().Text("A", "").Text("B", "");
  }

  TableRow source;
  TableRow target;
};

}  // namespace

TEST_F(UpdateOfT, SetsWhatIsNoKeyWhereTheKeyIs)
{
  source.Text("K1", "O'Neil").Integer("K2", 7).Text("A", "x").Text("B", "");
  EXPECT_EQ(Update(source, target),
            "UPDATE [T]  SET [A]='x',[B]=NULL WHERE [K1]='O''Neil' AND [K2]=7");
}

TEST_F(UpdateOfT, SetsTheAlternatesValue)
{
  source.Text("K1", "O'Neil").Integer("K2", 7).Text("A", "x").Alternate("A2");
  source.Text("B", "").Text("A2", "y");
  EXPECT_EQ(Update(source, target),
            "UPDATE [T]  SET [A]='y',[B]=NULL WHERE [K1]='O''Neil' AND [K2]=7");
}

TEST_F(UpdateOfT, SetsItsOwnValueIfTheAlternateIsEmpty)
{
  source.Text("K1", "O'Neil").Integer("K2", 7).Text("A", "x").Alternate("A2");
  source.Text("B", "").Text("A2", "");
  EXPECT_EQ(Update(source, target),
            "UPDATE [T]  SET [A]='x',[B]=NULL WHERE [K1]='O''Neil' AND [K2]=7");
}

TEST_F(UpdateOfT, SetsTheAlternateToo)
{
  source.Integer("K2", 7).Text("A", "x").Alternate("A2").Text("A2", "y");
  target.Text("A2", "");
  EXPECT_EQ(Update(source, target), "UPDATE [T]  SET [A]='y',[A2]='y' WHERE [K2]=7");
}

TEST_F(UpdateOfT, AsksForTheKeysOwnValueWhateverItsAlternate)
{
  source.Text("K1", "own").Alternate("A").Text("A", "other");
  EXPECT_EQ(Update(source, target), "UPDATE [T]  SET [A]='other' WHERE [K1]='own'");
}

TEST_F(UpdateOfT, AsksForAnEmptyKeyWithTheKeyword)
{
  source.Text("K1", "").Text("A", "x");
  EXPECT_EQ(Update(source, target), "UPDATE [T]  SET [A]='x' WHERE [K1]=NULL");
}

TEST_F(UpdateOfT, KeepsTheOrderOfTheSourceInBothLists)
{
  source.Text("B", "b").Integer("K2", 2).Text("A", "a").Text("K1", "k");
  EXPECT_EQ(Update(source, target), "UPDATE [T]  SET [B]='b',[A]='a' WHERE [K2]=2 AND [K1]='k'");
}

TEST_F(UpdateOfT, LeavesOutColumnsThatOneSideLacks)
{
  source.Text("X", "x").Integer("K2", 2).Text("Y", "y").Text("A", "a").Text("Z", "z");
  EXPECT_EQ(Update(source, target), "UPDATE [T]  SET [A]='a' WHERE [K2]=2");
}

TEST_F(UpdateOfT, LeavesOutColumnsOfAnotherType)
{
  source.Text("K1", "k").Integer("K2", 7, SQL_SMALLINT).Text("A", "x");
  source.Text("B", "y", SQL_WLONGVARCHAR);
  EXPECT_EQ(Update(source, target), "UPDATE [T]  SET [A]='x' WHERE [K1]='k'");
}

TEST_F(UpdateOfT, HasTheTargetsSpellingOfNames)
{
  source.Text("k1", "k").Text("a", "x");
  EXPECT_EQ(Update(source, target), "UPDATE [T]  SET [A]='x' WHERE [K1]='k'");
}

TEST_F(UpdateOfT, GoesByTheKeyOfTheTarget)
{
  source.Text("K1", "k").Text("A", "x").Key();
  EXPECT_EQ(Update(source, target), "UPDATE [T]  SET [A]='x' WHERE [K1]='k'");
}

TEST_F(UpdateOfT, WithoutOtherColumnsThanKeysSetsNothing)
{
  source.Integer("K2", 1);
  EXPECT_EQ(Update(source, target), "UPDATE [T]  SET  WHERE [K2]=1");
}

TEST_F(UpdateOfT, WithoutAKeyColumnHasABareCondition)
{
  source.Text("A", "x");
  EXPECT_EQ(Update(source, target), "UPDATE [T]  SET [A]='x' WHERE ");
}

TEST_F(UpdateOfT, WithoutACommonColumnIsTheBareWords)
{
  EXPECT_EQ(Update(source, target), "UPDATE [T]  SET  WHERE ");
  EXPECT_EQ(Update(TableRow("S"), TableRow("")), "UPDATE []  SET  WHERE ");
}

TEST_F(UpdateOfT, HasHiddenColumns)
{
  source.Text("K1", "k").Hidden().Text("A", "x").Hidden();
  EXPECT_EQ(Update(source, target), "UPDATE [T]  SET [A]='x' WHERE [K1]='k'");
}

TEST(UpdateSql, HasNamesAsTheyStand)
{
  EXPECT_EQ(Update(TableRow("S").Integer("a]b", 1).Integer("Two Words", 2),
                   TableRow("It's %s").Integer("a]b", 0).Key().Integer("Two Words", 0)),
            "UPDATE [It's %s]  SET [Two Words]=2 WHERE [a]b]=1");
}

TEST(UpdateSql, HasEachTypesLiteralInBothLists)
{
  for (int32_t type = -11; type <= 99; ++type) {
    const std::string literal = TextsOfType(type).literal;
    EXPECT_EQ(Update(TableRow("S").Column("A", type).StoreManyForms().Integer("B", 2),
                     TableRow("T").Column("A", type).Integer("B", 0).Key()),
              "UPDATE [T]  SET [A]=" + literal + " WHERE [B]=2")
        << type;
    EXPECT_EQ(Update(TableRow("S").Column("A", type).StoreManyForms().Integer("B", 2),
                     TableRow("T").Column("A", type).Key().Integer("B", 0)),
              "UPDATE [T]  SET [B]=2 WHERE [A]=" + literal)
        << type;
  }
}

TEST(UpdateSql, OfTwoTargetColumnsOfANameGoesByTheFirst)
{
  EXPECT_EQ(
      Update(TableRow("S").Integer("A", 1), TableRow("T").Integer("a", 0).Integer("A", 0).Key()),
      "UPDATE [T]  SET [a]=1 WHERE ");
}

TEST(UpdateSql, FollowsTheBuffersFromRowToRow)
{
  TableRow source("S");
  source.Integer("K", 1).Integer("A", 10);
  TableRow target("T");
  target.Integer("K", 0).Key().Integer("A", 0);
  const ColumnPairs pairs(source.schema, target.schema);
  for (const int32_t value : {1, 22, -333}) {
    source.Store(value);
    StatementText statement;
    AppendUpdateSql(statement, pairs);
    EXPECT_EQ(Utf8(statement.Text()),
              "UPDATE [T]  SET [A]=" + std::to_string(value) + " WHERE [K]=1");
  }
}

TEST(UpdateSql, Of255ColumnsWithLongTextsIsWhole)
{
  TableRow source("S");
  TableRow target("T");
  std::string items;
  std::string condition;
  for (int i = 0; i < 255; ++i) {
    const std::string name = std::string(200, 'n') + std::to_string(i);
    const std::string value(1500, static_cast<char>('a' + i % 26));
    source.Text(name, value);
    target.Text(name, "");
    if (i % 50 == 7) {
      target.Key();
      condition += (condition.empty() ? "[" : " AND [") + name + "]='" + value + "'";
    } else {
      items += (items.empty() ? "[" : ",[") + name + "]='" + value + "'";
    }
  }
  EXPECT_TRUE(Update(source, target) == "UPDATE [T]  SET " + items + " WHERE " + condition);
}
