#pragma once
/// @file
/// The web view a host app places wherever a screen is a web page: it loads the
/// page with the app's headers (only to trusted hosts), carries the bridge, and
/// sends answers and events to the page.

#include "websdk/Export.hpp"
#include "websdk/bridge/WebSDKJSCommunicationProtocol.hpp"
#include "websdk/webview/WebSDKConfig.hpp"
#include "websdk/webview/WebSDKJSFunctionType.hpp"
#include "websdk/webview/WebSDKResponseModel.hpp"
#include "websdk/webview/WebSDKResponseProtocol.hpp"

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace websdk {

// The engine the view runs on (websdk/webview/WebEngine.hpp) and the delegate
// that hears of its navigation (websdk/webview/WebSDKNavigationDelegate.hpp):
// a host that makes or implements either includes its header.
class WebEngine;
class WebSDKNavigationDelegate;
/// Identifies one top-level document (websdk/webview/WebEngine.hpp).
using DocumentID = std::uint64_t;

// The plugin protocols that the named setters and create() take. Each is
// declared by its family's header (websdk/bridge/families/), which a host
// includes for the families it serves; websdk/WebSDK.hpp brings them all.
class DvWebViewGenericCallsBacks;
class DvWebViewPaymentsCallsBacks;
class DvWebViewRestaurantEmpathyCallsBacks;
class DvWebViewChatConversationCallsBacks;
class DvCartWebViewCallBacks;
class DvPXCartWebViewCallBacks;
class DvVRCartWebViewCallBacks;
class DvGiftingCartWebViewCallBacks;
class DvZippaWebViewCallBacks;
class DvWebViewSetRecipientInfoCallsBacks;
class DvAccountsWebViewCallBacks;
class DvWebViewMenuListCallbacks;

// A family as the bridge holds it, and family F's (websdk/bridge/Family.hpp,
// which every family's header includes).
struct FamilyType;
template <class F>
const FamilyType& familyType();

/// What registering a plugin came to: refused (`error` says why, and the
/// same is logged) or done.
struct WEBSDK_EXPORT WebSDKRegistration {
  std::string error;  ///< Why the registration was refused; empty when it was done.
  /// Whether it was done.
  explicit operator bool() const { return error.empty(); }
};

/// The answers a view was given, by whether a page was waiting for them.
struct WEBSDK_EXPORT WebSDKAnswerCounts {
  std::uint64_t expected = 0;   ///< To a request handed to a plugin and not answered before.
  std::uint64_t unasked = 0;    ///< To an id never asked, or answered already.
  std::uint64_t overdue = 0;    ///< Requests still unanswered at their family's deadline.
  std::uint64_t late = 0;       ///< To a request of a document gone, answered or failed already: dropped.
  std::uint64_t repeated = 0;   ///< A reply's second answer: refused.
  std::uint64_t abandoned = 0;  ///< Replies let go unanswered: the page was told the request failed.
  /// Memberwise.
  bool operator==(const WebSDKAnswerCounts&) const = default;
};

/// Header fields by name.
using WebSDKHeaders = std::map<std::string, std::string>;

/// The script the web view installs rather than evaluates.
class WEBSDK_EXPORT WebSDKAppFunctions {
 public:
  /// window.__native_headers__.getDovaraHeaders() returns `headers`, inserted
  /// verbatim: the host passes text without single quotes, backslashes or
  /// line breaks (executeJSScript warns of text that has them).
  static WebSDKAppFunctions nativeHeaders(std::string headers) { return WebSDKAppFunctions(std::move(headers)); }
  /// The fields as one JSON object, which getDovaraHeaders() returns exactly:
  /// what would end the script's string early is escaped on the way in.
  static WebSDKAppFunctions nativeHeaders(const WebSDKHeaders& fields);
  /// The text getDovaraHeaders() returns.
  const std::string& headers() const { return headers_; }
  /// Whether the text was escaped for the script (made from fields).
  bool escaped() const { return escaped_; }
  /// The script that installs window.__native_headers__.
  std::string script() const;

 private:
  explicit WebSDKAppFunctions(std::string headers, bool escaped = false)
      : headers_(std::move(headers)), escaped_(escaped) {}
  std::string headers_;
  bool escaped_;
};

/// The web view's send operations, for code that holds it only as this.
class WEBSDK_EXPORT WebSDKJSInteractionProtocol {
 public:
  virtual ~WebSDKJSInteractionProtocol() = default;
  /// Evaluates the event's call text at once (UI thread); `completionHandler`
  /// gets the script's value, or nothing when it returned nothing or failed.
  virtual void executeJSFunctionWithCompletion(const WebSDKJSFunctionType& type,
                                               WebSDKJSCompletionHandler completionHandler) = 0;
  /// Evaluates the event's call text at once (UI thread); result and errors are ignored.
  virtual void executeJSFunction(const WebSDKJSFunctionType& type) = 0;
  /// Ready-encoded payload bytes (UTF-8), evaluated at once on the calling
  /// (UI) thread; the listener is not told.
  virtual void sendWebSDKResponse(WebSDKResponseType type, const std::string& requestId,
                                  const std::optional<std::string>& encoder) = 0;
  /// A dictionary payload, rendered as indented JSON text.
  virtual void sendWebSDKResponse(const JSONObject& with, WebSDKResponseType type, const std::string& requestId,
                                  std::optional<std::int64_t> statusCode = std::nullopt,
                                  std::optional<std::string> statusMessage = std::nullopt) = 0;
  /// A response model, rendered as indented JSON text.
  virtual void sendWebSDKResponse(const WebSDKResponseProtocol& with, WebSDKResponseType type,
                                  const std::string& requestId, std::optional<std::int64_t> statusCode = std::nullopt,
                                  std::optional<std::string> statusMessage = std::nullopt) = 0;
  /// A success without a payload.
  virtual void sendSuccess(const std::string& requestId, std::optional<std::int64_t> statusCode = std::nullopt,
                           std::optional<std::string> statusMessage = std::nullopt) = 0;
  /// A failure without a payload.
  virtual void sendFailure(const std::string& requestId, std::optional<std::int64_t> statusCode = std::nullopt,
                           std::optional<std::string> statusMessage = std::nullopt) = 0;
  /// A payload string used verbatim.
  virtual void sendWebSDKResponse(std::string with, WebSDKResponseType type, const std::string& requestId,
                                  std::optional<std::int64_t> statusCode = std::nullopt,
                                  std::optional<std::string> statusMessage = std::nullopt) = 0;
};

/// The web view a host places wherever a screen is a web page: it loads pages
/// with the app's headers, carries the bridge from the page to the plugins,
/// and sends answers and events back. Made by create(); the send operations
/// may be called from any thread, everything else on the UI thread.
class WEBSDK_EXPORT WebSDKWebView final : public WebSDKJSInteractionProtocol,
                                          public std::enable_shared_from_this<WebSDKWebView> {
  // Only create() can make one: a view that is not wired (no bridge
  // back-reference, no engine client) must not exist.
  class Passkey {
    explicit Passkey() = default;
    friend class WebSDKWebView;
  };

 public:
  /// Builds a web view over `engine` (which carries the platform configuration)
  /// with its whitelist and first delegates, all held weakly.
  static std::shared_ptr<WebSDKWebView> create(
      std::unique_ptr<WebEngine> engine, std::vector<std::string> whitelistedHosts,
      const std::shared_ptr<DvWebViewGenericCallsBacks>& genericDelegate = nullptr,
      const std::shared_ptr<DvWebViewPaymentsCallsBacks>& paymentsDelegate = nullptr,
      const std::shared_ptr<WebSDKNavigationDelegate>& webViewDelegate = nullptr,
      const std::shared_ptr<WebSDKJSCommunicationProtocol>& webJSCommunicationDelegate = nullptr,
      const std::shared_ptr<DvWebViewSetRecipientInfoCallsBacks>& setRecipientInfoDelegate = nullptr,
      bool shouldWhitelistAllUrls = false);
  /// The same, with every trust setting in one configuration (the frame
  /// switch among them).
  static std::shared_ptr<WebSDKWebView> create(
      std::unique_ptr<WebEngine> engine, const WebSDKConfig& config,
      const std::shared_ptr<DvWebViewGenericCallsBacks>& genericDelegate = nullptr,
      const std::shared_ptr<DvWebViewPaymentsCallsBacks>& paymentsDelegate = nullptr,
      const std::shared_ptr<WebSDKNavigationDelegate>& webViewDelegate = nullptr,
      const std::shared_ptr<WebSDKJSCommunicationProtocol>& webJSCommunicationDelegate = nullptr,
      const std::shared_ptr<DvWebViewSetRecipientInfoCallsBacks>& setRecipientInfoDelegate = nullptr);

  /// For create() alone, which holds the passkey.
  WebSDKWebView(Passkey, std::unique_ptr<WebEngine> engine, const WebSDKConfig& config);
  WebSDKWebView(const WebSDKWebView&) = delete;
  WebSDKWebView& operator=(const WebSDKWebView&) = delete;
  ~WebSDKWebView() override;

  // ---- Bridge wiring -------------------------------------------------------
  /// Hands the page's "nativeRequest" messages to the bridge.
  void addWebSDKScriptHandler();
  /// Stops handing the page's messages to the bridge.
  void removeWebSDKScriptHandler();
  /// Detaches the bridge from this view: later messages find no web view to
  /// answer through. Plugins stay registered.
  void resetWebView();

  /// Registers `plugin` for family F, held weakly, replacing the one before;
  /// the next message uses it. F is one of the library's families (a row of
  /// websdk/bridge/families/) or the host's own (WEBSDK_HOST_FAMILY): the
  /// first registration of a host's family adds its actions to the bridge,
  /// after the library's. Refused, and logged as an error, when the host's
  /// family's name or one of its action strings is not valid, or is one a
  /// family already there has; the bridge is then as it was.
  template <class F>
  WebSDKRegistration setPlugin(const std::shared_ptr<typename F::Plugin>& plugin) {
    return setPlugin(familyType<F>(), plugin);
  }
  /// The same for a family known only at run time.
  WebSDKRegistration setPlugin(const FamilyType& family, std::weak_ptr<void> plugin);
  /// The families the page's requests are routed to, in trial order: the
  /// library's, then the host's in the order they were first registered.
  std::vector<const FamilyType*> families() const;
  /// The same, by the names hosts know.
  ///@{
  void setRestaurantEmpathyPlugin(const std::shared_ptr<DvWebViewRestaurantEmpathyCallsBacks>& plugin);
  void setChatConversationPlugin(const std::shared_ptr<DvWebViewChatConversationCallsBacks>& plugin);
  void setCartPlugin(const std::shared_ptr<DvCartWebViewCallBacks>& plugin);
  void setPXCartPlugin(const std::shared_ptr<DvPXCartWebViewCallBacks>& plugin);
  void setVRCartPlugin(const std::shared_ptr<DvVRCartWebViewCallBacks>& plugin);
  void setGiftingCartPlugin(const std::shared_ptr<DvGiftingCartWebViewCallBacks>& plugin);
  void setZippaPlugin(const std::shared_ptr<DvZippaWebViewCallBacks>& plugin);
  void setAccountsPlugin(const std::shared_ptr<DvAccountsWebViewCallBacks>& plugin);
  void setMenuListPlugin(const std::shared_ptr<DvWebViewMenuListCallbacks>& plugin);
  ///@}

  // ---- Loading -------------------------------------------------------------
  /// Loads `with` when it is a URL (else does nothing). A whitelisted host gets
  /// the request headers merged with the external ones (external wins); any
  /// other host only the external headers.
  void loadWebView(const std::string& with, const WebSDKHeaders& requestHeaders,
                   const std::optional<WebSDKHeaders>& externalHeaders, double timeoutInterval);
  /// Adds the header user script; every later load runs all scripts added, in order.
  void executeJSScript(const WebSDKAppFunctions& type);

  // ---- Settings ------------------------------------------------------------
  /// Whether pinch-zoom is let through (checked as each pinch starts).
  bool pinchGestureEnable() const;
  /// Lets pinch-zoom through, or refuses it from the next pinch on.
  void setPinchGestureEnable(bool enable);
  /// Whether pages run JavaScript.
  bool javaScriptEnabled() const;
  /// Replaces the engine's preferences with a fresh object holding only this switch.
  void setJavaScriptEnabled(bool enabled);
  /// Whether a page is shown only once fully loaded (where the engine can).
  bool suppressesIncrementalRendering() const;
  /// Sets it (stored: no engine has such a switch).
  void setSuppressesIncrementalRendering(bool suppress);

  // ---- Answers (any thread) ------------------------------------------------
  using WebSDKJSInteractionProtocol::sendWebSDKResponse;
  void sendWebSDKResponse(WebSDKResponseType type, const std::string& requestId,
                          const std::optional<std::string>& encoder) override;
  void sendWebSDKResponse(const JSONObject& with, WebSDKResponseType type, const std::string& requestId,
                          std::optional<std::int64_t> statusCode = std::nullopt,
                          std::optional<std::string> statusMessage = std::nullopt) override;
  void sendWebSDKResponse(const WebSDKResponseProtocol& with, WebSDKResponseType type, const std::string& requestId,
                          std::optional<std::int64_t> statusCode = std::nullopt,
                          std::optional<std::string> statusMessage = std::nullopt) override;
  void sendSuccess(const std::string& requestId, std::optional<std::int64_t> statusCode = std::nullopt,
                   std::optional<std::string> statusMessage = std::nullopt) override;
  void sendFailure(const std::string& requestId, std::optional<std::int64_t> statusCode = std::nullopt,
                   std::optional<std::string> statusMessage = std::nullopt) override;
  void sendWebSDKResponse(std::string with, WebSDKResponseType type, const std::string& requestId,
                          std::optional<std::int64_t> statusCode = std::nullopt,
                          std::optional<std::string> statusMessage = std::nullopt) override;

  // ---- Page events (UI thread) ------------------------------------------------
  void executeJSFunctionWithCompletion(const WebSDKJSFunctionType& type,
                                       WebSDKJSCompletionHandler completionHandler) override;
  void executeJSFunction(const WebSDKJSFunctionType& type) override;

  /// Pushes the host's event `name`, with `data`, to the page: it calls
  /// `window.nativeEvent(name, data)` there, both written as JSON (never
  /// spliced text), which the page client hands to its `on(name, ...)`
  /// handlers. Like every push, it reaches only a committed document on a
  /// whitelisted host; otherwise it is dropped (the listener and the
  /// recording hear of it). Any thread. Refused, and logged as an error, when
  /// `name` is not a valid event name (as invalidName() says) or is a page
  /// function's, whose calls the page tells apart from events by name.
  /// Returns whether it was sent on its way.
  bool emitEvent(std::string_view name, const JSON& data = nullptr);
  /// The same, the recording masking the values of `sensitiveKeys` in the
  /// data (as it masks a request's sensitive fields) from now on. An event
  /// written from a model: websdk::emitEvent() (websdk/webview/WebSDKEvents.hpp).
  bool emitEvent(std::string_view name, const JSON& data, const std::set<std::string, std::less<>>& sensitiveKeys);

  /// Encodes `response`, evaluates it on the main queue in the document that
  /// asked (`document`, or the one that sent `response.requestId`), and tells
  /// the listener on the calling thread. An answer whose document is gone is
  /// dropped.
  void deliver(WebSDKResponseModel response, std::optional<DocumentID> document = std::nullopt);

  // ---- State -----------------------------------------------------------------
  /// Fixed when the view is made; its entries are in canonical host form.
  const WebSDKConfig webSDKConfig;
  /// Hears of navigation and answers its questions; held weakly.
  std::weak_ptr<WebSDKNavigationDelegate> webSDKNavigationDelegate;
  /// Hears of the bridge's traffic; held weakly.
  std::weak_ptr<WebSDKJSCommunicationProtocol> webJSCommunicatorDelegate;

  /// The URL of the committed page, if any (never a load still pending).
  std::optional<std::string> url() const;
  /// The engine behind the view (for the engine's own accessors, such as the
  /// native widget).
  WebEngine& engine();
  /// How the view's log lines name it: `WebSDKConfig::name`, or "view N".
  const std::string& name() const;

  /// The requests of the document shown that plugins have not answered yet,
  /// oldest first: what a page is still waiting for. UI thread.
  std::vector<WebSDKPendingRequest> pendingRequests() const;
  /// How the answers given so far matched the page's requests. UI thread.
  WebSDKAnswerCounts answerCounts() const;

  /// The engine asks this as a pinch starts (a host that drives zooming itself
  /// may ask too): whether the pinch may go on, which is pinchGestureEnable().
  bool scrollViewWillBeginZooming();

 private:
  // The engine's client, the bridge's view and everything the view keeps
  // (src/webview/WebSDKWebView.cpp): none of it is the host's business.
  struct Impl;
  /// Reaches the bridge for the library's own tests and tools (websdk/webview/WebViewInternals.hpp, never installed).
  friend struct WebViewInternals;
  const std::unique_ptr<Impl> impl_;
};

}  // namespace websdk
