// Entry points: handles, environments and transactions.

#include "driver/Connection.h"
#include "driver/EntryText.h"
#include "driver/Environment.h"
#include "driver/Statement.h"

namespace {

SQLRETURN AllocateEnvironment(SQLHANDLE* out)
{
  try {
    const auto environment = std::make_shared<Environment>();
    RegisterHandle(environment);
    *out = environment->handle;
    return SQL_SUCCESS;
  } catch (const std::bad_alloc&) {
    // There is no handle yet that could tell.
    return SQL_ERROR;
  }
}

SQLRETURN AllocateConnection(SQLHANDLE environmentHandle, SQLHANDLE* out)
{
  return WithHandle<Environment>(environmentHandle, [&](Environment& environment) {
    const auto found =
        std::static_pointer_cast<Environment>(FindHandle(environmentHandle, SQL_HANDLE_ENV));
    const auto connection = std::make_shared<Connection>(found);
    environment.connections.reserve(environment.connections.size() + 1);
    RegisterHandle(connection);
    environment.connections.push_back(connection->handle);
    *out = connection->handle;
    return SQLRETURN{SQL_SUCCESS};
  });
}

SQLRETURN FreeEnvironment(SQLHANDLE handle)
{
  return WithHandle<Environment>(handle, [](Environment& environment) {
    if (!environment.connections.empty())
      return environment.diagnostics.Fail("HY010", "A connection of the environment is left");
    ReleaseHandle(environment);
    return SQLRETURN{SQL_SUCCESS};
  });
}

SQLRETURN FreeConnection(SQLHANDLE handle)
{
  std::shared_ptr<Environment> environment;
  const SQLRETURN result = WithHandle<Connection>(handle, [&](Connection& connection) {
    if (connection.IsConnected())
      return connection.diagnostics.Fail("HY010", "The connection is open");
    environment = connection.environment;
    ReleaseHandle(connection);
    return SQLRETURN{SQL_SUCCESS};
  });
  if (environment) {
    // Behind the connection's mutex: an environment locks its own before that of a connection.
    const std::lock_guard<std::mutex> lock(environment->Mutex());
    std::erase(environment->connections, handle);
  }
  return result;
}

SQLRETURN EndTransactions(SQLHANDLE environmentHandle, bool commit)
{
  std::vector<SQLHANDLE> connections;
  SQLRETURN result = WithHandle<Environment>(environmentHandle, [&](Environment& environment) {
    connections = environment.connections;
    return SQLRETURN{SQL_SUCCESS};
  });
  for (SQLHANDLE handle : connections) {
    const SQLRETURN ended = WithHandle<Connection>(
        handle, [&](Connection& connection) { return connection.EndTransaction(commit); });
    if (ended == SQL_ERROR)
      result = SQL_ERROR;
  }
  return result;
}

}  // namespace

SQLRETURN SQL_API SQLAllocHandle(SQLSMALLINT type, SQLHANDLE input, SQLHANDLE* output)
{
  if (output == nullptr && type == SQL_HANDLE_ENV)
    return SQL_ERROR;
  if (output != nullptr)
    *output = SQL_NULL_HANDLE;
  switch (type) {
    case SQL_HANDLE_ENV: return AllocateEnvironment(output);
    case SQL_HANDLE_DBC:
      if (output != nullptr)
        return AllocateConnection(input, output);
      return WithHandle<Environment>(input, [](Environment& environment) {
        return environment.diagnostics.Fail("HY009", "There is no place for the handle");
      });
    default:
      return WithHandle<Connection>(input, [&](Connection& connection) {
        if (output == nullptr)
          return connection.diagnostics.Fail("HY009", "There is no place for the handle");
        if (type == SQL_HANDLE_STMT)
          return connection.NewStatement(output);
        if (type == SQL_HANDLE_DESC)
          return connection.diagnostics.Fail("HYC00",
                                             "Descriptors of the program are not supported");
        return connection.diagnostics.Fail("HY092", "There is no such kind of handle");
      });
  }
}

