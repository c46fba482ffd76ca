#include "tests/scenario/Scenario.h"

#include <ctype.h>

#include <algorithm>
#include <fstream>
#include <sstream>

namespace {

namespace fs = std::filesystem;

std::string ReadText(const fs::path& file)
{
  std::ifstream stream(file, std::ios::binary);
  std::ostringstream text;
  text << stream.rdbuf();
  return text.str();
}

// The entries of a folder in a fixed order; none if it isn't there.
std::vector<fs::path> EntriesOf(const fs::path& folder)
{
  std::vector<fs::path> entries;
  std::error_code missing;
  for (const auto& entry : fs::directory_iterator(folder, missing))
    entries.push_back(entry.path());
  std::sort(entries.begin(), entries.end());
  return entries;
}

class ScenarioReader
{
public:
  ScenarioReader(const fs::path& folder, const std::vector<std::string>& names, bool mayMiss)
      : productNames(names), expectationsMayMiss(mayMiss)
  {
    scenario.folder = folder;
  }

  Scenario Read()
  {
    ReadBehaviour();
    ReadScripts(scenario.folder / "before", scenario.databases, {"updates", "projects"});
    ReadScripts(scenario.folder / "before" / "updates", scenario.patches, {});
    ReadScripts(scenario.folder / "before" / "projects", scenario.projects, {});
    CheckNames();
    ReadContent();
    scenario.statements = ReadExpectation("statements.txt");
    scenario.traces = ReadExpectation("traces.txt");
    RefuseOthers(scenario.folder,
                 {"after", "before", "behaviour.txt", "statements.txt", "traces.txt"});
    return scenario;
  }

private:
  void Fault(const std::string& sentence) { scenario.faults.push_back(sentence); }

  void RefuseOthers(const fs::path& folder, const std::set<std::string>& known)
  {
    for (const fs::path& entry : EntriesOf(folder)) {
      if (!known.contains(entry.filename().string()))
        Fault(entry.string() + " has no place in a scenario.");
    }
  }

  void ReadBehaviour()
  {
    std::istringstream lines(ReadText(scenario.folder / "behaviour.txt"));
    std::getline(lines, scenario.behaviour);
    if (!scenario.behaviour.ends_with('.'))
      Fault("behaviour.txt begins with no sentence.");
    std::string line;
    while (std::getline(lines, line))
      ReadSetting(line);
  }

  void ReadSetting(const std::string& line)
  {
    const size_t blank = std::min(line.find(' '), line.size());
    const std::string setting = line.substr(0, blank);
    const std::string value = line.substr(std::min(blank + 1, line.size()));
    if (setting == "language")
      scenario.language = static_cast<uint32_t>(Number(line, value));
    else if (setting == "runs")
      scenario.runs = Number(line, value);
    else if (setting == "absent")
      scenario.absent.insert(value);
    else if (setting == "read-only")
      scenario.readOnly.insert(value);
    else if (setting == "locked")
      scenario.locked.insert(value);
    else
      Fault("behaviour.txt has an unknown setting: " + line);
  }

  int Number(const std::string& line, const std::string& value)
  {
    const bool isNumber = !value.empty() && value.size() < 9 &&
                          value.find_first_not_of("0123456789") == std::string::npos;
    if (!isNumber)
      Fault("behaviour.txt has a setting without a number: " + line);
    return isNumber ? std::stoi(value) : 1;
  }

  void ReadScripts(const fs::path& folder, std::map<std::string, Scenario::Script>& scripts,
                   const std::set<std::string>& otherEntries)
  {
    std::set<std::string> known = otherEntries;
    for (const fs::path& entry : EntriesOf(folder)) {
      if (entry.extension() != ".sql")
        continue;
      scripts[entry.stem().string()] = SplitSql(ReadText(entry));
      known.insert(entry.filename().string());
    }
    RefuseOthers(folder, known);
  }

  void CheckNames()
  {
    for (const auto& [name, script] : scenario.databases) {
      if (!IsProductName(name))
        Fault("The product has no database " + name + ".");
      if (scenario.absent.contains(name))
        Fault(name + " can't be absent and have a text.");
    }
    for (const std::string& name : scenario.absent) {
      if (!IsProductName(name))
        Fault("The product has no database " + name + ".");
    }
    for (const std::set<std::string>& names : {scenario.readOnly, scenario.locked}) {
      for (const std::string& name : names) {
        if (!scenario.databases.contains(name))
          Fault("There is no text of " + name + ", which a setting names.");
      }
    }
  }

  bool IsProductName(const std::string& name) const
  {
    return std::find(productNames.begin(), productNames.end(), name) != productNames.end();
  }

  void ReadContent()
  {
    std::set<std::string> known;
    for (const auto& [name, script] : scenario.databases) {
      const std::string file = name + ".txt";
      known.insert(file);
      scenario.content[name] = ReadExpectation("after/" + file);
    }
    if (!expectationsMayMiss)
      RefuseOthers(scenario.folder / "after", known);
  }

  std::string ReadExpectation(const std::string& name)
  {
    const fs::path file = scenario.folder / name;
    if (!expectationsMayMiss && !fs::is_regular_file(file))
      Fault(name + " is missing.");
    return ReadText(file);
  }

  const std::vector<std::string>& productNames;
  bool expectationsMayMiss;
  Scenario scenario;
};

}  // namespace

std::vector<fs::path> ScenarioFolders(const fs::path& parent)
{
  std::vector<fs::path> folders;
  for (const fs::path& entry : EntriesOf(parent)) {
    if (fs::is_directory(entry))
      folders.push_back(entry);
  }
  return folders;
}

std::string TestNameOf(const fs::path& folder)
{
  std::string name;
  bool startsWord = true;
  for (const char letter : folder.filename().string()) {
    if (letter != '-')
      name += startsWord ? static_cast<char>(toupper(letter)) : letter;
    startsWord = letter == '-';
  }
  return name;
}

Scenario ReadScenario(const fs::path& folder, const std::vector<std::string>& productNames,
                      bool expectationsMayMiss)
{
  return ScenarioReader(folder, productNames, expectationsMayMiss).Read();
}

Scenario::Script SplitSql(const std::string& text)
{
  Scenario::Script statements;
  std::string statement;
  std::istringstream lines(text);
  std::string line;
  while (std::getline(lines, line)) {
    if (statement.empty() && (line.empty() || line.starts_with("--")))
      continue;
    statement += (statement.empty() ? "" : "\n") + line;
    if (line.ends_with(';')) {
      statements.push_back(statement);
      statement.clear();
    }
  }
  if (!statement.empty())
    statements.push_back(statement);
  return statements;
}
