#pragma once
// The one way decoding is tested, for every family and at every level:
//
// - `expectReads<Model>(rows)`: a model's reader on its own, payload text in,
//   model (or failure) out;
// - `decodePayload<Family>(action, payload)`: the family's decoding of one
//   request, for tests that look at a single field;
// - `expectDecodes<Family>(rows)`: requests as a page posts them, through the
//   bridge on the in-memory engine to a host registered for every family. A
//   decodable row must reach its own family's operation once, with its action
//   and id, and the page must get no answer from the bridge; a declined row
//   must reach no operation and be answered "not a valid request".

#include "support/Harness.hpp"
#include "websdk/bridge/Families.hpp"
#include "websdk/testing/EveryFamilyHost.hpp"

#include <gtest/gtest.h>

#include <concepts>
#include <optional>
#include <set>
#include <string>
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

/// Runs Model::from on every row's payload.
template <class Model>
void expectReads(const std::vector<ReaderRow<Model>>& rows) {
  for (const auto& row : rows) {
    SCOPED_TRACE(row.payload);
    const auto payload = payloadOf(row.payload);
    EXPECT_TRUE(row.payload == "null" || payload) << "a table row that is not a JSON object";
    EXPECT_EQ(Model::from(payload), row.expected);
  }
}

/// The family's typed payload for one request; `payload` nothing means the
/// request has no "payload" key.
template <class F>
std::optional<typename F::Payload> decodePayload(typename F::Action action,
                                                 std::optional<std::string_view> payload = std::nullopt) {
  return F::Payload::validateRequest(
      typename F::Request{action, "r1", payload ? payloadOf(*payload) : std::optional<JSONObject>{}});
}

/// What a family's plugin should receive: a typed payload, its description
/// as JSON text ({"case":…,"model":…}), or nothing when the family must
/// decline the request. Both forms are compared as descriptions, which list
/// every field the payload's equality does.
struct Receives {
  std::optional<JSON> description;
  Receives(std::nullopt_t) {}                                                         // NOLINT: rows read as a table
  Receives(const char* descriptionText) : description(parseJSON(descriptionText)) {}  // NOLINT
  template <class Payload>
  requires requires(const Payload& p) {
    { p.describe() } -> std::convertible_to<JSON>;
  }
  Receives(const Payload& payload) : description(payload.describe()) {}  // NOLINT
};

struct DecodeRow {
  std::string_view action;
  std::optional<std::string_view> payload;  // nothing: no "payload" key
  Receives expected;
};

/// Posts each row as its own request (id "r1") to a fresh view; returns the
/// actions that reached family F, for tests that must cover every action.
template <class F>
std::set<std::string> expectDecodes(const std::vector<DecodeRow>& rows) {
  std::set<std::string> delivered;
  for (const auto& row : rows) {
    const std::string text = requestText(row.action, row.payload);
    SCOPED_TRACE(text);
    struct Received {
      std::string_view family, action;
      std::string requestId;
      JSON payload;
    };
    std::vector<Received> received;
    auto host = std::make_shared<testing::EveryFamilyHost>([&](const testing::EveryFamilyHost::Delivery& d) {
      received.push_back({d.family, d.action, d.requestId, d.payload});
    });
    Harness harness({"localhost"}, false, "https://localhost/");
    testing::registerForEveryFamily(*harness.view, host);
    const auto responses = harness.post(text);
    if (!row.expected.description) {
      EXPECT_TRUE(received.empty()) << "a declined request reaches no plugin";
      EXPECT_EQ(responses.size(), 1u);
      if (responses.size() != 1) continue;
      EXPECT_EQ(responses[0].at("type"), "FAILED");
      EXPECT_EQ(responses[0].at("requestId"), "r1");
      EXPECT_EQ(responses[0].at("statusCode"), 1004);
      EXPECT_EQ(responses[0].at("statusMessage"), "not a valid request");
      continue;
    }
    EXPECT_TRUE(responses.empty()) << "the bridge never answers an accepted request itself";
    EXPECT_EQ(received.size(), 1u) << "only the family's own operation is called";
    if (received.size() != 1) continue;
    EXPECT_EQ(received[0].family, F::name);
    EXPECT_EQ(received[0].action, row.action);
    EXPECT_EQ(received[0].requestId, "r1");
    EXPECT_EQ(received[0].payload, *row.expected.description) << serialize(received[0].payload);
    delivered.emplace(row.action);
  }
  return delivered;
}

/// Every action string of family F.
template <class F>
std::set<std::string> everyAction() {
  std::set<std::string> out;
  for (const auto& entry : enumTable<typename F::Action>) out.emplace(entry.raw);
  return out;
}

}  // namespace websdk::test
