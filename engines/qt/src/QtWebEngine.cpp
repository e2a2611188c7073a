// The Qt WebEngine port. Qt objects are owned by the view (the page, the
// channel) or by the state; every Qt callback holds the state weakly, so one
// that arrives after the engine is gone does nothing.

#include "websdk/qtwebengine/Native.hpp"

#include "Channel.hpp"
#include "Hooks.hpp"
#include "LocalScheme.hpp"
#include "PageScripts.hpp"
#include "Values.hpp"
#include "websdk/Log.hpp"
#include "websdk/webview/EngineCore.hpp"
#include "websdk/webview/ScriptBuffers.hpp"

#include <QAuthenticator>
#include <QCoreApplication>
#include <QJsonArray>
#include <QPointer>
#include <QStringDecoder>
#include <QThread>
#include <QTimer>
#include <QWebChannel>
#include <QWebEngineHttpRequest>
#include <QWebEngineLoadingInfo>
#include <QWebEngineProfile>
#include <QWebEngineScript>
#include <QWebEngineScriptCollection>
#include <QWebEngineSettings>

#include <cstdlib>
#include <deque>
#include <map>

namespace websdk::qtwebengine {

// ---- Engine state ----------------------------------------------------------------

struct QtWebEngine::State : std::enable_shared_from_this<State> {
  using Weak = std::weak_ptr<State>;

  QPointer<QWebEngineView> view;
  QPointer<Page> page;
  QWebEngineProfile* profile = nullptr;  // ours when ephemeral
  bool ownsProfile = false;
  std::unique_ptr<Interceptor> guard;
  std::unique_ptr<PinchFilter> pinchFilter;
  std::unique_ptr<local::Serving> localPages;
  // The page's child, and its child: gone with the page, whoever deletes it.
  QPointer<QWebChannel> channel;
  QPointer<ChannelObject> channelObject;
  QtMainQueue queue;
  // A timed-out load is stopped quietly: Qt's own word of the stop is not the timeout's.
  const std::shared_ptr<EngineCore> core =
      std::make_shared<EngineCore>(queue, "connection", -7, [this](const WebSDKNavigation& navigation) {
        if (!page) return false;
        abandonedURL = navigation.url;
        navigating = false;
        page->triggerAction(QWebEnginePage::Stop);
        return true;
      });
  QString channelLibrary;

  std::vector<UserScript> userScripts;
  // From the last load's trust: they shape the scripts every document gets.
  std::size_t messageLimit = WebSDKConfig{}.maximumMessageBytes;
  bool serviceWorkers = WebSDKConfig{}.allowsServiceWorkers;

  // Documents: each top document announces its mark from the isolated world
  // at creation; its frames' messages come with it.
  struct Known {
    std::string mark;
    DocumentID top = 0;
  };
  std::string documentMark;
  std::pair<std::string, std::string> documentStart;  // a mark, and what scripts for it start with
  std::deque<Known> recentMarks;                      // the last few, newest last
  std::map<DocumentID, std::string> topURLs;          // of the documents in recentMarks
  bool committedSinceStart = false;
  // The document a load's end committed for want of a hello: its channel may
  // still come up and say hello late.
  DocumentID unspoken = 0;
  // Where the main-frame navigation under way is headed, redirects included.
  std::string headedTo;

  bool javaScriptEnabled = true;

  // The view's own load: its request, and whether the main-frame requests now
  // under way are it or its redirects through trusted hosts only. Known from
  // the main frame's requests and redirects alone, which come in order: never
  // from a document's word, which may come late.
  std::optional<URLRequest> pendingLoad;
  QUrl pendingLoadURL;
  bool loadChain = false;
  // Whether the last main-frame request carried the app's fields: Chromium
  // keeps a request's fields on its redirects, and Qt cannot take one off.
  bool lastCarried = false;
  // An allowed redirect: the next main-frame request is its hop.
  bool redirectHopNext = false;
  // A redirect off the trusted hosts of a load that carried the app's fields
  // is blocked (Chromium would carry them on) and issued again as a new
  // navigation: its failure and its start are the navigation's own.
  bool reissuing = false;
  bool blockedForReissue = false;

