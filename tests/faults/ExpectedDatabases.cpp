#include "tests/faults/ExpectedDatabases.h"

#include <algorithm>
#include <iterator>

namespace {

using Rows = std::vector<std::string>;
using Contents = ExpectedDatabases::Contents;

// Without rows, not even that of the columns, if it isn't there.
Rows TableIn(const Contents& contents, const std::string& database, const std::string& table)
{
  const auto content = contents.find(database);
  if (content == contents.end())
    return {};
  const auto rows = content->second.find(table);
  return rows == content->second.end() ? Rows() : rows->second;
}

// True if all rows but one of this beginning are among the others.
bool AreAmongButOne(const Rows& rows, const Rows& others, const std::string& beginning)
{
  Rows beyond;
  std::set_difference(rows.begin(), rows.end(), others.begin(), others.end(),
                      std::back_inserter(beyond));
  return beyond.empty() || (beyond.size() == 1 && beyond[0].starts_with(beginning));
}

Rows DataRows(const Rows& table)
{
  Rows rows(table.begin() + (table.empty() ? 0 : 1), table.end());
  std::sort(rows.begin(), rows.end());
  return rows;
}

bool DiffersInOneRow(const Rows& expected, const Rows& actual, const std::string& beginning)
{
  if (expected.empty() || actual.empty() || expected[0] != actual[0])
    return false;
  const Rows wanted = DataRows(expected);
  const Rows found = DataRows(actual);
  return AreAmongButOne(wanted, found, beginning) && AreAmongButOne(found, wanted, beginning);
}

std::vector<std::string> Split(const std::string& text, char separator)
{
  std::vector<std::string> parts;
  for (size_t begin = 0; begin <= text.size();) {
    const size_t end = std::min(text.find(separator, begin), text.size());
    parts.push_back(text.substr(begin, end - begin));
    begin = end + 1;
  }
  return parts;
}

// `column=value` of all values, and `column` of all columns.
void CollectValues(const Rows& table, std::set<std::string>& values)
{
  if (table.empty())
    return;
  const std::vector<std::string> columns = Split(table[0], ',');
  for (const std::string& column : columns)
    values.insert(column.substr(0, column.find(' ')));
  for (size_t i = 1; i < table.size(); ++i) {
    const std::vector<std::string> row = Split(table[i], '|');
    for (size_t k = 0; k < row.size() && k < columns.size(); ++k)
      values.insert(columns[k].substr(0, columns[k].find(' ')) + "=" + row[k]);
  }
}

bool HoldsOnly(const std::set<std::string>& known, const Rows& table)
{
  std::set<std::string> values;
  CollectValues(table, values);
  for (const std::string& value : values) {
    const size_t equals = value.find('=');
    const std::string literal = equals == std::string::npos ? "" : value.substr(equals + 1);
    const bool isUnread =
        literal == "NULL" || literal == "0" || literal == "0.0" || literal == "'0/0/0'";
    if (!known.contains(value) && !isUnread)
      return false;
  }
  return true;
}

std::string Text(const Rows& table)
{
  std::string text = table.empty() ? "no table" : "";
  for (const std::string& row : table)
    text += (text.empty() ? "" : " / ") + row;
  return text;
}

}  // namespace

void ExpectedDatabases::Replace(const std::string& database, const DatabaseContent& content)
{
  expected[database] = content;
}

void ExpectedDatabases::ReplaceTable(const std::string& database, const std::string& table,
                                     const Contents& by)
{
  const Rows rows = TableIn(by, database, table);
  if (rows.empty())
    expected[database].erase(table);
  else
    expected[database][table] = rows;
}

void ExpectedDatabases::AllowTable(const std::string& database, const std::string& table,
                                   const Contents& as)
{
  AllowRows(database, table, TableIn(as, database, table));
}

void ExpectedDatabases::AllowRows(const std::string& database, const std::string& table,
                                  const Rows& rows)
{
  alternatives[{database, table}].push_back(rows);
}

void ExpectedDatabases::AllowAbsence(const std::string& database, const std::string& table)
{
  AllowRows(database, table, {});
}

void ExpectedDatabases::AllowOneRow(const std::string& database, const std::string& table,
                                    const std::string& beginning)
{
  oneRow[{database, table}] = beginning;
}

void ExpectedDatabases::AllowKnownValues(const std::string& database, const std::string& table,
                                         const std::vector<const Contents*>& known)
{
  std::set<std::string>& values = knownValues[{database, table}];
  for (const Contents* contents : known)
    CollectValues(TableIn(*contents, database, table), values);
}

void ExpectedDatabases::AllowAnything(const std::string& database, const std::string& table)
{
  anything.insert({database, table});
}

bool ExpectedDatabases::Allows(const Place& place, const Rows& actual) const
{
  if (anything.contains(place))
    return true;
  const auto others = alternatives.find(place);
  if (others != alternatives.end() &&
      std::find(others->second.begin(), others->second.end(), actual) != others->second.end())
    return true;
  const auto row = oneRow.find(place);
  if (row != oneRow.end() &&
      DiffersInOneRow(TableIn(expected, place.first, place.second), actual, row->second))
    return true;
  const auto values = knownValues.find(place);
  return values != knownValues.end() && HoldsOnly(values->second, actual);
}

std::vector<std::string> ExpectedDatabases::Judge(const Contents& actual) const
{
  std::set<Place> places;
  for (const Contents* contents : {&expected, &actual}) {
    for (const auto& [database, content] : *contents) {
      for (const auto& [table, rows] : content)
        places.insert({database, table});
    }
  }
  std::vector<std::string> faults;
  for (const Place& place : places) {
    const Rows wanted = TableIn(expected, place.first, place.second);
    const Rows found = TableIn(actual, place.first, place.second);
    if (found != wanted && !Allows(place, found))
      faults.push_back(place.first + "." + place.second + " is " + Text(found) + ", not " +
                       Text(wanted));
  }
  return faults;
}
