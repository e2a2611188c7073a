// The main queue's list: tasks run in the order posted, a turn runs at most
// its share, a held list asks for no turn and runs what it holds as it is
// released, and running what is pending never reaches tasks posted since.

#include "websdk/webview/TaskList.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace websdk {
namespace {

struct Loop {
  int turnsAsked = 0;
  TaskList list{[this] { ++turnsAsked; }};
};

TEST(TaskList, OnlyTheFirstPushAfterARunOutAsksForATurn) {
  Loop loop;
  loop.list.push([] {});
  loop.list.push([] {});
  EXPECT_EQ(loop.turnsAsked, 1);
  EXPECT_FALSE(loop.list.runTurn(10));  // ran empty: the turn ends
  loop.list.push([] {});
  EXPECT_EQ(loop.turnsAsked, 2);
}

TEST(TaskList, ATurnRunsItsShareInOrderAndStaysAskedForWhileTasksAreLeft) {
  Loop loop;
  std::vector<int> ran;
  for (int i = 0; i < 5; ++i) loop.list.push([&ran, i] { ran.push_back(i); });
  EXPECT_TRUE(loop.list.runTurn(2));
  EXPECT_EQ(ran, (std::vector<int>{0, 1}));
  loop.list.push([&ran] { ran.push_back(5); });
  EXPECT_EQ(loop.turnsAsked, 1);  // the turn is still asked for
  EXPECT_FALSE(loop.list.runTurn(10));
  EXPECT_EQ(ran, (std::vector<int>{0, 1, 2, 3, 4, 5}));
}

TEST(TaskList, AHeldListAsksForNoTurnAndRunsItsTasksAsItIsReleased) {
  Loop loop;
  std::vector<std::string> ran;
  loop.list.hold();
  loop.list.push([&] {
    ran.push_back("answer");
    loop.list.push([&] { ran.push_back("posted by the answer"); });
  });
  EXPECT_EQ(loop.turnsAsked, 0);
  loop.list.release();
  EXPECT_EQ(ran, (std::vector<std::string>{"answer"}));
  // What the answer posted waits for a turn of its own.
  EXPECT_EQ(loop.turnsAsked, 1);
  EXPECT_FALSE(loop.list.runTurn(10));
  EXPECT_EQ(ran.back(), "posted by the answer");
}

TEST(TaskList, TasksPostedBeforeAHoldRunFirst) {
  Loop loop;
  std::vector<int> ran;
  loop.list.push([&] { ran.push_back(0); });
  loop.list.hold();
  loop.list.push([&] { ran.push_back(1); });
  loop.list.release();
  EXPECT_EQ(ran, (std::vector<int>{0, 1}));
  EXPECT_FALSE(loop.list.runTurn(10));  // the turn asked for by the first finds nothing
}

TEST(TaskList, ADeliveryInsideATaskRunsTheRestInOrder) {
  Loop loop;
  std::vector<int> ran;
  loop.list.push([&] {
    ran.push_back(0);
    loop.list.hold();  // a page message delivered inside a task
    loop.list.push([&] { ran.push_back(2); });
    loop.list.release();
  });
  loop.list.push([&] { ran.push_back(1); });
  loop.list.runTurn(10);
  EXPECT_EQ(ran, (std::vector<int>{0, 1, 2}));
}

}  // namespace
}  // namespace websdk
