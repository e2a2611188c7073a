#include "websdk/json/Readings.hpp"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace websdk::readings_test {
namespace {

struct Row {
  const char* json;  // the value under test, as JSON text; nullptr = key absent
  std::string lenientString;
  std::optional<std::string> strictString;
  bool lenientBool;
  std::optional<bool> strictBool;
  std::int64_t lenientInt;
  double lenientDouble;
  std::optional<double> number;
};

// One row per kind of value a page may send, read every way at once: the
// readings differ exactly where these rows differ.
const Row kRows[] = {
    {nullptr, "", std::nullopt, false, std::nullopt, 0, 0, std::nullopt},
    {"null", "", std::nullopt, false, std::nullopt, 0, 0, std::nullopt},
    {"5", "5", std::nullopt, true, std::nullopt, 5, 5, 5},
    {"5.5", "5.5", std::nullopt, true, std::nullopt, 5, 5.5, 5.5},
    {"5.0", "5", std::nullopt, true, std::nullopt, 5, 5, 5},
    {"-3.7", "-3.7", std::nullopt, true, std::nullopt, -3, -3.7, -3.7},
    {"0", "0", std::nullopt, false, std::nullopt, 0, 0, 0},
    {"1e300", "1e+300", std::nullopt, true, std::nullopt, std::numeric_limits<std::int64_t>::max() - 1023, 1e300,
     1e300},
    {"18446744073709551615", "18446744073709551615", std::nullopt, true, std::nullopt,
     std::numeric_limits<std::int64_t>::max(), 18446744073709551615.0, 18446744073709551615.0},
    {"true", "true", std::nullopt, true, true, 1, 1, 1},
    {"false", "false", std::nullopt, false, false, 0, 0, 0},
    {R"("abc")", "abc", "abc", false, std::nullopt, 0, 0, std::nullopt},
    {R"("")", "", "", false, std::nullopt, 0, 0, std::nullopt},
    {R"("3")", "3", "3", false, std::nullopt, 3, 3, std::nullopt},
    {R"("3.7")", "3.7", "3.7", false, std::nullopt, 3, 3.7, std::nullopt},
    {R"("1")", "1", "1", true, std::nullopt, 1, 1, std::nullopt},
    {R"("TRUE")", "TRUE", "TRUE", true, std::nullopt, 0, 0, std::nullopt},
    {R"("Yes")", "Yes", "Yes", true, std::nullopt, 0, 0, std::nullopt},
    {R"("y")", "y", "y", true, std::nullopt, 0, 0, std::nullopt},
    {R"("T")", "T", "T", true, std::nullopt, 0, 0, std::nullopt},
    {R"("no")", "no", "no", false, std::nullopt, 0, 0, std::nullopt},
    {R"("truex")", "truex", "truex", false, std::nullopt, 0, 0, std::nullopt},
    {R"(" 42 ")", " 42 ", " 42 ", false, std::nullopt, 42, 42, std::nullopt},
    {R"("9e999")", "9e999", "9e999", false, std::nullopt, 0, 0, std::nullopt},
    {"[1]", "", std::nullopt, false, std::nullopt, 0, 0, std::nullopt},
    {R"({"a":1})", "", std::nullopt, false, std::nullopt, 0, 0, std::nullopt},
};

class ReadingsTest : public ::testing::TestWithParam<Row> {};

TEST_P(ReadingsTest, EveryReadingOfOneValue) {
  const Row& row = GetParam();
  const JSON value = row.json ? parseJSON(row.json) : JSON();
  const JSON* v = row.json ? &value : nullptr;
  SCOPED_TRACE(row.json ? row.json : "(absent)");
  EXPECT_EQ(lenientString(v), row.lenientString);
  EXPECT_EQ(strictString(v), row.strictString);
  EXPECT_EQ(lenientBool(v), row.lenientBool);
  EXPECT_EQ(strictBool(v), row.strictBool);
  EXPECT_EQ(lenientInt(v), row.lenientInt);
  EXPECT_DOUBLE_EQ(lenientDouble(v), row.lenientDouble);
  EXPECT_EQ(number(v), row.number);
}

// Rows are named by their place: the default name prints the row's bytes,
// pointers included, which change from run to run and so never match the
// name the test list was discovered under.
INSTANTIATE_TEST_SUITE_P(Values, ReadingsTest, ::testing::ValuesIn(kRows),
                         [](const auto& info) { return "row" + std::to_string(info.index); });

TEST(Readings, ContainersAndRawKeepTheirValues) {
  const JSON payload = parseJSON(R"({"o":{"k":1},"a":[1,"x"],"n":null,"s":"t","m":{"x":"1","y":2,"z":true}})");
  const Fields f(payload.if_object());
  EXPECT_EQ(f.object("o"), parseJSON(R"({"k":1})").as_object());
  EXPECT_FALSE(f.object("a"));
  EXPECT_EQ(f.array("a"), parseJSON(R"([1,"x"])").as_array());
  EXPECT_FALSE(f.array("o"));
  EXPECT_EQ(f.raw("n"), JSON(nullptr));  // a JSON null is kept, not absent
  EXPECT_FALSE(f.raw("missing"));
  EXPECT_EQ(f.nested("o").lenientInt("k"), 1);
  EXPECT_TRUE(f.nested("s").absent());
  const std::map<std::string, std::string> m{{"x", "1"}, {"y", "2"}, {"z", "true"}};
  EXPECT_EQ(f.stringMap("m"), m);
  EXPECT_FALSE(f.stringMap("s"));
  EXPECT_EQ(f.integer("s"), std::nullopt);
}

TEST(Readings, AbsentAndEmptyDictionariesDifferOnlyWhereAsked) {
  const std::optional<JSONObject> none;
  const std::optional<JSONObject> empty = JSONObject{};
  EXPECT_TRUE(Fields(none).absent());
  EXPECT_FALSE(Fields(empty).absent());
  EXPECT_TRUE(Fields(none).empty());
  EXPECT_TRUE(Fields(empty).empty());
  EXPECT_EQ(Fields(none).lenientString("k"), "");
}

TEST(Parse, TextThatIsNotJSONReadsAsNull) {
  for (const char* text : {"", "{", "nope", R"({"a":1,})", R"("\ud800)", R"(\ud800)", "[1] [2]"})
    EXPECT_TRUE(parseJSON(text).is_null()) << text;
  EXPECT_TRUE(parseJSON(R"({"a":[1,{"b":null}]})").is_object());
}

TEST(Parse, LoneSurrogateEscapesReadAsReplacementCharacters) {
  struct Row {
    const char* text;
    const char* expected;  // UTF-8
  };
  const Row rows[] = {
      {R"("\ud800")", "\xEF\xBF\xBD"},
      {R"("a\uDC00b")",
       "a\xEF\xBF\xBD"
       "b"},
      {R"("\ud800\u0041")",
       "\xEF\xBF\xBD"
       "A"},
      {R"("\udbff\ud800\udc00")", "\xEF\xBF\xBD\xF0\x90\x80\x80"},  // a lone high, then a pair
      {R"("\\ud800\ud800")", "\\ud800\xEF\xBF\xBD"},                // an escaped backslash is no escape
      {R"("\ud800)", nullptr},                                      // still not JSON
  };
  for (const auto& row : rows) {
    const JSON value = parseJSON(row.text);
    if (row.expected == nullptr)
      EXPECT_TRUE(value.is_null()) << row.text;
    else
      EXPECT_EQ(value, JSON(row.expected)) << row.text;
  }
}

TEST(Parse, NestingIsBoundedSoNoPageCanExhaustTheStack) {
  auto nested = [](std::size_t depth) { return std::string(depth, '[') + std::string(depth, ']'); };
  EXPECT_TRUE(parseJSON(nested(kMaxJSONDepth)).is_array());
  EXPECT_TRUE(parseJSON(nested(kMaxJSONDepth + 1)).is_null());
  EXPECT_TRUE(parseJSON(nested(100000)).is_null());
}

TEST(Serialize, DoublesAreShortestRoundTripWithAFraction) {
  EXPECT_EQ(formatDouble(300), "300.0");
  EXPECT_EQ(formatDouble(291.5), "291.5");
  EXPECT_EQ(formatDouble(0.1), "0.1");
  EXPECT_EQ(formatDouble(1e20), "1e+20");
  EXPECT_EQ(formatDouble(-0.0), "-0.0");
  EXPECT_EQ(serialize(parseJSON(R"({"a":5,"b":5.0,"c":"x/y","d":[true,null]})")),
            R"({"a":5,"b":5.0,"c":"x/y","d":[true,null]})");
}

TEST(Serialize, StringsAreValidJavaScriptLiterals) {
  std::string out;
  appendQuoted(out, std::string("q\"b\\n\n\x01 \xE2\x80\xA8 \xE2\x80\xA9 \xE2\x80\x93"));
  EXPECT_EQ(out, R"("q\"b\\n\n\u0001 \u2028 \u2029 )"
                 "\xE2\x80\x93\"");
  EXPECT_EQ(parseJSON(out).as_string(), std::string("q\"b\\n\n\x01 \xE2\x80\xA8 \xE2\x80\xA9 \xE2\x80\x93"));
}

TEST(Serialize, PrettyTextParsesBackToTheSameValue) {
  const JSON v = parseJSON(R"({"a":{"b":[1,2.5,"x"]},"c":{},"d":[]})");
  const std::string pretty = serializePretty(v);
  EXPECT_NE(pretty.find('\n'), std::string::npos);
  EXPECT_EQ(parseJSON(pretty), v);
}

}  // namespace
}  // namespace websdk::readings_test
