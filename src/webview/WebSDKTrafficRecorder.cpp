#include "websdk/webview/WebSDKTrafficRecorder.hpp"

#include "websdk/Log.hpp"
#include "websdk/bridge/Families.hpp"
#include "websdk/json/Model.hpp"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <thread>
#include <type_traits>
#include <variant>
#include <vector>

#include <fcntl.h>
#include <sys/resource.h>
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
int openPrivately(const std::string& path, bool append) {
  const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | (append ? O_APPEND : O_TRUNC), 0600);
  if (fd < 0) return -1;
  // A file of the app's from before keeps no wider mode either.
  struct stat status {};
  if (::fstat(fd, &status) == 0 && S_ISREG(status.st_mode) && (status.st_mode & 077) != 0) ::fchmod(fd, 0600);
  return fd;
}

void writeAll(int fd, std::string_view text) {
  while (!text.empty()) {
    const ssize_t n = ::write(fd, text.data(), text.size());
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return;
    text.remove_prefix(static_cast<std::size_t>(n));
  }
}

// What waits for the writer: a line's parts as they were handed over (its
// time taken then), or the secrets to mask from then on.
struct Answer {
  WebSDKResponseModel response;
  std::string page;
  std::optional<WebSDKDropReason> dropped;
};
struct Push {
  std::string script;
  std::string page;
  std::optional<WebSDKDropReason> dropped;
  // An event's: the script is `script` + its data, masked key by key + ")".
  std::optional<JSON> data;
};
struct Secrets {
  std::map<std::string, std::string> fields;
  std::vector<std::string> keys;  // sensitive keys, masked from then on
};
struct Dropped {
  std::uint64_t count;
};
struct Queued {
  std::int64_t time;
  std::variant<WebSDKRecordedRequest, Answer, Push, Secrets, Dropped> what;
};

template <class... F>
struct Overloaded : F... {
  using F::operator()...;
};
template <class... F>
Overloaded(F...) -> Overloaded<F...>;

// The writer's niceness (Linux: per thread), against the UI thread's own.
constexpr int kWriterNiceness = 10;

}  // namespace

// The masking, which the writer does as it writes; the file, the writer's
// alone; and the queue between the callers and the writer.
struct WebSDKTrafficRecorder::State {
  explicit State(const WebSDKTrafficRecording& r) : recording(r) {
    for (const auto& key : recording.sensitiveKeys) appKeys.insert(folded(key));
  }

  const WebSDKTrafficRecording recording;

  // ---- Masking: the writer's, held while a line is made (masked() shares it).
  mutable std::mutex maskMutex;
  Keys appKeys;                            // the recording's own sensitive keys, folded
  std::vector<std::string> secrets;        // longest first, so a whole value is masked before its parts
  std::vector<std::string> scalarSecrets;  // those a JSON number, boolean or null can be written as
  std::array<bool, 256> secretStarts{};    // the bytes a secret's written form can begin with

  void addSecrets(const std::map<std::string, std::string>& fields);
  bool mask(JSON& value, bool sensitive) const;              // whether it changed anything
  bool mask(std::string_view text, std::string& out) const;  // out: the masked text, when it holds a secret
  bool isSecretScalar(const JSON& value) const;
  bool isSensitive(std::string_view key) const {
    return isSensitiveKey(key) || (!appKeys.empty() && containsFolded(appKeys, key));
  }
  void appendText(std::string& to, std::string_view text);  // quoted, masked
  void appendValue(std::string& to, JSON& value);           // masked in place, then encoded

  // ---- The file: the writer's (and open()'s, before the writer starts).
  int fd = -1;
  std::size_t bytes = 0;
  bool rotates = false;
  std::string out, line, scratch;

  void lineOf(std::int64_t time, WebSDKRecordedRequest& r);
  void lineOf(std::int64_t time, Answer& a);
  void lineOf(std::int64_t time, Push& p);
  void lineOf(std::int64_t time, Dropped d);
  void emit();  // `line` into `out`, moving the file aside first when it is full
  void writeOut();
  void write(std::vector<Queued>& batch);

  // ---- The queue.
  std::mutex queueMutex;
  std::condition_variable wake, written;
  std::vector<Queued> queue;
  std::size_t queuedBytes = 0;
  std::uint64_t handedOver = 0, inFile = 0;  // lines (and secrets) handed over, and done with, so far
  std::uint64_t droppedNow = 0, droppedAll = 0;
  bool idle = false, stopping = false;
  std::thread writer;

