// Opening database files, and the end of memory in SQLite's own hands.

#include "driver/Database.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <climits>
#include <cstdio>
#include <thread>

#include "driver/Catalogue.h"
#include "driver/Parameters.h"
#include "tests/driver/TemporaryFolder.h"

namespace {

const uid_t AnotherUser = 65534;
constexpr Database::Seconds NoWait{0};

// For a while this process may do only what the permissions of a file grant to anybody.
class Unprivileged
{
public:
  Unprivileged() : user(geteuid())
  {
    if (user == 0) {
      EXPECT_EQ(seteuid(AnotherUser), 0);
    }
  }
  ~Unprivileged() { EXPECT_EQ(seteuid(user), 0); }
  Unprivileged(const Unprivileged&) = delete;
  Unprivileged& operator=(const Unprivileged&) = delete;

private:
  uid_t user;
};

// SQLite gets no more memory than so many bytes beyond what it has.
class MemoryLimit
{
public:
  explicit MemoryLimit(sqlite3_int64 more)
  {
    // A limit of 0 would be none.
    sqlite3_hard_heap_limit64(sqlite3_memory_used() + more + 1);
  }
  ~MemoryLimit() { sqlite3_hard_heap_limit64(0); }
  MemoryLimit(const MemoryLimit&) = delete;
  MemoryLimit& operator=(const MemoryLimit&) = delete;
};

class DatabaseTest : public testing::Test
{
protected:
  DatabaseTest()
  {
    WriteFile(path, "");
    Execute("CREATE TABLE [T] ([Id] INTEGER PRIMARY KEY, [Name] TEXT DEFAULT 'x')");
    Execute("INSERT INTO [T] VALUES (1,'one')");
  }

