#pragma once
/// @file
/// A typed payload a plugin received, as the traffic recorder keeps it.

#include "websdk/Export.hpp"
#include "websdk/json/JSON.hpp"

#include <optional>

namespace websdk {

/// A typed payload a plugin received, kept so that its description is made
/// when its line is written, off the UI thread.
class WEBSDK_EXPORT WebSDKReceivedPayload {
 public:
  virtual ~WebSDKReceivedPayload() = default;
  /// The description of the typed payload the plugin received.
  virtual JSON describe() const = 0;
  /// The description of the typed payload `payload` decodes to for the same
  /// action; nothing when it does not decode.
  virtual std::optional<JSON> describeDecoded(const std::optional<JSONObject>& payload) const = 0;
};

}  // namespace websdk
