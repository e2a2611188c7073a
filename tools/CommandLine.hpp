#pragma once
// The tools' command lines, read one way: `--name value` and `--name=value`,
// flags, `--help` (or `-h`), operands ("-" is one), and `--` before operands
// that start with a dash.

#include <algorithm>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace websdk::tools {

struct OptionSpec {
  std::string_view name;  // with its dashes: "--url"
  bool takesValue;
};

struct CommandLine {
  /// --help was asked for; nothing after it was read.
  bool help = false;
  std::vector<std::pair<std::string, std::string>> options;  // name and value ("" for a flag), in order
  std::vector<std::string> operands;
};

/// Reads `args` (without the program's name) against the options `known`. On
/// an unknown option, a missing value or a value given to a flag returns
/// nothing and sets `error` to a sentence naming the option.
inline std::optional<CommandLine> readCommandLine(const std::vector<std::string>& args,
                                                  std::span<const OptionSpec> known, std::string& error) {
  CommandLine line;
  bool operandsOnly = false;
  for (std::size_t i = 0; i < args.size(); ++i) {
    const std::string& arg = args[i];
    if (operandsOnly || arg == "-" || !arg.starts_with('-')) {
      line.operands.push_back(arg);
      continue;
    }
    if (arg == "--") {
      operandsOnly = true;
      continue;
    }
    if (arg == "--help" || arg == "-h") {
      line.help = true;
      return line;
    }
    const std::size_t equals = arg.find('=');
    const std::string name = arg.substr(0, equals);
    const auto spec = std::find_if(known.begin(), known.end(), [&](const OptionSpec& s) { return s.name == name; });
    if (spec == known.end()) {
      error = "unknown option " + name;
      return std::nullopt;
    }
    if (!spec->takesValue) {
      if (equals != std::string::npos) {
        error = name + " takes no value";
        return std::nullopt;
      }
      line.options.emplace_back(name, "");
    } else if (equals != std::string::npos) {
      line.options.emplace_back(name, arg.substr(equals + 1));
    } else if (i + 1 < args.size()) {
      line.options.emplace_back(name, args[++i]);
    } else {
      error = name + " needs a value";
      return std::nullopt;
    }
  }
  return line;
}

}  // namespace websdk::tools
