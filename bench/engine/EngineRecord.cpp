// Applies a patch to a target and writes down the road of it, for replay_run. The linker leads the
// engine's calls of ODBC through here (--wrap).
// usage: engine_record PATCH TARGET TARGET_NAME ROAD
#include "bench/engine/EngineDatabases.h"
#include "bench/engine/Road.h"

#include <stdio.h>
#include <stdlib.h>

namespace {

class Recorder
{
public:
  explicit Recorder(const char* path) : file(fopen(path, "wb"))
  {
    if (file == nullptr) {
      perror(path);
      exit(2);
    }
  }
  Recorder(const Recorder&) = delete;
  Recorder& operator=(const Recorder&) = delete;
  ~Recorder()
  {
    if (fclose(file) != 0) {
      perror("the road");
      exit(2);
    }
  }

  void Allocated(SQLHDBC connection)
  {
    if (connection == target)
      freshHandle = true;
  }

  void Freed(SQLHSTMT statement)
  {
    if (statement == query)
      query = nullptr;
  }

  void Bound(SQLHSTMT statement, SQLUSMALLINT column, SQLSMALLINT type, SQLLEN bytes)
  {
    if (statement == query && query != nullptr)
      Write({RoadStep::Bind, 0, column, type, bytes});
  }

  // connection is the one that the statement belongs to.
  void Executed(SQLHDBC connection, SQLHSTMT statement, const wchar_t* text, SQLRETURN code)
  {
    if (connection == patch) {
      query = statement;
      Write(RoadStep::Select, text);
    } else if (connection == target && !IsQuery(text)) {
      Count(code);
      if (query == nullptr)
        Write(RoadStep::Alone, text);
      else
        Write(freshHandle ? RoadStep::Row : RoadStep::Again, text);
      rows += query != nullptr && freshHandle ? 1 : 0;
      freshHandle = false;
    }
  }

  void Print() const
  {
    printf("rows %ld\nstatements %ld\nno_data %ld\nfailed %ld\n", rows, statements, noData, failed);
  }

  SQLHDBC patch = nullptr;
  SQLHDBC target = nullptr;

private:
  // What the engine asks the target about keys belongs to no row and is no part of the road.
  static bool IsQuery(const wchar_t* text) { return text[0] == L'S'; }

  void Count(SQLRETURN code)
  {
    ++statements;
    noData += code == SQL_NO_DATA ? 1 : 0;
    failed += code != SQL_NO_DATA && !SQL_SUCCEEDED(code) ? 1 : 0;
  }

  void Write(RoadStep step, const wchar_t* text)
  {
    uint32_t characters = 0;
    while (text[characters++] != L'\0') {
    }
    Write({step, characters, 0, 0, 0});
    (void)fwrite(text, sizeof(wchar_t), characters, file);
  }

  void Write(const RoadEntry& entry) { (void)fwrite(&entry, sizeof(entry), 1, file); }

  FILE* file;
  SQLHSTMT query = nullptr;  // of the step under way
  bool freshHandle = false;  // on the target, not used yet
  long rows = 0;
  long statements = 0;
  long noData = 0;
  long failed = 0;
};

Recorder* recorder = nullptr;
SQLHDBC connectionOfLast = nullptr;

}  // namespace

extern "C" {

SQLRETURN WINAPI __real_SQLAllocHandle(SQLSMALLINT kind, SQLHANDLE parent, SQLHANDLE* handle);
SQLRETURN WINAPI __real_SQLFreeHandle(SQLSMALLINT kind, SQLHANDLE handle);
SQLRETURN WINAPI __real_SQLExecDirectW(SQLHSTMT statement, SQLWCHAR* text, SQLINTEGER length);
SQLRETURN WINAPI __real_SQLBindCol(SQLHSTMT statement, SQLUSMALLINT column, SQLSMALLINT type,
                                   SQLPOINTER buffer, SQLLEN bytes, SQLLEN* lengthWord);

SQLRETURN WINAPI __wrap_SQLAllocHandle(SQLSMALLINT kind, SQLHANDLE parent, SQLHANDLE* handle)
{
  if (recorder != nullptr && kind == SQL_HANDLE_STMT) {
    recorder->Allocated(parent);
    connectionOfLast = parent;
  }
  return __real_SQLAllocHandle(kind, parent, handle);
}

SQLRETURN WINAPI __wrap_SQLFreeHandle(SQLSMALLINT kind, SQLHANDLE handle)
{
  if (recorder != nullptr && kind == SQL_HANDLE_STMT)
    recorder->Freed(handle);
  return __real_SQLFreeHandle(kind, handle);
}

SQLRETURN WINAPI __wrap_SQLExecDirectW(SQLHSTMT statement, SQLWCHAR* text, SQLINTEGER length)
{
  const SQLRETURN code = __real_SQLExecDirectW(statement, text, length);
  // The engine runs a statement before it allocates another.
  if (recorder != nullptr)
    recorder->Executed(connectionOfLast, statement, text, code);
  return code;
}

SQLRETURN WINAPI __wrap_SQLBindCol(SQLHSTMT statement, SQLUSMALLINT column, SQLSMALLINT type,
                                   SQLPOINTER buffer, SQLLEN bytes, SQLLEN* lengthWord)
{
  if (recorder != nullptr)
    recorder->Bound(statement, column, type, bytes);
  return __real_SQLBindCol(statement, column, type, buffer, bytes, lengthWord);
}

}  // extern "C"

int main(int argumentCount, char** arguments)
{
  if (argumentCount != 5) {
    (void)fprintf(stderr, "usage: engine_record PATCH TARGET TARGET_NAME ROAD\n");
    return 2;
  }
  EngineDatabases databases(arguments[1], arguments[2], arguments[3]);
  Recorder road(arguments[4]);
  road.patch = databases.patch.connectionHandle;
  road.target = databases.target.connectionHandle;
  recorder = &road;
  databases.patch.ApplyPatch(&databases.target);
  recorder = nullptr;
  road.Print();
  printf("traces %d\n", databases.Traces());
  return 0;
}
