#ifndef BENCH_ENGINE_ROAD_H
#define BENCH_ENGINE_ROAD_H

#include <stdint.h>

// A road is the file in which engine_record writes down what an engine asked of ODBC, and from
// which replay_run asks the same again. It is a row of entries, each with its text behind it.
enum class RoadStep : uint32_t
{
  Alone,   // a statement on the target, outside of all rows
  Select,  // the query on the patch
  Bind,    // a column of that query
  Row,     // fetches a row and runs a statement for it, on a fresh handle
  Again    // one more statement for the same row, on the same handle
};

struct RoadEntry
{
  RoadStep step;
  uint32_t characters;  // of the text, 16 bits each, its terminator counted; 0 for Bind
  int32_t column;       // the rest for Bind alone
  int32_t bufferType;
  int64_t bufferBytes;
};

#endif
