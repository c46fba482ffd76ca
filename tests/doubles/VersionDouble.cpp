#include "tests/doubles/VersionDouble.h"

#include "tests/doubles/Recorder.h"
#include "tests/doubles/Text.h"

#include <windows.h>

#include <winver.h>

#include <string.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace {

// A block is this mark, one byte that tells whether there is a version text, and the text.
constexpr char BlockMark[] = {'K', 'V', 'E', 'R'};
constexpr size_t TextOffset = sizeof(BlockMark) + 1;
constexpr size_t UsualBlockBytes = 100;

using Block = std::vector<char>;

struct VersionState
{
  std::vector<std::pair<std::string, Block>> files;
};

VersionState& State()
{
  static VersionState state;
  return state;
}

Block MakeBlock(bool hasText, const std::string& utf8)
{
  const std::string text = AnsiFromUtf8(utf8);
  Block block(BlockMark, BlockMark + sizeof(BlockMark));
  block.push_back(hasText ? 1 : 0);
  block.insert(block.end(), text.begin(), text.end());
  return block;
}

void SetBlock(const std::string& path, const Block& block)
{
  std::erase_if(State().files, [&path](const auto& file) { return SameName(file.first, path); });
  State().files.emplace_back(path, block);
}

Block Padded(Block block)
{
  block.resize(std::max(block.size() + 1, UsualBlockBytes));
  return block;
}

const Block* Find(const char* path)
{
  for (const auto& [filePath, block] : State().files) {
    if (SameName(filePath, Utf8FromAnsi(path)))
      return &block;
  }
  SetLastError(ERROR_RESOURCE_DATA_NOT_FOUND);
  return nullptr;
}

}  // namespace

void VersionDouble::SetFileVersion(const std::string& path, const std::string& version)
{
  SetBlock(path, Padded(MakeBlock(true, version)));
}

void VersionDouble::SetUnterminatedVersion(const std::string& path, const std::string& version)
{
  SetBlock(path, MakeBlock(true, version));
}

void VersionDouble::SetWithoutFileVersion(const std::string& path)
{
  SetBlock(path, Padded(MakeBlock(false, "")));
}

VersionDouble& Versions()
{
  static VersionDouble versions;
  return versions;
}

void ResetVersions()
{
  State() = VersionState();
}

DWORD WINAPI GetFileVersionInfoSizeA(LPCSTR path, LPDWORD handle)
{
  DWORD size = 0;
  if (!FailsWithLastError("GetFileVersionInfoSizeA")) {
    const Block* block = Find(path);
    size = block == nullptr ? 0 : static_cast<DWORD>(block->size());
    if (handle != nullptr)
      *handle = 0;
  }
  WriteDiary("GetFileVersionInfoSizeA(" + QuotedAnsi(path) + ") = " + std::to_string(size));
  return size;
}

BOOL WINAPI GetFileVersionInfoA(LPCSTR path, DWORD handle, DWORD size, LPVOID data)
{
  BOOL result = FALSE;
  if (!FailsWithLastError("GetFileVersionInfoA")) {
    const Block* block = Find(path);
    if (block != nullptr) {
      memcpy(data, block->data(), std::min(block->size(), static_cast<size_t>(size)));
      result = TRUE;
    }
  }
  WriteDiary("GetFileVersionInfoA(" + QuotedAnsi(path) + ", " + std::to_string(handle) + ", " +
             std::to_string(size) + ") = " + std::to_string(result));
  return result;
}

BOOL WINAPI VerQueryValueA(LPCVOID block, LPCSTR subBlock, LPVOID* value, PUINT length)
{
  BOOL result = FALSE;
  if (!FailsWithLastError("VerQueryValueA")) {
    if (memcmp(block, BlockMark, sizeof(BlockMark)) != 0)
      EndUnprepared("VerQueryValueA was given memory that GetFileVersionInfoA has not filled.");
    // Windows too gives a pointer into the caller's memory, which the caller may write to.
    char* text = const_cast<char*>(static_cast<const char*>(block)) + TextOffset;
    if (text[-1] == 1 && SameName(subBlock, "\\StringFileInfo\\040904b0\\FileVersion")) {
      *value = text;
      *length = static_cast<UINT>(strlen(text)) + 1;
      result = TRUE;
    } else {
      SetLastError(ERROR_RESOURCE_TYPE_NOT_FOUND);
    }
  }
  WriteDiary("VerQueryValueA(" + QuotedAnsi(subBlock) + ") = " + std::to_string(result));
  return result;
}
