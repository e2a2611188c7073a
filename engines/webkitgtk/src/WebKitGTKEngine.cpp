// The WebKitGTK port. Every GLib closure and posted task holds the engine's
// state weakly: a signal, an evaluation or a policy answer that arrives after
// the engine is gone does nothing.

#include "websdk/webkitgtk/Native.hpp"

#include "Compat.hpp"
#include "GuardLocation.hpp"
#include "GuardRules.hpp"
#include "HeaderGuard.hpp"
#include "LocalSchemes.hpp"
#include "MainLoop.hpp"
#include "PageChannel.hpp"
#include "Questions.hpp"
#include "Values.hpp"
#include "websdk/Log.hpp"
#include "websdk/webview/EngineCore.hpp"
#include "websdk/webview/ScriptBuffers.hpp"

#include <cstdlib>
#include <map>
#include <utility>
#include <vector>

namespace websdk::webkitgtk {

// ---- Engine state ----------------------------------------------------------------

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
  // A large stamped message's parts so far; the stamp follows the last.
  std::optional<channel::Gathering> gathering;

  bool failed = false;     // current navigation failed: its end is not a finish
  bool abandoned = false;  // stopped on timeout: WebKit's own stop events stay quiet

  // Questions the client has not answered yet.
  std::optional<Questions> questions{std::in_place};

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
    questions.reset();
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
    const std::uint64_t id = questions->hold(decision, type);
    auto settle = [weak = weak_from_this(), id](bool use) {
      onUIThread(weak, [id, use](State& s) { s.settleDecision(id, use); });
    };
    if (!client) return TRUE;
    if (type == WEBKIT_POLICY_DECISION_TYPE_RESPONSE)
      client->decidePolicyFor(navigationResponseOf(decision), [settle](WebSDKNavigationResponsePolicy policy) {
        settle(policy == WebSDKNavigationResponsePolicy::allow);
      });
    else
      client->decidePolicyFor(navigationActionOf(decision, type), [settle](WebSDKNavigationActionPolicy policy) {
        settle(policy == WebSDKNavigationActionPolicy::allow);
      });
    return TRUE;
  }

  void settleDecision(std::uint64_t id, bool use) {
    // A refused load never starts: its timeout must not pass to another.
    if (questions->settle(id, use)) core->loadRefused();
  }

  gboolean authenticate(WebKitAuthenticationRequest* request) {
    EngineCore::Emitting emitting(*core);
    WebEngineClient* client = core->client();
    const std::uint64_t id = questions->hold(request);
    if (client)
      client->didReceive(challengeOf(request),
                         [weak = weak_from_this(), id](WebSDKAuthChallengeDisposition disposition,
                                                       std::optional<WebSDKURLCredential> credential) {
                           onUIThread(weak, [id, disposition, credential = std::move(credential)](State& s) {
                             s.questions->settle(id, disposition, credential);
                           });
                         });
    return TRUE;
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
      if (!gathering) gathering.emplace(static_cast<std::size_t>(length));
      gathering->add(static_cast<std::size_t>(length), std::string_view(static_cast<const char*>(data), size));
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
        const std::optional<std::string> whole = std::exchange(gathering, std::nullopt)->finish(body);
        if (!whole) {
          log(LogLevel::warning, "engine", "a message sent in parts arrived incomplete and was dropped");
          return TRUE;
        }
        dispatch(handler, nullptr, std::move(origin), std::string_view(*whole), static_cast<std::size_t>(bytes));
      }
      return TRUE;
    }
    return FALSE;
  }

  // ---- Evaluations in one document, through the module ----
  void sendToPage(WebKitUserMessage* message, ScriptCompletion completion) {
    if (!completion) {
      webkit_web_view_send_message_to_page(view, message, nullptr, nullptr, nullptr);
      return;
    }
    struct Pending {
      Weak state;
      ScriptCompletion completion;
    };
    webkit_web_view_send_message_to_page(
        view, message, cancellable,
        [](GObject* source, GAsyncResult* result, gpointer data) {
          std::unique_ptr<Pending> pending(static_cast<Pending*>(data));
          GError* error = nullptr;
          WebKitUserMessage* reply =
              webkit_web_view_send_message_to_page_finish(WEBKIT_WEB_VIEW(source), result, &error);
          ScriptResult outcome = evaluatedResult(reply);
          if (error) g_error_free(error);
          if (reply) g_object_unref(reply);
          if (auto state = pending->state.lock(); state && state->view) pending->completion(std::move(outcome));
        },
        new Pending{weak_from_this(), std::move(completion)});
  }

  // ---- The header guard ----
  // Asked once the view exists: the question starts the page's web process,
  // and the module there answers if it was loaded.
  void askGuard() {
    askModule(view, cancellable, [weak = weak_from_this()](bool present, const std::string& why) {
      if (auto s = weak.lock(); s && s->view) s->guardAnswered(present, why);
    });
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
  WebKitUserMessage* message = evaluateMessage(document, completion != nullptr, std::move(script));
  s.sendToPage(message, std::move(completion));
}

bool WebKitGTKEngine::answersAsData() const { return true; }

void WebKitGTKEngine::evaluateAnswer(DocumentID document, WebSDKResponseModel answer, ScriptCompletion completion) {
  State& s = *state_;
  if (!s.view) return;
  // Without the module, as a script.
  if (!s.stamped) return WebEngine::evaluateAnswer(document, std::move(answer), std::move(completion));
  WebKitUserMessage* message = answerMessage(document, completion != nullptr, std::move(answer));
  s.sendToPage(message, std::move(completion));
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
