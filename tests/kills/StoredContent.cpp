#include "tests/kills/StoredContent.h"

#include "tests/doubles/FilesDouble.h"
#include "tests/scenario/Outcome.h"

#include <sqlite3.h>

#include <filesystem>

namespace {

namespace fs = std::filesystem;

// Stands in for the driver's collations, without which SQLite reads none of its tables. No query
// here compares or sorts by them.
int CompareNothing(void*, int, const void*, int, const void*)
{
  return 0;
}

// A copy of a database and of what lies beside it, and a connection to it that knows nothing of the
// driver.
class CopiedDatabase
{
public:
  explicit CopiedDatabase(const fs::path& original)
      : folder(original.parent_path().parent_path() / "copy")
  {
    fs::create_directory(folder);
    for (const char* const ending : {"", "-wal", "-journal"}) {
      if (fs::exists(original.string() + ending))
        fs::copy_file(original.string() + ending, Copy() + ending);
    }
    if (sqlite3_open_v2(Copy().c_str(), &connection, SQLITE_OPEN_READWRITE, nullptr) != SQLITE_OK)
      failure = sqlite3_errmsg(connection);
    for (const char* const collation : {"KESTREL_TEXT", "KESTREL_DATE"})
      (void)sqlite3_create_collation(connection, collation, SQLITE_UTF8, nullptr, CompareNothing);
  }
  ~CopiedDatabase()
  {
    (void)sqlite3_close(connection);
    fs::remove_all(folder);
  }
  CopiedDatabase(const CopiedDatabase&) = delete;
  CopiedDatabase& operator=(const CopiedDatabase&) = delete;

  std::vector<std::string> Rows(const std::string& sql)
  {
    std::vector<std::string> rows;
    sqlite3_stmt* statement = nullptr;
    int code = sqlite3_prepare_v2(connection, sql.c_str(), -1, &statement, nullptr);
    while (code == SQLITE_OK || code == SQLITE_ROW) {
      code = sqlite3_step(statement);
      const unsigned char* const text =
          code == SQLITE_ROW ? sqlite3_column_text(statement, 0) : nullptr;
      if (code == SQLITE_ROW)
        rows.emplace_back(text == nullptr ? "" : reinterpret_cast<const char*>(text));
    }
    if (code != SQLITE_DONE)
      failure = sql + ": " + sqlite3_errmsg(connection);
    (void)sqlite3_finalize(statement);
    return rows;
  }

  const std::string& Failure() const { return failure; }

private:
  std::string Copy() const { return (folder / "copy.mdb").string(); }

  fs::path folder;
  sqlite3* connection = nullptr;
  std::string failure;
};

}  // namespace

std::string StoredContent(const std::string& path)
{
  CopiedDatabase copy(Files().UnixPath(path));
  // The whole check would need the driver's collations, to compare the entries of indexes.
  const std::vector<std::string> check = copy.Rows("PRAGMA quick_check");
  if (check != std::vector<std::string>{"ok"})
    return "damaged: " + (check.empty() ? copy.Failure() : check.front());
  const std::string content =
      DescribeContent([&copy](const std::string& sql) { return copy.Rows(sql); });
  return copy.Failure().empty() ? content : "damaged: " + copy.Failure();
}
