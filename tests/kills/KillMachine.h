#ifndef TESTS_KILLS_KILLMACHINE_H
#define TESTS_KILLS_KILLMACHINE_H

// A machine on which an update has both kinds of patches and every kind of step to do.

#include "tests/unit/update/LiveMachine.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

// A row as a patch should write it: columns with their literals, the key in front. For a deletion,
// what it looks for.
using PatchRow = std::vector<std::pair<std::string, std::string>>;

struct PatchStep
{
  std::string database;
  std::string source;
  std::string target;
  bool deleteRows;
  bool recreate;
  bool createIfMissing;
  std::vector<PatchRow> rows;
};

struct Patch
{
  std::string name;
  Version version;
  std::map<std::string, int> projectsVersion;  // of a project patch
  std::vector<std::string> tables;             // what makes the sources
  std::vector<PatchStep> steps;                // in the order in which they should run
};

// The patches, oldest first, and the project patches.
const std::vector<Patch>& Patches();
const std::vector<Patch>& ProjectPatches();
// The databases that there are, in the order in which they are brought up to date.
const std::vector<std::string>& Targets();

class KillMachine : public LiveMachine
{
protected:
  static void LayOut();

private:
  static void LayOutProduct();
  static void LayOutPatch(const std::string& path, const Patch& patch);
};

#endif
