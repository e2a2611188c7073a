// The Qt WebEngine port. Qt objects are owned by the view (the page, the
// channel) or by the state; every Qt callback holds the state weakly, so one
// that arrives after the engine is gone does nothing.

#include "websdk/qtwebengine/Native.hpp"

#include "Channel.hpp"
#include "LocalScheme.hpp"
#include "PageScripts.hpp"
#include "websdk/Log.hpp"
#include "websdk/webview/EngineCore.hpp"
#include "websdk/webview/ScriptBuffers.hpp"

#include <QApplication>
#include <QAuthenticator>
#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEvent>
#include <QFile>
#include <QHostAddress>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLoggingCategory>
#include <QNativeGestureEvent>
#include <QPointer>
#include <QThread>
#include <QTimer>
#include <QWebChannel>
#include <QWebEngineHttpRequest>
#include <QWebEngineLoadingInfo>
#include <QWebEngineProfile>
#include <QWebEngineScript>
#include <QWebEngineScriptCollection>
#include <QWebEngineSettings>
#include <QWebEngineUrlRequestInterceptor>
#include <QWebEngineUrlScheme>

#include <unistd.h>

#include <array>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <limits>
#include <map>
#include <mutex>

namespace websdk::qtwebengine {

// ---- Log and start ---------------------------------------------------------------

namespace {
// Warnings and errors show by default, as GLib shows them; info and debug
// only when asked (QT_LOGGING_RULES="websdk.info=true").
Q_LOGGING_CATEGORY(websdkCategory, "websdk", QtWarningMsg)

void toQt(const LogRecord& record) {
  const QString text = QString::fromStdString(logLine(record));
  const QByteArray topic(record.topic.data(), static_cast<qsizetype>(record.topic.size()));
  switch (record.level) {
    case LogLevel::debug: qCDebug(websdkCategory, "[%s] %s", topic.constData(), qUtf8Printable(text)); break;
    case LogLevel::info: qCInfo(websdkCategory, "[%s] %s", topic.constData(), qUtf8Printable(text)); break;
    case LogLevel::warning: qCWarning(websdkCategory, "[%s] %s", topic.constData(), qUtf8Printable(text)); break;
    case LogLevel::error: qCCritical(websdkCategory, "[%s] %s", topic.constData(), qUtf8Printable(text)); break;
  }
}

QString qstring(std::string_view s) { return QString::fromUtf8(s.data(), static_cast<qsizetype>(s.size())); }
std::string utf8(const QString& s) { return s.toStdString(); }
}  // namespace

void logToQt() {
  static std::once_flag once;
  std::call_once(once, [] { websdk::detail::setPlatformLogSink(toQt); });
}

void prepare(const std::vector<std::string>& localSchemes) {
  static std::once_flag once;
  std::call_once(once, [&] {
    logToQt();
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    // Chromium's sandbox cannot start as root: off for this process, and said.
    if (geteuid() == 0) {
      std::string flags = std::getenv("QTWEBENGINE_CHROMIUM_FLAGS") ? std::getenv("QTWEBENGINE_CHROMIUM_FLAGS") : "";
      if (flags.find("--no-sandbox") == std::string::npos) {
        flags += flags.empty() ? "--no-sandbox" : " --no-sandbox";
        setenv("QTWEBENGINE_CHROMIUM_FLAGS", flags.c_str(), 1);
        log(LogLevel::info, "engine", "running as root: Chromium's sandbox is off for this process");
      }
    }
    for (const auto& name : localSchemes) {
      QWebEngineUrlScheme scheme(QByteArray::fromStdString(name));
      scheme.setSyntax(QWebEngineUrlScheme::Syntax::Host);
      scheme.setFlags(QWebEngineUrlScheme::SecureScheme | QWebEngineUrlScheme::CorsEnabled);
      QWebEngineUrlScheme::registerScheme(scheme);
    }
  });
}

bool initialize() {
  static int argc = 1;
  static char name[] = "websdk";
  static char* argv[] = {name, nullptr};
  return initialize(argc, argv);
}

bool initialize(int& argc, char** argv) {
  if (QCoreApplication::instance() != nullptr) return qobject_cast<QApplication*>(QCoreApplication::instance());
  prepare();
  // Qt ends the process when its platform cannot open a display: ask first.
  const char* platform = std::getenv("QT_QPA_PLATFORM");
  const bool offscreen = platform != nullptr && std::string_view(platform).starts_with("offscreen");
  if (!offscreen && std::getenv("DISPLAY") == nullptr && std::getenv("WAYLAND_DISPLAY") == nullptr) return false;
  static QApplication* application = new QApplication(argc, argv);
  return application != nullptr;
}

bool runUntil(const std::function<bool()>& done, std::chrono::milliseconds bound) {
  if (done()) return true;
  // The clock decides, read at every wake-up; the timer only wakes an idle
  // loop. It is a precise one, which never fires before its time (a coarse
  // one may, by up to 5%), and is set again for what is left whenever the
  // loop wakes for anything else, so no wait outlasts the deadline.
  QDeadlineTimer deadline(std::max<std::int64_t>(0, bound.count()), Qt::PreciseTimer);
  QTimer wake;
  wake.setSingleShot(true);
  wake.setTimerType(Qt::PreciseTimer);
  bool ok = false;
  while (!(ok = done()) && !deadline.hasExpired()) {
    const qint64 left = deadline.remainingTime();
    wake.start(static_cast<int>(std::clamp<qint64>(left, 1, std::numeric_limits<int>::max())));
    QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
  }
  return ok;
}

// ---- Main queue ------------------------------------------------------------------

// Tasks wait in the queue's own list, and one posted event at a time drains
// it: a burst of answers costs no posted event each, and leaves no list of
// Qt's grown to the burst's size.
struct QtMainQueue::Context {
  QObject object;  // lives on the UI thread: queued calls run there
  std::mutex mutex;
  std::deque<std::function<void()>> tasks;
  bool scheduled = false;

