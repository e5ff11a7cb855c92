#include "AppWindow.h"

#include "localisation/Language.h"

#include <QKeyEvent>
#include <QScreen>

namespace murmeli {

AppWindow::AppWindow(QQmlEngine& engine, const Language& language, const View& view)
    : QQuickView(&engine, nullptr)
{
    const auto retitle = [this, &language, key = view.titleKey] { setTitle(language.t(key)); };
    connect(&language, &Language::changed, this, retitle);
    retitle();
    setResizeMode(QQuickView::SizeRootObjectToView);
    resize(view.size);
    setMinimumSize(view.size);
    if (!view.resizable) setMaximumSize(view.size);
    setInitialProperties(view.properties);
    setSource(QUrl{view.url});
}

void AppWindow::present()
{
    if (!m_placed && screen()) {
        m_placed = true;
        const QRect available = screen()->availableGeometry();
        setPosition(available.center() - QPoint{width() / 2, height() / 2});
    }
    show();
    raise();
    requestActivate();
}

void AppWindow::keyPressEvent(QKeyEvent* event)
{
    QQuickView::keyPressEvent(event);
    if (!event->isAccepted() && event->key() == Qt::Key_Escape) close();
}

} // namespace murmeli
