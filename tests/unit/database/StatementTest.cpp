#include "database/QulDatabase.h"

#include "tests/doubles/DebugOutputDouble.h"
#include "tests/unit/database/DatabaseMachine.h"
#include "tests/unit/foundation/Texts.h"

#include <algorithm>

namespace {

class DatabaseStatement : public DatabaseMachine
{
};

// The text that one trace of a message has: as much of it as a message can hold.
void ExpectMessage(const std::string& traced, const std::string& wanted)
{
  constexpr size_t shortestLimit = 1023;
  EXPECT_EQ(traced, wanted.substr(0, traced.size()));
  EXPECT_GE(traced.size(), std::min(wanted.size(), shortestLimit));
}

}  // namespace

TEST_F(DatabaseStatement, IsAllocatedExecutedAndFreed)
{
  Target().Statement("UPDATE A SET B=1");
  auto database = OpenTarget();
  EXPECT_TRUE(database->executeSQL(L"UPDATE A SET B=1"));
  EXPECT_EQ(Diary(), (Lines{"SQLAllocHandle(STMT, dbc#1) = 0 stmt#4",
                            R"(SQLExecDirectW(stmt#4, "UPDATE A SET B=1", -3) = 0)",
                            "SQLFreeHandle(STMT, stmt#4) = 0"}));
}

TEST_F(DatabaseStatement, ThatSucceedsIsTrueAndLeavesNoTrace)
{
  auto database = OpenTarget();
  for (const int code : SuccessCodes) {
    Target().Statement("UPDATE A SET B=1", code);
    EXPECT_TRUE(database->executeSQL(L"UPDATE A SET B=1")) << code;
  }
  EXPECT_TRUE(DebugTexts().empty());
}

TEST_F(DatabaseStatement, ThatFailsIsFalseAndLeavesTheMessageAndTheStatement)
{
  for (const int code : FailureCodes) {
    ResetPlatform();
    Target().Statement("UPDATE A SET B=1", code);
    auto database = OpenTarget();
    EXPECT_FALSE(database->executeSQL(L"UPDATE A SET B=1")) << code;
    EXPECT_EQ(DebugTexts(),
              (Lines{"\n", "Error executeSQL in QuillBase database.", "\n", "UPDATE A SET B=1"}))
        << code;
  }
}

TEST_F(DatabaseStatement, ThatTouchesNoRowIsFalseAndLeavesItsTraces)
{
  Target().Statement("UPDATE A SET B=1 WHERE C=2", SQL_NO_DATA);
  auto database = OpenTarget();
  EXPECT_FALSE(database->executeSQL(L"UPDATE A SET B=1 WHERE C=2"));
  EXPECT_EQ(DebugTexts().size(), 4u);
}

TEST_F(DatabaseStatement, ThatFailsIsFreedAfterItsTraces)
{
  auto database = OpenTarget();
  (void)database->executeSQL(L"DELETE FROM A");
  EXPECT_EQ(DiaryAfter("SQLExecDirectW"),
            (Lines{"OutputDebugStringW(\"\n\")",
                   R"(OutputDebugStringW("Error executeSQL in QuillBase database."))",
                   "OutputDebugStringW(\"\n\")", R"(OutputDebugStringW("DELETE FROM A"))",
                   "SQLFreeHandle(STMT, stmt#4) = 0"}));
}

TEST_F(DatabaseStatement, WithoutAHandleFailsAsAnyOther)
{
  Target().Statement("DELETE FROM A");
  auto database = OpenTarget();
  FailOdbcCall("SQLAllocHandle", 1, SQL_ERROR);
  EXPECT_FALSE(database->executeSQL(L"DELETE FROM A"));
  EXPECT_EQ(DiaryOf({"SQLAllocHandle", "SQLExecDirectW", "SQLFreeHandle"}),
            (Lines{"SQLAllocHandle(STMT, dbc#1) = -1",
                   R"(SQLExecDirectW(null, "DELETE FROM A", -3) = -2)",
                   "SQLFreeHandle(STMT, null) = -2"}));
  EXPECT_EQ(DebugTexts().size(), 4u);
}

