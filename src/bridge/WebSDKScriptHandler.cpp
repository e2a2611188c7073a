#include "websdk/bridge/WebSDKScriptHandler.hpp"

#include "../LogText.hpp"
#include "ReplyOffer.hpp"
#include "websdk/Log.hpp"
#include "websdk/bridge/Families.hpp"
#include "websdk/webview/WebSDKTrafficRecorder.hpp"

#include <boost/json/basic_parser_impl.hpp>

#include <array>
#include <cstdint>
#include <unordered_map>

namespace websdk {
namespace {

// Reads the request id and action of a message's text as far as the start
// goes: events of a streaming parse, stopped at the budget, nothing kept but
// the last top-level "requestId" and "type" (as the full parse keeps the last
// of duplicate keys).
class RequestIdScan {
 public:
  static constexpr std::size_t max_object_size = std::size_t(-1);
  static constexpr std::size_t max_array_size = std::size_t(-1);
  static constexpr std::size_t max_key_size = std::size_t(-1);
  static constexpr std::size_t max_string_size = std::size_t(-1);

  std::optional<std::string> found, type;

  bool on_document_begin(boost::json::error_code&) { return true; }
  bool on_document_end(boost::json::error_code&) { return true; }
  bool on_object_begin(boost::json::error_code&) { return open(); }
  bool on_object_end(std::size_t, boost::json::error_code&) { return close(); }
  bool on_array_begin(boost::json::error_code&) { return open(); }
  bool on_array_end(std::size_t, boost::json::error_code&) { return close(); }
  bool on_key_part(std::string_view s, std::size_t, boost::json::error_code&) {
    if (depth_ == 1) key_ += s;
    return true;
  }
  bool on_key(std::string_view s, std::size_t, boost::json::error_code&) {
    if (depth_ == 1) {
      key_ += s;
      wanted_ = key_ == "requestId" ? &found : key_ == "type" ? &type : nullptr;
      key_.clear();
    }
    return true;
  }
  bool on_string_part(std::string_view s, std::size_t, boost::json::error_code&) {
    if (wantedHere()) text_ += s;
    return true;
  }
  bool on_string(std::string_view s, std::size_t, boost::json::error_code&) {
    if (wantedHere()) {
      text_ += s;
      take(JSON(std::exchange(text_, {})));
    }
    return true;
  }
  bool on_number_part(std::string_view, boost::json::error_code&) { return true; }
  bool on_int64(std::int64_t i, std::string_view, boost::json::error_code&) { return scalar(JSON(i)); }
  bool on_uint64(std::uint64_t u, std::string_view, boost::json::error_code&) { return scalar(JSON(u)); }
  bool on_double(double d, std::string_view, boost::json::error_code&) { return scalar(JSON(d)); }
  bool on_bool(bool b, boost::json::error_code&) { return scalar(JSON(b)); }
  bool on_null(boost::json::error_code&) { return scalar(JSON(nullptr)); }
  bool on_comment_part(std::string_view, boost::json::error_code&) { return true; }
  bool on_comment(std::string_view, boost::json::error_code&) { return true; }

 private:
  bool wantedHere() const { return wanted_ != nullptr && depth_ == 1; }
  bool open() {
    if (wantedHere()) take(JSON(nullptr));  // an object or array is no id
    ++depth_;
    return true;
  }
  bool close() {
    --depth_;
    return true;
  }
  bool scalar(JSON v) {
    if (wantedHere()) take(std::move(v));
    return true;
  }
  void take(JSON v) {
    *wanted_ = lenientString(&v);
    wanted_ = nullptr;
  }
  std::size_t depth_ = 0;
  std::optional<std::string>* wanted_ = nullptr;
  std::string key_, text_;
};

RequestIdScan scanTheStart(std::string_view text, std::size_t budget);

std::string shown(const std::optional<std::string>& text) { return shownInLog(text ? *text : std::string_view()); }

constexpr std::string_view kHandlerName = "nativeRequest";
constexpr std::string_view kNotAValidRequest = "not a valid request";

struct Route {
  std::uint16_t family;
  std::uint16_t action;
};

// Every action string of the library's families in one table, made once for
// every view. The families' strings are disjoint (checked here once), so the
// family that knows an action is the only one that can accept it, and a
// request of the last family costs what one of the first does.
struct Routes {
  std::unordered_map<std::string_view, Route> byAction;
  std::array<const FamilyType*, kFamilyCount> families{};

