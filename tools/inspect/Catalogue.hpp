#pragma once
// The contract as the code reads it: every family's actions, the payload case
// each one decodes to and the keys its model reads (with their readings and
// whether they are required), and the page functions native code calls.
//
// Readers are plain functions, so the keys are learned by running them: each
// action's readers run over sample payloads while a ReadingObserver notes
// every key looked up and every reading made. A key nobody looked up becomes
// part of the next sample, shaped after the readings it drew, until a round
// learns nothing new. A key is required when the action no longer decodes
// without it.

#include "websdk/json/JSON.hpp"

namespace websdk::inspect {

/// {"families": [{"name", "actions": [{"action", "case", "payload", "fields"}]}],
///  "pageFunctions": [{"case", "script", "arguments"}]}
JSON catalogue();

}  // namespace websdk::inspect
