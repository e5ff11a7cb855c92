#include "registeredTests.h"
#include "support/ManualScheduler.h"

#include <QTest>

using namespace murmeli;
using namespace std::chrono_literals;

class SchedulerTest : public QObject {
    Q_OBJECT

private slots:
    void manualTimeRunsThingsInOrder()
    {
        ManualScheduler scheduler{100};
        QObject context;
        QStringList ran;
        scheduler.every(400ms, &context, [&] { ran += QStringLiteral("every"); });
        scheduler.after(1000ms, &context, [&] {
            ran += QStringLiteral("after");
            QCOMPARE(scheduler.now(), 101.0);
            scheduler.after(0ms, &context, [&] { ran += QStringLiteral("added"); });
        });
        QCOMPARE(scheduler.wakeUpsWithin(1000ms), 3);
        scheduler.advance(999ms);
        QCOMPARE(ran, (QStringList{QStringLiteral("every"), QStringLiteral("every")}));
        scheduler.advance(1ms);
        QCOMPARE(ran.last(), QStringLiteral("added"));
        QCOMPARE(scheduler.now(), 101.0);
    }

    void nothingRunsForAContextThatHasGone_data()
    {
        QTest::addColumn<bool>("manual");
        QTest::newRow("manual") << true;
        QTest::newRow("system") << false;
    }
    void nothingRunsForAContextThatHasGone()
    {
        QFETCH(bool, manual);
        ManualScheduler manualScheduler;
        SystemScheduler systemScheduler;
        Scheduler& scheduler = manual ? static_cast<Scheduler&>(manualScheduler) : systemScheduler;
        auto context = std::make_unique<QObject>();
        QObject other;
        bool wrong = false;
        bool done = false;
        scheduler.after(1ms, context.get(), [&] { wrong = true; });
        scheduler.every(1ms, context.get(), [&] { wrong = true; });
        scheduler.after(20ms, &other, [&] { done = true; });
        context.reset();
        manualScheduler.advance(50ms);
        QTRY_VERIFY(done);
        QVERIFY(!wrong);
    }
};

MURMELI_TEST(SchedulerTest)
#include "SchedulerTest.moc"
