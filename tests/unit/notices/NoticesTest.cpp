#include "notices/ToastCenter.h"
#include "registeredTests.h"
#include "support/ManualScheduler.h"
#include "ui/Look.h"
#include "ui/ViewEngine.h"

#include <QGuiApplication>
#include <QQmlEngine>
#include <QQuickWindow>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace murmeli;
using namespace std::chrono_literals;

class NoticesTest : public QObject {
    Q_OBJECT

private slots:
    void cardsStandBelowEachOtherForFourAndAHalfSeconds()
    {
        QRect screen;
        Look look{nullptr};
        look.setReducedMotion(true);
        ManualScheduler scheduler;
        ViewEngine views{scheduler, [&look](QQmlEngine& engine) {
                             engine.addImportPath(u"qrc:/qt/qml"_s);
                             look.install(engine);
                         }};
        ToastCenter toasts{views, scheduler, [&](const ToastText&) { return screen; }};
        toasts.show({u"a"_s, {}});
        QCOMPARE(toasts.count(), 0); // there is no screen to show it on

        screen = {0, 0, 1280, 800};
        toasts.show({u"a"_s, {}});
        scheduler.advance(1s);
        toasts.show({u"b"_s, {}});
        QTRY_COMPARE(shown(), (QStringList{u"a 0"_s, u"b 1"_s}));
        scheduler.advance(3499ms);
        QCOMPARE(shown().size(), 2);
        scheduler.advance(1ms);
        QTRY_COMPARE(shown(), QStringList{u"b 1"_s}); // it keeps its place
        toasts.show({u"c"_s, {}});
        QTRY_COMPARE(shown(), (QStringList{u"b 1"_s, u"c 1"_s}));
    }

private:
    /// Titles, and how many cards there is room for above each.
    static QStringList shown()
    {
        QStringList cards;
        for (const QWindow* window : QGuiApplication::topLevelWindows()) {
            if (window->isVisible())
                cards.append(
                    u"%1 %2"_s.arg(window->title()).arg(qRound(window->property("above").toDouble() / 82)));
        }
        cards.sort();
        return cards;
    }
};

MURMELI_TEST(NoticesTest)
#include "NoticesTest.moc"
