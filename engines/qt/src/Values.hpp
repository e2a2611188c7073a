#pragma once
// Qt's values in the WebSDK's terms.

#include "websdk/json/JSON.hpp"

#include <QString>
#include <QVariant>
#include <QWebEngineLoadingInfo>

#include <optional>
#include <string>
#include <string_view>

namespace websdk::qtwebengine {

/// UTF-8 text as a QString, and back.
inline QString qstring(std::string_view s) { return QString::fromUtf8(s.data(), static_cast<qsizetype>(s.size())); }
inline std::string utf8(const QString& s) { return s.toStdString(); }

/// A script's result as JSON; nothing for undefined.
std::optional<JSON> toJSON(const QVariant& value);
/// Qt's qwebchannel.js, or nothing when Qt's resources lack it.
QString channelScriptSource();
/// The name of a load error's domain.
std::string errorDomain(QWebEngineLoadingInfo::ErrorDomain domain);
/// Chromium's net::ERR_ABORTED: a load stopped.
inline constexpr int kAbortedError = -3;
/// Chromium's reading of a URL: the WebSDK's own, with international host
/// names in their ASCII form (UTS #46, by Qt) and IPv6 hosts as Chromium
/// writes them.
std::optional<std::string> chromiumCanonicalURL(std::string_view url);

}  // namespace websdk::qtwebengine
