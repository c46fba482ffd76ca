// What a patch does with one database: the steps that it has for it, one after the other.
#include "database/UpdateTable.h"
#include "tests/unit/foundation/Texts.h"
#include "tests/unit/update/UpdateMachine.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

class ApplyPatch : public UpdateMachine
{
protected:
  void SetUp() override { Odbc().Database("DSN=Target").OtherStatements(SQL_SUCCESS); }

  void TearDown() override
  {
    EXPECT_EQ(Odbc().OpenStatements(), 0);
    target.reset();
    patch.reset();
    UpdateMachine::TearDown();
  }

  void Open(const OdbcRows& steps)
  {
    Odbc().Database("DSN=Patch").Query("SELECT * FROM UpdateTable ORDER BY [ID]", steps);
    target = std::make_unique<QulDatabase>(L"DSN=Target", L"QuillBase");
    patch = std::make_unique<QulPatchDatabase>(L"DSN=Patch", L"Patch.mdb");
  }

  // What was sent for it.
  Lines Apply()
  {
    const size_t begin = Diary().size();
    patch->ApplyPatch(target.get());
    EXPECT_EQ(patch->targetDatabase, nullptr);
    return Sent(begin);
  }

  static OdbcRow Step(const std::string& database, const std::string& source,
                      const std::string& targetTable = "T")
  {
    return {1, database, source, targetTable, 0, 0, 0};
  }

  static std::string MissingSource(const std::string& table)
  {
    return "trace: Source table " + table + " not found in patch database";
  }

  std::unique_ptr<QulDatabase> target;
  std::unique_ptr<QulPatchDatabase> patch;
};

}  // namespace

TEST_F(ApplyPatch, DoesNothingWithoutATarget)
{
  Open({Step("QuillBase", "S")});
  const size_t begin = Diary().size();
  patch->ApplyPatch(nullptr);
  EXPECT_EQ(Diary().size(), begin);
  EXPECT_EQ(patch->targetDatabase, nullptr);
}

TEST_F(ApplyPatch, WithoutStepsForTheTargetDoesNothing)
{
  Open({Step("QuillRules", "S"), Step("QuillBas", "S"), Step("QuillBase2", "S")});
  const size_t begin = Diary().size();
  EXPECT_EQ(Apply(), Lines());
  EXPECT_EQ(Diary().size(), begin);
}

TEST_F(ApplyPatch, TakesTheStepsOfTheTargetInTheirOrder)
{
  Open({Step("QuillBase", "First"), Step("QuillRules", "Other"), Step("QUILLbase", "Second"),
        Step("QuillBase", "Third")});
  EXPECT_EQ(Apply(),
            (Lines{MissingSource("First"), MissingSource("Second"), MissingSource("Third")}));
}

TEST_F(ApplyPatch, TakesTheKeysOfAllTablesFirstAndThoseStepsBackwards)
{
  Open({Step("QuillBase", "First"), Step("QuillBase", "Keys1", "InfoTableRelations"),
        Step("QuillBase", "Keys2", "infotablerelations")});
  EXPECT_EQ(Apply(),
            (Lines{MissingSource("Keys2"), MissingSource("Keys1"), MissingSource("First")}));
}

TEST_F(ApplyPatch, TakesEachTableOfAPattern)
{
  Odbc().Database("DSN=Patch").Tables({"SteelA", "Other", "SteelB"});
  Odbc().Database("DSN=Target").Tables({"PartA", "PartB"});
  Open({Step("QuillBase", "Steel*", "Part*")});
  const size_t begin = Diary().size();
  EXPECT_EQ(Apply(), (Lines{MissingSource("SteelA"), MissingSource("SteelA"),
                            MissingSource("SteelB"), MissingSource("SteelB")}));
  EXPECT_GT(Diary().size(), begin);
  // The lists of tables are asked for once and hold a statement each to the end.
  EXPECT_EQ(Odbc().OpenStatements(), 2);
  target.reset();
  patch.reset();
}

TEST_F(ApplyPatch, WorksOnTheDatabaseThatItWasGiven)
{
  Odbc().Database("DSN=Patch").Columns("S", {{"A", SQL_INTEGER, 10}});
  Open({Step("QuillBase", "S")});
  EXPECT_EQ(Apply(), Lines{"trace: Target table T not found in database QuillBase"});
}

TEST_F(ApplyPatch, GoesOnToTheEndWhateverFails)
{
  Odbc()
      .Database("DSN=Patch")
      .Columns("S", {{"A", SQL_INTEGER, 10}})
      .Columns("Bad", {{"A", SQL_CHAR, 10}})
      .Table("S", {{1}});
  Odbc().Database("DSN=Target").OtherStatements(SQL_ERROR);
  Open({Step("QuillBase", "None"),
        {2, "QuillBase", "Bad", "New", 0, 1, 0},
        Step("QuillBase", "S", "None"),
        {3, "QuillBase", "S", "New", 0, 0, 1},
        Step("QuillBase", "Last")});
  const Lines sent = Apply();
  EXPECT_EQ(sent.front(), MissingSource("None"));
  EXPECT_EQ(sent.back(), MissingSource("Last"));
  int created = 0;
  for (const std::string& line : sent)
    created += line.starts_with("Target: CREATE TABLE New") ? 1 : 0;
  EXPECT_EQ(created, 2);
}

TEST_F(ApplyPatch, LeavesItsStepsForTheNextTarget)
{
  Open({Step("QuillBase", "First"), Step("QuillBase", "Second")});
  const Lines once = Apply();
  EXPECT_EQ(Apply(), once);
  EXPECT_EQ(patch->updateTable->steps.count, 2);
}
