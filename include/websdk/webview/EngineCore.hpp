#pragma once
/// @file
/// What every engine does the same way, whatever its toolkit: the committed
/// top document, the script-message handlers, the load's timeout, the count
/// of events under way and the pinch answer. An engine holds one and only
/// translates between it and its toolkit.

#include "websdk/Export.hpp"
#include "websdk/webview/WebEngine.hpp"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace websdk {

/// The toolkit-free part of an engine. Used on the UI thread only. Hold it
/// in a `std::shared_ptr`: its load timeout holds it weakly, and keeps it
/// alive while it tells the client.
class WEBSDK_EXPORT EngineCore : public std::enable_shared_from_this<EngineCore> {
 public:
  /// Stops the load that timed out, keeping the toolkit's own word of that
  /// stop quiet. Returns false when the engine shows nothing any more: the
  /// timeout then passes unsaid.
  using StopTimedOutLoad = std::function<bool(const WebSDKNavigation& navigation)>;

  /// A core whose load timeouts run on `queue` and fail the navigation with
  /// the engine's own timeout error (`timeoutDomain`, `timeoutCode`) once
  /// `stop` has stopped it.
  EngineCore(MainQueue& queue, std::string timeoutDomain, int timeoutCode, StopTimedOutLoad stop);
  EngineCore(const EngineCore&) = delete;
  EngineCore& operator=(const EngineCore&) = delete;

  // ---- The client ------------------------------------------------------------
  /// The web view told of navigation (null: none).
  void setClient(WebEngineClient* client) { client_ = client; }
  /// The web view told of navigation, or null.
  WebEngineClient* client() const { return client_; }
  /// Nobody is told anything any more, and no timeout runs: the engine's
  /// teardown.
  void close();

  // ---- Documents -------------------------------------------------------------
  /// The committed top document's URL: nothing before the first commit or
  /// when it is empty.
  std::optional<std::string_view> url() const;
  /// The committed top document (0 before the first).
  DocumentID document() const { return document_; }
  /// Whether `document` is the top document shown (0 never is).
  bool shows(DocumentID document) const { return document != 0 && document == document_; }
  /// A new top document committed at `url`, numbered here; returns it.
  DocumentID commitDocument(std::string url);
  /// The top document's URL, where the documents are numbered elsewhere.
  void commitURL(std::string url) { committedURL_ = std::move(url); }
  /// The top document, as numbered elsewhere (in the page's own process).
  void showDocument(DocumentID document) { document_ = document; }
  /// No top document is shown: no URL, document 0.
  void showNothing();
  /// Tells `completion`, if any, that its script never ran.
  static void dropped(const ScriptCompletion& completion);

  // ---- Script-message handlers -----------------------------------------------
  /// Registers `handler` under `name`; false when the name is taken (its
  /// first handler keeps it).
  bool addHandler(std::weak_ptr<ScriptMessageHandler> handler, std::string name);
  /// Unregisters `name`; false when nothing was registered under it.
  bool removeHandler(std::string_view name);
  /// Whether a handler is registered under `name` (alive or not).
  bool hasHandler(std::string_view name) const { return handlers_.contains(name); }
  /// The names registered, in order.
  std::vector<std::string> handlerNames() const;
  /// Hands `message` to the handler registered under its name, while that
  /// lives; false when none takes it.
  bool deliver(const ScriptMessage& message) const;

  // ---- Events under way --------------------------------------------------------
  /// Counts an event of the engine's toolkit for as long as it lasts: tearing
  /// the toolkit's view down from inside one must wait for the loop.
  class Emitting {
   public:
    /// Counts one more event under way on `core`.
    explicit Emitting(EngineCore& core) : core_(core) { ++core_.emitting_; }
    ~Emitting() { --core_.emitting_; }
    Emitting(const Emitting&) = delete;
    Emitting& operator=(const Emitting&) = delete;

   private:
    EngineCore& core_;
  };
  /// Whether the engine is inside an event of its toolkit.
  bool emitting() const { return emitting_ > 0; }

  // ---- Navigations and the load's timeout --------------------------------------
  /// A load was asked for: its timeout runs once its navigation starts (the
  /// time a delegate takes to allow it is not the network's). A timeout
  /// running for an earlier load stops.
  void expectLoad(double timeoutInterval);
  /// The load asked for was refused: it never starts, and its timeout must
  /// not pass to another.
  void loadRefused() { pendingTimeout_.reset(); }
  /// A main-frame navigation to `url` started: numbered, its load's timeout
  /// running if it has one, and the client told.
  const WebSDKNavigation& startNavigation(std::string url);
  /// The navigation last started, or null.
  WebSDKNavigation* navigation() { return current_ ? &*current_ : nullptr; }
  /// Stops the running timeout: the load committed or ended.
  void disarmTimeout() { ++armed_; }
  /// Tells the client the navigation finished.
  void finished();
  /// Tells the client the navigation failed, `committed` or before.
  void failed(bool committed, const WebSDKError& error);

  // ---- Pinch-zoom --------------------------------------------------------------
  /// A pinch begins: the client says whether it may go on. Without a client
  /// the last answer stands (at first, yes).
  bool pinchBegins();
  /// The answer at the last pinch's start (true before any).
  bool pinchEnabled() const { return pinchEnabled_; }

 private:
  void armTimeout(double seconds);
  void timedOut();

  MainQueue& queue_;
  std::string timeoutDomain_;
  int timeoutCode_;
  StopTimedOutLoad stop_;
  WebEngineClient* client_ = nullptr;

  std::optional<std::string> committedURL_;
  DocumentID document_ = 0;
  DocumentID lastDocument_ = 0;

  std::map<std::string, std::weak_ptr<ScriptMessageHandler>, std::less<>> handlers_;
  int emitting_ = 0;

  std::uint64_t lastNavigation_ = 0;
  std::optional<WebSDKNavigation> current_;
  std::optional<double> pendingTimeout_;
  std::uint64_t armed_ = 0;  // the running timeout's number: a stale one finds another

  bool pinchEnabled_ = true;
};

}  // namespace websdk
