// What the contract tests can't show of the files double: the diary, the ordered failures, the
// misuses and the test's side.
#include "tests/doubles/FilesDouble.h"
#include "tests/doubles/PlatformTest.h"
#include "tests/doubles/Text.h"

#include <windows.h>

#include <stdio.h>

#include <filesystem>

namespace {

using Lines = std::vector<std::string>;

class FilesDoubleTest : public PlatformTest
{
protected:
  // The diary's lines of a whole search.
  Lines SearchAll(const char* pattern)
  {
    ClearDiary();
    WIN32_FIND_DATAW found;
    const HANDLE search = FindFirstFileW(WideText(pattern).c_str(), &found);
    while (search != INVALID_HANDLE_VALUE && FindNextFileW(search, &found) != FALSE) {
    }
    (void)FindClose(search);
    return Diary();
  }

  FILE* Open(const char* path)
  {
    FILE* file = nullptr;
    (void)_wfopen_s(&file, WideText(path).c_str(), L"r, ccs=UNICODE");
    return file;
  }
};

}  // namespace

TEST_F(FilesDoubleTest, TheDiaryTellsASearch)
{
  Files().Put("C:\\Data\\b.mdb", "");
  Files().Put("C:\\Data\\a.mdb", "");
  EXPECT_EQ(SearchAll("C:\\Data\\*.mdb"),
            Lines({"FindFirstFileW(\"C:\\Data\\*.mdb\") = find#1 \"a.mdb\"",
                   "FindNextFileW(find#1) = 1 \"b.mdb\"", "FindNextFileW(find#1) = 0",
                   "FindClose(find#1) = 1"}));
  EXPECT_EQ(SearchAll("C:\\None\\*.mdb"),
            Lines({"FindFirstFileW(\"C:\\None\\*.mdb\") = invalid", "FindClose(invalid) = 0"}));
}

TEST_F(FilesDoubleTest, TheDiaryTellsWhatIsOpened)
{
  Files().Put("C:\\a.txt", "a");
  (void)fclose(Open("c:\\A.TXT"));
  EXPECT_EQ(nullptr, Open("C:\\b.txt"));
  EXPECT_EQ(Diary(), Lines({"_wfopen_s(\"c:\\A.TXT\", \"r, ccs=UNICODE\") = 0",
                            "_wfopen_s(\"C:\\b.txt\", \"r, ccs=UNICODE\") = 2"}));
}

TEST_F(FilesDoubleTest, ASearchGoesInTheOrderThatTheTestSets)
{
  for (const char* name : {"C:\\a.mdb", "C:\\b.mdb", "C:\\c.mdb"})
    Files().Put(name, "");
  Files().SetSearchOrder({"C.mdb", "b.mdb"});
  EXPECT_EQ(SearchAll("C:\\*.mdb"),
            Lines({"FindFirstFileW(\"C:\\*.mdb\") = find#1 \"c.mdb\"",
                   "FindNextFileW(find#1) = 1 \"b.mdb\"", "FindNextFileW(find#1) = 1 \"a.mdb\"",
                   "FindNextFileW(find#1) = 0", "FindClose(find#1) = 1"}));
}

TEST_F(FilesDoubleTest, APathWithoutDriveLiesOnC)
{
  Files().Put("\\DatabaseUpdate\\a.mdb", "x");
  EXPECT_EQ("x", Files().Read("C:\\databaseupdate\\A.mdb"));
}

TEST_F(FilesDoubleTest, FilesAreRealOnesInAPrefix)
{
  Files().Put("C:\\Data\\a.mdb", "x");
  EXPECT_EQ(Files().Prefix() + "/dosdevices/c:/Data/a.mdb", Files().UnixPath("c:\\DATA\\A.MDB"));
  EXPECT_TRUE(std::filesystem::exists(Files().UnixPath("C:\\Data\\a.mdb")));
  Files().Remove("C:\\Data");
  EXPECT_FALSE(Files().Exists("C:\\Data\\a.mdb"));
}

TEST_F(FilesDoubleTest, AResetRemovesAllFiles)
{
  Files().Put("C:\\a.mdb", "");
  const std::string prefix = Files().Prefix();
  ResetPlatform();
  EXPECT_FALSE(std::filesystem::exists(prefix));
  EXPECT_FALSE(Files().Exists("C:\\a.mdb"));
}

TEST_F(FilesDoubleTest, SearchesAndStreamsThatAreLeftOpenCanBeCounted)
{
  Files().Put("C:\\a.mdb", "");
  WIN32_FIND_DATAW found;
  const HANDLE search = FindFirstFileW(L"C:\\*.mdb", &found);
  FILE* file = Open("C:\\a.mdb");
  EXPECT_EQ(1, Files().OpenSearches());
  EXPECT_EQ(1, Files().OpenStreams());
  (void)FindClose(search);
  (void)fclose(file);
  EXPECT_EQ(0, Files().OpenSearches());
  EXPECT_EQ(0, Files().OpenStreams());
}

TEST_F(FilesDoubleTest, EachCallCanFail)
{
  Files().Put("C:\\a.mdb", "");
  WIN32_FIND_DATAW found;
  FailCall("FindFirstFileW", 1, ERROR_ACCESS_DENIED);
  EXPECT_EQ(INVALID_HANDLE_VALUE, FindFirstFileW(L"C:\\*.mdb", &found));
  EXPECT_EQ(static_cast<DWORD>(ERROR_ACCESS_DENIED), GetLastError());
  const HANDLE search = FindFirstFileW(L"C:\\*.mdb", &found);
  FailCall("FindNextFileW", 1, ERROR_NOT_READY);
  EXPECT_EQ(FALSE, FindNextFileW(search, &found));
  EXPECT_EQ(static_cast<DWORD>(ERROR_NOT_READY), GetLastError());
  FailCall("FindClose", 1);
  EXPECT_EQ(FALSE, FindClose(search));
  EXPECT_EQ(1, Files().OpenSearches());
  FailCall("_wfopen_s", 1, EACCES);
  EXPECT_EQ(nullptr, Open("C:\\a.mdb"));
}

TEST_F(FilesDoubleTest, AClosedOrUnknownSearchIsAMisuse)
{
  Files().Put("C:\\a.mdb", "");
  WIN32_FIND_DATAW found;
  const HANDLE search = FindFirstFileW(L"C:\\*.mdb", &found);
  (void)FindClose(search);
  EXPECT_EQ(FALSE, FindClose(search));
  EXPECT_EQ(FALSE, FindNextFileW(nullptr, &found));
  EXPECT_EQ(TakeMisuses(),
            Lines({"FindClose was given a search handle that is none, or closed.",
                   "FindNextFileW was given a search handle that is none, or closed."}));
}

TEST_F(FilesDoubleTest, APatternOfAnotherFormEndsTheTest)
{
  WIN32_FIND_DATAW found;
  EXPECT_DEATH((void)FindFirstFileW(L"C:\\a*.mdb", &found), "only \\*\\.extension is known");
}

TEST_F(FilesDoubleTest, AnotherModeEndsTheTest)
{
  FILE* file = nullptr;
  EXPECT_DEATH((void)_wfopen_s(&file, L"C:\\a", L"w"), "_wfopen_s was given the mode \"w\"");
}
