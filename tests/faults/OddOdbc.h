#ifndef FAULTS_ODDODBC_H
#define FAULTS_ODDODBC_H

// A driver that answers oddly: it stands in front of the one that the machine has, and changes what
// a test wants to be changed.
//
// What a statement asks for, its question, is its text, "columns of TABLE" or "tables".

#include "tests/doubles/OdbcEngine.h"

#include <functional>
#include <map>
#include <string>
#include <vector>

// A buffer that a column is bound to.
struct OddBinding
{
  SQLSMALLINT type;
  void* buffer;
  SQLLEN bytes;
  SQLLEN* lengthWord;

  // What the fetch at hand found there.
  std::vector<char> contentBefore;
  SQLLEN lengthBefore;
};

// A row that has just been fetched. Columns that aren't bound are passed over.
class FetchedRow
{
public:
  FetchedRow(const std::string& question, std::map<SQLUSMALLINT, OddBinding>& bindings)
      : asked(question), bound(bindings)
  {
  }

  const std::string& Question() const { return asked; }
  // True for a question of the catalogue that wants to know a table's existence alone.
  bool IsLookup() const { return asked.starts_with("columns of ") && bound.size() == 1; }

  std::string Text(SQLUSMALLINT column) const;
  // Cut at the end of the buffer.
  void SetText(SQLUSMALLINT column, const std::string& text);
  // Into a buffer for numbers of 16 or 32 bits.
  void SetNumber(SQLUSMALLINT column, int number);
  // Leaves in the buffer what was there before.
  void SetNull(SQLUSMALLINT column);
  void SetLengths(SQLLEN length);
  // As if the driver had not written the length words.
  void ForgetLengths();
  // Writes to all of each text's buffer that the driver was told of, behind the text.
  void FillBuffers();

private:
  OddBinding* Find(SQLUSMALLINT column) const;

  std::string asked;
  std::map<SQLUSMALLINT, OddBinding>& bound;
};

// Each is left out if it is empty.
struct OddAnswers
{
  // True if the statement is refused with SQL_ERROR and not carried out.
  std::function<bool(const std::string& statement)> refuses;
  // The result of a statement that gave this one.
  std::function<SQLRETURN(const std::string& statement, SQLRETURN code)> executed;
  // True if there are no rows.
  std::function<bool(const std::string& question)> isEmpty;
  // How often each row is given.
  std::function<int(const std::string& question)> copies;
  std::function<void(FetchedRow& row)> fetched;
};

// From now on and until ResetPlatform.
void AnswerOddly(const OddAnswers& answers);

#endif
