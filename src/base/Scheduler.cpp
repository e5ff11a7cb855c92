#include "Scheduler.h"

#include <QTimer>

#include <utility>

namespace murmeli {

double SystemScheduler::now() const
{
    using namespace std::chrono;
    return duration<double>{system_clock::now().time_since_epoch()}.count();
}

void SystemScheduler::after(Milliseconds delay, QObject* context, std::function<void()> action)
{
    QTimer::singleShot(delay, Qt::PreciseTimer, context, std::move(action)); // else seconds may be 5 % off
}

void SystemScheduler::every(Milliseconds interval, QObject* context, std::function<void()> action)
{
    auto* timer = new QTimer{context};
    QObject::connect(timer, &QTimer::timeout, context, std::move(action));
    timer->start(interval);
}

} // namespace murmeli
