#include "websdk/webview/WebSDKTrafficRecorder.hpp"

#include "websdk/Log.hpp"
#include "websdk/bridge/Families.hpp"
#include "websdk/json/Model.hpp"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <cstring>
#include <type_traits>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace websdk {
namespace {

using Keys = std::set<std::string, std::less<>>;

std::int64_t nowMilliseconds() {
  using namespace std::chrono;
  return duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count();
}

// A key as sensitive names are compared: ASCII letters in lower case, `_` and
// `-` left out, so a page's "card_number" or "CardNumber" is "cardnumber".
template <class Out>
void fold(std::string_view key, Out& out) {
  for (const char c : key)
    if (c != '_' && c != '-') out.push_back(c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c);
}

std::string folded(std::string_view key) {
  std::string out;
  fold(key, out);
  return out;
}

// Folds a short key on the stack: keys are looked up for every member of
// every recorded object.
struct FoldedKey {
  char text[64];
  std::size_t size = 0;
  void push_back(char c) { text[size++] = c; }
};

bool containsFolded(const Keys& keys, std::string_view key) {
  if (key.size() > sizeof FoldedKey::text) return keys.contains(folded(key));
  FoldedKey f;
  fold(key, f);
  return keys.contains(std::string_view(f.text, f.size));
}

// Names that hold card and credential data whichever object they stand in,
// a model's or one the models keep opaque (a gateway's own parameters).
constexpr std::string_view kCommonSensitiveNames =
    "cvv cvv2 cvc cvc2 cardNumber cardNo cardPin cardExpiry expiryMonth expiryYear nameOnCard cardHolderName "
    "securityCode pan upiId vpa upiPin pin mpin otp password passcode accessToken refreshToken authToken "
    "clientAuthToken sessionToken apiKey clientSecret authorization cookie";

// ---- Secrets as they may be written ----------------------------------------------

int hexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

bool isHexByte(std::string_view text, std::size_t at, unsigned char c) {
  if (at + 2 > text.size()) return false;
  const int high = hexDigit(text[at]), low = hexDigit(text[at + 1]);
  return high >= 0 && low >= 0 && high * 16 + low == c;
}

// How many bytes at `at` spell the byte `c` as it is, percent-encoded (once
// or twice) or, for a space, as a form's `+`; 0 when they do not.
std::size_t spelled(std::string_view text, std::size_t at, unsigned char c) {
  const auto b = static_cast<unsigned char>(text[at]);
  if (b == c || (c == ' ' && b == '+')) return 1;
  if (b != '%') return 0;
  if (isHexByte(text, at + 1, c)) return 3;
  if (at + 5 <= text.size() && text[at + 1] == '2' && text[at + 2] == '5' && isHexByte(text, at + 3, c)) return 5;
  return 0;
}

bool isAlphanumeric(unsigned char c) { return (c >= '0' && c <= '9') || ((c | 0x20) >= 'a' && (c | 0x20) <= 'z'); }

// The backslashes that escape one byte at `at`: text escaped in text a few
// times over, never more than kEscapes. Bounded, so that a page's run of a
// million backslashes is not scanned again from each of them.
constexpr std::size_t kEscapes = 31;
std::size_t backslashes(std::string_view text, std::size_t at) {
  std::size_t n = 0;
  while (n <= kEscapes && at + n < text.size() && text[at + n] == '\\') ++n;
  return n > kEscapes ? 0 : n;
}

// How many bytes of `text` from `at` write `secret`, byte by byte in any of
// the forms it takes on its way to the file: plain, percent-encoded (a URL),
// escaped with backslashes once or a few times over (JSON's `\/` in a
// script, a string in a string) or as `\u00XX`; 0 when they do not.
std::size_t writtenAt(std::string_view text, std::size_t at, std::string_view secret) {
  std::size_t p = at;
  for (std::size_t i = 0; i < secret.size(); ++i) {
    if (p >= text.size()) return 0;
    const auto c = static_cast<unsigned char>(secret[i]);
    std::size_t n = 0;
    if (c == '\\' && (i + 1 == secret.size() || secret[i + 1] != '\\')) {
      // A backslash however often escaped, unless another follows it.
      n = backslashes(text, p);
      if (n == 0) n = spelled(text, p, c);
    } else {
      n = spelled(text, p, c);
      if (n == 0 && text[p] == '\\') {
        const std::size_t q = p + backslashes(text, p);
        if (q < text.size() && !isAlphanumeric(c) && text[q] == static_cast<char>(c)) {
          n = q + 1 - p;
        } else if (q + 5 <= text.size() && text[q] == 'u' && text[q + 1] == '0' && text[q + 2] == '0' && c < 0x80 &&
                   isHexByte(text, q + 3, c)) {
          n = q + 5 - p;
        }
      }
    }
    if (n == 0) return 0;
    p += n;
  }
  return p - at;
}

bool isNumberText(std::string_view text) {
  return !text.empty() && text.find_first_not_of("0123456789.eE+-") == std::string_view::npos;
}

// A scalar's text, as the file writes it (doubles in their shortest form).
std::string scalarText(const JSON& value) {
  if (value.is_int64()) return std::to_string(value.get_int64());
  if (value.is_uint64()) return std::to_string(value.get_uint64());
  if (value.is_double()) return formatDouble(value.get_double());
  if (value.is_bool()) return value.get_bool() ? "true" : "false";
  return "null";
}

// Opened for its owner alone: a recording says what a user did, even masked.
std::FILE* openPrivately(const std::string& path, bool append) {
  const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | (append ? O_APPEND : O_TRUNC), 0600);
  if (fd < 0) return nullptr;
  // A file of the app's from before keeps no wider mode either.
  struct stat status {};
  if (::fstat(fd, &status) == 0 && S_ISREG(status.st_mode) && (status.st_mode & 077) != 0) ::fchmod(fd, 0600);
  std::FILE* file = ::fdopen(fd, append ? "a" : "w");
  if (file == nullptr) ::close(fd);
  return file;
}

}  // namespace

