#include "base/Json.h"
#include "meetings/Meeting.h"
#include "protocol/ProtocolEditor.h"
#include "protocol/ProtocolFileMaker.h"
#include "protocol/ProtocolItems.h"
#include "registeredTests.h"
#include "support/TestProgram.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QSignalSpy>
#include <QTest>

#include <csignal>
#include <optional>

using namespace Qt::StringLiterals;
using namespace murmeli;
using namespace std::chrono_literals;

namespace {

const QByteArray summary =
    R"({"title":"План","big":123456789012345678901234567890,"decisions":["раз"," ",{"text":"два"}],)"
    R"("action_items":[{"task":"сделать","owner":"Анна","n":1.50},"сказать",{"owner":"x"}],)"
    R"("risks":"не список","summary":"итог","tldr":"  ","_meta":{"duration_min":5,"edits":1}})";

QString told(const QList<ProtocolItem>& items)
{
    QStringList lines;
    for (const ProtocolItem& item : items)
        lines.append(u"%1[%2]%3=%4"_s.arg(item.section)
                         .arg(item.index)
                         .arg(item.field ? u'.' + *item.field : QString{}, item.text));
    return lines.join(u'|');
}

} // namespace

class ProtocolTest : public QObject {
    Q_OBJECT

private slots:
    void init() { m = std::make_unique<Fixture>(); }
    void cleanup() { m.reset(); }

    void items()
    {
        const QJsonObject object = *json::object(summary);
        QCOMPARE(told(protocolItems::editable(object)),
                 u"decisions[0]=раз|decisions[1]= |action_items[0].task=сделать|action_items[1]=сказать|"
                 "risks[0]=не список|summary[0]=итог"_s);
        QStringList sections;
        for (const ProtocolSection& section : protocolItems::sections(object)) {
            for (const auto& item : section.items)
                sections.append(u"%1 %2 %3"_s.arg(section.titleKey).arg(item.index).arg(item.text));
        }
        QCOMPARE(sections.join(u'|'),
                 u"detail.decisions 0 раз|detail.decisions 2 два|detail.action_items 0 сделать|"
                 "detail.action_items 1 сказать"_s);
        QVERIFY(!protocolItems::isEdited(object));
    }

