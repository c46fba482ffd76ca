// KEYWORD=value;KEYWORD={value};... as programs give it to SQLDriverConnect.

#ifndef DRIVER_CONNECTIONSTRING_H
#define DRIVER_CONNECTIONSTRING_H

#include <string>
#include <string_view>
#include <utility>
#include <vector>

class ConnectionString
{
public:
  // False if a brace isn't closed or a piece has no "=". Of a keyword that comes twice the first
  // counts.
  bool Read(std::string_view text);

  // The value, without regard to the keyword's case; null if the keyword is absent.
  const std::string* Find(std::string_view keyword) const;
  void Add(std::string_view keyword, std::string_view value);

  // The first keyword that the driver doesn't know, or an empty text.
  std::string UnknownKeyword() const;

  // All keywords again, in one text from which Read makes the same.
  std::string Write() const;

private:
  std::vector<std::pair<std::string, std::string>> entries;
};

#endif
