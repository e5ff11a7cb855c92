#include "EndSignals.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <array>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace murmeli::endSignals {

namespace {

int told = -1; // the end of a pipe that a handler may write to, unlike nearly everything else

void tell(int)
{
    const char byte = 0;
    [[maybe_unused]] const auto written = ::write(told, &byte, 1);
}

} // namespace

void quitOn(QObject* parent)
{
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0) return;
    for (const int end : ends)
        ::fcntl(end, F_SETFD, FD_CLOEXEC);
    told = ends[1];
    auto* notifier = new QSocketNotifier{ends[0], QSocketNotifier::Read, parent};
    QObject::connect(notifier, &QSocketNotifier::activated, notifier, [notifier] {
        notifier->setEnabled(false);
        QCoreApplication::quit();
    });
    struct sigaction action {};
    action.sa_handler = tell;
    action.sa_flags = int(SA_RESETHAND) | SA_RESTART;
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        ::sigaction(signal, &action, nullptr);
}

} // namespace murmeli::endSignals
