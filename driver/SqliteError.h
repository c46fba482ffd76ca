// SQLite's errors as records of ODBC.

#ifndef DRIVER_SQLITEERROR_H
#define DRIVER_SQLITEERROR_H

#include <sqlite3.h>

#include "driver/Diagnostics.h"

// Adds the record for the error that a call on the database has just returned, and returns
// SQL_ERROR.
SQLRETURN FailFromSqlite(Diagnostics& diagnostics, sqlite3* database, int code);

#endif
