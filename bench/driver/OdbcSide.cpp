#include <sql.h>
#include <sqlext.h>

#include <chrono>

#include "bench/driver/Side.h"
#include "driver/Text.h"

namespace {

using Clock = std::chrono::steady_clock;

class OdbcSide : public Side
{
public:
  explicit OdbcSide(const std::string& file)
  {
    SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &env);
    SQLSetEnvAttr(env, SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3), 0);
    SQLAllocHandle(SQL_HANDLE_DBC, env, &dbc);
    std::u16string request = ToUtf16("DRIVER={Kestrel ODBC Driver};DBQ={" + file + "};UID=;PWD=");
    if (SQLDriverConnectW(dbc, nullptr, Units(request), SQL_NTS, nullptr, 0, nullptr,
                          SQL_DRIVER_NOPROMPT) != SQL_SUCCESS)
      Fail("connect", Reason(SQL_HANDLE_DBC, dbc));
  }

  ~OdbcSide() override
  {
    SQLDisconnect(dbc);
    SQLFreeHandle(SQL_HANDLE_DBC, dbc);
    SQLFreeHandle(SQL_HANDLE_ENV, env);
  }

  void Execute(const std::string& sql) override
  {
    std::u16string text = ToUtf16(sql);
    ExecuteWide(text);
  }

  double Time(const std::vector<std::string>& statements) override
  {
    std::vector<std::u16string> texts;
    for (const std::string& sql : statements)
      texts.push_back(ToUtf16(sql));
    const auto start = Clock::now();
    for (std::u16string& text : texts)
      ExecuteWide(text);
    return std::chrono::duration<double>(Clock::now() - start).count();
  }

private:
  static SQLWCHAR* Units(std::u16string& text) { return reinterpret_cast<SQLWCHAR*>(text.data()); }

  void ExecuteWide(std::u16string& text)
  {
    SQLHSTMT stmt = SQL_NULL_HANDLE;
    SQLAllocHandle(SQL_HANDLE_STMT, dbc, &stmt);
    const SQLRETURN result = SQLExecDirectW(stmt, Units(text), SQL_NTS);
    if (result != SQL_SUCCESS && result != SQL_NO_DATA)
      Fail("statement", Reason(SQL_HANDLE_STMT, stmt));
    SQLFreeHandle(SQL_HANDLE_STMT, stmt);
  }

  static std::string Reason(SQLSMALLINT kind, SQLHANDLE handle)
  {
    SQLCHAR state[6] = {};
    SQLCHAR message[200] = {};
    SQLGetDiagRec(kind, handle, 1, state, nullptr, message, sizeof(message), nullptr);
    return std::string(reinterpret_cast<char*>(state)) + " " + reinterpret_cast<char*>(message);
  }

  SQLHENV env = SQL_NULL_HANDLE;
  SQLHDBC dbc = SQL_NULL_HANDLE;
};

}  // namespace

Side* NewOdbcSide(const std::string& file)
{
  return new OdbcSide(file);
}
