// vswprintf_s and vsprintf_s with the rules of msvcrt: %s and %c have the width of the function,
// %S and %C the other one, %ls and %ws are wide, %hs is narrow; a long has 32 bits, and an exponent
// has three digits at least. Numbers are written by glibc's narrow snprintf.
#include "tests/doubles/Recorder.h"

#include <stdint.h>
#include <stdio.h>
#include <string.h>

#include <algorithm>
#include <string>

namespace {

struct Conversion
{
  std::string flags;
  int width = 0;
  int precision = -1;  // -1: none given
  std::string size;    // h, l, ll, I64 ...
  char letter = '\0';
};

bool IsWide(const Conversion& conversion, bool wideFunction)
{
  if (conversion.size == "l" || conversion.size == "w")
    return true;
  if (conversion.size == "h")
    return false;
  const bool other = conversion.letter == 'S' || conversion.letter == 'C';
  return wideFunction != other;
}

bool Is64Bit(const Conversion& conversion)
{
  return conversion.size == "ll" || conversion.size == "I64" || conversion.size == "I";
}

// In the "C" locale, a narrow character is the wide one of the same number; others have none.
template <typename Target, typename Source>
bool HasCounterpart(Source c)
{
  return sizeof(Target) >= sizeof(Source) || static_cast<uint16_t>(c) <= 0xFF;
}

template <typename Target>
Target Counterpart(char c)
{
  return static_cast<Target>(static_cast<unsigned char>(c));
}

template <typename Target>
Target Counterpart(wchar_t c)
{
  return static_cast<Target>(c);
}

// Writes into a buffer of fixed size and stops when it is full. One place is the terminator's.
template <typename Character>
class Printer
{
public:
  Printer(Character* buffer, size_t size) : destination(buffer), room(size - 1) {}

  // The count of characters written, -1 if they don't fit or can't be written.
  int Print(const Character* format, va_list& arguments)
  {
    while (*format != 0 && !failed) {
      if (*format != '%') {
        Put(*format++);
      } else if (format[1] == '%') {
        Put(Character('%'));
        format += 2;
      } else {
        PrintOne(Parse(format, arguments), arguments);
      }
    }
    destination[failed ? 0 : used] = 0;
    return failed ? -1 : static_cast<int>(used);
  }

private:
  static constexpr bool WideFunction = sizeof(Character) == sizeof(wchar_t);

  void Put(Character c)
  {
    if (used == room)
      failed = true;
    else
      destination[used++] = c;
  }

  // Reads one conversion and leaves format behind it.
  static Conversion Parse(const Character*& format, va_list& arguments)
  {
    Conversion conversion;
    ++format;
    while (*format != 0 && strchr("-+ #0", static_cast<int>(*format)) != nullptr)
      conversion.flags += static_cast<char>(*format++);
    conversion.width = ParseNumber(format, arguments);
    if (conversion.width < 0) {
      conversion.flags += '-';
      conversion.width = -conversion.width;
    }
    if (*format == '.') {
      ++format;
      conversion.precision = ParseNumber(format, arguments);
    }
    while (*format != 0 && strchr("hlwIL64", static_cast<int>(*format)) != nullptr)
      conversion.size += static_cast<char>(*format++);
    if (*format == 0)
      EndUnprepared("a printf format ends within a conversion.");
    conversion.letter = static_cast<char>(*format++);
    return conversion;
  }

  static int ParseNumber(const Character*& format, va_list& arguments)
  {
    if (*format == '*') {
      ++format;
      return va_arg(arguments, int);
    }
    int number = 0;
    for (; *format >= '0' && *format <= '9'; ++format)
      number = number * 10 + (*format - '0');
    return number;
  }

  void PrintOne(const Conversion& conversion, va_list& arguments)
  {
    switch (conversion.letter) {
      case 's':
      case 'S':
        if (IsWide(conversion, WideFunction))
          PutText(conversion, va_arg(arguments, const wchar_t*));
        else
          PutText(conversion, va_arg(arguments, const char*));
        break;
      case 'c':
      case 'C': PutCharacter(conversion, va_arg(arguments, int)); break;
      case 'd':
      case 'i':
        PutNumber(conversion, Is64Bit(conversion)
                                  ? va_arg(arguments, int64_t)
                                  : Narrowed<int64_t, short>(conversion, va_arg(arguments, int)));
        break;
      case 'u':
      case 'o':
      case 'x':
      case 'X':
        PutNumber(conversion, Is64Bit(conversion)
                                  ? va_arg(arguments, uint64_t)
                                  : Narrowed<uint64_t, unsigned short>(
                                        conversion, va_arg(arguments, unsigned int)));
        break;
      case 'e':
      case 'E':
      case 'f':
      case 'g':
      case 'G': PutFloat(conversion, va_arg(arguments, double)); break;
      default:
        EndUnprepared(std::string("printf was asked for the conversion %") + conversion.letter +
                      ", which the doubles do not know.");
    }
  }

