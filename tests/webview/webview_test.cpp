#include "support/Harness.hpp"

#include "websdk/webview/WebSDKRequestHeaders.hpp"

#include <gtest/gtest.h>

#include <thread>

namespace websdk {
namespace {

using test::Harness;

TEST(Whitelist, HostContainmentIsLooseOnTheCanonicalHost) {
  const WebSDKConfig config{{"example.com"}, false};
  const std::pair<const char*, bool> rows[] = {
      {"https://example.com/", true},
      {"https://pay.example.com:8443/x", true},
      {"https://example.com.other.test/", true},  // loose on purpose
      {"http://myexample.company/", true},
      {"https://EXAMPLE.com./", true},  // hosts compare in their canonical (lowercase) form
      {"https://exa%6Dple.com/", true},
      {"https://0x7f.1/", false},
      {"https://other.test/?u=example.com", false},
      {"https://user@evil.test/example.com", false},
      {"https://example.com@evil.test/", false},
      {"about:blank", false},
      {"file:///example.com/x", false},
      {"not a url", false},
  };
  for (const auto& [url, expected] : rows) EXPECT_EQ(config.isWhitelistedURL(url), expected) << url;

  const WebSDKConfig all{{}, true};
  EXPECT_TRUE(all.isWhitelistedURL("https://anything.test/"));
  EXPECT_FALSE(all.isWhitelistedURL("about:blank")) << "no host is never trusted";
  EXPECT_FALSE((WebSDKConfig{{""}, false}.isWhitelistedURL("https://a.test/"))) << "an empty entry trusts nothing";
  // Entries take the canonical form too, once, when the view is made.
  const auto numeric = WebSDKConfig{{"127.0.0.1", "Shop.Example"}, false}.normalized();
  EXPECT_EQ(numeric.whitelistedHosts, (std::vector<std::string>{"127.0.0.1", "shop.example"}));
  EXPECT_TRUE(numeric.isWhitelistedURL("http://0x7f.1/"));
  EXPECT_FALSE(numeric.isWhitelistedURL("http://0127.0.0.1/")) << "0127 is octal: 87.0.0.1";
}

TEST(Loading, TheAppsHeadersGoOnlyToTrustedHosts) {
  // `redirected`: what a redirect of the same load to an untrusted host may
  // carry. The external headers are the page's own and follow it anywhere.
  struct Row {
    const char* url;
    std::optional<WebSDKHeaders> external;
    HeaderFields sent;
    HeaderFields redirected;
  };
  const WebSDKHeaders app{{"token", "a"}, {"platform", "ios"}};
  const Row rows[] = {
      {"https://example.com.other.test/", std::nullopt, {{"platform", "ios"}, {"token", "a"}}, {}},
      {"https://example.com/",
       WebSDKHeaders{{"token", "b"}, {"x", "1"}},
       {{"platform", "ios"}, {"token", "b"}, {"x", "1"}},
       {{"token", "b"}, {"x", "1"}}},
      {"https://example.com/", WebSDKHeaders{{"Token", "b"}}, {{"Token", "b"}, {"platform", "ios"}}, {{"Token", "b"}}},
      {"https://evil.test/", WebSDKHeaders{{"token", "b"}}, {{"token", "b"}}, {{"token", "b"}}},
      {"https://EXAMPLE.com/", std::nullopt, {{"platform", "ios"}, {"token", "a"}}, {}},
      {"https://0127.0.0.1/", std::nullopt, {}, {}},
  };
  for (const auto& row : rows) {
    Harness h({"example.com"});
    h.view->loadWebView(row.url, app, row.external, 12.5);
    ASSERT_EQ(h.engine->loads.size(), 1u) << row.url;
    const URLRequest& r = h.engine->loads[0];
    EXPECT_EQ(r.url, *canonicalURL(row.url)) << "the load is made in the form it was judged in";
    EXPECT_EQ(r.headers, row.sent) << row.url;
    EXPECT_EQ(r.headersFor("https://elsewhere.test/x"), row.redirected) << row.url;
    EXPECT_EQ(r.headersFor("https://shop.example.com/"), row.sent) << "a trusted host keeps them all: " << row.url;
    EXPECT_EQ(r.timeoutInterval, 12.5);
    EXPECT_EQ(r.cachePolicy, URLRequestCachePolicy::useProtocolCachePolicy);
  }
  Harness h({"example.com"});
  for (const char* bad : {"not a url", "", "https://exa mple.com/", "https://[::1/", "://x", "http://999.1.1.1/"})
    h.view->loadWebView(bad, app, std::nullopt, 10);
  EXPECT_TRUE(h.engine->loads.empty());
}

TEST(HeaderScript, EachCallAddsOneDocumentStartScript) {
  Harness h;
  h.view->executeJSScript(WebSDKAppFunctions::nativeHeaders(R"({"token":"a"})"));
  h.view->executeJSScript(WebSDKAppFunctions::nativeHeaders("second"));
  ASSERT_EQ(h.engine->userScripts.size(), 2u);
  EXPECT_EQ(h.engine->userScripts[0].source,
            "window.__native_headers__ = {\n    getDovaraHeaders: function() {\n        return '{\"token\":\"a\"}';\n"
            "    }\n};");
  EXPECT_NE(h.engine->userScripts[1].source.find("return 'second';"), std::string::npos);
}

TEST(Construction, RegistersTheHandlerAndLeavesTheConfigurationAsTheHostMadeIt) {
  Harness h;
  EXPECT_TRUE(h.engine->hasHandler("nativeRequest"));
  EXPECT_TRUE(h.engine->preferencesSet.empty());
  EXPECT_TRUE(h.view->javaScriptEnabled());
  EXPECT_TRUE(h.view->suppressesIncrementalRendering());
  EXPECT_FALSE(h.view->pinchGestureEnable());

  h.view->removeWebSDKScriptHandler();
  EXPECT_FALSE(h.engine->hasHandler("nativeRequest"));
  h.view->addWebSDKScriptHandler();
  h.view->addWebSDKScriptHandler();  // already registered: the engine refuses the second
  EXPECT_TRUE(h.engine->hasHandler("nativeRequest"));
  EXPECT_EQ(h.engine->refusedHandlerRegistrations, 1u);
}

TEST(Settings, SettersReachTheEngineAsStated) {
  Harness h;
  h.view->setJavaScriptEnabled(false);
  h.view->setSuppressesIncrementalRendering(false);
  EXPECT_EQ(h.engine->preferencesSet, (std::vector<WebPreferences>{{false}}));
  EXPECT_FALSE(h.view->suppressesIncrementalRendering()) << "stored in the view: no engine has the switch";

  h.view->setPinchGestureEnable(true);
  EXPECT_FALSE(h.engine->pinchRecognizerEnabled) << "stored only; applied when a zoom begins";
  h.engine->pinch();
  EXPECT_EQ(h.engine->pinchRecognizerEnabled, true);
  h.view->setPinchGestureEnable(false);
  h.engine->pinch();
  EXPECT_EQ(h.engine->pinchRecognizerEnabled, false);
}

struct SendRow {
  const char* name;
  std::function<void(WebSDKWebView&)> send;
  JSON expected;
};

struct Answer {
  std::string planId;
  std::optional<int> count;
  WEBSDK_RECORD(Answer, planId, count)
};

TEST(Sending, EveryOperationBuildsItsEnvelope) {
  const SendRow rows[] = {
      {"success defaults", [](WebSDKWebView& v) { v.sendSuccess("r1"); },
       parseJSON(R"({"type":"SUCCESS","statusCode":0,"requestId":"r1"})")},
      {"failure defaults", [](WebSDKWebView& v) { v.sendFailure("r2", std::nullopt, "not a valid request"); },
       parseJSON(R"({"type":"FAILED","statusCode":1,"statusMessage":"not a valid request","requestId":"r2"})")},
      {"failure with a success code", [](WebSDKWebView& v) { v.sendFailure("r3", 0); },
       parseJSON(R"({"type":"FAILED","statusCode":0,"requestId":"r3"})")},
      {"code outside the enumeration", [](WebSDKWebView& v) { v.sendSuccess("r4", 4242); },
       parseJSON(R"({"type":"SUCCESS","statusCode":4242,"requestId":"r4"})")},
      {"string payload verbatim",
       [](WebSDKWebView& v) { v.sendWebSDKResponse(std::string(), WebSDKResponseType::success, "r5"); },
       parseJSON(R"({"type":"SUCCESS","statusCode":0,"requestId":"r5","payload":""})")},
      {"dictionary payload",
       [](WebSDKWebView& v) {
         v.sendWebSDKResponse(JSONObject{{"a", "x/y"}}, WebSDKResponseType::failure, "r6", 1005);
       },
       parseJSON(R"({"type":"FAILED","statusCode":1005,"requestId":"r6","payload":"{\n  \"a\" : \"x/y\"\n}"})")},
      {"response model",
       [](WebSDKWebView& v) {
         v.sendWebSDKResponse(Answer{"p", std::nullopt}, WebSDKResponseType::success, "r7");
       },
       parseJSON(R"({"type":"SUCCESS","statusCode":0,"requestId":"r7","payload":"{\n  \"planId\" : \"p\"\n}"})")},
      {"string dictionary",
       [](WebSDKWebView& v) {
         v.sendWebSDKResponse(std::map<std::string, std::string>{{"k", "v"}}, WebSDKResponseType::success, "r8");
       },
       parseJSON(R"({"type":"SUCCESS","statusCode":0,"requestId":"r8","payload":"{\n  \"k\" : \"v\"\n}"})")},
  };
  for (const auto& row : rows) {
    Harness h;
    row.send(*h.view);
    ASSERT_EQ(h.listener->responses.size(), 1u) << row.name;
    EXPECT_TRUE(h.pageResponses().empty()) << row.name;
    h.engine->queue().drain();
    ASSERT_EQ(h.pageResponses().size(), 1u) << row.name;
    EXPECT_EQ(h.pageResponses()[0], row.expected) << row.name;
    EXPECT_EQ(describe(h.listener->responses[0]), row.expected) << row.name;
  }
}

TEST(Sending, ReadyEncodedBytesAreEvaluatedAtOnceWithoutANotice) {
  Harness h;
  h.view->sendWebSDKResponse(WebSDKResponseType::failure, "e1", std::optional<std::string>(R"({"ok":true})"));
  h.view->sendWebSDKResponse(WebSDKResponseType::success, "e2", std::nullopt);
  h.view->sendWebSDKResponse(WebSDKResponseType::success, "e3", std::optional<std::string>("bad \xFF bytes"));
  EXPECT_EQ(h.engine->queue().pending(), 0u);
  EXPECT_TRUE(h.listener->responses.empty());
  const auto responses = h.pageResponses();
  ASSERT_EQ(responses.size(), 3u);
  EXPECT_EQ(responses[0], parseJSON(R"({"type":"FAILED","statusCode":1,"requestId":"e1","payload":"{\"ok\":true}"})"));
  EXPECT_EQ(responses[1], parseJSON(R"({"type":"SUCCESS","statusCode":0,"requestId":"e2"})"));
  EXPECT_EQ(responses[2], parseJSON(R"({"type":"SUCCESS","statusCode":0,"requestId":"e3"})"));
  EXPECT_TRUE(h.engine->evaluations()[0].hasCompletion);
}

// Answers sent from many threads while the main queue runs: each is evaluated
// once, in each thread's order, and each notice is made once.
TEST(Threads, AnswersFromManyThreadsArriveOnceAndInOrder) {
  constexpr int kThreads = 8, kAnswers = 20000;
  Harness h;
  std::atomic<int> running{kThreads};
  std::vector<std::thread> senders;
  for (int t = 0; t < kThreads; ++t)
    senders.emplace_back([&, t] {
      for (int i = 0; i < kAnswers; ++i) h.view->sendSuccess(std::to_string(t) + ":" + std::to_string(i));
      --running;
    });
  while (running > 0) h.engine->queue().drain();
  for (auto& s : senders) s.join();
  h.engine->queue().drain();

  std::vector<int> next(kThreads, 0);
  std::size_t count = 0;
  for (const auto& e : h.engine->evaluations()) {
    const std::string id(parseJSON(e.script.substr(15, e.script.size() - 16)).at("requestId").as_string());
    const auto colon = id.find(':');
    const int t = std::stoi(id.substr(0, colon));
    ASSERT_EQ(std::stoi(id.substr(colon + 1)), next[t]++);
    ++count;
  }
  EXPECT_EQ(count, static_cast<std::size_t>(kThreads * kAnswers));
  EXPECT_EQ(h.listener->responses.size(), static_cast<std::size_t>(kThreads * kAnswers));
}

TEST(Lifetimes, AnswersQueuedForADestroyedViewDoNothing) {
  auto queue = std::make_shared<testing::TestingMainQueue>();
  auto engine = std::make_unique<testing::TestingEngine>(queue);
  auto view = WebSDKWebView::create(std::move(engine), {"localhost"});
  for (int i = 0; i < 5000; ++i) view->sendSuccess(std::to_string(i));
  EXPECT_EQ(queue->pending(), 5000u) << "each answer keeps its own place in the queue";
  view.reset();
  EXPECT_EQ(queue->drain(), 5000u);
}

struct Navigation final : WebSDKNavigationDelegate {
  std::vector<std::string> events;
  void didStartProvisionalNavigation(WebSDKWebView&, const WebSDKNavigation*) override { events.push_back("start"); }
  void didFinish(WebSDKWebView&, const WebSDKNavigation*) override { events.push_back("finish"); }
  void didFailProvisionalNavigation(WebSDKWebView&, const WebSDKNavigation*, const WebSDKError& e) override {
    events.push_back("failProvisional:" + e.description);
  }
  void didReceive(WebSDKWebView&, const WebSDKAuthenticationChallenge&, WebSDKAuthChallengeCompletion c) override {
    events.push_back("challenge");
    c(WebSDKAuthChallengeDisposition::cancelAuthenticationChallenge, std::nullopt);
  }
};

TEST(Navigation, EventsAreForwardedAndDefaultsAllowButNoDelegateAnswersNothing) {
  auto owned = std::make_unique<testing::TestingEngine>();
  auto* engine = owned.get();
  auto delegate = std::make_shared<Navigation>();
  auto view = WebSDKWebView::create(std::move(owned), {"localhost"}, nullptr, nullptr, delegate);
  WebEngineClient& client = *engine->client();

  std::vector<std::string> answers;
  client.didStartProvisionalNavigation(nullptr);
  client.decidePolicyFor(
      WebSDKNavigationAction{"https://a.test/", "GET", true, false}, [&](WebSDKNavigationActionPolicy p) {
        answers.push_back(p == WebSDKNavigationActionPolicy::allow ? "action:allow" : "action:cancel");
      });
  client.decidePolicyFor(
      WebSDKNavigationResponse{"https://a.test/", 200, "text/html", true}, [&](WebSDKNavigationResponsePolicy p) {
        answers.push_back(p == WebSDKNavigationResponsePolicy::allow ? "response:allow" : "response:cancel");
      });
  client.didFail(nullptr, WebSDKError{"d", 1, "x"});  // the default does nothing
  client.didFailProvisionalNavigation(nullptr, WebSDKError{"d", 2, "timeout", true});
  client.didReceive({}, [&](WebSDKAuthChallengeDisposition, std::optional<WebSDKURLCredential>) {
    answers.push_back("challenge:answered");
  });
  client.didFinish(nullptr);
  EXPECT_EQ(delegate->events, (std::vector<std::string>{"start", "failProvisional:timeout", "challenge", "finish"}));
  EXPECT_EQ(answers, (std::vector<std::string>{"action:allow", "response:allow", "challenge:answered"}));

  delegate.reset();
  answers.clear();
  client.decidePolicyFor(WebSDKNavigationAction{"https://a.test/", "GET", true, false},
                         [&](auto) { answers.push_back("answered"); });
  client.didReceive({}, [&](auto, auto) { answers.push_back("answered"); });
  EXPECT_TRUE(answers.empty()) << "with no delegate the questions stay unanswered";
}

TEST(RequestHeaders, WireNamesAreKeptLetterForLetter) {
  EXPECT_EQ(WebSDKRequestHeaders::versionCode, "version-code");
  EXPECT_EQ(WebSDKRequestHeaders::osversion, "osVersion");
  EXPECT_EQ(WebSDKRequestHeaders::marketPlaceId, "marketplaceId");
  EXPECT_EQ(WebSDKRequestHeaders::cartPageLoadingFromBottomTabBar, "isFromBottomBar");
  EXPECT_EQ(WebSDKRequestHeaders::isWebSDKEnabled, "x-websdk");
  EXPECT_EQ(WebSDKRequestHeaders::showPxBottomBar, "isPxBottomBarXpEnabled");
}

}  // namespace
}  // namespace websdk

namespace websdk {
namespace {

using test::Harness;
using test::RecordingCart;

// An answer belongs to the document that asked: wherever the view has gone
// since, the next document never sees it, and the listener hears why.
TEST(Documents, AnAnswerReachesOnlyTheDocumentThatAsked) {
  const std::pair<const char*, bool> nextPages[] = {
      {"https://localhost/checkout", true},  // the same URL, a new document
      {"https://pay.localhost/", true},
      {"https://evil.test/", false},
  };
  for (const auto& [next, trusted] : nextPages) {
    Harness h;
    auto cart = std::make_shared<RecordingCart>();
    h.view->setCartPlugin(cart);
    h.post(R"({"type":"CLEAR_LOCAL_CART","requestId":"late"})");
    ASSERT_EQ(cart->received.size(), 1u) << next;
    h.engine->navigate(next);
    h.view->sendSuccess("late");
    h.view->executeJSFunction(WebSDKJSFunctionType::userStateChange(true));
    h.engine->queue().drain();
    EXPECT_TRUE(h.pageResponses().empty()) << next;
    EXPECT_TRUE(std::ranges::count(h.listener->dropped, std::pair(std::string("late"), WebSDKDropReason::documentGone)))
        << next;
    // A push goes to the page shown, if it is trusted.
    const auto evaluations = h.engine->evaluations();
    EXPECT_EQ(evaluations.size(), trusted ? 1u : 0u) << next;
    EXPECT_EQ(h.listener->dropped.size(), trusted ? 1u : 2u) << next;
    // Answered once, the id is remembered with the document that asked: a
    // second answer is as late as the first, and goes nowhere either.
    h.view->sendSuccess("late");
    h.engine->queue().drain();
    EXPECT_TRUE(h.pageResponses().empty()) << next;
    EXPECT_EQ(h.view->answerCounts(), (WebSDKAnswerCounts{.expected = 1, .late = 1})) << next;
  }
}

// Every answer is accounted for: one a page waits for leaves the pending list;
// one nobody waits for (never asked, or a second answer) is counted, then goes
// to the trusted page shown or, with the switch, nowhere.
TEST(Documents, EachAnswerMeetsAWaitingRequestOrIsCountedAsUnasked) {
  for (const bool drops : {false, true}) {
    WebSDKConfig config{{"localhost"}};
    config.dropsUnaskedAnswers = drops;
    Harness h(config);
    const auto cart = std::make_shared<RecordingCart>();
    h.view->setCartPlugin(cart);
    h.post(R"({"type":"CLEAR_LOCAL_CART","requestId":"r1"})");
    h.post(R"({"type":"GET_LOCAL_CART","requestId":"r2","payload":{"tenant":{"marketplaceId":"m"}}})");
    h.post(R"({"type":"NO_SUCH_ACTION","requestId":"r3"})");  // answered by the bridge, never pending

    const auto waiting = [&] {
      std::vector<std::string> out;
      for (const auto& p : h.view->pendingRequests()) out.push_back(p.requestId + " " + std::string(p.action));
      return out;
    };
    EXPECT_EQ(waiting(), (std::vector<std::string>{"r1 CLEAR_LOCAL_CART", "r2 GET_LOCAL_CART"})) << drops;
    EXPECT_EQ(h.view->pendingRequests().front().family, "cart");
    const auto before = h.pageResponses().size();

    h.view->sendSuccess("r1");
    h.view->sendSuccess("r1");      // a second answer
    h.view->sendFailure("nobody");  // an id never asked
    h.engine->queue().drain();
    EXPECT_EQ(waiting(), (std::vector<std::string>{"r2 GET_LOCAL_CART"})) << drops;
    EXPECT_EQ(h.view->answerCounts(), (WebSDKAnswerCounts{1, 2})) << drops;
    EXPECT_EQ(h.pageResponses().size(), before + (drops ? 1 : 3)) << drops;
    EXPECT_EQ(std::ranges::count(h.listener->dropped, WebSDKDropReason::notAsked,
                                 &std::pair<std::string, WebSDKDropReason>::second),
              drops ? 2 : 0);

    // What the page waited for belongs to its document: a new one waits for nothing.
    h.engine->navigate("https://localhost/checkout");
    EXPECT_TRUE(h.view->pendingRequests().empty()) << drops;
  }
}

// A family's deadline: a request unanswered by then is reported once; with the
// switch it is also failed, so the page hears back and the plugin's late answer
// counts as unasked. One answered in time, or another family's, is untouched.
TEST(Documents, ARequestPastItsFamilysDeadlineIsReportedAndByTheSwitchFailed) {
  using namespace std::chrono_literals;
  for (const bool fails : {false, true}) {
    WebSDKConfig config{{"localhost"}};
    config.answerDeadlines = {{"cart", 100ms}, {"*", 1000ms}};
    config.failsOverdueRequests = fails;
    Harness h(config);
    const auto& listener = h.listener;
    auto* engine = h.engine;
    const auto& view = h.view;
    const auto cart = std::make_shared<RecordingCart>();
    view->setCartPlugin(cart);
    const auto ask = [&](const char* id) {
      engine->postRequest(R"({"type":"CLEAR_LOCAL_CART","requestId":")" + std::string(id) + "\"}");
      engine->queue().drain();
    };
    ask("slow");
    ask("quick");
    view->sendSuccess("quick");
    engine->queue().advance(99ms);
    EXPECT_TRUE(listener->missed.empty()) << fails;
    engine->queue().advance(1ms);
    EXPECT_EQ(listener->missed, (std::vector<std::string>{"slow cart CLEAR_LOCAL_CART"})) << fails;
    EXPECT_EQ(view->answerCounts().overdue, 1u) << fails;
    const auto responses = engine->nativeResponses();
    ASSERT_EQ(responses.size(), fails ? 2u : 1u) << fails;
    if (fails) {
      EXPECT_EQ(responses[1].at("requestId"), "slow");
      EXPECT_EQ(responses[1].at("type"), "FAILED");
      EXPECT_EQ(responses[1].at("statusMessage"), "no answer within 100 ms");
    }
    EXPECT_EQ(view->pendingRequests().size(), fails ? 0u : 1u) << fails;
    view->sendSuccess("slow");  // the plugin, late
    engine->queue().advance(1000ms);
    EXPECT_EQ(view->answerCounts(), (WebSDKAnswerCounts{fails ? 1u : 2u, fails ? 1u : 0u, 1})) << fails;
    EXPECT_EQ(listener->missed.size(), 1u) << fails;
  }
}

TEST(Documents, PushesAndTheirCompletionsNeedATrustedCommittedPage) {
  const std::optional<std::string> pages[] = {std::nullopt, "https://evil.test/", "about:blank"};
  for (const auto& url : pages) {
    Harness h({"localhost"}, false, url);
    int calls = 0;
    std::optional<JSON> got = JSON("unset");
    h.view->executeJSFunctionWithCompletion(WebSDKJSFunctionType::pageResume(), [&](std::optional<JSON> value) {
      ++calls;
      got = std::move(value);
    });
    EXPECT_EQ(calls, 1) << url.value_or("no page");
    EXPECT_EQ(got, std::nullopt);
    EXPECT_TRUE(h.engine->evaluations().empty());
    ASSERT_EQ(h.listener->dropped.size(), 1u);
    EXPECT_EQ(h.listener->dropped[0].second, WebSDKDropReason::pageNotWhitelisted);
  }
}

// Each answer is its own main-queue task: a host's task posted between two
// answers runs between them.
TEST(Documents, AnswersKeepTheirPlaceAmongTheHostsMainQueueTasks) {
  Harness h;
  h.view->sendSuccess("A");
  h.engine->queue().post([&] { h.engine->evaluateJavaScript("X()", nullptr); });
  h.view->sendSuccess("B");
  h.engine->queue().drain();
  std::vector<std::string> order;
  for (const auto& e : h.engine->evaluations())
    order.push_back(
        e.script == "X()"
            ? "X"
            : std::string(parseJSON(e.script.substr(15, e.script.size() - 16)).at("requestId").as_string()));
  EXPECT_EQ(order, (std::vector<std::string>{"A", "X", "B"}));
}

// Only create() makes a view, and its trust settings are fixed once made.
template <class Engine>
concept BuildableWithBraces = requires(std::unique_ptr<Engine> e, const WebSDKConfig& c) {
  WebSDKWebView({}, std::move(e), c);
};
static_assert(!BuildableWithBraces<testing::TestingEngine>);
static_assert(!std::is_default_constructible_v<WebSDKWebView>);
template <class View>
concept SettingsChangeable = requires(View& v) {
  v.webSDKConfig.shouldWhitelistAllUrls = true;
};
static_assert(!SettingsChangeable<WebSDKWebView>);
struct MutableSettings {
  WebSDKConfig webSDKConfig;
};
static_assert(SettingsChangeable<MutableSettings>, "the check itself can tell");

}  // namespace
}  // namespace websdk
