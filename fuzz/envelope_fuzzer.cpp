// The envelope writer and the send operations, with any request id, message,
// status code and payload bytes. Text that is UTF-8 always makes an envelope
// that parses back (Boost.JSON) to the same fields and carries no raw control
// character, U+2028 or U+2029; bytes that are not UTF-8 never reach the page:
// the answer is dropped whole, or, where the payload is rendered or arrives
// ready-encoded, goes out without its payload.
//
// Input: one flags byte, eight bytes of status code (little-endian), then the
// request id, the message and the payload separated by 0xFF (a byte UTF-8
// never uses).

#include "websdk/testing/TestingEngine.hpp"
#include "websdk/webview/WebSDKWebView.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace websdk;

enum Flag : std::uint8_t {
  failureType = 1 << 0,
  hasMessage = 1 << 1,
  hasPayload = 1 << 2,
  hasCode = 1 << 3,
  operation = 3 << 4,  // 0: string payload or success/failure, 1: dictionary, 2: ready-encoded, 3: string map
};

[[noreturn]] void fail(const char* what, std::string_view detail = {}) {
  std::cerr << "envelope invariant broken: " << what << "\n" << detail << std::endl;
  std::abort();
}

bool isUTF8(const std::optional<std::string>& s) { return !s || isValidUTF8(*s); }
bool isUTF8(const WebSDKResponseModel& m) {
  return isValidUTF8(m.type) && isUTF8(m.statusMessage) && isValidUTF8(m.requestId) && isUTF8(m.payload);
}

void expectMember(const JSONObject& o, std::string_view key, const std::optional<std::string>& value,
                  const std::string& text) {
  const JSON* v = o.if_contains(key);
  if (!value) {
    if (v != nullptr) fail("absent field written", text);
    return;
  }
  if (v == nullptr || !v->is_string() || v->get_string() != *value) fail("string field changed", text);
}

// The writer alone: a UTF-8 model round-trips; any other gives nothing.
void checkWriter(const WebSDKResponseModel& m) {
  const auto envelope = encodeEnvelope(m);
  const auto script = nativeResponseScript(m);
  if (envelope.has_value() != isUTF8(m)) fail("envelope refused or written against the UTF-8 check", "");
  if (!envelope) {
    if (script) fail("script written for a refused envelope", *script);
    return;
  }
  const std::string& text = *envelope;
  if (script != "nativeResponse(" + text + ")") fail("script differs from envelope", text);
  const JSON back = parseJSON(text);
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto c = static_cast<unsigned char>(text[i]);
    if (c < 0x20) fail("raw control character", text);
    if (c == 0xE2 && i + 2 < text.size() && static_cast<unsigned char>(text[i + 1]) == 0x80 &&
        (static_cast<unsigned char>(text[i + 2]) == 0xA8 || static_cast<unsigned char>(text[i + 2]) == 0xA9))
      fail("raw line or paragraph separator", text);
  }
  const JSONObject* o = back.if_object();
  if (o == nullptr) fail("envelope does not parse", text);
  if (o->size() != 3u + (m.statusMessage ? 1 : 0) + (m.payload ? 1 : 0)) fail("unexpected members", text);
  expectMember(*o, "type", m.type, text);
  expectMember(*o, "statusMessage", m.statusMessage, text);
  expectMember(*o, "requestId", m.requestId, text);
  expectMember(*o, "payload", m.payload, text);
  const JSON* code = o->if_contains("statusCode");
  if (code == nullptr || !code->is_int64() || code->get_int64() != m.statusCode) fail("status code changed", text);
}

struct Listener final : WebSDKJSCommunicationProtocol {
  std::vector<WebSDKResponseModel> responses;
  void didSendResponse(const WebSDKResponseModel& r) override { responses.push_back(r); }
  void didReceiveRequest(std::string_view) override {}
};

