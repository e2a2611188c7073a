#include "Catalogue.hpp"
#include "Inspector.hpp"
#include "websdk/testing/Replay.hpp"

#include <fstream>
#include <iostream>
#include <string_view>

namespace {

constexpr std::string_view kUsage =
    "usage: websdk-inspect [--url URL|none] [--whitelist HOST]... [--whitelist-all]\n"
    "                      [--plugins all|none|FAMILY[,FAMILY...]] [FILE|-]\n"
    "       websdk-inspect --catalogue\n"
    "       websdk-inspect --replay FILE\n"
    "Feeds each script message of FILE (standard input by default), one JSON object a line,\n"
    "through the web view and bridge over the in-memory engine, and prints what each plugin\n"
    "would receive and what the page would be sent. Options take `--opt value` or `--opt=value`.\n"
    "  --url URL|none         the page's URL (https://localhost/)\n"
    "  --whitelist HOST       a trusted host, repeatable (localhost)\n"
    "  --whitelist-all        trust every host\n"
    "  --plugins LIST         the families with a registered plugin (all)\n"
    "  --catalogue            prints the contract as the code reads it (every action, the keys\n"
    "                         its model reads, the page functions), as JSON\n"
    "  --replay FILE          replays a traffic recording (WebSDKConfig::recording) through the\n"
    "                         bridge and says, request by request, whether each one meets the\n"
    "                         same fate now (exit 1 when any does not)\n"
    "  --help                 prints this\n";

}  // namespace

int main(int argc, char** argv) {
  std::vector<std::string> args(argv + 1, argv + argc);
  if (args.size() == 1 && args[0] == "--catalogue") {
    std::cout << websdk::serializePretty(websdk::inspect::catalogue()) << "\n";
    return 0;
  }
  if (!args.empty() && (args[0] == "--replay" || args[0].starts_with("--replay="))) {
    const std::string path = args[0] == "--replay" ? (args.size() == 2 ? args[1] : "") : args[0].substr(9);
    if (path.empty() || args.size() > (args[0] == "--replay" ? 2u : 1u)) {
      std::cerr << "websdk-inspect: --replay takes one file\n" << kUsage;
      return 2;
    }
    std::ifstream in(path);
    if (!in) {
      std::cerr << "websdk-inspect: cannot read " << path << "\n";
      return 2;
    }
    const auto result = websdk::testing::replayRecording(in, std::cout);
    return result.differ == 0 && result.unreadable == 0 ? 0 : 1;
  }
  std::string file, error;
  const auto options = websdk::inspect::parseArguments(args, file, error);
  if (!options) {
    std::cerr << "websdk-inspect: " << error << "\n" << kUsage;
    return 2;
  }
  if (options->help) {
    std::cout << kUsage;
    return 0;
  }
  std::ios::sync_with_stdio(false);
  if (file.empty() || file == "-") return websdk::inspect::run(*options, std::cin, std::cout, std::cerr);
  std::ifstream in(file);
  if (!in) {
    std::cerr << "websdk-inspect: cannot read " << file << "\n";
    return 2;
  }
  return websdk::inspect::run(*options, in, std::cout, std::cerr);
}
