#include "update/DatabaseConfiguration.h"

#include "database/DatabaseNames.h"
#include "foundation/QulFileAccess.h"
#include "settings/EnvironmentSettings.h"

#include <stddef.h>

QulArray<DataSource> DataSourceTable;

namespace {

constexpr wchar_t RootOpen[] = L"<Kestrelforge>";
constexpr wchar_t RootClose[] = L"</Kestrelforge>";
constexpr wchar_t ElementOpen[] = L"<DataSource";
constexpr wchar_t ElementClose[] = L"/>";
constexpr wchar_t Quote[] = L"\"";

template <size_t Size>
constexpr int LengthOf(const wchar_t (&)[Size])
{
  return static_cast<int>(Size) - 1;
}

bool IsExactly(const QulString& left, const QulString& right)
{
  return wcscmp(left.Text(), right.Text()) == 0;
}

// The text of the file; empty if there is none.
QulString ReadConfigurationFile()
{
  QulString text;
  QulFileAccess access(GetDataPath() + L"\\Configuration\\DatabaseConfiguration.xml", L"r", 1);
  if (access.file == nullptr)
    return text;
  (void)fseek(access.file, 0, SEEK_END);
  const auto size = ftell(access.file);
  (void)fseek(access.file, 0, SEEK_SET);
  if (size < 1)
    return text;
  (void)access.ReadAll(text, static_cast<uint64_t>(size));
  (void)fclose(access.file);
  access.file = nullptr;
  return text;
}

// Cuts the body into what stands between the beginnings and the ends of the elements. Both are
// searched from the same place, so an end that comes first makes a piece of negative length, which
// no allocation can serve.
void CutElements(const QulString& body, QulArray<QulString>& elements)
{
  int position = 0;
  while (true) {
    const int start = body.Find(ElementOpen, position);
    const int end = body.Find(ElementClose, position);
    if (start < 0 || end < 0)
      return;
    const int first = start + LengthOf(ElementOpen);
    QulString element;
    (void)element.SubString(body, first, end - first);
    element.TrimLeft();
    element.TrimRight();
    elements.Append(element);
    position = end + LengthOf(ElementClose);
    if (position >= body.Length())
      return;
  }
}

// Takes the text between the two quotes that follow the first occurrence of the attribute's name,
// wherever in the element that is; false if there aren't two.
bool ReadAttribute(const QulString& element, const QulString& attribute, QulString& value)
{
  const int nameIndex = element.Find(attribute);
  if (nameIndex < 0)
    return false;
  const int openingQuote = element.Find(Quote, nameIndex);
  if (openingQuote < 0)
    return false;
  const int first = openingQuote + 1;
  const int closingQuote = element.Find(Quote, first);
  if (closingQuote < 0)
    return false;
  (void)value.SubString(element, first, closingQuote - first);
  return true;
}

}  // namespace

QulString GetConnectionString(const QulString& name)
{
  if (name.EqualsNoCase(DatabaseNames[ProfilesDatabase]))
    return GetRegisteredConnection(name);
  if (name.EqualsNoCase(DatabaseNames[MappingDatabase]))
    return GetRegisteredConnection(name);
  if (name.EqualsNoCase(DatabaseNames[CurrentProjectDatabase])) {
    return QulString(L"DRIVER={Kestrel ODBC Driver};UID=;PWD=;DBQ=") + GetDataPath() +
           L"\\Kernel\\Data\\model.mdb";
  }
  if (DataSourceTable.count == 0)
    (void)LoadDatabaseConfiguration();
  for (int i = 0; i < DataSourceTable.count; ++i) {
    const DataSource& source = DataSourceTable.data[i];
    if (IsExactly(source.platform, L"x64") && IsExactly(source.name, name))
      return source.value;
  }
  return {};
}

int32_t LoadDatabaseConfiguration()
{
  const QulString text = ReadConfigurationFile();
  const int open = text.Find(RootOpen);
  const int close = text.Find(RootClose);
  if (open < 0 || close < 0)
    return DataSourceTable.count;
  const int first = open + LengthOf(RootOpen);
  QulString body;
  (void)body.SubString(text, first, close - first);

  QulArray<QulString> elements;
  CutElements(body, elements);
  for (int i = 0; i < elements.count; ++i) {
    const QulString& element = elements.data[i];
    DataSource source;
    if (ReadAttribute(element, L"Platform", source.platform) &&
        ReadAttribute(element, L"Name", source.name) &&
        ReadAttribute(element, L"Value", source.value)) {
      DataSourceTable.Append(source);
    }
  }
  return DataSourceTable.count;
}
