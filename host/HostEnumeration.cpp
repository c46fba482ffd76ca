#include "host/HostEnumeration.h"

const wchar_t* const HostBasePath = L"Software\\Autodesk\\";

namespace {

// Told to value queries; the memory has a terminator more, as a value may be stored without one.
constexpr DWORD ValueBytes = 500;
constexpr DWORD NameCharacters = 500;

// The name that a subkey walk has reached. It keeps the last name when a call fails, and is empty
// before the first.
struct SubkeyName
{
  wchar_t text[NameCharacters + 1] = {};

  LONG Read(HKEY key, DWORD index)
  {
    DWORD size = NameCharacters;
    FILETIME lastWrite = {};
    return RegEnumKeyExW(key, index, text, &size, nullptr, nullptr, nullptr, &lastWrite);
  }
};

// The first subkey whose name holds "AutoCAD", empty if there is none.
QulString FindAutoCadSubkey(HKEY key)
{
  SubkeyName name;
  for (DWORD index = 0;; ++index) {
    const LONG status = name.Read(key, index);
    // The name before the status: a name that came with an error would count too.
    if (wcsstr(name.text, L"AutoCAD") != nullptr)
      return QulString(name.text);
    if (status != ERROR_SUCCESS)
      return QulString();
  }
}

// The first subkey of candidatePath whose name holds productPart, or just the first subkey if that
// is empty. Empty if there is none.
QulString FindProductSubkey(const HostKeyScope& scope, const QulString& candidatePath,
                            const QulString& productPart)
{
  QulString found;
  HKEY key = nullptr;
  (void)RegOpenKeyExW(scope.root, candidatePath.Text(), 0, scope.enumerationAccess, &key);
  SubkeyName name;
  // A failed open needs no test: the first read of a null key ends the walk.
  for (DWORD index = 0; name.Read(key, index) == ERROR_SUCCESS; ++index) {
    if (productPart.Length() == 0 || wcsstr(name.text, productPart.Text()) != nullptr) {
      found.Assign(name.text);
      break;
    }
  }
  (void)RegCloseKey(key);
  return found;
}

}  // namespace

HostKeyScope ScopeOfHostKeys(bool useMachineRoot)
{
  if (useMachineRoot) {
    return {HKEY_LOCAL_MACHINE, KEY_QUERY_VALUE | KEY_WOW64_32KEY,
            KEY_ENUMERATE_SUB_KEYS | KEY_WOW64_32KEY};
  }
  return {HKEY_CURRENT_USER, KEY_QUERY_VALUE, KEY_ENUMERATE_SUB_KEYS};
}

QulString ReadHostValue(HKEY key, const wchar_t* valueName)
{
  wchar_t buffer[ValueBytes / sizeof(wchar_t) + 1] = {};
  DWORD size = ValueBytes;
  // Not a failure test: a failed query may leave a part of a longer value in the buffer.
  if (RegQueryValueExW(key, valueName, nullptr, nullptr, reinterpret_cast<BYTE*>(buffer), &size) !=
      ERROR_SUCCESS) {
    buffer[0] = L'\0';
  }
  return QulString(buffer);
}

LONG OpenHostProductKey(bool useMachineRoot, HKEY& key, QulString& path)
{
  const HostKeyScope scope = ScopeOfHostKeys(useMachineRoot);
  const QulString base(HostBasePath);
  const QulString separator(L"\\");
  key = nullptr;

  QulString product;
  HKEY baseKey = nullptr;
  if (RegOpenKeyExW(scope.root, base.Text(), 0, scope.valueAccess, &baseKey) == ERROR_SUCCESS) {
    product = ReadHostValue(baseKey, L"CurProd");
    (void)RegCloseKey(baseKey);
  }

  path = base + product + separator;
  if (RegOpenKeyExW(scope.root, path.Text(), 0, scope.valueAccess, &key) == ERROR_SUCCESS) {
    if (product.Length() > 0)
      return ERROR_SUCCESS;
    // The registry may overlook the doubled backslash and open the base, which is no product.
    (void)RegCloseKey(key);
  }
  key = nullptr;

  path = base;
  QulString fallback;
  if (RegOpenKeyExW(scope.root, path.Text(), 0, scope.enumerationAccess, &key) == ERROR_SUCCESS)
    fallback = FindAutoCadSubkey(key);
  (void)RegCloseKey(key);
  key = nullptr;

  path = path + fallback + separator;
  const LONG status = RegOpenKeyExW(scope.root, path.Text(), 0, scope.valueAccess, &key);
  if (status != ERROR_SUCCESS)
    key = nullptr;
  return status;
}

