// The page client (page/) in the real engine: requests that resolve, fail and
// time out, and events native code pushes to handlers registered with on().

#include "E2E.hpp"

#include <thread>

namespace websdk::e2e {

extern const std::string_view kPageClientScript;

namespace {

// Loads the client, then reports how each request settled and each event
// that reached a handler.
std::string clientPage() {
  return R"(<!doctype html><html><head><meta charset="utf-8"><script>)" + std::string(kPageClientScript) +
         R"(</script><script>
function report(kind, data) { window.webkit.messageHandlers.e2e.postMessage({kind: kind, data: data}); }
const client = WebSDKPage.createClient(window);
function settle(name, promise) {
  promise.then(
    (value) => report('settled', {name: name, value: value}),
    (e) => report('settled', {name: name, statusCode: e.statusCode, statusMessage: e.statusMessage, requestId: e.requestId}));
}
client.on('handleHardwareBack', () => { report('event', 'back'); return true; });
client.on('LOGIN_STATE_CHANGED', (loggedin) => report('event', 'login ' + loggedin));
</script></head><body></body></html>)";
}

// Answers the cart at once, from another thread; never answers a clear.
class Cart final : public DvCartWebViewCallBacks {
 public:
  explicit Cart(std::weak_ptr<WebSDKWebView> view) : view_(std::move(view)) {}
  ~Cart() override {
    if (worker_.joinable()) worker_.join();
  }
  void handleCartRequest(const WebSDKCartRequestModel& request, const WebSDKCartRequestPayload& payload) override {
    if (payload.kind() != WebSDKCartRequestPayloadCase::getCart) return;
    worker_ = std::thread([view = view_, id = request.requestId] {
      if (auto v = view.lock()) v->sendWebSDKResponse(JSONObject{{"items", 2}}, WebSDKResponseType::success, id);
    });
  }

 private:
  std::weak_ptr<WebSDKWebView> view_;
  std::thread worker_;
};

std::optional<JSONObject> settled(const PageReports& page, std::string_view name) {
  for (const JSON& r : page.of("settled"))
    if (const auto* o = r.if_object(); o && o->if_contains("name") && *o->if_contains("name") == JSON(name)) return *o;
  return std::nullopt;
}

using PageClient = E2ETest;

TEST_F(PageClient, RequestsResolveRejectAndTimeOutAndPushedEventsReachTheirHandlers) {
  auto cart = std::make_shared<Cart>(view);
  view->setCartPlugin(cart);
  server.page("/client", clientPage());
  ASSERT_TRUE(loadAndWait(server.url("/client")));

  evaluate("settle('resolves', client.request('GET_LOCAL_CART', {tenant: {marketplaceId: 'meals'}}))");
  evaluate("settle('fails', client.request('LOGOUT'))");  // no accounts plugin in this app
  evaluate("settle('times out', client.request('CLEAR_LOCAL_CART', undefined, {timeoutMs: 300}))");
  ASSERT_TRUE(waitFor([&] { return page->of("settled").size() == 3; }));

  const auto resolved = settled(*page, "resolves");
  ASSERT_TRUE(resolved);
  EXPECT_EQ(resolved->at("value"), JSON(JSONObject{{"items", 2}}));

  const auto failed = settled(*page, "fails");
  ASSERT_TRUE(failed);
  EXPECT_EQ(failed->at("statusCode"), JSON(1004));
  EXPECT_EQ(failed->at("statusMessage"), JSON("Account plugin not subscribed or not a valid request"));
  EXPECT_TRUE(failed->at("requestId").is_string());

  const auto timedOut = settled(*page, "times out");
  ASSERT_TRUE(timedOut);
  EXPECT_EQ(timedOut->at("statusCode"), JSON(-1));
  EXPECT_EQ(timedOut->at("statusMessage"), JSON("no answer within 300 ms"));

  // Pushed events: the handler runs, and its answer reaches native code.
  auto handled = std::make_shared<std::optional<std::optional<JSON>>>();
  view->executeJSFunctionWithCompletion(WebSDKJSFunctionType::handleSwipeGesture(),
                                        [handled](std::optional<JSON> value) { *handled = std::move(value); });
  view->executeJSFunction(WebSDKJSFunctionType::userStateChange(false));
  ASSERT_TRUE(waitFor([&] { return page->of("event").size() == 2 && handled->has_value(); }));
  EXPECT_EQ(page->of("event"), (std::vector<JSON>{"back", "login false"}));
  EXPECT_EQ(**handled, JSON(true));
}

}  // namespace
}  // namespace websdk::e2e