  void hand(Queued queued, std::size_t weight, bool droppable);
  void flush();
  void handDroppedCount(std::int64_t time);  // with queueMutex held
  void run();
};

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

WebSDKTrafficRecorder::WebSDKTrafficRecorder(const WebSDKTrafficRecording& recording)
    : state_(std::make_unique<State>(recording)) {}

void WebSDKTrafficRecorder::addSensitiveKeys(const std::set<std::string, std::less<>>& keys) {
  // Queued as secrets are: masked in every line handed over after it.
  state_->hand(Queued{0, Secrets{{}, std::vector<std::string>(keys.begin(), keys.end())}}, 0, false);
}

WebSDKTrafficRecorder::~WebSDKTrafficRecorder() {
  State& s = *state_;
  if (s.writer.joinable()) {
    {
      std::lock_guard lock(s.queueMutex);
      s.handDroppedCount(nowMilliseconds());
      s.stopping = true;
    }
    s.wake.notify_one();
    // The writer empties the queue before it ends: nothing handed over is lost.
    s.writer.join();
  }
  if (s.fd >= 0) ::close(s.fd);
}

std::unique_ptr<WebSDKTrafficRecorder> WebSDKTrafficRecorder::open(const WebSDKTrafficRecording& recording,
                                                                   const WebSDKConfig& view) {
  std::unique_ptr<WebSDKTrafficRecorder> recorder(new WebSDKTrafficRecorder(recording));
  State& s = *recorder->state_;
  s.fd = openPrivately(recording.path, true);
  if (s.fd < 0) {
    log(LogLevel::warning, "recording",
        "the traffic recording \"" + recording.path + "\" cannot be opened (" + std::strerror(errno) +
            "); nothing is recorded");
    return nullptr;
  }
  // Only a file of its own is rotated: a recording to a device or a pipe
  // (/dev/stderr, say) is written as it goes, never moved.
  struct stat status {};
  s.rotates = ::fstat(s.fd, &status) == 0 && S_ISREG(status.st_mode);
  if (s.rotates) s.bytes = static_cast<std::size_t>(std::max<off_t>(0, ::lseek(s.fd, 0, SEEK_END)));
  JSONArray whitelist;
  for (const auto& host : view.whitelistedHosts) whitelist.emplace_back(host);
  // Written here, before the writer starts: the file's first line.
  s.line = "{\"time\":" + std::to_string(nowMilliseconds()) + ",\"event\":\"view\",\"whitelist\":";
  serializeTo(s.line, JSON(std::move(whitelist)));
  s.line += view.shouldWhitelistAllUrls ? ",\"whitelistsAll\":true" : ",\"whitelistsAll\":false";
  s.line += recording.masksSensitiveValues ? ",\"masked\":true}\n" : ",\"masked\":false}\n";
  s.emit();
  s.writeOut();
  s.writer = std::thread([&s] { s.run(); });
  return recorder;
}

// ---- Handing lines over (any thread) -------------------------------------------

// A line is dropped, never waited for, when the writer is too far behind;
// the count of a run of dropped lines is handed over in their place when the
// next line is taken (or at a flush, or at the end).
void WebSDKTrafficRecorder::State::hand(Queued queued, std::size_t weight, bool droppable) {
  bool wakeWriter = false;
  {
    std::lock_guard lock(queueMutex);
    if (droppable && !queue.empty() &&
        (queue.size() >= kQueuedLines || weight > kQueuedBytes - std::min(queuedBytes, kQueuedBytes))) {
      ++droppedNow;
      ++droppedAll;
      return;
    }
    handDroppedCount(queued.time);
    queue.push_back(std::move(queued));
    ++handedOver;
    queuedBytes += weight;
    wakeWriter = idle;
    idle = false;
  }
  if (wakeWriter) wake.notify_one();
}

// GCC 12 takes the move of a Dropped into the queue for a read of the other
// cases' members, which a Dropped does not have.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif
void WebSDKTrafficRecorder::State::handDroppedCount(std::int64_t time) {
  if (droppedNow == 0) return;
  queue.push_back(Queued{time, Dropped{std::exchange(droppedNow, 0)}});
  ++handedOver;
}
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic pop
#endif

