// The WebKitGTK port. Every GLib closure and posted task holds the engine's
// state weakly: a signal, an evaluation or a policy answer that arrives after
// the engine is gone does nothing.

#include "websdk/webkitgtk/Native.hpp"

#include "Compat.hpp"
#include "GuardLocation.hpp"
#include "HeaderGuard.hpp"
#include "LocalSchemes.hpp"
#include "PageChannel.hpp"
#include "websdk/Log.hpp"
#include "websdk/webview/EngineCore.hpp"
#include "websdk/webview/ScriptBuffers.hpp"

#include <atomic>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <map>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace websdk::webkitgtk {

// ---- Log -------------------------------------------------------------------------

namespace {
// The WebSDK's messages as GLib structured log entries of the "websdk"
// domain, so that G_MESSAGES_DEBUG and a host's own GLib writer see them.
void toGLib(const LogRecord& record) {
  // An error is GLib's CRITICAL: GLib's own ERROR level aborts the process.
  const GLogLevelFlags level = record.level == LogLevel::debug     ? G_LOG_LEVEL_DEBUG
                               : record.level == LogLevel::info    ? G_LOG_LEVEL_INFO
                               : record.level == LogLevel::warning ? G_LOG_LEVEL_WARNING
                                                                   : G_LOG_LEVEL_CRITICAL;
  const std::string message = logLine(record), topic(record.topic);
  const GLogField fields[] = {
      {"GLIB_DOMAIN", "websdk", -1}, {"MESSAGE", message.c_str(), -1}, {"WEBSDK_TOPIC", topic.c_str(), -1}};
  g_log_structured_array(level, fields, G_N_ELEMENTS(fields));
}
}  // namespace

void logToGLib() {
  static std::once_flag once;
  std::call_once(once, [] { websdk::detail::setPlatformLogSink(toGLib); });
}

// ---- Main loop -----------------------------------------------------------------

namespace {
// The thread GTK was started on, when initialize() started it.
std::atomic<std::thread::id> uiThread{};

// Whether this thread cannot be the UI thread: GTK was started on another, or
// another runs the main loop now.
bool offTheUIThread() {
  const std::thread::id started = uiThread.load();
  if (started != std::thread::id{}) return started != std::this_thread::get_id();
  GMainContext* context = g_main_context_default();
  if (!g_main_context_acquire(context)) return true;
  g_main_context_release(context);
  return false;
}
}  // namespace

bool initialize(int* argc, char*** argv) {
  logToGLib();
  uiThread = std::this_thread::get_id();
  return compat::initializeGTK(argc, argv);
}

bool runUntil(const std::function<bool()>& done, std::chrono::milliseconds bound) {
  if (done()) return true;
  GMainContext* context = g_main_context_ref_thread_default();
  // The clock decides, read at every wake-up: a loop kept busy by sources of
  // a higher priority than the timer's would never let it run. The timer is
  // only there to wake an idle loop at the deadline.
  constexpr std::int64_t kLongest = std::int64_t{1} << 40;  // ms, some 35 years: no overflow below
  const gint64 deadline = g_get_monotonic_time() + std::clamp<std::int64_t>(bound.count(), 0, kLongest) * 1000;
  GSource* timer = nullptr;
  bool ok = false;
  for (gint64 now = g_get_monotonic_time(); !(ok = done()) && now < deadline; now = g_get_monotonic_time()) {
    if (timer == nullptr) {
      // Whole milliseconds, rounded up: GLib's timeouts never fire early.
      timer = g_timeout_source_new(static_cast<guint>(std::min<gint64>((deadline - now + 999) / 1000, G_MAXUINT)));
      g_source_set_priority(timer, G_PRIORITY_HIGH);
      g_source_set_callback(
          timer,
          [](gpointer slot) -> gboolean {
            *static_cast<GSource**>(slot) = nullptr;  // fired: another is made if the clock says so
            return G_SOURCE_REMOVE;
          },
          &timer, nullptr);
      g_source_attach(timer, context);
      g_source_unref(timer);  // the context holds it until it fires or is destroyed
    }
    g_main_context_iteration(context, TRUE);
  }
  if (timer != nullptr) g_source_destroy(timer);
  g_main_context_unref(context);
  return ok;
}

GLibMainQueue::GLibMainQueue() : context_(g_main_context_ref_thread_default()) {}
GLibMainQueue::~GLibMainQueue() { g_main_context_unref(static_cast<GMainContext*>(context_)); }

namespace {

// Runs `task` once from `source` on `context`. The destroy-notify frees the
// task also when its context goes away before it runs.
void attachOnce(GSource* source, void* context, std::function<void()> task) {
  using Task = std::function<void()>;
  g_source_set_priority(source, G_PRIORITY_DEFAULT);
  g_source_set_callback(
      source,
      [](gpointer data) -> gboolean {
        (*static_cast<Task*>(data))();
        return G_SOURCE_REMOVE;
      },
      new Task(std::move(task)), [](gpointer data) { delete static_cast<Task*>(data); });
  g_source_attach(source, static_cast<GMainContext*>(context));
  g_source_unref(source);
}

}  // namespace

void GLibMainQueue::post(std::function<void()> task) {
  // An idle source rather than g_main_context_invoke: a task posted from the
  // UI thread must still run later, after the caller has returned. Sources of
  // one priority run in the order attached.
  attachOnce(g_idle_source_new(), context_, std::move(task));
}