  // %hd and %hu take the lower half of what was given.
  template <typename Result, typename Half, typename Given>
  static Result Narrowed(const Conversion& conversion, Given given)
  {
    return conversion.size == "h" ? static_cast<Result>(static_cast<Half>(given))
                                  : static_cast<Result>(given);
  }

  template <typename Source>
  void PutText(const Conversion& conversion, const Source* text)
  {
    static const Source nullText[] = {'(', 'n', 'u', 'l', 'l', ')', 0};
    if (text == nullptr)
      text = nullText;
    // Not further than the precision: a text of given length may lack a terminator.
    size_t length = 0;
    while ((conversion.precision < 0 || length < static_cast<size_t>(conversion.precision)) &&
           text[length] != 0)
      ++length;
    PutPadded(conversion, text, length);
  }

  void PutCharacter(const Conversion& conversion, int given)
  {
    if (IsWide(conversion, WideFunction)) {
      const wchar_t c = static_cast<wchar_t>(given);
      PutPadded(conversion, &c, 1);
    } else {
      const char c = static_cast<char>(given);
      PutPadded(conversion, &c, 1);
    }
  }

  template <typename Source>
  void PutPadded(const Conversion& conversion, const Source* text, size_t length)
  {
    const size_t width = static_cast<size_t>(conversion.width);
    const size_t padding = width > length ? width - length : 0;
    const bool left = conversion.flags.find('-') != std::string::npos;
    const char filler = !left && conversion.flags.find('0') != std::string::npos ? '0' : ' ';
    for (size_t i = 0; i < padding && !left; ++i)
      Put(Character(filler));
    for (size_t i = 0; i < length && !failed; ++i) {
      if (HasCounterpart<Character>(text[i]))
        Put(Counterpart<Character>(text[i]));
      else
        failed = true;
    }
    for (size_t i = 0; i < padding && left; ++i)
      Put(Character(' '));
  }

  // The conversion as a format of glibc, with its own size.
  static std::string NarrowFormat(const Conversion& conversion, const char* size)
  {
    std::string format = "%" + conversion.flags;
    if (conversion.width > 0)
      format += std::to_string(conversion.width);
    if (conversion.precision >= 0)
      format += "." + std::to_string(conversion.precision);
    return format + size + conversion.letter;
  }

  template <typename Number>
  static std::string Printed(const std::string& format, Number number)
  {
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    std::string text(static_cast<size_t>(snprintf(nullptr, 0, format.c_str(), number)) + 1, '\0');
    (void)snprintf(text.data(), text.size(), format.c_str(), number);
#pragma GCC diagnostic pop
    text.pop_back();
    return text;
  }

  template <typename Number>
  void PutNumber(const Conversion& conversion, Number number)
  {
    // A negative int printed as %x was widened with its value as unsigned int, so this is right.
    PutNarrow(Printed(NarrowFormat(conversion, "l"), number));
  }

  void PutFloat(const Conversion& conversion, double number)
  {
    Conversion unpadded = conversion;
    unpadded.width = 0;
    std::string text = Printed(NarrowFormat(unpadded, ""), number);
    const size_t exponent = text.find_first_of("eE");
    if (exponent != std::string::npos && text.size() - exponent < 5)
      text.insert(exponent + 2, "0");
    const bool zeros = conversion.flags.find('0') != std::string::npos &&
                       conversion.flags.find('-') == std::string::npos;
    const size_t width = static_cast<size_t>(conversion.width);
    if (zeros && text.size() < width)
      text.insert(strchr("+- ", text[0]) != nullptr ? 1 : 0, width - text.size(), '0');
    PutPadded(conversion, text.data(), text.size());
  }

  void PutNarrow(const std::string& text)
  {
    for (const char c : text)
      Put(Character(c));
  }

  Character* destination;
  size_t room;
  size_t used = 0;
  bool failed = false;
};

template <typename Character>
int PrintChecked(const char* function, Character* destination, size_t size, const Character* format,
                 va_list& arguments)
{
  if (destination == nullptr || size == 0 || format == nullptr)
    return -1;
  unsigned long code = 0;
  if (TakeFault(function, code)) {
    destination[0] = 0;
    return -1;
  }
  return Printer<Character>(destination, size).Print(format, arguments);
}

}  // namespace

int vswprintf_s(wchar_t* destination, size_t size, const wchar_t* format, va_list arguments)
{
  va_list copy;
  va_copy(copy, arguments);
  const int result = PrintChecked("vswprintf_s", destination, size, format, copy);
  va_end(copy);
  return result;
}

int vsprintf_s(char* destination, size_t size, const char* format, va_list arguments)
{
  va_list copy;
  va_copy(copy, arguments);
  const int result = PrintChecked("vsprintf_s", destination, size, format, copy);
  va_end(copy);
  return result;
}
