#ifndef DOUBLES_ODBCENGINE_H
#define DOUBLES_ODBCENGINE_H

// What stands behind the calls of the ODBC double: the script of a test, or a driver manager.

#include "tests/doubles/OdbcDouble.h"

#include <memory>

class OdbcEngine
{
public:
  virtual ~OdbcEngine() = default;

  // Each does what the function of that name does. No handle is passed on that isn't open, but
  // null is.
  virtual SQLRETURN AllocHandle(SQLSMALLINT kind, SQLHANDLE parent, SQLHANDLE* handle) = 0;
  virtual SQLRETURN FreeHandle(SQLSMALLINT kind, SQLHANDLE handle) = 0;
  virtual SQLRETURN SetEnvAttr(SQLHENV environment, SQLINTEGER attribute, SQLPOINTER value,
                               SQLINTEGER length) = 0;
  virtual SQLRETURN SetConnectAttr(SQLHDBC connection, SQLINTEGER attribute, SQLPOINTER value,
                                   SQLINTEGER length) = 0;
  virtual SQLRETURN DriverConnect(SQLHDBC connection, SQLWCHAR* text, SQLSMALLINT textLength,
                                  SQLWCHAR* completed, SQLSMALLINT completedSize,
                                  SQLSMALLINT* completedLength, SQLUSMALLINT completion) = 0;
  virtual SQLRETURN Disconnect(SQLHDBC connection) = 0;
  virtual SQLRETURN ExecDirect(SQLHSTMT statement, SQLWCHAR* text, SQLINTEGER length) = 0;
  // Of all catalogs and schemas.
  virtual SQLRETURN Columns(SQLHSTMT statement, SQLWCHAR* table, SQLSMALLINT tableLength) = 0;
  virtual SQLRETURN Tables(SQLHSTMT statement, SQLWCHAR* types, SQLSMALLINT typesLength) = 0;
  virtual SQLRETURN BindCol(SQLHSTMT statement, SQLUSMALLINT column, SQLSMALLINT type,
                            SQLPOINTER buffer, SQLLEN bytes, SQLLEN* lengthWord) = 0;
  virtual SQLRETURN Fetch(SQLHSTMT statement) = 0;
  virtual SQLRETURN CloseCursor(SQLHSTMT statement) = 0;
};

// A text that is given with its length, or with SQL_NTS.
std::string OdbcText(const SQLWCHAR* text, SQLINTEGER length);

// The engine of all calls from now on, until the next reset. Returns the one before it, which the
// new one may stand in front of; null if that was the script.
std::unique_ptr<OdbcEngine> UseOdbcEngine(std::unique_ptr<OdbcEngine> engine);

#endif
