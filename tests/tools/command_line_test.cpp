// Both tools read `--opt value` and `--opt=value` alike, answer --help, and
// refuse a bad argument with a sentence naming it.

#include "../../tools/demo/DemoOptions.hpp"
#include "../../tools/inspect/Inspector.hpp"

#include <gtest/gtest.h>

#include <optional>
#include <set>
#include <string>
#include <vector>

namespace websdk {
namespace {

struct InspectRow {
  std::vector<std::string> args;
  std::string error;  // "" when the arguments are good
  std::optional<std::string> url = "https://localhost/";
  std::vector<std::string> whitelist = {"localhost"};
  std::set<std::string> plugins = {};  // checked when not empty
  std::string file = "";
  bool help = false;
  bool whitelistAll = false;
};

TEST(CommandLine, InspectReadsBothOptionFormsHelpAndRefusals) {
  const std::vector<InspectRow> rows = {
      {{"--url=https://a.test/x?q=1"}, "", "https://a.test/x?q=1"},
      {{"--url", "https://a.test/x?q=1"}, "", "https://a.test/x?q=1"},
      {{"--url=none"}, "", std::nullopt},
      {{"--url=a=b"}, "", "a=b"},  // only the first '=' separates
      {{"--whitelist=one.test", "--whitelist", "two.test"}, "", "https://localhost/", {"one.test", "two.test"}},
      {{"--plugins=cart,generic", "in"}, "", "https://localhost/", {"localhost"}, {"cart", "generic"}, "in"},
      {{"--whitelist-all", "-"}, "", "https://localhost/", {"localhost"}, {}, "-", false, true},
      {{"--", "--odd-name"}, "", "https://localhost/", {"localhost"}, {}, "--odd-name"},
      {{"--help"}, "", "https://localhost/", {"localhost"}, {}, "", true},
      {{"--url", "x", "-h", "--frobnicate"}, "", "https://localhost/", {"localhost"}, {}, "", true},
      {{"--frobnicate"}, "unknown option --frobnicate"},
      {{"--frobnicate=1"}, "unknown option --frobnicate"},
      {{"--url"}, "--url needs a value"},
      {{"--whitelist-all=yes"}, "--whitelist-all takes no value"},
      {{"--plugins=cart,nosuch"}, "unknown family nosuch"},
      {{"a.jsonl", "b.jsonl"}, "more than one input file"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(::testing::PrintToString(row.args));
    std::string file, error;
    const auto options = inspect::parseArguments(row.args, file, error);
    if (!row.error.empty()) {
      EXPECT_FALSE(options);
      EXPECT_EQ(error, row.error);
      continue;
    }
    ASSERT_TRUE(options) << error;
    EXPECT_EQ(options->help, row.help);
    if (row.help) continue;
    EXPECT_EQ(options->url, row.url);
    EXPECT_EQ(options->whitelist, row.whitelist);
    EXPECT_EQ(options->whitelistAll, row.whitelistAll);
    if (!row.plugins.empty()) {
      EXPECT_EQ(options->plugins, row.plugins);
    }
    EXPECT_EQ(file, row.file);
  }
}

struct DemoRow {
  std::vector<std::string> args;
  std::string error;  // "" when the arguments are good
  bool headless = false;
  std::string screenshot = "";
  bool help = false;
  bool localPages = false;
};

TEST(CommandLine, DemoReadsBothOptionFormsHelpAndRefusals) {
  const std::vector<DemoRow> rows = {
      {{}, ""},
      {{"--headless", "--screenshot=build/demo.png"}, "", true, "build/demo.png"},
      {{"--screenshot", "build/demo.png", "--headless"}, "", true, "build/demo.png"},
      {{"--local-pages"}, "", false, "", false, true},
      {{"--help"}, "", false, "", true},
      {{"--frobnicate", "--help"}, "unknown option --frobnicate"},
      {{"--display=:1"}, "unknown option --display"},
      {{"--screenshot"}, "--screenshot needs a value"},
      {{"--screenshot="}, "--screenshot needs a file name"},
      {{"--headless=1"}, "--headless takes no value"},
      {{"demo.png"}, "unexpected argument demo.png"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(::testing::PrintToString(row.args));
    std::string error;
    const auto options = demo::parseDemoArguments(row.args, error);
    if (!row.error.empty()) {
      EXPECT_FALSE(options);
      EXPECT_EQ(error, row.error);
      continue;
    }
    ASSERT_TRUE(options) << error;
    EXPECT_EQ(options->help, row.help);
    EXPECT_EQ(options->headless, row.headless);
    EXPECT_EQ(options->screenshot, row.screenshot);
    EXPECT_EQ(options->localPages, row.localPages);
  }
}

}  // namespace
}  // namespace websdk