TEST_F(DatabaseStatement, RunsOnAHandleWhoseAllocationReportsAnError)
{
  Target().Statement("DELETE FROM A");
  auto database = OpenTarget();
  FailOdbcCall("SQLAllocHandle afterwards", 1, SQL_ERROR);
  EXPECT_TRUE(database->executeSQL(L"DELETE FROM A"));
  EXPECT_EQ(Odbc().OpenStatements(), 0);
}

TEST_F(DatabaseStatement, IsTrueThoughItCannotBeFreed)
{
  Target().Statement("DELETE FROM A");
  auto database = OpenTarget();
  FailOdbcCall("SQLFreeHandle afterwards", 1, SQL_ERROR);
  EXPECT_TRUE(database->executeSQL(L"DELETE FROM A"));
  EXPECT_TRUE(DebugTexts().empty());
}

TEST_F(DatabaseStatement, OfAnyLengthIsTracedWhole)
{
  const std::string statement = "DELETE FROM " + Letters(5000);
  auto database = OpenTarget();
  EXPECT_FALSE(database->executeSQL(WideText(statement).c_str()));
  EXPECT_EQ(DebugTexts().back(), statement);
}

TEST_F(DatabaseStatement, IsNoFormatForItsTrace)
{
  auto database = OpenTarget();
  EXPECT_FALSE(database->executeSQL(L"DELETE FROM A WHERE B LIKE '%s%n'"));
  EXPECT_EQ(DebugTexts().back(), "DELETE FROM A WHERE B LIKE '%s%n'");
}

TEST_F(DatabaseStatement, ThatFailsNamesADatabaseWithALongNameAsFarAsAMessageGoes)
{
  for (const int length : {1, 229, 230, 255, 300, 1000, 1024, 2000}) {
    ResetPlatform();
    const std::string name = Letters(length, 'n');
    QulDatabase database(L"DBQ=C:\\none.mdb", WideText(name).c_str());
    EXPECT_FALSE(database.executeSQL(L"DELETE FROM A"));
    ASSERT_EQ(DebugTexts().size(), 6u);
    ExpectMessage(DebugTexts()[3], "Error executeSQL in " + name + " database.");
    EXPECT_EQ(DebugTexts()[5], "DELETE FROM A");
  }
}

TEST_F(DatabaseStatement, OnAnUnconnectedDatabaseHasNoHandle)
{
  auto database = UnconnectedDatabase();
  EXPECT_FALSE(database->executeSQL(L"DELETE FROM A"));
  database->DropTable(L"A");
  EXPECT_EQ(DiaryOf({"SQLAllocHandle", "SQLExecDirectW", "SQLFreeHandle"}),
            (Lines{R"(SQLExecDirectW(null, "DELETE FROM A", -3) = -2)",
                   R"(SQLExecDirectW(null, "DROP TABLE A", -3) = -2)"}));
}

TEST_F(DatabaseStatement, ThatDropsATableIsAllocatedExecutedAndFreed)
{
  Target().Statement("DROP TABLE Bolts");
  auto database = OpenTarget();
  database->DropTable(L"Bolts");
  EXPECT_EQ(Diary(), (Lines{"SQLAllocHandle(STMT, dbc#1) = 0 stmt#4",
                            R"(SQLExecDirectW(stmt#4, "DROP TABLE Bolts", -3) = 0)",
                            "SQLFreeHandle(STMT, stmt#4) = 0"}));
}

TEST_F(DatabaseStatement, ThatDropsATableLeavesATraceUnlessItSucceeds)
{
  auto database = OpenTarget();
  for (const int code : SuccessCodes) {
    Target().Statement("DROP TABLE Bolts", code);
    database->DropTable(L"Bolts");
  }
  EXPECT_TRUE(DebugTexts().empty());
  Lines expected;
  for (const int code : FailureCodes) {
    Target().Statement("DROP TABLE Bolts", code);
    database->DropTable(L"Bolts");
    expected.insert(expected.end(), {"\n", "Unable to drop table Bolts"});
  }
  EXPECT_EQ(DebugTexts(), expected);
}

