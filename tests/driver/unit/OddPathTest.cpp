// Paths and prefixes as they are seldom met.

#include "driver/WinePath.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "tests/driver/WinePrefix.h"

namespace {

class OddPath : public testing::Test
{
protected:
  static std::string Found(std::string_view path)
  {
    const std::string found = FindFile(path);
    return found.empty() ? "" : std::filesystem::canonical(found).string();
  }

  WinePrefix prefix;
  const std::string plan = std::filesystem::canonical(prefix.OnD("plan.mdb"));
};

// A variable of the environment, set back at the end.
class Variable
{
public:
  Variable(const char* variable, const char* value) : name(variable)
  {
    const char* const old = getenv(name);
    existed = old != nullptr;
    before = existed ? old : "";
    if (value == nullptr)
      unsetenv(name);
    else
      setenv(name, value, 1);
  }
  ~Variable()
  {
    if (existed)
      setenv(name, before.c_str(), 1);
    else
      unsetenv(name);
  }
  Variable(const Variable&) = delete;
  Variable& operator=(const Variable&) = delete;

private:
  const char* name;
  bool existed;
  std::string before;
};

}  // namespace

TEST_F(OddPath, WithoutAPrefixDrivesAreInTheHomeFolder)
{
  std::filesystem::create_directories(prefix.folder.File("home/.wine"));
  std::filesystem::create_directory_symlink(prefix.folder.File("dosdevices"),
                                            prefix.folder.File("home/.wine/dosdevices"));
  const Variable home("HOME", prefix.folder.File("home").c_str());
  for (const char* noPrefix : {static_cast<const char*>(nullptr), ""}) {
    const Variable usual("WINEPREFIX", noPrefix);
    EXPECT_EQ(Found("D:\\plan.mdb"), plan);
  }
}

TEST_F(OddPath, WithoutAHomeFolderThereAreNoDrives)
{
  const Variable usual("WINEPREFIX", nullptr);
  const Variable home("HOME", nullptr);
  EXPECT_EQ(Found("D:\\plan.mdb"), "");
}

TEST_F(OddPath, DriveMayBeTheRootOfTheMachine)
{
  std::filesystem::create_directory_symlink("/", prefix.folder.File("dosdevices/z:"));
  const CurrentFolder current("/");
  EXPECT_EQ(Found(plan), plan);
  std::string windows = plan;
  std::replace(windows.begin(), windows.end(), '/', '\\');
  EXPECT_EQ(Found(windows), plan);
  EXPECT_EQ(Found("Z:" + windows), plan);
}

TEST_F(OddPath, OfSeveralNamesTheFirstIsTaken)
{
  for (const char* name :
       {"pLan2.mdb", "PLAN2.mdb", "plaN2.mdb", "Plan2.mdb", "plan2.MDB", "PLan2.mdb", "plAn2.mdb"})
    WriteFile(prefix.OnD(name), "");
  EXPECT_EQ(Found("D:\\plan2.mdb"), prefix.OnD("PLAN2.mdb"));
}

TEST_F(OddPath, NetworkPathsMayHaveTheLongMarkAndBothSlashes)
{
  std::filesystem::create_directories(prefix.folder.File("dosdevices/unc/server/share"));
  WriteFile(prefix.folder.File("dosdevices/unc/server/share/plan.mdb"), "");
  const std::string file = prefix.folder.File("dosdevices/unc/server/share/plan.mdb");
  EXPECT_EQ(Found("\\\\?\\UNC\\server\\share\\plan.mdb"), file);
  EXPECT_EQ(Found("\\/server/share/plan.mdb"), file);
}

TEST_F(OddPath, OfOneCharacterOrOfNoneIsRelative)
{
  const CurrentFolder current(prefix.OnD(""));
  WriteFile(prefix.OnD("x"), "");
  EXPECT_EQ(Found("x"), prefix.OnD("x"));
  EXPECT_EQ(Found("\\"), std::filesystem::canonical(prefix.OnD("")));
  EXPECT_EQ(Found("\\\\?\\"), std::filesystem::canonical(prefix.OnD("")));
}

TEST_F(OddPath, WithAColonBehindWhatIsNoLetterNamesAFile)
{
  const CurrentFolder current(prefix.OnD(""));
  for (const char* name : {"1:x", "{:x", "[:x"}) {
    WriteFile(prefix.OnD(name), "");
    EXPECT_EQ(Found(name), prefix.OnD(name)) << name;
  }
}

TEST_F(OddPath, WithAZeroInItNamesNothing)
{
  EXPECT_EQ(Found(std::string_view("D:\\plan.mdb\0x", 13)), "");
}
