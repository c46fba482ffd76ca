#ifndef TESTS_DRIVER_ODBCSESSION_H
#define TESTS_DRIVER_ODBCSESSION_H

#include <string>
#include <vector>

#include "tests/driver/OdbcCalls.h"

// What a connection asks for: the driver's name, the file in braces, no user, no password.
std::string RequestFor(const std::string& file);

using Lines = std::vector<std::string>;

// An environment with one connection and one statement. All handles go with the object.
class OdbcSession
{
public:
  explicit OdbcSession(const OdbcCalls& entryPoints);
  ~OdbcSession();
  OdbcSession(const OdbcSession&) = delete;
  OdbcSession& operator=(const OdbcSession&) = delete;

  SQLRETURN Connect(const std::string& file) { return ConnectWith(RequestFor(file)); }
  // A connection that succeeds brings the statement.
  SQLRETURN ConnectWith(const std::string& request);
  SQLRETURN Disconnect();

  // Executes on the one statement, after whatever it had open is closed.
  SQLRETURN Run(const std::string& sql);
  // The rest of the statement's result, a line for each row: fields with | between, NULL for null.
  // The last line tells if the rows ended by anything but SQL_NO_DATA.
  Lines Rest() const;
  // Run and Rest; one line with the SQLSTATE if the statement failed.
  Lines Select(const std::string& sql);
  // One field of the current row as text, in as many pieces as it takes.
  std::string Field(SQLUSMALLINT column) const;
  // Makes the statement as it was when it was new.
  void Reset();

  // SQLSTATE of the first record, or "none".
  std::string State() const;
  std::string ConnectionState() const;

  const OdbcCalls& calls;
  SQLHENV env = nullptr;
  SQLHDBC dbc = nullptr;
  SQLHSTMT stmt = nullptr;

private:
  std::string FirstState(SQLSMALLINT kind, SQLHANDLE handle) const;
};

#endif