TEST_F(DatabaseStatement, ThatDropsATableIsFreedAfterItsTrace)
{
  auto database = OpenTarget();
  database->DropTable(L"Bolts");
  EXPECT_EQ(
      DiaryAfter("SQLExecDirectW"),
      (Lines{"OutputDebugStringW(\"\n\")", R"(OutputDebugStringW("Unable to drop table Bolts"))",
             "SQLFreeHandle(STMT, stmt#4) = 0"}));
}

TEST_F(DatabaseStatement, ThatDropsATableFailsWithoutAHandle)
{
  auto database = OpenTarget();
  FailOdbcCall("SQLAllocHandle", 1, SQL_ERROR);
  database->DropTable(L"Bolts");
  EXPECT_EQ(DebugTexts(), (Lines{"\n", "Unable to drop table Bolts"}));
}

TEST_F(DatabaseStatement, ThatDropsATableNamesItAsFarAsAMessageGoes)
{
  auto database = OpenTarget();
  for (const int length : {1, 233, 234, 300, 1002, 1013, 1024, 2000}) {
    const std::string name = Letters(length, 't');
    database->DropTable(WideText(name).c_str());
    ExpectMessage(DebugTexts().back(), "Unable to drop table " + name);
  }
}

TEST_F(DatabaseStatement, ThatDropsATableOfALongNameIsCutWithItsTerminator)
{
  auto database = OpenTarget();
  database->DropTable(WideText(Letters(2000, 't')).c_str());
  const std::string line = DiaryOf({"SQLExecDirectW"}).back();
  const std::string front = "SQLExecDirectW(stmt#4, \"";
  ASSERT_EQ(line.substr(0, front.size()), front);
  ExpectMessage(line.substr(front.size(), line.find('"', front.size()) - front.size()),
                "DROP TABLE " + Letters(2000, 't'));
}

TEST_F(DatabaseStatement, IsFreedWithTheCodeOfOdbc)
{
  auto database = OpenTarget();
  EXPECT_EQ(database->FreeStatement(SQL_NULL_HSTMT), -2);
  for (const int code : {0, 1, 100, -1, -2}) {
    FailOdbcCall("SQLFreeHandle", 1, code);
    EXPECT_EQ(database->FreeStatement(SQL_NULL_HSTMT), code);
  }
}

TEST_F(DatabaseStatement, IsFreedByTheHandle)
{
  auto database = OpenTarget();
  SQLHSTMT statement = SQL_NULL_HSTMT;
  (void)SQLAllocHandle(SQL_HANDLE_STMT, database->connectionHandle, &statement);
  EXPECT_EQ(database->FreeStatement(statement), 0);
  EXPECT_EQ(Diary().back(), "SQLFreeHandle(STMT, stmt#4) = 0");
}

TEST_F(DatabaseStatement, OfAnUnconnectedDatabaseIsNotFreed)
{
  auto database = UnconnectedDatabase();
  EXPECT_EQ(database->FreeStatement(SQL_NULL_HSTMT), -1);
  EXPECT_TRUE(Diary().empty());
}

TEST_F(DatabaseStatement, WhoseReleaseThrowsHasTheStatusOfAnError)
{
  auto database = OpenTarget();
  FailOdbcCall("SQLFreeHandle throwing", 1, 7);
  const int32_t status = database->FreeStatement(SQL_NULL_HSTMT);
  EXPECT_EQ(status, 65535);
  EXPECT_EQ(static_cast<int16_t>(status), -1);
  EXPECT_TRUE(DebugTexts().empty());
}

TEST_F(DatabaseStatement, WhoseReleaseThrowsKeepsItsResult)
{
  Target().Statement("DELETE FROM A");
  {
    auto database = OpenTarget();
    FailOdbcCall("SQLFreeHandle throwing", 1, 7);
    EXPECT_TRUE(database->executeSQL(L"DELETE FROM A"));
    EXPECT_EQ(Odbc().OpenStatements(), 1);
  }
  EXPECT_EQ(Odbc().OpenStatements(), 0);
}
