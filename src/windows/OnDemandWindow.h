#pragma once

#include "AppWindow.h"

#include <memory>

namespace murmeli {

class ViewEngine;

/// A window that is made when it is shown and dropped when it is closed: it has nothing of its own to keep.
/// Main thread only.
class OnDemandWindow final {
public:
    OnDemandWindow(ViewEngine& views, const Language& language, AppWindow::View view);
    ~OnDemandWindow();
    Q_DISABLE_COPY_MOVE(OnDemandWindow)

    /// Makes it where it is not, and brings it forward.
    void show();

    /// Null while it is closed.
    [[nodiscard]] AppWindow* window() const { return m_window.get(); }

private:
    ViewEngine& m_views;
    const Language& m_language;
    AppWindow::View m_view;
    std::unique_ptr<AppWindow> m_window;
};

} // namespace murmeli
