#include "driver/Database.h"

#include <sys/stat.h>

#include <thread>

#include "driver/Collation.h"
#include "driver/SqliteError.h"
#include "driver/Text.h"

namespace {

using Clock = std::chrono::steady_clock;

// Steps of SQLite's machine between two looks at the clock.
constexpr int StepsPerLook = 20000;
// 256 KiB of pages for a connection, so that one that runs through a large file needs no more
// memory than one that runs through a small one. What falls out is read again from the system's own
// cache.
constexpr const char* SmallPageCache = "PRAGMA cache_size=-256";
// Bytes of the smallest page that a database can consist of.
constexpr off_t SmallestDatabase = 512;
// Where the file's header tells how it is read: 2 for a write-ahead log.
constexpr int ReadVersionOffset = 19;
constexpr unsigned char WriteAheadLogVersion = 2;

bool FileExists(const std::string& path)
{
  struct stat status;
  return stat(path.c_str(), &status) == 0;
}

// The file as a URI that tells SQLite to look at nothing beside it.
std::string ImmutableUri(const std::string& path)
{
  static const char* const digits = "0123456789abcdef";
  std::string uri = "file:";
  for (const char character : path) {
    const auto byte = static_cast<unsigned char>(character);
    if (byte == '?' || byte == '#' || byte == '%') {
      uri += '%';
      uri += digits[byte >> 4];
      uri += digits[byte & 15];
    } else {
      uri += character;
    }
  }
  return uri + "?immutable=1";
}

}  // namespace

std::unique_ptr<Database> Database::Open(const std::string& path, bool readOnly, Seconds wait,
                                         Diagnostics& diagnostics)
{
  struct stat status;
  if (path.empty() || stat(path.c_str(), &status) != 0) {
    (void)diagnostics.Fail("08001", "The database file does not exist");
    return nullptr;
  }
  // SQLite takes a file of a single byte for an empty one.
  const bool tooShort = status.st_size > 0 && status.st_size < SmallestDatabase;
  if (!S_ISREG(status.st_mode) || tooShort) {
    (void)diagnostics.Fail("08001", "This is no database file: " + path);
    return nullptr;
  }
  std::unique_ptr<Database> database(new Database(path));
  database->StartOperation(wait, Seconds(0));
  const bool hadLog = FileExists(path + "-wal");
  const int mode = readOnly ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE;
  int code = database->OpenHandle(path.c_str(), mode);
  if (code == SQLITE_OK) {
    const bool saysLog = database->HeaderSaysWriteAheadLog();
    database->ownersWriteAheadLog = saysLog && !hadLog;
    database->writeAheadLog = saysLog;
    code = database->ReadSchema();
    const int primary = code & 0xff;
    if (database->ownersWriteAheadLog &&
        (primary == SQLITE_CANTOPEN || primary == SQLITE_READONLY)) {
      // The log needs files beside the database, which can't be made in a folder that is read-only.
      // There is none to be read, so the file alone is all there is.
      sqlite3_close(database->handle);
      code =
          database->OpenHandle(ImmutableUri(path).c_str(), SQLITE_OPEN_READONLY | SQLITE_OPEN_URI);
      if (code == SQLITE_OK)
        code = database->ReadSchema();
    }
  }
  if (code == SQLITE_OK) {
    (void)database->Execute(SmallPageCache);
    return database;
  }
  const std::string text = "Unable to open " + path + ": " + sqlite3_errmsg(database->handle);
  (void)diagnostics.Fail((code & 0xff) == SQLITE_BUSY ? "HYT00" : "08001", text, code);
  return nullptr;
}

int Database::OpenHandle(const char* name, int flags)
{
  handle = nullptr;
  // The connection's mutex is held during every call, so SQLite needs none of its own.
  int code =
      sqlite3_open_v2(name, &handle, flags | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE, nullptr);
  if (code == SQLITE_OK)
    code = RegisterCollations(handle);
  if (code == SQLITE_OK) {
    code = sqlite3_busy_handler(handle, OnBusy, this);
    sqlite3_progress_handler(handle, StepsPerLook, OnProgress, this);
  }
  return code;
}

