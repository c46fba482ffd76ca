// Linked twice, with the folders' objects in either order: the order of the static objects must not
// come from the link.
#include "foundation/QulString.h"
#include "launcher/ProductModules.h"
#include "tests/memory/AllocationLog.h"

#include <gtest/gtest.h>

TEST(StaticObjects, NameTablesAreReadyBeforeTheScratchBuffers)
{
  const int nameTable = AllocationPosition(ProductModules[0].Text());
  const int wideScratch = AllocationPosition(QulWideScratch);
  ASSERT_GT(nameTable, 0);
  EXPECT_LT(nameTable, wideScratch);
}

TEST(StaticObjects, TheWideScratchComesBeforeTheNarrowOneAndThatBeforeTheEmptyString)
{
  const int wideScratch = AllocationPosition(QulWideScratch);
  const int narrowScratch = AllocationPosition(QulNarrowScratch);
  const int emptyString = AllocationPosition(QulStringEmptyRepr->text);
  ASSERT_GT(wideScratch, 0);
  EXPECT_LT(wideScratch, narrowScratch);
  EXPECT_LT(narrowScratch, emptyString);
}

TEST(StaticObjects, TheNameTableHoldsTheModuleName)
{
  EXPECT_STREQ(L"Kestrelforge", ProductModules[0].Text());
}
