#include "websdk/webview/WebSDKConfig.hpp"

#include "../Text.hpp"

#include <algorithm>
#include <charconv>
#include <cstdint>

namespace websdk {
namespace {

constexpr char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c | 0x20) : c; }

bool isSchemeChar(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '+' || c == '-' || c == '.';
}

bool isSpecial(std::string_view scheme) {
  return scheme == "http" || scheme == "https" || scheme == "ws" || scheme == "wss" || scheme == "ftp" ||
         scheme == "file";
}

// Characters a host may never hold, '%' aside (an opaque host keeps its escapes).
bool isForbiddenHostChar(unsigned char c) {
  return c <= 0x20 || c == 0x7f || c == '#' || c == '/' || c == ':' || c == '<' || c == '>' || c == '?' || c == '@' ||
         c == '[' || c == '\\' || c == ']' || c == '^' || c == '|';
}

// One IPv4 part: decimal, octal with a leading 0, or hex with 0x.
std::optional<std::uint64_t> ipv4Number(std::string_view part) {
  int base = 10;
  if (part.size() >= 2 && part[0] == '0' && lower(part[1]) == 'x') {
    part.remove_prefix(2);
    base = 16;
    if (part.empty()) return 0;
  } else if (part.size() >= 2 && part[0] == '0') {
    part.remove_prefix(1);
    base = 8;
  }
  if (part.empty()) return std::nullopt;
  std::uint64_t value = 0;
  const auto [end, ec] = std::from_chars(part.data(), part.data() + part.size(), value, base);
  if (ec == std::errc::result_out_of_range) return UINT64_MAX;
  if (ec != std::errc() || end != part.data() + part.size()) return std::nullopt;
  return value;
}

std::vector<std::string_view> labels(std::string_view host) {
  std::vector<std::string_view> parts;
  std::size_t start = 0;
  for (;;) {
    const auto dot = host.find('.', start);
    parts.push_back(host.substr(start, dot == std::string_view::npos ? std::string_view::npos : dot - start));
    if (dot == std::string_view::npos) return parts;
    start = dot + 1;
  }
}

// A host whose last label is a number is an IPv4 address, in any of the
// forms the URL standard reads ("0127.0.0.1" is 87.0.0.1, "0x7f.1" is
// 127.0.0.1), or no host at all.
bool endsInNumber(std::string_view host) {
  auto parts = labels(host);
  if (parts.back().empty() && parts.size() > 1) parts.pop_back();
  const std::string_view last = parts.back();
  if (!last.empty() && std::ranges::all_of(last, [](char c) { return c >= '0' && c <= '9'; })) return true;
  return ipv4Number(last).has_value() && last.size() >= 2 && last[0] == '0' && lower(last[1]) == 'x';
}

std::optional<std::string> ipv4(std::string_view host) {
  auto parts = labels(host);
  if (parts.back().empty() && parts.size() > 1) parts.pop_back();
  if (parts.size() > 4) return std::nullopt;
  std::vector<std::uint64_t> numbers;
  for (const auto part : parts) {
    const auto n = ipv4Number(part);
    if (!n) return std::nullopt;
    numbers.push_back(*n);
  }
  for (std::size_t i = 0; i + 1 < numbers.size(); ++i)
    if (numbers[i] > 255) return std::nullopt;
  const std::uint64_t room = std::uint64_t{1} << (8 * (5 - numbers.size()));
  if (numbers.back() >= room) return std::nullopt;
  std::uint64_t address = numbers.back();
  for (std::size_t i = 0; i + 1 < numbers.size(); ++i) address += numbers[i] << (8 * (3 - i));
  return std::to_string(address >> 24) + '.' + std::to_string((address >> 16) & 255) + '.' +
         std::to_string((address >> 8) & 255) + '.' + std::to_string(address & 255);
}