  bool navigating = false;  // an allowed main-frame navigation not yet ended
  // A navigation stopped on timeout: Qt's own stop of it stays quiet, also
  // when it comes after the next navigation started.
  std::optional<std::string> abandonedURL;
  // Navigations the client allowed later than Qt asked: each is issued again
  // and passes once, unasked.
  std::vector<QUrl> allowedAgain;
  std::uint64_t lastQuestion = 0;
  std::map<std::uint64_t, bool> deciding;  // asked now: answered in the call?

  // ---- Making and teardown ----
  void make(const QtWebEngineConfiguration& configuration) {
    const Weak weak = weak_from_this();
    // A view with local pages has a profile of its own: Qt does not say
    // which view a scheme's request comes from.
    ownsProfile = configuration.ephemeral || !configuration.localPages.empty();
    profile = ownsProfile ? new QWebEngineProfile() : QWebEngineProfile::defaultProfile();
    view = new QWebEngineView();
    page = new Page(
        profile,
        [weak](const QUrl& url, QWebEnginePage::NavigationType type, bool isMainFrame) {
          auto s = weak.lock();
          return s && s->acceptNavigation(url, type, isMainFrame);
        },
        view);
    // Adds the app's fields to the requests of the view's own load whose host
    // is trusted: the load's first request and each redirect of it. No other
    // request gets them; Chromium keeps them on a redirect, so one off the
    // trusted hosts is stopped before its request is made (acceptNavigation).
    guard = std::make_unique<Interceptor>([weak](QWebEngineUrlRequestInfo& info) {
      if (auto s = weak.lock()) s->intercept(info);
    });
    page->setUrlRequestInterceptor(guard.get());
    view->setPage(page);
    channel = new QWebChannel(page);
    channelObject = new ChannelObject([weak](const QJsonArray& calls) {
      if (auto s = weak.lock(); s && s->page) s->receivedAll(calls);
    });
    channelObject->setParent(channel);
    channel->registerObject(QString::fromLatin1(scripts::kChannelObject), channelObject);
    page->setWebChannel(channel, QWebEngineScript::ApplicationWorld);
    channelLibrary = channelScriptSource();
    if (channelLibrary.isEmpty())
      log(LogLevel::warning, "engine", "Qt's qwebchannel.js was not found: pages cannot reach the app");
    installScripts();
    localPages = local::serve(profile, configuration.localPages);

    QObject::connect(page, &QWebEnginePage::loadingChanged, page, [weak](const QWebEngineLoadingInfo& info) {
      if (auto s = weak.lock(); s && s->page) s->loadingChanged(info);
    });
    QObject::connect(page, &QWebEnginePage::authenticationRequired, page,
                     [weak](const QUrl& url, QAuthenticator* authenticator) {
                       if (auto s = weak.lock(); s && s->page) s->authenticate(url, authenticator);
                     });
    pinchFilter = std::make_unique<PinchFilter>(
        [weak] {
          if (auto s = weak.lock()) s->core->pinchBegins();
        },
        [weak] {
          auto s = weak.lock();
          return !s || s->core->pinchEnabled();
        });
    view->installEventFilter(pinchFilter.get());
    for (QWidget* child : view->findChildren<QWidget*>()) child->installEventFilter(pinchFilter.get());
    const char* inspector = std::getenv("WEBSDK_INSPECTOR");
    if (configuration.webInspector || (inspector != nullptr && std::string_view(inspector) == "1"))
      log(LogLevel::info, "engine",
          "developer tools: start the app with QTWEBENGINE_REMOTE_DEBUGGING=<port> and open that port in Chromium");
  }

