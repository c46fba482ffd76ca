#ifndef TESTS_DRIVER_UTF_H
#define TESTS_DRIVER_UTF_H

#include <string>

// Well-formed UTF-8 to UTF-16 and back; half a surrogate pair becomes the three bytes of its
// number.
std::u16string Utf16(const std::string& text);
std::string Utf8(const std::u16string& text);

#endif
