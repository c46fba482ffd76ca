#ifndef SCENARIO_SCENARIO_H
#define SCENARIO_SCENARIO_H

// A scenario of an update as its folder tells it. README.md describes the files. This half of the
// runner knows no platform: natively built tests and those under Wine share it.

#include <stdint.h>

#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

struct Scenario
{
  using Script = std::vector<std::string>;  // SQL statements

  std::filesystem::path folder;
  std::string behaviour;  // the sentence that names it
  std::optional<uint32_t> language;
  std::set<std::string> absent;    // databases of the product that there are not
  std::set<std::string> readOnly;  // ... that can't be written to
  std::set<std::string> locked;    // ... that another connection is writing to
  int runs = 1;

  std::map<std::string, Script> databases;  // by the product's name
  std::map<std::string, Script> patches;    // by the name of the file, without its extension
  std::map<std::string, Script> projects;   // the same for project patches

  std::map<std::string, std::string> content;  // expected, by the product's name
  std::string statements;
  std::string traces;

  // What is wrong with the folder, a sentence each. A scenario with faults can't be run.
  std::vector<std::string> faults;
};

// The folders that hold scenarios, by name.
std::vector<std::filesystem::path> ScenarioFolders(const std::filesystem::path& parent);

// The name of the folder's test: key-of-two-columns is KeyOfTwoColumns.
std::string TestNameOf(const std::filesystem::path& folder);

// Reads one folder whole. productNames are the names that a database may have. Expectations may be
// missing if they are about to be written.
Scenario ReadScenario(const std::filesystem::path& folder,
                      const std::vector<std::string>& productNames, bool expectationsMayMiss);

// The statements of a SQL text: one ends with a semicolon at the end of a line, and lines between
// statements that begin with -- are comments. The last one counts without a semicolon too.
Scenario::Script SplitSql(const std::string& text);

#endif
