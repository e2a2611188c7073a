#include "websdk/testing/TestingEngine.hpp"

namespace websdk::testing {

void TestingMainQueue::post(std::function<void()> task) {
  std::lock_guard lock(mutex_);
  tasks_.push_back(std::move(task));
}

std::size_t TestingMainQueue::drain() {
  std::size_t ran = 0;
  for (;;) {
    std::function<void()> task;
    {
      std::lock_guard lock(mutex_);
      if (tasks_.empty()) return ran;
      task = std::move(tasks_.front());
      tasks_.pop_front();
    }
    task();
    ++ran;
  }
}

void TestingMainQueue::postAfter(std::chrono::milliseconds delay, std::function<void()> task) {
  std::lock_guard lock(mutex_);
  delayed_.emplace(now_ + delay, std::move(task));
}

std::size_t TestingMainQueue::advance(std::chrono::milliseconds by) {
  {
    std::lock_guard lock(mutex_);
    now_ += by;
    const auto due = delayed_.upper_bound(now_);
    for (auto it = delayed_.begin(); it != due; ++it) tasks_.push_back(std::move(it->second));
    delayed_.erase(delayed_.begin(), due);
  }
  return drain();
}

std::size_t TestingMainQueue::pending() const {
  std::lock_guard lock(mutex_);
  return tasks_.size();
}

TestingEngine::TestingEngine(std::shared_ptr<TestingMainQueue> queue) : queue_(std::move(queue)) {}

void TestingEngine::setURL(std::optional<std::string> url) {
  if (url && url != url_) ++document_;
  url_ = std::move(url);
}

void TestingEngine::navigate(std::string url) {
  ++document_;
  url_ = std::move(url);
}

MessageOrigin TestingEngine::topOrigin() const {
  const std::string shown = url_.value_or("");
  return MessageOrigin{shown, shown, true, document()};
}

bool TestingEngine::postScriptMessage(const std::string& name, JSON body, std::optional<MessageOrigin> origin) {
  const auto it = handlers_.find(name);
  if (it == handlers_.end()) return false;
  const auto handler = it->second.lock();
  if (!handler) return false;
  handler->userContentController(ScriptMessage{name, std::move(body), origin ? std::move(*origin) : topOrigin()});
  return true;
}

// As the real engines post the bridge's messages: the "message" string only.
bool TestingEngine::postRequest(std::string_view requestText, std::optional<MessageOrigin> origin) {
  const auto it = handlers_.find("nativeRequest");
  if (it == handlers_.end()) return false;
  const auto handler = it->second.lock();
  if (!handler) return false;
  handler->userContentController(ScriptMessage{"nativeRequest", nullptr, origin ? std::move(*origin) : topOrigin(),
                                               requestText, requestText.size()});
  return true;
}

void TestingEngine::evaluateJavaScript(std::string script, ScriptCompletion completion) {
  {
    std::lock_guard lock(evaluationsMutex_);
    evaluations_.push_back({script, static_cast<bool>(completion)});
  }
  if (completion) completion(evaluator ? evaluator(script) : ScriptResult{});
}

void TestingEngine::evaluateInDocument(DocumentID document, std::string script, ScriptCompletion completion) {
  if (document == 0 || document != this->document()) {
    {
      std::lock_guard lock(evaluationsMutex_);
      droppedScripts.push_back(std::move(script));
    }
    if (completion) completion(ScriptResult{std::nullopt, std::nullopt, true});
    return;
  }
  evaluateJavaScript(std::move(script), std::move(completion));
}

void TestingEngine::addScriptMessageHandler(std::weak_ptr<ScriptMessageHandler> handler, std::string name) {
  // Like a real engine, a name already in use keeps its first handler.
  if (!handlers_.try_emplace(std::move(name), std::move(handler)).second) ++refusedHandlerRegistrations;
}

void TestingEngine::removeScriptMessageHandler(std::string_view name) {
  if (const auto it = handlers_.find(name); it != handlers_.end()) handlers_.erase(it);
}

std::vector<TestingEngine::Evaluation> TestingEngine::evaluations() const {
  std::lock_guard lock(evaluationsMutex_);
  return evaluations_;
}

std::vector<JSON> TestingEngine::nativeResponses() const {
  constexpr std::string_view prefix = "nativeResponse(";
  std::vector<JSON> out;
  for (const auto& e : evaluations()) {
    const std::string_view s = e.script;
    if (s.starts_with(prefix) && s.ends_with(")"))
      out.push_back(parseJSON(s.substr(prefix.size(), s.size() - prefix.size() - 1)));
  }
  return out;
}

}  // namespace websdk::testing
