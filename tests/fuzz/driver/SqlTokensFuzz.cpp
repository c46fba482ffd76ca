// Statements are cut into words as a plain reader cuts them, escape sequences go and all else
// stays, and a mended definition makes the same table as the one that was written, whose texts,
// dates and bytes stay as they are.

#include "driver/SqlTokens.h"

#include <sqlite3.h>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <set>

#include "driver/Collation.h"
#include "driver/TableDefinition.h"
#include "driver/Text.h"
#include "driver/Types.h"
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
  std::string piece = statement.substr(position, end - position);
  position = end;
  return piece;
}

std::string Upper(std::string text)
{
  for (char& character : text) {
    if (character >= 'a' && character <= 'z')
      character = static_cast<char>(character - 'a' + 'A');
  }
  return text;
}

// A statement whose sequences are gone: of each the brace, the word behind it and the brace that
// ends it. The word of an escape character stays, since SQL has it too.
std::string WithoutSequences(const std::string& statement)
{
  std::string plain;
  size_t open = 0;
  for (size_t position = 0; position < statement.size();) {
    const std::string piece = TakePiece(statement, position);
    if (piece == "{") {
      ++open;
      const std::string rest = statement.substr(position);
      const SqlToken next =
          PlainReader(rest).Next().value_or(SqlToken{TokenKind::Symbol, rest.size(), 0});
      const bool isWord = next.kind == TokenKind::Word || next.kind == TokenKind::Number;
      if (isWord && Upper(rest.substr(next.begin, next.end - next.begin)) == "ESCAPE")
        plain += "ESCAPE";
      position += isWord ? next.end : next.begin;
    } else if (piece == "}" && open > 0) {
      --open;
    } else {
      plain += piece;
    }
  }
  return plain;
}

// The first verb that stands in no parentheses.
std::string PlainVerb(const std::string& statement)
{
  static const std::set<std::string> verbs = {"SELECT", "INSERT", "REPLACE",
                                              "UPDATE", "DELETE", "VALUES"};
  PlainReader reader(statement);
  int depth = 0;
  while (const std::optional<SqlToken> token = reader.Next()) {
    std::string text = statement.substr(token->begin, token->end - token->begin);
    if (text == "(")
      ++depth;
    else if (text == ")")
      --depth;
    else if (depth == 0 && verbs.contains(Upper(text)))
      return text;
  }
  return "";
}