    void corrections_data()
    {
        QTest::addColumn<QString>("section");
        QTest::addColumn<int>("index");
        QTest::addColumn<QByteArray>("part"); ///< of the new file; empty when nothing may be written
        QTest::newRow("text") << u"decisions"_s << 0 << R"("decisions":["НОВОЕ"," ",{"text":"два"}])"_ba;
        QTest::newRow("member")
            << u"action_items"_s << 0
            << R"("action_items":[{"task":"НОВОЕ","owner":"Анна","n":1.50},"сказать",{"owner":"x"}])"_ba;
        QTest::newRow("a section that is a text") << u"risks"_s << 7 << R"("risks":"НОВОЕ")"_ba;
        QTest::newRow("summary") << u"summary"_s << 0 << R"("summary":"НОВОЕ")"_ba;
        QTest::newRow("object without a field to write") << u"decisions"_s << 2 << QByteArray{};
        QTest::newRow("beyond the end") << u"decisions"_s << 3 << QByteArray{};
        QTest::newRow("before the start") << u"decisions"_s << -1 << QByteArray{};
        QTest::newRow("no such section") << u"next_steps"_s << 0 << QByteArray{};
        QTest::newRow("none to be edited") << u"title"_s << 0 << QByteArray{};
    }
    void corrections()
    {
        QFETCH(QString, section);
        QFETCH(int, index);
        QFETCH(QByteArray, part);
        const auto corrected = protocolItems::corrected(summary, section, index, u"НОВОЕ"_s, 1'741'083'330);
        QCOMPARE(corrected.has_value(), !part.isEmpty());
        if (!corrected) return;
        QVERIFY2(corrected->contains(part), *corrected);
        QVERIFY(corrected->contains("\"big\":123456789012345678901234567890"));
        const QJsonObject meta = json::object(*corrected)->value(u"_meta"_s).toObject();
        QCOMPARE(meta, (QJsonObject{{u"duration_min"_s, 5},
                                    {u"edited"_s, true},
                                    {u"edited_at"_s, u"2025-03-04T10:15:30Z"_s},
                                    {u"edits"_s, 2}}));
    }

    void aFileWithoutMetaGetsOne()
    {
        for (const QByteArray& file : {R"({"risks":["a"]})"_ba, R"({"risks":["a"],"_meta":7})"_ba}) {
            const auto corrected = protocolItems::corrected(file, u"risks"_s, 0, u"b"_s, 0);
            QCOMPARE(json::object(*corrected)->value(u"_meta"_s)[u"edits"_s].toInt(), 1);
        }
    }

    void answers_data()
    {
        using Outcome = ProtocolEditor::Outcome;
        QTest::addColumn<QByteArray>("wire");
        QTest::addColumn<Outcome>("outcome");
        const auto row = [](const char* name, const QByteArray& wire, Outcome outcome) {
            QTest::newRow(name) << wire << outcome;
        };
        const auto ok = [](const char* body) { return Server::answer(200, body); };
        row("found", ok(R"({"found":true,"section":"decisions","index":0,"text":"  новое\n"})"),
            Outcome::Fixed);
        row("index written as 0.0", ok(R"({"found":true,"section":"decisions","index":0.0,"text":"новое"})"),
            Outcome::Fixed);
        row("not found", ok(R"({"found":false,"section":"decisions","index":0,"text":"новое"})"),
            Outcome::NotFound);
        row("found as a word", ok(R"({"found":"true","section":"decisions","index":0,"text":"новое"})"),
            Outcome::NotFound);
        row("no index", ok(R"({"found":true,"section":"decisions","text":"новое"})"), Outcome::NotFound);
        row("half an index", ok(R"({"found":true,"section":"decisions","index":0.5,"text":"новое"})"),
            Outcome::NotFound);
        row("empty text", ok(R"({"found":true,"section":"decisions","index":0,"text":" \n"})"),
            Outcome::NotFound);
        row("outside of the list", ok(R"({"found":true,"section":"decisions","index":5,"text":"новое"})"),
            Outcome::NotFound);
        row("another section", ok(R"({"found":true,"section":"title","index":0,"text":"новое"})"),
            Outcome::NotFound);
        row("list", ok("[]"), Outcome::Failed);
        row("page", ok("<html>"), Outcome::Failed);
        row("empty", ok(""), Outcome::Failed);
        row("error with JSON",
            Server::answer(500, R"({"found":true,"section":"decisions","index":0,"text":"новое"})"),
            Outcome::Failed);
        row("created",
            Server::answer(201, R"({"found":true,"section":"decisions","index":0,"text":"новое"})"),
            Outcome::Failed);
        row("hangs up", {}, Outcome::Failed);
    }
    void answers()
    {
        QFETCH(QByteArray, wire);
        m->program.signIn();
        m->reply(wire);
        const bool fixed = m->apply(u"поправь"_s);
        QTEST(m->editor.outcome(), "outcome");
        QCOMPARE(fixed, m->editor.outcome() == ProtocolEditor::Outcome::Fixed);
        QCOMPARE(m->file() != summary, fixed);
        if (fixed) QCOMPARE(m->editor.message(), Message::of("editor.done", u"новое"_s));
        if (m->editor.outcome() == ProtocolEditor::Outcome::Failed) QVERIFY(!m->editor.message().isEmpty());
    }

    void theRequest()
    {
        m->program.signIn();
        m->reply(Server::answer(200, R"({"found":false})"));
        m->apply(u" Поправь \"это\" "_s);
        const Server::Request request = m->edits().value(0);
        QCOMPARE(request.method, "POST"_ba);
        QCOMPARE(request.header("Authorization"), "Bearer a"_ba);
        QCOMPARE(request.header("Content-Type"), "application/json"_ba);
        const QJsonObject body = *json::object(request.body);
        QCOMPARE(body.keys(), (QStringList{u"items"_s, u"remark"_s}));
        QCOMPARE(body[u"remark"_s].toString(), u" Поправь \"это\" "_s);
        QCOMPARE(body[u"items"_s].toArray().size(), 6);
        QCOMPARE(
            body[u"items"_s][2].toObject(),
            (QJsonObject{{u"section"_s, u"action_items"_s}, {u"index"_s, 0}, {u"text"_s, u"сделать"_s}}));
    }

    void whatCannotBeAsked()
    {
        QVERIFY(!m->apply(u"x"_s));
        QCOMPARE(m->editor.message(), Message::of("editor.error.auth"));
        m->program.signIn();
        m->program.write(m->path, R"({"title":"x","risks":[]})");
        QVERIFY(!m->apply(u"x"_s));
        QCOMPARE(m->editor.outcome(), ProtocolEditor::Outcome::NotFound);
        m->program.write(m->path, "{");
        QVERIFY(!m->apply(u"x"_s));
        QCOMPARE(m->editor.message(), Message::of("editor.error.read"));
        QVERIFY(m->edits().isEmpty());
    }

    void aRemarkIsCarriedOutThoughItsViewHasGone()
    {
        m->program.signIn();
        m->installEngine(m->program.paths.rebuildScript, "echo rendered > '" + m->scratch("rendered") + "'");
        QTcpSocket* waiting = nullptr;
        m->program.server.reply = [&](QTcpSocket* socket, const Server::Request& request) {
            if (request.path == "/api/assist/edit") waiting = socket;
        };
        m->editor.apply(u"поправь"_s, m->meeting(), [](bool) { QFAIL("nobody is there to be told"); });
        QTRY_VERIFY(waiting);
        m->ownEditor.reset();
        waiting->write(
            Server::answer(200, R"({"found":true,"section":"decisions","index":0,"text":"новое"})"));
        QTRY_VERIFY(m->file().contains("новое"));
        QTRY_VERIFY(!m->read("rendered").isEmpty());
    }

    void theProtocolIsRenderedAnew()
    {
        m->program.signIn();
        m->installEngine(m->program.paths.rebuildScript, "echo \"$@\" > '" + m->scratch("rebuilt") + "'");
        m->reply(Server::answer(200, R"({"found":true,"section":"decisions","index":0,"text":"новое"})"));
        QVERIFY(m->apply(u"x"_s));
        QTRY_COMPARE(m->read("rebuilt"), m->path.toUtf8() + '\n');
    }

    void fileNames_data()
    {
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("name");
        QTest::newRow("plain") << u"План"_s << u"2025-03-04 План.pdf"_s;
        QTest::newRow("separators") << u"a/b:c"_s << u"2025-03-04 a-b-c.pdf"_s;
        QTest::newRow("line breaks") << u"a\nb\tc"_s << u"2025-03-04 a b c.pdf"_s;
        QTest::newRow("too long for a file system")
            << QString(1'000'000, u'ж') << u"2025-03-04 "_s + QString(90, u'ж') + u".pdf"_s;
    }
    void fileNames()
    {
        QFETCH(QString, title);
        const Meeting meeting{.title = title, .startedAt = QDateTime{{2025, 3, 4}, {1, 2}}};
        QTEST(ProtocolFileMaker::suggestedName(meeting), "name");
    }

    void savingAsPdf_data()
    {
        QTest::addColumn<QByteArray>("script");
        QTest::addColumn<bool>("saved");
        QTest::newRow("built") << "cp \"$1\" \"$2\""_ba << true;
        QTest::newRow("fails") << "cp \"$1\" \"$2\"; exit 1"_ba << false;
        QTest::newRow("writes nothing") << "exit 0"_ba << false;
        QTest::newRow("killed") << "kill -9 $$"_ba << false;
        QTest::newRow("no engine") << QByteArray{} << false;
    }
    void savingAsPdf()
    {
        QFETCH(QByteArray, script);
        QFETCH(bool, saved);
        if (!script.isEmpty()) m->installEngine(m->program.paths.pdfScript, script);
        const QString destination = m->program.home.filePath(u"к \"файлу\".pdf"_s);
        m->program.write(destination, "the file that was there");
        m->files.save(m->meeting(), destination);
        QCOMPARE(m->files.outcome(), ProtocolFileMaker::Outcome::Working);
        QTRY_VERIFY(m->files.outcome() != ProtocolFileMaker::Outcome::Working);
        QCOMPARE(m->files.outcome() == ProtocolFileMaker::Outcome::Saved, saved);
        QCOMPARE(m->program.desktop.copiedFiles, saved ? QStringList{destination} : QStringList{});
        QCOMPARE(files::readWhole(destination, 1000) == "the file that was there", !saved);
        QCOMPARE(QDir{m->program.home.path()}.entryList({u"*.pdf"_s}, QDir::Files | QDir::Hidden).size(), 1);
        QCOMPARE(m->files.message(),
                 saved ? Message::of("file.saved", u"к \"файлу\".pdf"_s) : Message::of("file.error"));
    }

    void aBuildThatEndsWithUsLeavesTheOldFile()
    {
        m->installEngine(m->program.paths.pdfScript,
                         "echo half > \"$2\"; echo > '" + m->scratch("begun") + "'; sleep 60");
        const QString destination = m->program.home.filePath(u"есть.pdf"_s);
        m->program.write(destination, "old");
        auto files =
            std::make_unique<ProtocolFileMaker>(m->program.paths, m->program.processes, m->program.desktop);
        files->save(m->meeting(), destination);
        QTRY_VERIFY(!m->read("begun").isEmpty());
        files.reset();
        QCOMPARE(files::readWhole(destination, 1000), "old"_ba);
        QCOMPARE(QDir{m->program.home.path()}.entryList({u"*.pdf"_s}, QDir::Files | QDir::Hidden).size(), 1);
    }

    void sharingTwiceBuildsOnce()
    {
        m->installEngine(m->program.paths.pdfScript,
                         "echo x >> '" + m->scratch("builds") + "'; cp \"$1\" \"$2\"");
        QSignalSpy shared{&m->files, &ProtocolFileMaker::shared};
        m->files.share(m->meeting());
        QVERIFY(shared.wait());
        m->files.share(m->meeting());
        QCOMPARE(shared.count(), 2);
        QCOMPARE(shared[0], shared[1]);
        QCOMPARE(m->read("builds"), "x\n"_ba);
        QFile::remove(shared[0][0].toString());
        m->files.share(m->meeting());
        QVERIFY(shared.wait());
        QCOMPARE(m->read("builds"), "x\nx\n"_ba);
        QDir{QFileInfo{shared[0][0].toString()}.path()}.removeRecursively();
    }

private:
    struct Fixture {
        TestProgram program;
        QString path = program.paths.logs + u"/a.protocol.json"_s;
        QObject background;
        std::unique_ptr<ProtocolEditor> ownEditor = std::make_unique<ProtocolEditor>(
            ProtocolEditor::Place{.webOrigin = program.server.origin(),
                                  .python = program.paths.python,
                                  .rebuildScript = program.paths.rebuildScript},
            program.account, program.http, program.processes, program.scheduler, background);
        ProtocolEditor& editor = *ownEditor;
        ProtocolFileMaker files{program.paths, program.processes, program.desktop};

        Fixture() { program.write(path, summary); }
        [[nodiscard]] Meeting meeting() const
        {
            return {.id = u"a"_s,
                    .title = u"План"_s,
                    .startedAt = QDateTime::currentDateTime(),
                    .jsonPath = path};
        }
        bool apply(const QString& remark)
        {
            std::optional<bool> done;
            editor.apply(remark, meeting(), [&](bool changed) { done = changed; });
            [&] { QTRY_VERIFY(done); }();
            return done.value_or(false);
        }
        void reply(const QByteArray& wire)
        {
            program.server.reply = [wire](QTcpSocket* socket, const Server::Request&) {
                if (wire.isEmpty()) {
                    socket->abort();
                } else {
                    socket->write(wire);
                }
            };
        }
        [[nodiscard]] QList<Server::Request> edits() const
        {
            return program.server.requestsTo("/api/assist/edit");
        }
        [[nodiscard]] QByteArray file() const
        {
            return files::readWhole(path, 100'000).value_or(QByteArray{});
        }
        [[nodiscard]] QByteArray scratch(const char* name) const
        {
            return QFile::encodeName(program.home.filePath(QString::fromLatin1(name)));
        }
        [[nodiscard]] QByteArray read(const char* name) const
        {
            return files::readWhole(program.home.filePath(QString::fromLatin1(name)), 1000)
                .value_or(QByteArray{});
        }
        void installEngine(const QString& script, const QByteArray& text) const
        {
            program.write(script, text + '\n');
            QDir{}.mkpath(QFileInfo{program.paths.python}.path());
            QFile::link(u"/bin/bash"_s, program.paths.python);
        }
    };
    std::unique_ptr<Fixture> m;
};

MURMELI_TEST(ProtocolTest)
#include "ProtocolTest.moc"
