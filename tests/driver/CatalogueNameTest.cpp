// How names that are asked for are read, and what the catalogue tells of keys, defaults and
// indexes.

#include <algorithm>

#include "tests/driver/ConformanceTest.h"

namespace {

class CatalogueName : public ConformanceTest
{
protected:
  void SetUp() override
  {
    ConformanceTest::SetUp();
    Make(
        "CREATE TABLE [A_B] ([Id] COUNTER PRIMARY KEY, [N] LONG DEFAULT 7, [T] TEXT(5) DEFAULT "
        "'x', [Any], [P] POINT)");
    Make("CREATE TABLE [AxB] ([Id] LONG)");
    calls.FreeStmt(stmt, SQL_CLOSE);
  }

  // Fields of all rows of a catalogue call that succeeded, with | between.
  Lines Rows(SQLRETURN result, const std::vector<SQLUSMALLINT>& fields)
  {
    EXPECT_EQ(result, SQL_SUCCESS) << session.State();
    Lines lines;
    while (SQL_SUCCEEDED(calls.Fetch(stmt))) {
      std::string line;
      for (const SQLUSMALLINT field : fields)
        line += (line.empty() ? "" : "|") + session.Field(field);
      lines.push_back(line);
    }
    calls.FreeStmt(stmt, SQL_CLOSE);
    return lines;
  }

  Lines Tables(const Pattern& catalogue, const Pattern& schema, const Pattern& table,
               const Pattern& types = std::nullopt)
  {
    return Rows(calls.Tables(stmt, catalogue, schema, table, types), {3});
  }

  // SQLColumns with a schema.
  SQLRETURN ColumnsOfSchema(const std::string& name)
  {
    TextArgument schema = calls.Argument(name);
    return calls.IsWide() ? calls.Entry<decltype(&::SQLColumnsW)>("SQLColumnsW")(
                                stmt, nullptr, 0, schema.Wide(), SQL_NTS, nullptr, 0, nullptr, 0)
                          : calls.Entry<decltype(&::SQLColumns)>("SQLColumns")(
                                stmt, nullptr, 0, schema.Narrow(), SQL_NTS, nullptr, 0, nullptr, 0);
  }

  // A catalogue call on a table of a catalogue, through the entry point of that name.
  SQLRETURN Ask(const std::string& name, const std::string& catalogue, const Pattern& table)
  {
    TextArgument c = calls.Argument(catalogue);
    TextArgument t = calls.Argument(table.value_or(""));
    const SQLSMALLINT length = table ? SQLSMALLINT{SQL_NTS} : SQLSMALLINT{0};
    if (calls.IsWide()) {
      SQLWCHAR* const text = table ? t.Wide() : nullptr;
      if (name == "SQLPrimaryKeys")
        return calls.Entry<decltype(&::SQLPrimaryKeysW)>("SQLPrimaryKeysW")(
            stmt, c.Wide(), SQL_NTS, nullptr, 0, text, length);
      if (name == "SQLColumns")
        return calls.Entry<decltype(&::SQLColumnsW)>("SQLColumnsW")(
            stmt, c.Wide(), SQL_NTS, nullptr, 0, text, length, nullptr, 0);
      if (name == "SQLStatistics")
        return calls.Entry<decltype(&::SQLStatisticsW)>("SQLStatisticsW")(
            stmt, c.Wide(), SQL_NTS, nullptr, 0, text, length, SQL_INDEX_ALL, SQL_QUICK);
      return calls.Entry<decltype(&::SQLSpecialColumnsW)>("SQLSpecialColumnsW")(
          stmt, SQL_BEST_ROWID, c.Wide(), SQL_NTS, nullptr, 0, text, length, SQL_SCOPE_CURROW,
          SQL_NULLABLE);
    }
    SQLCHAR* const text = table ? t.Narrow() : nullptr;
    if (name == "SQLPrimaryKeys")
      return calls.Entry<decltype(&::SQLPrimaryKeys)>("SQLPrimaryKeys")(stmt, c.Narrow(), SQL_NTS,
                                                                        nullptr, 0, text, length);
    if (name == "SQLColumns")
      return calls.Entry<decltype(&::SQLColumns)>("SQLColumns")(stmt, c.Narrow(), SQL_NTS, nullptr,
                                                                0, text, length, nullptr, 0);
    if (name == "SQLStatistics")
      return calls.Entry<decltype(&::SQLStatistics)>("SQLStatistics")(
          stmt, c.Narrow(), SQL_NTS, nullptr, 0, text, length, SQL_INDEX_ALL, SQL_QUICK);
    return calls.Entry<decltype(&::SQLSpecialColumns)>("SQLSpecialColumns")(
        stmt, SQL_BEST_ROWID, c.Narrow(), SQL_NTS, nullptr, 0, text, length, SQL_SCOPE_CURROW,
        SQL_NULLABLE);
  }
};

const char* const CallsOnTables[] = {"SQLPrimaryKeys", "SQLColumns", "SQLStatistics",
                                     "SQLSpecialColumns"};

}  // namespace

