#include "driver/SqlTokens.h"

#include "driver/Text.h"

namespace {

bool IsBlank(char character)
{
  return character == ' ' || (character >= '\t' && character <= '\r');
}

bool IsDigit(char character)
{
  return character >= '0' && character <= '9';
}

bool IsWordCharacter(char character)
{
  return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
         IsDigit(character) || character == '_' || character == '$' ||
         static_cast<unsigned char>(character) >= 0x80;
}

// Behind the blanks and comments that start at position.
size_t SkipBlanks(std::string_view text, size_t position)
{
  while (position < text.size()) {
    if (IsBlank(text[position])) {
      ++position;
    } else if (text.substr(position, 2) == "--") {
      position = text.find('\n', position);
    } else if (text.substr(position, 2) == "/*") {
      position = text.find("*/", position + 2);
      position = position == std::string_view::npos ? position : position + 2;
    } else {
      break;
    }
  }
  return position < text.size() ? position : text.size();
}

// Behind the quoted piece that starts at position. A doubled quote stands for one, but not within
// brackets.
size_t SkipQuoted(std::string_view text, size_t position)
{
  const bool bracket = text[position] == '[';
  const char quote = bracket ? ']' : text[position];
  ++position;
  while (position < text.size()) {
    if (text[position] == quote) {
      const bool doubled = !bracket && position + 1 < text.size() && text[position + 1] == quote;
      if (!doubled)
        return position + 1;
      ++position;
    }
    ++position;
  }
  return text.size();
}

bool OpensQuoted(char character)
{
  return character == '[' || character == '"' || character == '`' || character == '\'';
}

TokenKind KindOf(char first)
{
  if (first == '\'')
    return TokenKind::Text;
  if (OpensQuoted(first))
    return TokenKind::Name;
  if (IsDigit(first))
    return TokenKind::Number;
  return IsWordCharacter(first) ? TokenKind::Word : TokenKind::Symbol;
}

size_t SkipWord(std::string_view text, size_t position)
{
  while (position < text.size() && IsWordCharacter(text[position]))
    ++position;
  return position;
}

}  // namespace

std::vector<SqlToken> SplitStatement(std::string_view statement)
{
  std::vector<SqlToken> tokens;
  size_t position = SkipBlanks(statement, 0);
  while (position < statement.size()) {
    const TokenKind kind = KindOf(statement[position]);
    size_t end = position + 1;
    if (kind == TokenKind::Text || kind == TokenKind::Name)
      end = SkipQuoted(statement, position);
    else if (kind != TokenKind::Symbol)
      end = SkipWord(statement, position);
    tokens.push_back({kind, position, end});
    position = SkipBlanks(statement, end);
  }
  return tokens;
}

std::string_view FirstWord(std::string_view statement)
{
  const size_t begin = SkipBlanks(statement, 0);
  return statement.substr(begin, SkipWord(statement, begin) - begin);
}

std::string_view VerbBehindWith(std::string_view statement)
{
  static const char* const verbs[] = {"SELECT", "INSERT", "REPLACE", "UPDATE", "DELETE", "VALUES"};
  size_t depth = 0;
  for (const SqlToken& token : SplitStatement(statement)) {
    const std::string_view text = statement.substr(token.begin, token.end - token.begin);
    if (text == "(")
      ++depth;
    else if (text == ")")
      --depth;
    else if (depth == 0 && token.kind == TokenKind::Word) {
      for (const char* verb : verbs) {
        if (EqualsNoCase(text, verb))
          return text;
      }
    }
  }
  return {};
}

std::string ReplaceEscapeSequences(std::string_view statement)
{
  std::string out;
  size_t depth = 0;
  size_t position = 0;
  while (position < statement.size()) {
    const char character = statement[position];
    if (OpensQuoted(character)) {
      const size_t end = SkipQuoted(statement, position);
      out += statement.substr(position, end - position);
      position = end;
    } else if (character == '{') {
      // {d '..'}, {t '..'}, {ts '..'}, {fn ..} and {oj ..} stand for what is in them.
      const size_t begin = SkipBlanks(statement, position + 1);
      const size_t end = SkipWord(statement, begin);
      if (EqualsNoCase(statement.substr(begin, end - begin), "escape"))
        out += "ESCAPE";
      position = end;
      ++depth;
    } else {
      if (character == '}' && depth > 0)
        --depth;
      else
        out += character;
      ++position;
    }
  }
  return out;
}
