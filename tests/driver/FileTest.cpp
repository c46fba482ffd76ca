#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <random>
#include <thread>

#include <gtest/gtest.h>

#include "tests/driver/Child.h"
#include "tests/driver/OdbcSession.h"
#include "tests/driver/TemporaryFolder.h"

namespace {

const uid_t AnotherUser = 65534;

// Another program, which uses SQLite as it is.
class ForeignProgram
{
public:
  explicit ForeignProgram(const std::string& file)
  {
    EXPECT_EQ(sqlite3_open(file.c_str(), &connection), SQLITE_OK);
  }
  ~ForeignProgram() { sqlite3_close(connection); }
  ForeignProgram(const ForeignProgram&) = delete;
  ForeignProgram& operator=(const ForeignProgram&) = delete;

  void Execute(const std::string& sql)
  {
    EXPECT_EQ(sqlite3_exec(connection, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK)
        << sqlite3_errmsg(connection);
  }

private:
  sqlite3* connection = nullptr;
};

// A database file with a few rows, not connected.
class DatabaseFile : public testing::Test
{
protected:
  DatabaseFile() : calls(ManagerCalls(true)), database(folder.File("test.mdb"))
  {
    WriteFile(database, "");
    OdbcSession session(calls);
    EXPECT_EQ(session.Connect(database), SQL_SUCCESS) << session.ConnectionState();
    EXPECT_EQ(session.Run("CREATE TABLE [T] ([Id] LONG PRIMARY KEY, [Name] TEXT(20))"),
              SQL_SUCCESS);
    EXPECT_EQ(session.Run("INSERT INTO [T] VALUES (1,'one')"), SQL_SUCCESS);
    EXPECT_EQ(session.Run("INSERT INTO [T] VALUES (2,'two')"), SQL_SUCCESS);
  }

  // Reads by every kind of call that reads. Gives an empty text if all went well.
  static std::string ReadAll(const std::string& file, const OdbcCalls& by = ManagerCalls(true))
  {
    OdbcSession session(by);
    if (session.Connect(file) != SQL_SUCCESS)
      return "connect: " + session.ConnectionState();
    if (session.Select("SELECT * FROM [T]") != Lines{"1|one", "2|two"})
      return "select: " + session.Select("SELECT * FROM [T]").front();
    session.calls.FreeStmt(session.stmt, SQL_CLOSE);
    if (session.calls.Columns(session.stmt, "T", std::nullopt) != SQL_SUCCESS ||
        session.Rest().size() != 2)
      return "columns: " + session.State();
    return "";
  }

  // ReadAll by a user who may do only what the file's permissions say. He uses the driver that is
  // loaded already, since he may have no way to the folder in which it is registered.
  static std::string ReadAllAsAnotherUser(const std::string& file)
  {
    const OdbcCalls& loaded = DriverCalls(true);
    Child reader([&](const Child::Writer& write) {
      if (geteuid() == 0 && setresuid(AnotherUser, AnotherUser, AnotherUser) != 0)
        write("the tests run as root and cannot become another user");
      else
        write(ReadAll(file, loaded));
      return 0;
    });
    if (reader.Wait() != 0)
      return "the reader did not end by itself: " + reader.Output();
    return reader.Output();
  }

  std::string Select(const std::string& sql)
  {
    OdbcSession session(calls);
    if (session.Connect(database) != SQL_SUCCESS)
      return "connect: " + session.ConnectionState();
    return session.Select(sql).front();
  }

  const OdbcCalls& calls;
  TemporaryFolder folder{Place::Disk};  // each step of a statement takes its time there
  std::string database;
};

class Durability : public DatabaseFile
{
};

class Killed : public DatabaseFile
{
protected:
  // Writes rows 1000, 1001, ... each in two statements, and sends each number when both are done.
  static int WriteForEver(const std::string& file, const Child::Writer& write)
  {
    OdbcSession session(ManagerCalls(true));
    if (session.Connect(file) != SQL_SUCCESS)
      return 4;
    session.Run("DELETE FROM [T] WHERE [Name]='new'");  // half done when the last one was killed
    const std::string last = session.Select("SELECT MAX(MAX([Id]),999) FROM [T]").front();
    for (int id = std::stoi(last) + 1;; ++id) {
      const std::string number = std::to_string(id);
      if (session.Run("INSERT INTO [T] VALUES (" + number + ",'new')") != SQL_SUCCESS ||
          session.Run("UPDATE [T] SET [Name]='done' WHERE [Id]=" + number) != SQL_SUCCESS)
        return 5;
      write(number + "\n");
    }
  }

