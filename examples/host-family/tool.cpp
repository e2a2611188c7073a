// host-family-tool: the app's loyalty contract, without a window.
//
//   host-family-tool --catalogue      prints the app's catalogue: its family's
//                                     actions with the keys each reads (the pin
//                                     marked sensitive) and the events it pushes,
//                                     for the page package's websdk-typings
//   host-family-tool --replay FILE    replays a recording of the app's traffic
//                                     through the bridge; exits 1 when a request
//                                     fares otherwise now, or the file is not a
//                                     recording of any request

#include "Loyalty.hpp"

#include <websdk/testing/Catalogue.hpp>
#include <websdk/testing/EveryFamilyHost.hpp>
#include <websdk/testing/Replay.hpp>

#include <cstring>
#include <fstream>
#include <iostream>
#include <memory>

using namespace websdk;

namespace {

int printCatalogue() {
  std::cout << serializePretty(
                   testing::catalogue({&familyType<loyalty::LoyaltyFamily>()},
                                      {testing::declareEvent<loyalty::PointsChanged>(loyalty::kPointsChanged)}))
            << std::endl;
  return 0;
}

int replay(const char* path) {
  std::ifstream in(path);
  if (!in) {
    std::cerr << "host-family-tool: cannot read " << path << std::endl;
    return 1;
  }
  // The replay's view routes the library's families by itself; the app's own
  // must be registered for its requests to be routed as they were. A plugin
  // that answers nothing is enough: what is held against the recording is
  // what reached the plugin, decoded by the family. The view holds it weakly.
  const auto silent = std::make_shared<testing::SilentPlugin<loyalty::LoyaltyFamily>>();
  const testing::ReplayResult result = testing::replayRecording(in, std::cout, [&](WebSDKWebView& view) {
    if (const WebSDKRegistration registered = view.setPlugin<loyalty::LoyaltyFamily>(silent); !registered)
      std::cerr << "host-family-tool: " << registered.error << std::endl;
  });
  if (result.unreadable > 0)
    std::cerr << "host-family-tool: " << result.unreadable << " lines are no recording's" << std::endl;
  if (result.requests == 0) std::cerr << "host-family-tool: " << path << " records no request" << std::endl;
  return result.requests > 0 && result.differ == 0 && result.unreadable == 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 2 && std::strcmp(argv[1], "--catalogue") == 0) return printCatalogue();
  if (argc == 3 && std::strcmp(argv[1], "--replay") == 0) return replay(argv[2]);
  std::cerr << "usage: host-family-tool --catalogue | --replay FILE" << std::endl;
  return 2;
}