  void schedule() {
    QMetaObject::invokeMethod(
        &object, [this] { drain(); }, Qt::QueuedConnection);
  }

  // A turn runs a bounded batch, so that input and painting go on between.
  void drain() {
    constexpr int kTurn = 256;
    for (int n = 0; n < kTurn; ++n) {
      std::function<void()> task;
      {
        std::lock_guard lock(mutex);
        if (tasks.empty()) {
          scheduled = false;
          return;
        }
        task = std::move(tasks.front());
        tasks.pop_front();
      }
      task();
    }
    schedule();
  }
};

// One list for the UI thread, outliving every engine: a task posted for a
// view that is gone still runs, and finds it gone, as GLib's would.
QtMainQueue::QtMainQueue() {
  static const std::shared_ptr<Context> shared(new Context, [](Context*) {});
  context_ = shared;
}
QtMainQueue::~QtMainQueue() = default;

void QtMainQueue::post(std::function<void()> task) {
  std::lock_guard lock(context_->mutex);
  context_->tasks.push_back(std::move(task));
  if (!std::exchange(context_->scheduled, true)) context_->schedule();
}

void QtMainQueue::postAfter(std::chrono::milliseconds delay, std::function<void()> task) {
  // Qt's timers count in int milliseconds.
  const auto ms = std::clamp<std::int64_t>(delay.count(), 0, std::numeric_limits<int>::max());
  QTimer::singleShot(std::chrono::milliseconds(ms), &context_->object, std::move(task));
}

bool QtMainQueue::isUIThread() const { return std::this_thread::get_id() == thread_; }

// ---- Engine state ----------------------------------------------------------------

namespace {

std::optional<JSON> toJSON(const QVariant& value) {
  if (!value.isValid()) return std::nullopt;
  const QJsonValue json = QJsonValue::fromVariant(value);
  if (json.isUndefined()) return std::nullopt;
  // Wrapped: QJsonDocument takes only arrays and objects.
  const QByteArray text = QJsonDocument(QJsonArray{json}).toJson(QJsonDocument::Compact);
  JSON parsed = parseJSON(std::string_view(text.constData(), static_cast<std::size_t>(text.size())));
  if (!parsed.is_array() || parsed.as_array().empty()) return std::nullopt;
  return std::move(parsed.as_array()[0]);
}

QString channelScriptSource() {
  QFile file(QStringLiteral(":/qtwebchannel/qwebchannel.js"));
  if (!file.open(QIODevice::ReadOnly)) return {};
  return QString::fromUtf8(file.readAll());
}

std::string errorDomain(QWebEngineLoadingInfo::ErrorDomain domain) {
  switch (domain) {
    case QWebEngineLoadingInfo::NoErrorDomain: return "none";
    case QWebEngineLoadingInfo::InternalErrorDomain: return "internal";
    case QWebEngineLoadingInfo::ConnectionErrorDomain: return "connection";
    case QWebEngineLoadingInfo::CertificateErrorDomain: return "certificate";
    case QWebEngineLoadingInfo::HttpErrorDomain: return "http";
    case QWebEngineLoadingInfo::FtpErrorDomain: return "ftp";
    case QWebEngineLoadingInfo::DnsErrorDomain: return "dns";
    case QWebEngineLoadingInfo::HttpStatusCodeDomain: return "httpStatusCode";
    default: return "unknown";
  }
}

constexpr int kAbortedError = -3;  // Chromium's net::ERR_ABORTED

// An IPv6 address as the URL standard writes it: lowercase hex, the longest
// run of two or more zero pieces (the first of equals) compressed.
std::string ipv6Text(const Q_IPV6ADDR& address) {
  std::array<unsigned, 8> pieces{};
  for (std::size_t i = 0; i < 8; ++i) pieces[i] = (unsigned{address[2 * i]} << 8) | address[2 * i + 1];
  std::size_t bestStart = 8, bestLength = 0;
  for (std::size_t i = 0; i < 8;) {
    std::size_t j = i;
    while (j < 8 && pieces[j] == 0) ++j;
    if (j - i > bestLength && j - i >= 2) bestStart = i, bestLength = j - i;
    i = j == i ? i + 1 : j;
  }
  std::string out = "[";
  for (std::size_t i = 0; i < 8; ++i) {
    if (i == bestStart) {
      out += i == 0 ? "::" : ":";
      i += bestLength - 1;
      continue;
    }
    char piece[8];
    std::snprintf(piece, sizeof piece, "%x", pieces[i]);
    out += piece;
    if (i != 7) out += ':';
  }
  return out + "]";
}

// Chromium's reading of a URL: the WebSDK's own, with international host
// names in their ASCII form (UTS #46, by Qt) and IPv6 hosts as Chromium
// writes them.
std::optional<std::string> chromiumCanonicalURL(std::string_view url) {
  std::optional<std::string> canonical = canonicalURL(url);
  if (!canonical && std::ranges::any_of(url, [](char c) { return static_cast<unsigned char>(c) >= 0x80; })) {
    const QUrl parsed(qstring(url), QUrl::StrictMode);
    if (parsed.isValid() && !parsed.host().isEmpty())
      canonical = canonicalURL(utf8(parsed.toString(QUrl::FullyEncoded)));
  }
  if (!canonical) return std::nullopt;
  const std::string scheme = canonical->substr(0, canonical->find(':'));
  const bool special =
      scheme == "http" || scheme == "https" || scheme == "ws" || scheme == "wss" || scheme == "ftp" || scheme == "file";
  if (!special) {
    // Chromium 102 reads a host only in a scheme registered with one (the
    // app's local pages), lowercased; in any other it reads none.
    const QWebEngineUrlScheme registered = QWebEngineUrlScheme::schemeByName(QByteArray::fromStdString(scheme));
    if (registered.name().isEmpty() || registered.syntax() == QWebEngineUrlScheme::Syntax::Path)
      return hostOf(*canonical) ? std::nullopt : canonical;
    if (const auto host = hostOf(*canonical)) {
      const std::size_t at = static_cast<std::size_t>(host->data() - canonical->data()), length = host->size();
      for (std::size_t i = at; i < at + length; ++i)
        (*canonical)[i] = static_cast<char>(std::tolower(static_cast<unsigned char>((*canonical)[i])));
    }
    return canonical;
  }
  if (scheme == "file" && canonical->starts_with("file:///")) {
    // Chromium keeps a file URL's "localhost", which the standard drops.
    std::string_view raw = url;
    while (!raw.empty() && static_cast<unsigned char>(raw.front()) <= 0x20) raw.remove_prefix(1);
    if (raw.size() >= 16 && QByteArray(raw.data(), 16).toLower() == "file://localhost" &&
        (raw.size() == 16 || raw[16] == '/' || raw[16] == '\\'))
      canonical->insert(7, "localhost");
  }
  const auto host = hostOf(*canonical);
  if (host && host->size() > 2 && host->front() == '[') {
    QHostAddress address;
    if (address.setAddress(qstring(host->substr(1, host->size() - 2))) &&
        address.protocol() == QAbstractSocket::IPv6Protocol) {
      const std::size_t at = static_cast<std::size_t>(host->data() - canonical->data()), length = host->size();
      canonical->replace(at, length, ipv6Text(address.toIPv6Address()));
    }
  }
  return canonical;
}

}  // namespace

struct QtWebEngine::State : std::enable_shared_from_this<State> {
  using Weak = std::weak_ptr<State>;

