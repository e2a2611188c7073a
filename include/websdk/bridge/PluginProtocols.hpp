#pragma once
// The host app's side of the bridge: one protocol per family, each with the one
// operation through which an accepted request is delivered (on the UI thread),
// and the listener that sees all traffic. The host answers later, by request
// id, through the web view's send operations.

#include "websdk/Export.hpp"
#include "websdk/plugins/commerce/Accounts.hpp"
#include "websdk/plugins/commerce/Carts.hpp"
#include "websdk/plugins/commerce/ChatConversation.hpp"
#include "websdk/plugins/commerce/MenuList.hpp"
#include "websdk/plugins/commerce/RestaurantEmpathy.hpp"
#include "websdk/plugins/commerce/SetRecipientInfo.hpp"
#include "websdk/plugins/commerce/Zippa.hpp"
#include "websdk/plugins/generic/GenericCatalogue.hpp"
#include "websdk/plugins/payments/PaymentsCatalogue.hpp"
#include "websdk/webview/WebSDKResponseModel.hpp"

#include <string_view>

namespace websdk {

class WEBSDK_EXPORT DvWebViewGenericCallsBacks {
 public:
  virtual ~DvWebViewGenericCallsBacks() = default;
  virtual void handleGenericRequest(const WebSDKGenericRequestModel& request,
                                    const WebSDKGenericRequestPayload& payload) = 0;
};

class WEBSDK_EXPORT DvWebViewPaymentsCallsBacks {
 public:
  virtual ~DvWebViewPaymentsCallsBacks() = default;
  virtual void handlePaymentsRequest(const WebSDKPaymentsRequestModel& request,
                                     const WebSDKPaymentsRequestPayload& payload) = 0;
};

class WEBSDK_EXPORT DvWebViewRestaurantEmpathyCallsBacks {
 public:
  virtual ~DvWebViewRestaurantEmpathyCallsBacks() = default;
  virtual void handleRestaurantEmpathyRequest(const WebSDKRestaurantEmpathyRequestModel& request,
                                              const WebSDKRestaurantEmpathyRequestPayload& payload) = 0;
};

class WEBSDK_EXPORT DvWebViewChatConversationCallsBacks {
 public:
  virtual ~DvWebViewChatConversationCallsBacks() = default;
  virtual void handleChatConversationRequest(const WebSDKChatConversationRequestModel& request,
                                             const WebSDKChatConversationRequestPayload& payload) = 0;
};

class WEBSDK_EXPORT DvCartWebViewCallBacks {
 public:
  virtual ~DvCartWebViewCallBacks() = default;
  virtual void handleCartRequest(const WebSDKCartRequestModel& request, const WebSDKCartRequestPayload& payload) = 0;
};

class WEBSDK_EXPORT DvPXCartWebViewCallBacks {
 public:
  virtual ~DvPXCartWebViewCallBacks() = default;
  virtual void handlePXCartRequest(const WebSDKPXCartRequestModel& request,
                                   const WebSDKPXCartRequestPayload& payload) = 0;
};

class WEBSDK_EXPORT DvVRCartWebViewCallBacks {
 public:
  virtual ~DvVRCartWebViewCallBacks() = default;
  virtual void handleVRCartRequest(const WebSDKVRCartRequestModel& request,
                                   const WebSDKVRCartRequestPayload& payload) = 0;
};

class WEBSDK_EXPORT DvGiftingCartWebViewCallBacks {
 public:
  virtual ~DvGiftingCartWebViewCallBacks() = default;
  virtual void handleGiftingCartRequest(const WebSDKGiftingCartRequestModel& request,
                                        const WebSDKGiftingCartRequestPayload& payload) = 0;
};

class WEBSDK_EXPORT DvZippaWebViewCallBacks {
 public:
  virtual ~DvZippaWebViewCallBacks() = default;
  virtual void handleZippaRequest(const WebSDKZippaRequestModel& request, const WebSDKZippaRequestPayload& payload) = 0;
};

class WEBSDK_EXPORT DvWebViewSetRecipientInfoCallsBacks {
 public:
  virtual ~DvWebViewSetRecipientInfoCallsBacks() = default;
  virtual void handleSetRecipientInfoRequest(const WebSDKSetRecipientInfoRequestModel& request,
                                             const WebSDKSetRecipientInfoRequestPayload& payload) = 0;
};

class WEBSDK_EXPORT DvAccountsWebViewCallBacks {
 public:
  virtual ~DvAccountsWebViewCallBacks() = default;
  virtual void handleAccountsRequest(const WebSDKAccountsRequestModel& request,
                                     const WebSDKAccountsRequestPayload& payload) = 0;
};

class WEBSDK_EXPORT DvWebViewMenuListCallbacks {
 public:
  virtual ~DvWebViewMenuListCallbacks() = default;
  virtual void handleMenuListRequest(const WebSDKMenuListRequestModel& request,
                                     const WebSDKMenuListPayload& payload) = 0;
};

/// Why something sent to the page never ran there.
enum class WebSDKDropReason {
  /// The document it was meant for is gone: the page navigated (or was
  /// navigated) after asking.
  documentGone,
  /// The document shown is not on a whitelisted host (or there is none).
  pageNotWhitelisted,
};

/// The host's listener for bridge traffic.
class WEBSDK_EXPORT WebSDKJSCommunicationProtocol {
 public:
  virtual ~WebSDKJSCommunicationProtocol() = default;
  /// Every envelope sent through the main-queue path; called on the sender's thread.
  virtual void didSendResponse(const WebSDKResponseModel& response) = 0;
  /// The text of every well-formed request, before the host check.
  virtual void didReceiveRequest(std::string_view request) = 0;
  /// An envelope already reported by didSendResponse that was not evaluated,
  /// and why. Called on the UI thread.
  virtual void didDropResponse(const WebSDKResponseModel& response, WebSDKDropReason reason) {
    (void)response, (void)reason;
  }
  /// A pushed page-function call that was not evaluated (`script` is its call
  /// text), and why. Called on the UI thread.
  virtual void didDropPush(std::string_view script, WebSDKDropReason reason) { (void)script, (void)reason; }
};

}  // namespace websdk
