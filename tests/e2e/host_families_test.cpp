// A host's own family and event on the real engine: the page's request is
// decoded into the host's model and answered, a bad one gets 1004, a
// registration that collides is refused, and an event reaches a trusted page
// as JSON and never an untrusted one.

#include "E2E.hpp"

namespace websdk::e2e::host_families {

struct Redeem {
  std::string rewardId;
  std::optional<std::string> pin;
  WEBSDK_MODEL(Redeem, needsPayload, (rewardId, strictString, required), (pin, strictString, sensitive))
};
WEBSDK_ACTIONS(LoyaltyAction, LoyaltyPayload, (redeem, "LOYALTY_REDEEM", redeem, Redeem))
WEBSDK_ACTIONS_COMPILED(LoyaltyPayload)
WEBSDK_HOST_FAMILY(LoyaltyFamily, "loyalty", "Loyalty plugin not subscribed", LoyaltyPlugin, handleLoyalty,
                   LoyaltyAction, LoyaltyPayload)

WEBSDK_ACTIONS(ClashAction, ClashPayload, (cart, "GET_LOCAL_CART", cart))
WEBSDK_ACTIONS_COMPILED(ClashPayload)
WEBSDK_HOST_FAMILY(ClashFamily, "clash", "", ClashPlugin, handleClash, ClashAction, ClashPayload)

class Loyalty final : public LoyaltyPlugin {
 public:
  std::vector<std::string> rewards;
  void handleLoyalty(const WebSDKBridgeRequest<LoyaltyAction>& request, const LoyaltyPayload& payload) override {
    rewards.push_back(payload.get<LoyaltyPayload::Case::redeem>()->rewardId);
    request.reply().sendWebSDKResponse(JSONObject{{"redeemed", rewards.back()}}, WebSDKResponseType::success);
  }
};

class HostFamiliesTest : public E2ETest {
 protected:
  void SetUp() override {
    E2ETest::SetUp();
    server.page("/page", testPage());
    ASSERT_TRUE(view->setPlugin<LoyaltyFamily>(loyalty));
  }
  std::vector<JSON> responses() const { return page->of("nativeResponse"); }
  std::shared_ptr<Loyalty> loyalty = std::make_shared<Loyalty>();
};

TEST_F(HostFamiliesTest, AHostActionIsDecodedAndAnsweredAndABadOneGets1004) {
  ASSERT_TRUE(loadAndWait(server.url("/page")));
  postFromPage(R"({"type":"LOYALTY_REDEEM","requestId":"good","payload":{"rewardId":"coffee","pin":"1234"}})");
  postFromPage(R"({"type":"LOYALTY_REDEEM","requestId":"bad","payload":{"pin":"1234"}})");
  ASSERT_TRUE(waitFor([&] { return responses().size() == 2; }));
  EXPECT_EQ(loyalty->rewards, std::vector<std::string>{"coffee"});
  const auto answers = responses();
  EXPECT_EQ(answers[0].at("requestId"), "good");
  EXPECT_EQ(answers[0].at("type"), "SUCCESS");
  EXPECT_EQ(parseJSON(answers[0].at("payload").as_string()), (JSONObject{{"redeemed", "coffee"}}));
  EXPECT_EQ(answers[1].at("requestId"), "bad");
  EXPECT_EQ(answers[1].at("statusCode"), 1004);
  EXPECT_EQ(answers[1].at("statusMessage"), "not a valid request");
}

TEST_F(HostFamiliesTest, ARegistrationThatCollidesIsRefusedAndTheLibrarysActionStillRoutes) {
  const auto cart = std::make_shared<IdRecordingCart>();
  view->setCartPlugin(cart);
  const auto refused = view->setPlugin<ClashFamily>(nullptr);
  EXPECT_FALSE(refused);
  EXPECT_NE(refused.error.find("GET_LOCAL_CART"), std::string::npos) << refused.error;
  ASSERT_TRUE(loadAndWait(server.url("/page")));
  postFromPage(cartRequest("c1"));
  ASSERT_TRUE(waitFor([&] { return cart->ids.size() == 1; }));
}

TEST_F(HostFamiliesTest, AnEventReachesATrustedPageAsJSONAndNeverAnUntrustedOne) {
  const std::string note = "\"); window.hacked = 1; (\"</script>";
  server.page("/untrusted", testPage());
  ASSERT_TRUE(loadAndWait(server.url("/untrusted", "localhost")));
  ASSERT_TRUE(view->emitEvent("loyaltyPointsChanged", JSONObject{{"points", 1}}));
  ASSERT_TRUE(waitFor([&] { return !listener->droppedPushes.empty(); }));
  EXPECT_EQ(listener->droppedPushes[0].second, WebSDKDropReason::pageNotWhitelisted);

  ASSERT_TRUE(loadAndWait(server.url("/page")));
  ASSERT_TRUE(view->emitEvent("loyaltyPointsChanged", JSONObject{{"points", 120}, {"note", note}}));
  ASSERT_TRUE(waitFor([&] { return !page->of("call").empty(); }));
  const auto calls = page->of("call");
  ASSERT_EQ(calls.size(), 1u);
  EXPECT_EQ(calls[0].at("name"), "nativeEvent");
  EXPECT_EQ(calls[0].at("args"),
            (JSONArray{JSON("loyaltyPointsChanged"), JSONObject{{"points", 120}, {"note", note}}}));
  EXPECT_EQ(evaluate("window.hacked === undefined"), JSON(true));
}

}  // namespace websdk::e2e::host_families
