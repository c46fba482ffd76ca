// Text inside the driver is UTF-8, as in the database file. A lone surrogate of a wide text is kept
// in the three bytes that its number gives, so that every 16-bit text comes back as it went in.

#ifndef DRIVER_TEXT_H
#define DRIVER_TEXT_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "driver/Odbc.h"

// A byte that belongs to no character is read as this number plus the byte, behind all characters.
constexpr uint32_t InvalidByteBase = 0x110000;

// Takes one character off the front of a text that isn't empty.
uint32_t TakeCharacter(std::string_view& text);

void AppendUtf8(std::string& out, uint32_t character);

// length is in 16-bit units, and may be SQL_NTS.
std::string ToUtf8(const SQLWCHAR* text, SQLLEN length);
std::string ToUtf8(const SQLCHAR* text, SQLLEN length);

std::u16string ToUtf16(std::string_view text);

// Copies as much text as fits, ends it with a terminator if capacity is not 0, and returns the
// length of the whole text. Units are 16 bits for SQLWCHAR and bytes for SQLCHAR, the terminator is
// counted in capacity alone. A text is cut between characters.
size_t CopyText(std::string_view text, SQLWCHAR* out, size_t capacity);
size_t CopyText(std::string_view text, SQLCHAR* out, size_t capacity);

// Characters that differ in case only have the same folded character.
uint32_t FoldCase(uint32_t character);
int CompareNoCase(std::string_view left, std::string_view right);
bool EqualsNoCase(std::string_view left, std::string_view right);
// part is ASCII.
bool ContainsNoCase(std::string_view text, std::string_view part);

// SQL's pattern: % stands for any text, _ for one character, and the escape character, unless it is
// 0, takes the meaning off the character behind it. Without regard to case.
bool MatchesPattern(std::string_view text, std::string_view pattern, uint32_t escape);

#endif
