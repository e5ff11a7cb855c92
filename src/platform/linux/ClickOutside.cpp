#include "ClickOutside.h"

#include <QObject>
#include <QTimer>
#include <QWindow>

#include <utility>

namespace murmeli {

namespace {

/// X11 and Wayland tell a program of no presses elsewhere, but of the activation that they take away.
class LostActivation final : public ClickOutside {
public:
    LostActivation(QWindow* window, std::function<void()> pressed)
    {
        // Called from the event loop, since closing a window within its own change of activation confuses it.
        QObject::connect(window, &QWindow::activeChanged, &m_context,
                         [this, window, pressed = std::move(pressed)] {
                             if (window->isActive()) {
                                 m_wasActive = true;
                             } else if (std::exchange(m_wasActive, false)) {
                                 QTimer::singleShot(0, &m_context, [window, pressed] {
                                     if (!window->isActive()) std::function{pressed}();
                                 });
                             }
                         });
        m_wasActive = window->isActive();
    }

private:
    QObject m_context;
    bool m_wasActive = false;
};

} // namespace

std::unique_ptr<ClickOutside> makeClickOutside(QWindow* window, std::function<void()> pressed)
{
    return std::make_unique<LostActivation>(window, std::move(pressed));
}

} // namespace murmeli
