#include "Desktop.h"

#include <QDesktopServices>

using namespace Qt::StringLiterals;

namespace murmeli {

namespace {

const QList<QString> schemes = {u"http"_s, u"file"_s};

} // namespace

Desktop::Desktop()
{
    for (const QString& scheme : schemes)
        QDesktopServices::setUrlHandler(scheme, this, "open");
}

Desktop::~Desktop()
{
    for (const QString& scheme : schemes)
        QDesktopServices::unsetUrlHandler(scheme);
}

} // namespace murmeli