const std::set<std::string, std::less<>>& WebSDKTrafficRecorder::sensitiveKeys() {
  static const auto keys = [] {
    Keys declared;
    forEachFamily([&]<class F>(F) {
      const auto& keys = familyType<F>().sensitiveKeys;
      declared.insert(keys.begin(), keys.end());
    });
    for (std::size_t at = 0; at < kCommonSensitiveNames.size();) {
      const std::size_t end = std::min(kCommonSensitiveNames.find(' ', at), kCommonSensitiveNames.size());
      declared.emplace(kCommonSensitiveNames.substr(at, end - at));
      at = end + 1;
    }
    Keys out;
    for (const auto& key : declared) out.insert(folded(key));
    return out;
  }();
  return keys;
}

bool WebSDKTrafficRecorder::isSensitiveKey(std::string_view key) { return containsFolded(sensitiveKeys(), key); }

WebSDKTrafficRecorder::WebSDKTrafficRecorder(const WebSDKTrafficRecording& recording) : recording_(recording) {
  for (const auto& key : recording.sensitiveKeys) appKeys_.insert(folded(key));
}

void WebSDKTrafficRecorder::addSensitiveKeys(const std::set<std::string, std::less<>>& keys) {
  const std::lock_guard lock(mutex_);
  for (const auto& key : keys) appKeys_.insert(folded(key));
}

WebSDKTrafficRecorder::~WebSDKTrafficRecorder() {
  if (file_ != nullptr) std::fclose(file_);
}

std::unique_ptr<WebSDKTrafficRecorder> WebSDKTrafficRecorder::open(const WebSDKTrafficRecording& recording,
                                                                   const WebSDKConfig& view) {
  std::unique_ptr<WebSDKTrafficRecorder> recorder(new WebSDKTrafficRecorder(recording));
  recorder->file_ = openPrivately(recording.path, true);
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
  {
    std::lock_guard lock(recorder->mutex_);
    recorder->write({{"event", "view"},
                     {"whitelist", std::move(whitelist)},
                     {"whitelistsAll", view.shouldWhitelistAllUrls},
                     {"masked", recording.masksSensitiveValues}});
  }
  return recorder;
}

