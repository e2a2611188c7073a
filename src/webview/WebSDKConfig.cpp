#include "websdk/webview/WebSDKConfig.hpp"

#include <cctype>

namespace websdk {
namespace {

bool isSchemeChar(char c) {
  return std::isalnum(static_cast<unsigned char>(c)) || c == '+' || c == '-' || c == '.';
}

// Unreserved, reserved and '%' characters of RFC 3986; bytes of UTF-8 text
// (an internationalised URL) are let through as well.
bool isURLChar(unsigned char c) {
  if (c >= 0x80) return true;
  if (std::isalnum(c)) return true;
  switch (c) {
    case '-': case '.': case '_': case '~': case ':': case '/': case '?': case '#': case '[': case ']': case '@':
    case '!': case '$': case '&': case '\'': case '(': case ')': case '*': case '+': case ',': case ';': case '=':
    case '%':
      return true;
    default:
      return false;
  }
}

}  // namespace

std::optional<ParsedURL> parseURL(std::string_view url) {
  const auto colon = url.find(':');
  if (colon == std::string_view::npos || colon == 0 || !std::isalpha(static_cast<unsigned char>(url[0])))
    return std::nullopt;
  for (std::size_t i = 0; i < colon; ++i)
    if (!isSchemeChar(url[i])) return std::nullopt;
  for (std::size_t i = colon + 1; i < url.size(); ++i) {
    const auto c = static_cast<unsigned char>(url[i]);
    if (!isURLChar(c)) return std::nullopt;
    if (c == '%') {
      if (i + 2 >= url.size() || !std::isxdigit(static_cast<unsigned char>(url[i + 1])) ||
          !std::isxdigit(static_cast<unsigned char>(url[i + 2])))
        return std::nullopt;
    }
  }
  ParsedURL parsed{url.substr(0, colon), std::nullopt};
  std::string_view rest = url.substr(colon + 1);
  if (rest.substr(0, 2) != "//") return parsed;
  rest.remove_prefix(2);
  std::string_view authority = rest.substr(0, rest.find_first_of("/?#"));
  if (const auto at = authority.rfind('@'); at != std::string_view::npos) authority.remove_prefix(at + 1);
  std::string_view host;
  if (!authority.empty() && authority.front() == '[') {
    const auto close = authority.find(']');
    if (close == std::string_view::npos) return std::nullopt;
    host = authority.substr(1, close - 1);
  } else {
    host = authority.substr(0, authority.find(':'));
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
