#pragma once
/// @file
/// A host's contract as the code reads it, for the host's own small tools:
/// its families' actions with the keys each model reads (as
/// `websdk-inspect --catalogue` prints the library's), and the events it
/// pushes with what their data holds. The page package's `websdk-typings`
/// turns it into the page's typings.
///
/// ~~~{.cpp}
///   std::cout << websdk::serializePretty(websdk::testing::catalogue(
///       {&websdk::familyType<LoyaltyFamily>()},
///       {websdk::testing::declareEvent<PointsChanged>("loyaltyPointsChanged")}));
/// ~~~

#include "websdk/Export.hpp"
#include "websdk/bridge/Family.hpp"
#include "websdk/json/Schema.hpp"

#include <string>
#include <vector>

namespace websdk::testing {

/// An event the host pushes (WebSDKWebView::emit) and the keys its data
/// holds; no fields: any JSON.
struct WEBSDK_EXPORT EventDeclaration {
  std::string name;  ///< The event's name.
  JSONArray fields;  ///< What its data holds, as a model's keys are listed.
};

/// Event `name`, whose data is written from model `Model` (websdk::emit):
/// its required fields are always there.
template <Declared Model>
EventDeclaration declareEvent(std::string name) {
  return EventDeclaration{std::move(name), modelSchema<Model>(true)};
}

/// {"families": [{"name", "actions": [{"action", "case", "payload", "fields"}]}],
///  "events": [{"name", "fields"}]}: the families and events given, in order.
WEBSDK_EXPORT JSON catalogue(const std::vector<const FamilyType*>& families,
                             const std::vector<EventDeclaration>& events = {});

/// The library's own families, in trial order.
WEBSDK_EXPORT std::vector<const FamilyType*> libraryFamilies();

}  // namespace websdk::testing