void WebSDKTrafficRecorder::addSecrets(const std::map<std::string, std::string>& fields) {
  std::lock_guard lock(mutex_);
  const auto add = [&](std::string_view secret) {
    if (std::find(secrets_.begin(), secrets_.end(), secret) != secrets_.end()) return;
    secrets_.emplace_back(secret);
    const auto first = static_cast<unsigned char>(secret.front());
    for (const unsigned char start : {first, static_cast<unsigned char>('%'), static_cast<unsigned char>('\\')})
      secretStarts_[start] = true;
    if (first == ' ') secretStarts_['+'] = true;
    // A page may send it as a JSON number (or boolean, or null): its text
    // and that of the value it reads as are looked for in every such scalar.
    if (isNumberText(secret) || secret == "true" || secret == "false" || secret == "null") {
      scalarSecrets_.emplace_back(secret);
      if (const JSON value = parseJSON(secret); !value.is_null() || secret == "null")
        scalarSecrets_.push_back(scalarText(value));
    }
  };
  for (const auto& [name, value] : fields) {
    // A value this short would mask ordinary words and numbers everywhere.
    if (value.size() < 4) continue;
    add(value);
    // The parts of "Bearer <token>" and the like: the token is as secret
    // where it stands alone.
    for (std::size_t at = 0; at < value.size();) {
      const std::size_t end = std::min(value.find_first_of(" \t", at), value.size());
      if (end - at > 8 && end - at < value.size()) add(std::string_view(value).substr(at, end - at));
      at = end + 1;
    }
  }
  std::stable_sort(secrets_.begin(), secrets_.end(), [](const auto& a, const auto& b) { return a.size() > b.size(); });
}

bool WebSDKTrafficRecorder::mask(std::string_view in, std::string& out) const {
  if (secrets_.empty()) return false;
  std::size_t copied = 0;
  bool found = false;
  for (std::size_t i = 0; i < in.size();) {
    std::size_t length = 0;
    if (secretStarts_[static_cast<unsigned char>(in[i])])
      for (const auto& secret : secrets_)
        if ((length = writtenAt(in, i, secret)) != 0) break;
    if (length == 0) {
      ++i;
      continue;
    }
    if (!found) out.clear();
    found = true;
    out.append(in, copied, i - copied);
    out += kMask;
    i += length;
    copied = i;
  }
  if (found) out.append(in, copied);
  return found;
}

bool WebSDKTrafficRecorder::mask(std::string& text) const {
  std::string out;
  if (!mask(text, out)) return false;
  text = std::move(out);
  return true;
}

std::string WebSDKTrafficRecorder::maskedText(std::string_view text) const {
  std::string out(text);
  if (recording_.masksSensitiveValues) mask(out);
  return out;
}

std::string WebSDKTrafficRecorder::masked(std::string text) const {
  if (!recording_.masksSensitiveValues) return text;
  std::lock_guard lock(mutex_);
  mask(text);
  return text;
}

JSON WebSDKTrafficRecorder::masked(JSON value) const {
  if (!recording_.masksSensitiveValues) return value;
  std::lock_guard lock(mutex_);
  mask(value, false);
  return value;
}

bool WebSDKTrafficRecorder::isSensitive(std::string_view key) const {
  return isSensitiveKey(key) || (!appKeys_.empty() && containsFolded(appKeys_, key));
}

bool WebSDKTrafficRecorder::isSecretScalar(const JSON& value) const {
  if (scalarSecrets_.empty()) return false;
  const std::string text = scalarText(value);
  return std::any_of(scalarSecrets_.begin(), scalarSecrets_.end(),
                     [&](const std::string& secret) { return text.find(secret) != std::string::npos; });
}

