#include "Values.hpp"

#include "websdk/webview/WebSDKConfig.hpp"

#include <QFile>
#include <QHostAddress>
#include <QJsonArray>
#include <QJsonDocument>
#include <QUrl>
#include <QWebEngineUrlScheme>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>

namespace websdk::qtwebengine {

std::optional<JSON> toJSON(const QVariant& value) {
  if (!value.isValid()) return std::nullopt;
  const QJsonValue json = QJsonValue::fromVariant(value);
  if (json.isUndefined()) return std::nullopt;
  // Wrapped: QJsonDocument takes only arrays and objects.
  const QByteArray text = QJsonDocument(QJsonArray{json}).toJson(QJsonDocument::Compact);
  JSON parsed = parseJSON(std::string_view(text.constData(), static_cast<std::size_t>(text.size())));
  if (!parsed.is_array() || parsed.as_array().empty()) return std::nullopt;
  return std::move(parsed.as_array()[0]);
}

QString channelScriptSource() {
  QFile file(QStringLiteral(":/qtwebchannel/qwebchannel.js"));
  if (!file.open(QIODevice::ReadOnly)) return {};
  return QString::fromUtf8(file.readAll());
}

std::string errorDomain(QWebEngineLoadingInfo::ErrorDomain domain) {
  switch (domain) {
    case QWebEngineLoadingInfo::NoErrorDomain: return "none";
    case QWebEngineLoadingInfo::InternalErrorDomain: return "internal";
    case QWebEngineLoadingInfo::ConnectionErrorDomain: return "connection";
    case QWebEngineLoadingInfo::CertificateErrorDomain: return "certificate";
    case QWebEngineLoadingInfo::HttpErrorDomain: return "http";
    case QWebEngineLoadingInfo::FtpErrorDomain: return "ftp";
    case QWebEngineLoadingInfo::DnsErrorDomain: return "dns";
    case QWebEngineLoadingInfo::HttpStatusCodeDomain: return "httpStatusCode";
    default: return "unknown";
  }
}

namespace {
// An IPv6 address as the URL standard writes it: lowercase hex, the longest
// run of two or more zero pieces (the first of equals) compressed.
std::string ipv6Text(const Q_IPV6ADDR& address) {
  std::array<unsigned, 8> pieces{};
  for (std::size_t i = 0; i < 8; ++i) pieces[i] = (unsigned{address[2 * i]} << 8) | address[2 * i + 1];
  std::size_t bestStart = 8, bestLength = 0;
  for (std::size_t i = 0; i < 8;) {
    std::size_t j = i;
    while (j < 8 && pieces[j] == 0) ++j;
    if (j - i > bestLength && j - i >= 2) bestStart = i, bestLength = j - i;
    i = j == i ? i + 1 : j;
  }
  std::string out = "[";
  for (std::size_t i = 0; i < 8; ++i) {
    if (i == bestStart) {
      out += i == 0 ? "::" : ":";
      i += bestLength - 1;
      continue;
    }
    char piece[8];
    std::snprintf(piece, sizeof piece, "%x", pieces[i]);
    out += piece;
    if (i != 7) out += ':';
  }
  return out + "]";
}

}  // namespace

std::optional<std::string> chromiumCanonicalURL(std::string_view url) {
  std::optional<std::string> canonical = canonicalURL(url);
  if (!canonical && std::ranges::any_of(url, [](char c) { return static_cast<unsigned char>(c) >= 0x80; })) {
    const QUrl parsed(qstring(url), QUrl::StrictMode);
    if (parsed.isValid() && !parsed.host().isEmpty())
      canonical = canonicalURL(utf8(parsed.toString(QUrl::FullyEncoded)));
  }
  if (!canonical) return std::nullopt;
  const std::string scheme = canonical->substr(0, canonical->find(':'));
  const bool special =
      scheme == "http" || scheme == "https" || scheme == "ws" || scheme == "wss" || scheme == "ftp" || scheme == "file";
  if (!special) {
    // Chromium 102 reads a host only in a scheme registered with one (the
    // app's local pages), lowercased; in any other it reads none.
    const QWebEngineUrlScheme registered = QWebEngineUrlScheme::schemeByName(QByteArray::fromStdString(scheme));
    if (registered.name().isEmpty() || registered.syntax() == QWebEngineUrlScheme::Syntax::Path)
      return hostOf(*canonical) ? std::nullopt : canonical;
    if (const auto host = hostOf(*canonical)) {
      const std::size_t at = static_cast<std::size_t>(host->data() - canonical->data()), length = host->size();
      for (std::size_t i = at; i < at + length; ++i)
        (*canonical)[i] = static_cast<char>(std::tolower(static_cast<unsigned char>((*canonical)[i])));
    }
    return canonical;
  }
  if (scheme == "file" && canonical->starts_with("file:///")) {
    // Chromium keeps a file URL's "localhost", which the standard drops.
    std::string_view raw = url;
    while (!raw.empty() && static_cast<unsigned char>(raw.front()) <= 0x20) raw.remove_prefix(1);
    if (raw.size() >= 16 && QByteArray(raw.data(), 16).toLower() == "file://localhost" &&
        (raw.size() == 16 || raw[16] == '/' || raw[16] == '\\'))
      canonical->insert(7, "localhost");
  }
  const auto host = hostOf(*canonical);
  if (host && host->size() > 2 && host->front() == '[') {
    QHostAddress address;
    if (address.setAddress(qstring(host->substr(1, host->size() - 2))) &&
        address.protocol() == QAbstractSocket::IPv6Protocol) {
      const std::size_t at = static_cast<std::size_t>(host->data() - canonical->data()), length = host->size();
      canonical->replace(at, length, ipv6Text(address.toIPv6Address()));
    }
  }
  return canonical;
}

}  // namespace websdk::qtwebengine
