#include "database/InfoTable.h"

#include "database/QulDatabase.h"

#include "tests/doubles/DebugOutputDouble.h"
#include "tests/doubles/RegistryDouble.h"
#include "tests/unit/database/DatabaseMachine.h"
#include "tests/unit/foundation/Texts.h"
#include "tests/unit/settings/SettingsMachine.h"

#include <map>

namespace {

Lines RowsOf(const QulArray<InfoRow>& rows)
{
  Lines lines;
  for (int i = 0; i < rows.count; ++i) {
    lines.push_back(TextOf(rows.data[i].name) + "|" + TextOf(rows.data[i].value) + "|" +
                    TextOf(rows.data[i].type));
  }
  return lines;
}

class Info : public DatabaseMachine
{
protected:
  static Lines Read(const OdbcRows& rows)
  {
    Target().Table("Info", rows);
    return RowsOf(OpenTarget()->infoTable->rows);
  }

  static int32_t Language() { return UnconnectedDatabase()->infoTable->languageId; }

  static void SetRawLanguage(DWORD type, const std::vector<unsigned char>& bytes)
  {
    Registry().SetRaw(HKEY_LOCAL_MACHINE, RegistryView::Native, EnvironmentPath, "Language", type,
                      bytes);
  }
};

}  // namespace

TEST_F(Info, HoldsTheRowsInTheirOrder)
{
  EXPECT_EQ(Read({{"B", "1;2", "LanguageDependent"}, {"A", "x", "Other"}}),
            (Lines{"B|1;2|LanguageDependent", "A|x|Other"}));
}

TEST_F(Info, IsReadByPositionWithOneLengthWord)
{
  SetLanguage(1031);
  Target().Table("Info", {{"Parts", "X;Y", "LanguageDependent"}});
  auto database = OpenTarget();
  const InfoTable table(*database);
  EXPECT_EQ(
      Diary(),
      (Lines{
          R"(RegOpenKeyExW(HKLM, "Software\Norvane\Kestrelforge\2010\Environment", 0, 0x20019) = 0 #2)",
          R"(RegQueryValueExW(#2, "Language", type null, 4) = 0)", "RegCloseKey(#2) = 0",
          "SQLAllocHandle(STMT, dbc#1) = 0 stmt#4",
          R"(SQLExecDirectW(stmt#4, "SELECT * FROM Info", -3) = 0)",
          "SQLBindCol(stmt#4, 1, -8, 100, ind#1) = 0",
          "SQLBindCol(stmt#4, 2, -8, 131070, ind#1) = 0",
          "SQLBindCol(stmt#4, 3, -8, 510, ind#1) = 0", "SQLFetch(stmt#4) = 0",
          "SQLFetch(stmt#4) = 100", "SQLFreeHandle(STMT, stmt#4) = 0"}));
}

TEST_F(Info, ThatIsMissingIsEmptyWithoutATraceAndFreed)
{
  auto database = OpenTarget();
  const InfoTable table(*database);
  EXPECT_EQ(table.rows.count, 0);
  EXPECT_EQ(DiaryAfter("SQLExecDirectW"), (Lines{"SQLFreeHandle(STMT, stmt#4) = 0"}));
  EXPECT_TRUE(DebugTexts().empty());
}

TEST_F(Info, ThatIsMissingMakesNoTableDependOnTheLanguage)
{
  auto database = OpenTarget();
  QulString answer(L"before");
  EXPECT_FALSE(database->infoTable->ResolveTableName(L"Parts", answer));
  EXPECT_FALSE(database->infoTable->FindAlternateColumn(L"Parts", L"Name", answer));
  EXPECT_EQ(TextOf(answer), "before");
}

TEST_F(Info, WhoseQueryFailsIsEmpty)
{
  for (const int code : FailureCodes) {
    Target().Query("SELECT * FROM Info", {{"A", "B", "C"}}, code);
    auto database = OpenTarget();
    EXPECT_EQ(database->infoTable->rows.count, 0) << code;
  }
}

TEST_F(Info, WhoseQuerySucceedsWithInformationIsRead)
{
  Target().Query("SELECT * FROM Info", {{"A", "B", "C"}}, SQL_SUCCESS_WITH_INFO);
  EXPECT_EQ(RowsOf(OpenTarget()->infoTable->rows), (Lines{"A|B|C"}));
}