void GLibMainQueue::postAfter(std::chrono::milliseconds delay, std::function<void()> task) {
  const auto ms = std::clamp<std::int64_t>(delay.count(), 0, G_MAXUINT);
  attachOnce(g_timeout_source_new(static_cast<guint>(ms)), context_, std::move(task));
}

bool GLibMainQueue::isCurrent() const { return g_main_context_is_owner(static_cast<GMainContext*>(context_)) != FALSE; }
bool GLibMainQueue::isUIThread() const { return std::this_thread::get_id() == thread_; }

// ---- Engine state ----------------------------------------------------------------

namespace {

struct GFree {
  void operator()(void* p) const { g_free(p); }
};
using GText = std::unique_ptr<char, GFree>;

std::string text(const char* s) { return s ? std::string(s) : std::string(); }

// A JavaScript value as JSON; nothing for undefined and for values JSON cannot
// carry (functions, cycles).
std::optional<JSON> toJSON(JSCValue* value) {
  if (value == nullptr || jsc_value_is_undefined(value)) return std::nullopt;
  GText json(jsc_value_to_json(value, 0));
  if (!json) {
    jsc_context_clear_exception(jsc_value_get_context(value));
    return std::nullopt;
  }
  return parseJSON(json.get());
}

WebSDKError toError(const GError* error) {
  const bool timeout = g_error_matches(error, G_IO_ERROR, G_IO_ERROR_TIMED_OUT);
  return WebSDKError{g_quark_to_string(error->domain), error->code, text(error->message), timeout};
}

std::string authenticationMethod(WebKitAuthenticationScheme scheme) {
  switch (scheme) {
    case WEBKIT_AUTHENTICATION_SCHEME_DEFAULT: return "default";
    case WEBKIT_AUTHENTICATION_SCHEME_HTTP_BASIC: return "httpBasic";
    case WEBKIT_AUTHENTICATION_SCHEME_HTTP_DIGEST: return "httpDigest";
    case WEBKIT_AUTHENTICATION_SCHEME_HTML_FORM: return "htmlForm";
    case WEBKIT_AUTHENTICATION_SCHEME_NTLM: return "ntlm";
    case WEBKIT_AUTHENTICATION_SCHEME_NEGOTIATE: return "negotiate";
    case WEBKIT_AUTHENTICATION_SCHEME_CLIENT_CERTIFICATE_REQUESTED: return "clientCertificateRequested";
    case WEBKIT_AUTHENTICATION_SCHEME_SERVER_TRUST_EVALUATION_REQUESTED: return "serverTrustEvaluationRequested";
    default: return "unknown";
  }
}

// WebKit's own URL parser: the form WebKit loads and shows. WebKit hands back
// text it cannot parse unchanged, so only a result that reads as a URL by the
// same rules is one.
std::optional<std::string> webKitCanonicalURL(std::string_view url) {
  if (url.find('\0') != std::string_view::npos) return std::nullopt;
  // WebKitURIRequest reads its text as Latin-1; escaped, UTF-8 reads as
  // UTF-8 (the URL standard decodes a host's escapes before its IDN rules,
  // and escapes such bytes elsewhere anyway).
  std::string raw;
  raw.reserve(url.size());
  for (const char c : url) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x80) {
      raw += c;
    } else {
      constexpr char kHex[] = "0123456789ABCDEF";
      raw += '%';
      raw += kHex[byte >> 4];
      raw += kHex[byte & 15];
    }
  }
  WebKitURIRequest* request = webkit_uri_request_new(raw.c_str());
  std::string canonical = text(webkit_uri_request_get_uri(request));
  g_object_unref(request);
  if (!canonicalURL(canonical)) return std::nullopt;
  return canonical;
}

}  // namespace

// The header guard's rules of every engine on one web context. Each web
// process of the context gets them when it starts and after every change.
class GuardRules {
 public:
  static GuardRules& of(WebKitWebContext* context) {
    constexpr char kKey[] = "websdk-guard-rules";
    auto* rules = static_cast<GuardRules*>(g_object_get_data(G_OBJECT(context), kKey));
    if (rules == nullptr) {
      rules = new GuardRules;
      g_object_set_data_full(G_OBJECT(context), kKey, rules, [](gpointer p) { delete static_cast<GuardRules*>(p); });
      g_signal_connect(context, compat::kInitializeExtensions, G_CALLBACK(+[](WebKitWebContext* c, gpointer data) {
                         compat::setExtensionsData(c, guard::encode(static_cast<GuardRules*>(data)->all()));
                       }),
                       rules);
    }
    return *rules;
  }

