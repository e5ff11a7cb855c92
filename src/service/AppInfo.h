#pragma once

#include <QByteArray>
#include <QString>

/// What this build is and where it belongs.
namespace murmeli::AppInfo {

extern const QString version;

struct Addresses {
    QString web; ///< origin of the web service
    QString accountSite;
    QString backend;       ///< base address of the hosted backend's REST interface
    QByteArray backendKey; ///< its anonymous key, which is public
    QString bot;

    [[nodiscard]] QString versionUrl() const { return web + QStringLiteral("/app/version.json"); }
};

/// This build's. In developer builds the environment may set them (MURMELI_WEB_ORIGIN, MURMELI_ACCOUNT_SITE,
/// MURMELI_BACKEND, MURMELI_BOT_LINK).
Addresses addresses();

} // namespace murmeli::AppInfo
