#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace websdk {

/// Which hosts the web view trusts with the app's headers and the bridge.
struct WebSDKConfig {
  std::vector<std::string> whitelistedHosts;
  bool shouldWhitelistAllUrls = false;

  /// False for a URL without a host (also when every URL is trusted); true
  /// when every URL is trusted; otherwise true when some entry occurs anywhere
  /// inside the host. The containment test is loose on purpose: "example.com"
  /// also trusts "example.com.other.test". Case-sensitive; scheme, port and
  /// path play no part.
  bool isWhitelistedURL(std::string_view url) const;

  bool operator==(const WebSDKConfig&) const = default;
};

/// The parts of a URL the web view needs.
struct ParsedURL {
  std::string_view scheme;
  std::optional<std::string_view> host;  // absent for URLs without an authority host
};

/// Parses an absolute URL ("scheme:rest") made only of the characters URLs may
/// carry, with well-formed percent escapes. Anything else is not a URL.
std::optional<ParsedURL> parseURL(std::string_view url);

}  // namespace websdk
