// What a line typed at websdk-serve's prompt pushes to the page.
#include "Pushes.hpp"

#include <gtest/gtest.h>

namespace websdk::serve {
namespace {

TEST(PushesTest, ALineNamesAPageFunctionAndItsArguments) {
  const struct {
    const char* line;
    const char* script;
  } rows[] = {
      {"updateLocationHeader", "UPDATE_SELECTED_ADDRESS()"},
      {"  UPDATE_SELECTED_ADDRESS ", "UPDATE_SELECTED_ADDRESS()"},
      {"keyboardStateChanged true 300",
       "if ('keyboardStateChanged' in window){ window.keyboardStateChanged(true,300.0); }"},
      {"userStateChange false", "LOGIN_STATE_CHANGED('false')"},
      // The last argument takes the rest of the line, spaces and all.
      {R"(globalJSBridgeHandler {"event": "refresh", "n": 2})",
       R"(globalJSBridgeHandler('{"event": "refresh", "n": 2}'))"},
      {"HANDLE_PX_SEARCH_ACTIONS milk recent searches", "HANDLE_PX_SEARCH_ACTIONS('milk', 'recent searches')"},
  };
  for (const auto& row : rows) {
    std::string error;
    const auto push = readPush(row.line, error);
    ASSERT_TRUE(push) << row.line << ": " << error;
    ASSERT_TRUE(std::holds_alternative<WebSDKJSFunctionType>(*push)) << row.line;
    EXPECT_EQ(std::get<WebSDKJSFunctionType>(*push).script(), row.script) << row.line;
  }
}

TEST(PushesTest, JsTakesAnyScript) {
  std::string error;
  const auto push = readPush("js document.title = 'a b'", error);
  ASSERT_TRUE(push) << error;
  EXPECT_EQ(std::get<RawScript>(*push).script, "document.title = 'a b'");
}

TEST(PushesTest, AWrongLineSaysWhatItWanted) {
  const struct {
    const char* line;
    const char* error;
  } rows[] = {
      {"onScreenVisibility maybe", R"(onScreenVisibility: its argument "isVisible" is true or false, not maybe)"},
      {"keyboardStateChanged true", R"(keyboardStateChanged: its argument "height" is a number, and is missing)"},
      {"keyboardStateChanged true tall", R"(keyboardStateChanged: its argument "height" is a number, not tall)"},
      {"updateLocationHeader now", "updateLocationHeader takes no arguments"},
      {"refreshEverything", R"(no page function "refreshEverything" (type help for the list))"},
      {"js", "js takes a script"},
  };
  for (const auto& row : rows) {
    std::string error;
    EXPECT_FALSE(readPush(row.line, error)) << row.line;
    EXPECT_EQ(error, row.error) << row.line;
  }
}

}  // namespace
}  // namespace websdk::serve
