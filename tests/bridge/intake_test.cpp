#include "FamilyRequests.hpp"
#include "support/Harness.hpp"
#include "websdk/webview/WebViewInternals.hpp"

#include <gtest/gtest.h>

#include <set>

namespace websdk {
namespace {

using test::Harness;
using test::RecordingCart;

JSON failure(std::int64_t code, std::optional<std::string> message, std::string requestId) {
  JSONObject o{{"type", "FAILED"}, {"statusCode", code}};
  if (message) o.emplace("statusMessage", *message);
  o.emplace("requestId", requestId);
  return o;
}

TEST(Intake, ACartRequestReachesTheCartPluginAndItsAnswerReachesThePage) {
  Harness h;
  auto cart = std::make_shared<RecordingCart>();
  h.view->setCartPlugin(cart);
  h.post(R"({"type":"GET_LOCAL_CART","requestId":"7","payload":{"tenant":{}}})");

  ASSERT_EQ(cart->received.size(), 1u);
  const auto& [request, payload] = cart->received[0];
  EXPECT_EQ(request.type, WebSDKCartAction::getCart);
  EXPECT_EQ(request.requestId, "7");
  EXPECT_EQ(payload, WebSDKCartRequestPayload::make<WebSDKCartRequestPayloadCase::getCart>({}));
  EXPECT_TRUE(h.pageResponses().empty());
  EXPECT_EQ(h.listener->requests.size(), 1u);

  h.view->sendWebSDKResponse(JSONObject{{"items", 2}}, WebSDKResponseType::success, "7");
  EXPECT_TRUE(h.pageResponses().empty()) << "evaluated on the main queue, not at once";
  EXPECT_EQ(h.listener->responses.size(), 1u) << "the listener is told on the sender's thread";
  h.engine->queue().drain();
  const auto responses = h.pageResponses();
  ASSERT_EQ(responses.size(), 1u);
  EXPECT_EQ(responses[0].at("requestId"), "7");
  EXPECT_EQ(responses[0].at("statusCode"), 0);
  EXPECT_EQ(parseJSON(responses[0].at("payload").as_string()), parseJSON(R"({"items":2})"));
}

struct FailureRow {
  const char* name;
  std::string request;
  JSON expected;
};

// Every failure the bridge answers itself, with no plugin registered.
TEST(Intake, EveryFailureReachesThePageAsItsEnvelope) {
  const FailureRow rows[] = {
      {"family known, no plugin", R"({"type":"GET_LOCAL_CART","requestId":"7","payload":{"tenant":{}}})",
       failure(1004, "Cart Plugin not subscribed or not a valid request", "7")},
      {"gifting wording for recipient info", R"({"type":"CLEAR_GIFTING_LOCAL_CART","requestId":"g"})",
       failure(1004, "Gifting Cart Plugin not subscribed or not a valid request", "g")},
      {"numeric request id", R"({"type":"GET_LOCAL_CART","requestId":7,"payload":{"tenant":{}}})",
       failure(1004, "not a valid request", "7")},
      {"unknown action, no id", R"({"type":"NO_SUCH_ACTION"})", failure(1004, "not a valid request", "")},
      {"payload fails its model", R"({"type":"APPLY_COUPON","requestId":"c","payload":{}})",
       failure(1004, "not a valid request", "c")},
      {"type given as a number", R"({"type":5,"requestId":"n"})", failure(1004, "not a valid request", "n")},
      {"type in lower case", R"({"type":"get_local_cart","requestId":"l"})", failure(1004, "not a valid request", "l")},
      {"text that is not JSON", "GET_LOCAL_CART", failure(1004, "not a valid request", "")},
      {"a JSON array", R"(["GET_LOCAL_CART"])", failure(1004, "not a valid request", "")},
  };
  for (const auto& row : rows) {
    Harness h;
    h.post(row.request);
    const auto responses = h.pageResponses();
    ASSERT_EQ(responses.size(), 1u) << row.name;
    EXPECT_EQ(responses[0], row.expected) << row.name;
    ASSERT_EQ(h.listener->responses.size(), 1u) << row.name;
  }
}

TEST(Intake, ARequestOfEveryFamilyWithoutItsPluginGetsTheFamilysMessage) {
  std::set<std::string_view> messages;
  for (const auto& request : test::oneRequestPerFamily()) {
    messages.insert(request.failureMessage);
    Harness h;
    h.post(request.text);
    const auto responses = h.pageResponses();
    ASSERT_EQ(responses.size(), 1u) << request.text;
    EXPECT_EQ(responses[0].at("statusMessage").as_string(), request.failureMessage) << request.text;
  }
  EXPECT_EQ(messages.size(), kFamilyCount);
  EXPECT_TRUE(messages.contains("Gifting plugin not subscribed or not a valid request"));
}

TEST(Intake, APageOutsideTheWhitelistIsAnsweredWithItsURLAndNoPluginIsCalled) {
  Harness h({"example.com"}, false, "https://evil.test/pay?x=1");
  auto cart = std::make_shared<RecordingCart>();
  h.view->setCartPlugin(cart);
  h.post(R"({"type":"GET_LOCAL_CART","requestId":"7","payload":{"tenant":{}}})");
  EXPECT_TRUE(cart->received.empty());
  EXPECT_EQ(h.listener->requests.size(), 1u) << "the listener hears the request before the host check";
  ASSERT_EQ(h.pageResponses().size(), 1u);
  EXPECT_EQ(h.pageResponses()[0], failure(1005, "https://evil.test/pay?x=1", "7"));

  // A message from no committed document is refused without a URL, and has
  // no document to be answered in.
  Harness noPage({"localhost"}, false, std::nullopt);
  noPage.post(R"({"type":"GET_LOCAL_CART","requestId":"8"})");
  EXPECT_TRUE(noPage.pageResponses().empty());
  ASSERT_EQ(noPage.listener->responses.size(), 1u);
  EXPECT_EQ(noPage.listener->responses[0].statusCode, 1005);
  EXPECT_EQ(noPage.listener->responses[0].statusMessage, std::nullopt);
}

// A refused or oversized message is answered under the id its first bytes
// give, and is never parsed in full.
TEST(Intake, RefusedAndOversizedMessagesAreAnsweredFromTheirFirstBytes) {
  const std::string far = R"({"pad":")" + std::string(70'000, 'x') + R"(","requestId":"late"})";
  struct Row {
    std::string text;
    std::string id;
  };
  const Row rows[] = {
      {R"({"requestId":"7"})", "7"},
      {R"({"type":"X","requestId":12})", "12"},
      {R"({"requestId":"a\"b\u00e9"})", "a\"b\xC3\xA9"},
      {R"({"payload":{"requestId":"inner"},"requestId":"outer"})", "outer"},
      {R"({"payload":{"requestId":"inner"}})", ""},
      {R"({"requestId":"1","requestId":"2"})", "2"},
      {R"({"requestId":"7","payload":{"cut off)", "7"},
      {R"({"requestId":["7"]})", ""},
      {R"([{"requestId":"7"}])", ""},
      {"not json", ""},
      {far, ""},
  };
  for (const auto& row : rows) EXPECT_EQ(requestIdNearTheStart(row.text), row.id) << row.text.substr(0, 60);
  EXPECT_EQ(requestIdNearTheStart(far, far.size()), "late");

