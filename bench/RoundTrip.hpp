#pragma once
// What the round-trip benches of every engine share: the page, the answers,
// the alternating floor/WebSDK batches and the table of ratios. Each engine's
// bench brings its floor, its WebSDK side and the rig that shows both.

#include "websdk/bridge/families/Cart.hpp"
#include "websdk/webview/WebSDKNavigationDelegate.hpp"
#include "websdk/webview/WebSDKWebView.hpp"

#include <benchmark/benchmark.h>

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <string>
#include <system_error>
#include <vector>

namespace websdk::bench {

using Clock = std::chrono::steady_clock;

inline constexpr std::string_view kBaseURI = "http://127.0.0.1/bench";

// The page is the same for both sides: it posts requests, counts answers in
// nativeResponse (touching the payload) and reports when the batch is done.
inline constexpr std::string_view kPage = R"(<!doctype html><html><body><script>
let remaining = 0, next = 0, pipelined = false, bytes = 0;
function send() {
  const id = String(next++);
  window.webkit.messageHandlers.nativeRequest.postMessage({message:
    '{"type":"GET_LOCAL_CART","requestId":"' + id + '","payload":{"tenant":{"marketplaceId":"m1","marketplaceCategory":"FOOD","marketplaceBusinessLine":"DV-MEALS"}}}'});
}
function nativeResponse(envelope) {
  bytes += envelope.payload.length;
  if (--remaining === 0) { window.webkit.messageHandlers.done.postMessage(bytes); return; }
  if (!pipelined) send();
}
function run(n, pipe) {
  remaining = n; pipelined = pipe;
  if (pipe) { for (let i = 0; i < n; ++i) send(); } else { send(); }
}
</script></body></html>)";

// A JSON answer of about `size` bytes, as a plugin would send it.
inline std::string payloadOfSize(std::size_t size) {
  std::string out = R"({"items":[)";
  for (int i = 0; out.size() + 64 < size; ++i) {
    if (i) out += ',';
    out += R"({"id":"item-)" + std::to_string(i) + R"(","name":"Garlic naan","qty":2,"price":45.0})";
  }
  out += "]}";
  return out;
}

struct Figures {
  double floorUs = 0, sdkUs = 0;
  // CPU per round trip: of this process (the app, every thread of it) and of
  // the side's web process, where its engine names one (else negative).
  double floorAppCpuUs = 0, sdkAppCpuUs = 0, floorWebCpuUs = -1, sdkWebCpuUs = -1;
};
inline std::map<std::string, Figures>& results() {
  static std::map<std::string, Figures> r;
  return r;
}

// The WebSDK side's parts, whatever the engine: a delegate that allows every
// navigation, a cart plugin answering at once, and the page's "done".
class AllowAll final : public WebSDKNavigationDelegate {
 public:
  void didStartProvisionalNavigation(WebSDKWebView&, const WebSDKNavigation*) override {}
  void didFinish(WebSDKWebView&, const WebSDKNavigation*) override { finished = true; }
  void didFailProvisionalNavigation(WebSDKWebView&, const WebSDKNavigation*, const WebSDKError&) override {}
  void didReceive(WebSDKWebView&, const WebSDKAuthenticationChallenge&, WebSDKAuthChallengeCompletion) override {}
  bool finished = false;
};

class CartAnswers final : public DvCartWebViewCallBacks {
 public:
  std::weak_ptr<WebSDKWebView> view;
  std::string payload;
  void handleCartRequest(const WebSDKCartRequestModel& request, const WebSDKCartRequestPayload&) override {
    if (auto v = view.lock()) v->sendWebSDKResponse(payload, WebSDKResponseType::success, request.requestId);
  }
};

class Done final : public ScriptMessageHandler {
 public:
  void userContentController(const ScriptMessage&) override { done = true; }
  bool done = false;
};

/// The CPU time, in microseconds, that the threads of process `pid` have run
/// so far; 0 where Linux's per-thread figures cannot be read.
inline double processCpuUs(long pid) {
  double ns = 0;
  std::error_code error;
  for (const auto& task : std::filesystem::directory_iterator("/proc/" + std::to_string(pid) + "/task", error)) {
    std::ifstream in(task.path() / "schedstat");
    double run = 0;
    if (in >> run) ns += run;
  }
  return ns / 1000;
}

/// A side's CPU so far: the app's, and its web process's when the side names
/// it (`webProcess()`).
struct CpuReading {
  double app = 0, web = -1;
  template <class Side>
  static CpuReading of(Side& side) {
    CpuReading r{processCpuUs(getpid()), -1};
    if constexpr (requires { side.webProcess(); })
      if (const long pid = side.webProcess(); pid > 0) r.web = processCpuUs(pid);
    return r;
  }
};

/// CPU over a side's batches, summed.
struct CpuSpent {
  double app = 0, web = 0;
  bool hasWeb = true;
  long trips = 0;
  void add(const CpuReading& before, const CpuReading& after, int n) {
    app += after.app - before.app;
    hasWeb = hasWeb && before.web >= 0 && after.web >= 0;
    web += after.web - before.web;
    trips += n;
  }
  double appPerTrip() const { return trips ? app / static_cast<double>(trips) : 0; }
  double webPerTrip() const { return trips && hasWeb ? web / static_cast<double>(trips) : -1; }
};

