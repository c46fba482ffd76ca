#include "tests/driver/OdbcCalls.h"

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>

namespace {

// The three parts of a catalogue argument: characters, and their number or SQL_NTS.
struct CatalogueText
{
  CatalogueText(bool isWide, const Pattern& pattern)
      : isNull(!pattern), text(isWide, pattern.value_or(""))
  {
  }

  SQLCHAR* Narrow() { return isNull ? nullptr : text.Narrow(); }
  SQLWCHAR* Wide() { return isNull ? nullptr : text.Wide(); }
  SQLSMALLINT Length() const { return isNull ? SQLSMALLINT{0} : SQLSMALLINT{SQL_NTS}; }

  bool isNull;
  TextArgument text;
};

SQLPOINTER NumberAsPointer(SQLULEN value)
{
  return reinterpret_cast<SQLPOINTER>(value);
}

}  // namespace

OdbcCalls::OdbcCalls(const std::string& file, bool wideCalls)
    : isWide(wideCalls), library(dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL))
{
}

void* OdbcCalls::FindAddress(const char* name) const
{
  return dlsym(library, name);
}

void* OdbcCalls::RequireAddress(const char* name) const
{
  void* const address = library == nullptr ? nullptr : FindAddress(name);
  if (address == nullptr) {
    const char* const reason = dlerror();
    fprintf(stderr, "%s cannot be used: %s\n", name, reason == nullptr ? "no reason" : reason);
    exit(2);
  }
  return address;
}

SQLRETURN OdbcCalls::DriverConnect(SQLHDBC dbc, const std::string& request) const
{
  TextArgument text = Argument(request);
  return isWide ? WideDriverConnect(dbc, nullptr, text.Wide(), SQL_NTS, nullptr, 0, nullptr,
                                    SQL_DRIVER_NOPROMPT)
                : NarrowDriverConnect(dbc, nullptr, text.Narrow(), SQL_NTS, nullptr, 0, nullptr,
                                      SQL_DRIVER_NOPROMPT);
}

SQLRETURN OdbcCalls::DriverConnect(SQLHDBC dbc, const std::string& request, TextBuffer& completed,
                                   SQLSMALLINT& length) const
{
  TextArgument text = Argument(request);
  return isWide ? WideDriverConnect(dbc, nullptr, text.Wide(), SQL_NTS, completed.Wide(),
                                    completed.Units(), &length, SQL_DRIVER_NOPROMPT)
                : NarrowDriverConnect(dbc, nullptr, text.Narrow(), SQL_NTS, completed.Narrow(),
                                      completed.Units(), &length, SQL_DRIVER_NOPROMPT);
}

SQLRETURN OdbcCalls::Connect(SQLHDBC dbc, const std::string& source) const
{
  TextArgument text = Argument(source);
  return isWide ? WideConnect(dbc, text.Wide(), SQL_NTS, nullptr, 0, nullptr, 0)
                : NarrowConnect(dbc, text.Narrow(), SQL_NTS, nullptr, 0, nullptr, 0);
}

SQLRETURN OdbcCalls::ExecDirect(SQLHSTMT stmt, const std::string& sql) const
{
  TextArgument text = Argument(sql);
  return isWide ? WideExecDirect(stmt, text.Wide(), SQL_NTS)
                : NarrowExecDirect(stmt, text.Narrow(), SQL_NTS);
}

SQLRETURN OdbcCalls::ExecDirectCounted(SQLHSTMT stmt, const std::string& sql) const
{
  const SQLINTEGER length = static_cast<SQLINTEGER>(Argument(sql).Units());
  TextArgument text = Argument(sql + " no part of it");
  return isWide ? WideExecDirect(stmt, text.Wide(), length)
                : NarrowExecDirect(stmt, text.Narrow(), length);
}

SQLRETURN OdbcCalls::Prepare(SQLHSTMT stmt, const std::string& sql) const
{
  TextArgument text = Argument(sql);
  return isWide ? WidePrepare(stmt, text.Wide(), SQL_NTS)
                : NarrowPrepare(stmt, text.Narrow(), SQL_NTS);
}

