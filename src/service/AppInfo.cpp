#include "AppInfo.h"

#include "Deployment.h"

using namespace Qt::StringLiterals;

namespace murmeli::AppInfo {

namespace {

QString address([[maybe_unused]] const char* variable, const QString& built)
{
#if MURMELI_DEVELOPER
    return qEnvironmentVariable(variable, built);
#else
    return built;
#endif
}

} // namespace

const QString version = QStringLiteral(MURMELI_VERSION);

QString webOrigin() { return address("MURMELI_WEB_ORIGIN", QStringLiteral(MURMELI_WEB_ORIGIN)); }
QString versionURL() { return webOrigin() + u"/app/version.json"_s; }
QString accountSite() { return address("MURMELI_ACCOUNT_SITE", QStringLiteral(MURMELI_ACCOUNT_SITE)); }
QString backend() { return address("MURMELI_BACKEND", QStringLiteral(MURMELI_BACKEND)); }
QByteArray backendKey() { return QByteArrayLiteral(MURMELI_BACKEND_KEY); }
QString botLink() { return address("MURMELI_BOT_LINK", QStringLiteral(MURMELI_BOT_LINK)); }

} // namespace murmeli::AppInfo
