#include "websdk/webview/WebSDKWebView.hpp"

#include "../LogText.hpp"
#include "websdk/Log.hpp"
#include "websdk/bridge/Families.hpp"
#include "websdk/bridge/WebSDKScriptHandler.hpp"
#include "websdk/json/Quoted.hpp"
#include "websdk/webview/WebEngine.hpp"
#include "websdk/webview/WebSDKNavigationDelegate.hpp"
#include "websdk/webview/WebSDKTrafficRecorder.hpp"
#include "websdk/webview/WebViewInternals.hpp"

#include <algorithm>
#include <atomic>
#include <cctype>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <deque>
#include <unordered_map>
#include <utility>

namespace websdk {
namespace {
constexpr std::string_view kHandlerName = "nativeRequest";

constexpr double kDefaultLoadTimeout = 60;

// A field name is an HTTP token; a value holds no line break and no NUL.
std::optional<std::string> fieldRefused(std::string_view name, std::string_view value) {
  constexpr std::string_view kTokenMarks = "!#$%&'*+-.^_`|~";
  if (name.empty()) return "its name is empty";
  for (const char c : name)
    if (!std::isalnum(static_cast<unsigned char>(c)) && kTokenMarks.find(c) == std::string_view::npos)
      return "its name holds " + std::string(c == ' ' ? "a space" : "a character a field name cannot have") +
             " (names are letters, digits and !#$%&'*+-.^_`|~)";
  if (value.find_first_of(std::string_view("\r\n\0", 3)) != std::string_view::npos)
    return "its value holds a line break or a NUL, which would end the field early";
  return std::nullopt;
}

// What in the header text ends the header script's single-quoted string early,
// and where.
std::optional<std::string> headerTextBreaks(std::string_view text) {
  const auto at = text.find_first_of("'\\\r\n");
  if (at == std::string_view::npos) return std::nullopt;
  const char c = text[at];
  const char* what = c == '\'' ? "a single quote" : c == '\\' ? "a backslash" : "a line break";
  return std::string(what) + " at byte " + std::to_string(at);
}
}  // namespace

// The view's engine client and the bridge's view, with everything the view
// keeps: the public class holds only this.
struct WebSDKWebView::Impl final : WebEngineClient, BridgeView {
  Impl(WebSDKWebView& view, std::unique_ptr<WebEngine> engine, std::string name);

  WebSDKWebView& self;
  // The view's public fields, read as before by the code below.
  const WebSDKConfig& webSDKConfig;
  std::weak_ptr<WebSDKNavigationDelegate>& webSDKNavigationDelegate;
  std::weak_ptr<WebSDKJSCommunicationProtocol>& webJSCommunicatorDelegate;

  /// The view's part, held as long as the view is: what a queued task locks.
  std::weak_ptr<Impl> weak_from_this() const;

  void loadWebView(const std::string& with, const WebSDKHeaders& requestHeaders,
                   const std::optional<WebSDKHeaders>& externalHeaders, double timeoutInterval);
  void executeJSScript(const WebSDKAppFunctions& type);
  std::vector<WebSDKPendingRequest> pendingRequests() const;

  // ---- The engine's client --------------------------------------------------
  void didStartProvisionalNavigation(const WebSDKNavigation* navigation) override;
  void didFinish(const WebSDKNavigation* navigation) override;
  void didFail(const WebSDKNavigation* navigation, const WebSDKError& error) override;
  void didFailProvisionalNavigation(const WebSDKNavigation* navigation, const WebSDKError& error) override;
  void decidePolicyFor(const WebSDKNavigationAction& action, WebSDKNavigationActionDecision decisionHandler) override;
  void decidePolicyFor(const WebSDKNavigationResponse& response,
                       WebSDKNavigationResponseDecision decisionHandler) override;
  void didReceive(const WebSDKAuthenticationChallenge& challenge,
                  WebSDKAuthChallengeCompletion completionHandler) override;
  bool scrollViewWillBeginZooming() override;

  // ---- The bridge's view ----------------------------------------------------
  const WebSDKConfig& bridgeConfig() const override { return webSDKConfig; }
  void deliver(WebSDKResponseModel response, std::optional<DocumentID> document) override {
    send(std::move(response), Impl::AnswerRoute{document});
  }
  std::uint64_t expectAnswer(const std::string& requestId, DocumentID document, std::string_view family,
                             std::string_view action) override;
  void answerRequest(WebSDKResponseModel response, DocumentID document, std::uint64_t serial, bool abandoned) override;
  void refuseRepeatedAnswer(const std::string& requestId) override;
  std::string_view viewName() const override { return name_; }

  void respond(std::optional<std::string> payload, WebSDKResponseType type, const std::string& requestId,
               std::optional<std::int64_t> statusCode, std::optional<std::string> statusMessage);
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
  // `script` is the answer's, unless the engine takes answers as data.
  void evaluateAnswer(WebSDKResponseModel response, std::optional<std::string> script, AnswerRoute route);
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
  /// A host's event as the recording takes it: its call, and its data to
  /// mask key by key.
  struct EventRecord {
    std::string call;
    JSON data;
  };
  /// `event`: what the recording writes of an event, in place of its script.
  void push(std::string script, ScriptCompletion completion, std::optional<EventRecord> event = std::nullopt);
  void recordPush(const std::string& script, const std::optional<EventRecord>& event,
                  std::optional<WebSDKDropReason> dropped);
  void tellDropped(const WebSDKResponseModel& response, WebSDKDropReason reason);
  /// A completion that tells the listener when `response` never ran.
  ScriptCompletion dropNotice(WebSDKResponseModel response);

