#include "driver/Catalogue.h"

#include <algorithm>

#include "driver/SqlTokens.h"
#include "driver/Text.h"

namespace {

constexpr SQLULEN NameLength = 128;
constexpr SQLULEN RemarkLength = 254;

std::string ColumnText(sqlite3_stmt* statement, int column)
{
  const unsigned char* const text = sqlite3_column_text(statement, column);
  return text == nullptr ? std::string() : reinterpret_cast<const char*>(text);
}

void AddTableColumns(StoredRows& rows)
{
  rows.AddColumn("TABLE_CAT", SQL_WVARCHAR, NameLength, true);
  rows.AddColumn("TABLE_SCHEM", SQL_WVARCHAR, NameLength, true);
  rows.AddColumn("TABLE_NAME", SQL_WVARCHAR, NameLength, true);
}

bool ListsType(const std::string& types, const std::string& type)
{
  if (types.empty() || types == SQL_ALL_TABLE_TYPES)
    return true;
  size_t begin = 0;
  while (begin <= types.size()) {
    const size_t end = std::min(types.find(',', begin), types.size());
    std::string_view entry(types.data() + begin, end - begin);
    while (!entry.empty() && (entry.front() == ' ' || entry.front() == '\''))
      entry.remove_prefix(1);
    while (!entry.empty() && (entry.back() == ' ' || entry.back() == '\''))
      entry.remove_suffix(1);
    if (EqualsNoCase(entry, type))
      return true;
    begin = end + 1;
  }
  return false;
}

// What an identifier in quotes names.
std::string Unquote(const std::string& text)
{
  const bool quoted =
      text.size() >= 2 && (text.front() == '"' || text.front() == '`' || text.front() == '[');
  return quoted ? text.substr(1, text.size() - 2) : text;
}

StoredValue DigitsOf(const ColumnType& type)
{
  return type.digits == NoDigits ? StoredValue() : StoredValue(type.digits);
}

StoredValue DatetimeCodeOf(SQLSMALLINT sqlType)
{
  const SQLSMALLINT code = DatetimeCode(sqlType);
  return code == 0 ? StoredValue() : StoredValue(code);
}

}  // namespace

CatalogueName::CatalogueName(std::optional<std::string> name, Meaning meaning)
    : text(std::move(name)), isPattern(meaning == Meaning::Pattern)
{
  if (text && !isPattern)
    text = Unquote(*text);
}

bool CatalogueName::Matches(std::string_view name) const
{
  if (!text)
    return true;
  return isPattern ? MatchesPattern(name, *text, '\\') : EqualsNoCase(name, *text);
}

bool CatalogueName::MatchesNothingness() const
{
  return !text || text->empty() || *text == "%";
}

template <typename Take>
void Catalogue::ForEachRow(const char* sql, const std::string* parameter, const Take& take)
{
  sqlite3_stmt* statement = nullptr;
  code = sqlite3_prepare_v2(database, sql, -1, &statement, nullptr);
  if (code == SQLITE_OK && parameter != nullptr) {
    code = sqlite3_bind_text64(statement, 1, parameter->data(), parameter->size(), SQLITE_STATIC,
                               SQLITE_UTF8);
  }
  if (code == SQLITE_OK) {
    while ((code = sqlite3_step(statement)) == SQLITE_ROW)
      take(statement);
  }
  const int failure = code;
  (void)sqlite3_finalize(statement);
  code = failure == SQLITE_DONE ? SQLITE_OK : failure;
}

std::vector<Catalogue::Table> Catalogue::ReadTables(const CatalogueName& name)
{
  std::vector<Table> tables;
  ForEachRow(
      "SELECT name, type FROM sqlite_schema WHERE type IN ('table', 'view') "
      "AND name NOT LIKE 'sqlite\\_%' ESCAPE '\\'",
      nullptr, [&](sqlite3_stmt* row) {
        Table table = {ColumnText(row, 0), ColumnText(row, 1) == "view" ? "VIEW" : "TABLE"};
        if (name.Matches(table.name))
          tables.push_back(std::move(table));
      });
  std::sort(tables.begin(), tables.end(), [](const Table& left, const Table& right) {
    if (left.kind != right.kind)
      return left.kind < right.kind;
    return CompareNoCase(left.name, right.name) < 0;
  });
  return tables;
}

