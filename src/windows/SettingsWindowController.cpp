#include "SettingsWindowController.h"

#include "AppWindow.h"
#include "settings/SettingsModel.h"

using namespace Qt::StringLiterals;

namespace murmeli {

SettingsWindowController::SettingsWindowController(QQmlEngine& engine, const Language& language,
                                                   SettingsModel& model)
    : m_engine(engine), m_language(language), m_model(model)
{
}

SettingsWindowController::~SettingsWindowController() = default;

void SettingsWindowController::show()
{
    m_model.refresh();
    if (!m_window) {
        m_window = std::make_unique<AppWindow>(
            m_engine, m_language,
            AppWindow::View{
                .url = u"qrc:/qt/qml/Murmeli/Settings/SettingsView.qml"_s,
                .properties = {{u"model"_s, QVariant::fromValue(&m_model)}, {u"windowed"_s, true}},
                .titleKey = u"settings.window.title"_s,
                .titleStays = true,
                .size = {560, 640},
                .escapeCloses = true});
        // Closed, it needs no memory; it has nothing of its own to keep.
        QObject::connect(m_window.get(), &QWindow::visibleChanged, m_window.get(), [this](bool visible) {
            if (!visible && m_window) m_window.release()->deleteLater();
        });
    }
    m_window->present();
}

} // namespace murmeli
