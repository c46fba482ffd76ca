#ifndef TESTS_SYSTEM_DATABASEMACHINE_H
#define TESTS_SYSTEM_DATABASEMACHINE_H

#include "sandbox/common/OdbcTrace.h"
#include "tests/system/LauncherTest.h"

#include <map>

// A launch with what it did with its databases. Files are named relative to the data folder.
struct DatabaseRun : LauncherRun
{
  OdbcTraffic traffic;

  // In the order in which they were asked for.
  std::vector<std::string> Opened() const;
  std::vector<std::string> Refused() const;
  // What was sent to the database of that file.
  std::vector<std::string> StatementsOn(const std::string& file) const;
  // Each trace of the run without the line feed in front of it.
  std::vector<std::string> Traces() const;
};

struct PatchVersion
{
  int majorNumber = 10;
  int minorNumber = 1;
  int servicePack = 0;
  int build = 0;
};

// The 17 names in their order, and the file in which the tests keep each.
extern const std::vector<std::string> ProductDatabases;
std::string ProductFile(const std::string& name);
std::vector<std::string> ProductFiles();

// The text of a failed connection, as often as given.
std::vector<std::string> ConnectFailures(size_t count);

// A machine with a host and an empty data folder, in which a test lays databases out.
class DatabaseTest : public LauncherTest
{
protected:
  void SetUp() override;
  void TearDown() override;

  static std::wstring DataFolder();
  // Full path of a file of the data folder.
  static std::wstring DataPath(const std::string& file);
  static std::string ConnectionString(const std::string& file);

  // Copies a database of the sandbox, or writes a file; the folders above it are made.
  static void LayCopy(const std::string& sandboxDatabase, const std::string& file);
  static void LayBytes(const std::string& file, const std::string& bytes);

  // All 17 databases, the configuration file for 14 of them, and the two registered connections.
  void LayProduct();
  // A patch with this version below DatabaseUpdate; name with its extension.
  void LayPatch(const std::string& name, const PatchVersion& version);

  static void WriteConfiguration(const std::string& bytes);
  // One element of the configuration file, for a database in its usual file.
  static std::string Element(const std::string& name, const std::string& platform = "x64");
  // A whole file around these elements.
  static std::string Configuration(const std::string& elements);

  // Runs statements on a database of the data folder through the driver.
  static void Execute(const std::string& file, const std::vector<std::string>& statements);
  // The rows of a query, each as its values with `|` between them, NULL as `<null>`.
  static std::vector<std::string> Select(const std::string& file, const std::string& query);

  // A database with its version and nothing else but what the statements make. What is there
  // already is replaced.
  static void MakeDatabase(const std::string& file, const PatchVersion& version,
                           const std::vector<std::string>& statements = {});
  // As it is stored: major, minor, service pack and build number.
  static std::string StoredVersion(const std::string& file);

  // Every file below the data folder with its bytes.
  static std::map<std::string, std::string> DataFiles();

  // The run has to end with 0, and to have started the host.
  DatabaseRun Launch();
};

#endif