  /// `owner`'s view (of `page`) loads `url` under `trust`, with the app's
  /// `fields` (maybe none): every process hears of it before the load is
  /// made. A view's earlier fields stay guarded (a redirect of an earlier
  /// load may still be under way), the last few of them. Returns the load's
  /// number when it has fields for the module to add, else 0.
  guint64 add(WebKitWebContext* context, const void* owner, guint64 page, const std::string& url,
              const HeaderFields& fields, const WebSDKConfig& trust) {
    const bool known = byOwner_.contains(owner);
    guard::Rule& rule = byOwner_[owner];
    if (!known) rule.view = ++views_;
    const auto before = rule;
    rule.page = page;
    rule.trust = trust;
    rule.trust.canonicalizer = &canonicalURL;  // what the module judges with
    for (const auto& field : fields) {
      std::erase(rule.fields, field);
      rule.fields.push_back(field);
    }
    constexpr std::size_t kKept = 32;
    if (rule.fields.size() > kKept)
      rule.fields.erase(rule.fields.begin(), rule.fields.end() - static_cast<std::ptrdiff_t>(kKept));
    if (!fields.empty()) {
      // Random: a page must not guess the mark of a load to come.
      do rule.load = (static_cast<guint64>(g_random_int()) << 32) | g_random_int();
      while (rule.load == 0);
      rule.loadURL = url;
      rule.loadFields = fields;
    }
    if (rule != before)
      webkit_web_context_send_message_to_all_extensions(context,
                                                        webkit_user_message_new(guard::kRules, guard::encode(all())));
    return fields.empty() ? 0 : rule.load;
  }
  /// `owner`'s view shows its pages in a new web page (WebKit moved it to
  /// another process): pages there are its pages from now on.
  void movePage(WebKitWebContext* context, const void* owner, guint64 page) {
    const auto it = byOwner_.find(owner);
    if (it == byOwner_.end() || it->second.page == page) return;
    it->second.page = page;
    webkit_web_context_send_message_to_all_extensions(context,
                                                      webkit_user_message_new(guard::kRules, guard::encode(all())));
  }
  /// A view that is gone: its fields no longer need guarding in new processes.
  void remove(const void* owner) { byOwner_.erase(owner); }

 private:
  std::vector<guard::Rule> all() const {
    std::vector<guard::Rule> rules;
    for (const auto& [owner, rule] : byOwner_) rules.push_back(rule);
    return rules;
  }
  std::map<const void*, guard::Rule> byOwner_;
  guint64 views_ = 0;
};

struct WebKitGTKEngine::State : std::enable_shared_from_this<State> {
  using Weak = std::weak_ptr<State>;

  WebKitWebView* view = nullptr;  // our own (sunk) reference; null once shut down
  WebKitUserContentManager* contentManager = nullptr;
  GCancellable* cancellable = nullptr;
  GtkGesture* zoomGesture = nullptr;
  GLibMainQueue queue;
  // A timed-out load is stopped quietly: WebKit's own word of the stop is not the timeout's.
  const std::shared_ptr<EngineCore> core = std::make_shared<EngineCore>(
      queue, g_quark_to_string(G_IO_ERROR), G_IO_ERROR_TIMED_OUT, [this](const WebSDKNavigation&) {
        if (!view) return false;
        abandoned = true;
        webkit_web_view_stop_loading(view);
        return true;
      });

  struct Connection {
    gpointer instance;
    gulong id;
  };
  std::vector<Connection> connections;
  // The signal of each script-message handler's name (the handlers are the core's).
  std::map<std::string, gulong, std::less<>> channels;

  // Documents. With the module in the page's processes, the top document's
  // identity comes from there and the bridge's messages carry its stamp;
  // without it, each commit the UI process sees is a new document.
  bool stamped = false;
  bool warnedUnstamped = false;
  // Where the guard module was found. It alone puts the app's headers on a
  // request; the view asks it to answer from the page's process, and says so
  // when it does not.
  std::string guardPlace;
  // The web inspector's switch, kept across preference changes.
  gboolean developerExtras = FALSE;
  // The view's local pages, while it is served.
  std::unique_ptr<local::Serving> localPages;
  // A large stamped message's parts so far, in storage sized once by the
  // size its first part announced; the stamp follows the last.
  struct Gathering {
    std::string text;
    std::size_t length = 0;
    bool broken = false;  // a part disagreed: the whole message goes
  };
  std::optional<Gathering> gathering;

  bool failed = false;     // current navigation failed: its end is not a finish
  bool abandoned = false;  // stopped on timeout: WebKit's own stop events stay quiet

  // Questions the client has not answered yet. An unanswered WebKit decision
  // would be taken by default when its last reference goes, so each is held
  // until answered (or the engine goes).
  std::uint64_t lastPendingId = 0;
  struct HeldDecision {
    WebKitPolicyDecision* decision;
    bool mainFrameNavigation;  // refusing it means the load it starts never comes
  };
  std::map<std::uint64_t, HeldDecision> decisions;
  std::map<std::uint64_t, WebKitAuthenticationRequest*> challenges;

  // ---- Wiring ----
  template <class Callback>
  void connect(gpointer instance, const char* signal, Callback callback) {
    const gulong id = g_signal_connect_data(
        instance, signal, G_CALLBACK(callback), new Weak(weak_from_this()),
        [](gpointer data, GClosure*) { delete static_cast<Weak*>(data); }, GConnectFlags{});
    connections.push_back({instance, id});
  }
  static std::shared_ptr<State> from(gpointer data) { return static_cast<Weak*>(data)->lock(); }

