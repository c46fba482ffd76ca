#include "driver/TableDefinition.h"

#include <algorithm>

#include "driver/Collation.h"
#include "driver/SqlTokens.h"
#include "driver/Text.h"
#include "driver/Types.h"

namespace {

class Definition
{
public:
  explicit Definition(std::string_view text) : statement(text), tokens(SplitStatement(text)) {}

  // The position behind the head of the statement is then the first column's.
  bool ReadHead();
  std::string Mend();

private:
  bool Has(size_t index, std::string_view word) const
  {
    return index < tokens.size() && tokens[index].kind != TokenKind::Text &&
           tokens[index].kind != TokenKind::Name && EqualsNoCase(Token(index), word);
  }
  std::string_view Token(size_t index) const
  {
    return statement.substr(tokens[index].begin, tokens[index].end - tokens[index].begin);
  }
  // The text from one token up to and with another.
  std::string_view Between(size_t first, size_t last) const
  {
    return statement.substr(tokens[first].begin, tokens[last].end - tokens[first].begin);
  }
  bool HasWithin(size_t first, size_t end, std::string_view word) const;
  bool Accept(std::string_view word);
  bool AcceptTableName();
  bool StartsTableRule(size_t index) const;
  bool StartsColumnRule(size_t index) const;
  size_t EndOfItem(size_t first) const;
  void ReadTableKey();
  bool IsTableKey(size_t name) const;
  std::string MendColumn(size_t first, size_t end) const;
  std::string MendType(size_t first, size_t words, size_t end, bool isWholeKey) const;