SQLRETURN OdbcCalls::NativeSql(SQLHDBC dbc, const std::string& sql, TextBuffer& result,
                               SQLINTEGER& length) const
{
  TextArgument text = Argument(sql);
  return isWide ? WideNativeSql(dbc, text.Wide(), SQL_NTS, result.Wide(), result.Units(), &length)
                : NarrowNativeSql(dbc, text.Narrow(), SQL_NTS, result.Narrow(), result.Units(),
                                  &length);
}

SQLRETURN OdbcCalls::DescribeCol(SQLHSTMT stmt, SQLUSMALLINT column,
                                 ColumnDescription& description) const
{
  TextBuffer name = Buffer(256);
  ColumnDescription& d = description;
  const SQLRETURN result =
      isWide ? WideDescribeCol(stmt, column, name.Wide(), name.Units(), &d.nameLength, &d.type,
                               &d.size, &d.digits, &d.nullable)
             : NarrowDescribeCol(stmt, column, name.Narrow(), name.Units(), &d.nameLength, &d.type,
                                 &d.size, &d.digits, &d.nullable);
  d.name = name.Text();
  return result;
}

SQLRETURN OdbcCalls::DescribeCol(SQLHSTMT stmt, SQLUSMALLINT column, TextBuffer& name,
                                 SQLSMALLINT& length) const
{
  return isWide ? WideDescribeCol(stmt, column, name.Wide(), name.Units(), &length, nullptr,
                                  nullptr, nullptr, nullptr)
                : NarrowDescribeCol(stmt, column, name.Narrow(), name.Units(), &length, nullptr,
                                    nullptr, nullptr, nullptr);
}

SQLRETURN OdbcCalls::ColAttribute(SQLHSTMT stmt, SQLUSMALLINT column, SQLUSMALLINT field,
                                  SQLLEN& value) const
{
  return isWide ? WideColAttribute(stmt, column, field, nullptr, 0, nullptr, &value)
                : NarrowColAttribute(stmt, column, field, nullptr, 0, nullptr, &value);
}

SQLRETURN OdbcCalls::ColAttributeText(SQLHSTMT stmt, SQLUSMALLINT column, SQLUSMALLINT field,
                                      TextBuffer& text) const
{
  SQLSMALLINT length = 0;
  const SQLSMALLINT bytes = static_cast<SQLSMALLINT>(text.Bytes());
  return isWide ? WideColAttribute(stmt, column, field, text.Data(), bytes, &length, nullptr)
                : NarrowColAttribute(stmt, column, field, text.Data(), bytes, &length, nullptr);
}

SQLRETURN OdbcCalls::GetInfoText(SQLHDBC dbc, SQLUSMALLINT item, TextBuffer& text,
                                 SQLSMALLINT& length) const
{
  const SQLSMALLINT bytes = static_cast<SQLSMALLINT>(text.Bytes());
  return isWide ? WideGetInfo(dbc, item, text.Data(), bytes, &length)
                : NarrowGetInfo(dbc, item, text.Data(), bytes, &length);
}

SQLRETURN OdbcCalls::GetInfoNumber(SQLHDBC dbc, SQLUSMALLINT item, SQLUINTEGER& value) const
{
  return isWide ? WideGetInfo(dbc, item, &value, sizeof(value), nullptr)
                : NarrowGetInfo(dbc, item, &value, sizeof(value), nullptr);
}

SQLRETURN OdbcCalls::GetTypeInfo(SQLHSTMT stmt, SQLSMALLINT type) const
{
  return isWide ? WideGetTypeInfo(stmt, type) : NarrowGetTypeInfo(stmt, type);
}

SQLRETURN OdbcCalls::Tables(SQLHSTMT stmt, const Pattern& catalog, const Pattern& schema,
                            const Pattern& table, const Pattern& type) const
{
  CatalogueText c(isWide, catalog);
  CatalogueText s(isWide, schema);
  CatalogueText t(isWide, table);
  CatalogueText k(isWide, type);
  return isWide ? WideTables(stmt, c.Wide(), c.Length(), s.Wide(), s.Length(), t.Wide(), t.Length(),
                             k.Wide(), k.Length())
                : NarrowTables(stmt, c.Narrow(), c.Length(), s.Narrow(), s.Length(), t.Narrow(),
                               t.Length(), k.Narrow(), k.Length());
}

