#include "websdk/Log.hpp"

#include <cstdlib>
#include <iostream>
#include <memory>
#include <mutex>
#include <utility>

namespace websdk {
namespace {

struct Sinks {
  std::mutex mutex;
  std::shared_ptr<const LogSink> host, platform;
};

Sinks& sinks() {
  static Sinks s;  // never destroyed before a late log from a static's teardown
  return s;
}

std::string_view levelName(LogLevel level) {
  switch (level) {
    case LogLevel::debug: return "DEBUG";
    case LogLevel::info: return "INFO";
    case LogLevel::warning: return "WARNING";
    case LogLevel::error: return "ERROR";
  }
  return "WARNING";
}

// What the default sink shows: warnings and errors, and info or debug when
// WEBSDK_LOG asks for them.
LogLevel shownFrom() {
  static const LogLevel level = [] {
    const char* asked = std::getenv("WEBSDK_LOG");
    const std::string_view a = asked != nullptr ? asked : "";
    return a == "debug" ? LogLevel::debug : a == "info" ? LogLevel::info : LogLevel::warning;
  }();
  return level;
}

}  // namespace

LogSink setLogSink(LogSink sink) {
  auto next = sink ? std::make_shared<const LogSink>(std::move(sink)) : nullptr;
  std::lock_guard lock(sinks().mutex);
  auto previous = std::exchange(sinks().host, std::move(next));
  return previous ? *previous : LogSink{};
}

void detail::setPlatformLogSink(LogSink sink) {
  auto next = sink ? std::make_shared<const LogSink>(std::move(sink)) : nullptr;
  std::lock_guard lock(sinks().mutex);
  sinks().platform = std::move(next);
}

void log(LogLevel level, std::string_view topic, std::string_view message) { log(level, topic, {}, message); }

void log(LogLevel level, std::string_view topic, std::string_view view, std::string_view message) {
  std::shared_ptr<const LogSink> sink;
  {
    std::lock_guard lock(sinks().mutex);
    sink = sinks().host ? sinks().host : sinks().platform;
  }
  // Called outside the lock: a sink may log, or replace itself.
  const LogRecord record{level, topic, message, view};
  if (sink) return (*sink)(record);
  if (level < shownFrom()) return;
  std::cerr << "websdk-" << levelName(level) << ": " << logLine(record) << std::endl;
}

std::string logLine(const LogRecord& record) {
  if (record.view.empty()) return std::string(record.message);
  std::string out;
  out.reserve(record.view.size() + record.message.size() + 3);
  out.append("[").append(record.view).append("] ").append(record.message);
  return out;
}

}  // namespace websdk
