#include "database/KFProjectsVersionTable.h"

KFProjectsVersionTable::KFProjectsVersionTable(const QulDatabase& database)
{
  ReadAttributeValues(database, L"KFProjectsVersion", rows);
}
