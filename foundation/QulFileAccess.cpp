#include "foundation/QulFileAccess.h"

#include <stddef.h>

namespace {

constexpr size_t WideMarkBytes = 2;
constexpr size_t ProbeBytes = 3;

bool IsWideMark(const unsigned char* probe)
{
  return (probe[0] == 0xFF && probe[1] == 0xFE) || (probe[0] == 0xFE && probe[1] == 0xFF);
}

bool IsNarrowMark(const unsigned char* probe)
{
  return probe[0] == 0xEF && probe[1] == 0xBB && probe[2] == 0xBF;
}

}  // namespace

QulFileAccess::QulFileAccess(const QulString& path, const QulString& mode, int /*unused*/)
{
  const QulString wideMode = QulString::Concat(mode, L", ccs=UNICODE");
  if (path.Length() > 0)
    (void)_wfopen_s(&file, path.Text(), wideMode.Text());
}

QulFileAccess::~QulFileAccess()
{
  if (file != nullptr) {
    (void)fclose(file);
    file = nullptr;
  }
}

// NOLINTBEGIN(clang-analyzer-cplusplus.NewDeleteLeaks): the buffers are given up on purpose. One
// file is read in a run.
uint64_t QulFileAccess::ReadAll(QulString& result, uint64_t size)
{
  // One item more than can be read, for the terminator.
  wchar_t* wide = new wchar_t[size + 1];
  char* narrow = new char[size + 1];
  // Zeros, because a file of less than two bytes leaves the probe as it is.
  unsigned char* probe = new unsigned char[ProbeBytes]();

  (void)fread(probe, 1, WideMarkBytes, file);
  bool deliversWide = IsWideMark(probe);
  if (!deliversWide) {
    // The next three, the two above being gone. Text behind this mark is taken for characters of 16
    // bits, like that behind a wide mark.
    (void)fread(probe, 1, ProbeBytes, file);
    deliversWide = IsNarrowMark(probe);
  }

  if (deliversWide) {
    const size_t characters = fread(wide, sizeof(wchar_t), size, file);
    wide[characters] = L'\0';
    result.Assign(QulString(wide));
    // cppcheck-suppress memleak ; given up on purpose, as told above
    return characters;
  }
  // To the first byte of the file; if the runtime has passed over a mark, that is text here.
  (void)fseek(file, 0, SEEK_SET);
  const size_t bytes = fread(narrow, 1, size, file);
  narrow[bytes] = '\0';
  result.Assign(QulString(narrow));
  // cppcheck-suppress memleak ; given up on purpose, as told above
  return bytes;
}
// NOLINTEND(clang-analyzer-cplusplus.NewDeleteLeaks)