void LocateHostExecutable(QulString hostKeyPath, QulString exeName, QulString& hostExecutable,
                          bool& hostIs64Bit)
{
  // This is a 64-bit program, so its native view is that of the 64-bit hosts.
  HKEY key = nullptr;
  if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, hostKeyPath.Text(), 0, KEY_QUERY_VALUE, &key) ==
      ERROR_SUCCESS) {
    hostIs64Bit = true;
  } else if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, hostKeyPath.Text(), 0,
                           KEY_QUERY_VALUE | KEY_WOW64_32KEY, &key) != ERROR_SUCCESS) {
    return;
  }

  hostExecutable = ReadHostValue(key, L"AcadLocation");
  (void)RegCloseKey(key);
  // A folder that is not recorded becomes a lone backslash; the start of the host then fails.
  if (!hostExecutable.Right(1).EqualsNoCase(L"\\"))
    hostExecutable.Append(L"\\");
  hostExecutable.Append(exeName);
}

void FindHostKeyExact(const HostKeyScope& scope, QulString& hostKeyPath, const QulString& majorPart,
                      const QulString& minorPart, const QulString& productPart)
{
  QulString tail;
  tail.Format(L"\\%s.%s\\%s", majorPart.Text(), minorPart.Text(), productPart.Text());

  HKEY key = nullptr;
  if (RegOpenKeyExW(scope.root, hostKeyPath.Text(), 0, scope.enumerationAccess, &key) ==
      ERROR_SUCCESS) {
    SubkeyName name;
    for (DWORD index = 0;; ++index) {
      const LONG status = name.Read(key, index);
      const QulString candidate = name.text + tail;
      HKEY candidateKey = nullptr;
      if (RegOpenKeyExW(key, candidate.Text(), 0, scope.valueAccess, &candidateKey) ==
          ERROR_SUCCESS) {
        (void)RegCloseKey(candidateKey);
        // No backslash behind it: what is registered for a host chosen this way stands in a key
        // beside the product key, and the marker is looked for there as well.
        hostKeyPath.Append(candidate);
        break;
      }
      if (status != ERROR_SUCCESS)
        break;
    }
  }
  (void)RegCloseKey(key);
}

void FindHostKeyByVersion(bool useMachineRoot, const HostKeyScope& scope, QulString& hostKeyPath,
                          const QulString& majorPart, const QulString& minorPart,
                          QulString& productPart)
{
  HKEY productKey = nullptr;
  hostKeyPath.Assign(L"");
  // Only the path is wanted; a useless one is found out by the open below.
  (void)OpenHostProductKey(useMachineRoot, productKey, hostKeyPath);
  (void)RegCloseKey(productKey);

  QulString versionText(majorPart);
  if (minorPart.Length() > 0)
    versionText = versionText + L"." + minorPart;

  QulString foundPath;
  HKEY key = nullptr;
  if (RegOpenKeyExW(scope.root, hostKeyPath.Text(), 0, scope.enumerationAccess, &key) ==
      ERROR_SUCCESS) {
    SubkeyName name;
    for (DWORD index = 0; name.Read(key, index) == ERROR_SUCCESS; ++index) {
      if (name.text[0] == L'\0' || wcsstr(name.text, versionText.Text()) == nullptr)
        continue;
      const QulString candidatePath = hostKeyPath + name.text + L"\\";
      const QulString product = FindProductSubkey(scope, candidatePath, productPart);
      if (product.Length() > 0) {
        productPart = product;
        foundPath = candidatePath + product + L"\\";
        break;
      }
    }
  }
  (void)RegCloseKey(key);
  hostKeyPath = foundPath;
}
