#include "websdk/webview/WebSDKTrafficRecorder.hpp"

#include "websdk/Log.hpp"
#include "websdk/bridge/Families.hpp"
#include "websdk/json/Model.hpp"

#include <cerrno>
#include <chrono>
#include <cstring>
#include <type_traits>

#include <sys/stat.h>

namespace websdk {
namespace {

using Keys = std::set<std::string, std::less<>>;

template <Declared T>
void collectModel(Keys& keys);

// A field marked sensitive is masked under its JSON key (what pages send) and
// its member's name (what descriptions of typed payloads use); models nested
// in it, or listed in it, are searched too.
template <class T, class M, class R>
void collectField(const ModelField<T, M, R>& f, Keys& keys) {
  if (f.sensitive) {
    keys.emplace(f.name);
    const auto dot = f.path.rfind('.');
    keys.emplace(dot == std::string_view::npos ? f.path : f.path.substr(dot + 1));
  }
  using V = detail::UnwrappedT<M>;
  if constexpr (std::is_same_v<R, reading::ModelReading>) {
    collectModel<V>(keys);
  } else if constexpr (requires { typename R::ElementReading; }) {
    using Element = detail::UnwrappedT<typename V::value_type>;
    if constexpr (Declared<Element>) collectModel<Element>(keys);
  }
}

template <Declared T>
void collectModel(Keys& keys) {
  std::apply([&](const auto&... f) { (collectField(f, keys), ...); }, T::fields());
}

template <class Row>
void collectRow(Keys& keys) {
  using Model = typename Row::Type;
  if constexpr (!Row::refused && !std::is_void_v<Model>) collectModel<detail::UnwrappedT<Model>>(keys);
}

std::int64_t nowMilliseconds() {
  using namespace std::chrono;
  return duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count();
}

}  // namespace

const std::set<std::string, std::less<>>& WebSDKTrafficRecorder::sensitiveKeys() {
  static const auto keys = [] {
    std::set<std::string, std::less<>> out;
    forEachFamily([&]<class F>(F) {
      std::apply([&](auto... row) { (collectRow<decltype(row)>(out), ...); }, typename F::Payload::Table{});
    });
    return out;
  }();
  return keys;
}

WebSDKTrafficRecorder::WebSDKTrafficRecorder(const WebSDKTrafficRecording& recording) : recording_(recording) {}

WebSDKTrafficRecorder::~WebSDKTrafficRecorder() {
  if (file_ != nullptr) std::fclose(file_);
}

std::unique_ptr<WebSDKTrafficRecorder> WebSDKTrafficRecorder::open(const WebSDKTrafficRecording& recording,
                                                                   const WebSDKConfig& view) {
  std::unique_ptr<WebSDKTrafficRecorder> recorder(new WebSDKTrafficRecorder(recording));
  recorder->file_ = std::fopen(recording.path.c_str(), "ae");
  if (recorder->file_ == nullptr) {
    log(LogLevel::warning, "recording",
        "the traffic recording \"" + recording.path + "\" cannot be opened (" + std::strerror(errno) +
            "); nothing is recorded");
    return nullptr;
  }
  // Only a file of its own is rotated: a recording to a device or a pipe
  // (/dev/stderr, say) is written as it goes, never moved.
  struct stat status {};
  recorder->rotates_ = ::fstat(::fileno(recorder->file_), &status) == 0 && S_ISREG(status.st_mode);
  std::fseek(recorder->file_, 0, SEEK_END);
  recorder->bytes_ = static_cast<std::size_t>(std::max(0L, std::ftell(recorder->file_)));
  JSONArray whitelist;
  for (const auto& host : view.whitelistedHosts) whitelist.emplace_back(host);
  recorder->write({{"event", "view"},
                   {"whitelist", std::move(whitelist)},
                   {"whitelistsAll", view.shouldWhitelistAllUrls},
                   {"masked", recording.masksSensitiveValues}});
  return recorder;
}

void WebSDKTrafficRecorder::addSecrets(const std::map<std::string, std::string>& fields) {
  std::lock_guard lock(mutex_);
  for (const auto& [name, value] : fields) {
    // A value this short would mask ordinary words and numbers everywhere.
    if (value.size() < 4) continue;
    if (std::find(secrets_.begin(), secrets_.end(), value) == secrets_.end()) secrets_.push_back(value);
  }
}

std::string WebSDKTrafficRecorder::masked(std::string text) const {
  if (!recording_.masksSensitiveValues) return text;
  std::lock_guard lock(mutex_);
  for (const auto& secret : secrets_)
    for (auto at = text.find(secret); at != std::string::npos; at = text.find(secret, at + kMask.size()))
      text.replace(at, secret.size(), kMask);
  return text;
}

JSON WebSDKTrafficRecorder::masked(JSON value) const {
  if (!recording_.masksSensitiveValues) return value;
  return masked(std::move(value), false);
}

bool WebSDKTrafficRecorder::isSensitive(std::string_view key) const {
  return sensitiveKeys().contains(key) || recording_.sensitiveKeys.contains(key);
}

// Under a sensitive key every scalar is masked, nested ones too, but objects
// and arrays keep their shape: a replay then decodes what it did.
JSON WebSDKTrafficRecorder::masked(JSON value, bool sensitive) const {
  if (auto* o = value.if_object()) {
    for (auto& member : *o) member.value() = masked(std::move(member.value()), sensitive || isSensitive(member.key()));
  } else if (auto* a = value.if_array()) {
    for (auto& element : *a) element = masked(std::move(element), sensitive);
  } else if (sensitive && !value.is_null()) {
    return JSON(kMask);
  } else if (auto* s = value.if_string()) {
    return JSON(masked(std::string(*s)));
  }
  return value;
}

void WebSDKTrafficRecorder::request(const WebSDKRecordedRequest& r) {
  JSONObject line{{"event", "request"}, {"page", masked(r.page)}, {"requestId", r.requestId},
                  {"action", r.action}, {"family", r.family},     {"outcome", r.outcome}};
  if (r.status) line.emplace("status", *r.status);
  if (r.message) line.emplace("message", masked(*r.message));
  if (r.payload) line.emplace("payload", masked(*r.payload));
  if (r.received) line.emplace("received", masked(*r.received));
  write(std::move(line));
}

void WebSDKTrafficRecorder::answer(const WebSDKResponseModel& response, std::string_view page,
                                   std::optional<WebSDKDropReason> dropped) {
  JSONObject envelope{{"type", response.type}, {"statusCode", response.statusCode}};
  if (response.statusMessage) envelope.emplace("statusMessage", masked(*response.statusMessage));
  if (response.payload) {
    // The payload travels as text; read as JSON it can be masked key by key.
    JSON parsed = parseJSON(*response.payload);
    const bool isJSON = !parsed.is_null() || *response.payload == "null";
    envelope.emplace("payload", isJSON ? masked(std::move(parsed)) : JSON(masked(*response.payload)));
  }
  JSONObject line{{"event", "answer"},
                  {"page", masked(std::string(page))},
                  {"requestId", response.requestId},
                  {"outcome", dropped ? "dropped" : "sent"}};
  if (dropped) line.emplace("why", rawValue(*dropped));
  line.emplace("response", std::move(envelope));
  write(std::move(line));
}

void WebSDKTrafficRecorder::push(std::string_view script, std::string_view page,
                                 std::optional<WebSDKDropReason> dropped) {
  JSONObject line{{"event", "push"}, {"page", masked(std::string(page))}, {"outcome", dropped ? "dropped" : "sent"}};
  if (dropped) line.emplace("why", rawValue(*dropped));
  line.emplace("script", masked(std::string(script)));
  write(std::move(line));
}

void WebSDKTrafficRecorder::write(JSONObject line) {
  JSONObject stamped{{"time", nowMilliseconds()}};
  for (auto& member : line) stamped.emplace(member.key(), std::move(member.value()));
  std::string text = serialize(stamped);
  text += '\n';
  std::lock_guard lock(mutex_);
  if (file_ == nullptr) return;
  if (rotates_ && bytes_ > 0 && bytes_ + text.size() > recording_.maximumBytes) {
    std::fclose(file_);
    std::rename(recording_.path.c_str(), (recording_.path + ".1").c_str());
    file_ = std::fopen(recording_.path.c_str(), "we");
    bytes_ = 0;
    if (file_ == nullptr) return;
  }
  std::fwrite(text.data(), 1, text.size(), file_);
  std::fflush(file_);
  bytes_ += text.size();
}

}  // namespace websdk
