#pragma once
// Tables of payload texts and the model a reader should make of each.

#include "websdk/json/JSON.hpp"

#include <gtest/gtest.h>

#include <optional>
#include <string_view>
#include <vector>

namespace websdk::test {

/// Payload text as the bridge hands it over: anything but an object (written
/// "null" in the tables) is no dictionary at all.
inline std::optional<JSONObject> payloadOf(std::string_view text) {
  JSON v = parseJSON(text);
  if (auto* o = v.if_object()) return std::move(*o);
  return std::nullopt;
}

template <class T>
struct ReaderRow {
  std::string_view payload;
  std::optional<T> expected;  // nothing: the reader fails
};

/// Runs T::from on every row's payload.
template <class T>
void expectReads(const std::vector<ReaderRow<T>>& rows) {
  for (const auto& row : rows) {
    SCOPED_TRACE(row.payload);
    const auto payload = payloadOf(row.payload);
    EXPECT_TRUE(row.payload == "null" || payload) << "a table row that is not a JSON object";
    EXPECT_EQ(T::from(payload), row.expected);
  }
}

}  // namespace websdk::test
