#include "websdk/webview/TaskList.hpp"

#include <utility>

namespace websdk {

bool TaskList::push(std::function<void()> task) {
  std::lock_guard lock(mutex_);
  tasks_.push_back(std::move(task));
  return !std::exchange(scheduled_, true);
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

void TaskList::runPending() {
  std::size_t posted;
  {
    std::lock_guard lock(mutex_);
    posted = tasks_.size();
  }
  while (posted-- > 0 && runOne()) {
  }
}

}  // namespace websdk
