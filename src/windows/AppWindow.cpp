#include "AppWindow.h"

#include "localisation/Language.h"
#include "platform/Memory.h"
#include "platform/WindowSystem.h"
#include "ui/FocusKeeper.h"
#include "ui/SymbolImage.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QScreen>
#include <QSettings>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace murmeli {

namespace {

const QString placeKey = u"place"_s;
constexpr int titleBar = 40; // about as high as a desktop's is, which is not known before it is there

} // namespace

AppWindow::AppWindow(QQmlEngine& engine, const Language& language, const View& view)
    : QQuickView(&engine, nullptr),
      m_placeFile(view.placeFile),
      m_quit(view.quit),
      m_escapeCloses(view.escapeCloses)
{
    const auto retitle = [this, &language, key = view.titleKey] { setTitle(language.t(key)); };
    if (!view.titleStays) connect(&language, &Language::changed, this, retitle);
    retitle();
    setIcon(symbols::program());
    setResizeMode(QQuickView::SizeRootObjectToView);
    resize(view.size);
    setMinimumSize(view.least.isValid() ? view.least : view.size);
    if (!view.resizable) setMaximumSize(view.size);
    new FocusKeeper{this};
    setInitialProperties(view.properties);
    setSource(QUrl{view.url});
}

AppWindow::~AppWindow()
{
    if (isVisible()) rememberPlace();
}

void AppWindow::restorePlace()
{
    const QRect available = screen() ? screen()->availableGeometry() : QRect{};
    if (available.isValid() && size() != minimumSize()) {
        const QSize room = available.size() - QSize{0, titleBar};
        setMinimumSize(minimumSize().boundedTo(room));
        resize(size().boundedTo(room));
    }
    setPosition(available.center() - QPoint{width() / 2, height() / 2});
    if (m_placeFile.isEmpty()) return;
    const QRect known = QSettings{m_placeFile, QSettings::IniFormat}.value(placeKey).toRect();
    // Only where a screen still shows enough of it to be taken hold of.
    const bool seen = std::ranges::any_of(QGuiApplication::screens(), [&](const QScreen* screen) {
        const QRect part = screen->availableGeometry() & known;
        return part.width() >= 200 && part.height() >= 200;
    });
    if (seen) setGeometry(known);
}

void AppWindow::rememberPlace() const
{
    if (m_placeFile.isEmpty() || windowStates() != Qt::WindowNoState) return;
    QSettings{m_placeFile, QSettings::IniFormat}.setValue(placeKey, geometry());
}

void AppWindow::hideEvent(QHideEvent* event)
{
    rememberPlace();
    QQuickView::hideEvent(event);
    QMetaObject::invokeMethod(qApp, &memory::giveBack, Qt::QueuedConnection); // once what was shown has gone
}

void AppWindow::present()
{
    if (!m_placed) {
        m_placed = true;
        windowSystem::extendUnderTitle(this);
        restorePlace();
    }
    // Not show(), which would make a window that fills the screen small again.
    if (windowStates() & Qt::WindowMinimized) setWindowStates(windowStates() & ~Qt::WindowMinimized);
    setVisible(true);
    raise();
    requestActivate();
}

void AppWindow::keyPressEvent(QKeyEvent* event)
{
    QQuickView::keyPressEvent(event);
    if (event->isAccepted()) return;
    const bool closes =
        event->matches(QKeySequence::Close) || (m_escapeCloses && event->key() == Qt::Key_Escape);
    if (closes) close();
    if (event->matches(QKeySequence::Quit) && m_quit) m_quit();
}

} // namespace murmeli
