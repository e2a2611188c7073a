#pragma once
// The contract as the code reads it: every family's actions, the payload case
// each one decodes to and the keys its model reads (with their readings and
// whether they are required), and the page functions native code calls.
//
// Nothing is run to learn it: each family's action table names its rows'
// models, and each model's declaration is its schema. A key is required when
// the action does not decode without it.

#include "websdk/json/JSON.hpp"

namespace websdk::inspect {

/// {"families": [{"name", "actions": [{"action", "case", "payload", "fields"}]}],
///  "pageFunctions": [{"case", "function", "script", "arguments": [{"name", "type", "written"}]}]}
JSON catalogue();

}  // namespace websdk::inspect
