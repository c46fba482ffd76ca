#include "driver/Types.h"

#include <cstdlib>
#include <string>

#include "driver/Text.h"

namespace {

constexpr SQLULEN LongText = 1073741823;
constexpr SQLULEN LongBinary = 1073741823;

// Other words for the types of the table.
struct TypeAlias
{
  const char* word;
  const char* name;
};

const TypeAlias TypeAliases[] = {
    {"LONGTEXT", "MEMO"},
    {"LONGCHAR", "MEMO"},
    {"NOTE", "MEMO"},
    {"NTEXT", "MEMO"},
    {"CLOB", "MEMO"},
    {"STRING", "VARCHAR"},
    {"NVARCHAR", "VARCHAR"},
    {"CHARACTER", "CHAR"},
    {"NCHAR", "CHAR"},
    {"YESNO", "BIT"},
    {"LOGICAL", "BIT"},
    {"BOOLEAN", "BIT"},
    {"BOOL", "BIT"},
    {"TINYINT", "BYTE"},
    {"SHORT", "SMALLINT"},
    {"INT", "INTEGER"},
    {"AUTOINCREMENT", "COUNTER"},
    {"IDENTITY", "COUNTER"},
    {"AUTONUMBER", "COUNTER"},
    {"SINGLE", "REAL"},
    {"FLOAT", "DOUBLE"},
    {"NUMBER", "DOUBLE"},
    {"MONEY", "CURRENCY"},
    {"DEC", "DECIMAL"},
    {"TIMESTAMP", "DATETIME"},
    {"TIME", "DATETIME"},
    {"BLOB", "LONGBINARY"},
    {"OLEOBJECT", "LONGBINARY"},
    {"IMAGE", "LONGBINARY"},
};

const TypeDescription* FindName(std::string_view name)
{
  for (size_t i = 0; i < TypeTableSize; ++i) {
    if (EqualsNoCase(name, TypeTable[i].name))
      return &TypeTable[i];
  }
  return nullptr;
}

const TypeDescription* FindWord(std::string_view word)
{
  for (const TypeAlias& alias : TypeAliases) {
    if (EqualsNoCase(word, alias.word))
      return FindName(alias.name);
  }
  return FindName(word);
}

// The rules by which SQLite gives a declaration its affinity.
const TypeDescription* JudgeByAffinity(std::string_view declaration)
{
  if (ContainsNoCase(declaration, "INT"))
    return FindName("BIGINT");
  if (ContainsNoCase(declaration, "CHAR"))
    return FindName("VARCHAR");
  if (ContainsNoCase(declaration, "TEXT") || ContainsNoCase(declaration, "CLOB"))
    return FindName("MEMO");
  if (ContainsNoCase(declaration, "BLOB"))
    return FindName("LONGBINARY");
  return FindName("DOUBLE");
}

}  // namespace

const TypeDescription TypeTable[] = {
    {"MEMO", SQL_WLONGVARCHAR, LongText, 2, NoDigits, nullptr},
    {"TEXT", SQL_WVARCHAR, 255, 2, NoDigits, "max length"},
    {"VARCHAR", SQL_WVARCHAR, 255, 2, NoDigits, "max length"},
    {"CHAR", SQL_WCHAR, 255, 2, NoDigits, "length"},
    {"BIT", SQL_BIT, 1, 1, 0, nullptr},
    {"BYTE", SQL_TINYINT, 3, 1, 0, nullptr},
    {"BIGINT", SQL_BIGINT, 19, 8, 0, nullptr},
    {"LONGBINARY", SQL_LONGVARBINARY, LongBinary, 1, NoDigits, nullptr},
    {"VARBINARY", SQL_VARBINARY, 510, 1, NoDigits, "max length"},
    {"BINARY", SQL_BINARY, 510, 1, NoDigits, "length"},
    {"CURRENCY", SQL_NUMERIC, 19, 21, 4, nullptr},
    {"NUMERIC", SQL_NUMERIC, 18, 20, 0, "precision,scale"},
    {"DECIMAL", SQL_DECIMAL, 18, 20, 0, "precision,scale"},
    {"LONG", SQL_INTEGER, 10, 4, 0, nullptr},
    {"INTEGER", SQL_INTEGER, 10, 4, 0, nullptr},
    {"COUNTER", SQL_INTEGER, 10, 4, 0, nullptr},
    {"SMALLINT", SQL_SMALLINT, 5, 2, 0, nullptr},
    {"REAL", SQL_REAL, 7, 4, NoDigits, nullptr},
    {"DOUBLE", SQL_DOUBLE, 15, 8, NoDigits, nullptr},
    {"DATETIME", SQL_TYPE_TIMESTAMP, 19, 16, 0, nullptr},
    {"DATE", SQL_TYPE_TIMESTAMP, 19, 16, 0, nullptr},
};
const size_t TypeTableSize = sizeof(TypeTable) / sizeof(TypeTable[0]);

