#include <sqlite3.h>

#include <chrono>

#include "bench/driver/Side.h"
#include "driver/Collation.h"
#include "driver/TableDefinition.h"

namespace {

using Clock = std::chrono::steady_clock;

class SqliteSide : public Side
{
public:
  explicit SqliteSide(const std::string& file)
  {
    if (sqlite3_open(file.c_str(), &database) != SQLITE_OK ||
        RegisterCollations(database) != SQLITE_OK)
      Fail("open", sqlite3_errmsg(database));
    Execute("PRAGMA journal_mode=WAL");
    Execute("PRAGMA synchronous=NORMAL");
  }

  ~SqliteSide() override { sqlite3_close(database); }

  void Execute(const std::string& sql) override { ExecuteOne(MendTableDefinition(sql)); }

  double Time(const std::vector<std::string>& statements) override
  {
    const auto start = Clock::now();
    for (const std::string& sql : statements)
      ExecuteOne(sql);
    return std::chrono::duration<double>(Clock::now() - start).count();
  }

private:
  void ExecuteOne(const std::string& sql)
  {
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(database, sql.c_str(), -1, &statement, nullptr) != SQLITE_OK)
      Fail("prepare", sqlite3_errmsg(database));
    while (sqlite3_step(statement) == SQLITE_ROW) {
    }
    if (sqlite3_finalize(statement) != SQLITE_OK)
      Fail("statement", sqlite3_errmsg(database));
  }

  sqlite3* database = nullptr;
};

}  // namespace

Side* NewSqliteSide(const std::string& file)
{
  return new SqliteSide(file);
}
