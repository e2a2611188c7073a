#include "websdk/Log.hpp"

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
  }
  return "WARNING";
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

void log(LogLevel level, std::string_view topic, std::string_view message) {
  std::shared_ptr<const LogSink> sink;
  {
    std::lock_guard lock(sinks().mutex);
    sink = sinks().host ? sinks().host : sinks().platform;
  }
  // Called outside the lock: a sink may log, or replace itself.
  const LogRecord record{level, topic, message};
  if (sink) return (*sink)(record);
  if (level == LogLevel::debug) return;
  std::cerr << "websdk-" << levelName(level) << ": " << message << std::endl;
}

}  // namespace websdk