/// One figure: batches of `size`-byte answers, pipelined or not, floor and
/// WebSDK alternating on `rig` (which has `ok`, `floor` and `sdk`).
template <class Rig>
void roundTrip(benchmark::State& state, Rig& rig) {
  const auto size = static_cast<std::size_t>(state.range(0));
  const bool pipelined = state.range(1) != 0;
  // Batches long enough that the kick-off evaluation is noise.
  const int batch = size >= (1u << 20) ? 4 : size >= 10'000 ? 50 : 200;
  if (!rig.ok) {
    state.SkipWithError("no display or the pages did not load: run under xvfb-run -a");
    return;
  }
  const std::string payload = payloadOfSize(size);
  rig.floor->setPayload(payload);
  rig.sdk->setPayload(payload);
  // One batch of each first, to warm both processes up.
  rig.floor->run(batch, pipelined);
  rig.sdk->run(batch, pipelined);

  // Medians of per-batch times: the machine is shared, and a spike in one
  // batch should not decide the ratio. CPU is read outside the timed spans;
  // on a busy machine it tells where a round trip's cost lies when the wall
  // clock cannot.
  std::vector<double> floorUs, sdkUs;
  CpuSpent floorCpu, sdkCpu;
  for (auto _ : state) {
    const auto floorBefore = CpuReading::of(*rig.floor);
    auto t0 = Clock::now();
    if (!rig.floor->run(batch, pipelined)) state.SkipWithError("floor batch did not finish");
    auto t1 = Clock::now();
    floorCpu.add(floorBefore, CpuReading::of(*rig.floor), batch);
    const auto sdkBefore = CpuReading::of(*rig.sdk);
    auto t2 = Clock::now();
    if (!rig.sdk->run(batch, pipelined)) state.SkipWithError("WebSDK batch did not finish");
    auto t3 = Clock::now();
    sdkCpu.add(sdkBefore, CpuReading::of(*rig.sdk), batch);
    floorUs.push_back(std::chrono::duration<double, std::micro>(t1 - t0).count() / batch);
    sdkUs.push_back(std::chrono::duration<double, std::micro>(t3 - t2).count() / batch);
  }
  const auto median = [](std::vector<double> v) {
    std::sort(v.begin(), v.end());
    return v.empty() ? 0.0 : v[v.size() / 2];
  };
  const Figures f{median(floorUs),     median(sdkUs),         floorCpu.appPerTrip(),
                  sdkCpu.appPerTrip(), floorCpu.webPerTrip(), sdkCpu.webPerTrip()};
  state.counters["floor_us"] = f.floorUs;
  state.counters["websdk_us"] = f.sdkUs;
  state.counters["ratio"] = f.sdkUs / f.floorUs;
  state.counters["floor_app_cpu_us"] = f.floorAppCpuUs;
  state.counters["websdk_app_cpu_us"] = f.sdkAppCpuUs;
  if (f.sdkWebCpuUs >= 0 && f.floorWebCpuUs >= 0) {
    state.counters["floor_web_cpu_us"] = f.floorWebCpuUs;
    state.counters["websdk_web_cpu_us"] = f.sdkWebCpuUs;
  }
  results()[std::to_string(size) + (pipelined ? " pipelined" : " sequential")] = f;
}

/// What a figure should be at most: trust costs nothing a round trip can see,
/// and pipelined answers at least keep up with the floor.
inline double target(const std::string& name) { return name.ends_with("pipelined") ? 1.00 : 1.10; }

/// The figures of the run, one line each, against `target(name)`.
inline void printFigures(const char* title, const std::function<double(const std::string&)>& target) {
  std::printf("\n%s (median microseconds per round trip)\n", title);
  std::printf("%-22s %12s %12s %8s %8s\n", "answer", "floor", "WebSDK", "ratio", "target");
  for (const auto& [name, f] : results())
    std::printf("%-22s %12.1f %12.1f %7.2fx %7.2fx\n", name.c_str(), f.floorUs, f.sdkUs, f.sdkUs / f.floorUs,
                target(name));
  // CPU is steadier than the wall clock on a shared machine: where the two
  // disagree, it says which side does more work.
  std::printf(
      "\nCPU per round trip (microseconds, the last repetition): the app process, and the page's web process\n");
  std::printf("%-22s %12s %12s %12s %12s\n", "answer", "floor app", "WebSDK app", "floor web", "WebSDK web");
  const auto cell = [](double us) { return us >= 0 ? std::to_string(static_cast<long>(us + 0.5)) : std::string("-"); };
  for (const auto& [name, f] : results())
    std::printf("%-22s %12s %12s %12s %12s\n", name.c_str(), cell(f.floorAppCpuUs).c_str(), cell(f.sdkAppCpuUs).c_str(),
                cell(f.floorWebCpuUs).c_str(), cell(f.sdkWebCpuUs).c_str());
}

/// The six figures: 100 B, 10 KB and 1 MB answers, sequential and pipelined.
#define WEBSDK_ROUND_TRIP_BENCHMARK(function)         \
  BENCHMARK(function)                                 \
      ->ArgNames({"bytes", "pipelined"})              \
      ->ArgsProduct({{100, 10'000, 1 << 20}, {0, 1}}) \
      ->Unit(benchmark::kMillisecond)                 \
      ->UseRealTime()                                 \
      ->MinTime(2.0)

}  // namespace websdk::bench
