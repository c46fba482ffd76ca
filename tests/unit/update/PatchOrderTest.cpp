// The patches stand by their versions, the oldest in front.
#include "tests/doubles/FilesDouble.h"
#include "tests/unit/update/UpdateMachine.h"
#include "update/DatabaseUpdateManager.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace {

class PatchOrder : public UpdateMachine
{
protected:
  // The patches are named a.mdb, b.mdb and so on as they are found, and the result is their names'
  // first letters as they are sorted.
  static std::string Order(const std::vector<Version>& found)
  {
    for (size_t i = 0; i < found.size(); ++i)
      AddPatch(std::string(1, static_cast<char>('a' + i)) + ".mdb", found[i]);
    const DatabaseUpdateManager manager;
    std::string order;
    for (const std::string& name : NamesOf(manager.patchDatabases))
      order += name[0];
    for (size_t i = 0; i < found.size(); ++i)
      Files().Remove(std::string(PatchFolder) + "\\" + static_cast<char>('a' + i) + ".mdb");
    return order;
  }

  static std::string OrderOfMajors(const std::vector<int>& found)
  {
    std::vector<Version> versions;
    for (const int major : found)
      versions.push_back({major, 0, 0, 0});
    return Order(versions);
  }
};

struct OrderCase
{
  std::vector<int> found;
  const char* order;
};

}  // namespace

TEST_F(PatchOrder, IsThatOfTheVersionsAndOfTheSearchForEqualOnes)
{
  const OrderCase cases[] = {
      {{}, ""},
      {{5}, "a"},
      {{1, 2}, "ab"},
      {{2, 1}, "ba"},
      {{1, 1}, "ab"},
      {{1, 2, 3}, "abc"},
      {{1, 3, 2}, "acb"},
      {{2, 1, 3}, "bac"},
      {{2, 3, 1}, "cab"},
      {{3, 1, 2}, "bca"},
      {{3, 2, 1}, "cba"},
      {{3, 1, 2, 1}, "bdca"},
      {{2, 1, 2, 1}, "bdac"},
      {{4, 3, 2, 1, 0}, "edcba"},
      {{1, 1, 1, 1, 0}, "eabcd"},
      {{7, 7, 7}, "abc"},
      {{9, 8, 7, 6, 5, 4, 3, 2, 1, 0}, "jihgfedcba"},
  };
  for (const OrderCase& c : cases)
    EXPECT_EQ(OrderOfMajors(c.found), c.order) << testing::PrintToString(c.found);
}

TEST_F(PatchOrder, ComparesTheNumbersOfAVersionOneAfterTheOther)
{
  EXPECT_EQ(Order({{2, 0, 0, 0}, {1, 9, 9, 9}}), "ba");
  EXPECT_EQ(Order({{1, 2, 0, 0}, {1, 1, 9, 9}}), "ba");
  EXPECT_EQ(Order({{1, 1, 2, 0}, {1, 1, 1, 9}}), "ba");
  EXPECT_EQ(Order({{1, 1, 1, 2}, {1, 1, 1, 1}}), "ba");
  EXPECT_EQ(Order({{10, 0, 0, 0}, {9, 0, 0, 0}}), "ba");
}

TEST_F(PatchOrder, APatchWithoutAVersionIsTheOldest)
{
  AddPatch("a.mdb", {0, 0, 0, 1});
  Files().Put(std::string(PatchFolder) + "\\b.mdb", "");
  (void)Odbc().Database(PatchConnection("b.mdb"));
  const DatabaseUpdateManager manager;
  EXPECT_EQ(NamesOf(manager.patchDatabases), (Lines{"b.mdb", "a.mdb"}));
}

TEST_F(PatchOrder, TheLastIsTheNewestWhereverItWasFound)
{
  for (int newest = 0; newest < 6; ++newest) {
    std::vector<int> found(6, 1);
    found[static_cast<size_t>(newest)] = 2;
    EXPECT_EQ(OrderOfMajors(found).back(), 'a' + newest);
  }
}

TEST_F(PatchOrder, IsSortedAndStableForAnyVersions)
{
  std::mt19937 random(20100331);
  for (int round = 0; round < 60; ++round) {
    std::vector<Version> found(2 + random() % 11);
    std::string expected;
    for (Version& version : found) {
      const auto number = [&random] { return static_cast<int>(random() % 3); };
      version = {number(), number(), number(), number()};
      expected += static_cast<char>('a' + expected.size());
    }
    std::stable_sort(expected.begin(), expected.end(), [&found](char left, char right) {
      return found[static_cast<size_t>(left - 'a')] < found[static_cast<size_t>(right - 'a')];
    });
    ASSERT_EQ(Order(found), expected) << "round " << round;
  }
}