  bool pinchGestureEnable_ = false;
  bool javaScriptEnabled_ = true;
  bool suppressesIncrementalRendering_ = true;
  /// Says when a family's plugin comes too late (the page already got 1004
  /// for want of it) or is released before the page can use it (the view
  /// holds it weakly: a temporary dies at once).
  void registered(const FamilyType& family, std::weak_ptr<const void> plugin);
  /// Tells the page's `nativeEvent` of the host's event; UI thread.
  void emit(std::string name, std::string script, std::optional<EventRecord> recorded);
  bool toldNoEventReceiver_ = false;  // UI thread only
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
  std::unordered_map<std::string, std::vector<Awaiting>> awaiting_;
  std::size_t awaitingCount_ = 0;
  /// Takes the request `asked` of `requests` (of id `requestId`) off the
  /// waiting list and remembers who asked it.
  void settle(const std::string& requestId, std::vector<Awaiting>& requests, std::vector<Awaiting>::iterator asked);
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

namespace {
/// Called off the UI thread, posts `operation` to it (in order with every
/// other task there) and says so; on the UI thread, says no.
template <class Operation>
bool carriedToUIThread(WebSDKWebView& view, Operation operation) {
  MainQueue& queue = view.engine().mainQueue();
  if (queue.isUIThread()) return false;
  queue.post([weak = view.weak_from_this(), operation = std::move(operation)]() mutable {
    if (const auto v = weak.lock()) operation(*v);
  });
  return true;
}
}  // namespace

WebSDKAppFunctions WebSDKAppFunctions::nativeHeaders(const WebSDKHeaders& fields) {
  JSONObject object;
  for (const auto& [name, value] : fields) object.emplace(name, value);
  // JSON text has no raw line breaks; its backslashes and any single quote
  // would be read by the script's string literal, so they are escaped for it.
  std::string text;
  for (const char c : serialize(object)) {
    if (c == '\\' || c == '\'') text += '\\';
    text += c;
  }
  return WebSDKAppFunctions(std::move(text), true);
}

std::string WebSDKAppFunctions::script() const {
  return "window.__native_headers__ = {\n    getDovaraHeaders: function() {\n        return '" + headers_ +
         "';\n    }\n};";
}

std::shared_ptr<WebSDKWebView> WebSDKWebView::create(
    std::unique_ptr<WebEngine> engine, std::vector<std::string> whitelistedHosts,
    const std::shared_ptr<DvWebViewGenericCallsBacks>& genericDelegate,
    const std::shared_ptr<DvWebViewPaymentsCallsBacks>& paymentsDelegate,
    const std::shared_ptr<WebSDKNavigationDelegate>& webViewDelegate,
    const std::shared_ptr<WebSDKJSCommunicationProtocol>& webJSCommunicationDelegate,
    const std::shared_ptr<DvWebViewSetRecipientInfoCallsBacks>& setRecipientInfoDelegate, bool shouldWhitelistAllUrls) {
  WebSDKConfig config;
  config.whitelistedHosts = std::move(whitelistedHosts);
  config.shouldWhitelistAllUrls = shouldWhitelistAllUrls;
  return create(std::move(engine), config, genericDelegate, paymentsDelegate, webViewDelegate,
                webJSCommunicationDelegate, setRecipientInfoDelegate);
}

std::shared_ptr<WebSDKWebView> WebSDKWebView::create(
    std::unique_ptr<WebEngine> engine, const WebSDKConfig& config,
    const std::shared_ptr<DvWebViewGenericCallsBacks>& genericDelegate,
    const std::shared_ptr<DvWebViewPaymentsCallsBacks>& paymentsDelegate,
    const std::shared_ptr<WebSDKNavigationDelegate>& webViewDelegate,
    const std::shared_ptr<WebSDKJSCommunicationProtocol>& webJSCommunicationDelegate,
    const std::shared_ptr<DvWebViewSetRecipientInfoCallsBacks>& setRecipientInfoDelegate) {
  // Whatever thread lets the last reference go (a worker answering through a
  // weak reference, say), the view and its engine are torn down on the UI
  // thread: engines may be touched nowhere else.
  auto view =
      std::shared_ptr<WebSDKWebView>(new WebSDKWebView(Passkey{}, std::move(engine), config), [](WebSDKWebView* v) {
        MainQueue& queue = v->engine().mainQueue();
        if (queue.isUIThread()) {
          delete v;
        } else {
          queue.post([v] { delete v; });
        }
      });
  // Wiring needs the shared owner, so it happens once the view exists.
  Impl& m = *view->impl_;
  WebSDKScriptHandler& h = *m.handler_;
  h.webview = std::shared_ptr<BridgeView>(view, &m);
  view->setPlugin<GenericFamily>(genericDelegate);
  view->setPlugin<PaymentsFamily>(paymentsDelegate);
  h.listener =
      std::shared_ptr<const std::weak_ptr<WebSDKJSCommunicationProtocol>>(view, &view->webJSCommunicatorDelegate);
  h.trafficRecorder = m.recorder_;
  view->webSDKNavigationDelegate = webViewDelegate;
  view->setPlugin<SetRecipientInfoFamily>(setRecipientInfoDelegate);
  view->webJSCommunicatorDelegate = webJSCommunicationDelegate;
  m.engine_->setClient(&m);
  // The view holds its delegate and listener weakly. One that nothing else
  // holds (std::make_shared<...>() written into the call) would die before
  // the first navigation, and the view with it would stay blank: the view
  // keeps such a one itself.
  if (webViewDelegate.use_count() == 1) m.keptDelegate_ = webViewDelegate;
  if (webJSCommunicationDelegate.use_count() == 1) m.keptListener_ = webJSCommunicationDelegate;
  m.checkSettings(config);
  return view;
}

namespace {
// The whitelist as the engine reads hosts: its entries in the same canonical
// form as every URL they are held against.
WebSDKConfig forEngine(WebSDKConfig config, const WebEngine& engine) {
  config.canonicalizer = engine.urlCanonicalizer();
  std::erase_if(config.answerDeadlines, [](const auto& deadline) { return deadline.second.count() <= 0; });
  return config.normalized();
}

// The view's recording: its configuration's, or else the one an app that
// cannot be rebuilt asks for through WEBSDK_RECORD (masked, default cap).
std::shared_ptr<WebSDKTrafficRecorder> recorderFor(const WebSDKConfig& config) {
  std::optional<WebSDKTrafficRecording> recording = config.recording;
  if (!recording)
    if (const char* path = std::getenv("WEBSDK_RECORD"); path != nullptr && *path != '\0')
      recording = WebSDKTrafficRecording{.path = path};
  if (!recording) return nullptr;
  return WebSDKTrafficRecorder::open(*recording, config);
}

// The fields of header text made for the page's header script, when it reads
// as a JSON object (undoing the script's escapes when it was made escaped).
std::map<std::string, std::string> headerFields(const WebSDKAppFunctions& functions) {
  std::string text = functions.headers();
  if (functions.escaped()) {
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
      if (text[i] == '\\' && i + 1 < text.size() && (text[i + 1] == '\\' || text[i + 1] == '\'')) ++i;
      plain += text[i];
    }
    text = std::move(plain);
  }
  std::map<std::string, std::string> out;
  const JSON parsed = parseJSON(text);
  if (const auto* o = parsed.if_object())
    for (const auto& [name, value] : *o)
      if (value.is_string()) out.emplace(std::string(name), std::string(value.get_string()));
  return out;
}
}  // namespace

namespace {
std::string nameFor(const WebSDKConfig& config) {
  static std::atomic<std::uint64_t> made{0};
  const std::uint64_t n = ++made;
  return config.name.empty() ? "view " + std::to_string(n) : config.name;
}
}  // namespace

WebSDKWebView::WebSDKWebView(Passkey, std::unique_ptr<WebEngine> engine, const WebSDKConfig& config)
    : webSDKConfig(forEngine(config, *engine)),
      impl_(std::make_unique<Impl>(*this, std::move(engine), nameFor(config))) {}

WebSDKWebView::Impl::Impl(WebSDKWebView& view, std::unique_ptr<WebEngine> engine, std::string name)
    : self(view),
      webSDKConfig(view.webSDKConfig),
      webSDKNavigationDelegate(view.webSDKNavigationDelegate),
      webJSCommunicatorDelegate(view.webJSCommunicatorDelegate),
      name_(std::move(name)),
      handler_(std::make_shared<WebSDKScriptHandler>()),
      engine_(std::move(engine)),
      recorder_(recorderFor(webSDKConfig)) {
  // Media plays inline in every engine's view from its start: nothing to ask.
  engine_->addScriptMessageHandler(handler_, std::string(kHandlerName));
  // A recording is written by a thread of its own, which a test's queue waits for.
  if (recorder_) engine_->mainQueue().track(recorder_);
  // javaScriptEnabled and suppressesIncrementalRendering start true without
  // touching the engine: its configuration stays as the host made it.
}

WebSDKWebView::~WebSDKWebView() = default;

std::weak_ptr<WebSDKWebView::Impl> WebSDKWebView::Impl::weak_from_this() const {
  // The view owns its part: a task that holds one holds the other.
  if (const auto view = self.weak_from_this().lock()) return std::shared_ptr<Impl>(view, view->impl_.get());
  return {};
}

void WebSDKWebView::Impl::say(LogLevel level, std::string_view topic, std::string_view message) const {
  log(level, topic, name_, message);
}

// Everything that touches the engine runs on the UI thread: a call from
// another thread is carried there, in order with the rest of its work.
void WebSDKWebView::addWebSDKScriptHandler() {
  if (carriedToUIThread(*this, [](WebSDKWebView& v) { v.addWebSDKScriptHandler(); })) return;
  impl_->engine_->addScriptMessageHandler(impl_->handler_, std::string(kHandlerName));
}
void WebSDKWebView::removeWebSDKScriptHandler() {
  if (carriedToUIThread(*this, [](WebSDKWebView& v) { v.removeWebSDKScriptHandler(); })) return;
  impl_->engine_->removeScriptMessageHandler(kHandlerName);
}
void WebSDKWebView::resetWebView() {
  impl_->handler_->webview.reset();
  impl_->detached_ = true;
}

namespace {
// Why a whitelist entry can never match a page's URL, if it cannot.
std::optional<std::string> entryNeverMatches(std::string_view entry) {
  if (entry.empty()) return "it is empty, and an empty entry trusts nothing";
  if (const auto separator = entry.find("://"); separator != std::string_view::npos) {
    if (entry.substr(separator + 3).find_first_of("/?#") != std::string_view::npos)
      return "it has a path, query or fragment: an entry with a scheme names a scheme and host only "
             "(\"app://shop\"), so it matches no page";
    if (separator + 3 == entry.size()) return "it names a scheme but no host";
    return std::nullopt;
  }
  if (entry.starts_with('[')) return std::nullopt;  // an IPv6 address
  if (const auto at = entry.find_first_of(":/?#@\\ "); at != std::string_view::npos) {
    const char c = entry[at];
    return std::string(c == ':'   ? "it has a port (or a scheme without \"//\")"
                       : c == ' ' ? "it has a space"
                       : c == '@' ? "it has a user"
                                  : "it has a path, query or fragment") +
           ": a plain entry names a host, matched without scheme, port or path, so it matches no page "
           "(write \"shop.example\", or \"app://shop\" for the app's own pages)";
  }
  return std::nullopt;
}
}  // namespace

void WebSDKWebView::Impl::checkSettings(const WebSDKConfig& given) const {
  for (const auto& entry : given.whitelistedHosts)
    if (const auto why = entryNeverMatches(entry))
      say(LogLevel::warning, "trust", "the whitelist entry \"" + entry + "\" can never match: " + *why);
  for (const auto& [family, limit] : given.answerDeadlines)
    if (limit.count() <= 0)
      say(LogLevel::warning, "answer",
          "the answer deadline of \"" + family + "\" is " + std::to_string(limit.count()) +
              " ms; a deadline must be longer than 0 ms, so this one is not kept");
}

void WebSDKWebView::Impl::watchHeld(std::string what, std::weak_ptr<const void> object) {
  engine_->mainQueue().post([weak = weak_from_this(), what = std::move(what), object = std::move(object)] {
    if (const auto view = weak.lock(); view && object.expired())
      view->say(LogLevel::warning, "plugin",
                "the " + what +
                    " handed to the view is gone already: the view holds it weakly, and nothing else held it "
                    "(a temporary?). Keep a std::shared_ptr to it for as long as the view");
  });
}

void WebSDKWebView::Impl::registered(const FamilyType& family, std::weak_ptr<const void> plugin) {
  if (const auto refused = handler_->takeUnsubscribedAsk(family); refused && !plugin.expired())
    say(LogLevel::warning, "plugin",
        "the " + std::string(family.name) + " plugin was registered after the page had asked: " + *refused +
            " got 1004 (not subscribed). Register plugins before the page loads");
  if (!plugin.expired()) watchHeld(std::string(family.name) + " plugin", std::move(plugin));
}

WebSDKRegistration WebSDKWebView::setPlugin(const FamilyType& family, std::weak_ptr<void> plugin) {
  if (auto refused = impl_->handler_->setPlugin(family, plugin)) {
    impl_->say(LogLevel::error, "plugin", *refused);
    return WebSDKRegistration{std::move(*refused)};
  }
  // A host's family's sensitive fields are masked like the library's.
  if (impl_->recorder_ && family.slot >= kFamilyCount) impl_->recorder_->addSensitiveKeys(family.sensitiveKeys);
  impl_->registered(family, std::move(plugin));
  return {};
}

std::vector<const FamilyType*> WebSDKWebView::families() const { return impl_->handler_->families(); }

void WebSDKWebView::setRestaurantEmpathyPlugin(const std::shared_ptr<DvWebViewRestaurantEmpathyCallsBacks>& p) {
  setPlugin<RestaurantEmpathyFamily>(p);
}
void WebSDKWebView::setChatConversationPlugin(const std::shared_ptr<DvWebViewChatConversationCallsBacks>& p) {
  setPlugin<ChatConversationFamily>(p);
}
void WebSDKWebView::setCartPlugin(const std::shared_ptr<DvCartWebViewCallBacks>& p) { setPlugin<CartFamily>(p); }
void WebSDKWebView::setPXCartPlugin(const std::shared_ptr<DvPXCartWebViewCallBacks>& p) { setPlugin<PXCartFamily>(p); }
void WebSDKWebView::setVRCartPlugin(const std::shared_ptr<DvVRCartWebViewCallBacks>& p) { setPlugin<VRCartFamily>(p); }
void WebSDKWebView::setGiftingCartPlugin(const std::shared_ptr<DvGiftingCartWebViewCallBacks>& p) {
  setPlugin<GiftingCartFamily>(p);
}
void WebSDKWebView::setZippaPlugin(const std::shared_ptr<DvZippaWebViewCallBacks>& p) { setPlugin<ZippaFamily>(p); }
void WebSDKWebView::setAccountsPlugin(const std::shared_ptr<DvAccountsWebViewCallBacks>& p) {
  setPlugin<AccountsFamily>(p);
}
void WebSDKWebView::setMenuListPlugin(const std::shared_ptr<DvWebViewMenuListCallbacks>& p) {
  setPlugin<MenuListFamily>(p);
}

void WebSDKWebView::loadWebView(const std::string& with, const WebSDKHeaders& requestHeaders,
                                const std::optional<WebSDKHeaders>& externalHeaders, double timeoutInterval) {
  if (carriedToUIThread(
          *this, [=](WebSDKWebView& v) { v.loadWebView(with, requestHeaders, externalHeaders, timeoutInterval); }))
    return;
  impl_->loadWebView(with, requestHeaders, externalHeaders, timeoutInterval);
}

void WebSDKWebView::Impl::loadWebView(const std::string& with, const WebSDKHeaders& requestHeaders,
                                      const std::optional<WebSDKHeaders>& externalHeaders, double timeoutInterval) {
  // The load is judged and made in the form the engine itself would load:
  // judging the raw text could trust a host the engine then does not reach.
  const auto canonical = webSDKConfig.canonicalizer(with);
  if (!canonical) {
    say(LogLevel::warning, "load", "loadWebView: \"" + with + "\" is not a URL; nothing was loaded");
    return;
  }
  if (!(timeoutInterval > 0) || !std::isfinite(timeoutInterval)) {
    say(LogLevel::warning, "load",
        "loadWebView: the timeout " + std::to_string(timeoutInterval) + " for " + *canonical +
            " is not a positive number of seconds; the load gets " + std::to_string(int(kDefaultLoadTimeout)) + " s");
    timeoutInterval = kDefaultLoadTimeout;
  }
  if (recorder_) {
    recorder_->addSecrets(requestHeaders);
    if (externalHeaders) recorder_->addSecrets(*externalHeaders);
  }
  WebSDKHeaders headers;
  std::vector<std::string> confined;
  // The app's headers go only to trusted hosts, on the first request and on
  // every redirect; an external header of the same name is the page's own.
  const auto overridden = [&](const std::string& name) {
    return externalHeaders && std::ranges::any_of(*externalHeaders, [&](const auto& external) {
             return sameFieldName(external.first, name);
           });
  };
  if (webSDKConfig.isWhitelistedURL(*canonical)) {
    headers = requestHeaders;
    for (const auto& field : requestHeaders)
      if (!overridden(field.first)) confined.push_back(field.first);
  }
  if (externalHeaders)
    for (const auto& external : *externalHeaders) {
      std::erase_if(headers, [&](const auto& field) { return sameFieldName(field.first, external.first); });
      headers.insert_or_assign(external.first, external.second);
    }
  // A field the network layer refuses would be dropped out of sight, the
  // app's token with it: it is left out here, and said.
  std::erase_if(headers, [&](const auto& field) {
    const auto why = fieldRefused(field.first, field.second);
    if (why)
      say(LogLevel::warning, "headers",
          "loadWebView: the header field \"" + shownInLog(field.first) + "\" is not sent: " + *why);
    return why.has_value();
  });
  std::erase_if(confined, [&](const std::string& name) { return fieldRefused(name, "").has_value(); });
  URLRequest request{*canonical,          {headers.begin(), headers.end()},
                     timeoutInterval,     URLRequestCachePolicy::useProtocolCachePolicy,
                     std::move(confined), webSDKConfig};
  engine_->load(request);
}

void WebSDKWebView::executeJSScript(const WebSDKAppFunctions& type) {
  if (carriedToUIThread(*this, [type](WebSDKWebView& v) { v.executeJSScript(type); })) return;
  impl_->executeJSScript(type);
}

void WebSDKWebView::Impl::executeJSScript(const WebSDKAppFunctions& type) {
  if (const auto breaking = type.escaped() ? std::nullopt : headerTextBreaks(type.headers()))
    say(LogLevel::warning, "headers",
        "executeJSScript: the header text holds " + *breaking +
            ", which ends the header script's string early: the script will not run and the page gets no "
            "window.__native_headers__. The text is inserted as it stands; make it with "
            "WebSDKAppFunctions::nativeHeaders(fields).");
  if (recorder_) recorder_->addSecrets(headerFields(type));
  engine_->addUserScript(UserScript{type.script()});
}

void WebSDKWebView::setJavaScriptEnabled(bool enabled) {
  if (carriedToUIThread(*this, [enabled](WebSDKWebView& v) { v.setJavaScriptEnabled(enabled); })) return;
  impl_->javaScriptEnabled_ = enabled;
  impl_->engine_->setPreferences(WebPreferences{enabled});
}

void WebSDKWebView::setSuppressesIncrementalRendering(bool suppress) {
  if (carriedToUIThread(*this, [suppress](WebSDKWebView& v) { v.setSuppressesIncrementalRendering(suppress); })) return;
  // No engine has such a switch: the view keeps it.
  impl_->suppressesIncrementalRendering_ = suppress;
}

bool WebSDKWebView::pinchGestureEnable() const { return impl_->pinchGestureEnable_; }
void WebSDKWebView::setPinchGestureEnable(bool enable) { impl_->pinchGestureEnable_ = enable; }
bool WebSDKWebView::javaScriptEnabled() const { return impl_->javaScriptEnabled_; }
bool WebSDKWebView::suppressesIncrementalRendering() const { return impl_->suppressesIncrementalRendering_; }
bool WebSDKWebView::scrollViewWillBeginZooming() { return impl_->pinchGestureEnable_; }
bool WebSDKWebView::Impl::scrollViewWillBeginZooming() { return self.scrollViewWillBeginZooming(); }

std::optional<std::string> WebSDKWebView::url() const {
  const auto shown = impl_->engine_->url();
  return shown ? std::optional<std::string>(*shown) : std::nullopt;
}
WebEngine& WebSDKWebView::engine() { return *impl_->engine_; }
const std::string& WebSDKWebView::name() const { return impl_->name_; }
WebSDKAnswerCounts WebSDKWebView::answerCounts() const { return impl_->answerCounts_; }
std::vector<WebSDKPendingRequest> WebSDKWebView::pendingRequests() const { return impl_->pendingRequests(); }

const std::shared_ptr<WebSDKScriptHandler>& WebViewInternals::handler(const WebSDKWebView& view) {
  return view.impl_->handler_;
}

// ---- Answers -----------------------------------------------------------------

std::uint64_t WebSDKWebView::Impl::expectAnswer(const std::string& requestId, DocumentID document,
                                                std::string_view family, std::string_view action) {
  // A page that asks and never hears back must not grow this without bound:
  // past the limit the oldest documents' requests are forgotten first.
  constexpr std::size_t kLimit = std::size_t{1} << 16;
  if (awaitingCount_ >= kLimit) {
    const DocumentID shown = engine_->document();
    for (auto it = awaiting_.begin(); it != awaiting_.end();) {
      awaitingCount_ -= std::erase_if(it->second, [&](const Awaiting& a) { return a.document != shown; });
      it = it->second.empty() ? awaiting_.erase(it) : std::next(it);
    }
    if (awaitingCount_ >= kLimit) {
      awaiting_.clear();
      awaitingCount_ = 0;
    }
  }
  const std::uint64_t serial = ++lastSerial_;
  awaiting_[requestId].push_back({document, family, action, std::chrono::steady_clock::now(), serial});
  ++awaitingCount_;
  const auto& deadlines = webSDKConfig.answerDeadlines;
  auto deadline = deadlines.find(family);
  if (deadline == deadlines.end()) deadline = deadlines.find("*");
  if (deadline == deadlines.end()) return serial;
  engine_->mainQueue().postAfter(deadline->second,
                                 [weak = weak_from_this(), requestId, serial, limit = deadline->second] {
                                   if (const auto view = weak.lock()) view->answerOverdue(requestId, serial, limit);
                                 });
  return serial;
}

void WebSDKWebView::Impl::answerOverdue(const std::string& requestId, std::uint64_t serial,
                                        std::chrono::milliseconds limit) {
  const auto it = awaiting_.find(requestId);
  if (it == awaiting_.end()) return;
  const auto asked = std::ranges::find(it->second, serial, &Awaiting::serial);
  if (asked == it->second.end()) return;  // answered in time
  ++answerCounts_.overdue;
  const WebSDKPendingRequest request{requestId, asked->family, asked->action, asked->askedAt};
  const DocumentID document = asked->document;
  const bool fails = webSDKConfig.failsOverdueRequests;
  // Settled now: the plugin's own answer, if it ever comes, is unasked (and
  // dropped, once the page that asked is gone).
  if (fails) settle(requestId, it->second, asked);
  const std::string waited = std::to_string(limit.count()) + " ms";
  say(LogLevel::warning, "answer",
      "request id \"" + shownInLog(requestId) + "\" (" + std::string(request.family) + " " +
          std::string(request.action) + ") has no answer after " + waited +
          (fails ? "; the page is told it failed" : "; it still waits"));
  if (auto listener = webJSCommunicatorDelegate.lock()) listener->didMissAnswerDeadline(request);
  if (fails)
    deliver(WebSDKResponseModel{std::string(rawValue(WebSDKResponseType::failure)), rawValue(WebSDKStatusCode::unknown),
                                "no answer within " + waited, requestId, std::nullopt},
            document);
}

std::vector<WebSDKPendingRequest> WebSDKWebView::Impl::pendingRequests() const {
  // In the order asked: serials never tie, as two clock readings may.
  std::vector<std::pair<std::uint64_t, WebSDKPendingRequest>> asked;
  const DocumentID shown = engine_->document();
  for (const auto& [id, requests] : awaiting_)
    for (const auto& a : requests)
      if (a.document == shown) asked.push_back({a.serial, {id, a.family, a.action, a.askedAt}});
  std::ranges::sort(asked, {}, &std::pair<std::uint64_t, WebSDKPendingRequest>::first);
  std::vector<WebSDKPendingRequest> out;
  out.reserve(asked.size());
  for (auto& [serial, request] : asked) out.push_back(std::move(request));
  return out;
}

void WebSDKWebView::Impl::settle(const std::string& requestId, std::vector<Awaiting>& requests,
                                 std::vector<Awaiting>::iterator asked) {
  const DocumentID document = asked->document;
  requests.erase(asked);
  --awaitingCount_;
  if (requests.empty()) awaiting_.erase(requestId);
  // Bounded: a page that asks without end must not grow this either.
  constexpr std::size_t kRemembered = 4096;
  constexpr auto kRememberedFor = std::chrono::minutes(10);
  const auto now = std::chrono::steady_clock::now();
  while (!settledOrder_.empty() &&
         (settledOrder_.size() >= kRemembered || now - settledOrder_.front().second > kRememberedFor)) {
    const auto& [id, at] = settledOrder_.front();
    if (const auto old = settled_.find(id); old != settled_.end() && old->second.at == at) settled_.erase(old);
    settledOrder_.pop_front();
  }
  settled_.insert_or_assign(requestId, Settled{document, now});
  settledOrder_.emplace_back(requestId, now);
}

std::optional<DocumentID> WebSDKWebView::Impl::answerTarget(const std::string& requestId, WebSDKDropReason& why) {
  if (const auto it = awaiting_.find(requestId); it != awaiting_.end()) {
    // A page that reloads and counts its ids from 1 again asks the same id
    // twice: the answer is the shown document's, if it asked.
    auto& requests = it->second;
    auto asked = std::ranges::find(requests, engine_->document(), &Awaiting::document);
    if (asked == requests.end()) asked = requests.begin();
    const DocumentID document = asked->document;
    settle(requestId, requests, asked);
    ++answerCounts_.expected;
    why = WebSDKDropReason::documentGone;
    return document;
  }
  return unaskedTarget(requestId, std::nullopt, why);
}

std::optional<DocumentID> WebSDKWebView::Impl::boundTarget(const std::string& requestId, DocumentID document,
                                                           std::uint64_t serial, bool abandoned,
                                                           WebSDKDropReason& why) {
  if (const auto it = awaiting_.find(requestId); it != awaiting_.end())
    if (const auto asked = std::ranges::find(it->second, serial, &Awaiting::serial); asked != it->second.end()) {
      if (abandoned) {
        ++answerCounts_.abandoned;
        const WebSDKPendingRequest request{requestId, asked->family, asked->action, asked->askedAt};
        say(LogLevel::warning, "answer",
            "the reply to request id \"" + shownInLog(requestId) + "\" (" + std::string(request.family) + " " +
                std::string(request.action) + ") was let go without an answer; the page is told it failed");
        if (auto listener = webJSCommunicatorDelegate.lock()) listener->didAbandonRequest(request);
      }
      settle(requestId, it->second, asked);
      ++answerCounts_.expected;
      why = WebSDKDropReason::documentGone;
      return document;
    }
  // Answered already: by its deadline, or by id. A reply let go then owes nothing.
  if (abandoned) return std::nullopt;
  return unaskedTarget(requestId, document, why);
}

std::optional<DocumentID> WebSDKWebView::Impl::unaskedTarget(const std::string& requestId,
                                                             std::optional<DocumentID> bound, WebSDKDropReason& why) {
  const DocumentID shown = engine_->document();
  const auto asked = settled_.find(requestId);
  const bool askerGone = bound ? *bound != shown : asked != settled_.end() && asked->second.document != shown;
  if (askerGone) {
    ++answerCounts_.late;
    say(LogLevel::warning, "answer",
        "an answer to request id \"" + shownInLog(requestId) +
            "\", answered or failed already, for a page that is gone; dropped");
    why = WebSDKDropReason::documentGone;
    return std::nullopt;
  }
  ++answerCounts_.unasked;
  if (webSDKConfig.dropsUnaskedAnswers) {
    say(LogLevel::warning, "answer",
        "an answer to request id \"" + shownInLog(requestId) +
            "\", which no page asked or which was answered already; dropped (dropsUnaskedAnswers)");
    why = WebSDKDropReason::notAsked;
    return std::nullopt;
  }
  // Otherwise only a trusted page shown now may see it.
  say(LogLevel::warning, "answer",
      "an answer to request id \"" + shownInLog(requestId) +
          "\", which no page asked or which was answered already; it goes to the page shown, if trusted");
  why = WebSDKDropReason::pageNotWhitelisted;
  return trustedDocumentShown();
}

std::optional<DocumentID> WebSDKWebView::Impl::trustedDocumentShown() {
  const DocumentID shown = engine_->document();
  if (shown == 0) return std::nullopt;
  // A document's URL never changes: it is judged once.
  if (shown == trustedDocument_) return shown;
  const auto url = engine_->url();
  if (!url || !webSDKConfig.isWhitelistedURL(*url)) return std::nullopt;
  trustedDocument_ = shown;
  return shown;
}

void WebSDKWebView::Impl::tellDropped(const WebSDKResponseModel& response, WebSDKDropReason reason) {
  if (recorder_) recorder_->answer(response, shownURL(), reason);
  if (auto listener = webJSCommunicatorDelegate.lock()) listener->didDropResponse(response, reason);
}

ScriptCompletion WebSDKWebView::Impl::dropNotice(WebSDKResponseModel response) {
  return [weak = weak_from_this(), response = std::move(response)](ScriptResult result) {
    if (!result.dropped) return;
    if (const auto v = weak.lock()) v->tellDropped(response, WebSDKDropReason::documentGone);
  };
}

void WebSDKWebView::deliver(WebSDKResponseModel response, std::optional<DocumentID> document) {
  impl_->send(std::move(response), Impl::AnswerRoute{document});
}

void WebSDKWebView::Impl::answerRequest(WebSDKResponseModel response, DocumentID document, std::uint64_t serial,
                                        bool abandoned) {
  send(std::move(response), AnswerRoute{document, serial, abandoned});
}

void WebSDKWebView::Impl::refuseRepeatedAnswer(const std::string& requestId) {
  if (carriedToUIThread(self, [requestId](WebSDKWebView& v) { v.impl_->refuseRepeatedAnswer(requestId); })) return;
  ++answerCounts_.repeated;
}

void WebSDKWebView::Impl::send(WebSDKResponseModel response, AnswerRoute route) {
  // Detached by the host: the bridge is done with this page.
  if (detached_ && !route.readyEncoded) {
    if (!toldDetached_.exchange(true))
      say(LogLevel::warning, "answer",
          "an answer to request id \"" + shownInLog(response.requestId) +
              "\" came after resetWebView(); answers after it are dropped (told once)");
    return;
  }
  // A page script is UTF-8 text. An envelope holding other bytes would reach
  // the page broken (or not parse there), so such an answer is not sent at all.
  // An engine that takes answers as data gets no script: only the check.
  std::optional<std::string> script;
  const bool utf8 = engine_->answersAsData() ? isValidUTF8(response.type) && isValidUTF8(response.requestId) &&
                                                   (!response.statusMessage || isValidUTF8(*response.statusMessage)) &&
                                                   (!response.payload || isValidUTF8(*response.payload))
                                             : (script = nativeResponseScript(response)).has_value();
  if (!utf8) {
    say(LogLevel::warning, "answer",
        "the answer to request id \"" + shownInLog(response.requestId) +
            "\" holds text that is not UTF-8, which no page can read; dropped");
    return;
  }
  if (route.readyEncoded) return evaluateAnswer(std::move(response), std::move(script), route);
  // The host sent it; an abandoned reply's failure is the view's own, told
  // once it is known to be owed.
  if (!route.abandoned)
    if (auto listener = webJSCommunicatorDelegate.lock()) listener->didSendResponse(response);
  // One task per answer: answers keep their place among everything else the
  // host posts to the main queue. The task holds the view weakly: answers
  // queued for a view that is gone by then do nothing.
  engine_->mainQueue().post(
      [weak = weak_from_this(), script = std::move(script), response = std::move(response), route]() mutable {
        const auto view = weak.lock();
        if (!view) {
          log(LogLevel::warning, "answer",
              "the answer to request id \"" + shownInLog(response.requestId) +
                  "\" came after its web view was torn down; dropped");
          return;
        }
        view->evaluateAnswer(std::move(response), std::move(script), route);
      });
}

void WebSDKWebView::Impl::evaluateAnswer(WebSDKResponseModel response, std::optional<std::string> script,
                                         AnswerRoute route) {
  WebSDKDropReason why = WebSDKDropReason::documentGone;
  const auto target = route.serial != 0
                          ? boundTarget(response.requestId, *route.document, route.serial, route.abandoned, why)
                      : route.document ? route.document
                                       : answerTarget(response.requestId, why);
  if (!target) {
    if (!route.abandoned) tellDropped(response, why);
    return;
  }
  if (route.abandoned)
    if (auto listener = webJSCommunicatorDelegate.lock()) listener->didSendResponse(response);
  if (recorder_) recorder_->answer(response, shownURL());
  // Hearing back costs a trip from the page: asked for only when a listener
  // or a recording wants to know of answers that never ran, or, for a
  // ready-encoded answer, to tell of its evaluation failing.
  ScriptCompletion completion;
  if (!webJSCommunicatorDelegate.expired() || recorder_) completion = dropNotice(response);
  if (route.readyEncoded)
    completion = [name = name_, dropped = std::move(completion)](ScriptResult result) {
      if (result.error) log(LogLevel::warning, "answer", name, "nativeResponse evaluation failed: " + *result.error);
      if (dropped) dropped(std::move(result));
    };
  if (script) return engine_->evaluateInDocument(*target, std::move(*script), std::move(completion));
  engine_->evaluateAnswer(*target, std::move(response), std::move(completion));
}

void WebSDKWebView::Impl::respond(std::optional<std::string> payload, WebSDKResponseType type,
                                  const std::string& requestId, std::optional<std::int64_t> statusCode,
                                  std::optional<std::string> statusMessage) {
  send(makeResponse(type, requestId, std::move(payload), statusCode, std::move(statusMessage)), AnswerRoute{});
}

void WebSDKWebView::sendWebSDKResponse(const JSONObject& with, WebSDKResponseType type, const std::string& requestId,
                                       std::optional<std::int64_t> statusCode,
                                       std::optional<std::string> statusMessage) {
  impl_->respond(renderPayload(with), type, requestId, statusCode, std::move(statusMessage));
}

void WebSDKWebView::sendWebSDKResponse(const WebSDKResponseProtocol& with, WebSDKResponseType type,
                                       const std::string& requestId, std::optional<std::int64_t> statusCode,
                                       std::optional<std::string> statusMessage) {
  impl_->respond(renderPayload(with.json()), type, requestId, statusCode, std::move(statusMessage));
}

void WebSDKWebView::sendWebSDKResponse(std::string with, WebSDKResponseType type, const std::string& requestId,
                                       std::optional<std::int64_t> statusCode,
                                       std::optional<std::string> statusMessage) {
  impl_->respond(std::move(with), type, requestId, statusCode, std::move(statusMessage));
}

void WebSDKWebView::sendSuccess(const std::string& requestId, std::optional<std::int64_t> statusCode,
                                std::optional<std::string> statusMessage) {
  impl_->respond(std::nullopt, WebSDKResponseType::success, requestId, statusCode, std::move(statusMessage));
}

void WebSDKWebView::sendFailure(const std::string& requestId, std::optional<std::int64_t> statusCode,
                                std::optional<std::string> statusMessage) {
  impl_->respond(std::nullopt, WebSDKResponseType::failure, requestId, statusCode, std::move(statusMessage));
}

void WebSDKWebView::sendWebSDKResponse(WebSDKResponseType type, const std::string& requestId,
                                       const std::optional<std::string>& encoder) {
  if (carriedToUIThread(*this, [=](WebSDKWebView& v) { v.sendWebSDKResponse(type, requestId, encoder); })) return;
  WebSDKResponseModel response = makeResponse(type, requestId, encoder);
  // A payload that is not UTF-8 is left out; a request id that is not drops the answer.
  if (response.payload && !isValidUTF8(*response.payload)) response.payload.reset();
  impl_->send(std::move(response), Impl::AnswerRoute{std::nullopt, 0, false, true});
}

// ---- Page events ---------------------------------------------------------------

void WebSDKWebView::Impl::warnOfBreakingText(const WebSDKJSFunctionType& type) {
  if (toldBreakingPush_) return;
  const auto breaking = type.breakingText();
  if (!breaking) return;
  toldBreakingPush_ = true;
  say(LogLevel::warning, "push",
      "the " + std::string(type.caseName()) + " push has " + *breaking +
          " in a text argument, which is spliced into the page's script as it stands: it can end the argument "
          "early and run as script. Send .escaped() pushes for text the app does not control (told once per view)");
}

void WebSDKWebView::Impl::recordPush(const std::string& script, const std::optional<EventRecord>& event,
                                     std::optional<WebSDKDropReason> dropped) {
  if (!recorder_) return;
  if (event)
    recorder_->event(event->call, event->data, shownURL(), dropped);
  else
    recorder_->push(script, shownURL(), dropped);
}

void WebSDKWebView::Impl::push(std::string script, ScriptCompletion completion, std::optional<EventRecord> event) {
  // Pushed events carry the app's state (login, addresses, payloads): only a
  // committed document on a whitelisted host receives them.
  const auto shown = trustedDocumentShown();
  if (!shown) {
    recordPush(script, event, WebSDKDropReason::pageNotWhitelisted);
    if (auto listener = webJSCommunicatorDelegate.lock())
      listener->didDropPush(script, WebSDKDropReason::pageNotWhitelisted);
    if (completion) completion(ScriptResult{std::nullopt, std::nullopt, true});
    return;
  }
  recordPush(script, event, std::nullopt);
  if (!completion && webJSCommunicatorDelegate.expired() && !recorder_)
    return engine_->evaluateInDocument(*shown, script, nullptr);
  engine_->evaluateInDocument(
      *shown, script,
      [weak = weak_from_this(), script, event = std::move(event), completion = std::move(completion)](ScriptResult r) {
        if (r.dropped)
          if (const auto v = weak.lock()) {
            v->recordPush(script, event, WebSDKDropReason::documentGone);
            if (auto l = v->webJSCommunicatorDelegate.lock()) l->didDropPush(script, WebSDKDropReason::documentGone);
          }
        if (completion) completion(std::move(r));
      });
}

void WebSDKWebView::executeJSFunctionWithCompletion(const WebSDKJSFunctionType& type,
                                                    WebSDKJSCompletionHandler completionHandler) {
  if (carriedToUIThread(*this, [type, completionHandler](WebSDKWebView& v) {
        v.executeJSFunctionWithCompletion(type, completionHandler);
      }))
    return;
  impl_->warnOfBreakingText(type);
  impl_->push(type.script(), [handler = std::move(completionHandler)](ScriptResult result) {
    // A script error, or a page that never ran it, is not passed on: the
    // handler then gets nothing.
    if (handler) handler(result.error || result.dropped ? std::nullopt : std::move(result.value));
  });
}

void WebSDKWebView::executeJSFunction(const WebSDKJSFunctionType& type) {
  if (carriedToUIThread(*this, [type](WebSDKWebView& v) { v.executeJSFunction(type); })) return;
  impl_->warnOfBreakingText(type);
  impl_->push(type.script(), nullptr);
}

bool WebSDKWebView::emitEvent(std::string_view name, const JSON& data) { return emitEvent(name, data, {}); }

bool WebSDKWebView::emitEvent(std::string_view name, const JSON& data,
                              const std::set<std::string, std::less<>>& sensitiveKeys) {
  const auto refuse = [&](const std::string& why) {
    impl_->say(LogLevel::error, "push", "the event \"" + shownInLog(name) + "\" is not sent: " + why);
    return false;
  };
  if (auto why = invalidName(name)) return refuse("its name is not valid (" + *why + ")");
  for (std::size_t i = 0; i < caseCount<WebSDKJSFunctionTypeCase>(); ++i)
    if (WebSDKJSFunctionType::pageFunction(static_cast<WebSDKJSFunctionTypeCase>(i)).name == name)
      return refuse("it is the name of a page function, which the page would take the event for");
  // Both written as JSON: nothing of the data can end its argument early.
  const std::string call = "window.nativeEvent(" + serialize(JSON(name)) + ", ";
  std::string script = call + serialize(data) + ")";
  if (!isValidUTF8(script)) return refuse("its data holds text that is not UTF-8, which no page can read");
  // The recording writes the data as it writes a request's payload: its
  // sensitive keys' values masked.
  std::optional<Impl::EventRecord> recorded;
  if (const auto& recorder = impl_->recorder_) {
    if (!sensitiveKeys.empty()) recorder->addSensitiveKeys(sensitiveKeys);
    recorded = Impl::EventRecord{call, data};
  }
  if (carriedToUIThread(*this, [name = std::string(name), script, recorded](WebSDKWebView& v) mutable {
        v.impl_->emit(std::move(name), std::move(script), std::move(recorded));
      }))
    return true;
  impl_->emit(std::string(name), std::move(script), std::move(recorded));
  return true;
}

void WebSDKWebView::Impl::emit(std::string name, std::string script, std::optional<EventRecord> recorded) {
  push(
      std::move(script),
      [weak = weak_from_this(), name = std::move(name)](ScriptResult result) {
        // A page that has no receiver for events would lose them without a word.
        if (!result.error) return;
        const auto v = weak.lock();
        if (!v || std::exchange(v->toldNoEventReceiver_, true)) return;
        v->say(
            LogLevel::warning, "push",
            "the event \"" + shownInLog(name) + "\" failed in the page (" + *result.error +
                "): does the page install @websdk/page's client, or define window.nativeEvent? (told once per view)");
      },
      std::move(recorded));
}

// ---- Navigation: forwarded unchanged; with no delegate nothing is answered. ----

void WebSDKWebView::Impl::didStartProvisionalNavigation(const WebSDKNavigation* navigation) {
  if (auto d = webSDKNavigationDelegate.lock()) d->didStartProvisionalNavigation(self, navigation);
}
void WebSDKWebView::Impl::didFinish(const WebSDKNavigation* navigation) {
  if (auto d = webSDKNavigationDelegate.lock()) d->didFinish(self, navigation);
}
void WebSDKWebView::Impl::didFail(const WebSDKNavigation* navigation, const WebSDKError& error) {
  if (auto d = webSDKNavigationDelegate.lock()) d->didFail(self, navigation, error);
}
void WebSDKWebView::Impl::didFailProvisionalNavigation(const WebSDKNavigation* navigation, const WebSDKError& error) {
  if (auto d = webSDKNavigationDelegate.lock()) d->didFailProvisionalNavigation(self, navigation, error);
}
void WebSDKWebView::Impl::decidePolicyFor(const WebSDKNavigationAction& action,
                                          WebSDKNavigationActionDecision decisionHandler) {
  if (auto d = webSDKNavigationDelegate.lock()) return d->decidePolicyFor(self, action, std::move(decisionHandler));
  // Waiting is the rule without a delegate; a blank view with no word of why is not.
  if (!std::exchange(toldNoDelegate_, true))
    say(LogLevel::warning, "navigation",
        "the navigation to " + action.url +
            " waits for a decision, but no navigation delegate is attached, so no page loads: give the view one, "
            "and keep a reference to it, for the view holds it weakly (WebSDKTrustedHostsNavigationDelegate::shared() "
            "keeps the view on its trusted hosts and needs no owner)");
}
void WebSDKWebView::Impl::decidePolicyFor(const WebSDKNavigationResponse& response,
                                          WebSDKNavigationResponseDecision decisionHandler) {
  if (auto d = webSDKNavigationDelegate.lock()) d->decidePolicyFor(self, response, std::move(decisionHandler));
}
void WebSDKWebView::Impl::didReceive(const WebSDKAuthenticationChallenge& challenge,
                                     WebSDKAuthChallengeCompletion completionHandler) {
  if (auto d = webSDKNavigationDelegate.lock()) return d->didReceive(self, challenge, std::move(completionHandler));
  say(LogLevel::warning, "navigation",
      "an authentication challenge from " + challenge.host + " is never answered: no navigation delegate is attached");
}

}  // namespace websdk