  void shutdown() {
    core->close();
    localPages.reset();
    if (channelObject) channelObject->close();
    if (page) page->setUrlRequestInterceptor(nullptr);
    // A view the host destroyed first (with its window) took its page along.
    QWebEngineView* widget = view.data();
    view = nullptr;
    page = nullptr;
    if (widget != nullptr) {
      // Torn down from inside one of its own signals, the view waits for the loop.
      if (core->emitting())
        widget->deleteLater();
      else
        delete widget;
    }
    if (ownsProfile) {
      // After its pages, which may still be on their way out.
      if (core->emitting() || widget == nullptr)
        profile->deleteLater();
      else
        delete profile;
    }
    profile = nullptr;
  }

  // ---- Scripts ----
  void installScripts() {
    QWebEngineScriptCollection& collection = page->scripts();
    collection.clear();
    auto add = [&](const QString& name, const QString& source, quint32 world, bool frames = true) {
      QWebEngineScript script;
      script.setName(name);
      script.setSourceCode(source);
      script.setInjectionPoint(QWebEngineScript::DocumentCreation);
      script.setWorldId(world);
      script.setRunsOnSubFrames(frames);
      collection.insert(script);
    };
    add(QStringLiteral("websdk-channel"), channelLibrary + qstring(scripts::isolatedWorld(messageLimit)),
        QWebEngineScript::ApplicationWorld);
    JSONArray names;
    for (const auto& name : core->handlerNames()) names.emplace_back(name);
    add(QStringLiteral("websdk-handlers"), qstring(scripts::mainWorld(serialize(names), serviceWorkers)),
        QWebEngineScript::MainWorld);
    int n = 0;
    for (const auto& script : userScripts)
      add(QStringLiteral("websdk-user-%1").arg(n++), qstring(script.source), QWebEngineScript::MainWorld, false);
  }

  // ---- Scripts as Qt takes them ----
  // Written into the text of the last script, in place: a large answer costs
  // no fresh memory here (Qt copies the text as it sends it on).
  QString scriptText;
  const QString& source(std::initializer_list<std::string_view> parts) {
    std::size_t bytes = 0;
    for (const auto part : parts) bytes += part.size();
    QStringDecoder decoder(QStringDecoder::Utf8);
    scriptText.resize(decoder.requiredSpace(static_cast<qsizetype>(bytes)));
    QChar* const start = scriptText.data();
    QChar* end = start;
    for (const auto part : parts) end = decoder.appendToBuffer(end, QByteArrayView(part.data(), part.size()));
    scriptText.truncate(end - start);
    return scriptText;
  }
  /// Runs `source` in the main frame's page world. `inDocument`: a script
  /// that completes with scripts::kDropped when its document is gone.
  void run(const QString& source, ScriptCompletion completion, bool inDocument) {
    if (!completion) {
      page->runJavaScript(source, QWebEngineScript::MainWorld);
    } else {
      page->runJavaScript(
          source, QWebEngineScript::MainWorld,
          [weak = Weak(weak_from_this()), completion = std::move(completion), inDocument](const QVariant& value) {
            auto state = weak.lock();
            if (!state || !state->page) return;
            if (inDocument && value.typeId() == QMetaType::QString &&
                value.toString() == QLatin1String(scripts::kDropped))
              return completion(ScriptResult{std::nullopt, std::nullopt, true});
            completion(ScriptResult{toJSON(value), std::nullopt, false});
          });
    }
    // Sent: text of a rare, very large script is not kept.
    if (scriptText.capacity() > (qsizetype{8} << 20)) scriptText = QString();
  }

  // ---- Messages ----
  const Known* known(const std::string& mark) const {
    for (const auto& k : recentMarks)
      if (k.mark == mark) return &k;
    return nullptr;
  }

  void remember(Known k) {
    recentMarks.push_back(std::move(k));
    if (recentMarks.size() > 32) recentMarks.pop_front();
    std::erase_if(topURLs, [&](const auto& entry) {
      return std::ranges::none_of(recentMarks, [&](const Known& m) { return m.top == entry.first; });
    });
  }

