#include "database/KFProjectsVersionTable.h"
#include "database/KFVersionTable.h"
#include "database/QulDatabase.h"

#include "tests/doubles/DebugOutputDouble.h"
#include "tests/unit/database/DatabaseMachine.h"
#include "tests/unit/foundation/Texts.h"

namespace {

Lines RowsOf(const QulArray<AttributeValue>& rows)
{
  Lines lines;
  for (int i = 0; i < rows.count; ++i)
    lines.push_back(TextOf(rows.data[i].attribute) + "=" + TextOf(rows.data[i].value));
  return lines;
}

class VersionTable : public DatabaseMachine
{
protected:
  // What both tables hold if they are stored with these rows.
  static Lines Read(const OdbcRows& rows)
  {
    Target().Table("KFVersion", rows).Table("KFProjectsVersion", rows);
    auto database = OpenTarget();
    const Lines version = RowsOf(database->versionTable->rows);
    EXPECT_EQ(RowsOf(database->projectsVersionTable->rows), version);
    return version;
  }

  static std::string Value(const char* attribute, const OdbcRows& rows)
  {
    Target().Table("KFVersion", rows);
    return TextOf(OpenTarget()->versionTable->GetValue(Handle(attribute)));
  }
};

}  // namespace

TEST_F(VersionTable, HoldsTheRowsInTheirOrder)
{
  EXPECT_EQ(Read({{"MinorNumber", "1"}, {"MajorNumber", "2"}, {"Any", "text"}}),
            (Lines{"MinorNumber=1", "MajorNumber=2", "Any=text"}));
}

TEST_F(VersionTable, IsReadByPositionWithOneLengthWord)
{
  Target().Table("KFVersion", {{"MajorNumber", "2"}});
  auto database = OpenTarget();
  const KFVersionTable table(*database);
  EXPECT_EQ(Diary(), (Lines{"SQLAllocHandle(STMT, dbc#1) = 0 stmt#4",
                            R"(SQLExecDirectW(stmt#4, "SELECT * FROM KFVersion", -3) = 0)",
                            "SQLBindCol(stmt#4, 1, -8, 100, ind#1) = 0",
                            "SQLBindCol(stmt#4, 2, -8, 100, ind#1) = 0", "SQLFetch(stmt#4) = 0",
                            "SQLFetch(stmt#4) = 100", "SQLFreeHandle(STMT, stmt#4) = 0"}));
}

TEST_F(VersionTable, OfProjectsIsReadByPositionWithOneLengthWord)
{
  Target().Table("KFProjectsVersion", {{"Plant", "2"}});
  auto database = OpenTarget();
  const KFProjectsVersionTable table(*database);
  EXPECT_EQ(Diary(), (Lines{"SQLAllocHandle(STMT, dbc#1) = 0 stmt#4",
                            R"(SQLExecDirectW(stmt#4, "SELECT * FROM KFProjectsVersion", -3) = 0)",
                            "SQLBindCol(stmt#4, 1, -8, 100, ind#1) = 0",
                            "SQLBindCol(stmt#4, 2, -8, 100, ind#1) = 0", "SQLFetch(stmt#4) = 0",
                            "SQLFetch(stmt#4) = 100", "SQLFreeHandle(STMT, stmt#4) = 0"}));
}

TEST_F(VersionTable, ThatIsMissingIsEmptyWithoutATrace)
{
  auto database = OpenTarget();
  EXPECT_EQ(database->versionTable->rows.count, 0);
  EXPECT_EQ(database->projectsVersionTable->rows.count, 0);
  EXPECT_TRUE(DebugTexts().empty());
}

TEST_F(VersionTable, ThatIsMissingFreesItsStatement)
{
  auto database = OpenTarget();
  const KFVersionTable table(*database);
  EXPECT_EQ(Diary(), (Lines{"SQLAllocHandle(STMT, dbc#1) = 0 stmt#4",
                            R"(SQLExecDirectW(stmt#4, "SELECT * FROM KFVersion", -3) = -1)",
                            "SQLFreeHandle(STMT, stmt#4) = 0"}));
}

TEST_F(VersionTable, ThatIsEmptyIsTheSameAsAMissingOne)
{
  EXPECT_TRUE(Read({}).empty());
}

