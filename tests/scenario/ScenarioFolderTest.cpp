// That a folder which isn't a whole scenario is refused, and what expectations look like.
#include "tests/scenario/Outcome.h"
#include "tests/scenario/Scenario.h"

#include <gtest/gtest.h>

#include <stdlib.h>

#include <fstream>

namespace {

namespace fs = std::filesystem;

using Lines = std::vector<std::string>;

// A whole scenario in a temporary folder, for a test to damage.
class ScenarioFolder : public testing::Test
{
protected:
  void SetUp() override
  {
    std::string pattern = (fs::temp_directory_path() / "kestrel-scenario-XXXXXX").string();
    ASSERT_NE(mkdtemp(pattern.data()), nullptr);
    folder = pattern;
    Write("behaviour.txt", "A row comes.\n");
    Write("before/QuillBase.sql", "CREATE TABLE Parts ([Id] LONG);\n");
    Write("before/updates/Spring.sql", "");
    Write("after/QuillBase.txt", "Parts\n");
    Write("statements.txt", "");
    Write("traces.txt", "");
  }
  void TearDown() override { fs::remove_all(folder); }

  void Write(const std::string& name, const std::string& text) const
  {
    const fs::path file = folder / name;
    fs::create_directories(file.parent_path());
    std::ofstream(file) << text;
  }
  Scenario Read(bool expectationsMayMiss = false) const
  {
    return ReadScenario(folder, {"QuillBase", "QuillRules"}, expectationsMayMiss);
  }
  Lines FaultsWithSetting(const std::string& setting) const
  {
    Write("behaviour.txt", "A row comes.\n" + setting + "\n");
    return Read().faults;
  }

  fs::path folder;
};

}  // namespace

TEST_F(ScenarioFolder, IsReadWhole)
{
  const Scenario scenario = Read();
  EXPECT_EQ(scenario.faults, Lines());
  EXPECT_EQ(scenario.behaviour, "A row comes.");
  EXPECT_EQ(scenario.databases.at("QuillBase"), Lines{"CREATE TABLE Parts ([Id] LONG);"});
  EXPECT_EQ(scenario.patches.at("Spring"), Lines());
  EXPECT_EQ(scenario.content.at("QuillBase"), "Parts\n");
  EXPECT_EQ(scenario.runs, 1);
}

TEST_F(ScenarioFolder, MayHaveSettings)
{
  Write("behaviour.txt",
        "A row comes.\nlanguage 1031\nabsent QuillRules\nread-only QuillBase\n"
        "locked QuillBase\nruns 2\n");
  const Scenario scenario = Read();
  EXPECT_EQ(scenario.faults, Lines());
  EXPECT_EQ(scenario.language, 1031u);
  EXPECT_EQ(scenario.absent, std::set<std::string>{"QuillRules"});
  EXPECT_EQ(scenario.readOnly, std::set<std::string>{"QuillBase"});
  EXPECT_EQ(scenario.locked, std::set<std::string>{"QuillBase"});
  EXPECT_EQ(scenario.runs, 2);
}

TEST_F(ScenarioFolder, HasNoSettingThatIsNotKnown)
{
  for (const char* setting :
       {"langauge 1031", "runs", "runs two", "runs 2 ", "", " runs 2", "absent", "absent QuillBase",
        "absent QuillBasis", "read-only QuillRules", "locked QuillRules"})
    EXPECT_EQ(FaultsWithSetting(setting).size(), 1u) << setting;
}

TEST_F(ScenarioFolder, LacksNoFile)
{
  for (const char* file :
       {"behaviour.txt", "after/QuillBase.txt", "statements.txt", "traces.txt"}) {
    const fs::path saved = folder / "saved";
    fs::rename(folder / file, saved);
    EXPECT_EQ(Read().faults.size(), 2u) << file;  // the other one is about the saved file
    fs::rename(saved, folder / file);
  }
}

