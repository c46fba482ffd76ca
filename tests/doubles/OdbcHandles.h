#ifndef DOUBLES_ODBCHANDLES_H
#define DOUBLES_ODBCHANDLES_H

// The handles of ODBC that the code under test holds, scripted or real.

#include "tests/doubles/OdbcDouble.h"

#include <utility>

struct OdbcHandle
{
  int number = 0;  // counted from 1 for each kind
  SQLHANDLE parent = SQL_NULL_HANDLE;
  bool connected = false;
  std::vector<const void*> lengthWords;  // of the bindings, in the order of their first use
};

// A kind is SQL_HANDLE_ENV, SQL_HANDLE_DBC or SQL_HANDLE_STMT.
class OdbcHandles
{
public:
  void Add(SQLSMALLINT kind, SQLHANDLE value, SQLHANDLE parent);
  // The statements of a connection go with it.
  void Remove(SQLSMALLINT kind, SQLHANDLE value);
  void RemoveStatements(SQLHDBC connection);
  // Null if it is not allocated.
  OdbcHandle* Find(SQLSMALLINT kind, SQLHANDLE value);

  bool HasConnections(SQLHENV environment) const;
  int Count(SQLSMALLINT kind) const;

  // As the diary has it: `stmt#1`, `null`, or `stmt#?` for one that is not allocated.
  std::string NameOf(SQLSMALLINT kind, SQLHANDLE value);

private:
  std::map<std::pair<SQLSMALLINT, SQLHANDLE>, OdbcHandle> handles;
  std::map<SQLSMALLINT, int> given;
};

// `ENV`, `DBC`, `STMT`, or the number of any other.
std::string KindName(SQLSMALLINT kind);

#endif
