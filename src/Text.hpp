#pragma once
// Text helpers the URL and JSON code share: hex digits and percent-decoding.

#include <string>
#include <string_view>

namespace websdk {

/// The value of hex digit `c` (either case), or -1.
constexpr int hexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  c = static_cast<char>(c | 0x20);
  return c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

/// `s` with each "%XY" escape followed by at least one more character
/// replaced by its byte; anything else is kept as it stands.
inline std::string percentDecoded(std::string_view s) {
  std::string out;
  out.reserve(s.size());
  for (std::size_t i = 0; i < s.size(); ++i) {
    if (s[i] == '%' && i + 2 < s.size() && hexValue(s[i + 1]) >= 0 && hexValue(s[i + 2]) >= 0) {
      out += static_cast<char>(hexValue(s[i + 1]) * 16 + hexValue(s[i + 2]));
      i += 2;
    } else {
      out += s[i];
    }
  }
  return out;
}

}  // namespace websdk
