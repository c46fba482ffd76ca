// Runs every folder beside this file through the update, on real SQL.
#include "tests/doubles/LiveOdbc.h"
#include "tests/doubles/PlatformTest.h"
#include "tests/scenario/NativeMachine.h"

#include <stdlib.h>

namespace {

std::vector<std::filesystem::path> AllFolders()
{
  return ScenarioFolders(KESTREL_SCENARIO_FOLDER);
}

bool ExpectationsAreRewritten()
{
  const char* const wish = getenv("KESTREL_REWRITE_SCENARIOS");
  return wish != nullptr && std::string(wish) == "1";
}

std::string TestName(const testing::TestParamInfo<std::filesystem::path>& info)
{
  return TestNameOf(info.param);
}

class ScenarioTest : public PlatformTest, public testing::WithParamInterface<std::filesystem::path>
{
};

}  // namespace

TEST_P(ScenarioTest, IsAsTheFolderSays)
{
  const bool rewrites = ExpectationsAreRewritten();
  const Scenario scenario = ReadScenario(GetParam(), ProductNames(), rewrites);
  for (const std::string& fault : scenario.faults)
    ADD_FAILURE() << fault;
  ASSERT_TRUE(scenario.faults.empty());
  SCOPED_TRACE(scenario.behaviour);
  ASSERT_TRUE(UseLiveOdbc());
  NativeMachine machine(scenario);
  ASSERT_NO_FATAL_FAILURE(machine.LayOut());
  const Outcome outcome = machine.Run();
  if (rewrites) {
    RewriteExpectations(scenario, outcome);
    FAIL() << "The expectations were written anew: review them, and unset the variable.";
  }
  EXPECT_EQ(scenario.statements, outcome.statements);
  EXPECT_EQ(scenario.traces, outcome.traces);
  for (const auto& [name, text] : outcome.content)
    EXPECT_EQ(scenario.content.at(name), text) << name;
}

INSTANTIATE_TEST_SUITE_P(Folders, ScenarioTest, testing::ValuesIn(AllFolders()), TestName);
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(ScenarioTest);

TEST(ScenarioFoldersTest, AreFound)
{
  EXPECT_FALSE(AllFolders().empty()) << "No scenario in " KESTREL_SCENARIO_FOLDER;
}
