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

/// How much a message matters. Every engine shows warnings and errors by
/// default and info or debug only when asked (GLib: G_MESSAGES_DEBUG=websdk;
/// Qt: QT_LOGGING_RULES="websdk.info=true"; with no engine:
/// WEBSDK_LOG=info or WEBSDK_LOG=debug).
enum class LogLevel {
  debug,    ///< What the WebSDK does, step by step.
  info,     ///< What a host may like to know, but need not act on.
  warning,  ///< Something the host should fix, or a page's refused attempt.
  error,    ///< A misuse the WebSDK cannot carry on from.
};

/// One message. `topic` is a stable word a host may filter on: "navigation",
/// "load", "headers", "answer", "trust", "engine", "plugin", "push".
struct WEBSDK_EXPORT LogRecord {
  LogLevel level;            ///< How much it matters.
  std::string_view topic;    ///< What it is about.
  std::string_view message;  ///< The text (valid for the call only).
  /// The web view it is about ("view 3", or the name the host gave it in
  /// `WebSDKConfig::name`); empty when it is about no one view.
  std::string_view view = {};
};

/// Takes every message the WebSDK tells.
using LogSink = std::function<void(const LogRecord&)>;

/// Sends every later message of this process to `sink` (called on the thread
/// that logs, any thread); an empty sink restores the default. Returns the
/// sink it replaces.
WEBSDK_EXPORT LogSink setLogSink(LogSink sink);

/// Tells `message` through the sink in place.
WEBSDK_EXPORT void log(LogLevel level, std::string_view topic, std::string_view message);
/// The same, about the web view named `view`.
WEBSDK_EXPORT void log(LogLevel level, std::string_view topic, std::string_view view, std::string_view message);

/// "[view] message", or the message alone when it names no view: how the
/// engines' logs print a record.
WEBSDK_EXPORT std::string logLine(const LogRecord& record);

namespace detail {
/// Where messages go when the host has set no sink: an engine sets its
/// platform's log here (standard error until one does).
WEBSDK_EXPORT void setPlatformLogSink(LogSink sink);
}  // namespace detail

}  // namespace websdk