  void wire() {
    connect(
        view, "load-changed", +[](WebKitWebView*, WebKitLoadEvent event, gpointer data) {
          if (auto s = from(data); s && s->view) s->loadChanged(event);
        });
    connect(
        view, "load-failed",
        +[](WebKitWebView*, WebKitLoadEvent event, gchar*, GError* error, gpointer data) -> gboolean {
          if (auto s = from(data); s && s->view) return s->loadFailed(event, error);
          return TRUE;
        });
    connect(
        view, "decide-policy",
        +[](WebKitWebView*, WebKitPolicyDecision* decision, WebKitPolicyDecisionType type, gpointer data) -> gboolean {
          if (auto s = from(data); s && s->view) return s->decidePolicy(decision, type);
          return FALSE;
        });
    connect(
        view, "user-message-received", +[](WebKitWebView*, WebKitUserMessage* message, gpointer data) -> gboolean {
          if (auto s = from(data); s && s->view) return s->userMessage(message);
          return FALSE;
        });
    connect(
        view, "notify::page-id", +[](WebKitWebView* v, GParamSpec*, gpointer data) {
          if (auto s = from(data); s && s->view && !s->guardPlace.empty()) {
            WebKitWebContext* context = webkit_web_view_get_context(v);
            GuardRules::of(context).movePage(context, s.get(), webkit_web_view_get_page_id(v));
          }
        });
    connect(
        view, "authenticate", +[](WebKitWebView*, WebKitAuthenticationRequest* request, gpointer data) -> gboolean {
          if (auto s = from(data); s && s->view) return s->authenticate(request);
          return FALSE;
        });
    // Pinch-zoom is watched ahead of the web view's own handling, so that a
    // refused pinch can be claimed (and so swallowed) as soon as it begins.
    zoomGesture = compat::newZoomGesture(GTK_WIDGET(view));
    connect(
        zoomGesture, "begin", +[](GtkGesture* gesture, GdkEventSequence*, gpointer data) {
          if (auto s = from(data); s && s->view) s->zoomBegan(gesture);
        });
  }

  // ---- Teardown ----
  void shutdown() {
    core->close();
    if (!guardPlace.empty()) GuardRules::of(webkit_web_view_get_context(view)).remove(this);
    localPages.reset();
    // A widget the host destroyed first (with its window) has lost its
    // handlers already: only those still there are taken off.
    for (const auto& c : connections)
      if (g_signal_handler_is_connected(c.instance, c.id)) g_signal_handler_disconnect(c.instance, c.id);
    connections.clear();
    for (const auto& [name, id] : channels) {
      g_signal_handler_disconnect(contentManager, id);
      compat::unregisterScriptMessageHandler(contentManager, name.c_str());
    }
    channels.clear();
    g_cancellable_cancel(cancellable);
    // Held questions stay unanswered for good: nothing may proceed on their account.
    for (const auto& [id, held] : decisions) {
      webkit_policy_decision_ignore(held.decision);
      g_object_unref(held.decision);
    }
    decisions.clear();
    for (const auto& [id, request] : challenges) {
      webkit_authentication_request_cancel(request);
      g_object_unref(request);
    }
    challenges.clear();
    if (zoomGesture) g_object_unref(zoomGesture);
    zoomGesture = nullptr;

    WebKitWebView* widget = std::exchange(view, nullptr);
    // Torn down from inside one of its own signals, the widget waits for the loop.
    if (core->emitting()) {
      // Out of the host's window at once, so that a new view can take its
      // place; destroyed once WebKit has returned from its signal.
      compat::detach(GTK_WIDGET(widget));
      g_idle_add(
          [](gpointer w) -> gboolean {
            compat::destroy(GTK_WIDGET(w));
            return G_SOURCE_REMOVE;
          },
          widget);
    } else {
      compat::destroy(GTK_WIDGET(widget));
    }
    g_object_unref(contentManager);
    contentManager = nullptr;
    g_object_unref(cancellable);
    cancellable = nullptr;
  }

  // ---- Navigation events ----
  void loadChanged(WebKitLoadEvent event) {
    EngineCore::Emitting emitting(*core);
    switch (event) {
      case WEBKIT_LOAD_STARTED:
        abandoned = false;
        failed = false;
        core->startNavigation(text(webkit_web_view_get_uri(view)));
        break;
      case WEBKIT_LOAD_REDIRECTED: break;
      case WEBKIT_LOAD_COMMITTED: {
        core->disarmTimeout();
        std::string url = text(webkit_web_view_get_uri(view));
        if (auto* navigation = core->navigation()) navigation->url = url;
        if (stamped)
          core->commitURL(std::move(url));
        else
          core->commitDocument(std::move(url));
        break;
      }
      case WEBKIT_LOAD_FINISHED:
        // WebKit ends a failed load with FINISHED as well; that is no finish.
        if (abandoned || failed) break;
        core->finished();
        break;
    }
  }

  gboolean loadFailed(WebKitLoadEvent event, const GError* error) {
    EngineCore::Emitting emitting(*core);
    core->disarmTimeout();
    if (abandoned) return TRUE;
    failed = true;
    core->failed(event == WEBKIT_LOAD_COMMITTED, toError(error));
    // No built-in error page: what the user sees on failure is the host's call.
    return TRUE;
  }

  // ---- Questions ----
  // Runs `settle` on the UI thread: at once when called there, else posted.
  static void onUIThread(const Weak& weak, std::function<void(State&)> settle) {
    const auto s = weak.lock();
    if (!s) return;
    if (s->queue.isCurrent()) {
      if (s->view) settle(*s);
      return;
    }
    s->queue.post([weak, settle = std::move(settle)] {
      if (auto state = weak.lock(); state && state->view) settle(*state);
    });
  }

