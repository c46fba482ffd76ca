#ifndef TESTS_DRIVER_TEMPORARYFOLDER_H
#define TESTS_DRIVER_TEMPORARYFOLDER_H

#include <string>
#include <vector>

enum class Place
{
  Memory,
  Disk
};

// A new empty folder, removed with all that is in it when the object ends. It is in memory where
// the machine has a place for that, since a disk would be waited for, or on a disk if that is asked
// for.
class TemporaryFolder
{
public:
  explicit TemporaryFolder(Place place = Place::Memory);
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const std::string& Path() const { return path; }
  // The full path of a name in it.
  std::string File(const std::string& name) const { return path + "/" + name; }
  // Names of its entries, sorted.
  std::vector<std::string> Names() const;

private:
  std::string path;
};

std::string FileBytes(const std::string& path);
void WriteFile(const std::string& path, const std::string& bytes);

#endif
