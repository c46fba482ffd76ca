#include "tests/driver/ConformanceTest.h"
#include "tests/driver/WinePrefix.h"

namespace {

// Connections to files that are named as programs under Wine name them.
class WinePath : public UnconnectedTest
{
protected:
  WinePrefix prefix;
};

}  // namespace

TEST_P(WinePath, ConnectsThroughTheDrive)
{
  ASSERT_EQ(session.Connect("C:\\Data\\Products\\Bolts.mdb"), SQL_SUCCESS)
      << session.ConnectionState();
  ASSERT_EQ(session.Run("CREATE TABLE [T] ([A] LONG)"), SQL_SUCCESS);
  session.Disconnect();
  EXPECT_GT(FileBytes(prefix.OnC("Data/Products/Bolts.mdb")).size(), 100U);
  EXPECT_EQ(session.Connect("d:/PLAN.MDB"), SQL_SUCCESS);
}

TEST_P(WinePath, ConnectsWithoutRegardToCase)
{
  EXPECT_EQ(session.Connect("c:\\DATA\\PRODUCTS\\BOLTS.MDB"), SQL_SUCCESS);
}

TEST_P(WinePath, MissingFileOrDriveIsRefusedAndCreatesNothing)
{
  EXPECT_EQ(session.Connect("C:\\Data\\Products\\absent.mdb"), SQL_ERROR);
  EXPECT_EQ(session.Connect("X:\\Data\\Products\\Bolts.mdb"), SQL_ERROR);
  EXPECT_EQ(session.Connect("C:\\Data\\Products"), SQL_ERROR);
  EXPECT_NE(session.ConnectionState(), "none");
  EXPECT_EQ(prefix.folder.Names(), (Lines{"dosdevices", "drive_c", "second"}));
}

INSTANTIATE_TEST_SUITE_P(Each, WinePath, AllWays(), WayName);