  std::string_view statement;
  std::vector<SqlToken> tokens;
  size_t next = 0;
  bool addsColumn = false;  // ALTER TABLE: one column and no parentheses
  std::vector<std::string_view> tableKey;
};

bool Definition::Accept(std::string_view word)
{
  if (!Has(next, word))
    return false;
  ++next;
  return true;
}

bool Definition::AcceptTableName()
{
  if (next >= tokens.size() || tokens[next].kind == TokenKind::Symbol)
    return false;
  ++next;
  if (!Accept("."))
    return true;
  ++next;
  return next < tokens.size();
}

bool Definition::ReadHead()
{
  if (Accept("ALTER")) {
    addsColumn = true;
    if (!Accept("TABLE") || !AcceptTableName() || !Accept("ADD"))
      return false;
    (void)Accept("COLUMN");
    return next < tokens.size();
  }
  if (!Accept("CREATE"))
    return false;
  if (!Accept("TEMP"))
    (void)Accept("TEMPORARY");
  if (!Accept("TABLE"))
    return false;
  if (Accept("IF") && (!Accept("NOT") || !Accept("EXISTS")))
    return false;
  return AcceptTableName() && Accept("(") && next < tokens.size();
}

bool Definition::HasWithin(size_t first, size_t end, std::string_view word) const
{
  size_t depth = 0;
  for (size_t i = first; i < end; ++i) {
    if (depth == 0 && Has(i, word))
      return true;
    if (Has(i, "("))
      ++depth;
    else if (Has(i, ")"))
      --depth;
  }
  return false;
}

bool Definition::StartsTableRule(size_t index) const
{
  return Has(index, "CONSTRAINT") || Has(index, "FOREIGN") || Has(index, "CHECK") ||
         (Has(index, "PRIMARY") && Has(index + 1, "KEY")) ||
         (Has(index, "UNIQUE") && Has(index + 1, "("));
}

bool Definition::StartsColumnRule(size_t index) const
{
  static const char* const ruleWords[] = {"CONSTRAINT", "PRIMARY",   "NOT",     "NULL",
                                          "UNIQUE",     "CHECK",     "DEFAULT", "COLLATE",
                                          "REFERENCES", "GENERATED", "AS"};
  return std::any_of(std::begin(ruleWords), std::end(ruleWords),
                     [&](const char* word) { return Has(index, word); });
}

// The comma or parenthesis behind an item, or the end of the statement.
size_t Definition::EndOfItem(size_t first) const
{
  size_t depth = 0;
  size_t i = first;
  for (; i < tokens.size(); ++i) {
    if (Has(i, "("))
      ++depth;
    else if (depth == 0 && (Has(i, ",") || Has(i, ")") || Has(i, ";")))
      break;
    else if (Has(i, ")"))
      --depth;
  }
  return i;
}

std::string_view BareName(std::string_view name)
{
  const bool quoted =
      name.size() >= 2 && (name.front() == '[' || name.front() == '"' || name.front() == '`');
  return quoted ? name.substr(1, name.size() - 2) : name;
}

void Definition::ReadTableKey()
{
  for (size_t first = next; first < tokens.size();) {
    const size_t end = EndOfItem(first);
    if (StartsTableRule(first)) {
      size_t i = first;
      while (i < end && !Has(i, "PRIMARY"))
        ++i;
      bool nameFollows = false;
      for (; i < end; ++i) {
        if (nameFollows)
          tableKey.push_back(BareName(Token(i)));
        nameFollows = Has(i, "(") || Has(i, ",");
      }
    }
    if (!Has(end, ","))
      break;
    first = end + 1;
  }
}

bool Definition::IsTableKey(size_t name) const
{
  return std::any_of(tableKey.begin(), tableKey.end(), [&](std::string_view key) {
    return EqualsNoCase(key, BareName(Token(name)));
  });
}

// Parts of a declaration decide what SQLite does with values.
bool HasTextAffinity(std::string_view words)
{
  return !ContainsNoCase(words, "INT") &&
         (ContainsNoCase(words, "CHAR") || ContainsNoCase(words, "TEXT") ||
          ContainsNoCase(words, "CLOB"));
}

// The tokens from first up to words are the type's words, from there up to end its parameters.
std::string Definition::MendType(size_t first, size_t words, size_t end, bool isWholeKey) const
{
  const std::string_view declared = Between(first, words - 1);
  const TypeDescription* const type = ReadDeclaredType(std::string(declared).c_str()).type;
  if (isWholeKey && EqualsNoCase(type->name, "COUNTER"))
    return "INTEGER";
  // SQLite fills a key of just this type by itself.
  if (isWholeKey && EqualsNoCase(declared, "INTEGER"))
    return "INT";
  std::string mended(declared);
  const bool isText = IsTextType(type->sqlType);
  const bool isDate = type->sqlType == SQL_TYPE_TIMESTAMP;
  if ((isText || isDate) && !HasTextAffinity(declared))
    mended += " TEXT";
  if (IsBinaryType(type->sqlType) && !ContainsNoCase(declared, "BLOB"))
    mended += " BLOB";
  if (words < end)
    mended += Between(words, end - 1);
  return mended;
}

std::string Definition::MendColumn(size_t first, size_t end) const
{
  size_t words = first + 1;
  while (words < end && tokens[words].kind == TokenKind::Word && !StartsColumnRule(words))
    ++words;
  // No type, or one that goes on in quotes, as SQLite lets it.
  const bool isQuoted = words < end && (tokens[words].kind == TokenKind::Text ||
                                        tokens[words].kind == TokenKind::Name);
  if (words == first + 1 || isQuoted)
    return std::string(Between(first, end - 1));
  size_t rest = words;
  if (Has(rest, "(")) {
    while (rest < end && !Has(rest, ")"))
      ++rest;
    rest = std::min(rest + 1, end);
  }
  const bool isColumnKey = HasWithin(rest, end, "PRIMARY");
  // AUTOINCREMENT is SQLite's own word for a key that counts, and needs SQLite's own type.
  const bool isWholeKey = (isColumnKey && !HasWithin(rest, end, "AUTOINCREMENT")) ||
                          (tableKey.size() == 1 && IsTableKey(first));
  std::string column(Token(first));
  const std::string mended = MendType(first + 1, words, rest, isWholeKey);
  column += ' ' + mended;
  const SQLSMALLINT sqlType = ReadDeclaredType(mended.c_str()).type->sqlType;
  if (!HasWithin(rest, end, "COLLATE")) {
    if (IsTextType(sqlType))
      column += std::string(" COLLATE ") + TextCollation;
    else if (sqlType == SQL_TYPE_TIMESTAMP)
      column += std::string(" COLLATE ") + DateCollation;
  }
  if (rest < end)
    column += ' ' + std::string(Between(rest, end - 1));
  if ((isColumnKey || IsTableKey(first)) && !HasWithin(rest, end, "NOT"))
    column += " NOT NULL";
  return column;
}

std::string Definition::Mend()
{
  if (!addsColumn)
    ReadTableKey();
  std::string out(statement.substr(0, tokens[next].begin));
  while (next < tokens.size()) {
    const size_t end = EndOfItem(next);
    if (end == next)
      break;
    if (StartsTableRule(next))
      out += Between(next, end - 1);
    else
      out += MendColumn(next, end);
    next = end;
    if (addsColumn || !Has(end, ","))
      break;
    out += ',';
    ++next;
  }
  if (next < tokens.size())
    out += statement.substr(tokens[next].begin);
  return out;
}

}  // namespace

bool MayDefineTable(std::string_view statement)
{
  const std::string_view word = FirstWord(statement);
  return EqualsNoCase(word, "CREATE") || EqualsNoCase(word, "ALTER");
}

std::string MendTableDefinition(std::string_view statement)
{
  Definition definition(statement);
  return definition.ReadHead() ? definition.Mend() : std::string(statement);
}
