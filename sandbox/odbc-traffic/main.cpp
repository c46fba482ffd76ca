// Reads a trace of unixODBC and prints what it tells of databases, a line each, in order:
//   opened <file>   or   refused <file>        for each connection that was asked for,
//   ran <file> <result> <statement> <reason>   for each statement run on it: SQL_SUCCESS,
//                                              SQL_NO_DATA, SQL_ERROR ..., the text, and why it
//                                              failed or nothing,
//   closed <file>                              for each one that was disconnected again.
// What stands in <> is separated by tabs. OdbcTraffic.exe <trace file>

#include "sandbox/common/OdbcTrace.h"
#include "sandbox/common/SandboxFiles.h"

#include <windows.h>

#include <fcntl.h>
#include <io.h>
#include <shellapi.h>
#include <stdio.h>

int main()
{
  int count = 0;
  wchar_t** arguments = CommandLineToArgvW(GetCommandLineW(), &count);
  const std::wstring path = count == 2 ? arguments[1] : L"";
  LocalFree(arguments);
  std::string trace;
  if (path.empty() || !ReadWholeFile(path, trace)) {
    fputs("usage: OdbcTraffic <trace file of unixODBC>\n", stderr);
    return 1;
  }
  _setmode(_fileno(stdout), _O_BINARY);
  const OdbcTraffic traffic = ParseOdbcTrace(trace);
  for (const OdbcConnection& connection : traffic.connections) {
    printf("%s\t%s\n", connection.connected ? "opened" : "refused", connection.file.c_str());
    for (size_t i = 0; i < connection.statements.size(); ++i) {
      const OdbcOutcome& outcome = connection.outcomes[i];
      printf("ran\t%s\t%s\t%s\t%s\n", connection.file.c_str(), outcome.result.c_str(),
             connection.statements[i].c_str(), outcome.reason.c_str());
    }
  }
  for (const std::string& file : traffic.closed) {
    printf("closed\t%s\n", file.c_str());
  }
  return 0;
}
