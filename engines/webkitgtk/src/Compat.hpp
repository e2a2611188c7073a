#pragma once
// Every place where the WebKitGTK API differs between the two APIs the engine
// builds against: 4.1 (GTK 3) and 6.0 (GTK 4, WEBSDK_WEBKITGTK6). The engine
// itself calls only these, never a version test.

#ifdef WEBSDK_WEBKITGTK6
#include <webkit/webkit.h>
#else
#include <webkit2/webkit2.h>
#endif

namespace websdk::webkitgtk::compat {

#ifdef WEBSDK_WEBKITGTK6
inline constexpr bool kGTK4 = true;
#else
inline constexpr bool kGTK4 = false;
#endif

/// Starts GTK on the calling thread. GTK 4 reads no command line.
inline bool initializeGTK([[maybe_unused]] int* argc, [[maybe_unused]] char*** argv) {
#ifdef WEBSDK_WEBKITGTK6
  return gtk_init_check() != FALSE;
#else
  return gtk_init_check(argc, argv) != FALSE;
#endif
}

// The 4.x API hands script messages over as a WebKitJavascriptResult; the 6.0
// API passes the JSCValue itself.
#ifdef WEBSDK_WEBKITGTK6
using ScriptMessageArgument = JSCValue*;
inline JSCValue* scriptMessageValue(ScriptMessageArgument argument) { return argument; }
#else
using ScriptMessageArgument = WebKitJavascriptResult*;
inline JSCValue* scriptMessageValue(ScriptMessageArgument argument) {
  return webkit_javascript_result_get_js_value(argument);
}
#endif

/// Script message handlers live in the page's main world.
inline gboolean registerScriptMessageHandler(WebKitUserContentManager* manager, const char* name) {
#ifdef WEBSDK_WEBKITGTK6
  return webkit_user_content_manager_register_script_message_handler(manager, name, nullptr);
#else
  return webkit_user_content_manager_register_script_message_handler(manager, name);
#endif
}
inline void unregisterScriptMessageHandler(WebKitUserContentManager* manager, const char* name) {
#ifdef WEBSDK_WEBKITGTK6
  webkit_user_content_manager_unregister_script_message_handler(manager, name, nullptr);
#else
  webkit_user_content_manager_unregister_script_message_handler(manager, name);
#endif
}

/// A web context of its own (for an ephemeral view) or the process's shared
/// one; the caller owns the returned reference.
inline WebKitWebContext* newWebContext(bool ephemeral) {
#ifdef WEBSDK_WEBKITGTK6
  // 6.0 keeps cookies and storage in the network session: the context only
  // carries the web processes and their module.
  if (ephemeral) return webkit_web_context_new();
#else
  if (ephemeral) return webkit_web_context_new_ephemeral();
#endif
  return WEBKIT_WEB_CONTEXT(g_object_ref(webkit_web_context_get_default()));
}

/// A new web view on `context` with `contentManager`, floating reference sunk.
inline WebKitWebView* newWebView(WebKitWebContext* context, WebKitUserContentManager* contentManager,
                                 [[maybe_unused]] bool ephemeral) {
#ifdef WEBSDK_WEBKITGTK6
  WebKitNetworkSession* session = ephemeral
                                      ? webkit_network_session_new_ephemeral()
                                      : WEBKIT_NETWORK_SESSION(g_object_ref(webkit_network_session_get_default()));
  auto* view =
      WEBKIT_WEB_VIEW(g_object_ref_sink(g_object_new(WEBKIT_TYPE_WEB_VIEW, "web-context", context, "network-session",
                                                     session, "user-content-manager", contentManager, nullptr)));
  g_object_unref(session);
  return view;
#else
  return WEBKIT_WEB_VIEW(g_object_ref_sink(
      g_object_new(WEBKIT_TYPE_WEB_VIEW, "web-context", context, "user-content-manager", contentManager, nullptr)));
#endif
}

/// Where the context's web processes load their extension modules from.
inline void setExtensionsDirectory(WebKitWebContext* context, const char* directory) {
#ifdef WEBSDK_WEBKITGTK6
  webkit_web_context_set_web_process_extensions_directory(context, directory);
#else
  webkit_web_context_set_web_extensions_directory(context, directory);
#endif
}

/// The context's signal asking for its modules' initialization data, and the
/// call that answers it.
#ifdef WEBSDK_WEBKITGTK6
inline constexpr char kInitializeExtensions[] = "initialize-web-process-extensions";
inline void setExtensionsData(WebKitWebContext* context, GVariant* data) {
  webkit_web_context_set_web_process_extensions_initialization_user_data(context, data);
}
#else
inline constexpr char kInitializeExtensions[] = "initialize-web-extensions";
inline void setExtensionsData(WebKitWebContext* context, GVariant* data) {
  webkit_web_context_set_web_extensions_initialization_user_data(context, data);
}
#endif

/// Whether a response decision is about the main frame's document.
inline bool isMainFrameMainResource(WebKitResponsePolicyDecision* decision) {
#if WEBKIT_CHECK_VERSION(2, 40, 0)
  return webkit_response_policy_decision_is_main_frame_main_resource(decision);
#else
  (void)decision;
  return true;
#endif
}

/// A pinch-zoom gesture on `widget`, seen ahead of the widget's own handling.
/// The caller owns a reference to it.
inline GtkGesture* newZoomGesture(GtkWidget* widget) {
#ifdef WEBSDK_WEBKITGTK6
  GtkGesture* gesture = gtk_gesture_zoom_new();
  gtk_event_controller_set_propagation_phase(GTK_EVENT_CONTROLLER(gesture), GTK_PHASE_CAPTURE);
  // The widget takes the controller's first reference; ours is the caller's.
  gtk_widget_add_controller(widget, GTK_EVENT_CONTROLLER(g_object_ref(gesture)));
  return gesture;
#else
  GtkGesture* gesture = gtk_gesture_zoom_new(widget);
  gtk_event_controller_set_propagation_phase(GTK_EVENT_CONTROLLER(gesture), GTK_PHASE_CAPTURE);
  return gesture;
#endif
}

/// Takes `widget` out of whatever holds it (a window, a box, a host's own
/// container), so that a new view can take its place at once.
inline void detach(GtkWidget* widget) {
  GtkWidget* parent = gtk_widget_get_parent(widget);
  if (parent == nullptr) return;
#ifdef WEBSDK_WEBKITGTK6
  if (GTK_IS_WINDOW(parent)) {
    gtk_window_set_child(GTK_WINDOW(parent), nullptr);
  } else if (GTK_IS_BOX(parent)) {
    gtk_box_remove(GTK_BOX(parent), widget);
  } else if (GTK_IS_SCROLLED_WINDOW(parent)) {
    gtk_scrolled_window_set_child(GTK_SCROLLED_WINDOW(parent), nullptr);
  } else if (GTK_IS_FRAME(parent)) {
    gtk_frame_set_child(GTK_FRAME(parent), nullptr);
  } else {
    gtk_widget_unparent(widget);
  }
#else
  gtk_container_remove(GTK_CONTAINER(parent), widget);
#endif
}

/// Ends the widget for good and drops the caller's reference. GTK 3 destroys
/// it (its web process goes with it); GTK 4 has no destroy: out of its
/// parent, the last reference ends it.
inline void destroy(GtkWidget* widget) {
#ifdef WEBSDK_WEBKITGTK6
  detach(widget);
#else
  gtk_widget_destroy(widget);
#endif
  g_object_unref(widget);
}

}  // namespace websdk::webkitgtk::compat
