#ifndef DATABASE_QULDATABASE_H
#define DATABASE_QULDATABASE_H

#include "foundation/QulArray.h"
#include "foundation/QulString.h"

#include <stdint.h>
#include <windows.h>
// The ODBC headers build on the one above.
#include <sql.h>
#include <sqlext.h>
#include <sqlucode.h>

class InfoTable;
class KFProjectsVersionTable;
class KFVersionTable;
class QulPatchDatabase;
class TableSchema;

// One database reached over ODBC, from its connection to its end, with the small tables that it
// tells about itself. An object that could not connect is legal: its tables are empty, its numbers
// 0. Failures are reported by ReportTrace or not at all; only memory that runs out throws.
class QulDatabase
{
public:
  // Connects and reads the version and info tables. name is the logical name of a product's
  // database or the file name of a patch. Neither text is null.
  QulDatabase(const wchar_t* connectionString, const wchar_t* name);
  QulDatabase(const QulDatabase&) = delete;
  QulDatabase& operator=(const QulDatabase&) = delete;
  // Disconnects; every statement of the connection ends with it.
  virtual ~QulDatabase();

  // Description of a table by the catalogue, without key; table is a search pattern of the
  // catalogue, as with TableExists. The caller owns the description. Columns keep the
  // order of the catalogue; those beyond TableSchema::Capacity are left out. A table that is not
  // there gives no columns. With hideOtherLanguages the columns that hold other languages' texts
  // are marked as hidden.
  virtual TableSchema* ReadTableSchema(const wchar_t* table, bool hideOtherLanguages);

  // Runs one statement and tells whether it succeeded. A statement that touches no row has not
  // succeeded. A failure is reported with the statement. The object is connected.
  // The trace of a failure speaks of it by this name.
  // NOLINTNEXTLINE(readability-identifier-naming)
  bool executeSQL(const wchar_t* statement);

  // Drops a table. A failure is reported. The object is connected.
  void DropTable(const wchar_t* table);

  // Whether the catalogue knows a table with a column. table is a search pattern of the catalogue.
  // One that fails in the middle of the answer counts as yes, an unconnected object as no.
  bool TableExists(const wchar_t* table);

  // The names of the tables, views left out; asked of the catalogue at the first call, and again as
  // long as it has given none. A name is cut to 128 characters, and after an error the names so far
  // stay. The list lives as long as this object.
  QulArray<QulString>& GetTableNames();

  QulString GetName() const { return name; }

  // A new statement of this connection, to be given back by FreeStatement; null if there is none to
  // be had. Calls on that fail as any other statement may.
  SQLHSTMT AllocateStatement() const;

  // Frees a statement of this connection and returns ODBC's code; -1 on an unconnected object.
  int32_t FreeStatement(SQLHSTMT statement) const;

  // Numbers of this database's version, as they were read at the connection. 0 stands for a number
  // that is missing or has anything but digits; the service pack's number may have a sign, blanks
  // in front and text behind it.
  int32_t GetMajorNumber() const;
  int32_t GetMinorNumber() const;
  int32_t GetCommMajorVersion() const;
  int32_t GetCommMinorVersion() const;
  int32_t GetCommSPNumber() const;
  int32_t GetBuildNumber() const;

  // True if the version is lower than that of other, by major, minor, service pack and build
  // number in this order. A strict weak order. False if other is null.
  bool IsOlderThan(const QulDatabase* other) const;

  // Copies the patch's version into the stored table, row by row; true if all six rows were there
  // to be changed. The numbers above stay as they were read.
  bool WriteVersion(const QulPatchDatabase& patch);

  // True if the patch's version table for projects has an attribute that this database's lacks or
  // has with a lower number. Both are as they were read at the connection.
  bool IsProjectsVersionOlderThan(const QulPatchDatabase& patch) const;

  // Copies the rows of that table into this database, and creates the table if there is none. False
  // if that failed, which is reported and leaves no row written, or if a row could not be inserted.
  bool WriteProjectsVersion(const QulPatchDatabase& patch);

  KFProjectsVersionTable* projectsVersionTable = nullptr;  // owned
  InfoTable* infoTable = nullptr;                          // owned
  KFVersionTable* versionTable = nullptr;                  // owned
  QulArray<QulString> tableNames;
  bool connected = false;
  QulString connectionString;
  QulString name;
  SQLHENV environmentHandle = SQL_NULL_HENV;
  SQLHDBC connectionHandle = SQL_NULL_HDBC;

private:
  const wchar_t* Connect();
};

#endif
