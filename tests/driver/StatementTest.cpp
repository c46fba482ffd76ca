#include "tests/driver/ConformanceTest.h"

namespace {

class Statement : public ConformanceTest
{
protected:
  void SetUp() override
  {
    ConformanceTest::SetUp();
    Make("CREATE TABLE [T] ([Id] LONG PRIMARY KEY, [Name] TEXT(20))");
    Make("INSERT INTO [T] ([Id],[Name]) VALUES (1,'one')");
    Make("INSERT INTO [T] ([Id],[Name]) VALUES (2,'two')");
  }

  SQLLEN RowCount() const
  {
    SQLLEN count = -7;
    EXPECT_EQ(calls.RowCount(stmt, &count), SQL_SUCCESS);
    return count;
  }

  void ExpectError(const std::string& sql, const std::string& state)
  {
    EXPECT_EQ(session.Run(sql), SQL_ERROR) << sql;
    EXPECT_EQ(session.State(), state) << sql;
  }
};

class Transaction : public Statement
{
protected:
  void SetAutocommit(SQLULEN value)
  {
    ASSERT_EQ(calls.SetConnectNumber(session.dbc, SQL_ATTR_AUTOCOMMIT, value), SQL_SUCCESS);
  }

  Lines IdsSeenByOthers()
  {
    OdbcSession other(calls);
    EXPECT_EQ(other.Connect(database), SQL_SUCCESS);
    return other.Select("SELECT [Id] FROM [T] ORDER BY [Id]");
  }
};

}  // namespace

TEST_P(Statement, TheFourResultsAreKeptApart)
{
  char cut[2] = {};
  SQLLEN length = 0;
  Make("SELECT [Name] FROM [T] WHERE [Id]=1");
  EXPECT_EQ(calls.BindCol(stmt, 1, SQL_C_CHAR, cut, sizeof(cut), &length), 0);
  EXPECT_EQ(calls.Fetch(stmt), 1);
  EXPECT_EQ(calls.Fetch(stmt), 100);
  EXPECT_EQ(session.Run("SELECT nonsense FROM"), -1);
}

TEST_P(Statement, UpdateThatTouchesNoRowGivesNoData)
{
  EXPECT_EQ(session.Run("UPDATE [T] SET [Name]='x' WHERE [Id]=9"), SQL_NO_DATA);
  EXPECT_EQ(RowCount(), 0);
  EXPECT_EQ(calls.Prepare(stmt, "UPDATE [T] SET [Name]='x' WHERE [Id]=9"), SQL_SUCCESS);
  EXPECT_EQ(calls.Execute(stmt), SQL_NO_DATA);
}

TEST_P(Statement, DeleteThatTouchesNoRowGivesNoData)
{
  EXPECT_EQ(session.Run("DELETE FROM [T] WHERE [Id]=9"), SQL_NO_DATA);
  EXPECT_EQ(RowCount(), 0);
  EXPECT_EQ(session.Run("delete from T"), SQL_SUCCESS);
  EXPECT_EQ(session.Run("delete from T"), SQL_NO_DATA);
}

TEST_P(Statement, UpdateAndDeleteAreKnownBehindBlanksAndComments)
{
  EXPECT_EQ(session.Run(" \t\r\n UPDATE [T] SET [Name]='x' WHERE [Id]=9"), SQL_NO_DATA);
  EXPECT_EQ(session.Run("-- a word\ndelete FROM [T] WHERE [Id]=9"), SQL_NO_DATA);
  EXPECT_EQ(session.Run("/* a word */ Update [T] SET [Name]='x' WHERE [Id]=9;"), SQL_NO_DATA);
}

TEST_P(Statement, UpdateToTheSameValuesTouchesItsRow)
{
  EXPECT_EQ(session.Run("UPDATE [T] SET [Name]='one' WHERE [Id]=1"), SQL_SUCCESS);
  EXPECT_EQ(RowCount(), 1);
}

TEST_P(Statement, RowsOfAnEarlierUpdateDoNotCount)
{
  EXPECT_EQ(session.Run("UPDATE [T] SET [Name]='x'"), SQL_SUCCESS);
  EXPECT_EQ(RowCount(), 2);
  EXPECT_EQ(session.Run("UPDATE [T] SET [Name]='x' WHERE [Id]=9"), SQL_NO_DATA);
  EXPECT_EQ(session.Run("DELETE FROM [T] WHERE [Id]=1"), SQL_SUCCESS);
  EXPECT_EQ(session.Run("CREATE TABLE [U] ([A] LONG)"), SQL_SUCCESS);
  EXPECT_EQ(RowCount(), -1);
  EXPECT_EQ(session.Run("INSERT INTO [T] VALUES (3,'x')"), SQL_SUCCESS);
  EXPECT_EQ(session.Run("DELETE FROM [T]"), SQL_SUCCESS);
  EXPECT_EQ(RowCount(), 2);
}

