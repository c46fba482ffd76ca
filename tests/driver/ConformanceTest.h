#ifndef TESTS_DRIVER_CONFORMANCETEST_H
#define TESTS_DRIVER_CONFORMANCETEST_H

#include <gtest/gtest.h>

#include "tests/driver/OdbcSession.h"
#include "tests/driver/TemporaryFolder.h"

// How a test reaches the driver: by which entry points, and with the driver manager between or not.
struct Way
{
  const char* name;
  bool throughManager;
  bool isWide;
};

inline auto AllWays()
{
  return testing::Values(Way{"WideThroughManager", true, true},
                         Way{"NarrowThroughManager", true, false}, Way{"WideStraight", false, true},
                         Way{"NarrowStraight", false, false});
}

// For what a driver manager answers by itself or looks into before it asks the driver.
inline auto StraightWays()
{
  return testing::Values(Way{"WideStraight", false, true}, Way{"NarrowStraight", false, false});
}

inline std::string WayName(const testing::TestParamInfo<Way>& info)
{
  return info.param.name;
}

inline void PrintTo(const Way& way, std::ostream* stream)
{
  *stream << way.name;
}

// A test of behaviour that each way to the driver shows. It has a new, empty database, not
// connected.
class UnconnectedTest : public testing::TestWithParam<Way>
{
protected:
  UnconnectedTest()
      : calls(GetParam().throughManager ? ManagerCalls(GetParam().isWide)
                                        : DriverCalls(GetParam().isWide)),
        database(folder.File("test.mdb")),
        session(calls)
  {
    WriteFile(database, "");
  }

  const OdbcCalls& calls;
  TemporaryFolder folder;
  std::string database;
  OdbcSession session;
};

// The same with the database connected.
class ConformanceTest : public UnconnectedTest
{
protected:
  void SetUp() override
  {
    ASSERT_EQ(session.Connect(database), SQL_SUCCESS) << session.ConnectionState();
    stmt = session.stmt;
  }

  // Ends the test if the statement is not plainly successful.
  void Make(const std::string& sql)
  {
    ASSERT_EQ(session.Run(sql), SQL_SUCCESS) << sql << ": " << session.State();
  }

  // As Make, and stands on the first row.
  void MakeRow(const std::string& sql)
  {
    Make(sql);
    ASSERT_EQ(calls.Fetch(stmt), SQL_SUCCESS) << session.State();
  }

  SQLHSTMT stmt = nullptr;
};

#endif
