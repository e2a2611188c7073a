#pragma once
// websdk-demo's command line. No GTK here: the tool tests read it too.

#include "../CommandLine.hpp"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace websdk::demo {

struct DemoOptions {
  bool help = false;
  bool headless = false;
  bool localPages = false;
  std::string screenshot;  // empty: none
};

inline constexpr std::string_view kDemoUsage =
    "usage: websdk-demo [--headless] [--local-pages] [--screenshot FILE]\n"
    "  (no option)        opens the checkout in a window\n"
    "  --headless         runs the scripted checkout and exits, 0 when every step got its answer\n"
    "  --local-pages      serves the checkout from the app itself (app://checkout/index.html)\n"
    "  --screenshot FILE  writes the page as a PNG once it is done\n"
    "  --help             prints this\n";

/// Reads the arguments after the program's name; on a bad one returns nothing
/// and sets `error`.
inline std::optional<DemoOptions> parseDemoArguments(const std::vector<std::string>& args, std::string& error) {
  static constexpr tools::OptionSpec known[] = {
      {"--headless", false}, {"--local-pages", false}, {"--screenshot", true}};
  const auto line = tools::readCommandLine(args, known, error);
  if (!line) return std::nullopt;
  DemoOptions options;
  options.help = line->help;
  if (options.help) return options;
  if (!line->operands.empty()) {
    error = "unexpected argument " + line->operands.front();
    return std::nullopt;
  }
  for (const auto& [name, value] : line->options) {
    if (name == "--headless") options.headless = true;
    if (name == "--local-pages") options.localPages = true;
    if (name == "--screenshot") {
      if (value.empty()) {
        error = "--screenshot needs a file name";
        return std::nullopt;
      }
      options.screenshot = value;
    }
  }
  return options;
}

}  // namespace websdk::demo
