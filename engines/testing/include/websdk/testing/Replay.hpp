#pragma once
/// @file
/// Replays a traffic recording (WebSDKConfig::recording) through the bridge
/// over the in-memory engine: each recorded request is posted again from its
/// page, and what becomes of it now (its family, outcome, status and what the
/// plugin receives) is held against what was recorded.

#include "websdk/Export.hpp"
#include "websdk/webview/WebSDKWebView.hpp"

#include <cstddef>
#include <functional>
#include <istream>
#include <ostream>
#include <vector>

namespace websdk::testing {

/// What a replay found.
struct ReplayResult {
  std::size_t requests = 0;    ///< Requests replayed.
  std::size_t differ = 0;      ///< Requests whose fate now is not the recorded one.
  std::size_t unreadable = 0;  ///< Lines that are no recording's.
};

/// Registers plugins on the replay's view. By default every family gets a
/// plugin that records what it receives and answers nothing; a host passes
/// its own plugins to see what they receive now.
using ReplayPlugins = std::function<void(WebSDKWebView& view)>;

/// Replays `recording` (JSON lines), writing one line per request to
/// `report`: "same" or "differs", with the recorded and the present fate.
WEBSDK_EXPORT ReplayResult replayRecording(std::istream& recording, std::ostream& report,
                                           const ReplayPlugins& plugins = nullptr);

/// The same for a host's recording: every family of the library's and each
/// of `hostFamilies` (familyType<F>() of the host's own) gets a plugin that
/// answers nothing, held for the length of the replay.
WEBSDK_EXPORT ReplayResult replayRecording(std::istream& recording, std::ostream& report,
                                           const std::vector<const FamilyType*>& hostFamilies);

}  // namespace websdk::testing
