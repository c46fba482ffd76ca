#ifndef SCENARIO_NATIVEMACHINE_H
#define SCENARIO_NATIVEMACHINE_H

#include "tests/scenario/Outcome.h"
#include "tests/scenario/OwnConnection.h"

#include <memory>
#include <vector>

// The names of the product's databases, in their order.
std::vector<std::string> ProductNames();

// The machine of a scenario, made of the doubles and of real databases: all of the product's, those
// that the scenario doesn't name with versions above those of all patches.
class NativeMachine
{
public:
  explicit NativeMachine(const Scenario& scenarioToRun);

  // What can't be laid out is a test failure.
  void LayOut();

  // Runs the update as often as the scenario says, each time as in a new process. What no scenario
  // may do is a test failure.
  Outcome Run();

private:
  void LayOutProduct();
  void LayOutFiller(const std::string& name);
  void Lock(const std::string& name);
  void Unlock();
  Outcome RunOnce();

  const Scenario& scenario;
  std::string filler;  // bytes of a database that no patch is for
  // Other programs in the middle of writing.
  std::vector<std::unique_ptr<OwnConnection>> writers;
};

#endif