SQLRETURN OdbcCalls::Columns(SQLHSTMT stmt, const Pattern& table, const Pattern& column) const
{
  CatalogueText t(isWide, table);
  CatalogueText c(isWide, column);
  return isWide
             ? WideColumns(stmt, nullptr, 0, nullptr, 0, t.Wide(), t.Length(), c.Wide(), c.Length())
             : NarrowColumns(stmt, nullptr, 0, nullptr, 0, t.Narrow(), t.Length(), c.Narrow(),
                             c.Length());
}

SQLRETURN OdbcCalls::PrimaryKeys(SQLHSTMT stmt, const std::string& table) const
{
  TextArgument t = Argument(table);
  return isWide ? WidePrimaryKeys(stmt, nullptr, 0, nullptr, 0, t.Wide(), SQL_NTS)
                : NarrowPrimaryKeys(stmt, nullptr, 0, nullptr, 0, t.Narrow(), SQL_NTS);
}

SQLRETURN OdbcCalls::Statistics(SQLHSTMT stmt, const std::string& table, SQLUSMALLINT unique) const
{
  TextArgument t = Argument(table);
  return isWide ? WideStatistics(stmt, nullptr, 0, nullptr, 0, t.Wide(), SQL_NTS, unique, SQL_QUICK)
                : NarrowStatistics(stmt, nullptr, 0, nullptr, 0, t.Narrow(), SQL_NTS, unique,
                                   SQL_QUICK);
}

SQLRETURN OdbcCalls::SpecialColumns(SQLHSTMT stmt, const std::string& table) const
{
  TextArgument t = Argument(table);
  return isWide ? WideSpecialColumns(stmt, SQL_BEST_ROWID, nullptr, 0, nullptr, 0, t.Wide(),
                                     SQL_NTS, SQL_SCOPE_CURROW, SQL_NULLABLE)
                : NarrowSpecialColumns(stmt, SQL_BEST_ROWID, nullptr, 0, nullptr, 0, t.Narrow(),
                                       SQL_NTS, SQL_SCOPE_CURROW, SQL_NULLABLE);
}

SQLRETURN OdbcCalls::SetConnectNumber(SQLHDBC dbc, SQLINTEGER attribute, SQLULEN value) const
{
  return isWide ? WideSetConnectAttr(dbc, attribute, NumberAsPointer(value), SQL_IS_UINTEGER)
                : NarrowSetConnectAttr(dbc, attribute, NumberAsPointer(value), SQL_IS_UINTEGER);
}

SQLRETURN OdbcCalls::SetStatementNumber(SQLHSTMT stmt, SQLINTEGER attribute, SQLULEN value) const
{
  return isWide ? WideSetStmtAttr(stmt, attribute, NumberAsPointer(value), SQL_IS_UINTEGER)
                : NarrowSetStmtAttr(stmt, attribute, NumberAsPointer(value), SQL_IS_UINTEGER);
}

SQLRETURN OdbcCalls::SetStatementPointer(SQLHSTMT stmt, SQLINTEGER attribute,
                                         SQLPOINTER value) const
{
  return isWide ? WideSetStmtAttr(stmt, attribute, value, SQL_IS_POINTER)
                : NarrowSetStmtAttr(stmt, attribute, value, SQL_IS_POINTER);
}

SQLRETURN OdbcCalls::SetCursorName(SQLHSTMT stmt, const std::string& name) const
{
  TextArgument text = Argument(name);
  return isWide ? WideSetCursorName(stmt, text.Wide(), SQL_NTS)
                : NarrowSetCursorName(stmt, text.Narrow(), SQL_NTS);
}

SQLRETURN OdbcCalls::GetCursorName(SQLHSTMT stmt, TextBuffer& name, SQLSMALLINT& length) const
{
  return isWide ? WideGetCursorName(stmt, name.Wide(), name.Units(), &length)
                : NarrowGetCursorName(stmt, name.Narrow(), name.Units(), &length);
}

SQLRETURN OdbcCalls::GetDescriptorField(SQLHDESC descriptor, SQLSMALLINT record, SQLSMALLINT field,
                                        SQLPOINTER value) const
{
  return isWide ? WideGetDescField(descriptor, record, field, value, 0, nullptr)
                : NarrowGetDescField(descriptor, record, field, value, 0, nullptr);
}

