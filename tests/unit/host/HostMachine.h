#ifndef UNIT_HOSTMACHINE_H
#define UNIT_HOSTMACHINE_H

#include "foundation/QulString.h"
#include "host/HostRelease.h"
#include "tests/doubles/PlatformTest.h"
#include "tests/doubles/RegistryDouble.h"
#include "tests/doubles/Text.h"

#include <string>
#include <vector>

using Lines = std::vector<std::string>;

// Where hosts record which one is current.
struct HostPlace
{
  HKEY root;
  RegistryView view;
};

// All hosts but those of version 15.
HostPlace UserHosts();
// Version 15.
HostPlace MachineHosts();

// What a selection has left.
struct SelectedHost
{
  HostRelease release;
  std::string commandLine;
  std::string keyPath;
  std::string executable;
  bool is64Bit;
};

// Base of the tests that search hosts. Keys are given by their path below "Software\Autodesk". A
// test fails if it leaves more keys open than it says.
class HostMachine : public PlatformTest
{
protected:
  void TearDown() override;

  void AddKey(const HostPlace& place, const std::string& path);
  void SetText(const HostPlace& place, const std::string& path, const std::string& name,
               const std::string& text);
  void SetRaw(const HostPlace& place, const std::string& path, const std::string& name,
              const std::vector<unsigned char>& bytes);

  // Records the three as current, each with its key. The product may not be empty.
  void SetCurrentHost(const HostPlace& place, const std::string& product,
                      const std::string& version, const std::string& subkey);
  // AutoCAD R17.1 ABCD-0001 of this user, a 64-bit host in C:\Host.
  void SetUsualHost();
  // The record of an install folder under HKEY_LOCAL_MACHINE.
  void Install(RegistryView view, const std::string& path, const std::string& folder);
  void SetDrawingClass(const std::string& className);

  SelectedHost Select(const std::string& arguments);

  int keysLeftOpen = 0;
};

QulString Qul(const std::string& utf8);
std::string Utf8(const QulString& text);

#endif
