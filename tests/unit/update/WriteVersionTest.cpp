// A patch's version on its way into a database.
#include "database/KFVersionTable.h"
#include "tests/unit/foundation/Texts.h"
#include "tests/unit/update/UpdateMachine.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

class WriteVersion : public UpdateMachine
{
protected:
  void SetUp() override
  {
    Odbc().Database("DSN=Target").OtherStatements(SQL_SUCCESS);
    Odbc()
        .Database("DSN=Patch")
        .Table("KFVersion", {{"MajorNumber", "10"},
                             {"MinorNumber", "1"},
                             {"CommSPNumber", "3"},
                             {"BuildNumber", "640"},
                             {"CommMajorVersion", "2010"},
                             {"CommMinorVersion", "2"}});
  }

  void TearDown() override
  {
    target.reset();
    patch.reset();
    EXPECT_EQ(Odbc().OpenEnvironments(), 0);
    UpdateMachine::TearDown();
  }

  // Opens both and writes the version. Sent are then the statements of that alone.
  bool Write()
  {
    target = std::make_unique<QulDatabase>(L"DSN=Target", L"QuillBase");
    patch = std::make_unique<QulPatchDatabase>(L"DSN=Patch", L"Patch.mdb");
    begin = Diary().size();
    return target->WriteVersion(*patch);
  }

  static std::string Update(const std::string& attribute, const std::string& value)
  {
    return "Target: UPDATE KFVersion SET [Value]='" + value + "' WHERE [Attribute]='" + attribute +
           "'";
  }

  static Lines AllUpdates()
  {
    return {Update("CommMajorVersion", "2010"), Update("CommMinorVersion", "2"),
            Update("CommSPNumber", "3"),        Update("BuildNumber", "640"),
            Update("MajorNumber", "10"),        Update("MinorNumber", "1")};
  }

  std::unique_ptr<QulDatabase> target;
  std::unique_ptr<QulPatchDatabase> patch;
  size_t begin = 0;
};

}  // namespace

TEST_F(WriteVersion, ChangesSixRowsInThisOrder)
{
  EXPECT_TRUE(Write());
  EXPECT_EQ(Sent(begin), AllUpdates());
}

TEST_F(WriteVersion, TakesAStatementOfItsOwnForEachRow)
{
  EXPECT_TRUE(Write());
  const Lines calls(Diary().begin() + static_cast<std::ptrdiff_t>(begin), Diary().end());
  ASSERT_EQ(calls.size(), 18u);
  for (size_t i = 0; i < calls.size(); i += 3) {
    EXPECT_TRUE(calls[i].starts_with("SQLAllocHandle(STMT, dbc#1) = 0")) << calls[i];
    EXPECT_TRUE(calls[i + 1].starts_with("SQLExecDirectW(")) << calls[i + 1];
    EXPECT_TRUE(calls[i + 2].starts_with("SQLFreeHandle(STMT, ")) << calls[i + 2];
  }
  EXPECT_EQ(Odbc().OpenStatements(), 0);
}

TEST_F(WriteVersion, SucceedsAlsoWithInformation)
{
  Odbc().Database("DSN=Target").OtherStatements(SQL_SUCCESS_WITH_INFO);
  EXPECT_TRUE(Write());
  EXPECT_EQ(DiaryOf({"OutputDebugStringW"}), Lines());
}

TEST_F(WriteVersion, GoesOnAfterAnyRowThatFailedAndSaysSo)
{
  for (size_t failing = 0; failing < 6; ++failing) {
    for (const int code : {SQL_ERROR, SQL_NO_DATA, SQL_INVALID_HANDLE, SQL_STILL_EXECUTING}) {
      target.reset();
      patch.reset();
      ResetPlatform();
      SetUp();
      Lines expected = AllUpdates();
      const std::string statement = expected[failing].substr(8);
      Odbc().Database("DSN=Target").Statement(statement, code);
      expected[failing] += " -> " + std::to_string(code);
      expected.insert(expected.begin() + static_cast<std::ptrdiff_t>(failing) + 1,
                      {"trace: Error executeSQL in QuillBase database.", "trace: " + statement});
      EXPECT_FALSE(Write());
      EXPECT_EQ(Sent(begin), expected);
    }
  }
}

TEST_F(WriteVersion, FailsWhereNoRowIsThereAndAddsNone)
{
  Odbc().Database("DSN=Target").OtherStatements(SQL_NO_DATA);
  EXPECT_FALSE(Write());
  EXPECT_EQ(DiaryOf({"SQLExecDirectW"}).size(), 3u + 4u + 6u);
  EXPECT_EQ(Traces().size(), 12u);
}

TEST_F(WriteVersion, OfAPatchWithoutNumbersWritesZeros)
{
  Odbc()
      .Database("DSN=Patch")
      .Table("KFVersion", {{"MajorNumber", "10a"},
                           {"MinorNumber", "-1"},
                           {"CommSPNumber", "x"},
                           {"BuildNumber", " 6"},
                           {"CommMajorVersion", "1.5"}});
  EXPECT_TRUE(Write());
  EXPECT_EQ(Sent(begin), (Lines{Update("CommMajorVersion", "0"), Update("CommMinorVersion", "0"),
                                Update("CommSPNumber", "0"), Update("BuildNumber", "0"),
                                Update("MajorNumber", "0"), Update("MinorNumber", "0")}));
}

TEST_F(WriteVersion, WritesTheNumbersAndNotTheTexts)
{
  Odbc()
      .Database("DSN=Patch")
      .Table("KFVersion", {{"MajorNumber", "007"},
                           {"MinorNumber", "2147483647"},
                           {"CommSPNumber", " -3 beta"},
                           {"BuildNumber", "00"},
                           {"CommMajorVersion", "0100"},
                           {"CommMinorVersion", "1"}});
  EXPECT_TRUE(Write());
  EXPECT_EQ(Sent(begin), (Lines{Update("CommMajorVersion", "100"), Update("CommMinorVersion", "1"),
                                Update("CommSPNumber", "-3"), Update("BuildNumber", "0"),
                                Update("MajorNumber", "7"), Update("MinorNumber", "2147483647")}));
}

TEST_F(WriteVersion, LeavesTheNumbersThatWereReadAsTheyWere)
{
  Odbc()
      .Database("DSN=Target")
      .Table("KFVersion", {{"MajorNumber", "9"}, {"MinorNumber", "8"}, {"CommSPNumber", "7"}});
  EXPECT_TRUE(Write());
  EXPECT_EQ(target->GetMajorNumber(), 9);
  EXPECT_EQ(target->GetMinorNumber(), 8);
  EXPECT_EQ(target->GetCommSPNumber(), 7);
  EXPECT_EQ(target->versionTable->rows.count, 3);
  EXPECT_TRUE(target->IsOlderThan(patch.get()));
}
