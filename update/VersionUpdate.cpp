// The part of QulDatabase that compares and takes over the versions of a patch.
#include "database/KFProjectsVersionTable.h"
#include "database/QulPatchDatabase.h"
#include "database/Trace.h"

namespace {

struct VersionNumber
{
  const wchar_t* attribute;
  int32_t (QulDatabase::*number)() const;
};

// In the order in which they are written.
constexpr VersionNumber VersionNumbers[] = {
    {L"CommMajorVersion", &QulDatabase::GetCommMajorVersion},
    {L"CommMinorVersion", &QulDatabase::GetCommMinorVersion},
    {L"CommSPNumber", &QulDatabase::GetCommSPNumber},
    {L"BuildNumber", &QulDatabase::GetBuildNumber},
    {L"MajorNumber", &QulDatabase::GetMajorNumber},
    {L"MinorNumber", &QulDatabase::GetMinorNumber},
};

constexpr const wchar_t* ProjectsTable = L"KFProjectsVersion";

bool IsUsable(const AttributeValue& row)
{
  return row.attribute.Length() > 0 && row.value.Length() > 0;
}

// The first usable row of that attribute, or null.
const AttributeValue* FindAttribute(const QulArray<AttributeValue>& rows,
                                    const QulString& attribute)
{
  for (int i = 0; i < rows.count; ++i) {
    if (IsUsable(rows.data[i]) && rows.data[i].attribute.EqualsNoCase(attribute))
      return &rows.data[i];
  }
  return nullptr;
}

bool UpdateAttribute(QulDatabase& target, const AttributeValue& row)
{
  QulString statement;
  statement.Format(L"UPDATE KFProjectsVersion SET [Value]='%s' WHERE [Attribute]='%s'",
                   row.value.Text(), row.attribute.Text());
  return target.executeSQL(statement.Text());
}

bool InsertAttribute(QulDatabase& target, const AttributeValue& row)
{
  QulString statement;
  statement.Format(L"INSERT INTO [KFProjectsVersion] ([Attribute],[Value]) VALUES('%s','%s')",
                   row.attribute.Text(), row.value.Text());
  return target.executeSQL(statement.Text());
}

bool CreateProjectsTable(QulDatabase& target)
{
  QulString statement;
  statement.Format(L"CREATE TABLE %s", ProjectsTable);
  statement.Append(
      L" ([Attribute] varchar(255) PRIMARY KEY NOT NULL,[Value] varchar(255) NOT NULL)");
  if (target.executeSQL(statement.Text()))
    return true;
  QulString message;
  message.Format(L"Unable to create table %s\nSql:%s", ProjectsTable, statement.Text());
  ReportTrace(message.Text());
  return false;
}

}  // namespace

bool QulDatabase::WriteVersion(const QulPatchDatabase& patch)
{
  bool allWritten = true;
  for (const VersionNumber& version : VersionNumbers) {
    QulString number;
    number.Format(L"%d", (patch.*version.number)());
    QulString statement;
    statement.Format(L"UPDATE KFVersion SET [Value]='%s' WHERE [Attribute]='%s'", number.Text(),
                     version.attribute);
    if (!executeSQL(statement.Text()))
      allWritten = false;
  }
  return allWritten;
}

bool QulDatabase::IsProjectsVersionOlderThan(const QulPatchDatabase& patch) const
{
  const QulArray<AttributeValue>& wanted = patch.projectsVersionTable->rows;
  for (int i = 0; i < wanted.count; ++i) {
    const AttributeValue& row = wanted.data[i];
    if (!IsUsable(row))
      continue;
    const AttributeValue* const own = FindAttribute(projectsVersionTable->rows, row.attribute);
    if (own == nullptr || _wtoi(row.value.Text()) > _wtoi(own->value.Text()))
      return true;
  }
  return false;
}

bool QulDatabase::WriteProjectsVersion(const QulPatchDatabase& patch)
{
  const bool mayExist = TableExists(ProjectsTable);
  if (!mayExist && !CreateProjectsTable(*this))
    return false;
  bool allWritten = true;
  const QulArray<AttributeValue>& rows = patch.projectsVersionTable->rows;
  for (int i = 0; i < rows.count; ++i) {
    const AttributeValue& row = rows.data[i];
    if (!IsUsable(row))
      continue;
    // The UPDATE of an attribute that is new here fails, and is reported like any other failure.
    if (mayExist && UpdateAttribute(*this, row))
      continue;
    if (!InsertAttribute(*this, row))
      allWritten = false;
  }
  return allWritten;
}
