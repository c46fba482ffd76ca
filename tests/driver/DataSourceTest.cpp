// Connections by the name of a data source, which the user's own odbc.ini describes.

#include <cstdlib>

#include "tests/driver/ConformanceTest.h"

namespace {

class DataSource : public UnconnectedTest
{
protected:
  DataSource()
  {
    const char* const before = getenv("ODBCINI");
    usual = before == nullptr ? "" : before;
    hadUsual = before != nullptr;
    // The library that reads the file keeps what it has read, by the name of the source.
    static int count = 0;
    plans = "plans" + std::to_string(++count);
    WriteFile(folder.File("odbc.ini"), "[" + plans + "]\nDriver=Kestrel ODBC Driver\nDBQ=" +
                                           database + "\n\n[empty]\nDriver=Kestrel ODBC Driver\n");
    setenv("ODBCINI", folder.File("odbc.ini").c_str(), 1);
  }
  ~DataSource() override
  {
    if (hadUsual)
      setenv("ODBCINI", usual.c_str(), 1);
    else
      unsetenv("ODBCINI");
  }

  std::string plans;

private:
  std::string usual;
  bool hadUsual;
};

}  // namespace

TEST_P(DataSource, IsConnectedByItsName)
{
  ASSERT_EQ(calls.Connect(session.dbc, plans), SQL_SUCCESS) << session.ConnectionState();
  TextBuffer name = calls.Buffer(200);
  SQLSMALLINT length = 0;
  EXPECT_EQ(calls.GetInfoText(session.dbc, SQL_DATA_SOURCE_NAME, name, length), SQL_SUCCESS);
  EXPECT_EQ(name.Text(), plans);
  EXPECT_EQ(calls.GetInfoText(session.dbc, SQL_DATABASE_NAME, name, length), SQL_SUCCESS);
  EXPECT_EQ(name.Text(), database);
}

TEST_P(DataSource, MayBeNamedInAConnectionString)
{
  EXPECT_EQ(session.ConnectWith("DSN=" + plans), SQL_SUCCESS) << session.ConnectionState();
  EXPECT_EQ(session.Select("SELECT 1"), Lines{"1"});
}

TEST_P(DataSource, ThatNamesNoDatabaseIsRefused)
{
  EXPECT_EQ(calls.Connect(session.dbc, "empty"), SQL_ERROR);
  EXPECT_EQ(session.ConnectionState(), "08001");
  EXPECT_EQ(calls.Connect(session.dbc, "absent"), SQL_ERROR);
}

INSTANTIATE_TEST_SUITE_P(Each, DataSource, StraightWays(), WayName);
