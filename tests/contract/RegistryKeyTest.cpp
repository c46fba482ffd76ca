// Keys: paths, views, and the enumeration of subkeys and values.
#include "tests/contract/RegistryFixture.h"

namespace {

constexpr REGSAM Read32 = KEY_READ | KEY_WOW64_32KEY;

// The outputs of an enumeration, poisoned before the call.
struct NameResult
{
  static constexpr DWORD BufferCharacters = 32;

  NameResult() { memset(text, 0xBD, sizeof(text)); }

  LONG status = -1;
  DWORD size = BufferCharacters;
  wchar_t text[BufferCharacters];
  DWORD type = 0xDEADBEEF;
  BYTE data[8] = {0xBD, 0xBD, 0xBD, 0xBD, 0xBD, 0xBD, 0xBD, 0xBD};
  DWORD dataSize = sizeof(data);
};

const wchar_t Poison = static_cast<wchar_t>(0xBDBD);

}  // namespace

class RegistryEnumeration : public RegistryContract
{
protected:
  NameResult Subkey(HKEY handle, DWORD index, DWORD size = NameResult::BufferCharacters)
  {
    NameResult result;
    result.size = size;
    FILETIME lastWrite = {};
    result.status = RegEnumKeyExW(handle, index, result.text, &result.size, nullptr, nullptr,
                                  nullptr, &lastWrite);
    return result;
  }

  NameResult Value(HKEY handle, DWORD index, DWORD size, DWORD dataSize)
  {
    NameResult result;
    result.size = size;
    result.dataSize = dataSize;
    result.status = RegEnumValueW(handle, index, result.text, &result.size, nullptr, &result.type,
                                  result.data, &result.dataSize);
    return result;
  }
};

TEST_F(RegistryContract, AFailedOpenStoresNull)
{
  EXPECT_EQ(ERROR_FILE_NOT_FOUND, Open(key, L"None", KEY_READ));
  EXPECT_EQ(nullptr, opened);
  EXPECT_EQ(ERROR_INVALID_HANDLE, Open(nullptr, L"None", KEY_READ));
  EXPECT_EQ(nullptr, opened);
}

TEST_F(RegistryContract, AnOpenNeedsAPlaceForTheHandle)
{
  EXPECT_EQ(ERROR_INVALID_PARAMETER, RegOpenKeyExW(key, L"", 0, KEY_READ, nullptr));
}

TEST_F(RegistryContract, BackslashesAtTheEndOrDoubledAreSkipped)
{
  ASSERT_NE(nullptr, Create(key, L"A\\B", KEY_READ));
  for (const wchar_t* path : {L"A\\B\\", L"A\\B\\\\", L"A\\\\B", L"a\\b"})
    EXPECT_EQ(ERROR_SUCCESS, Open(key, path, KEY_READ)) << testing::PrintToString(path);
}

TEST_F(RegistryContract, APathMayNotBeginWithABackslash)
{
  EXPECT_EQ(ERROR_BAD_PATHNAME, Open(HKEY_CURRENT_USER, L"\\Software", KEY_READ));
  EXPECT_EQ(ERROR_BAD_PATHNAME, Open(HKEY_LOCAL_MACHINE, L"\\Software", KEY_READ));
  EXPECT_EQ(ERROR_BAD_PATHNAME, Open(key, L"\\A", KEY_READ));
  EXPECT_EQ(ERROR_FILE_NOT_FOUND, Open(HKEY_CLASSES_ROOT, L"\\.kestrel-none", KEY_READ));
}

TEST_F(RegistryContract, AnEmptyPathOpensTheKeyItself)
{
  ASSERT_EQ(ERROR_SUCCESS, Open(key, L"", KEY_READ));
  EXPECT_NE(key, opened);
  ASSERT_EQ(ERROR_SUCCESS, Open(HKEY_CURRENT_USER, L"", KEY_READ));
  EXPECT_EQ(HKEY_CURRENT_USER, opened);
}

TEST_F(RegistryContract, ARootIsClosedWithoutEffect)
{
  EXPECT_EQ(ERROR_SUCCESS, RegCloseKey(HKEY_CURRENT_USER));
  EXPECT_EQ(ERROR_SUCCESS, Open(HKEY_CURRENT_USER, ContractKey, KEY_READ));
}

