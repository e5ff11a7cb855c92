#include "base/Files.h"
#include "platform/Desktop.h"
#include "platform/PanelPlacement.h"
#include "platform/SingleInstance.h"
#include "registeredTests.h"

#include <QAbstractButton>
#include <QApplication>
#include <QClipboard>
#include <QDialog>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QMessageBox>
#include <QMimeData>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <thread>

using namespace Qt::StringLiterals;
using namespace murmeli;

class PlatformTest : public QObject {
    Q_OBJECT

private slots:
    void placement_data()
    {
        QTest::addColumn<QRect>("icon");
        QTest::addColumn<QRect>("available");
        QTest::addColumn<QSize>("content");
        QTest::addColumn<QRect>("panel");
        QTest::addColumn<double>("arrowX");
        const QRect screen{0, 24, 1280, 876};
        QTest::newRow("under the icon")
            << QRect{629, 1, 22, 22} << screen << QSize{340, 590} << QRect{470, 26, 340, 590} << 170.0;
        QTest::newRow("near the right edge")
            << QRect{1257, 1, 22, 22} << screen << QSize{340, 590} << QRect{932, 26, 340, 590} << 308.0;
        QTest::newRow("near the left edge")
            << QRect{1, 1, 22, 22} << screen << QSize{340, 590} << QRect{8, 26, 340, 590} << 32.0;
        QTest::newRow("height not to be taken seriously")
            << QRect{629, 1, 22, 22} << screen << QSize{340, 60} << QRect{470, 26, 340, 400} << 170.0;
        QTest::newRow("narrow content")
            << QRect{629, 1, 22, 22} << screen << QSize{100, 61} << QRect{470, 26, 340, 61} << 170.0;
        QTest::newRow("wide content")
            << QRect{629, 1, 22, 22} << screen << QSize{400, 590} << QRect{440, 26, 400, 590} << 200.0;
        QTest::newRow("too narrow a screen: the right bound wins")
            << QRect{100, 1, 22, 22} << QRect{0, 24, 300, 600} << QSize{340, 500} << QRect{-48, 26, 340, 500}
            << 159.0;
        QTest::newRow("second screen") << QRect{3000, 1, 22, 22} << QRect{1280, 0, 1920, 1080}
                                       << QSize{340, 590} << QRect{2841, 26, 340, 590} << 170.0;
        QTest::newRow("higher than the screen") << QRect{981, 1, 22, 22} << QRect{0, 24, 1024, 576}
                                                << QSize{340, 900} << QRect{676, 26, 340, 566} << 308.0;
        QTest::newRow("higher than the screen, bar at the bottom")
            << QRect{629, 578, 22, 22} << QRect{0, 0, 1280, 576} << QSize{340, 900} << QRect{470, 8, 340, 567}
            << 170.0;
        QTest::newRow("bar at the bottom") << QRect{629, 878, 22, 22} << QRect{0, 0, 1280, 876}
                                           << QSize{340, 590} << QRect{470, 285, 340, 590} << 170.0;
    }
    void placement()
    {
        QFETCH(QRect, icon);
        QFETCH(QRect, available);
        QFETCH(QSize, content);
        const PanelPlacement place = placePanel(icon, available, content);
        QTEST(place.panel, "panel");
        QTEST(place.arrowX, "arrowX");
    }

    void aNameIsSavedAsItWasTyped_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("name");
        QTest::newRow("as offered") << QString{} << u"План \"Весна\" 2026.pdf"_s;
        QTest::newRow("quotation marks") << u"\"а\" \"б\""_s << u"\"а\" \"б\".pdf"_s;
        QTest::newRow("a dot is no ending") << u"Релиз 1.5"_s << u"Релиз 1.5.pdf"_s;
        QTest::newRow("with its ending") << u"отчёт.PDF"_s << u"отчёт.PDF"_s;
        QTest::newRow("another folder") << u"./вниз/отчёт"_s << u"вниз/отчёт.pdf"_s;
        QTest::newRow("one that is there") << u"есть"_s << u"есть.pdf"_s;
    }
    void aNameIsSavedAsItWasTyped()
    {
        QFETCH(QString, typed);
        const QTemporaryDir folder;
        QDir{folder.path()}.mkdir(u"вниз"_s);
        QFile there{folder.filePath(u"есть.pdf"_s)};
        QVERIFY(there.open(QIODevice::WriteOnly));
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
        QFETCH(QString, name);
        QTRY_COMPARE(QDir::cleanPath(chosen), folder.filePath(name));
        QTRY_VERIFY(!QApplication::activeModalWidget());
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
        const auto content = [&] { return QString::fromUtf8(files::readWhole(entry, 10'000).value_or("")); };
        desktop->setLoginItem(true);
        QVERIFY(content().contains(u"\nHidden=false\n"_s));
        QVERIFY(content().contains(u"\nExec=\""_s + QCoreApplication::applicationFilePath() + u"\"\n"_s));
        desktop->setLoginItem(false);
        QVERIFY(content().contains(u"\nHidden=true\n"_s));
        qunsetenv("XDG_CONFIG_HOME");
        desktop->setLoginItem(false);
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
            if (!later.isFirst()) later.tellFirst(line);
        }};
        QTRY_COMPARE(told.size(), 1);
        second.join();
        QCOMPARE(told.first().first().toString(), line);

        first.reset();
        SingleInstance next{folder.path()};
        QVERIFY(next.isFirst());
    }

    void aSocketLeftByACrashIsNoHindrance()
    {
        const QTemporaryDir folder;
        QFile leftOver{folder.filePath(u"murmeli.socket"_s)};
        QVERIFY(leftOver.open(QIODevice::WriteOnly));
        leftOver.close();
        SingleInstance instance{folder.path()};
        instance.listen();
        QSignalSpy told{&instance, &SingleInstance::told};
        std::thread second{[&] { SingleInstance{folder.path()}.tellFirst(u"activate"_s); }};
        QTRY_COMPARE(told.size(), 1);
        second.join();
    }

    void anUnusableFolderDoesNotKeepUsFromStarting()
    {
        SingleInstance instance{u"/no/such/folder"_s};
        QVERIFY(instance.isFirst());
        instance.listen();
    }
};

MURMELI_TEST(PlatformTest)
#include "PlatformTest.moc"