  // ---- Answers of a burst ----
  // The answers given while a burst of page messages is delivered go to the
  // page as one script at its end: one evaluation, not one each. Only
  // answers no one waits to hear about; anything else evaluated meanwhile
  // sends the burst's answers first, so the page sees them in order.
  int inBurst = 0;
  std::string burstAnswers;
  std::string burstMark;  // the document all of burstAnswers are for
  void sendBurstAnswers() {
    if (burstAnswers.empty()) return;
    burstAnswers += scripts::kAnswerEnd;
    const QString& text = source({burstAnswers});
    burstAnswers.clear();
    if (page) run(text, nullptr, false);
  }

  void receivedAll(const QJsonArray& calls) {
    const bool burst = calls.size() > 1;
    inBurst += burst;
    for (const auto& call : calls)
      if (page && call.isArray()) received(call.toArray());
    inBurst -= burst;
    if (inBurst == 0) sendBurstAnswers();
  }

  void received(const QJsonArray& call) {
    EngineCore::Emitting emitting(*core);
    const QString kind = call.at(0).toString();
    const std::string mark = utf8(call.at(1).toString());
    if (kind == QLatin1String("hello") && call.size() == 3) {
      if (known(mark) != nullptr) return;  // one document says hello once
      const std::string url = utf8(call.at(2).toString());
      const DocumentID late = std::exchange(unspoken, 0);
      const auto lateURL = topURLs.find(late);
      if (late != 0 && core->shows(late) && lateURL != topURLs.end() && lateURL->second == url &&
          !(navigating && headedTo == url)) {
        // The document the load's end committed, its channel up only now:
        // the same document. A load started since goes on, its timeout with it.
        documentMark = mark;
        topURLs[late] = url;
        remember({mark, late});
        return;
      }
      const DocumentID document = core->commitDocument(url);
      documentMark = mark;
      topURLs[document] = url;
      remember({mark, document});
      committedSinceStart = true;
      core->disarmTimeout();
      if (auto* navigation = core->navigation(); navigation && navigating) navigation->url = url;
      return;
    }
    if (kind != QLatin1String("post") || call.size() != 7) return;
    const Known* from = known(mark);
    if (from == nullptr || from->top == 0) return;  // no document of this view's said so
    const auto topURL = topURLs.find(from->top);
    const std::string url = utf8(call.at(2).toString());
    MessageOrigin origin{url, topURL != topURLs.end() ? topURL->second : std::string(), call.at(6).toBool(), from->top};
    std::string name = utf8(call.at(3).toString());
    if (!core->hasHandler(name)) return;
    std::string text = utf8(call.at(4).toString());
    if (name == "nativeRequest") {
      // A NUL cannot travel in the bridge's text; U+0001 reads the same in JSON.
      std::replace(text.begin(), text.end(), '\0', '\x01');
      const auto units = static_cast<std::size_t>(std::max(0.0, call.at(5).toDouble()));
      const std::size_t bytes = std::max(text.size(), units);
      core->deliver(ScriptMessage{std::move(name), JSON(nullptr), std::move(origin), std::string_view(text), bytes});
      return;
    }
    core->deliver(ScriptMessage{std::move(name), parseJSON(text), std::move(origin), std::nullopt, 0});
  }