TEST_P(Statement, InsertOfNoRowIsSuccess)
{
  EXPECT_EQ(session.Run("INSERT INTO [T] SELECT * FROM [T] WHERE [Id]=9"), SQL_SUCCESS);
  EXPECT_EQ(RowCount(), 0);
}

TEST_P(Statement, SelectOfNoRowIsSuccessAndItsFetchIsNoData)
{
  EXPECT_EQ(session.Run("SELECT * FROM [T] WHERE [Id]=9"), SQL_SUCCESS);
  EXPECT_EQ(calls.Fetch(stmt), SQL_NO_DATA);
  EXPECT_EQ(calls.Fetch(stmt), SQL_NO_DATA);
}

TEST_P(Statement, AStatementMayBeCounted)
{
  EXPECT_EQ(calls.ExecDirectCounted(stmt, "SELECT [Id] FROM [T] WHERE [Name]='two'"), SQL_SUCCESS);
  EXPECT_EQ(session.Rest(), Lines{"2"});
}

TEST_P(Statement, MayBeExecutedAgainAndAgain)
{
  ASSERT_EQ(calls.Prepare(stmt, "SELECT COUNT(*) FROM [T]"), SQL_SUCCESS);
  ASSERT_EQ(calls.Execute(stmt), SQL_SUCCESS);
  EXPECT_EQ(session.Rest(), Lines{"2"});
  calls.CloseCursor(stmt);
  OdbcSession other(calls);
  ASSERT_EQ(other.Connect(database), SQL_SUCCESS);
  ASSERT_EQ(other.Run("INSERT INTO [T] VALUES (3,'three')"), SQL_SUCCESS);
  ASSERT_EQ(calls.Execute(stmt), SQL_SUCCESS);
  EXPECT_EQ(session.Rest(), Lines{"3"});
}

TEST_P(Statement, ErrorsBearTheirStates)
{
  ExpectError("SELEC 1", "42000");
  ExpectError("SELECT * FROM [Absent]", "42S02");
  ExpectError("DROP TABLE [Absent]", "42S02");
  ExpectError("CREATE TABLE [T] ([A] LONG)", "42S01");
  ExpectError("SELECT [Absent] FROM [T]", "42S22");
  ExpectError("INSERT INTO [T] ([Absent]) VALUES (1)", "42S22");
  ExpectError("INSERT INTO [T] VALUES (1,'again')", "23000");
}

TEST_P(Statement, FailedStatementHarmsNothing)
{
  ExpectError("INSERT INTO [T] VALUES (1,'again')", "23000");
  EXPECT_EQ(session.Select("SELECT * FROM [T]"), (Lines{"1|one", "2|two"}));
  EXPECT_EQ(session.State(), "none");
}

TEST_P(Statement, EmptyStatementIsAnError)
{
  EXPECT_EQ(session.Run(""), SQL_ERROR);
  EXPECT_EQ(session.Run("  "), SQL_ERROR);
}

TEST_P(Statement, HasOneResult)
{
  Make("SELECT * FROM [T]");
  EXPECT_EQ(calls.MoreResults(stmt), SQL_NO_DATA);
  EXPECT_EQ(session.Run("UPDATE [T] SET [Name]='x'"), SQL_SUCCESS);
  EXPECT_EQ(calls.MoreResults(stmt), SQL_NO_DATA);
}

TEST_P(Statement, ColumnsAreCountedBeforeTheFirstRow)
{
  SQLSMALLINT columns = -1;
  ASSERT_EQ(calls.Prepare(stmt, "SELECT * FROM [T]"), SQL_SUCCESS);
  EXPECT_EQ(calls.NumResultCols(stmt, &columns), SQL_SUCCESS);
  EXPECT_EQ(columns, 2);
  Make("DELETE FROM [T]");
  EXPECT_EQ(calls.NumResultCols(stmt, &columns), SQL_SUCCESS);
  EXPECT_EQ(columns, 0);
}

TEST_P(Statement, FetchWithoutAResultIsAnError)
{
  Make("DELETE FROM [T]");
  EXPECT_EQ(calls.Fetch(stmt), SQL_ERROR);
  EXPECT_EQ(session.State(), "24000");
}

TEST_P(Statement, CloseCursorWithoutOneIsAnErrorButFreeStmtIsNot)
{
  EXPECT_EQ(calls.CloseCursor(stmt), SQL_ERROR);
  EXPECT_EQ(session.State(), "24000");
  EXPECT_EQ(calls.FreeStmt(stmt, SQL_CLOSE), SQL_SUCCESS);
}

