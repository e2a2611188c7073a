// runUntil keeps its bound: a condition that never holds returns false at
// the bound, whether the loop has nothing to do or never stops having work.
// The figures are printed; the only assertion on time is a generous one that
// catches a wait that does not end.

#include "E2E.hpp"

#include <algorithm>
#include <cstdio>

namespace websdk::e2e {
namespace {

constexpr auto kWait = 500ms;
constexpr auto kHang = 5s;  // far past any late wake-up: only a wait that never ends reaches it

// Ten bounded waits on a condition that never holds; each must return false
// and by kHang. Prints the slowest and the mean.
void expectTenWaitsKeepTheirBound(std::string_view loop) {
  using Clock = std::chrono::steady_clock;
  std::chrono::microseconds slowest{0}, total{0};
  for (int i = 0; i < 10; ++i) {
    const auto start = Clock::now();
    EXPECT_FALSE(waitFor([] { return false; }, kWait));
    const auto took = std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - start);
    ASSERT_LT(took, kHang) << "wait " << i << " on the " << loop << " loop did not keep its bound";
    slowest = std::max(slowest, took);
    total += took;
  }
  std::printf("%s: runUntil(false, 500 ms) on the %s loop: slowest %.1f ms, mean %.1f ms\n",
              std::string(engine::name()).c_str(), std::string(loop).c_str(), slowest.count() / 1000.0,
              total.count() / 10000.0);
}

TEST_F(E2ETest, AWaitOnAnIdleLoopReturnsByItsBound) { expectTenWaitsKeepTheirBound("idle"); }

TEST_F(E2ETest, AWaitOnABusyLoopReturnsByItsBound) {
  // Work that never runs out: a page posting to its handler from a timer of
  // its own, and a task on the UI thread that posts itself again each
  // millisecond (at once, it would starve the engines' own lower-priority
  // work, the page's messages among it, on GLib).
  server.page("/busy", testPage(R"(<script>
    let n = 0;
    (function tick() { for (let i = 0; i < 20; ++i) report("tick", ++n); setTimeout(tick, 0); })();
  </script>)"));
  ASSERT_TRUE(loadAndWait(server.url("/busy")));
  struct Spinner {
    MainQueue* queue;
    std::shared_ptr<bool> stop = std::make_shared<bool>(false);
    std::shared_ptr<std::size_t> turns = std::make_shared<std::size_t>(0);
    void operator()() const {
      if (*stop) return;
      ++*turns;
      queue->postAfter(1ms, *this);
    }
  } spinner{&view->engine().mainQueue()};
  spinner.queue->post(spinner);

  const std::size_t ticksBefore = page->of("tick").size();
  expectTenWaitsKeepTheirBound("busy");
  const std::size_t ticks = page->of("tick").size() - ticksBefore, turns = *spinner.turns;
  *spinner.stop = true;
  page->reports.clear();
  std::printf("  meanwhile: %zu page messages, %zu UI-thread tasks\n", ticks, turns);
  EXPECT_GT(ticks, 0u);
  EXPECT_GT(turns, 0u);
  // The spinner's last task finds it stopped.
  waitFor([] { return false; }, 50ms);
}

}  // namespace
}  // namespace websdk::e2e
