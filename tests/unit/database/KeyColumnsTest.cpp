#include "database/QulPatchDatabase.h"

#include "database/TableSchema.h"

#include "tests/doubles/DebugOutputDouble.h"
#include "tests/unit/database/DatabaseMachine.h"
#include "tests/unit/foundation/Texts.h"

#include <algorithm>
#include <utility>

namespace {

const char* const PartsQuery =
    "SELECT [ColumnName],[TypeProperty] FROM [InfoTableRelations] WHERE [TableName] = 'Parts'";
const char* const PartsMessage =
    "Unable to read PrimaryKey or Unique info for table Parts!\n"
    ".First column will be marked as PK!";

// Parts with three columns that may be null.
class KeyColumns : public DatabaseMachine
{
protected:
  KeyColumns() : schema(L"Parts")
  {
    for (const wchar_t* name : {L"A", L"B", L"C"}) {
      schema.AddColumn(new TableColumn(name, SQL_WVARCHAR, 10));
      schema.columns[schema.columnCount - 1]->isNullable = true;
    }
  }

  // The relations of Parts, stored in the target.
  static void SetRelations(const OdbcRows& rows) { Target().Query(PartsQuery, rows); }

  // The target, and the patch that is about to bring it up to date.
  static std::pair<std::unique_ptr<QulDatabase>, std::unique_ptr<QulPatchDatabase>> OpenBoth()
  {
    auto target = OpenTarget();
    auto patch = OpenPatch();
    patch->targetDatabase = target.get();
    return {std::move(target), std::move(patch)};
  }

  void Mark()
  {
    const auto [target, patch] = OpenBoth();
    patch->MarkKeyColumns(L"Parts", schema);
  }

  void MarkBy(const OdbcRows& rows)
  {
    SetRelations(rows);
    Mark();
  }

  // The names of the key columns. All that belongs to a key's column goes together.
  std::string Key() const
  {
    std::string key;
    for (int i = 0; i < schema.columnCount; ++i) {
      const TableColumn& column = *schema.columns[i];
      EXPECT_EQ(column.isUnique, column.isKey);
      EXPECT_EQ(column.isNullable, !column.isKey);
      if (column.isKey)
        key += TextOf(column.name);
    }
    return key;
  }

  // The first column stands in for a key, and it was said.
  void ExpectFallback() const
  {
    EXPECT_EQ(Key(), "A");
    EXPECT_FALSE(schema.hasKey);
    EXPECT_EQ(DebugTexts(), (Lines{"\n", PartsMessage}));
  }

  TableSchema schema;
};

}  // namespace

TEST_F(KeyColumns, AreThoseThatTheTargetNames)
{
  MarkBy({{"B", "PrimaryKey"}});
  EXPECT_EQ(Key(), "B");
  EXPECT_TRUE(schema.hasKey);
  EXPECT_TRUE(DebugTexts().empty());
}

TEST_F(KeyColumns, AreReadFromTheTargetByPosition)
{
  const auto [target, patch] = OpenBoth();
  SetRelations({{"B", "Unique"}});
  patch->MarkKeyColumns(L"Parts", schema);
  EXPECT_EQ(Diary(), (Lines{"SQLAllocHandle(STMT, dbc#1) = 0 stmt#8",
                            std::string("SQLExecDirectW(stmt#8, \"") + PartsQuery + "\", -3) = 0",
                            "SQLBindCol(stmt#8, 1, -8, 510, ind#1) = 0",
                            "SQLBindCol(stmt#8, 2, -8, 510, ind#2) = 0", "SQLFetch(stmt#8) = 0",
                            "SQLFetch(stmt#8) = 100", "SQLCloseCursor(stmt#8) = 0",
                            "SQLFreeHandle(STMT, stmt#8) = 0"}));
}

TEST_F(KeyColumns, AreThePrimaryOnesAndTheUniqueOnes)
{
  MarkBy({{"A", "Unique"}, {"B", "PrimaryKey"}, {"C", "Unique"}});
  EXPECT_EQ(Key(), "ABC");
}

TEST_F(KeyColumns, AreNamedInAnyCase)
{
  MarkBy({{"a", "primarykey"}, {"C", "UNIQUE"}});
  EXPECT_EQ(Key(), "AC");
}

TEST_F(KeyColumns, AreNoneOfAnotherProperty)
{
  MarkBy({{"A", "Index"}, {"B", "PrimaryKey"}, {"C", ""}, {"C", "Primary"}, {"C", "UniqueKey"}});
  EXPECT_EQ(Key(), "B");
}

