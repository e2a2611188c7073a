// Records, enumerations and typed payloads: the shared pieces every family is
// declared with.

#include "websdk/json/Payload.hpp"
#include "websdk/json/Readings.hpp"

#include <gtest/gtest.h>

namespace websdk::machinery_test {
namespace {

enum class Colour { red, darkBlue };
constexpr auto rawValues(Colour) {
  return rawValueTable<Colour>({{Colour::red, "RED"}, {Colour::darkBlue, "dark-blue"}});
}

struct Inner {
  std::int64_t count = 0;
  WEBSDK_RECORD(Inner, count)
};

struct Sample {
  std::string name;
  std::optional<std::string> nickname;
  Colour colour = Colour::red;
  std::optional<Inner> inner;
  std::vector<Inner> list;
  std::map<std::string, std::string> tags;
  std::optional<JSON> raw;
  double ratio = 0;
  std::shared_ptr<const Inner> shared;
  WEBSDK_RECORD(Sample, name, nickname, colour, inner, list, tags, raw, ratio, shared)
};

struct Keyed {
  std::string planId;
  std::optional<bool> autoRenew;
  WEBSDK_KEYED_RECORD(Keyed, (planId, "plan_id"), (autoRenew, "auto_renew"))
};

// The count check behind caseCount tells a named case from any other value;
// should the compiler's spelling change, tables missing a case compile again.
enum class Three { one, two, three };
static_assert(detail::isNamedCase<Three::three>());
static_assert(detail::isNamedCase<Colour::darkBlue>());
static_assert(!detail::isNamedCase<static_cast<Three>(3)>());
static_assert(!detail::isNamedCase<static_cast<Colour>(2)>());

TEST(Enumerations, RawValuesRoundTripExactly) {
  EXPECT_EQ(rawValue(Colour::darkBlue), "dark-blue");
  EXPECT_EQ(fromRawValue<Colour>("RED"), Colour::red);
  EXPECT_EQ(fromRawValue<Colour>("red"), std::nullopt);  // case-sensitive
  EXPECT_EQ(fromRawValue<Colour>(""), std::nullopt);
  EXPECT_EQ(allCases<Colour>().size(), 2u);
}

TEST(Records, DescriptionLeavesAbsentOptionalsOut) {
  const Sample s{"a", std::nullopt, Colour::darkBlue, Inner{3}, {Inner{1}}, {{"k", "v"}}, JSON(nullptr), 2, nullptr};
  EXPECT_EQ(serialize(describe(s)),
            R"({"name":"a","colour":"dark-blue","inner":{"count":3},"list":[{"count":1}],"tags":{"k":"v"},)"
            R"("raw":null,"ratio":2.0,"shared":null})");
}

TEST(Records, KeyedRecordsEncodeWithKeysAndDescribeWithNames) {
  const Keyed k{"p1", true};
  EXPECT_EQ(serialize(toJSON(k)), R"({"plan_id":"p1","auto_renew":true})");
  EXPECT_EQ(serialize(describe(k)), R"({"planId":"p1","autoRenew":true})");
  EXPECT_EQ(serialize(toJSON(Keyed{"p2", std::nullopt})), R"({"plan_id":"p2"})");
}

TEST(Records, EqualityIsMemberwise) {
  Sample a, b;
  a.name = b.name = "a";
  EXPECT_EQ(a, b);
  b.raw = JSON(1);
  EXPECT_NE(a, b);
}

WEBSDK_NAMED_CASES(SampleCase, first, second, empty)
class SamplePayload : public TaggedPayload<SamplePayload, SampleCase, Carries<SampleCase::first, Inner>,
                                           Carries<SampleCase::second, Inner>> {};

TEST(TypedPayloads, TheCaseTagNotTheCarriedTypeSaysWhichCase) {
  const auto a = SamplePayload::make<SampleCase::first>(Inner{1});
  const auto b = SamplePayload::make<SampleCase::second>(Inner{1});
  EXPECT_NE(a, b);
  EXPECT_EQ(a, SamplePayload::make<SampleCase::first>(Inner{1}));
  EXPECT_NE(a, SamplePayload::make<SampleCase::first>(Inner{2}));
  ASSERT_NE(a.get<SampleCase::first>(), nullptr);
  EXPECT_EQ(a.get<SampleCase::second>(), nullptr);
  EXPECT_EQ(serialize(b.describe()), R"({"case":"second","model":{"count":1}})");
  EXPECT_EQ(serialize(SamplePayload::make<SampleCase::empty>().describe()), R"({"case":"empty"})");
  EXPECT_FALSE(SamplePayload::whenDecoded<SampleCase::first>(std::nullopt));
}

}  // namespace
}  // namespace websdk::machinery_test
