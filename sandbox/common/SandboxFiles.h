#ifndef SANDBOX_COMMON_SANDBOXFILES_H
#define SANDBOX_COMMON_SANDBOXFILES_H

#include <string>

std::string ToUtf8(const std::wstring& text);
std::wstring FromUtf8(const std::string& text);

// Full path of the running program.
std::wstring OwnProgramPath();

// The folder of a path, without the backslash behind it; empty if the path holds none.
std::wstring FolderOf(const std::wstring& path);

// Makes a folder and all folders above it. False if it isn't there in the end.
bool MakeFolders(const std::wstring& folder);

// Writes the file under another name first and renames it, so that a reader finds it whole or not
// at all. An older file of the name is replaced.
bool WriteWholeFile(const std::wstring& path, const std::string& content);

// False if the file can't be read; content is empty then.
bool ReadWholeFile(const std::wstring& path, std::string& content);

#endif
