// The database classes on real SQL, through the driver manager and the driver of this repository.
#include "database/InfoTable.h"
#include "database/KFProjectsVersionTable.h"
#include "database/QulPatchDatabase.h"
#include "database/TableSchema.h"

#include "tests/doubles/DebugOutputDouble.h"
#include "tests/doubles/FilesDouble.h"
#include "tests/doubles/LiveOdbc.h"
#include "tests/doubles/Text.h"
#include "tests/unit/database/UpdateSteps.h"

namespace {

const char* const TargetPath = "C:\\Data\\QuillBase.mdb";
const char* const PatchPath = "C:\\Updates\\Spring.mdb";

class LiveDatabase : public DatabaseMachine
{
protected:
  void SetUp() override
  {
    ASSERT_TRUE(UseLiveOdbc());
    TargetSql({});
    PatchSql({});
  }

  static void RunOn(const char* path, std::initializer_list<std::string> statements)
  {
    EXPECT_EQ(RunSql(path, statements), "");
  }
  static void TargetSql(std::initializer_list<std::string> statements)
  {
    RunOn(TargetPath, statements);
  }
  static void PatchSql(std::initializer_list<std::string> statements)
  {
    RunOn(PatchPath, statements);
  }

  static std::unique_ptr<QulDatabase> Open()
  {
    auto database = std::make_unique<QulDatabase>(WideText(ConnectionStringOf(TargetPath)).c_str(),
                                                  L"QuillBase");
    EXPECT_TRUE(database->connected);
    return database;
  }
  static std::unique_ptr<QulPatchDatabase> OpenLivePatch()
  {
    auto patch = std::make_unique<QulPatchDatabase>(WideText(ConnectionStringOf(PatchPath)).c_str(),
                                                    L"Spring.mdb");
    EXPECT_TRUE(patch->connected);
    return patch;
  }
};

}  // namespace

TEST_F(LiveDatabase, IsConnectedTo)
{
  auto database = Open();
  EXPECT_TRUE(DebugTexts().empty());
  EXPECT_EQ(database->GetMajorNumber(), 0);
  database.reset();
  EXPECT_EQ(DiaryOf({"SQLDisconnect"}), (Lines{"SQLDisconnect(dbc#1) = 0"}));
}

TEST_F(LiveDatabase, ThatIsNotThereLeavesOneTraceAndNoFile)
{
  const QulDatabase database(WideText(ConnectionStringOf("C:\\Data\\none.mdb")).c_str(), L"None");
  EXPECT_FALSE(database.connected);
  EXPECT_EQ(DebugTexts(), (Lines{"\n", "Error driver connect to database."}));
  EXPECT_FALSE(Files().Exists("C:\\Data\\none.mdb"));
}

TEST_F(LiveDatabase, WithoutAFileInItsConnectionStringIsNotConnected)
{
  const QulDatabase database(L"", L"None");
  EXPECT_FALSE(database.connected);
  EXPECT_EQ(DebugTexts(), (Lines{"\n", "Error driver connect to database."}));
}

TEST_F(LiveDatabase, HasTheVersionThatIsStored)
{
  TargetSql({"CREATE TABLE KFVersion ([Attribute] TEXT(50), [Value] TEXT(50))",
             "INSERT INTO KFVersion VALUES ('MajorNumber', '10')",
             "INSERT INTO KFVersion VALUES ('MinorNumber', '007')",
             "INSERT INTO KFVersion VALUES ('CommSPNumber', ' -3b')",
             "INSERT INTO KFVersion VALUES ('BuildNumber', '1e5')"});
  auto database = Open();
  EXPECT_EQ(database->GetMajorNumber(), 10);
  EXPECT_EQ(database->GetMinorNumber(), 7);
  EXPECT_EQ(database->GetCommSPNumber(), -3);
  EXPECT_EQ(database->GetBuildNumber(), 0);
}

TEST_F(LiveDatabase, CutsLongTextsAndRepeatsTheRowBeforeForANull)
{
  TargetSql({"CREATE TABLE KFProjectsVersion ([Attribute] TEXT(255), [Value] TEXT(255))",
             "INSERT INTO KFProjectsVersion VALUES ('" + Letters(50, 'a') + "', '1')",
             "INSERT INTO KFProjectsVersion VALUES ('Plant', NULL)",
             "INSERT INTO KFProjectsVersion VALUES ('', '3')",
             "INSERT INTO KFProjectsVersion VALUES ('Grade', '4')"});
  auto database = Open();
  const QulArray<AttributeValue>& rows = database->projectsVersionTable->rows;
  ASSERT_EQ(rows.count, 3);
  EXPECT_EQ(TextOf(rows.data[0].attribute), Letters(49, 'a'));
  EXPECT_EQ(TextOf(rows.data[1].attribute) + TextOf(rows.data[1].value), "Plant1");
  EXPECT_EQ(TextOf(rows.data[2].attribute) + TextOf(rows.data[2].value), "Grade4");
}

