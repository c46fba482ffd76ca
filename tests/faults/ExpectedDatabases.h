#ifndef FAULTS_EXPECTEDDATABASES_H
#define FAULTS_EXPECTEDDATABASES_H

#include "tests/faults/RichLaunch.h"

#include <utility>

// What the databases of the product may hold after a launch: one content, and for single tables
// others that are right too.
class ExpectedDatabases
{
public:
  using Contents = std::map<std::string, DatabaseContent>;

  explicit ExpectedDatabases(const Contents& exactly) : expected(exactly) {}

  void Replace(const std::string& database, const DatabaseContent& content);
  // The table as it stands in other contents, where it may be missing.
  void ReplaceTable(const std::string& database, const std::string& table, const Contents& by);

  void AllowTable(const std::string& database, const std::string& table, const Contents& as);
  void AllowRows(const std::string& database, const std::string& table,
                 const std::vector<std::string>& rows);
  void AllowAbsence(const std::string& database, const std::string& table);
  // One row of this beginning may be missing, one may be there instead or besides, and no other
  // differs.
  void AllowOneRow(const std::string& database, const std::string& table,
                   const std::string& beginning);
  // The table may hold, in columns that it is to have, what stands in those of the known contents,
  // and what a value that was never read is written as.
  void AllowKnownValues(const std::string& database, const std::string& table,
                        const std::vector<const Contents*>& known);
  void AllowAnything(const std::string& database, const std::string& table);

  // What is wrong, a sentence each.
  std::vector<std::string> Judge(const Contents& actual) const;

private:
  using Place = std::pair<std::string, std::string>;
  using Rows = std::vector<std::string>;

  bool Allows(const Place& place, const Rows& actual) const;

  Contents expected;
  std::map<Place, std::vector<Rows>> alternatives;  // no rows at all: absence
  std::map<Place, std::string> oneRow;              // how it begins
  std::set<Place> anything;
  std::map<Place, std::set<std::string>> knownValues;
};

#endif