void WebSDKTrafficRecorder::addSecrets(const std::map<std::string, std::string>& fields) {
  // In the queue, never dropped: masked in every line handed over after it.
  state_->hand(Queued{0, Secrets{fields, {}}}, 0, false);
}

void WebSDKTrafficRecorder::request(WebSDKRecordedRequest r) {
  std::size_t weight = r.textBytes + r.page.size() + r.requestId.size() + r.action.size();
  if (r.message) weight += r.message->size();
  state_->hand(Queued{nowMilliseconds(), std::move(r)}, weight, true);
}

void WebSDKTrafficRecorder::answer(const WebSDKResponseModel& response, std::string_view page,
                                   std::optional<WebSDKDropReason> dropped) {
  const std::size_t weight =
      page.size() + response.requestId.size() + (response.payload ? response.payload->size() : 0);
  state_->hand(Queued{nowMilliseconds(), Answer{response, std::string(page), dropped}}, weight, true);
}

void WebSDKTrafficRecorder::push(std::string_view script, std::string_view page,
                                 std::optional<WebSDKDropReason> dropped) {
  state_->hand(Queued{nowMilliseconds(), Push{std::string(script), std::string(page), dropped, std::nullopt}},
               script.size() + page.size(), true);
}

void WebSDKTrafficRecorder::event(std::string_view call, JSON data, std::string_view page,
                                  std::optional<WebSDKDropReason> dropped) {
  const std::size_t weight = call.size() + page.size();
  state_->hand(Queued{nowMilliseconds(), Push{std::string(call), std::string(page), dropped, std::move(data)}}, weight,
               true);
}

void WebSDKTrafficRecorder::flush() { state_->flush(); }

void WebSDKTrafficRecorder::State::flush() {
  std::unique_lock lock(queueMutex);
  handDroppedCount(nowMilliseconds());
  const std::uint64_t target = handedOver;
  if (inFile >= target) return;
  if (idle) {
    idle = false;
    wake.notify_one();
  }
  written.wait(lock, [&] { return inFile >= target; });
}

std::uint64_t WebSDKTrafficRecorder::droppedLines() const {
  std::lock_guard lock(state_->queueMutex);
  return state_->droppedAll;
}

// ---- The writer ------------------------------------------------------------------

// Takes what waits all at once, so the callers find an empty queue again at
// once, and writes it in one go.
void WebSDKTrafficRecorder::State::run() {
  // Behind the UI thread for the CPU: on a busy device a page's requests
  // wait for no line, and lines wait for the page instead (dropped past the
  // queue's bound, and counted).
  ::setpriority(PRIO_PROCESS, static_cast<id_t>(::gettid()), kWriterNiceness);
  std::vector<Queued> batch;
  std::unique_lock lock(queueMutex);
  for (;;) {
    if (queue.empty()) {
      if (stopping) return;
      idle = true;
      wake.wait(lock, [&] { return !queue.empty() || stopping; });
      idle = false;
      continue;
    }
    batch.swap(queue);
    queuedBytes = 0;
    const std::uint64_t upTo = handedOver;
    lock.unlock();
    write(batch);
    lock.lock();
    inFile = upTo;
    written.notify_all();
  }
}

void WebSDKTrafficRecorder::State::write(std::vector<Queued>& batch) {
  {
    std::lock_guard lock(maskMutex);
    for (auto& queued : batch) {
      line.clear();
      std::visit(
          Overloaded{[&](Secrets& secrets) {
                       addSecrets(secrets.fields);
                       for (const auto& key : secrets.keys) appKeys.insert(folded(key));
                     },
                     [&](Dropped d) { lineOf(queued.time, d); }, [&](auto& parts) { lineOf(queued.time, parts); }},
          queued.what);
      if (!line.empty()) emit();
    }
  }
  writeOut();
  // Emptied here, keeping its room: the callers' next queue is this one.
  batch.clear();
}

void WebSDKTrafficRecorder::State::emit() {
  if (fd < 0) return;
  const std::size_t cap = recording.maximumBytes;
  if (rotates && bytes > 0 && (bytes >= cap || line.size() > cap - bytes)) {
    writeOut();
    ::close(fd);
    std::rename(recording.path.c_str(), (recording.path + ".1").c_str());
    fd = openPrivately(recording.path, false);
    bytes = 0;
    if (fd < 0) return;
  }
  out += line;
  bytes += line.size();
}

