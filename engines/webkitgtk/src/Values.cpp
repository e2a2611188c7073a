#include "Values.hpp"

#include "Compat.hpp"
#include "PageChannel.hpp"
#include "websdk/webview/ScriptBuffers.hpp"

namespace websdk::webkitgtk {

std::optional<JSON> toJSON(JSCValue* value) {
  if (value == nullptr || jsc_value_is_undefined(value)) return std::nullopt;
  GText json(jsc_value_to_json(value, 0));
  if (!json) {
    jsc_context_clear_exception(jsc_value_get_context(value));
    return std::nullopt;
  }
  return parseJSON(json.get());
}

WebSDKError toError(const GError* error) {
  const bool timeout = g_error_matches(error, G_IO_ERROR, G_IO_ERROR_TIMED_OUT);
  return WebSDKError{g_quark_to_string(error->domain), error->code, text(error->message), timeout};
}

std::string authenticationMethod(WebKitAuthenticationScheme scheme) {
  switch (scheme) {
    case WEBKIT_AUTHENTICATION_SCHEME_DEFAULT: return "default";
    case WEBKIT_AUTHENTICATION_SCHEME_HTTP_BASIC: return "httpBasic";
    case WEBKIT_AUTHENTICATION_SCHEME_HTTP_DIGEST: return "httpDigest";
    case WEBKIT_AUTHENTICATION_SCHEME_HTML_FORM: return "htmlForm";
    case WEBKIT_AUTHENTICATION_SCHEME_NTLM: return "ntlm";
    case WEBKIT_AUTHENTICATION_SCHEME_NEGOTIATE: return "negotiate";
    case WEBKIT_AUTHENTICATION_SCHEME_CLIENT_CERTIFICATE_REQUESTED: return "clientCertificateRequested";
    case WEBKIT_AUTHENTICATION_SCHEME_SERVER_TRUST_EVALUATION_REQUESTED: return "serverTrustEvaluationRequested";
    default: return "unknown";
  }
}

// WebKit's own URL parser: the form WebKit loads and shows. WebKit hands back
// text it cannot parse unchanged, so only a result that reads as a URL by the
// same rules is one.
std::optional<std::string> webKitCanonicalURL(std::string_view url) {
  if (url.find('\0') != std::string_view::npos) return std::nullopt;
  // WebKitURIRequest reads its text as Latin-1; escaped, UTF-8 reads as
  // UTF-8 (the URL standard decodes a host's escapes before its IDN rules,
  // and escapes such bytes elsewhere anyway).
  std::string raw;
  raw.reserve(url.size());
  for (const char c : url) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x80) {
      raw += c;
    } else {
      constexpr char kHex[] = "0123456789ABCDEF";
      raw += '%';
      raw += kHex[byte >> 4];
      raw += kHex[byte & 15];
    }
  }
  WebKitURIRequest* request = webkit_uri_request_new(raw.c_str());
  std::string canonical = text(webkit_uri_request_get_uri(request));
  g_object_unref(request);
  if (!canonicalURL(canonical)) return std::nullopt;
  return canonical;
}

WebSDKNavigationAction navigationActionOf(WebKitPolicyDecision* decision, WebKitPolicyDecisionType type) {
  WebKitNavigationAction* action =
      webkit_navigation_policy_decision_get_navigation_action(WEBKIT_NAVIGATION_POLICY_DECISION(decision));
  WebKitURIRequest* request = webkit_navigation_action_get_request(action);
  const char* method = webkit_uri_request_get_http_method(request);
  return {text(webkit_uri_request_get_uri(request)), method ? method : "GET",
          type == WEBKIT_POLICY_DECISION_TYPE_NAVIGATION_ACTION,
          webkit_navigation_action_is_user_gesture(action) != FALSE};
}

