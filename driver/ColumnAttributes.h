// What SQLColAttribute and the row descriptor tell of a column of a result.

#ifndef DRIVER_COLUMNATTRIBUTES_H
#define DRIVER_COLUMNATTRIBUTES_H

#include <optional>
#include <string>

#include "driver/Rows.h"

// Either a text or a number.
struct ColumnAttribute
{
  std::optional<std::string> text;
  SQLLEN number = 0;
};

// Nothing for a field that ODBC doesn't have. field may be one of ODBC 2.
std::optional<ColumnAttribute> FindColumnAttribute(const ResultColumn& column, SQLUSMALLINT field);

#endif