  gboolean decidePolicy(WebKitPolicyDecision* decision, WebKitPolicyDecisionType type) {
    EngineCore::Emitting emitting(*core);
    WebEngineClient* client = core->client();
    const std::uint64_t id = ++lastPendingId;
    decisions.emplace(id, HeldDecision{WEBKIT_POLICY_DECISION(g_object_ref(decision)),
                                       type == WEBKIT_POLICY_DECISION_TYPE_NAVIGATION_ACTION});
    auto settle = [weak = weak_from_this(), id](bool use) {
      onUIThread(weak, [id, use](State& s) { s.settleDecision(id, use); });
    };
    if (type == WEBKIT_POLICY_DECISION_TYPE_RESPONSE) {
      auto* r = WEBKIT_RESPONSE_POLICY_DECISION(decision);
      WebKitURIResponse* response = webkit_response_policy_decision_get_response(r);
      const WebSDKNavigationResponse navigationResponse{
          text(webkit_uri_response_get_uri(response)), static_cast<int>(webkit_uri_response_get_status_code(response)),
          text(webkit_uri_response_get_mime_type(response)), compat::isMainFrameMainResource(r)};
      if (client)
        client->decidePolicyFor(navigationResponse, [settle](WebSDKNavigationResponsePolicy policy) {
          settle(policy == WebSDKNavigationResponsePolicy::allow);
        });
    } else {
      WebKitNavigationAction* action =
          webkit_navigation_policy_decision_get_navigation_action(WEBKIT_NAVIGATION_POLICY_DECISION(decision));
      WebKitURIRequest* request = webkit_navigation_action_get_request(action);
      const char* method = webkit_uri_request_get_http_method(request);
      const WebSDKNavigationAction navigationAction{text(webkit_uri_request_get_uri(request)), method ? method : "GET",
                                                    type == WEBKIT_POLICY_DECISION_TYPE_NAVIGATION_ACTION,
                                                    webkit_navigation_action_is_user_gesture(action) != FALSE};
      if (client)
        client->decidePolicyFor(navigationAction, [settle](WebSDKNavigationActionPolicy policy) {
          settle(policy == WebSDKNavigationActionPolicy::allow);
        });
    }
    return TRUE;
  }

  void settleDecision(std::uint64_t id, bool use) {
    const auto it = decisions.find(id);
    if (it == decisions.end()) return;  // answered already: the first answer stands
    const HeldDecision held = it->second;
    decisions.erase(it);
    if (use) {
      webkit_policy_decision_use(held.decision);
    } else {
      webkit_policy_decision_ignore(held.decision);
      // A refused load never starts: its timeout must not pass to another.
      if (held.mainFrameNavigation) core->loadRefused();
    }
    g_object_unref(held.decision);
  }

  gboolean authenticate(WebKitAuthenticationRequest* request) {
    EngineCore::Emitting emitting(*core);
    WebEngineClient* client = core->client();
    const std::uint64_t id = ++lastPendingId;
    challenges.emplace(id, WEBKIT_AUTHENTICATION_REQUEST(g_object_ref(request)));
    const WebSDKAuthenticationChallenge challenge{
        text(webkit_authentication_request_get_host(request)),
        static_cast<int>(webkit_authentication_request_get_port(request)),
        text(webkit_authentication_request_get_realm(request)),
        authenticationMethod(webkit_authentication_request_get_scheme(request)),
        webkit_authentication_request_is_retry(request) ? 1 : 0};
    if (client)
      client->didReceive(challenge, [weak = weak_from_this(), id](WebSDKAuthChallengeDisposition disposition,
                                                                  std::optional<WebSDKURLCredential> credential) {
        onUIThread(weak, [id, disposition, credential = std::move(credential)](State& s) {
          s.settleChallenge(id, disposition, credential);
        });
      });
    return TRUE;
  }

  void settleChallenge(std::uint64_t id, WebSDKAuthChallengeDisposition disposition,
                       const std::optional<WebSDKURLCredential>& credential) {
    const auto it = challenges.find(id);
    if (it == challenges.end()) return;
    WebKitAuthenticationRequest* request = it->second;
    challenges.erase(it);
    switch (disposition) {
      case WebSDKAuthChallengeDisposition::useCredential:
        if (credential) {
          WebKitCredential* c = webkit_credential_new(credential->user.c_str(), credential->password.c_str(),
                                                      WEBKIT_CREDENTIAL_PERSISTENCE_FOR_SESSION);
          webkit_authentication_request_authenticate(request, c);
          webkit_credential_free(c);
          break;
        }
        [[fallthrough]];
      case WebSDKAuthChallengeDisposition::performDefaultHandling:
      case WebSDKAuthChallengeDisposition::rejectProtectionSpace:
        // Go on without a credential: the server's answer stands.
        webkit_authentication_request_authenticate(request, nullptr);
        break;
      case WebSDKAuthChallengeDisposition::cancelAuthenticationChallenge:
        webkit_authentication_request_cancel(request);
        break;
    }
    g_object_unref(request);
  }

  void zoomBegan(GtkGesture* gesture) {
    const bool allowed = core->pinchBegins();
    if (!view) return;
    // Claiming the touch sequences at capture keeps them from the page.
    gtk_gesture_set_state(gesture, allowed ? GTK_EVENT_SEQUENCE_DENIED : GTK_EVENT_SEQUENCE_CLAIMED);
  }

  // ---- Script messages ----
  struct ChannelClosure {
    Weak state;
    std::string name;
  };

  bool addChannel(std::weak_ptr<ScriptMessageHandler> handler, std::string name) {
    if (core->hasHandler(name)) return false;  // the first handler of a name keeps it
    const std::string signal = "script-message-received::" + name;
    const gulong id = g_signal_connect_data(
        contentManager, signal.c_str(),
        G_CALLBACK(+[](WebKitUserContentManager*, compat::ScriptMessageArgument argument, gpointer data) {
          const auto* closure = static_cast<ChannelClosure*>(data);
          if (auto s = closure->state.lock(); s && s->view)
            s->scriptMessage(closure->name, compat::scriptMessageValue(argument));
        }),
        new ChannelClosure{weak_from_this(), name},
        [](gpointer data, GClosure*) { delete static_cast<ChannelClosure*>(data); }, GConnectFlags{});
    if (!compat::registerScriptMessageHandler(contentManager, name.c_str())) {
      g_signal_handler_disconnect(contentManager, id);
      return false;
    }
    channels.emplace(name, id);
    core->addHandler(std::move(handler), std::move(name));
    return true;
  }

