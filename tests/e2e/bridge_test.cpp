// The page channel both ways, against the real engine: requests to plugins and back,
// the bridge's own failures, large answers and pushed page events.

#include "E2E.hpp"

#include <thread>

namespace websdk::e2e {
namespace {

class CartPlugin final : public DvCartWebViewCallBacks {
 public:
  std::function<void(const WebSDKCartRequestModel&, const WebSDKCartRequestPayload&)> onRequest;
  void handleCartRequest(const WebSDKCartRequestModel& request, const WebSDKCartRequestPayload& payload) override {
    if (onRequest) onRequest(request, payload);
  }
};

constexpr std::string_view kGetCart =
    R"({"type":"GET_LOCAL_CART","requestId":"7","payload":{"tenant":{"marketplaceId":"m1","marketplaceCategory":"food","marketplaceBusinessLine":"meals"}}})";

class BridgeTest : public E2ETest {
 protected:
  void SetUp() override {
    E2ETest::SetUp();
    server.page("/page", testPage());
    ASSERT_TRUE(loadAndWait(server.url("/page")));
  }
  std::vector<JSON> responses() const { return page->of("nativeResponse"); }
  // A page script defining request(id): posts the cart request with that id.
  static std::string requestFunction() {
    const std::string body(kGetCart);
    const auto at = body.find(R"("7")");
    return "const request = id => window.webkit.messageHandlers.nativeRequest.postMessage({message: '" +
           body.substr(0, at) + "\"' + id + '\"" + body.substr(at + 3) + "'});";
  }
  bool waitForResponses(std::size_t n) {
    return waitFor([&] { return responses().size() >= n; });
  }
  std::shared_ptr<CartPlugin> cart = std::make_shared<CartPlugin>();
};

TEST_F(BridgeTest, APageRequestReachesItsPluginAndTheAnswerReachesNativeResponse) {
  view->setCartPlugin(cart);
  std::optional<WebSDKGetCartRequestModel> received;
  cart->onRequest = [&](const WebSDKCartRequestModel& request, const WebSDKCartRequestPayload& payload) {
    if (const auto* model = payload.get<WebSDKCartRequestPayloadCase::getCart>()) received = *model;
    JSONObject answer;
    answer.emplace("items", 2);
    view->sendWebSDKResponse(answer, WebSDKResponseType::success, request.requestId);
  };
  postFromPage(std::string(kGetCart));
  ASSERT_TRUE(waitForResponses(1));

  EXPECT_EQ(received, (WebSDKGetCartRequestModel{"m1", "food", "meals"}));
  const JSON envelope = responses()[0];
  EXPECT_EQ(envelope.at("type"), JSON("SUCCESS"));
  EXPECT_EQ(envelope.at("statusCode"), JSON(0));
  EXPECT_EQ(envelope.at("requestId"), JSON("7"));
  const auto* payload = envelope.at("payload").if_string();
  ASSERT_NE(payload, nullptr);
  EXPECT_EQ(parseJSON(*payload), parseJSON(R"({"items":2})"));
  EXPECT_EQ(listener->requests, std::vector<std::string>{std::string(kGetCart)});
  EXPECT_EQ(listener->responses.size(), 1u);
}

// A plugin that never answers: at its family's deadline the engine's own timer
// fails the request, so the page's promise settles and nothing stays pending.
TEST_F(BridgeTest, ARequestNoPluginAnswersIsFailedAtItsFamilysDeadline) {
  WebSDKConfig config{{"127.0.0.1"}};
  config.answerDeadlines = {{"cart", std::chrono::milliseconds(200)}};
  config.failsOverdueRequests = true;
  makeView(config, delegate);
  ASSERT_TRUE(loadAndWait(server.url("/page")));
  view->setCartPlugin(cart);  // it never answers
  postFromPage(std::string(kGetCart));
  ASSERT_TRUE(waitForResponses(1));
  EXPECT_EQ(responses()[0].at("type"), JSON("FAILED"));
  EXPECT_EQ(responses()[0].at("requestId"), JSON("7"));
  EXPECT_EQ(responses()[0].at("statusMessage"), JSON("no answer within 200 ms"));
  EXPECT_EQ(view->answerCounts().overdue, 1u);
  EXPECT_TRUE(view->pendingRequests().empty());
}

TEST_F(BridgeTest, TheBridgesOwnFailuresReachThePage) {
  postFromPage(R"({"type":"NO_SUCH_ACTION","requestId":"a"})");
  postFromPage(std::string(kGetCart));  // no cart plugin registered
  ASSERT_TRUE(waitForResponses(2));
  EXPECT_EQ(responses()[0],
            parseJSON(R"({"type":"FAILED","statusCode":1004,"statusMessage":"not a valid request","requestId":"a"})"));
  EXPECT_EQ(
      responses()[1],
      parseJSON(
          R"({"type":"FAILED","statusCode":1004,"statusMessage":"Cart Plugin not subscribed or not a valid request","requestId":"7"})"));

  // The same page on a host that is not whitelisted is refused with its URL.
  view->setCartPlugin(cart);
  ASSERT_TRUE(loadAndWait(server.url("/page", "localhost")));
  const std::size_t before = responses().size();
  postFromPage(std::string(kGetCart));
  ASSERT_TRUE(waitForResponses(before + 1));
  JSONObject expected{{"type", "FAILED"},
                      {"statusCode", 1005},
                      {"statusMessage", server.url("/page", "localhost")},
                      {"requestId", "7"}};
  EXPECT_EQ(responses().back(), JSON(expected));
}

// A large message crosses in parts: characters of every UTF-8 width straddle
// the cuts, and the small one posted right after it still comes second.
TEST_F(BridgeTest, ALargeMessageArrivesWholeAndInOrder) {
  view->setCartPlugin(cart);
  cart->onRequest = [&](const WebSDKCartRequestModel& request, const WebSDKCartRequestPayload&) {
    view->sendSuccess(request.requestId);
  };
  const std::string head = R"({"type":"GET_LOCAL_CART","requestId":"big","pad":")";
  const std::string tail = std::string(R"(",)") + std::string(kGetCart.substr(kGetCart.find(R"("payload")")));
  std::string big = head;
  for (int i = 0; i < 300'000; ++i) big += "x\xc3\xa9\xe2\x82\xac\xf0\x9f\x98\x80";  // widths 1 to 4
  big += tail;
  view->engine().evaluateJavaScript(
      "const post = m => window.webkit.messageHandlers.nativeRequest.postMessage({message: m});"
      "post('" +
          head + "' + 'x\\u00e9\\u20ac\\u{1F600}'.repeat(300000) + '" + tail + "'); post('" + std::string(kGetCart) +
          "')",
      nullptr);
  ASSERT_TRUE(waitForResponses(2));
  EXPECT_EQ(responses()[0].at("requestId"), JSON("big"));
  EXPECT_EQ(responses()[1].at("requestId"), JSON("7"));
  ASSERT_EQ(listener->requests.size(), 2u);
  EXPECT_TRUE(listener->requests[0] == big) << listener->requests[0].size() << " bytes arrived of " << big.size();
}

TEST_F(BridgeTest, BodiesThatAreNotRequestsAreDroppedAndTheChannelGoesOn) {
  view->setCartPlugin(cart);
  cart->onRequest = [&](const WebSDKCartRequestModel& request, const WebSDKCartRequestPayload&) {
    view->sendSuccess(request.requestId);
  };
  for (const char* body : {"'text'", "42", "null", "[1,2]", "{message: 5}", "{message: {type: 'GET_LOCAL_CART'}}"})
    view->engine().evaluateJavaScript(
        "window.webkit.messageHandlers.nativeRequest.postMessage(" + std::string(body) + ")", nullptr);
  postFromPage(std::string(kGetCart));
  ASSERT_TRUE(waitForResponses(1));
  EXPECT_EQ(responses()[0], parseJSON(R"({"type":"SUCCESS","statusCode":0,"requestId":"7"})"));
  EXPECT_EQ(listener->requests.size(), 1u);
}

// Requests keep the order the page made them in: a burst in one task, one
// posted from a page listener of the engine's own carrier event while the
// first is on its way (the listener fires only where there is such an event),
// and those of a later task.
TEST_F(BridgeTest, RequestsArriveInTheOrderThePagePostedThem) {
  view->setCartPlugin(cart);
  std::vector<std::string> ids;
  cart->onRequest = [&](const WebSDKCartRequestModel& request, const WebSDKCartRequestPayload&) {
    ids.push_back(request.requestId);
    view->sendSuccess(request.requestId);
  };
  view->engine().evaluateJavaScript(
      requestFunction() +
          "let inside = false;"
          "for (const name of ['websdk:request', 'websdk:post'])"
          "  window.addEventListener(name, () => { if (!inside) { inside = true; request('inside'); } });"
          "request('a'); request('b'); request('c');"
          "setTimeout(() => { request('d'); request('e'); }, 0);",
      nullptr);
  ASSERT_TRUE(waitFor([&] { return ids.size() >= 5 && ids.back() == "e"; })) << ids.size() << " arrived";
  std::vector<std::string> expected{"a", "b", "c", "d", "e"};
  if (ids.size() == 6) expected.insert(expected.begin() + 1, "inside");
  EXPECT_EQ(ids, expected);
  EXPECT_TRUE(waitForResponses(ids.size()));
}

// The answers to a burst of requests keep their order around what else the
// app sends the page meanwhile, and one whose nativeResponse throws stops
// none of those after it, even on a page that has replaced setTimeout.
TEST_F(BridgeTest, ABurstsAnswersKeepTheirOrderAndAThrowingOneStopsNoOther) {
  // No listener, as in most hosts: no one waits to hear how each answer went.
  view->webJSCommunicatorDelegate.reset();
  view->setCartPlugin(cart);
  cart->onRequest = [&](const WebSDKCartRequestModel& request, const WebSDKCartRequestPayload&) {
    if (request.requestId == "b") view->executeJSFunction(WebSDKJSFunctionType::pageResume());
    view->sendSuccess(request.requestId);
  };
  view->engine().evaluateJavaScript(
      requestFunction() +
          "nativeResponse = e => { report('order', e.requestId); if (e.requestId === 'b') throw new Error('b'); };"
          "pageResume = () => report('order', 'event');"
          "window.setTimeout = () => { throw new Error('no timers here'); };"
          "for (const id of ['a', 'b', 'c', 'd']) request(id);",
      nullptr);
  ASSERT_TRUE(waitFor([&] { return page->of("order").size() >= 5; })) << page->of("order").size() << " arrived";
  EXPECT_EQ(page->of("order"), (std::vector<JSON>{"a", "event", "b", "c", "d"}));
}

// The bridge judges a message by the page the view shows; a frame of another
// host inside a trusted page is served as the page is (the README says so).
TEST_F(BridgeTest, AFramesMessageIsJudgedByTheTopPage) {
  if (!engine::limits().otherServers.empty()) GTEST_SKIP() << engine::limits().otherServers;
  view->setCartPlugin(cart);
  std::vector<std::string> ids;
  cart->onRequest = [&](const WebSDKCartRequestModel& request, const WebSDKCartRequestPayload&) {
    ids.push_back(request.requestId);
  };
  JSONObject body{{"message", std::string(kGetCart)}};
  server.page("/frame", "<script>window.webkit.messageHandlers.nativeRequest.postMessage(" + serialize(JSON(body)) +
                            ")</script>");
  server.page("/framing", testPage("<iframe src='" + server.url("/frame", "localhost") + "'></iframe>"));
  ASSERT_TRUE(loadAndWait(server.url("/framing")));
  EXPECT_TRUE(waitFor([&] { return ids.size() == 1; }));
}

TEST_F(BridgeTest, AnAnswerSentFromAnotherThreadReachesThePage) {
  view->setCartPlugin(cart);
  std::thread provider;
  cart->onRequest = [&](const WebSDKCartRequestModel& request, const WebSDKCartRequestPayload&) {
    provider = std::thread([weak = std::weak_ptr(view), id = request.requestId] {
      if (auto v = weak.lock()) v->sendWebSDKResponse(std::string("from a worker"), WebSDKResponseType::success, id);
    });
  };
  postFromPage(std::string(kGetCart));
  ASSERT_TRUE(waitFor([&] { return provider.joinable(); }));
  provider.join();
  ASSERT_TRUE(waitForResponses(1));
  EXPECT_EQ(responses()[0].at("payload"), JSON("from a worker"));
}

TEST_F(BridgeTest, AHostMayDropTheViewFromInsideAPluginCall) {
  view->setCartPlugin(cart);
  bool called = false;
  cart->onRequest = [&](const WebSDKCartRequestModel& request, const WebSDKCartRequestPayload&) {
    called = true;
    view->sendSuccess(request.requestId);  // queued; must do nothing once the view is gone
    view.reset();
  };
  postFromPage(std::string(kGetCart));
  ASSERT_TRUE(waitFor([&] { return called; }));
  EXPECT_EQ(view, nullptr);
  // The loop runs on without the view, and a new one works.
  makeView({"127.0.0.1"}, delegate);
  ASSERT_TRUE(loadAndWait(server.url("/page")));
  EXPECT_EQ(evaluate("1 + 1"), JSON(2));
}

TEST_F(BridgeTest, AMegabyteAnswerArrivesIntact) {
  // Everything the envelope must escape, and text that must pass untouched.
  std::string payload;
  const std::string_view pieces[] = {"plain text ", "\"quoted\" ",  "back\\slash ", "line\nbreak ",
                                     "tab\t",       "caf\xC3\xA9 ", "\xE2\x80\xA8", "\xE2\x80\xA9",
                                     "</script> ",  "'single' ",    "\x01"};
  for (std::size_t i = 0; payload.size() < (1u << 20); ++i) payload += pieces[i % std::size(pieces)];
  view->setCartPlugin(cart);
  cart->onRequest = [&](const WebSDKCartRequestModel& request, const WebSDKCartRequestPayload&) {
    view->sendWebSDKResponse(payload, WebSDKResponseType::success, request.requestId);
  };
  postFromPage(std::string(kGetCart));
  ASSERT_TRUE(waitForResponses(1));
  const auto all = responses();
  const auto* received = all[0].at("payload").if_string();
  ASSERT_NE(received, nullptr);
  EXPECT_EQ(received->size(), payload.size());
  EXPECT_TRUE(std::string_view(*received) == payload);
}

// Every shape an envelope takes reaches nativeResponse as the object its
// script text would make: a plain object, only the fields given, in order.
TEST_F(BridgeTest, EveryEnvelopeShapeReachesThePageAsItsScriptWouldMakeIt) {
  server.page("/shapes", testPage(R"(<script>
nativeResponse = function (e) {
  report('shape', {keys: Object.keys(e), plain: Object.getPrototypeOf(e) === Object.prototype,
                   envelope: e, payloadLength: typeof e.payload === 'string' ? e.payload.length : -1});
};
</script>)"));
  ASSERT_TRUE(loadAndWait(server.url("/shapes")));
  struct Row {
    std::string requestId;
    std::optional<std::string> payload;
    WebSDKResponseType type;
    std::optional<std::int64_t> code;
    std::optional<std::string> message;
    JSONArray keys;
    int payloadUnits;  // as the page counts them (UTF-16)
  };
  const std::vector<Row> rows = {
      {"a",
       std::nullopt,
       WebSDKResponseType::success,
       std::nullopt,
       std::nullopt,
       {"type", "statusCode", "requestId"},
       -1},
      {"b",
       "",
       WebSDKResponseType::failure,
       1005,
       "not a \"trusted\" page",
       {"type", "statusCode", "statusMessage", "requestId", "payload"},
       0},
      {"c \"quoted\" \xE2\x80\xA8 id",
       std::string("nul\0byte", 8),
       WebSDKResponseType::success,
       -3,
       "",
       {"type", "statusCode", "statusMessage", "requestId", "payload"},
       8},
      {"\xF0\x9F\x8D\x95",
       "emoji \xF0\x9F\x8D\x95 caf\xC3\xA9 </script>",
       WebSDKResponseType::success,
       4000000000,
       std::nullopt,
       {"type", "statusCode", "requestId", "payload"},
       23},
      // Answers travel between single quotes under Qt WebEngine: text that
      // tries to close them and run stays text.
      {"d 'single' \\' id",
       "it's '); window.broken = true; ('\\'",
       WebSDKResponseType::failure,
       2,
       "\\'); throw 1; //",
       {"type", "statusCode", "statusMessage", "requestId", "payload"},
       35},
  };
  for (const auto& row : rows) {
    if (row.payload)
      view->sendWebSDKResponse(*row.payload, row.type, row.requestId, row.code, row.message);
    else if (row.type == WebSDKResponseType::success)
      view->sendSuccess(row.requestId, row.code, row.message);
    else
      view->sendFailure(row.requestId, row.code, row.message);
  }
  ASSERT_TRUE(waitFor([&] { return page->of("shape").size() >= rows.size(); }));
  const auto shapes = page->of("shape");
  for (std::size_t i = 0; i < rows.size(); ++i) {
    SCOPED_TRACE(rows[i].requestId);
    const auto& shape = shapes[i].as_object();
    const auto& envelope = shape.at("envelope").as_object();
    EXPECT_EQ(shape.at("keys"), JSON(rows[i].keys));
    EXPECT_EQ(shape.at("plain"), JSON(true));
    EXPECT_EQ(envelope.at("requestId"), JSON(rows[i].requestId));
    EXPECT_EQ(envelope.at("type"), JSON(rows[i].type == WebSDKResponseType::success ? "SUCCESS" : "FAILED"));
    const std::int64_t code = rows[i].code.value_or(rows[i].type == WebSDKResponseType::success ? 0 : 1);
    EXPECT_EQ(envelope.at("statusCode").to_number<double>(), static_cast<double>(code));
    if (rows[i].message) {
      EXPECT_EQ(envelope.at("statusMessage"), JSON(*rows[i].message));
    }
    if (rows[i].payload) {
      EXPECT_EQ(envelope.at("payload"), JSON(*rows[i].payload));
    }
    EXPECT_EQ(shape.at("payloadLength"), JSON(rows[i].payloadUnits));
  }
}

// A page that declares nativeResponse with let (no property of window) is
// answered all the same, as its script would find it.
TEST_F(BridgeTest, ANativeResponseDeclaredWithLetIsAnswered) {
  server.page("/let", R"(<!doctype html><script>
let nativeResponse = e => window.webkit.messageHandlers.e2e.postMessage({kind: 'let', data: e.requestId});
</script>)");
  ASSERT_TRUE(loadAndWait(server.url("/let")));
  view->sendSuccess("lexical");
  ASSERT_TRUE(waitFor([&] { return !page->of("let").empty(); }));
  EXPECT_EQ(page->of("let")[0], JSON("lexical"));
}

TEST_F(BridgeTest, EveryPushedEventReachesItsPageFunctionWithItsArguments) {
  using F = WebSDKJSFunctionType;
  struct Row {
    F type;
    std::string_view expected;  // the call the page recorded
  };
  const Row rows[] = {
      {F::keyboardStateChanged(true, 300), R"({"name":"keyboardStateChanged","args":[true,300]})"},
      {F::keyboardStateChanged(false, 291.5), R"({"name":"keyboardStateChanged","args":[false,291.5]})"},
      {F::onScreenVisibility(false), R"({"name":"onScreenVisibility","args":[false]})"},
      {F::openDeeplink("dovara://home"), R"({"name":"openDeeplink","args":["dovara://home"]})"},
      {F::userStateChange(true), R"({"name":"LOGIN_STATE_CHANGED","args":["true"]})"},
      {F::allowNativeBottomBarExit(R"({"exit":true})"),
       R"({"name":"allowNativeBottomBarExit","args":["{\"exit\":true}"]})"},
      {F::searchQueryInput("'pizza', 2)"), R"({"name":"SEARCH_QUERY_INPUT","args":["pizza",2]})"},
      {F::menuListInteracted(true, false), R"({"name":"swipeBottomsheet","args":[true,false]})"},
      {F::handlePXSearchActions("milk", "recent"), R"({"name":"HANDLE_PX_SEARCH_ACTIONS","args":["milk","recent"]})"},
      {F::updateScratchCardsData("[1,2]"), R"({"name":"updateScratchCardsData","args":["[1,2]"]})"},
      {F::globalJSBridgeHandler(R"({"a":1})"), R"({"name":"globalJSBridgeHandler","args":["{\"a\":1}"]})"},
      {F::getPXCartCallback(), R"({"name":"BUILD_PX_CART","args":[]})"},
      {F::handleSwipeGesture(), R"({"name":"handleHardwareBack","args":[]})"},
      {F::onHalfCardBackgroundTap(), R"({"name":"onHalfCardBackgroundTap","args":[]})"},
      {F::updateLocationHeader(), R"({"name":"UPDATE_SELECTED_ADDRESS","args":[]})"},
      {F::pageResume(), R"({"name":"pageResume","args":[]})"},
  };
  for (const auto& row : rows) view->executeJSFunction(row.type);
  ASSERT_TRUE(waitFor([&] { return page->of("call").size() >= std::size(rows); }));
  const auto calls = page->of("call");
  ASSERT_EQ(calls.size(), std::size(rows));
  for (std::size_t i = 0; i < std::size(rows); ++i)
    EXPECT_EQ(calls[i], parseJSON(rows[i].expected)) << rows[i].expected;
}

// Text the app does not control, pushed in the escaped form, reaches the
// page function as the very text it was, whatever it holds: none of it runs.
TEST_F(BridgeTest, EscapedPushesArriveAsPlainText) {
  using F = WebSDKJSFunctionType;
  const std::string injection = "x'); document.title='INJECTED'; ('";
  const std::string awkward = "C:\\dir\\ \"quoted\" it's\nline two </script><script>alert(1)</script> \u2028";
  view->executeJSFunction(F::globalJSBridgeHandler(injection).escaped());
  view->executeJSFunction(F::handlePXSearchActions(awkward, injection).escaped());
  view->executeJSFunction(F::searchQueryInput(injection).escaped());
  ASSERT_TRUE(waitFor([&] { return page->of("call").size() >= 3; }));
  const auto calls = page->of("call");
  EXPECT_EQ(calls[0], (JSON(JSONObject{{"name", "globalJSBridgeHandler"}, {"args", JSONArray{JSON(injection)}}})));
  EXPECT_EQ(
      calls[1],
      (JSON(JSONObject{{"name", "HANDLE_PX_SEARCH_ACTIONS"}, {"args", JSONArray{JSON(awkward), JSON(injection)}}})));
  EXPECT_EQ(calls[2], (JSON(JSONObject{{"name", "SEARCH_QUERY_INPUT"}, {"args", JSONArray{JSON(injection)}}})));
  EXPECT_NE(evaluate("document.title"), JSON("INJECTED"));
}

TEST_F(BridgeTest, CompletionGetsThePageFunctionsResultAndNothingOnAScriptError) {
  std::vector<std::optional<JSON>> results;
  const auto record = [&](std::optional<JSON> value) { results.push_back(std::move(value)); };
  view->executeJSFunctionWithCompletion(WebSDKJSFunctionType::pageResume(), record);
  view->executeJSFunctionWithCompletion(WebSDKJSFunctionType::openDeeplink("a'b"), record);  // a syntax error
  ASSERT_TRUE(waitFor([&] { return results.size() == 2; }));
  EXPECT_EQ(results[0], JSON("pageResume"));
  EXPECT_EQ(results[1], std::nullopt);

  // Without their page functions, the guarded cases still evaluate cleanly.
  view->engine().evaluateJavaScript("delete window.pageResume; delete window.keyboardStateChanged", nullptr);
  std::vector<ScriptResult> guarded;
  for (const auto& type : {WebSDKJSFunctionType::pageResume(), WebSDKJSFunctionType::keyboardStateChanged(true, 1)})
    view->engine().evaluateJavaScript(type.script(), [&](ScriptResult r) { guarded.push_back(std::move(r)); });
  ASSERT_TRUE(waitFor([&] { return guarded.size() == 2; }));
  EXPECT_EQ(guarded[0].error, std::nullopt);
  EXPECT_EQ(guarded[1].error, std::nullopt);
}

}  // namespace
}  // namespace websdk::e2e
