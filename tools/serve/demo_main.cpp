// websdk-serve-demo: websdk-serve with the demo app's own plugins, as a team
// builds a dev binary with its real ones.
#include "DemoPlugins.hpp"
#include "Serve.hpp"
#include "websdk/bridge/Families.hpp"

#include <tuple>

int main(int argc, char** argv) {
  return websdk::serve::serveMain(argc, argv, [](websdk::WebSDKWebView& view) {
    auto generic = std::make_shared<websdk::demo::GenericPlugin>();
    auto payments = std::make_shared<websdk::demo::PaymentsPlugin>();
    auto cart = std::make_shared<websdk::demo::CartPlugin>();
    view.setPlugin<websdk::GenericFamily>(generic);
    view.setPlugin<websdk::PaymentsFamily>(payments);
    view.setCartPlugin(cart);
    return std::make_shared<std::tuple<decltype(generic), decltype(payments), decltype(cart)>>(generic, payments, cart);
  });
}
