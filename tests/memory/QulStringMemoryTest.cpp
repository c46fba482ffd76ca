#include "foundation/QulString.h"
#include "tests/memory/AllocationLog.h"

#include <gtest/gtest.h>

#include <string.h>

#include <limits>
#include <new>

namespace {

bool FreedBytesAreZero(size_t bytes)
{
  for (size_t i = 0; i < bytes; ++i) {
    if (FreedByte(i) != 0)
      return false;
  }
  return true;
}

void Watch(const QulString& text)
{
  WatchArray(text.Text(), (wcslen(text.Text()) + 1) * sizeof(wchar_t));
}

char* NewNarrowCopy(const char* text)
{
  char* copy = new char[strlen(text) + 1];
  memcpy(copy, text, strlen(text) + 1);
  return copy;
}

}  // namespace

TEST(Scrub, TheTextIsZeroWhenTheLastHandleGoes)
{
  {
    QulString text(L"PWD=secret");
    Watch(text);
  }
  ASSERT_TRUE(WatchedArrayWasFreed());
  EXPECT_TRUE(FreedBytesAreZero(11 * sizeof(wchar_t)));
}

TEST(Scrub, TheTextStaysWhileAnotherHandleSharesIt)
{
  QulString keeper;
  {
    QulString text(L"PWD=secret");
    Watch(text);
    keeper = text;
  }
  EXPECT_FALSE(WatchedArrayWasFreed());
  EXPECT_STREQ(L"PWD=secret", keeper.Text());
}

TEST(Scrub, AnAssignedHandleScrubsWhatItLetsGo)
{
  QulString text(L"PWD=secret");
  Watch(text);
  text.Assign(L"x");
  ASSERT_TRUE(WatchedArrayWasFreed());
  EXPECT_TRUE(FreedBytesAreZero(11 * sizeof(wchar_t)));
}

TEST(Scrub, ANarrowCopyIsZeroWhenItsHandleGoes)
{
  {
    QulString text(L"secret");
    text.narrow = NewNarrowCopy("secret");
    WatchArray(text.narrow, 7);
  }
  ASSERT_TRUE(WatchedArrayWasFreed());
  EXPECT_TRUE(FreedBytesAreZero(7));
}

TEST(Scrub, ANarrowCopyIsZeroedAndDroppedWhenItsHandleGetsAnotherText)
{
  QulString text(L"secret");
  text.narrow = NewNarrowCopy("secret");
  WatchArray(text.narrow, 7);
  text.Assign(QulString(L"other"));
  ASSERT_TRUE(WatchedArrayWasFreed());
  EXPECT_TRUE(FreedBytesAreZero(7));
  EXPECT_EQ(nullptr, text.narrow);
}

TEST(Scrub, AHandleThatAlreadySharesTheTextKeepsItsNarrowCopy)
{
  const QulString source(L"secret");
  QulString text(source);
  text.narrow = NewNarrowCopy("secret");
  text.Assign(source);
  EXPECT_STREQ("secret", text.narrow);
  EXPECT_EQ(2, source.repr->refCount);
}

TEST(EmptyStrings, AreMadeWithoutAnAllocation)
{
  const size_t before = AllocationCount();
  {
    const QulString plain;
    const QulString fromNull(static_cast<const wchar_t*>(nullptr));
    const QulString fromEmpty(L"");
    const QulString fromNarrowNull(static_cast<const char*>(nullptr));
    const QulString fromNarrowEmpty("");
    EXPECT_EQ(QulStringEmptyRepr, fromNull.repr);
  }
  EXPECT_EQ(before, AllocationCount());
}

TEST(Copies, OfAHandleAreMadeWithoutAnAllocation)
{
  const QulString text(L"abc");
  const size_t before = AllocationCount();
  const QulString copy(text);
  const QulString whole = text.Left(3);
  EXPECT_EQ(before, AllocationCount());
  EXPECT_EQ(text.repr, whole.repr);
}

TEST(Pieces, OfNoCharactersPassThroughATemporaryArrayAllTheSame)
{
  const QulString text(L"abc");
  const size_t before = AllocationCount();
  const QulString left = text.Left(0);
  const QulString right = text.Right(0);
  EXPECT_EQ(before + 2, AllocationCount());
  EXPECT_EQ(QulStringEmptyRepr, left.repr);
  EXPECT_EQ(QulStringEmptyRepr, right.repr);
}

TEST(Pieces, OfACountBelowMinusOneAreMoreThanMemoryGives)
{
  const QulString text(L"abc");
  for (const int count : {-2, -3, -1000000, std::numeric_limits<int>::min()}) {
    QulString target(L"kept");
    EXPECT_THROW((void)text.Mid(1, count), std::bad_alloc) << count;
    EXPECT_THROW((void)target.SubString(text, 1, count), std::bad_alloc) << count;
    EXPECT_STREQ(L"kept", target.Text());
  }
}

TEST(OutOfMemory, LeavesAHandleThatWasBeingAssignedEmpty)
{
  QulString text(L"before");
  FailNextAllocation();
  EXPECT_THROW(text.Assign(L"after"), std::bad_alloc);
  EXPECT_EQ(QulStringEmptyRepr, text.repr);
}

TEST(OutOfMemory, LeavesTheOldTextWhereTheNewOneIsComposedFirst)
{
  QulString text(L"before");
  const QulString tail(L" and after");
  FailNextAllocation();
  EXPECT_THROW(text.Append(tail), std::bad_alloc);
  EXPECT_STREQ(L"before", text.Text());
}
