#include <algorithm>
#include <set>

#include "tests/driver/ConformanceTest.h"

namespace {

class Catalogue : public ConformanceTest
{
protected:
  void SetUp() override
  {
    ConformanceTest::SetUp();
    Make("CREATE TABLE [Bolts_M] ([Id] LONG PRIMARY KEY, [Size_mm] DOUBLE, [SizeXmm] DOUBLE)");
    Make("CREATE TABLE [BoltsXM] ([A] LONG, [B] TEXT(5), PRIMARY KEY ([B],[A]))");
    Make("CREATE TABLE [Materials] ([Name] TEXT(5))");
    calls.FreeStmt(stmt, SQL_CLOSE);
  }

  // One field of each row of a catalogue call that succeeded.
  Lines Column(SQLRETURN result, SQLUSMALLINT number)
  {
    EXPECT_EQ(result, SQL_SUCCESS) << session.State();
    Lines lines;
    while (SQL_SUCCEEDED(calls.Fetch(stmt)))
      lines.push_back(session.Field(number));
    calls.FreeStmt(stmt, SQL_CLOSE);
    return lines;
  }

  Lines TablesLike(const Pattern& table, const Pattern& type = std::nullopt)
  {
    return Column(calls.Tables(stmt, std::nullopt, std::nullopt, table, type), 3);
  }

  Lines ColumnsLike(const Pattern& table, const Pattern& column)
  {
    return Column(calls.Columns(stmt, table, column), 4);
  }

  std::string InfoText(SQLUSMALLINT item)
  {
    TextBuffer text = calls.Buffer(200);
    SQLSMALLINT length = -1;
    EXPECT_EQ(calls.GetInfoText(session.dbc, item, text, length), SQL_SUCCESS) << item;
    EXPECT_EQ(length, calls.Argument(text.Text()).Bytes()) << item;
    return text.Text();
  }
};

}  // namespace

TEST_P(Catalogue, ListsTablesInOrder)
{
  const Lines all{"Bolts_M", "BoltsXM", "Materials"};
  const Lines tables = TablesLike(std::nullopt, "TABLE");
  EXPECT_EQ(std::multiset<std::string>(tables.begin(), tables.end()),
            std::multiset<std::string>(all.begin(), all.end()));
  EXPECT_EQ(TablesLike("%", "TABLE"), tables);
  EXPECT_EQ(TablesLike("%"), tables);
  EXPECT_EQ(TablesLike("%", "'TABLE'"), tables);
  EXPECT_EQ(TablesLike("%", "VIEW,TABLE"), tables);
  EXPECT_EQ(TablesLike("%", "%"), tables);
}

TEST_P(Catalogue, OwnTablesOfTheEngineAreNotListed)
{
  Make("CREATE UNIQUE INDEX [ByName] ON [Materials] ([Name])");
  Make("INSERT INTO [Materials] VALUES ('Steel')");
  Make("ANALYZE");
  EXPECT_EQ(session.Select("SELECT COUNT(*) FROM [sqlite_stat1]").size(), 1U);
  calls.FreeStmt(stmt, SQL_CLOSE);
  EXPECT_EQ(TablesLike("sqlite%", "TABLE"), Lines{});
  EXPECT_EQ(TablesLike("%", "TABLE").size(), 3U);
}

TEST_P(Catalogue, ViewsAreListedAsViews)
{
  Make("CREATE VIEW [Seen] AS SELECT [Name] FROM [Materials]");
  calls.FreeStmt(stmt, SQL_CLOSE);
  EXPECT_EQ(TablesLike("%", "VIEW"), Lines{"Seen"});
  EXPECT_EQ(TablesLike("Seen", "TABLE"), Lines{});
  EXPECT_EQ(Column(calls.Tables(stmt, std::nullopt, std::nullopt, "Seen", std::nullopt), 4),
            Lines{"VIEW"});
}

TEST_P(Catalogue, TableTypeIsTold)
{
  EXPECT_EQ(Column(calls.Tables(stmt, std::nullopt, std::nullopt, "Materials", std::nullopt), 4),
            Lines{"TABLE"});
}

