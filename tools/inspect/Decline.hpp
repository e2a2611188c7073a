#pragma once
// Why the bridge would answer a request "not a valid request": the action no
// family knows, the id that is not a string, or the first required key that
// is missing or of a type its reading refuses, named with the reading the
// catalogue gives it. websdk-inspect and websdk-serve say it in these words.

#include <optional>
#include <string>
#include <string_view>

namespace websdk::inspect {

/// The reason `requestText` is declined, or nothing when the contract's
/// catalogue finds no fault in it.
std::optional<std::string> whyDeclined(std::string_view requestText);

}  // namespace websdk::inspect
