#pragma once
/// @file
/// An in-memory engine for unit tests of the WebSDK and of host plugins: it
/// records every load, script and preference, lets a test post script messages as
/// a page would, and runs the main queue only when the test drains it.

#include "websdk/Export.hpp"
#include "websdk/webview/EngineCore.hpp"
#include "websdk/webview/WebEngine.hpp"

#include <chrono>
#include <cstddef>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

/// The in-memory engine and the helpers for unit tests of host plugins.
namespace websdk::testing {

/// A main queue that runs nothing until drained, on a clock that moves only
/// when a test advances it. post() is thread-safe.
class WEBSDK_EXPORT TestingMainQueue final : public MainQueue {
 public:
  void post(std::function<void()> task) override;
  void postAfter(std::chrono::milliseconds delay, std::function<void()> task) override;
  void track(std::weak_ptr<BackgroundWork> work) override;
  /// Runs queued tasks (also those they post) until none is left, then waits
  /// for the work tracked to settle (a recording's lines are in its file);
  /// returns how many tasks ran.
  std::size_t drain();
  /// Moves the clock on by `by`, queues every delayed task then due (earliest
  /// first) and drains; returns how many tasks ran.
  std::size_t advance(std::chrono::milliseconds by);
  /// How many tasks wait to be drained (delayed ones not counted).
  std::size_t pending() const;

 private:
  mutable std::mutex mutex_;
  std::deque<std::function<void()>> tasks_;
  std::chrono::milliseconds now_{0};
  std::multimap<std::chrono::milliseconds, std::function<void()>> delayed_;
  std::vector<std::weak_ptr<BackgroundWork>> tracked_;
};

/// An engine in memory: it records every load, script, handler and preference,
/// lets a test post messages as a page would and decide the page shown, and
/// runs its main queue only when the test drains it.
class WEBSDK_EXPORT TestingEngine final : public WebEngine {
 public:
  /// One script evaluated.
  struct Evaluation {
    std::string script;          ///< Its text.
    bool hasCompletion = false;  ///< Whether a completion waited for its result.
  };
  /// Scripts meant for a document that was no longer shown: never evaluated.
  std::vector<std::string> droppedScripts;

  /// An engine on `queue` (a new one by default), showing no page.
  explicit TestingEngine(std::shared_ptr<TestingMainQueue> queue = std::make_shared<TestingMainQueue>());

  // ---- What the test controls ----------------------------------------------
  /// The page shown (nothing = no page). A URL other than the one shown
  /// commits a new top document, as a navigation does.
  void setURL(std::optional<std::string> url);
  /// Commits a new top document at `url`, even when it is the URL shown.
  void navigate(std::string url);
  /// Posts a message as a page would, to the handler registered under `name`,
  /// from the top document shown (or from `origin`, for a frame or an older
  /// document). Returns false when no handler is registered under that name.
  bool postScriptMessage(const std::string& name, JSON body, std::optional<MessageOrigin> origin = std::nullopt);
  /// Posts {"message": requestText} to "nativeRequest".
  bool postRequest(std::string_view requestText, std::optional<MessageOrigin> origin = std::nullopt);
  /// What the engine stamps on a message from the top document shown.
  MessageOrigin topOrigin() const;
  /// Answers evaluations that have a completion; by default an empty result.
  std::function<ScriptResult(const std::string& script)> evaluator;
  /// A pinch starts, as the user's would: the client says whether it may go
  /// on, and the answer is recorded in `pinchRecognizerEnabled`. Returns it.
  bool pinch();

  /// The web view the engine tells of navigation (null before setClient()).
  WebEngineClient* client() const { return core_->client(); }
  /// The engine's main queue, for the test to drain.
  TestingMainQueue& queue() { return *queue_; }
  /// The same queue, shared.
  std::shared_ptr<TestingMainQueue> sharedQueue() const { return queue_; }

  // ---- What the engine recorded --------------------------------------------
  std::vector<URLRequest> loads;               ///< Each load, in order.
  std::vector<UserScript> userScripts;         ///< Each user script added, in order.
  std::vector<WebPreferences> preferencesSet;  ///< Each preferences object set, in order.
  std::optional<bool> pinchRecognizerEnabled;  ///< The answer at the last pinch's start, if any.
  /// Registrations refused because the name was already taken.
  std::size_t refusedHandlerRegistrations = 0;

  /// Every script evaluated, in order.
  std::vector<Evaluation> evaluations() const;
  /// The envelopes evaluated through "nativeResponse(...)", parsed, in order.
  std::vector<JSON> nativeResponses() const;
  /// Whether a script-message handler is registered under `name`.
  bool hasHandler(const std::string& name) const { return core_->hasHandler(name); }

  // ---- WebEngine -------------------------------------------------------------
  void setClient(WebEngineClient* client) override { core_->setClient(client); }
  void load(const URLRequest& request) override { loads.push_back(request); }
  void evaluateJavaScript(std::string script, ScriptCompletion completion) override;
  void evaluateInDocument(DocumentID document, std::string script, ScriptCompletion completion) override;
  DocumentID document() const override { return core_->document(); }
  void addUserScript(const UserScript& script) override { userScripts.push_back(script); }
  void addScriptMessageHandler(std::weak_ptr<ScriptMessageHandler> handler, std::string name) override;
  void removeScriptMessageHandler(std::string_view name) override;
  std::optional<std::string_view> url() const override { return core_->url(); }
  void setPreferences(const WebPreferences& preferences) override { preferencesSet.push_back(preferences); }
  MainQueue& mainQueue() override { return *queue_; }

 private:
  std::shared_ptr<TestingMainQueue> queue_;
  std::shared_ptr<EngineCore> core_;
  mutable std::mutex evaluationsMutex_;
  std::vector<Evaluation> evaluations_;
};

}  // namespace websdk::testing
