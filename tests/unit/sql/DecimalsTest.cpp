// Numbers with six decimals are what the C runtime's "%f" gives, to the digit.
#include "sql/StatementText.h"

#include "tests/doubles/Text.h"

#include <gtest/gtest.h>

#include <stdio.h>

#include <bit>
#include <cmath>
#include <limits>
#include <random>

namespace {

std::string Decimals(double number)
{
  StatementText statement;
  statement.AppendDecimals(number);
  return Utf8(statement.Text());
}

std::string RuntimeDecimals(double number)
{
  char text[400];
  (void)snprintf(text, sizeof(text), "%f", number);
  return text;
}

// Both signs of the number and of its neighbours.
void ExpectTheRuntimesText(double number)
{
  const double infinity = std::numeric_limits<double>::infinity();
  for (const double near :
       {number, std::nextafter(number, infinity), std::nextafter(number, -infinity)}) {
    ASSERT_EQ(Decimals(near), RuntimeDecimals(near)) << std::bit_cast<uint64_t>(near);
    ASSERT_EQ(Decimals(-near), RuntimeDecimals(-near)) << std::bit_cast<uint64_t>(-near);
  }
}

}  // namespace

TEST(Decimals, AreSix)
{
  EXPECT_EQ(Decimals(2.5), "2.500000");
  EXPECT_EQ(Decimals(-3), "-3.000000");
  EXPECT_EQ(Decimals(0.000001), "0.000001");
  EXPECT_EQ(Decimals(10.000001), "10.000001");
  EXPECT_EQ(Decimals(0.1), "0.100000");
  EXPECT_EQ(Decimals(999999.999999), "999999.999999");
}

TEST(Decimals, OfZeroHaveItsSign)
{
  EXPECT_EQ(Decimals(0.0), "0.000000");
  EXPECT_EQ(Decimals(-0.0), "-0.000000");
  EXPECT_EQ(Decimals(-1e-300), "-0.000000");
}

TEST(Decimals, AreRoundedAndCarried)
{
  EXPECT_EQ(Decimals(0.00000049), "0.000000");
  EXPECT_EQ(Decimals(0.00000051), "0.000001");
  EXPECT_EQ(Decimals(0.9999996), "1.000000");
  EXPECT_EQ(Decimals(9.9999999), "10.000000");
  EXPECT_EQ(Decimals(-99999.9999999), "-100000.000000");
}

TEST(Decimals, OfNumbersThatAreNoneAreTheRuntimesWords)
{
  const double infinity = std::numeric_limits<double>::infinity();
  const double notANumber = std::numeric_limits<double>::quiet_NaN();
  for (const double number : {infinity, -infinity, notANumber, -notANumber})
    EXPECT_EQ(Decimals(number), RuntimeDecimals(number));
}

TEST(Decimals, OfTheLeastAndTheLargestNumbersAreTheRuntimes)
{
  using Limits = std::numeric_limits<double>;
  for (const double number : {Limits::denorm_min(), Limits::min(), Limits::epsilon()})
    ExpectTheRuntimesText(number);
  ASSERT_EQ(Decimals(Limits::max()), RuntimeDecimals(Limits::max()));
  ASSERT_EQ(Decimals(Limits::lowest()), RuntimeDecimals(Limits::lowest()));
}

TEST(Decimals, AroundEachPowerOfTwoAreTheRuntimes)
{
  for (int exponent = -1074; exponent < 1024; ++exponent)
    ExpectTheRuntimesText(std::ldexp(1.0, exponent));
}

TEST(Decimals, AroundEachPowerOfTenAreTheRuntimes)
{
  for (int exponent = -30; exponent <= 300; ++exponent) {
    const double power = std::pow(10.0, exponent);
    for (const double number : {power, power / 2, power * 9.999999999})
      ExpectTheRuntimesText(number);
  }
}

TEST(Decimals, InTheMiddleOfTwoAreTheRuntimes)
{
  // The seventh decimal of these is a five, and nothing follows it.
  for (int numerator = 1; numerator < 4096; numerator += 2)
    ExpectTheRuntimesText(numerator / 128.0);
  for (const double whole : {1e3, 1e6, 1e9, 4398046511103.0, 17592186044415.0}) {
    for (int numerator = 1; numerator < 128; numerator += 2)
      ExpectTheRuntimesText(whole + numerator / 128.0);
  }
}

TEST(Decimals, OfAmountsAreTheRuntimes)
{
  std::mt19937_64 random(1);
  for (int i = 0; i < 20000; ++i) {
    const auto digits = static_cast<double>(static_cast<int64_t>(random()) >> (random() % 60));
    ExpectTheRuntimesText(digits / std::pow(10.0, static_cast<double>(random() % 12)));
  }
}

TEST(Decimals, OfMillionthsAreTheirDigits)
{
  std::mt19937_64 random(2);
  for (int i = 0; i < 20000; ++i) {
    const uint64_t millionths = random() % 1000000000000000;
    char digits[32];
    (void)snprintf(digits, sizeof(digits), "%llu.%06llu",
                   static_cast<unsigned long long>(millionths / 1000000),
                   static_cast<unsigned long long>(millionths % 1000000));
    ASSERT_EQ(Decimals(static_cast<double>(millionths) / 1e6), digits);
  }
}

TEST(Decimals, OfAnyBitsAreTheRuntimes)
{
  std::mt19937_64 random(3);
  for (int i = 0; i < 20000; ++i) {
    const double number = std::bit_cast<double>(random());
    ASSERT_EQ(Decimals(number), RuntimeDecimals(number)) << std::bit_cast<uint64_t>(number);
  }
}

TEST(Decimals, OfAnyBitsOfAnOrdinarySizeAreTheRuntimes)
{
  std::mt19937_64 random(4);
  for (int i = 0; i < 100000; ++i) {
    const double fraction = static_cast<double>(random() >> 11);
    const double number = std::ldexp(fraction, static_cast<int>(random() % 90) - 80 - 53 + 45);
    ASSERT_EQ(Decimals(number), RuntimeDecimals(number)) << std::bit_cast<uint64_t>(number);
  }
}
