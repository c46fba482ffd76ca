// The answers of the catalogue calls, in the order that ODBC lays down.

#ifndef DRIVER_CATALOGUE_H
#define DRIVER_CATALOGUE_H

#include <sqlite3.h>

#include <memory>
#include <optional>
#include <string>

#include "driver/Rows.h"

// A name that a catalogue call was given; without text it stands for all names.
class CatalogueName
{
public:
  enum class Meaning
  {
    Pattern,
    Identifier
  };

  CatalogueName(std::optional<std::string> name, Meaning meaning);

  bool Matches(std::string_view name) const;
  // Tables here are in no catalogue and of no schema: only what asks for all or for none finds
  // them.
  bool MatchesNothingness() const;
  bool Is(std::string_view wanted) const { return text && *text == wanted; }

private:
  std::optional<std::string> text;
  bool isPattern;
};

// Each makes its answer from the database. If that fails the result is null and the code in code.
class Catalogue
{
public:
  explicit Catalogue(sqlite3* handle) : database(handle) {}

  // types is a list such as TABLE,VIEW or 'TABLE','VIEW'; empty for all.
  std::unique_ptr<StoredRows> Tables(const CatalogueName& catalogue, const CatalogueName& schema,
                                     const CatalogueName& table, const std::string& types);
  std::unique_ptr<StoredRows> Columns(const CatalogueName& table, const CatalogueName& column);
  std::unique_ptr<StoredRows> PrimaryKeys(const CatalogueName& table);
  std::unique_ptr<StoredRows> Statistics(const CatalogueName& table, bool uniqueOnly);
  // The columns that tell one row from all others; nothing for the columns that change by
  // themselves.
  std::unique_ptr<StoredRows> SpecialColumns(const CatalogueName& table, bool bestRowId);

  // The same columns without a row, for names that nothing can match.
  static std::unique_ptr<StoredRows> NoTables();
  static std::unique_ptr<StoredRows> NoColumns();
  static std::unique_ptr<StoredRows> NoPrimaryKeys();
  static std::unique_ptr<StoredRows> NoStatistics();
  static std::unique_ptr<StoredRows> NoSpecialColumns();

  // sqlType may be SQL_ALL_TYPES.
  static std::unique_ptr<StoredRows> TypeInfo(SQLSMALLINT sqlType);

  int code = SQLITE_OK;

private:
  struct Table
  {
    std::string name;
    std::string kind;  // TABLE or VIEW
  };
  struct Column
  {
    std::string name;
    ColumnType type;
    bool notNull;
    int keyPlace;  // from 1; 0 outside the key
    bool countsByItself;
    std::optional<std::string> defaultText;
  };

  // SQLite's own tables are not among them.
  std::vector<Table> ReadTables(const CatalogueName& name);
  std::vector<Column> ReadColumns(const std::string& table);
  std::vector<Column> ReadKey(const std::string& table);
  void AddIndexRows(StoredRows& rows, const std::string& table, bool uniqueOnly);
  // Calls take(statement) for each row of a query with up to one parameter.
  template <typename Take>
  void ForEachRow(const char* sql, const std::string* parameter, const Take& take);

  sqlite3* database;
};

#endif