TEST_F(KeyColumns, MayBeNamedTwice)
{
  MarkBy({{"B", "PrimaryKey"}, {"B", "Unique"}});
  EXPECT_EQ(Key(), "B");
  EXPECT_TRUE(DebugTexts().empty());
}

TEST_F(KeyColumns, ThatTheSchemaLacksAreMissedIfThereIsNoOther)
{
  MarkBy({{"D", "PrimaryKey"}, {"E", "Unique"}});
  ExpectFallback();
}

TEST_F(KeyColumns, ThatTheSchemaLacksAreNotMissedBesideOthers)
{
  MarkBy({{"C", "Unique"}, {"D", "PrimaryKey"}});
  EXPECT_EQ(Key(), "C");
  EXPECT_TRUE(schema.hasKey);
  EXPECT_TRUE(DebugTexts().empty());
}

TEST_F(KeyColumns, OfATableWithoutRowsAreTheFirstColumn)
{
  MarkBy({});
  ExpectFallback();
}

TEST_F(KeyColumns, OfATargetWithoutRelationsAreTheFirstColumn)
{
  Mark();
  ExpectFallback();
}

TEST_F(KeyColumns, OfRowsThatNameNoneAreTheFirstColumn)
{
  MarkBy({{"B", "Index"}});
  ExpectFallback();
}

TEST_F(KeyColumns, OfAQueryThatFailsAreTheFirstColumn)
{
  for (const int code : FailureCodes) {
    const auto [target, patch] = OpenBoth();
    Target().Query(PartsQuery, {{"B", "Unique"}}, code);
    TableSchema other(L"Parts");
    other.AddColumn(new TableColumn(L"A", SQL_INTEGER, 10));
    patch->MarkKeyColumns(L"Parts", other);
    EXPECT_FALSE(other.hasKey) << code;
    EXPECT_TRUE(other.columns[0]->isKey) << code;
    EXPECT_TRUE(DiaryOf({"SQLBindCol", "SQLFetch"}).empty()) << code;
    EXPECT_EQ(DiaryOf({"SQLCloseCursor"}).size(), 1u) << code;
  }
}

TEST_F(KeyColumns, OfAQueryThatSucceedsWithInformationAreRead)
{
  Target().Query(PartsQuery, {{"B", "Unique"}}, SQL_SUCCESS_WITH_INFO);
  Mark();
  EXPECT_EQ(Key(), "B");
}

TEST_F(KeyColumns, AreReportedBeforeTheStatementIsFreed)
{
  const auto [target, patch] = OpenBoth();
  patch->MarkKeyColumns(L"Parts", schema);
  EXPECT_EQ(DiaryAfter("SQLExecDirectW"),
            (Lines{"SQLCloseCursor(stmt#8) = -1", "OutputDebugStringW(\"\n\")",
                   std::string("OutputDebugStringW(\"") + PartsMessage + "\")",
                   "SQLFreeHandle(STMT, stmt#8) = 0"}));
}

TEST_F(KeyColumns, WithoutAStatementAreTheFirstColumn)
{
  const auto [target, patch] = OpenBoth();
  SetRelations({{"B", "Unique"}});
  FailOdbcCall("SQLAllocHandle", 1, SQL_ERROR);
  patch->MarkKeyColumns(L"Parts", schema);
  ExpectFallback();
}

TEST_F(KeyColumns, OfAnUnconnectedTargetAreTheFirstColumn)
{
  auto target = UnconnectedDatabase();
  auto patch = OpenPatch();
  patch->targetDatabase = target.get();
  const size_t textsBefore = DebugTexts().size();
  patch->MarkKeyColumns(L"Parts", schema);
  EXPECT_EQ(Key(), "A");
  EXPECT_EQ(DebugTexts().size(), textsBefore + 2);
  EXPECT_TRUE(DiaryOf({"SQLAllocHandle", "SQLFreeHandle"}).empty());
}

TEST_F(KeyColumns, OfASchemaWithoutColumnsAreReportedAndNoMore)
{
  const auto [target, patch] = OpenBoth();
  TableSchema empty(L"Parts");
  patch->MarkKeyColumns(L"Parts", empty);
  EXPECT_EQ(DebugTexts(), (Lines{"\n", PartsMessage}));
  EXPECT_FALSE(empty.hasKey);
}