TEST_P(CatalogueName, OfACatalogueOrASchemaFindsNothingUnlessItIsNone)
{
  EXPECT_EQ(Tables("", "", "A_B"), (Lines{"A_B", "AxB"}));
  EXPECT_EQ(Tables("%", "%", "A_B"), (Lines{"A_B", "AxB"}));
  EXPECT_EQ(Tables("main", std::nullopt, "A_B"), Lines{});
  EXPECT_EQ(Tables(std::nullopt, "dbo", "A_B"), Lines{});
  EXPECT_EQ(Rows(ColumnsOfSchema(""), {4}).size(), 6U);
  EXPECT_EQ(Rows(ColumnsOfSchema("dbo"), {4}), Lines{});
  for (const char* call : CallsOnTables) {
    EXPECT_NE(Rows(Ask(call, "", "A_B"), {1}), Lines{}) << call;
    EXPECT_EQ(Rows(Ask(call, "main", "A_B"), {1}), Lines{}) << call;
  }
}

TEST_P(CatalogueName, ThatIsMissingFindsNothingWhereOneTableIsMeant)
{
  for (const char* call : {"SQLPrimaryKeys", "SQLStatistics", "SQLSpecialColumns"})
    EXPECT_EQ(Rows(Ask(call, "", std::nullopt), {1}), Lines{}) << call;
}

TEST_P(CatalogueName, EmptyNameOfATableFindsNoTable)
{
  EXPECT_EQ(Tables("", "", ""), Lines{});
  EXPECT_EQ(Tables("%", "", ""), Lines{});
}

TEST_P(CatalogueName, IsAnIdentifierIfTheProgramSaysSo)
{
  EXPECT_EQ(calls.SetStatementNumber(stmt, SQL_ATTR_METADATA_ID, SQL_TRUE), SQL_SUCCESS);
  EXPECT_EQ(Tables(std::nullopt, std::nullopt, "a_b"), Lines{"A_B"});
  for (const char* quoted : {"[A_B]", "\"A_B\"", "`A_B`"})
    EXPECT_EQ(Tables(std::nullopt, std::nullopt, quoted), Lines{"A_B"}) << quoted;
  EXPECT_EQ(Tables(std::nullopt, std::nullopt, "%"), Lines{});
}

TEST_P(CatalogueName, TypesOfTablesMayStandInQuotesAndBlanks)
{
  for (const char* types : {"TABLE", "'TABLE'", " 'VIEW' , 'TABLE' ", "table,,"})
    EXPECT_EQ(Tables(std::nullopt, std::nullopt, "AxB", types), Lines{"AxB"}) << types;
  for (const char* types : {"VIEW", "'", "TABL", " , "})
    EXPECT_EQ(Tables(std::nullopt, std::nullopt, "AxB", types), Lines{}) << types;
}

TEST_P(CatalogueName, ColumnsTellDefaultsAndKeysThatCount)
{
  // COLUMN_NAME, TYPE_NAME, COLUMN_DEF, NULLABLE
  EXPECT_EQ(Rows(calls.Columns(stmt, "A\\_B", std::nullopt), {4, 6, 13, 11}),
            (Lines{"Id|COUNTER|NULL|0", "N|LONG|7|1", "T|TEXT|'x'|1", "Any|TEXT|NULL|1",
                   "P|BIGINT|NULL|1"}));
}

TEST_P(CatalogueName, KeyThatCountsIsTheBestRowAndAnIndex)
{
  // COLUMN_NAME, TYPE_NAME
  EXPECT_EQ(Rows(calls.SpecialColumns(stmt, "A_B"), {2, 4}), Lines{"Id|COUNTER"});
  // NON_UNIQUE, INDEX_NAME, TYPE, COLUMN_NAME
  EXPECT_EQ(Rows(calls.Statistics(stmt, "A_B", SQL_INDEX_UNIQUE), {4, 6, 7, 9}),
            (Lines{"NULL|NULL|0|NULL", "0|PrimaryKey|1|Id"}));
}

