#ifndef DOUBLES_CODEPAGE_H
#define DOUBLES_CODEPAGE_H

// Single characters of code page 1252, the ANSI code page of the doubles.

wchar_t WideFromAnsi(char character);

// A question mark if the page lacks it.
char AnsiFromWide(wchar_t character);

#endif
