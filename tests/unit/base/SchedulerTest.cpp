#include "base/Scheduler.h"

#include "registeredTests.h"

#include <QTest>

using namespace murmeli;
using namespace std::chrono_literals;

class SchedulerTest : public QObject {
    Q_OBJECT

private slots:
    void nothingRunsForAContextThatHasGone()
    {
        SystemScheduler scheduler;
        auto context = std::make_unique<QObject>();
        QObject other;
        bool wrong = false;
        bool done = false;
        scheduler.after(1ms, context.get(), [&] { wrong = true; });
        scheduler.every(1ms, context.get(), [&] { wrong = true; });
        scheduler.after(20ms, &other, [&] { done = true; });
        context.reset();
        QTRY_VERIFY(done);
        QVERIFY(!wrong);
    }
};

MURMELI_TEST(SchedulerTest)
#include "SchedulerTest.moc"
