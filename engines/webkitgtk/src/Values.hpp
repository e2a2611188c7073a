#pragma once
// WebKit's values in the WebSDK's terms.

#include "websdk/json/JSON.hpp"
#include "websdk/webkitgtk/Native.hpp"
#include "websdk/webview/WebEngine.hpp"

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace websdk::webkitgtk {

struct GFree {
  void operator()(void* p) const { g_free(p); }
};
/// Text GLib allocated, freed with it.
using GText = std::unique_ptr<char, GFree>;

/// `s` as a string; empty for null.
inline std::string text(const char* s) { return s ? std::string(s) : std::string(); }

/// A JavaScript value as JSON; nothing for undefined and for values JSON
/// cannot carry (functions, cycles).
std::optional<JSON> toJSON(JSCValue* value);
/// A GError as the port's error; a GIO timeout is one.
WebSDKError toError(const GError* error);
/// The name of an authentication scheme, as the port gives it.
std::string authenticationMethod(WebKitAuthenticationScheme scheme);
/// WebKit's own URL parser: the form WebKit loads and shows.
std::optional<std::string> webKitCanonicalURL(std::string_view url);

/// The navigation a policy decision of `type` (not a response's) asks about.
WebSDKNavigationAction navigationActionOf(WebKitPolicyDecision* decision, WebKitPolicyDecisionType type);
/// The response a response policy decision asks about.
WebSDKNavigationResponse navigationResponseOf(WebKitPolicyDecision* decision);
/// The challenge an authentication request poses.
WebSDKAuthenticationChallenge challengeOf(WebKitAuthenticationRequest* request);
/// Answers `request` as `disposition` says (with `credential`, if any, for useCredential).
void answer(WebKitAuthenticationRequest* request, WebSDKAuthChallengeDisposition disposition,
            const std::optional<WebSDKURLCredential>& credential);

/// The module's message that runs `script` only in the top document
/// `document`; the script's storage goes back to the buffers once sent.
WebKitUserMessage* evaluateMessage(DocumentID document, bool wantsReply, std::string script);
/// The module's message that hands `answer` to nativeResponse in `document` as data.
WebKitUserMessage* answerMessage(DocumentID document, bool wantsReply, WebSDKResponseModel answer);
/// What the module's reply to it says; none (the page's process went away or
/// could not take it) means the script never ran.
ScriptResult evaluatedResult(WebKitUserMessage* reply);

}  // namespace websdk::webkitgtk
