#ifndef DOUBLES_RECORDER_H
#define DOUBLES_RECORDER_H

// The doubles' own side of the diary; tests include Diary.h.

#include <string>

void WriteDiary(const std::string& line);

// Counts this call of the function. True if it is one that a test wants to fail; code is then what
// the test gave.
bool TakeFault(const char* function, unsigned long& code);

void Misuse(const std::string& sentence);

// Ends the program: the code under test asked for something that the test has not prepared or that
// the doubles do not know.
[[noreturn]] void EndUnprepared(const std::string& sentence);

// Parts of diary lines.
std::string Quoted(const std::string& utf8);
std::string Quoted(const wchar_t* text);  // `null` if it is
std::string QuotedAnsi(const char* text);
std::string Hex(unsigned long number);

// Each forgets what tests have prepared and what calls have left.
void ResetRegistry();
void ResetProcesses();
void ResetEnvironment();
void ResetShell();
void ResetVersions();
void ResetInstaller();
void ResetDebugOutput();
void ResetLastError();
void ResetFiles();
void ResetOdbc();

// True, with the last error set, if this call is to fail. For functions that return 0 on failure.
bool FailsWithLastError(const char* function);

#endif
