#include "base/Files.h"
#include "platform/Desktop.h"
#include "platform/PanelPlacement.h"
#include "platform/SingleInstance.h"
#include "platform/WindowSystem.h"
#include "registeredTests.h"
#include "support/Cases.h"

#include <QAbstractButton>
#include <QApplication>
#include <QClipboard>
#include <QDialog>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QMessageBox>
#include <QMimeData>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <thread>

using namespace Qt::StringLiterals;
using namespace murmeli;

class PlatformTest : public QObject {
    Q_OBJECT

private slots:
#ifdef Q_OS_LINUX
    void whatDraws()
    {
        for (const auto* other : {"QT_QUICK_BACKEND", "QSG_RHI_BACKEND", "QMLSCENE_DEVICE"})
            qunsetenv(other);
        // The device's folder, and what its host draws; "" where nothing is told.
        const Cases<QString, QString, bool> cases{
            {"a graphics card", u"0000:00:02.0"_s, {}, false},
            {"a driver without hardware", u"vgem"_s, {}, true},
            {"a virtual machine whose host draws", u"virtio0"_s, u"1100"_s, false},
            {"a virtual machine whose host does not", u"virtio0"_s, u"0100"_s, true},
        };
        for (const auto& [name, device, features, software] : cases) {
            CASE(name);
            const QTemporaryDir root;
            QVERIFY(QDir{root.path()}.mkpath(u"dev/dri"_s));
            QVERIFY(windowSystem::drawsInSoftware(root.path())); // no node
            QVERIFY(QDir{root.path()}.mkpath(u"sys/devices/"_s + device));
            QVERIFY(QDir{root.path()}.mkpath(u"sys/class/drm/renderD128"_s));
            QVERIFY(files::writeAtomic(root.filePath(u"dev/dri/renderD128"_s), {}));
            QVERIFY(QFile::link(root.filePath(u"sys/devices/"_s + device),
                                root.filePath(u"sys/class/drm/renderD128/device"_s)));
            if (!features.isEmpty())
                QVERIFY(files::writeAtomic(root.filePath(u"sys/devices/"_s + device + u"/features"_s),
                                           features.toUtf8()));
            QCOMPARE(windowSystem::drawsInSoftware(root.path()), software);
        }
    }
#endif
    void placement()
    {
        const QRect screen{0, 24, 1280, 876};
        const QRect icon{629, 1, 22, 22};
        const QSize size{340, 590};
        const Cases<QRect, QRect, QSize, QRect, double> cases{
            {"under the icon", icon, screen, size, {470, 26, 340, 590}, 170},
            {"near the right edge", {1257, 1, 22, 22}, screen, size, {932, 26, 340, 590}, 308},
            {"near the left edge", {1, 1, 22, 22}, screen, size, {8, 26, 340, 590}, 32},
            {"height not to be taken seriously", icon, screen, {340, 60}, {470, 26, 340, 400}, 170},
            {"narrow content", icon, screen, {100, 61}, {470, 26, 340, 61}, 170},
            {"wide content", icon, screen, {400, 590}, {440, 26, 400, 590}, 200},
            {"too narrow a screen",
             {100, 1, 22, 22},
             {0, 24, 300, 600},
             {340, 500},
             {-48, 26, 340, 500},
             159},
            {"second screen", {3000, 1, 22, 22}, {1280, 0, 1920, 1080}, size, {2841, 26, 340, 590}, 170},
            {"higher than the screen", icon, {0, 24, 1024, 576}, {340, 900}, {470, 26, 340, 566}, 170},
            {"higher, bar at the bottom",
             {629, 578, 22, 22},
             {0, 0, 1280, 576},
             {340, 900},
             {470, 8, 340, 567},
             170},
            {"bar at the bottom", {629, 878, 22, 22}, {0, 0, 1280, 876}, size, {470, 285, 340, 590}, 170},
        };
        for (const auto& [name, at, available, content, panel, arrowX] : cases) {
            CASE(name);
            const PanelPlacement place = placePanel(at, available, content);
            QCOMPARE(place.panel, panel);
            QCOMPARE(place.arrowX, arrowX);
            QCOMPARE(place.above, panel.y() < at.y());
        }
    }

    void thereIsARuntimeFolderWhateverTheEnvironmentNames()
    {
        QTest::failOnWarning(QRegularExpression{u".*"_s}); // the second start is silent
        const QByteArray named = qgetenv("XDG_RUNTIME_DIR");
        for (const char* folder : {"", "/no/such/folder"}) {
            qputenv("XDG_RUNTIME_DIR", folder);
            const QFileInfo found{SingleInstance::runtimeFolder()};
            QVERIFY(found.isDir() && found.isWritable());
            QCOMPARE(qEnvironmentVariable("XDG_RUNTIME_DIR"), found.filePath());
        }
        if (named.isEmpty()) {
            qunsetenv("XDG_RUNTIME_DIR");
        } else {
            qputenv("XDG_RUNTIME_DIR", named);
        }
    }