  // By another program.
  void Execute(const char* sql)
  {
    sqlite3* foreign = nullptr;
    EXPECT_EQ(sqlite3_open(path.c_str(), &foreign), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(foreign, sql, nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close(foreign);
  }

  // Makes the file one that is read with a log, and gives it a name to which the ending of the
  // log's doesn't fit. Returns its path.
  std::string MakeLoggedFileOfALongName()
  {
    Execute("PRAGMA journal_mode=WAL");
    std::string longPath = folder.File(std::string(NAME_MAX - 3, 'n'));
    EXPECT_EQ(rename(path.c_str(), longPath.c_str()), 0);
    return longPath;
  }

  std::unique_ptr<Database> Open(const std::string& file)
  {
    diagnostics.Clear();
    return Database::Open(file, false, NoWait, diagnostics);
  }

  std::string State() const
  {
    return diagnostics.Count() == 0 ? "none" : diagnostics.Record(0).state;
  }

  static int CountRows(Database& database)
  {
    sqlite3_stmt* statement = nullptr;
    (void)sqlite3_prepare_v2(database.Handle(), "SELECT COUNT(*) FROM [T]", -1, &statement,
                             nullptr);
    const int code = sqlite3_step(statement);
    const int count = code == SQLITE_ROW ? sqlite3_column_int(statement, 0) : -code;
    sqlite3_finalize(statement);
    return count;
  }

  TemporaryFolder folder;
  // Names of which a part has a meaning in a URI.
  std::string path = folder.File("a?b#c%20d.mdb");
  Diagnostics diagnostics;
};

}  // namespace

TEST_F(DatabaseTest, FileThatIsNotThereOrHasNoNameIsRefused)
{
  EXPECT_EQ(Open(""), nullptr);
  EXPECT_EQ(State(), "08001");
  EXPECT_EQ(Open(folder.File("absent.mdb")), nullptr);
  EXPECT_EQ(State(), "08001");
  EXPECT_EQ(folder.Names(), std::vector<std::string>{"a?b#c%20d.mdb"});
}

TEST_F(DatabaseTest, FileThatMayNotBeReadIsRefused)
{
  chmod(folder.Path().c_str(), 0755);
  chmod(path.c_str(), 0);
  const Unprivileged here;
  EXPECT_EQ(Open(path), nullptr);
  EXPECT_EQ(State(), "08001");
}

TEST_F(DatabaseTest, FileWithALogInAReadOnlyFolderIsReadByItsOddName)
{
  Execute("PRAGMA journal_mode=WAL");
  const std::string before = FileBytes(path);
  chmod(folder.Path().c_str(), 0555);
  for (const mode_t mode : {0444U, 0666U}) {
    chmod(path.c_str(), mode);
    const Unprivileged here;
    const auto database = Open(path);
    ASSERT_NE(database, nullptr) << diagnostics.Record(0).message;
    EXPECT_EQ(CountRows(*database), 1);
    EXPECT_TRUE(database->IsReadOnly());
  }
  chmod(folder.Path().c_str(), 0755);
  EXPECT_EQ(FileBytes(path), before);
}

TEST_F(DatabaseTest, FileWhoseNameLeavesNoRoomForThatOfItsLogIsRead)
{
  const std::string longPath = MakeLoggedFileOfALongName();
  const auto database = Open(longPath);
  ASSERT_NE(database, nullptr) << diagnostics.Record(0).message;
  EXPECT_EQ(CountRows(*database), 1);
  EXPECT_TRUE(database->IsReadOnly());
  EXPECT_EQ(folder.Names().size(), 1U);
}

TEST_F(DatabaseTest, FileWithALogThatCanNotBeOpenedByItselfIsRefused)
{
  // It would be opened as a URI, where two slashes are followed by a host.
  EXPECT_EQ(Open("/" + MakeLoggedFileOfALongName()), nullptr);
  EXPECT_EQ(State(), "08001");
  const DiagnosticRecord& record = diagnostics.Record(0);
  EXPECT_EQ(record.nativeCode, SQLITE_ERROR);
  EXPECT_NE(record.message.find("authority"), std::string::npos) << record.message;
}

TEST_F(DatabaseTest, JournalThatNobodyNeedsIsRemoved)
{
  WriteFile(path + "-journal", "");
  Open(path).reset();
  EXPECT_EQ(folder.Names(), std::vector<std::string>{"a?b#c%20d.mdb"});
  EXPECT_EQ(CountRows(*Open(path)), 1);
}

TEST_F(DatabaseTest, CancelEndsTheWaitForALock)
{
  sqlite3* foreign = nullptr;
  ASSERT_EQ(sqlite3_open(path.c_str(), &foreign), SQLITE_OK);
  const auto database = Open(path);
  ASSERT_NE(database, nullptr);
  ASSERT_EQ(sqlite3_exec(foreign, "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr), SQLITE_OK);
  database->StartOperation(Database::Seconds(60), NoWait);
  std::thread canceller([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    database->Cancel();
  });
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(database->Execute("DELETE FROM [T]") & 0xff, SQLITE_BUSY);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(30));
  canceller.join();
  sqlite3_close(foreign);
}

TEST_F(DatabaseTest, OpensOrFailsCleanlyHoweverLittleMemoryThereIs)
{
  int failures = 0;
  for (sqlite3_int64 more = 0;; more += 500) {
    std::unique_ptr<Database> database;
    {
      const MemoryLimit limit(more);
      database = Open(path);
    }
    if (database) {
      EXPECT_EQ(CountRows(*database), 1);
      break;
    }
    ++failures;
    EXPECT_EQ(State(), "08001");
    ASSERT_LT(more, 10000000);
  }
  EXPECT_GT(failures, 5);
  EXPECT_EQ(folder.Names(), std::vector<std::string>{"a?b#c%20d.mdb"});
}

TEST_F(DatabaseTest, LeavesOneFileHoweverLittleMemoryThereIsAtItsEnd)
{
  for (sqlite3_int64 more = 0; more < 30000; more += 1000) {
    auto database = Open(path);
    ASSERT_NE(database, nullptr);
    database->PrepareToWrite();
    EXPECT_EQ(database->Execute("UPDATE [T] SET [Name]='two'"), SQLITE_OK);
    {
      const MemoryLimit limit(more);
      database.reset();
    }
    // Whoever opens it next puts it in order.
    Open(path).reset();
    EXPECT_EQ(CountRows(*Open(path)), 1) << more;
  }
}

TEST_F(DatabaseTest, CatalogueSaysSoWhenMemoryRunsOut)
{
  const auto database = Open(path);
  ASSERT_NE(database, nullptr);
  int failures = 0;
  for (sqlite3_int64 more = 0;; more += 250) {
    Catalogue catalogue(database->Handle());
    std::unique_ptr<StoredRows> rows;
    {
      const MemoryLimit limit(more);
      rows = catalogue.Columns(CatalogueName("T", CatalogueName::Meaning::Pattern),
                               CatalogueName(std::nullopt, CatalogueName::Meaning::Pattern));
    }
    if (rows) {
      EXPECT_EQ(rows->Next(), Step::Row);
      EXPECT_EQ(rows->Value(3).bytes, "Id");
      break;
    }
    ++failures;
    EXPECT_EQ(catalogue.code, SQLITE_NOMEM);
    ASSERT_LT(more, 10000000);
  }
  EXPECT_GT(failures, 0);
}

TEST_F(DatabaseTest, TablesAreNoneWhenMemoryRunsOut)
{
  const auto database = Open(path);
  ASSERT_NE(database, nullptr);
  Catalogue catalogue(database->Handle());
  const CatalogueName all(std::nullopt, CatalogueName::Meaning::Pattern);
  const MemoryLimit limit(0);
  EXPECT_EQ(catalogue.Tables(all, all, all, ""), nullptr);
  EXPECT_EQ(catalogue.code, SQLITE_NOMEM);
}

TEST_F(DatabaseTest, ParameterThatIsTooLongIsRefused)
{
  const auto database = Open(path);
  ASSERT_NE(database, nullptr);
  sqlite3_limit(database->Handle(), SQLITE_LIMIT_LENGTH, 1000);
  sqlite3_stmt* statement = nullptr;
  ASSERT_EQ(sqlite3_prepare_v2(database->Handle(), "SELECT ?", -1, &statement, nullptr), SQLITE_OK);
  std::string text(2000, 'x');
  SQLLEN length = 2000;
  Parameter parameter;
  parameter.isBound = true;
  parameter.cType = SQL_C_CHAR;
  parameter.value = text.data();
  parameter.length = &length;
  EXPECT_EQ(BindParameter(statement, 1, parameter, 0, nullptr, diagnostics), SQL_ERROR);
  EXPECT_EQ(State(), "HY000");
  sqlite3_limit(database->Handle(), SQLITE_LIMIT_LENGTH, 10000);
  diagnostics.Clear();
  {
    const MemoryLimit limit(0);
    EXPECT_EQ(BindParameter(statement, 1, parameter, 0, nullptr, diagnostics), SQL_ERROR);
  }
  EXPECT_EQ(State(), "HY001");
  sqlite3_finalize(statement);
}

TEST_F(DatabaseTest, LikeOfAValueThatHasNoRoomAsTextFails)
{
  const auto database = Open(path);
  ASSERT_NE(database, nullptr);
  sqlite3_stmt* statement = nullptr;
  ASSERT_EQ(sqlite3_prepare_v2(database->Handle(), "SELECT ZEROBLOB(100000) LIKE 'x'", -1,
                               &statement, nullptr),
            SQLITE_OK);
  {
    const MemoryLimit limit(0);
    EXPECT_EQ(sqlite3_step(statement), SQLITE_NOMEM);
  }
  sqlite3_finalize(statement);
}
