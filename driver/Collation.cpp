#include "driver/Collation.h"

#include <string_view>

#include "driver/DateText.h"
#include "driver/Text.h"

namespace {

std::string_view View(int length, const void* text)
{
  return {static_cast<const char*>(text), static_cast<size_t>(length)};
}

int CompareTexts(void* /*context*/, int leftLength, const void* left, int rightLength,
                 const void* right)
{
  return CompareNoCase(View(leftLength, left), View(rightLength, right));
}

// Dates by what they mean, in whatever form they are written. Text that is no date comes behind all
// dates, so that the order is one order.
int CompareDates(void* /*context*/, int leftLength, const void* left, int rightLength,
                 const void* right)
{
  SQL_TIMESTAMP_STRUCT leftMoment;
  SQL_TIMESTAMP_STRUCT rightMoment;
  const bool leftIsDate = ReadMoment(View(leftLength, left), leftMoment);
  const bool rightIsDate = ReadMoment(View(rightLength, right), rightMoment);
  if (leftIsDate && rightIsDate)
    return CompareMoments(leftMoment, rightMoment);
  if (leftIsDate != rightIsDate)
    return leftIsDate ? -1 : 1;
  return CompareNoCase(View(leftLength, left), View(rightLength, right));
}

std::string_view TextArgument(sqlite3_value* value)
{
  const unsigned char* const text = sqlite3_value_text(value);
  return text == nullptr ? std::string_view() : View(sqlite3_value_bytes(value), text);
}

// SQLite's own LIKE knows the case of ASCII only. The pattern is the first argument.
void Like(sqlite3_context* context, int count, sqlite3_value** arguments)
{
  for (int i = 0; i < count; ++i) {
    if (sqlite3_value_type(arguments[i]) == SQLITE_NULL)
      return;
  }
  uint32_t escape = 0;
  if (count == 3) {
    std::string_view text = TextArgument(arguments[2]);
    if (!text.empty())
      escape = TakeCharacter(text);
    if (escape == 0 || !text.empty()) {
      sqlite3_result_error(context, "ESCAPE expression must be a single character", -1);
      return;
    }
  }
  const bool matches =
      MatchesPattern(TextArgument(arguments[1]), TextArgument(arguments[0]), escape);
  sqlite3_result_int(context, matches ? 1 : 0);
}

}  // namespace

int RegisterCollations(sqlite3* database)
{
  int code = sqlite3_create_collation(database, TextCollation, SQLITE_UTF8, nullptr, CompareTexts);
  if (code == SQLITE_OK)
    code = sqlite3_create_collation(database, DateCollation, SQLITE_UTF8, nullptr, CompareDates);
  for (int count = 2; code == SQLITE_OK && count <= 3; ++count) {
    code = sqlite3_create_function(database, "like", count, SQLITE_UTF8 | SQLITE_DETERMINISTIC,
                                   nullptr, Like, nullptr, nullptr);
  }
  return code;
}