  Routes() {
    forEachFamily([&]<class F>(F) {
      families[F::slot] = &familyType<F>();
      for (const auto& entry : enumTable<typename F::Action>)
        byAction.emplace(entry.raw, Route{F::slot, static_cast<std::uint16_t>(entry.value)});
    });
  }
};

const Routes& routes() {
  static const Routes table;
  return table;
}

}  // namespace

// The bridge's side of one request of a known family, for the family's step.
class WebSDKScriptHandler::Intake final : public FamilyIntake {
 public:
  Intake(WebSDKScriptHandler& handler, std::size_t subscription, std::string_view requestId, DocumentID document)
      : handler_(handler), subscription_(subscription), requestId_(requestId), document_(document) {}
  std::string_view requestId() const override { return requestId_; }
  bool records() const override { return handler_.recording() != nullptr; }

  FamilyTrial hand(std::string_view action, detail::FunctionRef<void(void*)> call,
                   detail::FunctionRef<std::shared_ptr<const WebSDKReceivedPayload>()> received) override {
    Subscription& held = handler_.subscriptions_[subscription_];
    if (held.plugin.expired()) {
      if (!held.unsubscribedAsk)
        held.unsubscribedAsk = "request id \"" + shownInLog(requestId_) + "\" (" + std::string(action) + ")";
      return FamilyTrial::notSubscribed;
    }
    // Taken afresh: a host object released by now is not called.
    const std::shared_ptr<void> plugin = held.plugin.lock();
    if (!plugin) return FamilyTrial::dropped;
    const std::string_view family = held.family->name;
    // Noted before the call: a plugin may answer from inside it.
    const std::uint64_t serial = handler_.expectAnswer(requestId_, document_, family, action);
    WebSDKRecordedRequest* recording = handler_.recording();
    if (recording) recording->outcome = "delivered";
    {
      // The request's reply is on offer to the plugin for the length of its call.
      const detail::ReplyOffer offer(handler_.webview, requestId_, document_, serial);
      call(plugin.get());
    }
    if (recording) recording->receivedPayload = received();
    return FamilyTrial::delivered;
  }

 private:
  WebSDKScriptHandler& handler_;
  std::size_t subscription_;
  std::string_view requestId_;
  DocumentID document_;
};

std::optional<std::string> invalidName(std::string_view name) {
  constexpr std::size_t kLongest = 128;
  if (name.empty()) return std::string("it is empty");
  if (name.size() > kLongest)
    return "it is " + std::to_string(name.size()) + " bytes long, over " + std::to_string(kLongest);
  const auto letter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); };
  if (!letter(name.front())) return std::string("it does not begin with a letter");
  for (const char c : name)
    if (!letter(c) && !(c >= '0' && c <= '9') && c != '_' && c != '.' && c != ':' && c != '-')
      return "it holds '" + shownInLog(std::string_view(&c, 1)) + "': only letters, digits and _ . : - are allowed";
  return std::nullopt;
}

WebSDKScriptHandler::WebSDKScriptHandler() {
  const auto& table = routes();
  subscriptions_.reserve(kFamilyCount);
  for (const FamilyType* family : table.families) subscriptions_.push_back({family, {}, std::nullopt});
}

const WebSDKScriptHandler::Subscription* WebSDKScriptHandler::subscription(const FamilyType& family) const {
  if (family.slot < kFamilyCount) return &subscriptions_[family.slot];
  for (std::size_t i = kFamilyCount; i < subscriptions_.size(); ++i)
    if (subscriptions_[i].family == &family) return &subscriptions_[i];
  return nullptr;
}

WebSDKScriptHandler::Subscription* WebSDKScriptHandler::subscription(const FamilyType& family) {
  return const_cast<Subscription*>(std::as_const(*this).subscription(family));
}

std::vector<const FamilyType*> WebSDKScriptHandler::families() const {
  std::vector<const FamilyType*> out;
  out.reserve(subscriptions_.size());
  for (const auto& s : subscriptions_) out.push_back(s.family);
  return out;
}

std::optional<std::string> WebSDKScriptHandler::setPlugin(const FamilyType& family, std::weak_ptr<void> plugin) {
  if (Subscription* held = subscription(family)) {
    held->plugin = std::move(plugin);
    return std::nullopt;
  }
  // A host's family, registered for the first time: every name it brings is
  // checked before any is taken, so a refusal leaves the bridge as it was.
  const std::string named = "the family \"" + shownInLog(family.name) + "\"";
  if (auto why = invalidName(family.name)) return named + " cannot be registered: its name is not valid (" + *why + ")";
  for (const auto& s : subscriptions_)
    if (s.family->name == family.name)
      return named + " cannot be registered: " +
             (s.family->slot < kFamilyCount ? "the library's own family has that name"
                                            : "another family of the host's has that name");
  if (family.actions.empty()) return named + " cannot be registered: it has no actions";
  const auto& builtIn = routes().byAction;
  for (std::size_t i = 0; i < family.actions.size(); ++i) {
    const std::string_view action = family.actions[i];
    // Words only for a refusal: a registration that is taken builds none.
    const auto which = [&] { return named + " cannot be registered: its action \"" + shownInLog(action) + "\" "; };
    if (auto why = invalidName(action)) return which() + "is not a valid action string (" + *why + ")";
    if (const auto at = builtIn.find(action); at != builtIn.end())
      return which() + "is the library's " + std::string(routes().families[at->second.family]->name) +
             " family's: pages already send it";
    if (const auto at = hostRoutes_.find(action); at != hostRoutes_.end())
      return which() + "is already the " + std::string(subscriptions_[at->second.subscription].family->name) +
             " family's";
    for (std::size_t j = 0; j < i; ++j)
      if (family.actions[j] == action) return which() + "is listed twice";
  }
  const std::size_t index = subscriptions_.size();
  subscriptions_.push_back({&family, std::move(plugin), std::nullopt});
  for (std::size_t i = 0; i < family.actions.size(); ++i) hostRoutes_.emplace(family.actions[i], HostRoute{index, i});
  return std::nullopt;
}