class Database
{
public:
  Database()
  {
    Require(sqlite3_open(":memory:", &handle) == SQLITE_OK, "there is a database");
    Require(RegisterCollations(handle) == SQLITE_OK, "the collations are known");
    (void)sqlite3_set_authorizer(handle, Allow, nullptr);
    // Rows are made to see what becomes of their values, whatever a table demands of them.
    Require(Run("PRAGMA ignore_check_constraints = ON"), "checks can be left out");
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

  // The first column of a result.
  std::vector<std::string> Rows(const std::string& sql)
  {
    std::vector<std::string> rows;
    sqlite3_stmt* statement = nullptr;
    Require(sqlite3_prepare_v2(handle, sql.c_str(), -1, &statement, nullptr) == SQLITE_OK,
            "a question is one");
    while (sqlite3_step(statement) == SQLITE_ROW)
      rows.emplace_back(reinterpret_cast<const char*>(sqlite3_column_text(statement, 0)));
    (void)sqlite3_finalize(statement);
    return rows;
  }

private:
  // Tables may be made and described; nothing else is done by a definition.
  static int Allow(void*, int action, const char*, const char*, const char*, const char*)
  {
    return action == SQLITE_ATTACH || action == SQLITE_CREATE_VTABLE ? SQLITE_DENY : SQLITE_OK;
  }

  sqlite3* handle = nullptr;
};

// The tables, with quoted names that can stand in a statement.
const std::string Tables =
    "(SELECT name AS t, format('\"%w\"', name) AS q FROM "
    "(SELECT * FROM sqlite_schema UNION ALL SELECT * FROM sqlite_temp_schema) "
    "WHERE type = 'table' AND name NOT LIKE 'sqlite_%')";

// Of each column its name, whether it takes NULL, its default and its place in the key.
const std::string Columns =
    "SELECT t || '|' || name || '|' || (\"notnull\" OR pk > 0) || '|' || "
    "ifnull(dflt_value, '-') || '|' || pk FROM " +
    Tables + ", pragma_table_xinfo(t)";

const std::string ForeignKeys =
    "SELECT t || '|' || id || '|' || seq || '|' || \"table\" || '|' || \"from\" || '|' || "
    "ifnull(\"to\", '-') || '|' || on_update || '|' || on_delete FROM " +
    Tables + ", pragma_foreign_key_list(t)";

// The lists of columns that are unique. The key is one of them, whether it has an index or is the
// number of the row.
const std::string UniqueColumns =
    "SELECT t || '=' || (SELECT group_concat(name, '|') FROM "
    "(SELECT name FROM pragma_index_info(i.name) ORDER BY seqno)) FROM " +
    Tables +
    ", pragma_index_list(t) AS i WHERE i.\"unique\" "
    "UNION SELECT t || '=' || key FROM (SELECT t, (SELECT group_concat(name, '|') FROM "
    "(SELECT name FROM pragma_table_xinfo(t) WHERE pk > 0 ORDER BY pk)) AS key FROM " +
    Tables + ") WHERE key NOT NULL";

size_t CountWord(const std::string& statement, std::string_view word)
{
  const std::vector<SqlToken> tokens = SplitStatement(statement);
  return static_cast<size_t>(
      std::count_if(tokens.begin(), tokens.end(), [&](const SqlToken& token) {
        return Upper(statement.substr(token.begin, token.end - token.begin)) == word;
      }));
}

// Whether values of a column with this declaration stay as they are written. Not where a type goes
// on in quotes, which the driver leaves alone, or holds a comment, and not where it has an INT in
// it: that makes a number of it for SQLite, whatever else it says.
bool KeepsText(const std::string& declared)
{
  static const char* const plain =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789 (),";
  const ColumnType column = ReadDeclaredType(declared.c_str());
  return column.type != nullptr && declared.find_first_not_of(plain) == std::string::npos &&
         Upper(declared).find("INT") == std::string::npos &&
         (IsTextType(column.type->sqlType) || IsBinaryType(column.type->sqlType) ||
          column.type->sqlType == SQL_TYPE_TIMESTAMP);
}

// Texts, dates and bytes keep the zeros in front of a number.
void CheckValues(Database& plain, Database& driver)
{
  const std::string columns = Tables + ", pragma_table_xinfo(t) WHERE hidden = 0";
  for (const std::string& insert :
       plain.Rows("SELECT 'INSERT INTO ' || q || ' (' || group_concat(format('\"%w\"', name)) || "
                  "') VALUES (' || group_concat(quote('007')) || ')' FROM " +
                  columns + " GROUP BY t")) {
    if (!plain.Run(insert))
      return;
    Require(driver.Run(insert), "a mended table takes what the written one takes");
  }
  const std::vector<std::string> types = plain.Rows("SELECT type FROM " + columns);
  const std::vector<std::string> questions = plain.Rows(
      "SELECT format('SELECT typeof(\"%w\") || CAST(\"%w\" AS BLOB) FROM %s', name, name, q) "
      "FROM " +
      columns);
  for (size_t i = 0; i < types.size(); ++i) {
    if (KeepsText(types[i]))
      Require(driver.Rows(questions[i]) == std::vector<std::string>{"text007"},
              "a text keeps its zeros");
  }
}

void CheckDefinition(const std::string& statement)
{
  const std::string mended = MendTableDefinition(statement);
  if (!MayDefineTable(statement)) {
    Require(mended == statement, "what defines no table stays as it is");
    return;
  }
  // A table that is made of a query could take for ever; SQLite ends text at a zero.
  if (CountWord(statement, "SELECT") > 0 || CountWord(statement, "WITH") > 0 ||
      statement.find('\0') != std::string::npos)
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
  for (const std::string& question : {Columns, ForeignKeys, UniqueColumns})
    Require(driver.Rows(question) == plain.Rows(question),
            "the mended definition makes the same table");
  Require(CountWord(mended, "CHECK") == CountWord(statement, "CHECK"), "no check is lost");
  CheckValues(plain, driver);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
  const std::string statement = StatementOf(data, size);
  CheckTokens(statement);
  Require(ReplaceEscapeSequences(statement) == WithoutSequences(statement),
          "escape sequences go and all else stays");
  Require(VerbBehindWith(statement) == PlainVerb(statement), "a verb is found behind WITH");
  CheckDefinition(statement);
  return 0;
}
