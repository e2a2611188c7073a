#pragma once
/// @file
/// The traffic recorder: one JSON line per event a view's bridge sees, so a
/// failing session can be read, or replayed (websdk-inspect --replay), away
/// from the app. Masked by default; bounded by a size cap with one rotation;
/// readable by its owner alone.

#include "websdk/Export.hpp"
#include "websdk/bridge/WebSDKJSCommunicationProtocol.hpp"
#include "websdk/json/JSON.hpp"
#include "websdk/webview/WebSDKConfig.hpp"
#include "websdk/webview/WebSDKResponseModel.hpp"

#include <array>
#include <cstdio>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace websdk {

/// What became of one request the page posted.
struct WEBSDK_EXPORT WebSDKRecordedRequest {
  std::string page;         ///< The URL the request was judged by.
  std::string requestId;    ///< The page's id for it.
  std::string action;       ///< The action string the page sent.
  std::string_view family;  ///< The family's name; "" when no family knows the action.
  /// "delivered" (to the family's plugin), "refused" (answered with a
  /// failure: `status`, `message`), or "dropped" (the plugin was released).
  std::string_view outcome = "refused";
  std::optional<std::int64_t> status;  ///< A refusal's status code.
  std::optional<std::string> message;  ///< A refusal's message.
  std::optional<JSON> payload;         ///< As the page sent it; none for a message refused unread.
  /// When delivered: the description of the typed payload the plugin gets
  /// from the payload as recorded (masked), which is what a replay gets too.
  std::optional<JSON> received;
};

/// Writes a view's traffic to its recording as JSON lines, masked; each line
/// is flushed as it is written.
class WEBSDK_EXPORT WebSDKTrafficRecorder {
 public:
  /// Opens the recording for `view`'s traffic and writes its first line (the
  /// whitelist the view judges by); nothing, logged, when the file cannot be
  /// opened.
  static std::unique_ptr<WebSDKTrafficRecorder> open(const WebSDKTrafficRecording& recording, const WebSDKConfig& view);
  ~WebSDKTrafficRecorder();

  /// Values that must never reach the file (the app's header values); masked
  /// wherever they stand in a line (ids, actions, keys, values, URLs,
  /// scripts), inside longer text too, written plainly, percent-encoded or
  /// escaped, and as a JSON number, boolean or null whose text they are. Each
  /// space-separated part longer than 8 bytes (a `Bearer` value's token) is
  /// masked on its own as well.
  void addSecrets(const std::map<std::string, std::string>& fields);

  /// Keys (JSON keys or member names) whose values are masked from now on,
  /// in every object, ignoring case and `_`/`-`: a host's family's
  /// sensitive fields, registered after the recording opened.
  void addSensitiveKeys(const std::set<std::string, std::less<>>& keys);

  /// A request the page posted, and what became of it.
  void request(const WebSDKRecordedRequest& request);
  /// An answer evaluated in `page` (outcome "sent"), or one that was not
  /// (`dropped` says why).
  void answer(const WebSDKResponseModel& response, std::string_view page,
              std::optional<WebSDKDropReason> dropped = std::nullopt);
  /// A pushed page-function call, evaluated or not.
  void push(std::string_view script, std::string_view page, std::optional<WebSDKDropReason> dropped = std::nullopt);

  /// `value` as the recording writes it: sensitive keys' values and the
  /// secrets replaced by the mask (unless masking is off).
  JSON masked(JSON value) const;
  /// `text` with the secrets replaced by the mask (unless masking is off).
  std::string masked(std::string text) const;

  /// The JSON keys and member names of every field the request models mark
  /// sensitive, with the common names of card and credential data, each
  /// folded (see isSensitiveKey).
  static const std::set<std::string, std::less<>>& sensitiveKeys();
  /// Whether `key`, with case and `_`/`-` separators ignored, is one of
  /// sensitiveKeys(): "card_number", "CardNumber" and "cardNumber" alike.
  static bool isSensitiveKey(std::string_view key);
  /// What a masked value is written as.
  static constexpr std::string_view kMask = "***";

 private:
  explicit WebSDKTrafficRecorder(const WebSDKTrafficRecording& recording);
  // These run with mutex_ held.
  void mask(JSON& value, bool sensitive) const;
  bool mask(std::string_view text, std::string& out) const;  // out: the masked text, when it holds a secret
  bool mask(std::string& text) const;
  std::string maskedText(std::string_view text) const;
  bool isSecretScalar(const JSON& value) const;
  bool isSensitive(std::string_view key) const;
  void write(JSONObject line);  // with mutex_ held

  WebSDKTrafficRecording recording_;
  std::set<std::string, std::less<>> appKeys_;  // the recording's own sensitive keys, folded
  mutable std::mutex mutex_;                    // answers are recorded on the UI thread, but secrets may come from any
  std::FILE* file_ = nullptr;
  std::size_t bytes_ = 0;
  bool rotates_ = false;
  std::vector<std::string> secrets_;        // longest first, so a whole value is masked before its parts
  std::vector<std::string> scalarSecrets_;  // those a JSON number, boolean or null can be written as
  std::array<bool, 256> secretStarts_{};    // the bytes a secret's written form can begin with
};

}  // namespace websdk
