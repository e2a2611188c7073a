#include "support/Harness.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <limits>

namespace websdk {
namespace {

using test::Harness;

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

struct Quote {
  std::string planId;
  double amount = 0;
  WEBSDK_RECORD(Quote, planId, amount)
};

struct PayloadRow {
  const char* name;
  std::function<void(WebSDKWebView&)> send;
  JSON expected;
};

// JSON has no text for NaN or an infinity, and null in their place would tell
// the page something the app never said: such a payload is left out.
TEST(Sending, APayloadHoldingNaNOrAnInfinityIsLeftOutOfItsAnswer) {
  const PayloadRow rows[] = {
      {"NaN in an object",
       [](WebSDKWebView& v) {
         v.sendWebSDKResponse(JSONObject{{"a", 1}, {"b", JSONObject{{"c", kNaN}}}}, WebSDKResponseType::success, "r1");
       },
       parseJSON(R"({"type":"SUCCESS","statusCode":0,"requestId":"r1"})")},
      {"infinity in an array",
       [](WebSDKWebView& v) {
         v.sendWebSDKResponse(JSONObject{{"a", JSONArray{1.5, kInf}}}, WebSDKResponseType::failure, "r2", 1003);
       },
       parseJSON(R"({"type":"FAILED","statusCode":1003,"requestId":"r2"})")},
      {"negative infinity in a model",
       [](WebSDKWebView& v) {
         v.sendWebSDKResponse(Quote{"p", -kInf}, WebSDKResponseType::success, "r3");
       },
       parseJSON(R"({"type":"SUCCESS","statusCode":0,"requestId":"r3"})")},
      {"finite model",
       [](WebSDKWebView& v) {
         v.sendWebSDKResponse(Quote{"p", 100000}, WebSDKResponseType::success, "r4");
       },
       parseJSON(
           R"({"type":"SUCCESS","statusCode":0,"requestId":"r4","payload":"{\n  \"planId\" : \"p\",\n  \"amount\" : 100000.0\n}"})")},
  };
  for (const auto& row : rows) {
    Harness h;
    row.send(*h.view);
    h.engine->queue().drain();
    ASSERT_EQ(h.pageResponses().size(), 1u) << row.name;
    EXPECT_EQ(h.pageResponses()[0], row.expected) << row.name;
    ASSERT_EQ(h.listener->responses.size(), 1u) << row.name;
    EXPECT_EQ(h.listener->responses[0].payload.has_value(), row.expected.as_object().contains("payload")) << row.name;
  }
}

}  // namespace
}  // namespace websdk
