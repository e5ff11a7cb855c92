#include "AppInfo.h"

#include "Deployment.h"

using namespace Qt::StringLiterals;

namespace murmeli::AppInfo {

namespace {

QString address([[maybe_unused]] const char* variable, const QString& built)
{
#if MURMELI_DEVELOPER
    QString address = qEnvironmentVariable(variable, built);
#else
    QString address = built;
#endif
    while (address.endsWith(u'/')) // paths are put behind it
        address.chop(1);
    return address;
}

} // namespace

const QString version = QStringLiteral(MURMELI_VERSION);

Addresses addresses()
{
    return {.web = address("MURMELI_WEB_ORIGIN", QStringLiteral(MURMELI_WEB_ORIGIN)),
            .accountSite = address("MURMELI_ACCOUNT_SITE", QStringLiteral(MURMELI_ACCOUNT_SITE)),
            .backend = address("MURMELI_BACKEND", QStringLiteral(MURMELI_BACKEND)),
            .backendKey = QByteArrayLiteral(MURMELI_BACKEND_KEY),
            .bot = address("MURMELI_BOT_LINK", QStringLiteral(MURMELI_BOT_LINK))};
}

} // namespace murmeli::AppInfo
