#include "DemoPlugins.hpp"

#include "websdk/json/Readings.hpp"

#include <chrono>
#include <cmath>

namespace websdk::demo {

// ---- Traffic ---------------------------------------------------------------------

void TrafficPrinter::didReceiveRequest(std::string_view request) {
  const JSON parsed = parseJSON(request);
  const Fields fields = Fields::of(&parsed);
  std::lock_guard lock(mutex_);
  requests_.emplace_back(fields.lenientString("requestId"), fields.lenientString("type"));
  out_ << "page -> app  " << request << std::endl;
}

void TrafficPrinter::didSendResponse(const WebSDKResponseModel& response) {
  std::lock_guard lock(mutex_);
  answered_.insert(response.requestId);
  // The payload travels as indented JSON text; printed compact, it reads on one line.
  std::string payload;
  if (response.payload) {
    const JSON parsed = parseJSON(*response.payload);
    payload = parsed.is_null() ? *response.payload : serialize(parsed);
    if (payload.size() > 240) payload = payload.substr(0, 240) + "...";
  }
  out_ << "app -> page  " << response.type << " " << response.statusCode << " " << response.requestId;
  if (response.statusMessage) out_ << " \"" << *response.statusMessage << "\"";
  out_ << (payload.empty() ? "" : "  ") << payload << std::endl;
}

std::map<std::string, std::string> TrafficPrinter::actionsById() const {
  std::lock_guard lock(mutex_);
  return {requests_.begin(), requests_.end()};
}

bool TrafficPrinter::answered(const std::string& requestId) const {
  std::lock_guard lock(mutex_);
  return answered_.contains(requestId);
}

std::vector<std::string> TrafficPrinter::requestsFor(const std::string& action) const {
  std::lock_guard lock(mutex_);
  std::vector<std::string> ids;
  for (const auto& [id, type] : requests_)
    if (type == action) ids.push_back(id);
  return ids;
}

// ---- Cart --------------------------------------------------------------------------

CartPlugin::CartPlugin()
    : items_{{"paneer-tikka", "Paneer tikka", 240, 1},
             {"dal-makhani", "Dal makhani", 180, 1},
             {"garlic-naan", "Garlic naan", 45, 2}} {}

double CartPlugin::subtotal() const {
  double sum = 0;
  for (const auto& item : items_) sum += item.price * static_cast<double>(item.quantity);
  return sum;
}

JSONObject CartPlugin::cart() const {
  JSONArray items;
  for (const auto& item : items_)
    items.push_back(
        JSONObject{{"id", item.id}, {"name", item.name}, {"price", item.price}, {"quantity", item.quantity}});
  const double sub = subtotal();
  JSONObject out{{"items", std::move(items)}, {"subtotal", sub}, {"discount", discount_}, {"total", sub - discount_}};
  if (coupon_) out.emplace("coupon", *coupon_);
  return out;
}

void CartPlugin::handleCartRequest(const WebSDKCartRequestModel& request, const WebSDKCartRequestPayload& payload) {
  WebSDKReply reply = request.reply();
  using C = WebSDKCartRequestPayloadCase;
  switch (payload.kind()) {
    case C::getCart: break;
    case C::updateCart: {
      const Fields data(payload.get<C::updateCart>()->data);
      const std::string id = data.lenientString("itemId");
      for (auto& item : items_)
        if (item.id == id) item.quantity = std::max<std::int64_t>(0, data.lenientInt("quantity"));
      std::erase_if(items_, [](const Item& item) { return item.quantity == 0; });
      // A coupon is worked out for the cart it was applied to.
      coupon_.reset();
      discount_ = 0;
      break;
    }
    case C::applyCoupon: {
      const auto& model = *payload.get<C::applyCoupon>();
      constexpr double kMinimum = 500;
      if (model.cartValue < kMinimum) {
        reply.sendFailure(rawValue(WebSDKStatusCode::notHandled),
                          "Add items worth " + formatDouble(kMinimum - model.cartValue) + " more for DOVARA60");
        return;
      }
      coupon_ = "DOVARA60";
      discount_ = std::round(model.cartValue * 0.6 > 120 ? 120 : model.cartValue * 0.6);
      break;
    }
    case C::clearCart:
      items_.clear();
      coupon_.reset();
      discount_ = 0;
      break;
    default: reply.sendFailure(rawValue(WebSDKStatusCode::notHandled), "not handled by the demo"); return;
  }
  reply.sendWebSDKResponse(cart(), WebSDKResponseType::success);
}

// ---- Generic ---------------------------------------------------------------------

void GenericPlugin::handleGenericRequest(const WebSDKGenericRequestModel& request,
                                         const WebSDKGenericRequestPayload& payload) {
  WebSDKReply reply = request.reply();
  using C = WebSDKGenericRequestPayloadCase;
  switch (payload.kind()) {
    case C::getUserInfo:
      reply.sendWebSDKResponse(
          WebSDKGetUserInfoResponseModel{"c-1024", "Asha Rao", "+91 98450 00010", "asha@example.com", false, {}, {}},
          WebSDKResponseType::success);
      return;
    case C::getLocation:
      reply.sendWebSDKResponse(WebSDKGetLocationResponseModel{12.9784, 77.6408}, WebSDKResponseType::success);
      return;
    case C::getCurrentAddress:
      reply.sendWebSDKResponse(WebSDKGetCurrentAddressResponseModel{"12, 4th Cross, Indiranagar, Bengaluru 560038"},
                               WebSDKResponseType::success);
      return;
    default: reply.sendFailure(rawValue(WebSDKStatusCode::notHandled), "not handled by the demo");
  }
}

// ---- Payments --------------------------------------------------------------------

PaymentsPlugin::~PaymentsPlugin() {
  for (auto& t : provider_) t.join();
}

void PaymentsPlugin::handlePaymentsRequest(const WebSDKPaymentsRequestModel& request,
                                           const WebSDKPaymentsRequestPayload& payload) {
  WebSDKReply reply = request.reply();
  using C = WebSDKPaymentsRequestPayloadCase;
  switch (payload.kind()) {
    case C::payUsingAmazonPay: {
      const auto& model = *payload.get<C::payUsingAmazonPay>();
      if (model.state == WebSDKAmazonPayRequestState::getBalance) {
        reply.sendWebSDKResponse(WebSDKAmazonPayGetbalanceResponseModel{true, 1500.0}, WebSDKResponseType::success);
        return;
      }
      if (model.state != WebSDKAmazonPayRequestState::proceedToPay) break;
      const int order = ++orders_;
      // The provider approves on its own thread; the reply goes with it.
      provider_.emplace_back([reply = std::move(reply), order]() mutable {
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        reply.sendWebSDKResponse(
            WebSDKAmazonPayProceedToPayResponseModel{"SUCCESS", "DV-" + std::to_string(4100 + order),
                                                     "AMZ-TXN-" + std::to_string(9000 + order)},
            WebSDKResponseType::success);
      });
      return;
    }
    case C::confirmOrderEvent: reply.sendSuccess(); return;
    default: break;
  }
  reply.sendFailure(rawValue(WebSDKStatusCode::notHandled), "not handled by the demo");
}

// ---- Navigation --------------------------------------------------------------------

void NavigationPrinter::didStartProvisionalNavigation(WebSDKWebView&, const WebSDKNavigation* navigation) {
  out_ << "navigation   started " << (navigation ? navigation->url : "") << std::endl;
}
void NavigationPrinter::didFinish(WebSDKWebView&, const WebSDKNavigation* navigation) {
  ++finished;
  out_ << "navigation   finished " << (navigation ? navigation->url : "") << std::endl;
}
void NavigationPrinter::didFail(WebSDKWebView&, const WebSDKNavigation*, const WebSDKError& error) {
  ++failed;
  out_ << "navigation   failed: " << error.description << std::endl;
}
void NavigationPrinter::didFailProvisionalNavigation(WebSDKWebView&, const WebSDKNavigation*,
                                                     const WebSDKError& error) {
  ++failed;
  out_ << "navigation   failed before commit: " << error.description << std::endl;
}
void NavigationPrinter::decidePolicyFor(WebSDKWebView& webView, const WebSDKNavigationAction& action,
                                        WebSDKNavigationActionDecision decisionHandler) {
  WebSDKTrustedHostsNavigationDelegate::decidePolicyFor(
      webView, action, [this, url = action.url, decisionHandler](WebSDKNavigationActionPolicy policy) {
        out_ << "navigation   " << (policy == WebSDKNavigationActionPolicy::allow ? "allow " : "refuse ") << url
             << std::endl;
        decisionHandler(policy);
      });
}
void NavigationPrinter::refused(WebSDKWebView&, const WebSDKNavigationAction&) { ++refusals; }

}  // namespace websdk::demo