void WebSDKScriptHandler::userContentController(const ScriptMessage& message) {
  if (message.name != kHandlerName) return;
  std::string_view text;
  std::size_t bytes = 0;  // the whole message's size
  if (message.message) {
    text = *message.message;
    bytes = std::max(message.messageBytes, text.size());
  } else {
    const JSONObject* body = message.body.if_object();
    if (body == nullptr) return;
    const JSON* textValue = body->if_contains("message");
    if (textValue == nullptr || !textValue->is_string()) return;
    text = textValue->get_string();
    bytes = text.size();
  }

  if (const auto field = listener.lock())
    if (const auto told = field->lock()) told->didReceiveRequest(text);

  // With the view recording its traffic, what becomes of this message is
  // written once it is handled, whichever way it leaves.
  struct Recording {
    std::shared_ptr<WebSDKTrafficRecorder> recorder;
    std::optional<WebSDKRecordedRequest> request;  // made only when recording: intake pays nothing otherwise
    WebSDKRecordedRequest*& current;
    ~Recording() {
      current = nullptr;
      if (recorder) recorder->request(std::move(*request));
    }
  } recorded{nullptr, std::nullopt, recording_};

  // Judged by the URLs the engine recorded for the sending document, never by
  // one still loading and never by anything the message says. The top
  // document must be trusted, for the answer runs there; judging frames by
  // their own host, the sending frame must be trusted as well.
  const MessageOrigin& origin = message.origin;
  {
    // Not held past the check: a plugin may drop the host's last reference.
    const auto view = webview.lock();
    const WebSDKConfig* config = view ? &view->bridgeConfig() : nullptr;
    const bool topTrusted = config && !origin.topURL.empty() && isTrusted(*config, origin.topURL);
    const bool byFrame = config && config->judgesFramesByTheirOwnHost;
    // The URL refused is the first that fails.
    const std::string& judged = topTrusted && byFrame ? origin.frameURL : origin.topURL;
    const bool trusted = topTrusted && (!byFrame || (!judged.empty() && isTrusted(*config, judged)));
    if (trafficRecorder) {
      recorded.recorder = trafficRecorder;
      recording_ = &recorded.request.emplace();
      recording_->page = judged;
    }
    // A refused page's text is never parsed: its request id is looked for
    // near the start only, so no size of message stalls the UI thread.
    if (!trusted) {
      auto start = scanTheStart(text, kRefusedMessageStart);
      if (recording_) recording_->action = start.type.value_or("");
      if (view && std::exchange(refusalLogged_, origin.topDocument) != origin.topDocument)
        log(LogLevel::warning, "trust", view->viewName(),
            "a request from " + (judged.empty() ? std::string("a page with no URL") : judged) + " (action \"" +
                shown(start.type) + "\", request id \"" + shown(start.found) +
                "\") was refused: its host is not whitelisted (told once per page)");
      std::optional<std::string> why = judged.empty() ? std::nullopt : std::optional<std::string>(judged);
      // A frame's refusal is not told to an untrusted top page: that page
      // never asked, and the frame's request id is not its to read.
      if (!origin.isMainFrame && !topTrusted) {
        if (recording_) {
          recording_->requestId = start.found.value_or("");
          recording_->status = rawValue(WebSDKStatusCode::notWhitelistedUrl);
          recording_->message = std::move(why);
        }
        return;
      }
      answerFailure(start.found.value_or(""), WebSDKStatusCode::notWhitelistedUrl, std::move(why), origin.topDocument);
      return;
    }
    // Only the start of a message the engine judged too large is here.
    if (bytes > config->maximumMessageBytes || bytes > text.size()) {
      answerFailure(requestIdNearTheStart(text), WebSDKStatusCode::notHandled,
                    "message too large: " + std::to_string(bytes) + " bytes, the limit is " +
                        std::to_string(config->maximumMessageBytes),
                    origin.topDocument);
      return;
    }
  }
  JSON request = parseJSON(text);
  // The recording takes the payload once the trial is done with it: moved
  // out of the parsed request, never copied.
  struct PayloadToRecording {
    JSON& request;
    WebSDKRecordedRequest* recording;
    ~PayloadToRecording() {
      if (recording == nullptr) return;
      if (auto* fields = request.if_object())
        if (JSON* payload = fields->if_contains("payload")) recording->payload = std::move(*payload);
    }
  } payloadToRecording{request, recording_};
  if (auto* fields = request.if_object()) {
    const JSON* type = fields->if_contains("type");
    const JSON* requestId = fields->if_contains("requestId");
    if (recording_) {
      recording_->action = type ? lenientString(type) : "";
      recording_->requestId = requestId ? lenientString(requestId) : "";
      recording_->textBytes = text.size();
    }
    if (type != nullptr && requestId != nullptr && requestId->is_string()) {
      std::string lenient;
      const std::string_view action =
          type->is_string() ? std::string_view(type->get_string()) : std::string_view(lenient = lenientString(type));
      std::optional<HostRoute> route;
      const auto& builtIn = routes().byAction;
      if (const auto at = builtIn.find(action); at != builtIn.end())
        route = HostRoute{at->second.family, at->second.action};
      else if (!hostRoutes_.empty())
        if (const auto at = hostRoutes_.find(action); at != hostRoutes_.end()) route = at->second;
      if (route) {
        // Held by pointer: a plugin may register another family during its call.
        const FamilyType* family = subscriptions_[route->subscription].family;
        if (recording_) recording_->family = family->name;
        Intake intake(*this, route->subscription, requestId->get_string(), origin.topDocument);
        switch (family->trial(intake, route->action, fields->if_contains("payload"))) {
          case FamilyTrial::delivered: return;
          case FamilyTrial::dropped:
            if (recording_) recording_->outcome = "dropped";
            return;
          case FamilyTrial::notSubscribed:
            answerFailure(request, WebSDKStatusCode::notFound, std::string(family->failureMessage), origin.topDocument);
            return;
          case FamilyTrial::declined: break;
        }
      }
    }
  }
  answerFailure(request, WebSDKStatusCode::notFound, std::string(kNotAValidRequest), origin.topDocument);
}

