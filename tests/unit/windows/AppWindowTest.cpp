#include "windows/AppWindow.h"

#include "base/Files.h"
#include "localisation/Language.h"
#include "registeredTests.h"
#include "service/Prefs.h"
#include "support/ManualScheduler.h"
#include "ui/ViewEngine.h"
#include "windows/OnDemandWindow.h"

#include <QQmlEngine>
#include <QScreen>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace murmeli;
using namespace std::chrono_literals;

class AppWindowTest : public QObject {
    Q_OBJECT

private slots:
    void init()
    {
        m_home = std::make_unique<QTemporaryDir>();
        QVERIFY(files::writeAtomic(m_home->filePath(u"view.qml"_s), "import QtQuick\nItem {}\n"));
    }

    void comingForwardLeavesItsSize()
    {
        const auto window = make({.size = {300, 200}});
        window->present();
        window->showMaximized();
        window->present();
        QCOMPARE(window->windowStates(), Qt::WindowStates{Qt::WindowMaximized});
        window->close();
        window->present();
        QVERIFY(window->isVisible());
        QCOMPARE(window->windowStates(), Qt::WindowStates{Qt::WindowMaximized});
        window->showMinimized();
        window->present();
        QVERIFY(!(window->windowStates() & Qt::WindowMinimized));
    }

    void asMuchAsTheScreenHasRoomFor()
    {
        const QSize room = QGuiApplication::primaryScreen()->availableSize();
        const auto window = make({.size = {300, room.height() + 100}, .least = {300, 200}});
        window->present();
        QVERIFY(window->height() < room.height());
        QCOMPARE(window->width(), 300);
        const auto wide = make({.size = {room.width() + 200, 200}, .least = {room.width() + 100, 100}});
        wide->present();
        QCOMPARE(wide->width(), room.width());
        QCOMPARE(wide->minimumWidth(), room.width());
        const auto large = make({.size = {300, room.height() + 100}}); // that can be no smaller
        large->present();
        QCOMPARE(large->height(), room.height() + 100);
    }

    void theEngineGoesSomeMinutesAfterTheLastLook()
    {
        ManualScheduler scheduler;
        ViewEngine views{scheduler, [](QQmlEngine&) {}};
        OnDemandWindow window{views, m_language, {.url = viewUrl(), .titleKey = u"settings.title"_s}};
        QVERIFY(!views.isThere());
        window.show();
        scheduler.advance(1h);
        QVERIFY(views.isThere());
        window.window()->close();
        QTRY_VERIFY(!window.window());
        const QSignalSpy letGo{&views, &ViewEngine::letGo};
        scheduler.advance(2min);
        window.show(); // whoever comes back finds all as it was
        window.window()->close();
        scheduler.advance(2min);
        QVERIFY(views.isThere());
        scheduler.advance(1min);
        QCOMPARE(letGo.size(), 1);
        QVERIFY(!views.isThere());
        window.show();
        QVERIFY(window.window()->isVisible());
    }

private:
    [[nodiscard]] QString viewUrl() const
    {
        return QUrl::fromLocalFile(m_home->filePath(u"view.qml"_s)).toString();
    }
    std::unique_ptr<AppWindow> make(AppWindow::View view)
    {
        view.url = viewUrl();
        view.titleKey = u"settings.title"_s;
        return std::make_unique<AppWindow>(m_engine, m_language, view);
    }

    std::unique_ptr<QTemporaryDir> m_home;
    Prefs m_prefs{QString{}};
    Language m_language{m_prefs, [] { return QStringList{}; }};
    QQmlEngine m_engine;
};

MURMELI_TEST(AppWindowTest)
#include "AppWindowTest.moc"
