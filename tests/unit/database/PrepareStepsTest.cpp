#include "database/UpdateTable.h"

#include "tests/doubles/DebugOutputDouble.h"
#include "tests/unit/database/UpdateSteps.h"

namespace {

// A patch and a target, with the tables that each of them has.
class PreparedSteps : public DatabaseMachine
{
protected:
  static UpdateStep Step(const char* source, const char* target, const char* database = "QuillBase")
  {
    return {Handle(database), Handle(source), Handle(target), true, false, true};
  }

  void SetTables(const Lines& patchTables, const Lines& targetTables)
  {
    Patch().Tables(patchTables);
    Target().Tables(targetTables);
  }

  Lines Prepare(const std::vector<UpdateStep>& steps)
  {
    auto patch = OpenPatch();
    auto target = OpenTarget();
    for (const UpdateStep& step : steps)
      patch->updateTable->steps.Append(step);
    const Lines prepared = StepsOf(patch->updateTable->PrepareSteps(*patch, *target));
    EXPECT_EQ(patch->updateTable->steps.count, static_cast<int>(steps.size()));
    return prepared;
  }

  // The pairs of tables that a step is expanded to.
  Lines Expand(const char* source, const char* target)
  {
    auto patch = OpenPatch();
    auto targetDatabase = OpenTarget();
    QulArray<UpdateStep> expanded;
    UpdateTable::ExpandStep(Step(source, target), *patch, *targetDatabase, expanded);
    Lines pairs;
    for (int i = 0; i < expanded.count; ++i) {
      pairs.push_back(TextOf(expanded.data[i].sourceTable) + ">" +
                      TextOf(expanded.data[i].targetTable));
    }
    return pairs;
  }
};

}  // namespace

TEST_F(PreparedSteps, AreThoseOfTheTargetInTheirOrder)
{
  EXPECT_EQ(Prepare({Step("A", "B"), Step("C", "D", "QuillRules"), Step("E", "F")}),
            (Lines{"QuillBase A>B 101", "QuillBase E>F 101"}));
}

TEST_F(PreparedSteps, NameTheTargetInAnyCase)
{
  EXPECT_EQ(Prepare({Step("A", "B", "QUILLBASE")}), (Lines{"QUILLBASE A>B 101"}));
}

TEST_F(PreparedSteps, ForOtherDatabasesAreNone)
{
  EXPECT_TRUE(Prepare({Step("A", "B", "QuillRules"), Step("A", "B", ""), Step("A", "B", "QuillBas"),
                       Step("A", "B", "QuillBase2")})
                  .empty());
  EXPECT_TRUE(DebugTexts().empty());
}

TEST_F(PreparedSteps, OfNoStoredStepsAreNone)
{
  EXPECT_TRUE(Prepare({}).empty());
}

TEST_F(PreparedSteps, ForTheRelationsComeFirst)
{
  EXPECT_EQ(
      Prepare({Step("A", "B"), Step("C", "D"), Step("R", "InfoTableRelations")}),
      (Lines{"QuillBase R>InfoTableRelations 101", "QuillBase A>B 101", "QuillBase C>D 101"}));
}

TEST_F(PreparedSteps, ForTheRelationsStandInReverseOrder)
{
  EXPECT_EQ(
      Prepare({Step("R1", "InfoTableRelations"), Step("A", "B"), Step("R2", "INFOTABLERELATIONS"),
               Step("C", "D"), Step("R3", "InfoTableRelations")}),
      (Lines{"QuillBase R3>InfoTableRelations 101", "QuillBase R2>INFOTABLERELATIONS 101",
             "QuillBase R1>InfoTableRelations 101", "QuillBase A>B 101", "QuillBase C>D 101"}));
}

TEST_F(PreparedSteps, ForTheRelationsAreNotExpanded)
{
  SetTables({"Rel1", "Rel2"}, {});
  EXPECT_EQ(Prepare({Step("Rel*", "InfoTableRelations")}),
            (Lines{"QuillBase Rel*>InfoTableRelations 101"}));
}

TEST_F(PreparedSteps, ForTheRelationsOfAnotherDatabaseAreNone)
{
  EXPECT_TRUE(Prepare({Step("R", "InfoTableRelations", "QuillRules")}).empty());
}

TEST_F(PreparedSteps, FromTheRelationsOrByAPatternForThemKeepTheirPlace)
{
  SetTables({}, {"InfoTableRelations"});
  EXPECT_EQ(
      Prepare({Step("A", "B"), Step("InfoTableRelations", "C"), Step("R", "InfoTableRelation*")}),
      (Lines{"QuillBase A>B 101", "QuillBase InfoTableRelations>C 101",
             "QuillBase R>InfoTableRelations 101"}));
}

TEST_F(PreparedSteps, AreMoreThanAnArrayGrowsByAtOnce)
{
  std::vector<UpdateStep> steps;
  Lines expected;
  for (int i = 0; i < 20; ++i) {
    steps.push_back(Step(std::to_string(i).c_str(), "InfoTableRelations"));
    expected.insert(expected.begin(), "QuillBase " + std::to_string(i) + ">InfoTableRelations 101");
  }
  EXPECT_EQ(Prepare(steps), expected);
}

