// Linked twice, with the folders' objects in either order: the order of the static objects must not
// come from the link.
#include "database/DatabaseNames.h"
#include "foundation/QulString.h"
#include "launcher/ProductModules.h"
#include "tests/memory/AllocationLog.h"

#include <gtest/gtest.h>

TEST(StaticObjects, NameTablesAreReadyBeforeTheScratchBuffers)
{
  const int wideScratch = AllocationPosition(QulWideScratch);
  for (const QulString& name : {ProductModules[0], DatabaseNames[0], DatabaseNames[16]}) {
    const int nameTable = AllocationPosition(name.Text());
    ASSERT_GT(nameTable, 0);
    EXPECT_LT(nameTable, wideScratch);
  }
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

TEST(StaticObjects, TheNameTablesHoldTheirNames)
{
  EXPECT_STREQ(L"Kestrelforge", ProductModules[0].Text());
  EXPECT_STREQ(L"QuillRules", DatabaseNames[0].Text());
  EXPECT_STREQ(L"QuillGratings", DatabaseNames[DatabaseCount - 1].Text());
}
