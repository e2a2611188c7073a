#pragma once
/// @file
/// The web view a host app places wherever a screen is a web page: it loads the
/// page with the app's headers (only to trusted hosts), carries the bridge, and
/// sends answers and events to the page.

#include "websdk/Export.hpp"
#include "websdk/Log.hpp"
#include "websdk/bridge/WebSDKJSCommunicationProtocol.hpp"
#include "websdk/bridge/WebSDKScriptHandler.hpp"
#include "websdk/json/Record.hpp"
#include "websdk/webview/WebEngine.hpp"
#include "websdk/webview/WebSDKConfig.hpp"
#include "websdk/webview/WebSDKJSFunctionType.hpp"
#include "websdk/webview/WebSDKNavigationDelegate.hpp"
#include "websdk/webview/WebSDKResponseModel.hpp"
#include "websdk/webview/WebSDKResponseProtocol.hpp"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace websdk {

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
                                          private WebEngineClient,
                                          private BridgeView,
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

  /// Registers `plugin` for family F (a row of websdk/bridge/families/),
  /// held weakly, replacing the one before; the next message uses it.
  template <class F>
  void setPlugin(const std::shared_ptr<typename F::Plugin>& plugin) {
    handler_->setPlugin<F>(plugin);
    registered(F::name, F::slot, plugin);
  }
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
  bool pinchGestureEnable() const { return pinchGestureEnable_; }
  /// Lets pinch-zoom through, or refuses it from the next pinch on.
  void setPinchGestureEnable(bool enable) { pinchGestureEnable_ = enable; }
  /// Whether pages run JavaScript.
  bool javaScriptEnabled() const { return javaScriptEnabled_; }
  /// Replaces the engine's preferences with a fresh object holding only this switch.
  void setJavaScriptEnabled(bool enabled);
  /// Whether a page is shown only once fully loaded (where the engine can).
  bool suppressesIncrementalRendering() const { return suppressesIncrementalRendering_; }
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

  /// Encodes `response`, evaluates it on the main queue in the document that
  /// asked (`document`, or the one that sent `response.requestId`), and tells
  /// the listener on the calling thread. An answer whose document is gone is
  /// dropped.
  void deliver(WebSDKResponseModel response, std::optional<DocumentID> document = std::nullopt) override;

  // ---- State -----------------------------------------------------------------
  /// The bridge: it judges and routes the page's messages.
  const std::shared_ptr<WebSDKScriptHandler>& handler() const { return handler_; }
  /// Fixed when the view is made; its entries are in canonical host form.
  const WebSDKConfig webSDKConfig;
  /// Hears of navigation and answers its questions; held weakly.
  std::weak_ptr<WebSDKNavigationDelegate> webSDKNavigationDelegate;
  /// Hears of the bridge's traffic; held weakly.
  std::weak_ptr<WebSDKJSCommunicationProtocol> webJSCommunicatorDelegate;

  /// The URL of the committed page, if any (never a load still pending).
  std::optional<std::string> url() const {
    const auto shown = engine_->url();
    return shown ? std::optional<std::string>(*shown) : std::nullopt;
  }
  /// The engine behind the view (for the engine's own accessors, such as the
  /// native widget).
  WebEngine& engine() { return *engine_; }
  /// How the view's log lines name it: `WebSDKConfig::name`, or "view N".
  const std::string& name() const { return name_; }

  /// The requests of the document shown that plugins have not answered yet,
  /// oldest first: what a page is still waiting for. UI thread.
  std::vector<WebSDKPendingRequest> pendingRequests() const;
  /// How the answers given so far matched the page's requests. UI thread.
  WebSDKAnswerCounts answerCounts() const { return answerCounts_; }

  // The engine's events (also callable by a host that drives zooming itself):
  // whether the pinch starting may go on.
  bool scrollViewWillBeginZooming() override;

 private:
  void didStartProvisionalNavigation(const WebSDKNavigation* navigation) override;
  void didFinish(const WebSDKNavigation* navigation) override;
  void didFail(const WebSDKNavigation* navigation, const WebSDKError& error) override;
  void didFailProvisionalNavigation(const WebSDKNavigation* navigation, const WebSDKError& error) override;
  void decidePolicyFor(const WebSDKNavigationAction& action, WebSDKNavigationActionDecision decisionHandler) override;
  void decidePolicyFor(const WebSDKNavigationResponse& response,
                       WebSDKNavigationResponseDecision decisionHandler) override;
  void didReceive(const WebSDKAuthenticationChallenge& challenge,
                  WebSDKAuthChallengeCompletion completionHandler) override;

  void respond(std::optional<std::string> payload, WebSDKResponseType type, const std::string& requestId,
               std::optional<std::int64_t> statusCode, std::optional<std::string> statusMessage);

  /// Called off the UI thread, posts `operation` to it (in order with every
  /// other task there) and says so; on the UI thread, says no.
  template <class Operation>
  bool carriedToUIThread(Operation operation) {
    if (engine_->mainQueue().isUIThread()) return false;
    engine_->mainQueue().post([weak = weak_from_this(), operation = std::move(operation)]() mutable {
      if (const auto view = weak.lock()) operation(*view);
    });
    return true;
  }

  const WebSDKConfig& bridgeConfig() const override { return webSDKConfig; }
  std::uint64_t expectAnswer(const std::string& requestId, DocumentID document, std::string_view family,
                             std::string_view action) override;
  void answerRequest(WebSDKResponseModel response, DocumentID document, std::uint64_t serial, bool abandoned) override;
  void refuseRepeatedAnswer(const std::string& requestId) override;
  /// Where an answer goes: a document named by the bridge, the request a
  /// reply is bound to, or (neither) whichever document asked the id.
  struct AnswerRoute {
    std::optional<DocumentID> document;
    std::uint64_t serial = 0;
    bool abandoned = false;
    // Evaluated at once (the caller is on the UI thread), its evaluation
    // errors logged; the listener is not told, and resetWebView() holds no sway.
    bool readyEncoded = false;
  };
  /// The one way every answer goes to the page: checked, and carried to the
  /// main queue unless ready-encoded.
  void send(WebSDKResponseModel response, AnswerRoute route);
  /// Finds the answer's document and evaluates it there, or drops it. UI thread.
  void evaluateAnswer(WebSDKResponseModel response, std::string script, AnswerRoute route);
  /// The document that asked `requestId`: of several, the one shown, else the
  /// oldest (each forgotten once answered); for an id never asked, the
  /// document shown if it is whitelisted. UI thread.
  std::optional<DocumentID> answerTarget(const std::string& requestId, WebSDKDropReason& why);
  /// The same for the answer of a reply bound to request `serial` of
  /// `document`: that document, once. UI thread.
  std::optional<DocumentID> boundTarget(const std::string& requestId, DocumentID document, std::uint64_t serial,
                                        bool abandoned, WebSDKDropReason& why);
  /// An answer to an id nobody waits for: dropped as late when the document
  /// that last asked it is gone, else an unasked answer. UI thread.
  std::optional<DocumentID> unaskedTarget(const std::string& requestId, std::optional<DocumentID> bound,
                                          WebSDKDropReason& why);
  /// The committed document shown, if its host is whitelisted. UI thread.
  std::optional<DocumentID> trustedDocumentShown();
  /// Warns, once per view, of a push whose text would break out of its quotes.
  void warnOfBreakingText(const WebSDKJSFunctionType& type);
  bool toldBreakingPush_ = false;  // UI thread only
  /// Evaluates a pushed call in the document shown, if it is whitelisted.
  void push(std::string script, ScriptCompletion completion);
  void tellDropped(const WebSDKResponseModel& response, WebSDKDropReason reason);
  /// A completion that tells the listener when `response` never ran.
  ScriptCompletion dropNotice(WebSDKResponseModel response);

  bool pinchGestureEnable_ = false;
  bool javaScriptEnabled_ = true;
  bool suppressesIncrementalRendering_ = true;
  /// Says when a family's plugin comes too late (the page already got 1004
  /// for want of it) or is released before the page can use it (the view
  /// holds it weakly: a temporary dies at once).
  void registered(std::string_view family, std::size_t slot, std::weak_ptr<const void> plugin);
  /// Says, once the caller's turn is over, when what the host handed over is
  /// gone already: nobody but the view was holding it.
  void watchHeld(std::string what, std::weak_ptr<const void> object);
  /// Says what in the settings the view was made with cannot work as meant.
  void checkSettings(const WebSDKConfig& given) const;
  /// A delegate and a listener handed to create() that nothing else held.
  std::shared_ptr<WebSDKNavigationDelegate> keptDelegate_;
  std::shared_ptr<WebSDKJSCommunicationProtocol> keptListener_;
  /// Set by resetWebView(): answers after it are dropped, and said once.
  std::atomic<bool> detached_{false}, toldDetached_{false};
  /// Tells `message` through the log, naming this view.
  void say(LogLevel level, std::string_view topic, std::string_view message) const;
  std::string_view viewName() const override { return name_; }

  const std::string name_;
  const std::shared_ptr<WebSDKScriptHandler> handler_;
  const std::unique_ptr<WebEngine> engine_;
  // Requests handed to plugins and not yet answered, oldest first per id (a
  // page may reuse an id). UI thread only.
  struct Awaiting {
    DocumentID document;
    std::string_view family, action;
    std::chrono::steady_clock::time_point askedAt;
    std::uint64_t serial;  // tells a reused id's requests apart at their deadline
  };
  std::uint64_t lastSerial_ = 0;
  /// Request `serial` (id `requestId`) reached its family's deadline `limit`:
  /// reported if still unanswered, and failed when the view is set to.
  void answerOverdue(const std::string& requestId, std::uint64_t serial, std::chrono::milliseconds limit);
  std::unordered_map<std::string, std::deque<Awaiting>> awaiting_;
  std::size_t awaitingCount_ = 0;
  /// Takes the request `asked` of `requests` (of id `requestId`) off the
  /// waiting list and remembers who asked it.
  void settle(const std::string& requestId, std::deque<Awaiting>& requests, std::deque<Awaiting>::iterator asked);
  // Ids answered or failed lately, with the document that asked each: a
  // duplicate or late answer to a document gone goes nowhere, never to the
  // next page. Bounded in count and age. UI thread only.
  struct Settled {
    DocumentID document;
    std::chrono::steady_clock::time_point at;
  };
  std::unordered_map<std::string, Settled> settled_;
  std::deque<std::pair<std::string, std::chrono::steady_clock::time_point>> settledOrder_;
  WebSDKAnswerCounts answerCounts_;
  // The last document found on a whitelisted host. UI thread only.
  DocumentID trustedDocument_ = 0;
  // Whether a navigation was seen waiting for want of a delegate. UI thread only.
  bool toldNoDelegate_ = false;
  // Set when the view records its traffic (WebSDKConfig::recording, or WEBSDK_RECORD).
  std::shared_ptr<WebSDKTrafficRecorder> recorder_;
  /// The URL shown, for a recording's lines. UI thread.
  std::string shownURL() const {
    const auto shown = engine_->url();
    return shown ? std::string(*shown) : std::string();
  }
};

}  // namespace websdk
