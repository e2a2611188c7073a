#pragma once
/// @file
/// The traffic recorder: one JSON line per event a view's bridge sees, so a
/// failing session can be read, or replayed (websdk-inspect --replay), away
/// from the app. Masked by default; bounded by a size cap with one rotation;
/// readable by its owner alone; written off the UI thread.

#include "websdk/Export.hpp"
#include "websdk/bridge/ReceivedPayload.hpp"
#include "websdk/bridge/WebSDKJSCommunicationProtocol.hpp"
#include "websdk/json/JSON.hpp"
#include "websdk/webview/WebEngine.hpp"
#include "websdk/webview/WebSDKConfig.hpp"
#include "websdk/webview/WebSDKResponseModel.hpp"

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>

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
  /// When delivered and `received` is not given: what the plugin received,
  /// described as the line is written. When masking changes the payload, the
  /// description is of what the masked payload decodes to, as `received` says.
  std::shared_ptr<const WebSDKReceivedPayload> receivedPayload;
  /// The size of the request's text, which its line weighs on the writer's
  /// queue besides the strings above.
  std::size_t textBytes = 0;
};

/// Writes a view's traffic to its recording as JSON lines, masked. The
/// calls only hand a line's parts over: a thread of the recorder's own masks,
/// encodes and writes them, in the order handed over. When it falls behind by
/// more than kQueuedLines lines (or kQueuedBytes), later lines are dropped,
/// never waited for, and a "dropped" line says how many, where they were.
class WEBSDK_EXPORT WebSDKTrafficRecorder final : public BackgroundWork {
 public:
  /// Opens the recording for `view`'s traffic and writes its first line (the
  /// whitelist the view judges by); nothing, logged, when the file cannot be
  /// opened.
  static std::unique_ptr<WebSDKTrafficRecorder> open(const WebSDKTrafficRecording& recording, const WebSDKConfig& view);
  /// Writes every line handed over, then closes the file.
  ~WebSDKTrafficRecorder();

  /// Values that must never reach the file (the app's header values); masked
  /// wherever they stand in a line (ids, actions, keys, values, URLs,
  /// scripts), inside longer text too, written plainly, percent-encoded or
  /// escaped, and as a JSON number, boolean or null whose text they are. Each
  /// space-separated part longer than 8 bytes (a `Bearer` value's token) is
  /// masked on its own as well. Masked in every line handed over after this.
  void addSecrets(const std::map<std::string, std::string>& fields);

  /// Keys (JSON keys or member names) whose values are masked from now on,
  /// in every object, ignoring case and `_`/`-`: a host's family's
  /// sensitive fields, registered after the recording opened.
  void addSensitiveKeys(const std::set<std::string, std::less<>>& keys);

  /// A request the page posted, and what became of it.
  void request(WebSDKRecordedRequest request);
  /// An answer evaluated in `page` (outcome "sent"), or one that was not
  /// (`dropped` says why).
  void answer(const WebSDKResponseModel& response, std::string_view page,
              std::optional<WebSDKDropReason> dropped = std::nullopt);
  /// A pushed page-function call, evaluated or not.
  void push(std::string_view script, std::string_view page, std::optional<WebSDKDropReason> dropped = std::nullopt);
  /// A host's event pushed as `call` + `data` + ")", evaluated or not: written
  /// as a push, its data masked key by key as a request's payload is.
  void event(std::string_view call, JSON data, std::string_view page,
             std::optional<WebSDKDropReason> dropped = std::nullopt);

  /// Returns once every line handed over before the call is in the file
  /// (with the count of any dropped since the last line written).
  void flush();
  /// The same, for a queue that waits for the view's work.
  void settle() override { flush(); }
  /// How many lines were dropped since the recording opened.
  std::uint64_t droppedLines() const;

  /// `value` as the recording writes it: sensitive keys' values and the
  /// secrets replaced by the mask (unless masking is off). Waits for the
  /// writer to take in the secrets added so far.
  JSON masked(JSON value) const;
  /// `text` with the secrets replaced by the mask (unless masking is off).
  /// Waits as the other does.
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
  /// How many lines may wait for the writer before later ones are dropped.
  static constexpr std::size_t kQueuedLines = 4096;
  /// How many bytes of text may wait for it (a line of more is taken only
  /// when none waits).
  static constexpr std::size_t kQueuedBytes = std::size_t{64} << 20;

 private:
  struct State;
  explicit WebSDKTrafficRecorder(const WebSDKTrafficRecording& recording);
  std::unique_ptr<State> state_;
};

}  // namespace websdk
