#include "base/Files.h"

#include "registeredTests.h"
#include "support/Cases.h"
#include "support/Disk.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <atomic>
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
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        m_path = m_dir->filePath(u"it"_s);
    }

    void whatIsNoRegularFileIsRefusedAtOnce()
    {
        // Its path, and whether a file may be made there.
        const auto beside = [this](const char* name) { return m_dir->filePath(QString::fromLatin1(name)); };
        QDir{}.mkpath(beside("folder"));
        QCOMPARE(::mkfifo(QFile::encodeName(beside("pipe")).constData(), 0600), 0);
        QFile::link(beside("loop"), beside("loop"));
        QFile::link(beside("none"), beside("dangling"));
        QFile large{beside("large")};
        QVERIFY(large.open(QIODevice::WriteOnly) && large.resize(2'000'000'000));
        const Cases<QString, bool> cases{
            {"missing", m_path, true},         {"dangling link", beside("dangling"), true},
            {"large", beside("large"), true},  {"folder", beside("folder"), false},
            {"pipe", beside("pipe"), false},   {"link to itself", beside("loop"), false},
            {"device", u"/dev/zero"_s, false}, {"name with a zero", m_path + QChar::Null, false},
        };
        for (const auto& [name, odd, writable] : cases) {
            CASE(name);
            QElapsedTimer time;
            time.start();
            QVERIFY(!files::readWhole(odd, 1000));
            QCOMPARE(files::isReadable(odd), odd == beside("large"));
            if (!writable) QVERIFY(!files::writeInPlace(odd, "x") && !files::append(odd, "x"));
            QVERIFY2(time.elapsed() < 1000, "it waited for something");
        }
    }

    void readsUpToTheLimitAndNoFurther()
    {
        const QByteArray bytes(10'000, 'x');
        QVERIFY(files::writeAtomic(m_path, bytes));
        QCOMPARE(files::readWhole(m_path, 10'000), bytes);
        QVERIFY(!files::readWhole(m_path, 9'999));
        QVERIFY(files::writeAtomic(m_path, ""));
        QCOMPARE(files::readWhole(m_path, 0), QByteArray{});
        QVERIFY(files::readWhole(u"/proc/self/stat"_s, 10'000)->size() > 10); // that says it were empty
    }

    void writingInPlaceKeepsTheFileAndItsPermissions()
    {
        QVERIFY(files::writeInPlace(m_path, "a longer content"));
        QFile::setPermissions(m_path, QFile::ReadOwner | QFile::WriteOwner);
        const auto before = files::identity(m_path);
        QVERIFY(files::writeInPlace(m_path, "short"));
        const auto after = files::identity(m_path);
        QCOMPARE(files::readWhole(m_path, 100), "short"_ba);
        QCOMPARE(after.inode, before.inode);
        QVERIFY(after != before);
        QCOMPARE(QFile::permissions(m_path) & QFile::ReadGroup, QFile::Permissions{});
    }

    // The service reads whenever it likes: there must be no moment in which the file is empty or cut. Content
    // that is shorter is written over the longer first and cut then, so only the two lengths are ever seen.
    void anInPlaceWriteNeverShowsAnEmptyOrCutFile()
    {
        const QByteArray small = "{\"a\":1}";
        const QByteArray large = "{\"a\":\"" + QByteArray(3000, 'y') + "\"}";
        QVERIFY(files::writeInPlace(m_path, small));
        std::atomic<bool> stop = false;
        std::atomic<int> cut = 0;
        std::atomic<int> looks = 0;
        std::thread observer{[&] {
            while (!stop) {
                // The kernel may copy a page while it is written, so letters can mix; lengths must not.
                const qint64 size = files::identity(m_path).size;
                if (size != small.size() && size != large.size()) ++cut;
                ++looks;
            }
        }};
        bool written = true;
        for (int i = 0; written && (i < 20'000 || looks < 1000); ++i) {
            written = files::writeInPlace(m_path, i % 2 == 0 ? large : small);
        }
        stop = true;
        observer.join();
        QVERIFY(written);
        QCOMPARE(cut.load(), 0);
    }

    void aFileChangedAMomentAgoIsNotSettled()
    {
        QVERIFY(files::writeInPlace(m_path, "x"));
        QVERIFY(!files::isSettled(files::identity(m_path)));
        QTRY_VERIFY(files::isSettled(files::identity(m_path)));
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
        const QString folder = m_dir->filePath(u"disk"_s);
        const Disk disk{folder, "tmpfs", "size=32k"};
        if (!disk.isThere()) QSKIP("takes root, to make a disk that is full");
        m_path = folder + u"/it"_s;
        QVERIFY(files::writeAtomic(m_path, "old"));
        QVERIFY(files::append(folder + u"/filler"_s, QByteArray(24 * 1024, 'x')));
        const QByteArray larger(8 * 1024, 'y'); // than what is left, and less than what Qt writes at once
        QVERIFY(!files::writeAtomic(m_path, larger));
        QCOMPARE(files::writePrivate(m_path, larger), files::Written::Failed);
        QCOMPARE(files::readWhole(m_path, 100), "old"_ba);
        QCOMPARE(QDir{folder}.entryList(QDir::Files).size(), 2);
    }

    void aFileThatMayNotBeWrittenIsReplacedWhereItsFolderMay()
    {
        const AsNobody nobody{m_dir->path()};
        QVERIFY(files::writeAtomic(m_path, "old"));
        QFile::setPermissions(m_path, QFile::ReadOwner);
        QVERIFY(files::writeAtomic(m_path, "new", files::Durable::No));
        QCOMPARE(files::readWhole(m_path, 100), "new"_ba);
        QCOMPARE(QFile::permissions(m_path) & QFile::WriteOwner, QFile::Permissions{});

        const QString link = m_dir->filePath(u"link"_s);
        QFile::link(m_path, link);
        QVERIFY(files::writeAtomic(link, "through the link"));
        QVERIFY(QFileInfo{link}.isSymLink());
        QCOMPARE(files::readWhole(m_path, 100), "through the link"_ba);
    }

    void aWriteThatIsOvertakenLeavesWhatOvertookIt()
    {
        const auto other = [&] {
            files::removeUnfinished(m_path); // ours is under way
            return !files::writeAtomic(m_path, "theirs");
        };
        for (const bool isPrivate : {false, true}) {
            CASE(isPrivate ? "private" : "atomic");
            QFile::remove(m_path);
            QCOMPARE(isPrivate ? files::writePrivate(m_path, "ours", other)
                               : files::writeAtomicIf(m_path, "ours", other),
                     files::Written::Overtaken);
            QCOMPARE(files::readWhole(m_path, 100), "theirs"_ba);
            QCOMPARE(QDir{m_dir->path()}.entryList(QDir::Files | QDir::Hidden).size(), 1);
            QVERIFY(files::writePrivate(m_path, "ours", [this] {
                        files::removeUnfinished(m_path);
                        return true;
                    }) == files::Written::Yes);
        }
    }

    void aPrivateFileIsTheOwnersFromTheFirstByte()
    {
        QVERIFY(files::writeAtomic(m_path, "open to all"));
        QFile::setPermissions(m_path, QFile::Permissions{0x6644});
        const auto old = files::identity(m_path);
        QVERIFY(!files::isPrivate(m_path));
        const ::mode_t before = ::umask(0);
        const auto beforeItIsMoved = [this] {
            const auto made = QDir{m_dir->path()}.entryInfoList({u"it.*"_s}, QDir::Files | QDir::Hidden);
            return made.size() == 1 && made[0].permissions() == QFile::Permissions{0x6600};
        };
        QCOMPARE(files::writePrivate(m_path, "token", beforeItIsMoved), files::Written::Yes);
        ::umask(before);
        QVERIFY(files::isPrivate(m_path));
        QCOMPARE(QFile::permissions(m_path), QFile::Permissions{0x6600});
        QVERIFY(files::identity(m_path).inode != old.inode); // never the old, readable file with new content
        QCOMPARE(files::readWhole(m_path, 100), "token"_ba);
    }

    void appendingMakesTheFileAndKeepsWhatIsThere()
    {
        QVERIFY(files::append(m_path, "a\n"));
        QVERIFY(files::append(m_path, "b\n"));
        QCOMPARE(files::readWhole(m_path, 100), "a\nb\n"_ba);
    }

private:
    std::unique_ptr<QTemporaryDir> m_dir;
    QString m_path; ///< in it, where nothing is yet
};

MURMELI_TEST(FilesTest)
#include "FilesTest.moc"
