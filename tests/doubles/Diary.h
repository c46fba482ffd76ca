#ifndef DOUBLES_DIARY_H
#define DOUBLES_DIARY_H

// What the doubles of all Windows libraries share: the diary of the calls, the failures that a test
// orders, and the list of what should never have been done.
//
// Each call of a Windows function writes one line, in order, with its arguments and its result:
//
//   RegOpenKeyExW(HKCU, "Software\Autodesk\", 0, 0x1) = 0 #1
//   RegQueryValueExW(#1, "CurVer", type null, 500) = 0
//   RegCloseKey(#1) = 0
//
// Texts are UTF-8 in double quotes, without escapes; null pointers are `null`, flags and masks
// hexadecimal in capitals. A registry handle is HKCR, HKCU, HKLM or #n, counted by successful opens
// from 1, and `#?` if it was closed or never existed. GetLastError and SetLastError and the
// functions of the C runtime (wcslen, wcscpy_s, malloc ...) write nothing.

#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

const std::vector<std::string>& Diary();

// Only the lines of these functions, in order.
std::vector<std::string> DiaryOf(std::initializer_list<const char*> functions);

void ClearDiary();

// Makes the n-th call of the function from now on (1 is the next one) fail with the code, without
// any other effect: a function that returns a status returns the code; one that returns a BOOL, a
// length or a handle returns 0 and sets the last error. Runtime functions fail as they do for a
// text that is too long: the code is the result of one that returns an errno_t, vswprintf_s and
// vsprintf_s give -1, and malloc gives null (the code is not used). Any number of failures may be
// ordered. One that was never reached fails the test; in a death test, order it within the
// statement.
void FailCall(const std::string& function, int n, unsigned long code = 0);

// The same for the n-th call and for all that follow it.
void FailCallsFrom(const std::string& function, int n, unsigned long code = 0);

// Until ResetPlatform, tells the watcher of each call that FailCall could make fail, just before
// it does anything; each name of a function is told by itself ("SQLFetch", "SQLFetch afterwards").
// The line that the diary gets for the call, if it gets one, is the next. A failure that the
// watcher orders as the first one of this function is that of the call at hand.
void WatchCalls(const std::function<void(const char* function)>& watcher);

// What the code under test did and never should (using a closed handle ...), a sentence each.
// PlatformTest fails for each one that is left at the end of a test; a test that provokes one takes
// it away.
std::vector<std::string> TakeMisuses();

// An empty machine: all doubles as they are at the start of a program.
void ResetPlatform();

#endif
