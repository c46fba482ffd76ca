#include "driver/ConnectionString.h"

#include <algorithm>

#include "driver/Text.h"

namespace {

std::string_view Trim(std::string_view text)
{
  while (!text.empty() && text.front() == ' ')
    text.remove_prefix(1);
  while (!text.empty() && text.back() == ' ')
    text.remove_suffix(1);
  return text;
}

// Takes a value in braces off the text; a doubled closing brace stands for one.
bool TakeBraced(std::string_view& text, std::string& value)
{
  for (size_t i = 1; i < text.size(); ++i) {
    if (text[i] == '}') {
      const bool doubled = i + 1 < text.size() && text[i + 1] == '}';
      if (!doubled) {
        text.remove_prefix(i + 1);
        return true;
      }
      ++i;
    }
    value += text[i];
  }
  return false;
}

}  // namespace

bool ConnectionString::Read(std::string_view text)
{
  while (true) {
    while (!text.empty() && (text.front() == ';' || text.front() == ' '))
      text.remove_prefix(1);
    if (text.empty())
      return true;
    const size_t equals = text.find('=');
    if (equals == std::string_view::npos || text.find(';') < equals)
      return false;
    const std::string_view keyword = Trim(text.substr(0, equals));
    text.remove_prefix(equals + 1);
    while (!text.empty() && text.front() == ' ')
      text.remove_prefix(1);
    std::string value;
    if (!text.empty() && text.front() == '{') {
      if (!TakeBraced(text, value))
        return false;
      text.remove_prefix(std::min(text.find(';'), text.size()));
    } else {
      const size_t end = std::min(text.find(';'), text.size());
      value = Trim(text.substr(0, end));
      text.remove_prefix(end);
    }
    Add(keyword, value);
  }
}

const std::string* ConnectionString::Find(std::string_view keyword) const
{
  for (const auto& entry : entries) {
    if (EqualsNoCase(entry.first, keyword))
      return &entry.second;
  }
  return nullptr;
}

void ConnectionString::Add(std::string_view keyword, std::string_view value)
{
  if (Find(keyword) == nullptr)
    entries.emplace_back(keyword, value);
}

std::string ConnectionString::UnknownKeyword() const
{
  static const char* const known[] = {"DRIVER", "DSN", "DBQ", "UID", "PWD", "DESCRIPTION"};
  for (const auto& entry : entries) {
    if (std::none_of(std::begin(known), std::end(known),
                     [&](const char* keyword) { return EqualsNoCase(entry.first, keyword); }))
      return entry.first;
  }
  return {};
}

std::string ConnectionString::Write() const
{
  std::string text;
  for (const auto& [keyword, value] : entries) {
    text += keyword;
    text += '=';
    const bool needsBraces = EqualsNoCase(keyword, "DRIVER") ||
                             value.find_first_of("[]{}(),;?*=!@") != std::string::npos ||
                             Trim(value).size() != value.size();
    if (needsBraces) {
      text += '{';
      for (const char character : value)
        text.append(character == '}' ? 2 : 1, character);
      text += '}';
    } else {
      text += value;
    }
    text += ';';
  }
  return text;
}
