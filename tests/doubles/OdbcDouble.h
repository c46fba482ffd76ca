#ifndef DOUBLES_ODBCDOUBLE_H
#define DOUBLES_ODBCDOUBLE_H

// ODBC behind SQLAllocHandle, SQLSetEnvAttr, SQLSetConnectAttrW, SQLDriverConnectW, SQLDisconnect,
// SQLFreeHandle, SQLExecDirectW, SQLColumnsW, SQLTablesW, SQLBindCol, SQLFetch and SQLCloseCursor.
// It is scripted: what a test has not described is not there, so that a connection fails and a
// statement is an error, which are both ordinary for the code under test.
//
//   Odbc().Database("DRIVER={X};DBQ=C:\\a.mdb")
//       .Table("KFVersion", {{"MajorNumber", "2"}, {"BuildNumber", "7"}})
//       .Columns("Parts", {{"Id", SQL_INTEGER, 10, 0}, {"Name", SQL_WVARCHAR, 255}});
//
// The diary names handles by kind, counted from 1, and the length words of a statement's bindings:
//
//   SQLAllocHandle(STMT, dbc#1) = 0 stmt#1
//   SQLExecDirectW(stmt#1, "SELECT * FROM KFVersion", -3) = 0
//   SQLBindCol(stmt#1, 2, -8, 100, ind#1) = 0     column, buffer type, bytes, length word
//   SQLColumnsW(stmt#1, null 0, null 0, "Parts" -3, null 0) = 0
//   SQLDriverConnectW(dbc#1, null, "DRIVER=...", -3, 4096, length, 0) = 0
//
// A null handle gives SQL_INVALID_HANDLE. One that is closed or never existed does too and is a
// misuse, and so is freeing a connection that is connected, an environment that has connections,
// and a statement on a connection that isn't connected. SQLDisconnect frees the statements.

#include "tests/doubles/Diary.h"

#include <windows.h>

#include <sql.h>
#include <sqlext.h>
#include <sqlucode.h>

#include <cstddef>
#include <initializer_list>
#include <map>
#include <string>
#include <vector>

// FailCall for ODBC's return codes, negative ones included. Nothing is done and the code returned.
// More forms of the name say what else may happen:
//   "SQLFetch afterwards"  the call does its work, and the code takes the place of its result
//   "SQLFetch with info"   the same for the n-th call that gives SQL_SUCCESS, and no other
//   "SQLFetch throwing"    nothing is done, and the code is thrown as an int
void FailOdbcCall(const std::string& function, int n, int code);

// One value of a row: a text, a number, or NULL, written as nullptr. Whatever the value is, it goes
// into a buffer of any type that the doubles know, as a driver converts it: the text of a number,
// the number that a text begins with (0 if none), a timestamp from "2010-03-31 12:30:15" or its
// first half. A number that an integer type doesn't have is an error and leaves the buffer alone.
class OdbcCell
{
public:
  OdbcCell(std::nullptr_t) {}
  OdbcCell(const char* utf8) : isNull(false), text(utf8) {}
  OdbcCell(const std::string& utf8) : isNull(false), text(utf8) {}
  OdbcCell(int number) : isNull(false), text(std::to_string(number)) {}
  OdbcCell(double number);

  bool IsNull() const { return isNull; }
  const std::string& Text() const { return text; }

private:
  bool isNull = true;
  std::string text;
};

// What one fetch gives: it fills the bound buffers of these cells and returns the code. Cells
// beyond the last one leave their buffers alone.
struct OdbcRow
{
  OdbcRow(std::initializer_list<OdbcCell> values) : cells(values) {}

  std::vector<OdbcCell> cells;
  // SQL_SUCCESS becomes SQL_SUCCESS_WITH_INFO if a text was cut, and SQL_ERROR if a NULL has no
  // length word to go to.
  int code = SQL_SUCCESS;
};

using OdbcRows = std::vector<OdbcRow>;

// A fetch that returns the code, whatever it is; the next fetch goes on with the next row.
OdbcRow FetchGives(int code, const OdbcRow& row = {});

// A row of SQLColumnsW. The 18 values that a test doesn't set are those that an honest driver
// gives for a column of this type.
class OdbcColumn
{
public:
  OdbcColumn(const std::string& name, int dataType, const OdbcCell& size,
             const OdbcCell& nullable = SQL_NULLABLE);

  // Positions are counted from 1: 4 is COLUMN_NAME, 7 COLUMN_SIZE, 11 NULLABLE ...
  OdbcColumn& Set(int position, const OdbcCell& value);

  // ordinal counts the columns of the table from 1.
  OdbcRow Row(const std::string& table, int ordinal) const;

private:
  std::string columnName;
  int sqlType;
  std::map<int, OdbcCell> values;
};

// What SQLExecDirectW, SQLColumnsW or SQLTablesW gives. Rows are there if the code is 0 or 1.
struct OdbcResult
{
  int code = SQL_SUCCESS;
  bool hasRows = false;  // false for an UPDATE and its like: nothing can be fetched
  OdbcRows rows;
};

// What one connection string leads to. Each description replaces an earlier one of the same thing.
class OdbcDatabase
{
public:
  // The code of SQLDriverConnectW. The connection is made if it is 0 or 1.
  OdbcDatabase& ConnectGives(int code);

  // The rows of "SELECT * FROM <name>".
  OdbcDatabase& Table(const std::string& name, const OdbcRows& rows);
  // The rows of this statement, which is compared exactly.
  OdbcDatabase& Query(const std::string& statement, const OdbcRows& rows, int code = SQL_SUCCESS);
  // A statement that returns the code and has no rows.
  OdbcDatabase& Statement(const std::string& statement, int code = SQL_SUCCESS);
  // All statements that are not described return the code, instead of SQL_ERROR.
  OdbcDatabase& OtherStatements(int code);

  // SQLColumnsW of this table, whose name is matched by the pattern that is asked for, without
  // regard to case. A table that is not described has no columns.
  OdbcDatabase& Columns(const std::string& table, const std::vector<OdbcColumn>& columns);
  // The same with rows as they are.
  OdbcDatabase& ColumnRows(const std::string& table, const OdbcRows& rows);
  // Every SQLColumnsW returns the code.
  OdbcDatabase& ColumnsGive(int code);

  // SQLTablesW for the type TABLE. There are none at first.
  OdbcDatabase& Tables(const std::vector<std::string>& names, int code = SQL_SUCCESS);
  // The same with rows as they are, of five values.
  OdbcDatabase& TableRows(const OdbcRows& rows, int code = SQL_SUCCESS);

  int ConnectCode() const { return connectCode; }
  OdbcResult Execute(const std::string& statement) const;
  OdbcResult ColumnsMatching(const std::string& pattern) const;
  const OdbcResult& TableList() const { return tables; }

private:
  int connectCode = SQL_SUCCESS;
  int otherCode = SQL_ERROR;
  int columnsCode = SQL_SUCCESS;
  std::map<std::string, OdbcResult> statements;
  std::vector<std::pair<std::string, OdbcRows>> columnRows;
  OdbcResult tables{SQL_SUCCESS, true, {}};
};

class OdbcDouble
{
public:
  // Added if it isn't known yet. The connection string is compared exactly.
  OdbcDatabase& Database(const std::string& connectionString);

  // How many handles are allocated and not freed.
  int OpenEnvironments() const;
  int OpenConnections() const;
  int OpenStatements() const;
};

OdbcDouble& Odbc();

#endif
