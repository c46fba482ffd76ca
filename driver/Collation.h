// How text compares in the tables that the driver makes.

#ifndef DRIVER_COLLATION_H
#define DRIVER_COLLATION_H

#include <sqlite3.h>

// Names that stand in the definitions of tables, in the database files.
constexpr const char* TextCollation = "KESTREL_TEXT";
constexpr const char* DateCollation = "KESTREL_DATE";

// Makes both collations known to a connection, and gives LIKE the same view of upper and lower
// case. The result is SQLite's.
int RegisterCollations(sqlite3* database);

#endif
