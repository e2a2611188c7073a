#pragma once
// A page's (or a host's) words in a log line: short, whole characters, and no
// control character that could forge a line of its own.

#include <cstddef>
#include <string>
#include <string_view>

namespace websdk {

inline std::string shownInLog(std::string_view text) {
  constexpr std::size_t kShown = 80;
  const bool cut = text.size() > kShown;
  if (cut) {
    std::size_t end = kShown;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
    text = text.substr(0, end);
  }
  std::string out;
  out.reserve(text.size() + 3);
  for (const char c : text) out += static_cast<unsigned char>(c) < 0x20 || c == 0x7F ? '?' : c;
  return cut ? out + "..." : out;
}

}  // namespace websdk