TEST_F(ScenarioFolder, HasNoFileThatIsNotKnown)
{
  for (const char* file : {"notes.txt", "before/QuillBase.txt", "before/updates/Spring.txt",
                           "before/projects/Steel.mdb", "after/QuillRules.txt"}) {
    Write(file, "");
    EXPECT_EQ(Read().faults.size(), 1u) << file;
    fs::remove(folder / file);
  }
}

TEST_F(ScenarioFolder, NamesDatabasesOfTheProductAlone)
{
  Write("before/QuillBasis.sql", "");
  Write("after/QuillBasis.txt", "");
  EXPECT_EQ(Read().faults, Lines{"The product has no database QuillBasis."});
}

TEST_F(ScenarioFolder, NeedsNoExpectationsThatAreAboutToBeWritten)
{
  fs::remove_all(folder / "after");
  fs::remove(folder / "statements.txt");
  fs::remove(folder / "traces.txt");
  EXPECT_EQ(Read(true).faults, Lines());
  RewriteExpectations(Read(true), {{{"QuillBase", "Parts\n  row 1\n"}}, "sent\n", "told\n"});
  const Scenario scenario = Read();
  EXPECT_EQ(scenario.faults, Lines());
  EXPECT_EQ(scenario.content.at("QuillBase"), "Parts\n  row 1\n");
  EXPECT_EQ(scenario.statements + scenario.traces, "sent\ntold\n");
}

TEST_F(ScenarioFolder, IsFoundBesideOthers)
{
  Write("parent/b/behaviour.txt", "");
  Write("parent/a/behaviour.txt", "");
  Write("parent/README.md", "");
  EXPECT_EQ(ScenarioFolders(folder / "parent"),
            (std::vector<fs::path>{folder / "parent" / "a", folder / "parent" / "b"}));
  EXPECT_TRUE(ScenarioFolders(folder / "none").empty());
}

TEST(ScenarioName, IsThatOfTheFolderInOneWord)
{
  EXPECT_EQ(TestNameOf("a/parent/key-of-two-columns"), "KeyOfTwoColumns");
}

TEST(ScenarioSql, EndsStatementsAtTheEndsOfLines)
{
  EXPECT_EQ(SplitSql("-- Parts; all of them.\n\nCREATE TABLE Parts (\n  [Id] LONG);\n"
                     "INSERT INTO Parts VALUES (';\n-- 1');\nDELETE FROM Parts"),
            (Lines{"CREATE TABLE Parts (\n  [Id] LONG);", "INSERT INTO Parts VALUES (';",
                   "DELETE FROM Parts"}));
}

TEST(ScenarioText, StandsOnOneLine)
{
  EXPECT_EQ(OnOneLine("a\nb\r\\c|"), "a\\nb\\r\\\\c|");
  EXPECT_EQ(OnOneLine(std::string(40, 'x')), std::string(40, 'x'));
  EXPECT_EQ(OnOneLine("'" + std::string(41, 'x') + "\n'"), "'x<41 times>\\n'");
  std::string screws;
  for (int i = 0; i < 50; ++i)
    screws += "\U0001F529";
  EXPECT_EQ(OnOneLine(screws + "\u00E9"), "\U0001F529<50 times>\u00E9");
}

TEST(ScenarioText, OfAStatementSaysWhatCameOfIt)
{
  EXPECT_EQ(DescribeStatement("QuillBase", "A\nB", 0), "QuillBase: A\\nB\n");
  EXPECT_EQ(DescribeStatement("QuillBase", "A", 1), "QuillBase: A\n  -> information\n");
  EXPECT_EQ(DescribeStatement("QuillBase", "A", 100), "QuillBase: A\n  -> no data\n");
  EXPECT_EQ(DescribeStatement("QuillBase", "A", -1), "QuillBase: A\n  -> error\n");
  EXPECT_EQ(DescribeStatement("QuillBase", "A", -2), "QuillBase: A\n  -> -2\n");
}