TEST_P(CatalogueName, ColumnsOfEveryChangeAreNone)
{
  const auto ask = [&](SQLUSMALLINT kind) {
    TextArgument table = calls.Argument("A_B");
    return calls.IsWide() ? calls.Entry<decltype(&::SQLSpecialColumnsW)>("SQLSpecialColumnsW")(
                                stmt, kind, nullptr, 0, nullptr, 0, table.Wide(), SQL_NTS,
                                SQL_SCOPE_CURROW, SQL_NULLABLE)
                          : calls.Entry<decltype(&::SQLSpecialColumns)>("SQLSpecialColumns")(
                                stmt, kind, nullptr, 0, nullptr, 0, table.Narrow(), SQL_NTS,
                                SQL_SCOPE_CURROW, SQL_NULLABLE);
  };
  EXPECT_EQ(Rows(ask(SQL_BEST_ROWID), {2}), Lines{"Id"});
  EXPECT_EQ(Rows(ask(SQL_ROWVER), {2}), Lines{});
}

TEST_P(CatalogueName, IndexesAreToldWithTheirOrder)
{
  Make("CREATE INDEX [ByN] ON [A_B] ([N] DESC,[T])");
  Make("CREATE UNIQUE INDEX [ByT] ON [A_B] ([T])");
  calls.FreeStmt(stmt, SQL_CLOSE);
  // NON_UNIQUE, INDEX_NAME, ORDINAL_POSITION, COLUMN_NAME, ASC_OR_DESC
  const std::vector<SQLUSMALLINT> fields{4, 6, 8, 9, 10};
  const Lines all = Rows(calls.Statistics(stmt, "A_B", SQL_INDEX_ALL), fields);
  EXPECT_EQ((Lines{all.end() - 3, all.end()}),
            (Lines{"0|ByT|1|T|A", "1|ByN|1|N|D", "1|ByN|2|T|A"}));
  const Lines unique = Rows(calls.Statistics(stmt, "A_B", SQL_INDEX_UNIQUE), fields);
  EXPECT_EQ(unique.back(), "0|ByT|1|T|A");
  EXPECT_EQ(std::count(unique.begin(), unique.end(), "1|ByN|1|N|D"), 0);
}

TEST_P(CatalogueName, IndexOfAnExpressionHasNoColumn)
{
  Make("CREATE INDEX [BySum] ON [AxB] ([Id]+1)");
  calls.FreeStmt(stmt, SQL_CLOSE);
  EXPECT_EQ(Rows(calls.Statistics(stmt, "AxB", SQL_INDEX_ALL), {6, 9}).back(), "BySum|");
}

TEST_P(CatalogueName, KeyOfTextHasTheIndexThatKeepsIt)
{
  Make("CREATE TABLE [K] ([Name] TEXT(5) PRIMARY KEY)");
  calls.FreeStmt(stmt, SQL_CLOSE);
  // NON_UNIQUE, TYPE, COLUMN_NAME
  EXPECT_EQ(Rows(calls.Statistics(stmt, "K", SQL_INDEX_UNIQUE), {4, 7, 9}),
            (Lines{"NULL|0|NULL", "0|3|Name"}));
}

TEST_P(CatalogueName, DateIsATypeByItsOldNumberToo)
{
  const Lines now = Rows(calls.GetTypeInfo(stmt, SQL_TYPE_TIMESTAMP), {1, 2});
  EXPECT_EQ(now, (Lines{"DATETIME|93", "DATE|93"}));
  EXPECT_EQ(Rows(calls.GetTypeInfo(stmt, SQL_TIMESTAMP), {1, 2}), now);
}

TEST_P(CatalogueName, DamagedTableFailsEveryCallThatLooksAtIt)
{
  Make("CREATE TABLE [Gone] ([Id] LONG)");
  Make("CREATE VIEW [Broken] AS SELECT * FROM [Gone]");
  Make("DROP TABLE [Gone]");
  Make("CREATE TABLE [Sound] ([Id] LONG)");
  calls.FreeStmt(stmt, SQL_CLOSE);
  for (const char* call : {"SQLPrimaryKeys", "SQLColumns", "SQLStatistics", "SQLSpecialColumns"}) {
    EXPECT_EQ(Ask(call, "", "Broken"), SQL_ERROR) << call;
    EXPECT_EQ(session.State(), "42S02") << call;
  }
  EXPECT_EQ(Ask("SQLColumns", "", std::nullopt), SQL_ERROR);
  EXPECT_EQ(session.State(), "42S02");
  EXPECT_EQ(Rows(Ask("SQLColumns", "", "Sound"), {4}), Lines{"Id"});
  EXPECT_EQ(Tables(std::nullopt, std::nullopt, "Broken"), Lines{"Broken"});
}

INSTANTIATE_TEST_SUITE_P(Each, CatalogueName, StraightWays(), WayName);