TEST_F(Info, WithoutAStatementIsEmptyAndFreesNothing)
{
  Target().Table("Info", {{"A", "B", "C"}});
  auto database = OpenTarget();
  for (const int code : FailureCodes) {
    ClearDiary();
    FailOdbcCall("SQLAllocHandle", 1, code);
    const InfoTable table(*database);
    EXPECT_EQ(table.rows.count, 0) << code;
    EXPECT_TRUE(DiaryAfter("SQLAllocHandle").empty()) << code;
  }
}

TEST_F(Info, OfAStatementAllocatedWithInformationIsRead)
{
  Target().Table("Info", {{"A", "B", "C"}});
  auto database = OpenTarget();
  FailOdbcCall("SQLAllocHandle afterwards", 1, SQL_SUCCESS_WITH_INFO);
  const InfoTable table(*database);
  EXPECT_EQ(RowsOf(table.rows), (Lines{"A|B|C"}));
}

TEST_F(Info, OfAnUnconnectedDatabaseIsEmptyAndHasItsLanguage)
{
  SetLanguage(1031);
  auto database = UnconnectedDatabase();
  const InfoTable table(*database);
  EXPECT_EQ(table.rows.count, 0);
  EXPECT_EQ(table.languageId, 1031);
  EXPECT_TRUE(DiaryOf({"SQLAllocHandle", "SQLExecDirectW", "SQLFreeHandle"}).empty());
}

TEST_F(Info, RepeatsTheRowBeforeForANull)
{
  EXPECT_EQ(Read({{"A", "B", "C"},
                  {nullptr, "b", "c"},
                  {"a", nullptr, "cc"},
                  {"aa", "bb", nullptr},
                  {nullptr, nullptr, nullptr}}),
            (Lines{"A|B|C", "A|b|c", "a|b|cc", "aa|bb|cc", "aa|bb|cc"}));
}

TEST_F(Info, HasAnEmptyTextForANullAtTheStart)
{
  SoilStack();
  EXPECT_EQ(Read({{nullptr, "B", "C"}}), (Lines{"|B|C"}));
  EXPECT_EQ(Read({{"A", nullptr, "C"}}), (Lines{"A||C"}));
  EXPECT_EQ(Read({{"A", "B", nullptr}}), (Lines{"A|B|"}));
}

TEST_F(Info, KeepsRowsOfEmptyTexts)
{
  EXPECT_EQ(Read({{"", "", ""}, {"A", "", "C"}}), (Lines{"||", "A||C"}));
}

TEST_F(Info, CutsEachTextAtItsBuffer)
{
  const Lines rows = Read({{Letters(50, 'n'), Letters(65535, 'v'), Letters(255, 't')},
                           {Letters(49, 'n'), Letters(65534, 'v'), Letters(254, 't')}});
  const std::string expected =
      Letters(49, 'n') + "|" + Letters(65534, 'v') + "|" + Letters(254, 't');
  ASSERT_EQ(rows.size(), 2u);
  EXPECT_TRUE(rows[0] == expected) << rows[0].size();
  EXPECT_TRUE(rows[1] == expected) << rows[1].size();
}

TEST_F(Info, IgnoresColumnsBehindTheThird)
{
  EXPECT_EQ(Read({{"A", "B", "C", "D"}}), (Lines{"A|B|C"}));
}

TEST_F(Info, KeepsTheRowsBeforeAnErrorInTheMiddle)
{
  for (const int code : FailureCodes) {
    EXPECT_EQ(Read({{"A", "B", "C"}, FetchGives(code), {"D", "E", "F"}}), (Lines{"A|B|C"}));
    EXPECT_EQ(Odbc().OpenStatements(), 0);
  }
  EXPECT_TRUE(DebugTexts().empty());
}

TEST_F(Info, GoesOnAfterAFetchWithInformation)
{
  EXPECT_EQ(Read({FetchGives(SQL_SUCCESS_WITH_INFO, {"A", "B", "C"}), {"D", "E", "F"}}),
            (Lines{"A|B|C", "D|E|F"}));
}

