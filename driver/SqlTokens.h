// The words of a statement, for the few places that look into one.

#ifndef DRIVER_SQLTOKENS_H
#define DRIVER_SQLTOKENS_H

#include <string>
#include <string_view>
#include <vector>

enum class TokenKind
{
  Word,
  Name,
  Text,
  Number,
  Symbol
};

// Name is a quoted one: [..], "..", `..`. Blanks and comments are no tokens.
struct SqlToken
{
  TokenKind kind;
  size_t begin;
  size_t end;  // behind the last character
};

std::vector<SqlToken> SplitStatement(std::string_view statement);

// The first word, without blanks and comments before it; empty if there is none.
std::string_view FirstWord(std::string_view statement);

// The verb of a statement that starts with WITH; empty if there is none.
std::string_view VerbBehindWith(std::string_view statement);

// Replaces the {escape sequences} of ODBC by what they stand for.
std::string ReplaceEscapeSequences(std::string_view statement);

#endif
