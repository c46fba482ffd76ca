// QulString and QulArray against std::u16string and std::vector. Four texts, a list of texts and a
// list of numbers; the slots A, B, C are digits, numbers may be negative.
//
//   wATEXT  A.Assign(wide)       +ABC    A = B + C             mABN,M  A = B.Mid(N, M)
//   WATEXT  A = QulString(wide)  aAB     A.Append(B)           sABN,M  A.SubString(B, N, M)
//   nATEXT  A.AssignNarrow       xAN     A += A, N times       SABN    A.SubStringFrom(B, N)
//   NATEXT  A = QulString(char)  rABC    A.Replace(B, C)       tAB     A.TrimLeft(B)
//   gAN T   N copies of T        fABN,T  A.Format              TAB     A.TrimRight(B)
//   0A      A.Assign(null)       FAN,T   A.FormatNarrow        uA, UA  the same, default set
//   =AB     A = B                lABN    A = B.Left(N)         kABN,M  A = FromCharRange of B
//   dAB     A = B, narrow copy   LABN    A = B.Right(N)        ?ABN    Find, EqualsNoCase
//
//   @AN  texts.SetAt(N, A)   &N,M  texts.SetAt(N, texts[M])   #N,M  numbers.SetAt(N, M)
//   vN   Reserve             cN    SetCount                   z  Clear      Z  Free
//   y    a copy              bN    the growth step            (of both lists)
#include "foundation/QulArray.h"
#include "foundation/QulString.h"
#include "tests/doubles/Diary.h"
#include "tests/fuzz/OneInput.h"
#include "tests/fuzz/PlainArray.h"
#include "tests/fuzz/Require.h"
#include "tests/fuzz/Script.h"

#include <string.h>

#include <algorithm>
#include <array>
#include <string>

namespace {

using Text = std::u16string;

constexpr size_t Limit = 524288;
// The work of one input, in characters, and the longest text that is trimmed, which takes quadratic
// time.
constexpr size_t MostWork = 3000000;
constexpr size_t LongestTrimmed = 400;

struct Slot
{
  QulString real;
  Text plain;
};

std::vector<wchar_t> Wide(const Text& text)
{
  std::vector<wchar_t> wide(text.begin(), text.end());
  wide.push_back(L'\0');
  return wide;
}

bool Same(const QulString& real, const Text& plain)
{
  const size_t length = static_cast<size_t>(real.Length());
  return length == plain.size() && memcmp(real.Text(), plain.data(), length * 2) == 0;
}

int TakeSigned(std::string& text)
{
  const bool negative = text.starts_with('-');
  text.erase(0, negative ? 1 : 0);
  const int number = static_cast<int>(TakeNumber(text));
  if (text.starts_with(','))
    text.erase(0, 1);
  return negative ? -number : number;
}

bool IsOneOf(char kind, const char* kinds)
{
  return strchr(kinds, kind) != nullptr;
}

// Runs the lines of one input. The first one that ends fatally is the last one.
class Machine
{
public:
  explicit Machine(OneInput& oneInput) : input(oneInput) {}

  bool Do(const ScriptLine& line)
  {
    rest = line.text;
    bool goesOn = true;
    if (IsOneOf(line.kind, "@&#vczZyb"))
      ChangeLists(line.kind);
    else
      goesOn = ChangeText(line.kind);
    for (const Slot& slot : slots)
      Check(slot);
    CheckList(texts, plainTexts, [](const QulString& real, const Text& plain) {
      return Same(real, plain) && (real.repr == QulStringEmptyRepr) == plain.empty();
    });
    CheckList(numbers, plainNumbers, [](int real, int plain) { return real == plain; });
    return goesOn && work < MostWork;
  }

private:
  Slot& TakeSlot()
  {
    const size_t index = rest.empty() ? 0 : static_cast<unsigned char>(rest[0]) % slots.size();
    rest.erase(0, 1);
    work += 1 + slots[index].plain.size();
    return slots[index];
  }

  // The operation is to leave expected in the slot. False if it ended otherwise, as a text of the
  // limit must.
  template <typename Operation>
  bool Expect(Slot& slot, const Text& expected, Operation operation)
  {
    const bool tooLong = expected.size() >= Limit;
    const Ending ending = input.Run(operation);
    Require((ending == Ending::Fatal) == tooLong, "a text of the limit ends the process");
    Require(ending != Ending::OutOfMemory, "no allocation fails");
    if (!tooLong)
      slot.plain = expected;
    work += expected.size();
    return !tooLong;
  }

