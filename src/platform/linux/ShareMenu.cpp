#include "ShareMenu.h"

#include "Workspace.h"

#include <QMenu>
#include <QProcess>
#include <QUrl>
#include <QWindow>

using namespace Qt::StringLiterals;

namespace murmeli::shareMenu {

void present(const QString& path, const Texts& texts, QWindow* window, const QPoint& at)
{
    auto* menu = new QMenu;
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addAction(texts.mail, [path] { QProcess::startDetached(u"xdg-email"_s, {u"--attach"_s, path}); });
    menu->addAction(texts.open, [path] { workspace::openUrl(QUrl::fromLocalFile(path)); });
    menu->addAction(texts.folder, [path] { workspace::reveal(path); });
    menu->addAction(texts.copy, [path] { workspace::copyFile(path); });
    menu->winId(); // makes its window
    if (menu->windowHandle()) menu->windowHandle()->setTransientParent(window);
    menu->popup(window ? window->mapToGlobal(at) : at);
}

} // namespace murmeli::shareMenu