TEST_F(RegistryContract, ACreationTellsNewFromExisting)
{
  HKEY created = nullptr;
  DWORD disposition = 0xDEADBEEF;
  wchar_t noClass[] = L"";
  for (const DWORD expected : {DWORD{REG_CREATED_NEW_KEY}, DWORD{REG_OPENED_EXISTING_KEY}}) {
    ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyExW(key, L"A\\B", 0, noClass, 0, KEY_SET_VALUE, nullptr,
                                             &created, &disposition));
    Keep(created);
    EXPECT_EQ(expected, disposition);
  }
}

TEST_F(RegistryContract, ACreationMakesTheKeysOnTheWay)
{
  ASSERT_NE(nullptr, Create(key, L"A\\B\\C", KEY_READ));
  EXPECT_EQ(ERROR_SUCCESS, Open(key, L"A\\B", KEY_READ));
}

TEST_F(RegistryContract, TheRightsOfTheParentsHandleDoNotMatterToACreation)
{
  ASSERT_EQ(ERROR_SUCCESS, Open(key, nullptr, KEY_QUERY_VALUE));
  EXPECT_NE(nullptr, Create(opened, L"A", KEY_READ));
}

TEST_F(RegistryContract, ACreatedKeyHasTheRightsAskedForAlone)
{
  HKEY created = Create(key, L"A", KEY_SET_VALUE);
  EXPECT_EQ(ERROR_ACCESS_DENIED, Query(created, L"Value").status);
}

TEST_F(RegistryContract, ACreationRefusesAReservedNumberAndALeadingBackslash)
{
  HKEY created = nullptr;
  EXPECT_EQ(ERROR_INVALID_PARAMETER,
            RegCreateKeyExW(key, L"A", 1, nullptr, 0, KEY_READ, nullptr, &created, nullptr));
  EXPECT_EQ(ERROR_BAD_PATHNAME,
            RegCreateKeyExW(key, L"\\A", 0, nullptr, 0, KEY_READ, nullptr, &created, nullptr));
}

TEST_F(RegistryContract, TheMachinesSoftwareHasTwoViews)
{
  ASSERT_NE(nullptr, Create(HKEY_LOCAL_MACHINE, L"Software\\KestrelContract\\N", KEY_READ));
  EXPECT_EQ(ERROR_FILE_NOT_FOUND, Open(HKEY_LOCAL_MACHINE, ContractKey, Read32));
  ASSERT_NE(nullptr, Create(HKEY_LOCAL_MACHINE, L"Software\\KestrelContract\\W", Read32));
  EXPECT_EQ(ERROR_SUCCESS, Open(HKEY_LOCAL_MACHINE, L"software\\KestrelContract\\W", Read32));
  EXPECT_EQ(ERROR_FILE_NOT_FOUND,
            Open(HKEY_LOCAL_MACHINE, L"Software\\KestrelContract\\W", KEY_READ));
}

TEST_F(RegistryContract, The32BitViewIsAKeyOfTheNativeOne)
{
  ASSERT_NE(nullptr, Create(HKEY_LOCAL_MACHINE, L"Software\\KestrelContract\\W", Read32));
  const wchar_t* const path = L"Software\\Wow6432Node\\KestrelContract\\W";
  EXPECT_EQ(ERROR_SUCCESS, Open(HKEY_LOCAL_MACHINE, path, KEY_READ));
  EXPECT_EQ(ERROR_SUCCESS, Open(HKEY_LOCAL_MACHINE, path, Read32));
}

TEST_F(RegistryContract, APathBelowAHandleStaysInTheViewOfTheHandle)
{
  ASSERT_NE(nullptr, Create(HKEY_LOCAL_MACHINE, L"Software\\KestrelContract\\N", KEY_READ));
  ASSERT_NE(nullptr, Create(HKEY_LOCAL_MACHINE, L"Software\\KestrelContract\\W", Read32));
  ASSERT_EQ(ERROR_SUCCESS, Open(HKEY_LOCAL_MACHINE, ContractKey, Read32));
  EXPECT_EQ(ERROR_SUCCESS, Open(opened, L"W", KEY_READ));
  ASSERT_EQ(ERROR_SUCCESS, Open(HKEY_LOCAL_MACHINE, ContractKey, KEY_READ));
  EXPECT_EQ(ERROR_SUCCESS, Open(opened, L"N", Read32));
}

TEST_F(RegistryContract, TheUsersSoftwareHasOneView)
{
  EXPECT_EQ(ERROR_SUCCESS, Open(HKEY_CURRENT_USER, ContractKey, Read32));
}