  bool ChangeText(char kind)
  {
    if (IsOneOf(kind, "wWnNg0"))
      return SetText(kind);
    if (IsOneOf(kind, "+axrfF"))
      return Compose(kind);
    if (IsOneOf(kind, "lLmsSk"))
      return TakePiece(kind);
    if (IsOneOf(kind, "tTuU"))
      return Trim(kind);
    if (kind == '=' || kind == 'd')
      return Copy(kind == 'd');
    if (kind == '?')
      Search();
    return true;
  }

  bool SetText(char kind)
  {
    Slot& a = TakeSlot();
    if (kind == 'g')
      rest = Repeated(rest, Limit - 1);
    const std::vector<wchar_t> wide = Wide(Units(rest));
    const std::string narrow = rest.substr(0, rest.find('\0'));
    switch (kind) {
      case 'W': return Expect(a, Units(rest), [&] { a.real = QulString(wide.data()); });
      case 'n': return Expect(a, UnitsOfAnsi(narrow), [&] { a.real.AssignNarrow(narrow.c_str()); });
      case 'N': return Expect(a, UnitsOfAnsi(narrow), [&] { a.real = QulString(narrow.c_str()); });
      case '0':
        return Expect(a, Text(), [&] { a.real.Assign(static_cast<const wchar_t*>(nullptr)); });
      default: return Expect(a, Units(rest), [&] { a.real.Assign(wide.data()); });
    }
  }

  bool Copy(bool withNarrow)
  {
    Slot& a = TakeSlot();
    const Slot& b = TakeSlot();
    const bool shared = a.real.repr == b.real.repr;
    if (withNarrow) {
      a.real.narrow = new char[4];
      memcpy(a.real.narrow, "abc", 4);
    }
    const Text expected = b.plain;
    Require(input.Run([&] { a.real = b.real; }) == Ending::Returned, "a copy can always be made");
    a.plain = expected;
    Require(a.real.repr == b.real.repr, "a copy shares the text");
    Require((a.real.narrow != nullptr) == (withNarrow && shared),
            "the narrow copy goes with the text that it is of");
    delete[] a.real.narrow;
    a.real.narrow = nullptr;
    return true;
  }

  bool Compose(char kind)
  {
    Slot& a = TakeSlot();
    if (kind == 'F') {
      const int number = TakeSigned(rest);
      const std::string narrow = rest.substr(0, rest.find('\0'));
      const std::string printed = narrow + "|" + std::to_string(number);
      return Expect(a, UnitsOfAnsi(printed),
                    [&] { a.real.FormatNarrow("%s|%d", narrow.c_str(), number); });
    }
    if (kind == 'x')
      return Double(a, TakeSigned(rest));
    const Slot& b = TakeSlot();
    if (kind == 'a')
      return Expect(a, a.plain + b.plain, [&] { a.real.Append(b.real); });
    if (kind == 'f') {
      const int number = TakeSigned(rest);
      const Text text = Units(rest);
      const wchar_t last = text.empty() ? L'~' : static_cast<wchar_t>(text[0]);
      const std::string digits = std::to_string(number);
      const Text printed =
          b.plain + u"|" + Text(digits.begin(), digits.end()) + static_cast<char16_t>(last);
      return Expect(a, printed, [&] { a.real.Format(L"%s|%d%c", b.real.Text(), number, last); });
    }
    const Slot& c = TakeSlot();
    if (kind == '+')
      return Expect(a, b.plain + c.plain, [&] { a.real = b.real + c.real; });
    return Replace(a, b, c);
  }

  bool Double(Slot& a, int times)
  {
    for (int i = 0; i < times && i < 20 && work < MostWork; ++i) {
      if (!Expect(a, a.plain + a.plain, [&] { a.real.Append(a.real); }))
        return false;
    }
    return true;
  }

  bool Replace(Slot& a, const Slot& b, const Slot& c)
  {
    Text expected;
    size_t expectedCount = 0;
    size_t begin = 0;
    const size_t needleLength = b.plain.size();
    if (needleLength > 0) {
      for (size_t found = a.plain.find(b.plain); found != Text::npos;
           found = a.plain.find(b.plain, begin)) {
        expected += a.plain.substr(begin, found - begin) + c.plain;
        begin = found + needleLength;
        // Each replacement looks for the end of the text so far.
        work += expected.size();
        ++expectedCount;
        if (work > MostWork)
          return false;
      }
    }
    expected += a.plain.substr(begin);
    int count = 0;
    const bool done = Expect(a, expected, [&] { count = a.real.Replace(b.real, c.real); });
    Require(!done || count == static_cast<int>(expectedCount), "every occurrence is replaced");
    return done;
  }