  // Kills a writer at some moment; gives the last number that it had reported, or 999.
  int KillAWriter(int milliseconds)
  {
    Child writer([&](const Child::Writer& write) { return WriteForEver(database, write); });
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
    writer.Kill();
    EXPECT_EQ(writer.Wait(), -1) << "the writer ended by itself";
    const std::string& lines = writer.Output();
    if (lines.empty())
      return lastReported;
    const size_t start = lines.rfind('\n', lines.size() - 2);
    return std::stoi(lines.substr(start == std::string::npos ? 0 : start + 1));
  }

  int lastReported = 999;
};

class Locked : public DatabaseFile
{
protected:
  static double SecondsSince(std::chrono::steady_clock::time_point start)
  {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  }

  // Expects the statement to wait about that long and then to fail for the lock.
  static void ExpectGivesUp(OdbcSession& session, const std::string& sql, double seconds)
  {
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(session.Run(sql), SQL_ERROR);
    EXPECT_EQ(session.State(), "HYT00");
    EXPECT_GE(SecondsSince(start), 0.9 * seconds);
    EXPECT_LE(SecondsSince(start), seconds + 2);
  }

  const std::string insert = "INSERT INTO [T] VALUES (3,'three')";
};

// Peak memory of a process that fetches the rows of one query, in KiB.
long PeakOfFetching(const std::string& file, int rows)
{
  Child reader([&](const Child::Writer& write) {
    OdbcSession session(ManagerCalls(true));
    if (session.Connect(file) != SQL_SUCCESS)
      return 4;
    char text[100];
    SQLLEN length = 0;
    session.calls.BindCol(session.stmt, 1, SQL_C_CHAR, text, sizeof(text), &length);
    session.Run("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<" +
                std::to_string(rows) + ") SELECT 'row number '||i||' of a long result' FROM n");
    int fetched = 0;
    while (session.calls.Fetch(session.stmt) == SQL_SUCCESS)
      ++fetched;
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
      if (line.rfind("VmHWM:", 0) == 0)
        write(line.substr(6));
    return fetched == rows ? 0 : 5;
  });
  EXPECT_EQ(reader.Wait(), 0) << "not all rows were fetched";
  return std::atol(reader.Output().c_str());
}

}  // namespace

TEST_F(Durability, ConnectingAndReadingChangeNoByte)
{
  const std::string before = FileBytes(database);
  EXPECT_EQ(ReadAll(database), "");
  EXPECT_EQ(FileBytes(database), before);
  EXPECT_EQ(folder.Names(), Lines{"test.mdb"});
}

TEST_F(Durability, ReadingLeavesTheTimeOfTheFileAlone)
{
  struct stat before = {};
  struct stat after = {};
  stat(database.c_str(), &before);
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  EXPECT_EQ(ReadAll(database), "");
  stat(database.c_str(), &after);
  EXPECT_EQ(before.st_mtim.tv_sec, after.st_mtim.tv_sec);
  EXPECT_EQ(before.st_mtim.tv_nsec, after.st_mtim.tv_nsec);
}

TEST_F(Durability, ReadOnlyFileIsReadAndNotChanged)
{
  const std::string before = FileBytes(database);
  chmod(folder.Path().c_str(), 0777);
  chmod(database.c_str(), 0444);
  EXPECT_EQ(ReadAllAsAnotherUser(database), "");
  EXPECT_EQ(FileBytes(database), before);
  EXPECT_EQ(folder.Names(), Lines{"test.mdb"});
}

TEST_F(Durability, FileInAReadOnlyFolderIsReadAndNotChanged)
{
  const std::string before = FileBytes(database);
  chmod(database.c_str(), 0666);
  chmod(folder.Path().c_str(), 0555);
  EXPECT_EQ(ReadAllAsAnotherUser(database), "");
  chmod(folder.Path().c_str(), 0755);
  EXPECT_EQ(FileBytes(database), before);
  EXPECT_EQ(folder.Names(), Lines{"test.mdb"});
}

TEST_F(Durability, WritingToAReadOnlyFileIsAnErrorAndChangesNothing)
{
  const std::string before = FileBytes(database);
  chmod(folder.Path().c_str(), 0777);
  chmod(database.c_str(), 0444);
  const OdbcCalls& loaded = DriverCalls(true);
  Child writer([&](const Child::Writer& write) {
    if (geteuid() == 0 && setresuid(AnotherUser, AnotherUser, AnotherUser) != 0)
      return 9;
    OdbcSession session(loaded);
    session.Connect(database);
    const SQLRETURN result = session.Run("INSERT INTO [T] VALUES (3,'three')");
    write(std::to_string(result) + " " + session.State().substr(0, 2));
    return 0;
  });
  EXPECT_EQ(writer.Wait(), 0) << "the tests run as root and cannot become another user";
  EXPECT_TRUE(writer.Output() == "-1 HY" || writer.Output() == "-1 25" ||
              writer.Output() == "-1 42")
      << writer.Output();
  EXPECT_EQ(FileBytes(database), before);
}

TEST_F(Durability, RefusedUserGetsADiagnostic)
{
  chmod(folder.Path().c_str(), 0755);
  chmod(database.c_str(), 0000);
  EXPECT_EQ(ReadAllAsAnotherUser(database).substr(0, 9), "connect: ");
}

TEST_F(Durability, AtRestADatabaseIsOneFile)
{
  {
    OdbcSession session(calls);
    ASSERT_EQ(session.Connect(database), SQL_SUCCESS);
    ASSERT_EQ(session.Run("INSERT INTO [T] VALUES (3,'three')"), SQL_SUCCESS);
  }
  EXPECT_EQ(folder.Names(), Lines{"test.mdb"});
  const std::string before = FileBytes(database);
  EXPECT_EQ(Select("SELECT COUNT(*) FROM [T]"), "3");
  EXPECT_EQ(FileBytes(database), before);
}

TEST_F(Durability, AtRestADatabaseIsOneFileWhicheverConnectionEndsLast)
{
  OdbcSession writer(calls);
  OdbcSession reader(calls);
  ASSERT_EQ(writer.Connect(database), SQL_SUCCESS);
  ASSERT_EQ(writer.Run("INSERT INTO [T] VALUES (3,'three')"), SQL_SUCCESS);
  ASSERT_EQ(reader.Connect(database), SQL_SUCCESS);
  EXPECT_EQ(reader.Select("SELECT COUNT(*) FROM [T]"), Lines{"3"});
  writer.Disconnect();
  EXPECT_EQ(reader.Select("SELECT COUNT(*) FROM [T]"), Lines{"3"});
  reader.Disconnect();
  EXPECT_EQ(folder.Names(), Lines{"test.mdb"});
  EXPECT_EQ(ReadAll(database), "select: 1|one");
  EXPECT_EQ(folder.Names(), Lines{"test.mdb"});
}

TEST_F(Durability, AtRestADatabaseIsOneFileAfterADisconnectInTheMiddleOfAResult)
{
  OdbcSession session(calls);
  ASSERT_EQ(session.Connect(database), SQL_SUCCESS);
  ASSERT_EQ(session.Run("INSERT INTO [T] VALUES (3,'three')"), SQL_SUCCESS);
  ASSERT_EQ(session.Run("SELECT * FROM [T]"), SQL_SUCCESS);
  ASSERT_EQ(calls.Fetch(session.stmt), SQL_SUCCESS);
  session.Disconnect();
  EXPECT_EQ(folder.Names(), Lines{"test.mdb"});
}

TEST_F(Durability, ReadersOfAFileThatWasNeverWrittenByThemMakeNoOther)
{
  OdbcSession session(calls);
  ASSERT_EQ(session.Connect(database), SQL_SUCCESS);
  ASSERT_EQ(session.Run("SELECT * FROM [T]"), SQL_SUCCESS);
  ASSERT_EQ(calls.Fetch(session.stmt), SQL_SUCCESS);
  EXPECT_EQ(folder.Names(), Lines{"test.mdb"});
}

TEST_F(Durability, DatabaseWhoseOwnerChoseALogKeepsIt)
{
  ForeignProgram(database).Execute("PRAGMA journal_mode=WAL");
  const std::string before = FileBytes(database);
  EXPECT_EQ(ReadAll(database), "");
  EXPECT_EQ(FileBytes(database), before);
  EXPECT_EQ(folder.Names(), Lines{"test.mdb"});
  OdbcSession session(calls);
  ASSERT_EQ(session.Connect(database), SQL_SUCCESS);
  ASSERT_EQ(session.Run("INSERT INTO [T] VALUES (3,'three')"), SQL_SUCCESS);
  session.Disconnect();
  EXPECT_EQ(folder.Names(), Lines{"test.mdb"});
  EXPECT_EQ(Select("PRAGMA journal_mode"), "wal");
}

TEST_F(Durability, DatabaseWithALogInAReadOnlyFolderIsReadAndNotChanged)
{
  ForeignProgram(database).Execute("PRAGMA journal_mode=WAL");
  const std::string before = FileBytes(database);
  chmod(database.c_str(), 0444);
  chmod(folder.Path().c_str(), 0555);
  EXPECT_EQ(ReadAllAsAnotherUser(database), "");
  chmod(folder.Path().c_str(), 0755);
  EXPECT_EQ(FileBytes(database), before);
  EXPECT_EQ(folder.Names(), Lines{"test.mdb"});
}

TEST_F(Durability, DatabaseOfAnotherProgramIsReadAndWritten)
{
  const std::string other = folder.File("other.mdb");
  {
    ForeignProgram program(other);
    program.Execute("CREATE TABLE [T] ([Id] LONG PRIMARY KEY, [Name] TEXT(20))");
    program.Execute("INSERT INTO [T] VALUES (1,'one'),(2,'two')");
  }
  EXPECT_EQ(ReadAll(other), "");
  OdbcSession session(calls);
  ASSERT_EQ(session.Connect(other), SQL_SUCCESS);
  EXPECT_EQ(session.Run("UPDATE [T] SET [Name]='007' WHERE [Id]=2"), SQL_SUCCESS);
  EXPECT_EQ(session.Select("SELECT [Name] FROM [T] WHERE [Id]=2"), Lines{"007"});
  ColumnDescription key = {};
  EXPECT_EQ(session.Run("SELECT [Id] FROM [T]"), SQL_SUCCESS);
  EXPECT_EQ(calls.DescribeCol(session.stmt, 1, key), SQL_SUCCESS);
  EXPECT_EQ(key.nullable, SQL_NO_NULLS);
}

TEST_F(Killed, FinishedStatementsAreThereAndTheDatabaseIsWhole)
{
  std::mt19937 random(std::random_device{}());
  std::uniform_int_distribution<int> moment(3, 45);
  // 24 rounds, and on a slow machine more, each longer, until the writer has come to write.
  for (int round = 0; round < 24 || (lastReported <= 1000 && round < 100); ++round) {
    const int milliseconds = moment(random) + (round < 24 ? 0 : 20 * (round - 23));
    SCOPED_TRACE("round " + std::to_string(round) + ", killed after " +
                 std::to_string(milliseconds) + " ms");
    lastReported = KillAWriter(milliseconds);
    EXPECT_EQ(Select("PRAGMA integrity_check"), "ok");
    EXPECT_EQ(folder.Names(), Lines{"test.mdb"});
    EXPECT_EQ(Select("SELECT COUNT(*) FROM [T] WHERE [Name]='done' AND [Id] BETWEEN 1000 AND " +
                     std::to_string(lastReported)),
              std::to_string(lastReported - 999));
    EXPECT_EQ(Select("SELECT [Name] FROM [T] WHERE [Id]=1"), "one");
  }
  EXPECT_GT(lastReported, 1000);
}

TEST_F(Killed, UnfinishedTransactionIsTakenBack)
{
  Child writer([&](const Child::Writer& write) {
    OdbcSession session(calls);
    session.Connect(database);
    calls.SetConnectNumber(session.dbc, SQL_ATTR_AUTOCOMMIT, SQL_AUTOCOMMIT_OFF);
    session.Run("DELETE FROM [T]");
    write(session.State());
    kill(getpid(), SIGKILL);
    return 0;
  });
  EXPECT_EQ(writer.Wait(), -1);
  EXPECT_EQ(writer.Output(), "none");
  EXPECT_EQ(ReadAll(database), "");
  EXPECT_EQ(folder.Names(), Lines{"test.mdb"});
}

TEST_F(Locked, StatementGivesUpAfterItsQueryTimeout)
{
  OdbcSession session(calls);
  ASSERT_EQ(session.Connect(database), SQL_SUCCESS);
  ForeignProgram other(database);
  other.Execute("BEGIN IMMEDIATE");
  calls.SetStatementNumber(session.stmt, SQL_ATTR_QUERY_TIMEOUT, 1);
  ExpectGivesUp(session, insert, 1);
}

TEST_F(Locked, StatementWithoutAQueryTimeoutUsesTheLoginTimeout)
{
  OdbcSession session(calls);
  calls.SetConnectNumber(session.dbc, SQL_ATTR_LOGIN_TIMEOUT, 1);
  ASSERT_EQ(session.Connect(database), SQL_SUCCESS);
  ForeignProgram other(database);
  other.Execute("BEGIN IMMEDIATE");
  ExpectGivesUp(session, insert, 1);
}

TEST_F(Locked, StatementWithoutAnyTimeoutGivesUpAfterFiveSeconds)
{
  OdbcSession session(calls);
  ASSERT_EQ(session.Connect(database), SQL_SUCCESS);
  ForeignProgram other(database);
  other.Execute("BEGIN EXCLUSIVE");
  ExpectGivesUp(session, insert, 5);
}

TEST_F(Locked, ReadGivesUpToo)
{
  OdbcSession session(calls);
  ASSERT_EQ(session.Connect(database), SQL_SUCCESS);
  ForeignProgram other(database);
  other.Execute("BEGIN EXCLUSIVE");
  calls.SetStatementNumber(session.stmt, SQL_ATTR_QUERY_TIMEOUT, 1);
  ExpectGivesUp(session, "SELECT * FROM [T]", 1);
}

TEST_F(Locked, ConnectGivesUpAfterItsLoginTimeout)
{
  ForeignProgram other(database);
  other.Execute("BEGIN EXCLUSIVE");
  OdbcSession session(calls);
  calls.SetConnectNumber(session.dbc, SQL_ATTR_LOGIN_TIMEOUT, 1);
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(session.Connect(database), SQL_ERROR);
  EXPECT_EQ(session.ConnectionState(), "HYT00");
  EXPECT_GE(SecondsSince(start), 0.9);
  EXPECT_LE(SecondsSince(start), 3.0);
}

TEST_F(Locked, StatementSucceedsWhenTheLockGoesInTime)
{
  OdbcSession session(calls);
  ASSERT_EQ(session.Connect(database), SQL_SUCCESS);
  ForeignProgram other(database);
  other.Execute("BEGIN EXCLUSIVE");
  std::thread release([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    other.Execute("COMMIT");
  });
  EXPECT_EQ(session.Run(insert), SQL_SUCCESS) << session.State();
  release.join();
  EXPECT_EQ(session.Select("SELECT COUNT(*) FROM [T]"), Lines{"3"});
}

TEST_F(Locked, StatementMayBeTriedAgain)
{
  OdbcSession session(calls);
  ASSERT_EQ(session.Connect(database), SQL_SUCCESS);
  calls.SetStatementNumber(session.stmt, SQL_ATTR_QUERY_TIMEOUT, 1);
  {
    ForeignProgram other(database);
    other.Execute("BEGIN EXCLUSIVE");
    EXPECT_EQ(session.Run(insert), SQL_ERROR);
  }
  EXPECT_EQ(session.Run(insert), SQL_SUCCESS);
}

TEST_F(Locked, StatementThatTakesTooLongGivesUpAfterItsQueryTimeout)
{
  OdbcSession session(calls);
  ASSERT_EQ(session.Connect(database), SQL_SUCCESS);
  calls.SetStatementNumber(session.stmt, SQL_ATTR_QUERY_TIMEOUT, 1);
  const auto start = std::chrono::steady_clock::now();
  const Lines lines = session.Select(
      "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n) SELECT COUNT(*) FROM n");
  EXPECT_NE(lines.front().find("HYT00"), std::string::npos) << lines.front();
  EXPECT_LE(SecondsSince(start), 3.0);
}

TEST_F(Locked, ReadersAndTheWriterOfThisDriverDoNotBlockEachOther)
{
  OdbcSession writer(calls);
  OdbcSession reader(calls);
  ASSERT_EQ(writer.Connect(database), SQL_SUCCESS);
  ASSERT_EQ(reader.Connect(database), SQL_SUCCESS);
  calls.SetStatementNumber(writer.stmt, SQL_ATTR_QUERY_TIMEOUT, 1);
  ASSERT_EQ(writer.Run(insert), SQL_SUCCESS);
  ASSERT_EQ(reader.Run("SELECT * FROM [T]"), SQL_SUCCESS);
  ASSERT_EQ(calls.Fetch(reader.stmt), SQL_SUCCESS);
  EXPECT_EQ(writer.Run("UPDATE [T] SET [Name]='x' WHERE [Id]=1"), SQL_SUCCESS);
}

TEST_F(DatabaseFile, MemoryDoesNotGrowWithAResult)
{
  const long few = PeakOfFetching(database, 1000);
  const long many = PeakOfFetching(database, 200000);
  EXPECT_GT(few, 1000);
  EXPECT_LT(many - few, 1024) << few << " KiB for 1,000 rows, " << many << " KiB for 200,000";
}
