#include "database/KFVersionTable.h"

KFVersionTable::KFVersionTable(const QulDatabase& database)
{
  ReadAttributeValues(database, L"KFVersion", rows);
}

QulString KFVersionTable::GetValue(const QulString& attribute) const
{
  for (int i = 0; i < rows.count; ++i) {
    if (rows.data[i].attribute.EqualsNoCase(attribute))
      return rows.data[i].value;
  }
  return {};
}
