// FormatJsonNumber against the stream it stands in for, over millions of floats.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <locale>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "base/wide_text.h"
#include "graph/json_text.h"

namespace orvane {
namespace {

std::u16string StreamReference(float value) {
  if (!std::isfinite(value)) return u"null";
  std::ostringstream stream;
  stream.imbue(std::locale::classic());
  stream.precision(6);
  stream << value;
  return AsciiToWide(stream.str());
}

// Counts mismatches and keeps the first few for the failure message.
class Comparison {
 public:
  void Check(float value) {
    std::u16string ours = FormatJsonNumber(value);
    std::u16string reference = StreamReference(value);
    ++checked_;
    if (ours == reference) return;
    if (mismatches_.size() < 10) {
      mismatches_ += " " + std::to_string(std::bit_cast<uint32_t>(value)) + ":" + ToUtf8(ours) +
                     "!=" + ToUtf8(reference);
    }
    ++failed_;
  }
  void ExpectNone() const {
    EXPECT_EQ(failed_, 0u) << "of " << checked_ << " values, bit patterns:" << mismatches_;
  }
  uint64_t checked() const { return checked_; }

 private:
  uint64_t checked_ = 0, failed_ = 0;
  std::string mismatches_;
};

TEST(FormatJsonNumber, MatchesTheStreamOnRandomBitPatterns) {
  Comparison comparison;
  std::mt19937 random(20261122);
  for (int i = 0; i < 2'000'000; ++i)
    comparison.Check(std::bit_cast<float>(static_cast<uint32_t>(random())));
  comparison.ExpectNone();
}

TEST(FormatJsonNumber, MatchesTheStreamAtPowersOfTenAndTheirNeighbours) {
  Comparison comparison;
  for (int exponent = -45; exponent <= 38; ++exponent) {
    float power = std::pow(10.0f, static_cast<float>(exponent));
    float value = power;
    for (int step = 0; step < 64; ++step)
      value = std::nextafter(value, 0.0f);
    for (int step = 0; step < 128; ++step) {
      comparison.Check(value);
      comparison.Check(-value);
      value = std::nextafter(value, std::numeric_limits<float>::infinity());
    }
  }
  comparison.ExpectNone();
}

// Where the seventh significant digit is 5, the sixth digit's rounding hangs on the float's exact
// binary value; check each candidate and the floats on either side.
TEST(FormatJsonNumber, MatchesTheStreamNearRoundingBoundaries) {
  Comparison comparison;
  std::mt19937 random(7);
  std::uniform_int_distribution<int> mantissa(100000, 999999);
  std::uniform_int_distribution<int> exponent(-40, 32);
  for (int i = 0; i < 200'000; ++i) {
    double boundary = (mantissa(random) + 0.5) * std::pow(10.0, exponent(random));
    float value = static_cast<float>(boundary);
    comparison.Check(std::nextafter(value, 0.0f));
    comparison.Check(value);
    comparison.Check(std::nextafter(value, std::numeric_limits<float>::infinity()));
  }
  comparison.ExpectNone();
}

TEST(FormatJsonNumber, MatchesTheStreamOnDenormalsZerosAndSpecialValues) {
  Comparison comparison;
  for (uint32_t bits = 1; bits < 0x00800000u; bits += 97) {
    comparison.Check(std::bit_cast<float>(bits));
    comparison.Check(-std::bit_cast<float>(bits));
  }
  for (float value :
       {0.0f, -0.0f, std::numeric_limits<float>::denorm_min(), std::numeric_limits<float>::min(),
        std::numeric_limits<float>::max(), std::numeric_limits<float>::lowest(),
        std::numeric_limits<float>::infinity(), -std::numeric_limits<float>::infinity(),
        std::numeric_limits<float>::quiet_NaN()}) {
    comparison.Check(value);
  }
  comparison.ExpectNone();
  EXPECT_GT(comparison.checked(), 100'000u);
}

// A decimal comma with grouping, set as the process-wide stream locale.
struct CommaNumbers : std::numpunct<char> {
  char do_decimal_point() const override { return ','; }
  char do_thousands_sep() const override { return '.'; }
  std::string do_grouping() const override { return "\3"; }
};

TEST(FormatJsonNumber, IgnoresTheProcessLocale) {
  std::locale previous = std::locale::global(std::locale(std::locale::classic(), new CommaNumbers));
  EXPECT_EQ(FormatJsonNumber(1234.5f), u"1234.5");
  EXPECT_EQ(FormatJsonNumber(0.25f), u"0.25");
  std::locale::global(previous);
}

}  // namespace
}  // namespace orvane