TEST_P(Catalogue, UnderscoreAndPercentArePatternCharacters)
{
  EXPECT_EQ(TablesLike("Bolts_M").size(), 2U);
  EXPECT_EQ(TablesLike("Bolts%").size(), 2U);
  EXPECT_EQ(TablesLike("M%"), Lines{"Materials"});
  EXPECT_EQ(TablesLike("_aterials"), Lines{"Materials"});
  EXPECT_EQ(TablesLike("Material"), Lines{});
  EXPECT_EQ(TablesLike("Material_"), Lines{"Materials"});
  EXPECT_EQ(ColumnsLike("BoltsXM", "%"), (Lines{"A", "B"}));
  EXPECT_EQ(ColumnsLike("Bolts_M", "Size_mm"), (Lines{"Size_mm", "SizeXmm"}));
}

TEST_P(Catalogue, EscapedPatternCharactersStandForThemselves)
{
  const std::string escape = InfoText(SQL_SEARCH_PATTERN_ESCAPE);
  ASSERT_FALSE(escape.empty());
  EXPECT_EQ(TablesLike("Bolts" + escape + "_M"), Lines{"Bolts_M"});
  EXPECT_EQ(ColumnsLike("Bolts" + escape + "_M", "Size" + escape + "_mm"), Lines{"Size_mm"});
}

TEST_P(Catalogue, NamesMatchWithoutRegardToCase)
{
  EXPECT_EQ(TablesLike("MATERIALS"), Lines{"Materials"});
  EXPECT_EQ(ColumnsLike("materials", "NAME"), Lines{"Name"});
}

TEST_P(Catalogue, ColumnsComeInTheOrderOfTheTable)
{
  EXPECT_EQ(ColumnsLike("Bolts\\_M", std::nullopt), (Lines{"Id", "Size_mm", "SizeXmm"}));
  EXPECT_EQ(ColumnsLike("Absent", std::nullopt), Lines{});
}

TEST_P(Catalogue, ColumnsOfSeveralTablesAreGroupedByTable)
{
  const Lines tables = Column(calls.Columns(stmt, "%", "%"), 3);
  ASSERT_EQ(tables.size(), 6U);
  std::set<std::string> groups;
  for (size_t i = 0; i < tables.size(); ++i) {
    const bool isFirst = i == 0 || tables[i] != tables[i - 1];
    EXPECT_EQ(groups.insert(tables[i]).second, isFirst) << tables[i];
  }
}

TEST_P(Catalogue, ColumnsOfANewTableAreToldAtOnce)
{
  OdbcSession other(calls);
  ASSERT_EQ(other.Connect(database), SQL_SUCCESS);
  ASSERT_EQ(other.Run("CREATE TABLE [Later] ([A] LONG)"), SQL_SUCCESS);
  EXPECT_EQ(ColumnsLike("Later", std::nullopt), Lines{"A"});
  ASSERT_EQ(other.Run("DROP TABLE [Later]"), SQL_SUCCESS);
  EXPECT_EQ(ColumnsLike("Later", std::nullopt), Lines{});
}

TEST_P(Catalogue, EnumeratesTableTypes)
{
  const Lines types = Column(calls.Tables(stmt, "", "", "", "%"), 4);
  EXPECT_EQ(std::count(types.begin(), types.end(), "TABLE"), 1);
  EXPECT_EQ(std::count(types.begin(), types.end(), "VIEW"), 1);
}

TEST_P(Catalogue, EnumeratesNoSchemas)
{
  EXPECT_EQ(Column(calls.Tables(stmt, "", "%", "", ""), 2), Lines{});
}

TEST_P(Catalogue, PrimaryKeyColumnsComeInTheOrderOfTheKey)
{
  EXPECT_EQ(Column(calls.PrimaryKeys(stmt, "BoltsXM"), 4), (Lines{"B", "A"}));
  EXPECT_EQ(Column(calls.PrimaryKeys(stmt, "boltsxm"), 5), (Lines{"1", "2"}));
  EXPECT_EQ(Column(calls.PrimaryKeys(stmt, "Materials"), 4), Lines{});
}

TEST_P(Catalogue, StatisticsTellIndexes)
{
  Make("CREATE UNIQUE INDEX [ByName] ON [Materials] ([Name])");
  calls.FreeStmt(stmt, SQL_CLOSE);
  const Lines names = Column(calls.Statistics(stmt, "Materials", SQL_INDEX_ALL), 6);
  EXPECT_EQ(std::count(names.begin(), names.end(), "ByName"), 1);
  const Lines unique = Column(calls.Statistics(stmt, "Materials", SQL_INDEX_UNIQUE), 9);
  EXPECT_EQ(std::count(unique.begin(), unique.end(), "Name"), 1);
}

