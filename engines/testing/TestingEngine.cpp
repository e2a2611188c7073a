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

std::size_t TestingMainQueue::pending() const {
  std::lock_guard lock(mutex_);
  return tasks_.size();
}

TestingEngine::TestingEngine(std::shared_ptr<TestingMainQueue> queue) : queue_(std::move(queue)) {}

bool TestingEngine::postScriptMessage(const std::string& name, JSON body) {
  const auto it = handlers_.find(name);
  if (it == handlers_.end()) return false;
  const auto handler = it->second.lock();
  if (!handler) return false;
  handler->userContentController(ScriptMessage{name, std::move(body)});
  return true;
}

bool TestingEngine::postRequest(std::string_view requestText) {
  JSONObject body;
  body.emplace("message", requestText);
  return postScriptMessage("nativeRequest", std::move(body));
}

void TestingEngine::evaluateJavaScript(std::string script, ScriptCompletion completion) {
  {
    std::lock_guard lock(evaluationsMutex_);
    evaluations_.push_back({script, static_cast<bool>(completion)});
  }
  if (completion) completion(evaluator ? evaluator(script) : ScriptResult{});
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
