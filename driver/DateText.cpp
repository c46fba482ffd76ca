#include "driver/DateText.h"

#include <cstdio>
#include <tuple>

namespace {

constexpr uint32_t NanosecondsPerSecond = 1000000000;

class Reader
{
public:
  explicit Reader(std::string_view source) : text(source) {}

  bool AtEnd() const { return text.empty(); }

  bool Skip(char wanted)
  {
    if (text.empty() || text.front() != wanted)
      return false;
    text.remove_prefix(1);
    return true;
  }

  void SkipBlanks()
  {
    while (Skip(' ')) {
    }
  }

  // One to most digits.
  bool Number(unsigned most, unsigned& value)
  {
    unsigned digits = 0;
    value = 0;
    while (!text.empty() && text.front() >= '0' && text.front() <= '9') {
      if (++digits > most)
        return false;
      value = value * 10 + static_cast<unsigned>(text.front() - '0');
      text.remove_prefix(1);
    }
    return digits > 0;
  }

  // Digits behind the point of a second; those beyond the ninth are dropped.
  bool Fraction(SQLUINTEGER& nanoseconds)
  {
    nanoseconds = 0;
    uint32_t unit = NanosecondsPerSecond;
    bool any = false;
    while (!text.empty() && text.front() >= '0' && text.front() <= '9') {
      unit /= 10;
      nanoseconds += unit * static_cast<uint32_t>(text.front() - '0');
      text.remove_prefix(1);
      any = true;
    }
    return any;
  }

private:
  std::string_view text;
};

unsigned DaysOfMonth(int year, unsigned month)
{
  static const unsigned days[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
  return month == 2 && leap ? 29 : days[month - 1];
}

// The rest of a time whose hour has been read up to its colon.
bool ReadTime(Reader& reader, unsigned hour, SQL_TIMESTAMP_STRUCT& moment)
{
  unsigned minute = 0;
  unsigned second = 0;
  SQLUINTEGER fraction = 0;
  if (!reader.Number(2, minute))
    return false;
  if (reader.Skip(':')) {
    if (!reader.Number(2, second))
      return false;
    if (reader.Skip('.') && !reader.Fraction(fraction))
      return false;
  }
  moment.hour = static_cast<SQLUSMALLINT>(hour);
  moment.minute = static_cast<SQLUSMALLINT>(minute);
  moment.second = static_cast<SQLUSMALLINT>(second);
  moment.fraction = fraction;
  return true;
}

// The rest of a date whose first number has been read.
bool ReadDate(Reader& reader, unsigned first, SQL_TIMESTAMP_STRUCT& moment)
{
  unsigned month = 0;
  unsigned last = 0;
  const bool dayFirst = reader.Skip('/');
  if (!dayFirst && !reader.Skip('-'))
    return false;
  if (!reader.Number(2, month) || !reader.Skip(dayFirst ? '/' : '-') || !reader.Number(4, last))
    return false;
  moment.year = static_cast<SQLSMALLINT>(dayFirst ? last : first);
  moment.month = static_cast<SQLUSMALLINT>(month);
  moment.day = static_cast<SQLUSMALLINT>(dayFirst ? first : last);
  return true;
}

}  // namespace

bool IsRealMoment(const SQL_TIMESTAMP_STRUCT& moment)
{
  return moment.year >= 1 && moment.year <= 9999 && moment.month >= 1 && moment.month <= 12 &&
         moment.day >= 1 && moment.day <= DaysOfMonth(moment.year, moment.month) &&
         moment.hour < 24 && moment.minute < 60 && moment.second < 60 &&
         moment.fraction < NanosecondsPerSecond;
}

bool ReadMoment(std::string_view text, SQL_TIMESTAMP_STRUCT& moment)
{
  Reader reader(text);
  SQL_TIMESTAMP_STRUCT read = {1899, 12, 30, 0, 0, 0, 0};
  unsigned number = 0;
  reader.SkipBlanks();
  if (!reader.Number(4, number))
    return false;
  if (reader.Skip(':')) {
    if (!ReadTime(reader, number, read))
      return false;
  } else {
    if (!ReadDate(reader, number, read))
      return false;
    const bool timeFollows = reader.Skip('T');
    reader.SkipBlanks();
    if (timeFollows || !reader.AtEnd()) {
      if (!reader.Number(2, number) || !reader.Skip(':') || !ReadTime(reader, number, read))
        return false;
    }
  }
  reader.SkipBlanks();
  if (!reader.AtEnd() || !IsRealMoment(read))
    return false;
  moment = read;
  return true;
}

std::string WriteMoment(const SQL_TIMESTAMP_STRUCT& moment)
{
  char buffer[64];
  (void)snprintf(buffer, sizeof(buffer), "%04d-%02u-%02u %02u:%02u:%02u", moment.year, moment.month,
                 moment.day, moment.hour, moment.minute, moment.second);
  std::string text(buffer);
  if (moment.fraction != 0) {
    (void)snprintf(buffer, sizeof(buffer), ".%09u", moment.fraction);
    text += buffer;
    text.erase(text.find_last_not_of('0') + 1);
  }
  return text;
}

int CompareMoments(const SQL_TIMESTAMP_STRUCT& left, const SQL_TIMESTAMP_STRUCT& right)
{
  const auto key = [](const SQL_TIMESTAMP_STRUCT& moment) {
    return std::make_tuple(moment.year, moment.month, moment.day, moment.hour, moment.minute,
                           moment.second, moment.fraction);
  };
  return key(left) < key(right) ? -1 : static_cast<int>(key(right) < key(left));
}
