// Values from the buffers of programs into statements.

#ifndef DRIVER_PARAMETERS_H
#define DRIVER_PARAMETERS_H

#include <sqlite3.h>

#include <string>

#include "driver/Diagnostics.h"
#include "driver/Odbc.h"

struct Parameter
{
  bool isBound = false;
  SQLSMALLINT cType = SQL_C_DEFAULT;
  SQLSMALLINT sqlType = SQL_WVARCHAR;
  SQLULEN size = 0;
  SQLSMALLINT digits = 0;
  void* value = nullptr;
  SQLLEN capacity = 0;
  SQLLEN* length = nullptr;
};

// A value that the program hands over after the call to execute, piece by piece.
struct DelayedValue
{
  size_t parameter = 0;  // counted from 0
  bool isGiven = false;
  bool isNull = false;
  std::string bytes;
};

// True if the program wants to hand over the value later. offset is added to the length's address.
bool IsDelayed(const Parameter& parameter, SQLULEN offset);

// Binds the value; delayed is null for one that stands in the program's buffer.
SQLRETURN BindParameter(sqlite3_stmt* query, int index, const Parameter& parameter, SQLULEN offset,
                        const DelayedValue* delayed, Diagnostics& diagnostics);

#endif
