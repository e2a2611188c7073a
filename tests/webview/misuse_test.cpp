// Each misuse of the web view is told once, through the one log path, in
// words that name what happened.
#include "support/Harness.hpp"

#include "websdk/Log.hpp"

#include <gtest/gtest.h>

#include <functional>

namespace websdk {
namespace {

using test::Harness;

struct Captured {
  std::vector<std::pair<std::string, std::string>> lines;  // topic, message
  LogSink previous;
  Captured() {
    previous = setLogSink([this](const LogRecord& r) {
      if (r.level != LogLevel::debug) lines.emplace_back(r.topic, r.message);
    });
  }
  ~Captured() { setLogSink(std::move(previous)); }
};

struct Generic final : DvWebViewGenericCallsBacks {
  void handleGenericRequest(const WebSDKGenericRequestModel&, const WebSDKGenericRequestPayload&) override {}
};

// A view made with `whitelist`, let go at once.
void made(std::vector<std::string> whitelist) { Harness h(std::move(whitelist)); }

TEST(Misuse, EachIsToldOnceWithWhatHappened) {
  struct Row {
    const char* what;
    std::function<void(Harness&)> misuse;
    const char* topic;
    std::vector<std::string> words;  // each must appear in the one message
  };
  const auto ask = [](Harness& h, const char* id) {
    h.post(R"({"type":"GET_LOCAL_CART","requestId":")" + std::string(id) +
           R"(","payload":{"tenant":{"marketplaceId":"meals"}}})");
  };
  const Row rows[] = {
      {"a load that is not a URL",
       [](Harness& h) { h.view->loadWebView("not a url", {}, std::nullopt, 5); },
       "load",
       {"\"not a url\"", "not a URL"}},
      {"header text with a single quote",
       [](Harness& h) { h.view->executeJSScript(WebSDKAppFunctions::nativeHeaders(R"({"name":"O'Brien"})")); },
       "headers",
       {"single quote at byte 10", "window.__native_headers__"}},
      {"header text with a line break",
       [](Harness& h) { h.view->executeJSScript(WebSDKAppFunctions::nativeHeaders("{\n}")); },
       "headers",
       {"line break at byte 1"}},
      {"an answer to an id never asked",
       [](Harness& h) {
         h.view->sendSuccess("nobody");
         h.engine->queue().drain();
       },
       "answer",
       {"\"nobody\"", "no page asked"}},
      {"an answer holding text that is not UTF-8",
       [&ask](Harness& h) {
         ask(h, "bytes");
         h.view->sendFailure("bytes", std::nullopt, "cut \xE2\x82");
         h.engine->queue().drain();
       },
       "answer",
       {"\"bytes\"", "not UTF-8", "dropped"}},
      {"the same id answered twice",
       [&ask](Harness& h) {
         ask(h, "twice");
         h.view->sendSuccess("twice");
         h.view->sendSuccess("twice");
         h.engine->queue().drain();
       },
       "answer",
       {"\"twice\"", "answered already"}},
      {"requests from a host off the whitelist, told once per page",
       [&ask](Harness& h) {
         h.engine->navigate("https://evil.test/pay");
         ask(h, "r9");
         ask(h, "r10");
       },
       "trust",
       {"https://evil.test/pay", "\"GET_LOCAL_CART\"", "\"r9\"", "not whitelisted"}},
      {"a navigation with no delegate",
       [](Harness& h) {
         int answered = 0;
         for (int i = 0; i < 3; ++i)  // told once per view, not per navigation
           h.engine->client()->decidePolicyFor(WebSDKNavigationAction{"https://localhost/next"},
                                               [&](WebSDKNavigationActionPolicy) { ++answered; });
         EXPECT_EQ(answered, 0) << "waiting stays the rule";
       },
       "navigation",
       {"https://localhost/next", "no navigation delegate"}},
      {"a whitelist entry with a path",
       [](Harness&) {
         made({"app://shop/index.html", "localhost"});
       },
       "trust",
       {"\"app://shop/index.html\"", "can never match", "path"}},
      {"a whitelist entry with a port",
       [](Harness&) { made({"shop.example:443"}); },
       "trust",
       {"\"shop.example:443\"", "can never match", "port"}},
      {"an empty whitelist entry",
       [](Harness&) {
         made({"", "localhost"});
       },
       "trust",
       {"\"\"", "can never match", "empty"}},
      {"a deadline of 0 ms",
       [](Harness&) {
         WebSDKConfig config{{"localhost"}};
         config.answerDeadlines = {{"cart", std::chrono::milliseconds(0)}};
         Harness made(config);
       },
       "answer",
       {"\"cart\"", "0 ms", "not kept"}},
      {"a plugin registered as a temporary",
       [](Harness& h) {
         h.view->setCartPlugin(std::make_shared<test::RecordingCart>());
         h.engine->queue().drain();
       },
       "plugin",
       {"cart plugin", "gone already", "holds it weakly"}},
      {"a plugin registered after the page asked",
       [&ask](Harness& h) {
         ask(h, "early");  // 1004: no generic plugin yet
         h.post(R"({"type":"GET_LOCATION","requestId":"g1"})");
         const auto generic = std::make_shared<Generic>();
         h.view->setPlugin<GenericFamily>(generic);
         h.engine->queue().drain();
       },
       "plugin",
       {"generic plugin", "after the page had asked", "\"g1\"", "GET_LOCATION", "1004"}},
      {"a header name with a space",
       [](Harness& h) {
         h.view->loadWebView("https://localhost/", {{"x token", "a"}}, std::nullopt, 5);
       },
       "headers",
       {"\"x token\"", "not sent", "a space"}},
      {"a header value with a line break",
       [](Harness& h) {
         h.view->loadWebView("https://localhost/", {{"token", "a\r\nx: y"}}, std::nullopt, 5);
       },
       "headers",
       {"\"token\"", "not sent", "line break"}},
      {"a load timeout of 0",
       [](Harness& h) { h.view->loadWebView("https://localhost/", {}, std::nullopt, 0); },
       "load",
       {"not a positive number of seconds", "60 s"}},
      {"a negative load timeout",
       [](Harness& h) { h.view->loadWebView("https://localhost/", {}, std::nullopt, -5); },
       "load",
       {"-5", "not a positive number of seconds"}},
      {"answers after resetWebView(), told once",
       [&ask](Harness& h) {
         ask(h, "r1");
         h.view->resetWebView();
         h.view->sendSuccess("r1");
         h.view->sendSuccess("r1");
         h.engine->queue().drain();
         EXPECT_TRUE(h.pageResponses().empty());
       },
       "answer",
       {"\"r1\"", "after resetWebView()", "dropped"}},
      {"a push whose text breaks out of its quotes, told once",
       [](Harness& h) {
         h.view->executeJSFunction(WebSDKJSFunctionType::globalJSBridgeHandler("x'); document.title='INJECTED'; ('"));
         h.view->executeJSFunction(WebSDKJSFunctionType::openDeeplink("it's"));
         h.view->executeJSFunction(WebSDKJSFunctionType::openDeeplink("it's").escaped());
       },
       "push",
       {"globalJSBridgeHandler", "a single quote", ".escaped()"}},
      {"a challenge with no delegate",
       [](Harness& h) {
         h.engine->client()->didReceive(WebSDKAuthenticationChallenge{"localhost", 443, "", "", 0},
                                        [](WebSDKAuthChallengeDisposition, std::optional<WebSDKURLCredential>) {});
       },
       "navigation",
       {"challenge from localhost", "no navigation delegate"}},
  };
  for (const auto& row : rows) {
    Harness h;
    const auto cart = std::make_shared<test::RecordingCart>();  // held weakly by the view
    h.view->setCartPlugin(cart);
    Captured log;
    row.misuse(h);
    ASSERT_EQ(log.lines.size(), 1u) << row.what << (log.lines.empty() ? "" : ": " + log.lines[0].second)
                                    << (log.lines.size() < 2 ? "" : " / " + log.lines[1].second);
    EXPECT_EQ(log.lines[0].first, row.topic) << row.what;
    for (const auto& word : row.words)
      EXPECT_NE(log.lines[0].second.find(word), std::string::npos)
          << row.what << ": \"" << word << "\" not in: " << log.lines[0].second;
  }
}

// Every line a view says names the view: the host's name for it, or "view N".
TEST(Misuse, EachLineNamesItsView) {
  std::vector<std::string> views;
  const LogSink previous = setLogSink([&](const LogRecord& r) { views.emplace_back(r.view); });
  WebSDKConfig config{{"localhost"}};
  config.name = "checkout";
  Harness named(config);
  named.view->loadWebView("not a url", {}, std::nullopt, 5);
  Harness unnamed;
  unnamed.view->loadWebView("not a url", {}, std::nullopt, 5);
  setLogSink(previous);
  ASSERT_EQ(views.size(), 2u);
  EXPECT_EQ(views[0], "checkout");
  EXPECT_EQ(views[1], unnamed.view->name());
  EXPECT_TRUE(views[1].starts_with("view ")) << views[1];
  EXPECT_EQ(logLine({LogLevel::error, "engine", "m", "checkout"}), "[checkout] m");
}

// A delegate and a listener written into create() as temporaries live as long
// as the view: nothing else could keep them.
TEST(Misuse, ADelegateAndListenerHandedOverAsTemporariesAreKept) {
  struct Listener final : WebSDKJSCommunicationProtocol {
    std::vector<std::string> requests;
    void didSendResponse(const WebSDKResponseModel&) override {}
    void didReceiveRequest(std::string_view r) override { requests.emplace_back(r); }
  };
  auto owned = std::make_unique<testing::TestingEngine>();
  auto& engine = *owned;
  engine.setURL("https://localhost/");
  auto view =
      WebSDKWebView::create(std::move(owned), {"localhost"}, nullptr, nullptr,
                            std::make_shared<WebSDKTrustedHostsNavigationDelegate>(), std::make_shared<Listener>());
  ASSERT_NE(view->webSDKNavigationDelegate.lock(), nullptr);
  ASSERT_NE(view->webJSCommunicatorDelegate.lock(), nullptr);
  std::optional<WebSDKNavigationActionPolicy> policy;
  engine.client()->decidePolicyFor(WebSDKNavigationAction{"https://localhost/next"},
                                   [&](WebSDKNavigationActionPolicy p) { policy = p; });
  EXPECT_EQ(policy, WebSDKNavigationActionPolicy::allow);
  // One the host holds stays the host's: released, it is gone.
  auto held = std::make_shared<WebSDKTrustedHostsNavigationDelegate>();
  auto second =
      WebSDKWebView::create(std::make_unique<testing::TestingEngine>(), {"localhost"}, nullptr, nullptr, held);
  held.reset();
  EXPECT_EQ(second->webSDKNavigationDelegate.lock(), nullptr);
}

TEST(Misuse, RightUseIsSilent) {
  Harness h;
  auto cart = std::make_shared<test::RecordingCart>();
  h.view->setCartPlugin(cart);
  Captured log;
  h.view->loadWebView("https://localhost/checkout", {{"token", "a"}}, std::nullopt, 5);
  h.view->executeJSScript(WebSDKAppFunctions::nativeHeaders(WebSDKHeaders{{"name", "O'Brien \"\\ the 2nd\""}}));
  h.post(R"({"type":"GET_LOCAL_CART","requestId":"1","payload":{"tenant":{"marketplaceId":"meals"}}})");
  ASSERT_EQ(cart->received.size(), 1u);
  h.view->sendSuccess("1");
  h.engine->queue().drain();
  EXPECT_TRUE(log.lines.empty()) << log.lines[0].second;
}

TEST(Misuse, APagesWordsCannotForgeALogLine) {
  Harness h;
  h.engine->navigate("https://evil.test/pay");
  Captured log;
  // A line break and a long action cut inside a two-byte character.
  h.post(R"({"type":"X\nwebsdk-WARNING: forged )" + std::string(70, 'a') + "\u00e9\u00e9" + R"(","requestId":"1"})");
  ASSERT_EQ(log.lines.size(), 1u);
  const std::string& line = log.lines[0].second;
  EXPECT_EQ(line.find('\n'), std::string::npos) << line;
  EXPECT_TRUE(isValidUTF8(line)) << line;
  EXPECT_NE(line.find("X?websdk-WARNING"), std::string::npos) << line;
}

TEST(Misuse, AnAnswerAfterTearDownIsTold) {
  Harness h;
  Captured log;
  h.view->sendSuccess("late");  // queued, then the view goes
  auto queue = h.engine->sharedQueue();
  h.view.reset();
  queue->drain();
  ASSERT_EQ(log.lines.size(), 1u);
  EXPECT_NE(log.lines[0].second.find("\"late\" came after its web view was torn down"), std::string::npos);
}

TEST(HeaderText, FieldsReachThePageExactlyWhateverTheyHold) {
  // The header script as a page would run it: the single-quoted literal's
  // escapes undone, which must give back the fields' JSON text.
  const auto literalValue = [](const std::string& script) {
    const auto start = script.find("return '") + 8;
    std::string value;
    for (std::size_t i = start; script[i] != '\''; ++i) value += script[i] == '\\' ? script[++i] : script[i];
    return value;
  };
  const WebSDKHeaders rows[] = {
      {{"token", "plain"}},
      {{"name", "O'Brien"}, {"quote", "say \"hi\""}},
      {{"path", "C:\\dir\\"}, {"lines", "a\nb\r"}},
      {{"ünï", "\u2028 and \u2029"}},
  };
  for (const auto& fields : rows) {
    const auto functions = WebSDKAppFunctions::nativeHeaders(fields);
    JSONObject expected;
    for (const auto& [name, value] : fields) expected.emplace(name, value);
    EXPECT_EQ(parseJSON(literalValue(functions.script())), JSON(expected)) << functions.headers();
  }
}

}  // namespace
}  // namespace websdk

namespace websdk {
namespace {

TEST(TrustedHostsDelegate, KeepsTheMainFrameOnTrustedHosts) {
  struct Row {
    WebSDKNavigationAction action;
    WebSDKNavigationActionPolicy policy;
  };
  const Row rows[] = {
      {{"https://pay.localhost/checkout", "GET", true, false}, WebSDKNavigationActionPolicy::allow},
      {{"https://evil.test/", "GET", true, true}, WebSDKNavigationActionPolicy::cancel},
      {{"https://evil.test/3ds", "POST", false, false}, WebSDKNavigationActionPolicy::allow},
      {{"about:blank", "GET", true, false}, WebSDKNavigationActionPolicy::allow},
      {{"file:///etc/passwd", "GET", true, false}, WebSDKNavigationActionPolicy::cancel},
  };
  struct Counting final : WebSDKTrustedHostsNavigationDelegate {
    std::vector<std::string> refusals;
    void refused(WebSDKWebView&, const WebSDKNavigationAction& action) override { refusals.push_back(action.url); }
  };
  test::Harness h;
  Counting delegate;
  for (const auto& row : rows) {
    std::optional<WebSDKNavigationActionPolicy> answer;
    delegate.decidePolicyFor(*h.view, row.action, [&](WebSDKNavigationActionPolicy p) { answer = p; });
    EXPECT_EQ(answer, row.policy) << row.action.url;
  }
  EXPECT_EQ(delegate.refusals, (std::vector<std::string>{"https://evil.test/", "file:///etc/passwd"}));
  EXPECT_EQ(WebSDKTrustedHostsNavigationDelegate::shared(), WebSDKTrustedHostsNavigationDelegate::shared());
}

}  // namespace
}  // namespace websdk
