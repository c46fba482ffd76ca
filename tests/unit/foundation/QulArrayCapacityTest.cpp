// Capacity: reservation, release, and what happens to the elements on the way.
#include "foundation/QulArray.h"

#include "tests/unit/foundation/Arrays.h"

#include <gtest/gtest.h>

#include <new>

namespace {

// Knows how many of its kind are alive, and can be made to run out of memory.
struct Counted
{
  Counted() { ++alive; }
  Counted(const Counted& source) : value(source.value) { ++alive; }
  Counted& operator=(const Counted&) = default;
  ~Counted() { --alive; }

  static void* operator new[](size_t size)
  {
    if (memoryIsOut)
      throw std::bad_alloc();
    ++arrays;
    return ::operator new[](size);
  }
  static void operator delete[](void* memory)
  {
    --arrays;
    ::operator delete[](memory);
  }

  int value = 0;

  static inline int alive = 0;
  static inline int arrays = 0;
  static inline bool memoryIsOut = false;
};

class CountedElements : public testing::Test
{
protected:
  CountedElements()
  {
    Counted::alive = 0;
    Counted::arrays = 0;
  }

  void TearDown() override
  {
    Counted::memoryIsOut = false;
    EXPECT_EQ(0, Counted::alive);
    EXPECT_EQ(0, Counted::arrays);
  }
};

}  // namespace

TEST(ArrayReserve, IgnoresAShrinkByLessThanAQuarter)
{
  const struct
  {
    int capacity;
    int wanted;
    int result;
  } cases[] = {{8, 8, 8},  {8, 7, 8},    {8, 6, 6},    {8, 1, 1},   {8, 9, 9},      {8, 0, 0},
               {8, -1, 8}, {16, 13, 16}, {16, 12, 12}, {10, 8, 10}, {10, 7, 7},     {3, 3, 3},
               {3, 2, 2},  {1, 1, 1},    {0, -1, 0},   {0, 5, 5},   {100, 76, 100}, {100, 75, 75}};
  for (const auto& c : cases) {
    IntArray array;
    array.Reserve(c.capacity);
    const int* const before = array.data;
    array.Reserve(c.wanted);
    EXPECT_EQ(c.result, array.capacity) << c.capacity << " to " << c.wanted;
    EXPECT_EQ(c.result == c.capacity, before == array.data) << c.capacity << " to " << c.wanted;
  }
}

TEST(ArrayReserve, AnIgnoredShrinkChangesNothing)
{
  IntArray array;
  FillWithNumbers(array, 8);
  const int* const before = array.data;
  array.Reserve(7);
  EXPECT_EQ(8, array.count);
  EXPECT_EQ(8, array.capacity);
  EXPECT_EQ(before, array.data);
}

TEST(ArrayReserve, AShrinkCutsTheCount)
{
  StringArray array = ArrayOf("abcdefgh");
  array.Reserve(6);
  EXPECT_EQ(6, array.capacity);
  EXPECT_EQ("[a][b][c][d][e][f]", Joined(array));
}

TEST(ArrayReserve, AShrinkKeepsACountThatFits)
{
  StringArray array = ArrayOf("ab");
  array.Reserve(4);
  EXPECT_EQ(4, array.capacity);
  EXPECT_EQ("[a][b]", Joined(array));
  EXPECT_EQ(QulStringEmptyRepr, array.data[3].repr);
}

TEST(ArrayReserve, GrowthIsExactAndKeepsTheElements)
{
  StringArray array = ArrayOf("abc");
  array.Reserve(11);
  EXPECT_EQ(11, array.capacity);
  EXPECT_EQ("[a][b][c]", Joined(array));
}

TEST(ArrayReserve, OfZeroFreesEverything)
{
  StringArray array = ArrayOf("abc");
  const QulString keeper(array.data[0]);
  array.Reserve(0);
  EXPECT_EQ(0, array.count);
  EXPECT_EQ(0, array.capacity);
  EXPECT_EQ(nullptr, array.data);
  EXPECT_EQ(1, keeper.repr->refCount);
}

