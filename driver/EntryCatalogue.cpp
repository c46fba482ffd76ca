// Entry points: what tables, columns, keys and types there are.

#include "driver/Catalogue.h"
#include "driver/EntryText.h"
#include "driver/Statement.h"

namespace {

using Meaning = CatalogueName::Meaning;

template <typename Character>
struct NameArgument
{
  const Character* text;
  SQLSMALLINT length;
};

// A name as the statement reads it: a pattern, unless the program has said that names are names.
template <typename Character>
CatalogueName ReadName(const Statement& statement, const NameArgument<Character>& name,
                       Meaning usual)
{
  const Meaning meaning = statement.attributes.metadataId == SQL_TRUE ? Meaning::Identifier : usual;
  return {OptionalText(name.text, name.length), meaning};
}

// Runs a catalogue call: makes sure that no cursor is open, and opens one on the answer.
template <typename Call>
SQLRETURN Ask(SQLHSTMT handle, const Call& call)
{
  return WithHandle<Statement>(handle, [&](Statement& statement) {
    if (statement.HasCursor())
      return statement.diagnostics.Fail("24000", "A cursor is open on the statement");
    statement.Close();
    statement.StartOperation();
    Catalogue catalogue(statement.connection->database->Handle());
    std::unique_ptr<StoredRows> answer = call(statement, catalogue);
    if (!answer)
      return statement.FailFromDatabase(catalogue.code);
    return statement.OpenStored(std::move(answer));
  });
}

template <typename Character>
bool FindsNothing(const Statement& statement, const NameArgument<Character>& catalogue,
                  const NameArgument<Character>& schema)
{
  return !ReadName(statement, catalogue, Meaning::Pattern).MatchesNothingness() ||
         !ReadName(statement, schema, Meaning::Pattern).MatchesNothingness();
}

template <typename Character>
SQLRETURN Tables(SQLHSTMT handle, NameArgument<Character> catalogueName,
                 NameArgument<Character> schema, NameArgument<Character> table,
                 NameArgument<Character> types)
{
  return Ask(handle, [&](Statement& statement, Catalogue& catalogue) {
    return catalogue.Tables(ReadName(statement, catalogueName, Meaning::Pattern),
                            ReadName(statement, schema, Meaning::Pattern),
                            ReadName(statement, table, Meaning::Pattern),
                            ToUtf8(types.text, types.length));
  });
}

template <typename Character>
SQLRETURN Columns(SQLHSTMT handle, NameArgument<Character> catalogueName,
                  NameArgument<Character> schema, NameArgument<Character> table,
                  NameArgument<Character> column)
{
  return Ask(handle, [&](Statement& statement, Catalogue& catalogue) {
    if (FindsNothing(statement, catalogueName, schema))
      return Catalogue::NoColumns();
    return catalogue.Columns(ReadName(statement, table, Meaning::Pattern),
                             ReadName(statement, column, Meaning::Pattern));
  });
}

template <typename Character>
SQLRETURN PrimaryKeys(SQLHSTMT handle, NameArgument<Character> catalogueName,
                      NameArgument<Character> schema, NameArgument<Character> table)
{
  return Ask(handle, [&](Statement& statement, Catalogue& catalogue) {
    if (table.text == nullptr || FindsNothing(statement, catalogueName, schema))
      return Catalogue::NoPrimaryKeys();
    return catalogue.PrimaryKeys(ReadName(statement, table, Meaning::Identifier));
  });
}

template <typename Character>
SQLRETURN Statistics(SQLHSTMT handle, NameArgument<Character> catalogueName,
                     NameArgument<Character> schema, NameArgument<Character> table,
                     SQLUSMALLINT unique)
{
  return Ask(handle, [&](Statement& statement, Catalogue& catalogue) {
    if (table.text == nullptr || FindsNothing(statement, catalogueName, schema))
      return Catalogue::NoStatistics();
    return catalogue.Statistics(ReadName(statement, table, Meaning::Identifier),
                                unique == SQL_INDEX_UNIQUE);
  });
}

template <typename Character>
SQLRETURN SpecialColumns(SQLHSTMT handle, SQLUSMALLINT kind, NameArgument<Character> catalogueName,
                         NameArgument<Character> schema, NameArgument<Character> table)
{
  return Ask(handle, [&](Statement& statement, Catalogue& catalogue) {
    if (table.text == nullptr || FindsNothing(statement, catalogueName, schema))
      return Catalogue::NoSpecialColumns();
    return catalogue.SpecialColumns(ReadName(statement, table, Meaning::Identifier),
                                    kind == SQL_BEST_ROWID);
  });
}

}  // namespace

SQLRETURN SQL_API SQLTables(SQLHSTMT handle, SQLCHAR* catalogue, SQLSMALLINT catalogueLength,
                            SQLCHAR* schema, SQLSMALLINT schemaLength, SQLCHAR* table,
                            SQLSMALLINT tableLength, SQLCHAR* types, SQLSMALLINT typesLength)
{
  return Tables<SQLCHAR>(handle, {catalogue, catalogueLength}, {schema, schemaLength},
                         {table, tableLength}, {types, typesLength});
}