  // ---- The app's headers ----
  void intercept(QWebEngineUrlRequestInfo& info) {
    // A service worker would see the app's headers on what it serves.
    if (info.resourceType() == QWebEngineUrlRequestInfo::ResourceTypeServiceWorker && !serviceWorkers)
      return info.block(true);
    if (info.resourceType() != QWebEngineUrlRequestInfo::ResourceTypeMainFrame) return;
    const bool hop = std::exchange(redirectHopNext, false);
    const bool carried = std::exchange(lastCarried, false);
    if (!hop) {
      // A navigation of its own: the view's load when it is the load's URL
      // (Qt names the load typed, and a reload of it reloads).
      const auto type = info.navigationType();
      loadChain = pendingLoad && info.requestUrl() == pendingLoadURL &&
                  (type == QWebEngineUrlRequestInfo::NavigationTypeTyped ||
                   type == QWebEngineUrlRequestInfo::NavigationTypeReload);
    }
    if (localPages) localPages->navigating(info.requestUrl(), !hop && loadChain);
    const HeaderFields fields = loadChain ? appFieldsFor(info.requestUrl()) : HeaderFields{};
    // Off the trusted hosts: the load never gets the app's fields back.
    if (fields.empty()) loadChain = false;
    if (hop && carried && fields.empty()) {
      // acceptNavigation stops such a hop before its request is made; this is
      // the last line, should one come here all the same.
      log(LogLevel::warning, "headers",
          "a redirect off the trusted hosts was blocked: " + utf8(info.requestUrl().toString()));
      return info.block(true);
    }
    lastCarried = !fields.empty() || (hop && carried);
    for (const auto& [name, value] : fields)
      info.setHttpHeader(QByteArray::fromStdString(name), QByteArray::fromStdString(value));
  }

  /// The app's fields a request of the view's load to `target` may carry.
  HeaderFields appFieldsFor(const QUrl& target) const {
    return pendingLoad ? pendingLoad->confinedFieldsFor(utf8(target.toString(QUrl::FullyEncoded))) : HeaderFields{};
  }

  /// Whether a redirect to `target` would carry the app's fields off the
  /// trusted hosts.
  bool redirectLeaves(const QUrl& target) const { return lastCarried && appFieldsFor(target).empty(); }

  // The redirect's target as a navigation of its own, with the fields anyone
  // may see and none of the app's; asked like any other.
  void reissue(const QUrl& target) {
    QWebEngineHttpRequest http(target);
    if (pendingLoad)
      for (const auto& [name, value] : pendingLoad->headersFor(""))
        http.setHeader(QByteArray::fromStdString(name), QByteArray::fromStdString(value));
    reissuing = true;
    page->load(http);
  }

  void send(const URLRequest& request) {
    const QUrl url(qstring(request.url));
    if (request.trust.maximumMessageBytes != messageLimit || request.trust.allowsServiceWorkers != serviceWorkers) {
      messageLimit = request.trust.maximumMessageBytes;
      serviceWorkers = request.trust.allowsServiceWorkers;
      installScripts();
    }
    pendingLoad = request;
    pendingLoadURL = url;
    loadChain = false;
    if (localPages) localPages->expect(request.url, request.headersFor(request.url));
    QWebEngineHttpRequest http(url);
    // Fields anyone may see go on the request; the app's are added per request.
    for (const auto& [name, value] : request.headersFor(""))
      http.setHeader(QByteArray::fromStdString(name), QByteArray::fromStdString(value));
    core->expectLoad(request.timeoutInterval);
    page->load(http);
  }

