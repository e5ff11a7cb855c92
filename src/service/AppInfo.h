#pragma once

#include <QByteArray>
#include <QString>

/// What this build is and where it belongs. In developer builds the environment may set the addresses
/// (MURMELI_WEB_ORIGIN, MURMELI_ACCOUNT_SITE, MURMELI_BACKEND, MURMELI_BOT_LINK).
namespace murmeli::AppInfo {

extern const QString version;

QString webOrigin();
QString versionURL();
QString accountSite();
QString backend();       ///< base address of the hosted backend's REST interface
QByteArray backendKey(); ///< its anonymous key, which is public
QString botLink();

} // namespace murmeli::AppInfo
