// The test's side of the files double, and the searches.
#include "tests/doubles/FilesDouble.h"

#include "tests/doubles/FileTree.h"
#include "tests/doubles/Recorder.h"
#include "tests/doubles/Text.h"

#include <windows.h>

#include <stdint.h>
#include <string.h>

#include <algorithm>
#include <fstream>
#include <sstream>

namespace fs = std::filesystem;

namespace {

// A search that was begun, with the names that it has not given yet.
struct Search
{
  fs::path folder;
  std::vector<std::string> names;
  size_t next = 0;
  bool open = true;
};

struct FilesState
{
  std::vector<std::string> searchOrder;
  std::vector<Search> searches;
};

FilesState& State()
{
  static FilesState state;
  return state;
}

// Handles are multiples of this, so that neither a null nor a small number is one.
constexpr uintptr_t HandleStep = 0x10000;

HANDLE HandleOf(size_t number)
{
  return reinterpret_cast<HANDLE>(number * HandleStep);
}

// The search of a handle; null, with the misuse noted, if it is none that is open. What a failed
// search returns is no misuse.
Search* OpenSearchOf(const char* function, HANDLE handle)
{
  if (handle == INVALID_HANDLE_VALUE)
    return nullptr;
  const uintptr_t bits = reinterpret_cast<uintptr_t>(handle);
  std::vector<Search>& searches = State().searches;
  if (bits != 0 && bits % HandleStep == 0 && bits / HandleStep <= searches.size()) {
    Search& search = searches[bits / HandleStep - 1];
    if (search.open)
      return &search;
  }
  Misuse(std::string(function) + " was given a search handle that is none, or closed.");
  return nullptr;
}

std::string NameOf(HANDLE handle)
{
  if (handle == INVALID_HANDLE_VALUE)
    return "invalid";
  const uintptr_t number = reinterpret_cast<uintptr_t>(handle) / HandleStep;
  if (number == 0 || number > State().searches.size() || !State().searches[number - 1].open)
    return "find#?";
  return "find#" + std::to_string(number);
}

// Gives the next name of the search; false if there is none.
bool GiveNext(Search& search, WIN32_FIND_DATAW* data)
{
  if (search.next == search.names.size()) {
    SetLastError(ERROR_NO_MORE_FILES);
    return false;
  }
  const std::string& name = search.names[search.next++];
  const WideText wide(name);
  if (wide.Length() >= MAX_PATH)
    EndUnprepared("a file has a name that is too long for a search.");
  *data = WIN32_FIND_DATAW();
  data->dwFileAttributes = fs::is_directory(search.folder / name) ? DWORD{FILE_ATTRIBUTE_DIRECTORY}
                                                                  : DWORD{FILE_ATTRIBUTE_ARCHIVE};
  memcpy(data->cFileName, wide.c_str(), (wide.Length() + 1) * sizeof(wchar_t));
  return true;
}

HANDLE BeginSearch(const std::string& pattern, WIN32_FIND_DATAW* data)
{
  const size_t slash = pattern.find_last_of("\\/");
  const std::string folder = slash == std::string::npos ? "" : pattern.substr(0, slash + 1);
  const std::string names = slash == std::string::npos ? pattern : pattern.substr(slash + 1);
  if (!names.starts_with("*.") || names.find_first_of("*?", 1) != std::string::npos)
    EndUnprepared("FindFirstFileW was asked for " + names + ": only *.extension is known.");

  Search search;
  search.folder = HostPath(folder);
  if (!fs::is_directory(search.folder)) {
    SetLastError(ERROR_PATH_NOT_FOUND);
    return INVALID_HANDLE_VALUE;
  }
  search.names = NamesByExtension(search.folder, names.substr(1), State().searchOrder);
  if (search.names.empty()) {
    SetLastError(ERROR_FILE_NOT_FOUND);
    return INVALID_HANDLE_VALUE;
  }
  (void)GiveNext(search, data);
  State().searches.push_back(search);
  return HandleOf(State().searches.size());
}

}  // namespace

void FilesDouble::Put(const std::string& path, const std::string& bytes)
{
  const fs::path host = HostPath(path);
  fs::create_directories(host.parent_path());
  std::ofstream(host, std::ios::binary) << bytes;
}

void FilesDouble::MakeFolder(const std::string& path)
{
  fs::create_directories(HostPath(path));
}

void FilesDouble::Remove(const std::string& path)
{
  fs::remove_all(HostPath(path));
}

bool FilesDouble::Exists(const std::string& path) const
{
  return fs::exists(HostPath(path));
}

std::string FilesDouble::Read(const std::string& path) const
{
  std::ostringstream bytes;
  bytes << std::ifstream(HostPath(path), std::ios::binary).rdbuf();
  return bytes.str();
}

void FilesDouble::SetSearchOrder(const std::vector<std::string>& names)
{
  State().searchOrder = names;
}

std::string FilesDouble::UnixPath(const std::string& path) const
{
  return HostPath(path).string();
}

std::string FilesDouble::Prefix() const
{
  return FileRoot().string();
}

int FilesDouble::OpenSearches() const
{
  const std::vector<Search>& searches = State().searches;
  return static_cast<int>(std::count_if(searches.begin(), searches.end(),
                                        [](const Search& search) { return search.open; }));
}

FilesDouble& Files()
{
  static FilesDouble files;
  return files;
}

void ResetFiles()
{
  State() = FilesState();
  RemoveAllFiles();
}

HANDLE WINAPI FindFirstFileW(LPCWSTR pattern, LPWIN32_FIND_DATAW data)
{
  const HANDLE result = FailsWithLastError("FindFirstFileW") ? INVALID_HANDLE_VALUE
                                                             : BeginSearch(Utf8(pattern), data);
  const std::string name =
      result == INVALID_HANDLE_VALUE ? std::string() : " " + Quoted(data->cFileName);
  WriteDiary("FindFirstFileW(" + Quoted(pattern) + ") = " + NameOf(result) + name);
  return result;
}

BOOL WINAPI FindNextFileW(HANDLE handle, LPWIN32_FIND_DATAW data)
{
  BOOL result = FALSE;
  if (!FailsWithLastError("FindNextFileW")) {
    Search* search = OpenSearchOf("FindNextFileW", handle);
    if (search == nullptr)
      SetLastError(ERROR_INVALID_HANDLE);
    else
      result = GiveNext(*search, data) ? TRUE : FALSE;
  }
  WriteDiary("FindNextFileW(" + NameOf(handle) + ") = " + std::to_string(result) +
             (result != FALSE ? " " + Quoted(data->cFileName) : ""));
  return result;
}

BOOL WINAPI FindClose(HANDLE handle)
{
  const std::string line = "FindClose(" + NameOf(handle) + ") = ";
  BOOL result = FALSE;
  if (!FailsWithLastError("FindClose")) {
    Search* search = OpenSearchOf("FindClose", handle);
    if (search == nullptr) {
      SetLastError(ERROR_INVALID_HANDLE);
    } else {
      // Its number is not given again; what it knew is let go.
      *search = Search();
      search->open = false;
      result = TRUE;
    }
  }
  WriteDiary(line + std::to_string(result));
  return result;
}