    void aNameIsSavedAsItWasTyped()
    {
        const Cases<QString, QString> cases{
            {"as offered", {}, u"План \"Весна\" 2026.pdf"_s},
            {"quotation marks", u"\"а\" \"б\""_s, u"\"а\" \"б\".pdf"_s},
            {"a dot is no ending", u"Релиз 1.5"_s, u"Релиз 1.5.pdf"_s},
            {"with its ending", u"отчёт.PDF"_s, u"отчёт.PDF"_s},
            {"another folder", u"./вниз/отчёт"_s, u"вниз/отчёт.pdf"_s},
            {"one that is there", u"есть"_s, u"есть.pdf"_s},
        };
        for (const auto& [name, typed, saved] : cases) {
            CASE(name);
            const QTemporaryDir folder;
            QDir{folder.path()}.mkdir(u"вниз"_s);
            QVERIFY(files::writeAtomic(folder.filePath(u"есть.pdf"_s), ""));
            QString chosen;
            QObject context;
            makeDesktop(folder.path())
                ->askWhereToSave({.title = u"Сохранить"_s,
                                  .suggested = folder.filePath(u"План \"Весна\" 2026.pdf"_s),
                                  .kind = u"PDF (*.pdf)"_s,
                                  .suffix = u"pdf"_s},
                                 nullptr, &context, [&](const QString& path) { chosen = path; });
            const auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            QVERIFY(dialog);
            auto* field = dialog->findChild<QLineEdit*>(u"fileNameEdit"_s);
            QVERIFY(field);
            if (!typed.isEmpty()) field->setText(typed);
            QTest::keyClick(field, Qt::Key_Return);
            auto* question = dialog->findChild<QMessageBox*>();
            QCOMPARE(question != nullptr, typed == u"есть"_s);
            if (question) {
                QVERIFY(chosen.isEmpty());
                question->button(QMessageBox::Yes)->click();
            }
            QTRY_COMPARE(QDir::cleanPath(chosen), folder.filePath(saved));
            QTRY_VERIFY(!QApplication::activeModalWidget());
        }
    }

    void ownFolders()
    {
#ifndef Q_OS_LINUX
        QSKIP("They are fixed there.");
#endif
        const auto desktop = makeDesktop(u"/home"_s);
        const Cases<QByteArray, QString> cases{
            {"not named", {}, u"/home/.local/share/murmeli"_s},
            {"named", "/data", u"/data/murmeli"_s},
            {"named by what no one can follow", "data", u"/home/.local/share/murmeli"_s}};
        for (const auto& [name, variable, data] : cases) {
            CASE(name);
            qputenv("XDG_DATA_HOME", variable);
            QCOMPARE(desktop->ownFolders().data, data);
        }
        qunsetenv("XDG_DATA_HOME");
    }

    void theDesktopsOwnList()
    {
#ifdef Q_OS_MACOS
        QSKIP("The login agent does it all there.");
#endif
        const QTemporaryDir home;
        const auto desktop = makeDesktop(home.path());
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(home.path() + u"/config"_s));
        const QString entry = home.path() + u"/config/autostart/murmeli.desktop"_s;
        desktop->setLoginItem(true, {});
        const QByteArray on = files::readWhole(entry, 10'000).value_or("");
        QVERIFY(on.contains("\nHidden=false\n"));
        QVERIFY(on.contains("\nExec=\"" + QCoreApplication::applicationFilePath().toUtf8() + "\"\n"));
        desktop->setLoginItem(false, {});
        QVERIFY(files::readWhole(entry, 10'000).value_or("").contains("\nHidden=true\n"));
        qunsetenv("XDG_CONFIG_HOME");
        desktop->setLoginItem(false, {});
        QVERIFY(QFile::exists(home.path() + u"/.config/autostart/murmeli.desktop"_s));
    }

    void aFileIsCopiedForProgramsOfEveryKind()
    {
        makeDesktop({})->copyFile(u"/tmp/а b.pdf"_s);
        const QMimeData* held = QGuiApplication::clipboard()->mimeData();
        QCOMPARE(held->text(), u"/tmp/а b.pdf"_s);
        QCOMPARE(held->urls(), QList{QUrl::fromLocalFile(u"/tmp/а b.pdf"_s)});
        QVERIFY(held->data(u"x-special/gnome-copied-files"_s).startsWith("copy\nfile:///tmp/"));
    }

    void theSecondInstanceHandsOverItsLine()
    {
        const QTemporaryDir folder;
        auto first = std::make_unique<SingleInstance>(folder.path());
        QVERIFY(first->isFirst());
        first->listen();
        QSignalSpy told{first.get(), &SingleInstance::told};
        const QString line = u"murmeli://auth#token=я%20"_s;
        std::thread second{[&] {
            const SingleInstance later{folder.path()};
            if (!later.isFirst()) SingleInstance::tell(folder.path(), line);
        }};
        QTRY_COMPARE(told.size(), 1);
        second.join();
        QCOMPARE(told.first().first().toString(), line);

        first.reset();
        SingleInstance next{folder.path()};
        QVERIFY(next.isFirst());
    }

    void neitherACrashNorAnUnusableFolderKeepsUsFromStarting()
    {
        const QTemporaryDir folder;
        QVERIFY(files::writeAtomic(folder.filePath(u"murmeli.socket"_s), "")); // a crash has left it
        SingleInstance instance{folder.path()};
        instance.listen();
        QSignalSpy told{&instance, &SingleInstance::told};
        std::thread second{[&] { SingleInstance::tell(folder.path(), u"activate"_s); }};
        QTRY_COMPARE(told.size(), 1);
        second.join();

        SingleInstance nowhere{u"/no/such/folder"_s};
        QVERIFY(nowhere.isFirst());
        nowhere.listen();
    }
};

MURMELI_TEST(PlatformTest)
#include "PlatformTest.moc"
