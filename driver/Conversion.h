// Values into the buffers of programs.

#ifndef DRIVER_CONVERSION_H
#define DRIVER_CONVERSION_H

#include "driver/Cell.h"
#include "driver/Diagnostics.h"
#include "driver/Odbc.h"
#include "driver/Types.h"

// Where a program wants a value. Any of the pointers may be null.
struct Target
{
  SQLSMALLINT cType = SQL_C_DEFAULT;
  void* buffer = nullptr;
  SQLLEN capacity = 0;          // bytes; of no meaning for types of a fixed size
  SQLLEN* length = nullptr;     // takes the length in bytes
  SQLLEN* indicator = nullptr;  // takes SQL_NULL_DATA; usually the same word
};

// A C type that SQLBindCol and SQLGetData take.
bool IsKnownCType(SQLSMALLINT cType);
// Text and bytes, which a program may read piece by piece.
bool IsVariableCType(SQLSMALLINT cType);
// Bytes of a value of a type of a fixed size.
size_t FixedSize(SQLSMALLINT cType);

// Writes the value. NULL goes to the indicator alone. The result is SQL_SUCCESS,
// SQL_SUCCESS_WITH_INFO with a record for what was cut, or SQL_ERROR with a record and the buffer
// untouched.
SQLRETURN ConvertCell(const Cell& cell, const ColumnType& column, const Target& target,
                      Diagnostics& diagnostics);

// The whole value as a program is to read it, in the units of the C type: for reading in pieces.
std::string VariableBytes(const Cell& cell, SQLSMALLINT sqlType, SQLSMALLINT cType);

// Parts of ConvertCell, for numbers (NumberConversion.cpp). The buffer isn't null.
SQLRETURN ConvertToNumber(const Cell& cell, const Target& target, Diagnostics& diagnostics);
SQLRETURN ConvertToDecimal(const Cell& cell, SQLSMALLINT scale, const Target& target,
                           Diagnostics& diagnostics);

#endif