  // Past the view's limit a trusted page's request is refused with a reason.
  auto owned = std::make_unique<testing::TestingEngine>();
  auto* engine = owned.get();
  engine->setURL("https://localhost/checkout");
  WebSDKConfig config{{"localhost"}};
  config.maximumMessageBytes = 80;
  auto listener = std::make_shared<test::RecordingListener>();
  const auto view = WebSDKWebView::create(std::move(owned), config, nullptr, nullptr, nullptr, listener);
  auto cart = std::make_shared<RecordingCart>();
  view->setCartPlugin(cart);
  const std::string small = R"({"type":"GET_LOCAL_CART","requestId":"s","payload":{"tenant":{}}})";
  const std::string large = R"({"type":"GET_LOCAL_CART","requestId":"l","payload":{"tenant":{"marketplaceId":"m"}}})";
  engine->postRequest(small);
  engine->postRequest(large);
  engine->queue().drain();
  EXPECT_EQ(cart->received.size(), 1u);
  ASSERT_EQ(listener->responses.size(), 1u);
  EXPECT_EQ(listener->responses[0].statusCode, 1003);
  EXPECT_EQ(listener->responses[0].requestId, "l");
  EXPECT_EQ(listener->responses[0].statusMessage,
            "message too large: " + std::to_string(large.size()) + " bytes, the limit is 80");
}