  // ---- Navigation ----
  bool acceptNavigation(const QUrl& url, QWebEnginePage::NavigationType type, bool isMainFrame) {
    EngineCore::Emitting emitting(*core);
    WebEngineClient* client = core->client();
    if (isMainFrame && type == QWebEnginePage::NavigationTypeRedirect && redirectLeaves(url)) {
      // Stopped before the request is made, and made again without them.
      loadChain = false;
      lastCarried = false;
      blockedForReissue = true;
      queue.post([weak = weak_from_this(), url] {
        if (auto s = weak.lock(); s && s->page) s->reissue(url);
      });
      return false;
    }
    if (isMainFrame) {
      const auto again = std::ranges::find(allowedAgain, url);
      if (again != allowedAgain.end()) {
        allowedAgain.erase(again);
        started(url, type == QWebEnginePage::NavigationTypeRedirect);
        redirectHopNext = type == QWebEnginePage::NavigationTypeRedirect;
        return true;
      }
    }
    if (!client) return false;
    const std::uint64_t id = ++lastQuestion;
    deciding.emplace(id, false);
    std::optional<bool> answer;
    const bool redirect = type == QWebEnginePage::NavigationTypeRedirect;
    const WebSDKNavigationAction action{utf8(url.toString(QUrl::FullyEncoded)), "GET", isMainFrame,
                                        type == QWebEnginePage::NavigationTypeLinkClicked};
    // A later answer cannot reach Qt's question: an allowed main-frame
    // navigation is issued again, this time passing unasked. Its history entry
    // and a form's body are not carried over.
    const bool ownLoad = pendingLoad && (url == pendingLoadURL || (redirect && loadChain));
    client->decidePolicyFor(action, [weak = weak_from_this(), id, url, isMainFrame, ownLoad,
                                     answerSlot = &answer](WebSDKNavigationActionPolicy policy) {
      auto s = weak.lock();
      if (!s || !s->page) return;
      const bool allow = policy == WebSDKNavigationActionPolicy::allow;
      const auto it = s->deciding.find(id);
      if (it == s->deciding.end()) return;  // the first answer stands
      if (!it->second) {
        *answerSlot = allow;  // inside the question: Qt hears it directly
        s->deciding.erase(it);
        return;
      }
      s->deciding.erase(it);
      if (!allow) {
        if (isMainFrame && ownLoad) s->core->loadRefused();
        return;
      }
      if (!isMainFrame) {
        log(LogLevel::warning, "navigation",
            "a frame's navigation allowed after Qt asked cannot be issued again: " + utf8(url.toString()));
        return;
      }
      s->queue.post([weak, url, ownLoad] {
        auto state = weak.lock();
        if (!state || !state->page) return;
        state->allowedAgain.push_back(url);
        if (ownLoad && state->pendingLoad) {
          URLRequest request = *state->pendingLoad;
          request.url = utf8(url.toString(QUrl::FullyEncoded));
          state->send(request);
        } else {
          state->page->load(url);
        }
      });
    });
    const auto it = deciding.find(id);
    if (it != deciding.end()) it->second = true;  // answered later, if at all
    if (answer.value_or(false)) {
      if (isMainFrame) started(url, redirect);
      if (isMainFrame) redirectHopNext = redirect;
      return true;
    }
    if (answer && isMainFrame && ownLoad) core->loadRefused();
    return false;
  }

  void started(const QUrl& url, bool redirect) {
    headedTo = utf8(url.toString(QUrl::FullyEncoded));
    if ((redirect || std::exchange(reissuing, false)) && navigating) return;  // the navigation under way goes on
    navigating = true;
    committedSinceStart = false;
    core->startNavigation(utf8(url.toString(QUrl::FullyEncoded)));
  }
  void loadingChanged(const QWebEngineLoadingInfo& info) {
    EngineCore::Emitting emitting(*core);
    switch (info.status()) {
      case QWebEngineLoadingInfo::LoadStartedStatus: return;
      case QWebEngineLoadingInfo::LoadSucceededStatus:
        core->disarmTimeout();
        if (!committedSinceStart) {
          // No word from the document (JavaScript off): the UI process's view of it.
          const std::string url = utf8(info.url().toString(QUrl::FullyEncoded));
          unspoken = core->commitDocument(url);
          topURLs[unspoken] = url;
          documentMark.clear();
        }
        if (!navigating) return;
        navigating = false;
        core->finished();
        return;
      case QWebEngineLoadingInfo::LoadStoppedStatus:
      case QWebEngineLoadingInfo::LoadFailedStatus: {
        if (std::exchange(blockedForReissue, false)) return;
        if (abandonedURL && *abandonedURL == utf8(info.url().toString(QUrl::FullyEncoded))) {
          abandonedURL.reset();
          return;
        }
        if (!navigating) return;  // refused by us, or stopped on timeout
        core->disarmTimeout();
        navigating = false;
        const bool stopped = info.status() == QWebEngineLoadingInfo::LoadStoppedStatus;
        core->failed(committedSinceStart, WebSDKError{stopped ? "internal" : errorDomain(info.errorDomain()),
                                                      stopped ? kAbortedError : info.errorCode(),
                                                      stopped ? "Load stopped" : utf8(info.errorString()), false});
        return;
      }
    }
  }

