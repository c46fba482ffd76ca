#include "database/ValueKind.h"

#include <gtest/gtest.h>

#include <map>

namespace {

// ODBC's numbers of the types that have a form.
const std::map<int32_t, ValueKind> Kinds = {
    {-10, ValueKind::Text},     {-9, ValueKind::Text},   {-1, ValueKind::Text},
    {12, ValueKind::Text},      {99, ValueKind::Text},   {-7, ValueKind::Bit},
    {-6, ValueKind::Integer},   {4, ValueKind::Integer}, {5, ValueKind::Integer},
    {2, ValueKind::Number},     {3, ValueKind::Number},  {6, ValueKind::Number},
    {7, ValueKind::Number},     {8, ValueKind::Number},  {11, ValueKind::Timestamp},
    {93, ValueKind::Timestamp},
};

}  // namespace

TEST(ValueKind, OfEachTypeIsItsForm)
{
  for (const auto& [type, kind] : Kinds)
    EXPECT_EQ(KindOfValue(type), kind) << type;
}

TEST(ValueKind, OfAllOtherTypesIsNone)
{
  for (int32_t type = -200; type <= 200; ++type) {
    if (Kinds.contains(type))
      continue;
    EXPECT_EQ(KindOfValue(type), ValueKind::None) << type;
  }
}

TEST(ValueKind, OfNumbersBeyondSixteenBitsIsNone)
{
  // In their lower half these are 12, 4 and -9.
  for (const int32_t type : {65536 + 12, 65536 + 4, 65536 - 9, INT32_MIN, INT32_MAX})
    EXPECT_EQ(KindOfValue(type), ValueKind::None) << type;
}
