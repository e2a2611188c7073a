#include "websdk/webview/TaskList.hpp"

#include <utility>

namespace websdk {

void TaskList::push(std::function<void()> task) {
  {
    std::lock_guard lock(mutex_);
    tasks_.push_back(std::move(task));
    if (scheduled_ || held_ > 0) return;
    scheduled_ = true;
  }
  schedule_();
}

bool TaskList::runOne() {
  std::function<void()> task;
  {
    std::lock_guard lock(mutex_);
    if (tasks_.empty()) return false;
    task = std::move(tasks_.front());
    tasks_.pop_front();
  }
  task();
  return true;
}

bool TaskList::runTurn(std::size_t most) {
  for (std::size_t n = 0; n < most; ++n)
    if (!runOne()) break;
  std::lock_guard lock(mutex_);
  if (tasks_.empty()) scheduled_ = false;
  return scheduled_;
}

void TaskList::hold() {
  std::lock_guard lock(mutex_);
  ++held_;
}

void TaskList::release() {
  {
    std::lock_guard lock(mutex_);
    if (held_ > 0) --held_;
  }
  runPending();
}

void TaskList::runPending() {
  std::size_t posted;
  {
    std::lock_guard lock(mutex_);
    posted = tasks_.size();
  }
  while (posted-- > 0 && runOne()) {
  }
  // What is left (posted since, or while held) needs a turn of its own.
  {
    std::lock_guard lock(mutex_);
    if (tasks_.empty() || scheduled_ || held_ > 0) return;
    scheduled_ = true;
  }
  schedule_();
}

}  // namespace websdk