std::vector<Catalogue::Column> Catalogue::ReadColumns(const std::string& table)
{
  std::vector<Column> columns;
  // The last test leaves out what is computed or hidden in a virtual table.
  ForEachRow(
      "SELECT name, type, \"notnull\", dflt_value, pk FROM pragma_table_xinfo(?1) WHERE hidden <> "
      "1",
      &table, [&](sqlite3_stmt* row) {
        const std::string declared = ColumnText(row, 1);
        Column column = {};
        column.name = ColumnText(row, 0);
        column.type = ReadDeclaredType(declared.c_str());
        if (column.type.type == nullptr)
          column.type = PlainType(SQL_WVARCHAR);
        column.keyPlace = sqlite3_column_int(row, 4);
        column.notNull = sqlite3_column_int(row, 2) != 0 || column.keyPlace != 0;
        column.countsByItself = column.keyPlace != 0 && EqualsNoCase(declared, "INTEGER");
        if (sqlite3_column_type(row, 3) != SQLITE_NULL)
          column.defaultText = ColumnText(row, 3);
        columns.push_back(std::move(column));
      });
  return columns;
}

std::vector<Catalogue::Column> Catalogue::ReadKey(const std::string& table)
{
  std::vector<Column> key = ReadColumns(table);
  key.erase(std::remove_if(key.begin(), key.end(),
                           [](const Column& column) { return column.keyPlace == 0; }),
            key.end());
  return key;
}

std::unique_ptr<StoredRows> Catalogue::NoTables()
{
  auto rows = std::make_unique<StoredRows>();
  AddTableColumns(*rows);
  rows->AddColumn("TABLE_TYPE", SQL_WVARCHAR, NameLength, true);
  rows->AddColumn("REMARKS", SQL_WVARCHAR, RemarkLength, true);
  return rows;
}

std::unique_ptr<StoredRows> Catalogue::Tables(const CatalogueName& catalogue,
                                              const CatalogueName& schema,
                                              const CatalogueName& table, const std::string& types)
{
  auto rows = NoTables();
  const bool noTable = table.Is("");
  if (noTable && catalogue.Is("") && schema.Is("") && types == SQL_ALL_TABLE_TYPES) {
    for (const char* type : {"TABLE", "VIEW"})
      rows->AddRow({{}, {}, {}, type, {}});
    return rows;
  }
  // There are no catalogues and no schemas to list.
  if (noTable || !catalogue.MatchesNothingness() || !schema.MatchesNothingness())
    return rows;
  for (const Table& found : ReadTables(table)) {
    if (ListsType(types, found.kind))
      rows->AddRow({{}, {}, found.name, found.kind, {}});
  }
  return code == SQLITE_OK ? std::move(rows) : nullptr;
}

std::unique_ptr<StoredRows> Catalogue::NoColumns()
{
  auto rows = std::make_unique<StoredRows>();
  AddTableColumns(*rows);
  rows->AddColumn("COLUMN_NAME", SQL_WVARCHAR, NameLength, false);
  rows->AddColumn("DATA_TYPE", SQL_SMALLINT, 0, false);
  rows->AddColumn("TYPE_NAME", SQL_WVARCHAR, NameLength, false);
  rows->AddColumn("COLUMN_SIZE", SQL_INTEGER, 0, true);
  rows->AddColumn("BUFFER_LENGTH", SQL_INTEGER, 0, true);
  rows->AddColumn("DECIMAL_DIGITS", SQL_SMALLINT, 0, true);
  rows->AddColumn("NUM_PREC_RADIX", SQL_SMALLINT, 0, true);
  rows->AddColumn("NULLABLE", SQL_SMALLINT, 0, false);
  rows->AddColumn("REMARKS", SQL_WVARCHAR, RemarkLength, true);
  rows->AddColumn("COLUMN_DEF", SQL_WVARCHAR, RemarkLength, true);
  rows->AddColumn("SQL_DATA_TYPE", SQL_SMALLINT, 0, false);
  rows->AddColumn("SQL_DATETIME_SUB", SQL_SMALLINT, 0, true);
  rows->AddColumn("CHAR_OCTET_LENGTH", SQL_INTEGER, 0, true);
  rows->AddColumn("ORDINAL_POSITION", SQL_INTEGER, 0, false);
  rows->AddColumn("IS_NULLABLE", SQL_WVARCHAR, 3, true);
  return rows;
}