TEST_F(VersionTable, WhoseQueryFailsIsEmpty)
{
  for (const int code : FailureCodes) {
    Target().Query("SELECT * FROM KFVersion", {{"MajorNumber", "2"}}, code);
    auto database = OpenTarget();
    EXPECT_EQ(database->versionTable->rows.count, 0) << code;
  }
  EXPECT_TRUE(DebugTexts().empty());
}

TEST_F(VersionTable, WhoseQuerySucceedsWithInformationIsRead)
{
  Target().Query("SELECT * FROM KFVersion", {{"MajorNumber", "2"}}, SQL_SUCCESS_WITH_INFO);
  EXPECT_EQ(OpenTarget()->versionTable->rows.count, 1);
}

TEST_F(VersionTable, WithoutAStatementIsEmptyAndFreesNull)
{
  Target().Table("KFVersion", {{"MajorNumber", "2"}});
  auto database = OpenTarget();
  for (const int code : FailureCodes) {
    ClearDiary();
    FailOdbcCall("SQLAllocHandle", 1, code);
    const KFVersionTable table(*database);
    EXPECT_EQ(table.rows.count, 0);
    EXPECT_EQ(Diary(), (Lines{"SQLAllocHandle(STMT, dbc#1) = " + std::to_string(code),
                              "SQLFreeHandle(STMT, null) = -2"}));
  }
}

TEST_F(VersionTable, OfAStatementAllocatedWithInformationIsRead)
{
  Target().Table("KFVersion", {{"MajorNumber", "2"}});
  auto database = OpenTarget();
  FailOdbcCall("SQLAllocHandle afterwards", 1, SQL_SUCCESS_WITH_INFO);
  const KFVersionTable table(*database);
  EXPECT_EQ(RowsOf(table.rows), (Lines{"MajorNumber=2"}));
}

TEST_F(VersionTable, OfAnUnconnectedDatabaseIsEmptyAndCallsNothing)
{
  auto database = UnconnectedDatabase();
  const KFVersionTable version(*database);
  const KFProjectsVersionTable projects(*database);
  EXPECT_EQ(version.rows.count, 0);
  EXPECT_EQ(projects.rows.count, 0);
  EXPECT_TRUE(Diary().empty());
}

TEST_F(VersionTable, DropsARowWithAnEmptyAttributeOrValue)
{
  EXPECT_EQ(Read({{"", "1"}, {"A", ""}, {"", ""}, {"B", "2"}}), (Lines{"B=2"}));
}

TEST_F(VersionTable, RepeatsTheRowBeforeForANull)
{
  EXPECT_EQ(Read({{"A", "1"}, {nullptr, "2"}, {"B", nullptr}, {nullptr, nullptr}}),
            (Lines{"A=1", "A=2", "B=2", "B=2"}));
}

TEST_F(VersionTable, RepeatsADroppedRowForANull)
{
  EXPECT_EQ(Read({{"", "1"}, {"A", nullptr}}), (Lines{"A=1"}));
}

TEST_F(VersionTable, DropsAFirstRowWithANull)
{
  SoilStack();
  EXPECT_EQ(Read({{nullptr, "1"}, {"A", "2"}}), (Lines{"A=2"}));
  EXPECT_EQ(Read({{"A", nullptr}, {"B", "2"}}), (Lines{"B=2"}));
}

TEST_F(VersionTable, CutsTextsTo49Characters)
{
  EXPECT_EQ(
      Read({{Letters(49, 'a'), Letters(49, '1')},
            {Letters(50, 'b'), Letters(50, '2')},
            {Letters(255, 'c'), Letters(255, '3')}}),
      (Lines{Letters(49, 'a') + "=" + Letters(49, '1'), Letters(49, 'b') + "=" + Letters(49, '2'),
             Letters(49, 'c') + "=" + Letters(49, '3')}));
}

TEST_F(VersionTable, IgnoresColumnsBehindTheSecond)
{
  EXPECT_EQ(Read({{"A", "1", "Z", "26"}}), (Lines{"A=1"}));
}

