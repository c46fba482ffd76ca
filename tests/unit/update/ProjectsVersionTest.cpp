// The version table for projects: which patch is newer, and how its rows reach a database.
#include "database/KFProjectsVersionTable.h"
#include "tests/unit/foundation/Texts.h"
#include "tests/unit/update/UpdateMachine.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

struct Pair
{
  const char* attribute;
  const char* value;
};

using Pairs = std::vector<Pair>;

// Writes the pairs straight into the memory of a database, for a driver's rows can hold no empty
// texts there.
void SetRows(QulDatabase& database, const Pairs& pairs)
{
  QulArray<AttributeValue>& rows = database.projectsVersionTable->rows;
  rows.Clear();
  for (const Pair& pair : pairs)
    rows.Append({Handle(pair.attribute), Handle(pair.value)});
}

class ProjectsVersion : public UpdateMachine
{
protected:
  void SetUp() override
  {
    Odbc()
        .Database("DSN=Target")
        .OtherStatements(SQL_SUCCESS)
        .Columns("KFProjectsVersion", {{"Attribute", SQL_WVARCHAR, 255, 0}});
    (void)Odbc().Database("DSN=Patch");
    target = std::make_unique<QulDatabase>(L"DSN=Target", L"QuillProject");
    patch = std::make_unique<QulPatchDatabase>(L"DSN=Patch", L"Patch.mdb");
    begin = Diary().size();
  }

  void TearDown() override
  {
    EXPECT_EQ(Odbc().OpenStatements(), 0);
    target.reset();
    patch.reset();
    UpdateMachine::TearDown();
  }

  bool IsOlder(const Pairs& targetRows, const Pairs& patchRows)
  {
    SetRows(*target, targetRows);
    SetRows(*patch, patchRows);
    return target->IsProjectsVersionOlderThan(*patch);
  }

  bool Write(const Pairs& pairs)
  {
    SetRows(*patch, pairs);
    return target->WriteProjectsVersion(*patch);
  }

  // What the target answers to a statement.
  static void Answer(const std::string& statement, int code)
  {
    Odbc().Database("DSN=Target").Statement(statement, code);
  }

  static std::string Update(const std::string& attribute, const std::string& value)
  {
    return "UPDATE KFProjectsVersion SET [Value]='" + value + "' WHERE [Attribute]='" + attribute +
           "'";
  }

  static std::string Insert(const std::string& attribute, const std::string& value)
  {
    return "INSERT INTO [KFProjectsVersion] ([Attribute],[Value]) VALUES('" + attribute + "','" +
           value + "')";
  }

  std::unique_ptr<QulDatabase> target;
  std::unique_ptr<QulPatchDatabase> patch;
  size_t begin = 0;
};

const char* const Create =
    "CREATE TABLE KFProjectsVersion ([Attribute] varchar(255) PRIMARY KEY "
    "NOT NULL,[Value] varchar(255) NOT NULL)";
const char* const Failed = "trace: Error executeSQL in QuillProject database.";

struct ComparisonCase
{
  const char* what;
  Pairs target;
  Pairs patch;
  bool isOlder;
};

