#include "launcher/ProductModules.h"

#include "tests/doubles/Text.h"

#include <gtest/gtest.h>

#include <iterator>

TEST(ProductModules, TheAddOnHasOneModule)
{
  EXPECT_EQ(ProductModuleCount, 1);
  EXPECT_EQ(std::size(ProductModules), 1u);
}

TEST(ProductModules, TheModuleIsNamedAsTheProfile)
{
  EXPECT_EQ(Utf8(ProductModules[0].Text()), "Kestrelforge");
}
