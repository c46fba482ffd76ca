// The test's side of the ODBC double: what databases answer.
#include "tests/doubles/OdbcDouble.h"

#include "tests/doubles/Text.h"

#include <ctype.h>
#include <stdio.h>
#include <stdlib.h>

#include <algorithm>
#include <string_view>

namespace {

constexpr long long LongestBytes = 2147483647;

// Matches like LIKE does, without regard to case: % stands for any characters, _ for one.
bool Matches(std::string_view pattern, std::string_view name)
{
  if (pattern.empty())
    return name.empty();
  if (pattern[0] == '%') {
    for (size_t skipped = 0; skipped <= name.size(); ++skipped) {
      if (Matches(pattern.substr(1), name.substr(skipped)))
        return true;
    }
    return false;
  }
  if (name.empty())
    return false;
  const bool same = tolower(static_cast<unsigned char>(pattern[0])) ==
                    tolower(static_cast<unsigned char>(name[0]));
  return (same || pattern[0] == '_') && Matches(pattern.substr(1), name.substr(1));
}

// The type's name and kind, as an Access driver has them.
struct TypeFacts
{
  int sqlType;
  const char* name;
  int bytes;  // of the value in its usual C type; 0: two for each character
};

constexpr TypeFacts KnownTypes[] = {
    {SQL_WLONGVARCHAR, "MEMO", 0}, {SQL_WVARCHAR, "TEXT", 0},
    {SQL_WCHAR, "CHAR", 0},        {SQL_BIT, "BIT", 1},
    {SQL_TINYINT, "BYTE", 1},      {SQL_SMALLINT, "SMALLINT", 2},
    {SQL_INTEGER, "INTEGER", 4},   {SQL_REAL, "REAL", 4},
    {SQL_DOUBLE, "DOUBLE", 8},     {SQL_NUMERIC, "CURRENCY", 21},
    {SQL_DECIMAL, "DECIMAL", 21},  {SQL_TYPE_TIMESTAMP, "DATETIME", 16}};

TypeFacts FactsOf(int sqlType)
{
  for (const TypeFacts& facts : KnownTypes) {
    if (facts.sqlType == sqlType)
      return facts;
  }
  return {sqlType, "OTHER", 0};
}

// ODBC tells dates by one number in the catalogue and by another elsewhere.
constexpr int DateAndTime = 9;
constexpr int TimestampSubtype = 3;

}  // namespace

OdbcCell::OdbcCell(double number) : isNull(false)
{
  char digits[32];
  (void)snprintf(digits, sizeof(digits), "%.15g", number);
  text = digits;
}

OdbcRow FetchGives(int code, const OdbcRow& row)
{
  OdbcRow fetch = row;
  fetch.code = code;
  return fetch;
}

OdbcColumn::OdbcColumn(const std::string& name, int dataType, const OdbcCell& size,
                       const OdbcCell& nullable)
    : columnName(name), sqlType(dataType)
{
  Set(7, size);
  Set(11, nullable);
}

OdbcColumn& OdbcColumn::Set(int position, const OdbcCell& value)
{
  values.insert_or_assign(position, value);
  return *this;
}

OdbcRow OdbcColumn::Row(const std::string& table, int ordinal) const
{
  const TypeFacts facts = FactsOf(sqlType);
  const bool isText = facts.bytes == 0;
  const bool isDate = sqlType == SQL_TYPE_TIMESTAMP;
  const OdbcCell size = values.at(7);
  // A text of the largest size there is has as many bytes, as honest drivers report it.
  const long long textBytes = 2 * atoll(size.Text().c_str());
  const int bytes =
      isText ? static_cast<int>(std::clamp(textBytes, 0LL, LongestBytes)) : facts.bytes;
  const OdbcCell null = nullptr;
  OdbcRow row = {null,
                 null,
                 table,
                 columnName,
                 sqlType,
                 facts.name,
                 size,
                 bytes,
                 null,
                 isText || isDate ? null : OdbcCell(10),
                 SQL_NULLABLE,
                 null,
                 null,
                 isDate ? DateAndTime : sqlType,
                 isDate ? OdbcCell(TimestampSubtype) : null,
                 isText ? OdbcCell(bytes) : null,
                 ordinal,
                 values.at(11).Text() == "0" ? "NO" : "YES"};
  for (const auto& [position, value] : values)
    row.cells.at(static_cast<size_t>(position - 1)) = value;
  return row;
}

OdbcDatabase& OdbcDatabase::ConnectGives(int code)
{
  connectCode = code;
  return *this;
}

OdbcDatabase& OdbcDatabase::Table(const std::string& name, const OdbcRows& rows)
{
  return Query("SELECT * FROM " + name, rows);
}

OdbcDatabase& OdbcDatabase::Query(const std::string& statement, const OdbcRows& rows, int code)
{
  statements[statement] = {code, true, rows};
  return *this;
}

OdbcDatabase& OdbcDatabase::Statement(const std::string& statement, int code)
{
  statements[statement] = {code, false, {}};
  return *this;
}

OdbcDatabase& OdbcDatabase::OtherStatements(int code)
{
  otherCode = code;
  return *this;
}

OdbcDatabase& OdbcDatabase::Columns(const std::string& table,
                                    const std::vector<OdbcColumn>& columns)
{
  OdbcRows rows;
  for (const OdbcColumn& column : columns)
    rows.push_back(column.Row(table, static_cast<int>(rows.size()) + 1));
  return ColumnRows(table, rows);
}

OdbcDatabase& OdbcDatabase::ColumnRows(const std::string& table, const OdbcRows& rows)
{
  std::erase_if(columnRows, [&table](const auto& entry) { return SameName(entry.first, table); });
  columnRows.emplace_back(table, rows);
  return *this;
}

OdbcDatabase& OdbcDatabase::ColumnsGive(int code)
{
  columnsCode = code;
  return *this;
}

OdbcDatabase& OdbcDatabase::Tables(const std::vector<std::string>& names, int code)
{
  OdbcRows rows;
  for (const std::string& name : names)
    rows.push_back({nullptr, nullptr, name, "TABLE", nullptr});
  return TableRows(rows, code);
}

OdbcDatabase& OdbcDatabase::TableRows(const OdbcRows& rows, int code)
{
  tables = {code, true, rows};
  return *this;
}

OdbcResult OdbcDatabase::Execute(const std::string& statement) const
{
  const auto found = statements.find(statement);
  return found == statements.end() ? OdbcResult{otherCode, false, {}} : found->second;
}

OdbcResult OdbcDatabase::ColumnsMatching(const std::string& pattern) const
{
  OdbcResult result{columnsCode, true, {}};
  for (const auto& [table, rows] : columnRows) {
    if (Matches(pattern, table))
      result.rows.insert(result.rows.end(), rows.begin(), rows.end());
  }
  return result;
}
