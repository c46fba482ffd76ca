#ifndef FAULTS_SAMPLE_H
#define FAULTS_SAMPLE_H

#include <stddef.h>

#include <vector>

// True if KESTREL_LONG asks for everything.
bool IsLongForm();

// `sample` of the places from 0 to count - 1, or all if there are less, spread evenly and always
// the same.
std::vector<size_t> SpreadPlaces(size_t count, size_t sample);

// The same, or all places in the long form.
std::vector<size_t> ChosenPlaces(size_t count, size_t sample);

#endif