TEST_F(KeyColumns, OfTheRelationsThemselvesAreTheFirstColumnWithoutAQuestion)
{
  for (const wchar_t* table : {L"InfoTableRelations", L"INFOTABLERELATIONS"}) {
    const auto [target, patch] = OpenBoth();
    patch->MarkKeyColumns(table, schema);
    EXPECT_TRUE(Diary().empty());
  }
  EXPECT_EQ(Key(), "A");
  EXPECT_FALSE(schema.hasKey);
  EXPECT_TRUE(DebugTexts().empty());
}

TEST_F(KeyColumns, OfTheRelationsWithoutColumnsAreNone)
{
  auto patch = OpenPatch();
  TableSchema empty(L"InfoTableRelations");
  patch->MarkKeyColumns(L"InfoTableRelations", empty);
  EXPECT_EQ(empty.columnCount, 0);
}

TEST_F(KeyColumns, KeepThoseBeforeAnErrorInTheMiddle)
{
  for (const int code : FailureCodes) {
    MarkBy({{"B", "Unique"}, FetchGives(code), {"C", "Unique"}});
    EXPECT_EQ(Key(), "B") << code;
  }
}

TEST_F(KeyColumns, GoOnAfterAFetchWithInformation)
{
  MarkBy({FetchGives(SQL_SUCCESS_WITH_INFO, {"B", "Unique"}), {"C", "Unique"}});
  EXPECT_EQ(Key(), "BC");
}

TEST_F(KeyColumns, AreTheFirstIfTheirNamesOrPropertiesCannotBeBound)
{
  SoilStack();
  SetRelations({{"B", "Unique"}});
  for (const int column : {1, 2}) {
    const auto [target, patch] = OpenBoth();
    FailOdbcCall("SQLBindCol", column, SQL_ERROR);
    patch->MarkKeyColumns(L"Parts", schema);
    EXPECT_EQ(Key(), "A") << column;
    EXPECT_FALSE(schema.hasKey) << column;
  }
}

TEST_F(KeyColumns, AreMarkedWhateverTheCloseOfTheCursorReturns)
{
  SetRelations({{"B", "Unique"}});
  FailOdbcCall("SQLCloseCursor", 1, SQL_ERROR);
  Mark();
  EXPECT_EQ(Key(), "B");
}

TEST_F(KeyColumns, RepeatTheRowBeforeForANull)
{
  MarkBy({{"B", "Unique"}, {"C", nullptr}, {nullptr, "Unique"}});
  EXPECT_EQ(Key(), "BC");
}

TEST_F(KeyColumns, AreNoneForANullAtTheStart)
{
  SoilStack();
  MarkBy({{nullptr, "Unique"}, {"A", nullptr}});
  EXPECT_EQ(Key(), "A");
  EXPECT_TRUE(schema.hasKey);
}

TEST_F(KeyColumns, AreCutAtTheirBuffers)
{
  schema.AddColumn(new TableColumn(Handle(Letters(254)).Text(), SQL_INTEGER, 10));
  schema.columns[3]->isNullable = true;
  MarkBy({{Letters(255), "Unique"}, {"B", "Unique" + Letters(300)}});
  EXPECT_EQ(Key(), Letters(254));
}

TEST_F(KeyColumns, AreAskedForByTheNameAsItStands)
{
  const auto [target, patch] = OpenBoth();
  patch->MarkKeyColumns(L"O'Neill %s", schema);
  EXPECT_EQ(DiaryOf({"SQLExecDirectW"}),
            (Lines{"SQLExecDirectW(stmt#8, \"SELECT [ColumnName],[TypeProperty] FROM "
                   "[InfoTableRelations] WHERE [TableName] = 'O'Neill %s'\", -3) = -1"}));
  EXPECT_EQ(DebugTexts().back(),
            "Unable to read PrimaryKey or Unique info for table O'Neill %s!\n"
            ".First column will be marked as PK!");
}

TEST_F(KeyColumns, OfATableWithALongNameAreReportedAsFarAsAMessageGoes)
{
  const auto [target, patch] = OpenBoth();
  for (const int length : {300, 900, 940, 941, 1024, 2000}) {
    const std::string name = Letters(length, 't');
    patch->MarkKeyColumns(WideText(name).c_str(), schema);
    const std::string wanted = "Unable to read PrimaryKey or Unique info for table " + name +
                               "!\n.First column will be marked as PK!";
    const std::string& traced = DebugTexts().back();
    EXPECT_EQ(traced, wanted.substr(0, traced.size()));
    EXPECT_GE(traced.size(), std::min<size_t>(wanted.size(), 1023)) << length;
  }
}
