#pragma once
// websdk-inspect: feeds script messages through the real web view and bridge
// over the in-memory engine, and reports what each family's host object would
// receive and what the page would be sent.

#include "websdk/json/JSON.hpp"

#include <iosfwd>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace websdk::inspect {

struct Options {
  std::optional<std::string> url = "https://localhost/";
  std::vector<std::string> whitelist = {"localhost"};
  bool whitelistAll = false;
  std::set<std::string> plugins;  // family names with a registered host object
  bool help = false;              // --help: print the usage, inspect nothing
};

/// Parses the command line (`--opt value` or `--opt=value`); on a bad argument
/// returns nothing and sets `error`.
std::optional<Options> parseArguments(const std::vector<std::string>& args, std::string& file, std::string& error);

/// The family names, in the bridge's order.
std::vector<std::string> familyNames();

/// Handles every input line; writes one JSON line per message to `out` and
/// errors to `err`. Returns the exit status.
int run(const Options& options, std::istream& in, std::ostream& out, std::ostream& err);

}  // namespace websdk::inspect
