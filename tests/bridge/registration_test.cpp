// Registration by the names hosts know (a setter, or an argument of create)
// and by family row, and the bridge's narrow view of its web view.

#include "FamilyRequests.hpp"
#include "support/Harness.hpp"
#include "websdk/testing/EveryFamilyHost.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace websdk {
namespace {

using test::Harness;
using testing::EveryFamilyHost;
using Host = std::shared_ptr<EveryFamilyHost>;

struct NamedRegistration {
  std::string_view family;
  std::function<Harness(const Host&)> registered;
};

NamedRegistration created(std::string_view family, test::FirstPlugins (*plugins)(const Host&)) {
  return {family, [plugins](const Host& host) {
            return Harness({"localhost"}, false, "https://localhost/checkout", plugins(host));
          }};
}

template <class Plugin>
NamedRegistration set(std::string_view family, void (WebSDKWebView::*setter)(const std::shared_ptr<Plugin>&)) {
  return {family, [setter](const Host& host) {
            Harness h;
            ((*h.view).*setter)(host);
            return h;
          }};
}

// Each row registers the host through one name only: it must then serve that
// family, and every other family must answer that it has no plugin.
TEST(Registration, EachNamedRegistrationServesItsOwnFamilyAndNoOther) {
  using V = WebSDKWebView;
  const NamedRegistration rows[] = {
      created("generic", [](const Host& host) { return test::FirstPlugins{.generic = host}; }),
      created("payments", [](const Host& host) { return test::FirstPlugins{.payments = host}; }),
      created("setRecipientInfo", [](const Host& host) { return test::FirstPlugins{.setRecipientInfo = host}; }),
      set("restaurantEmpathy", &V::setRestaurantEmpathyPlugin),
      set("chatConversation", &V::setChatConversationPlugin),
      set("cart", &V::setCartPlugin),
      set("pxCart", &V::setPXCartPlugin),
      set("vrCart", &V::setVRCartPlugin),
      set("giftingCart", &V::setGiftingCartPlugin),
      set("zippa", &V::setZippaPlugin),
      set("accounts", &V::setAccountsPlugin),
      set("menuList", &V::setMenuListPlugin),
  };
  const auto requests = test::oneRequestPerFamily();
  ASSERT_EQ(std::size(rows), requests.size());
  for (const auto& row : rows) {
    SCOPED_TRACE(row.family);
    std::vector<std::string> delivered, refusals, otherFamilies;
    const auto host = std::make_shared<EveryFamilyHost>(
        [&](const EveryFamilyHost::Delivery& d) { delivered.emplace_back(d.family); });
    Harness h = row.registered(host);
    for (const auto& request : requests) {
      h.post(request.text);
      if (request.family != row.family) otherFamilies.emplace_back(request.failureMessage);
    }
    for (const auto& response : h.pageResponses()) refusals.emplace_back(response.at("statusMessage").as_string());
    EXPECT_EQ(delivered, std::vector<std::string>{std::string(row.family)});
    EXPECT_EQ(refusals, otherFamilies);
  }
}

// A stand-in for the web view: the bridge needs only its trust settings and a
// way to answer.
struct StandInView final : BridgeView {
  WebSDKConfig config{{"localhost"}};
  std::vector<std::pair<std::string, DocumentID>> expected;
  std::vector<std::pair<WebSDKResponseModel, std::optional<DocumentID>>> delivered;
  const WebSDKConfig& bridgeConfig() const override { return config; }
  void deliver(WebSDKResponseModel response, std::optional<DocumentID> document) override {
    delivered.emplace_back(std::move(response), document);
  }
  std::uint64_t expectAnswer(const std::string& requestId, DocumentID document, std::string_view,
                             std::string_view) override {
    expected.emplace_back(requestId, document);
    return expected.size();
  }
  void answerRequest(WebSDKResponseModel response, DocumentID document, std::uint64_t, bool) override {
    delivered.emplace_back(std::move(response), document);
  }
  void refuseRepeatedAnswer(const std::string&) override {}
  std::string_view viewName() const override { return "stand-in"; }
};

// Answers from inside its operation, as a plugin with the answer at hand does.
struct AnsweringCart final : DvCartWebViewCallBacks {
  StandInView* view = nullptr;
  std::size_t expectedWhenCalled = 0;
  void handleCartRequest(const WebSDKCartRequestModel&, const WebSDKCartRequestPayload&) override {
    expectedWhenCalled = view->expected.size();
  }
};

TEST(Registration, TheBridgeServesAnyViewThroughItsNarrowInterface) {
  const auto view = std::make_shared<StandInView>();
  const auto cart = std::make_shared<AnsweringCart>();
  cart->view = view.get();
  WebSDKScriptHandler handler;
  handler.webview = view;
  handler.setPlugin<CartFamily>(cart);
  EXPECT_TRUE(handler.subscribed<CartFamily>());
  EXPECT_FALSE(handler.subscribed<PXCartFamily>());

  const auto post = [&](std::string_view text, std::string url) {
    handler.userContentController(
        ScriptMessage{"nativeRequest", JSONObject{{"message", text}}, MessageOrigin{url, url, true, 7}});
  };
  post(R"({"type":"CLEAR_LOCAL_CART","requestId":"c"})", "https://localhost/cart");
  EXPECT_EQ(cart->expectedWhenCalled, 1u) << "the answer's document is noted before the plugin can answer";
  EXPECT_EQ(view->expected, (std::vector<std::pair<std::string, DocumentID>>{{"c", 7}}));
  EXPECT_TRUE(view->delivered.empty());

  post(R"({"type":"PX_GET_LOCAL_CART","requestId":"p"})", "https://localhost/cart");
  post(R"({"type":"CLEAR_LOCAL_CART","requestId":"e"})", "https://evil.test/");
  ASSERT_EQ(view->delivered.size(), 2u);
  EXPECT_EQ(view->delivered[0].first.statusMessage, "PX Cart Plugin not subscribed or not a valid request");
  EXPECT_EQ(view->delivered[1].first.statusCode, 1005);
  for (const auto& [response, document] : view->delivered) EXPECT_EQ(document, 7u);
}

}  // namespace
}  // namespace websdk
