#include "websdk/webview/WebSDKConfig.hpp"

#include <array>

namespace websdk {
namespace {

// Unreserved, reserved and '%' characters of RFC 3986; bytes of UTF-8 text
// (an internationalised URL) are let through as well. A table, because every
// bridge message checks its page's URL.
constexpr auto kURLChars = [] {
  std::array<bool, 256> table{};
  for (int c = 0x80; c < 0x100; ++c) table[c] = true;
  for (int c = '0'; c <= '9'; ++c) table[c] = true;
  for (int c = 'a'; c <= 'z'; ++c) table[c] = table[c - 'a' + 'A'] = true;
  for (unsigned char c : std::string_view("-._~:/?#[]@!$&'()*+,;=%")) table[c] = true;
  return table;
}();

bool isSchemeChar(unsigned char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '+' || c == '-' ||
         c == '.';
}

bool isHex(unsigned char c) { return (c >= '0' && c <= '9') || ((c | 0x20) >= 'a' && (c | 0x20) <= 'f'); }

}  // namespace

std::optional<ParsedURL> parseURL(std::string_view url) {
  const auto* p = reinterpret_cast<const unsigned char*>(url.data());
  const std::size_t n = url.size();
  std::size_t colon = 0;
  while (colon < n && isSchemeChar(p[colon])) ++colon;
  if (colon == 0 || colon == n || p[colon] != ':' || !((p[0] | 0x20) >= 'a' && (p[0] | 0x20) <= 'z'))
    return std::nullopt;
  for (std::size_t i = colon + 1; i < n; ++i) {
    if (!kURLChars[p[i]]) return std::nullopt;
    if (p[i] == '%' && (i + 2 >= n || !isHex(p[i + 1]) || !isHex(p[i + 2]))) return std::nullopt;
  }
  ParsedURL parsed{url.substr(0, colon), std::nullopt};
  std::size_t i = colon + 1;
  if (n - i < 2 || p[i] != '/' || p[i + 1] != '/') return parsed;
  i += 2;
  std::size_t begin = i, end = i;
  for (; end < n && p[end] != '/' && p[end] != '?' && p[end] != '#'; ++end)
    if (p[end] == '@') begin = end + 1;  // user information ends at the last '@'
  std::string_view host = url.substr(begin, end - begin);
  if (!host.empty() && host.front() == '[') {
    const auto close = host.find(']');
    if (close == std::string_view::npos) return std::nullopt;
    host = host.substr(1, close - 1);
  } else if (const auto port = host.find(':'); port != std::string_view::npos) {
    host = host.substr(0, port);
  }
  if (!host.empty()) parsed.host = host;
  return parsed;
}

bool WebSDKConfig::isWhitelistedURL(std::string_view url) const {
  const auto parsed = parseURL(url);
  if (!parsed || !parsed->host) return false;
  if (shouldWhitelistAllUrls) return true;
  // An empty entry would trust every host; it trusts none.
  for (const auto& entry : whitelistedHosts)
    if (!entry.empty() && parsed->host->find(entry) != std::string_view::npos) return true;
  return false;
}

}  // namespace websdk
