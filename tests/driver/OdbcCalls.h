#ifndef TESTS_DRIVER_ODBCCALLS_H
#define TESTS_DRIVER_ODBCCALLS_H

#include <sql.h>
#include <sqlext.h>

#include <optional>
#include <string>
#include <vector>

#include "tests/driver/TextBuffer.h"

// A text argument of a catalogue call; none is a null pointer.
using Pattern = std::optional<std::string>;

struct Diagnostic
{
  std::string state;
  SQLINTEGER native;
  std::string message;
};

struct ColumnDescription
{
  std::string name;
  SQLSMALLINT nameLength;
  SQLSMALLINT type;
  SQLULEN size;
  SQLSMALLINT digits;
  SQLSMALLINT nullable;
};

// The ODBC calls of one library: the driver manager's, or the driver's with no manager before it.
// Calls with text go to the wide or to the narrow entry points; texts are UTF-8 here.
class OdbcCalls
{
public:
  // Ends the program with a sentence if the library or one of its calls is not there.
  OdbcCalls(const std::string& file, bool wideCalls);
  OdbcCalls(const OdbcCalls&) = delete;
  OdbcCalls& operator=(const OdbcCalls&) = delete;

  bool IsWide() const { return isWide; }
  SQLSMALLINT TextType() const { return isWide ? SQL_C_WCHAR : SQL_C_CHAR; }
  TextArgument Argument(const std::string& text) const { return {isWide, text}; }
  TextBuffer Buffer(size_t units) const { return {isWide, units}; }
  // A null pointer if the library does not export that name.
  void* FindAddress(const char* name) const;
  // A function of the library, for arguments that the calls below can't have. It must be there.
  template <typename Function>
  Function Entry(const char* name) const
  {
    return reinterpret_cast<Function>(RequireAddress(name));
  }

  SQLRETURN DriverConnect(SQLHDBC dbc, const std::string& request) const;
  SQLRETURN DriverConnect(SQLHDBC dbc, const std::string& request, TextBuffer& completed,
                          SQLSMALLINT& length) const;
  // A connection to a data source by its name alone.
  SQLRETURN Connect(SQLHDBC dbc, const std::string& source) const;
  SQLRETURN ExecDirect(SQLHSTMT stmt, const std::string& sql) const;
  // As ExecDirect, with the length told; what stands behind it is no part of the statement.
  SQLRETURN ExecDirectCounted(SQLHSTMT stmt, const std::string& sql) const;
  SQLRETURN Prepare(SQLHSTMT stmt, const std::string& sql) const;
  SQLRETURN NativeSql(SQLHDBC dbc, const std::string& sql, TextBuffer& result,
                      SQLINTEGER& length) const;
  SQLRETURN DescribeCol(SQLHSTMT stmt, SQLUSMALLINT column, ColumnDescription& description) const;
  SQLRETURN DescribeCol(SQLHSTMT stmt, SQLUSMALLINT column, TextBuffer& name,
                        SQLSMALLINT& length) const;
  SQLRETURN ColAttribute(SQLHSTMT stmt, SQLUSMALLINT column, SQLUSMALLINT field,
                         SQLLEN& value) const;
  SQLRETURN ColAttributeText(SQLHSTMT stmt, SQLUSMALLINT column, SQLUSMALLINT field,
                             TextBuffer& text) const;
  SQLRETURN GetInfoText(SQLHDBC dbc, SQLUSMALLINT item, TextBuffer& text,
                        SQLSMALLINT& length) const;
  SQLRETURN GetInfoNumber(SQLHDBC dbc, SQLUSMALLINT item, SQLUINTEGER& value) const;
  SQLRETURN GetTypeInfo(SQLHSTMT stmt, SQLSMALLINT type) const;
  SQLRETURN Tables(SQLHSTMT stmt, const Pattern& catalog, const Pattern& schema,
                   const Pattern& table, const Pattern& type) const;
  SQLRETURN Columns(SQLHSTMT stmt, const Pattern& table, const Pattern& column) const;
  SQLRETURN PrimaryKeys(SQLHSTMT stmt, const std::string& table) const;
  SQLRETURN Statistics(SQLHSTMT stmt, const std::string& table, SQLUSMALLINT unique) const;
  SQLRETURN SpecialColumns(SQLHSTMT stmt, const std::string& table) const;
  SQLRETURN SetConnectNumber(SQLHDBC dbc, SQLINTEGER attribute, SQLULEN value) const;
  SQLRETURN SetStatementNumber(SQLHSTMT stmt, SQLINTEGER attribute, SQLULEN value) const;
  SQLRETURN SetStatementPointer(SQLHSTMT stmt, SQLINTEGER attribute, SQLPOINTER value) const;
  SQLRETURN SetCursorName(SQLHSTMT stmt, const std::string& name) const;
  SQLRETURN GetCursorName(SQLHSTMT stmt, TextBuffer& name, SQLSMALLINT& length) const;
  // Record 0 is the head of the descriptor.
  SQLRETURN GetDescriptorField(SQLHDESC descriptor, SQLSMALLINT record, SQLSMALLINT field,
                               SQLPOINTER value) const;
  SQLRETURN GetDescriptorText(SQLHDESC descriptor, SQLSMALLINT record, SQLSMALLINT field,
                              TextBuffer& text, SQLINTEGER& length) const;
  SQLRETURN SetDescriptorField(SQLHDESC descriptor, SQLSMALLINT record, SQLSMALLINT field,
                               SQLPOINTER value) const;
  SQLRETURN GetDiagText(SQLSMALLINT kind, SQLHANDLE handle, SQLSMALLINT number, SQLSMALLINT field,
                        TextBuffer& text, SQLSMALLINT& length) const;
  SQLRETURN GetDiagRec(SQLSMALLINT kind, SQLHANDLE handle, SQLSMALLINT number, TextBuffer& state,
                       SQLINTEGER& native, TextBuffer& message, SQLSMALLINT& length) const;
  // All records of the handle's last call.
  std::vector<Diagnostic> Diagnostics(SQLSMALLINT kind, SQLHANDLE handle) const;

private:
  void* RequireAddress(const char* name) const;