  class Page final : public QWebEnginePage {
   public:
    Page(QWebEngineProfile* profile, Weak state, QObject* parent)
        : QWebEnginePage(profile, parent), state_(std::move(state)) {}

   protected:
    bool acceptNavigationRequest(const QUrl& url, NavigationType type, bool isMainFrame) override {
      auto s = state_.lock();
      return s && s->acceptNavigation(url, type, isMainFrame);
    }
    // New windows (target=_blank, window.open) are not opened: the view shows one page.
    QWebEnginePage* createWindow(WebWindowType) override { return nullptr; }
    void javaScriptConsoleMessage(JavaScriptConsoleMessageLevel, const QString& message, int line,
                                  const QString& source) override {
      log(LogLevel::debug, "engine", utf8(source) + ":" + std::to_string(line) + ": " + utf8(message));
    }

   private:
    Weak state_;
  };

  // Adds the app's fields to the requests of the view's own load whose host is
  // trusted: the load's first request and each redirect of it. No other
  // request gets them; Chromium keeps them on a redirect, so one off the
  // trusted hosts is stopped before its request is made (acceptNavigation).
  class Guard final : public QWebEngineUrlRequestInterceptor {
   public:
    explicit Guard(Weak state) : state_(std::move(state)) {}
    void interceptRequest(QWebEngineUrlRequestInfo& info) override {
      if (auto s = state_.lock()) s->intercept(info);
    }

