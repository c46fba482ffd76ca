#include "tests/doubles/InstallerDouble.h"

#include "tests/doubles/Recorder.h"
#include "tests/doubles/Text.h"

#include <windows.h>

#include <msi.h>

#include <utility>
#include <vector>

namespace {

using Products = std::vector<std::pair<std::string, unsigned int>>;

Products& State()
{
  static Products products;
  return products;
}

unsigned int RepairResult(const std::string& productCode)
{
  for (const auto& [code, result] : State()) {
    if (SameName(code, productCode))
      return result;
  }
  return ERROR_UNKNOWN_PRODUCT;
}

}  // namespace

void InstallerDouble::AddProduct(const std::string& productCode, unsigned int result)
{
  State().emplace_back(productCode, result);
}

InstallerDouble& Installer()
{
  static InstallerDouble installer;
  return installer;
}

void ResetInstaller()
{
  State().clear();
}

UINT WINAPI MsiReinstallProductW(LPCWSTR productCode, DWORD mode)
{
  unsigned long code = 0;
  const UINT result = TakeFault("MsiReinstallProductW", code) ? static_cast<UINT>(code)
                                                              : RepairResult(Utf8(productCode));
  WriteDiary("MsiReinstallProductW(" + Quoted(productCode) + ", " + Hex(mode) +
             ") = " + std::to_string(result));
  return result;
}