  bool isWide;
  void* library;

#define ODBC_CALL(name) decltype(&::SQL##name) name = Entry<decltype(&::SQL##name)>("SQL" #name)
#define ODBC_TEXT_CALL(name)                                                        \
  decltype(&::SQL##name) Narrow##name = Entry<decltype(&::SQL##name)>("SQL" #name); \
  decltype(&::SQL##name##W) Wide##name = Entry<decltype(&::SQL##name##W)>("SQL" #name "W")

  ODBC_TEXT_CALL(ColAttribute);
  ODBC_TEXT_CALL(Columns);
  ODBC_TEXT_CALL(Connect);
  ODBC_TEXT_CALL(DescribeCol);
  ODBC_TEXT_CALL(DriverConnect);
  ODBC_TEXT_CALL(ExecDirect);
  ODBC_TEXT_CALL(GetConnectAttr);
  ODBC_TEXT_CALL(GetCursorName);
  ODBC_TEXT_CALL(GetDescField);
  ODBC_TEXT_CALL(GetDiagField);
  ODBC_TEXT_CALL(GetDiagRec);
  ODBC_TEXT_CALL(GetInfo);
  ODBC_TEXT_CALL(GetStmtAttr);
  ODBC_TEXT_CALL(GetTypeInfo);
  ODBC_TEXT_CALL(NativeSql);
  ODBC_TEXT_CALL(Prepare);
  ODBC_TEXT_CALL(PrimaryKeys);
  ODBC_TEXT_CALL(SetConnectAttr);
  ODBC_TEXT_CALL(SetCursorName);
  ODBC_TEXT_CALL(SetDescField);
  ODBC_TEXT_CALL(SetStmtAttr);
  ODBC_TEXT_CALL(SpecialColumns);
  ODBC_TEXT_CALL(Statistics);
  ODBC_TEXT_CALL(Tables);

public:
  // The calls without text arguments, under their own names.
  ODBC_CALL(AllocHandle);
  ODBC_CALL(BindCol);
  ODBC_CALL(BindParameter);
  ODBC_CALL(Cancel);
  ODBC_CALL(CloseCursor);
  ODBC_CALL(DescribeParam);
  ODBC_CALL(Disconnect);
  ODBC_CALL(EndTran);
  ODBC_CALL(Execute);
  ODBC_CALL(Fetch);
  ODBC_CALL(FetchScroll);
  ODBC_CALL(FreeHandle);
  ODBC_CALL(FreeStmt);
  ODBC_CALL(GetData);
  ODBC_CALL(GetEnvAttr);
  ODBC_CALL(GetFunctions);
  ODBC_CALL(MoreResults);
  ODBC_CALL(NumParams);
  ODBC_CALL(NumResultCols);
  ODBC_CALL(ParamData);
  ODBC_CALL(PutData);
  ODBC_CALL(RowCount);
  ODBC_CALL(SetEnvAttr);

#undef ODBC_TEXT_CALL
#undef ODBC_CALL

  SQLRETURN GetDiagNumber(SQLSMALLINT kind, SQLHANDLE handle, SQLSMALLINT number, SQLSMALLINT field,
                          SQLPOINTER value) const;
  SQLRETURN GetStatementAttribute(SQLHSTMT stmt, SQLINTEGER attribute, SQLPOINTER value) const;
  SQLRETURN GetConnectAttribute(SQLHDBC dbc, SQLINTEGER attribute, SQLPOINTER value) const;
};

// The driver manager's calls and the driver's own; each set is loaded once and kept.
const OdbcCalls& ManagerCalls(bool isWide);
const OdbcCalls& DriverCalls(bool isWide);

#endif
