#include "base/Files.h"

#include "registeredTests.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QTest>

#include <atomic>
#include <sys/mount.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace murmeli;

namespace {

/// Root may write everything; for as long as this lives the test is an ordinary user, who owns `folder`.
class AsNobody {
public:
    explicit AsNobody(const QString& folder)
    {
        if (!m_root) return;
        [[maybe_unused]] const int given = ::chown(QFile::encodeName(folder).constData(), nobody, nobody);
        [[maybe_unused]] const int dropped = ::seteuid(nobody);
    }
    ~AsNobody()
    {
        if (m_root) [[maybe_unused]]
            const int back = ::seteuid(0);
    }
    Q_DISABLE_COPY_MOVE(AsNobody)

private:
    static constexpr uid_t nobody = 65534;
    bool m_root = ::geteuid() == 0;
};

} // namespace

class FilesTest : public QObject {
    Q_OBJECT

private slots:
    void init() { m_dir = std::make_unique<QTemporaryDir>(); }

    void whatIsNoRegularFileIsRefusedAtOnce_data()
    {
        QTest::addColumn<QString>("kind");
        for (const char* kind : {"missing", "folder", "fifo", "link to itself", "dangling link", "device",
                                 "large", "name with a zero"}) {
            QTest::newRow(kind) << QString::fromLatin1(kind);
        }
    }
    void whatIsNoRegularFileIsRefusedAtOnce()
    {
        QFETCH(QString, kind);
        QString path = m_dir->filePath(u"it"_s);
        const QByteArray name = QFile::encodeName(path);
        if (kind == u"folder"_s) QDir{}.mkpath(path);
        if (kind == u"fifo"_s) QCOMPARE(::mkfifo(name.constData(), 0600), 0);
        if (kind == u"link to itself"_s) QFile::link(path, path);
        if (kind == u"dangling link"_s) QFile::link(m_dir->filePath(u"none"_s), path);
        if (kind == u"device"_s) path = u"/dev/zero"_s;
        if (kind == u"name with a zero"_s) path += QChar::Null;
        if (kind == u"large"_s) {
            QFile file{path};
            QVERIFY(file.open(QIODevice::WriteOnly) && file.resize(2'000'000'000));
        }
        QElapsedTimer time;
        time.start();
        QVERIFY(!files::readWhole(path, 1000));
        if (kind != u"missing"_s && kind != u"large"_s && kind != u"dangling link"_s) {
            QVERIFY(!files::writeInPlace(path, "x"));
            QVERIFY(!files::append(path, "x"));
        }
        QVERIFY2(time.elapsed() < 1000, "it waited for something");
        QCOMPARE(files::isReadable(path), kind == u"large"_s);
    }

    void readsUpToTheLimitAndNoFurther()
    {
        const QString path = m_dir->filePath(u"it"_s);
        const QByteArray bytes(10'000, 'x');
        QVERIFY(files::writeAtomic(path, bytes));
        QCOMPARE(files::readWhole(path, 10'000), bytes);
        QVERIFY(!files::readWhole(path, 9'999));
        QVERIFY(files::writeAtomic(path, ""));
        QCOMPARE(files::readWhole(path, 0), QByteArray{});
    }

    void readsFilesThatHideTheirSize()
    {
        QVERIFY(files::readWhole(u"/proc/self/stat"_s, 10'000)->size() > 10);
    }

    void writingInPlaceKeepsTheFileAndItsPermissions()
    {
        const QString path = m_dir->filePath(u"it"_s);
        QVERIFY(files::writeInPlace(path, "a longer content"));
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner);
        const auto before = files::identity(path);
        QVERIFY(files::writeInPlace(path, "short"));
        const auto after = files::identity(path);
        QCOMPARE(files::readWhole(path, 100), "short"_ba);
        QCOMPARE(after.inode, before.inode);
        QVERIFY(after != before);
        QCOMPARE(QFile::permissions(path) & QFile::ReadGroup, QFile::Permissions{});
    }

    // The service reads whenever it likes: there must be no moment in which the file is empty or cut. Content
    // that is shorter is written over the longer first and cut then, so only the two lengths are ever seen.
    void anInPlaceWriteNeverShowsAnEmptyOrCutFile()
    {
        const QString path = m_dir->filePath(u"it"_s);
        const QByteArray small = "{\"a\":1}";
        const QByteArray large = "{\"a\":\"" + QByteArray(3000, 'y') + "\"}";
        QVERIFY(files::writeInPlace(path, small));
        std::atomic<bool> stop = false;
        std::atomic<int> cut = 0;
        std::atomic<int> looks = 0;
        std::thread observer{[&] {
            while (!stop) {
                // The kernel may copy a page while it is written, so letters can mix; lengths must not.
                const qint64 size = files::identity(path).size;
                if (size != small.size() && size != large.size()) ++cut;
                ++looks;
            }
        }};
        bool written = true;
        for (int i = 0; written && (i < 20'000 || looks < 1000); ++i) {
            written = files::writeInPlace(path, i % 2 == 0 ? large : small);
        }
        stop = true;
        observer.join();
        QVERIFY(written);
        QCOMPARE(cut.load(), 0);
    }

    void aFileChangedAMomentAgoIsNotSettled()
    {
        const QString path = m_dir->filePath(u"it"_s);
        QVERIFY(files::writeInPlace(path, "x"));
        QVERIFY(!files::isSettled(files::identity(path)));
        QTRY_VERIFY(files::isSettled(files::identity(path)));
    }

    void aFailedAtomicWriteLeavesTheOldContent()
    {
        const QString missing = m_dir->filePath(u"no/such/folder/it"_s);
        QVERIFY(!files::writeAtomic(missing, "x"));
        QCOMPARE(files::writePrivate(missing, "x"), files::Written::Failed);
        QVERIFY(!files::writeInPlace(missing, "x"));
        QVERIFY(!QFile::exists(m_dir->filePath(u"no"_s)));

        const QString folder = m_dir->filePath(u"folder"_s);
        QDir{}.mkpath(folder);
        QCOMPARE(files::writePrivate(folder, "x"), files::Written::Failed);
        QCOMPARE(QDir{m_dir->path()}.entryList(QDir::Files | QDir::Hidden), QStringList{});
    }

    void aFullDiskLeavesTheOldContent()
    {
        if (::geteuid() != 0) QSKIP("takes root, to make a disk that is full");
        const QString disk = m_dir->filePath(u"disk"_s);
        QDir{}.mkpath(disk);
        QVERIFY(::mount("none", QFile::encodeName(disk).constData(), "tmpfs", 0, "size=32k") == 0);
        const auto unmount = qScopeGuard([&] { ::umount(QFile::encodeName(disk).constData()); });
        const QString path = disk + u"/it"_s;
        QVERIFY(files::writeAtomic(path, "old"));
        QVERIFY(files::append(disk + u"/filler"_s, QByteArray(24 * 1024, 'x')));
        const QByteArray larger(8 * 1024, 'y'); // than what is left, and less than what Qt writes at once
        QVERIFY(!files::writeAtomic(path, larger));
        QCOMPARE(files::writePrivate(path, larger), files::Written::Failed);
        QCOMPARE(files::readWhole(path, 100), "old"_ba);
        QCOMPARE(QDir{disk}.entryList(QDir::Files).size(), 2);
    }

    void aFileThatMayNotBeWrittenIsReplacedWhereItsFolderMay()
    {
        const AsNobody nobody{m_dir->path()};
        const QString path = m_dir->filePath(u"it"_s);
        QVERIFY(files::writeAtomic(path, "old"));
        QFile::setPermissions(path, QFile::ReadOwner);
        QVERIFY(files::writeAtomic(path, "new", files::Durable::No));
        QCOMPARE(files::readWhole(path, 100), "new"_ba);
        QCOMPARE(QFile::permissions(path) & QFile::WriteOwner, QFile::Permissions{});

        const QString link = m_dir->filePath(u"link"_s);
        QFile::link(path, link);
        QVERIFY(files::writeAtomic(link, "through the link"));
        QVERIFY(QFileInfo{link}.isSymLink());
        QCOMPARE(files::readWhole(path, 100), "through the link"_ba);
    }

    void aWriteThatIsOvertakenLeavesWhatOvertookIt()
    {
        const QString path = m_dir->filePath(u"it"_s);
        const auto other = [&] { return !files::writeAtomic(path, "theirs"); };
        QCOMPARE(files::writePrivate(path, "ours", other), files::Written::Overtaken);
        QCOMPARE(files::readWhole(path, 100), "theirs"_ba);
        QCOMPARE(QDir{m_dir->path()}.entryList(QDir::Files | QDir::Hidden).size(), 1);
    }

    void aPrivateFileIsTheOwnersFromTheFirstByte()
    {
        const QString path = m_dir->filePath(u"secret"_s);
        QVERIFY(files::writeAtomic(path, "open to all"));
        QFile::setPermissions(path, QFile::Permissions{0x6644});
        const auto old = files::identity(path);
        QVERIFY(!files::isPrivate(path));
        QCOMPARE(files::writePrivate(path, "token"), files::Written::Yes);
        QVERIFY(files::isPrivate(path));
        struct stat info {};
        QCOMPARE(::stat(QFile::encodeName(path).constData(), &info), 0);
        QCOMPARE(info.st_mode & 0777, mode_t(0600));
        QVERIFY(files::identity(path).inode != old.inode); // never the old, readable file with new content
        QCOMPARE(files::readWhole(path, 100), "token"_ba);
    }

    void appendingMakesTheFileAndKeepsWhatIsThere()
    {
        const QString path = m_dir->filePath(u"log"_s);
        QVERIFY(files::append(path, "a\n"));
        QVERIFY(files::append(path, "b\n"));
        QCOMPARE(files::readWhole(path, 100), "a\nb\n"_ba);
    }

private:
    std::unique_ptr<QTemporaryDir> m_dir;
};

MURMELI_TEST(FilesTest)
#include "FilesTest.moc"