  // Qt asks synchronously and takes no later answer: a delegate that answers
  // within the call is heard; one that answers later finds the challenge
  // cancelled.
  void authenticate(const QUrl& url, QAuthenticator* authenticator) {
    EngineCore::Emitting emitting(*core);
    WebEngineClient* client = core->client();
    if (!client) {
      *authenticator = QAuthenticator();
      return;
    }
    const WebSDKAuthenticationChallenge challenge{utf8(url.host()), url.port(url.scheme() == "https" ? 443 : 80),
                                                  utf8(authenticator->realm()), "httpBasic",
                                                  authenticator->option(QStringLiteral("websdk-retry")).toInt()};
    bool answered = false;
    bool inside = true;
    auto weak = weak_from_this();
    client->didReceive(challenge, [&, weak](WebSDKAuthChallengeDisposition disposition,
                                            std::optional<WebSDKURLCredential> credential) {
      if (!inside) {
        log(LogLevel::warning, "navigation",
            "an authentication challenge was answered after Qt WebEngine stopped waiting: answer it within "
            "didReceive on this engine");
        return;
      }
      answered = true;
      if (disposition == WebSDKAuthChallengeDisposition::useCredential && credential) {
        authenticator->setUser(qstring(credential->user));
        authenticator->setPassword(qstring(credential->password));
      } else if (disposition == WebSDKAuthChallengeDisposition::cancelAuthenticationChallenge) {
        *authenticator = QAuthenticator();
      }
    });
    inside = false;
    if (!answered) *authenticator = QAuthenticator();
  }

