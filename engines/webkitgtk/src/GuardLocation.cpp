// Where the engine finds its web-process module. G_MESSAGES_DEBUG=websdk
// shows the directory chosen.

#include "GuardLocation.hpp"

#include "HeaderGuard.hpp"
#include "websdk/Log.hpp"

#include <glib.h>
#include <glib/gstdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <map>
#include <mutex>
#include <utility>

namespace websdk::webkitgtk::guard {

namespace {

constexpr char kVariable[] = "WEBSDK_WEB_EXTENSIONS_DIR";

std::string owned(gchar* text) {
  std::string out(text);
  g_free(text);
  return out;
}

// WebKit's web processes need not share our working directory.
std::string absolute(const std::string& directory) {
  if (directory.empty() || g_path_is_absolute(directory.c_str())) return directory;
  const std::string here = owned(g_get_current_dir());
  return owned(g_build_filename(here.c_str(), directory.c_str(), nullptr));
}

// In order; a directory already named is not looked at again.
std::vector<Place> placesFor(const char* variable, const std::string& configured) {
  if (variable != nullptr && *variable != '\0') return {{kVariable, absolute(variable)}};
  std::vector<Place> places{{kVariable, ""}, {"the configuration's webExtensionsDirectory", absolute(configured)}};
  for (Place fallback : {Place{"the install directory", WEBSDK_WEB_EXTENSIONS_INSTALL_DIR},
                         Place{"the build tree", WEBSDK_WEB_EXTENSIONS_BUILD_DIR}}) {
    bool named = false;
    for (const auto& place : places) named = named || place.directory == fallback.directory;
    if (!named) places.push_back(std::move(fallback));
  }
  return places;
}

}  // namespace

std::optional<std::string> refusal(const std::string& directory) {
  if (directory.empty()) return "not set";
  GStatBuf info;
  if (g_stat(directory.c_str(), &info) != 0) return std::string(g_strerror(errno));
  if (!S_ISDIR(info.st_mode)) return "not a directory";
  if ((info.st_mode & S_IWOTH) != 0) return "anyone may write to it";
  if (info.st_uid != 0 && info.st_uid != getuid()) return "owned by another user";
  const std::string module = owned(g_build_filename(directory.c_str(), kModule, nullptr));
  if (!g_file_test(module.c_str(), G_FILE_TEST_IS_REGULAR)) return std::string("no ") + kModule + " in it";
  return std::nullopt;
}

Lookup lookUp(const std::vector<Place>& places) {
  std::string looked;
  for (const auto& place : places) {
    const auto why = refusal(place.directory);
    if (!why) return {place.directory, {}};
    if (!looked.empty()) looked += "; ";
    looked += place.name + (place.directory.empty() ? "" : " " + place.directory) + " (" + *why + ")";
  }
  return {std::nullopt, std::string("the app's headers are not sent: no usable web-process module ") + kModule +
                            ". Looked at " + looked + ". Set " + kVariable + " to the directory that holds it."};
}

std::optional<std::string> moduleDirectory(const std::string& configured) {
  const char* variable = g_getenv(kVariable);
  auto key = std::pair(variable != nullptr && *variable != '\0' ? std::optional<std::string>(variable) : std::nullopt,
                       configured);
  static std::mutex mutex;
  static std::map<decltype(key), std::optional<std::string>> answers;
  Lookup found;
  {
    std::lock_guard lock(mutex);
    if (const auto it = answers.find(key); it != answers.end()) return it->second;
    found = lookUp(placesFor(variable, configured));
    answers.emplace(std::move(key), found.directory);
  }
  // Told outside the lock: a log handler may make an engine of its own.
  if (found.directory)
    log(LogLevel::debug, "engine", "web-process module from " + *found.directory);
  else
    log(LogLevel::warning, "engine", found.warning);
  return found.directory;
}

}  // namespace websdk::webkitgtk::guard
