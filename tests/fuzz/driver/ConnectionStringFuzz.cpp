// Connection strings of any shape are read as a plain reader reads them, and what is written of one
// is read as the same.

#include "driver/ConnectionString.h"

#include <cctype>
#include <cstdint>

#include "driver/Text.h"
#include "tests/fuzz/Require.h"

namespace {

using Entries = std::vector<std::pair<std::string, std::string>>;

std::string Trimmed(const std::string& text)
{
  const size_t begin = text.find_first_not_of(' ');
  return begin == std::string::npos ? std::string()
                                    : text.substr(begin, text.find_last_not_of(' ') - begin + 1);
}

// The value that starts at position, which then stands at its semicolon or at the end. False if a
// brace isn't closed.
bool ReadValue(const std::string& text, size_t& position, std::string& value)
{
  while (position < text.size() && text[position] == ' ')
    ++position;
  if (position == text.size() || text[position] != '{') {
    const size_t begin = position;
    while (position < text.size() && text[position] != ';')
      ++position;
    value = Trimmed(text.substr(begin, position - begin));
    return true;
  }
  for (++position; position < text.size(); ++position) {
    if (text[position] != '}') {
      value += text[position];
    } else if (text.compare(position, 2, "}}") == 0) {
      value += '}';
      ++position;
    } else {
      while (position < text.size() && text[position] != ';')
        ++position;
      return true;
    }
  }
  return false;
}

bool ReadEntries(const std::string& text, Entries& entries)
{
  size_t position = 0;
  while (true) {
    while (position < text.size() && (text[position] == ';' || text[position] == ' '))
      ++position;
    if (position == text.size())
      return true;
    std::string keyword;
    while (position < text.size() && text[position] != '=' && text[position] != ';')
      keyword += text[position++];
    if (position == text.size() || text[position] == ';')
      return false;
    ++position;
    std::string value;
    if (!ReadValue(text, position, value))
      return false;
    entries.emplace_back(Trimmed(keyword), value);
  }
}

const std::string* FindFirst(const Entries& entries, const std::string& keyword)
{
  for (const auto& entry : entries) {
    if (EqualsNoCase(entry.first, keyword))
      return &entry.second;
  }
  return nullptr;
}

void RequireSame(const ConnectionString& read, const Entries& entries)
{
  for (const auto& entry : entries) {
    const std::string* const value = read.Find(entry.first);
    Require(value != nullptr, "a keyword that was read is found");
    Require(*value == *FindFirst(entries, entry.first), "the first value of a keyword counts");
  }
  for (const char* keyword : {"DRIVER", "dsn", "Dbq", "uid", "PWD", "absent"})
    Require((read.Find(keyword) == nullptr) == (FindFirst(entries, keyword) == nullptr),
            "nothing is found that was not read");
}

bool IsKnown(const std::string& keyword)
{
  std::string upper;
  for (const char character : keyword)
    upper += static_cast<char>(std::toupper(static_cast<unsigned char>(character)));
  for (const char* known : {"DRIVER", "DSN", "DBQ", "UID", "PWD", "DESCRIPTION"}) {
    if (upper == known)
      return true;
  }
  return false;
}

// Keywords that differ from a known one in letters beyond ASCII are left to the tests of text.
bool IsAscii(const std::string& text)
{
  for (const char character : text) {
    if (static_cast<unsigned char>(character) >= 0x80)
      return false;
  }
  return true;
}

void RequireUnknownKeyword(const ConnectionString& read, const Entries& entries)
{
  if (!IsAscii(read.UnknownKeyword()))
    return;
  for (const auto& entry : entries) {
    if (!IsKnown(entry.first)) {
      Require(read.UnknownKeyword() == entry.first, "the first unknown keyword is told");
      return;
    }
  }
  Require(read.UnknownKeyword().empty(), "no keyword is unknown");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
  const std::string text(reinterpret_cast<const char*>(data), size);
  Entries entries;
  ConnectionString read;
  const bool isReadable = ReadEntries(text, entries);
  Require(read.Read(text) == isReadable, "a connection string is read if it has the right shape");
  if (!isReadable)
    return 0;
  RequireSame(read, entries);
  RequireUnknownKeyword(read, entries);

  ConnectionString again;
  Require(again.Read(read.Write()), "what was written can be read");
  RequireSame(again, entries);
  Require(again.Write() == read.Write(), "what was read again is written in the same way");

  // A value of any characters comes back through the text.
  ConnectionString made;
  made.Add("DBQ", text);
  ConnectionString back;
  Require(back.Read(made.Write()), "a connection string with any value can be read");
  Require(*back.Find("dbq") == text, "any value comes back");
  return 0;
}
