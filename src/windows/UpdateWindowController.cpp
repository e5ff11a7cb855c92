#include "UpdateWindowController.h"

#include "AppWindow.h"
#include "update/Updater.h"

#include <QQuickItem>

using namespace Qt::StringLiterals;

namespace murmeli {

UpdateWindowController::UpdateWindowController(QQmlEngine& engine, const Language& language, Updater& updater)
    : m_engine(engine), m_language(language), m_updater(updater)
{
}

UpdateWindowController::~UpdateWindowController() = default;

void UpdateWindowController::show()
{
    m_updater.check();
    if (!m_window) {
        m_window = std::make_unique<AppWindow>(
            m_engine, m_language,
            AppWindow::View{.url = u"qrc:/qt/qml/Murmeli/Update/UpdateView.qml"_s,
                            .properties = {{u"updater"_s, QVariant::fromValue(&m_updater)}},
                            .titleKey = u"update.title.available"_s,
                            .size = {520, 560},
                            .resizable = false,
                            .escapeCloses = true});
        // Closed, it needs no memory; it has nothing of its own to keep.
        QObject::connect(m_window.get(), &QWindow::visibleChanged, m_window.get(), [this](bool visible) {
            if (!visible && m_window) m_window.release()->deleteLater();
        });
        if (QQuickItem* view = m_window->rootObject()) {
            QObject::connect(view, SIGNAL(closed()), m_window.get(), SLOT(close()));
        }
    }
    m_window->present();
}

} // namespace murmeli
