// The bare road: asks ODBC for exactly what an engine asked for its rows, and does nothing else.
// usage: replay_run PATCH TARGET ROAD
#include "bench/engine/Road.h"
#include "bench/engine/RunReport.h"

#include <windows.h>
// The ODBC headers build on the one above.
#include <sql.h>
#include <sqlext.h>
#include <sqlucode.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <memory>
#include <string>
#include <vector>

namespace {

[[noreturn]] void End(const char* sentence, const char* what)
{
  (void)fprintf(stderr, "%s %s\n", sentence, what);
  exit(2);
}

// A connection made in the way of the engine.
class Connection
{
public:
  explicit Connection(const char* path)
  {
    (void)SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &environment);
    (void)SQLSetEnvAttr(environment, SQL_ATTR_ODBC_VERSION,
                        reinterpret_cast<SQLPOINTER>(uintptr_t{SQL_OV_ODBC3}), SQL_IS_INTEGER);
    (void)SQLAllocHandle(SQL_HANDLE_DBC, environment, &handle);
    const std::string narrow = std::string("DRIVER={Kestrel ODBC Driver};UID=;PWD=;DBQ=") + path;
    std::vector<wchar_t> text(narrow.begin(), narrow.end());
    text.push_back(L'\0');
    if (!SQL_SUCCEEDED(SQLDriverConnectW(handle, nullptr, text.data(), SQL_NTS, nullptr, 0, nullptr,
                                         SQL_DRIVER_NOPROMPT)))
      End("Can't open", path);
  }
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;
  ~Connection()
  {
    (void)SQLDisconnect(handle);
    (void)SQLFreeHandle(SQL_HANDLE_DBC, handle);
    (void)SQLFreeHandle(SQL_HANDLE_ENV, environment);
  }

  SQLHSTMT AllocateStatement() const
  {
    SQLHSTMT statement = SQL_NULL_HSTMT;
    (void)SQLAllocHandle(SQL_HANDLE_STMT, handle, &statement);
    return statement;
  }

private:
  SQLHENV environment = SQL_NULL_HENV;
  SQLHDBC handle = SQL_NULL_HDBC;
};

// Reads the road in pieces that stay in the processor's cache, as a text does that has just been
// composed. Meanwhile the watch stands still.
class RoadReader
{
public:
  RoadReader(const char* path, Stopwatch& stoppedWatch)
      : file(fopen(path, "rb")), buffer(LongestEntry + PieceBytes), watch(stoppedWatch)
  {
    if (file == nullptr)
      End("Can't open", path);
  }
  RoadReader(const RoadReader&) = delete;
  RoadReader& operator=(const RoadReader&) = delete;
  ~RoadReader() { (void)fclose(file); }

  // The next entry, false at the end. Its text holds until the next call.
  bool Next()
  {
    begin += taken;
    taken = 0;
    if (!Holds(sizeof(RoadEntry)))
      return false;
    memcpy(&entry, buffer.data() + begin, sizeof(entry));
    const size_t size = sizeof(entry) + entry.characters * sizeof(wchar_t);
    if (!Holds(size))
      End("This road breaks off in the middle of", "an entry");
    taken = size;
    return true;
  }

  const RoadEntry& Entry() const { return entry; }
  wchar_t* Text() { return reinterpret_cast<wchar_t*>(buffer.data() + begin + sizeof(entry)); }

private:
  static constexpr size_t LongestEntry = size_t{2} * 1024 * 1024;
  static constexpr size_t PieceBytes = size_t{256} * 1024;

  bool Holds(size_t size)
  {
    while (end - begin < size) {
      if (size > LongestEntry)
        End("This road has an entry that is", "too long");
      watch.Stop();
      memmove(buffer.data(), buffer.data() + begin, end - begin);
      end -= begin;
      begin = 0;
      const size_t read = fread(buffer.data() + end, 1, PieceBytes, file);
      end += read;
      watch.Start();
      if (read == 0)
        return false;
    }
    return true;
  }

  FILE* file;
  std::vector<char> buffer;
  size_t begin = 0;
  size_t end = 0;
  size_t taken = 0;
  RoadEntry entry{};
  Stopwatch& watch;
};

class Replay
{
public:
  Replay(const Connection& patchConnection, const Connection& targetConnection)
      : patch(patchConnection), target(targetConnection)
  {
  }

  void Run(RoadReader& road)
  {
    while (road.Next())
      Take(road.Entry(), road.Text());
    EndRow();
    EndQuery();
  }

private:
  struct Buffer
  {
    std::unique_ptr<char[]> bytes;
    SQLLEN indicator;
  };

  void Take(const RoadEntry& entry, wchar_t* text)
  {
    switch (entry.step) {
      case RoadStep::Row:
        EndRow();
        (void)SQLFetch(query);
        statement = target.AllocateStatement();
        (void)SQLExecDirectW(statement, text, SQL_NTS);
        return;
      case RoadStep::Again: (void)SQLExecDirectW(statement, text, SQL_NTS); return;
      case RoadStep::Select:
        EndRow();
        EndQuery();
        query = patch.AllocateStatement();
        (void)SQLExecDirectW(query, text, SQL_NTS);
        return;
      case RoadStep::Bind: Bind(entry); return;
      case RoadStep::Alone:
        EndRow();
        EndQuery();
        statement = target.AllocateStatement();
        (void)SQLExecDirectW(statement, text, SQL_NTS);
        EndRow();
        return;
    }
  }

  void Bind(const RoadEntry& entry)
  {
    Buffer& buffer = buffers.emplace_back(std::make_unique<Buffer>()).operator*();
    buffer.bytes = std::make_unique<char[]>(static_cast<size_t>(entry.bufferBytes) + 32);
    (void)SQLBindCol(query, static_cast<SQLUSMALLINT>(entry.column),
                     static_cast<SQLSMALLINT>(entry.bufferType), buffer.bytes.get(),
                     entry.bufferBytes, &buffer.indicator);
  }

  void EndRow()
  {
    if (statement != SQL_NULL_HSTMT)
      (void)SQLFreeHandle(SQL_HANDLE_STMT, statement);
    statement = SQL_NULL_HSTMT;
  }

  // The engine's last fetch finds no row.
  void EndQuery()
  {
    if (query == SQL_NULL_HSTMT)
      return;
    if (SQLFetch(query) != SQL_NO_DATA)
      End("The road ends before", "the rows of the patch");
    (void)SQLFreeHandle(SQL_HANDLE_STMT, query);
    query = SQL_NULL_HSTMT;
    buffers.clear();
  }

  const Connection& patch;
  const Connection& target;
  SQLHSTMT query = SQL_NULL_HSTMT;
  SQLHSTMT statement = SQL_NULL_HSTMT;
  std::vector<std::unique_ptr<Buffer>> buffers;
};

}  // namespace

int main(int argumentCount, char** arguments)
{
  if (argumentCount != 4)
    End("usage: replay_run", "PATCH TARGET ROAD");
  Stopwatch watch;
  {
    const Connection patch(arguments[1]);
    const Connection target(arguments[2]);
    Replay replay(patch, target);
    RoadReader road(arguments[3], watch);
    watch.Start();
    replay.Run(road);
    watch.Stop();
  }
  ReportRun(watch.Seconds(), 0);
  return 0;
}
