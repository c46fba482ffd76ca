#include "sql/RowSql.h"

#include "tests/unit/foundation/Texts.h"
#include "tests/unit/sql/TableRow.h"
#include "tests/unit/sql/TypeTexts.h"

#include <gtest/gtest.h>

namespace {

std::string Insert(const TableRow& source, const TableRow& target)
{
  return TextOf(InsertSql(source.schema, target.schema));
}

}  // namespace

TEST(InsertSql, HasNamesAndValues)
{
  TableRow source("S");
  source.Text("K1", "O'Neil").Integer("K2", 7).Text("A", "x").Text("B", "");
  TableRow target("T");
  target.Text("K1", "").Key().Integer("K2", 0).Key().Text("A", "").Text("B", "");
  EXPECT_EQ(Insert(source, target),
            "INSERT INTO [T] ([K1],[K2],[A],[B]) VALUES ('O''Neil',7,'x',NULL);");
}

TEST(InsertSql, OfOneColumnHasNoComma)
{
  EXPECT_EQ(Insert(TableRow("S").Integer("A", 1), TableRow("T").Integer("A", 0)),
            "INSERT INTO [T] ([A]) VALUES (1);");
}

TEST(InsertSql, KeepsTheOrderOfTheSource)
{
  EXPECT_EQ(Insert(TableRow("S").Integer("B", 2).Integer("A", 1),
                   TableRow("T").Integer("A", 0).Integer("B", 0)),
            "INSERT INTO [T] ([B],[A]) VALUES (2,1);");
}

TEST(InsertSql, LeavesOutColumnsThatOneSideLacks)
{
  TableRow source("S");
  source.Integer("X", 0).Integer("A", 1).Integer("Y", 0).Integer("B", 2).Integer("Z", 0);
  TableRow target("T");
  target.Integer("V", 0).Integer("A", 0).Integer("B", 0).Integer("W", 0);
  EXPECT_EQ(Insert(source, target), "INSERT INTO [T] ([A],[B]) VALUES (1,2);");
}

TEST(InsertSql, LeavesColumnsOfAnotherTypeOutOfBothLists)
{
  TableRow source("S");
  source.Text("A", "x").Integer("B", 1).Number("C", 2);
  TableRow target("T");
  target.Text("A", "", SQL_VARCHAR).Integer("B", 0).Number("C", 0, SQL_REAL);
  EXPECT_EQ(Insert(source, target), "INSERT INTO [T] ([B]) VALUES (1);");
}

TEST(InsertSql, HasTheTargetsSpellingAndTheSourcesValues)
{
  EXPECT_EQ(Insert(TableRow("S").Integer("name", 1), TableRow("T").Integer("NAME", 2)),
            "INSERT INTO [T] ([NAME]) VALUES (1);");
}

TEST(InsertSql, HasTheAlternatesValueForAKeyToo)
{
  TableRow source("S");
  source.Text("K", "own").Alternate("K2").Text("K2", "other");
  EXPECT_EQ(Insert(source, TableRow("T").Text("K", "").Key()),
            "INSERT INTO [T] ([K]) VALUES ('other');");
}

TEST(InsertSql, HasAnEmptyAlternateItselfAsNull)
{
  TableRow source("S");
  source.Text("A", "x").Alternate("A2").Text("A2", "");
  EXPECT_EQ(Insert(source, TableRow("T").Text("A", "").Text("A2", "")),
            "INSERT INTO [T] ([A],[A2]) VALUES ('x',NULL);");
  EXPECT_EQ(Insert(source, TableRow("T").Text("A", "")), "INSERT INTO [T] ([A]) VALUES ('x');");
}

TEST(InsertSql, HasNullForAnEmptyTextInAColumnThatMayNotBeNull)
{
  TableRow target("T");
  target.Text("A", "");
  EXPECT_FALSE(target.Last().isNullable);
  EXPECT_EQ(Insert(TableRow("S").Text("A", ""), target), "INSERT INTO [T] ([A]) VALUES (NULL);");
}

