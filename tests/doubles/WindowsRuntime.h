#ifndef DOUBLES_WINDOWSRUNTIME_H
#define DOUBLES_WINDOWSRUNTIME_H

// What Windows' C runtime declares and glibc lacks, and what Wine's ODBC headers leave out, put in
// front of every source of a native build. Only declarations, with the types that mingw's headers
// have.

#ifdef __cplusplus

#include <errno.h>
#include <stdarg.h>
#include <stddef.h>
#include <stdio.h>

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
wchar_t* wcstok_s(wchar_t* text, const wchar_t* delimiters, wchar_t** context);

int vswprintf_s(wchar_t* destination, size_t size, const wchar_t* format, va_list arguments);
int vsprintf_s(char* destination, size_t size, const char* format, va_list arguments);

int _wcsicmp(const wchar_t* left, const wchar_t* right);
int _wcsnicmp(const wchar_t* left, const wchar_t* right, size_t count);
errno_t _wcslwr_s(wchar_t* text, size_t size);
int _wtoi(const wchar_t* text);

errno_t _wfopen_s(FILE** file, const wchar_t* path, const wchar_t* mode);

// The types of ODBC's headers can't be used here, as those must follow <windows.h>.
__attribute__((ms_abi)) short SQLSetConnectAttrW(void* connection, int attribute, void* value,
                                                 int length);
__attribute__((ms_abi)) short SQLDriverConnectW(void* connection, void* window, wchar_t* text,
                                                short textLength, wchar_t* completed,
                                                short completedSize, short* completedLength,
                                                unsigned short completion);
__attribute__((ms_abi)) short SQLColumnsW(void* statement, wchar_t* catalog, short catalogLength,
                                          wchar_t* schema, short schemaLength, wchar_t* table,
                                          short tableLength, wchar_t* column, short columnLength);
__attribute__((ms_abi)) short SQLTablesW(void* statement, wchar_t* catalog, short catalogLength,
                                         wchar_t* schema, short schemaLength, wchar_t* table,
                                         short tableLength, wchar_t* types, short typesLength);

}  // extern "C"

#endif

#endif