std::unique_ptr<StoredRows> Catalogue::Columns(const CatalogueName& tableName,
                                               const CatalogueName& columnName)
{
  auto rows = NoColumns();
  std::vector<Table> tables = ReadTables(tableName);
  std::sort(tables.begin(), tables.end(), [](const Table& left, const Table& right) {
    return CompareNoCase(left.name, right.name) < 0;
  });
  for (const Table& table : tables) {
    if (code != SQLITE_OK)
      break;
    int position = 0;
    for (const Column& column : ReadColumns(table.name)) {
      ++position;
      if (!columnName.Matches(column.name))
        continue;
      const SQLSMALLINT sqlType = column.type.type->sqlType;
      const bool hasOctets = IsTextType(sqlType) || IsBinaryType(sqlType);
      const SQLLEN octets = TransferOctets(column.type);
      rows->AddRow({{},
                    {},
                    table.name,
                    column.name,
                    sqlType,
                    column.countsByItself ? "COUNTER" : column.type.type->name,
                    static_cast<int64_t>(column.type.size),
                    octets,
                    DigitsOf(column.type),
                    IsNumberType(sqlType) ? StoredValue(10) : StoredValue(),
                    column.notNull ? SQL_NO_NULLS : SQL_NULLABLE,
                    {},
                    column.defaultText ? StoredValue(*column.defaultText) : StoredValue(),
                    VerboseType(sqlType),
                    DatetimeCodeOf(sqlType),
                    hasOctets ? StoredValue(octets) : StoredValue(),
                    position,
                    column.notNull ? "NO" : "YES"});
    }
  }
  return code == SQLITE_OK ? std::move(rows) : nullptr;
}

std::unique_ptr<StoredRows> Catalogue::NoPrimaryKeys()
{
  auto rows = std::make_unique<StoredRows>();
  AddTableColumns(*rows);
  rows->AddColumn("COLUMN_NAME", SQL_WVARCHAR, NameLength, false);
  rows->AddColumn("KEY_SEQ", SQL_SMALLINT, 0, false);
  rows->AddColumn("PK_NAME", SQL_WVARCHAR, NameLength, true);
  return rows;
}

std::unique_ptr<StoredRows> Catalogue::PrimaryKeys(const CatalogueName& tableName)
{
  auto rows = NoPrimaryKeys();
  for (const Table& table : ReadTables(tableName)) {
    std::vector<Column> key = ReadKey(table.name);
    std::sort(key.begin(), key.end(), [](const Column& left, const Column& right) {
      return left.keyPlace < right.keyPlace;
    });
    for (const Column& column : key)
      rows->AddRow({{}, {}, table.name, column.name, column.keyPlace, {}});
    if (code != SQLITE_OK)
      break;
  }
  return code == SQLITE_OK ? std::move(rows) : nullptr;
}

std::unique_ptr<StoredRows> Catalogue::NoStatistics()
{
  auto rows = std::make_unique<StoredRows>();
  AddTableColumns(*rows);
  rows->AddColumn("NON_UNIQUE", SQL_SMALLINT, 0, true);
  rows->AddColumn("INDEX_QUALIFIER", SQL_WVARCHAR, NameLength, true);
  rows->AddColumn("INDEX_NAME", SQL_WVARCHAR, NameLength, true);
  rows->AddColumn("TYPE", SQL_SMALLINT, 0, false);
  rows->AddColumn("ORDINAL_POSITION", SQL_SMALLINT, 0, true);
  rows->AddColumn("COLUMN_NAME", SQL_WVARCHAR, NameLength, true);
  rows->AddColumn("ASC_OR_DESC", SQL_WCHAR, 1, true);
  rows->AddColumn("CARDINALITY", SQL_INTEGER, 0, true);
  rows->AddColumn("PAGES", SQL_INTEGER, 0, true);
  rows->AddColumn("FILTER_CONDITION", SQL_WVARCHAR, RemarkLength, true);
  return rows;
}

