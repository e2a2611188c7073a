#pragma once
// The user messages between the engine and its module in the web process
// (extension/HeaderGuard.cpp): stamped page messages up, the top document's
// identity up, evaluations meant for one top document down.

#include <glib.h>
#include <jsc/jsc.h>

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>

namespace websdk::webkitgtk::channel {

/// The "message" string of a body the page posted, as UTF-8 (g_malloc'd),
/// or nothing when the body has none. Read as it stands, never converted
/// to JSON text first.
inline char* messageOf(JSCValue* body) {
  if (body == nullptr || !jsc_value_is_object(body)) return nullptr;
  JSCValue* value = jsc_value_object_get_property(body, "message");
  GBytes* bytes = nullptr;
  if (value != nullptr && jsc_value_is_string(value)) {
    // JavaScriptCore's UTF-8 stops at a lone surrogate half: each becomes
    // U+FFFD first, as a JSON parse of the text would make it.
    JSCValue* whole = jsc_value_object_invoke_method(value, "toWellFormed", G_TYPE_NONE);
    bytes = jsc_value_to_string_as_bytes(whole != nullptr && jsc_value_is_string(whole) ? whole : value);
    if (whole) g_object_unref(whole);
  }
  if (value) g_object_unref(value);
  jsc_context_clear_exception(jsc_value_get_context(body));
  if (bytes == nullptr) return nullptr;
  gsize size = 0;
  const auto* data = static_cast<const unsigned char*>(g_bytes_get_data(bytes, &size));
  auto* text = static_cast<unsigned char*>(g_malloc(size + 1));
  for (gsize i = 0; i < size; ++i) {
    // A NUL cannot travel in the text; U+0001 is as invalid in JSON text
    // wherever it stands, so the message reads the same.
    text[i] = data[i] == 0 ? 0x01 : data[i];
  }
  text[size] = 0;
  g_bytes_unref(bytes);
  char* utf8 = reinterpret_cast<char*>(text);
  if (g_utf8_validate(utf8, -1, nullptr)) return utf8;
  char* valid = g_utf8_make_valid(utf8, -1);
  g_free(utf8);
  return valid;
}

/// The one handler whose messages carry the module's stamp: the bridge's.
inline constexpr char kName[] = "nativeRequest";
/// A handler only the engine's views register: the module stamps pages that
/// have it and leaves every other web view of the process as it is.
inline constexpr char kMarker[] = "websdkStamped";
/// Page -> view: (the body's "message" text, handler name, frame URL, top
/// URL, is main frame, top document, the message's full size in bytes). A
/// message its view would refuse unread (page not trusted, or over the size
/// limit) goes as its first kRefusedMessageStart bytes only.
inline constexpr char kPost[] = "websdk:post";
/// Page -> view: a part of a large message, (the message's full size in
/// bytes, the part's bytes), ahead of the kPost that carries its stamp and an
/// empty end. A large message travels in parts so that neither process holds
/// it twice on the way: the view gathers them into storage sized once, by the
/// first part, and replies to each; the page sends the next part (or any
/// later message) only then, so at most one part is ever in flight.
inline constexpr char kPostPart[] = "websdk:post-part";
inline constexpr std::size_t kPostPartBytes = std::size_t{256} << 10;
/// Page -> view: a new top document, (id). The UI process keeps the URL it
/// saw committed; the stamp carries each document's own.
inline constexpr char kDocument[] = "websdk:document";
/// View -> page: a script as its bytes ("ay"), evaluated only in one top
/// document. The document and whether a reply is wanted ride in the name, so
/// the script is sent as it stands: never copied into a larger value first,
/// nor scanned again on arrival.
inline constexpr char kEvaluate[] = "websdk:evaluate:";

/// kEvaluate's full name: "websdk:evaluate:<r|n>:<document>".
inline std::string evaluateName(std::uint64_t document, bool wantsReply) {
  return std::string(kEvaluate) + (wantsReply ? "r:" : "n:") + std::to_string(document);
}

/// Reads a name evaluateName made; false for any other name.
inline bool readEvaluateName(std::string_view name, std::uint64_t& document, bool& wantsReply) {
  const std::string_view prefix(kEvaluate);
  if (name.size() < prefix.size() + 3 || name.substr(0, prefix.size()) != prefix) return false;
  name.remove_prefix(prefix.size());
  if ((name[0] != 'r' && name[0] != 'n') || name[1] != ':') return false;
  wantsReply = name[0] == 'r';
  name.remove_prefix(2);
  const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), document);
  return error == std::errc() && end == name.data() + name.size();
}
/// Page -> view, the reply: (dropped, failed, result JSON text or error message).
inline constexpr char kEvaluated[] = "websdk:evaluated";

