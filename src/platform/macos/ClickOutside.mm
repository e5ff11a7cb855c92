#include "ClickOutside.h"

#include <QtGlobal>
#include <utility>

#import <AppKit/AppKit.h>

namespace murmeli {

namespace {

class GlobalMouseMonitor final : public ClickOutside {
public:
    explicit GlobalMouseMonitor(std::function<void()> pressed)
    {
        m_monitor = [NSEvent
            addGlobalMonitorForEventsMatchingMask:NSEventMaskLeftMouseDown | NSEventMaskRightMouseDown
                                          handler:^(NSEvent*) {
                                            const auto call = pressed; // which may end the monitor, and us
                                            call();
                                          }];
    }
    ~GlobalMouseMonitor() override
    {
        if (m_monitor) [NSEvent removeMonitor:m_monitor];
    }
    Q_DISABLE_COPY_MOVE(GlobalMouseMonitor)

private:
    id m_monitor;
};

} // namespace

std::unique_ptr<ClickOutside> makeClickOutside(QWindow*, std::function<void()> pressed)
{
    return std::make_unique<GlobalMouseMonitor>(std::move(pressed));
}

} // namespace murmeli
