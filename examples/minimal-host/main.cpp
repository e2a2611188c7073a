// minimal-host: a web view with a cart plugin, driven by the in-memory engine
// as a page would drive it. Prints each answer the page gets; exits 0 when
// they are the expected ones.

#include "CartPlugin.hpp"

#include <websdk/testing/TestingEngine.hpp>
#include <websdk/webview/WebSDKWebView.hpp>

#include <iostream>
#include <map>

using namespace websdk;

int main() {
  auto engine = std::make_unique<testing::TestingEngine>();
  testing::TestingEngine& page = *engine;  // the view owns the engine; keep a handle to play the page

  // 1. The view, trusting one host with the bridge and the app's headers.
  auto view = WebSDKWebView::create(std::move(engine), {"shop.example"});

  // 2. The plugin. The view holds it weakly: the app keeps it alive.
  auto cart = std::make_shared<CartPlugin>();
  view->setCartPlugin(cart);

  // 3. The page loads and asks.
  view->loadWebView("https://shop.example/checkout", {{"x-app", "minimal-host"}}, std::nullopt, 30);
  page.setURL("https://shop.example/checkout");
  page.postRequest(R"({"type":"GET_LOCAL_CART","requestId":"1","payload":{"tenant":{"marketplaceId":"meals"}}})");
  page.postRequest(
      R"({"type":"APPLY_COUPON","requestId":"2","payload":{"restaurantId":"77","cart_total_shown_to_coupon":498}})");
  page.postRequest(R"({"type":"CLEAR_LOCAL_CART","requestId":"3"})");
  page.postRequest(R"({"type":"GET_LOCATION","requestId":"4"})");  // no generic plugin here

  // 4. Answers reach the page through the UI thread's queue.
  cart->finish();
  page.queue().drain();

  // 5. Tear-down is the app's: detach the bridge before the view goes.
  view->resetWebView();
  view->removeWebSDKScriptHandler();

  // What the page got: one envelope per request, read as the page would.
  std::map<std::string, JSONObject> answers;
  for (const JSON& envelope : page.nativeResponses()) {
    std::cout << serialize(envelope) << "\n";
    const Fields e = Fields::of(&envelope);
    if (!e.absent()) answers[e.lenientString("requestId")] = *e.dictionary();
  }
  auto code = [&](const std::string& id) { return Fields(&answers[id]).integer("statusCode"); };
  auto payload = [&](const std::string& id) { return parseJSON(Fields(&answers[id]).lenientString("payload")); };
  const JSON cartAnswer = payload("1"), couponAnswer = payload("2");
  const bool ok = answers.size() == 4 && code("1") == 0 &&
                  Fields::of(&cartAnswer).lenientString("marketplaceId") == "meals" && code("2") == 0 &&
                  Fields::of(&couponAnswer).number("total") == 448 && code("3") == 1003 && code("4") == 1004;
  std::cout << (ok ? "minimal-host: every answer as expected" : "minimal-host: unexpected answers") << std::endl;
  return ok ? 0 : 1;
}