TEST_F(Info, HasAnEmptyTextForAColumnThatCannotBeBound)
{
  SoilStack();
  Target().Table("Info", {{"A", "B", "C"}});
  auto database = OpenTarget();
  const char* const expected[] = {"|B|C", "A||C", "A|B|"};
  for (int column = 1; column <= 3; ++column) {
    FailOdbcCall("SQLBindCol", column, SQL_ERROR);
    EXPECT_EQ(RowsOf(InfoTable(*database).rows), (Lines{expected[column - 1]}));
  }
}

TEST_F(Info, TakesTheLanguageOfTheInstallation)
{
  SetLanguage(1031);
  EXPECT_EQ(Language(), 1031);
}

TEST_F(Info, HasTheDefaultLanguageWithoutTheKeyOrTheValue)
{
  EXPECT_EQ(Language(), 9);
  Registry().AddKey(HKEY_LOCAL_MACHINE, RegistryView::Native, EnvironmentPath);
  EXPECT_EQ(Language(), 9);
  EXPECT_EQ(Registry().OpenHandleCount(), 0);
}

TEST_F(Info, HasTheDefaultLanguageIfTheKeyOrTheValueCannotBeRead)
{
  SetLanguage(1031);
  FailCall("RegOpenKeyExW", 1, ERROR_ACCESS_DENIED);
  EXPECT_EQ(Language(), 9);
  FailCall("RegQueryValueExW", 1, ERROR_ACCESS_DENIED);
  EXPECT_EQ(Language(), 9);
  EXPECT_EQ(Registry().OpenHandleCount(), 0);
}

TEST_F(Info, LooksForTheLanguageInTheMachineAlone)
{
  Registry().SetNumber(HKEY_CURRENT_USER, RegistryView::Native, EnvironmentPath, "Language", 1031);
  EXPECT_EQ(Language(), 9);
}

TEST_F(Info, TakesTheBytesOfTheLanguageWhateverTheirType)
{
  for (const int type : {REG_NONE, REG_SZ, REG_BINARY, REG_DWORD}) {
    SetRawLanguage(static_cast<DWORD>(type), {0x07, 0x04, 0, 0});
    EXPECT_EQ(Language(), 1031) << type;
  }
  SetRawLanguage(REG_DWORD, {0xFF, 0xFF, 0xFF, 0xFF});
  EXPECT_EQ(Language(), -1);
}

TEST_F(Info, FillsALanguageOfFewerBytesWithZeros)
{
  SetRawLanguage(REG_DWORD, {0x07, 0x04});
  EXPECT_EQ(Language(), 1031);
}

TEST_F(Info, HasTheDefaultForALanguageOfMoreThanFourBytes)
{
  SetRawLanguage(REG_BINARY, {0x07, 0x04, 0, 0, 0});
  EXPECT_EQ(Language(), 9);
  SetRawLanguage(REG_SZ, TextBytesWithTerminator("1031"));
  EXPECT_EQ(Language(), 9);
}

TEST_F(Info, HasAPlaceForEachLanguage)
{
  const std::map<int32_t, int32_t> places = {
      {1036, 1}, {1043, 2}, {1031, 3},  {2057, 4},  {1029, 5},  {1049, 6},  {1045, 7},  {3084, 8},
      {1033, 9}, {9, 10},   {1034, 11}, {2052, 13}, {1041, 14}, {1048, 19}, {3082, 20}, {1038, 21}};
  auto database = UnconnectedDatabase();
  InfoTable& table = *database->infoTable;
  for (table.languageId = -10; table.languageId < 70000; ++table.languageId) {
    const auto place = places.find(table.languageId);
    const int32_t expected = place == places.end() ? 4 : place->second;
    ASSERT_EQ(table.LanguageIndex(), expected) << table.languageId;
  }
}

TEST_F(Info, HasThePlaceOfEnglishWithoutALanguage)
{
  EXPECT_EQ(UnconnectedDatabase()->infoTable->LanguageIndex(), 10);
}

TEST_F(Info, HasThePlaceOfBritishEnglishForAnUnknownLanguage)
{
  SetLanguage(1040);
  EXPECT_EQ(UnconnectedDatabase()->infoTable->LanguageIndex(), 4);
}
