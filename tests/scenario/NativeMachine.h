#ifndef SCENARIO_NATIVEMACHINE_H
#define SCENARIO_NATIVEMACHINE_H

#include "tests/scenario/Outcome.h"

#include <windows.h>
// The ODBC headers build on the one above.
#include <sql.h>
#include <sqlext.h>

#include <memory>
#include <vector>

// The names of the product's databases, in their order.
std::vector<std::string> ProductNames();

// A connection of the test's own, beside those of the update.
class OwnConnection
{
public:
  // Makes the database if there is none.
  explicit OwnConnection(const std::string& path);
  OwnConnection(const OwnConnection&) = delete;
  OwnConnection& operator=(const OwnConnection&) = delete;
  ~OwnConnection();

  SQLRETURN Execute(const std::string& sql);

private:
  SQLHENV environment = SQL_NULL_HENV;
  SQLHDBC connection = SQL_NULL_HDBC;
};

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
