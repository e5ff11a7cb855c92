#include "Workspace.h"

#include <QDesktopServices>
#include <QFileInfo>
#include <QLocale>

namespace murmeli::workspace {

void openUrl(const QUrl& url) { QDesktopServices::openUrl(url); }

void openFolder(const QString& path)
{
    QFileInfo folder{path};
    while (!folder.isDir() && !folder.isRoot())
        folder.setFile(folder.absolutePath());
    openUrl(QUrl::fromLocalFile(folder.absoluteFilePath()));
}

QStringList preferredLanguages() { return QLocale::system().uiLanguages(); }

} // namespace murmeli::workspace
