// An array whose step is set to what it can't grow by.
#include "foundation/QulArray.h"

#include <gtest/gtest.h>

TEST(ArrayWithoutBuffer, AnElementThatNoBufferWasMadeForIsCountedAndNotStored)
{
  QulArray<int> numbers;
  numbers.growBy = -1;
  numbers.Append(7);
  EXPECT_EQ(nullptr, numbers.data);
  EXPECT_EQ(1, numbers.count);
  numbers.SetAt(0, 8);
  EXPECT_EQ(nullptr, numbers.data);
  EXPECT_EQ(1, numbers.count);
}