const ComparisonCase Comparisons[] = {
    {"nothing on either side", {}, {}, false},
    {"a patch without rows", {{"A", "1"}}, {}, false},
    {"a target without rows", {}, {{"A", "1"}}, true},
    {"a target without rows and a number of 0", {}, {{"A", "0"}}, true},
    {"a target without rows and letters", {}, {{"A", "abc"}}, true},
    {"a higher number", {{"A", "1"}}, {{"A", "2"}}, true},
    {"the same number", {{"A", "2"}}, {{"A", "2"}}, false},
    {"a lower number", {{"A", "3"}}, {{"A", "2"}}, false},
    {"numbers and not texts", {{"A", "9"}}, {{"A", "10"}}, true},
    {"numbers and not texts, the other way", {{"A", "10"}}, {{"A", "9"}}, false},
    {"the same number in another form", {{"A", "02"}}, {{"A", "2"}}, false},
    {"a name in other letters", {{"grades", "1"}}, {{"GRADES", "1"}}, false},
    {"a name in other letters with a higher number", {{"grades", "1"}}, {{"GRADES", "2"}}, true},
    {"an unknown name", {{"A", "9"}}, {{"B", "1"}}, true},
    {"an unknown name with letters", {{"A", "9"}}, {{"B", "x"}}, true},
    {"an unknown name behind a known one", {{"A", "9"}}, {{"A", "1"}, {"B", "1"}}, true},
    {"a name that begins like a known one", {{"A", "9"}}, {{"AB", "1"}}, true},
    {"one lower and one higher", {{"A", "5"}, {"B", "1"}}, {{"A", "1"}, {"B", "2"}}, true},
    {"all the same", {{"A", "5"}, {"B", "1"}}, {{"B", "1"}, {"A", "5"}}, false},
    {"names that only the target knows", {{"X", "1"}, {"A", "1"}}, {{"A", "1"}}, false},
    {"letters are 0", {{"A", "1"}}, {{"A", "x"}}, false},
    {"letters of the target are 0", {{"A", "x"}}, {{"A", "1"}}, true},
    {"letters on both sides", {{"A", "x"}}, {{"A", "y"}}, false},
    {"negative numbers", {{"A", "-2"}}, {{"A", "-1"}}, true},
    {"letters above a negative number", {{"A", "-2"}}, {{"A", "x"}}, true},
    {"blanks in front and letters behind", {{"A", " 2b"}}, {{"A", " 3c"}}, true},
    {"an empty name in the patch", {{"A", "1"}}, {{"", "9"}}, false},
    {"an empty number in the patch", {{"A", "1"}}, {{"A", ""}, {"B", ""}}, false},
    {"empty pairs in the patch and a target without rows", {}, {{"", "9"}, {"A", ""}}, false},
    {"an empty pair in front of a newer one", {{"A", "1"}}, {{"", ""}, {"A", "2"}}, true},
    {"the target's number is empty", {{"A", ""}}, {{"A", "0"}}, true},
    {"an empty pair of the target in front", {{"A", ""}, {"A", "5"}}, {{"A", "2"}}, false},
    {"only empty pairs in the target", {{"", "1"}}, {{"A", "-5"}}, true},
    {"the first of two pairs of the target counts", {{"A", "5"}, {"A", "1"}}, {{"A", "3"}}, false},
    {"the first of two pairs, the other way", {{"A", "1"}, {"A", "5"}}, {{"A", "3"}}, true},
    {"two pairs of the patch", {{"A", "2"}}, {{"A", "1"}, {"A", "3"}}, true},
};

}  // namespace

TEST_F(ProjectsVersion, IsOlderWhereOneAttributeIsUnknownOrHasALowerNumber)
{
  for (const ComparisonCase& c : Comparisons)
    EXPECT_EQ(IsOlder(c.target, c.patch), c.isOlder) << c.what;
  EXPECT_EQ(Diary().size(), begin);
}

TEST_F(ProjectsVersion, IsComparedWithoutALookAtTheDatabases)
{
  EXPECT_TRUE(IsOlder({{"A", "1"}}, {{"A", "2"}}));
  EXPECT_TRUE(Write({{"A", "2"}}));
  EXPECT_TRUE(target->IsProjectsVersionOlderThan(*patch));
  EXPECT_EQ(target->projectsVersionTable->rows.count, 1);
}

TEST_F(ProjectsVersion, ChangesARowThatIsThere)
{
  EXPECT_TRUE(Write({{"SteelGrades", "3"}, {"BoltSets", "2"}}));
  EXPECT_EQ(Sent(begin),
            (Lines{"Target: " + Update("SteelGrades", "3"), "Target: " + Update("BoltSets", "2")}));
}

TEST_F(ProjectsVersion, ARowThatIsNotThereIsReportedAndAdded)
{
  const std::string update = Update("SteelGrades", "3");
  for (const int code : {SQL_NO_DATA, SQL_ERROR}) {
    Answer(update, code);
    begin = Diary().size();
    EXPECT_TRUE(Write({{"SteelGrades", "3"}, {"BoltSets", "2"}}));
    EXPECT_EQ(Sent(begin), (Lines{"Target: " + update + " -> " + std::to_string(code), Failed,
                                  "trace: " + update, "Target: " + Insert("SteelGrades", "3"),
                                  "Target: " + Update("BoltSets", "2")}));
  }
}

TEST_F(ProjectsVersion, ARowThatCanNotBeAddedIsReportedAndTheNextOnesFollow)
{
  for (const char* attribute : {"A", "B"}) {
    Answer(Update(attribute, "1"), SQL_NO_DATA);
    Answer(Insert(attribute, "1"), attribute[0] == 'A' ? SQL_ERROR : SQL_SUCCESS);
  }
  EXPECT_FALSE(Write({{"A", "1"}, {"B", "1"}, {"C", "1"}}));
  EXPECT_EQ(Sent(begin),
            (Lines{"Target: " + Update("A", "1") + " -> 100", Failed, "trace: " + Update("A", "1"),
                   "Target: " + Insert("A", "1") + " -> -1", Failed, "trace: " + Insert("A", "1"),
                   "Target: " + Update("B", "1") + " -> 100", Failed, "trace: " + Update("B", "1"),
                   "Target: " + Insert("B", "1"), "Target: " + Update("C", "1")}));
}

