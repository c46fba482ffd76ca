#ifndef DATABASE_DATABASENAMES_H
#define DATABASE_DATABASENAMES_H

#include "foundation/QulString.h"

constexpr int DatabaseCount = 17;

// What the product calls its databases, in the order of opening and updating them.
// Ready before all objects without an initialisation priority.
extern const QulString DatabaseNames[DatabaseCount];

// Entries that are treated in a way of their own.
constexpr int ProfilesDatabase = 4;
constexpr int CurrentProjectDatabase = 9;
constexpr int MappingDatabase = 15;

#endif
