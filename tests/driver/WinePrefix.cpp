#include "tests/driver/WinePrefix.h"

#include <cstdlib>
#include <filesystem>

namespace fs = std::filesystem;

WinePrefix::WinePrefix()
{
  fs::create_directories(OnC("Data/Products"));
  fs::create_directories(OnC("Data/products"));
  fs::create_directories(OnD(""));
  fs::create_directories(folder.File("dosdevices"));
  fs::create_directory_symlink("../drive_c", folder.File("dosdevices/c:"));
  fs::create_directory_symlink(OnD(""), folder.File("dosdevices/d:"));
  WriteFile(OnC("Data/Products/Bolts.mdb"), "");
  WriteFile(OnC("Data/products/other.mdb"), "");
  WriteFile(OnD("plan.mdb"), "");
  setenv("WINEPREFIX", folder.Path().c_str(), 1);
}

WinePrefix::~WinePrefix()
{
  unsetenv("WINEPREFIX");
}

CurrentFolder::CurrentFolder(const std::string& path) : before(fs::current_path().string())
{
  fs::current_path(path);
}

CurrentFolder::~CurrentFolder()
{
  fs::current_path(before);
}
