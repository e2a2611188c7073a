#pragma once
// A top-level window holding a web view, the same in GTK 3 and GTK 4, for
// the WebSDK's own programs (the demos, the real-engine tests, the round-trip
// bench). Which GTK is the engine's: websdk_webkitgtk6 defines
// WEBSDK_WEBKITGTK6.

#include "websdk/webkitgtk/Native.hpp"

#include <chrono>
#include <functional>
#include <string>
#include <utility>

namespace websdk::gtkhost {

/// Starts GTK for this process; false without a display.
inline bool start(int& argc, char**& argv) { return webkitgtk::initialize(&argc, &argv); }

class Window {
 public:
  explicit Window(const char* title = "WebSDK", int width = 400, int height = 600) {
#ifdef WEBSDK_WEBKITGTK6
    window_ = gtk_window_new();
    g_object_ref_sink(window_);  // ours until destroy(), however it closes
#else
    window_ = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    g_object_ref(window_);
#endif
    gtk_window_set_title(GTK_WINDOW(window_), title);
    gtk_window_set_default_size(GTK_WINDOW(window_), width, height);
  }
  ~Window() {
    destroy();
    g_object_unref(window_);
  }
  Window(const Window&) = delete;
  Window& operator=(const Window&) = delete;

  /// Puts the engine's view in the window (in place of what was there) and shows it.
  void show(WebEngine& engine) {
    GtkWidget* view = webkitgtk::widget(engine);
#ifdef WEBSDK_WEBKITGTK6
    gtk_window_set_child(GTK_WINDOW(window_), view);
    gtk_window_present(GTK_WINDOW(window_));
#else
    if (GtkWidget* old = gtk_bin_get_child(GTK_BIN(window_))) gtk_container_remove(GTK_CONTAINER(window_), old);
    gtk_container_add(GTK_CONTAINER(window_), view);
    gtk_widget_show_all(window_);
#endif
  }

  /// Whether a view is in the window now.
  bool holdsAView() const {
#ifdef WEBSDK_WEBKITGTK6
    return !destroyed_ && gtk_window_get_child(GTK_WINDOW(window_)) != nullptr;
#else
    return !destroyed_ && gtk_bin_get_child(GTK_BIN(window_)) != nullptr;
#endif
  }

  /// Destroys the window now, as a user closing it would; once.
  void destroy() {
    if (std::exchange(destroyed_, true)) return;
#ifdef WEBSDK_WEBKITGTK6
    gtk_window_destroy(GTK_WINDOW(window_));
#else
    gtk_widget_destroy(window_);
#endif
  }

  /// Runs the UI loop until the user closes the window.
  void runUntilClosed() {
    bool closed = false;
#ifdef WEBSDK_WEBKITGTK6
    const char* signal = "close-request";
#else
    const char* signal = "delete-event";
#endif
    const gulong id = g_signal_connect_swapped(window_, signal, G_CALLBACK(+[](bool* flag) -> gboolean {
                                                 *flag = true;
                                                 return FALSE;
                                               }),
                                               &closed);
    while (!closed && !destroyed_) g_main_context_iteration(nullptr, TRUE);
    if (!destroyed_) g_signal_handler_disconnect(window_, id);
  }

  GtkWidget* native() const { return window_; }

 private:
  GtkWidget* window_;
  bool destroyed_ = false;
};

/// Writes what the view shows, the whole document, as a PNG file.
inline bool writeSnapshot(WebEngine& engine, const std::string& file, std::string& error) {
  struct Shot {
    bool done = false;
    bool ok = false;
    std::string file, error;
  };
  auto* shot = new Shot{false, false, file, {}};
  webkit_web_view_get_snapshot(
      webkitgtk::nativeWebView(engine), WEBKIT_SNAPSHOT_REGION_FULL_DOCUMENT, WEBKIT_SNAPSHOT_OPTIONS_NONE, nullptr,
      [](GObject* source, GAsyncResult* result, gpointer data) {
        auto* s = static_cast<Shot*>(data);
        GError* e = nullptr;
#ifdef WEBSDK_WEBKITGTK6
        if (GdkTexture* texture = webkit_web_view_get_snapshot_finish(WEBKIT_WEB_VIEW(source), result, &e)) {
          s->ok = gdk_texture_save_to_png(texture, s->file.c_str()) != FALSE;
          g_object_unref(texture);
        }
#else
        if (cairo_surface_t* surface = webkit_web_view_get_snapshot_finish(WEBKIT_WEB_VIEW(source), result, &e)) {
          s->ok = cairo_surface_write_to_png(surface, s->file.c_str()) == CAIRO_STATUS_SUCCESS;
          cairo_surface_destroy(surface);
        }
#endif
        if (e) {
          s->error = e->message;
          g_error_free(e);
        }
        s->done = true;
      },
      shot);
  const bool finished = webkitgtk::runUntil([&] { return shot->done; }, std::chrono::seconds(10));
  const bool ok = finished && shot->ok;
  error = finished ? shot->error : "the snapshot did not come";
  if (finished) delete shot;  // else the late callback still owns it
  return ok;
}

}  // namespace websdk::gtkhost
