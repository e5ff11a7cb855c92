#include "service/OwnFile.h"

#include "base/Files.h"
#include "registeredTests.h"
#include "support/Cases.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>
#include <thread>

using namespace Qt::StringLiterals;
using namespace murmeli;

class OwnFileTest : public QObject {
    Q_OBJECT

private slots:
    void init()
    {
        m_home = std::make_unique<QTemporaryDir>();
        m_place = {m_home->filePath(u"share/murmeli"_s), u"margin/a.json"_s, 1000};
        m_path = m_place.folder + u'/' + m_place.name;
    }

    void whatIsNotOursToReplaceIsNotReplaced()
    {
        const QByteArray large = QByteArray{R"({"v":1,"a":"x"})"}.replace("x", QByteArray(1000, 'x'));
        const Cases<QByteArray, OwnWritten, QByteArray> cases{
            {"nothing yet", {}, OwnWritten::Yes, R"({"n":2,"v":1})"},
            {"what somebody else has put there", R"({"v":1, "far":12345678901234567890, "n":1})",
             OwnWritten::Yes, R"({"v":1,"far":12345678901234567890,"n":2})"},
            {"a newer version", R"({"v":2,"n":1})", OwnWritten::Unreadable, R"({"v":2,"n":1})"},
            {"cut off", R"({"v":1,"n")", OwnWritten::Unreadable, R"({"v":1,"n")"},
            {"another kind of document", "[1]", OwnWritten::Unreadable, "[1]"},
            {"other letters", "{\"v\":1,\"a\":\"\xff\"}", OwnWritten::Unreadable, "{\"v\":1,\"a\":\"\xff\"}"},
            {"too large", large, OwnWritten::Unreadable, large},
        };
        for (const auto& [name, before, outcome, after] : cases) {
            CASE(name);
            put(before);
            QCOMPARE(set(2), outcome);
            QCOMPARE(content(), after);
        }
        put(R"({"v":2,"n":1})");
        QCOMPARE(OwnFile{m_place}.read().object.value("n"_L1), 1); // as far as it can be read
    }

    void whatIsNoFileIsLeftAlone()
    {
        QVERIFY(QDir{}.mkpath(m_path));
        QCOMPARE(set(1), OwnWritten::Unreadable);
        QVERIFY(QDir{}.rmdir(m_path));
        QCOMPARE(::mkfifo(QFile::encodeName(m_path).constData(), 0600), 0);
        QCOMPARE(set(1), OwnWritten::Unreadable);
        QCOMPARE(OwnLines{m_place}.append({}), OwnWritten::Unreadable);
        m_place.name = u"margin/../../a.json"_s;
        QCOMPARE(set(1), OwnWritten::Failed);
        m_place.folder.clear();
        QCOMPARE(set(1), OwnWritten::Failed);
    }

    void onlyTheOwnerMayLook()
    {
        const auto before = ::umask(0);
        QCOMPARE(set(1), OwnWritten::Yes);
        m_place.name = u"marks.jsonl"_s;
        QCOMPARE(OwnLines{m_place}.append({}), OwnWritten::Yes);
        ::umask(before);
        for (const auto& folder : {u"share"_s, u"share/murmeli"_s, u"share/murmeli/margin"_s})
            QCOMPARE(QFile::permissions(m_home->filePath(folder)), QFile::Permissions{0x7700});
        for (const auto& file : {u"margin/a.json"_s, u"marks.jsonl"_s, u"lock"_s})
            QVERIFY(files::isPrivate(m_place.folder + u'/' + file));
    }

    void aCutLineIsSkippedAndKept()
    {
        const OwnLines lines{m_place};
        put("{\"v\":1,\"n\":1}\nwhat\n{\"v\":2,\"n\":2}\n{\"v\":1,\"n\":3");
        QCOMPARE(lines.read().lines, (QList<QJsonObject>{{{u"v"_s, 1}, {u"n"_s, 1}}}));
        QCOMPARE(lines.append({{u"n"_s, 4}}), OwnWritten::Yes);
        const auto first = [](const QJsonObject& line) { return line.value("n"_L1) == 1; };
        QCOMPARE(lines.remove(first), OwnWritten::Yes);
        QCOMPARE(content(), "what\n{\"v\":2,\"n\":2}\n{\"v\":1,\"n\":3\n{\"n\":4,\"v\":1}\n"_ba);
        put(QByteArray(2000, '\n'));
        QCOMPARE(lines.append({}), OwnWritten::Unreadable);
        QCOMPARE(lines.remove(first), OwnWritten::Unreadable);
    }

    void twoWhoWriteAtOnceLoseNothing()
    {
        const auto more = [](const QJsonObject& object) {
            return QJsonObject{{u"n"_s, object.value("n"_L1).toInt() + 1}};
        };
        const auto count = [&] {
            for (int i = 0; i < 100; ++i)
                QCOMPARE(OwnFile{m_place}.change(more), OwnWritten::Yes);
        };
        std::thread other{count};
        count();
        other.join();
        QCOMPARE(OwnFile{m_place}.read().object.value("n"_L1), 200);
    }

    void whoeverDoesNotLetGoMakesItFail()
    {
        QVERIFY(files::makePrivateFolder(m_place.folder));
        const files::Lock other{m_place.folder + u"/lock"_s, {}};
        QVERIFY(other.held());
        QCOMPARE(set(1), OwnWritten::Failed);
        QVERIFY(!OwnFile{m_place}.read().unreadable);
    }

private:
    void put(const QByteArray& bytes)
    {
        QVERIFY(files::makePrivateFolder(m_place.folder + u"/margin"_s));
        if (bytes.isEmpty())
            QFile::remove(m_path);
        else
            QVERIFY(files::writeAtomic(m_path, bytes));
    }
    QByteArray content() { return files::readWhole(m_path, 10'000).value_or("nothing"); }
    OwnWritten set(int value)
    {
        return OwnFile{m_place}.change([&](const QJsonObject&) { return QJsonObject{{u"n"_s, value}}; });
    }

    std::unique_ptr<QTemporaryDir> m_home;
    OwnPlace m_place;
    QString m_path;
};

MURMELI_TEST(OwnFileTest)
#include "OwnFileTest.moc"
