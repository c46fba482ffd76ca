#ifndef TESTS_CONTRACT_CONTRACTTEST_H
#define TESTS_CONTRACT_CONTRACTTEST_H

// The tests of this folder say what Windows does. They run against the doubles in a native build
// and against Windows' own libraries (Wine's, mostly) as a Windows program, so that the doubles
// stay true. What differs in setting up stands in NativeMachine.cpp and WindowsMachine.cpp, and
// where the sides are known to disagree, Disagreements.h says so.

#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <vector>

// The one key below which these tests write, under HKEY_CURRENT_USER and HKEY_LOCAL_MACHINE, in
// both views of the latter. Also the name of the environment variable that they set.
extern const wchar_t* const ContractKey;
extern const wchar_t* const ContractVariable;

// The one folder in which these tests make files; gone at the start of each test.
extern const wchar_t* const ContractFolder;

// False, with a sentence on the standard error output, if this machine may not be written to.
bool MachineMayBeUsed();

// Removes what an earlier test has left, the key above with all below it.
void PrepareMachine();

// Makes the folder too. The name is ASCII, or the bytes of its UTF-8.
void PutFile(const std::string& name, const std::string& bytes);
void MakeFolder(const std::string& name);

// The kinds of ODBC that this machine has, and the connection string of a database without tables
// on one of them.
std::vector<std::string> OdbcKinds();
std::string NewDatabase(const std::string& kind);

// Fails the test for what was misused without AllowMisuse. Windows itself doesn't tell.
void CheckMisuse();

// This test uses a closed or unknown handle on purpose.
void AllowMisuse();

class ContractTest : public testing::Test
{
protected:
  ContractTest() { PrepareMachine(); }
  void TearDown() override { CheckMisuse(); }
};

#endif
