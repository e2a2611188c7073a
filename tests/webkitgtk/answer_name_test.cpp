// An answer's fields ride in its message's name: every head reads back as it
// was written, and names the module must not act on are refused.

#include "PageChannel.hpp"

#include <gtest/gtest.h>

#include <limits>

namespace websdk::webkitgtk::channel {
namespace {

bool operator==(const AnswerHead& a, const AnswerHead& b) {
  return a.document == b.document && a.wantsReply == b.wantsReply && a.statusCode == b.statusCode &&
         a.hasPayload == b.hasPayload && a.type == b.type && a.statusMessage == b.statusMessage &&
         a.requestId == b.requestId;
}

TEST(AnswerName, EveryHeadReadsBackAsWritten) {
  const AnswerHead heads[] = {
      {1, false, 0, false, "SUCCESS", std::nullopt, "r1"},
      {std::numeric_limits<std::uint64_t>::max(), true, -1, true, "FAILED", "", ""},
      {42, true, std::numeric_limits<std::int64_t>::min(), true, "FAILED", "a:b - c\n\"d\"", "id:with:colons"},
      {7, false, 1005, true, "SUCCESS", std::string("nul\0inside", 10), "\xF0\x9F\x8D\x95"},
  };
  for (const auto& head : heads) {
    SCOPED_TRACE(head.requestId);
    AnswerHead read;
    ASSERT_TRUE(readAnswerName(answerName(head), read)) << answerName(head);
    EXPECT_TRUE(read == head);
  }
}

TEST(AnswerName, OtherNamesAreRefused) {
  const char* names[] = {
      "websdk:evaluate:r:1",               // an evaluation
      "websdk:answer:x:1:0:p:53:-:72",     // neither r nor n
      "websdk:answer:r::0:p:53:-:72",      // no document
      "websdk:answer:r:1:zero:p:53:-:72",  // a code that is no number
      "websdk:answer:r:1:0:q:53:-:72",     // neither p nor -
      "websdk:answer:r:1:0:p:5:-:72",      // half a byte
      "websdk:answer:r:1:0:p:5G:-:72",     // not hex
      "websdk:answer:r:1:0:p:53:-",        // no request id
      "websdk:answer:r:1:0:p:53:-:72:74",  // a field too many
  };
  for (const char* name : names) {
    AnswerHead head;
    EXPECT_FALSE(readAnswerName(name, head)) << name;
  }
}

}  // namespace
}  // namespace websdk::webkitgtk::channel
