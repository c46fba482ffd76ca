#include "tests/scenario/Outcome.h"

#include <algorithm>
#include <fstream>
#include <iterator>

namespace {

namespace fs = std::filesystem;

constexpr size_t LongestRun = 40;

// Bytes of the UTF-8 character that begins with this one.
size_t CharacterLength(unsigned char first)
{
  if (first < 0xC0)
    return 1;
  if (first < 0xE0)
    return 2;
  return first < 0xF0 ? 3 : 4;
}

std::string Escaped(const std::string& character)
{
  if (character == "\n")
    return "\\n";
  if (character == "\r")
    return "\\r";
  return character == "\\" ? "\\\\" : character;
}

std::string Bracketed(const std::string& name)
{
  return "[" + name + "]";
}

std::string Quoted(std::string text)
{
  for (size_t at = 0; (at = text.find('\'', at)) != std::string::npos; at += 2)
    text.insert(at, 1, '\'');
  return "'" + text + "'";
}

// The driver adds TEXT to the word of a type that SQLite would else take for a number's.
std::string AsDeclared(const std::string& type)
{
  const std::string added = " TEXT";
  const size_t at = type.find(added);
  return at == std::string::npos ? type : type.substr(0, at) + type.substr(at + added.size());
}

std::string DescribeTable(const std::string& table, const Query& query)
{
  const std::string columnsOfTable = " FROM pragma_table_info(" + Quoted(table) + ") ORDER BY cid";
  const std::vector<std::string> names = query("SELECT name" + columnsOfTable);
  const std::vector<std::string> types = query("SELECT type" + columnsOfTable);
  const std::vector<std::string> rules = query(
      "SELECT CASE WHEN \"notnull\" THEN ' not null' ELSE '' END || "
      "CASE WHEN pk THEN ' key ' || pk ELSE '' END" +
      columnsOfTable);
  std::string description = table + "\n";
  std::string values;
  for (size_t i = 0; i < names.size(); ++i) {
    const std::string column = Bracketed(names[i]);
    description += "  column " + column + " " + AsDeclared(types[i]) + rules[i] + "\n";
    values += (i == 0 ? "" : " || ', ' || ");
    values += "CASE WHEN " + column + " IS NULL THEN '<null>' ELSE quote(" + column + ") END";
  }
  for (const std::string& row :
       query("SELECT " + values + " FROM " + Bracketed(table) + " ORDER BY rowid"))
    description += "  row " + OnOneLine(row) + "\n";
  return description;
}

void WriteText(const fs::path& file, const std::string& text)
{
  std::ofstream(file, std::ios::binary) << text;
}

}  // namespace

std::string DescribeContent(const Query& query)
{
  std::string description;
  for (const std::string& table :
       query("SELECT name FROM sqlite_schema WHERE type='table' ORDER BY lower(name)"))
    description += DescribeTable(table, query);
  return description;
}

std::string OnOneLine(const std::string& text)
{
  std::string line;
  for (size_t at = 0; at < text.size();) {
    const std::string character =
        text.substr(at, CharacterLength(static_cast<unsigned char>(text[at])));
    size_t times = 0;
    for (; text.compare(at, character.size(), character) == 0; at += character.size())
      ++times;
    if (times > LongestRun) {
      line += Escaped(character) + "<" + std::to_string(times) + " times>";
      continue;
    }
    for (; times > 0; --times)
      line += Escaped(character);
  }
  return line;
}

std::string DescribeStatement(const std::string& database, const std::string& sql, int code)
{
  const std::string line = database + ": " + OnOneLine(sql) + "\n";
  switch (code) {
    case 0: return line;
    case 1: return line + "  -> information\n";
    case 100: return line + "  -> no data\n";
    case -1: return line + "  -> error\n";
    default: return line + "  -> " + std::to_string(code) + "\n";
  }
}

bool ReadsStoredTable(const std::string& sql)
{
  return sql == "SELECT * FROM KFVersion" || sql == "SELECT * FROM KFProjectsVersion" ||
         sql == "SELECT * FROM Info";
}

bool OnlyReads(const std::string& sql)
{
  return sql.starts_with("SELECT ");
}

void RewriteExpectations(const Scenario& scenario, const Outcome& outcome)
{
  fs::remove_all(scenario.folder / "after");
  fs::create_directories(scenario.folder / "after");
  for (const auto& [name, text] : outcome.content)
    WriteText(scenario.folder / "after" / (name + ".txt"), text);
  WriteText(scenario.folder / "statements.txt", outcome.statements);
  WriteText(scenario.folder / "traces.txt", outcome.traces);
}
