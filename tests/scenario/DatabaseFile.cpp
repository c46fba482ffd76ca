#include "tests/scenario/DatabaseFile.h"

namespace {

// Where the header says which programs may write to the file, and a number that none understands.
constexpr size_t WriteVersionOffset = 18;
constexpr char FutureVersion = 3;

}  // namespace

Scenario::Script FillerScript(const std::set<std::string>& projectAttributes)
{
  Scenario::Script script = {
      "CREATE TABLE KFVersion ([Attribute] TEXT(50), [Value] TEXT(50))",
      "INSERT INTO KFVersion VALUES ('MajorNumber', '1000000')",
      "CREATE TABLE KFProjectsVersion ([Attribute] TEXT(255), [Value] TEXT(255))"};
  for (const std::string& attribute : projectAttributes)
    script.push_back("INSERT INTO KFProjectsVersion VALUES ('" + attribute + "', '1000000')");
  return script;
}

std::set<std::string> ProjectAttributes(const Query& projectPatch)
{
  if (projectPatch("SELECT 1 FROM sqlite_schema WHERE name='KFProjectsVersion'").empty())
    return {};
  const std::vector<std::string> names =
      projectPatch("SELECT [Attribute] FROM KFProjectsVersion WHERE [Attribute]<>''");
  return {names.begin(), names.end()};
}

bool ForbidWriting(std::string& bytes)
{
  if (bytes.size() <= WriteVersionOffset)
    return false;
  bytes[WriteVersionOffset] = FutureVersion;
  return true;
}
