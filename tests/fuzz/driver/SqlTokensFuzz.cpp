// Statements are cut into words as a plain reader cuts them, escape sequences go and all else
// stays, and a mended definition makes the same table as the one that was written.

#include "driver/SqlTokens.h"

#include <sqlite3.h>

#include <cstdint>
#include <optional>

#include "driver/Collation.h"
#include "driver/TableDefinition.h"
#include "driver/Text.h"
#include "tests/fuzz/Require.h"

namespace {

// An input is a row of bytes; those below the count of the pieces stand for one.
const char* const Pieces[] = {"CREATE ",
                              "TABLE ",
                              "ALTER ",
                              "ADD ",
                              "COLUMN ",
                              "[T] ",
                              "T ",
                              "(",
                              ")",
                              ",",
                              ";",
                              "[A] ",
                              "[B] ",
                              "C ",
                              "\"D\" ",
                              "`E` ",
                              "MEMO ",
                              "TEXT",
                              "(50) ",
                              "LONG ",
                              "COUNTER ",
                              "INTEGER ",
                              "DATETIME ",
                              "DECIMAL",
                              "(10,2) ",
                              "LONGBINARY ",
                              "BIT ",
                              "NOT ",
                              "NULL ",
                              "PRIMARY ",
                              "KEY ",
                              "UNIQUE ",
                              "CONSTRAINT ",
                              "DEFAULT ",
                              "CHECK ",
                              "COLLATE ",
                              "NOCASE ",
                              "REFERENCES ",
                              "AUTOINCREMENT ",
                              "1 ",
                              "'x' ",
                              "'a''b' ",
                              "--c\n",
                              "/*c*/",
                              "IF ",
                              "EXISTS ",
                              "TEMP ",
                              "GENERATED ",
                              "AS ",
                              "{d '2007-03-09'}",
                              "{escape '!'}",
                              "{fn ",
                              "}",
                              "WITH ",
                              "SELECT ",
                              "UPDATE ",
                              "DOUBLE ",
                              "PRECISION ",
                              "VARYING ",
                              "[a, b) c] ",
                              "CREATE TABLE T (A ",
                              "PRIMARY KEY ",
                              "NOT NULL ",
                              "PRIMARY KEY (A) "};

std::string StatementOf(const uint8_t* data, size_t size)
{
  std::string statement;
  for (size_t i = 0; i < size; ++i) {
    constexpr size_t count = sizeof(Pieces) / sizeof(Pieces[0]);
    if (data[i] >= 0x80 && data[i] - 0x80U < count)
      statement += Pieces[data[i] - 0x80U];
    else
      statement += static_cast<char>(data[i]);
  }
  return statement;
}

// Reads a statement character by character.
class PlainReader
{
public:
  explicit PlainReader(const std::string& text) : statement(text) {}

  // Takes the next token; nothing at the end.
  std::optional<SqlToken> Next()
  {
    SkipBlanks();
    if (position >= statement.size())
      return std::nullopt;
    SqlToken token = {TokenKind::Symbol, position, position};
    const char first = statement[position];
    if (first == '\'' || first == '"' || first == '`' || first == '[') {
      token.kind = first == '\'' ? TokenKind::Text : TokenKind::Name;
      SkipQuoted(first);
    } else if (IsWordCharacter(first)) {
      token.kind = first >= '0' && first <= '9' ? TokenKind::Number : TokenKind::Word;
      while (position < statement.size() && IsWordCharacter(statement[position]))
        ++position;
    } else {
      ++position;
    }
    token.end = position;
    return token;
  }

private:
  static bool IsWordCharacter(char character)
  {
    static const std::string plain =
        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_$";
    return character < 0 || plain.find(character) != std::string::npos;
  }

  bool StartsWith(const char* text) const { return statement.compare(position, 2, text) == 0; }

  void SkipBlanks()
  {
    while (position < statement.size()) {
      if (std::string(" \t\n\v\f\r").find(statement[position]) != std::string::npos)
        ++position;
      else if (StartsWith("--"))
        position = std::min(statement.find('\n', position), statement.size());
      else if (StartsWith("/*"))
        position = std::min(statement.find("*/", position + 2), statement.size() - 2) + 2;
      else
        return;
    }
  }

  void SkipQuoted(char quote)
  {
    const char end = quote == '[' ? ']' : quote;
    for (++position; position < statement.size(); ++position) {
      if (statement[position] != end)
        continue;
      const bool isDoubled =
          quote != '[' && position + 1 < statement.size() && statement[position + 1] == end;
      if (!isDoubled) {
        ++position;
        return;
      }
      ++position;
    }
    position = statement.size();
  }

