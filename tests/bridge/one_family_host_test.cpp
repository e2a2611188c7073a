// A host that serves only the cart family, written as such a host writes it:
// the cart family's header and the web view's, nothing else of the WebSDK.
// A build check (OnlyItsFamily.cmake) keeps every other family's models out
// of this file.

#include "websdk/bridge/families/Cart.hpp"
#include "websdk/testing/TestingEngine.hpp"
#include "websdk/webview/WebSDKWebView.hpp"

#include <gtest/gtest.h>

#include <memory>

namespace {

using namespace websdk;

class CartHost final : public DvCartWebViewCallBacks {
 public:
  explicit CartHost(std::weak_ptr<WebSDKWebView> view) : view_(std::move(view)) {}
  void handleCartRequest(const WebSDKCartRequestModel& request, const WebSDKCartRequestPayload& payload) override {
    const auto view = view_.lock();
    if (const auto* cart = payload.get<WebSDKCartRequestPayloadCase::getCart>(); cart && view)
      view->sendWebSDKResponse(JSONObject{{"marketplaceId", cart->marketplaceId}}, WebSDKResponseType::success,
                               request.requestId);
  }

 private:
  std::weak_ptr<WebSDKWebView> view_;
};

TEST(OneFamilyHost, ServesItsFamilyRegisteredByRowOrByName) {
  for (const bool byRow : {true, false}) {
    auto owned = std::make_unique<websdk::testing::TestingEngine>();
    auto& page = *owned;
    const auto view = WebSDKWebView::create(std::move(owned), {"shop.example"});
    const auto cart = std::make_shared<CartHost>(view);
    if (byRow)
      view->setPlugin<CartFamily>(cart);
    else
      view->setCartPlugin(cart);
    page.setURL("https://shop.example/checkout");
    page.postRequest(R"({"type":"GET_LOCAL_CART","requestId":"1","payload":{"tenant":{"marketplaceId":"meals"}}})");
    page.queue().drain();
    const auto answers = page.nativeResponses();
    ASSERT_EQ(answers.size(), 1u) << byRow;
    EXPECT_EQ(parseJSON(answers[0].at("payload").as_string()), parseJSON(R"({"marketplaceId":"meals"})")) << byRow;
  }
}

}  // namespace
