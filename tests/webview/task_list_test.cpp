// The main queue's list: tasks run in the order posted, a turn runs at most
// its share, and running what is pending never reaches tasks posted since.

#include "websdk/webview/TaskList.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace websdk {
namespace {

TEST(TaskList, OnlyTheFirstPushAfterARunOutAsksForATurn) {
  TaskList list;
  EXPECT_TRUE(list.push([] {}));
  EXPECT_FALSE(list.push([] {}));
  EXPECT_FALSE(list.runTurn(10));  // ran empty: the turn ends
  EXPECT_TRUE(list.push([] {}));
}

TEST(TaskList, ATurnRunsItsShareInOrderAndStaysScheduledWhileTasksAreLeft) {
  TaskList list;
  std::vector<int> ran;
  for (int i = 0; i < 5; ++i) list.push([&ran, i] { ran.push_back(i); });
  EXPECT_TRUE(list.runTurn(2));
  EXPECT_EQ(ran, (std::vector<int>{0, 1}));
  EXPECT_FALSE(list.push([&ran] { ran.push_back(5); }));  // the turn is still scheduled
  EXPECT_FALSE(list.runTurn(10));
  EXPECT_EQ(ran, (std::vector<int>{0, 1, 2, 3, 4, 5}));
}

TEST(TaskList, RunningWhatIsPendingLeavesWhatThoseTasksPostForTheLoop) {
  TaskList list;
  std::vector<std::string> ran;
  list.push([&] {
    ran.push_back("first");
    list.push([&] { ran.push_back("posted by first"); });
  });
  list.push([&] { ran.push_back("second"); });
  list.runPending();
  EXPECT_EQ(ran, (std::vector<std::string>{"first", "second"}));
  // The turn scheduled by the first push still comes, and finds the rest.
  EXPECT_FALSE(list.runTurn(10));
  EXPECT_EQ(ran.back(), "posted by first");
}

TEST(TaskList, ATaskMayRunWhatIsPendingFromInsideItself) {
  TaskList list;
  std::vector<int> ran;
  list.push([&] {
    ran.push_back(0);
    list.runPending();  // a page message delivered inside a task
  });
  list.push([&] { ran.push_back(1); });
  list.runTurn(10);
  EXPECT_EQ(ran, (std::vector<int>{0, 1}));
}

}  // namespace
}  // namespace websdk