// A rendered payload is sent only when the rendering is UTF-8 and reads back
// as the value rendered.
std::optional<std::string> rendered(const JSON& value) {
  std::string text = serializePretty(value);
  if (!isValidUTF8(text)) return std::nullopt;
  if (parseJSON(text) != value) fail("rendered payload does not read back", text);
  return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::array<std::uint8_t, 9> head{};
  if (size > 0) std::memcpy(head.data(), data, std::min(size, head.size()));
  const std::uint8_t flags = head[0];
  std::int64_t rawCode = 0;
  for (int i = 8; i >= 1; --i) rawCode = static_cast<std::int64_t>(static_cast<std::uint64_t>(rawCode) << 8 | head[i]);

  std::string_view rest;
  if (size > head.size())
    rest = std::string_view(reinterpret_cast<const char*>(data) + head.size(), size - head.size());
  std::array<std::string, 3> parts;  // request id, message, payload
  for (std::size_t i = 0; i < parts.size(); ++i) {
    const auto cut = i + 1 < parts.size() ? rest.find('\xFF') : std::string_view::npos;
    parts[i] = std::string(rest.substr(0, cut));
    rest = cut == std::string_view::npos ? std::string_view{} : rest.substr(cut + 1);
  }
  const std::string& requestId = parts[0];
  const std::optional<std::string> message = (flags & hasMessage) ? std::optional(parts[1]) : std::nullopt;
  const std::optional<std::string> payload = (flags & hasPayload) ? std::optional(parts[2]) : std::nullopt;
  const auto type = (flags & failureType) ? WebSDKResponseType::failure : WebSDKResponseType::success;
  const std::optional<std::int64_t> code = (flags & hasCode) ? std::optional(rawCode) : std::nullopt;
  const std::int64_t defaultCode = type == WebSDKResponseType::success ? 0 : 1;

  checkWriter({std::string(rawValue(type)), rawCode, message, requestId, payload});

  // The same fields through the web view's send operations.
  auto owned = std::make_unique<testing::TestingEngine>();
  testing::TestingEngine& engine = *owned;
  engine.setURL("https://localhost/");  // a trusted page: answers nobody asked for reach only one
  auto listener = std::make_shared<Listener>();
  auto view = WebSDKWebView::create(std::move(owned), {"localhost"}, nullptr, nullptr, nullptr, listener);

  WebSDKResponseModel expected{std::string(rawValue(type)), code.value_or(defaultCode), message, requestId, payload};
  bool notifies = true;
  const JSONObject dictionary{{"text", payload.value_or("")}};
  switch ((flags & operation) >> 4) {
    case 0:
      if (payload)
        view->sendWebSDKResponse(*payload, type, requestId, code, message);
      else if (type == WebSDKResponseType::success)
        view->sendSuccess(requestId, code, message);
      else
        view->sendFailure(requestId, code, message);
      break;
    case 1:
      view->sendWebSDKResponse(dictionary, type, requestId, code, message);
      expected.payload = rendered(dictionary);
      break;
    case 2:
      view->sendWebSDKResponse(type, requestId, payload);
      expected = {std::string(rawValue(type)), defaultCode, std::nullopt, requestId,
                  isUTF8(payload) ? payload : std::nullopt};
      notifies = false;
      break;
    default:
      view->sendWebSDKResponse(
          WebSDKResponseProtocol(std::map<std::string, std::string>{{"text", payload.value_or("")}}), type, requestId,
          code, message);
      expected.payload = rendered(dictionary);
      break;
  }
  engine.queue().drain();

  const auto evaluations = engine.evaluations();
  if (!isUTF8(expected)) {
    if (!evaluations.empty() || !listener->responses.empty()) fail("bytes that are not UTF-8 reached the page");
    return 0;
  }
  if (evaluations.size() != 1) fail("not exactly one evaluation");
  if (evaluations[0].script != nativeResponseScript(expected))
    fail("evaluated another envelope", evaluations[0].script);
  if (listener->responses.size() != (notifies ? 1u : 0u)) fail("listener not told as the operation says");
  if (notifies && !(listener->responses[0] == expected)) fail("listener told of another envelope");
  return 0;
}
