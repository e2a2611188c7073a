// websdk-serve: a page folder (or a page dev server) in any desktop browser,
// talking to the real bridge; answers from a file or a recording.
#include "Serve.hpp"

int main(int argc, char** argv) { return websdk::serve::serveMain(argc, argv); }
