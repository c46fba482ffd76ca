// How tests order failures, and hear of calls.
#include "tests/doubles/Diary.h"

#include "tests/doubles/FilesDouble.h"
#include "tests/doubles/OdbcDouble.h"
#include "tests/doubles/PlatformTest.h"

#include <gtest/gtest.h>

#include <errno.h>
#include <stdio.h>

namespace {

class FailingCalls : public PlatformTest
{
protected:
  static FILE* OpenFile()
  {
    Files().Put("C:\\a.txt", "text");
    FILE* file = nullptr;
    EXPECT_EQ(_wfopen_s(&file, L"C:\\a.txt", L"r, ccs=UNICODE"), 0);
    return file;
  }
};

}  // namespace

TEST_F(FailingCalls, ForGoodMeansTheCallAndAllThatFollow)
{
  FailCallsFrom("CloseHandle", 2, ERROR_INVALID_HANDLE);
  EXPECT_TRUE(CloseHandle(GetCurrentProcess()));
  EXPECT_FALSE(CloseHandle(GetCurrentProcess()));
  EXPECT_FALSE(CloseHandle(GetCurrentProcess()));
}

TEST_F(FailingCalls, ForGoodAndNeverReachedIsAMisuse)
{
  FailCallsFrom("CloseHandle", 2, ERROR_INVALID_HANDLE);
  EXPECT_TRUE(CloseHandle(GetCurrentProcess()));
  EXPECT_EQ(TakeMisuses().size(), 1u);
}

TEST_F(FailingCalls, AWatcherMayFailTheCallThatItIsToldOf)
{
  int calls = 0;
  WatchCalls([&calls](const char* function) {
    ++calls;
    if (calls == 2)
      FailCall(function, 1, ERROR_INVALID_HANDLE);
  });
  EXPECT_TRUE(CloseHandle(GetCurrentProcess()));
  EXPECT_FALSE(CloseHandle(GetCurrentProcess()));
  EXPECT_TRUE(CloseHandle(GetCurrentProcess()));
  EXPECT_EQ(calls, 3);
}

TEST_F(FailingCalls, AnInfoComesWithASuccessAlone)
{
  SQLHANDLE environment = SQL_NULL_HANDLE;
  FailOdbcCall("SQLAllocHandle", 1, SQL_ERROR);
  FailOdbcCall("SQLAllocHandle with info", 1, SQL_SUCCESS_WITH_INFO);
  EXPECT_EQ(SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &environment), SQL_ERROR);
  EXPECT_EQ(SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &environment), SQL_SUCCESS_WITH_INFO);
  EXPECT_EQ(SQLFreeHandle(SQL_HANDLE_ENV, environment), SQL_SUCCESS);
}

TEST_F(FailingCalls, AFileThatCanNotBeReadDeliversNothing)
{
  FILE* file = OpenFile();
  char text[4] = {};
  FailCall("fread", 1);
  EXPECT_EQ(fread(text, 1, sizeof(text), file), 0u);
  EXPECT_EQ(fread(text, 1, sizeof(text), file), 4u);
  EXPECT_EQ(fclose(file), 0);
}

TEST_F(FailingCalls, APlaceThatCanNotBeSoughtOrToldIsMinusOne)
{
  FILE* file = OpenFile();
  FailCall("fseek", 1);
  FailCall("ftell", 1);
  EXPECT_EQ(fseek(file, 0, SEEK_END), -1);
  EXPECT_EQ(ftell(file), -1);
  EXPECT_EQ(ftell(file), 0);
  EXPECT_EQ(fclose(file), 0);
}

TEST_F(FailingCalls, AFileThatCanNotBeClosedIsGoneAllTheSame)
{
  FILE* file = OpenFile();
  FailCall("fclose", 1);
  EXPECT_EQ(fclose(file), EOF);
  EXPECT_EQ(Files().OpenStreams(), 0);
}
