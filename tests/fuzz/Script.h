#ifndef FUZZ_SCRIPT_H
#define FUZZ_SCRIPT_H

#include <stddef.h>
#include <stdint.h>

#include <string>
#include <vector>

// Inputs in the form of small scripts, which people and fuzzers can both write. Each line has a
// letter that tells what the rest of it is; an empty line is none.
struct ScriptLine
{
  char kind = '\0';
  std::string text;
};
std::vector<ScriptLine> ReadScript(const uint8_t* data, size_t size);

// Cuts the text at each bar into count fields; those that it lacks are empty, and the last one
// holds the bars that are left.
std::vector<std::string> Fields(const std::string& text, size_t count);

// The decimal number in front of the text, which is taken away with one blank behind it.
size_t TakeNumber(std::string& text);

// What a line with a number and a text stands for: so many copies, of most characters in all.
std::string Repeated(std::string numberAndText, size_t most);

// Bytes that are meant as UTF-8 as characters of 16 bits, without terminators among them, and back.
std::u16string Units(const std::string& utf8);
std::string Utf8Of(const std::u16string& units);

// As Windows stores them, without a terminator.
std::vector<unsigned char> BytesOf(const std::u16string& units);

// In code page 1252.
std::u16string UnitsOfAnsi(const std::string& ansi);

char16_t Lower(char16_t unit);  // in the "C" locale: A to Z
std::u16string Lower(std::u16string text);

#endif
