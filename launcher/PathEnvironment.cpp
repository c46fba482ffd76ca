#include "launcher/PathEnvironment.h"

#include "foundation/FatalEnd.h"
#include "settings/EnvironmentSettings.h"

#include <windows.h>

#include <wchar.h>

namespace {

const wchar_t* const PathFilterFragments[] = {L"norvane\\kestrelforge",
                                              L"ovl hyn trek\\common\\bin"};

// Puts the text of "AddPath" into a buffer of PathListCharacters + 1, empty if it can't be read.
void ReadAddPath(wchar_t* addPath)
{
  addPath[0] = L'\0';
  HKEY key = nullptr;
  if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, GetEnvironmentKey().Text(), 0, KEY_READ, &key) !=
      ERROR_SUCCESS) {
    return;
  }
  DWORD type = REG_SZ;
  DWORD size = PathListCharacters * sizeof(wchar_t);
  const LONG status =
      RegQueryValueExW(key, L"AddPath", nullptr, &type, reinterpret_cast<BYTE*>(addPath), &size);
  (void)RegCloseKey(key);
  // A value may be stored without a terminator; a failed query may leave a part of one.
  addPath[status == ERROR_SUCCESS ? size / sizeof(wchar_t) : 0] = L'\0';
}

bool HoldsFilterFragment(const wchar_t* element, const wchar_t* longForm)
{
  for (const wchar_t* fragment : PathFilterFragments) {
    if (wcsstr(element, fragment) != nullptr || wcsstr(longForm, fragment) != nullptr)
      return true;
  }
  return false;
}

}  // namespace

void UpdatePathEnvironment()
{
  // One character more than the calls are told, for a value that fills it without a terminator.
  wchar_t* newPath = new wchar_t[PathListCharacters + 1];
  ReadAddPath(newPath);

  wchar_t* current = new wchar_t[PathListCharacters];
  current[0] = L'\0';
  const DWORD length = GetEnvironmentVariableW(L"PATH", current, PathListCharacters);
  if (length > 0) {
    // A PATH beyond the buffer counts as an empty list, whatever the call has left in it.
    if (length >= PathListCharacters)
      current[0] = L'\0';
    wchar_t* cleaned = new wchar_t[PathListCharacters];
    CleanPathList(current, cleaned);

    const size_t addPathLength = wcslen(newPath);
    if (addPathLength > 0 && newPath[addPathLength - 1] != L';')
      RequireFits(wcscat_s(newPath, PathListCharacters, L";"));
    RequireFits(wcscat_s(newPath, PathListCharacters, cleaned));
    (void)SetEnvironmentVariableW(L"PATH", newPath);
    delete[] cleaned;
  }
  delete[] current;
  delete[] newPath;
}

void CleanPathList(wchar_t* current, wchar_t* cleaned)
{
  RequireFits(_wcslwr_s(current, PathListCharacters));
  cleaned[0] = L'\0';

  wchar_t element[PathElementCharacters];
  // Lives through the whole walk: an element without a long form is judged by the last one found.
  // One character more than the call is told, so that the text always ends.
  wchar_t longForm[PathElementCharacters + 1] = {};

  const wchar_t* p = current;
  for (bool isLast = false; !isLast;) {
    const wchar_t* separator = wcschr(p, L';');
    isLast = separator == nullptr;
    const size_t length = isLast ? wcslen(p) : static_cast<size_t>(separator - p);
    if (length > 1) {
      RequireFits(wcsncpy_s(element, PathElementCharacters, p, length));
      (void)GetLongPathNameW(element, longForm, PathElementCharacters);
      if (!HoldsFilterFragment(element, longForm)) {
        RequireFits(wcscat_s(cleaned, PathListCharacters, element));
        RequireFits(wcscat_s(cleaned, PathListCharacters, L";"));
      }
    }
    p += length;
    if (!isLast)
      ++p;
  }
}
