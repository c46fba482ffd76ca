// Dates are read from text as a regular expression and the calendar of the standard library say,
// and any moment of the calendar comes back from the text that is written of it.

#include "driver/DateText.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <chrono>
#include <optional>
#include <regex>

#include "tests/fuzz/Require.h"

namespace {

using Match = std::match_results<std::string::const_iterator>;

bool IsInCalendar(const SQL_TIMESTAMP_STRUCT& moment)
{
  const std::chrono::year_month_day date(std::chrono::year(moment.year),
                                         std::chrono::month(moment.month),
                                         std::chrono::day(moment.day));
  // The calendar keeps a byte of the month and of the day.
  return moment.year >= 1 && moment.year <= 9999 && moment.month <= 12 && moment.day <= 31 &&
         date.ok() && moment.hour <= 23 && moment.minute <= 59 && moment.second <= 59 &&
         moment.fraction <= 999999999;
}

std::chrono::nanoseconds TimeOfDay(const SQL_TIMESTAMP_STRUCT& moment)
{
  return std::chrono::hours(moment.hour) + std::chrono::minutes(moment.minute) +
         std::chrono::seconds(moment.second) + std::chrono::nanoseconds(moment.fraction);
}

auto DayNumber(const SQL_TIMESTAMP_STRUCT& moment)
{
  const std::chrono::sys_days days(std::chrono::year_month_day(std::chrono::year(moment.year),
                                                               std::chrono::month(moment.month),
                                                               std::chrono::day(moment.day)));
  return days.time_since_epoch().count();
}

unsigned NumberOf(const Match& match, size_t group)
{
  return match[group].matched ? static_cast<unsigned>(std::stoul(match[group].str())) : 0;
}

void SetTime(const Match& match, size_t hour, SQL_TIMESTAMP_STRUCT& moment)
{
  moment.hour = static_cast<SQLUSMALLINT>(NumberOf(match, hour));
  moment.minute = static_cast<SQLUSMALLINT>(NumberOf(match, hour + 1));
  moment.second = static_cast<SQLUSMALLINT>(NumberOf(match, hour + 2));
  if (match[hour + 3].matched)
    moment.fraction =
        static_cast<SQLUINTEGER>(std::stoul((match[hour + 3].str() + "000000000").substr(0, 9)));
}

std::optional<SQL_TIMESTAMP_STRUCT> Read(const std::string& text)
{
  static const std::regex dateAndTime(
      " *(\\d{1,4})([/-])(\\d{1,2})\\2(\\d{1,4})"
      "(?:(?:T *| +)(\\d{1,2}):(\\d{1,2})(?::(\\d{1,2})(?:\\.(\\d+))?)?)? *");
  static const std::regex timeAlone(" *(\\d{1,4}):(\\d{1,2})(?::(\\d{1,2})(?:\\.(\\d+))?)? *");
  SQL_TIMESTAMP_STRUCT moment = {1899, 12, 30, 0, 0, 0, 0};
  Match match;
  if (std::regex_match(text, match, dateAndTime)) {
    const bool dayFirst = match[2].str() == "/";
    moment.year = static_cast<SQLSMALLINT>(NumberOf(match, dayFirst ? 4 : 1));
    moment.month = static_cast<SQLUSMALLINT>(NumberOf(match, 3));
    moment.day = static_cast<SQLUSMALLINT>(NumberOf(match, dayFirst ? 1 : 4));
    SetTime(match, 5, moment);
  } else if (std::regex_match(text, match, timeAlone)) {
    SetTime(match, 1, moment);
  } else {
    return std::nullopt;
  }
  return IsInCalendar(moment) ? std::optional(moment) : std::nullopt;
}

bool AreEqual(const SQL_TIMESTAMP_STRUCT& left, const SQL_TIMESTAMP_STRUCT& right)
{
  return left.year == right.year && left.month == right.month && left.day == right.day &&
         left.hour == right.hour && left.minute == right.minute && left.second == right.second &&
         left.fraction == right.fraction;
}

void CheckText(const std::string& text)
{
  const SQL_TIMESTAMP_STRUCT untouched = {-7, 7, 7, 7, 7, 7, 7};
  SQL_TIMESTAMP_STRUCT moment = untouched;
  const std::optional<SQL_TIMESTAMP_STRUCT> expected = Read(text);
  Require(ReadMoment(text, moment) == expected.has_value(), "a text is a date or is none");
  Require(AreEqual(moment, expected.value_or(untouched)), "the date is the one of the text");
}

SQL_TIMESTAMP_STRUCT AnyMoment(FuzzedDataProvider& input)
{
  SQL_TIMESTAMP_STRUCT moment = {};
  if (input.ConsumeBool()) {
    moment.year = input.ConsumeIntegral<SQLSMALLINT>();
    moment.month = input.ConsumeIntegral<SQLUSMALLINT>();
    moment.day = input.ConsumeIntegral<SQLUSMALLINT>();
    moment.hour = input.ConsumeIntegral<SQLUSMALLINT>();
    moment.minute = input.ConsumeIntegral<SQLUSMALLINT>();
    moment.second = input.ConsumeIntegral<SQLUSMALLINT>();
    moment.fraction = input.ConsumeIntegral<SQLUINTEGER>();
    return moment;
  }
  // At the edges of the calendar.
  const SQLSMALLINT years[] = {0, 1, 4, 100, 400, 1900, 2000, 2004, 2100, 9999, 10000, -4};
  moment.year = input.PickValueInArray(years);
  moment.month = input.ConsumeIntegralInRange<SQLUSMALLINT>(0, 13);
  moment.day = input.ConsumeIntegralInRange<SQLUSMALLINT>(27, 32);
  moment.hour = input.ConsumeIntegralInRange<SQLUSMALLINT>(0, 24);
  moment.minute = input.ConsumeIntegralInRange<SQLUSMALLINT>(0, 60);
  moment.second = input.ConsumeIntegralInRange<SQLUSMALLINT>(0, 60);
  const SQLUINTEGER fractions[] = {0, 1, 500000000, 120, 999999999, 1000000000};
  moment.fraction = input.PickValueInArray(fractions);
  return moment;
}

void CheckRoundTrip(const SQL_TIMESTAMP_STRUCT& moment)
{
  Require(IsRealMoment(moment) == IsInCalendar(moment), "a date is real if the calendar has it");
  SQL_TIMESTAMP_STRUCT back = {};
  const bool isRead = ReadMoment(WriteMoment(moment), back);
  if (IsInCalendar(moment)) {
    Require(isRead, "the text of a date can be read");
    Require(AreEqual(moment, back), "a date comes back from its text");
  }
}

void CheckOrder(const SQL_TIMESTAMP_STRUCT& left, const SQL_TIMESTAMP_STRUCT& right)
{
  const int order = CompareMoments(left, right);
  Require(order == -CompareMoments(right, left), "an order is the opposite of its reverse");
  Require(CompareMoments(left, left) == 0, "a moment equals itself");
  if (!IsInCalendar(left) || !IsInCalendar(right))
    return;
  const auto leftKey = std::make_pair(DayNumber(left), TimeOfDay(left));
  const auto rightKey = std::make_pair(DayNumber(right), TimeOfDay(right));
  const int expected = leftKey < rightKey ? -1 : static_cast<int>(rightKey < leftKey);
  Require(order == expected, "moments are in the order of time");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
  FuzzedDataProvider input(data, size);
  if (input.ConsumeBool()) {
    CheckText(input.ConsumeRemainingBytesAsString().substr(0, 64));
    return 0;
  }
  const SQL_TIMESTAMP_STRUCT first = AnyMoment(input);
  const SQL_TIMESTAMP_STRUCT second = input.ConsumeBool() ? AnyMoment(input) : first;
  CheckRoundTrip(first);
  CheckRoundTrip(second);
  CheckOrder(first, second);
  CheckText(WriteMoment(first) + input.ConsumeRemainingBytesAsString().substr(0, 16));
  return 0;
}
