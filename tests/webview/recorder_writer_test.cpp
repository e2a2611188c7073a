// The recorder's writer thread: a writer that cannot keep up costs the
// callers nothing but dropped lines, counted where they were; lines from
// several threads keep each thread's order; a secret masks every line handed
// over after it; a flush, or the recorder's end, writes everything handed over.

#include "websdk/Log.hpp"
#include "websdk/testing/Replay.hpp"
#include "websdk/webview/WebSDKTrafficRecorder.hpp"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace websdk {
namespace {

namespace fs = std::filesystem;

fs::path scratchPath(std::string_view name) {
  const fs::path path =
      fs::temp_directory_path() / ("websdk-writer-" + std::to_string(::getpid()) + "-" + std::string(name) + ".jsonl");
  fs::remove(path);
  fs::remove(path.string() + ".1");
  return path;
}

std::vector<JSONObject> linesOf(std::string_view text) {
  std::vector<JSONObject> out;
  std::istringstream in{std::string(text)};
  for (std::string line; std::getline(in, line);) out.push_back(parseJSON(line).as_object());
  return out;
}

std::string contents(const fs::path& path) {
  std::ifstream in(path);
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

WebSDKRecordedRequest cartRequest(int id) {
  WebSDKRecordedRequest r;
  r.page = "https://localhost/checkout";
  r.requestId = std::to_string(id);
  r.action = "CLEAR_LOCAL_CART";
  r.family = "cart";
  r.outcome = "delivered";
  r.received = JSONObject{{"case", "clearCart"}};
  return r;
}

// The warnings the recorder logs, from whichever thread logs them.
struct Warnings {
  std::mutex mutex;
  std::vector<std::string> lines;
  LogSink previous;
  Warnings() {
    previous = setLogSink([this](const LogRecord& r) {
      std::lock_guard lock(mutex);
      if (r.topic == "recording") lines.emplace_back(r.message);
    });
  }
  ~Warnings() { setLogSink(previous); }
};

// A pipe nobody reads stalls the writer: once it is full, the recorder keeps
// taking lines until its queue is full, then drops them. The pipe is read
// only after the last line was handed over.
TEST(TrafficRecorderWriter, AStalledWriterDropsLinesCountsThemWhereTheyWereAndNeverWaits) {
  const auto path = scratchPath("stalled");
  ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0) << std::strerror(errno);
  const int reader = ::open(path.c_str(), O_RDONLY | O_NONBLOCK);
  ASSERT_GE(reader, 0);
  Warnings warnings;
  auto recorder =
      WebSDKTrafficRecorder::open(WebSDKTrafficRecording{.path = path.string()}, WebSDKConfig{{"localhost"}});
  ASSERT_NE(recorder, nullptr);

  // More than the pipe, the writer's batch and the queue can hold.
  const int kLines = static_cast<int>(4 * WebSDKTrafficRecorder::kQueuedLines);
  for (int i = 0; i < kLines; ++i) recorder->request(cartRequest(i));
  const std::uint64_t dropped = recorder->droppedLines();
  EXPECT_GT(dropped, 0u);

  std::string text;
  std::thread drain([&] {
    ::fcntl(reader, F_SETFL, 0);
    char buffer[1 << 16];
    for (ssize_t n; (n = ::read(reader, buffer, sizeof buffer)) != 0;)
      if (n > 0) text.append(buffer, static_cast<std::size_t>(n));
  });
  recorder.reset();
  drain.join();
  ::close(reader);
  fs::remove(path);

  // Every request is on record, or counted in the "dropped" line where it
  // would have been; the ones written are in the order handed over.
  const auto lines = linesOf(text);
  ASSERT_FALSE(lines.empty());
  EXPECT_EQ(lines.front().at("event"), "view");
  int next = 0;
  std::uint64_t counted = 0, droppedLines = 0;
  for (std::size_t i = 1; i < lines.size(); ++i) {
    const auto& line = lines[i];
    if (line.at("event") == "dropped") {
      const auto count = line.at("count").to_number<std::uint64_t>();
      counted += count;
      ++droppedLines;
      next += static_cast<int>(count);
    } else {
      ASSERT_EQ(line.at("event"), "request");
      ASSERT_EQ(line.at("requestId"), JSON(std::to_string(next))) << "line " << i;
      ++next;
    }
  }
  EXPECT_EQ(next, kLines);
  EXPECT_EQ(counted, dropped);
  // Told once per run of dropped lines, not once per line.
  std::lock_guard lock(warnings.mutex);
  EXPECT_EQ(warnings.lines.size(), droppedLines);

  // The replay passes over the count.
  std::istringstream in(text);
  std::ostringstream report;
  EXPECT_EQ(testing::replayRecording(in, report).unreadable, 0u);
}

// Each thread hands over its own numbered pushes, and adds its own secret
// halfway: every push handed over after that is masked, none before.
TEST(TrafficRecorderWriter, LinesFromManyThreadsKeepTheirOrderAndEachSecretMasksWhatFollowsIt) {
  const auto path = scratchPath("threads");
  auto recorder =
      WebSDKTrafficRecorder::open(WebSDKTrafficRecording{.path = path.string()}, WebSDKConfig{{"localhost"}});
  ASSERT_NE(recorder, nullptr);
  constexpr int kThreads = 4, kPushes = 800;  // fewer than the queue holds: none is dropped
  static_assert(kThreads * kPushes < WebSDKTrafficRecorder::kQueuedLines);
  const auto secretOf = [](int t) { return "token-" + std::to_string(t) + "-5f1e2d3c"; };
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t)
    threads.emplace_back([&, t] {
      for (int i = 0; i < kPushes; ++i) {
        if (i == kPushes / 2) recorder->addSecrets({{"session", secretOf(t)}});
        recorder->push("push(" + std::to_string(t) + "," + std::to_string(i) + ",'" + secretOf(t) + "')",
                       "https://localhost/");
      }
    });
  for (auto& thread : threads) thread.join();
  // What was handed over is in the file once flushed, while the recorder lives.
  recorder->flush();
  const std::string flushed = contents(path);
  recorder.reset();
  EXPECT_EQ(contents(path), flushed);
  fs::remove(path);

  const auto lines = linesOf(flushed);
  ASSERT_EQ(lines.size(), 1u + kThreads * kPushes);
  std::vector<int> next(kThreads, 0);
  for (std::size_t i = 1; i < lines.size(); ++i) {
    const std::string script(lines[i].at("script").as_string());
    int t = -1, n = -1;
    ASSERT_EQ(std::sscanf(script.c_str(), "push(%d,%d,", &t, &n), 2) << script;
    ASSERT_TRUE(t >= 0 && t < kThreads) << script;
    EXPECT_EQ(n, next[t]++) << script;
    const bool masked = script.find(secretOf(t)) == std::string::npos;
    EXPECT_EQ(masked, n >= kPushes / 2) << script;
  }
}

}  // namespace
}  // namespace websdk