TEST(Intake, TrustFollowsTheDocumentThatSentTheMessage) {
  Harness h({"example.com"}, false, "https://pay.example.com/");
  const std::string request = R"({"type":"CLEAR_LOCAL_CART","requestId":"t"})";
  auto answer = [&](std::optional<MessageOrigin> origin) {
    h.engine->postRequest(request, std::move(origin));
    h.engine->queue().drain();
    const auto responses = h.pageResponses();
    return responses.empty() ? JSON() : responses.back();
  };
  EXPECT_EQ(answer(std::nullopt).at("statusCode"), 1004);  // trusted: no cart plugin
  // A message stamped by an older document on another host is judged by that
  // document, not by the page shown now, and answered only there.
  const DocumentID old = h.engine->document();
  h.engine->navigate("https://pay.example.com/next");
  const std::size_t before = h.pageResponses().size();
  answer(MessageOrigin{"https://evil.test/", "https://evil.test/", true, old});
  EXPECT_EQ(h.pageResponses().size(), before);
  ASSERT_FALSE(h.engine->droppedScripts.empty());
  EXPECT_EQ(parseJSON(h.engine->droppedScripts.back().substr(15, h.engine->droppedScripts.back().size() - 16)),
            failure(1005, "https://evil.test/", "t"));
  h.engine->setURL("https://evil.test/");
  EXPECT_EQ(answer(std::nullopt), failure(1005, "https://evil.test/", "t"));
}

// Who may reach a plugin: the top document always decides, for the answer
// runs there; judging frames by their own host, the sending frame decides as
// well. A refused frame's request id never reaches an untrusted top page.
TEST(Intake, AMessageIsServedOnlyInATrustedTopDocument) {
  enum Outcome { delivered, told, silent };
  struct Row {
    const char* name;
    const char* frame;
    const char* top;
    bool isMainFrame;
    bool byFrame;
    Outcome outcome;
    std::optional<std::string> refusedAs = std::nullopt;  // the URL a refusal tells
  };
  const std::string shop = "https://shop.example.com/", evil = "https://evil.test/";
  const Row rows[] = {
      {"trusted page", "https://shop.example.com/", "https://shop.example.com/", true, false, delivered},
      {"trusted page, by frame", "https://shop.example.com/", "https://shop.example.com/", true, true, delivered},
      {"untrusted page", "https://evil.test/", "https://evil.test/", true, false, told, evil},
      {"untrusted page, by frame", "https://evil.test/", "https://evil.test/", true, true, told, evil},
      {"untrusted frame, trusted top", "https://evil.test/", "https://shop.example.com/", false, false, delivered},
      {"untrusted frame, trusted top, by frame", "https://evil.test/", "https://shop.example.com/", false, true, told,
       evil},
      {"trusted frame, untrusted top", "https://shop.example.com/", "https://evil.test/", false, false, silent},
      {"trusted frame, untrusted top, by frame", "https://shop.example.com/", "https://evil.test/", false, true,
       silent},
      {"blank frame, trusted top, by frame", "about:blank", "https://shop.example.com/", false, true, told,
       "about:blank"},
      {"a frame the engine cannot tell, by frame", "", "https://shop.example.com/", false, true, told},
      {"no top URL", "https://shop.example.com/", "", false, false, silent},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    WebSDKConfig config{{"example.com"}};
    config.judgesFramesByTheirOwnHost = row.byFrame;
    Harness h(config);
    h.engine->setURL(*row.top != '\0' ? row.top : shop);
    auto cart = std::make_shared<RecordingCart>();
    h.view->setCartPlugin(cart);
    h.engine->postRequest(R"({"type":"GET_LOCAL_CART","requestId":"f","payload":{"tenant":{}}})",
                          MessageOrigin{row.frame, row.top, row.isMainFrame, h.engine->document()});
    h.engine->queue().drain();
    EXPECT_EQ(cart->received.size(), row.outcome == delivered ? 1u : 0u);
    if (row.outcome == delivered) {
      h.view->sendSuccess("f");
      h.engine->queue().drain();
    }
    EXPECT_EQ(h.pageResponses().size(), row.outcome == silent ? 0u : 1u);
    if (row.outcome == told && !h.pageResponses().empty()) {
      EXPECT_EQ(h.pageResponses()[0], failure(1005, row.refusedAs, "f"));
    }
  }
}

TEST(Intake, MalformedMessagesAreDroppedSilently) {
  Harness h;
  auto cart = std::make_shared<RecordingCart>();
  h.view->setCartPlugin(cart);
  const std::string valid = R"({"type":"CLEAR_LOCAL_CART","requestId":"1"})";
  // A message to another name never reaches the handler's logic.
  WebViewInternals::handler(*h.view)->userContentController(
      ScriptMessage{"otherHandler", JSONObject{{"message", valid}}, {}});
  h.engine->postScriptMessage("nativeRequest", JSON(valid));                                // body not a dictionary
  h.engine->postScriptMessage("nativeRequest", JSONObject{{"msg", valid}});                 // no "message"
  h.engine->postScriptMessage("nativeRequest", JSONObject{{"message", parseJSON(valid)}});  // not a string
  h.engine->postScriptMessage("nativeRequest", JSON(nullptr));
  h.engine->queue().drain();
  EXPECT_TRUE(cart->received.empty());
  EXPECT_TRUE(h.pageResponses().empty());
  EXPECT_TRUE(h.listener->requests.empty());
}

