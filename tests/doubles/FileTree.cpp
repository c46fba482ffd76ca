#include "tests/doubles/FileTree.h"

#include "tests/doubles/Recorder.h"
#include "tests/doubles/Text.h"

#include <stdlib.h>
#include <unistd.h>

#include <algorithm>

namespace fs = std::filesystem;

namespace {

// The folder of all files, empty until a test uses one. It goes at the end of the program at the
// latest, but not at the end of a copy of the program, as death tests make them.
struct TemporaryFolder
{
  ~TemporaryFolder() { Remove(); }

  void Remove()
  {
    std::error_code ignored;
    if (!path.empty() && owner == getpid())
      fs::remove_all(path, ignored);
    path.clear();
  }

  fs::path path;
  pid_t owner = 0;
};

TemporaryFolder& Folder()
{
  static TemporaryFolder folder;
  return folder;
}

// The name as it is spelled in the folder, or as it was given if it isn't there.
std::string SpellingIn(const fs::path& folder, const std::string& name)
{
  std::error_code missing;
  if (fs::exists(folder / name, missing))
    return name;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder, missing)) {
    if (SameName(entry.path().filename().string(), name))
      return entry.path().filename().string();
  }
  return name;
}

std::string UpperCase(std::string name)
{
  for (char& c : name)
    c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
  return name;
}

// A file also has a short name of the old form, whose extension is the first three characters of
// the long one; a search looks at both.
bool HasExtension(const std::string& name, const std::string& extension)
{
  const size_t point = name.rfind('.');
  if (point == std::string::npos)
    return false;
  const std::string own = name.substr(point);
  return SameName(own, extension) || SameName(own.substr(0, 4), extension);
}

// Where a name stands in a list; behind all others if it isn't there.
size_t PlaceIn(const std::vector<std::string>& names, const std::string& name)
{
  const auto found = std::find_if(names.begin(), names.end(), [&name](const std::string& listed) {
    return SameName(listed, name);
  });
  return static_cast<size_t>(found - names.begin());
}

}  // namespace

fs::path FileRoot()
{
  TemporaryFolder& folder = Folder();
  if (folder.path.empty()) {
    std::string path = (fs::temp_directory_path() / "kestrel-files-XXXXXX").string();
    if (mkdtemp(path.data()) == nullptr)
      EndUnprepared("no folder for files can be made: " + path);
    folder.path = path;
    folder.owner = getpid();
    fs::create_directories(folder.path / "dosdevices" / "c:");
  }
  return folder.path;
}

void RemoveAllFiles()
{
  Folder().Remove();
}

fs::path HostPath(const std::string& windowsPath)
{
  std::string path = windowsPath;
  std::replace(path.begin(), path.end(), '/', '\\');
  if (path.empty() || path.starts_with("\\\\"))
    return {};
  const bool hasDrive = path.size() >= 2 && path[1] == ':';
  const std::string drive = hasDrive ? path.substr(0, 2) : "c:";
  path = hasDrive ? path.substr(2) : path;

  const fs::path devices = FileRoot() / "dosdevices";
  fs::path host = devices / SpellingIn(devices, drive);
  for (size_t begin = 0; begin < path.size();) {
    const size_t end = std::min(path.find('\\', begin), path.size());
    if (end > begin)
      host /= SpellingIn(host, path.substr(begin, end - begin));
    begin = end + 1;
  }
  return host;
}

std::vector<std::string> NamesByExtension(const fs::path& folder, const std::string& extension,
                                          const std::vector<std::string>& namesFirst)
{
  std::vector<std::string> names;
  std::error_code missing;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder, missing)) {
    const std::string name = entry.path().filename().string();
    if (HasExtension(name, extension))
      names.push_back(name);
  }
  std::sort(names.begin(), names.end(), [&](const std::string& left, const std::string& right) {
    const size_t leftPlace = PlaceIn(namesFirst, left);
    const size_t rightPlace = PlaceIn(namesFirst, right);
    return leftPlace != rightPlace ? leftPlace < rightPlace : UpperCase(left) < UpperCase(right);
  });
  return names;
}