TEST_P(Statement, AnotherMayChangeTheTableThatOneReads)
{
  Make("SELECT [Id] FROM [T] ORDER BY [Id]");
  ASSERT_EQ(calls.Fetch(stmt), SQL_SUCCESS);
  SQLHSTMT second = nullptr;
  ASSERT_EQ(calls.AllocHandle(SQL_HANDLE_STMT, session.dbc, &second), SQL_SUCCESS);
  EXPECT_EQ(calls.ExecDirect(second, "UPDATE [T] SET [Name]='x' WHERE [Id]=1"), SQL_SUCCESS);
  calls.FreeHandle(SQL_HANDLE_STMT, second);
  EXPECT_EQ(calls.Fetch(stmt), SQL_SUCCESS);
  EXPECT_EQ(session.Select("SELECT [Name] FROM [T] WHERE [Id]=1"), Lines{"x"});
}

TEST_P(Statement, TablesAreCreatedExtendedAndDropped)
{
  EXPECT_EQ(session.Run("CREATE TABLE [U] ([A] LONG, [B] TEXT(10) NULL)"), SQL_SUCCESS);
  EXPECT_EQ(session.Run("ALTER TABLE [U] ADD COLUMN [C] MEMO"), SQL_SUCCESS);
  EXPECT_EQ(session.Run("INSERT INTO [U] ([A],[B],[C]) VALUES (1,'b','007')"), SQL_SUCCESS);
  EXPECT_EQ(session.Select("SELECT * FROM [U]"), Lines{"1|b|007"});
  EXPECT_EQ(session.Run("DROP TABLE [U]"), SQL_SUCCESS);
  ExpectError("SELECT * FROM [U]", "42S02");
}

TEST_P(Statement, NamesStandInBracketsQuotesAndBackTicks)
{
  Make("CREATE TABLE [A table] ([a b] TEXT(5), \"c\"\"d\" MEMO, `e f` LONG, [g'h] TEXT)");
  Make("INSERT INTO \"A table\" ([a b],\"c\"\"d\",`e f`,[g'h]) VALUES ('1','02',3,'04')");
  EXPECT_EQ(session.Select("SELECT `a b`,[c\"d],\"e f\",[g'h] FROM `A table`"), Lines{"1|02|3|04"});
}

TEST_P(Statement, TableAndColumnNamesMatchWithoutRegardToCase)
{
  EXPECT_EQ(session.Select("SELECT [NAME] FROM [t] WHERE [iD]=1"), Lines{"one"});
  EXPECT_EQ(session.Run("CREATE TABLE [t] ([A] LONG)"), SQL_ERROR);
}

TEST_P(Statement, KeysMayBeNamedForTheColumnOrForTheTable)
{
  Make("CREATE TABLE [U] ([A] LONG, [B] TEXT(5), PRIMARY KEY ([A],[B]))");
  Make("INSERT INTO [U] VALUES (1,'x')");
  Make("INSERT INTO [U] VALUES (1,'y')");
  ExpectError("INSERT INTO [U] VALUES (1,'x')", "23000");
}

TEST_P(Statement, NotNullRefusesNullAndDefaultFillsIn)
{
  Make("CREATE TABLE [U] ([A] LONG NOT NULL, [B] TEXT(5) DEFAULT 'def', [C] LONG DEFAULT 5)");
  ExpectError("INSERT INTO [U] ([A]) VALUES (NULL)", "23000");
  Make("INSERT INTO [U] ([A]) VALUES (1)");
  EXPECT_EQ(session.Select("SELECT * FROM [U]"), Lines{"1|def|5"});
}

TEST_P(Statement, UniqueColumnRefusesASecondEqualValue)
{
  Make("CREATE TABLE [U] ([A] TEXT(5) UNIQUE)");
  Make("INSERT INTO [U] VALUES ('x')");
  ExpectError("INSERT INTO [U] VALUES ('X')", "23000");
}

TEST_P(Statement, CounterCountsByItself)
{
  Make("CREATE TABLE [U] ([Id] COUNTER PRIMARY KEY, [A] TEXT(5))");
  Make("INSERT INTO [U] ([A]) VALUES ('x')");
  Make("INSERT INTO [U] ([A]) VALUES ('y')");
  EXPECT_EQ(session.Select("SELECT * FROM [U] ORDER BY [Id]"), (Lines{"1|x", "2|y"}));
}

TEST_P(Statement, DiagnosticTextsAreCutWithATerminator)
{
  ASSERT_EQ(session.Run("SELECT * FROM [Absent]"), SQL_ERROR);
  const Diagnostic whole = calls.Diagnostics(SQL_HANDLE_STMT, stmt).front();
  EXPECT_NE(whole.message.find("Absent"), std::string::npos) << whole.message;
  TextBuffer state = calls.Buffer(6);
  TextBuffer message = calls.Buffer(8);
  SQLINTEGER native = 0;
  SQLSMALLINT length = 0;
  EXPECT_EQ(calls.GetDiagRec(SQL_HANDLE_STMT, stmt, 1, state, native, message, length),
            SQL_SUCCESS_WITH_INFO);
  EXPECT_EQ(message.Text(), whole.message.substr(0, 7));
  EXPECT_EQ(static_cast<size_t>(length), whole.message.size());
  EXPECT_TRUE(message.IsKeptInside());
}

