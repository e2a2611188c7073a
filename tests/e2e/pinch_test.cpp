// Pinch-zoom: the web view decides at the start of each pinch whether it may go on.

#include "E2E.hpp"

namespace websdk::e2e {
namespace {

TEST_F(E2ETest, APinchIsRefusedAtItsStartUnlessEnabled) {
  if (!engine::limits().pinch.empty()) GTEST_SKIP() << engine::limits().pinch;
  server.page("/page", testPage());
  ASSERT_TRUE(loadAndWait(server.url("/page")));
  ASSERT_TRUE(engine::hasPinchGesture(view->engine()));

  for (const bool enabled : {false, true, false}) {
    view->setPinchGestureEnable(enabled);
    engine::pinch(view->engine(), 1.5);
    EXPECT_EQ(engine::pinchEnabled(view->engine()), enabled);
  }
}

}  // namespace
}  // namespace websdk::e2e
