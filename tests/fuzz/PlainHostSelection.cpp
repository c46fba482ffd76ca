#include "tests/fuzz/PlainHostSelection.h"

#include "tests/fuzz/Script.h"

#include <algorithm>

namespace {

using Text = std::u16string;

const Text Base = u"Software\\Autodesk\\";

// Room of the values and of the names of keys.
constexpr size_t ValueBytes = 500;
constexpr size_t NameSize = 500;

bool Holds(const Text& text, const Text& part)
{
  return text.find(part) != Text::npos;
}

// Where the records of the hosts are: the machine's in 32 bits, or the user's.
struct Place
{
  HKEY root;
  RegistryView view;

  bool Has(const Text& path) const { return Registry().HasKey(root, view, Utf8Of(path)); }

  // A walk ends at a name that doesn't fit.
  std::vector<Text> Names(const Text& path) const
  {
    std::vector<Text> names;
    for (const std::string& name : Registry().SubkeyNames(root, view, Utf8Of(path)))
      names.push_back(Units(name));
    names.erase(std::find_if(names.begin(), names.end(),
                             [](const Text& name) { return name.size() >= NameSize; }),
                names.end());
    return names;
  }

  Text Read(const Text& path, const char* name) const
  {
    return ReadText(root, view, path, name, ValueBytes);
  }
};

Place PlaceOf(bool isVersion15)
{
  return isVersion15 ? Place{HKEY_LOCAL_MACHINE, RegistryView::Wow32}
                     : Place{HKEY_CURRENT_USER, RegistryView::Native};
}

// A path below an open key may not begin with a backslash, as that of an empty name does.
bool IsSubkeyName(const Text& name)
{
  return !name.empty() && name[0] != u'\\';
}

Text ProductPath(const Place& place)
{
  const Text current = place.Read(Base, "CurProd");
  if (!current.empty() && place.Has(Base + current + u"\\"))
    return Base + current + u"\\";
  for (const Text& name : place.Names(Base)) {
    if (Holds(name, u"AutoCAD"))
      return Base + name + u"\\";
  }
  return Base + u"\\";
}

void Locate(PlainSelection& selection, const Text& name)
{
  RegistryView view = RegistryView::Native;
  const std::string path = Utf8Of(selection.hostKeyPath);
  selection.hostIs64Bit = Registry().HasKey(HKEY_LOCAL_MACHINE, view, path);
  if (!selection.hostIs64Bit) {
    view = RegistryView::Wow32;
    if (!Registry().HasKey(HKEY_LOCAL_MACHINE, view, path))
      return;
  }
  Text folder =
      ReadText(HKEY_LOCAL_MACHINE, view, selection.hostKeyPath, "AcadLocation", ValueBytes);
  if (!folder.ends_with(u'\\'))
    folder += u'\\';
  selection.hostExecutable = folder + name + u".exe";
}

int ReleaseOfTags(const Text& version)
{
  if (Holds(version, u"R16") || Holds(version, u"R9") || Holds(version, u"R10") ||
      Holds(version, u"R11")) {
    return 1;
  }
  if (Holds(version, u"R17") || Holds(version, u"R12"))
    return 2;
  return Holds(version, u"R18") || Holds(version, u"R13") ? 3 : -1;
}

int ReleaseOfDigits(const Text& major)
{
  const char16_t* const digits[] = {u"15", u"16", u"17", u"18"};
  for (int release = 0; release < 4; ++release) {
    if (Holds(major, digits[release]))
      return release;
  }
  return -1;
}

bool DrawingsBelongToVersion15()
{
  Text name = ReadText(HKEY_CLASSES_ROOT, RegistryView::Native, u".dwg", "", 8192);
  if (name.size() > 2)
    name = name.substr(name.size() - 2);
  return name == u"15";
}

void SelectCurrent(PlainSelection& selection)
{
  const bool isVersion15 = DrawingsBelongToVersion15();
  selection.release = isVersion15 ? 0 : 3;
  const Place place = PlaceOf(isVersion15);
  const Text product = ProductPath(place);
  if (!place.Has(product))
    return;
  selection.hostKeyPath = product;

  const Text version = place.Read(product, "CurVer");
  if (!isVersion15)
    selection.release = ReleaseOfTags(version);
  if (!IsSubkeyName(version) || !place.Has(product + version))
    return;
  selection.hostKeyPath += version + u"\\";

  const Text subkey = place.Read(selection.hostKeyPath, "CurVer");
  if (!IsSubkeyName(subkey) || !place.Has(selection.hostKeyPath + subkey))
    return;
  selection.hostKeyPath += subkey + u"\\";
  const Text withBackslash = subkey + u"\\";
  const size_t dash = withBackslash.find(u'-');
  Locate(selection, withBackslash.substr(0, dash == Text::npos ? 4 : dash));
}

// Cuts the switch with its value from the line. False if it has no value.
bool TakeValue(Text& line, Text& value)
{
  const size_t begin = line.find(u"/AcadVer");
  const size_t start = std::min(line.find_first_not_of(u' ', begin + 8), line.size());
  const bool quoted = start < line.size() && line[start] == u'"';
  const size_t end = quoted ? line.find(u'"', start + 1) : line.find(u' ', start);
  if (start == line.size() || (quoted && end == Text::npos))
    return false;
  value = quoted ? line.substr(start + 1, end - start - 1) : line.substr(start, end - start);
  // One more is gone: the quote or the blank, and the blank behind the quote.
  const size_t rest = end == Text::npos ? line.size() : end + (quoted ? 2 : 1);
  line = line.substr(0, begin) + (rest < line.size() ? line.substr(rest) : Text());
  return true;
}

struct Version
{
  Text major;
  Text minor;
  Text product;
};

Version Split(const Text& value)
{
  const auto cut = [](const Text& text) {
    const size_t backslash = text.find(u'\\');
    return backslash == Text::npos ? text.find(u'/') : backslash;
  };
  Version version;
  const size_t dot = value.find(u'.');
  const size_t separator = dot == Text::npos ? cut(value) : dot;
  version.major = value.substr(0, separator);
  if (separator == Text::npos)
    return version;
  const Text rest = value.substr(separator + 1);
  const size_t second = cut(rest);
  if (second != Text::npos) {
    version.minor = rest.substr(0, second);
    version.product = rest.substr(second + 1);
  } else {
    (dot == Text::npos ? version.product : version.minor) = rest;
  }
  return version;
}

void FindExact(const Place& place, PlainSelection& selection, const Version& version)
{
  selection.hostKeyPath = Base;
  for (const Text& name : place.Names(Base)) {
    const Text candidate =
        Base + name + u"\\" + version.major + u"." + version.minor + u"\\" + version.product;
    if (place.Has(candidate)) {
      selection.hostKeyPath = candidate;
      return;
    }
  }
}

void FindByVersion(const Place& place, PlainSelection& selection, Version& version)
{
  const Text product = ProductPath(place);
  const Text wanted = version.minor.empty() ? version.major : version.major + u"." + version.minor;
  for (const Text& versionName : place.Names(product)) {
    if (!Holds(versionName, wanted))
      continue;
    const Text path = product + versionName + u"\\";
    for (const Text& name : place.Names(path)) {
      if (Holds(name, version.product)) {
        version.product = name;
        selection.hostKeyPath = path + name + u"\\";
        return;
      }
    }
  }
}

// As the runtime knows them of code page 1252: the raised 1, 2 and 3 are digits too.
bool IsDigit(char16_t unit)
{
  return (unit >= u'0' && unit <= u'9') || unit == 0xB2 || unit == 0xB3 || unit == 0xB9;
}

void SelectRequested(PlainSelection& selection, Text& line)
{
  selection.release = 3;
  Text value;
  if (!TakeValue(line, value) || value.size() < 2 ||
      std::none_of(value.begin(), value.end(), IsDigit)) {
    return;
  }
  Version version = Split(value);
  if (version.major.empty())
    return;
  selection.release = ReleaseOfDigits(version.major);
  const Place place = PlaceOf(selection.release == 0);
  if (!version.minor.empty() && !version.product.empty())
    FindExact(place, selection, version);
  else
    FindByVersion(place, selection, version);
  if (!selection.hostKeyPath.empty())
    Locate(selection, version.product.substr(0, 4));
}

}  // namespace

PlainSelection SelectPlainly(const Text& arguments)
{
  PlainSelection selection;
  Text line = arguments;
  if (Holds(line, u"/AcadVer"))
    SelectRequested(selection, line);
  else
    SelectCurrent(selection);
  line.erase(0, std::min(line.find_first_not_of(u"\t\n "), line.size()));
  selection.hostCommandLine = u"/nologo " + line;
  return selection;
}

Text ReadText(HKEY root, RegistryView view, const Text& path, const char* name, size_t room)
{
  std::vector<unsigned char> bytes = Registry().Value(root, view, Utf8Of(path), name).bytes;
  if (bytes.size() > room)
    bytes.clear();
  bytes.resize((bytes.size() + 1) / 2 * 2);
  Text text;
  for (size_t i = 0; i < bytes.size(); i += 2)
    text += static_cast<char16_t>(bytes[i] | bytes[i + 1] << 8);
  return text.substr(0, text.find(u'\0'));
}
