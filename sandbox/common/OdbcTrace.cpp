#include "sandbox/common/OdbcTrace.h"

#include <map>
#include <sstream>

namespace {

bool StartsWith(const std::string& text, const std::string& beginning)
{
  return text.compare(0, beginning.size(), beginning) == 0;
}

std::string Between(const std::string& text, const std::string& before, const std::string& behind)
{
  const size_t start = text.find(before);
  if (start == std::string::npos) {
    return std::string();
  }
  const size_t first = start + before.size();
  const size_t end = text.find(behind, first);
  return end == std::string::npos ? text.substr(first) : text.substr(first, end - first);
}

// "[DRIVER={...};DBQ=C:\a.mdb][length = 70 (SQL_NTS)]" is the connection string C:\a.mdb.
std::string FileOf(const std::string& logged)
{
  const std::string connectionString = Between(logged, "[", "][length");
  const size_t at = connectionString.find("DBQ=");
  return at == std::string::npos ? connectionString : connectionString.substr(at + 4);
}

// "[ODBC][process][time][SQLFetch.c][158]" is SQLFetch: the driver manager has a source file for
// each.
std::string FunctionOf(const std::string& line)
{
  const size_t end = line.find(".c][");
  const size_t bracket = line.rfind('[', end);
  return end == std::string::npos ? std::string() : line.substr(bracket + 1, end - bracket - 1);
}

// One record of the driver manager about a function: that it was entered, that it was left, or a
// remark on the way, which is neither.
struct Record
{
  std::string function;
  bool isEntry = false;
  std::string result;  // of an exit; else empty
  std::string reason;  // of an exit that tells one: "[23000] [Driver] text"
  std::map<std::string, std::string> values;
};

std::vector<Record> ReadRecords(const std::string& trace)
{
  std::vector<Record> records;
  std::istringstream lines(trace);
  std::string line;
  while (std::getline(lines, line)) {
    const size_t text = line.find_first_not_of('\t');
    const size_t equals = line.find(" = ");
    if (StartsWith(line, "[ODBC]")) {
      records.emplace_back().function = FunctionOf(line);
    } else if (records.empty() || text == std::string::npos) {
      continue;
    } else if (line.substr(text) == "Entry:") {
      records.back().isEntry = true;
    } else if (StartsWith(line.substr(text), "Exit:[")) {
      records.back().result = Between(line, "Exit:[", "]");
    } else if (StartsWith(line.substr(text), "DIAG ")) {
      records.back().reason = line.substr(text + 5);
    } else if (equals != std::string::npos) {
      records.back().values[line.substr(text, equals - text)] = line.substr(equals + 3);
    }
  }
  return records;
}

class TrafficReader
{
public:
  void Take(const Record& record)
  {
    if (record.isEntry) {
      Enter(record);
    } else if (!record.result.empty()) {
      Leave(record);
    }
  }

  OdbcTraffic traffic;

private:
  void Enter(const Record& record)
  {
    entry = record;
    if (record.function == "SQLDriverConnectW") {
      connectionOf[Value("Connection")] = traffic.connections.size();
      traffic.connections.push_back({FileOf(Value("Str In")), false, false, {}, {}});
    } else if (record.function == "SQLExecDirectW") {
      if (OdbcConnection* connection = Find(statementOwner[Value("Statement")])) {
        connection->statements.push_back(Between(Value("SQL"), "[", "][length"));
        connection->outcomes.emplace_back();
      }
    } else if (record.function == "SQLDisconnect") {
      Release(Find(Value("Connection")));
    }
  }

  void Release(OdbcConnection* connection)
  {
    if (connection == nullptr) {
      return;
    }
    connection->released = true;
    if (connection->connected) {
      traffic.closed.push_back(connection->file);
    }
  }

  void Leave(const Record& record)
  {
    const bool good = StartsWith(record.result, "SQL_SUCCESS");
    if (good && record.function == "SQLDriverConnectW" && !traffic.connections.empty()) {
      traffic.connections.back().connected = true;
    } else if (good && record.function == "SQLAllocHandle" && Value("Handle Type") == "3") {
      const auto output = record.values.find("Output Handle");
      if (output != record.values.end()) {
        statementOwner[output->second] = Value("Input Handle");
      }
    } else if (record.function == "SQLExecDirectW" && entry.function == record.function) {
      if (OdbcConnection* connection = Find(statementOwner[Value("Statement")])) {
        connection->outcomes.back() = {record.result, record.reason};
      }
    }
  }

  // Of the entry that the last exit belongs to.
  std::string Value(const std::string& name) const
  {
    const auto found = entry.values.find(name);
    return found == entry.values.end() ? std::string() : found->second;
  }

  OdbcConnection* Find(const std::string& handle)
  {
    const auto found = connectionOf.find(handle);
    return found == connectionOf.end() ? nullptr : &traffic.connections[found->second];
  }

  Record entry;
  std::map<std::string, size_t> connectionOf;         // by handle
  std::map<std::string, std::string> statementOwner;  // connection by statement
};

}  // namespace

OdbcTraffic ParseOdbcTrace(const std::string& trace)
{
  TrafficReader reader;
  for (const Record& record : ReadRecords(trace)) {
    reader.Take(record);
  }
  return reader.traffic;
}
