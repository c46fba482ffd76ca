#include "driver/WinePath.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/driver/WinePrefix.h"

namespace {

class FindFileTest : public testing::Test
{
protected:
  // What is found, without links; empty if nothing is.
  static std::string Found(const std::string& path)
  {
    const std::string found = FindFile(path);
    return found.empty() ? "" : std::filesystem::canonical(found).string();
  }

  WinePrefix prefix;
  const std::string bolts = std::filesystem::canonical(prefix.OnC("Data/Products/Bolts.mdb"));
  const std::string plan = std::filesystem::canonical(prefix.OnD("plan.mdb"));
};

}  // namespace

TEST_F(FindFileTest, DriveAndBothKindsOfSlash)
{
  EXPECT_EQ(Found("C:\\Data\\Products\\Bolts.mdb"), bolts);
  EXPECT_EQ(Found("C:/Data/Products/Bolts.mdb"), bolts);
  EXPECT_EQ(Found("c:\\Data/Products\\Bolts.mdb"), bolts);
  EXPECT_EQ(Found("D:\\plan.mdb"), plan);
}

TEST_F(FindFileTest, RepeatedSlashesAndDotsAreOfNoWeight)
{
  EXPECT_EQ(Found("C:\\\\Data\\\\Products\\.\\Bolts.mdb"), bolts);
  EXPECT_EQ(Found("C:\\Data\\Products\\..\\Products\\Bolts.mdb"), bolts);
}

TEST_F(FindFileTest, NamesMatchWithoutRegardToCaseIfThereIsNoExactOne)
{
  EXPECT_EQ(Found("C:\\DATA\\Products\\BOLTS.MDB"), bolts);
  WriteFile(prefix.OnC("Data/Products/BOLTS.mdb"), "");
  EXPECT_EQ(Found("C:\\Data\\Products\\Bolts.mdb"), bolts);
  EXPECT_EQ(Found("C:\\Data\\Products\\BOLTS.mdb"), prefix.OnC("Data/Products/BOLTS.mdb"));
}

TEST_F(FindFileTest, NamesBeyondAsciiMatchWithoutRegardToCase)
{
  WriteFile(prefix.OnC("Größe.mdb"), "");
  EXPECT_EQ(Found("C:\\GRÖßE.MDB"), prefix.OnC("Größe.mdb"));
}

TEST_F(FindFileTest, LongPathMarkIsOfNoWeight)
{
  EXPECT_EQ(Found("\\\\?\\C:\\Data\\Products\\Bolts.mdb"), bolts);
}

TEST_F(FindFileTest, PathWithoutADriveIsOfTheDriveOfTheCurrentFolder)
{
  {
    const CurrentFolder current(prefix.OnC("Data"));
    EXPECT_EQ(Found("\\Data\\Products\\Bolts.mdb"), bolts);
  }
  const CurrentFolder current(prefix.OnD(""));
  EXPECT_EQ(Found("\\plan.mdb"), plan);
}

TEST_F(FindFileTest, PathWithoutADriveIsOfDriveCElsewhere)
{
  const CurrentFolder current("/");
  EXPECT_EQ(Found("\\Data\\Products\\Bolts.mdb"), bolts);
}

TEST_F(FindFileTest, RelativePathStartsInTheCurrentFolder)
{
  const CurrentFolder current(prefix.OnC("Data"));
  EXPECT_EQ(Found("Products\\Bolts.mdb"), bolts);
  EXPECT_EQ(Found("Products/bolts.MDB"), bolts);
}

TEST_F(FindFileTest, PathOfThisMachineIsTakenAsItIs)
{
  EXPECT_EQ(Found(bolts), bolts);
  EXPECT_EQ(Found(prefix.OnC("Data/Products/BOLTS.MDB")), "");
}

TEST_F(FindFileTest, FindsNothingWhereNothingIs)
{
  EXPECT_EQ(Found(""), "");
  EXPECT_EQ(Found("C:\\Data\\Products\\absent.mdb"), "");
  EXPECT_EQ(Found("C:\\absent\\Bolts.mdb"), "");
  EXPECT_EQ(Found("E:\\plan.mdb"), "");
  EXPECT_EQ(Found("\\\\server\\share\\plan.mdb"), "");
  EXPECT_EQ(Found("C:\\Data\\Products\\Bolts.mdb\\x"), "");
  EXPECT_EQ(Found("/absent/plan.mdb"), "");
}

TEST_F(FindFileTest, NetworkPathsGoThroughTheFolderForThem)
{
  std::filesystem::create_directories(prefix.folder.File("dosdevices/unc/server/share"));
  WriteFile(prefix.folder.File("dosdevices/unc/server/share/plan.mdb"), "");
  EXPECT_EQ(Found("\\\\server\\share\\plan.mdb"),
            prefix.folder.File("dosdevices/unc/server/share/plan.mdb"));
}
