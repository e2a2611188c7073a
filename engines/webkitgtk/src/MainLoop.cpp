// GLib's main loop as the WebSDK uses it: the log sink, GTK's start, the
// loop run to a condition, and the engine's main queue.

#include "MainLoop.hpp"
#include "websdk/webkitgtk/Native.hpp"

#include "Compat.hpp"
#include "websdk/Log.hpp"
#include "websdk/webview/TaskList.hpp"

#include <algorithm>
#include <atomic>
#include <mutex>
#include <thread>

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
}  // namespace

bool offTheUIThread() {
  const std::thread::id started = uiThread.load();
  if (started != std::thread::id{}) return started != std::this_thread::get_id();
  GMainContext* context = g_main_context_default();
  if (!g_main_context_acquire(context)) return true;
  g_main_context_release(context);
  return false;
}

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

// Tasks wait in the queue's own list, and one idle source at a time runs it:
// a burst of answers costs no source of GLib's each. The source holds the
// list, so tasks posted to a queue that is gone still run.
struct GLibMainQueue::Tasks : std::enable_shared_from_this<Tasks> {
  GMainContext* context;
  TaskList list{[this] { schedule(); }};
  explicit Tasks(GMainContext* c) : context(c) {}
  ~Tasks() { g_main_context_unref(context); }
  Tasks(const Tasks&) = delete;
  Tasks& operator=(const Tasks&) = delete;

  // An idle source rather than g_main_context_invoke: a task posted from the
  // UI thread must still run later, after the caller has returned.
  void schedule() {
    using Held = std::shared_ptr<Tasks>;
    GSource* source = g_idle_source_new();
    g_source_set_priority(source, G_PRIORITY_DEFAULT);
    g_source_set_callback(
        source,
        [](gpointer data) -> gboolean {
          // A turn runs a bounded batch, so that input and painting go on between.
          return (*static_cast<Held*>(data))->list.runTurn(256) ? G_SOURCE_CONTINUE : G_SOURCE_REMOVE;
        },
        new Held(shared_from_this()), [](gpointer data) { delete static_cast<Held*>(data); });
    g_source_attach(source, context);
    g_source_unref(source);
  }
};

GLibMainQueue::GLibMainQueue() : tasks_(std::make_shared<Tasks>(g_main_context_ref_thread_default())) {}
GLibMainQueue::~GLibMainQueue() = default;

namespace {

// Runs `task` once from `source` on `context`. The destroy-notify frees the
// task also when its context goes away before it runs.
void attachOnce(GSource* source, GMainContext* context, std::function<void()> task) {
  using Task = std::function<void()>;
  g_source_set_priority(source, G_PRIORITY_DEFAULT);
  g_source_set_callback(
      source,
      [](gpointer data) -> gboolean {
        (*static_cast<Task*>(data))();
        return G_SOURCE_REMOVE;
      },
      new Task(std::move(task)), [](gpointer data) { delete static_cast<Task*>(data); });
  g_source_attach(source, context);
  g_source_unref(source);
}

}  // namespace

void GLibMainQueue::post(std::function<void()> task) { tasks_->list.push(std::move(task)); }
std::shared_ptr<void> GLibMainQueue::holdTurns() {
  tasks_->list.hold();
  return {tasks_.get(), [tasks = tasks_](void*) { tasks->list.release(); }};
}

void GLibMainQueue::postAfter(std::chrono::milliseconds delay, std::function<void()> task) {
  const auto ms = std::clamp<std::int64_t>(delay.count(), 0, G_MAXUINT);
  attachOnce(g_timeout_source_new(static_cast<guint>(ms)), tasks_->context, std::move(task));
}

bool GLibMainQueue::isCurrent() const { return g_main_context_is_owner(tasks_->context) != FALSE; }
bool GLibMainQueue::isUIThread() const { return std::this_thread::get_id() == thread_; }

}  // namespace websdk::webkitgtk
