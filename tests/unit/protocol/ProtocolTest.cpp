#include "base/Json.h"
#include "meetings/Meeting.h"
#include "protocol/ProtocolEditor.h"
#include "protocol/ProtocolFileMaker.h"
#include "protocol/ProtocolItems.h"
#include "registeredTests.h"
#include "support/Cases.h"
#include "support/Faults.h"
#include "support/TestProgram.h"

#include <QJsonArray>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace murmeli;
using Outcome = ProtocolEditor::Outcome;

namespace {

const QByteArray summary =
    R"({"title":"План","big":123456789012345678901234567890,"decisions":["раз"," ",{"text":"два"}],)"
    R"("action_items":[{"task":"сделать","owner":"Анна","n":1.50},"сказать",{"owner":"x"}],)"
    R"("risks":"не список","summary":"итог","tldr":"  ","_meta":{"duration_min":5,"edits":1}})";

const QByteArray correction = R"({"found":true,"section":"decisions","index":0,"text":" новое\n"})";

} // namespace

class ProtocolTest : public QObject {
    Q_OBJECT

private slots:
    void init() { m = std::make_unique<Fixture>(); }
    void cleanup() { m.reset(); }

    void items()
    {
        const QJsonObject object = *json::object(summary);
        QStringList editable;
        for (const ProtocolItem& item : protocolItems::editable(object))
            editable.append(u"%1 %2%3 %4"_s.arg(item.section)
                                .arg(item.index)
                                .arg(item.field ? u'.' + *item.field : QString{}, item.text));
        QCOMPARE(editable.join(u'|'),
                 u"decisions 0 раз|decisions 1  |action_items 0.task сделать|action_items 1 сказать|"
                 "risks 0 не список|summary 0 итог"_s);
        QStringList shown;
        for (const ProtocolSection& section : protocolItems::sections(object)) {
            for (const auto& item : section.items)
                shown.append(u"%1 %2 %3"_s.arg(section.titleKey).arg(item.index).arg(item.text));
        }
        QCOMPARE(shown.join(u'|'), u"detail.decisions 0 раз|detail.decisions 2 два|"
                                   "detail.action_items 0 сделать|detail.action_items 1 сказать"_s);
        QVERIFY(!protocolItems::isEdited(object));
    }

