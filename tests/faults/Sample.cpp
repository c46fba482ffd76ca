#include "tests/faults/Sample.h"

#include <stdlib.h>

#include <string>

bool IsLongForm()
{
  const char* value = getenv("KESTREL_LONG");
  return value != nullptr && value == std::string("1");
}

std::vector<size_t> SpreadPlaces(size_t count, size_t sample)
{
  const size_t chosenCount = count < sample ? count : sample;
  std::vector<size_t> chosen;
  for (size_t i = 0; i < chosenCount; ++i)
    chosen.push_back((2 * i + 1) * count / (2 * chosenCount));
  return chosen;
}

std::vector<size_t> ChosenPlaces(size_t count, size_t sample)
{
  return SpreadPlaces(count, IsLongForm() ? count : sample);
}
