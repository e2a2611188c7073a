#pragma once
/// @file
/// The tasks of an engine's main queue, in the order posted. The engine's loop
/// runs them in bounded turns; the engine also runs them where one of its own
/// UI events ends (a page message delivered), so an answer given during the
/// event leaves at once instead of waiting for the loop's next turn. Any thread
/// may push; only the UI thread runs.

#include "websdk/Export.hpp"

#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>

namespace websdk {

class WEBSDK_EXPORT TaskList {
 public:
  /// Adds `task`. True when no turn is scheduled: the caller schedules one.
  bool push(std::function<void()> task);
  /// One turn of the loop: at most `most` tasks. True when tasks are left and
  /// the turn stays scheduled; false when the list ran empty.
  bool runTurn(std::size_t most);
  /// Runs the tasks posted before the call (not those they post) and leaves
  /// the scheduled turn as it is: it finds the list shorter, or empty.
  void runPending();

 private:
  bool runOne();
  std::mutex mutex_;
  std::deque<std::function<void()>> tasks_;
  bool scheduled_ = false;
};

}  // namespace websdk
