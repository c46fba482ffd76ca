#ifndef DOUBLES_UNIXODBC_H
#define DOUBLES_UNIXODBC_H

#include <windows.h>
// The ODBC headers build on the one above.
#include <sql.h>
#include <sqlext.h>
#include <sqlucode.h>

// The machine's driver manager: functions of its library under their own names, `SQL` left out.
// They are of the System V convention, which is that of every call here that says nothing else.
struct UnixOdbc
{
  using Text = SQLWCHAR*;
  using Length = SQLSMALLINT;

  SQLRETURN (*AllocHandle)(SQLSMALLINT, SQLHANDLE, SQLHANDLE*);
  SQLRETURN (*FreeHandle)(SQLSMALLINT, SQLHANDLE);
  SQLRETURN (*SetEnvAttr)(SQLHENV, SQLINTEGER, SQLPOINTER, SQLINTEGER);
  SQLRETURN (*SetConnectAttrW)(SQLHDBC, SQLINTEGER, SQLPOINTER, SQLINTEGER);
  SQLRETURN (*DriverConnectW)(SQLHDBC, SQLHWND, Text, Length, Text, Length, Length*, SQLUSMALLINT);
  SQLRETURN (*Disconnect)(SQLHDBC);
  SQLRETURN (*ExecDirectW)(SQLHSTMT, Text, SQLINTEGER);
  SQLRETURN (*ColumnsW)(SQLHSTMT, Text, Length, Text, Length, Text, Length, Text, Length);
  SQLRETURN (*TablesW)(SQLHSTMT, Text, Length, Text, Length, Text, Length, Text, Length);
  SQLRETURN (*BindCol)(SQLHSTMT, SQLUSMALLINT, SQLSMALLINT, SQLPOINTER, SQLLEN, SQLLEN*);
  SQLRETURN (*Fetch)(SQLHSTMT);
  SQLRETURN (*CloseCursor)(SQLHSTMT);
  SQLRETURN (*NumResultCols)(SQLHSTMT, SQLSMALLINT*);
  SQLRETURN (*GetData)(SQLHSTMT, SQLUSMALLINT, SQLSMALLINT, SQLPOINTER, SQLLEN, SQLLEN*);
  SQLRETURN (*GetDiagRecW)(Length, SQLHANDLE, Length, Text, SQLINTEGER*, Text, Length, Length*);
};

// Loads the library. One that is missing, or lacks a function, ends the process with a sentence.
UnixOdbc LoadUnixOdbc();

#endif
