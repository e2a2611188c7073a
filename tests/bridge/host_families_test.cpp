// A host's own family and events: routed, decoded, answered, refused and
// recorded as the library's own families are, and never in their way.

#include "support/Harness.hpp"
#include "websdk/bridge/Families.hpp"
#include "websdk/testing/Catalogue.hpp"
#include "websdk/testing/EveryFamilyHost.hpp"
#include "websdk/testing/Replay.hpp"
#include "websdk/webview/WebSDKEvents.hpp"
#include "websdk/webview/WebSDKTrafficRecorder.hpp"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace websdk::host_families_test {

struct Redeem {
  std::string rewardId;
  std::optional<std::string> pin;
  std::optional<std::int64_t> points;
  WEBSDK_MODEL(Redeem, needsPayload, (rewardId, strictString, required), (pin, strictString, sensitive),
               (points, integer))
};

WEBSDK_ACTIONS(LoyaltyAction, LoyaltyPayload, (balance, "LOYALTY_BALANCE", balance),
               (redeem, "LOYALTY_REDEEM", redeem, Redeem))
WEBSDK_ACTIONS_COMPILED(LoyaltyPayload)
WEBSDK_HOST_FAMILY(LoyaltyFamily, "loyalty", "Loyalty plugin not subscribed", LoyaltyPlugin, handleLoyalty,
                   LoyaltyAction, LoyaltyPayload)

// Families that each collide with something already there.
WEBSDK_ACTIONS(TakesCartAction, TakesCartPayload, (fine, "TAKES_FINE", fine), (cart, "GET_LOCAL_CART", cart))
WEBSDK_ACTIONS_COMPILED(TakesCartPayload)
WEBSDK_HOST_FAMILY(TakesCartFamily, "takesCart", "", TakesCartPlugin, handle, TakesCartAction, TakesCartPayload)

WEBSDK_ACTIONS(TakesLoyaltyAction, TakesLoyaltyPayload, (redeem, "LOYALTY_REDEEM", redeem))
WEBSDK_ACTIONS_COMPILED(TakesLoyaltyPayload)
WEBSDK_HOST_FAMILY(TakesLoyaltyFamily, "takesLoyalty", "", TakesLoyaltyPlugin, handle, TakesLoyaltyAction,
                   TakesLoyaltyPayload)
WEBSDK_HOST_FAMILY(NamedCartFamily, "cart", "", NamedCartPlugin, handle, TakesLoyaltyAction, TakesLoyaltyPayload)
WEBSDK_HOST_FAMILY(NamedLoyaltyFamily, "loyalty", "", NamedLoyaltyPlugin, handle, TakesLoyaltyAction,
                   TakesLoyaltyPayload)
WEBSDK_HOST_FAMILY(BadNameFamily, "has space", "", BadNamePlugin, handle, TakesLoyaltyAction, TakesLoyaltyPayload)

WEBSDK_ACTIONS(BadActionAction, BadActionPayload, (bad, "BAD ACTION", bad))
WEBSDK_ACTIONS_COMPILED(BadActionPayload)
WEBSDK_HOST_FAMILY(BadActionFamily, "badAction", "", BadActionPlugin, handle, BadActionAction, BadActionPayload)

struct Loyalty final : LoyaltyPlugin {
  std::vector<LoyaltyPayload> received;
  void handleLoyalty(const WebSDKBridgeRequest<LoyaltyAction>& request, const LoyaltyPayload& payload) override {
    received.push_back(payload);
    request.reply().sendWebSDKResponse(JSONObject{{"points", 120}}, WebSDKResponseType::success);
  }
};

template <class F>
std::shared_ptr<typename F::Plugin> silent() {
  return std::make_shared<testing::SilentPlugin<F>>();
}

TEST(HostFamilies, AHostActionIsDecodedIntoItsModelAndAnsweredThroughItsReply) {
  test::Harness h;
  const auto loyalty = std::make_shared<Loyalty>();
  ASSERT_TRUE(h.view->setPlugin<LoyaltyFamily>(loyalty));
  const auto responses =
      h.post(test::requestText("LOYALTY_REDEEM", R"({"rewardId":"coffee","pin":"4321","points":20})"));
  ASSERT_EQ(loyalty->received.size(), 1u);
  const Redeem* redeem = loyalty->received[0].get<LoyaltyPayload::Case::redeem>();
  ASSERT_NE(redeem, nullptr);
  EXPECT_EQ(redeem->rewardId, "coffee");
  EXPECT_EQ(redeem->pin, "4321");
  EXPECT_EQ(redeem->points, 20);
  ASSERT_EQ(responses.size(), 1u);
  EXPECT_EQ(responses[0].at("type"), "SUCCESS");
  EXPECT_EQ(responses[0].at("requestId"), "r1");
  EXPECT_EQ(h.view->answerCounts().expected, 1u);
}