SQLRETURN OdbcCalls::GetDescriptorText(SQLHDESC descriptor, SQLSMALLINT record, SQLSMALLINT field,
                                       TextBuffer& text, SQLINTEGER& length) const
{
  const SQLINTEGER bytes = static_cast<SQLINTEGER>(text.Bytes());
  return isWide ? WideGetDescField(descriptor, record, field, text.Data(), bytes, &length)
                : NarrowGetDescField(descriptor, record, field, text.Data(), bytes, &length);
}

SQLRETURN OdbcCalls::SetDescriptorField(SQLHDESC descriptor, SQLSMALLINT record, SQLSMALLINT field,
                                        SQLPOINTER value) const
{
  return isWide ? WideSetDescField(descriptor, record, field, value, 0)
                : NarrowSetDescField(descriptor, record, field, value, 0);
}

SQLRETURN OdbcCalls::GetDiagText(SQLSMALLINT kind, SQLHANDLE handle, SQLSMALLINT number,
                                 SQLSMALLINT field, TextBuffer& text, SQLSMALLINT& length) const
{
  const SQLSMALLINT bytes = static_cast<SQLSMALLINT>(text.Bytes());
  return isWide ? WideGetDiagField(kind, handle, number, field, text.Data(), bytes, &length)
                : NarrowGetDiagField(kind, handle, number, field, text.Data(), bytes, &length);
}

SQLRETURN OdbcCalls::GetDiagNumber(SQLSMALLINT kind, SQLHANDLE handle, SQLSMALLINT number,
                                   SQLSMALLINT field, SQLPOINTER value) const
{
  return isWide ? WideGetDiagField(kind, handle, number, field, value, 0, nullptr)
                : NarrowGetDiagField(kind, handle, number, field, value, 0, nullptr);
}

SQLRETURN OdbcCalls::GetStatementAttribute(SQLHSTMT stmt, SQLINTEGER attribute,
                                           SQLPOINTER value) const
{
  return isWide ? WideGetStmtAttr(stmt, attribute, value, 0, nullptr)
                : NarrowGetStmtAttr(stmt, attribute, value, 0, nullptr);
}

SQLRETURN OdbcCalls::GetConnectAttribute(SQLHDBC dbc, SQLINTEGER attribute, SQLPOINTER value) const
{
  return isWide ? WideGetConnectAttr(dbc, attribute, value, 0, nullptr)
                : NarrowGetConnectAttr(dbc, attribute, value, 0, nullptr);
}

SQLRETURN OdbcCalls::GetDiagRec(SQLSMALLINT kind, SQLHANDLE handle, SQLSMALLINT number,
                                TextBuffer& state, SQLINTEGER& native, TextBuffer& message,
                                SQLSMALLINT& length) const
{
  return isWide ? WideGetDiagRec(kind, handle, number, state.Wide(), &native, message.Wide(),
                                 message.Units(), &length)
                : NarrowGetDiagRec(kind, handle, number, state.Narrow(), &native, message.Narrow(),
                                   message.Units(), &length);
}

std::vector<Diagnostic> OdbcCalls::Diagnostics(SQLSMALLINT kind, SQLHANDLE handle) const
{
  std::vector<Diagnostic> records;
  for (SQLSMALLINT number = 1; number < 20; ++number) {
    TextBuffer state = Buffer(6);
    TextBuffer message = Buffer(512);
    SQLINTEGER native = 0;
    SQLSMALLINT length = 0;
    if (!SQL_SUCCEEDED(GetDiagRec(kind, handle, number, state, native, message, length)))
      break;
    records.push_back({state.Text(), native, message.Text()});
  }
  return records;
}

const OdbcCalls& ManagerCalls(bool isWide)
{
  static const OdbcCalls Narrow("libodbc.so.2", false);
  static const OdbcCalls Wide("libodbc.so.2", true);
  return isWide ? Wide : Narrow;
}

const OdbcCalls& DriverCalls(bool isWide)
{
  static const OdbcCalls Narrow(KESTREL_DRIVER_FILE, false);
  static const OdbcCalls Wide(KESTREL_DRIVER_FILE, true);
  return isWide ? Wide : Narrow;
}