  bool TakePiece(char kind)
  {
    Slot& a = TakeSlot();
    const Slot& b = TakeSlot();
    int first = TakeSigned(rest);
    int second = TakeSigned(rest);
    const int length = static_cast<int>(b.plain.size());
    if (kind == 'S')
      second = length - first;
    if (kind == 'm')
      first = std::clamp(first, 0, length);
    const auto start = static_cast<size_t>(std::clamp(first, 0, length));
    switch (kind) {
      case 'l': return TakeEnd(a, b, first, true);
      case 'L': return TakeEnd(a, b, first, false);
      case 'k': return TakeRange(a, b, std::abs(first), std::abs(second));
      case 'm':
        return Cut(a, std::min(second, length - first), b.plain.substr(start),
                   [&] { a.real = b.real.Mid(first, second); });
      default: break;
    }
    if (first < 0 || first >= length)
      return Expect(a, Text(), [&] { CutOut(kind, a, b, first, second); });
    return Cut(a, second, b.plain.substr(start), [&] { CutOut(kind, a, b, first, second); });
  }

  static void CutOut(char kind, Slot& a, const Slot& b, int first, int second)
  {
    const QulString result =
        kind == 'S' ? a.real.SubStringFrom(b.real, first) : a.real.SubString(b.real, first, second);
    Require(result.repr == a.real.repr, "the piece is the result and the text");
  }

  // A piece of count characters of text, which may be fewer or negative.
  template <typename Operation>
  bool Cut(Slot& a, int count, const Text& text, Operation operation)
  {
    if (count >= 0)
      return Expect(a, text.substr(0, static_cast<size_t>(count)), operation);
    const Ending expected = count == -1 ? Ending::Fatal : Ending::OutOfMemory;
    Require(input.Run(operation) == expected, "a negative count can't be served");
    return false;
  }

  bool TakeEnd(Slot& a, const Slot& b, int count, bool left)
  {
    const size_t length = b.plain.size();
    const size_t taken = std::min(static_cast<size_t>(std::max(count, 0)), length);
    const Text expected = left ? b.plain.substr(0, taken) : b.plain.substr(length - taken);
    const QulStringRepr* const whole = b.real.repr;
    const bool done =
        Expect(a, expected, [&] { a.real = left ? b.real.Left(count) : b.real.Right(count); });
    Require(taken < length || a.real.repr == whole, "the whole text is shared");
    return done;
  }

  bool TakeRange(Slot& a, const Slot& b, int first, int last)
  {
    if (b.plain.empty() || b.plain.size() > LongestTrimmed)
      return true;
    work += b.plain.size() * b.plain.size();
    const int length = static_cast<int>(b.plain.size());
    Text expected;
    if (first <= last && last < length)
      expected = b.plain.substr(static_cast<size_t>(first), static_cast<size_t>(last - first + 1));
    QulCharArray characters;
    for (const char16_t unit : b.plain)
      characters.Append(static_cast<wchar_t>(unit));
    return Expect(a, expected, [&] { a.real = QulString::FromCharRange(characters, first, last); });
  }

  bool Trim(char kind)
  {
    Slot& a = TakeSlot();
    const bool left = kind == 't' || kind == 'u';
    const bool isDefault = kind == 'u' || kind == 'U';
    const Slot& b = isDefault ? a : TakeSlot();
    if (a.plain.size() > LongestTrimmed || b.plain.size() > LongestTrimmed)
      return true;
    work += a.plain.size() * a.plain.size();
    const Text set = isDefault ? Text(u"\t\n ") : b.plain;
    const size_t first = a.plain.find_first_not_of(set);
    const size_t last = a.plain.find_last_not_of(set);
    Text expected;
    if (first != Text::npos)
      expected = left ? a.plain.substr(first) : a.plain.substr(0, last + 1);
    return Expect(a, expected, [&] {
      if (isDefault)
        left ? a.real.TrimLeft() : a.real.TrimRight();
      else
        left ? a.real.TrimLeft(b.real) : a.real.TrimRight(b.real);
    });
  }

