// Live ODBC: what a test has of it besides the calls, which the contract tests show.
#include "tests/doubles/FilesDouble.h"
#include "tests/doubles/LiveOdbc.h"
#include "tests/doubles/OdbcDouble.h"
#include "tests/doubles/PlatformTest.h"
#include "tests/doubles/Text.h"

#include <filesystem>

namespace {

using Lines = std::vector<std::string>;

const char* const Path = "C:\\Data\\Parts.mdb";

class LiveOdbcTest : public PlatformTest
{
protected:
  // Up to a statement on the database, as the code under test does it.
  SQLHSTMT OpenStatement()
  {
    SQLHENV environment = SQL_NULL_HENV;
    SQLHDBC connection = SQL_NULL_HDBC;
    SQLHSTMT statement = SQL_NULL_HSTMT;
    WideText text(ConnectionStringOf(Path));
    (void)SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &environment);
    (void)SQLSetEnvAttr(environment, SQL_ATTR_ODBC_VERSION,
                        reinterpret_cast<SQLPOINTER>(uintptr_t{SQL_OV_ODBC3}), SQL_IS_INTEGER);
    (void)SQLAllocHandle(SQL_HANDLE_DBC, environment, &connection);
    (void)SQLDriverConnectW(connection, nullptr, text.data(), SQL_NTS, nullptr, 0, nullptr,
                            SQL_DRIVER_NOPROMPT);
    (void)SQLAllocHandle(SQL_HANDLE_STMT, connection, &statement);
    return statement;
  }

  // How many files below the folder this process has open.
  static int OpenFilesBelow(const std::string& folder)
  {
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
      std::error_code gone;
      if (std::filesystem::read_symlink(entry, gone).string().starts_with(folder))
        ++count;
    }
    return count;
  }

  SQLRETURN Execute(SQLHSTMT statement, const char* sql)
  {
    WideText text(sql);
    return SQLExecDirectW(statement, text.data(), SQL_NTS);
  }
};

}  // namespace

TEST_F(LiveOdbcTest, DatabasesAreMadeAndReadBySql)
{
  ASSERT_TRUE(UseLiveOdbc());
  EXPECT_EQ("",
            RunSql(Path, {"CREATE TABLE Parts ([Id] LONG PRIMARY KEY,[Name] TEXT(20))",
                          "INSERT INTO Parts VALUES (1,'B\xC3\xA9ton')",
                          "INSERT INTO Parts VALUES (2,NULL)", "DELETE FROM Parts WHERE [Id]=9"}));
  EXPECT_EQ(SelectRows(Path, "SELECT * FROM Parts ORDER BY [Id]"),
            Lines({"1|B\xC3\xA9ton", "2|<null>"}));
  EXPECT_EQ(Diary(), Lines());
}

TEST_F(LiveOdbcTest, SqlThatFailsIsNamedAndEndsTheRun)
{
  ASSERT_TRUE(UseLiveOdbc());
  const std::string failure = RunSql(Path, {"NO SQL", "CREATE TABLE Parts ([Id] LONG)"});
  EXPECT_TRUE(failure.starts_with("NO SQL: ")) << failure;
  const Lines rows = SelectRows(Path, "SELECT * FROM Parts");
  ASSERT_EQ(1u, rows.size());
  EXPECT_TRUE(rows[0].starts_with("SELECT * FROM Parts: ")) << rows[0];
}

TEST_F(LiveOdbcTest, CallsGoToTheDriverAndToTheDiary)
{
  ASSERT_TRUE(UseLiveOdbc());
  ASSERT_EQ("", RunSql(Path, {"CREATE TABLE Parts ([Id] LONG)"}));
  SQLHSTMT statement = OpenStatement();
  ClearDiary();
  EXPECT_EQ(SQL_SUCCESS, Execute(statement, "INSERT INTO Parts VALUES (7)"));
  EXPECT_EQ(Diary(), Lines({"SQLExecDirectW(stmt#1, \"INSERT INTO Parts VALUES (7)\", -3) = 0"}));
  EXPECT_EQ(SelectRows(Path, "SELECT * FROM Parts"), Lines({"7"}));
}

TEST_F(LiveOdbcTest, AFailureThatWasOrderedDoesNotReachTheDriver)
{
  ASSERT_TRUE(UseLiveOdbc());
  ASSERT_EQ("", RunSql(Path, {"CREATE TABLE Parts ([Id] LONG)"}));
  SQLHSTMT statement = OpenStatement();
  FailOdbcCall("SQLExecDirectW", 1, SQL_ERROR);
  EXPECT_EQ(SQL_ERROR, Execute(statement, "INSERT INTO Parts VALUES (7)"));
  EXPECT_EQ(SelectRows(Path, "SELECT * FROM Parts"), Lines());
}

TEST_F(LiveOdbcTest, AFreedHandleIsAMisuseHereToo)
{
  ASSERT_TRUE(UseLiveOdbc());
  ASSERT_EQ("", RunSql(Path, {}));
  SQLHSTMT statement = OpenStatement();
  EXPECT_EQ(SQL_SUCCESS, SQLFreeHandle(SQL_HANDLE_STMT, statement));
  EXPECT_EQ(SQL_INVALID_HANDLE, SQLFreeHandle(SQL_HANDLE_STMT, statement));
  EXPECT_EQ(1u, TakeMisuses().size());
}

TEST_F(LiveOdbcTest, AResetClosesWhatIsLeftAndGoesBackToTheScript)
{
  ASSERT_TRUE(UseLiveOdbc());
  ASSERT_EQ("", RunSql(Path, {"CREATE TABLE Parts ([Id] LONG)"}));
  (void)OpenStatement();
  const std::string prefix = Files().Prefix();
  EXPECT_EQ(1, Odbc().OpenConnections());
  EXPECT_LT(0, OpenFilesBelow(prefix));
  ResetPlatform();
  EXPECT_EQ(0, Odbc().OpenConnections());
  EXPECT_EQ(0, OpenFilesBelow(prefix));
  Odbc().Database(ConnectionStringOf(Path)).Table("Scripted", {});
  EXPECT_EQ(SQL_SUCCESS, Execute(OpenStatement(), "SELECT * FROM Scripted"));
}

TEST_F(LiveOdbcTest, AMissingDriverFailsTheTestWithWhatToBuild)
{
  EXPECT_FALSE(UseLiveOdbc(Files().Prefix()));
  const Lines misuses = TakeMisuses();
  ASSERT_EQ(1u, misuses.size());
  EXPECT_NE(std::string::npos, misuses[0].find("build the preset driver"));
}
