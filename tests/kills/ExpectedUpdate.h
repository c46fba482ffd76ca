#ifndef TESTS_KILLS_EXPECTEDUPDATE_H
#define TESTS_KILLS_EXPECTEDUPDATE_H

#include "tests/kills/KillMachine.h"

#include <functional>
#include <memory>

// What is in each of the product's databases, by name.
using Contents = std::map<std::string, std::string>;

// What an update has to do on the machine as it is, told by its rules alone: it reads what the
// databases say of themselves and carries out what follows from that. It knows the machine's
// patches from KillMachine.h and nothing of the program.
class ExpectedUpdate
{
public:
  // file tells where the database of a name is. Only with keepsStates it is known later what there
  // was between the first statement and the last.
  ExpectedUpdate(const std::function<std::string(const std::string& name)>& file, bool keepsStates);
  ~ExpectedUpdate();
  ExpectedUpdate(const ExpectedUpdate&) = delete;
  ExpectedUpdate& operator=(const ExpectedUpdate&) = delete;

  // What is sent to the databases, but for queries, and traced, in the form of UpdateMachine::Sent.
  std::vector<std::string> lines;
  // What the databases hold before the first statement, after each, and so in the end, as the
  // connection that sent the statements sees it.
  std::vector<Contents> states;

private:
  class Target;

  void Apply(const Patch& patch, Target& target);
  void Apply(const PatchStep& step, Target& target);
  void CopyRows(const PatchStep& step, Target& target);
  void WriteVersion(const Version& version, Target& target);
  void WriteProjectsVersion(const std::map<std::string, int>& numbers, Target& target);
  // True if the statement changed something or had nothing to change but what it made.
  bool Send(Target& target, const std::string& statement);
  // The same for the statements whose failures are traced.
  bool SendReporting(Target& target, const std::string& statement);
  void Trace(const std::string& text);

  bool keepsAllStates;
  std::vector<std::unique_ptr<Target>> targets;
};

#endif
