#pragma once
/// @file
/// The port between WebSDKWebView and a web engine. The web view keeps every
/// rule of the bridge; an engine only translates these calls to its platform
/// (WebKitGTK in the real app, an in-memory recorder in tests).

#include "websdk/Export.hpp"
#include "websdk/json/JSON.hpp"
#include "websdk/webview/WebSDKConfig.hpp"
#include "websdk/webview/WebSDKResponseModel.hpp"

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

/// How a load may use the engine's cache: the protocol's own rules, never the
/// cache, or the cache whenever it has the page.
enum class URLRequestCachePolicy { useProtocolCachePolicy, reloadIgnoringLocalCacheData, returnCacheDataElseLoad };

/// Header fields as (name, value) pairs, in the order they are set.
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
  std::string url;              ///< The URL to load.
  HeaderFields headers;         ///< The fields of the load's requests.
  double timeoutInterval = 60;  ///< Seconds before the load fails as timed out.
  URLRequestCachePolicy cachePolicy = URLRequestCachePolicy::useProtocolCachePolicy;  ///< How the cache is used.
  std::vector<std::string> confinedHeaders;  ///< The fields only a trusted host may get.
  WebSDKConfig trust;                        ///< Which hosts are trusted with `confinedHeaders`.

  /// The header fields a request of this load to `target` may carry.
  HeaderFields headersFor(std::string_view target) const;
  /// Whether `name` is one of `confinedHeaders` (by sameFieldName).
  bool confines(std::string_view name) const;
  /// The app's own fields among `headers`, wherever the load goes.
  HeaderFields confinedFields() const;
  /// The app's own fields a request of this load to `target` may carry: none
  /// off the trusted hosts.
  HeaderFields confinedFieldsFor(std::string_view target) const;
  /// Memberwise.
  bool operator==(const URLRequest&) const = default;
};

/// A script installed into every page the engine loads from now on: at
/// document start, main frame only.
struct WEBSDK_EXPORT UserScript {
  std::string source;  ///< The script's text.
  /// Memberwise.
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
  /// Whether the sending frame is the top document itself.
  bool isMainFrame = true;
  /// That top document: answers to the message go to it and nowhere else.
  DocumentID topDocument = 0;
};

/// A message a page posted to a named script-message handler.
struct WEBSDK_EXPORT ScriptMessage {
  /// The handler's name the page posted to.
  std::string name;
  /// The body as posted, any JSON value; null when `message` carries it.
  JSON body;
  /// The sender, as the engine saw it.
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
  /// A page posted `message`; called on the UI thread.
  virtual void userContentController(const ScriptMessage& message) = 0;
};

/// Work a view hands to a thread of its own (a traffic recording's writer).
class WEBSDK_EXPORT BackgroundWork {
 public:
  /// Returns once everything handed over before the call is done.
  virtual void settle() = 0;

 protected:
  ~BackgroundWork() = default;
};

/// The engine's UI-thread queue. post() may be called from any thread; tasks
/// run on the UI thread in the order posted.
class WEBSDK_EXPORT MainQueue {
 public:
  virtual ~MainQueue() = default;
  /// Runs `task` on the UI thread, after the tasks posted before it.
  virtual void post(std::function<void()> task) = 0;
  /// Runs `task` on the UI thread once `delay` has passed (UI thread only).
  virtual void postAfter(std::chrono::milliseconds delay, std::function<void()> task) = 0;
  /// Whether the calling thread is the UI thread (an engine with no thread
  /// of its own says yes everywhere).
  virtual bool isUIThread() const { return true; }
  /// Called as the delivery of a page message starts (UI thread): tasks
  /// posted while the returned hold lives ask the loop for no turn. When it
  /// goes, as the delivery ends, the tasks posted so far run at once (not
  /// those they post, which get a turn of the loop): an answer given while
  /// the page waits leaves then, not a loop turn later. The hold keeps what
  /// it needs alive, so the handler may destroy the engine meanwhile. A
  /// queue that tests drain by hand holds nothing.
  virtual std::shared_ptr<void> holdTurns() { return nullptr; }
  /// Tells the queue of `work` a view does off the UI thread. A queue that
  /// tests drain settles it at the end of each drain, so that a test reads
  /// what the work did; an engine's own queue leaves it alone. UI thread.
  virtual void track(std::weak_ptr<BackgroundWork> work) { (void)work; }
};

