#include "driver/SqliteError.h"

#include <cstring>
#include <string_view>

#include "driver/Text.h"

namespace {

constexpr int PrimaryCodeMask = 0xff;

// SQLite has one code for all that is wrong with a statement; its text tells more.
struct MessageState
{
  const char* start;
  const char* end;
  const char* state;
};

const MessageState MessageStates[] = {
    {"no such table", "", "42S02"},
    {"no such view", "", "42S02"},
    {"no such column", "", "42S22"},
    {"", "has no column named", "42S22"},
    {"table ", "already exists", "42S01"},
    {"there is already a table", "", "42S01"},
    {"view ", "already exists", "42S01"},
    {"index ", "already exists", "42S11"},
    {"no such index", "", "42S12"},
    {"duplicate column name", "", "42S21"},
    {"table ", "values were supplied", "21S01"},
};

const char* StateOfMessage(std::string_view message)
{
  for (const MessageState& known : MessageStates) {
    if (message.substr(0, strlen(known.start)) == known.start && ContainsNoCase(message, known.end))
      return known.state;
  }
  // "2 values for 3 columns"
  if (ContainsNoCase(message, " values for ") && ContainsNoCase(message, " columns"))
    return "21S01";
  return "42000";
}

const char* StateOfCode(int code)
{
  switch (code & PrimaryCodeMask) {
    case SQLITE_BUSY: return "HYT00";
    case SQLITE_CONSTRAINT: return "23000";
    case SQLITE_MISMATCH: return "22018";
    case SQLITE_NOMEM: return "HY001";
    case SQLITE_INTERRUPT: return "HY008";
    case SQLITE_TOOBIG: return "22001";
    case SQLITE_AUTH:
    case SQLITE_PERM:
    case SQLITE_READONLY: return "42000";
    default: return "HY000";
  }
}

}  // namespace

SQLRETURN FailFromSqlite(Diagnostics& diagnostics, sqlite3* database, int code)
{
  const char* const message = sqlite3_errmsg(database);
  const char* const state =
      (code & PrimaryCodeMask) == SQLITE_ERROR ? StateOfMessage(message) : StateOfCode(code);
  return diagnostics.Fail(state, message, code);
}
