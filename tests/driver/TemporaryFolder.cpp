#include "tests/driver/TemporaryFolder.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

std::filesystem::path Parent(Place place)
{
  const std::filesystem::path inMemory = "/dev/shm";
  return place == Place::Memory && std::filesystem::is_directory(inMemory)
             ? inMemory
             : std::filesystem::temp_directory_path();
}

}  // namespace

TemporaryFolder::TemporaryFolder(Place place)
    : path((Parent(place) / "kestrel-driver-XXXXXX").string())
{
  if (mkdtemp(path.data()) == nullptr) {
    perror(path.c_str());
    exit(2);
  }
}

TemporaryFolder::~TemporaryFolder()
{
  std::error_code ignored;  // what can't be removed does not make a test fail
  std::filesystem::remove_all(path, ignored);
}

std::vector<std::string> TemporaryFolder::Names() const
{
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(path))
    names.push_back(entry.path().filename().string());
  std::sort(names.begin(), names.end());
  return names;
}

std::string FileBytes(const std::string& path)
{
  std::ostringstream bytes;
  bytes << std::ifstream(path, std::ios::binary).rdbuf();
  return bytes.str();
}

void WriteFile(const std::string& path, const std::string& bytes)
{
  std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
}
