#ifndef DATABASE_VALUEKIND_H
#define DATABASE_VALUEKIND_H

#include <stdint.h>

// The form in which a fetched value stands in a column's buffer, and from which its literal is
// written.
enum class ValueKind
{
  None,       // is neither fetched nor written
  Text,       // wide characters up to a terminator
  Bit,        // one byte
  Integer,    // int32_t
  Number,     // double
  Timestamp,  // SQL_TIMESTAMP_STRUCT
};

// By ODBC's number of a column's type. Texts of fixed length are None, as all types are that the
// product's tables never had.
ValueKind KindOfValue(int32_t sqlType);

#endif
