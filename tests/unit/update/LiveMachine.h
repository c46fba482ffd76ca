#ifndef TESTS_UPDATE_LIVEMACHINE_H
#define TESTS_UPDATE_LIVEMACHINE_H

#include "tests/doubles/LiveOdbc.h"
#include "tests/unit/update/UpdateMachine.h"

#include <map>

// A machine of real database files, which are reached by way of the driver manager and the driver
// of development machines.
class LiveMachine : public UpdateMachine
{
protected:
  void SetUp() override;

  static std::string ProductFile(const std::string& name);
  static std::string PatchFile(const std::string& name);
  static std::string ProjectFile(const std::string& name);

  // A database with its version, and with empty tables of the languages and the keys.
  static void MakeDatabase(const std::string& path, const Version& version = {});
  // One that an update finds too. Databases that are not added are missing.
  static void AddProduct(const std::string& name, const Version& version = {});
  // All of the product's databases, found in the three places.
  static void InstallProduct(const Version& version);

  // A patch with an empty table of steps; name with its extension.
  static void AddLivePatch(const std::string& name, const Version& version);
  // The same for projects, with the numbers of its version there.
  static void AddLiveProjectPatch(const std::string& name,
                                  const std::map<std::string, int>& projectsVersion);
  // A step without flags, or with those of deleting, recreating and creating.
  static void AddStep(const std::string& patchFile, const std::string& database,
                      const std::string& source, const std::string& target,
                      const std::string& flags = "0, 0, 0");
  static void MakeProjectsVersion(const std::string& path,
                                  const std::map<std::string, int>& numbers);
  static void Sql(const std::string& path, std::initializer_list<std::string> statements);

  // The numbers of a database's version as they are stored: "1.2 sp 0 build 3 comm 2010.0".
  static std::string StoredVersion(const std::string& name);
  static Lines StoredProjectsVersion(const std::string& name);

  // Opens everything, runs the update as a new start of the program does, and closes everything.
  // The result is what was sent and traced while it ran.
  static Lines RunUpdate();

  // From now on the file can be read and not be written, also by root, as one is that a later
  // release of the database engine has written. Or it can again.
  static void SetReadOnly(const std::string& path, bool isReadOnly);

  // The bytes of all files that there are.
  static std::map<std::string, std::string> AllFiles();
  static void ExpectSameFiles(const std::map<std::string, std::string>& before);
};

#endif
