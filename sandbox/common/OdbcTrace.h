#ifndef SANDBOX_COMMON_ODBCTRACE_H
#define SANDBOX_COMMON_ODBCTRACE_H

#include <string>
#include <vector>

// What a program did with its databases, read from the trace that unixODBC writes. The driver
// manager keeps some hundred characters of a text there, and of a wide character the lowest byte.

struct OdbcOutcome
{
  std::string result;  // such as SQL_SUCCESS, SQL_NO_DATA, SQL_ERROR; empty if there is none
  std::string reason;  // of a failure, in the driver's words
};

struct OdbcConnection
{
  std::string file;        // what the connection string says behind DBQ=, or all of it without that
  bool connected = false;  // false: it was refused
  bool released = false;   // SQLDisconnect was called for it, refused or not
  std::vector<std::string> statements;
  std::vector<OdbcOutcome> outcomes;  // of the statements, in the same places
};

struct OdbcTraffic
{
  std::vector<OdbcConnection> connections;  // in the order in which they were asked for
  std::vector<std::string> closed;  // those that were connected, in the order of their release
};

OdbcTraffic ParseOdbcTrace(const std::string& trace);

#endif
