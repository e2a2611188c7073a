// A model declared once: the declaration alone decides what decodes (each
// field's key, reading and options, the model's own rule) and what the
// contract tools print of it.

#include "websdk/json/Model.hpp"
#include "websdk/json/Enum.hpp"
#include "websdk/json/JSON.hpp"
#include "websdk/json/Schema.hpp"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace websdk::model_test {
namespace {

enum class Size { small, large };
constexpr auto rawValues(Size) {
  using enum Size;
  return rawValueTable<Size>({{small, "S"}, {large, "L"}});
}

struct Inner {
  std::string name;
  WEBSDK_MODEL(Inner, anyPayload, (name, lenientString))
};

struct Sample {
  std::string id;
  double total = 0;
  std::string market;
  std::optional<std::string> note;
  std::optional<std::vector<std::string>> tags;
  std::optional<Size> size;
  Inner inner;

  WEBSDK_MODEL(Sample, needsEntries, (id, strictString, required), (total, number, "cart_total"),
               (market, lenientString, "tenant.marketplaceId"), (note, lenientString), (tags, stringList, orEmpty),
               (size, enumeration), (inner, model))
};

struct Strict {
  std::optional<std::int64_t> count;
  WEBSDK_MODEL(Strict, strict, (count, integer))
};

struct Within {
  std::optional<std::string> id;
  WEBSDK_MODEL(Within, within("tenant"), (id, lenientString, "tenant.id"))
};

template <class T>
std::optional<T> decode(std::optional<std::string_view> text) {
  if (!text) return T::from(std::nullopt);
  return T::from(parseJSON(*text).as_object());
}

TEST(Model, TheDeclarationDecidesWhatDecodes) {
  const Sample bare{"a", 0, "", std::nullopt, std::vector<std::string>{}, std::nullopt, Inner{}};
  struct Row {
    const char* what;
    std::optional<std::string_view> payload;
    std::optional<Sample> expected;
  };
  const Row rows[] = {
      {"no payload", std::nullopt, std::nullopt},
      {"an empty one", "{}", std::nullopt},
      {"the required key as a number", R"({"id":7})", std::nullopt},
      {"only the required key: defaults, and orEmpty's empty list", R"({"id":"a"})", bare},
      {"every key, renamed and dotted ones too",
       R"({"id":"a","cart_total":4.5,"tenant":{"marketplaceId":12},"note":"n","tags":["x",1],"size":"L",
           "inner":{"name":"i"}})",
       Sample{"a", 4.5, "12", "n", std::vector<std::string>{"x", "1"}, Size::large, Inner{"i"}}},
      {"a value its reading refuses keeps the default, the model still decodes",
       R"({"id":"a","cart_total":"many","size":"XL","tags":"x"})", bare},
      {"the member's own name is not its key when another is declared", R"({"id":"a","total":3})", bare},
  };
  for (const auto& row : rows) EXPECT_EQ(decode<Sample>(row.payload), row.expected) << row.what;
}

TEST(Model, TheModelsOwnRuleFailsItWhole) {
  EXPECT_EQ(decode<Strict>(R"({"count":3})"), (Strict{3}));
  EXPECT_EQ(decode<Strict>(R"({"count":null})"), (Strict{}));
  EXPECT_EQ(decode<Strict>(R"({"count":"3"})"), std::nullopt) << "strict: a present value its reading refuses";
  EXPECT_EQ(decode<Within>(R"({"tenant":{"id":"t"}})"), (Within{"t"}));
  EXPECT_EQ(decode<Within>(R"({"tenant":"t"})"), std::nullopt);
  EXPECT_EQ(decode<Within>(std::nullopt), std::nullopt);
}

// What the catalogue and the page's typings are made from: required keys
// first, dotted keys nested, each with its reading and values.
TEST(Model, ItsSchemaIsTheDeclarationAsData) {
  EXPECT_EQ(JSON(modelSchema<Sample>()), parseJSON(R"([
    {"key":"id","readings":["strictString"],"required":true},
    {"key":"cart_total","readings":["number"],"required":false},
    {"key":"tenant","readings":["object"],"required":false,
     "fields":[{"key":"marketplaceId","readings":["lenientString"],"required":false}]},
    {"key":"note","readings":["lenientString"],"required":false},
    {"key":"tags","readings":["array"],"elements":{"readings":["lenientString"]},"required":false},
    {"key":"size","readings":["enumeration"],"values":["S","L"],"required":false},
    {"key":"inner","readings":["object"],"fields":[{"key":"name","readings":["lenientString"],"required":false}],
     "required":false}
  ])"));
  EXPECT_FALSE(acceptsNoPayload<Sample>());
  EXPECT_TRUE(acceptsNoPayload<Inner>());
  EXPECT_FALSE(acceptsNoPayload<Within>());
}

}  // namespace
}  // namespace websdk::model_test
