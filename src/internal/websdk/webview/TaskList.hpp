#pragma once
/// @file
/// The tasks of an engine's main queue, in the order posted. The engine's loop
/// runs them in bounded turns; the engine also runs them where one of its own
/// UI events ends (a page message delivered), so an answer given during the
/// event leaves at once instead of waiting for the loop's next turn, and no
/// turn is asked of the loop for it. Any thread may push; only the UI thread
/// runs.

#include "websdk/Export.hpp"

#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>

namespace websdk {

class WEBSDK_EXPORT TaskList {
 public:
  /// `schedule` asks the loop for one turn (runTurn); called with no lock held.
  explicit TaskList(std::function<void()> schedule) : schedule_(std::move(schedule)) {}
  /// Adds `task`, asking for a turn unless one is asked or the list is held.
  void push(std::function<void()> task);
  /// One turn of the loop: at most `most` tasks. True when tasks are left and
  /// the turn stays asked for (the caller runs another); false otherwise.
  bool runTurn(std::size_t most);
  /// While held (UI thread, around a page message's delivery), tasks pushed
  /// ask for no turn: release() runs them.
  void hold();
  /// Ends a hold and runs the tasks posted before the call (not those they
  /// post, which get a turn of the loop).
  void release();

 private:
  void runPending();
  bool runOne();
  std::function<void()> schedule_;
  std::mutex mutex_;
  std::deque<std::function<void()>> tasks_;
  bool scheduled_ = false;
  int held_ = 0;
};

}  // namespace websdk