int Database::ReadSchema()
{
  sqlite3_stmt* statement = nullptr;
  int code = sqlite3_prepare_v2(handle, "SELECT 1 FROM sqlite_schema", -1, &statement, nullptr);
  if (code == SQLITE_OK)
    code = sqlite3_step(statement);
  (void)sqlite3_finalize(statement);
  return code == SQLITE_ROW || code == SQLITE_DONE ? SQLITE_OK : code;
}

bool Database::HeaderSaysWriteAheadLog()
{
  // Read through SQLite's own descriptor: to close another one would drop the locks that this
  // process holds on the file.
  sqlite3_file* file = nullptr;
  if (sqlite3_file_control(handle, "main", SQLITE_FCNTL_FILE_POINTER, &file) != SQLITE_OK ||
      file == nullptr || file->pMethods == nullptr) {
    return false;
  }
  unsigned char header[ReadVersionOffset + 1] = {};
  return file->pMethods->xRead(file, header, sizeof(header), 0) == SQLITE_OK &&
         header[ReadVersionOffset] == WriteAheadLogVersion;
}

std::string Database::SetJournalMode(const char* pragma)
{
  std::string mode;
  sqlite3_stmt* statement = nullptr;
  if (sqlite3_prepare_v2(handle, pragma, -1, &statement, nullptr) == SQLITE_OK &&
      sqlite3_step(statement) == SQLITE_ROW) {
    const unsigned char* const text = sqlite3_column_text(statement, 0);
    if (text != nullptr)
      mode = reinterpret_cast<const char*>(text);
  }
  (void)sqlite3_finalize(statement);
  return mode;
}

void Database::PrepareToWrite()
{
  if (writeAheadLog || IsReadOnly() || sqlite3_get_autocommit(handle) == 0)
    return;
  const Seconds wait = lockWait;
  // Whoever is reading in the other mode now is not waited for; the next statement tries again.
  lockWait = Seconds(0);
  writeAheadLog = SetJournalMode("PRAGMA journal_mode=WAL") == "wal";
  lockWait = wait;
  // What is written survives the end of the process without a flush to the disk for each statement.
  if (writeAheadLog)
    (void)Execute("PRAGMA synchronous=NORMAL");
}

Database::~Database()
{
  // Another connection may have brought in the log since this one was opened.
  const bool restores = handle != nullptr && !ownersWriteAheadLog && !IsReadOnly();
  if (restores && (writeAheadLog || HeaderSaysWriteAheadLog())) {
    // Fails if somebody else has the file open, who then does the same.
    StartOperation(Seconds(0), Seconds(0));
    (void)SetJournalMode("PRAGMA journal_mode=DELETE");
  }
  if (restores && FileExists(path + "-journal"))
    RemoveStaleJournal();
  (void)sqlite3_close(handle);
}

// A process that was killed just when it had made its journal leaves one behind that nobody needs:
// SQLite takes it for no journal and lets it lie. On the way between these modes it removes it,
// under the lock of a writer; if somebody else is writing, the journal is his and stays.
void Database::RemoveStaleJournal()
{
  StartOperation(Seconds(0), Seconds(0));
  (void)SetJournalMode("PRAGMA journal_mode=PERSIST");
  (void)SetJournalMode("PRAGMA journal_mode=DELETE");
}

void Database::StartOperation(Seconds wait, Seconds timeout)
{
  lockWait = wait;
  limit = timeout;
  cancelled = false;
  timedOut = false;
  if (limit.count() > 0)
    limitStart = Clock::now();
}

int Database::OnBusy(void* self, int count)
{
  Database& database = *static_cast<Database*>(self);
  const Clock::time_point now = Clock::now();
  if (count == 0)
    database.waitStart = now;
  if (database.cancelled || now - database.waitStart >= database.lockWait)
    return 0;
  std::this_thread::sleep_for(std::chrono::milliseconds(count < 10 ? 1 + count : 10));
  return 1;
}

int Database::OnProgress(void* self)
{
  Database& database = *static_cast<Database*>(self);
  if (database.limit.count() > 0 && Clock::now() - database.limitStart >= database.limit)
    database.timedOut = true;
  return database.cancelled || database.timedOut ? 1 : 0;
}