   private:
    Weak state_;
  };

  // Watches pinches ahead of the page, so that a refused one never reaches it:
  // on the view and on the widget Chromium draws into, which the view makes
  // as its child and which takes the device's gestures.
  class PinchFilter final : public QObject {
   public:
    explicit PinchFilter(Weak state) : state_(std::move(state)) {}
    bool eventFilter(QObject*, QEvent* event) override {
      if (event->type() == QEvent::ChildAdded) {
        QObject* child = static_cast<QChildEvent*>(event)->child();
        if (child->isWidgetType()) child->installEventFilter(this);
        return false;
      }
      if (event->type() != QEvent::NativeGesture) return false;
      auto s = state_.lock();
      if (!s) return false;
      auto* gesture = static_cast<QNativeGestureEvent*>(event);
      if (gesture->gestureType() == Qt::BeginNativeGesture ||
          (gesture->gestureType() == Qt::ZoomNativeGesture && !s->pinching)) {
        if (!s->pinching) {
          s->pinching = true;
          s->core->pinchBegins();
        }
      }
      if (gesture->gestureType() == Qt::EndNativeGesture) s->pinching = false;
      return !s->core->pinchEnabled();
    }

   private:
    Weak state_;
  };

  QPointer<QWebEngineView> view;
  QPointer<Page> page;
  QWebEngineProfile* profile = nullptr;  // ours when ephemeral
  bool ownsProfile = false;
  std::unique_ptr<Guard> guard;
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
  std::deque<Known> recentMarks;              // the last few, newest last
  std::map<DocumentID, std::string> topURLs;  // of the documents in recentMarks
  bool committedSinceStart = false;

  bool pinching = false;
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
    page = new Page(profile, weak, view);
    guard = std::make_unique<Guard>(weak);
    page->setUrlRequestInterceptor(guard.get());
    view->setPage(page);
    channel = new QWebChannel(page);
    channelObject = new ChannelObject([weak](const QJsonArray& call) {
      if (auto s = weak.lock(); s && s->page) s->received(call);
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
    pinchFilter = std::make_unique<PinchFilter>(weak);
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

  void received(const QJsonArray& call) {
    EngineCore::Emitting emitting(*core);
    const QString kind = call.at(0).toString();
    const std::string mark = utf8(call.at(1).toString());
    if (kind == QLatin1String("hello") && call.size() == 3) {
      if (known(mark) != nullptr) return;  // one document says hello once
      const std::string url = utf8(call.at(2).toString());
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
          core->commitDocument(utf8(info.url().toString(QUrl::FullyEncoded)));
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
  const QString source = qstring(script);
  scriptBuffers::give(std::move(script));
  if (!completion) return s.page->runJavaScript(source, QWebEngineScript::MainWorld);
  s.page->runJavaScript(source, QWebEngineScript::MainWorld,
                        [weak = State::Weak(state_), completion = std::move(completion)](const QVariant& value) {
                          if (auto state = weak.lock(); state && state->page)
                            completion(ScriptResult{toJSON(value), std::nullopt, false});
                        });
}

void QtWebEngine::evaluateInDocument(DocumentID document, std::string script, ScriptCompletion completion) {
  State& s = *state_;
  if (!s.page) return;
  if (!s.core->shows(document)) return EngineCore::dropped(completion);
  if (s.documentMark.empty()) return evaluateJavaScript(std::move(script), std::move(completion));
  // The page decides: a navigation racing the answer cannot carry it into the next document.
  const QString source = qstring(scripts::inDocument(s.documentMark, script));
  scriptBuffers::give(std::move(script));
  if (!completion) return s.page->runJavaScript(source, QWebEngineScript::MainWorld);
  s.page->runJavaScript(
      source, QWebEngineScript::MainWorld,
      [weak = State::Weak(state_), completion = std::move(completion)](const QVariant& value) {
        auto state = weak.lock();
        if (!state || !state->page) return;
        if (value.typeId() == QMetaType::QString && value.toString() == QLatin1String(scripts::kDropped))
          return completion(ScriptResult{std::nullopt, std::nullopt, true});
        completion(ScriptResult{toJSON(value), std::nullopt, false});
      });
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