TEST_P(Statement, DiagnosticsAreNumberedFromOneAndGoneAfterTheNextCall)
{
  ASSERT_EQ(session.Run("SELECT * FROM [Absent]"), SQL_ERROR);
  SQLINTEGER count = 0;
  EXPECT_EQ(calls.GetDiagNumber(SQL_HANDLE_STMT, stmt, 0, SQL_DIAG_NUMBER, &count), SQL_SUCCESS);
  EXPECT_EQ(count, 1);
  EXPECT_EQ(calls.Diagnostics(SQL_HANDLE_STMT, stmt).size(), 1U);
  Make("SELECT 1");
  EXPECT_TRUE(calls.Diagnostics(SQL_HANDLE_STMT, stmt).empty());
}

TEST_P(Statement, NativeSqlIsTheStatementAndIsCutWithAWarning)
{
  TextBuffer whole = calls.Buffer(50);
  SQLINTEGER length = 0;
  EXPECT_EQ(calls.NativeSql(session.dbc, "SELECT 1", whole, length), SQL_SUCCESS);
  EXPECT_EQ(whole.Text(), "SELECT 1");
  EXPECT_EQ(length, 8);
  TextBuffer cut = calls.Buffer(4);
  EXPECT_EQ(calls.NativeSql(session.dbc, "SELECT 1", cut, length), SQL_SUCCESS_WITH_INFO);
  EXPECT_EQ(cut.Text(), "SEL");
  EXPECT_TRUE(cut.IsKeptInside());
}

TEST_P(Transaction, EachStatementIsSeenByOthersAtOnce)
{
  Make("INSERT INTO [T] VALUES (3,'three')");
  EXPECT_EQ(IdsSeenByOthers(), (Lines{"1", "2", "3"}));
}

TEST_P(Transaction, ManualCommitKeepsChangesBackUntilTheyAreCommitted)
{
  SetAutocommit(SQL_AUTOCOMMIT_OFF);
  Make("INSERT INTO [T] VALUES (3,'three')");
  EXPECT_EQ(IdsSeenByOthers(), (Lines{"1", "2"}));
  EXPECT_EQ(calls.EndTran(SQL_HANDLE_DBC, session.dbc, SQL_COMMIT), SQL_SUCCESS);
  EXPECT_EQ(IdsSeenByOthers(), (Lines{"1", "2", "3"}));
}

TEST_P(Transaction, RollbackTakesChangesBack)
{
  SetAutocommit(SQL_AUTOCOMMIT_OFF);
  Make("DELETE FROM [T] WHERE [Id]=1");
  Make("INSERT INTO [T] VALUES (3,'three')");
  EXPECT_EQ(calls.EndTran(SQL_HANDLE_DBC, session.dbc, SQL_ROLLBACK), SQL_SUCCESS);
  EXPECT_EQ(session.Select("SELECT [Id] FROM [T]"), (Lines{"1", "2"}));
}

TEST_P(Transaction, TurningAutocommitOnCommits)
{
  SetAutocommit(SQL_AUTOCOMMIT_OFF);
  Make("INSERT INTO [T] VALUES (3,'three')");
  SetAutocommit(SQL_AUTOCOMMIT_ON);
  EXPECT_EQ(IdsSeenByOthers(), (Lines{"1", "2", "3"}));
}

TEST_P(Transaction, EndIsPlainSuccessWithAutocommitOn)
{
  EXPECT_EQ(calls.EndTran(SQL_HANDLE_DBC, session.dbc, SQL_COMMIT), SQL_SUCCESS);
  EXPECT_EQ(calls.EndTran(SQL_HANDLE_DBC, session.dbc, SQL_ROLLBACK), SQL_SUCCESS);
}

TEST_P(Transaction, FailedStatementInOneKeepsTheOthers)
{
  SetAutocommit(SQL_AUTOCOMMIT_OFF);
  Make("INSERT INTO [T] VALUES (3,'three')");
  EXPECT_EQ(session.Run("INSERT INTO [T] VALUES (1,'again')"), SQL_ERROR);
  EXPECT_EQ(calls.EndTran(SQL_HANDLE_DBC, session.dbc, SQL_COMMIT), SQL_SUCCESS);
  EXPECT_EQ(IdsSeenByOthers(), (Lines{"1", "2", "3"}));
}

INSTANTIATE_TEST_SUITE_P(Each, Statement, AllWays(), WayName);
INSTANTIATE_TEST_SUITE_P(Each, Transaction, AllWays(), WayName);