  void removeChannel(std::string_view name) {
    const auto it = channels.find(name);
    if (it == channels.end()) return;
    g_signal_handler_disconnect(contentManager, it->second);
    compat::unregisterScriptMessageHandler(contentManager, it->first.c_str());
    core->removeHandler(name);
    channels.erase(it);
  }

  void scriptMessage(const std::string& name, JSCValue* value) {
    EngineCore::Emitting emitting(*core);
    if (stamped && name == channel::kName) {
      // The module posts the bridge's messages with their stamp; this one
      // went round it (or the module is not in the page's process).
      if (!std::exchange(warnedUnstamped, true))
        log(LogLevel::warning, "trust",
            "a \"" + std::string(channel::kName) +
                "\" message without the header guard module's stamp was dropped: a page script went round it");
      return;
    }
    // Other handlers, or no module: the document is the one last committed,
    // and the frame cannot be told.
    MessageOrigin origin{"", std::string(core->url().value_or("")), true, core->document()};
    if (name == channel::kName) {
      // The bridge's channel: its "message" string only, read as it stands.
      const GText message(channel::messageOf(value));
      if (message) dispatch(name, nullptr, std::move(origin), std::string_view(message.get()));
      return;
    }
    dispatch(name, toJSON(value).value_or(JSON(nullptr)), std::move(origin));
  }

  // The body reaches the handler as posted: any JSON value, checked there.
  void dispatch(const std::string& name, JSON body, MessageOrigin origin,
                std::optional<std::string_view> message = std::nullopt, std::size_t messageBytes = 0) {
    core->deliver(ScriptMessage{name, std::move(body), std::move(origin), message, messageBytes});
  }

  gboolean userMessage(WebKitUserMessage* message) {
    EngineCore::Emitting emitting(*core);
    const char* name = webkit_user_message_get_name(message);
    GVariant* params = webkit_user_message_get_parameters(message);
    if (!stamped || params == nullptr) return FALSE;
    if (g_str_equal(name, channel::kDocument) && g_variant_is_of_type(params, G_VARIANT_TYPE("(t)"))) {
      guint64 document = 0;
      g_variant_get(params, "(t)", &document);
      core->showDocument(document);
      gathering.reset();  // a document gone part way through a message
      return TRUE;
    }
    if (g_str_equal(name, channel::kPostPart) && g_variant_is_of_type(params, G_VARIANT_TYPE("(tay)"))) {
      guint64 length = 0;
      GVariant* part = nullptr;
      g_variant_get(params, "(t@ay)", &length, &part);
      gsize size = 0;
      const void* data = g_variant_get_fixed_array(part, &size, 1);
      if (!gathering) {
        gathering.emplace().length = static_cast<std::size_t>(length);
        gathering->text.reserve(std::min<std::size_t>(gathering->length, std::size_t{1} << 31));
      }
      if (length != gathering->length || gathering->text.size() + size > gathering->length) {
        gathering->broken = true;
        gathering->text = {};
      } else if (!gathering->broken) {
        gathering->text.append(static_cast<const char*>(data), size);
      }
      g_variant_unref(part);
      // Taken: the page sends the next.
      webkit_user_message_send_reply(message, webkit_user_message_new(channel::kPostPart, nullptr));
      return TRUE;
    }
    if (g_str_equal(name, channel::kPost) && g_variant_is_of_type(params, G_VARIANT_TYPE("(ssssbtt)"))) {
      const char *body = nullptr, *handler = nullptr, *frameURL = nullptr, *topURL = nullptr;
      gboolean isMainFrame = FALSE;
      guint64 topDocument = 0, bytes = 0;
      g_variant_get(params, "(&s&s&s&sbtt)", &body, &handler, &frameURL, &topURL, &isMainFrame, &topDocument, &bytes);
      MessageOrigin origin{frameURL, topURL, isMainFrame != FALSE, topDocument};
      if (!gathering) {
        dispatch(handler, nullptr, std::move(origin), body, static_cast<std::size_t>(bytes));
      } else {
        // Taken out first: the handler may post again before it returns.
        Gathering whole = *std::exchange(gathering, std::nullopt);
        whole.text.append(body);
        if (whole.broken || whole.text.size() != whole.length) {
          log(LogLevel::warning, "engine", "a message sent in parts arrived incomplete and was dropped");
          return TRUE;
        }
        dispatch(handler, nullptr, std::move(origin), std::string_view(whole.text), static_cast<std::size_t>(bytes));
      }
      return TRUE;
    }
    return FALSE;
  }

  // ---- The header guard ----
  // Asked once the view exists: the question starts the page's web process,
  // and the module there answers if it was loaded.
  void askGuard() {
    webkit_web_view_send_message_to_page(
        view, webkit_user_message_new(guard::kHello, nullptr), cancellable,
        [](GObject* source, GAsyncResult* result, gpointer data) {
          std::unique_ptr<Weak> weak(static_cast<Weak*>(data));
          GError* error = nullptr;
          WebKitUserMessage* reply =
              webkit_web_view_send_message_to_page_finish(WEBKIT_WEB_VIEW(source), result, &error);
          const bool present = reply != nullptr && g_str_equal(webkit_user_message_get_name(reply), guard::kReady);
          const std::string why = error ? text(error->message) : "no answer";
          if (reply) g_object_unref(reply);
          if (error) g_error_free(error);
          if (auto s = weak->lock(); s && s->view) s->guardAnswered(present, why);
        },
        new Weak(weak_from_this()));
  }