std::optional<std::string> WebSDKScriptHandler::takeUnsubscribedAsk(const FamilyType& family) {
  Subscription* held = subscription(family);
  return held ? std::exchange(held->unsubscribedAsk, std::nullopt) : std::nullopt;
}

bool WebSDKScriptHandler::isTrusted(const WebSDKConfig& config, std::string_view url) {
  if (!trustedURL_.empty() && url == trustedURL_ && config == trustedUnder_) return true;
  if (!config.isWhitelistedURL(url)) return false;
  trustedURL_ = url;
  trustedUnder_ = config;
  return true;
}

namespace {
RequestIdScan scanTheStart(std::string_view text, std::size_t budget) {
  // Read as parseJSON reads: as deep, and with lone surrogates' escapes as U+FFFD.
  const std::string_view start = text.substr(0, budget);
  const auto repaired = replaceLoneSurrogates(start);
  const std::string_view scanned = repaired ? std::string_view(*repaired) : start;
  boost::json::parse_options options;
  options.max_depth = kMaxJSONDepth;
  boost::json::basic_parser<RequestIdScan> parser(options);
  boost::json::error_code ec;
  parser.write_some(start.size() < text.size(), scanned.data(), scanned.size(), ec);
  return std::move(parser.handler());
}
}  // namespace

std::string requestIdNearTheStart(std::string_view text, std::size_t budget) {
  return scanTheStart(text, budget).found.value_or("");
}

void WebSDKScriptHandler::answerFailure(const JSON& request, WebSDKStatusCode code, std::optional<std::string> message,
                                        DocumentID document) {
  answerFailure(Fields::of(&request).lenientString("requestId"), code, std::move(message), document);
}

void WebSDKScriptHandler::answerFailure(std::string requestId, WebSDKStatusCode code,
                                        std::optional<std::string> message, DocumentID document) {
  if (recording_) {
    recording_->requestId = requestId;
    recording_->status = rawValue(code);
    recording_->message = message;
  }
  const auto view = webview.lock();
  if (!view) return;
  view->deliver(WebSDKResponseModel{std::string(rawValue(WebSDKResponseType::failure)), rawValue(code),
                                    std::move(message), std::move(requestId), std::nullopt},
                document);
}

std::uint64_t WebSDKScriptHandler::expectAnswer(std::string_view requestId, DocumentID document,
                                                std::string_view family, std::string_view action) {
  if (const auto view = webview.lock()) return view->expectAnswer(std::string(requestId), document, family, action);
  return 0;
}

}  // namespace websdk
