#pragma once
/// @file
/// Opt-in access to the WebKitGTK objects behind a web view, for hosts that
/// place the widget in their own window or need WebKit calls the WebSDK does
/// not make. Including this header brings in GTK and WebKit.

#include "websdk/Export.hpp"
#include "websdk/webkitgtk/WebKitGTKEngine.hpp"

#include <gtk/gtk.h>
// The engine a host links (websdk_webkitgtk6 defines WEBSDK_WEBKITGTK6 for it)
// decides which WebKitGTK API its objects come from.
#ifdef WEBSDK_WEBKITGTK6
#include <webkit/webkit.h>
#else
#include <webkit2/webkit2.h>
#endif

namespace websdk::webkitgtk {

/// The engine's WebKitWebView as an untyped pointer, or nullptr when `engine`
/// is not a WebKitGTK engine (or is being destroyed).
WEBSDK_EXPORT void* nativeHandle(WebEngine& engine);

/// The engine's WebKitWebView, or nullptr. The engine keeps its own reference;
/// the widget is destroyed with the engine.
inline WebKitWebView* nativeWebView(WebEngine& engine) { return static_cast<WebKitWebView*>(nativeHandle(engine)); }

/// The same object as a GtkWidget, for gtk_container_add() (GTK 3) or
/// gtk_window_set_child() (GTK 4) and friends.
inline GtkWidget* widget(WebEngine& engine) { return static_cast<GtkWidget*>(nativeHandle(engine)); }

}  // namespace websdk::webkitgtk