  void guardAnswered(bool present, const std::string& why) {
    if (!present) {
      // Without the module nothing stamps the page's messages either: they
      // are judged as the UI process sees the page, as with no module at all.
      stamped = false;
      log(LogLevel::warning, "engine",
          "the header guard module did not answer from this view's web process (" + why +
              "): the app's headers are not sent, and page messages are judged by the committed URL alone. It "
              "was found in " +
              guardPlace +
              "; a web-extensions directory set on the web context since then "
              "must hold " +
              guard::kModule + " too.");
    }
  }

  // Header fields are set one by one in the order given; a later field of the
  // same name replaces the earlier one. WebKit has no per-request cache
  // policy: every load uses the protocol's own. The app's fields are never
  // on the request the UI process makes: the guard module adds them in the
  // web process that sends it, so without the module they do not go at all.
  void send(const URLRequest& request) {
    HeaderFields fields = request.headersFor("");
    if (!guardPlace.empty()) {
      WebKitWebContext* context = webkit_web_view_get_context(view);
      const guint64 load = GuardRules::of(context).add(context, this, webkit_web_view_get_page_id(view), request.url,
                                                       request.confinedFields(), request.trust);
      // The mark says which load the request is; the module takes it off.
      // Once the module is known to be missing, nothing would: it stays home.
      if (load != 0 && stamped) fields.emplace_back(guard::kLoadMark, guard::loadMark(load));
    }
    if (localPages) localPages->expect(request.url, request.headersFor(request.url));
    WebKitURIRequest* uriRequest = webkit_uri_request_new(request.url.c_str());
    if (SoupMessageHeaders* headers = webkit_uri_request_get_http_headers(uriRequest))
      for (const auto& [name, value] : fields) soup_message_headers_replace(headers, name.c_str(), value.c_str());
    core->expectLoad(request.timeoutInterval);
    webkit_web_view_load_request(view, uriRequest);
    g_object_unref(uriRequest);
  }

  // ---- Settings ----
  void applySettings(bool javaScriptEnabled) {
    WebKitSettings* settings = webkit_settings_new();
    webkit_settings_set_enable_javascript(settings, javaScriptEnabled);
    // Inline playback belongs to the view's configuration, not to the
    // preferences being replaced, so it carries over.
    webkit_settings_set_media_playback_allows_inline(settings, TRUE);
    webkit_settings_set_enable_developer_extras(settings, developerExtras);
    webkit_web_view_set_settings(view, settings);
    g_object_unref(settings);
  }
};

// ---- WebKitGTKEngine ---------------------------------------------------------------

WebKitGTKEngine::WebKitGTKEngine(const WebKitGTKConfiguration& configuration) : state_(std::make_shared<State>()) {
  logToGLib();
  // WebKit aborts, saying nothing of why, when it is first touched off the
  // UI thread: this says why before it happens.
  if (offTheUIThread()) {
    log(LogLevel::error, "engine",
        "a WebKitGTKEngine was made off the UI thread (the thread that started GTK and runs its main loop); "
        "WebKit can be used on that thread only. Make engines and views there: a worker can hand the work "
        "over with g_main_context_invoke. Aborting");
    std::abort();
  }
  State& s = *state_;
  WebKitWebContext* context = compat::newWebContext(configuration.ephemeral);
  // Before the view exists, so that its first web process loads the guard.
  s.contentManager = webkit_user_content_manager_new();
  if (const auto& directory = guard::moduleDirectory(configuration.webExtensionsDirectory)) {
    compat::setExtensionsDirectory(context, directory->c_str());
    GuardRules::of(context);  // every web process from now on starts with the rules
    s.guardPlace = *directory;
    s.stamped = true;
    // Marks this view's pages for the module; its messages are never read.
    compat::registerScriptMessageHandler(s.contentManager, channel::kMarker);
  }
  s.cancellable = g_cancellable_new();
  s.view = compat::newWebView(context, s.contentManager, configuration.ephemeral);
  g_object_unref(context);
  s.localPages = local::serve(s.view, configuration.localPages);
  webkit_settings_set_media_playback_allows_inline(webkit_web_view_get_settings(s.view), TRUE);
  const char* inspector = g_getenv("WEBSDK_INSPECTOR");
  s.developerExtras = configuration.webInspector || (inspector != nullptr && g_strcmp0(inspector, "1") == 0);
  webkit_settings_set_enable_developer_extras(webkit_web_view_get_settings(s.view), s.developerExtras);
  s.wire();
  if (s.stamped) s.askGuard();
}

WebKitGTKEngine::~WebKitGTKEngine() { state_->shutdown(); }

void WebKitGTKEngine::setClient(WebEngineClient* client) { state_->core->setClient(client); }

void WebKitGTKEngine::load(const URLRequest& request) {
  State& s = *state_;
  if (!s.view) return;
  s.send(request);
}

