#ifndef TESTS_UPDATE_UPDATEMACHINE_H
#define TESTS_UPDATE_UPDATEMACHINE_H

#include "database/QulPatchDatabase.h"
#include "foundation/QulArray.h"
#include "tests/doubles/OdbcDouble.h"
#include "tests/doubles/PlatformTest.h"

#include <stdint.h>

#include <string>
#include <vector>

// The four numbers that versions are compared by.
struct Version
{
  int major = 0;
  int minor = 0;
  int servicePack = 0;
  int build = 0;

  bool operator==(const Version&) const = default;
  auto operator<=>(const Version&) const = default;
};

// Base of the tests of the update: a machine whose data folder is C:\Data, on which patches, the
// product's databases and the configuration file may be put. Nothing is there at first.
class UpdateMachine : public PlatformTest
{
protected:
  using Lines = std::vector<std::string>;

  // The entries of a configuration file and the pending question are process-wide and begin anew
  // for each test.
  UpdateMachine();
  void TearDown() override;

  static const char* const ConfigurationFile;
  static const char* const PatchFolder;
  static const char* const ProjectFolder;

  static void SetDataPath(const std::string& path);

  // An element of the configuration file.
  static std::string Entry(const std::string& name, const std::string& value,
                           const std::string& platform = "x64");
  // Writes the file as it stands, or with these elements inside its root element.
  static void PutFile(const std::string& bytes);
  static void PutConfiguration(const std::string& elements);

  // Reads the file, and returns how many entries there are then.
  static int Load();
  // The entries, as `platform|name|value`.
  static Lines Entries();
  static std::string ConnectionOf(const std::string& name);

  // A product's database that the configuration leads to, and that has the tables of its versions
  // and its infos. All that are wanted are added before the update begins.
  static OdbcDatabase& AddProductDatabase(const std::string& name, const Version& version = {},
                                          const OdbcRows& projectsVersion = {});
  static std::string ProductConnection(const std::string& name);

  // A patch that can be connected to, in the folder of the patches unless another is given.
  static OdbcDatabase& AddPatch(const std::string& fileName, const Version& version = {},
                                const std::string& folder = PatchFolder);
  // A project patch with these attributes and numbers.
  static OdbcDatabase& AddProjectPatch(const std::string& fileName,
                                       const OdbcRows& projectsVersion);
  // A file in the place of a patch that can't.
  static void AddDamagedPatch(const std::string& fileName, const std::string& folder = PatchFolder);
  static std::string PatchConnection(const std::string& fileName,
                                     const std::string& folder = PatchFolder);

  // A machine on which an update does some of everything: a patch merges rows, makes a table with
  // texts of several languages, and deletes rows by their key and by all columns, in QuillRules,
  // which obeys, and merges in QuillBase, which refuses; a project patch follows for both.
  static void AddWholeUpdate();

  // The connection strings that were tried, in order.
  static Lines TriedConnections();
  // What was traced, each with the line feed that is sent before it.
  static Lines Traces();

  // What the databases were told from the beginning of the diary's line `begin` on, as
  // "QuillRules: UPDATE ...", with " -> code" or " throws" behind what did not give 0, and the
  // traces in between, as "trace: ...". Databases go by the last part of their connection strings.
  static Lines Sent(size_t begin = 0);
  static const char* const ConnectTrace;

  template <typename Database>
  static Lines NamesOf(const QulArray<Database*>& databases)
  {
    Lines names;
    for (int i = 0; i < databases.count; ++i)
      names.push_back(NameOf(*databases.data[i]));
    return names;
  }

private:
  static std::string NameOf(const QulDatabase& database);
};

// The names of the product's databases, as the table holds them.
std::vector<std::string> ProductNames();

#endif
