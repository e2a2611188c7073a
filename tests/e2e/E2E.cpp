#include "E2E.hpp"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <thread>

namespace websdk::e2e {

std::string testPage(std::string_view body) {
  return R"(<!doctype html>
<html><head><meta charset="utf-8"><script>
const headersAtStart = window.__native_headers__ ? window.__native_headers__.getDovaraHeaders() : null;
function report(kind, data) { window.webkit.messageHandlers.e2e.postMessage({kind: kind, data: data}); }
function nativeResponse(envelope) { report('nativeResponse', envelope); }
function recorder(name) { return function() { report('call', {name: name, args: Array.from(arguments)}); return name; }; }
window.keyboardStateChanged = recorder('keyboardStateChanged');
window.onScreenVisibility = recorder('onScreenVisibility');
window.openDeeplink = recorder('openDeeplink');
window.LOGIN_STATE_CHANGED = recorder('LOGIN_STATE_CHANGED');
window.allowNativeBottomBarExit = recorder('allowNativeBottomBarExit');
window.SEARCH_QUERY_INPUT = recorder('SEARCH_QUERY_INPUT');
window.swipeBottomsheet = recorder('swipeBottomsheet');
window.HANDLE_PX_SEARCH_ACTIONS = recorder('HANDLE_PX_SEARCH_ACTIONS');
window.updateScratchCardsData = recorder('updateScratchCardsData');
window.globalJSBridgeHandler = recorder('globalJSBridgeHandler');
window.BUILD_PX_CART = recorder('BUILD_PX_CART');
window.handleHardwareBack = recorder('handleHardwareBack');
window.onHalfCardBackgroundTap = recorder('onHalfCardBackgroundTap');
window.UPDATE_SELECTED_ADDRESS = recorder('UPDATE_SELECTED_ADDRESS');
window.pageResume = recorder('pageResume');
window.nativeEvent = recorder('nativeEvent');
report('ready', {headersAtStart: headersAtStart});
</script></head><body>)" +
         std::string(body) + "</body></html>";
}

void E2ETest::SetUp() {
  ASSERT_TRUE(server.listening()) << server.error();
  makeView({"127.0.0.1"}, delegate);
}

void E2ETest::TearDown() {
  view.reset();
  window.destroy();
}

void E2ETest::makeView(std::vector<std::string> whitelist, std::shared_ptr<RecordingDelegate> navigationDelegate) {
  WebSDKConfig config;
  config.whitelistedHosts = std::move(whitelist);
  makeView(config, std::move(navigationDelegate));
}

void E2ETest::makeView(const WebSDKConfig& config, std::shared_ptr<RecordingDelegate> navigationDelegate) {
  view.reset();
  view = WebSDKWebView::create(engine::make(), config, nullptr, nullptr, navigationDelegate, listener);
  view->engine().addScriptMessageHandler(page, "e2e");
  window.show(view->engine());
}

bool E2ETest::loadAndWait(const std::string& url, const WebSDKHeaders& requestHeaders,
                          const std::optional<WebSDKHeaders>& externalHeaders) {
  const std::size_t finished = delegate->finished.size();
  const std::size_t failed = delegate->provisionalFailures.size() + delegate->committedFailures.size();
  view->loadWebView(url, requestHeaders, externalHeaders, 30);
  waitFor([&] {
    return delegate->finished.size() > finished ||
           delegate->provisionalFailures.size() + delegate->committedFailures.size() > failed;
  });
  return delegate->finished.size() > finished;
}

void E2ETest::expectLoadWithoutTheAppsHeaders(const std::string& path) {
  server.page(path, testPage());
  ASSERT_TRUE(loadAndWait(server.url(path), {{"token", "a"}}, WebSDKHeaders{{"x-extra", "1"}}));
  const auto seen = server.requestsTo(path);
  ASSERT_EQ(seen.size(), 1u);
  EXPECT_EQ(seen[0].header("token"), std::nullopt);
  EXPECT_EQ(seen[0].header("x-extra"), "1");
}

void E2ETest::postFromPage(const std::string& requestText) {
  JSONObject body;
  body.emplace("message", requestText);
  view->engine().evaluateJavaScript("window.webkit.messageHandlers.nativeRequest.postMessage(" + serialize(body) + ")",
                                    nullptr);
}

std::optional<JSON> E2ETest::evaluate(const std::string& script) {
  // Shared, not on the stack: a completion may come after the wait gave up.
  auto result = std::make_shared<std::optional<ScriptResult>>();
  view->engine().evaluateJavaScript(script, [result](ScriptResult r) { *result = std::move(r); });
  if (!waitFor([&] { return result->has_value(); })) return std::nullopt;
  return (*result)->value;
}

}  // namespace websdk::e2e

int main(int argc, char** argv) {
  // GoogleTest takes its flags out of argv; a new try needs them all.
  std::vector<char*> arguments(argv, argv + argc + 1);
  ::testing::InitGoogleTest(&argc, argv);
  // Without the engine nothing here can run: that is a failure of the run,
  // never a suite of skipped tests. Listing the tests needs no display.
  if (!::testing::GTEST_FLAG(list_tests)) {
    std::printf("real-engine suite on %s\n", std::string(websdk::e2e::engine::name()).c_str());
    if (!websdk::e2e::engine::start()) {
      // A display that refuses one connection while many suites start at once
      // gets two more tries, each in a fresh process: a toolkit that failed to
      // start cannot be started again in the same one.
      const char* tries = std::getenv("WEBSDK_E2E_START_TRIES");
      const int tried = tries != nullptr ? std::atoi(tries) : 1;
      if (tried < 3 && std::getenv("DISPLAY") != nullptr) {
        std::fprintf(stderr, "the display refused the engine (try %d of 3); trying again\n", tried);
        std::this_thread::sleep_for(std::chrono::milliseconds(500 * tried));
        setenv("WEBSDK_E2E_START_TRIES", std::to_string(tried + 1).c_str(), 1);
        execv("/proc/self/exe", arguments.data());
      }
      std::fprintf(stderr, "no display: run the real-engine tests under xvfb-run -a\n");
      return 1;
    }
  }
  const int result = RUN_ALL_TESTS();
  websdk::e2e::engine::finish();
  // The toolkits' own teardown at exit is not what the suite tests, and Qt
  // WebEngine's in-process GPU thread can crash in it (making a GL context
  // current while the application is destroyed): the verdict is in, so the
  // process ends here.
  std::fflush(nullptr);
  std::_Exit(result);
}
