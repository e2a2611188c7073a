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
#include <websdk/testing/Replay.hpp>

#include <cstring>
#include <fstream>
#include <iostream>

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
  // The replay's view knows the library's families; the app's own is named,
  // so that its requests are routed as they were. What is held against the
  // recording is what reached the plugin, decoded by the family: the replay's
  // plugins answer nothing.
  const testing::ReplayResult result = testing::replayRecording(in, std::cout, {&familyType<loyalty::LoyaltyFamily>()});
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
