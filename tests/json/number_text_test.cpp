#include "websdk/json/Readings.hpp"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <optional>
#include <string>

namespace websdk::number_text_test {
namespace {

constexpr double kTwo54 = 18014398509481984.0;
constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// Bit equality, so that -0.0 and 0.0 differ.
bool same(double a, double b) { return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b); }

struct NumberRow {
  double value;
  const char* text;
};

// Plain form from 0.0001 up to 2^54 (both included), exponent form beyond,
// on each side of both edges and in both signs.
const NumberRow kNumberRows[] = {
    {0.0, "0.0"},
    {-0.0, "-0.0"},
    {300, "300.0"},
    {291.5, "291.5"},
    {-291.5, "-291.5"},
    {0.1, "0.1"},
    {0.00123, "0.00123"},
    {1234567.125, "1234567.125"},
    {100000, "100000.0"},
    {-100000, "-100000.0"},
    {0.0001, "0.0001"},
    {-0.0001, "-0.0001"},
    {std::nextafter(0.0001, 1.0), "0.00010000000000000002"},
    {std::nextafter(0.0001, 0.0), "9.999999999999999e-05"},
    {std::nextafter(-0.0001, 0.0), "-9.999999999999999e-05"},
    {9007199254740992.0, "9007199254740992.0"},
    {1e16, "10000000000000000.0"},
    {kTwo54, "18014398509481984.0"},
    {-kTwo54, "-18014398509481984.0"},
    {std::nextafter(kTwo54, 0.0), "18014398509481982.0"},
    {std::nextafter(kTwo54, kInf), "1.8014398509481988e+16"},
    {std::nextafter(-kTwo54, -kInf), "-1.8014398509481988e+16"},
    {1e17, "1e+17"},
    {-1e17, "-1e+17"},
    {1e20, "1e+20"},
    {1e-5, "1e-05"},
    {-1e-5, "-1e-05"},
    {1.5e300, "1.5e+300"},
    {-1.5e300, "-1.5e+300"},
    {std::numeric_limits<double>::max(), "1.7976931348623157e+308"},
    {2.2250738585072014e-308, "2.2250738585072014e-308"},  // smallest normal
    {2.225073858507201e-308, "2.225073858507201e-308"},    // largest denormal
    {5e-324, "5e-324"},
    {-5e-324, "-5e-324"},
};

TEST(NumberText, DoublesAreShortestPlainInRangeAndExponentBeyond) {
  for (const auto& row : kNumberRows) {
    const std::string text = formatDouble(row.value);
    EXPECT_EQ(text, row.text);
    EXPECT_TRUE(same(std::strtod(text.c_str(), nullptr), row.value)) << text << " does not read back";
  }
}

// Whatever the value, the text reads back to it and takes the form its
// magnitude calls for.
TEST(NumberText, AnyFiniteDoubleReadsBackInTheFormOfItsRange) {
  std::uint64_t state = 0x9E3779B97F4A7C15u;
  for (int i = 0; i < 200000; ++i) {
    state = state * 6364136223846793005u + 1442695040888963407u;
    const double d = std::bit_cast<double>(state);
    if (!std::isfinite(d)) continue;
    const std::string text = formatDouble(d);
    ASSERT_TRUE(same(std::strtod(text.c_str(), nullptr), d)) << text;
    const double magnitude = std::fabs(d);
    const bool plain = magnitude == 0 || (magnitude >= 0.0001 && magnitude <= kTwo54);
    ASSERT_EQ(text.find('e') == std::string::npos, plain) << text;
    if (plain) {
      ASSERT_NE(text.find('.'), std::string::npos) << text;
    }
  }
}

TEST(NumberText, NonFiniteDoublesHaveNoText) {
  for (const double d : {kNaN, kInf, -kInf}) EXPECT_EQ(formatDouble(d), "null");
}

// A lenient string reading writes whole numbers below 1e15 as integers and
// every other double as the JSON writer does.
TEST(NumberText, LenientStringsOfDoubles) {
  const NumberRow rows[] = {
      {5.0, "5"},
      {-0.0, "0"},
      {999999999999999.0, "999999999999999"},
      {1e15, "1000000000000000.0"},
      {100000.5, "100000.5"},
      {0.0001, "0.0001"},
      {-0.0001, "-0.0001"},
      {1e-5, "1e-05"},
      {1e17, "1e+17"},
      {1e300, "1e+300"},
  };
  for (const auto& row : rows) {
    const JSON value = row.value;
    EXPECT_EQ(lenientString(&value), row.text) << row.value;
  }
}

TEST(Representable, NaNAndInfinitiesAnywhereMakeAValueUnrepresentable) {
  struct Row {
    const char* name;
    JSON value;
  };
  const Row rows[] = {
      {"top level", kNaN},
      {"in an object", JSONObject{{"a", 1}, {"b", kInf}}},
      {"in an array", JSONArray{1, -kInf}},
      {"deep, after finite members", JSONObject{{"ok", 2.5}, {"list", JSONArray{"x", JSONObject{{"n", kNaN}}}}}},
      {"in an array in an array", JSONArray{JSONArray{}, JSONArray{0.5, kInf}}},
  };
  for (const auto& row : rows) EXPECT_EQ(serializePrettyIfRepresentable(row.value), std::nullopt) << row.name;
}

TEST(Representable, FiniteValuesRenderAsThePrettyText) {
  const JSON values[] = {
      JSONObject{{"a", JSONArray{1, 2.5, -0.0, 0.125, 1e17}}, {"b", nullptr}},
      JSONArray{},
      JSON("text"),
  };
  for (const auto& value : values) {
    const auto text = serializePrettyIfRepresentable(value);
    ASSERT_TRUE(text.has_value()) << serialize(value);
    EXPECT_EQ(*text, serializePretty(value));
    EXPECT_EQ(parseJSON(*text), value);
  }
}

}  // namespace
}  // namespace websdk::number_text_test
