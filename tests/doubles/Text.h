#ifndef DOUBLES_TEXT_H
#define DOUBLES_TEXT_H

// Tests and doubles speak UTF-8 in std::string; Windows' calls speak 16-bit characters.
// std::wstring is of no use here: the one of a Linux library holds characters of 32 bits.

#include <stddef.h>

#include <string>
#include <vector>

// Null gives the empty string. A lone surrogate is written as its three bytes, so that nothing is
// lost.
std::string Utf8(const wchar_t* text);
std::string Utf8(const wchar_t* text, size_t characters);

// UTF-8 as 16-bit text that lives as long as this object.
class WideText
{
public:
  WideText(const std::string& utf8);
  WideText(const char* utf8) : WideText(std::string(utf8)) {}

  const wchar_t* c_str() const { return characters.data(); }
  wchar_t* data() { return characters.data(); }
  size_t Length() const { return characters.size() - 1; }  // without the terminator

private:
  std::vector<wchar_t> characters;
};

// The bytes of a text as the registry holds them, little-endian, with or without the terminator.
std::vector<unsigned char> TextBytes(const std::string& utf8);
std::vector<unsigned char> TextBytesWithTerminator(const std::string& utf8);

// Between UTF-8 and the ANSI code page of the doubles, 1252. A character that the page lacks
// becomes a question mark.
std::string AnsiFromUtf8(const std::string& utf8);
std::string Utf8FromAnsi(const std::string& ansi);

// Equal but for the case of the letters A to Z.
bool SameName(const std::string& left, const std::string& right);

#endif