TEST_F(RegistryContract, TheClassesHaveTwoViews)
{
  const wchar_t* const path = L"CLSID\\{KestrelContract}";
  ASSERT_NE(nullptr, Create(HKEY_CLASSES_ROOT, path, Read32));
  EXPECT_EQ(ERROR_FILE_NOT_FOUND, Open(HKEY_CLASSES_ROOT, path, KEY_READ));
  EXPECT_EQ(ERROR_SUCCESS,
            Open(HKEY_CLASSES_ROOT, L"Wow6432Node\\CLSID\\{KestrelContract}", KEY_READ));
}

TEST_F(RegistryEnumeration, SubkeysEndWithNoMoreItems)
{
  Create(key, L"A", KEY_READ);
  Create(key, L"B", KEY_READ);
  EXPECT_STREQ(L"A", Subkey(key, 0).text);
  EXPECT_STREQ(L"B", Subkey(key, 1).text);
  const NameResult end = Subkey(key, 2);
  EXPECT_EQ(ERROR_NO_MORE_ITEMS, end.status);
  EXPECT_EQ(Poison, end.text[0]);
  EXPECT_EQ(NameResult::BufferCharacters, end.size);
}

TEST_F(RegistryEnumeration, ASubkeysSizeCountsTheTerminatorBeforeAndNotAfter)
{
  Create(key, L"Subkey", KEY_READ);
  const NameResult fits = Subkey(key, 0, 7);
  EXPECT_EQ(ERROR_SUCCESS, fits.status);
  EXPECT_EQ(6u, fits.size);
  EXPECT_STREQ(L"Subkey", fits.text);
  EXPECT_EQ(Poison, fits.text[7]);
  const NameResult tooSmall = Subkey(key, 0, 6);
  EXPECT_EQ(ERROR_MORE_DATA, tooSmall.status);
  EXPECT_EQ(6u, tooSmall.size);
}

TEST_F(RegistryEnumeration, SubkeysNeedTheRightToEnumerate)
{
  Create(key, L"A", KEY_READ);
  ASSERT_EQ(ERROR_SUCCESS, Open(key, nullptr, KEY_QUERY_VALUE));
  EXPECT_EQ(ERROR_ACCESS_DENIED, Subkey(opened, 0).status);
  ASSERT_EQ(ERROR_SUCCESS, Open(key, nullptr, KEY_ENUMERATE_SUB_KEYS));
  EXPECT_EQ(ERROR_SUCCESS, Subkey(opened, 0).status);
  EXPECT_EQ(ERROR_INVALID_HANDLE, Subkey(nullptr, 0).status);
}

TEST_F(RegistryEnumeration, AValueComesWithNameTypeAndData)
{
  Write(key, L"Name", REG_BINARY, "abc", 3);
  const NameResult value = Value(key, 0, 5, 3);
  EXPECT_EQ(ERROR_SUCCESS, value.status);
  EXPECT_STREQ(L"Name", value.text);
  EXPECT_EQ(4u, value.size);
  EXPECT_EQ(static_cast<DWORD>(REG_BINARY), value.type);
  EXPECT_EQ(3u, value.dataSize);
  EXPECT_EQ('c', value.data[2]);
  EXPECT_EQ(0xBD, value.data[3]);
}

TEST_F(RegistryEnumeration, AValueThatDoesNotFitGivesMoreData)
{
  Write(key, L"Name", REG_BINARY, "abc", 3);
  EXPECT_EQ(ERROR_MORE_DATA, Value(key, 0, 4, 8).status);
  const NameResult shortData = Value(key, 0, 5, 2);
  EXPECT_EQ(ERROR_MORE_DATA, shortData.status);
  EXPECT_EQ(3u, shortData.dataSize);
  EXPECT_EQ(0xBD, shortData.data[2]);
}

TEST_F(RegistryEnumeration, ValuesEndWithNoMoreItems)
{
  const NameResult end = Value(key, 0, 5, 8);
  EXPECT_EQ(ERROR_NO_MORE_ITEMS, end.status);
  EXPECT_EQ(5u, end.size);
  EXPECT_EQ(8u, end.dataSize);
  EXPECT_EQ(0xDEADBEEFu, end.type);
}

TEST_F(RegistryEnumeration, ValuesNeedTheRightToQuery)
{
  ASSERT_EQ(ERROR_SUCCESS, Open(key, nullptr, KEY_ENUMERATE_SUB_KEYS));
  EXPECT_EQ(ERROR_ACCESS_DENIED, Value(opened, 0, 5, 8).status);
  EXPECT_EQ(ERROR_INVALID_HANDLE, Value(nullptr, 0, 5, 8).status);
}
