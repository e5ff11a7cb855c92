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

/// One that paths are put behind.
QString origin(const char* variable, const QString& built)
{
    QString origin = address(variable, built);
    while (origin.endsWith(u'/'))
        origin.chop(1);
    return origin;
}

} // namespace

const QString version = QStringLiteral(MURMELI_VERSION);

Addresses addresses()
{
    return {.web = origin("MURMELI_WEB_ORIGIN", QStringLiteral(MURMELI_WEB_ORIGIN)),
            .accountSite = address("MURMELI_ACCOUNT_SITE", QStringLiteral(MURMELI_ACCOUNT_SITE)),
            .backend = origin("MURMELI_BACKEND", QStringLiteral(MURMELI_BACKEND)),
            .backendKey = QByteArrayLiteral(MURMELI_BACKEND_KEY),
            .bot = address("MURMELI_BOT_LINK", QStringLiteral(MURMELI_BOT_LINK))};
}

} // namespace murmeli::AppInfo