TEST(InsertSql, HasAHoleForATypeWithoutALiteral)
{
  TableRow source("S");
  source.Column("A", SQL_CHAR).Integer("B", 7);
  EXPECT_EQ(Insert(source, TableRow("T").Column("A", SQL_CHAR).Integer("B", 0)),
            "INSERT INTO [T] ([A],[B]) VALUES (,7);");
}

TEST(InsertSql, HasEachTypesLiteral)
{
  for (int32_t type = -11; type <= 99; ++type) {
    EXPECT_EQ(
        Insert(TableRow("S").Column("A", type).StoreManyForms().Integer("B", 2),
               TableRow("T").Column("A", type).Integer("B", 0)),
        std::string("INSERT INTO [T] ([A],[B]) VALUES (") + TextsOfType(type).literal + ",2);")
        << type;
  }
}

TEST(InsertSql, WithoutACommonColumnHasEmptyLists)
{
  EXPECT_EQ(Insert(TableRow("S").Integer("A", 1), TableRow("T").Integer("B", 0)),
            "INSERT INTO [T] () VALUES ();");
  EXPECT_EQ(Insert(TableRow("S"), TableRow("T")), "INSERT INTO [T] () VALUES ();");
}

TEST(InsertSql, HasHiddenColumns)
{
  EXPECT_EQ(Insert(TableRow("S").Integer("A", 1).Hidden(), TableRow("T").Integer("A", 0)),
            "INSERT INTO [T] ([A]) VALUES (1);");
}

TEST(InsertSql, HasNamesAsTheyStand)
{
  EXPECT_EQ(Insert(TableRow("S").Integer("a]b", 1).Integer("Two Words", 2),
                   TableRow("It's %s").Integer("a]b", 0).Integer("Two Words", 0)),
            "INSERT INTO [It's %s] ([a]b],[Two Words]) VALUES (1,2);");
}

TEST(InsertSql, HasTheFirstOfTheTargetsColumnsOfAName)
{
  EXPECT_EQ(Insert(TableRow("S").Integer("A", 1), TableRow("T").Integer("a", 0).Integer("A", 0)),
            "INSERT INTO [T] ([a]) VALUES (1);");
}

TEST(InsertSql, FollowsTheBuffersFromRowToRow)
{
  TableRow source("S");
  source.Integer("A", 1);
  TableRow target("T");
  target.Integer("A", 0);
  const ColumnPairs pairs(source.schema, target.schema);
  for (const int32_t value : {1, 22, -333}) {
    source.Store(value);
    StatementText statement;
    AppendInsertSql(statement, pairs);
    EXPECT_EQ(Utf8(statement.Text()),
              "INSERT INTO [T] ([A]) VALUES (" + std::to_string(value) + ");");
  }
}

TEST(InsertSql, Of255ColumnsWithLongTextsIsWhole)
{
  TableRow source("S");
  TableRow target("T");
  std::string names;
  std::string values;
  for (int i = 0; i < 255; ++i) {
    const std::string name = std::string(200, 'n') + std::to_string(i);
    const std::string value(1500, static_cast<char>('a' + i % 26));
    source.Text(name, value);
    target.Text(name, "");
    names += (i > 0 ? ",[" : "[") + name + "]";
    values += (i > 0 ? ",'" : "'") + value + "'";
  }
  EXPECT_TRUE(Insert(source, target) == "INSERT INTO [T] (" + names + ") VALUES (" + values + ");");
}

TEST(InsertSql, OfThreeMemosFullOfQuotesIsWhole)
{
  TableRow source("S");
  TableRow target("T");
  std::string names;
  std::string values;
  for (const char* name : {"A", "B", "C"}) {
    source.Text(name, std::string(60000, '\''), SQL_WLONGVARCHAR);
    target.Text(name, "", SQL_WLONGVARCHAR);
    names += (names.empty() ? "[" : ",[") + std::string(name) + "]";
    values += (values.empty() ? "" : ",") + std::string(120002, '\'');
  }
  EXPECT_TRUE(Insert(source, target) == "INSERT INTO [T] (" + names + ") VALUES (" + values + ");");
}
