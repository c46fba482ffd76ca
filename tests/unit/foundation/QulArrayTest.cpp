// Elements: append, write, count, copies.
#include "foundation/QulArray.h"

#include "tests/unit/foundation/Arrays.h"

#include <gtest/gtest.h>

#include <stddef.h>

#include <type_traits>

TEST(ArrayLayout, HoldsItsFourFieldsInOrder)
{
  EXPECT_EQ(0U, offsetof(IntArray, count));
  EXPECT_EQ(4U, offsetof(IntArray, capacity));
  EXPECT_EQ(8U, offsetof(IntArray, growBy));
  EXPECT_EQ(16U, offsetof(IntArray, data));
  EXPECT_FALSE(std::is_polymorphic_v<IntArray>);
}

TEST(Array, StartsEmptyWithTheStepEight)
{
  const IntArray array;
  EXPECT_EQ(0, array.count);
  EXPECT_EQ(0, array.capacity);
  EXPECT_EQ(8, array.growBy);
  EXPECT_EQ(nullptr, array.data);
}

TEST(ArrayAppend, TheFirstElementAllocatesOneStep)
{
  IntArray array;
  array.Append(7);
  EXPECT_EQ(1, array.count);
  EXPECT_EQ(8, array.capacity);
  EXPECT_EQ(7, array.data[0]);
}

TEST(ArrayAppend, TheNinthElementReallocatesAndTheOthersKeepTheirContent)
{
  StringArray array = ArrayOf("abcdefgh");
  const QulString* const before = array.data;
  array.Append(L"i");
  EXPECT_NE(before, array.data);
  EXPECT_EQ(9, array.count);
  EXPECT_EQ(16, array.capacity);
  EXPECT_EQ("[a][b][c][d][e][f][g][h][i]", Joined(array));
}

TEST(ArrayAppend, TheCapacityGoesUpByOneStepAtATime)
{
  IntArray array;
  for (int count = 1; count <= 40; ++count) {
    array.Append(count);
    EXPECT_EQ(count, array.count);
    EXPECT_EQ((count + 7) / 8 * 8, array.capacity) << count;
  }
}

TEST(ArrayAppend, WithinTheCapacityNothingMoves)
{
  IntArray array;
  array.Append(1);
  const int* const before = array.data;
  FillWithNumbers(array, 7);
  EXPECT_EQ(before, array.data);
  EXPECT_EQ(8, array.capacity);
}

TEST(ArrayAppend, TakesAnElementOfTheSameArrayAcrossAReallocation)
{
  StringArray array = ArrayOf("abcdefgh");
  array.Append(array.data[2]);
  EXPECT_EQ("[a][b][c][d][e][f][g][h][c]", Joined(array));
  EXPECT_EQ(array.data[2].repr, array.data[8].repr);
}

TEST(ArrayAppend, OtherStepsGrowInTheirOwnMultiples)
{
  IntArray array;
  array.growBy = 3;
  FillWithNumbers(array, 4);
  EXPECT_EQ(6, array.capacity);
  array.SetAt(9, 1);
  EXPECT_EQ(12, array.capacity);
}

TEST(ArraySetAt, WithinTheCountChangesTheElementAlone)
{
  StringArray array = ArrayOf("abc");
  const QulString* const before = array.data;
  array.SetAt(1, L"X");
  EXPECT_EQ("[a][X][c]", Joined(array));
  EXPECT_EQ(8, array.capacity);
  EXPECT_EQ(before, array.data);
}

TEST(ArraySetAt, BeyondTheEndLeavesEmptyElementsInTheGap)
{
  StringArray array;
  array.SetAt(20, L"x");
  EXPECT_EQ(21, array.count);
  EXPECT_EQ(24, array.capacity);
  for (int i = 0; i < 20; ++i)
    EXPECT_EQ(QulStringEmptyRepr, array.data[i].repr) << i;
  EXPECT_EQ("x", TextOf(array.data[20]));
}

TEST(ArraySetAt, MakesTheCapacityTheNextMultipleOfTheStepAboveTheIndex)
{
  const struct
  {
    int index;
    int capacity;
  } cases[] = {{0, 8}, {7, 8}, {8, 16}, {15, 16}, {16, 24}, {23, 24}, {24, 32}};
  for (const auto& c : cases) {
    IntArray array;
    array.SetAt(c.index, 1);
    EXPECT_EQ(c.index + 1, array.count);
    EXPECT_EQ(c.capacity, array.capacity) << c.index;
  }
}

TEST(ArraySetAt, AtTheCountAppendsWithoutMoving)
{
  IntArray array;
  FillWithNumbers(array, 3);
  const int* const before = array.data;
  array.SetAt(3, 7);
  EXPECT_EQ(before, array.data);
  EXPECT_EQ(4, array.count);
  EXPECT_EQ(7, array.data[3]);
}

TEST(ArraySetAt, TakesAnElementOfTheSameArrayAcrossAReallocation)
{
  StringArray array = ArrayOf("abcdefgh");
  array.SetAt(20, array.data[7]);
  EXPECT_EQ("h", TextOf(array.data[20]));
  EXPECT_EQ("h", TextOf(array.data[7]));
}

