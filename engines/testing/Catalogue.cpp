#include "websdk/testing/Catalogue.hpp"

#include "websdk/bridge/WebSDKScriptHandler.hpp"

namespace websdk::testing {

JSON catalogue(const std::vector<const FamilyType*>& families, const std::vector<EventDeclaration>& events) {
  JSONArray described;
  for (const FamilyType* family : families) described.push_back(family->describe());
  JSONArray declared;
  for (const auto& event : events) declared.push_back(JSONObject{{"name", event.name}, {"fields", event.fields}});
  return JSONObject{{"families", std::move(described)}, {"events", std::move(declared)}};
}

std::vector<const FamilyType*> libraryFamilies() { return WebSDKScriptHandler().families(); }

}  // namespace websdk::testing