// The host of a special URL: decoded, lowercased, numeric forms in dotted
// decimal. Non-ASCII needs IDN, which is the engine's: no host here.
std::optional<std::string> specialHost(std::string_view raw) {
  if (!raw.empty() && raw.front() == '[') {
    if (raw.back() != ']' || raw.size() < 3) return std::nullopt;
    std::string out;
    for (const char c : raw) {
      if (!(hexValue(c) >= 0 || c == ':' || c == '.' || c == '[' || c == ']')) return std::nullopt;
      out += lower(c);
    }
    return out;
  }
  std::string host;
  for (const char c : percentDecoded(raw)) {
    const auto u = static_cast<unsigned char>(c);
    if (u >= 0x80 || isForbiddenHostChar(u) || c == '%') return std::nullopt;
    host += lower(c);
  }
  if (host.empty()) return host;
  if (endsInNumber(host)) return ipv4(host);
  return host;
}

// An authority's parts: "user@", the host (IPv6 with its brackets), ":port".
struct Authority {
  std::string_view userinfo, host, port;
};

Authority splitAuthority(std::string_view authority) {
  Authority parts;
  if (const auto at = authority.rfind('@'); at != std::string_view::npos) {
    parts.userinfo = authority.substr(0, at + 1);
    authority.remove_prefix(at + 1);
  }
  const auto close = authority.starts_with('[') ? authority.find(']') : std::string_view::npos;
  const auto portColon = authority.find(':', close == std::string_view::npos ? 0 : close);
  parts.host = authority.substr(0, portColon);
  if (portColon != std::string_view::npos) parts.port = authority.substr(portColon);
  return parts;
}

}  // namespace

std::optional<std::string> canonicalURL(std::string_view url) {
  // Leading and trailing controls and spaces go, tabs and line breaks anywhere.
  while (!url.empty() && static_cast<unsigned char>(url.front()) <= 0x20) url.remove_prefix(1);
  while (!url.empty() && static_cast<unsigned char>(url.back()) <= 0x20) url.remove_suffix(1);
  std::string input;
  input.reserve(url.size());
  for (const char c : url)
    if (c != '\t' && c != '\n' && c != '\r') input += c;

  std::size_t colon = 0;
  while (colon < input.size() && isSchemeChar(input[colon])) ++colon;
  if (colon == 0 || colon == input.size() || input[colon] != ':' ||
      !((lower(input[0]) >= 'a' && lower(input[0]) <= 'z')))
    return std::nullopt;
  std::string scheme;
  for (std::size_t i = 0; i < colon; ++i) scheme += lower(input[i]);
  std::string_view rest = std::string_view(input).substr(colon + 1);
  const bool special = isSpecial(scheme);
  const auto isSlash = [&](char c) { return c == '/' || (special && c == '\\'); };

  std::string out = scheme + ':';
  const bool hasAuthority = special ? scheme != "file" || (rest.size() >= 2 && isSlash(rest[0]) && isSlash(rest[1]))
                                    : rest.size() >= 2 && rest[0] == '/' && rest[1] == '/';
  if (!hasAuthority) {
    out += rest;
    return out;
  }
  // "http:///host" and "http:host" name the same host; file: and the other
  // schemes take exactly two slashes.
  if (special && scheme != "file") {
    while (!rest.empty() && isSlash(rest.front())) rest.remove_prefix(1);
  } else {
    rest.remove_prefix(2);
  }
  std::size_t end = 0;
  while (end < rest.size() && !isSlash(rest[end]) && rest[end] != '?' && rest[end] != '#') ++end;
  const auto [userinfo, hostText, port] = splitAuthority(rest.substr(0, end));
  const std::string_view tail = rest.substr(end);
  if (!port.empty() && !std::ranges::all_of(port.substr(1), [](char c) { return c >= '0' && c <= '9'; }))
    return std::nullopt;
  std::string host;
  if (special) {
    auto h = specialHost(hostText);
    if (!h || (h->empty() && scheme != "file")) return std::nullopt;
    host = std::move(*h);
    if (scheme == "file" && host == "localhost") host.clear();
  } else {
    for (const char c : hostText)
      if (static_cast<unsigned char>(c) >= 0x80 ||
          (c != '%' && isForbiddenHostChar(static_cast<unsigned char>(c)) && c != '[' && c != ']' && c != ':'))
        return std::nullopt;
    host = hostText;
  }
  out += "//";
  out += userinfo;
  out += host;
  // A special scheme's default port is left out, as the engine leaves it.
  const std::string_view defaultPort = scheme == "http" || scheme == "ws"     ? ":80"
                                       : scheme == "https" || scheme == "wss" ? ":443"
                                       : scheme == "ftp"                      ? ":21"
                                                                              : "";
  if (port != defaultPort || defaultPort.empty()) out += port;
  std::string path(tail);
  if (special) std::ranges::replace(path, '\\', '/');
  if (special && (path.empty() || path.front() != '/')) path.insert(0, "/");
  return out + path;
}