TEST_F(LiveDatabase, ReadsItsInfoFromAMemo)
{
  const std::string value = "Base;" + Letters(60000, 'v') + ";\u0141\U0001F529";
  TargetSql({"CREATE TABLE Info ([Name] TEXT(50), [Value] MEMO, [Type] TEXT(255))",
             "INSERT INTO Info VALUES ('Texts', '" + value + "', 'LanguageDependentTables')"});
  SetLanguage(1043);
  auto database = Open();
  ASSERT_EQ(database->infoTable->rows.count, 1);
  EXPECT_TRUE(TextOf(database->infoTable->rows.data[0].value) == value);
  QulString answer;
  EXPECT_TRUE(database->infoTable->ResolveTableName(L"texts", answer));
  EXPECT_EQ(TextOf(answer), "\u0141\U0001F529");
}

TEST_F(LiveDatabase, DescribesATableWithItsTypes)
{
  TargetSql(
      {"CREATE TABLE Parts ([Id] LONG NOT NULL, [Name] TEXT(30), [Note] MEMO, "
       "[Made] DATETIME, [Mass] DOUBLE, [Used] BIT, PRIMARY KEY ([Id]))"});
  auto database = Open();
  const std::unique_ptr<TableSchema> schema(database->ReadTableSchema(L"Parts", true));
  Lines columns;
  for (int i = 0; i < schema->columnCount; ++i) {
    const TableColumn& column = *schema->columns[i];
    columns.push_back(TextOf(column.name) + " " + std::to_string(column.sqlType) +
                      (column.isNullable ? " nullable" : ""));
  }
  EXPECT_EQ(columns, (Lines{"Id 4", "Name -9 nullable", "Note -10 nullable", "Made 93 nullable",
                            "Mass 8 nullable", "Used -7 nullable"}));
  ASSERT_EQ(schema->columnCount, 6);
  EXPECT_EQ(schema->columns[1]->size, 30);
  EXPECT_EQ(schema->columns[2]->size, 65535);
}

TEST_F(LiveDatabase, KnowsWhichTablesItHas)
{
  TargetSql({"CREATE TABLE Parts ([Id] LONG)", "CREATE TABLE Bolts ([Id] LONG)",
             "CREATE VIEW Heavy AS SELECT * FROM Parts"});
  auto database = Open();
  EXPECT_TRUE(database->TableExists(L"PARTS"));
  EXPECT_FALSE(database->TableExists(L"Nuts"));
  EXPECT_FALSE(database->TableExists(L""));
  EXPECT_EQ(TextsOf(database->GetTableNames()), (Lines{"Bolts", "Parts"}));
  EXPECT_TRUE(DebugTexts().empty());
}

TEST_F(LiveDatabase, RunsStatementsThatTakeEffectByThemselves)
{
  TargetSql({"CREATE TABLE Parts ([Id] LONG, [Name] TEXT(30))"});
  auto database = Open();
  EXPECT_TRUE(database->executeSQL(L"INSERT INTO Parts VALUES (1, 'Bolt')"));
  EXPECT_TRUE(database->executeSQL(L"UPDATE Parts SET [Name]='Nut' WHERE [Id]=1"));
  EXPECT_EQ(SelectRows(TargetPath, "SELECT * FROM Parts"), (Lines{"1|Nut"}));
  EXPECT_TRUE(DebugTexts().empty());
}

TEST_F(LiveDatabase, TracesAnUpdateOfNoRowAndAStatementThatIsWrong)
{
  TargetSql({"CREATE TABLE Parts ([Id] LONG)"});
  auto database = Open();
  EXPECT_FALSE(database->executeSQL(L"UPDATE Parts SET [Id]=2 WHERE [Id]=1"));
  EXPECT_FALSE(database->executeSQL(L"UPDATE Nuts SET [Id]=2"));
  const std::string message = "Error executeSQL in QuillBase database.";
  EXPECT_EQ(DebugTexts(), (Lines{"\n", message, "\n", "UPDATE Parts SET [Id]=2 WHERE [Id]=1", "\n",
                                 message, "\n", "UPDATE Nuts SET [Id]=2"}));
  EXPECT_EQ(DiaryOf({"SQLExecDirectW"})[3].substr(0, 22), "SQLExecDirectW(stmt#4,");
}

TEST_F(LiveDatabase, DropsATableOrTracesThatItCannot)
{
  TargetSql({"CREATE TABLE Parts ([Id] LONG)"});
  auto database = Open();
  database->DropTable(L"Parts");
  EXPECT_FALSE(database->TableExists(L"Parts"));
  EXPECT_TRUE(DebugTexts().empty());
  database->DropTable(L"Parts");
  EXPECT_EQ(DebugTexts(), (Lines{"\n", "Unable to drop table Parts"}));
}