// What the page is told for each way a host action can fail, as a built-in
// one is: 1004 with "not a valid request" or the family's own message.
TEST(HostFamilies, AHostActionThatCannotBeServedGets1004AsABuiltInOneDoes) {
  struct Row {
    const char* name;
    bool registered;
    bool held;
    const char* payload;
    const char* message;
  } rows[] = {
      {"payload missing its required key", true, true, R"({"pin":"1"})", "not a valid request"},
      {"payload not an object", true, true, R"("coffee")", "not a valid request"},
      {"no plugin registered", true, false, R"({"rewardId":"coffee"})", "Loyalty plugin not subscribed"},
      {"family never registered", false, false, R"({"rewardId":"coffee"})", "not a valid request"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    test::Harness h;
    const auto loyalty = std::make_shared<Loyalty>();
    if (row.registered) {
      ASSERT_TRUE(h.view->setPlugin<LoyaltyFamily>(row.held ? loyalty : nullptr));
    }
    const auto responses = h.post(test::requestText("LOYALTY_REDEEM", row.payload));
    EXPECT_TRUE(loyalty->received.empty());
    ASSERT_EQ(responses.size(), 1u);
    EXPECT_EQ(responses[0].at("type"), "FAILED");
    EXPECT_EQ(responses[0].at("statusCode"), 1004);
    EXPECT_EQ(responses[0].at("statusMessage"), row.message);
  }
}

// Each refusal names what collides, and changes nothing: the refused family's
// other actions stay unknown, and the family already there keeps its own.
TEST(HostFamilies, ARegistrationThatWouldRouteAnActionTwoWaysIsRefusedAndChangesNothing) {
  struct Row {
    const char* name;
    WebSDKRegistration (*registers)(WebSDKWebView&);
    const char* says;
  } rows[] = {
      {"a built-in action", [](WebSDKWebView& v) { return v.setPlugin<TakesCartFamily>(silent<TakesCartFamily>()); },
       "its action \"GET_LOCAL_CART\" is the library's cart family's"},
      {"another host family's action",
       [](WebSDKWebView& v) { return v.setPlugin<TakesLoyaltyFamily>(silent<TakesLoyaltyFamily>()); },
       "its action \"LOYALTY_REDEEM\" is already the loyalty family's"},
      {"a built-in family's name",
       [](WebSDKWebView& v) { return v.setPlugin<NamedCartFamily>(silent<NamedCartFamily>()); },
       "the library's own family has that name"},
      {"another host family's name",
       [](WebSDKWebView& v) { return v.setPlugin<NamedLoyaltyFamily>(silent<NamedLoyaltyFamily>()); },
       "another family of the host's has that name"},
      {"a name that is not valid", [](WebSDKWebView& v) { return v.setPlugin<BadNameFamily>(silent<BadNameFamily>()); },
       "its name is not valid (it holds ' '"},
      {"an action string that is not valid",
       [](WebSDKWebView& v) { return v.setPlugin<BadActionFamily>(silent<BadActionFamily>()); },
       "\"BAD ACTION\" is not a valid action string"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    test::Harness h;
    const auto loyalty = std::make_shared<Loyalty>();
    ASSERT_TRUE(h.view->setPlugin<LoyaltyFamily>(loyalty));
    const auto cart = std::make_shared<testing::EveryFamilyHost>(nullptr);
    testing::registerForEveryFamily(*h.view, cart);
    const auto families = h.view->families().size();

    const WebSDKRegistration refused = row.registers(*h.view);
    EXPECT_FALSE(refused);
    EXPECT_NE(refused.error.find(row.says), std::string::npos) << refused.error;
    EXPECT_EQ(h.view->families().size(), families);
    // Nothing of the refused family is routed; what was there still is.
    auto responses = h.post(test::requestText("TAKES_FINE", "{}"));
    EXPECT_EQ(responses.back().at("statusMessage"), "not a valid request");
    h.post(test::requestText("LOYALTY_REDEEM", R"({"rewardId":"coffee"})"));
    EXPECT_EQ(loyalty->received.size(), 1u);
  }
}

TEST(HostFamilies, HostFamiliesComeAfterTheLibrarysAndRegisteringAgainReplacesThePlugin) {
  test::Harness h;
  const auto first = std::make_shared<Loyalty>(), second = std::make_shared<Loyalty>();
  ASSERT_TRUE(h.view->setPlugin<LoyaltyFamily>(first));
  ASSERT_TRUE(h.view->setPlugin<LoyaltyFamily>(second));
  const auto families = h.view->families();
  ASSERT_EQ(families.size(), kFamilyCount + 1);
  EXPECT_EQ(families[0]->name, "generic");
  EXPECT_EQ(families.back()->name, "loyalty");
  h.post(test::requestText("LOYALTY_BALANCE", std::nullopt));
  EXPECT_TRUE(first->received.empty());
  EXPECT_EQ(second->received.size(), 1u);
}

TEST(HostEvents, AnEventIsWrittenAsJSONAndReachesOnlyATrustedPage) {
  const JSON data = JSONObject{{"points", 120}, {"note", "\"); alert(1); (\"</script>\u2028"}};
  {
    test::Harness h;
    ASSERT_TRUE(h.view->emitEvent("loyaltyPointsChanged", data));
    h.engine->queue().drain();
    const auto scripts = h.engine->evaluations();
    ASSERT_FALSE(scripts.empty());
    const std::string& script = scripts.back().script;
    EXPECT_EQ(script.rfind("window.nativeEvent(\"loyaltyPointsChanged\", ", 0), 0u) << script;
    EXPECT_NE(script.find(R"(\"); alert(1); (\"</script>\u2028)"), std::string::npos) << script;
  }
  {
    test::Harness h({"localhost"}, false, "https://evil.example/");
    EXPECT_TRUE(h.view->emitEvent("loyaltyPointsChanged", data));
    h.engine->queue().drain();
    EXPECT_TRUE(h.engine->evaluations().empty());
    ASSERT_EQ(h.listener->dropped.size(), 1u);
    EXPECT_EQ(h.listener->dropped[0].second, WebSDKDropReason::pageNotWhitelisted);
  }
}

TEST(HostEvents, AnEventWhoseNameIsNotValidOrIsAPageFunctionsIsRefused) {
  const std::vector<std::string> names = {
      "", "1st", "has space", "quote\"", std::string(129, 'a'), "pageResume", "LOGIN_STATE_CHANGED"};
  for (const auto& name : names) {
    SCOPED_TRACE(name);
    test::Harness h;
    EXPECT_FALSE(h.view->emitEvent(name, nullptr));
    h.engine->queue().drain();
    EXPECT_TRUE(h.engine->evaluations().empty());
  }
}

struct Points {
  std::int64_t points = 0;
  std::optional<std::string> memberPin;
  WEBSDK_MODEL(Points, anyPayload, (points, integer, required), (memberPin, strictString, sensitive))
};

// The family's pin in the request, and an event model's own sensitive field,
// never reach the file; a replay naming the family finds the same fate.
TEST(HostFamilies, TheRecordingMasksHostFieldsAndReplaysTheSameAndTheCatalogueMarksThem) {
  const auto path = std::filesystem::temp_directory_path() / "websdk-host-family-recording.jsonl";
  std::filesystem::remove(path);
  {
    WebSDKConfig config;
    config.whitelistedHosts = {"localhost"};
    config.recording = WebSDKTrafficRecording{.path = path.string()};
    test::Harness h(config);
    const auto loyalty = std::make_shared<Loyalty>();
    ASSERT_TRUE(h.view->setPlugin<LoyaltyFamily>(loyalty));
    h.post(test::requestText("LOYALTY_REDEEM", R"({"rewardId":"coffee","pin":"-98765"})"));
    ASSERT_EQ(loyalty->received.size(), 1u);
    ASSERT_TRUE(emitEvent(*h.view, "loyaltyPointsChanged", Points{70, "-45678"}));
    h.engine->queue().drain();
  }
  std::string recorded;
  {
    std::ifstream in(path);
    recorded.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  }
  EXPECT_NE(recorded.find("coffee"), std::string::npos);
  EXPECT_NE(recorded.find("nativeEvent"), std::string::npos);
  EXPECT_EQ(recorded.find("98765"), std::string::npos) << recorded;
  EXPECT_EQ(recorded.find("45678"), std::string::npos) << recorded;

  std::ifstream replayed(path);
  std::ostringstream report;
  const auto result = testing::replayRecording(replayed, report, {&familyType<LoyaltyFamily>()});
  std::filesystem::remove(path);
  EXPECT_EQ(result.requests, 1u);
  EXPECT_EQ(result.differ, 0u) << report.str();

  const JSON catalogue =
      testing::catalogue({&familyType<LoyaltyFamily>()}, {testing::declareEvent<Redeem>("loyaltyPointsChanged")});
  const auto& redeem = catalogue.at("families").at(0).at("actions").at(1);
  EXPECT_EQ(redeem.at("action"), "LOYALTY_REDEEM");
  EXPECT_EQ(redeem.at("payload"), "required");
  EXPECT_EQ(redeem.at("fields").at(0).at("key"), "rewardId");
  EXPECT_EQ(redeem.at("fields").at(0).at("required"), true);
  EXPECT_EQ(redeem.at("fields").at(1).at("sensitive"), true);
  EXPECT_EQ(catalogue.at("events").at(0).at("name"), "loyaltyPointsChanged");
}

}  // namespace websdk::host_families_test
