#include "tests/faults/Content.h"

#include <sqlite3.h>
#include <string.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

using Rows = std::vector<std::string>;

// The driver's own orders, which the keys of its tables are kept in. The names and dates of a rich
// launch are in the same order by their characters.
int CompareWithoutCase(void* /*nothing*/, int leftBytes, const void* left, int rightBytes,
                       const void* right)
{
  const int order =
      sqlite3_strnicmp(static_cast<const char*>(left), static_cast<const char*>(right),
                       std::min(leftBytes, rightBytes));
  return order != 0 ? order : leftBytes - rightBytes;
}

void AddCollation(void* /*nothing*/, sqlite3* database, int /*encoding*/, const char* name)
{
  (void)sqlite3_create_collation(database, name, SQLITE_UTF8, nullptr, CompareWithoutCase);
}

class File
{
public:
  explicit File(const std::string& path)
  {
    good = sqlite3_open_v2(path.c_str(), &database, SQLITE_OPEN_READWRITE, nullptr) == SQLITE_OK &&
           sqlite3_collation_needed(database, nullptr, AddCollation) == SQLITE_OK;
  }
  File(const File&) = delete;
  File& operator=(const File&) = delete;
  ~File() { (void)sqlite3_close(database); }

  // The rows of a query, with `|` between their values.
  Rows Select(const std::string& query)
  {
    Rows rows;
    sqlite3_stmt* statement = nullptr;
    good =
        good && sqlite3_prepare_v2(database, query.c_str(), -1, &statement, nullptr) == SQLITE_OK;
    while (good) {
      const int code = sqlite3_step(statement);
      if (code != SQLITE_ROW) {
        good = code == SQLITE_DONE;
        break;
      }
      rows.push_back(RowText(statement));
    }
    (void)sqlite3_finalize(statement);
    return rows;
  }

  void Run(const std::string& statements)
  {
    good =
        good && sqlite3_exec(database, statements.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK;
  }

  bool IsGood() const { return good; }
  std::string Failure() const { return sqlite3_errmsg(database); }

private:
  static std::string RowText(sqlite3_stmt* statement)
  {
    std::string row;
    for (int i = 0; i < sqlite3_column_count(statement); ++i) {
      const unsigned char* text = sqlite3_column_text(statement, i);
      row += i == 0 ? "" : "|";
      row += text == nullptr ? "NULL" : reinterpret_cast<const char*>(text);
    }
    return row;
  }

  sqlite3* database = nullptr;
  bool good = false;
};

std::string Joined(const Rows& parts, const std::string& before, const std::string& after)
{
  std::string text;
  for (const std::string& part : parts)
    text += (text.empty() ? "" : ",") + before + part + after;
  return text;
}

DatabaseContent ReadFile(const std::string& path)
{
  File file(path);
  DatabaseContent content;
  if (file.Select("PRAGMA integrity_check") == Rows{"ok"}) {
    for (const std::string& table :
         file.Select("SELECT name FROM sqlite_schema WHERE type='table' ORDER BY name")) {
      const Rows columns = file.Select("SELECT name FROM pragma_table_info('" + table + "')");
      Rows rows =
          file.Select("SELECT " + Joined(columns, "quote([", "])") + " FROM [" + table + "]");
      std::sort(rows.begin(), rows.end());
      const Rows declared = file.Select(
          "SELECT name||' '||type||iif(\"notnull\",' not null','')||"
          "iif(pk,' key','') FROM pragma_table_info('" +
          table + "')");
      rows.insert(rows.begin(), Joined(declared, "", ""));
      content[table] = rows;
    }
  }
  if (file.IsGood() && !content.empty())
    return content;
  return {{"damaged", {path + ": " + file.Failure()}}};
}

std::string ReadBytes(const std::string& path)
{
  std::ostringstream bytes;
  bytes << std::ifstream(path, std::ios::binary).rdbuf();
  return bytes.str();
}

}  // namespace

DatabaseContent ReadContent(const std::string& unixPath)
{
  // Most launches leave one of a few forms of a file. A file that is still open may have more
  // beside it.
  static std::map<std::string, DatabaseContent> known;
  if (std::filesystem::exists(unixPath + "-wal") || std::filesystem::exists(unixPath + "-journal"))
    return ReadFile(unixPath);
  const std::string bytes = ReadBytes(unixPath);
  const auto found = known.find(bytes);
  if (found != known.end())
    return found->second;
  const DatabaseContent content = ReadFile(unixPath);
  return known[bytes] = content;
}

std::string ChangeContent(const std::string& unixPath, const std::string& statements)
{
  File file(unixPath);
  file.Run(statements);
  return file.IsGood() ? "" : statements + ": " + file.Failure();
}
