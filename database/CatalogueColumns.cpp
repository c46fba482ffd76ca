// The part of QulDatabase that reads a table's columns from the catalogue.
#include "database/InfoTable.h"
#include "database/QulDatabase.h"
#include "database/TableSchema.h"

#include <memory>

namespace {

constexpr int CatalogueColumnCount = 18;

// A row that SQLColumnsW yields, with its columns in ODBC's order.
struct CatalogueRow
{
  wchar_t catalogue[255] = {};
  wchar_t schema[255] = {};
  wchar_t tableName[255] = {};
  wchar_t columnName[255] = {};
  SQLSMALLINT dataType = 0;
  wchar_t typeName[128] = {};
  SQLINTEGER columnSize = 0;
  SQLINTEGER bufferLength = 0;
  SQLSMALLINT decimalDigits = 0;
  SQLSMALLINT radix = 0;
  SQLSMALLINT nullable = 0;
  wchar_t remarks[255] = {};
  wchar_t columnDefault[255] = {};
  SQLSMALLINT sqlDataType = 0;
  SQLSMALLINT datetimeSubtype = 0;
  SQLINTEGER octetLength = 0;
  SQLINTEGER ordinalPosition = 0;
  wchar_t isNullable[255] = {};
  SQLLEN lengths[CatalogueColumnCount] = {};
};

// A NULL leaves in a field what the row before it brought.
void Bind(SQLHSTMT statement, CatalogueRow& row)
{
  SQLUSMALLINT column = 0;
  const auto bind = [&](SQLSMALLINT type, SQLPOINTER value, SQLLEN bytes) {
    ++column;
    (void)SQLBindCol(statement, column, type, value, bytes, &row.lengths[column - 1]);
  };
  const auto bindText = [&](wchar_t(&text)[255]) { bind(SQL_C_WCHAR, text, sizeof(text)); };
  const auto bindShort = [&](SQLSMALLINT& number) { bind(SQL_C_SSHORT, &number, sizeof(number)); };
  const auto bindLong = [&](SQLINTEGER& number) { bind(SQL_C_SLONG, &number, sizeof(number)); };
  // Told in bytes, and an odd number of them: a text fills an even part. The name isn't used.
  constexpr SQLLEN typeNameBytes = 255;

  bindText(row.catalogue);
  bindText(row.schema);
  bindText(row.tableName);
  bindText(row.columnName);
  bindShort(row.dataType);
  bind(SQL_C_WCHAR, row.typeName, typeNameBytes);
  bindLong(row.columnSize);
  bindLong(row.bufferLength);
  bindShort(row.decimalDigits);
  bindShort(row.radix);
  bindShort(row.nullable);
  bindText(row.remarks);
  bindText(row.columnDefault);
  bindShort(row.sqlDataType);
  bindShort(row.datetimeSubtype);
  bindLong(row.octetLength);
  bindLong(row.ordinalPosition);
  bindText(row.isNullable);
}

}  // namespace

TableSchema* QulDatabase::ReadTableSchema(const wchar_t* table, bool hideOtherLanguages)
{
  auto schema = std::make_unique<TableSchema>(table);
  const SQLHSTMT statement = AllocateStatement();
  if (SQL_SUCCEEDED(SQLColumnsW(statement, nullptr, 0, nullptr, 0, const_cast<SQLWCHAR*>(table),
                                SQL_NTS, nullptr, 0))) {
    CatalogueRow row;
    Bind(statement, row);
    while (SQL_SUCCEEDED(SQLFetch(statement))) {
      auto column = std::make_unique<TableColumn>(row.columnName, row.dataType, row.columnSize);
      column->isNullable = row.nullable == SQL_NULLABLE;
      column->hasAlternate =
          infoTable->FindAlternateColumn(table, row.columnName, column->alternateName);
      schema->AddColumn(column.release());
    }
    (void)SQLCloseCursor(statement);
  }
  (void)FreeStatement(statement);

  if (hideOtherLanguages) {
    QulArray<QulString> otherLanguages;
    infoTable->CollectAlternateColumns(table, otherLanguages);
    for (int i = 0; i < otherLanguages.count; ++i) {
      TableColumn* column = schema->FindColumn(otherLanguages.data[i].Text());
      if (column != nullptr)
        column->isHidden = true;
    }
  }
  return schema.release();
}