TEST_P(Catalogue, SpecialColumnsAreTheKey)
{
  EXPECT_EQ(Column(calls.SpecialColumns(stmt, "Bolts_M"), 2), Lines{"Id"});
}

TEST_P(Catalogue, ResultsHaveTheirPublishedColumns)
{
  SQLSMALLINT columns = 0;
  ASSERT_EQ(calls.Tables(stmt, std::nullopt, std::nullopt, "%", std::nullopt), SQL_SUCCESS);
  calls.NumResultCols(stmt, &columns);
  EXPECT_EQ(columns, 5);
  ColumnDescription column = {};
  EXPECT_EQ(calls.DescribeCol(stmt, 3, column), SQL_SUCCESS);
  EXPECT_EQ(column.name, "TABLE_NAME");
  calls.FreeStmt(stmt, SQL_CLOSE);
  ASSERT_EQ(calls.Columns(stmt, "Materials", "%"), SQL_SUCCESS);
  calls.NumResultCols(stmt, &columns);
  EXPECT_EQ(columns, 18);
  EXPECT_EQ(calls.DescribeCol(stmt, 7, column), SQL_SUCCESS);
  EXPECT_EQ(column.name, "COLUMN_SIZE");
}

TEST_P(Catalogue, NumbersCanBeBoundAsNumbers)
{
  SQLSMALLINT type = 0;
  SQLINTEGER size = 0;
  calls.BindCol(stmt, 5, SQL_C_SSHORT, &type, 0, nullptr);
  calls.BindCol(stmt, 7, SQL_C_SLONG, &size, 0, nullptr);
  ASSERT_EQ(calls.Columns(stmt, "Materials", "%"), SQL_SUCCESS);
  ASSERT_EQ(calls.Fetch(stmt), SQL_SUCCESS);
  EXPECT_EQ(type, SQL_WVARCHAR);
  EXPECT_EQ(size, 5);
}

TEST_P(Catalogue, InfoNamesTheDriverAndItsFile)
{
  EXPECT_NE(InfoText(SQL_DRIVER_NAME).find("kestrelodbc"), std::string::npos);
  EXPECT_EQ(InfoText(SQL_DATABASE_NAME).empty(), false);
  EXPECT_EQ(InfoText(SQL_IDENTIFIER_QUOTE_CHAR).size(), 1U);
  EXPECT_EQ(InfoText(SQL_DRIVER_ODBC_VER).substr(0, 2), "03");
}

TEST_P(Catalogue, InfoTellsWhatTheDriverDoes)
{
  SQLUINTEGER value = 99;
  EXPECT_EQ(calls.GetInfoNumber(session.dbc, SQL_GETDATA_EXTENSIONS, value), SQL_SUCCESS);
  EXPECT_EQ(value & SQL_GD_ANY_ORDER, SQLUINTEGER{SQL_GD_ANY_ORDER});
  value = 0;
  EXPECT_EQ(calls.GetInfoNumber(session.dbc, SQL_TXN_CAPABLE, value), SQL_SUCCESS);
  EXPECT_NE(value & 0xFFFF, SQLUINTEGER{SQL_TC_NONE});
  value = 99;
  EXPECT_EQ(calls.GetInfoNumber(session.dbc, SQL_IDENTIFIER_CASE, value), SQL_SUCCESS);
  EXPECT_EQ(value & 0xFFFF, SQLUINTEGER{SQL_IC_MIXED});
}

TEST_P(Catalogue, InfoTextIsCutWithAWarning)
{
  const std::string whole = InfoText(SQL_DBMS_NAME);
  TextBuffer text = calls.Buffer(3);
  SQLSMALLINT length = 0;
  EXPECT_EQ(calls.GetInfoText(session.dbc, SQL_DBMS_NAME, text, length), SQL_SUCCESS_WITH_INFO);
  EXPECT_EQ(session.ConnectionState(), "01004");
  EXPECT_EQ(text.Text(), whole.substr(0, 2));
  EXPECT_EQ(length, calls.Argument(whole).Bytes());
}

INSTANTIATE_TEST_SUITE_P(Each, Catalogue, AllWays(), WayName);