TEST(Registration, TheLastPluginSetWinsAndAReleasedOneFallsBackToTheFailure) {
  Harness h;
  auto first = std::make_shared<RecordingCart>();
  auto second = std::make_shared<RecordingCart>();
  h.view->setCartPlugin(first);
  h.view->setCartPlugin(second);
  h.post(R"({"type":"CLEAR_LOCAL_CART","requestId":"1"})");
  EXPECT_TRUE(first->received.empty());
  EXPECT_EQ(second->received.size(), 1u);

  second.reset();
  h.post(R"({"type":"CLEAR_LOCAL_CART","requestId":"2"})");
  ASSERT_EQ(h.pageResponses().size(), 1u);
  EXPECT_EQ(h.pageResponses()[0], failure(1004, "Cart Plugin not subscribed or not a valid request", "2"));
}

struct BothCarts final : DvCartWebViewCallBacks, DvPXCartWebViewCallBacks {
  std::vector<std::string> calls;
  void handleCartRequest(const WebSDKCartRequestModel& r, const WebSDKCartRequestPayload&) override {
    calls.push_back("cart:" + std::string(rawValue(r.type)));
  }
  void handlePXCartRequest(const WebSDKPXCartRequestModel& r, const WebSDKPXCartRequestPayload&) override {
    calls.push_back("px:" + std::string(rawValue(r.type)));
  }
};

TEST(Registration, OneObjectServingTwoFamiliesGetsEachThroughItsOwnOperation) {
  Harness h;
  auto both = std::make_shared<BothCarts>();
  h.view->setCartPlugin(both);
  h.view->setPXCartPlugin(both);
  h.post(R"({"type":"PX_GET_LOCAL_CART","requestId":"1"})");
  h.post(R"({"type":"CLEAR_LOCAL_CART","requestId":"2"})");
  EXPECT_EQ(both->calls, (std::vector<std::string>{"px:PX_GET_LOCAL_CART", "cart:CLEAR_LOCAL_CART"}));
}

// A plugin that drops its own registration (and the page's view) while handling.
struct SelfReleasing final : DvCartWebViewCallBacks {
  std::shared_ptr<WebSDKWebView>* view = nullptr;
  int calls = 0;
  void handleCartRequest(const WebSDKCartRequestModel&, const WebSDKCartRequestPayload&) override {
    ++calls;
    view->reset();
  }
};

TEST(Lifetimes, ResetReleasedViewsAndPluginsAnswerNothingAndNeverCrash) {
  {
    Harness h;
    auto cart = std::make_shared<RecordingCart>();
    h.view->setCartPlugin(cart);
    h.view->resetWebView();
    h.post(R"({"type":"CLEAR_LOCAL_CART","requestId":"1"})");
    h.post(R"({"type":"NOPE","requestId":"2"})");
    EXPECT_TRUE(cart->received.empty());
    EXPECT_TRUE(h.pageResponses().empty());
    EXPECT_EQ(h.listener->requests.size(), 2u);
  }
  {
    Harness h;
    auto cart = std::make_shared<SelfReleasing>();
    cart->view = &h.view;
    h.view->setCartPlugin(cart);
    auto engine = WebViewInternals::handler(*h.view);  // keep the handler alive past its view, as a late message would
    h.engine->postRequest(R"({"type":"CLEAR_LOCAL_CART","requestId":"1"})");
    EXPECT_EQ(cart->calls, 1);
    EXPECT_EQ(h.view, nullptr);
    engine->userContentController(ScriptMessage{"nativeRequest", JSONObject{{"message", R"({"type":"X"})"}}, {}});
  }
}

TEST(Routing, ActionStringsOfTheFamiliesAreDisjoint) {
  std::set<std::string_view> seen;
  std::size_t total = 0;
  forEachFamily([&]<class F>(F) {
    for (const auto& entry : enumTable<typename F::Action>) {
      seen.insert(entry.raw);
      ++total;
    }
  });
  EXPECT_EQ(seen.size(), total);
}

}  // namespace
}  // namespace websdk
