#pragma once
// Receives the page's "nativeRequest" messages: checks the page's host, finds
// the family that knows the action, decodes its typed payload and hands it to
// the host object registered for the family, or answers the failure itself.

#include "websdk/Export.hpp"
#include "websdk/bridge/PluginProtocols.hpp"
#include "websdk/webview/WebEngine.hpp"
#include "websdk/webview/WebSDKConfig.hpp"

#include <memory>
#include <string>
#include <string_view>

namespace websdk {

class WebSDKWebView;

/// The request id of a request's JSON text (its top-level "requestId", read
/// leniently), looked for in the first `budget` bytes only; "" when not
/// there. Bounded, so refusing a message of any size costs no more.
WEBSDK_EXPORT std::string requestIdNearTheStart(std::string_view text, std::size_t budget = kRefusedMessageStart);

class WEBSDK_EXPORT WebSDKScriptHandler final : public ScriptMessageHandler {
 public:
  // Everything the handler points at belongs to someone else: all weak.
  std::weak_ptr<WebSDKWebView> webview;
  std::weak_ptr<DvWebViewGenericCallsBacks> genericDelegate;
  std::weak_ptr<DvWebViewPaymentsCallsBacks> paymentsDelegate;
  std::weak_ptr<DvWebViewRestaurantEmpathyCallsBacks> restaurantEmpathyDelegate;
  std::weak_ptr<DvWebViewChatConversationCallsBacks> chatConversationDelegate;
  std::weak_ptr<DvCartWebViewCallBacks> cartDelegate;
  std::weak_ptr<DvPXCartWebViewCallBacks> pxCartDelegate;
  std::weak_ptr<DvVRCartWebViewCallBacks> vrCartDelegate;
  std::weak_ptr<DvGiftingCartWebViewCallBacks> giftingCartDelegate;
  std::weak_ptr<DvZippaWebViewCallBacks> zippaDelegate;
  std::weak_ptr<DvWebViewSetRecipientInfoCallsBacks> setRecipientInfoDelegate;
  std::weak_ptr<DvAccountsWebViewCallBacks> accountsDelegate;
  std::weak_ptr<DvWebViewMenuListCallbacks> menuListDelegate;
  std::weak_ptr<WebSDKJSCommunicationProtocol> webJSCommunicationDelegate;

  /// The one entry point: a script message from the page. Runs on the UI
  /// thread; never throws, whatever the page posted.
  void userContentController(const ScriptMessage& message) override;

  /// Notes that a request `document` sent, being handed to a plugin now, is
  /// answered into that document. UI thread, during userContentController.
  void expectAnswer(std::string_view requestId, DocumentID document);

 private:
  bool isTrusted(const WebSDKConfig& config, std::string_view url);
  void answerFailure(const JSON& request, WebSDKStatusCode code, std::optional<std::string> message,
                     DocumentID document);
  void answerFailure(std::string requestId, WebSDKStatusCode code, std::optional<std::string> message,
                     DocumentID document);

  // The last page URL found trusted and the whitelist it was checked against:
  // a page posts many messages from one URL, so each URL is checked once.
  std::string trustedURL_;
  WebSDKConfig trustedUnder_;
  // The document whose refusal was last logged: a page that keeps posting
  // from an untrusted host is told of once, not once per message.
  std::optional<DocumentID> refusalLogged_;
};

}  // namespace websdk
