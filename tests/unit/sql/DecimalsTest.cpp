// Numbers with six decimals are what the C runtime's "%f" gives, to the digit.
#include "sql/StatementText.h"

#include "tests/doubles/Diary.h"
#include "tests/doubles/Text.h"

#include <gtest/gtest.h>

#include <stdio.h>
#include <stdlib.h>

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

// What a runtime writes that makes 17 digits of a number below 1e11 and rounds these to six
// decimals.
std::string DecimalsOf17Digits(double number)
{
  char text[40];
  (void)snprintf(text, sizeof(text), "%.16e", number);
  const std::string digits = text[0] + std::string(text + 2, 16);
  uint64_t millionths = strtoull(digits.c_str(), nullptr, 10);
  int surplus = 10 - atoi(text + 19);
  for (; surplus > 1; --surplus)
    millionths /= 10;
  if (surplus == 1)
    millionths = (millionths + 5) / 10;
  (void)snprintf(text, sizeof(text), "%llu.%06llu",
                 static_cast<unsigned long long>(millionths / 1000000),
                 static_cast<unsigned long long>(millionths % 1000000));
  return text;
}

// Decimals, or nothing where the runtime was asked for them.
std::string OwnDecimals(double number)
{
  bool isAsked = false;
  WatchCalls([&isAsked](const char* /*function*/) { isAsked = true; });
  const std::string decimals = Decimals(number);
  ResetPlatform();
  return isAsked ? "" : decimals;
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

TEST(Decimals, AreLeftToARuntimeThatMayRoundTwice)
{
  // Their seventh decimal is a five, as near as a number of this size can be to it.
  std::mt19937_64 random(5);
  int asked = 0;
  for (int i = 0; i < 20000; ++i) {
    const uint64_t digits = random() % 100000000000000000 >> (random() % 50);
    const double number = (static_cast<double>(digits) * 10 + 5) / 1e7;
    const std::string decimals = OwnDecimals(number);
    asked += decimals.empty() ? 1 : 0;
    if (!decimals.empty()) {
      ASSERT_EQ(decimals, DecimalsOf17Digits(number)) << std::bit_cast<uint64_t>(number);
    }
  }
  EXPECT_GT(asked, 1000);
}

TEST(Decimals, OfMillionthsAreMadeWithoutTheRuntime)
{
  std::mt19937_64 random(6);
  for (int i = 0; i < 20000; ++i) {
    const double number = static_cast<double>(random() % 1000000000000000) / 1e6;
    ASSERT_EQ(OwnDecimals(number), DecimalsOf17Digits(number)) << std::bit_cast<uint64_t>(number);
  }
}

TEST(Decimals, BeyondSeventeenDigitsAreLeftToTheRuntime)
{
  EXPECT_EQ(OwnDecimals(std::ldexp(1.0, 44)), "");
  EXPECT_EQ(OwnDecimals(123456789012.345678), "");
}
