#include "tests/driver/OdbcSession.h"

#include "tests/driver/Utf.h"

namespace {

const size_t PieceUnits = 1000;
const int MostPieces = 10000;

// What a piece holds, without its terminator and without regard to where a pair is cut.
void AppendUnits(TextBuffer& piece, std::string& narrow, std::u16string& wide)
{
  if (piece.IsWide())
    wide += reinterpret_cast<const char16_t*>(piece.Wide());
  else
    narrow += reinterpret_cast<const char*>(piece.Narrow());
}

}  // namespace

std::string RequestFor(const std::string& file)
{
  return "DRIVER={Kestrel ODBC Driver};DBQ={" + file + "};UID=;PWD=";
}

OdbcSession::OdbcSession(const OdbcCalls& entryPoints) : calls(entryPoints)
{
  calls.AllocHandle(SQL_HANDLE_ENV, nullptr, &env);
  calls.SetEnvAttr(env, SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3), 0);
  calls.AllocHandle(SQL_HANDLE_DBC, env, &dbc);
}

OdbcSession::~OdbcSession()
{
  Disconnect();
  calls.FreeHandle(SQL_HANDLE_DBC, dbc);
  calls.FreeHandle(SQL_HANDLE_ENV, env);
}

SQLRETURN OdbcSession::ConnectWith(const std::string& request)
{
  const SQLRETURN result = calls.DriverConnect(dbc, request);
  if (SQL_SUCCEEDED(result))
    calls.AllocHandle(SQL_HANDLE_STMT, dbc, &stmt);
  return result;
}

SQLRETURN OdbcSession::Disconnect()
{
  if (stmt != nullptr)
    calls.FreeHandle(SQL_HANDLE_STMT, stmt);
  stmt = nullptr;
  return calls.Disconnect(dbc);
}

SQLRETURN OdbcSession::Run(const std::string& sql)
{
  calls.FreeStmt(stmt, SQL_CLOSE);
  return calls.ExecDirect(stmt, sql);
}

Lines OdbcSession::Rest() const
{
  SQLSMALLINT columns = 0;
  calls.NumResultCols(stmt, &columns);
  Lines lines;
  SQLRETURN result = calls.Fetch(stmt);
  for (; SQL_SUCCEEDED(result); result = calls.Fetch(stmt)) {
    std::string line;
    for (SQLSMALLINT column = 1; column <= columns; ++column)
      line += (column == 1 ? "" : "|") + Field(static_cast<SQLUSMALLINT>(column));
    lines.push_back(line);
  }
  if (result != SQL_NO_DATA)
    lines.push_back("fetch failed: " + State());
  return lines;
}

Lines OdbcSession::Select(const std::string& sql)
{
  if (!SQL_SUCCEEDED(Run(sql)))
    return {"statement failed: " + State()};
  return Rest();
}

std::string OdbcSession::Field(SQLUSMALLINT column) const
{
  std::string narrow;
  std::u16string wide;
  for (int pieces = 0; pieces < MostPieces; ++pieces) {
    TextBuffer piece = calls.Buffer(PieceUnits);
    SQLLEN length = 0;
    const SQLRETURN result =
        calls.GetData(stmt, column, calls.TextType(), piece.Data(), piece.Bytes(), &length);
    if (!SQL_SUCCEEDED(result))
      return "field failed: " + State();
    if (length == SQL_NULL_DATA)
      return "NULL";
    AppendUnits(piece, narrow, wide);
    if (result == SQL_SUCCESS)
      return calls.IsWide() ? Utf8(wide) : narrow;
  }
  return "field failed: it has no end";
}

void OdbcSession::Reset()
{
  calls.FreeStmt(stmt, SQL_CLOSE);
  calls.FreeStmt(stmt, SQL_UNBIND);
  calls.FreeStmt(stmt, SQL_RESET_PARAMS);
}

std::string OdbcSession::State() const
{
  return FirstState(SQL_HANDLE_STMT, stmt);
}

std::string OdbcSession::ConnectionState() const
{
  return FirstState(SQL_HANDLE_DBC, dbc);
}

std::string OdbcSession::FirstState(SQLSMALLINT kind, SQLHANDLE handle) const
{
  const std::vector<Diagnostic> records = calls.Diagnostics(kind, handle);
  return records.empty() ? "none" : records.front().state;
}
