#pragma once
/// @file
/// A response payload as the send operations take it: any response model (a
/// record) or a dictionary of strings, rendered to JSON when the answer is sent.

#include "websdk/Export.hpp"
#include "websdk/json/JSON.hpp"
#include "websdk/json/Record.hpp"

#include <map>
#include <string>

namespace websdk {

/// An answer's payload as JSON: a response model (any record) or a dictionary
/// of strings.
class WEBSDK_EXPORT WebSDKResponseProtocol {
 public:
  /// The record encoded with its keys.
  template <Record T>
  WebSDKResponseProtocol(const T& model) : value_(toJSON(model)) {}
  /// The dictionary as a JSON object of strings.
  WebSDKResponseProtocol(const std::map<std::string, std::string>& dictionary);
  /// The payload.
  const JSON& json() const { return value_; }

 private:
  JSON value_;
};

}  // namespace websdk
