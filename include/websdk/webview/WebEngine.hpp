#pragma once
/// @file
/// The port between WebSDKWebView and a web engine. The web view keeps every
/// rule of the bridge; an engine only translates these calls to its platform
/// (WebKitGTK in the real app, an in-memory recorder in tests).

#include "websdk/Export.hpp"
#include "websdk/json/JSON.hpp"
#include "websdk/webview/WebSDKConfig.hpp"

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace websdk {

enum class URLRequestCachePolicy { useProtocolCachePolicy, reloadIgnoringLocalCacheData, returnCacheDataElseLoad };

using HeaderFields = std::vector<std::pair<std::string, std::string>>;

/// Whether two header field names are the same field (ASCII case-insensitive).
WEBSDK_EXPORT bool sameFieldName(std::string_view a, std::string_view b);

/// A page load: the URL, its header fields in the order they are set, the
/// timeout in seconds and the cache policy.
///
/// `confinedHeaders` names the fields (the app's own) that may reach only a
/// host `trust` trusts. A server can redirect the load anywhere: an engine
/// removes these fields from every request of the load, the first and each
/// redirect, whose host is not trusted.
struct WEBSDK_EXPORT URLRequest {
  std::string url;
  HeaderFields headers;
  double timeoutInterval = 60;
  URLRequestCachePolicy cachePolicy = URLRequestCachePolicy::useProtocolCachePolicy;
  std::vector<std::string> confinedHeaders;
  WebSDKConfig trust;

  /// The header fields a request of this load to `target` may carry.
  HeaderFields headersFor(std::string_view target) const;
  bool operator==(const URLRequest&) const = default;
};

/// A script installed into every page the engine loads from now on: at
/// document start, main frame only.
struct WEBSDK_EXPORT UserScript {
  std::string source;
  bool operator==(const UserScript&) const = default;
};

/// Identifies one top-level document: a new one each time the page's main
/// frame commits a navigation. 0 is no document.
using DocumentID = std::uint64_t;

/// Who posted a message, as the engine saw it when the sending document was
/// made: not anything the page can say about itself.
struct WEBSDK_EXPORT MessageOrigin {
  /// The sending frame's document URL; empty when the engine cannot tell.
  std::string frameURL;
  /// The URL of the top document the frame belonged to.
  std::string topURL;
  bool isMainFrame = true;
  /// That top document: answers to the message go to it and nowhere else.
  DocumentID topDocument = 0;
};

/// A message a page posted to a named script-message handler.
struct WEBSDK_EXPORT ScriptMessage {
  std::string name;
  /// The body as posted, any JSON value; null when `message` carries it.
  JSON body;
  MessageOrigin origin;
  /// The body's "message" string, when the engine read just that (valid for
  /// the call): the bridge judges the sender before it reads any of it.
  std::optional<std::string_view> message = std::nullopt;
  /// The message's full size in bytes. More than `message` holds when the
  /// engine passed only its start, because the message is to be refused
  /// unread (from a page not trusted, or too large).
  std::size_t messageBytes = 0;
};

/// Receives the script messages of one name (WebSDKScriptHandler).
class WEBSDK_EXPORT ScriptMessageHandler {
 public:
  virtual ~ScriptMessageHandler() = default;
  virtual void userContentController(const ScriptMessage& message) = 0;
};

/// The engine's UI-thread queue. post() may be called from any thread; tasks
/// run on the UI thread in the order posted.
class WEBSDK_EXPORT MainQueue {
 public:
  virtual ~MainQueue() = default;
  virtual void post(std::function<void()> task) = 0;
  /// Runs `task` on the UI thread once `delay` has passed (UI thread only).
  virtual void postAfter(std::chrono::milliseconds delay, std::function<void()> task) = 0;
  /// Whether the calling thread is the UI thread (an engine with no thread
  /// of its own says yes everywhere).
  virtual bool isUIThread() const { return true; }
};

// ---- Navigation ------------------------------------------------------------

/// One navigation of the page, as the engine identifies it.
struct WEBSDK_EXPORT WebSDKNavigation {
  std::uint64_t id = 0;
  std::string url;
};

struct WEBSDK_EXPORT WebSDKNavigationAction {
  std::string url;
  std::string method = "GET";
  bool isMainFrame = true;
  bool isUserGesture = false;
};

struct WEBSDK_EXPORT WebSDKNavigationResponse {
  std::string url;
  int statusCode = 0;
  std::string mimeType;
  bool isMainFrame = true;
};

/// An engine error: its domain, code and description.
struct WEBSDK_EXPORT WebSDKError {
  std::string domain;
  int code = 0;
  std::string description;
  bool isTimeout = false;
};

struct WEBSDK_EXPORT WebSDKAuthenticationChallenge {
  std::string host;
  int port = 0;
  std::string realm;
  std::string authenticationMethod;
  int previousFailureCount = 0;
};

enum class WebSDKNavigationActionPolicy { cancel, allow };
enum class WebSDKNavigationResponsePolicy { cancel, allow };
enum class WebSDKAuthChallengeDisposition {
  useCredential,
  performDefaultHandling,
  cancelAuthenticationChallenge,
  rejectProtectionSpace
};

struct WEBSDK_EXPORT WebSDKURLCredential {
  std::string user;
  std::string password;
};

using WebSDKNavigationActionDecision = std::function<void(WebSDKNavigationActionPolicy)>;
using WebSDKNavigationResponseDecision = std::function<void(WebSDKNavigationResponsePolicy)>;
using WebSDKAuthChallengeCompletion =
    std::function<void(WebSDKAuthChallengeDisposition, std::optional<WebSDKURLCredential>)>;

/// What the engine tells its web view: navigation events and questions, and
/// the start of a pinch-zoom. Called on the UI thread.
class WEBSDK_EXPORT WebEngineClient {
 public:
  virtual ~WebEngineClient() = default;
  virtual void didStartProvisionalNavigation(const WebSDKNavigation* navigation) = 0;
  virtual void didFinish(const WebSDKNavigation* navigation) = 0;
  virtual void didFail(const WebSDKNavigation* navigation, const WebSDKError& error) = 0;
  virtual void didFailProvisionalNavigation(const WebSDKNavigation* navigation, const WebSDKError& error) = 0;
  virtual void decidePolicyFor(const WebSDKNavigationAction& action,
                               WebSDKNavigationActionDecision decisionHandler) = 0;
  virtual void decidePolicyFor(const WebSDKNavigationResponse& response,
                               WebSDKNavigationResponseDecision decisionHandler) = 0;
  virtual void didReceive(const WebSDKAuthenticationChallenge& challenge,
                          WebSDKAuthChallengeCompletion completionHandler) = 0;
  virtual void scrollViewWillBeginZooming() = 0;
};

/// The result of an evaluation: the script's value (nothing when it returned
/// nothing) or the error the page reported; `dropped` when the document it
/// was meant for was no longer shown, so it never ran.
struct WEBSDK_EXPORT ScriptResult {
  std::optional<JSON> value;
  std::optional<std::string> error;
  bool dropped = false;
};
using ScriptCompletion = std::function<void(ScriptResult)>;

/// The engine's preferences object; replaced whole when the JavaScript switch
/// changes.
struct WEBSDK_EXPORT WebPreferences {
  bool javaScriptEnabled = true;
  bool operator==(const WebPreferences&) const = default;
};

class WEBSDK_EXPORT WebEngine {
 public:
  virtual ~WebEngine() = default;

  /// The web view that receives navigation events; set once, before loading.
  virtual void setClient(WebEngineClient* client) = 0;

  virtual void load(const URLRequest& request) = 0;
  /// Evaluates `script` in the main frame; `completion` (may be empty) is
  /// called once on the UI thread when evaluation ends.
  virtual void evaluateJavaScript(std::string script, ScriptCompletion completion) = 0;
  /// Evaluates `script` only if `document` is still the top document when the
  /// script would run; otherwise drops it and `completion` gets `dropped`. The
  /// engine decides this where the page lives, so a navigation racing the
  /// evaluation cannot carry the script into the next document.
  virtual void evaluateInDocument(DocumentID document, std::string script, ScriptCompletion completion) = 0;
  virtual void addUserScript(const UserScript& script) = 0;
  virtual void addScriptMessageHandler(std::weak_ptr<ScriptMessageHandler> handler, std::string name) = 0;
  virtual void removeScriptMessageHandler(std::string_view name) = 0;
  /// The URL of the committed top document, or nothing before the first
  /// commit: never the URL of a load still pending. The text stays valid
  /// until the next commit.
  virtual std::optional<std::string_view> url() const = 0;
  /// The committed top document (0 before the first).
  virtual DocumentID document() const = 0;
  /// How this engine canonicalizes URLs: the form it loads and shows.
  virtual URLCanonicalizer urlCanonicalizer() const { return &canonicalURL; }

  virtual void setPreferences(const WebPreferences& preferences) = 0;
  virtual void setSuppressesIncrementalRendering(bool suppress) = 0;
  virtual void setAllowsInlineMediaPlayback(bool allow) = 0;
  /// Whether the engine has a pinch recogniser, and switching it.
  virtual bool hasPinchGestureRecognizer() const = 0;
  virtual void setPinchGestureRecognizerEnabled(bool enabled) = 0;

  virtual MainQueue& mainQueue() = 0;
};

}  // namespace websdk
