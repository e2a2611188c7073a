// Why a request is declined, in the words websdk-inspect and websdk-serve
// print: each row is a request the bridge answers "not a valid request".
#include "tools/inspect/Decline.hpp"
#include "tools/inspect/Inspector.hpp"

#include <gtest/gtest.h>

#include <sstream>

namespace websdk::inspect {
namespace {

TEST(DeclineTest, NamesTheKeyItsReadingAndWhatItWanted) {
  const struct {
    const char* request;
    const char* why;
  } rows[] = {
      {R"({"type":"APPLY_COUPON","requestId":"1","payload":{"tenant":{}}})",
       R"(APPLY_COUPON (cart): "restaurantId" is required (read as strictString, a JSON string) and is missing)"},
      {R"({"type":"APPLY_COUPON","requestId":"1","payload":{"restaurantId":12}})",
       R"(APPLY_COUPON (cart): "restaurantId" is read as strictString: expected a JSON string, got 12)"},
      {R"({"type":"APPLY_COUPON","requestId":"1","payload":[]})",
       R"(APPLY_COUPON (cart): "payload" is required (read as object, a JSON object) and is [])"},
      {R"({"type":"GET_LOCAL_CART","requestId":"1","payload":{"tenant":"meals"}})",
       R"(GET_LOCAL_CART (cart): "tenant" is read as object: expected a JSON object, got "meals")"},
      {R"({"type":"GET_LOCAL_CART","requestId":7})",
       R"("requestId" is read as strictString: expected a JSON string, got 7)"},
      {R"({"type":"get_local_cart","requestId":"1"})", R"("type" "get_local_cart" is no family's action)"},
      {R"({"requestId":"1"})", R"("type" (missing) is no family's action)"},
      {R"(["GET_LOCAL_CART"])", "the request is not a JSON object"},
  };
  for (const auto& row : rows) EXPECT_EQ(whyDeclined(row.request), row.why) << row.request;
}

TEST(DeclineTest, AnAcceptedRequestHasNoReason) {
  EXPECT_EQ(whyDeclined(R"({"type":"APPLY_COUPON","requestId":"1","payload":{"restaurantId":"12"}})"), std::nullopt);
  EXPECT_EQ(whyDeclined(R"({"type":"GET_USER_INFO","requestId":"1"})"), std::nullopt);
}

// The checker prints the same reason beside the bridge's answer, and only
// where the answer is "not a valid request" (not a family's "not subscribed").
TEST(DeclineTest, InspectPrintsTheReasonBesideTheAnswer) {
  std::istringstream in(
      R"({"body":{"message":"{\"type\":\"APPLY_COUPON\",\"requestId\":\"9\",\"payload\":{}}"}})"
      "\n"
      R"({"body":{"message":"{\"type\":\"GET_LOCAL_CART\",\"requestId\":\"2\",\"payload\":{\"tenant\":{}}}"}})"
      "\n");
  std::ostringstream out, err;
  Options options;
  ASSERT_EQ(run(options, in, out, err), 0);
  std::istringstream lines(out.str());
  std::string first, second;
  std::getline(lines, first);
  std::getline(lines, second);
  EXPECT_EQ(parseJSON(first).at("declined"),
            R"(APPLY_COUPON (cart): "restaurantId" is required (read as strictString, a JSON string) and is missing)");
  EXPECT_FALSE(parseJSON(second).as_object().contains("declined")) << second;
}

}  // namespace
}  // namespace websdk::inspect