SQLRETURN SQL_API SQLFreeHandle(SQLSMALLINT type, SQLHANDLE handle)
{
  switch (type) {
    case SQL_HANDLE_ENV: return FreeEnvironment(handle);
    case SQL_HANDLE_DBC: return FreeConnection(handle);
    case SQL_HANDLE_STMT:
      return WithHandle<Statement>(handle, [](Statement& statement) {
        // Kept to its end: the mutex that is held is the connection's.
        statement.connection->FreeStatement(statement);
        return SQLRETURN{SQL_SUCCESS};
      });
    case SQL_HANDLE_DESC: {
      DescriptorRole role = DescriptorRole::None;
      return WithObject<Statement>(FindDescriptor(handle, role), [](Statement& statement) {
        statement.diagnostics.Clear();
        return statement.diagnostics.Fail("HY017", "The descriptor belongs to its statement");
      });
    }
    default: return SQL_INVALID_HANDLE;
  }
}

SQLRETURN SQL_API SQLSetEnvAttr(SQLHENV handle, SQLINTEGER attribute, SQLPOINTER value,
                                SQLINTEGER /*length*/)
{
  return WithHandle<Environment>(handle, [&](Environment& environment) {
    const auto number = static_cast<SQLINTEGER>(reinterpret_cast<intptr_t>(value));
    switch (attribute) {
      case SQL_ATTR_ODBC_VERSION:
        if (number != SQL_OV_ODBC2 && number != SQL_OV_ODBC3 && number != SQL_OV_ODBC3_80)
          return environment.diagnostics.Fail("HY024", "There is no such version of ODBC");
        environment.odbcVersion = number;
        return SQLRETURN{SQL_SUCCESS};
      case SQL_ATTR_OUTPUT_NTS:
        if (number != SQL_TRUE)
          return environment.diagnostics.Fail("HYC00", "Texts always have a terminator");
        return SQLRETURN{SQL_SUCCESS};
      case SQL_ATTR_CONNECTION_POOLING:
      case SQL_ATTR_CP_MATCH:
        return environment.diagnostics.Fail("HYC00", "Connections are not pooled");
      default: return environment.diagnostics.Fail("HY092", "There is no such attribute");
    }
  });
}

SQLRETURN SQL_API SQLGetEnvAttr(SQLHENV handle, SQLINTEGER attribute, SQLPOINTER value,
                                SQLINTEGER /*capacity*/, SQLINTEGER* length)
{
  return WithHandle<Environment>(handle, [&](Environment& environment) {
    switch (attribute) {
      case SQL_ATTR_ODBC_VERSION: ReturnNumber<SQLINTEGER>(value, environment.odbcVersion); break;
      case SQL_ATTR_OUTPUT_NTS: ReturnNumber<SQLINTEGER>(value, SQL_TRUE); break;
      // SQL_CP_OFF and SQL_CP_STRICT_MATCH
      case SQL_ATTR_CONNECTION_POOLING:
      case SQL_ATTR_CP_MATCH: ReturnNumber<SQLUINTEGER>(value, 0); break;
      default: return environment.diagnostics.Fail("HY092", "There is no such attribute");
    }
    ReturnNumber<SQLINTEGER>(length, sizeof(SQLINTEGER));
    return SQLRETURN{SQL_SUCCESS};
  });
}

SQLRETURN SQL_API SQLEndTran(SQLSMALLINT type, SQLHANDLE handle, SQLSMALLINT completion)
{
  const bool commit = completion == SQL_COMMIT;
  const bool isKnown = commit || completion == SQL_ROLLBACK;
  if (type == SQL_HANDLE_ENV && isKnown)
    return EndTransactions(handle, commit);
  if (type == SQL_HANDLE_ENV) {
    return WithHandle<Environment>(handle, [](Environment& environment) {
      return environment.diagnostics.Fail("HY012", "A transaction ends by commit or by rollback");
    });
  }
  if (type != SQL_HANDLE_DBC)
    return SQL_INVALID_HANDLE;
  return WithHandle<Connection>(handle, [&](Connection& connection) {
    if (!isKnown)
      return connection.diagnostics.Fail("HY012", "A transaction ends by commit or by rollback");
    return connection.EndTransaction(commit);
  });
}