TEST_F(VersionTable, TakesTextsAsTheyAre)
{
  EXPECT_EQ(Read({{" Major ", " 2 "}, {"Gr\u00f6\u00dfe", "\u4e2d"}}),
            (Lines{" Major = 2 ", "Gr\u00f6\u00dfe=\u4e2d"}));
}

TEST_F(VersionTable, KeepsTheRowsBeforeAnErrorInTheMiddle)
{
  for (const int code : FailureCodes) {
    EXPECT_EQ(Read({{"A", "1"}, FetchGives(code), {"B", "2"}}), (Lines{"A=1"})) << code;
    EXPECT_TRUE(Read({FetchGives(code), {"B", "2"}}).empty()) << code;
  }
  EXPECT_TRUE(DebugTexts().empty());
}

TEST_F(VersionTable, GoesOnAfterAFetchWithInformation)
{
  EXPECT_EQ(Read({FetchGives(SQL_SUCCESS_WITH_INFO, {"A", "1"}), {"B", "2"}}),
            (Lines{"A=1", "B=2"}));
}

TEST_F(VersionTable, DropsAllRowsIfAColumnCannotBeBound)
{
  SoilStack();
  Target().Table("KFVersion", {{"A", "1"}});
  auto database = OpenTarget();
  for (const int column : {1, 2}) {
    FailOdbcCall("SQLBindCol", column, SQL_ERROR);
    EXPECT_EQ(KFVersionTable(*database).rows.count, 0) << column;
  }
}

TEST_F(VersionTable, IsReadWhateverTheReleaseReturns)
{
  Target().Table("KFVersion", {{"A", "1"}});
  auto database = OpenTarget();
  for (const int code : FailureCodes) {
    FailOdbcCall("SQLFreeHandle afterwards", 1, code);
    EXPECT_EQ(KFVersionTable(*database).rows.count, 1) << code;
  }
  FailOdbcCall("SQLFreeHandle throwing", 1, 7);
  EXPECT_EQ(KFVersionTable(*database).rows.count, 1);
  database.reset();
}

TEST_F(VersionTable, IsNotReadAgain)
{
  Target().Table("KFVersion", {{"MajorNumber", "2"}});
  auto database = OpenTarget();
  Target().Table("KFVersion", {{"MajorNumber", "3"}});
  EXPECT_EQ(database->GetMajorNumber(), 2);
  EXPECT_TRUE(Diary().empty());
}

TEST_F(VersionTable, HasTheFirstOfTwoRowsThatDifferInCase)
{
  const OdbcRows rows = {{"majornumber", "1"}, {"MajorNumber", "2"}};
  EXPECT_EQ(Read(rows), (Lines{"majornumber=1", "MajorNumber=2"}));
  EXPECT_EQ(Value("MajorNumber", rows), "1");
}

TEST_F(VersionTable, FindsAnAttributeInAnyCase)
{
  EXPECT_EQ(Value("MAJORnumber", {{"MajorNumber", "2"}}), "2");
}

TEST_F(VersionTable, HasNoValueForAMissingAttribute)
{
  EXPECT_EQ(Value("Major", {{"MajorNumber", "2"}}), "");
  EXPECT_EQ(Value("", {{"MajorNumber", "2"}}), "");
  EXPECT_EQ(Value("MajorNumber", {}), "");
}

TEST_F(VersionTable, HasAnAccessorForEachOfSixAttributes)
{
  Target().Table("KFVersion", {{"MajorNumber", "1"},
                               {"MinorNumber", "2"},
                               {"CommMajorVersion", "3"},
                               {"CommMinorVersion", "4"},
                               {"CommSPNumber", "5"},
                               {"BuildNumber", "6"}});
  auto database = OpenTarget();
  const KFVersionTable& table = *database->versionTable;
  EXPECT_EQ(TextOf(table.MajorNumber()), "1");
  EXPECT_EQ(TextOf(table.MinorNumber()), "2");
  EXPECT_EQ(TextOf(table.CommMajorVersion()), "3");
  EXPECT_EQ(TextOf(table.CommMinorVersion()), "4");
  EXPECT_EQ(TextOf(table.CommSPNumber()), "5");
  EXPECT_EQ(TextOf(table.BuildNumber()), "6");
}
