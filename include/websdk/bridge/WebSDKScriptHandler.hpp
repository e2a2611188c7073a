#pragma once
/// @file
/// Receives the page's "nativeRequest" messages: checks the page's host, finds
/// the family that knows the action, decodes its typed payload and hands it to
/// the host object registered for the family, or answers the failure itself.

#include "websdk/Export.hpp"
#include "websdk/bridge/Family.hpp"
#include "websdk/bridge/WebSDKJSCommunicationProtocol.hpp"
#include "websdk/webview/WebEngine.hpp"
#include "websdk/webview/WebSDKConfig.hpp"
#include "websdk/webview/WebSDKResponseModel.hpp"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace websdk {

class WebSDKTrafficRecorder;
struct WebSDKRecordedRequest;

/// What the bridge needs of the web view it serves: the trust settings it
/// judges pages by, and the way answers reach the page.
class WEBSDK_EXPORT BridgeView {
 public:
  /// The whitelist and limits, fixed when the view was made.
  virtual const WebSDKConfig& bridgeConfig() const = 0;
  /// Sends `response` to the page: into `document`, or, with none, into the
  /// document that sent its request id.
  virtual void deliver(WebSDKResponseModel response, std::optional<DocumentID> document) = 0;
  /// Request `requestId` of `document`, an `action` of `family`, is being
  /// handed to a plugin: its answer belongs to that document. Both names are
  /// the bridge's own, valid for the program's life. Returns the request's
  /// serial, which tells a reused id's requests apart. UI thread.
  virtual std::uint64_t expectAnswer(const std::string& requestId, DocumentID document, std::string_view family,
                                     std::string_view action) = 0;
  /// The answer a reply gives request `serial` of `document`: that request's
  /// only. `abandoned`: the reply was let go unanswered. Any thread.
  virtual void answerRequest(WebSDKResponseModel response, DocumentID document, std::uint64_t serial,
                             bool abandoned) = 0;
  /// A reply answered a second time: refused, and counted. Any thread.
  virtual void refuseRepeatedAnswer(const std::string& requestId) = 0;
  /// How the view's log lines name it.
  virtual std::string_view viewName() const = 0;

 protected:
  ~BridgeView() = default;
};

/// The request id of a request's JSON text (its top-level "requestId", read
/// leniently), looked for in the first `budget` bytes only; "" when not
/// there. Bounded, so refusing a message of any size costs no more.
WEBSDK_EXPORT std::string requestIdNearTheStart(std::string_view text, std::size_t budget = kRefusedMessageStart);

/// The bridge: it judges each message a page posts to "nativeRequest" by the
/// sender's host, finds the family of its action, decodes the payload and
/// hands the request to that family's plugin, or answers the page itself.
class WEBSDK_EXPORT WebSDKScriptHandler final : public ScriptMessageHandler {
 public:
  // Everything the handler points at belongs to someone else: all weak.
  std::weak_ptr<BridgeView> webview;  ///< The view it answers through.
  /// The view's listener field (`WebSDKWebView::webJSCommunicatorDelegate`),
  /// whose listener hears of the traffic: one field, however often the host
  /// reassigns it. Kept when the view detaches the bridge.
  std::weak_ptr<const std::weak_ptr<WebSDKJSCommunicationProtocol>> listener;
  /// Where requests are recorded, when the view records its traffic; shared,
  /// so that a view released during a plugin's call leaves the record whole.
  std::shared_ptr<WebSDKTrafficRecorder> trafficRecorder;

  WebSDKScriptHandler();

  /// Registers `plugin` for family F (weakly), replacing the one before; see
  /// the non-template form.
  template <class F>
  std::optional<std::string> setPlugin(const std::shared_ptr<typename F::Plugin>& plugin) {
    return setPlugin(familyType<F>(), plugin);
  }
  /// Registers `plugin` (weakly; a `family.name`'s protocol object, or
  /// nothing) for `family`, replacing the one before. One of the library's
  /// families is always there; a host's family is added by its first
  /// registration, after every family before it. Refused, with the reason
  /// (the registration then changes nothing), when the host's family has a
  /// name or an action string that is not valid, or that a family already
  /// there has: no message is ever routed to two families.
  std::optional<std::string> setPlugin(const FamilyType& family, std::weak_ptr<void> plugin);
  /// Family F's plugin, or nothing when it was never set or has been released.
  template <class F>
  std::shared_ptr<typename F::Plugin> plugin() const {
    // Held as void, but only ever set from F::Plugin for F's own type.
    const auto* held = subscription(familyType<F>());
    return held ? std::static_pointer_cast<typename F::Plugin>(held->plugin.lock()) : nullptr;
  }
  /// Whether family F has a plugin now.
  template <class F>
  bool subscribed() const {
    const auto* held = subscription(familyType<F>());
    return held && !held->plugin.expired();
  }
  /// The families the bridge routes to, in trial order: the library's twelve,
  /// then the host's in the order they were registered.
  std::vector<const FamilyType*> families() const;

  /// The one entry point: a script message from the page. Runs on the UI
  /// thread; never throws, whatever the page posted.
  void userContentController(const ScriptMessage& message) override;

  /// Notes that a request `document` sent, being handed to a plugin now, is
  /// answered into that document; its serial (0 with no view). UI thread,
  /// during userContentController.
  std::uint64_t expectAnswer(std::string_view requestId, DocumentID document, std::string_view family,
                             std::string_view action);

  /// The first request `family` refused for want of a plugin since last
  /// asked, as words for a log line; nothing when none was.
  std::optional<std::string> takeUnsubscribedAsk(const FamilyType& family);

  /// The record of the message being handled, while the view records its
  /// traffic; nothing otherwise. UI thread, during userContentController.
  WebSDKRecordedRequest* recording() const { return recording_; }

 private:
  bool isTrusted(const WebSDKConfig& config, std::string_view url);
  void answerFailure(const JSON& request, WebSDKStatusCode code, std::optional<std::string> message,
                     DocumentID document);
  void answerFailure(std::string requestId, WebSDKStatusCode code, std::optional<std::string> message,
                     DocumentID document);

  struct Subscription {
    const FamilyType* family;
    std::weak_ptr<void> plugin;
    std::optional<std::string> unsubscribedAsk;  // the first request refused for want of it, until taken
  };
  const Subscription* subscription(const FamilyType& family) const;
  Subscription* subscription(const FamilyType& family);
  class Intake;
  friend class Intake;
  // The library's families at their slots, then the host's.
  std::vector<Subscription> subscriptions_;
  // The host's families' action strings (the library's are in one table for
  // every view): each names its family's subscription and its action.
  struct HostRoute {
    std::size_t subscription;
    std::size_t action;
  };
  std::unordered_map<std::string_view, HostRoute> hostRoutes_;
  // The last page URL found trusted and the whitelist it was checked against:
  // a page posts many messages from one URL, so each URL is checked once.
  std::string trustedURL_;
  WebSDKConfig trustedUnder_;
  // The document whose refusal was last logged: a page that keeps posting
  // from an untrusted host is told of once, not once per message.
  std::optional<DocumentID> refusalLogged_;
  WebSDKRecordedRequest* recording_ = nullptr;
};

}  // namespace websdk
