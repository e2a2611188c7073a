#pragma once
// Where the engine finds its web-process module (libwebsdk-header-guard.so).
// WebKit loads every module in the directory it is given into its web
// processes, so a directory is used only when it is not writable by anyone,
// is owned by root or by this user, and holds the module.

#include <optional>
#include <string>
#include <vector>

namespace websdk::webkitgtk::guard {

/// A place the engine looks at: how a warning names it, and the directory.
struct Place {
  std::string name;
  std::string directory;
};

/// Why `directory` is not used, or nothing when it is usable.
std::optional<std::string> refusal(const std::string& directory);

struct Lookup {
  std::optional<std::string> directory;  // the first usable place
  std::string warning;                   // when there is none: every place and why it was refused
};

/// The first usable place in `places`.
Lookup lookUp(const std::vector<Place>& places);

/// The directory to give WebKit, or nothing. WEBSDK_WEB_EXTENSIONS_DIR, when
/// set, is the only place looked at; otherwise `configured` (the installed
/// package's directory; may be empty), then the directory the engine was
/// configured to be installed into, then its build tree. When none is usable
/// this logs one warning naming each place and the variable; the answer is
/// kept for each value of the variable and `configured`, so it is given once.
/// Any thread.
std::optional<std::string> moduleDirectory(const std::string& configured);

}  // namespace websdk::webkitgtk::guard
