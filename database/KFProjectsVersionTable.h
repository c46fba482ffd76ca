#ifndef DATABASE_KFPROJECTSVERSIONTABLE_H
#define DATABASE_KFPROJECTSVERSIONTABLE_H

#include "database/AttributeValue.h"

// The stored table KFProjectsVersion as it stood when its database was opened: numbers under free
// names, each for the project patches that know it. Many databases have no such table.
class KFProjectsVersionTable
{
public:
  // Reads the table; the database isn't kept.
  explicit KFProjectsVersionTable(const QulDatabase& database);
  KFProjectsVersionTable(const KFProjectsVersionTable&) = delete;
  KFProjectsVersionTable& operator=(const KFProjectsVersionTable&) = delete;
  virtual ~KFProjectsVersionTable() = default;

  QulArray<AttributeValue> rows;
};

#endif