// Under a sensitive key every scalar is masked, nested ones too, but objects
// and arrays keep their shape: a replay then decodes what it did.
void WebSDKTrafficRecorder::mask(JSON& value, bool sensitive) const {
  if (auto* o = value.if_object()) {
    bool keyHoldsSecret = false;
    std::string key;
    for (auto& member : *o) {
      mask(member.value(), sensitive || isSensitive(member.key()));
      keyHoldsSecret = keyHoldsSecret || mask(member.key(), key);
    }
    if (keyHoldsSecret) {
      // Keys cannot be renamed in place: the object is made again.
      JSONObject keyed(o->storage());
      keyed.reserve(o->size());
      for (auto& member : *o) {
        if (!mask(member.key(), key)) key = member.key();
        keyed.insert_or_assign(key, std::move(member.value()));
      }
      *o = std::move(keyed);
    }
  } else if (auto* a = value.if_array()) {
    for (auto& element : *a) mask(element, sensitive);
  } else if (sensitive && !value.is_null()) {
    value = kMask;
  } else if (auto* s = value.if_string()) {
    if (std::string text; mask(*s, text)) *s = text;
  } else if (isSecretScalar(value)) {
    value = kMask;
  }
}

// Each line is made whole under the lock: no secret added meanwhile is
// masked in one part of it and not in another.
void WebSDKTrafficRecorder::request(const WebSDKRecordedRequest& r) {
  std::lock_guard lock(mutex_);
  JSONObject line{{"event", "request"},
                  {"page", maskedText(r.page)},
                  {"requestId", maskedText(r.requestId)},
                  {"action", maskedText(r.action)},
                  {"family", r.family},
                  {"outcome", r.outcome}};
  if (r.status) line.emplace("status", *r.status);
  if (r.message) line.emplace("message", maskedText(*r.message));
  const auto add = [&](std::string_view key, const JSON& value) {
    JSON copy = value;
    if (recording_.masksSensitiveValues) mask(copy, false);
    line.emplace(key, std::move(copy));
  };
  if (r.payload) add("payload", *r.payload);
  if (r.received) add("received", *r.received);
  write(std::move(line));
}

void WebSDKTrafficRecorder::answer(const WebSDKResponseModel& response, std::string_view page,
                                   std::optional<WebSDKDropReason> dropped) {
  std::lock_guard lock(mutex_);
  JSONObject envelope{{"type", response.type}, {"statusCode", response.statusCode}};
  if (response.statusMessage) envelope.emplace("statusMessage", maskedText(*response.statusMessage));
  if (response.payload) {
    // The payload travels as text; read as JSON it can be masked key by key.
    JSON parsed = parseJSON(*response.payload);
    if (parsed.is_null() && *response.payload != "null") {
      envelope.emplace("payload", maskedText(*response.payload));
    } else {
      if (recording_.masksSensitiveValues) mask(parsed, false);
      envelope.emplace("payload", std::move(parsed));
    }
  }
  JSONObject line{{"event", "answer"},
                  {"page", maskedText(page)},
                  {"requestId", maskedText(response.requestId)},
                  {"outcome", dropped ? "dropped" : "sent"}};
  if (dropped) line.emplace("why", rawValue(*dropped));
  line.emplace("response", std::move(envelope));
  write(std::move(line));
}

void WebSDKTrafficRecorder::push(std::string_view script, std::string_view page,
                                 std::optional<WebSDKDropReason> dropped) {
  std::lock_guard lock(mutex_);
  JSONObject line{{"event", "push"}, {"page", maskedText(page)}, {"outcome", dropped ? "dropped" : "sent"}};
  if (dropped) line.emplace("why", rawValue(*dropped));
  line.emplace("script", maskedText(script));
  write(std::move(line));
}

void WebSDKTrafficRecorder::write(JSONObject line) {
  JSONObject stamped{{"time", nowMilliseconds()}};
  for (auto& member : line) stamped.emplace(member.key(), std::move(member.value()));
  std::string text = serialize(stamped);
  text += '\n';
  if (file_ == nullptr) return;
  const std::size_t cap = recording_.maximumBytes;
  if (rotates_ && bytes_ > 0 && (bytes_ >= cap || text.size() > cap - bytes_)) {
    std::fclose(file_);
    std::rename(recording_.path.c_str(), (recording_.path + ".1").c_str());
    file_ = openPrivately(recording_.path, false);
    bytes_ = 0;
    if (file_ == nullptr) return;
  }
  std::fwrite(text.data(), 1, text.size(), file_);
  std::fflush(file_);
  bytes_ += text.size();
}

}  // namespace websdk