/// View -> page: an answer for the page's nativeResponse, evaluated only in
/// one top document, as data: the module makes the envelope object itself,
/// so the payload is neither escaped here nor parsed there. The payload's
/// bytes are the parameters ("ay") as they stand; the envelope's other fields
/// ride in the name, each text field as hex, so no field is ever copied into
/// a larger value: "websdk:answer:<r|n>:<document>:<statusCode>:<p|->:
/// <type>:<statusMessage or ->:<requestId>".
inline constexpr char kAnswer[] = "websdk:answer:";

/// The envelope's fields besides the payload.
struct AnswerHead {
  std::uint64_t document = 0;
  bool wantsReply = false;
  std::int64_t statusCode = 0;
  bool hasPayload = false;
  std::string type;
  std::optional<std::string> statusMessage;
  std::string requestId;
};

namespace detail {
inline void appendHex(std::string& out, std::string_view bytes) {
  static constexpr char digits[] = "0123456789abcdef";
  for (const char c : bytes) {
    const auto b = static_cast<unsigned char>(c);
    out += digits[b >> 4];
    out += digits[b & 0xF];
  }
}
inline bool readHex(std::string_view hex, std::string& out) {
  if (hex.size() % 2 != 0) return false;
  const auto value = [](char c) -> int {
    return c >= '0' && c <= '9' ? c - '0' : c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
  };
  out.clear();
  out.reserve(hex.size() / 2);
  for (std::size_t i = 0; i < hex.size(); i += 2) {
    const int high = value(hex[i]), low = value(hex[i + 1]);
    if (high < 0 || low < 0) return false;
    out += static_cast<char>(high << 4 | low);
  }
  return true;
}
// The next ':'-ended field of `rest`, taken off it; false when there is none.
inline bool nextField(std::string_view& rest, std::string_view& field, bool last = false) {
  const auto end = last ? rest.size() : rest.find(':');
  if (end == std::string_view::npos) return false;
  field = rest.substr(0, end);
  rest.remove_prefix(last ? end : end + 1);
  return true;
}
template <class Number>
bool readNumber(std::string_view text, Number& out) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), out);
  return error == std::errc() && end == text.data() + text.size() && !text.empty();
}
}  // namespace detail

/// kAnswer's full name for `head`.
inline std::string answerName(const AnswerHead& head) {
  std::string name(kAnswer);
  name += head.wantsReply ? "r:" : "n:";
  name += std::to_string(head.document);
  name += ':';
  name += std::to_string(head.statusCode);
  name += head.hasPayload ? ":p:" : ":-:";
  detail::appendHex(name, head.type);
  name += ':';
  if (head.statusMessage)
    detail::appendHex(name, *head.statusMessage);
  else
    name += '-';
  name += ':';
  detail::appendHex(name, head.requestId);
  return name;
}

/// Reads a name answerName made; false for any other name.
inline bool readAnswerName(std::string_view name, AnswerHead& head) {
  const std::string_view prefix(kAnswer);
  if (name.substr(0, prefix.size()) != prefix) return false;
  std::string_view rest = name.substr(prefix.size()), field;
  if (!detail::nextField(rest, field) || (field != "r" && field != "n")) return false;
  head.wantsReply = field == "r";
  if (!detail::nextField(rest, field) || !detail::readNumber(field, head.document)) return false;
  if (!detail::nextField(rest, field) || !detail::readNumber(field, head.statusCode)) return false;
  if (!detail::nextField(rest, field) || (field != "p" && field != "-")) return false;
  head.hasPayload = field == "p";
  if (!detail::nextField(rest, field) || !detail::readHex(field, head.type)) return false;
  if (!detail::nextField(rest, field)) return false;
  if (field == "-") {
    head.statusMessage.reset();
  } else if (!detail::readHex(field, head.statusMessage.emplace())) {
    return false;
  }
  return detail::nextField(rest, field, true) && detail::readHex(field, head.requestId);
}

/// A large message's kPostPart parts so far, in storage sized once by the
/// size its first part announced.
class Gathering {
 public:
  /// A message announced as `length` bytes.
  explicit Gathering(std::size_t length) : length_(length) {
    text_.reserve(std::min<std::size_t>(length, std::size_t{1} << 31));
  }
  /// One more part of a message announced as `length` bytes: a part that
  /// disagrees with the first breaks the whole message.
  void add(std::size_t length, std::string_view part) {
    if (length != length_ || text_.size() + part.size() > length_) {
      broken_ = true;
      text_ = {};
    } else if (!broken_) {
      text_.append(part);
    }
  }
  /// The whole message, `last` being its end; nothing when it is broken or
  /// not the size announced.
  std::optional<std::string> finish(std::string_view last) {
    text_.append(last);
    if (broken_ || text_.size() != length_) return std::nullopt;
    return std::move(text_);
  }

 private:
  std::string text_;
  std::size_t length_;
  bool broken_ = false;
};

}  // namespace websdk::webkitgtk::channel
