#include "Workspace.h"

#include <QClipboard>
#include <QDesktopServices>
#include <QFileInfo>
#include <QGuiApplication>
#include <QLocale>
#include <QMimeData>

using namespace Qt::StringLiterals;

namespace murmeli::workspace {

void openUrl(const QUrl& url) { QDesktopServices::openUrl(url); }

void openFolder(const QString& path)
{
    QFileInfo folder{path};
    while (!folder.isDir() && !folder.isRoot())
        folder.setFile(folder.absolutePath());
    openUrl(QUrl::fromLocalFile(folder.absoluteFilePath()));
}

void copyFile(const QString& path)
{
    const QUrl url = QUrl::fromLocalFile(path);
    auto* data = new QMimeData;
    data->setUrls({url});
    data->setText(path);
    data->setData(u"x-special/gnome-copied-files"_s, "copy\n" + url.toEncoded());
    QGuiApplication::clipboard()->setMimeData(data);
}

void copyText(const QString& text) { QGuiApplication::clipboard()->setText(text); }

QStringList preferredLanguages() { return QLocale::system().uiLanguages(); }

} // namespace murmeli::workspace