std::optional<std::string_view> hostOf(std::string_view canonical) {
  const auto colon = canonical.find(':');
  if (colon == std::string_view::npos) return std::nullopt;
  std::string_view rest = canonical.substr(colon + 1);
  if (!rest.starts_with("//")) return std::nullopt;
  rest.remove_prefix(2);
  const std::string_view host = splitAuthority(rest.substr(0, rest.find_first_of("/?#"))).host;
  if (host.empty() || (host.starts_with('[') && !host.ends_with(']'))) return std::nullopt;
  return host;
}

bool WebSDKConfig::isWhitelistedURL(std::string_view url) const {
  const auto canonical = (canonicalizer ? canonicalizer : &canonicalURL)(url);
  if (!canonical) return false;
  const auto host = hostOf(*canonical);
  if (!host) return false;
  if (shouldWhitelistAllUrls) return true;
  const std::string_view text = *canonical;
  const std::string_view scheme = text.substr(0, text.find(':'));
  std::string_view authority = text.substr(scheme.size() + 3);
  authority = authority.substr(0, authority.find_first_of("/?#"));
  // A host under a scheme of the app's own is a name only the app gives a
  // meaning to: a plain entry, which names network hosts, never trusts it.
  const bool network = isSpecial(scheme);
  for (const auto& entry : whitelistedHosts) {
    // An empty entry would trust every host; it trusts none.
    if (entry.empty()) continue;
    if (const auto separator = entry.find("://"); separator != std::string::npos) {
      std::string_view named = std::string_view(entry).substr(separator + 3);
      if (named.ends_with('/')) named.remove_suffix(1);
      const bool sameScheme = std::ranges::equal(std::string_view(entry).substr(0, separator), scheme,
                                                 [](char a, char b) { return lower(a) == b; });
      if (sameScheme && named == authority) return true;
    } else if (network && host->find(entry) != std::string_view::npos) {
      return true;
    }
  }
  return false;
}

WebSDKConfig WebSDKConfig::normalized() const {
  WebSDKConfig out = *this;
  const auto canonicalize = canonicalizer ? canonicalizer : &canonicalURL;
  for (auto& entry : out.whitelistedHosts) {
    // A scheme and its host: the URL's canonical origin when it reads as one
    // ("HTTPS://Shop.Example:443/" is "https://shop.example"), lowercased
    // otherwise; a path or a query makes an entry that matches nothing.
    if (entry.find("://") != std::string::npos) {
      std::ranges::transform(entry, entry.begin(), lower);
      if (entry.ends_with('/')) entry.pop_back();
      const auto canonical = canonicalize(entry + "/");
      if (canonical && hostOf(*canonical) && canonical->ends_with('/') &&
          canonical->find_first_of("/?#", canonical->find("://") + 3) == canonical->size() - 1)
        entry = canonical->substr(0, canonical->size() - 1);
      continue;
    }
    // An entry that reads as a host takes the host's canonical form; any
    // other (a fragment such as ".shop") is only lowercased, as hosts are.
    const bool hostLike = !entry.empty() && entry.find_first_of(":/?#@[]\\ ") == std::string::npos;
    const auto canonical = hostLike ? canonicalize("http://" + entry + "/") : std::nullopt;
    const auto host = canonical ? hostOf(*canonical) : std::nullopt;
    if (host) {
      entry = std::string(*host);
    } else {
      std::ranges::transform(entry, entry.begin(), lower);
    }
  }
  return out;
}

}  // namespace websdk