SQLRETURN SQL_API SQLTablesW(SQLHSTMT handle, SQLWCHAR* catalogue, SQLSMALLINT catalogueLength,
                             SQLWCHAR* schema, SQLSMALLINT schemaLength, SQLWCHAR* table,
                             SQLSMALLINT tableLength, SQLWCHAR* types, SQLSMALLINT typesLength)
{
  return Tables<SQLWCHAR>(handle, {catalogue, catalogueLength}, {schema, schemaLength},
                          {table, tableLength}, {types, typesLength});
}

SQLRETURN SQL_API SQLColumns(SQLHSTMT handle, SQLCHAR* catalogue, SQLSMALLINT catalogueLength,
                             SQLCHAR* schema, SQLSMALLINT schemaLength, SQLCHAR* table,
                             SQLSMALLINT tableLength, SQLCHAR* column, SQLSMALLINT columnLength)
{
  return Columns<SQLCHAR>(handle, {catalogue, catalogueLength}, {schema, schemaLength},
                          {table, tableLength}, {column, columnLength});
}

SQLRETURN SQL_API SQLColumnsW(SQLHSTMT handle, SQLWCHAR* catalogue, SQLSMALLINT catalogueLength,
                              SQLWCHAR* schema, SQLSMALLINT schemaLength, SQLWCHAR* table,
                              SQLSMALLINT tableLength, SQLWCHAR* column, SQLSMALLINT columnLength)
{
  return Columns<SQLWCHAR>(handle, {catalogue, catalogueLength}, {schema, schemaLength},
                           {table, tableLength}, {column, columnLength});
}

SQLRETURN SQL_API SQLPrimaryKeys(SQLHSTMT handle, SQLCHAR* catalogue, SQLSMALLINT catalogueLength,
                                 SQLCHAR* schema, SQLSMALLINT schemaLength, SQLCHAR* table,
                                 SQLSMALLINT tableLength)
{
  return PrimaryKeys<SQLCHAR>(handle, {catalogue, catalogueLength}, {schema, schemaLength},
                              {table, tableLength});
}

SQLRETURN SQL_API SQLPrimaryKeysW(SQLHSTMT handle, SQLWCHAR* catalogue, SQLSMALLINT catalogueLength,
                                  SQLWCHAR* schema, SQLSMALLINT schemaLength, SQLWCHAR* table,
                                  SQLSMALLINT tableLength)
{
  return PrimaryKeys<SQLWCHAR>(handle, {catalogue, catalogueLength}, {schema, schemaLength},
                               {table, tableLength});
}

SQLRETURN SQL_API SQLStatistics(SQLHSTMT handle, SQLCHAR* catalogue, SQLSMALLINT catalogueLength,
                                SQLCHAR* schema, SQLSMALLINT schemaLength, SQLCHAR* table,
                                SQLSMALLINT tableLength, SQLUSMALLINT unique,
                                SQLUSMALLINT /*accuracy*/)
{
  return Statistics<SQLCHAR>(handle, {catalogue, catalogueLength}, {schema, schemaLength},
                             {table, tableLength}, unique);
}

SQLRETURN SQL_API SQLStatisticsW(SQLHSTMT handle, SQLWCHAR* catalogue, SQLSMALLINT catalogueLength,
                                 SQLWCHAR* schema, SQLSMALLINT schemaLength, SQLWCHAR* table,
                                 SQLSMALLINT tableLength, SQLUSMALLINT unique,
                                 SQLUSMALLINT /*accuracy*/)
{
  return Statistics<SQLWCHAR>(handle, {catalogue, catalogueLength}, {schema, schemaLength},
                              {table, tableLength}, unique);
}

SQLRETURN SQL_API SQLSpecialColumns(SQLHSTMT handle, SQLUSMALLINT kind, SQLCHAR* catalogue,
                                    SQLSMALLINT catalogueLength, SQLCHAR* schema,
                                    SQLSMALLINT schemaLength, SQLCHAR* table,
                                    SQLSMALLINT tableLength, SQLUSMALLINT /*scope*/,
                                    SQLUSMALLINT /*nullable*/)
{
  return SpecialColumns<SQLCHAR>(handle, kind, {catalogue, catalogueLength}, {schema, schemaLength},
                                 {table, tableLength});
}

SQLRETURN SQL_API SQLSpecialColumnsW(SQLHSTMT handle, SQLUSMALLINT kind, SQLWCHAR* catalogue,
                                     SQLSMALLINT catalogueLength, SQLWCHAR* schema,
                                     SQLSMALLINT schemaLength, SQLWCHAR* table,
                                     SQLSMALLINT tableLength, SQLUSMALLINT /*scope*/,
                                     SQLUSMALLINT /*nullable*/)
{
  return SpecialColumns<SQLWCHAR>(handle, kind, {catalogue, catalogueLength},
                                  {schema, schemaLength}, {table, tableLength});
}

SQLRETURN SQL_API SQLGetTypeInfo(SQLHSTMT handle, SQLSMALLINT sqlType)
{
  return Ask(handle, [&](Statement&, Catalogue&) { return Catalogue::TypeInfo(sqlType); });
}

SQLRETURN SQL_API SQLGetTypeInfoW(SQLHSTMT handle, SQLSMALLINT sqlType)
{
  return SQLGetTypeInfo(handle, sqlType);
}
