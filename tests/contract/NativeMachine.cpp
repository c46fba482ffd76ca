// The contract tests' machine in a native build: the doubles.
#include "tests/contract/ContractTest.h"
#include "tests/contract/Disagreements.h"

#include "tests/doubles/Diary.h"
#include "tests/doubles/FilesDouble.h"
#include "tests/doubles/ProcessDouble.h"
#include "tests/doubles/Text.h"

bool MachineMayBeUsed()
{
  return true;
}

void PrepareMachine()
{
  ResetPlatform();
  Processes().SetLongPath("C:\\windows", "C:\\windows");
}

void PutFile(const std::string& name, const std::string& bytes)
{
  Files().Put(Utf8(ContractFolder) + "\\" + name, bytes);
}

void MakeFolder(const std::string& name)
{
  Files().MakeFolder(Utf8(ContractFolder) + "\\" + name);
}

void CheckMisuse()
{
  for (const std::string& misuse : TakeMisuses())
    ADD_FAILURE() << misuse;
}

void AllowMisuse()
{
  EXPECT_FALSE(TakeMisuses().empty());
}

bool WritesAddTerminator()
{
  return false;
}

bool ReadsAddTerminator()
{
  return false;
}

bool NarrowFormatLeavesText()
{
  return false;
}