TEST(ArraySetAt, AtANegativeIndexStoresNothingAndEmptiesTheCount)
{
  StringArray array = ArrayOf("abc");
  array.SetAt(-1, L"X");
  EXPECT_EQ(0, array.count);
  EXPECT_EQ(8, array.capacity);
  EXPECT_EQ("a", TextOf(array.data[0]));
}

TEST(ArraySetAt, AtANegativeIndexOfAnArrayWithoutABufferNothingIsAllocated)
{
  IntArray array;
  array.SetAt(-1, 7);
  EXPECT_EQ(0, array.count);
  EXPECT_EQ(nullptr, array.data);
}

TEST(ArraySetCount, RoundsTheCapacityUpToTheStep)
{
  const struct
  {
    int count;
    int capacity;
  } cases[] = {{0, 0}, {1, 8}, {8, 8}, {9, 16}, {16, 16}, {17, 24}};
  for (const auto& c : cases) {
    IntArray array;
    array.SetCount(c.count);
    EXPECT_EQ(c.count, array.count);
    EXPECT_EQ(c.capacity, array.capacity) << c.count;
  }
}

TEST(ArraySetCount, GivesEmptyElements)
{
  QulArray<Row> rows;
  rows.SetCount(9);
  QulCharArray characters;
  characters.SetCount(9);
  QulArray<int*> pointers;
  pointers.SetCount(9);
  for (int i = 0; i < 9; ++i) {
    EXPECT_EQ(QulStringEmptyRepr, rows.data[i].second.repr);
    EXPECT_EQ(0, rows.data[i].flag);
    EXPECT_FALSE(rows.data[i].used);
    EXPECT_EQ(L'\0', characters.data[i]);
    EXPECT_EQ(nullptr, pointers.data[i]);
  }
}

TEST(ArraySetCount, ToLessKeepsBufferAndElements)
{
  StringArray array = ArrayOf("abcdefghi");
  const QulString* const before = array.data;
  array.SetCount(2);
  EXPECT_EQ(16, array.capacity);
  EXPECT_EQ(before, array.data);
  array.SetCount(9);
  EXPECT_EQ("[a][b][c][d][e][f][g][h][i]", Joined(array));
}

TEST(ArrayClear, KeepsTheElementsUntilTheyAreOverwritten)
{
  StringArray array = ArrayOf("abc");
  const QulString* const before = array.data;
  const QulString second(array.data[1]);
  array.Clear();
  EXPECT_EQ(0, array.count);
  EXPECT_EQ(8, array.capacity);
  EXPECT_EQ(2, second.repr->refCount);
  array.Append(L"X");
  EXPECT_EQ(1, array.count);
  EXPECT_EQ(before, array.data);
  EXPECT_EQ("X", TextOf(array.data[0]));
  EXPECT_EQ("b", TextOf(array.data[1]));
}

TEST(ArrayClear, ElementsOutOfUseAreNotTakenAlongByAReallocation)
{
  StringArray array = ArrayOf("abc");
  array.Clear();
  array.Append(L"X");
  array.Reserve(9);
  array.SetCount(3);
  EXPECT_EQ("[X][][]", Joined(array));
}

TEST(ArrayClear, OfAnEmptyArrayDoesNothing)
{
  IntArray array;
  array.Clear();
  EXPECT_EQ(0, array.count);
  EXPECT_EQ(nullptr, array.data);
}

TEST(ArrayCopy, HasTheCountOfItsSourceAsCapacity)
{
  const StringArray source = ArrayOf("abcdefghi");
  const StringArray copy(source);
  EXPECT_EQ(16, source.capacity);
  EXPECT_EQ(9, copy.capacity);
  EXPECT_EQ(9, copy.count);
  EXPECT_NE(source.data, copy.data);
  EXPECT_EQ("[a][b][c][d][e][f][g][h][i]", Joined(copy));
}

TEST(ArrayCopy, SharesTextsAndCopiesFlags)
{
  QulArray<Row> source;
  source.Append(Row{L"a", L"b", 'f', true});
  const QulArray<Row> copy(source);
  EXPECT_EQ(source.data[0].second.repr, copy.data[0].second.repr);
  EXPECT_EQ(2, copy.data[0].second.repr->refCount);
  EXPECT_EQ('f', copy.data[0].flag);
  EXPECT_TRUE(copy.data[0].used);
}

TEST(ArrayCopy, TakesTheStepAlong)
{
  IntArray source;
  source.growBy = 5;
  FillWithNumbers(source, 3);
  IntArray copy(source);
  EXPECT_EQ(5, copy.growBy);
  copy.Append(1);
  EXPECT_EQ(5, copy.capacity);
}

TEST(ArrayCopy, GrowsToAWholeMultipleOfTheStep)
{
  IntArray source;
  FillWithNumbers(source, 9);
  IntArray copy(source);
  copy.Append(1);
  EXPECT_EQ(10, copy.count);
  EXPECT_EQ(16, copy.capacity);
}

TEST(ArrayCopy, OfAnEmptyArrayHasNoBuffer)
{
  IntArray source;
  FillWithNumbers(source, 3);
  source.Clear();
  const IntArray copy(source);
  EXPECT_EQ(nullptr, copy.data);
  EXPECT_EQ(0, copy.capacity);
}

TEST(ArrayCopy, LivesWithoutItsSource)
{
  StringArray* source = new StringArray(ArrayOf("abc"));
  const StringArray copy(*source);
  delete source;
  EXPECT_EQ("[a][b][c]", Joined(copy));
}
