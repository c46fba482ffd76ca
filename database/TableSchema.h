#ifndef DATABASE_TABLESCHEMA_H
#define DATABASE_TABLESCHEMA_H

#include "foundation/QulArray.h"
#include "foundation/QulString.h"

#include <stdint.h>
#include <windows.h>
// The ODBC headers build on the one above.
#include <sql.h>
#include <sqlext.h>
#include <sqlucode.h>

// A column as the catalogue describes it, and the buffer that its values are fetched into.
class TableColumn
{
public:
  // sqlType is ODBC's number of the type, size that of the characters. Neither is checked: what
  // catalogues report for them is everything from 0 to the largest number.
  TableColumn(const wchar_t* name, int32_t sqlType, int32_t size);
  // Takes over the description with the key's flags. The copy has a buffer of its own, no alternate
  // and isn't hidden.
  TableColumn(const TableColumn& source);
  TableColumn& operator=(const TableColumn&) = delete;
  ~TableColumn();

  // What the driver may be told about valueBuffer, in bytes: room for size characters and a
  // terminator. A size that no statement could carry counts as that of a memo.
  SQLLEN BufferBytes() const;

  // Has the statement's fetches leave the values of its column ordinal, counted from 1, in
  // valueBuffer, in the form of KindOfValue. A type of no form is bound as none; whether the driver
  // minds isn't asked.
  void BindToStatement(SQLHSTMT statement, SQLUSMALLINT ordinal);

  QulString GetName() const { return name; }
  QulString GetAlternateName() const { return alternateName; }

  QulString name;
  int32_t sqlType;
  int32_t size;  // in characters, as the catalogue reports it; a memo always has MemoSize
  bool isKey = false;
  bool isUnique = false;  // goes along with isKey; no statement depends on it
  bool isNullable = false;
  // Owned. At least BufferBytes() long, and long enough for any value of fixed size whatever size
  // says. Zeros stand in front only, in as many bytes as a text has characters with its terminator,
  // or a value of fixed size can have bytes.
  wchar_t* valueBuffer;
  SQLLEN indicator = 0;  // for the driver; a NULL leaves valueBuffer as it was, and nobody asks
  bool hasAlternate = false;
  QulString alternateName;  // column of the same table with this one's text in the current language
  bool isHidden = false;    // holds another language's text, and is left out of a new table

  static constexpr int32_t MemoSize = 65535;
};

// True if the names equal without regard to case and the types are the same: sizes and nullability
// don't count.
bool SameColumn(const TableColumn& left, const TableColumn& right);

// A table's columns in the order of the catalogue.
class TableSchema
{
public:
  static constexpr int Capacity = 255;

  explicit TableSchema(const wchar_t* name);
  TableSchema(const TableSchema&) = delete;
  TableSchema& operator=(const TableSchema&) = delete;
  ~TableSchema();

  // A new schema with the same name and copies of the columns that aren't hidden. The caller owns
  // it.
  TableSchema* CopyVisibleColumns() const;

  // Takes ownership of column. One column more than Capacity is deleted at once.
  void AddColumn(TableColumn* column);

  // Makes the first column of that name part of the key, and the schema one that has a key; false
  // if there is none. Names compare without regard to case.
  bool MarkKeyColumn(const wchar_t* columnName);

  // Makes the first column the key, if there is one. The schema doesn't count as one that has a
  // key.
  void MarkFirstColumn();

  // The first column of that name, without regard to case; null if there is none.
  TableColumn* FindColumn(const wchar_t* columnName) const;

  // Binds each column to the statement, the first one as 1.
  void BindAll(SQLHSTMT statement);

  QulString GetTableName() const { return tableName; }

  TableColumn* columns[Capacity] = {};  // owned
  int32_t columnCount = 0;
  QulString tableName;
  bool hasKey = false;
};

#endif