// ---- Navigation ------------------------------------------------------------

/// One navigation of the page, as the engine identifies it.
struct WEBSDK_EXPORT WebSDKNavigation {
  std::uint64_t id = 0;  ///< The engine's number for it.
  std::string url;       ///< Its URL, as the engine reports it.
};

/// A navigation about to start, which the navigation delegate may allow or
/// cancel.
struct WEBSDK_EXPORT WebSDKNavigationAction {
  std::string url;             ///< Where it goes.
  std::string method = "GET";  ///< Its HTTP method.
  bool isMainFrame = true;     ///< Whether it loads the main frame (not a frame in it).
  bool isUserGesture = false;  ///< Whether the user started it (a click, say).
};

/// A navigation's response, which the navigation delegate may allow or cancel
/// before it is shown.
struct WEBSDK_EXPORT WebSDKNavigationResponse {
  std::string url;          ///< The response's URL.
  int statusCode = 0;       ///< Its HTTP status.
  std::string mimeType;     ///< Its content's MIME type.
  bool isMainFrame = true;  ///< Whether it is the main frame's.
};

/// An engine error: its domain, code and description.
struct WEBSDK_EXPORT WebSDKError {
  std::string domain;       ///< The engine's error domain.
  int code = 0;             ///< The code within the domain.
  std::string description;  ///< Readable text of the error.
  bool isTimeout = false;   ///< Whether the load timed out.
};

/// A server's request for credentials.
struct WEBSDK_EXPORT WebSDKAuthenticationChallenge {
  std::string host;                  ///< The server's host.
  int port = 0;                      ///< Its port.
  std::string realm;                 ///< The protection space's realm.
  std::string authenticationMethod;  ///< The scheme asked for (HTTP basic, say).
  int previousFailureCount = 0;      ///< How many answers to it failed before.
};

/// A navigation delegate's answer to a navigation action.
enum class WebSDKNavigationActionPolicy { cancel, allow };
/// A navigation delegate's answer to a response.
enum class WebSDKNavigationResponsePolicy { cancel, allow };
/// A navigation delegate's answer to an authentication challenge.
enum class WebSDKAuthChallengeDisposition {
  useCredential,
  performDefaultHandling,
  cancelAuthenticationChallenge,
  rejectProtectionSpace
};

/// Credentials that answer an authentication challenge.
struct WEBSDK_EXPORT WebSDKURLCredential {
  std::string user;      ///< The user's name.
  std::string password;  ///< The password.
};

/// Takes the answer to a navigation action.
using WebSDKNavigationActionDecision = std::function<void(WebSDKNavigationActionPolicy)>;
/// Takes the answer to a navigation response.
using WebSDKNavigationResponseDecision = std::function<void(WebSDKNavigationResponsePolicy)>;
/// Takes the answer to an authentication challenge, with credentials for
/// `useCredential`.
using WebSDKAuthChallengeCompletion =
    std::function<void(WebSDKAuthChallengeDisposition, std::optional<WebSDKURLCredential>)>;

/// What the engine tells its web view: navigation events and questions, and
/// the start of a pinch-zoom. Called on the UI thread.
class WEBSDK_EXPORT WebEngineClient {
 public:
  virtual ~WebEngineClient() = default;
  /// A navigation started.
  virtual void didStartProvisionalNavigation(const WebSDKNavigation* navigation) = 0;
  /// A navigation finished loading.
  virtual void didFinish(const WebSDKNavigation* navigation) = 0;
  /// A committed navigation failed.
  virtual void didFail(const WebSDKNavigation* navigation, const WebSDKError& error) = 0;
  /// A navigation failed before it committed.
  virtual void didFailProvisionalNavigation(const WebSDKNavigation* navigation, const WebSDKError& error) = 0;
  /// A navigation is about to start; the answer goes to `decisionHandler`.
  virtual void decidePolicyFor(const WebSDKNavigationAction& action,
                               WebSDKNavigationActionDecision decisionHandler) = 0;
  /// A response arrived; the answer goes to `decisionHandler`.
  virtual void decidePolicyFor(const WebSDKNavigationResponse& response,
                               WebSDKNavigationResponseDecision decisionHandler) = 0;
  /// The server asks for authentication; the answer goes to `completionHandler`.
  virtual void didReceive(const WebSDKAuthenticationChallenge& challenge,
                          WebSDKAuthChallengeCompletion completionHandler) = 0;
  /// The user started a pinch-zoom; the answer says whether it may go on
  /// (false: the engine refuses it at its start).
  virtual bool scrollViewWillBeginZooming() = 0;
};

