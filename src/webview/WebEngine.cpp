#include "websdk/webview/WebEngine.hpp"

#include <algorithm>

namespace websdk {

bool sameFieldName(std::string_view a, std::string_view b) {
  return std::ranges::equal(a, b, [](unsigned char x, unsigned char y) {
    return (x >= 'A' && x <= 'Z' ? x | 0x20 : x) == (y >= 'A' && y <= 'Z' ? y | 0x20 : y);
  });
}

HeaderFields URLRequest::headersFor(std::string_view target) const {
  if (confinedHeaders.empty() || trust.isWhitelistedURL(target)) return headers;
  HeaderFields kept;
  for (const auto& field : headers)
    if (std::ranges::none_of(confinedHeaders,
                             [&](const std::string& name) { return sameFieldName(name, field.first); }))
      kept.push_back(field);
  return kept;
}

}  // namespace websdk
