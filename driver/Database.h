// One open database file: how it is opened, waited for and left behind.

#ifndef DRIVER_DATABASE_H
#define DRIVER_DATABASE_H

#include <sqlite3.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <string>

#include "driver/Diagnostics.h"

class Database
{
public:
  using Seconds = std::chrono::seconds;

  // Opens a file that exists and proves that it is a database by reading its schema; waits that
  // long for a lock. Null after adding a record. An empty file is a database without tables.
  // Nothing is created, and no byte of the file changes.
  static std::unique_ptr<Database> Open(const std::string& path, bool readOnly, Seconds wait,
                                        Diagnostics& diagnostics);
  // All statements are finalized by then. The file is left in the journal mode in which its owner
  // keeps it, without files beside it, if nobody else has it open.
  ~Database();
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  sqlite3* Handle() const { return handle; }
  bool IsReadOnly() const { return sqlite3_db_readonly(handle, "main") != 0; }
  const std::string& Path() const { return path; }

  // How long the calls that follow wait for locks. They end with SQLITE_INTERRUPT behind timeout,
  // counted from now, if that isn't 0.
  void StartOperation(Seconds wait, Seconds timeout);
  // Ends the operation that is under way, from any thread.
  void Cancel() { cancelled = true; }
  // True if it was the time that ended the operation.
  bool TimedOut() const { return timedOut; }

  // Called before a statement that writes: lets writers and readers work side by side from here on,
  // by a write-ahead log. Where that can't be had, writing goes on with a rollback journal.
  void PrepareToWrite();

  // Runs a statement without a result.
  int Execute(const char* sql) { return sqlite3_exec(handle, sql, nullptr, nullptr, nullptr); }

private:
  explicit Database(std::string file) : path(std::move(file)) {}

  int OpenHandle(const char* name, int flags);
  int ReadSchema();
  bool HeaderSaysWriteAheadLog();
  std::string SetJournalMode(const char* pragma);
  void RemoveStaleJournal();
  static int OnBusy(void* self, int count);
  static int OnProgress(void* self);

  std::string path;
  sqlite3* handle = nullptr;
  // The owner keeps the file in the mode of a write-ahead log: it was so before anybody had it
  // open.
  bool ownersWriteAheadLog = false;
  bool writeAheadLog = false;

  Seconds lockWait{0};
  Seconds limit{0};
  std::chrono::steady_clock::time_point limitStart;
  std::chrono::steady_clock::time_point waitStart;
  std::atomic<bool> cancelled{false};
  bool timedOut = false;
};

#endif
