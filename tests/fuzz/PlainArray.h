#ifndef FUZZ_PLAINARRAY_H
#define FUZZ_PLAINARRAY_H

#include <vector>

// What QulArray is to do, written a second time on std::vector: its elements are all up to the
// capacity.
template <typename Element>
struct PlainArray
{
  int Capacity() const { return static_cast<int>(elements.size()); }

  void Reserve(int wanted)
  {
    if (wanted < 0 || (wanted == 0 && elements.empty()))
      return;
    if (wanted <= Capacity() && static_cast<double>(wanted) > 0.75 * Capacity())
      return;
    std::vector<Element> moved(static_cast<std::size_t>(wanted));
    for (int i = 0; i < wanted && i < count; ++i)
      moved[static_cast<std::size_t>(i)] = elements[static_cast<std::size_t>(i)];
    elements = moved;
    if (wanted == 0 || count > wanted)
      count = wanted;
  }

  void SetCount(int wanted)
  {
    if (wanted > Capacity())
      Reserve(((wanted - 1) / growBy + 1) * growBy);
    count = wanted;
  }

  void SetAt(int index, const Element& element)
  {
    const Element copy = element;
    if (index >= count || index < 0) {
      if (index + 1 > Capacity())
        Reserve((index / growBy + 1) * growBy);
      count = index + 1;
    }
    if (index >= 0 && index < Capacity())
      elements[static_cast<std::size_t>(index)] = copy;
  }

  PlainArray Copy() const
  {
    PlainArray copy;
    copy.Reserve(count);
    copy.count = count;
    copy.growBy = growBy;
    for (int i = 0; i < count; ++i)
      copy.elements[static_cast<std::size_t>(i)] = elements[static_cast<std::size_t>(i)];
    return copy;
  }

  int count = 0;
  int growBy = 8;
  std::vector<Element> elements;
};

#endif
