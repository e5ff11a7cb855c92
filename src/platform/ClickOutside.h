#pragma once

#include <functional>
#include <memory>

class QWindow;

namespace murmeli {

/// Watches, for as long as it lives, for a press anywhere outside of one open window. Make it when the window
/// opens and drop it when the window closes. Main thread only.
class ClickOutside {
public:
    virtual ~ClickOutside() = default;
};

/// `pressed` is called for every press outside; it may drop the watch.
std::unique_ptr<ClickOutside> makeClickOutside(QWindow* window, std::function<void()> pressed);

} // namespace murmeli
