#include "host/HostVersionArgument.h"

#include "host/HostEnumeration.h"

#include <wctype.h>

const wchar_t* const HostVersionSwitch = L"/AcadVer";

namespace {

constexpr HostRelease ReleaseOfUnusableValue = 3;

struct ReleaseDigits
{
  const wchar_t* text;
  HostRelease release;
};

// The first text found anywhere in the major part settles the release.
constexpr ReleaseDigits ReleasesByDigits[] = {{L"15", 0}, {L"16", 1}, {L"17", 2}, {L"18", 3}};

HostRelease ReleaseOfMajorPart(const QulString& majorPart)
{
  for (const ReleaseDigits& row : ReleasesByDigits) {
    if (majorPart.Find(row.text) >= 0)
      return row.release;
  }
  return HostReleaseUnknown;
}

struct RequestedVersion
{
  QulString majorPart;
  QulString minorPart;
  QulString productPart;
};

int FindFrom(const QulString& text, int start, const wchar_t* first, const wchar_t* second)
{
  const int index = text.Find(first, start);
  return index >= 0 ? index : text.Find(second, start);
}

// Splits R17.1\ABCD-0001 and its shorter forms; a slash serves as a backslash where there is none.
RequestedVersion SplitVersion(const QulString& value)
{
  RequestedVersion version;
  const int length = value.Length();

  int separator = value.Find(L".");
  const bool hasDot = separator >= 0;
  if (!hasDot)
    separator = FindFrom(value, 0, L"\\", L"/");
  if (separator < 0)
    separator = length;
  version.majorPart = value.Left(separator);

  const int next = separator + 1;
  if (next >= length)
    return version;
  const int cut = FindFrom(value, next, L"\\", L"/");
  if (cut >= 0) {
    version.minorPart = value.Mid(next, cut - next);
    version.productPart = value.Mid(cut + 1, length - cut - 1);
  } else if (hasDot) {
    version.minorPart = value.Mid(next, length - next);
  } else {
    version.productPart = value.Mid(next, length - next);
  }
  return version;
}

bool HasDigit(const QulString& value)
{
  for (const wchar_t* p = value.Text(); *p != L'\0'; ++p) {
    if (iswdigit(*p) != 0)
      return true;
  }
  return false;
}

// Takes the value, quotes and all, out of the line together with the switch and the one blank
// behind it. Empty, with the line as it was, if there is no value or its quote is not closed.
QulString TakeSwitchValue(QulString& commandLine)
{
  const int length = commandLine.Length();
  const int switchStart = commandLine.Find(HostVersionSwitch);
  const wchar_t* const text = commandLine.Text();
  int valueStart = switchStart + static_cast<int>(wcslen(HostVersionSwitch));
  while (valueStart < length && text[valueStart] == L' ')
    ++valueStart;

  int valueEnd = 0;
  if (text[valueStart] == L'"') {
    valueEnd = commandLine.Find(L"\"", valueStart + 1) + 1;
  } else {
    valueEnd = commandLine.Find(L" ", valueStart);
    if (valueEnd < 0)
      valueEnd = length;
  }
  if (valueEnd <= valueStart)
    return QulString();

  const QulString value = commandLine.Mid(valueStart, valueEnd - valueStart);
  commandLine = commandLine.Left(switchStart) + commandLine.Right(length - valueEnd - 1);
  return value;
}

}  // namespace

HostRelease ResolveRequestedHost(QulString& commandLine, QulString& hostKeyPath,
                                 QulString& hostExecutable, bool& hostIs64Bit)
{
  hostIs64Bit = false;
  QulString value = TakeSwitchValue(commandLine);
  if (value.Text()[0] == L'"')
    value = value.Mid(1, value.Length() - 2);
  if (value.Length() <= 1 || !HasDigit(value))
    return ReleaseOfUnusableValue;

  RequestedVersion version = SplitVersion(value);
  if (version.majorPart.Length() == 0)
    return ReleaseOfUnusableValue;
  const HostRelease release = ReleaseOfMajorPart(version.majorPart);

  const bool useMachineRoot = release == 0;
  const HostKeyScope scope = ScopeOfHostKeys(useMachineRoot);
  hostKeyPath.Assign(HostBasePath);
  if (version.minorPart.Length() > 0 && version.productPart.Length() > 0) {
    FindHostKeyExact(scope, hostKeyPath, version.majorPart, version.minorPart, version.productPart);
  } else {
    FindHostKeyByVersion(useMachineRoot, scope, hostKeyPath, version.majorPart, version.minorPart,
                         version.productPart);
  }

  // The base that an exact search leaves behind passes, too: the start of such a host then fails.
  if (hostKeyPath.Length() > 0) {
    // Always four characters, even where the product's name has no dash or an early one.
    const QulString exeName = version.productPart.Left(4) + L".exe";
    LocateHostExecutable(hostKeyPath, exeName, hostExecutable, hostIs64Bit);
  }
  return release;
}
