// Entry points: connecting, and the attributes of a connection.

#include "driver/Connection.h"
#include "driver/EntryText.h"
#include "driver/SqlTokens.h"

namespace {

template <typename Character>
SQLRETURN DriverConnect(SQLHDBC handle, const Character* in, SQLSMALLINT inLength, Character* out,
                        SQLSMALLINT capacity, SQLSMALLINT* outLength)
{
  return WithHandle<Connection>(handle, [&](Connection& connection) {
    ConnectionString keywords;
    if (!IsValidText(in, inLength))
      return connection.diagnostics.Fail("HY090", "There is no connection string");
    if (!keywords.Read(ToUtf8(in, inLength)))
      return connection.diagnostics.Fail("08001", "The connection string can't be read");
    const SQLRETURN result = connection.Connect(std::move(keywords));
    if (!SQL_SUCCEEDED(result))
      return result;
    const SQLRETURN returned =
        ReturnText(connection.diagnostics, connection.connectedWith.Write(), out,
                   capacity < 0 ? 0 : capacity, outLength, Count::Characters);
    return returned == SQL_SUCCESS ? result : returned;
  });
}

template <typename Character>
SQLRETURN Connect(SQLHDBC handle, const Character* source, SQLSMALLINT length)
{
  return WithHandle<Connection>(handle, [&](Connection& connection) {
    if (!IsValidText(source, length))
      return connection.diagnostics.Fail("HY090", "There is no data source");
    ConnectionString keywords;
    keywords.Add("DSN", ToUtf8(source, length));
    return connection.Connect(std::move(keywords));
  });
}

SQLRETURN SetAttribute(Connection& connection, SQLINTEGER attribute, SQLPOINTER value)
{
  Diagnostics& diagnostics = connection.diagnostics;
  const auto number = static_cast<SQLUINTEGER>(reinterpret_cast<uintptr_t>(value));
  switch (attribute) {
    case SQL_ATTR_LOGIN_TIMEOUT:
    case SQL_ATTR_CONNECTION_TIMEOUT:
      if (attribute == SQL_ATTR_LOGIN_TIMEOUT)
        connection.loginTimeout = number;
      return SQL_SUCCESS;
    case SQL_ATTR_ACCESS_MODE:
      if (number != SQL_MODE_READ_ONLY && number != SQL_MODE_READ_WRITE)
        return diagnostics.Fail("HY024", "There is no such mode");
      connection.accessMode = number;
      return SQL_SUCCESS;
    case SQL_ATTR_AUTOCOMMIT:
      if (number != SQL_AUTOCOMMIT_ON && number != SQL_AUTOCOMMIT_OFF)
        return diagnostics.Fail("HY024", "There is no such mode");
      return connection.SetAutocommit(number == SQL_AUTOCOMMIT_ON);
    case SQL_ATTR_METADATA_ID: connection.metadataId = number == SQL_TRUE; return SQL_SUCCESS;
    case SQL_ATTR_TXN_ISOLATION:
      if (number != SQL_TXN_SERIALIZABLE)
        return diagnostics.Warn("01S02", "Transactions are always serializable");
      return SQL_SUCCESS;
    case SQL_ATTR_PACKET_SIZE:
    case SQL_ATTR_QUIET_MODE: return SQL_SUCCESS;
    case SQL_ATTR_ASYNC_ENABLE:
      return number == SQL_ASYNC_ENABLE_OFF
                 ? SQLRETURN{SQL_SUCCESS}
                 : diagnostics.Fail("HYC00", "Calls never run asynchronously");
    case SQL_ATTR_CURRENT_CATALOG:
    case SQL_ATTR_TRANSLATE_LIB:
    case SQL_ATTR_TRANSLATE_OPTION:
      return diagnostics.Fail("HYC00", "The attribute is not supported");
    default: return diagnostics.Fail("HY092", "There is no such attribute");
  }
}

template <typename Character>
SQLRETURN GetAttribute(SQLHDBC handle, SQLINTEGER attribute, SQLPOINTER value, SQLINTEGER capacity,
                       SQLINTEGER* length)
{
  return WithHandle<Connection>(handle, [&](Connection& connection) {
    SQLUINTEGER number = 0;
    switch (attribute) {
      case SQL_ATTR_CURRENT_CATALOG:
        return ReturnText(connection.diagnostics, std::string(), static_cast<Character*>(value),
                          capacity, length, Count::Bytes);
      case SQL_ATTR_LOGIN_TIMEOUT: number = connection.loginTimeout; break;
      case SQL_ATTR_CONNECTION_TIMEOUT: break;
      case SQL_ATTR_ACCESS_MODE: number = connection.accessMode; break;
      case SQL_ATTR_AUTOCOMMIT:
        number = connection.autocommit ? SQL_AUTOCOMMIT_ON : SQL_AUTOCOMMIT_OFF;
        break;
      case SQL_ATTR_METADATA_ID: number = connection.metadataId ? SQL_TRUE : SQL_FALSE; break;
      case SQL_ATTR_TXN_ISOLATION: number = SQL_TXN_SERIALIZABLE; break;
      case SQL_ATTR_CONNECTION_DEAD:
        number = connection.IsConnected() ? SQL_CD_FALSE : SQL_CD_TRUE;
        break;
      case SQL_ATTR_ASYNC_ENABLE: number = SQL_ASYNC_ENABLE_OFF; break;
      case SQL_ATTR_AUTO_IPD: number = SQL_FALSE; break;
      case SQL_ATTR_PACKET_SIZE:
      case SQL_ATTR_QUIET_MODE:
      case SQL_ATTR_TRANSLATE_LIB:
      case SQL_ATTR_TRANSLATE_OPTION:
        return connection.diagnostics.Fail("HYC00", "The attribute is not supported");
      default: return connection.diagnostics.Fail("HY092", "There is no such attribute");
    }
    ReturnNumber<SQLUINTEGER>(value, number);
    ReturnNumber<SQLINTEGER>(length, sizeof(SQLUINTEGER));
    return SQLRETURN{SQL_SUCCESS};
  });
}

template <typename Character>
SQLRETURN NativeSql(SQLHDBC handle, const Character* in, SQLINTEGER inLength, Character* out,
                    SQLINTEGER capacity, SQLINTEGER* outLength)
{
  return WithHandle<Connection>(handle, [&](Connection& connection) {
    if (!IsValidText(in, inLength))
      return connection.diagnostics.Fail("HY009", "There is no statement");
    const std::string text = ReplaceEscapeSequences(ToUtf8(in, inLength));
    return ReturnText(connection.diagnostics, text, out, capacity, outLength, Count::Characters);
  });
}

}  // namespace