TEST_F(LiveDatabase, OfAPatchHasItsStepsInTheOrderOfTheirNumber)
{
  PatchSql(
      {"CREATE TABLE UpdateTable ([ID] LONG, [Db] TEXT(50), [Source] TEXT(255), "
       "[Target] TEXT(50), [D] BIT, [R] BIT, [C] BIT)",
       "INSERT INTO UpdateTable VALUES (30, 'QuillBase', 'Rel', 'InfoTableRelations', 0, 0, 1)",
       "INSERT INTO UpdateTable VALUES (9, 'QuillBase', 'Pla*', 'Plates', 1, 0, 0)",
       "INSERT INTO UpdateTable VALUES (20, 'QuillRules', '" + Letters(60, 's') +
           "', 'T', 0, 1, 0)",
       "CREATE TABLE Plates1 ([Id] LONG)", "CREATE TABLE PLATES2 ([Id] LONG)"});
  auto patch = OpenLivePatch();
  auto target = Open();
  EXPECT_EQ(StepsOf(patch->updateTable->steps),
            (Lines{"QuillBase Pla*>Plates 100", "QuillRules " + Letters(49, 's') + ">T 010",
                   "QuillBase Rel>InfoTableRelations 001"}));
  EXPECT_EQ(StepsOf(patch->updateTable->PrepareSteps(*patch, *target)),
            (Lines{"QuillBase Rel>InfoTableRelations 001", "QuillBase Plates1>Plates 100",
                   "QuillBase PLATES2>Plates 100"}));
}

TEST_F(LiveDatabase, OfAPatchTakesTheUpdateTableOfTheLanguage)
{
  SetLanguage(1036);
  const std::string columns =
      " ([ID] LONG, [B] TEXT(50), [S] TEXT(50), [T] TEXT(50), [D] BIT, "
      "[R] BIT, [C] BIT)";
  PatchSql({"CREATE TABLE Info ([Name] TEXT(50), [Value] MEMO, [Type] TEXT(255))",
            "INSERT INTO Info VALUES ('UpdateTable', 'UpdateTable;Update_fr', "
            "'LanguageDependentTables')",
            "CREATE TABLE UpdateTable" + columns, "CREATE TABLE Update_fr" + columns,
            "INSERT INTO Update_fr VALUES (1, 'QuillBase', 'A', 'B', 0, 0, 0)"});
  EXPECT_EQ(StepsOf(OpenLivePatch()->updateTable->steps), (Lines{"QuillBase A>B 000"}));
}

TEST_F(LiveDatabase, NamesTheKeysOfItsTables)
{
  TargetSql(
      {"CREATE TABLE InfoTableRelations ([ID] LONG, [TableName] TEXT(50), "
       "[ColumnName] TEXT(50), [TypeProperty] TEXT(50))",
       "INSERT INTO InfoTableRelations VALUES (1, 'Parts', 'Name', 'primarykey')",
       "INSERT INTO InfoTableRelations VALUES (2, 'Bolts', 'Id', 'PrimaryKey')",
       "CREATE TABLE Parts ([Id] LONG, [Name] TEXT(30))"});
  auto patch = OpenLivePatch();
  auto target = Open();
  patch->targetDatabase = target.get();
  const std::unique_ptr<TableSchema> parts(target->ReadTableSchema(L"Parts", false));
  patch->MarkKeyColumns(L"Parts", *parts);
  ASSERT_EQ(parts->columnCount, 2);
  EXPECT_FALSE(parts->columns[0]->isKey);
  EXPECT_TRUE(parts->columns[1]->isKey);
  EXPECT_TRUE(parts->hasKey);
  EXPECT_TRUE(DebugTexts().empty());
}

TEST_F(LiveDatabase, WithoutRelationsHasTheFirstColumnForAKey)
{
  TargetSql({"CREATE TABLE Parts ([Id] LONG, [Name] TEXT(30))"});
  auto patch = OpenLivePatch();
  auto target = Open();
  patch->targetDatabase = target.get();
  const std::unique_ptr<TableSchema> parts(target->ReadTableSchema(L"Parts", false));
  patch->MarkKeyColumns(L"Parts", *parts);
  ASSERT_EQ(parts->columnCount, 2);
  EXPECT_TRUE(parts->columns[0]->isKey);
  EXPECT_FALSE(parts->hasKey);
  EXPECT_EQ(DebugTexts().size(), 2u);
}

TEST_F(LiveDatabase, IsNotChangedByBeingOpenedAndRead)
{
  TargetSql({"CREATE TABLE Parts ([Id] LONG)"});
  const std::string before = Files().Read(TargetPath);
  {
    auto database = Open();
    (void)database->GetTableNames();
    (void)database->TableExists(L"Parts");
  }
  EXPECT_FALSE(before.empty());
  EXPECT_TRUE(Files().Read(TargetPath) == before);
}