TEST_F(ProjectsVersion, AnInsertWithoutAnEffectIsAFailureToo)
{
  Odbc().Database("DSN=Target").OtherStatements(SQL_NO_DATA);
  EXPECT_FALSE(Write({{"A", "1"}}));
}

TEST_F(ProjectsVersion, AMissingTableIsMadeAndItsRowsAreAddedAtOnce)
{
  Odbc().Database("DSN=Target").Columns("KFProjectsVersion", {});
  EXPECT_TRUE(Write({{"SteelGrades", "3"}, {"BoltSets", "2"}}));
  EXPECT_EQ(Sent(begin),
            (Lines{std::string("Target: ") + Create, "Target: " + Insert("SteelGrades", "3"),
                   "Target: " + Insert("BoltSets", "2")}));
}

TEST_F(ProjectsVersion, AMissingTableIsMadeForAPatchWithoutRowsToo)
{
  Odbc().Database("DSN=Target").Columns("KFProjectsVersion", {});
  EXPECT_TRUE(Write({}));
  EXPECT_EQ(Sent(begin), (Lines{std::string("Target: ") + Create}));
}

TEST_F(ProjectsVersion, ATableThatCanNotBeMadeIsReportedAndNoRowIsWritten)
{
  for (const int code : {SQL_ERROR, SQL_NO_DATA}) {
    Odbc().Database("DSN=Target").Columns("KFProjectsVersion", {}).Statement(Create, code);
    begin = Diary().size();
    EXPECT_FALSE(Write({{"A", "1"}}));
    EXPECT_EQ(
        Sent(begin),
        (Lines{std::string("Target: ") + Create + " -> " + std::to_string(code), Failed,
               std::string("trace: ") + Create,
               std::string("trace: Unable to create table KFProjectsVersion\nSql:") + Create}));
  }
}

TEST_F(ProjectsVersion, ACatalogueThatBreaksDownLeavesTheTableAsOneThatIsThere)
{
  Odbc().Database("DSN=Target").ColumnRows("KFProjectsVersion", {FetchGives(SQL_ERROR)});
  EXPECT_TRUE(Write({{"A", "1"}}));
  EXPECT_EQ(Sent(begin), (Lines{"Target: " + Update("A", "1")}));
}

TEST_F(ProjectsVersion, TheCatalogueIsAskedOnceAndFirst)
{
  EXPECT_TRUE(Write({{"A", "1"}, {"B", "1"}}));
  const Lines asked = DiaryOf({"SQLColumnsW"});
  ASSERT_EQ(asked.size(), 1u);
  EXPECT_NE(asked[0].find("\"KFProjectsVersion\""), std::string::npos);
  EXPECT_EQ(Diary()[begin + 1], asked[0]);
}

TEST_F(ProjectsVersion, EmptyPairsArePassedOver)
{
  EXPECT_TRUE(Write({{"", "1"}, {"A", ""}, {"", ""}, {"B", "1"}}));
  EXPECT_EQ(Sent(begin), (Lines{"Target: " + Update("B", "1")}));
}

TEST_F(ProjectsVersion, TextsAreWrittenAsTheyStand)
{
  Odbc().Database("DSN=Target").OtherStatements(SQL_NO_DATA);
  EXPECT_FALSE(Write({{"O'Neil [x] %s", "'a' 007 %d"}}));
  const Lines sent = Sent(begin);
  ASSERT_EQ(sent.size(), 6u);
  EXPECT_EQ(sent[0],
            "Target: UPDATE KFProjectsVersion SET [Value]=''a' 007 %d' WHERE "
            "[Attribute]='O'Neil [x] %s' -> 100");
  EXPECT_EQ(sent[3],
            "Target: INSERT INTO [KFProjectsVersion] ([Attribute],[Value]) "
            "VALUES('O'Neil [x] %s',''a' 007 %d') -> 100");
}

TEST_F(ProjectsVersion, ARowThatIsThereTwiceIsWrittenTwice)
{
  EXPECT_TRUE(Write({{"A", "5"}, {"A", "3"}}));
  EXPECT_EQ(Sent(begin), (Lines{"Target: " + Update("A", "5"), "Target: " + Update("A", "3")}));
}