SQLRETURN SQL_API SQLDriverConnect(SQLHDBC handle, SQLHWND /*window*/, SQLCHAR* in,
                                   SQLSMALLINT inLength, SQLCHAR* out, SQLSMALLINT capacity,
                                   SQLSMALLINT* outLength, SQLUSMALLINT /*completion*/)
{
  return DriverConnect(handle, in, inLength, out, capacity, outLength);
}

SQLRETURN SQL_API SQLDriverConnectW(SQLHDBC handle, SQLHWND /*window*/, SQLWCHAR* in,
                                    SQLSMALLINT inLength, SQLWCHAR* out, SQLSMALLINT capacity,
                                    SQLSMALLINT* outLength, SQLUSMALLINT /*completion*/)
{
  return DriverConnect(handle, in, inLength, out, capacity, outLength);
}

SQLRETURN SQL_API SQLConnect(SQLHDBC handle, SQLCHAR* source, SQLSMALLINT length, SQLCHAR* /*user*/,
                             SQLSMALLINT /*userLength*/, SQLCHAR* /*password*/,
                             SQLSMALLINT /*passwordLength*/)
{
  return Connect(handle, source, length);
}

SQLRETURN SQL_API SQLConnectW(SQLHDBC handle, SQLWCHAR* source, SQLSMALLINT length,
                              SQLWCHAR* /*user*/, SQLSMALLINT /*userLength*/,
                              SQLWCHAR* /*password*/, SQLSMALLINT /*passwordLength*/)
{
  return Connect(handle, source, length);
}

SQLRETURN SQL_API SQLDisconnect(SQLHDBC handle)
{
  return WithHandle<Connection>(handle,
                                [](Connection& connection) { return connection.Disconnect(); });
}

SQLRETURN SQL_API SQLSetConnectAttr(SQLHDBC handle, SQLINTEGER attribute, SQLPOINTER value,
                                    SQLINTEGER /*length*/)
{
  return WithHandle<Connection>(
      handle, [&](Connection& connection) { return SetAttribute(connection, attribute, value); });
}

SQLRETURN SQL_API SQLSetConnectAttrW(SQLHDBC handle, SQLINTEGER attribute, SQLPOINTER value,
                                     SQLINTEGER length)
{
  // The attributes that are texts are not supported.
  return SQLSetConnectAttr(handle, attribute, value, length);
}

SQLRETURN SQL_API SQLGetConnectAttr(SQLHDBC handle, SQLINTEGER attribute, SQLPOINTER value,
                                    SQLINTEGER capacity, SQLINTEGER* length)
{
  return GetAttribute<SQLCHAR>(handle, attribute, value, capacity, length);
}

SQLRETURN SQL_API SQLGetConnectAttrW(SQLHDBC handle, SQLINTEGER attribute, SQLPOINTER value,
                                     SQLINTEGER capacity, SQLINTEGER* length)
{
  return GetAttribute<SQLWCHAR>(handle, attribute, value, capacity, length);
}

SQLRETURN SQL_API SQLNativeSql(SQLHDBC handle, SQLCHAR* in, SQLINTEGER inLength, SQLCHAR* out,
                               SQLINTEGER capacity, SQLINTEGER* outLength)
{
  return NativeSql(handle, in, inLength, out, capacity, outLength);
}

SQLRETURN SQL_API SQLNativeSqlW(SQLHDBC handle, SQLWCHAR* in, SQLINTEGER inLength, SQLWCHAR* out,
                                SQLINTEGER capacity, SQLINTEGER* outLength)
{
  return NativeSql(handle, in, inLength, out, capacity, outLength);
}