TEST_F(PreparedSteps, AreExpandedInTheirPlace)
{
  SetTables({"Abc1", "Abc2"}, {});
  EXPECT_EQ(Prepare({Step("A", "B"), Step("Abc*", "T"), Step("C", "D")}),
            (Lines{"QuillBase A>B 101", "QuillBase Abc1>T 101", "QuillBase Abc2>T 101",
                   "QuillBase C>D 101"}));
}

TEST_F(PreparedSteps, AreTheSameAtASecondCall)
{
  auto patch = OpenPatch();
  auto target = OpenTarget();
  patch->updateTable->steps.Append(Step("R", "InfoTableRelations"));
  patch->updateTable->steps.Append(Step("A", "B"));
  const Lines first = StepsOf(patch->updateTable->PrepareSteps(*patch, *target));
  EXPECT_EQ(first.size(), 2u);
  EXPECT_EQ(StepsOf(patch->updateTable->PrepareSteps(*patch, *target)), first);
}

TEST_F(PreparedSteps, ComeFromTheStoredRows)
{
  Patch().Query(
      "SELECT * FROM UpdateTable ORDER BY [ID]",
      {{1, "QuillBase", "A", "B", 0, 0, 1}, {2, "quillbase", "R", "infotablerelations", 1, 0, 0}});
  auto patch = OpenPatch();
  auto target = OpenTarget();
  EXPECT_EQ(StepsOf(patch->updateTable->PrepareSteps(*patch, *target)),
            (Lines{"quillbase R>infotablerelations 100", "QuillBase A>B 001"}));
}

TEST_F(PreparedSteps, PairEachSourceWithEachTarget)
{
  SetTables({"Abc1", "Other", "abc2", "ABC3"}, {"Xyz1", "Xy", "xyz2"});
  EXPECT_EQ(Expand("Abc*", "Xyz*"),
            (Lines{"Abc1>Xyz1", "Abc1>xyz2", "abc2>Xyz1", "abc2>xyz2", "ABC3>Xyz1", "ABC3>xyz2"}));
}

TEST_F(PreparedSteps, KeepAPlainNameBesideAPattern)
{
  SetTables({"Abc1", "Abc2"}, {"Xyz1", "Xyz2"});
  EXPECT_EQ(Expand("Abc*", "T"), (Lines{"Abc1>T", "Abc2>T"}));
  EXPECT_EQ(Expand("S", "Xyz*"), (Lines{"S>Xyz1", "S>Xyz2"}));
  EXPECT_EQ(Expand("S", "T"), (Lines{"S>T"}));
}

TEST_F(PreparedSteps, KeepAPatternThatMatchesNothing)
{
  SetTables({"Abc1"}, {"Xyz1", "Xyz2"});
  EXPECT_EQ(Expand("No*", "T"), (Lines{"No*>T"}));
  EXPECT_EQ(Expand("No*", "None*"), (Lines{"No*>None*"}));
  EXPECT_EQ(Expand("No*", "Xyz*"), (Lines{"No*>Xyz1", "No*>Xyz2"}));
  EXPECT_EQ(Expand("Abc*", "None*"), (Lines{"Abc1>None*"}));
}

TEST_F(PreparedSteps, TakeAStarInFrontLiterally)
{
  SetTables({"Abc", "1Abc"}, {"Abc", "1Abc"});
  EXPECT_EQ(Expand("*Abc", "*Abc"), (Lines{"*Abc>*Abc"}));
  EXPECT_EQ(Expand("*", "*"), (Lines{"*>*"}));
}

TEST_F(PreparedSteps, LookForSourcesInThePatchAndForTargetsInTheTarget)
{
  SetTables({"Xyz1"}, {"Abc1"});
  EXPECT_EQ(Expand("Abc*", "Xyz*"), (Lines{"Abc*>Xyz*"}));
}

TEST_F(PreparedSteps, KeepTheFlagsAndTheDatabaseOfTheirRow)
{
  SetTables({"Abc1", "Abc2"}, {});
  for (int flags = 0; flags < 8; ++flags) {
    UpdateStep step = Step("Abc*", "T");
    step.deleteRows = (flags & 4) != 0;
    step.recreate = (flags & 2) != 0;
    step.createIfMissing = (flags & 1) != 0;
    const std::string digits = StepText(step).substr(StepText(step).size() - 3);
    EXPECT_EQ(Prepare({step}), (Lines{"QuillBase Abc1>T " + digits, "QuillBase Abc2>T " + digits}));
  }
}

TEST_F(PreparedSteps, StandBehindWhatIsInTheArray)
{
  auto patch = OpenPatch();
  auto target = OpenTarget();
  QulArray<UpdateStep> expanded;
  expanded.Append(Step("before", "before"));
  UpdateTable::ExpandStep(Step("S", "T"), *patch, *target, expanded);
  EXPECT_EQ(StepsOf(expanded), (Lines{"QuillBase before>before 101", "QuillBase S>T 101"}));
}
