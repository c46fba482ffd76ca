// The types of columns, from the words of a declaration, with the figures that the catalogue and
// the descriptions of results give for them.

#ifndef DRIVER_TYPES_H
#define DRIVER_TYPES_H

#include <cstddef>

#include "driver/Odbc.h"

// A type as SQLGetTypeInfo lists it.
struct TypeDescription
{
  const char* name;
  SQLSMALLINT sqlType;
  SQLULEN size;                  // that of a declaration without one; the largest in SQLGetTypeInfo
  SQLLEN octets;                 // of one character for text and bytes, else of the whole value
  SQLSMALLINT digits;            // behind the point; NoDigits if there are none to speak of
  const char* createParameters;  // null if a declaration takes none
};

constexpr SQLSMALLINT NoDigits = -1;

// In the order of SQLGetTypeInfo: by type number, the usual name first.
extern const TypeDescription TypeTable[];
extern const size_t TypeTableSize;

struct ColumnType
{
  const TypeDescription* type;
  SQLULEN size;
  SQLSMALLINT digits;
};

// Reads a declaration such as "TEXT(50)" or "MEMO TEXT": its first word counts. A word that no
// type has is judged as SQLite judges it; a null or empty declaration yields a null type.
ColumnType ReadDeclaredType(const char* declaration);

// The type of a result column that is no column of a table: sqlType with its usual size.
ColumnType PlainType(SQLSMALLINT sqlType);

bool IsTextType(SQLSMALLINT sqlType);
bool IsBinaryType(SQLSMALLINT sqlType);
// Exact and approximate numbers; a bit is none.
bool IsNumberType(SQLSMALLINT sqlType);

// The type in its long form, SQL_DATETIME for all dates, and the code that goes with that; 0 for
// other types.
SQLSMALLINT VerboseType(SQLSMALLINT sqlType);
SQLSMALLINT DatetimeCode(SQLSMALLINT sqlType);

// Bytes of a value in its default form, without a terminator.
SQLLEN TransferOctets(const ColumnType& column);
// Characters that show any value.
SQLLEN DisplaySize(const ColumnType& column);
// The C type that SQL_C_DEFAULT stands for.
SQLSMALLINT DefaultCType(SQLSMALLINT sqlType);

#endif
