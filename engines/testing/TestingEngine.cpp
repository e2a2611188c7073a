#include "websdk/testing/TestingEngine.hpp"

namespace websdk::testing {

void TestingMainQueue::post(std::function<void()> task) {
  std::lock_guard lock(mutex_);
  tasks_.push_back(std::move(task));
}

void TestingMainQueue::track(std::weak_ptr<BackgroundWork> work) {
  std::lock_guard lock(mutex_);
  std::erase_if(tracked_, [](const auto& w) { return w.expired(); });
  tracked_.push_back(std::move(work));
}

std::size_t TestingMainQueue::drain() {
  std::size_t ran = 0;
  for (;;) {
    std::function<void()> task;
    std::vector<std::weak_ptr<BackgroundWork>> tracked;
    {
      std::lock_guard lock(mutex_);
      if (tasks_.empty()) {
        tracked = tracked_;
      } else {
        task = std::move(tasks_.front());
        tasks_.pop_front();
      }
    }
    if (!task) {
      // Settled outside the lock: the work may post, and then there is more to run.
      for (const auto& w : tracked)
        if (const auto work = w.lock()) work->settle();
      std::lock_guard lock(mutex_);
      if (tasks_.empty()) return ran;
      continue;
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

// Its loads never start: the timeout has nothing to stop.
TestingEngine::TestingEngine(std::shared_ptr<TestingMainQueue> queue)
    : queue_(std::move(queue)),
      core_(std::make_shared<EngineCore>(*queue_, "testing", 0, [](const WebSDKNavigation&) { return false; })) {}

void TestingEngine::setURL(std::optional<std::string> url) {
  if (!url) return core_->showNothing();
  if (url != core_->url()) core_->commitDocument(std::move(*url));
}

void TestingEngine::navigate(std::string url) { core_->commitDocument(std::move(url)); }

MessageOrigin TestingEngine::topOrigin() const {
  const std::string shown(core_->url().value_or(""));
  return MessageOrigin{shown, shown, true, document()};
}

bool TestingEngine::postScriptMessage(const std::string& name, JSON body, std::optional<MessageOrigin> origin) {
  return core_->deliver(ScriptMessage{name, std::move(body), origin ? std::move(*origin) : topOrigin()});
}

// As the real engines post the bridge's messages: the "message" string only.
bool TestingEngine::postRequest(std::string_view requestText, std::optional<MessageOrigin> origin) {
  return core_->deliver(ScriptMessage{"nativeRequest", nullptr, origin ? std::move(*origin) : topOrigin(), requestText,
                                      requestText.size()});
}

bool TestingEngine::pinch() { return *(pinchRecognizerEnabled = core_->pinchBegins()); }

void TestingEngine::evaluateJavaScript(std::string script, ScriptCompletion completion) {
  {
    std::lock_guard lock(evaluationsMutex_);
    evaluations_.push_back({script, static_cast<bool>(completion)});
  }
  if (completion) completion(evaluator ? evaluator(script) : ScriptResult{});
}

void TestingEngine::evaluateInDocument(DocumentID document, std::string script, ScriptCompletion completion) {
  if (!core_->shows(document)) {
    {
      std::lock_guard lock(evaluationsMutex_);
      droppedScripts.push_back(std::move(script));
    }
    return EngineCore::dropped(completion);
  }
  evaluateJavaScript(std::move(script), std::move(completion));
}

void TestingEngine::addScriptMessageHandler(std::weak_ptr<ScriptMessageHandler> handler, std::string name) {
  // Like a real engine, a name already in use keeps its first handler.
  if (!core_->addHandler(std::move(handler), std::move(name))) ++refusedHandlerRegistrations;
}

void TestingEngine::removeScriptMessageHandler(std::string_view name) { core_->removeHandler(name); }

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
