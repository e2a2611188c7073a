#pragma once
/// @file
/// The WebSDK's one logging path. Every misuse and every refusal the host
/// should hear of is told here once, in words that say what happened and what
/// to do. With the WebKitGTK engine the messages go to GLib's structured log
/// under the "websdk" domain; a host may take them instead with setLogSink.

#include "websdk/Export.hpp"

#include <functional>
#include <string>
#include <string_view>

namespace websdk {

/// How much a message matters.
enum class LogLevel { debug, info, warning };

/// One message. `topic` is a stable word a host may filter on: "navigation",
/// "load", "headers", "answer", "trust", "engine".
struct WEBSDK_EXPORT LogRecord {
  LogLevel level;            ///< How much it matters.
  std::string_view topic;    ///< What it is about.
  std::string_view message;  ///< The text (valid for the call only).
};

/// Takes every message the WebSDK tells.
using LogSink = std::function<void(const LogRecord&)>;

/// Sends every later message of this process to `sink` (called on the thread
/// that logs, any thread); an empty sink restores the default. Returns the
/// sink it replaces.
WEBSDK_EXPORT LogSink setLogSink(LogSink sink);

/// Tells `message` through the sink in place.
WEBSDK_EXPORT void log(LogLevel level, std::string_view topic, std::string_view message);

namespace detail {
/// Where messages go when the host has set no sink: an engine sets its
/// platform's log here (standard error until one does).
WEBSDK_EXPORT void setPlatformLogSink(LogSink sink);
}  // namespace detail

}  // namespace websdk