void Catalogue::AddIndexRows(StoredRows& rows, const std::string& table, bool uniqueOnly)
{
  ForEachRow(
      "SELECT list.\"unique\", list.name, info.seqno, info.name, info.desc "
      "FROM pragma_index_list(?1) AS list, pragma_index_xinfo(list.name) AS info "
      "WHERE info.key ORDER BY list.\"unique\" DESC, list.name, info.seqno",
      &table, [&](sqlite3_stmt* row) {
        const bool unique = sqlite3_column_int(row, 0) != 0;
        if (unique || !uniqueOnly) {
          rows.AddRow({{},
                       {},
                       table,
                       unique ? SQL_FALSE : SQL_TRUE,
                       {},
                       ColumnText(row, 1),
                       SQL_INDEX_OTHER,
                       sqlite3_column_int(row, 2) + 1,
                       ColumnText(row, 3),
                       sqlite3_column_int(row, 4) != 0 ? "D" : "A",
                       {},
                       {},
                       {}});
        }
      });
}

std::unique_ptr<StoredRows> Catalogue::Statistics(const CatalogueName& tableName, bool uniqueOnly)
{
  auto rows = NoStatistics();
  for (const Table& table : ReadTables(tableName)) {
    rows->AddRow({{}, {}, table.name, {}, {}, {}, SQL_TABLE_STAT, {}, {}, {}, {}, {}, {}});
    // A key that SQLite counts has no index of its own.
    for (const Column& column : ReadKey(table.name)) {
      if (column.countsByItself) {
        rows->AddRow({{},
                      {},
                      table.name,
                      SQL_FALSE,
                      {},
                      "PrimaryKey",
                      SQL_INDEX_CLUSTERED,
                      1,
                      column.name,
                      "A",
                      {},
                      {},
                      {}});
      }
    }
    if (code == SQLITE_OK)
      AddIndexRows(*rows, table.name, uniqueOnly);
    if (code != SQLITE_OK)
      break;
  }
  return code == SQLITE_OK ? std::move(rows) : nullptr;
}

std::unique_ptr<StoredRows> Catalogue::NoSpecialColumns()
{
  auto rows = std::make_unique<StoredRows>();
  rows->AddColumn("SCOPE", SQL_SMALLINT, 0, true);
  rows->AddColumn("COLUMN_NAME", SQL_WVARCHAR, NameLength, false);
  rows->AddColumn("DATA_TYPE", SQL_SMALLINT, 0, false);
  rows->AddColumn("TYPE_NAME", SQL_WVARCHAR, NameLength, false);
  rows->AddColumn("COLUMN_SIZE", SQL_INTEGER, 0, true);
  rows->AddColumn("BUFFER_LENGTH", SQL_INTEGER, 0, true);
  rows->AddColumn("DECIMAL_DIGITS", SQL_SMALLINT, 0, true);
  rows->AddColumn("PSEUDO_COLUMN", SQL_SMALLINT, 0, true);
  return rows;
}

std::unique_ptr<StoredRows> Catalogue::SpecialColumns(const CatalogueName& tableName,
                                                      bool bestRowId)
{
  auto rows = NoSpecialColumns();
  if (!bestRowId)
    return rows;
  for (const Table& table : ReadTables(tableName)) {
    for (const Column& column : ReadKey(table.name)) {
      rows->AddRow({SQL_SCOPE_SESSION, column.name, column.type.type->sqlType,
                    column.countsByItself ? "COUNTER" : column.type.type->name,
                    static_cast<int64_t>(column.type.size), TransferOctets(column.type),
                    DigitsOf(column.type), SQL_PC_NOT_PSEUDO});
    }
    if (code != SQLITE_OK)
      break;
  }
  return code == SQLITE_OK ? std::move(rows) : nullptr;
}
