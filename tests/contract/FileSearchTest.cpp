// FindFirstFileW, FindNextFileW and FindClose.
#include "tests/contract/ContractTest.h"

#include <string.h>
#include <wchar.h>

#include <vector>

namespace {

const wchar_t Poison = static_cast<wchar_t>(0xBDBD);

std::string NameIn(const WIN32_FIND_DATAW& found)
{
  std::string name;
  for (const wchar_t* p = found.cFileName; *p != L'\0'; ++p)
    name += *p < 0x80 ? static_cast<char>(*p) : '?';
  return name;
}

class FileSearch : public ContractTest
{
protected:
  FileSearch() { memset(&found, 0xBD, sizeof(found)); }

  HANDLE Begin(const wchar_t* pattern)
  {
    SetLastError(0xDEAD);
    return FindFirstFileW(pattern, &found);
  }

  // All names, in the order of the search.
  std::vector<std::string> NamesFor(const wchar_t* pattern)
  {
    std::vector<std::string> names;
    const HANDLE search = Begin(pattern);
    if (search == INVALID_HANDLE_VALUE)
      return names;
    do {
      names.push_back(NameIn(found));
    } while (FindNextFileW(search, &found) != FALSE);
    EXPECT_EQ(static_cast<DWORD>(ERROR_NO_MORE_FILES), GetLastError());
    EXPECT_NE(FALSE, FindClose(search));
    return names;
  }

  WIN32_FIND_DATAW found;
};

using Names = std::vector<std::string>;

}  // namespace

TEST_F(FileSearch, FindsFilesByTheirExtensionWithoutRegardToCase)
{
  for (const char* name : {"b.mdb", "A.MDB", "c.md", "d.mdb.bak", "mdb", "x.mdb.mdb"})
    PutFile(name, "");
  EXPECT_EQ(NamesFor(L"C:\\KestrelContract\\*.mdb"), Names({"A.MDB", "b.mdb", "x.mdb.mdb"}));
  EXPECT_EQ(NamesFor(L"c:\\KESTRELCONTRACT\\*.MDB"), Names({"A.MDB", "b.mdb", "x.mdb.mdb"}));
}

TEST_F(FileSearch, AnExtensionOfThreeCharactersFindsLongerOnesThatBeginWithIt)
{
  for (const char* name : {"a.mdbx", "b.c.mdbold", "c.mdb"})
    PutFile(name, "");
  EXPECT_EQ(NamesFor(L"C:\\KestrelContract\\*.mdb"), Names({"a.mdbx", "b.c.mdbold", "c.mdb"}));
}

TEST_F(FileSearch, FindsFoldersAndMarksThemAsSuch)
{
  MakeFolder("folder.mdb");
  PutFile("file.mdb", "");
  const HANDLE search = Begin(L"C:\\KestrelContract\\*.mdb");
  ASSERT_NE(INVALID_HANDLE_VALUE, search);
  EXPECT_EQ(0u, found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY);
  ASSERT_NE(FALSE, FindNextFileW(search, &found));
  EXPECT_STREQ(L"folder.mdb", found.cFileName);
  EXPECT_NE(0u, found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY);
  EXPECT_NE(FALSE, FindClose(search));
}

TEST_F(FileSearch, GoesByTheAlphabetOfCapitals)
{
  for (const char* name : {"_u.mdb", "Z9.mdb", "b10.mdb", "b2.mdb", "B-1.mdb", "b.mdb", "a^.mdb",
                           "aa.mdb", "a a.mdb", ".mdb"})
    PutFile(name, "");
  EXPECT_EQ(NamesFor(L"C:\\KestrelContract\\*.mdb"),
            Names({".mdb", "a a.mdb", "aa.mdb", "a^.mdb", "B-1.mdb", "b.mdb", "b10.mdb", "b2.mdb",
                   "Z9.mdb", "_u.mdb"}));
}

TEST_F(FileSearch, NamesBeyondAsciiComeAsTheyAre)
{
  PutFile("\xC3\xA9\xE2\x82\xAC.mdb", "");
  const HANDLE search = Begin(L"C:\\KestrelContract\\*.mdb");
  ASSERT_NE(INVALID_HANDLE_VALUE, search);
  EXPECT_STREQ(L"\x00E9\x20AC.mdb", found.cFileName);
  EXPECT_NE(FALSE, FindClose(search));
}

TEST_F(FileSearch, AFolderWithoutMatchGivesAnInvalidHandleAndLeavesTheRecordAlone)
{
  PutFile("a.txt", "");
  EXPECT_EQ(INVALID_HANDLE_VALUE, Begin(L"C:\\KestrelContract\\*.mdb"));
  EXPECT_EQ(static_cast<DWORD>(ERROR_FILE_NOT_FOUND), GetLastError());
  EXPECT_EQ(Poison, found.cFileName[0]);
}

TEST_F(FileSearch, AMissingFolderGivesAnInvalidHandle)
{
  EXPECT_EQ(INVALID_HANDLE_VALUE, Begin(L"C:\\KestrelContract\\*.mdb"));
  EXPECT_EQ(static_cast<DWORD>(ERROR_PATH_NOT_FOUND), GetLastError());
  EXPECT_EQ(INVALID_HANDLE_VALUE, Begin(L"Q:\\KestrelContract\\*.mdb"));
  EXPECT_EQ(static_cast<DWORD>(ERROR_PATH_NOT_FOUND), GetLastError());
}

TEST_F(FileSearch, DoubledAndForwardSlashesServeToo)
{
  PutFile("a.mdb", "");
  EXPECT_EQ(NamesFor(L"C:\\KestrelContract\\\\*.mdb"), Names({"a.mdb"}));
  EXPECT_EQ(NamesFor(L"C:/KestrelContract/*.mdb"), Names({"a.mdb"}));
}

TEST_F(FileSearch, AnInvalidHandleCanBeNeitherContinuedNorClosed)
{
  EXPECT_EQ(FALSE, FindNextFileW(INVALID_HANDLE_VALUE, &found));
  EXPECT_EQ(static_cast<DWORD>(ERROR_INVALID_HANDLE), GetLastError());
  EXPECT_EQ(FALSE, FindClose(INVALID_HANDLE_VALUE));
  EXPECT_EQ(static_cast<DWORD>(ERROR_INVALID_HANDLE), GetLastError());
}
