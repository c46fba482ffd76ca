// The numbers in statements are written without the runtime, to be quick, and have to be what its
// "%f" gives.
#include "sql/StatementText.h"

#include <gtest/gtest.h>

#include <stdint.h>

#include <bit>
#include <cmath>
#include <random>

namespace {

constexpr int Numbers = 20000;

QulString Decimals(double number)
{
  StatementText statement;
  statement.AppendDecimals(number);
  return statement.Text();
}

QulString RuntimeDecimals(double number)
{
  QulString text;
  text.Format(L"%f", number);
  return text;
}

void ExpectTheRuntimesText(double number)
{
  ASSERT_TRUE(Decimals(number).EqualsNoCase(RuntimeDecimals(number)))
      << std::bit_cast<uint64_t>(number);
}

}  // namespace

TEST(DecimalsContract, OfAnyBitsAreTheRuntimes)
{
  std::mt19937_64 random(1);
  for (int i = 0; i < Numbers; ++i)
    ExpectTheRuntimesText(std::bit_cast<double>(random()));
}

TEST(DecimalsContract, OfEverySizeAreTheRuntimes)
{
  std::mt19937_64 random(2);
  for (int i = 0; i < Numbers; ++i) {
    const double significand = 1 + static_cast<double>(random() % 1000000) / 1000000;
    ExpectTheRuntimesText(std::ldexp(significand, i % 80 - 30));
  }
}

TEST(DecimalsContract, InTheMiddleOfTwoAreRoundedAsTheRuntimeDoes)
{
  std::mt19937_64 random(3);
  for (int i = 0; i < Numbers; ++i) {
    // Seven binary places end in the seventh decimal with a 5.
    ExpectTheRuntimesText(static_cast<double>(random() % 1000000) / 128);
    ExpectTheRuntimesText(static_cast<double>(random() % 20000000000000) / 10000000);
  }
}
