#pragma once
// Every place where the WebKitGTK API differs between the versions the engine
// builds against. The engine itself calls only these, never a version test.

#include <webkit2/webkit2.h>

namespace websdk::webkitgtk::compat {

// The 4.x API hands script messages over as a WebKitJavascriptResult; the 6.0
// API passes the JSCValue itself.
using ScriptMessageArgument = WebKitJavascriptResult*;
inline JSCValue* scriptMessageValue(ScriptMessageArgument argument) {
  return webkit_javascript_result_get_js_value(argument);
}

/// A web context of its own (ephemeral) or the process's shared one; the
/// caller owns the returned reference.
inline WebKitWebContext* newWebContext(bool ephemeral) {
  if (ephemeral) return webkit_web_context_new_ephemeral();
  return WEBKIT_WEB_CONTEXT(g_object_ref(webkit_web_context_get_default()));
}

/// Where the context's web processes load their extension modules from.
inline void setExtensionsDirectory(WebKitWebContext* context, const char* directory) {
  webkit_web_context_set_web_extensions_directory(context, directory);
}

/// Whether a response decision is about the main frame's document.
inline bool isMainFrameMainResource(WebKitResponsePolicyDecision* decision) {
#if WEBKIT_CHECK_VERSION(2, 40, 0)
  return webkit_response_policy_decision_is_main_frame_main_resource(decision);
#else
  (void)decision;
  return true;
#endif
}

}  // namespace websdk::webkitgtk::compat
