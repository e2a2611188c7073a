// Qt's event loop as the WebSDK uses it: the log sink, the application's
// start, the loop run to a condition, and the engine's main queue.

#include "websdk/qtwebengine/Native.hpp"

#include "websdk/Log.hpp"
#include "websdk/webview/TaskList.hpp"

#include <QApplication>
#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QLoggingCategory>
#include <QTimer>
#include <QWebEngineUrlScheme>

#include <unistd.h>

#include <cstdlib>
#include <deque>
#include <limits>
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
  TaskList tasks{[this] { schedule(); }};

  void schedule() {
    QMetaObject::invokeMethod(
        &object,
        [this] {
          // A turn runs a bounded batch, so that input and painting go on between.
          if (tasks.runTurn(256)) schedule();
        },
        Qt::QueuedConnection);
  }
};

// One list for the UI thread, outliving every engine: a task posted for a
// view that is gone still runs, and finds it gone, as GLib's would.
QtMainQueue::QtMainQueue() {
  static const std::shared_ptr<Context> shared(new Context, [](Context*) {});
  context_ = shared;
}
QtMainQueue::~QtMainQueue() = default;

void QtMainQueue::post(std::function<void()> task) { context_->tasks.push(std::move(task)); }
std::shared_ptr<void> QtMainQueue::holdTurns() {
  context_->tasks.hold();
  return {context_.get(), [context = context_](void*) { context->tasks.release(); }};
}

void QtMainQueue::postAfter(std::chrono::milliseconds delay, std::function<void()> task) {
  // Qt's timers count in int milliseconds.
  const auto ms = std::clamp<std::int64_t>(delay.count(), 0, std::numeric_limits<int>::max());
  QTimer::singleShot(std::chrono::milliseconds(ms), &context_->object, std::move(task));
}

bool QtMainQueue::isUIThread() const { return std::this_thread::get_id() == thread_; }

}  // namespace websdk::qtwebengine
