// The envelope every answer travels in: its fields written as one JSON object
// into storage sized once (the string literals by json/Quoted.hpp).

#include "websdk/json/Quoted.hpp"
#include "websdk/webview/ScriptBuffers.hpp"
#include "websdk/webview/WebSDKResponseModel.hpp"
#include "websdk/webview/WebSDKResponseProtocol.hpp"

#include <charconv>
#include <cstring>
#include <optional>

namespace websdk {
namespace {

char* writeLiteral(char* out, std::string_view s) {
  // An empty view may have no data at all, and memcpy must not be given a null pointer.
  if (!s.empty()) std::memcpy(out, s.data(), s.size());
  return out + s.size();
}

std::optional<std::string> encode(const WebSDKResponseModel& r, std::string_view prefix, std::string_view suffix,
                                  Quote quote = Quote::json) {
  char code[24];
  const auto codeEnd = std::to_chars(code, code + sizeof code, r.statusCode).ptr;
  const std::string_view codeText(code, static_cast<std::size_t>(codeEnd - code));

  std::size_t size = prefix.size() + suffix.size() + codeText.size() + 1;
  bool utf8 = true;
  const auto quoted = [&](std::string_view key, std::string_view value) {
    const std::size_t q = quotedSize(value, quote);
    utf8 = utf8 && q != kNotUTF8;
    size += key.size() + q;
  };
  quoted(R"({"type":)", r.type);
  size += sizeof(R"(,"statusCode":)") - 1;
  if (r.statusMessage) quoted(R"(,"statusMessage":)", *r.statusMessage);
  quoted(R"(,"requestId":)", r.requestId);
  if (r.payload) quoted(R"(,"payload":)", *r.payload);
  if (!utf8) return std::nullopt;

  std::string out = scriptBuffers::take(size);
  out.resize(size);
  char* p = out.data();
  p = writeLiteral(p, prefix);
  p = writeLiteral(p, R"({"type":)");
  p = writeQuoted(p, r.type, quote);
  p = writeLiteral(p, R"(,"statusCode":)");
  p = writeLiteral(p, codeText);
  if (r.statusMessage) {
    p = writeLiteral(p, R"(,"statusMessage":)");
    p = writeQuoted(p, *r.statusMessage, quote);
  }
  p = writeLiteral(p, R"(,"requestId":)");
  p = writeQuoted(p, r.requestId, quote);
  if (r.payload) {
    p = writeLiteral(p, R"(,"payload":)");
    p = writeQuoted(p, *r.payload, quote);
  }
  *p++ = '}';
  writeLiteral(p, suffix);
  return out;
}

}  // namespace

std::optional<std::string> encodeEnvelope(const WebSDKResponseModel& response) { return encode(response, {}, {}); }

std::optional<std::string> encodeEnvelopeForScript(const WebSDKResponseModel& response) {
  return encode(response, {}, {}, Quote::script);
}

WebSDKResponseProtocol::WebSDKResponseProtocol(const std::map<std::string, std::string>& dictionary) {
  JSONObject o;
  for (const auto& [k, v] : dictionary) o.emplace(k, v);
  value_ = std::move(o);
}

WebSDKResponseModel makeResponse(WebSDKResponseType type, std::string requestId, std::optional<std::string> payload,
                                 std::optional<std::int64_t> statusCode, std::optional<std::string> statusMessage) {
  const std::int64_t code = statusCode.value_or(
      rawValue(type == WebSDKResponseType::success ? WebSDKStatusCode::success : WebSDKStatusCode::unknown));
  return WebSDKResponseModel{std::string(rawValue(type)), code, std::move(statusMessage), std::move(requestId),
                             std::move(payload)};
}

std::optional<std::string> renderPayload(const JSON& value) {
  auto text = serializePrettyIfRepresentable(value);
  if (!text || !isValidUTF8(*text)) return std::nullopt;
  return text;
}

std::optional<std::string> nativeResponseScript(const WebSDKResponseModel& response) {
  return encode(response, "nativeResponse(", ")");
}

}  // namespace websdk