TEST(ArrayReserve, OfZeroOrLessOnAnEmptyArrayDoesNothing)
{
  StringArray array;
  array.Reserve(0);
  array.Reserve(-8);
  EXPECT_EQ(0, array.count);
  EXPECT_EQ(0, array.capacity);
  EXPECT_EQ(nullptr, array.data);
}

TEST(ArrayReserve, OfANegativeCapacityHasNoEffect)
{
  StringArray array = ArrayOf("abc");
  array.Reserve(-1);
  EXPECT_EQ(8, array.capacity);
  EXPECT_EQ("[a][b][c]", Joined(array));
}

TEST(ArrayReserve, SharesTheTextsThatItMoves)
{
  StringArray array = ArrayOf("a");
  const QulString text(array.data[0]);
  array.Reserve(100);
  EXPECT_EQ(text.repr, array.data[0].repr);
  EXPECT_EQ(2, text.repr->refCount);
}

TEST(ArrayFree, GivesBackBufferAndTextsAndTheArrayCanBeUsedAgain)
{
  StringArray array = ArrayOf("abc");
  const QulString keeper(array.data[2]);
  array.Free();
  array.Free();
  EXPECT_EQ(nullptr, array.data);
  EXPECT_EQ(0, array.capacity);
  EXPECT_EQ(0, array.count);
  EXPECT_EQ(1, keeper.repr->refCount);
  array.Append(L"x");
  EXPECT_EQ("[x]", Joined(array));
}

TEST(ArrayFree, ReleasesElementsThatClearLeft)
{
  StringArray array = ArrayOf("abc");
  const QulString keeper(array.data[2]);
  array.Clear();
  array.Free();
  EXPECT_EQ(1, keeper.repr->refCount);
}

TEST(ArrayFree, LeavesWhatPointersPointTo)
{
  const QulString text(L"abc");
  {
    QulArray<const QulString*> pointers;
    pointers.Append(&text);
    pointers.Free();
    pointers.Append(&text);
  }
  EXPECT_EQ("abc", TextOf(text));
  EXPECT_EQ(1, text.repr->refCount);
}

TEST_F(CountedElements, AreAllConstructedUpToTheCapacityAtAnyTime)
{
  QulArray<Counted> array;
  array.Append(Counted());
  EXPECT_EQ(8, Counted::alive);
  array.SetAt(8, Counted());
  EXPECT_EQ(16, Counted::alive);
  array.Clear();
  EXPECT_EQ(16, Counted::alive);
  array.Reserve(3);
  EXPECT_EQ(3, Counted::alive);
  array.Free();
  EXPECT_EQ(0, Counted::alive);
  EXPECT_EQ(0, Counted::arrays);
}

TEST_F(CountedElements, GoWithTheArray)
{
  {
    QulArray<Counted> array;
    array.SetCount(9);
    EXPECT_EQ(16, Counted::alive);
    EXPECT_EQ(1, Counted::arrays);
  }
  EXPECT_EQ(0, Counted::alive);
}

TEST_F(CountedElements, LeaveTheArrayAsItWasWhenMemoryRunsOut)
{
  QulArray<Counted> array;
  array.SetCount(8);
  array.data[7].value = 42;
  const Counted* const before = array.data;
  Counted::memoryIsOut = true;
  EXPECT_THROW(array.Append(Counted()), std::bad_alloc);
  EXPECT_THROW(array.Reserve(100), std::bad_alloc);
  EXPECT_THROW(array.Reserve(6), std::bad_alloc);
  EXPECT_THROW(array.SetCount(9), std::bad_alloc);
  EXPECT_EQ(8, array.count);
  EXPECT_EQ(8, array.capacity);
  EXPECT_EQ(before, array.data);
  EXPECT_EQ(42, array.data[7].value);
  EXPECT_EQ(8, Counted::alive);
}
