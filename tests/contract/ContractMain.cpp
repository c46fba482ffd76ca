#include "tests/contract/ContractTest.h"

const wchar_t* const ContractKey = L"Software\\KestrelContract";
const wchar_t* const ContractVariable = L"KESTREL_CONTRACT";
const wchar_t* const ContractFolder = L"C:\\KestrelContract";

int main(int argc, char** argv)
{
  if (!MachineMayBeUsed())
    return 1;
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
