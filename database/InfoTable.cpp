#include "database/InfoTable.h"

#include "database/QulDatabase.h"
#include "database/SplitTokens.h"
#include "settings/EnvironmentSettings.h"

#include <stddef.h>

namespace {

constexpr int32_t DefaultLanguage = 9;  // English of no region

struct LanguagePlace
{
  int32_t languageId;
  int32_t index;
};

// Places 12 and 15 to 18 are no language's; lists fill them all the same.
constexpr LanguagePlace LanguagePlaces[] = {
    {1036, 1},   // French
    {1043, 2},   // Dutch
    {1031, 3},   // German
    {2057, 4},   // English (United Kingdom)
    {1029, 5},   // Czech
    {1049, 6},   // Russian
    {1045, 7},   // Polish
    {3084, 8},   // French (Canada)
    {1033, 9},   // English (United States)
    {9, 10},     // English
    {1034, 11},  // Spanish (traditional sort)
    {2052, 13},  // Chinese (PRC)
    {1041, 14},  // Japanese
    {1048, 19},  // Romanian
    {3082, 20},  // Spanish (modern sort)
    {1038, 21},  // Hungarian
};
constexpr int32_t PlaceOfUnknownLanguage = 4;

// Reads the number as it is stored, of whatever type the value says it is.
int32_t ReadLanguage()
{
  HKEY key = nullptr;
  if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, GetEnvironmentKey().Text(), 0, KEY_READ, &key) !=
      ERROR_SUCCESS) {
    return DefaultLanguage;
  }
  int32_t language = 0;
  DWORD size = sizeof(language);
  const bool read = RegQueryValueExW(key, L"Language", nullptr, nullptr,
                                     reinterpret_cast<BYTE*>(&language), &size) == ERROR_SUCCESS;
  (void)RegCloseKey(key);
  return read ? language : DefaultLanguage;
}

bool EqualNames(const QulString& name, const wchar_t* other)
{
  return _wcsicmp(name.Text(), other == nullptr ? L"" : other) == 0;
}

// Index of the base column in the list, or -1. A marker behind its name says that its values are
// unique; it counts in this spelling alone.
int FindBaseColumn(const QulArray<QulString>& baseColumns, const wchar_t* column)
{
  for (int i = 0; i < baseColumns.count; ++i) {
    QulString name(baseColumns.data[i]);
    (void)name.Replace(L"/UNIQUE", L"");
    if (EqualNames(name, column))
      return i;
  }
  return -1;
}

}  // namespace

bool InfoRow::IsLanguageDependent(const wchar_t* table) const
{
  return EqualNames(type, L"LanguageDependent") && EqualNames(name, table);
}

bool InfoRow::IsLanguageDependentTable(const wchar_t* table) const
{
  return EqualNames(type, L"LanguageDependentTables") && EqualNames(name, table);
}

InfoTable::InfoTable(const QulDatabase& database) : languageId(ReadLanguage())
{
  ReadRows(database);
}

void InfoTable::ReadRows(const QulDatabase& database)
{
  SQLHSTMT statement = SQL_NULL_HSTMT;
  if (!database.connected ||
      !SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_STMT, database.connectionHandle, &statement))) {
    return;
  }
  QulString query;
  query.Format(L"SELECT * FROM %s", L"Info");
  if (SQL_SUCCEEDED(SQLExecDirectW(statement, const_cast<SQLWCHAR*>(query.Text()), SQL_NTS))) {
    // A NULL leaves here what the row before it brought.
    wchar_t name[50];
    wchar_t value[65535];
    wchar_t type[255];
    name[0] = value[0] = type[0] = L'\0';
    SQLLEN length = 0;  // of all three, and not looked at
    (void)SQLBindCol(statement, 1, SQL_C_WCHAR, name, sizeof(name), &length);
    (void)SQLBindCol(statement, 2, SQL_C_WCHAR, value, sizeof(value), &length);
    (void)SQLBindCol(statement, 3, SQL_C_WCHAR, type, sizeof(type), &length);
    while (SQL_SUCCEEDED(SQLFetch(statement)))
      rows.Append(InfoRow{name, value, type});
  }
  (void)database.FreeStatement(statement);
}

int32_t InfoTable::LanguageIndex() const
{
  for (const LanguagePlace& place : LanguagePlaces) {
    if (place.languageId == languageId)
      return place.index;
  }
  return PlaceOfUnknownLanguage;
}

bool InfoTable::ResolveTableName(const wchar_t* table, QulString& answer) const
{
  for (int i = 0; i < rows.count; ++i) {
    if (!rows.data[i].IsLanguageDependentTable(table))
      continue;
    QulArray<QulString> variants;
    SplitTokens(rows.data[i].value, variants, L";");
    const int32_t index = LanguageIndex();
    if (variants.count > index && variants.data[index].Length() > 0)
      answer.Assign(variants.data[index]);
    return true;
  }
  return false;
}

bool InfoTable::FindAlternateColumn(const wchar_t* table, const wchar_t* column,
                                    QulString& answer) const
{
  const int32_t index = LanguageIndex();
  QulArray<QulString> entries;
  QulArray<QulString> columns;
  for (int i = 0; i < rows.count; ++i) {
    if (!rows.data[i].IsLanguageDependent(table))
      continue;
    SplitTokens(rows.data[i].value, entries, L";");
    if (entries.count == 0)
      continue;
    SplitTokens(entries.data[0], columns, L",");
    const int position = FindBaseColumn(columns, column);
    if (position < 0 || entries.count <= index)
      continue;
    SplitTokens(entries.data[index], columns, L",");
    if (columns.count <= position)
      continue;
    answer.Assign(columns.data[position]);
    return answer.Length() > 0;
  }
  return false;
}

void InfoTable::CollectAlternateColumns(const wchar_t* table, QulArray<QulString>& columns) const
{
  QulArray<QulString> entries;
  QulArray<QulString> names;
  for (int i = 0; i < rows.count; ++i) {
    if (!rows.data[i].IsLanguageDependent(table))
      continue;
    SplitTokens(rows.data[i].value, entries, L";");
    for (int entry = 1; entry < entries.count; ++entry) {
      SplitTokens(entries.data[entry], names, L",");
      for (int k = 0; k < names.count; ++k) {
        if (names.data[k].Length() > 1)
          columns.Append(names.data[k]);
      }
    }
  }
}
