#include "Catalogue.hpp"
#include "Inspector.hpp"

#include <fstream>
#include <iostream>

int main(int argc, char** argv) {
  std::vector<std::string> args(argv + 1, argv + argc);
  if (args.size() == 1 && args[0] == "--catalogue") {
    std::cout << websdk::serializePretty(websdk::inspect::catalogue()) << "\n";
    return 0;
  }
  std::string file, error;
  const auto options = websdk::inspect::parseArguments(args, file, error);
  if (!options) {
    std::cerr << "websdk-inspect: " << error << "\n"
              << "usage: websdk-inspect [--url URL] [--whitelist HOST]... [--whitelist-all]\n"
              << "                      [--plugins all|none|FAMILY[,FAMILY...]] [FILE]\n"
              << "       websdk-inspect --catalogue\n";
    return 2;
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
