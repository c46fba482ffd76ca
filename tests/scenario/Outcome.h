#ifndef SCENARIO_OUTCOME_H
#define SCENARIO_OUTCOME_H

// What an update has done, in the form of the expectations of a scenario.

#include "tests/scenario/Scenario.h"

#include <functional>
#include <map>
#include <string>
#include <vector>

struct Outcome
{
  std::map<std::string, std::string> content;  // by the product's name
  std::string statements;
  std::string traces;
};

// A query on one database, and the texts of its one column. A NULL is an empty text.
using Query = std::function<std::vector<std::string>(const std::string& sql)>;

// All tables of a database, by name: the columns with their types and keys, and the rows in the
// order in which they came in, each value as a literal.
std::string DescribeContent(const Query& query);

// A text on one line: \n and \r for the ends of lines, \\ for a backslash, and a character that
// stands more than 40 times in a row once, with its number, as in x<60000 times>.
std::string OnOneLine(const std::string& text);

// A statement that was sent to a database, with what came of it if that is not success.
std::string DescribeStatement(const std::string& database, const std::string& sql, int code);

// True for the statements by which every database is read when it is opened.
bool ReadsStoredTable(const std::string& sql);
// True if the statement can't change anything.
bool OnlyReads(const std::string& sql);

// Writes the outcome in the place of the expectations.
void RewriteExpectations(const Scenario& scenario, const Outcome& outcome);

#endif
