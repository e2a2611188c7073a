#include "websdk/webview/WebEngine.hpp"

#include <algorithm>

namespace websdk {

void WebEngine::evaluateAnswer(DocumentID document, WebSDKResponseModel answer, ScriptCompletion completion) {
  if (auto script = nativeResponseScript(answer))
    evaluateInDocument(document, std::move(*script), std::move(completion));
}

bool sameFieldName(std::string_view a, std::string_view b) {
  return std::ranges::equal(a, b, [](unsigned char x, unsigned char y) {
    return (x >= 'A' && x <= 'Z' ? x | 0x20 : x) == (y >= 'A' && y <= 'Z' ? y | 0x20 : y);
  });
}

bool URLRequest::confines(std::string_view name) const {
  return std::ranges::any_of(confinedHeaders,
                             [&](const std::string& confined) { return sameFieldName(confined, name); });
}

HeaderFields URLRequest::headersFor(std::string_view target) const {
  if (confinedHeaders.empty() || trust.isWhitelistedURL(target)) return headers;
  HeaderFields kept;
  for (const auto& field : headers)
    if (!confines(field.first)) kept.push_back(field);
  return kept;
}

HeaderFields URLRequest::confinedFields() const {
  HeaderFields confined;
  for (const auto& field : headers)
    if (confines(field.first)) confined.push_back(field);
  return confined;
}

HeaderFields URLRequest::confinedFieldsFor(std::string_view target) const {
  return trust.isWhitelistedURL(target) ? confinedFields() : HeaderFields{};
}

}  // namespace websdk
