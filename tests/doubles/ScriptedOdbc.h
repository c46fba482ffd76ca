#ifndef DOUBLES_SCRIPTEDODBC_H
#define DOUBLES_SCRIPTEDODBC_H

// The engine that answers from what a test has described.

#include "tests/doubles/OdbcEngine.h"

#include <stdint.h>

class ScriptedOdbc : public OdbcEngine
{
public:
  std::map<std::string, OdbcDatabase> databases;  // by connection string

  SQLRETURN AllocHandle(SQLSMALLINT kind, SQLHANDLE parent, SQLHANDLE* handle) override;
  SQLRETURN FreeHandle(SQLSMALLINT kind, SQLHANDLE handle) override;
  SQLRETURN SetEnvAttr(SQLHENV environment, SQLINTEGER attribute, SQLPOINTER value,
                       SQLINTEGER length) override;
  SQLRETURN SetConnectAttr(SQLHDBC connection, SQLINTEGER attribute, SQLPOINTER value,
                           SQLINTEGER length) override;
  SQLRETURN DriverConnect(SQLHDBC connection, SQLWCHAR* text, SQLSMALLINT textLength,
                          SQLWCHAR* completed, SQLSMALLINT completedSize,
                          SQLSMALLINT* completedLength, SQLUSMALLINT completion) override;
  SQLRETURN Disconnect(SQLHDBC connection) override;
  SQLRETURN ExecDirect(SQLHSTMT statement, SQLWCHAR* text, SQLINTEGER length) override;
  SQLRETURN Columns(SQLHSTMT statement, SQLWCHAR* table, SQLSMALLINT tableLength) override;
  SQLRETURN Tables(SQLHSTMT statement, SQLWCHAR* types, SQLSMALLINT typesLength) override;
  SQLRETURN BindCol(SQLHSTMT statement, SQLUSMALLINT column, SQLSMALLINT type, SQLPOINTER buffer,
                    SQLLEN bytes, SQLLEN* lengthWord) override;
  SQLRETURN Fetch(SQLHSTMT statement) override;
  SQLRETURN CloseCursor(SQLHSTMT statement) override;

private:
  struct Environment
  {
    bool hasVersion = false;
  };

  struct Connection
  {
    SQLHENV environment = SQL_NULL_HENV;
    const OdbcDatabase* database = nullptr;  // not owned; null if it isn't connected
  };

  struct Binding
  {
    SQLSMALLINT type;
    void* buffer;
    SQLLEN bytes;
    SQLLEN* lengthWord;
  };

  struct Statement
  {
    SQLHDBC connection = SQL_NULL_HDBC;
    bool hasCursor = false;
    OdbcRows rows;
    size_t nextRow = 0;
    std::map<SQLUSMALLINT, Binding> bindings;
  };

  SQLHANDLE NewHandle();
  const OdbcDatabase& DatabaseOf(const Statement& statement) const;
  static SQLRETURN Open(Statement& statement, const OdbcResult& result);
  static SQLRETURN Store(const OdbcCell& cell, const Binding& binding);

  uintptr_t given = 0;
  std::map<SQLHANDLE, Environment> environments;
  std::map<SQLHANDLE, Connection> connections;
  std::map<SQLHANDLE, Statement> statements;
};

#endif