WebSDKNavigationResponse navigationResponseOf(WebKitPolicyDecision* decision) {
  auto* r = WEBKIT_RESPONSE_POLICY_DECISION(decision);
  WebKitURIResponse* response = webkit_response_policy_decision_get_response(r);
  return {text(webkit_uri_response_get_uri(response)), static_cast<int>(webkit_uri_response_get_status_code(response)),
          text(webkit_uri_response_get_mime_type(response)), compat::isMainFrameMainResource(r)};
}

WebSDKAuthenticationChallenge challengeOf(WebKitAuthenticationRequest* request) {
  return {text(webkit_authentication_request_get_host(request)),
          static_cast<int>(webkit_authentication_request_get_port(request)),
          text(webkit_authentication_request_get_realm(request)),
          authenticationMethod(webkit_authentication_request_get_scheme(request)),
          webkit_authentication_request_is_retry(request) ? 1 : 0};
}

void answer(WebKitAuthenticationRequest* request, WebSDKAuthChallengeDisposition disposition,
            const std::optional<WebSDKURLCredential>& credential) {
  switch (disposition) {
    case WebSDKAuthChallengeDisposition::useCredential:
      if (credential) {
        WebKitCredential* c = webkit_credential_new(credential->user.c_str(), credential->password.c_str(),
                                                    WEBKIT_CREDENTIAL_PERSISTENCE_FOR_SESSION);
        webkit_authentication_request_authenticate(request, c);
        webkit_credential_free(c);
        break;
      }
      [[fallthrough]];
    case WebSDKAuthChallengeDisposition::performDefaultHandling:
    case WebSDKAuthChallengeDisposition::rejectProtectionSpace:
      // Go on without a credential: the server's answer stands.
      webkit_authentication_request_authenticate(request, nullptr);
      break;
    case WebSDKAuthChallengeDisposition::cancelAuthenticationChallenge:
      webkit_authentication_request_cancel(request);
      break;
  }
}

WebKitUserMessage* evaluateMessage(DocumentID document, bool wantsReply, std::string script) {
  auto* text = new std::string(std::move(script));
  GVariant* params = g_variant_new_from_data(
      G_VARIANT_TYPE_BYTESTRING, text->data(), text->size(), TRUE,
      [](gpointer p) {
        std::unique_ptr<std::string> sent(static_cast<std::string*>(p));
        scriptBuffers::give(std::move(*sent));
      },
      text);
  return webkit_user_message_new(channel::evaluateName(document, wantsReply).c_str(), params);
}

WebKitUserMessage* answerMessage(DocumentID document, bool wantsReply, WebSDKResponseModel answer) {
  channel::AnswerHead head{document,
                           wantsReply,
                           answer.statusCode,
                           answer.payload.has_value(),
                           std::move(answer.type),
                           std::move(answer.statusMessage),
                           std::move(answer.requestId)};
  // The payload is the parameters as it stands, handed over, not copied.
  auto* payload = new std::string(answer.payload ? std::move(*answer.payload) : std::string());
  GVariant* params = g_variant_new_from_data(
      G_VARIANT_TYPE_BYTESTRING, payload->data(), payload->size(), TRUE,
      [](gpointer p) { delete static_cast<std::string*>(p); }, payload);
  return webkit_user_message_new(channel::answerName(head).c_str(), params);
}

ScriptResult evaluatedResult(WebKitUserMessage* reply) {
  ScriptResult outcome;
  GVariant* params = reply ? webkit_user_message_get_parameters(reply) : nullptr;
  if (params == nullptr || !g_variant_is_of_type(params, G_VARIANT_TYPE("(bbs)"))) {
    outcome.dropped = true;
    return outcome;
  }
  gboolean dropped = FALSE, failed = FALSE;
  const char* value = nullptr;
  g_variant_get(params, "(bb&s)", &dropped, &failed, &value);
  outcome.dropped = dropped != FALSE;
  if (failed)
    outcome.error = value;
  else if (*value != '\0')
    outcome.value = parseJSON(value);
  return outcome;
}

}  // namespace websdk::webkitgtk