  const std::string& statement;
  size_t position = 0;
};

void CheckTokens(const std::string& statement)
{
  PlainReader reader(statement);
  bool isFirst = true;
  for (const SqlToken& token : SplitStatement(statement)) {
    const std::optional<SqlToken> expected = reader.Next();
    Require(expected.has_value(), "a statement has no more tokens than it shows");
    Require(token.kind == expected->kind, "a token is of its kind");
    Require(token.begin == expected->begin && token.end == expected->end,
            "a token has its beginning and its end");
    const bool isWord = token.kind == TokenKind::Word || token.kind == TokenKind::Number;
    if (isFirst)
      Require(FirstWord(statement) ==
                  (isWord ? statement.substr(token.begin, token.end - token.begin) : ""),
              "the first word is the first token");
    isFirst = false;
  }
  Require(!reader.Next(), "a statement has no fewer tokens than it shows");
}

// A quoted piece as it is, or a single character.
std::string TakePiece(const std::string& statement, size_t& position)
{
  const char first = statement[position];
  size_t end = position + 1;
  if (first == '\'' || first == '"' || first == '`' || first == '[') {
    const std::string rest = statement.substr(position);
    end = position + PlainReader(rest).Next()->end;
  }
  const std::string piece = statement.substr(position, end - position);
  position = end;
  return piece;
}

// Without what is left behind by a sequence, all pieces of a statement come back.
void CheckEscapeSequences(const std::string& statement)
{
  const std::string replaced = ReplaceEscapeSequences(statement);
  bool hasSequence = false;
  for (size_t position = 0; position < statement.size() && !hasSequence;)
    hasSequence = TakePiece(statement, position) == "{";
  if (!hasSequence)
    Require(replaced == statement, "a statement without sequences stays as it is");
  Require(replaced.size() <= statement.size(), "a sequence stands for less than itself");
  for (size_t position = 0; position < replaced.size();)
    Require(TakePiece(replaced, position) != "{", "no sequence is left");
}

class Database
{
public:
  Database()
  {
    Require(sqlite3_open(":memory:", &handle) == SQLITE_OK, "there is a database");
    Require(RegisterCollations(handle) == SQLITE_OK, "the collations are known");
    (void)sqlite3_set_authorizer(handle, Allow, nullptr);
  }
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;
  ~Database() { (void)sqlite3_close(handle); }

  // Whether the statement is one and is taken.
  bool Run(const std::string& sql)
  {
    sqlite3_stmt* statement = nullptr;
    const char* rest = nullptr;
    const int size = static_cast<int>(sql.size());
    int code = sqlite3_prepare_v2(handle, sql.data(), size, &statement, &rest);
    if (code == SQLITE_OK && statement != nullptr)
      code = sqlite3_step(statement);
    (void)sqlite3_finalize(statement);
    return code == SQLITE_DONE || code == SQLITE_ROW;
  }

  // The columns of all tables: name, whether it takes NULL, default and place in the key.
  std::string Describe()
  {
    std::string description;
    sqlite3_stmt* statement = nullptr;
    (void)sqlite3_prepare_v2(
        handle,
        "SELECT t.name || '|' || c.name || '|' || (c.\"notnull\" OR c.pk > 0) || '|' || "
        "ifnull(c.dflt_value, '-') || '|' || c.pk || char(10) "
        "FROM (SELECT name FROM sqlite_schema UNION ALL SELECT name FROM sqlite_temp_schema) AS t, "
        "pragma_table_xinfo(t.name) AS c ORDER BY t.name, c.cid",
        -1, &statement, nullptr);
    while (sqlite3_step(statement) == SQLITE_ROW)
      description += reinterpret_cast<const char*>(sqlite3_column_text(statement, 0));
    (void)sqlite3_finalize(statement);
    return description;
  }

private:
  // Tables may be made and described; nothing else is done by a definition.
  static int Allow(void*, int action, const char*, const char*, const char*, const char*)
  {
    return action == SQLITE_ATTACH || action == SQLITE_CREATE_VTABLE ? SQLITE_DENY : SQLITE_OK;
  }

  sqlite3* handle = nullptr;
};

bool HasWord(const std::string& statement, std::string_view word)
{
  for (const SqlToken& token : SplitStatement(statement)) {
    if (EqualsNoCase(std::string_view(statement).substr(token.begin, token.end - token.begin),
                     word))
      return true;
  }
  return false;
}

// SQLite takes texts and quoted names as words of a type, which nobody writes and the driver
// doesn't know.
bool HasQuotedTypeWord(const std::string& statement)
{
  bool mayQuote = true;
  for (const SqlToken& token : SplitStatement(statement)) {
    const std::string text = statement.substr(token.begin, token.end - token.begin);
    if ((token.kind == TokenKind::Text || token.kind == TokenKind::Name) && !mayQuote)
      return true;
    mayQuote = token.kind == TokenKind::Symbol;
    for (const char* word :
         {"ADD", "COLLATE", "COLUMN", "CONSTRAINT", "DEFAULT", "EXISTS", "REFERENCES", "TABLE"})
      mayQuote = mayQuote || EqualsNoCase(text, word);
  }
  return false;
}

void CheckDefinition(const std::string& statement)
{
  const std::string mended = MendTableDefinition(statement);
  if (!MayDefineTable(statement)) {
    Require(mended == statement, "what defines no table stays as it is");
    return;
  }
  // A table that is made of a query could take for ever; SQLite ends text at a zero.
  if (HasWord(statement, "SELECT") || HasWord(statement, "WITH") ||
      statement.find('\0') != std::string::npos || HasQuotedTypeWord(statement))
    return;
  Database plain;
  Database driver;
  const std::string base = "CREATE TABLE T (base)";
  if (!EqualsNoCase(FirstWord(statement), "CREATE")) {
    (void)plain.Run(base);
    (void)driver.Run(base);
  }
  if (!plain.Run(statement))
    return;
  Require(driver.Run(mended), "a definition that SQLite takes is taken when it is mended");
  Require(driver.Describe() == plain.Describe(), "the mended definition makes the same table");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
  const std::string statement = StatementOf(data, size);
  CheckTokens(statement);
  CheckEscapeSequences(statement);
  (void)VerbBehindWith(statement);
  CheckDefinition(statement);
  return 0;
}
