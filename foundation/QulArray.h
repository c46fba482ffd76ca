#ifndef FOUNDATION_QULARRAY_H
#define FOUNDATION_QULARRAY_H

#include <stddef.h>

// A dense growable array. All elements up to the capacity are constructed at any time; the
// capacity grows by whole steps. An array of pointers doesn't own what they point to.
template <typename Element>
class QulArray
{
public:
  QulArray() = default;
  // The capacity of a copy is the source's count; the elements are copied one by one.
  QulArray(const QulArray& source);
  QulArray& operator=(const QulArray&) = delete;
  ~QulArray();

  // Sets the capacity to newCapacity elements. A capacity that is smaller by less than a quarter is
  // not worth a reallocation and is ignored, and so is a negative one; 0 frees everything. A
  // smaller capacity cuts the count. The array is unchanged when memory runs out.
  void Reserve(int newCapacity);

  // Makes the count newCount, with more capacity if it takes that. Elements that come into use hold
  // what they held before: empty ones, or what was left there by Clear.
  void SetCount(int newCount);

  // Copies element to index. An index outside the count makes the count index + 1; what comes into
  // use in between is as with SetCount. At a negative index nothing is stored, and the count
  // shrinks all the same. The element may live in this array.
  void SetAt(int index, const Element& element);

  void Append(const Element& element) { SetAt(count, element); }

  // Makes the count 0 and keeps the elements as they are in the buffer.
  void Clear() { SetCount(0); }

  // Destroys all elements and frees the buffer.
  void Free() { Reserve(0); }

  int count = 0;
  int capacity = 0;
  int growBy = 8;
  Element* data = nullptr;

private:
  int RoundUpToStep(int wanted) const { return ((wanted - 1) / growBy + 1) * growBy; }
};

template <typename Element>
QulArray<Element>::QulArray(const QulArray& source)
{
  Reserve(source.count);
  count = source.count;
  growBy = source.growBy;
  for (int i = 0; i < count; ++i)
    data[i] = source.data[i];
}

template <typename Element>
QulArray<Element>::~QulArray()
{
  delete[] data;
}

template <typename Element>
void QulArray<Element>::Reserve(int newCapacity)
{
  const bool smallShrink = newCapacity <= capacity && newCapacity > 0.75 * capacity;
  const bool nothingToFree = newCapacity == 0 && data == nullptr;
  if (smallShrink || nothingToFree || newCapacity < 0)
    return;

  Element* newData = nullptr;
  if (newCapacity > 0) {
    // The parentheses zero plain elements and flags too.
    newData = new Element[static_cast<size_t>(newCapacity)]();
    for (int i = 0; i < count && i < newCapacity; ++i)
      newData[i] = data[i];
  }
  delete[] data;
  data = newData;
  capacity = newCapacity;
  if (count > newCapacity || newCapacity == 0)
    count = newCapacity;
}

template <typename Element>
void QulArray<Element>::SetCount(int newCount)
{
  if (capacity < newCount)
    Reserve(RoundUpToStep(newCount));
  count = newCount;
}

template <typename Element>
void QulArray<Element>::SetAt(int index, const Element& element)
{
  if (index >= 0 && index < count && data != nullptr) {
    data[index] = element;
    return;
  }
  // A copy first: the element may lie in the buffer that Reserve frees.
  // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): see above.
  const Element copy = element;
  if (capacity < index + 1)
    Reserve(RoundUpToStep(index + 1));
  count = index + 1;
  if (index >= 0 && data != nullptr)
    data[index] = copy;
}

#endif
