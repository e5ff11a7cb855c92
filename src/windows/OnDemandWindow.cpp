#include "OnDemandWindow.h"

#include "ui/ViewEngine.h"

#include <utility>

namespace murmeli {

OnDemandWindow::OnDemandWindow(ViewEngine& views, const Language& language, AppWindow::View view)
    : m_views(views), m_language(language), m_view(std::move(view))
{
}

OnDemandWindow::~OnDemandWindow() = default;

void OnDemandWindow::show()
{
    if (!m_window) {
        m_window = std::make_unique<AppWindow>(m_views.get(), m_language, m_view);
        QObject::connect(m_window.get(), &QWindow::visibleChanged, m_window.get(), [this](bool visible) {
            if (!visible && m_window) m_window.release()->deleteLater();
        });
    }
    m_window->present();
}

} // namespace murmeli
