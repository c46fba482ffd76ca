// The driver's side of the ODBC interface: text of the wide calls is UTF-16.

#ifndef DRIVER_ODBC_H
#define DRIVER_ODBC_H

#include <sql.h>
#include <sqlext.h>
#include <sqlucode.h>

static_assert(sizeof(SQLWCHAR) == 2, "the wide calls carry 16-bit characters");

#endif
