// One value on its way from a row to the program.

#ifndef DRIVER_CELL_H
#define DRIVER_CELL_H

#include <cstdint>
#include <string>
#include <string_view>

#include "driver/Odbc.h"

enum class CellKind
{
  Null,
  Integer,
  Real,
  Text,
  Binary,
  Moment
};

// bytes is borrowed from the row and lasts until the row is left.
struct Cell
{
  CellKind kind = CellKind::Null;
  int64_t integer = 0;
  double real = 0;
  std::string_view bytes;
  SQL_TIMESTAMP_STRUCT moment = {};

  static Cell OfInteger(int64_t value);
  static Cell OfText(std::string_view value);
};

// Makes of a stored value what its column's type promises: a date from its text, 0 or 1 for a bit.
// A value that doesn't fit its type stays as it is.
void FitToType(Cell& cell, SQLSMALLINT sqlType);

// A number as text without an exponent where that is of reasonable length, with as many digits as
// it takes to read the same number again.
std::string WriteReal(double value);

// Reads a whole text as a number, blanks around it allowed. isInteger tells which of the two
// results is set. False if it is no number.
bool ReadNumber(std::string_view text, bool& isInteger, int64_t& integer, double& real);

// The cell as text; bytes as hexadecimal digits. Not for NULL.
std::string CellText(const Cell& cell);

#endif
