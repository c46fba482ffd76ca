#include "driver/WinePath.h"

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cstdlib>

#include "driver/Text.h"

namespace {

bool Exists(const std::string& path)
{
  struct stat status;
  return stat(path.c_str(), &status) == 0;
}

// The path without links and dots, empty if there is nothing.
std::string RealPath(const std::string& path)
{
  char* const resolved = realpath(path.c_str(), nullptr);
  if (resolved == nullptr)
    return {};
  std::string result(resolved);
  free(resolved);
  return result;
}

std::string DrivesFolder()
{
  // NOLINTBEGIN(concurrency-mt-unsafe): nothing here changes the environment.
  const char* const prefix = getenv("WINEPREFIX");
  if (prefix != nullptr && *prefix != '\0')
    return std::string(prefix) + "/dosdevices";
  const char* const home = getenv("HOME");
  // NOLINTEND(concurrency-mt-unsafe)
  return std::string(home == nullptr ? "" : home) + "/.wine/dosdevices";
}

std::string DriveFolder(char letter)
{
  const char lower = static_cast<char>(FoldCase(static_cast<unsigned char>(letter)));
  return DrivesFolder() + "/" + lower + ":";
}

// The drive in whose folder the current folder lies most closely; C: if there is none.
std::string CurrentDriveFolder()
{
  const std::string current = RealPath(".");
  std::string best;
  size_t bestLength = 0;
  for (char letter = 'a'; letter <= 'z'; ++letter) {
    std::string root = RealPath(DriveFolder(letter));
    if (root.empty())
      continue;
    if (root.back() != '/')
      root += '/';
    if (root.size() > bestLength && (current + "/").compare(0, root.size(), root) == 0) {
      best = DriveFolder(letter);
      bestLength = root.size();
    }
  }
  return best.empty() ? DriveFolder('c') : best;
}

// The entry of a folder that has this name but for its case.
std::string FindEntry(const std::string& folder, std::string_view name)
{
  std::string found;
  DIR* const directory = opendir(folder.c_str());
  if (directory == nullptr)
    return found;
  // No other thread has this folder's handle.
  // cppcheck-suppress readdirCalled
  // NOLINTNEXTLINE(concurrency-mt-unsafe)
  for (const dirent* entry = readdir(directory); entry != nullptr; entry = readdir(directory)) {
    // Of several, the first by name: the order of a folder is no order.
    if (EqualsNoCase(entry->d_name, name) && (found.empty() || found > entry->d_name))
      found = entry->d_name;
  }
  closedir(directory);
  return found;
}

// Walks down from a folder of this machine, name by name.
std::string Descend(std::string folder, std::string_view names)
{
  while (!names.empty()) {
    const size_t end = std::min(names.find_first_of("\\/"), names.size());
    const std::string_view name = names.substr(0, end);
    names.remove_prefix(std::min(end + 1, names.size()));
    if (name.empty())
      continue;
    std::string step = folder + "/" + std::string(name);
    if (!Exists(step)) {
      const std::string entry = FindEntry(folder, name);
      if (entry.empty())
        return {};
      // NOLINTNEXTLINE(performance-inefficient-string-concatenation): paths have few parts.
      step = folder + "/" + entry;
    }
    folder = step;
  }
  return RealPath(folder);
}

bool IsSlash(char character)
{
  return character == '\\' || character == '/';
}

bool IsLetter(char character)
{
  return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

}  // namespace

std::string FindFile(std::string_view path)
{
  if (path.empty() || path.find('\0') != std::string_view::npos)
    return {};
  if (path.front() == '/')
    return RealPath(std::string(path));
  if (path.substr(0, 8) == "\\\\?\\UNC\\")
    return Descend(DrivesFolder() + "/unc", path.substr(8));
  if (path.substr(0, 4) == "\\\\?\\")
    path.remove_prefix(4);
  if (path.size() >= 2 && IsLetter(path[0]) && path[1] == ':') {
    // A path relative to the current folder of a drive starts, for want of that, at its root.
    return Descend(DriveFolder(path[0]), path.substr(2));
  }
  if (path.size() >= 2 && IsSlash(path[0]) && IsSlash(path[1]))
    return Descend(DrivesFolder() + "/unc", path.substr(2));
  if (!path.empty() && IsSlash(path.front()))
    return Descend(CurrentDriveFolder(), path);
  return Descend(".", path);
}
