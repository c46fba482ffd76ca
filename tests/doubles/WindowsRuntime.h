#ifndef DOUBLES_WINDOWSRUNTIME_H
#define DOUBLES_WINDOWSRUNTIME_H

// What Windows' C runtime declares and glibc lacks, put in front of every source of a native build.
// Only declarations, with the types that mingw's headers have; RuntimeText.cpp and WideFormat.cpp
// hold what stands behind them.

#ifdef __cplusplus

#include <errno.h>
#include <stdarg.h>
#include <stddef.h>

using errno_t = int;
using rsize_t = size_t;

// mingw's C++ headers do the same, else <windows.h> breaks those that are read after it.
#ifndef NOMINMAX
#define NOMINMAX 1
#endif

#define _TRUNCATE (static_cast<size_t>(-1))
#define STRUNCATE 80

extern "C" {

errno_t wcscpy_s(wchar_t* destination, rsize_t size, const wchar_t* source);
errno_t wcscat_s(wchar_t* destination, rsize_t size, const wchar_t* source);
errno_t wcsncpy_s(wchar_t* destination, size_t size, const wchar_t* source, size_t count);
errno_t wcsncat_s(wchar_t* destination, size_t size, const wchar_t* source, size_t count);
errno_t strcpy_s(char* destination, rsize_t size, const char* source);
errno_t strcat_s(char* destination, rsize_t size, const char* source);
char* strtok_s(char* text, const char* delimiters, char** context);

int vswprintf_s(wchar_t* destination, size_t size, const wchar_t* format, va_list arguments);
int vsprintf_s(char* destination, size_t size, const char* format, va_list arguments);

int _wcsicmp(const wchar_t* left, const wchar_t* right);
int _wcsnicmp(const wchar_t* left, const wchar_t* right, size_t count);
errno_t _wcslwr_s(wchar_t* text, size_t size);
int _wtoi(const wchar_t* text);

}  // extern "C"

#endif

#endif