    void corrections()
    {
        const Cases<QString, int, QByteArray> cases{
            // an item, and its part of the new file; nothing when none may be written
            {"text", u"decisions"_s, 0, R"("decisions":["НОВОЕ"," ",{"text":"два"}])"},
            {"member", u"action_items"_s, 0,
             R"("action_items":[{"task":"НОВОЕ","owner":"Анна","n":1.50},"сказать",{"owner":"x"}])"},
            {"a section that is a text", u"risks"_s, 7, R"("risks":"НОВОЕ")"},
            {"summary", u"summary"_s, 0, R"("summary":"НОВОЕ")"},
            {"object without a field to write", u"decisions"_s, 2, {}},
            {"beyond the end", u"decisions"_s, 3, {}},
            {"before the start", u"decisions"_s, -1, {}},
            {"no such section", u"next_steps"_s, 0, {}},
            {"none to be edited", u"title"_s, 0, {}},
        };
        for (const auto& [name, section, index, part] : cases) {
            CASE(name);
            const auto corrected =
                protocolItems::corrected(summary, section, index, u"НОВОЕ"_s, 1'741'083'330);
            QCOMPARE(corrected.has_value(), !part.isEmpty());
            if (!corrected) continue;
            QVERIFY2(corrected->contains(part), *corrected);
            QVERIFY(corrected->contains("\"big\":123456789012345678901234567890"));
            QCOMPARE(json::object(*corrected)->value(u"_meta"_s).toObject(),
                     (QJsonObject{{u"duration_min"_s, 5},
                                  {u"edited"_s, true},
                                  {u"edited_at"_s, u"2025-03-04T10:15:30Z"_s},
                                  {u"edits"_s, 2}}));
        }
        constexpr qint64 most = std::numeric_limits<qint64>::max();
        for (const auto& [meta, edits] :
             {std::pair{"{}", qint64(1)}, {"7", 1}, {R"({"edits":9223372036854775807})", most}}) {
            const QByteArray file = R"({"risks":["a"],"_meta":)" + QByteArray{meta} + '}';
            const auto corrected = protocolItems::corrected(file, u"risks"_s, 0, u"b"_s, 0);
            QCOMPARE(json::object(*corrected)->value(u"_meta"_s)[u"edits"_s].toInteger(), edits);
        }
    }

    void whatTheServiceWritesMeanwhileStays()
    {
        const Message done = Message::of("editor.done", u"новое"_s);
        const Message unsaved = Message::of("editor.error.save");
        const QByteArray other = R"({"decisions":["раз","иное"],"delivered":1})";
        const Cases<QByteArray, QByteArray, Message, QByteArray> cases{
            // what stands in the file when the answer comes, what once that was seen, and what is left
            {"nothing new", summary, {}, done, R"("decisions":["новое"," ",{"text":"два"}])"},
            {"another item", other, {}, done, R"({"decisions":["новое","иное"],"delivered":1)"},
            {"half of it", "{", other, done, R"({"decisions":["новое","иное"],"delivered":1)"},
            {"half of it, for good", "{", "{", unsaved, "{"},
            {"gone", {}, {}, unsaved, {}},
            {"the very item",
             R"({"decisions":["иное"]})",
             {},
             Message::of("ledger.changed_meanwhile"),
             R"({"decisions":["иное"]})"},
        };
        m->signIn();
        const QSignalSpy fixed{m->editor.get(), &ProtocolEditor::fixed};
        for (const auto& [name, now, later, message, left] : cases) {
            CASE(name);
            m->write(m->path, summary);
            m->server.reply = [this, now = now](QTcpSocket* socket, const Server::Request&) {
                QFile::remove(m->path);
                if (!now.isEmpty()) m->write(m->path, now);
                socket->write(Server::answer(200, correction));
            };
            m->later = later;
            m->apply();
            QCOMPARE(m->editor->message(), message);
            QVERIFY2(m->file().contains(left) && m->file().isEmpty() == left.isEmpty(), m->file());
        }
        QCOMPARE(fixed.count(), 3);
    }

    void whatIsNoCorrectionChangesNothing()
    {
        m->signIn();
        const QSignalSpy fixed{m->editor.get(), &ProtocolEditor::fixed};
        QList<Fault> faults = faultsAround(correction);
        faults.append({"created", Server::answer(201, correction)});
        faults.append({"an error with a correction", Server::answer(500, correction)});
        for (const Fault& fault : faults) {
            CASE(fault.name);
            m->server.reply = fault;
            QVERIFY(!m->apply());
            QCOMPARE(m->editor->outcome(), Outcome::Failed);
            QVERIFY(!m->editor->message().isEmpty());
            QCOMPARE(m->file(), summary);
        }
        const Cases<QByteArray, QByteArray> cases{
            // what stands in the place of what
            {"not found", "false", "true"},
            {"found as a word", R"("true")", "true"},
            {"no index", "", R"("index":0,)"},
            {"half an index", ":0.5", ":0"},
            {"outside of the list", ":5", ":0"},
            {"another section", "title", "decisions"},
            {"no text", "", "новое"},
        };
        for (const auto& [name, there, instead] : cases) {
            CASE(name);
            m->server.says(Server::answer(200, QByteArray{correction}.replace(instead, there)));
            QVERIFY(!m->apply());
            QCOMPARE(m->editor->outcome(), Outcome::NotFound);
            QCOMPARE(m->file(), summary);
        }
        QCOMPARE(fixed.count(), 0);
    }

    void theRequest()
    {
        m->signIn();
        m->server.says(Server::answer(200, R"({"found":false})"));
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
        QVERIFY(!m->apply());
        QCOMPARE(m->editor->message(), Message::of("editor.error.auth"));
        m->signIn();
        m->write(m->path, R"({"title":"x","risks":[]})");
        QVERIFY(!m->apply());
        QCOMPARE(m->editor->outcome(), Outcome::NotFound);
        m->write(m->path, "{");
        QVERIFY(!m->apply());
        QCOMPARE(m->editor->message(), Message::of("editor.error.read"));
        QVERIFY(m->edits().isEmpty());
    }

    void theProtocolIsRenderedAnewAlsoWhenWeAreGone()
    {
        m->signIn();
        const QString go = m->home.filePath(u"go"_s);
        m->installScript(m->paths.rebuildScript, "until [ -e '" + go.toUtf8() +
                                                     "' ]; do sleep 0.01; done; echo \"$@\" > '" +
                                                     m->noted().toUtf8() + "'");
        m->server.says(Server::answer(200, correction));
        QVERIFY(m->apply());
        m->editor.reset();
        m->write(go, "");
        QTRY_COMPARE(m->read(m->noted()), m->path.toUtf8() + '\n');
    }

    void fileNames()
    {
        const Cases<QString, QString> cases{
            {"plain", u"План"_s, u"План"_s},
            {"separators", u"a/b:c"_s, u"a-b-c"_s},
            {"line breaks", u"a\nb\tc"_s, u"a b c"_s},
            {"too long for a file system", QString(1'000'000, u'ж'), QString(90, u'ж')},
            {"an emoji at the cut", QString(179, u'a') + u"🎉"_s, QString(179, u'a')},
        };
        for (const auto& [name, title, suggested] : cases) {
            CASE(name);
            const Meeting meeting{.title = title, .startedAt = QDateTime{{2025, 3, 4}, {1, 2}}};
            QCOMPARE(ProtocolFileMaker::suggestedName(meeting), u"2025-03-04 "_s + suggested + u".pdf"_s);
        }
    }

    void savingAsPdf()
    {
        const Cases<QByteArray, bool> cases{
            {"built", R"(cp "$1" "$2")", true},
            {"fails", R"(cp "$1" "$2"; exit 1)", false},
            {"writes nothing", "exit 0", false},
            {"no engine", {}, false},
        };
        for (const auto& [name, script, saved] : cases) {
            CASE(name);
            init();
            if (!script.isEmpty()) m->installScript(m->paths.pdfScript, script);
            m->write(m->pdf, "the file that was there");
            m->files->save(m->meeting(), m->pdf);
            QCOMPARE(m->files->outcome(), ProtocolFileMaker::Outcome::Working);
            QTRY_VERIFY(m->files->outcome() != ProtocolFileMaker::Outcome::Working);
            QCOMPARE(m->files->message(),
                     saved ? Message::of("file.saved", u"к \"файлу\".pdf"_s) : Message::of("file.error"));
            QCOMPARE(m->desktop.copiedFiles, saved ? QStringList{m->pdf} : QStringList{});
            QCOMPARE(m->read(m->pdf), saved ? summary : "the file that was there");
            QCOMPARE(m->pdfs(), 1);
        }
    }

    void aBuildThatEndsWithUsLeavesTheOldFile()
    {
        m->installScript(m->paths.pdfScript,
                         "echo half > \"$2\"; echo > '" + m->noted().toUtf8() + "'; sleep 60");
        m->write(m->pdf, "old");
        m->files->save(m->meeting(), m->pdf);
        QTRY_VERIFY(!m->read(m->noted()).isEmpty());
        m->files.reset();
        QCOMPARE(m->read(m->pdf), "old"_ba);
        QCOMPARE(m->pdfs(), 1);
    }

    void sharingTwiceBuildsOnce()
    {
        m->installScript(m->paths.pdfScript, "echo x >> '" + m->noted().toUtf8() + R"('; cp "$1" "$2")");
        QSignalSpy shared{m->files.get(), &ProtocolFileMaker::shared};
        m->files->share(m->meeting());
        QVERIFY(shared.wait());
        m->files->share(m->meeting());
        QCOMPARE(shared.count(), 2);
        QCOMPARE(shared[0], shared[1]);
        QCOMPARE(m->read(m->noted()), "x\n"_ba);
        QCOMPARE(m->files->outcome(), ProtocolFileMaker::Outcome::Idle);
        m->write(m->path, summary + ' '); // as a correction does
        m->files->share(m->meeting());
        QCOMPARE(shared.count(), 3);
        QCOMPARE(m->files->outcome(), ProtocolFileMaker::Outcome::Outdated);
        m->files->shareAnew(m->meeting());
        QVERIFY(shared.wait());
        QCOMPARE(m->read(m->noted()), "x\nx\n"_ba);
        QCOMPARE(m->files->outcome(), ProtocolFileMaker::Outcome::Idle);
        const QString file = shared[0][0].toString();
        QFile::remove(file);
        m->files->share(m->meeting());
        QVERIFY(shared.wait());
        QCOMPARE(m->read(m->noted()), "x\nx\nx\n"_ba);
        QDir{QFileInfo{file}.path()}.removeRecursively();
    }

private:
    struct Fixture : TestProgram {
        QString path = paths.logs + u"/a.protocol.json"_s;
        QString pdf = home.filePath(u"к \"файлу\".pdf"_s);
        ManualScheduler clock; ///< of the editor
        ProtocolWriter writer{paths, processes, clock};
        std::unique_ptr<ProtocolEditor> editor =
            std::make_unique<ProtocolEditor>(server.origin(), account, http, writer);
        std::unique_ptr<ProtocolFileMaker> files =
            std::make_unique<ProtocolFileMaker>(paths, processes, desktop);
        QByteArray later; ///< what the service makes of the file once it has been looked at

        Fixture() { write(path, summary); }
        [[nodiscard]] Meeting meeting() const
        {
            return {.id = u"a"_s,
                    .title = u"План"_s,
                    .startedAt = QDateTime::currentDateTime(),
                    .jsonPath = path};
        }
        bool apply(const QString& remark = u"поправь"_s)
        {
            editor->apply(remark, meeting());
            const auto ended = [this] {
                if (clock.wakeUpsWithin(1s) > 0) {
                    write(path, later);
                    clock.advance(1s);
                }
                return editor->outcome() != Outcome::Working;
            };
            [&] { QTRY_VERIFY(ended()); }();
            return editor->outcome() == Outcome::Fixed;
        }
        [[nodiscard]] QList<Server::Request> edits() const { return server.requestsTo("/api/assist/edit"); }
        /// Where a script notes that it ran.
        [[nodiscard]] QString noted() const { return home.filePath(u"noted"_s); }
        [[nodiscard]] static QByteArray read(const QString& file)
        {
            return files::readWhole(file, 100'000).value_or("");
        }
        [[nodiscard]] QByteArray file() const { return read(path); }
        [[nodiscard]] int pdfs() const
        {
            return int(QDir{home.path()}.entryList({u"*.pdf"_s}, QDir::Files | QDir::Hidden).size());
        }
    };
    std::unique_ptr<Fixture> m;
};

MURMELI_TEST(ProtocolTest)
#include "ProtocolTest.moc"
