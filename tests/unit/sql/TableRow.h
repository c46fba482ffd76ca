#ifndef UNIT_TABLEROW_H
#define UNIT_TABLEROW_H

// A table with the values of one row, as a fetch leaves them in the buffers of its columns.
//
//   TableRow source("T");
//   source.Text("K1", "O'Neil").Key().Integer("K2", 7).Key().Text("A", "x");

#include "database/TableSchema.h"
#include "tests/doubles/Text.h"

#include <stdint.h>
#include <string.h>

#include <string>

class TableRow
{
public:
  explicit TableRow(const std::string& table) : schema(WideText(table).c_str()) {}

  // A column whose buffer is as it was made.
  TableRow& Column(const std::string& name, int32_t type, int32_t size = 10)
  {
    schema.AddColumn(new TableColumn(WideText(name).c_str(), type, size));
    return *this;
  }

  // A column with just the room for its text.
  TableRow& Text(const std::string& name, const std::string& value, int32_t type = SQL_WVARCHAR)
  {
    const WideText text(value);
    Column(name, type, static_cast<int32_t>(text.Length()));
    memcpy(Last().valueBuffer, text.c_str(), (text.Length() + 1) * sizeof(wchar_t));
    return *this;
  }

  TableRow& Bit(const std::string& name, unsigned char value)
  {
    return Column(name, SQL_BIT, 1).Store(value);
  }
  TableRow& Integer(const std::string& name, int32_t value, int32_t type = SQL_INTEGER)
  {
    return Column(name, type).Store(value);
  }
  TableRow& Number(const std::string& name, double value, int32_t type = SQL_DOUBLE)
  {
    return Column(name, type).Store(value);
  }
  // A minute before midnight.
  TableRow& Date(const std::string& name, SQLUSMALLINT day, SQLUSMALLINT month, SQLSMALLINT year,
                 int32_t type = SQL_TYPE_TIMESTAMP)
  {
    return Column(name, type).Store(SQL_TIMESTAMP_STRUCT{year, month, day, 23, 59, 58, 999});
  }

  // What follows is about the column that was added last.
  TableRow& Key()
  {
    Last().isKey = true;
    return *this;
  }
  TableRow& Nullable()
  {
    Last().isNullable = true;
    return *this;
  }
  TableRow& Hidden()
  {
    Last().isHidden = true;
    return *this;
  }
  TableRow& Alternate(const std::string& column)
  {
    Last().hasAlternate = true;
    Last().alternateName.Assign(WideText(column).c_str());
    return *this;
  }
  template <typename Value>
  TableRow& Store(Value value)
  {
    memcpy(Last().valueBuffer, &value, sizeof(value));
    return *this;
  }
  // Bytes that make another value of each form: the text U+0141, the byte 65, the integer 321, the
  // number 1.5 and the day 0 of the month 0 of the year 321.
  TableRow& StoreManyForms()
  {
    constexpr unsigned char bytes[16] = {0x41, 0x01, 0, 0, 0, 0, 0xF8, 0x3F};
    memcpy(Last().valueBuffer, bytes, sizeof(bytes));
    return *this;
  }
  TableColumn& Last() const { return *schema.columns[schema.columnCount - 1]; }

  TableSchema schema;
};

#endif
