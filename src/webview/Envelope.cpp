// The envelope is on every answer's path and its payload can be megabytes, so
// it is written by hand: the exact size is computed first, then long runs of
// plain text are copied in bulk, eight bytes tested at a time.

#include "websdk/webview/WebSDKResponseModel.hpp"

#include <charconv>
#include <cstring>

namespace websdk {
namespace {

constexpr std::uint64_t kOnes = 0x0101010101010101ULL;
constexpr std::uint64_t kHighs = 0x8080808080808080ULL;

constexpr std::uint64_t hasZeroByte(std::uint64_t v) { return (v - kOnes) & ~v & kHighs; }

// Whether any of the eight bytes needs attention: a control character, a
// quote, a backslash, or 0xE2 (the lead byte of U+2028 and U+2029).
inline bool wordNeedsEscape(std::uint64_t w) {
  const std::uint64_t control = (w - kOnes * 0x20) & ~w & kHighs;
  return (control | hasZeroByte(w ^ (kOnes * '"')) | hasZeroByte(w ^ (kOnes * '\\')) | hasZeroByte(w ^ (kOnes * 0xE2))) !=
         0;
}

inline std::uint64_t load(const char* p) {
  std::uint64_t w;
  std::memcpy(&w, p, 8);
  return w;
}

// Length of the plain run starting at i (bytes that are copied as they are).
inline std::size_t plainRun(std::string_view s, std::size_t i) {
  const std::size_t start = i;
  const char* d = s.data();
  const std::size_t n = s.size();
  while (i + 8 <= n && !wordNeedsEscape(load(d + i))) i += 8;
  for (; i < n; ++i) {
    const auto c = static_cast<unsigned char>(d[i]);
    if (c < 0x20 || c == '"' || c == '\\' || c == 0xE2) break;
  }
  return i - start;
}

inline bool isLineSeparator(std::string_view s, std::size_t i) {
  return i + 2 < s.size() && static_cast<unsigned char>(s[i + 1]) == 0x80 &&
         (static_cast<unsigned char>(s[i + 2]) & 0xFE) == 0xA8;
}

// Bytes written for the special byte at s[i], and how many input bytes it covers.
inline std::size_t escapedWidth(std::string_view s, std::size_t i, std::size_t& consumed) {
  const auto c = static_cast<unsigned char>(s[i]);
  consumed = 1;
  switch (c) {
    case '"': case '\\': case '\n': case '\r': case '\t': case '\b': case '\f': return 2;
    case 0xE2:
      if (isLineSeparator(s, i)) {
        consumed = 3;
        return 6;
      }
      return 1;
    default: return 6;  // \u00XX
  }
}

std::size_t quotedSize(std::string_view s) {
  std::size_t size = 2, i = 0;
  while (i < s.size()) {
    const std::size_t run = plainRun(s, i);
    size += run;
    i += run;
    if (i >= s.size()) break;
    std::size_t consumed;
    size += escapedWidth(s, i, consumed);
    i += consumed;
  }
  return size;
}

char* writeQuoted(char* out, std::string_view s) {
  static constexpr char hex[] = "0123456789abcdef";
  *out++ = '"';
  std::size_t i = 0;
  while (i < s.size()) {
    const std::size_t run = plainRun(s, i);
    std::memcpy(out, s.data() + i, run);
    out += run;
    i += run;
    if (i >= s.size()) break;
    const auto c = static_cast<unsigned char>(s[i]);
    const char* simple = nullptr;
    switch (c) {
      case '"': simple = "\\\""; break;
      case '\\': simple = "\\\\"; break;
      case '\n': simple = "\\n"; break;
      case '\r': simple = "\\r"; break;
      case '\t': simple = "\\t"; break;
      case '\b': simple = "\\b"; break;
      case '\f': simple = "\\f"; break;
      default: break;
    }
    if (simple) {
      out[0] = simple[0];
      out[1] = simple[1];
      out += 2;
      ++i;
    } else if (c == 0xE2) {
      if (isLineSeparator(s, i)) {
        std::memcpy(out, static_cast<unsigned char>(s[i + 2]) == 0xA8 ? "\\u2028" : "\\u2029", 6);
        out += 6;
        i += 3;
      } else {
        *out++ = static_cast<char>(c);
        ++i;
      }
    } else {
      const char esc[6] = {'\\', 'u', '0', '0', hex[c >> 4], hex[c & 0xF]};
      std::memcpy(out, esc, 6);
      out += 6;
      ++i;
    }
  }
  *out++ = '"';
  return out;
}

char* writeLiteral(char* out, std::string_view s) {
  std::memcpy(out, s.data(), s.size());
  return out + s.size();
}

std::string encode(const WebSDKResponseModel& r, std::string_view prefix, std::string_view suffix) {
  char code[24];
  const auto codeEnd = std::to_chars(code, code + sizeof code, r.statusCode).ptr;
  const std::string_view codeText(code, static_cast<std::size_t>(codeEnd - code));

  std::size_t size = prefix.size() + suffix.size();
  size += sizeof(R"({"type":)") - 1 + quotedSize(r.type);
  size += sizeof(R"(,"statusCode":)") - 1 + codeText.size();
  if (r.statusMessage) size += sizeof(R"(,"statusMessage":)") - 1 + quotedSize(*r.statusMessage);
  size += sizeof(R"(,"requestId":)") - 1 + quotedSize(r.requestId);
  if (r.payload) size += sizeof(R"(,"payload":)") - 1 + quotedSize(*r.payload);
  size += 1;

  std::string out;
  out.resize(size);
  char* p = out.data();
  p = writeLiteral(p, prefix);
  p = writeLiteral(p, R"({"type":)");
  p = writeQuoted(p, r.type);
  p = writeLiteral(p, R"(,"statusCode":)");
  p = writeLiteral(p, codeText);
  if (r.statusMessage) {
    p = writeLiteral(p, R"(,"statusMessage":)");
    p = writeQuoted(p, *r.statusMessage);
  }
  p = writeLiteral(p, R"(,"requestId":)");
  p = writeQuoted(p, r.requestId);
  if (r.payload) {
    p = writeLiteral(p, R"(,"payload":)");
    p = writeQuoted(p, *r.payload);
  }
  *p++ = '}';
  writeLiteral(p, suffix);
  return out;
}

}  // namespace

std::string encodeEnvelope(const WebSDKResponseModel& response) { return encode(response, {}, {}); }

std::string nativeResponseScript(const WebSDKResponseModel& response) {
  return encode(response, "nativeResponse(", ")");
}

bool isValidUTF8(std::string_view s) {
  std::size_t i = 0;
  const std::size_t n = s.size();
  while (i < n) {
    while (i + 8 <= n && (load(s.data() + i) & kHighs) == 0) i += 8;
    if (i >= n) break;
    const auto c = static_cast<unsigned char>(s[i]);
    if (c < 0x80) {
      ++i;
      continue;
    }
    std::size_t len;
    std::uint32_t cp;
    if ((c & 0xE0) == 0xC0) len = 2, cp = c & 0x1F;
    else if ((c & 0xF0) == 0xE0) len = 3, cp = c & 0x0F;
    else if ((c & 0xF8) == 0xF0) len = 4, cp = c & 0x07;
    else return false;
    if (i + len > n) return false;
    for (std::size_t k = 1; k < len; ++k) {
      const auto cc = static_cast<unsigned char>(s[i + k]);
      if ((cc & 0xC0) != 0x80) return false;
      cp = (cp << 6) | (cc & 0x3F);
    }
    if ((len == 2 && cp < 0x80) || (len == 3 && cp < 0x800) || (len == 4 && cp < 0x10000) || cp > 0x10FFFF ||
        (cp >= 0xD800 && cp <= 0xDFFF))
      return false;
    i += len;
  }
  return true;
}

}  // namespace websdk
