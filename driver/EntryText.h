// What the narrow and the wide form of an entry point have in common: texts that come in and go
// out.

#ifndef DRIVER_ENTRYTEXT_H
#define DRIVER_ENTRYTEXT_H

#include <optional>
#include <string>

#include "driver/Diagnostics.h"
#include "driver/Text.h"

// Units in which an entry point counts a text that it gives back. Narrow texts have no difference.
enum class Count
{
  Characters,
  Bytes
};

template <typename Character>
bool IsValidText(const Character* text, SQLLEN length)
{
  return text != nullptr && (length >= 0 || length == SQL_NTS);
}

// A name that may be left out.
template <typename Character>
std::optional<std::string> OptionalText(const Character* text, SQLLEN length)
{
  if (text == nullptr)
    return std::nullopt;
  return ToUtf8(text, length);
}

// Gives a text back. capacity and the length that is stored are in the units that count tells.
template <typename Character, typename Length>
SQLRETURN ReturnText(Diagnostics& diagnostics, const std::string& text, Character* out,
                     SQLLEN capacity, Length* length, Count count)
{
  if (capacity < 0)
    return diagnostics.Fail("HY090", "The length of the buffer is negative");
  const size_t unit = count == Count::Bytes ? sizeof(Character) : 1;
  const size_t room = static_cast<size_t>(capacity) / unit;
  const size_t total = CopyText(text, out, room);
  if (length != nullptr)
    *length = static_cast<Length>(total * unit);
  if (out != nullptr && total >= room)
    return diagnostics.Warn("01004", "The text was cut to the length of the buffer");
  return SQL_SUCCESS;
}

// Stores a number where the pointer isn't null.
template <typename Number, typename Value>
void ReturnNumber(void* out, Value value)
{
  if (out != nullptr)
    *static_cast<Number*>(out) = static_cast<Number>(value);
}

#endif