void WebSDKTrafficRecorder::State::writeOut() {
  if (fd >= 0 && !out.empty()) writeAll(fd, out);
  out.clear();
}

// ---- Lines -----------------------------------------------------------------------
// Written as the JSON encoder writes the same object: keys in this order,
// compact, the time first.

void WebSDKTrafficRecorder::State::appendText(std::string& to, std::string_view text) {
  if (recording.masksSensitiveValues && mask(text, scratch)) text = scratch;
  appendQuoted(to, text);
}

void WebSDKTrafficRecorder::State::appendValue(std::string& to, JSON& value) {
  if (recording.masksSensitiveValues) mask(value, false);
  serializeTo(to, value);
}

namespace {
void begin(std::string& line, std::int64_t time, std::string_view event) {
  line += "{\"time\":";
  char buf[24];
  const auto r = std::to_chars(buf, buf + sizeof buf, time);
  line.append(buf, r.ptr);
  line += ",\"event\":\"";
  line += event;
  line += '"';
}

void key(std::string& line, std::string_view name) {
  line += ",\"";
  line += name;
  line += "\":";
}
}  // namespace

void WebSDKTrafficRecorder::State::lineOf(std::int64_t time, WebSDKRecordedRequest& r) {
  begin(line, time, "request");
  key(line, "page");
  appendText(line, r.page);
  key(line, "requestId");
  appendText(line, r.requestId);
  key(line, "action");
  appendText(line, r.action);
  key(line, "family");
  appendQuoted(line, r.family);
  key(line, "outcome");
  appendQuoted(line, r.outcome);
  if (r.status) {
    key(line, "status");
    serializeTo(line, JSON(*r.status));
  }
  if (r.message) {
    key(line, "message");
    appendText(line, *r.message);
  }
  // Masked in place: the payload is the page's, handed over, not a copy.
  bool payloadChanged = false;
  if (r.payload) {
    if (recording.masksSensitiveValues) payloadChanged = mask(*r.payload, false);
    key(line, "payload");
    serializeTo(line, *r.payload);
  }
  if (!r.received && r.receivedPayload) {
    // What the plugin got is what a replay of the masked payload gets, unless
    // masking changed the payload: then that is decoded, as a replay would.
    std::optional<JSON> described;
    if (payloadChanged) {
      if (JSONObject* object = r.payload->if_object()) {
        std::optional<JSONObject> decoded(std::move(*object));
        described = r.receivedPayload->describeDecoded(decoded);
        *r.payload = std::move(*decoded);
      }
    }
    r.received = described ? std::move(*described) : r.receivedPayload->describe();
  }
  if (r.received) {
    key(line, "received");
    appendValue(line, *r.received);
  }
  line += "}\n";
}

void WebSDKTrafficRecorder::State::lineOf(std::int64_t time, Answer& a) {
  const WebSDKResponseModel& response = a.response;
  begin(line, time, "answer");
  key(line, "page");
  appendText(line, a.page);
  key(line, "requestId");
  appendText(line, response.requestId);
  key(line, "outcome");
  line += a.dropped ? "\"dropped\"" : "\"sent\"";
  if (a.dropped) {
    key(line, "why");
    appendQuoted(line, rawValue(*a.dropped));
  }
  key(line, "response");
  line += "{\"type\":";
  appendQuoted(line, response.type);
  key(line, "statusCode");
  serializeTo(line, JSON(response.statusCode));
  if (response.statusMessage) {
    key(line, "statusMessage");
    appendText(line, *response.statusMessage);
  }
  if (response.payload) {
    key(line, "payload");
    // The payload travels as text; read as JSON it can be masked key by key.
    JSON parsed = parseJSON(*response.payload);
    if (parsed.is_null() && *response.payload != "null")
      appendText(line, *response.payload);
    else
      appendValue(line, parsed);
  }
  line += "}}\n";
}

void WebSDKTrafficRecorder::State::lineOf(std::int64_t time, Push& p) {
  if (p.data) {
    if (recording.masksSensitiveValues) mask(*p.data, false);
    p.script += serialize(*p.data);
    p.script += ')';
  }
  begin(line, time, "push");
  key(line, "page");
  appendText(line, p.page);
  key(line, "outcome");
  line += p.dropped ? "\"dropped\"" : "\"sent\"";
  if (p.dropped) {
    key(line, "why");
    appendQuoted(line, rawValue(*p.dropped));
  }
  key(line, "script");
  appendText(line, p.script);
  line += "}\n";
}

