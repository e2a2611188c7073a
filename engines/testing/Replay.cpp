#include "websdk/testing/Replay.hpp"

#include "websdk/testing/EveryFamilyHost.hpp"
#include "websdk/testing/TestingEngine.hpp"
#include "websdk/webview/WebSDKTrafficRecorder.hpp"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <limits>
#include <string>
#include <vector>

#include <unistd.h>

namespace websdk::testing {
namespace {

// What a request line says became of it; the time and the page's own words
// (its id and payload, posted again as they stand) are left out.
JSONObject fate(const JSONObject& line) {
  JSONObject out;
  for (const char* key : {"family", "outcome", "status", "message", "received"})
    if (const JSON* v = line.if_contains(key)) out.emplace(key, *v);
  return out;
}

std::string requestText(const JSONObject& line) {
  JSONObject request{{"type", line.contains("action") ? line.at("action") : JSON("")},
                     {"requestId", line.contains("requestId") ? line.at("requestId") : JSON("")}};
  if (const JSON* payload = line.if_contains("payload")) request.emplace("payload", *payload);
  return serialize(request);
}

// A file of our own to record the replay into, gone when done.
struct ScratchFile {
  std::filesystem::path path;
  ScratchFile() {
    std::string name = (std::filesystem::temp_directory_path() / "websdk-replay-XXXXXX").string();
    const int fd = ::mkstemp(name.data());
    if (fd >= 0) ::close(fd);
    path = name;
  }
  ~ScratchFile() {
    std::error_code ignored;
    std::filesystem::remove(path, ignored);
    std::filesystem::remove(path.string() + ".1", ignored);
  }
};

}  // namespace

ReplayResult replayRecording(std::istream& recording, std::ostream& report, const ReplayPlugins& plugins) {
  ReplayResult result;
  std::vector<std::pair<std::size_t, JSONObject>> recorded;  // request lines, with their line numbers
  WebSDKConfig config;
  bool masked = true;
  std::size_t number = 0;
  for (std::string text; std::getline(recording, text);) {
    ++number;
    if (text.empty()) continue;
    JSON line = parseJSON(text);
    const JSONObject* o = line.if_object();
    const JSON* event = o ? o->if_contains("event") : nullptr;
    if (event == nullptr || !event->is_string()) {
      ++result.unreadable;
      report << "line " << number << ": not a recording's line\n";
      continue;
    }
    if (*event == "view") {
      config.whitelistedHosts.clear();
      if (const JSON* hosts = o->if_contains("whitelist"); hosts && hosts->is_array())
        for (const auto& host : hosts->get_array())
          if (host.is_string()) config.whitelistedHosts.emplace_back(host.get_string());
      config.shouldWhitelistAllUrls = o->contains("whitelistsAll") && o->at("whitelistsAll") == true;
      masked = !o->contains("masked") || o->at("masked") == true;
    } else if (*event == "request") {
      recorded.emplace_back(number, *o);
    }
  }

  // The replay records itself, with the recording's masking, so that both
  // sides of each comparison are written by the same hand; uncapped, for
  // every line of it is read back.
  ScratchFile scratch;
  config.recording = WebSDKTrafficRecording{.path = scratch.path.string(),
                                            .maximumBytes = std::numeric_limits<std::size_t>::max(),
                                            .masksSensitiveValues = masked};
  auto owned = std::make_unique<TestingEngine>();
  TestingEngine& engine = *owned;
  auto view = WebSDKWebView::create(std::move(owned), config);
  auto host = std::make_shared<EveryFamilyHost>(nullptr);
  if (plugins)
    plugins(*view);
  else
    registerForEveryFamily(*view, host);
  for (const auto& [_, line] : recorded) {
    const JSON* page = line.if_contains("page");
    engine.setURL(page && page->is_string() && !page->get_string().empty()
                      ? std::optional<std::string>(page->get_string())
                      : std::nullopt);
    engine.postRequest(requestText(line));
    engine.queue().drain();
  }
  view.reset();

  std::vector<JSONObject> now;
  std::ifstream replayed(scratch.path);
  for (std::string text; std::getline(replayed, text);)
    if (auto line = parseJSON(text); line.is_object() && line.at("event") == "request")
      now.push_back(std::move(line.get_object()));

  for (std::size_t i = 0; i < recorded.size(); ++i) {
    const auto& [lineNumber, line] = recorded[i];
    ++result.requests;
    const JSONObject was = fate(line);
    const JSONObject is = i < now.size() ? fate(now[i]) : JSONObject{{"outcome", "not replayed"}};
    report << "line " << lineNumber << " " << (line.contains("action") ? serialize(line.at("action")) : "?") << " "
           << (line.contains("requestId") ? serialize(line.at("requestId")) : "?") << ": ";
    if (was == is) {
      report << "same " << serialize(was) << "\n";
    } else {
      ++result.differ;
      report << "differs\n  recorded " << serialize(was) << "\n  now      " << serialize(is) << "\n";
    }
  }
  report << result.requests << " requests, " << result.requests - result.differ << " the same, " << result.differ
         << " different\n";
  return result;
}

ReplayResult replayRecording(std::istream& recording, std::ostream& report,
                             const std::vector<const FamilyType*>& hostFamilies) {
  std::vector<std::shared_ptr<void>> held;
  const auto host = std::make_shared<EveryFamilyHost>(nullptr);
  return replayRecording(recording, report, [&](WebSDKWebView& view) {
    registerForEveryFamily(view, host);
    for (const FamilyType* family : hostFamilies) {
      held.push_back(family->silentPlugin());
      if (auto refused = view.setPlugin(*family, held.back()); !refused)
        report << "the family " << family->name << " was refused: " << refused.error << "\n";
    }
  });
}

}  // namespace websdk::testing
