#ifndef FAULTS_FAILUREKINDS_H
#define FAULTS_FAILUREKINDS_H

#include <string>
#include <vector>

// One way in which a call may fail.
struct FailureKind
{
  std::string function;
  // What else happens: nothing, or one of the forms that FailCall knows (" afterwards").
  std::string form;
  int code = 0;
  // Also for good, when all later calls fail in the same way.
  bool forGood = true;

  // As FailCall takes it.
  std::string Call() const { return function + form; }
  std::string Text() const { return Call() + " " + std::to_string(code); }
};

// All ways in which all functions of a launch can fail and the launch goes on: by what their
// documentation says that they return. The checked calls of the runtime are not among them.
const std::vector<FailureKind>& FailureKinds();

// All functions of ODBC that a launch calls.
const std::vector<std::string>& OdbcFunctions();

// Those of them that are run for good.
std::vector<FailureKind> LastingFailureKinds();

#endif
