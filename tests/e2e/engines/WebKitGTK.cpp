// The real-engine suite's fixture for both WebKitGTK engines: 4.1 (GTK 3) and,
// built with WEBSDK_WEBKITGTK6, 6.0 (GTK 4).

#include "../Engine.hpp"
#include "Compat.hpp"
#include "tools/common/GtkWindow.hpp"
#include "websdk/webkitgtk/Native.hpp"

namespace websdk::e2e::engine {

namespace compat = webkitgtk::compat;

std::string_view name() { return compat::kGTK4 ? "webkitgtk6" : "webkitgtk"; }

bool start() { return webkitgtk::initialize(); }

std::unique_ptr<WebEngine> make(bool ephemeral, std::vector<LocalPages> localPages) {
  webkitgtk::WebKitGTKConfiguration configuration;
  configuration.ephemeral = ephemeral;
  configuration.localPages = std::move(localPages);
  return std::make_unique<webkitgtk::WebKitGTKEngine>(configuration);
}

bool runUntil(const std::function<bool()>& done, std::chrono::milliseconds bound) {
  return webkitgtk::runUntil(done, bound);
}

struct Window::Native {
  gtkhost::Window window{"WebSDK real-engine tests", 400, 600};
};
Window::Window() : native_(std::make_unique<Native>()) {}
Window::~Window() = default;
void Window::show(WebEngine& engine) { native_->window.show(engine); }
bool Window::holdsAView() const { return native_->window.holdsAView(); }
void Window::destroy() { native_->window.destroy(); }

#ifdef WEBSDK_WEBKITGTK6
// GTK 4 has no way to make an input event: the pinch starts at the view's
// zoom gesture itself, where a device's pinch would start it.
void pinch(WebEngine& engine, double) {
  GListModel* controllers = gtk_widget_observe_controllers(webkitgtk::widget(engine));
  for (guint i = 0, n = g_list_model_get_n_items(controllers); i < n; ++i) {
    auto* controller = static_cast<GObject*>(g_list_model_get_item(controllers, i));
    if (GTK_IS_GESTURE_ZOOM(controller)) g_signal_emit_by_name(controller, "begin", nullptr);
    g_object_unref(controller);
  }
  g_object_unref(controllers);
}
#else
// A two-finger touchpad pinch as GDK delivers it to the web view.
void pinch(WebEngine& engine, double scale) {
  GtkWidget* widget = webkitgtk::widget(engine);
  for (const auto& [phase, step] :
       {std::pair{GDK_TOUCHPAD_GESTURE_PHASE_BEGIN, 1.0}, std::pair{GDK_TOUCHPAD_GESTURE_PHASE_UPDATE, scale},
        std::pair{GDK_TOUCHPAD_GESTURE_PHASE_END, scale}}) {
    GdkEvent* event = gdk_event_new(GDK_TOUCHPAD_PINCH);
    GdkWindow* window = gtk_widget_get_window(widget);
    event->touchpad_pinch.window = GDK_WINDOW(g_object_ref(window));
    event->touchpad_pinch.phase = phase;
    event->touchpad_pinch.n_fingers = 2;
    event->touchpad_pinch.scale = step;
    event->touchpad_pinch.x = 100;
    event->touchpad_pinch.y = 100;
    event->touchpad_pinch.time = GDK_CURRENT_TIME;
    gdk_event_set_device(event, gdk_seat_get_pointer(gdk_display_get_default_seat(gdk_window_get_display(window))));
    gtk_main_do_event(event);
    gdk_event_free(event);
  }
}
#endif

bool hasPinchGesture(WebEngine& engine) {
  return dynamic_cast<webkitgtk::WebKitGTKEngine&>(engine).hasPinchGestureRecognizer();
}
bool pinchEnabled(WebEngine& engine) {
  return dynamic_cast<webkitgtk::WebKitGTKEngine&>(engine).pinchGestureRecognizerEnabled();
}

const Limits& limits() {
  static const Limits webkit = [] {
    Limits limits;
    limits.localRequester =
        "WebKitGTK names the view of a request for a local page, never the frame that made it: a frame of another "
        "origin in an app page is judged by the app page, whose files it may include";
    return limits;
  }();
  return webkit;
}

void finish() {}

void restartWithoutGuardModule(WebEngine& engine, const std::string& directory) {
  WebKitWebView* view = webkitgtk::nativeWebView(engine);
  compat::setExtensionsDirectory(webkit_web_view_get_context(view), directory.c_str());
  webkit_web_view_terminate_web_process(view);
}

}  // namespace websdk::e2e::engine
