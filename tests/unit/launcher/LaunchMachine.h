#ifndef LAUNCHER_LAUNCHMACHINE_H
#define LAUNCHER_LAUNCHMACHINE_H

#include "tests/doubles/PlatformTest.h"
#include "tests/doubles/RegistryDouble.h"

#include <stdint.h>

#include <string>
#include <vector>

// Base of the tests of a whole run: a machine on which hosts and the add-on may be installed, and
// the run itself.
class LaunchMachine : public PlatformTest
{
protected:
  using Lines = std::vector<std::string>;

  // What an earlier run read of the configuration file is forgotten before and behind each test,
  // and that it was confirmed.
  LaunchMachine();
  void TearDown() override;

  // Key of the user's settings of the add-on, as the registry spells it, and the key below.
  static const char* const AddOnKey;
  static const char* const StartupKey;
  // The host's executable.
  static const char* const HostFile;

  // Path of the host's key with the version key, without a backslash at its end.
  static std::string HostKey(const std::string& versionKey);

  // Makes AutoCAD with the version key and the subkey ABCD-0001 the user's current host and
  // installs it in C:\Host, in the view that makes it a 64-bit host or not.
  static void InstallHost(const std::string& versionKey, bool is64Bit);
  // The same for a host of version 15, which is found by the class of drawing files.
  static void InstallVersion15(bool is64Bit);
  static void SetBinPath(RegistryView view, const std::string& path);

  // One run; the result must be 0.
  static void Launch(const char* arguments);

  // What a run has left, of values below HKEY_CURRENT_USER.
  static RegistryValue StartupValue();
  static RegistryValue AddOnValue(const std::string& name);
  // The command line of the one host that was started; a sentence if there is not exactly one.
  static std::string HostCommandLine();
};

#endif
