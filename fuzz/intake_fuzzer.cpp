// The intake as a hostile page sees it: any message name, body and page URL
// reach the script handler of a web view with every family registered, then
// the main queue runs. Whatever arrives, every well-formed message is heard
// once and answered once (by the bridge or by the host, which answers every
// request it gets), each answer is a well-formed envelope carrying the
// request's id, and nothing else reaches the page.
//
// Input: one flags byte, the page URL, a NUL byte, the message text. Without
// the NUL byte there is no page URL and the rest is the text.

#include "websdk/testing/EveryFamilyHost.hpp"
#include "websdk/testing/TestingEngine.hpp"
#include "websdk/webview/WebViewInternals.hpp"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <optional>
#include <string>
#include <string_view>

namespace {

using namespace websdk;

enum Flag : std::uint8_t {
  otherName = 1 << 0,
  bodyShape = 3 << 1,  // 0: {"message": text}, 1: text parsed as the body,
                       // 2: {"message": text parsed}, 3: text as a bare string body
  whitelistAll = 1 << 3,
  detached = 1 << 4,      // resetWebView() before the message
  unsubscribed = 1 << 5,  // no host object registered
  readyEncoded = 1 << 6,  // the host answers through the ready-encoded overload
  extraMembers = 1 << 7,  // {"message": text, ...other members}
};

[[noreturn]] void fail(const char* what, std::string_view detail = {}) {
  std::cerr << "intake invariant broken: " << what << "\n" << detail << std::endl;
  std::abort();
}

struct Listener final : WebSDKJSCommunicationProtocol {
  int requests = 0;
  int responses = 0;
  void didSendResponse(const WebSDKResponseModel&) override { ++responses; }
  void didReceiveRequest(std::string_view) override { ++requests; }
};

// The family whose action table holds `action`, if any.
std::optional<std::string_view> familyOf(std::string_view action) {
  std::optional<std::string_view> found;
  forEachFamily([&]<class F>(F) {
    if (fromRawValue<typename F::Action>(action)) found = F::name;
  });
  return found;
}

// An evaluated script must be exactly one envelope handed to nativeResponse.
JSONObject envelopeOf(const std::string& script) {
  constexpr std::string_view prefix = "nativeResponse(";
  const std::string_view s = script;
  if (!s.starts_with(prefix) || !s.ends_with(")")) fail("not a nativeResponse call", script);
  JSON parsed = parseJSON(s.substr(prefix.size(), s.size() - prefix.size() - 1));
  auto* object = parsed.if_object();
  if (object == nullptr) fail("envelope does not parse", script);
  const JSON* type = object->if_contains("type");
  const JSON* code = object->if_contains("statusCode");
  const JSON* id = object->if_contains("requestId");
  if (type == nullptr || !type->is_string() || (*type != "SUCCESS" && *type != "FAILED")) fail("bad type", script);
  if (code == nullptr || !code->is_int64()) fail("bad statusCode", script);
  if (id == nullptr || !id->is_string()) fail("bad requestId", script);
  for (const auto& member : *object) {
    const std::string_view key = member.key();
    if (key != "type" && key != "statusCode" && key != "requestId" &&
        !((key == "statusMessage" || key == "payload") && member.value().is_string()))
      fail("unexpected member", script);
  }
  return std::move(*object);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::uint8_t flags = data[0];
  const std::string_view rest(reinterpret_cast<const char*>(data + 1), size - 1);
  std::optional<std::string> url;
  std::string_view text = rest;
  if (const auto nul = rest.find('\0'); nul != std::string_view::npos) {
    url = std::string(rest.substr(0, nul));
    text = rest.substr(nul + 1);
  }

  auto owned = std::make_unique<testing::TestingEngine>();
  testing::TestingEngine& engine = *owned;
  engine.setURL(url);
  auto listener = std::make_shared<Listener>();
  auto view = WebSDKWebView::create(std::move(owned), {"localhost", "example.com"}, nullptr, nullptr, nullptr, listener,
                                    nullptr, (flags & whitelistAll) != 0);

  // The host answers every request it gets, on the main queue's path or at once.
  int delivered = 0;
  std::string deliveredFamily;
  auto host = std::make_shared<testing::EveryFamilyHost>([&](const testing::EveryFamilyHost::Delivery& d) {
    ++delivered;
    deliveredFamily = d.family;
    JSONObject answer{{"family", d.family}, {"payload", d.payload}};
    if (flags & readyEncoded)
      view->sendWebSDKResponse(WebSDKResponseType::success, d.requestId, serialize(answer));
    else
      view->sendWebSDKResponse(answer, WebSDKResponseType::success, d.requestId);
  });
  if (!(flags & unsubscribed)) testing::registerForEveryFamily(*view, host);
  if (flags & detached) view->resetWebView();

  const std::string name = (flags & otherName) ? "nativeRequest " : "nativeRequest";
  JSON body;
  switch ((flags & bodyShape) >> 1) {
    case 0: body = JSONObject{{"message", text}}; break;
    case 1: body = parseJSON(text); break;
    case 2: body = JSONObject{{"message", parseJSON(text)}}; break;
    default: body = JSON(text); break;
  }
  if (flags & extraMembers)
    if (auto* o = body.if_object()) o->emplace("type", "GET_LOCAL_CART"), o->emplace("requestId", 1);

  // What the handler must make of it.
  const JSON* message = body.is_object() ? body.get_object().if_contains("message") : nullptr;
  const bool wellFormed = !(flags & otherName) && message != nullptr && message->is_string();

  WebViewInternals::handler(*view)->userContentController(ScriptMessage{name, body, engine.topOrigin()});
  engine.queue().drain();

  const auto evaluations = engine.evaluations();
  if (listener->requests != (wellFormed ? 1 : 0)) fail("listener not told exactly once per well-formed message");
  if (!wellFormed || (flags & detached)) {
    if (!evaluations.empty() || delivered != 0) fail("answered a message that must get nothing");
    return 0;
  }
  if (delivered > 1) fail("host called more than once");

  const std::string requestText(message->get_string());
  const JSON request = parseJSON(requestText);
  const Fields fields = Fields::of(&request);

  // A refusal names the page URL; a URL that is not UTF-8 cannot be sent, so
  // that one answer is dropped whole rather than sent broken. Without a page
  // there is no document to answer in.
  const bool answerable = url && (isValidUTF8(*url) || view->webSDKConfig.isWhitelistedURL(*url));
  if (evaluations.size() > 1 || (answerable && evaluations.size() != 1)) fail("not exactly one answer", requestText);
  if (evaluations.empty()) return 0;

  const JSONObject envelope = envelopeOf(evaluations[0].script);
  // A refused page's text is never parsed: its id is what its start gives.
  const bool refused = envelope.at("statusCode") == JSON(rawValue(WebSDKStatusCode::notWhitelistedUrl));
  const std::string id = refused ? requestIdNearTheStart(requestText) : fields.lenientString("requestId");
  if (envelope.at("requestId") != JSON(id)) fail("answer lost its request id", requestText);
  if (request.is_object() && requestText.size() < kRefusedMessageStart &&
      requestIdNearTheStart(requestText) != fields.lenientString("requestId"))
    fail("the bounded scan and the parse disagree on the request id", requestText);
  if (delivered == 1) {
    if (envelope.at("type") != "SUCCESS") fail("host answer changed", requestText);
    if (familyOf(fields.lenientString("type")) != deliveredFamily) fail("delivered to the wrong family", requestText);
    if (!(flags & readyEncoded) && listener->responses != 1) fail("listener not told of the answer");
  } else {
    if (envelope.at("type") != "FAILED") fail("bridge answered without failing", requestText);
    if (listener->responses != 1) fail("listener not told of the failure");
  }
  return 0;
}
