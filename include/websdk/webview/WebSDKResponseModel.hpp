#pragma once
/// @file
/// The envelope every answer travels in, and the codes it carries.

#include "websdk/Export.hpp"
#include "websdk/json/Enum.hpp"
#include "websdk/json/Quoted.hpp"  // isValidUTF8
#include "websdk/json/Record.hpp"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace websdk {

/// Whether an answer is a success ("SUCCESS") or a failure ("FAILED").
enum class WebSDKResponseType { success, failure };
constexpr auto rawValues(WebSDKResponseType) {
  using enum WebSDKResponseType;
  return rawValueTable<WebSDKResponseType>({{success, "SUCCESS"}, {failure, "FAILED"}});
}

/// Status codes, in their declaration order (which does not follow the numbers).
enum class WebSDKStatusCode : std::int64_t {
  success = 0,
  unknown = 1,
  juspaySDKPaymentFailure = 1002,
  juspaySDKInitFailure = 1001,
  notHandled = 1003,
  notFound = 1004,
  notWhitelistedUrl = 1005,
};
/// The number a status code is sent as.
constexpr std::int64_t rawValue(WebSDKStatusCode code) { return static_cast<std::int64_t>(code); }
/// The code whose raw value is `raw` (0, 1, 1001-1005), or nothing.
constexpr std::optional<WebSDKStatusCode> statusCodeFromRawValue(std::int64_t raw) {
  if (raw == 0 || raw == 1 || (raw >= 1001 && raw <= 1005)) return static_cast<WebSDKStatusCode>(raw);
  return std::nullopt;
}

/// The answer to one request, as the page's `nativeResponse` receives it.
struct WEBSDK_EXPORT WebSDKResponseModel {
  std::string type;                          ///< "SUCCESS" or "FAILED".
  std::int64_t statusCode = 0;               ///< A WebSDKStatusCode's number, or the host's own.
  std::optional<std::string> statusMessage;  ///< Left out when there is none.
  std::string requestId;                     ///< The id of the request it answers.
  std::optional<std::string> payload;        ///< Already serialised; the page parses it again.

  WEBSDK_RECORD(WebSDKResponseModel, type, statusCode, statusMessage, requestId, payload)
};

/// The envelope of an answer as every send operation makes it: the code
/// defaults to 0 for a success and 1 for a failure; a given code always wins.
WEBSDK_EXPORT WebSDKResponseModel makeResponse(WebSDKResponseType type, std::string requestId,
                                               std::optional<std::string> payload,
                                               std::optional<std::int64_t> statusCode = std::nullopt,
                                               std::optional<std::string> statusMessage = std::nullopt);

/// A payload value rendered as the answer carries it (indented JSON text);
/// nothing when it cannot be (NaN, an infinity, a string that is not UTF-8):
/// the answer then goes without its payload.
WEBSDK_EXPORT std::optional<std::string> renderPayload(const JSON& value);

/// The envelope as compact JSON text: the fields in declaration order, absent
/// optionals left out, strings escaped so that the text is also a valid
/// JavaScript object literal (U+2028 and U+2029 included). Nothing when a
/// field is not UTF-8: no page could read it.
WEBSDK_EXPORT std::optional<std::string> encodeEnvelope(const WebSDKResponseModel& response);

/// The envelope as a JavaScript object literal for a script, not JSON: as
/// encodeEnvelope(), its text values between single quotes. A JSON payload's
/// double quotes then go unescaped, and a page parses a large answer's
/// script faster. Nothing when a field is not UTF-8.
WEBSDK_EXPORT std::optional<std::string> encodeEnvelopeForScript(const WebSDKResponseModel& response);

/// "nativeResponse(" + envelope + ")", built in one allocation; nothing when
/// the envelope is nothing.
WEBSDK_EXPORT std::optional<std::string> nativeResponseScript(const WebSDKResponseModel& response);

}  // namespace websdk
