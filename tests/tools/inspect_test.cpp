#include "../../tools/inspect/Inspector.hpp"

#include <gtest/gtest.h>

#include <sstream>

namespace websdk::inspect {
namespace {

struct Run {
  int status;
  std::string out, err;
};

Run inspect(const std::vector<std::string>& args, const std::string& input) {
  std::string file, error;
  const auto options = parseArguments(args, file, error);
  if (!options) return {2, "", error};
  std::istringstream in(input);
  std::ostringstream out, err;
  const int status = run(*options, in, out, err);
  return {status, out.str(), err.str()};
}

TEST(Inspect, AnswersTheContractExampleByteForByte) {
  const auto r = inspect(
      {},
      R"({"body":{"message":"{\"type\":\"APPLY_COUPON\",\"requestId\":\"9\",\"payload\":{\"restaurantId\":\"12\"}}"}})");
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.out, R"({"line":1,"received":true,"delivered":{"family":"cart","action":"APPLY_COUPON","requestId":"9",)"
                   R"("payload":{"case":"applyCoupon","model":{"cartValue":0.0,"restaurantId":"12"}}},"responses":[]})"
                   "\n");
}

TEST(Inspect, OptionsShapeTheWebViewAndBadLinesAreReportedButDoNotStopTheRest) {
  const std::string cart = R"({"body":{"message":"{\"type\":\"CLEAR_LOCAL_CART\",\"requestId\":\"1\"}"}})";
  const std::string input =
      cart + "\n\nnot json\n" +
      R"({"url":"https://trusted.test/","body":{"message":"{\"type\":\"CLEAR_LOCAL_CART\",\"requestId\":\"2\"}"}})" +
      "\n" + R"({"name":"other","body":{}})" + "\n";
  const auto r =
      inspect({"--plugins", "generic,payments", "--whitelist", "trusted", "--url", "https://x.test/"}, input);
  EXPECT_EQ(r.status, 2);
  EXPECT_EQ(r.err, "websdk-inspect: line 3: not a JSON object\n");
  EXPECT_EQ(
      r.out,
      R"({"line":1,"received":true,"responses":[{"type":"FAILED","statusCode":1005,"statusMessage":"https://x.test/","requestId":"1"}]})"
      "\n"
      R"({"line":4,"received":true,"responses":[{"type":"FAILED","statusCode":1004,"statusMessage":"Cart Plugin not subscribed or not a valid request","requestId":"2"}]})"
      "\n"
      R"({"line":5,"received":false,"responses":[]})"
      "\n");
}

TEST(Inspect, BadArgumentsAreRefused) {
  for (const auto& args : std::vector<std::vector<std::string>>{{"--plugins", "nosuch"}, {"--url"}, {"--frobnicate"}}) {
    std::string file, error;
    EXPECT_FALSE(parseArguments(args, file, error));
    EXPECT_FALSE(error.empty());
  }
  std::string file, error;
  const auto none = parseArguments({"--url", "none", "--plugins", "none", "-"}, file, error);
  ASSERT_TRUE(none);
  EXPECT_FALSE(none->url);
  EXPECT_TRUE(none->plugins.empty());
  EXPECT_EQ(file, "-");
}

}  // namespace
}  // namespace websdk::inspect
