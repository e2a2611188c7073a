// Threads against the real engine: whatever thread drops the last reference
// to a view, or calls what must run on the UI thread, WebKit is only ever
// touched on the UI thread.

#include "E2E.hpp"

#include <atomic>
#include <thread>

namespace websdk::e2e {
namespace {

// Workers answer (and push, and load) through weak references while the UI
// thread drops the view: the last reference often goes on a worker.
TEST_F(E2ETest, ViewsDroppedWhileWorkersUseThemAreTornDownOnTheUIThread) {
  if (!engine::limits().ownWindow.empty()) GTEST_SKIP() << engine::limits().ownWindow;
  server.page("/page", testPage());
  int lastOnWorker = 0;
  for (int round = 0; round < 100; ++round) {
    // The shared web context: a round costs a view, not new web processes.
    view = WebSDKWebView::create(engine::make(false), {"127.0.0.1"}, nullptr, nullptr, delegate, listener);
    window.show(view->engine());
    const std::weak_ptr<WebSDKWebView> weak = view;
    std::atomic<int> calls{0};
    std::atomic<bool> sawLast{false};
    std::vector<std::thread> workers;
    for (int t = 0; t < 2; ++t)
      workers.emplace_back([&, t] {
        for (int i = 0;; ++i) {
          auto v = weak.lock();
          if (!v) return;
          if (t == 0 && i == 0)
            v->loadWebView(server.url("/page"), {{"token", "t"}}, std::nullopt, 30);
          else if (i % 7 == 0)
            v->executeJSFunction(WebSDKJSFunctionType::pageResume());
          else
            v->sendSuccess(std::to_string(t) + ":" + std::to_string(i));
          ++calls;
          if (v.use_count() == 1) sawLast = true;
          v.reset();
          // Paced, so the UI thread is not buried under a flood of carried
          // calls (under the sanitizers a round would take seconds).
          std::this_thread::sleep_for(100us);
        }
      });
    waitFor([&] { return calls > 20; }, 5s);
    view.reset();
    for (auto& w : workers) w.join();
    lastOnWorker += sawLast ? 1 : 0;
    // The view goes once the UI thread gets to it; its widget leaves the window.
    ASSERT_TRUE(waitFor([&] { return !window.holdsAView(); }, 10s)) << "round " << round;
  }
  std::printf("rounds whose last reference may have gone on a worker: %d of 100\n", lastOnWorker);
}

// An engine made on a worker would make the toolkit abort with no word of
// why: the WebSDK says why first, and stops.
TEST(EngineThreads, AnEngineMadeOffTheUIThreadSaysWhyBeforeItStops) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_DEATH(std::thread([] { auto engine = engine::make(); }).join(), "made off the UI thread");
}

}  // namespace
}  // namespace websdk::e2e