void WebKitGTKEngine::evaluateJavaScript(std::string script, ScriptCompletion completion) {
  State& s = *state_;
  if (!s.view) return;
  if (!completion) {
    webkit_web_view_evaluate_javascript(s.view, script.data(), static_cast<gssize>(script.size()), nullptr, nullptr,
                                        s.cancellable, nullptr, nullptr);
    // WebKit has taken its own copy.
    return scriptBuffers::give(std::move(script));
  }
  struct Pending {
    State::Weak state;
    ScriptCompletion completion;
  };
  webkit_web_view_evaluate_javascript(
      s.view, script.data(), static_cast<gssize>(script.size()), nullptr, nullptr, s.cancellable,
      [](GObject* source, GAsyncResult* result, gpointer data) {
        std::unique_ptr<Pending> pending(static_cast<Pending*>(data));
        GError* error = nullptr;
        JSCValue* value = webkit_web_view_evaluate_javascript_finish(WEBKIT_WEB_VIEW(source), result, &error);
        ScriptResult outcome;
        if (error)
          outcome.error = text(error->message);
        else
          outcome.value = toJSON(value);
        if (error) g_error_free(error);
        if (value) g_object_unref(value);
        // A completion for an engine that is gone is dropped.
        if (auto state = pending->state.lock(); state && state->view) pending->completion(std::move(outcome));
      },
      new Pending{state_, std::move(completion)});
  scriptBuffers::give(std::move(script));
}

void WebKitGTKEngine::addUserScript(const UserScript& script) {
  State& s = *state_;
  if (!s.view) return;
  WebKitUserScript* userScript = webkit_user_script_new(script.source.c_str(), WEBKIT_USER_CONTENT_INJECT_TOP_FRAME,
                                                        WEBKIT_USER_SCRIPT_INJECT_AT_DOCUMENT_START, nullptr, nullptr);
  webkit_user_content_manager_add_script(s.contentManager, userScript);
  webkit_user_script_unref(userScript);
}

void WebKitGTKEngine::addScriptMessageHandler(std::weak_ptr<ScriptMessageHandler> handler, std::string name) {
  if (state_->view) state_->addChannel(std::move(handler), std::move(name));
}

void WebKitGTKEngine::removeScriptMessageHandler(std::string_view name) {
  if (state_->view) state_->removeChannel(name);
}

void WebKitGTKEngine::evaluateInDocument(DocumentID document, std::string script, ScriptCompletion completion) {
  State& s = *state_;
  if (!s.view) return;
  if (!s.stamped) {
    // Without the module the UI process's view of the document decides.
    if (s.core->shows(document)) return evaluateJavaScript(std::move(script), std::move(completion));
    return EngineCore::dropped(completion);
  }
  // The module runs it only if `document` is the page's top document when it
  // arrives: a navigation racing the answer cannot carry it into the next one.
  auto* text = new std::string(std::move(script));
  GVariant* params = g_variant_new_from_data(
      G_VARIANT_TYPE_BYTESTRING, text->data(), text->size(), TRUE,
      [](gpointer p) {
        std::unique_ptr<std::string> sent(static_cast<std::string*>(p));
        scriptBuffers::give(std::move(*sent));
      },
      text);
  WebKitUserMessage* message =
      webkit_user_message_new(channel::evaluateName(document, completion != nullptr).c_str(), params);
  if (!completion) {
    webkit_web_view_send_message_to_page(s.view, message, nullptr, nullptr, nullptr);
    return;
  }
  struct Pending {
    State::Weak state;
    ScriptCompletion completion;
  };
  webkit_web_view_send_message_to_page(
      s.view, message, s.cancellable,
      [](GObject* source, GAsyncResult* result, gpointer data) {
        std::unique_ptr<Pending> pending(static_cast<Pending*>(data));
        GError* error = nullptr;
        WebKitUserMessage* reply = webkit_web_view_send_message_to_page_finish(WEBKIT_WEB_VIEW(source), result, &error);
        ScriptResult outcome;
        GVariant* params = reply ? webkit_user_message_get_parameters(reply) : nullptr;
        if (params != nullptr && g_variant_is_of_type(params, G_VARIANT_TYPE("(bbs)"))) {
          gboolean dropped = FALSE, failed = FALSE;
          const char* value = nullptr;
          g_variant_get(params, "(bb&s)", &dropped, &failed, &value);
          outcome.dropped = dropped != FALSE;
          if (failed)
            outcome.error = value;
          else if (*value != '\0')
            outcome.value = parseJSON(value);
        } else {
          // The page's process went away or could not take it: it never ran.
          outcome.dropped = true;
        }
        if (error) g_error_free(error);
        if (reply) g_object_unref(reply);
        if (auto state = pending->state.lock(); state && state->view) pending->completion(std::move(outcome));
      },
      new Pending{state_, std::move(completion)});
}

std::optional<std::string_view> WebKitGTKEngine::url() const {
  return state_->view ? state_->core->url() : std::nullopt;
}

DocumentID WebKitGTKEngine::document() const { return state_->view ? state_->core->document() : 0; }

URLCanonicalizer WebKitGTKEngine::urlCanonicalizer() const { return &webKitCanonicalURL; }

void WebKitGTKEngine::setPreferences(const WebPreferences& preferences) {
  if (state_->view) state_->applySettings(preferences.javaScriptEnabled);
}

bool WebKitGTKEngine::hasPinchGestureRecognizer() const { return state_->zoomGesture != nullptr; }
bool WebKitGTKEngine::pinchGestureRecognizerEnabled() const { return state_->core->pinchEnabled(); }

MainQueue& WebKitGTKEngine::mainQueue() { return state_->queue; }

void* nativeHandle(WebEngine& engine) {
  auto* gtk = dynamic_cast<WebKitGTKEngine*>(&engine);
  return gtk ? static_cast<void*>(gtk->state_->view) : nullptr;
}

}  // namespace websdk::webkitgtk
