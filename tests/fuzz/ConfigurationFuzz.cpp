// The configuration file, which is the input as it stands, against a plain second form of its
// reader.
#include "update/DatabaseConfiguration.h"

#include "tests/doubles/Diary.h"
#include "tests/doubles/FilesDouble.h"
#include "tests/doubles/RegistryDouble.h"
#include "tests/doubles/Text.h"
#include "tests/fuzz/OneInput.h"
#include "tests/fuzz/Require.h"
#include "tests/fuzz/Script.h"

#include <algorithm>

namespace {

using Text = std::u16string;

const char* const File = "C:\\D\\Configuration\\DatabaseConfiguration.xml";

// What is behind it is left out, since trimming takes quadratic time.
constexpr size_t LongestFile = 1200;

// Arrays that a reading gives up: two for the text, one for its mark.
constexpr size_t ArraysOfAReading = 3;

struct Source
{
  Text platform;
  Text name;
  Text value;
};

struct Reading
{
  Ending ending = Ending::Returned;
  std::vector<Source> sources;
};

// Line ends become line feeds, and the text ends at its first Ctrl-Z, as the runtime has it.
template <typename String>
String AsText(const String& file)
{
  String text;
  const size_t end = std::min(file.find(0x1A), file.size());
  for (size_t i = 0; i < end; ++i) {
    if (file[i] != '\r' || i + 1 == file.size() || file[i + 1] != '\n')
      text += file[i];
  }
  return text;
}

Text UnitsAt(const std::string& bytes, size_t at)
{
  Text units;
  for (; at + 1 < bytes.size(); at += 2) {
    const auto low = static_cast<unsigned char>(bytes[at]);
    const auto high = static_cast<unsigned char>(bytes[at + 1]);
    units += static_cast<char16_t>(low | high << 8);
  }
  return units;
}

std::string BytesAsString(const Text& units)
{
  const std::vector<unsigned char> bytes = BytesOf(units);
  return std::string(bytes.begin(), bytes.end());
}

// What the runtime delivers from the very start of a file that was opened for wide text.
std::string Delivered(const std::string& file)
{
  if (file.starts_with("\xFF\xFE"))
    return BytesAsString(AsText(UnitsAt(file, 0)));
  if (!file.starts_with("\xEF\xBB\xBF"))
    return AsText(file);
  const WideText wide(file);
  return BytesAsString(AsText(Text(wide.c_str(), wide.c_str() + wide.Length())));
}

Text TextOfFile(const std::string& file)
{
  const std::string bytes = Delivered(file);
  Text text;
  if (bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF"))
    text = UnitsAt(bytes, 2);
  else if (bytes.size() >= 5 && bytes.compare(2, 3, "\xEF\xBB\xBF") == 0)
    text = UnitsAt(bytes, 5);
  else
    text = UnitsOfAnsi(bytes);
  return text.substr(0, text.find(u'\0'));
}

// Takes what lies between the two places; false, with the ending set, if the end comes first.
bool Cut(const Text& text, size_t first, size_t end, Text& piece, Ending& ending)
{
  piece.clear();
  if (first >= text.size())
    return true;
  if (end < first) {
    ending = first - end == 1 ? Ending::Fatal : Ending::OutOfMemory;
    return false;
  }
  piece = text.substr(first, end - first);
  return true;
}

Text Trimmed(const Text& text)
{
  const size_t first = text.find_first_not_of(u"\t\n ");
  const size_t last = text.find_last_not_of(u"\t\n ");
  return first == Text::npos ? Text() : text.substr(first, last - first + 1);
}

bool FindAttribute(const Text& element, const Text& name, Text& value)
{
  const size_t found = element.find(name);
  const size_t open = found == Text::npos ? found : element.find(u'"', found);
  const size_t close = open == Text::npos ? open : element.find(u'"', open + 1);
  if (close == Text::npos)
    return false;
  value = element.substr(open + 1, close - open - 1);
  return true;
}

Reading ReadPlainly(const std::string& file)
{
  Reading reading;
  const Text text = TextOfFile(file);
  const size_t open = text.find(u"<Kestrelforge>");
  const size_t close = text.find(u"</Kestrelforge>");
  Text body;
  if (open == Text::npos || close == Text::npos ||
      !Cut(text, open + 14, close, body, reading.ending)) {
    return reading;
  }

  std::vector<Text> elements;
  for (size_t position = 0; position < body.size();) {
    const size_t start = body.find(u"<DataSource", position);
    const size_t end = body.find(u"/>", position);
    if (start == Text::npos || end == Text::npos)
      break;
    Text element;
    if (!Cut(body, start + 11, end, element, reading.ending))
      return reading;
    elements.push_back(Trimmed(element));
    position = end + 2;
  }
  for (const Text& element : elements) {
    Source source;
    if (FindAttribute(element, u"Platform", source.platform) &&
        FindAttribute(element, u"Name", source.name) &&
        FindAttribute(element, u"Value", source.value)) {
      reading.sources.push_back(source);
    }
  }
  return reading;
}

bool Same(const QulString& real, const Text& plain)
{
  return std::equal(
      plain.begin(), plain.end(), real.Text(), real.Text() + real.Length(),
      [](char16_t left, wchar_t right) { return left == static_cast<char16_t>(right); });
}

void CompareTable(const std::vector<Source>& sources)
{
  Require(DataSourceTable.count == static_cast<int>(sources.size()), "every entry is there");
  for (size_t i = 0; i < sources.size(); ++i) {
    const DataSource& real = DataSourceTable.data[i];
    Require(Same(real.platform, sources[i].platform) && Same(real.name, sources[i].name) &&
                Same(real.value, sources[i].value),
            "the entries are equal");
  }
}

// The connection strings of a database that may be in the file and of one that never is.
void CompareConnection(const std::vector<Source>& sources)
{
  Text expected;
  for (const Source& source : sources) {
    if (source.platform == u"x64" && source.name == u"QuillRules") {
      expected = source.value;
      break;
    }
  }
  Require(Same(GetConnectionString(L"QuillRules"), expected), "the first entry of the name counts");
  Require(Same(GetConnectionString(L"quillcurrentproject"),
               u"DRIVER={Kestrel ODBC Driver};UID=;PWD=;DBQ=C:\\D\\Kernel\\Data\\model.mdb"),
          "the current project lies at its place");
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int* /*count*/, char*** /*arguments*/)
{
  ResetPlatform();
  Registry().SetText(HKEY_CURRENT_USER, RegistryView::Native,
                     "Software\\Norvane\\Kestrelforge\\2010\\Environment", "DataPath", "C:\\D");
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
  const std::string file(reinterpret_cast<const char*>(data), std::min(size, LongestFile));
  Files().Put(File, file);
  ClearDiary();
  const Reading expected = ReadPlainly(file);

  OneInput input;
  const Ending ending = input.Run([] { (void)LoadDatabaseConfiguration(); });
  Require(ending == expected.ending, "a negative length ends the reading, and nothing else does");
  CompareTable(expected.sources);
  size_t readings = file.empty() ? 0 : 1;
  if (ending == Ending::Returned) {
    // Without an entry the file is read once more.
    readings *= expected.sources.empty() ? 2 : 1;
    Require(input.Run([&] { CompareConnection(expected.sources); }) == Ending::Returned,
            "a table of entries can be searched");
  }
  DataSourceTable.Free();
  Require(input.ArraysLeft() == readings * ArraysOfAReading,
          "the rest of the memory is given back");
  Require(Files().OpenStreams() == 0, "the file is closed");
  Require(TakeMisuses().empty(), "no handle is misused");
  return 0;
}
