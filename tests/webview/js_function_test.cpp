#include "websdk/testing/TestingEngine.hpp"
#include "websdk/webview/WebSDKJSFunctionType.hpp"
#include "websdk/webview/WebSDKWebView.hpp"

#include <gtest/gtest.h>

#include <limits>

namespace websdk {
namespace {

using F = WebSDKJSFunctionType;

struct ScriptRow {
  F type;
  std::string_view script;
};

TEST(WebSDKJSFunctionType, EveryCaseWritesItsCallTextVerbatim) {
  const ScriptRow rows[] = {
      {F::keyboardStateChanged(true, 300),
       "if ('keyboardStateChanged' in window){ window.keyboardStateChanged(true,300.0); }"},
      {F::keyboardStateChanged(false, 291.5),
       "if ('keyboardStateChanged' in window){ window.keyboardStateChanged(false,291.5); }"},
      {F::keyboardStateChanged(true, 1e20),
       "if ('keyboardStateChanged' in window){ window.keyboardStateChanged(true,1e+20); }"},
      {F::keyboardStateChanged(true, 0.1),
       "if ('keyboardStateChanged' in window){ window.keyboardStateChanged(true,0.1); }"},
      {F::onScreenVisibility(true), "onScreenVisibility(true)"},
      {F::onScreenVisibility(false), "onScreenVisibility(false)"},
      {F::openDeeplink("dovara://cart?id=1"), "openDeeplink('dovara://cart?id=1')"},
      {F::openDeeplink("a'b"), "openDeeplink('a'b')"},
      {F::userStateChange(true), "LOGIN_STATE_CHANGED('true')"},
      {F::userStateChange(false), "LOGIN_STATE_CHANGED('false')"},
      {F::allowNativeBottomBarExit(R"({"exit":true})"), R"(allowNativeBottomBarExit('{"exit":true}'))"},
      {F::searchQueryInput("'abc')"), "SEARCH_QUERY_INPUT('abc')"},
      {F::searchQueryInput("abc"), "SEARCH_QUERY_INPUT(abc"},
      {F::menuListInteracted(true, false), "swipeBottomsheet(true,false)"},
      {F::menuListInteracted(false, true), "swipeBottomsheet(false,true)"},
      {F::handlePXSearchActions("milk", "recent"), "HANDLE_PX_SEARCH_ACTIONS('milk', 'recent')"},
      {F::updateScratchCardsData("c\\1\n"), "updateScratchCardsData('c\\1\n')"},
      {F::globalJSBridgeHandler(R"({"a":1})"), R"(globalJSBridgeHandler('{"a":1}'))"},
      {F::getPXCartCallback(), "BUILD_PX_CART()"},
      {F::handleSwipeGesture(), "handleHardwareBack()"},
      {F::onHalfCardBackgroundTap(), "onHalfCardBackgroundTap()"},
      {F::updateLocationHeader(), "UPDATE_SELECTED_ADDRESS()"},
      {F::pageResume(), "window.pageResume && window.pageResume()"},
  };
  std::size_t casesSeen = 0;
  for (std::size_t i = 0; i < std::size(rows); ++i) {
    EXPECT_EQ(rows[i].type.script(), rows[i].script) << rows[i].type.caseName();
    if (i == 0 || rows[i].type.kind() != rows[i - 1].type.kind()) ++casesSeen;
  }
  EXPECT_EQ(casesSeen, allCases<WebSDKJSFunctionTypeCase>().size());
}

// The escaped form: each text argument a JSON string literal, whatever it
// holds; the function, its guard and every other argument as before.
TEST(WebSDKJSFunctionType, TheEscapedFormWritesTextAsStringLiterals) {
  const ScriptRow rows[] = {
      {F::openDeeplink("a'b").escaped(), R"(openDeeplink("a'b"))"},
      {F::globalJSBridgeHandler("x'); document.title='INJECTED'; ('").escaped(),
       R"(globalJSBridgeHandler("x'); document.title='INJECTED'; ('"))"},
      {F::allowNativeBottomBarExit("C:\\ \"q\"\n</script>").escaped(),
       R"(allowNativeBottomBarExit("C:\\ \"q\"\n</script>"))"},
      {F::searchQueryInput("pizza'").escaped(), R"(SEARCH_QUERY_INPUT("pizza'"))"},
      {F::handlePXSearchActions("milk", "rec'ent").escaped(), R"(HANDLE_PX_SEARCH_ACTIONS("milk", "rec'ent"))"},
      {F::updateScratchCardsData("\u2028").escaped(), R"(updateScratchCardsData("\u2028"))"},
      {F::updateScratchCardsData("\xFF").escaped(), R"(updateScratchCardsData("?"))"},
      {F::keyboardStateChanged(true, 300).escaped(),
       "if ('keyboardStateChanged' in window){ window.keyboardStateChanged(true,300.0); }"},
      {F::pageResume().escaped(), "window.pageResume && window.pageResume()"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(row.type.script(), row.script);
    EXPECT_EQ(row.type.breakingText(), std::nullopt) << row.script;
  }
  EXPECT_EQ(F::openDeeplink("a'b").breakingText(), "a single quote");
  EXPECT_EQ(F::searchQueryInput("'abc')").breakingText(), std::nullopt);  // a tail brings its quotes
  EXPECT_EQ(F::searchQueryInput("'a\nb')").breakingText(), "a line break");
  EXPECT_EQ(F::allowNativeBottomBarExit("</script>").breakingText(), "\"</script\"");
}

TEST(WebSDKJSFunctionType, CasesCarryingTheSameArgumentStayDistinct) {
  EXPECT_NE(F::globalJSBridgeHandler("x"), F::allowNativeBottomBarExit("x"));
  EXPECT_EQ(F::handlePXSearchActions("a", "b"), F::handlePXSearchActions("a", "b"));
  EXPECT_EQ(F::globalJSBridgeHandler("x").kind(), WebSDKJSFunctionTypeCase::globalJSBridgeHandler);
}

struct ExecuteFixture : ::testing::Test {
  testing::TestingEngine* engine = nullptr;
  std::shared_ptr<WebSDKWebView> view;

  void SetUp() override {
    auto owned = std::make_unique<testing::TestingEngine>();
    engine = owned.get();
    engine->setURL("https://example.com/");
    view = WebSDKWebView::create(std::move(owned), {"example.com"});
  }
};

TEST_F(ExecuteFixture, EvaluatesAtOnceWithoutTheMainQueue) {
  view->executeJSFunction(F::pageResume());
  ASSERT_EQ(engine->evaluations().size(), 1u);
  EXPECT_EQ(engine->evaluations()[0].script, "window.pageResume && window.pageResume()");
  EXPECT_FALSE(engine->evaluations()[0].hasCompletion);
  EXPECT_EQ(engine->queue().pending(), 0u);
}

TEST_F(ExecuteFixture, CompletionGetsTheValueAndNothingOnAScriptError) {
  struct Row {
    ScriptResult result;
    std::optional<JSON> expected;
  };
  const Row rows[] = {
      {{JSON(42), std::nullopt}, JSON(42)},
      {{std::nullopt, std::nullopt}, std::nullopt},
      {{JSON("partial"), std::string("ReferenceError: onScreenVisibility")}, std::nullopt},
  };
  for (const auto& row : rows) {
    engine->evaluator = [&](const std::string&) { return row.result; };
    int calls = 0;
    std::optional<JSON> got = JSON("unset");
    view->executeJSFunctionWithCompletion(F::onScreenVisibility(true), [&](std::optional<JSON> value) {
      ++calls;
      got = std::move(value);
    });
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(got, row.expected);
  }
}

}  // namespace
}  // namespace websdk