void WebSDKTrafficRecorder::State::lineOf(std::int64_t time, Dropped d) {
  begin(line, time, "dropped");
  key(line, "count");
  serializeTo(line, JSON(d.count));
  line += "}\n";
  log(LogLevel::warning, "recording",
      "the traffic recording \"" + recording.path + "\" fell behind and dropped " + std::to_string(d.count) +
          " line(s); a \"dropped\" line stands in their place");
}

// ---- Masking -------------------------------------------------------------------

void WebSDKTrafficRecorder::State::addSecrets(const std::map<std::string, std::string>& fields) {
  const auto add = [&](std::string_view secret) {
    if (std::find(secrets.begin(), secrets.end(), secret) != secrets.end()) return;
    secrets.emplace_back(secret);
    const auto first = static_cast<unsigned char>(secret.front());
    for (const unsigned char start : {first, static_cast<unsigned char>('%'), static_cast<unsigned char>('\\')})
      secretStarts[start] = true;
    if (first == ' ') secretStarts['+'] = true;
    // A page may send it as a JSON number (or boolean, or null): its text
    // and that of the value it reads as are looked for in every such scalar.
    if (isNumberText(secret) || secret == "true" || secret == "false" || secret == "null") {
      scalarSecrets.emplace_back(secret);
      if (const JSON value = parseJSON(secret); !value.is_null() || secret == "null")
        scalarSecrets.push_back(scalarText(value));
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
  std::stable_sort(secrets.begin(), secrets.end(), [](const auto& a, const auto& b) { return a.size() > b.size(); });
}

bool WebSDKTrafficRecorder::State::mask(std::string_view in, std::string& masked) const {
  if (secrets.empty()) return false;
  std::size_t copied = 0;
  bool found = false;
  for (std::size_t i = 0; i < in.size();) {
    std::size_t length = 0;
    if (secretStarts[static_cast<unsigned char>(in[i])])
      for (const auto& secret : secrets)
        if ((length = writtenAt(in, i, secret)) != 0) break;
    if (length == 0) {
      ++i;
      continue;
    }
    if (!found) masked.clear();
    found = true;
    masked.append(in, copied, i - copied);
    masked += kMask;
    i += length;
    copied = i;
  }
  if (found) masked.append(in, copied);
  return found;
}

bool WebSDKTrafficRecorder::State::isSecretScalar(const JSON& value) const {
  if (scalarSecrets.empty()) return false;
  const std::string text = scalarText(value);
  return std::any_of(scalarSecrets.begin(), scalarSecrets.end(),
                     [&](const std::string& secret) { return text.find(secret) != std::string::npos; });
}

// Under a sensitive key every scalar is masked, nested ones too, but objects
// and arrays keep their shape: a replay then decodes what it did.
bool WebSDKTrafficRecorder::State::mask(JSON& value, bool sensitive) const {
  bool changed = false;
  if (auto* o = value.if_object()) {
    bool keyHoldsSecret = false;
    std::string key;
    for (auto& member : *o) {
      changed |= mask(member.value(), sensitive || isSensitive(member.key()));
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
      changed = true;
    }
  } else if (auto* a = value.if_array()) {
    for (auto& element : *a) changed |= mask(element, sensitive);
  } else if (sensitive && !value.is_null()) {
    value = kMask;
    changed = true;
  } else if (auto* s = value.if_string()) {
    if (std::string text; mask(*s, text)) {
      *s = text;
      changed = true;
    }
  } else if (isSecretScalar(value)) {
    value = kMask;
    changed = true;
  }
  return changed;
}

std::string WebSDKTrafficRecorder::masked(std::string text) const {
  if (!state_->recording.masksSensitiveValues) return text;
  // The secrets handed over so far are the writer's once it has caught up.
  state_->flush();
  std::lock_guard lock(state_->maskMutex);
  if (std::string out; state_->mask(text, out)) return out;
  return text;
}

JSON WebSDKTrafficRecorder::masked(JSON value) const {
  if (!state_->recording.masksSensitiveValues) return value;
  state_->flush();
  std::lock_guard lock(state_->maskMutex);
  state_->mask(value, false);
  return value;
}

}  // namespace websdk
