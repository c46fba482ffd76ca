#ifndef DATABASE_KFVERSIONTABLE_H
#define DATABASE_KFVERSIONTABLE_H

#include "database/AttributeValue.h"

// The stored table KFVersion as it stood when its database was opened: one version for all
// that the database holds.
class KFVersionTable
{
public:
  // Reads the table; the database isn't kept.
  explicit KFVersionTable(const QulDatabase& database);
  KFVersionTable(const KFVersionTable&) = delete;
  KFVersionTable& operator=(const KFVersionTable&) = delete;
  virtual ~KFVersionTable() = default;

  // Value of the first row with that attribute, without regard to case; else the empty string.
  QulString GetValue(const QulString& attribute) const;

  QulString MajorNumber() const { return GetValue(L"MajorNumber"); }
  QulString MinorNumber() const { return GetValue(L"MinorNumber"); }
  QulString CommMajorVersion() const { return GetValue(L"CommMajorVersion"); }
  QulString CommMinorVersion() const { return GetValue(L"CommMinorVersion"); }
  QulString CommSPNumber() const { return GetValue(L"CommSPNumber"); }
  QulString BuildNumber() const { return GetValue(L"BuildNumber"); }

  QulArray<AttributeValue> rows;
};

#endif
