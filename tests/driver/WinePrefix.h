#ifndef TESTS_DRIVER_WINEPREFIX_H
#define TESTS_DRIVER_WINEPREFIX_H

#include <string>

#include "tests/driver/TemporaryFolder.h"

// A folder that looks like a Wine prefix with drives C: and D:, and is the one in WINEPREFIX while
// it lives. There are files Data/Products/Bolts.mdb and Data/products/other.mdb on C:, plan.mdb on
// D:.
class WinePrefix
{
public:
  WinePrefix();
  ~WinePrefix();
  WinePrefix(const WinePrefix&) = delete;
  WinePrefix& operator=(const WinePrefix&) = delete;

  // The full path on this machine of a name on a drive.
  std::string OnC(const std::string& name) const { return folder.File("drive_c/" + name); }
  std::string OnD(const std::string& name) const { return folder.File("second/" + name); }

  const TemporaryFolder folder;
};

// Sets the current folder and sets it back.
class CurrentFolder
{
public:
  explicit CurrentFolder(const std::string& path);
  ~CurrentFolder();
  CurrentFolder(const CurrentFolder&) = delete;
  CurrentFolder& operator=(const CurrentFolder&) = delete;

private:
  std::string before;
};

#endif