  void Search()
  {
    const Slot& a = TakeSlot();
    const Slot& b = TakeSlot();
    const int start = TakeSigned(rest);
    const auto index = [&](size_t from) {
      const size_t found = a.plain.empty() ? Text::npos : a.plain.find(b.plain, from);
      return found == Text::npos ? -1 : static_cast<int>(found);
    };
    const bool inside = start >= 0 && start < static_cast<int>(a.plain.size());
    const int expected = inside ? index(static_cast<size_t>(start)) : -1;
    // The runtime compares at each place: a long text that nearly fits everywhere takes minutes.
    constexpr size_t mostComparisons = 1u << 24;
    const bool isQuick = a.plain.size() * b.plain.size() <= mostComparisons;
    const Ending ending = input.Run([&] {
      if (isQuick) {
        Require(a.real.Find(b.real) == index(0), "the first occurrence is found");
        Require(a.real.Find(b.real, start) == expected, "the next occurrence is found");
      }
      Require(a.real.EqualsNoCase(b.real) == (Lower(a.plain) == Lower(b.plain)),
              "letters compare without regard to case");
    });
    Require(ending == Ending::Returned, "texts can always be searched");
  }

  void ChangeLists(char kind)
  {
    const Slot* const slot = kind == '@' ? &TakeSlot() : nullptr;
    const int number = std::clamp(TakeSigned(rest), -3, 300);
    const int other = TakeSigned(rest);
    switch (kind) {
      case '@':
        texts.SetAt(number, slot->real);
        plainTexts.SetAt(number, slot->plain);
        return;
      case '&':
        if (other < 0 || other >= texts.capacity)
          return;
        texts.SetAt(number, texts.data[other]);
        plainTexts.SetAt(number, plainTexts.elements[static_cast<size_t>(other)]);
        return;
      case '#':
        numbers.SetAt(number, other);
        plainNumbers.SetAt(number, other);
        return;
      default: break;
    }
    ChangeList(kind, number, texts, plainTexts);
    ChangeList(kind, number, numbers, plainNumbers);
  }

  template <typename Element, typename Plain>
  static void ChangeList(char kind, int number, QulArray<Element>& list, PlainArray<Plain>& plain)
  {
    switch (kind) {
      case 'v': list.Reserve(number), plain.Reserve(number); break;
      case 'c': list.SetCount(number), plain.SetCount(number); break;
      case 'z': list.Clear(), plain.SetCount(0); break;
      case 'Z': list.Free(), plain.Reserve(0); break;
      case 'b': list.growBy = plain.growBy = std::clamp(number, 1, 40); break;
      default: {
        const QulArray<Element> copy(list);
        const PlainArray<Plain> plainCopy = plain.Copy();
        Require(copy.count == plainCopy.count && copy.capacity == plainCopy.Capacity() &&
                    copy.growBy == plainCopy.growBy,
                "a copy is as large as the count");
        break;
      }
    }
  }

  void Check(const Slot& slot)
  {
    work += slot.plain.size() / 8;
    Require(Same(slot.real, slot.plain), "the texts are equal");
    Require((slot.real.repr == QulStringEmptyRepr) == slot.plain.empty(),
            "empty texts, and no others, share one text");
    Require(slot.real.narrow == nullptr, "nothing makes a narrow copy");
    if (!slot.plain.empty())
      Require(slot.real.repr->refCount == Handles(slot.real.repr), "every handle is counted");
  }

  int Handles(const QulStringRepr* repr) const
  {
    int handles = 0;
    for (const Slot& slot : slots)
      handles += slot.real.repr == repr ? 1 : 0;
    for (int i = 0; i < texts.capacity; ++i)
      handles += texts.data[i].repr == repr ? 1 : 0;
    return handles;
  }

  template <typename Element, typename Plain, typename Equal>
  static void CheckList(const QulArray<Element>& list, const PlainArray<Plain>& plain, Equal equal)
  {
    Require(list.count == plain.count && list.capacity == plain.Capacity() &&
                list.growBy == plain.growBy && (list.data == nullptr) == plain.elements.empty(),
            "the lists are as large as they should be");
    for (int i = 0; i < list.capacity; ++i)
      Require(equal(list.data[i], plain.elements[static_cast<size_t>(i)]), "the lists are equal");
  }

  OneInput& input;
  std::array<Slot, 4> slots;
  QulArray<QulString> texts;
  PlainArray<Text> plainTexts;
  QulArray<int> numbers;
  PlainArray<int> plainNumbers;
  std::string rest;  // of the line at hand
  size_t work = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
  ClearDiary();
  OneInput input;
  {
    Machine machine(input);
    for (const ScriptLine& line : ReadScript(data, size)) {
      if (!machine.Do(line))
        break;
    }
  }
  Require(input.ArraysLeft() == 0, "all memory is given back");
  return 0;
}