ColumnType ReadDeclaredType(const char* declaration)
{
  if (declaration == nullptr || *declaration == '\0')
    return {nullptr, 0, NoDigits};
  const std::string_view text(declaration);
  const TypeDescription* type = FindWord(text.substr(0, text.find_first_of(" (")));
  if (type == nullptr)
    type = JudgeByAffinity(text);
  ColumnType column = {type, type->size, type->digits};
  const size_t open = text.find('(');
  if (type->createParameters != nullptr && open != std::string_view::npos) {
    const unsigned long size = strtoul(declaration + open + 1, nullptr, 10);
    if (size > 0)
      column.size = size;
    const size_t comma = text.find(',', open);
    if (comma != std::string_view::npos && column.digits != NoDigits)
      column.digits = static_cast<SQLSMALLINT>(strtol(declaration + comma + 1, nullptr, 10));
  }
  return column;
}

ColumnType PlainType(SQLSMALLINT sqlType)
{
  for (size_t i = 0; i < TypeTableSize; ++i) {
    if (TypeTable[i].sqlType == sqlType)
      return {&TypeTable[i], TypeTable[i].size, TypeTable[i].digits};
  }
  return PlainType(SQL_WVARCHAR);
}

bool IsTextType(SQLSMALLINT sqlType)
{
  switch (sqlType) {
    case SQL_CHAR:
    case SQL_VARCHAR:
    case SQL_LONGVARCHAR:
    case SQL_WCHAR:
    case SQL_WVARCHAR:
    case SQL_WLONGVARCHAR: return true;
    default: return false;
  }
}

bool IsBinaryType(SQLSMALLINT sqlType)
{
  return sqlType == SQL_BINARY || sqlType == SQL_VARBINARY || sqlType == SQL_LONGVARBINARY;
}

bool IsNumberType(SQLSMALLINT sqlType)
{
  switch (sqlType) {
    case SQL_TINYINT:
    case SQL_SMALLINT:
    case SQL_INTEGER:
    case SQL_BIGINT:
    case SQL_NUMERIC:
    case SQL_DECIMAL:
    case SQL_FLOAT:
    case SQL_REAL:
    case SQL_DOUBLE: return true;
    default: return false;
  }
}

SQLSMALLINT VerboseType(SQLSMALLINT sqlType)
{
  return sqlType == SQL_TYPE_TIMESTAMP ? SQLSMALLINT{SQL_DATETIME} : sqlType;
}

SQLSMALLINT DatetimeCode(SQLSMALLINT sqlType)
{
  return sqlType == SQL_TYPE_TIMESTAMP ? SQLSMALLINT{SQL_CODE_TIMESTAMP} : SQLSMALLINT{0};
}

SQLLEN TransferOctets(const ColumnType& column)
{
  const SQLSMALLINT sqlType = column.type->sqlType;
  const SQLLEN size = static_cast<SQLLEN>(column.size);
  if (IsTextType(sqlType) || IsBinaryType(sqlType))
    return size * column.type->octets;
  if (sqlType == SQL_NUMERIC || sqlType == SQL_DECIMAL)
    return size + 2;  // the digits, a sign and a point
  return column.type->octets;
}

SQLLEN DisplaySize(const ColumnType& column)
{
  const SQLLEN size = static_cast<SQLLEN>(column.size);
  switch (column.type->sqlType) {
    case SQL_BINARY:
    case SQL_VARBINARY:
    case SQL_LONGVARBINARY: return size * 2;
    case SQL_NUMERIC:
    case SQL_DECIMAL: return size + 2;
    case SQL_SMALLINT:
    case SQL_INTEGER:
    case SQL_BIGINT: return size + 1;
    case SQL_REAL: return 14;
    case SQL_DOUBLE: return 24;
    default: return size;
  }
}

SQLSMALLINT DefaultCType(SQLSMALLINT sqlType)
{
  switch (sqlType) {
    case SQL_BIT: return SQL_C_BIT;
    case SQL_TINYINT: return SQL_C_UTINYINT;
    case SQL_SMALLINT: return SQL_C_SSHORT;
    case SQL_INTEGER: return SQL_C_SLONG;
    case SQL_BIGINT: return SQL_C_SBIGINT;
    case SQL_REAL: return SQL_C_FLOAT;
    case SQL_FLOAT:
    case SQL_DOUBLE: return SQL_C_DOUBLE;
    case SQL_BINARY:
    case SQL_VARBINARY:
    case SQL_LONGVARBINARY: return SQL_C_BINARY;
    case SQL_DATE:
    case SQL_TYPE_DATE: return SQL_C_TYPE_DATE;
    case SQL_TIME:
    case SQL_TYPE_TIME: return SQL_C_TYPE_TIME;
    case SQL_TIMESTAMP:
    case SQL_TYPE_TIMESTAMP: return SQL_C_TYPE_TIMESTAMP;
    case SQL_WCHAR:
    case SQL_WVARCHAR:
    case SQL_WLONGVARCHAR: return SQL_C_WCHAR;
    default: return SQL_C_CHAR;
  }
}
