#include "database/UpdateTable.h"

#include "tests/unit/database/DatabaseMachine.h"
#include "tests/unit/foundation/Texts.h"

namespace {

class MatchedTables : public DatabaseMachine
{
protected:
  static Lines Match(const char* pattern, const Lines& tables)
  {
    Target().Tables(tables);
    auto database = OpenTarget();
    QulArray<QulString> matches;
    UpdateTable::MatchTables(Handle(pattern), *database, matches);
    return TextsOf(matches);
  }
};

}  // namespace

TEST_F(MatchedTables, StartWithTheTextInFrontOfTheStar)
{
  EXPECT_EQ(Match("Abc*", {"Abc2", "Ab", "Abc1", "xAbc", "Abc"}), (Lines{"Abc2", "Abc1", "Abc"}));
}

TEST_F(MatchedTables, AreComparedWithoutRegardToCase)
{
  EXPECT_EQ(Match("aBc*", {"ABC1", "abc2"}), (Lines{"ABC1", "abc2"}));
}

TEST_F(MatchedTables, AreNoneForAPatternWithoutAStar)
{
  EXPECT_TRUE(Match("Abc", {"Abc", "Abc1"}).empty());
  EXPECT_TRUE(Match("", {"Abc", ""}).empty());
}

TEST_F(MatchedTables, AreNoneForAPatternThatBeginsWithItsOnlyStar)
{
  EXPECT_TRUE(Match("*", {"Abc", "*"}).empty());
  EXPECT_TRUE(Match("*Abc", {"Abc", "1Abc", "*Abc"}).empty());
}

TEST_F(MatchedTables, AreNotAskedForWithoutAUsableStar)
{
  auto database = OpenTarget();
  QulArray<QulString> matches;
  UpdateTable::MatchTables(L"Abc", *database, matches);
  UpdateTable::MatchTables(L"*Abc", *database, matches);
  EXPECT_TRUE(Diary().empty());
}

TEST_F(MatchedTables, AreThoseOfTheLastStar)
{
  EXPECT_EQ(Match("A*b*", {"A*b1", "Axb1", "A*B2", "A*"}), (Lines{"A*b1", "A*B2"}));
  EXPECT_EQ(Match("**", {"*1", "1"}), (Lines{"*1"}));
  EXPECT_EQ(Match("*A*", {"*A1", "A1"}), (Lines{"*A1"}));
}

TEST_F(MatchedTables, BehindAStarWithTextEndInTheTextInFrontOfIt)
{
  EXPECT_TRUE(Match("Ab*Cd", {"AbXCd", "AbCd", "Cd"}).empty());
  EXPECT_EQ(Match("Ab*Cd", {"AbXCd", "AbXaB", "xAb"}), (Lines{"AbXaB"}));
  EXPECT_EQ(Match("Ab*Cd", {"Ab", "AbAb", "Ab1"}), (Lines{"Ab", "AbAb"}));
}

TEST_F(MatchedTables, BehindAStarWithTextAreLookedForAmongAllIfNoneStartsSo)
{
  EXPECT_EQ(Match("Ab*Cd", {"XAb", "b", "YaB", "XCd"}), (Lines{"XAb", "YaB"}));
}

TEST_F(MatchedTables, BehindAStarWithTextAreNotLookedForAmongAllAfterwards)
{
  EXPECT_TRUE(Match("Ab*Cd", {"Ab1", "XAb"}).empty());
}

TEST_F(MatchedTables, BehindAStarWithTextHaveATailOfThatLength)
{
  EXPECT_TRUE(Match("Ab*C", {"XAb", "AbAb"}).empty());
  EXPECT_TRUE(Match("Ab*Cde", {"XAb", "XYAb"}).empty());
  EXPECT_EQ(Match("A*B", {"XA", "Y"}), (Lines{"XA"}));
}

TEST_F(MatchedTables, BehindAStarWithTextAreNotShorterThanIt)
{
  EXPECT_TRUE(Match("Ab*Cde", {"Ab"}).empty());
  EXPECT_TRUE(Match("Ab*Cdefgh", {"XXAb"}).empty());
}

TEST_F(MatchedTables, AreTheWholeNameAtLeast)
{
  EXPECT_EQ(Match("Abc*", {"Abc"}), (Lines{"Abc"}));
  EXPECT_TRUE(Match("Abc*", {"Ab"}).empty());
}

TEST_F(MatchedTables, OfADatabaseWithoutTablesAreNone)
{
  EXPECT_TRUE(Match("Abc*", {}).empty());
  EXPECT_TRUE(Match("Abc*d", {}).empty());
}

TEST_F(MatchedTables, LeaveTheListOfTheDatabaseAsItIs)
{
  Target().Tables({"Abc1", "Other"});
  auto database = OpenTarget();
  QulArray<QulString> matches;
  UpdateTable::MatchTables(L"Abc*1", *database, matches);
  EXPECT_EQ(TextsOf(database->tableNames), (Lines{"Abc1", "Other"}));
}

TEST_F(MatchedTables, OfAnUnconnectedDatabaseAreNone)
{
  auto database = UnconnectedDatabase();
  QulArray<QulString> matches;
  UpdateTable::MatchTables(L"Abc*", *database, matches);
  EXPECT_EQ(matches.count, 0);
}

TEST_F(MatchedTables, AreAsManyAsStartSo)
{
  Lines tables;
  for (int i = 0; i < 100; ++i)
    tables.push_back("Abc" + std::to_string(i));
  EXPECT_EQ(Match("Abc*", tables), tables);
}