/// The result of an evaluation: the script's value (nothing when it returned
/// nothing) or the error the page reported; `dropped` when the document it
/// was meant for was no longer shown, so it never ran.
struct WEBSDK_EXPORT ScriptResult {
  std::optional<JSON> value;         ///< What the script returned.
  std::optional<std::string> error;  ///< The error the page reported.
  bool dropped = false;              ///< The script never ran.
};
/// Takes the result of an evaluation.
using ScriptCompletion = std::function<void(ScriptResult)>;

/// The engine's preferences object; replaced whole when the JavaScript switch
/// changes.
struct WEBSDK_EXPORT WebPreferences {
  bool javaScriptEnabled = true;  ///< Whether pages run JavaScript.
  /// Memberwise.
  bool operator==(const WebPreferences&) const = default;
};

/// A web engine behind a WebSDKWebView: loads, scripts, script-message
/// handlers and settings, translated to its platform. The view owns it; it is
/// used and destroyed on the UI thread.
class WEBSDK_EXPORT WebEngine {
 public:
  virtual ~WebEngine() = default;

  /// The web view that receives navigation events; set once, before loading.
  virtual void setClient(WebEngineClient* client) = 0;

  /// Starts loading `request`, in place of any load still pending.
  virtual void load(const URLRequest& request) = 0;
  /// Evaluates `script` in the main frame; `completion` (may be empty) is
  /// called once on the UI thread when evaluation ends.
  virtual void evaluateJavaScript(std::string script, ScriptCompletion completion) = 0;
  /// Evaluates `script` only if `document` is still the top document when the
  /// script would run; otherwise drops it and `completion` gets `dropped`. The
  /// engine decides this where the page lives, so a navigation racing the
  /// evaluation cannot carry the script into the next document.
  virtual void evaluateInDocument(DocumentID document, std::string script, ScriptCompletion completion) = 0;
  /// Whether the engine takes answers as data (evaluateAnswer), so that the
  /// view need not write their scripts. Any thread.
  virtual bool answersAsData() const { return false; }
  /// Calls the page's nativeResponse with `answer` as the script
  /// "nativeResponse(" + its JSON + ")" would, under evaluateInDocument's
  /// rule for `document`. Called only when answersAsData(); the view has
  /// checked that its text fields are UTF-8. By default, that script.
  virtual void evaluateAnswer(DocumentID document, WebSDKResponseModel answer, ScriptCompletion completion);
  /// Installs `script` into every page loaded from now on.
  virtual void addUserScript(const UserScript& script) = 0;
  /// Hands the messages pages post to `name` to `handler`, while it lives.
  virtual void addScriptMessageHandler(std::weak_ptr<ScriptMessageHandler> handler, std::string name) = 0;
  /// Stops handing the messages posted to `name` to anyone.
  virtual void removeScriptMessageHandler(std::string_view name) = 0;
  /// The URL of the committed top document, or nothing before the first
  /// commit: never the URL of a load still pending. The text stays valid
  /// until the next commit.
  virtual std::optional<std::string_view> url() const = 0;
  /// The committed top document (0 before the first).
  virtual DocumentID document() const = 0;
  /// How this engine canonicalizes URLs: the form it loads and shows.
  virtual URLCanonicalizer urlCanonicalizer() const { return &canonicalURL; }

  /// Replaces the engine's preferences.
  virtual void setPreferences(const WebPreferences& preferences) = 0;

  /// The engine's UI-thread queue.
  virtual MainQueue& mainQueue() = 0;
};

}  // namespace websdk
