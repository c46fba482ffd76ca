// The part of QulDatabase that tells and compares versions.
#include "database/KFVersionTable.h"
#include "database/QulDatabase.h"

#include <wctype.h>

namespace {

// A text with anything but digits in it is no number.
int32_t DigitsOnlyNumber(const QulString& text)
{
  for (const wchar_t* p = text.Text(); *p != L'\0'; ++p) {
    if (iswdigit(static_cast<wint_t>(*p)) == 0)
      return 0;
  }
  return _wtoi(text.Text());
}

}  // namespace

int32_t QulDatabase::GetMajorNumber() const
{
  return versionTable == nullptr ? 0 : DigitsOnlyNumber(versionTable->MajorNumber());
}

int32_t QulDatabase::GetMinorNumber() const
{
  return versionTable == nullptr ? 0 : DigitsOnlyNumber(versionTable->MinorNumber());
}

int32_t QulDatabase::GetCommMajorVersion() const
{
  return versionTable == nullptr ? 0 : DigitsOnlyNumber(versionTable->CommMajorVersion());
}

int32_t QulDatabase::GetCommMinorVersion() const
{
  return versionTable == nullptr ? 0 : DigitsOnlyNumber(versionTable->CommMinorVersion());
}

int32_t QulDatabase::GetCommSPNumber() const
{
  // Other than the rest: a sign, blanks in front and text behind the number are accepted.
  return versionTable == nullptr ? 0 : _wtoi(versionTable->CommSPNumber().Text());
}

int32_t QulDatabase::GetBuildNumber() const
{
  return versionTable == nullptr ? 0 : DigitsOnlyNumber(versionTable->BuildNumber());
}

bool QulDatabase::IsOlderThan(const QulDatabase* other) const
{
  if (other == nullptr)
    return false;
  const int32_t own[] = {GetMajorNumber(), GetMinorNumber(), GetCommSPNumber(), GetBuildNumber()};
  const int32_t others[] = {other->GetMajorNumber(), other->GetMinorNumber(),
                            other->GetCommSPNumber(), other->GetBuildNumber()};
  for (int i = 0; i < 4; ++i) {
    if (own[i] != others[i])
      return own[i] < others[i];
  }
  return false;
}
