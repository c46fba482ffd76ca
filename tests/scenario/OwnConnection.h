#ifndef SCENARIO_OWNCONNECTION_H
#define SCENARIO_OWNCONNECTION_H

#include <windows.h>
// The ODBC headers build on the one above.
#include <sql.h>
#include <sqlext.h>
#include <sqlucode.h>

#include <string>

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

  // For queries. Not owned by the caller.
  SQLHDBC Handle() const { return connection; }

private:
  SQLHENV environment = SQL_NULL_HENV;
  SQLHDBC connection = SQL_NULL_HDBC;
};

#endif
