// The loaders' names for a release that the add-on has none for.
#include "host/DemandLoadRegistration.h"

#include "tests/doubles/PlatformTest.h"
#include "tests/doubles/Text.h"

#include <gtest/gtest.h>

namespace {

class LoaderOfNoRelease : public PlatformTest
{
};

}  // namespace

TEST_F(LoaderOfNoRelease, FileNamesAreComposedWithoutAReleasePart)
{
  const std::string folder = "C:\\Program Files\\Common Files\\Norvane\\";
  wchar_t startup[260];
  wchar_t demand[260];
  wchar_t designer[260];
  EXPECT_EQ(ComposeLoaderFileNames(4, startup, 260, demand, 260, designer, 260, true), 1);
  EXPECT_EQ(Utf8(startup), folder + "QuillStartupLoader64.arx");
  EXPECT_EQ(Utf8(demand), folder + "KFDemandLoadHelper64.arx");
  EXPECT_EQ(Utf8(designer), folder + "ProfDesignDemandLoadHelper64.arx");
}
