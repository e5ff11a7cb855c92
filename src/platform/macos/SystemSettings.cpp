#include "SystemSettings.h"

#include <QDesktopServices>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace murmeli::systemSettings {

bool open(Page page)
{
    const QString anchor = page == Page::Microphone ? u"Privacy_Microphone"_s : u"Privacy_ScreenCapture"_s;
    return QDesktopServices::openUrl(
        QUrl{u"x-apple.systempreferences:com.apple.preference.security?"_s + anchor});
}

} // namespace murmeli::systemSettings