  // ---- Settings ----
  void applySettings() { page->settings()->setAttribute(QWebEngineSettings::JavascriptEnabled, javaScriptEnabled); }
};

// ---- QtWebEngine -------------------------------------------------------------------

QtWebEngine::QtWebEngine(const QtWebEngineConfiguration& configuration) : state_(std::make_shared<State>()) {
  logToQt();
  // Qt's widgets live on the application's thread only; made elsewhere they
  // fail deep inside Qt.
  if (QCoreApplication::instance() == nullptr || QThread::currentThread() != QCoreApplication::instance()->thread()) {
    log(LogLevel::error, "engine",
        QCoreApplication::instance() == nullptr
            ? "a QtWebEngine was made before the application (qtwebengine::initialize, or the host's own "
              "QApplication after qtwebengine::prepare()). Aborting"
            : "a QtWebEngine was made off the UI thread (the QApplication's); Qt's widgets can be used on that "
              "thread only. Make engines and views there: a worker can hand the work over with "
              "QMetaObject::invokeMethod. Aborting");
    std::abort();
  }
  state_->make(configuration);
}

QtWebEngine::~QtWebEngine() { state_->shutdown(); }

void QtWebEngine::setClient(WebEngineClient* client) { state_->core->setClient(client); }

void QtWebEngine::load(const URLRequest& request) {
  if (state_->page) state_->send(request);
}

void QtWebEngine::evaluateJavaScript(std::string script, ScriptCompletion completion) {
  State& s = *state_;
  if (!s.page) return;
  s.sendBurstAnswers();
  const QString& source = s.source({script});
  scriptBuffers::give(std::move(script));
  s.run(source, std::move(completion), false);
}

void QtWebEngine::evaluateInDocument(DocumentID document, std::string script, ScriptCompletion completion) {
  State& s = *state_;
  if (!s.page) return;
  s.sendBurstAnswers();
  if (!s.core->shows(document)) return EngineCore::dropped(completion);
  if (s.documentMark.empty()) return evaluateJavaScript(std::move(script), std::move(completion));
  // The page decides: a navigation racing the answer cannot carry it into the next document.
  if (s.documentStart.first != s.documentMark)
    s.documentStart = {s.documentMark, scripts::inDocumentStart(s.documentMark)};
  const QString& source = s.source({s.documentStart.second, script, scripts::kInDocumentEnd});
  scriptBuffers::give(std::move(script));
  s.run(source, std::move(completion), true);
}

void QtWebEngine::evaluateAnswer(DocumentID document, WebSDKResponseModel answer, ScriptCompletion completion) {
  State& s = *state_;
  if (!s.page) return;
  if (!s.core->shows(document)) return EngineCore::dropped(completion);
  if (s.documentMark.empty()) {
    // A document that never said hello has no answer function: the script.
    if (auto script = nativeResponseScript(answer)) evaluateJavaScript(std::move(*script), std::move(completion));
    return;
  }
  // Its strings between single quotes: a JSON payload's many double quotes
  // then need no backslash, and the page parses a large answer faster.
  auto envelope = encodeEnvelopeForScript(answer);
  if (!envelope) return;  // the view let through only UTF-8
  // Answers of up to kBurstBytes: a larger one costs more to copy into the
  // burst's script than its own evaluation. A burst's script is sent when
  // the next answer would take it past that size, or is for another document.
  constexpr std::size_t kBurstBytes = std::size_t{256} << 10;
  if (s.inBurst > 0 && !completion && envelope->size() <= kBurstBytes) {
    if (s.burstAnswers.size() + envelope->size() > kBurstBytes || s.burstMark != s.documentMark) s.sendBurstAnswers();
    if (s.burstAnswers.empty()) {
      s.burstMark = s.documentMark;
      for (const auto part : {scripts::kAnswersStart, std::string_view(s.documentMark), scripts::kAnswersMarkEnd})
        s.burstAnswers += part;
    }
    s.burstAnswers += ',';
    s.burstAnswers += *envelope;
    scriptBuffers::give(std::move(*envelope));
    return;
  }
  s.sendBurstAnswers();
  const QString& source =
      s.source({scripts::kAnswerStart, s.documentMark, scripts::kAnswerMarkEnd, *envelope, scripts::kAnswerEnd});
  scriptBuffers::give(std::move(*envelope));
  s.run(source, std::move(completion), true);
}

void QtWebEngine::addUserScript(const UserScript& script) {
  State& s = *state_;
  if (!s.page) return;
  s.userScripts.push_back(script);
  s.installScripts();
}

void QtWebEngine::addScriptMessageHandler(std::weak_ptr<ScriptMessageHandler> handler, std::string name) {
  State& s = *state_;
  // The first handler of a name keeps it.
  if (s.page && s.core->addHandler(std::move(handler), std::move(name))) s.installScripts();
}

void QtWebEngine::removeScriptMessageHandler(std::string_view name) {
  State& s = *state_;
  if (s.core->removeHandler(name) && s.page) s.installScripts();
}

std::optional<std::string_view> QtWebEngine::url() const { return state_->page ? state_->core->url() : std::nullopt; }

DocumentID QtWebEngine::document() const { return state_->page ? state_->core->document() : 0; }

URLCanonicalizer QtWebEngine::urlCanonicalizer() const { return &chromiumCanonicalURL; }

void QtWebEngine::setPreferences(const WebPreferences& preferences) {
  state_->javaScriptEnabled = preferences.javaScriptEnabled;
  if (state_->page) state_->applySettings();
}

bool QtWebEngine::hasPinchGestureRecognizer() const { return state_->pinchFilter != nullptr; }
bool QtWebEngine::pinchGestureRecognizerEnabled() const { return state_->core->pinchEnabled(); }
MainQueue& QtWebEngine::mainQueue() { return state_->queue; }

void* nativeHandle(WebEngine& engine) {
  auto* qt = dynamic_cast<QtWebEngine*>(&engine);
  return qt ? static_cast<void*>(qt->state_->view.data()) : nullptr;
}

}  // namespace websdk::qtwebengine
