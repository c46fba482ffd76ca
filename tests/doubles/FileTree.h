#ifndef DOUBLES_FILETREE_H
#define DOUBLES_FILETREE_H

// Where the files double keeps its files: the doubles' own side, tests include FilesDouble.h.

#include <filesystem>
#include <string>
#include <vector>

// The Linux path of a Windows one, with the spelling of what exists. The folder of all files is
// made if there is none yet. Empty for a path that has no place, such as one on another machine.
std::filesystem::path HostPath(const std::string& windowsPath);

// Below it lies `dosdevices`.
std::filesystem::path FileRoot();

void RemoveAllFiles();

// The names in a folder that a search finds for the extension (with its point), in the order of
// the search.
std::vector<std::string> NamesByExtension(const std::filesystem::path& folder,
                                          const std::string& extension,
                                          const std::vector<std::string>& namesFirst);

#endif
