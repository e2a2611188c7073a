#pragma once
// One host object that serves all twelve families, and the wiring that
// registers it for each of them. Every delivery goes to `onRequest` with the
// family's name, the action string, the request id and the typed payload's
// description, so tests, fuzzers and tools can record, answer or release as
// they need.

#include "websdk/Export.hpp"
#include "websdk/bridge/Families.hpp"
#include "websdk/webview/WebSDKWebView.hpp"

#include <functional>
#include <memory>
#include <string_view>

namespace websdk::testing {

class WEBSDK_EXPORT EveryFamilyHost final : public DvWebViewGenericCallsBacks,
                                            public DvWebViewPaymentsCallsBacks,
                                            public DvWebViewRestaurantEmpathyCallsBacks,
                                            public DvWebViewChatConversationCallsBacks,
                                            public DvCartWebViewCallBacks,
                                            public DvPXCartWebViewCallBacks,
                                            public DvVRCartWebViewCallBacks,
                                            public DvGiftingCartWebViewCallBacks,
                                            public DvZippaWebViewCallBacks,
                                            public DvWebViewSetRecipientInfoCallsBacks,
                                            public DvAccountsWebViewCallBacks,
                                            public DvWebViewMenuListCallbacks {
 public:
  struct Delivery {
    std::string_view family;
    std::string_view action;
    const std::string& requestId;
    JSON payload;  // the typed payload's description
  };
  using Handler = std::function<void(const Delivery&)>;
  explicit EveryFamilyHost(Handler onRequest) : onRequest_(std::move(onRequest)) {}

  void handleGenericRequest(const WebSDKGenericRequestModel& r, const WebSDKGenericRequestPayload& p) override {
    call<GenericFamily>(r, p);
  }
  void handlePaymentsRequest(const WebSDKPaymentsRequestModel& r, const WebSDKPaymentsRequestPayload& p) override {
    call<PaymentsFamily>(r, p);
  }
  void handleRestaurantEmpathyRequest(const WebSDKRestaurantEmpathyRequestModel& r,
                                      const WebSDKRestaurantEmpathyRequestPayload& p) override {
    call<RestaurantEmpathyFamily>(r, p);
  }
  void handleChatConversationRequest(const WebSDKChatConversationRequestModel& r,
                                     const WebSDKChatConversationRequestPayload& p) override {
    call<ChatConversationFamily>(r, p);
  }
  void handleCartRequest(const WebSDKCartRequestModel& r, const WebSDKCartRequestPayload& p) override {
    call<CartFamily>(r, p);
  }
  void handlePXCartRequest(const WebSDKPXCartRequestModel& r, const WebSDKPXCartRequestPayload& p) override {
    call<PXCartFamily>(r, p);
  }
  void handleVRCartRequest(const WebSDKVRCartRequestModel& r, const WebSDKVRCartRequestPayload& p) override {
    call<VRCartFamily>(r, p);
  }
  void handleGiftingCartRequest(const WebSDKGiftingCartRequestModel& r,
                                const WebSDKGiftingCartRequestPayload& p) override {
    call<GiftingCartFamily>(r, p);
  }
  void handleZippaRequest(const WebSDKZippaRequestModel& r, const WebSDKZippaRequestPayload& p) override {
    call<ZippaFamily>(r, p);
  }
  void handleSetRecipientInfoRequest(const WebSDKSetRecipientInfoRequestModel& r,
                                     const WebSDKSetRecipientInfoRequestPayload& p) override {
    call<SetRecipientInfoFamily>(r, p);
  }
  void handleAccountsRequest(const WebSDKAccountsRequestModel& r, const WebSDKAccountsRequestPayload& p) override {
    call<AccountsFamily>(r, p);
  }
  void handleMenuListRequest(const WebSDKMenuListRequestModel& r, const WebSDKMenuListPayload& p) override {
    call<MenuListFamily>(r, p);
  }

 private:
  template <class F>
  void call(const typename F::Request& request, const typename F::Payload& payload) {
    if (onRequest_) onRequest_(Delivery{F::name, rawValue(request.type), request.requestId, payload.describe()});
  }

  Handler onRequest_;
};

/// Registers `host` on `view` for every family.
inline void registerForEveryFamily(WebSDKWebView& view, const std::shared_ptr<EveryFamilyHost>& host) {
  WebSDKScriptHandler& handler = *view.handler();
  forEachFamily([&]<class F>(F) { handler.*F::delegate = std::shared_ptr<typename F::Plugin>(host); });
}

}  // namespace websdk::testing
