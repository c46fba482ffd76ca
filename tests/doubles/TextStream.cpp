// _wfopen_s with the mode "r, ccs=UNICODE": text, whose encoding msvcrt tells by the mark at the
// start of the file. What a stream delivers:
//
//   mark of UTF-16LE   characters of 16 bits, from behind the mark
//   mark of UTF-8      the same, translated
//   anything else      the bytes as they are, a mark of UTF-16BE included
//
// CR LF becomes LF, a Ctrl-Z ends the text, half a character at the end is dropped. The start to
// which fseek goes is that of the file, so that the mark comes too, as the character 0xFEFF; the
// end is that of the file's own bytes. fseek knows no other places here.
#include "tests/doubles/FileTree.h"
#include "tests/doubles/FilesDouble.h"
#include "tests/doubles/Recorder.h"
#include "tests/doubles/Text.h"

#include <errno.h>
#include <string.h>

#include <algorithm>
#include <set>

namespace fs = std::filesystem;

namespace {

constexpr const char* KnownMode = "r, ccs=UNICODE";

// A file that is open, behind the stream of glibc that the code under test holds.
struct TextStream
{
  std::string delivered;  // from the very start
  size_t fileSize = 0;
  size_t position = 0;  // in `delivered`
};

// glibc's streams of those that are open. All other streams of the program are glibc's affair.
std::set<FILE*>& OpenFiles()
{
  static std::set<FILE*> files;
  return files;
}

// True if this call for one of those is to fail.
bool FailsFor(const char* function, FILE* file)
{
  unsigned long code = 0;
  return OpenFiles().contains(file) && TakeFault(function, code);
}

template <typename Unit>
std::vector<Unit> AsText(const std::vector<Unit>& units)
{
  std::vector<Unit> text;
  for (size_t i = 0; i < units.size() && units[i] != Unit{0x1A}; ++i) {
    const bool lineEnd =
        units[i] == Unit{'\r'} && i + 1 < units.size() && units[i + 1] == Unit{'\n'};
    if (!lineEnd)
      text.push_back(units[i]);
  }
  return text;
}

std::string WideAsBytes(const std::vector<wchar_t>& units)
{
  const std::vector<wchar_t> text = AsText(units);
  std::string bytes(text.size() * sizeof(wchar_t), '\0');
  if (!text.empty())
    memcpy(bytes.data(), text.data(), bytes.size());
  return bytes;
}

void SetContent(TextStream& stream, const std::string& file)
{
  stream.fileSize = file.size();
  if (file.starts_with("\xFF\xFE")) {
    std::vector<wchar_t> units(file.size() / sizeof(wchar_t));
    memcpy(units.data(), file.data(), units.size() * sizeof(wchar_t));
    stream.delivered = WideAsBytes(units);
    stream.position = sizeof(wchar_t);
  } else if (file.starts_with("\xEF\xBB\xBF")) {
    const WideText text(file);
    stream.delivered = WideAsBytes({text.c_str(), text.c_str() + text.Length()});
    stream.position = sizeof(wchar_t);
  } else {
    const std::vector<char> text = AsText(std::vector<char>(file.begin(), file.end()));
    stream.delivered.assign(text.begin(), text.end());
  }
}

// glibc's side of a stream.
ssize_t ReadStream(void* cookie, char* buffer, size_t size)
{
  TextStream& stream = *static_cast<TextStream*>(cookie);
  if (stream.position >= stream.delivered.size())
    return 0;
  const size_t count = std::min(size, stream.delivered.size() - stream.position);
  memcpy(buffer, stream.delivered.data() + stream.position, count);
  stream.position += count;
  return static_cast<ssize_t>(count);
}

int SeekStream(void* cookie, off64_t* offset, int from)
{
  TextStream& stream = *static_cast<TextStream*>(cookie);
  if (*offset != 0) {
    Misuse("fseek was asked for a place that is neither the start nor the end of a file.");
    return -1;
  }
  if (from == SEEK_SET)
    stream.position = 0;
  else if (from == SEEK_END)
    stream.position = stream.delivered.size();
  const bool atEnd = stream.position >= stream.delivered.size();
  *offset = static_cast<off64_t>(atEnd ? stream.fileSize : stream.position);
  return 0;
}

int CloseStream(void* cookie)
{
  delete static_cast<TextStream*>(cookie);
  return 0;
}

errno_t OpenStream(FILE** file, const std::string& path)
{
  const fs::path host = HostPath(path);
  if (!fs::exists(host))
    return ENOENT;
  if (!fs::is_regular_file(host))
    return EACCES;
  TextStream* stream = new TextStream;
  SetContent(*stream, Files().Read(path));
  *file = fopencookie(stream, "r", {ReadStream, nullptr, SeekStream, CloseStream});
  if (*file == nullptr)
    EndUnprepared("glibc has no stream left.");
  // A buffer of glibc would count places in a way of its own.
  (void)setvbuf(*file, nullptr, _IONBF, 0);
  OpenFiles().insert(*file);
  return 0;
}

}  // namespace

int FilesDouble::OpenStreams() const
{
  return static_cast<int>(OpenFiles().size());
}

// As the code under test calls them (--wrap, see CMakeLists.txt).
extern "C" {

size_t __real_fread(void* buffer, size_t size, size_t count, FILE* file);
int __real_fseek(FILE* file, long offset, int from);
long __real_ftell(FILE* file);
int __real_fclose(FILE* file);

size_t __wrap_fread(void* buffer, size_t size, size_t count, FILE* file)
{
  return FailsFor("fread", file) ? 0 : __real_fread(buffer, size, count, file);
}

int __wrap_fseek(FILE* file, long offset, int from)
{
  return FailsFor("fseek", file) ? -1 : __real_fseek(file, offset, from);
}

long __wrap_ftell(FILE* file)
{
  return FailsFor("ftell", file) ? -1 : __real_ftell(file);
}

int __wrap_fclose(FILE* file)
{
  const bool fails = FailsFor("fclose", file);
  OpenFiles().erase(file);
  const int result = __real_fclose(file);
  return fails ? EOF : result;
}

}  // extern "C"

errno_t _wfopen_s(FILE** file, const wchar_t* path, const wchar_t* mode)
{
  if (Utf8(mode) != KnownMode)
    EndUnprepared("_wfopen_s was given the mode \"" + Utf8(mode) + "\".");
  unsigned long code = 0;
  errno_t result = EINVAL;
  if (TakeFault("_wfopen_s", code)) {
    result = static_cast<errno_t>(code);
    *file = nullptr;
  } else if (path != nullptr) {
    *file = nullptr;
    result = OpenStream(file, Utf8(path));
  }
  WriteDiary("_wfopen_s(" + Quoted(path) + ", " + Quoted(mode) + ") = " + std::to_string(result));
  return result;
}
