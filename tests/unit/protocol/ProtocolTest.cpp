#include "base/Json.h"
#include "glossary/AssistantModel.h"
#include "glossary/GlossaryStore.h"
#include "glossary/GlossaryText.h"
#include "meetings/Meeting.h"
#include "protocol/ProtocolEditor.h"
#include "protocol/ProtocolFileMaker.h"
#include "protocol/ProtocolItems.h"
#include "registeredTests.h"
#include "support/Program.h"
#include "support/Token.h"

#include <QAbstractItemModelTester>
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

QString told(const QList<GlossaryEntry>& entries)
{
    QStringList lines;
    for (const GlossaryEntry& entry : entries)
        lines.append(entry.isRule() ? u"%1>%2"_s.arg(entry.heard, entry.correct) : entry.correct);
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
        if (fixed) QCOMPARE(m->editor.text(), u"новое"_s);
        if (m->editor.outcome() == ProtocolEditor::Outcome::Failed) QVERIFY(!m->editor.text().isEmpty());
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
        QCOMPARE(m->editor.text(), m->program.language.t(u"editor.error.auth"_s));
        m->program.signIn();
        m->program.write(m->path, R"({"title":"x","risks":[]})");
        QVERIFY(!m->apply(u"x"_s));
        QCOMPARE(m->editor.outcome(), ProtocolEditor::Outcome::NotFound);
        m->program.write(m->path, "{");
        QVERIFY(!m->apply(u"x"_s));
        QCOMPARE(m->editor.text(), m->program.language.t(u"editor.error.read"_s));
        QVERIFY(m->edits().isEmpty());
    }

    void aRemarkIsCarriedOutThoughItsViewHasGone()
    {
        m->program.signIn();
        m->installEngine(m->program.paths.rebuildScript, "echo rendered > " + m->scratch("rendered"));
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
        QCOMPARE(m->copied, saved ? QStringList{destination} : QStringList{});
        QCOMPARE(files::readWhole(destination, 1000) == "the file that was there", !saved);
        QCOMPARE(QDir{m->program.home.path()}.entryList({u"*.pdf"_s}, QDir::Files | QDir::Hidden).size(), 1);
        QCOMPARE(m->files.text(), saved ? u"к \"файлу\".pdf"_s : m->program.language.t(u"file.error"_s));
    }

    void aBuildThatEndsWithUsLeavesTheOldFile()
    {
        m->installEngine(m->program.paths.pdfScript,
                         "echo half > \"$2\"; echo > '" + m->scratch("begun") + "'; sleep 60");
        const QString destination = m->program.home.filePath(u"есть.pdf"_s);
        m->program.write(destination, "old");
        auto files =
            std::make_unique<ProtocolFileMaker>(m->program.paths, m->program.processes, m->program.language,
                                                [](const QString&) { QFAIL("nothing was saved"); });
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

    void glossaryLines_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("entries");
        QTest::addColumn<QString>("written");
        const auto row = [](const char* name, const char* text, const char* entries, const char* written) {
            QTest::newRow(name) << QString::fromUtf8(text) << QString::fromUtf8(entries)
                                << QString::fromUtf8(written);
        };
        row("rule", "Квен → Qwen", "Квен>Qwen", "Квен → Qwen");
        row("term", "Qwen", "Qwen", "Qwen");
        row("spaces", "  x→y \n\n \t\n z ", "x>y|z", "x → y\nz");
        row("nothing heard", "→ Qwen", "→ Qwen", "→ Qwen");
        row("nothing written", "Квен →", "Квен →", "Квен →");
        row("the first arrow parts", "a → b → c", "a>b → c", "a → b → c");
        row("an arrow of two characters", "a -> b", "a -> b", "a -> b");
        row("empty", "", "", "");
        row("carriage returns", "a → b\r\nc\r", "a>b|c", "a → b\nc");
    }
    void glossaryLines()
    {
        QFETCH(QString, text);
        const auto entries = glossaryText::parseAll(text);
        QTEST(told(entries), "entries");
        QTEST(glossaryText::serialised(entries), "written");
    }

    void learning_data()
    {
        QTest::addColumn<QString>("heard");
        QTest::addColumn<QString>("correct");
        QTest::addColumn<QString>("glossary"); ///< empty when there is nothing to learn
        QTest::newRow("new") << u" кубер "_s << u" Kubernetes "_s
                             << u"Квен>Qwen|Qwen|квен>другое|кубер>Kubernetes"_s;
        QTest::newRow("the first of equals") << u"КВЕН"_s << u"QWEN"_s << u"Квен>QWEN|Qwen|квен>другое"_s;
        QTest::newRow("nothing heard") << u" "_s << u"x"_s << QString{};
        QTest::newRow("nothing written") << u"x"_s << QString{} << QString{};
        QTest::newRow("the same word") << u"qwen"_s << u" QWEN"_s << QString{};
    }
    void learning()
    {
        QFETCH(QString, heard);
        QFETCH(QString, correct);
        const auto learned = glossaryText::learned(
            glossaryText::parseAll(u"Квен → Qwen\nQwen\nквен → другое"_s), heard, correct);
        QTEST(learned ? told(*learned) : QString{}, "glossary");
    }

    void merging_data()
    {
        QTest::addColumn<QString>("base");
        QTest::addColumn<QString>("mine");
        QTest::addColumn<QString>("theirs");
        QTest::addColumn<QString>("merged");
        const auto row = [](const char* name, const char* base, const char* mine, const char* theirs,
                            const char* merged) {
            QTest::newRow(name) << QString::fromLatin1(base) << QString::fromLatin1(mine)
                                << QString::fromLatin1(theirs) << QString::fromLatin1(merged);
        };
        row("nothing done", "a b", "a b", "a b c", "a b c");
        row("added at the top", "a b", "x a b", "a b c", "x a b c");
        row("added at the end", "a b", "a b x", "a b c", "a b c x");
        row("removed here", "a b", "b", "a b c", "b c");
        row("removed there", "a b", "a b", "b", "b");
        row("removed there, added here", "a b", "a b x", "", "x");
        row("both added the same", "a", "a x", "a x", "a x");
        row("nothing in common", "", "x y", "a", "a x y");
    }
    void merging()
    {
        QFETCH(QString, base);
        QFETCH(QString, mine);
        QFETCH(QString, theirs);
        const auto entries = [](QString words) { return glossaryText::parseAll(words.replace(u' ', u'\n')); };
        const auto merged = glossaryText::merged(entries(base), entries(mine), entries(theirs));
        QTEST(told(merged).replace(u'|', u' '), "merged");
    }

    void glossaryAnswers_data()
    {
        QTest::addColumn<QByteArray>("wire");
        QTest::addColumn<QString>("entries");
        const QString kept = u"старое"_s;
        QTest::newRow("text") << Server::answer(200, R"([{"glossary":"a → b\nc"}])") << u"a>b|c"_s;
        QTest::newRow("none yet") << Server::answer(200, R"([{"glossary":null}])") << QString{};
        QTest::newRow("no profile") << Server::answer(200, "[]") << QString{};
        QTest::newRow("error object") << Server::answer(401, R"({"message":"expired"})") << kept;
        QTest::newRow("list of others") << Server::answer(200, "[1]") << kept;
        QTest::newRow("page") << Server::answer(200, "<html>") << kept;
        QTest::newRow("hangs up") << QByteArray{} << kept;
    }
    void glossaryAnswers()
    {
        QFETCH(QByteArray, wire);
        QFETCH(QString, entries);
        m->program.prefs.set(u"glossary"_s, u"старое"_s);
        m->reply(wire);
        const auto store = m->makeStore();
        QCOMPARE(told(store->entries()), u"старое"_s); // also while the answer is awaited, and signed out
        m->program.signIn();
        QTRY_VERIFY(store->loading());
        QTRY_VERIFY(!store->loading());
        QCOMPARE(told(store->entries()), entries);
        QCOMPARE(store->syncError().isEmpty(), entries != u"старое");
        QCOMPARE(m->program.prefs.string(u"glossary"_s, u"?"_s), glossaryText::serialised(store->entries()));
    }

    void savingTheGlossary()
    {
        const auto store = m->makeStore();
        std::optional<bool> saved;
        const auto note = [&](bool s) { saved = s; };
        store->save(glossaryText::parseAll(u" x →y "_s), note);
        QCOMPARE(saved, false);
        QCOMPARE(store->syncError(), m->program.language.t(u"assistant.error.auth"_s));
        QCOMPARE(m->program.prefs.string(u"glossary"_s, {}), u"x → y"_s);

        // What could not be sent is sent instead of being overwritten.
        m->backendHas(R"([{"glossary":"там"}])");
        m->program.signIn();
        QTRY_VERIFY(store->savedAt().isValid());
        const auto requests = m->program.server.requestsTo("/rest/v1/profiles");
        QCOMPARE(requests.size(), 2); // first a look at what is there
        const Server::Request patch = requests[1];
        QCOMPARE(patch.method, "PATCH"_ba);
        QCOMPARE(patch.path, "/rest/v1/profiles"_ba);
        QCOMPARE(patch.header("Prefer"), "return=minimal"_ba);
        QCOMPARE(patch.body, QByteArray{R"({"glossary":"там\nx → y"})"});
        QVERIFY(store->syncError().isEmpty());

        m->reply(Server::answer(500, "{}"));
        saved.reset();
        store->save(glossaryText::parseAll(u"z"_s), note);
        QTRY_COMPARE(saved, false);
        QCOMPARE(store->syncError(), m->program.language.t(u"assistant.error.save"_s));
        QCOMPARE(m->program.prefs.string(u"glossary"_s, {}), u"z"_s);
    }

    void aWordTaughtWhileLoadingLosesNothing()
    {
        const auto store = m->makeStore();
        QTcpSocket* waiting = nullptr;
        m->program.server.reply = [&](QTcpSocket* socket, const Server::Request& request) {
            if (request.path.startsWith("/rest/v1/profiles") && request.method == "GET") waiting = socket;
            if (request.method == "PATCH") socket->write(Server::answer(204, ""));
        };
        m->program.signIn();
        QTRY_VERIFY(waiting);
        QVERIFY(store->learn(u"Квен"_s, u"Qwen"_s));
        waiting->write(Server::answer(200, R"([{"glossary":"до этого"}])"));
        QTRY_COMPARE(told(store->entries()), u"до этого|Квен>Qwen"_s);
        QTRY_VERIFY(store->savedAt().isValid());
    }

    void anotherPersonsAnswerIsDropped()
    {
        QList<QTcpSocket*> waiting;
        m->program.server.reply = [&](QTcpSocket* socket, const Server::Request& request) {
            if (request.path.startsWith("/rest/v1/profiles")) waiting.append(socket);
        };
        const auto store = m->makeStore();
        m->program.signIn();
        QTRY_COMPARE(waiting.size(), 1);
        m->program.account.logout();
        m->program.signIn();
        QTRY_COMPARE(waiting.size(), 2);
        waiting[0]->write(Server::answer(200, R"([{"glossary":"чужое"}])"));
        waiting[0]->flush();
        waiting[1]->write(Server::answer(200, R"([{"glossary":"моё"}])"));
        QTRY_COMPARE(told(store->entries()), u"моё"_s);
    }

    void aNewPersonIsNotServedTheLastOnesWords()
    {
        m->program.write(m->program.paths.accountFile, R"({"access_token":"boris"})");
        m->backendHas(R"([{"glossary":"чьё"}])");
        const auto store = m->makeStore();
        QTRY_COMPARE(told(store->entries()), u"чьё"_s);
        const auto whose = [&] {
            const auto requests = m->program.server.requestsTo("/rest/v1/profiles");
            return requests.isEmpty() ? QByteArray{} : requests.last().header("Authorization");
        };
        QCOMPARE(whose(), "Bearer boris"_ba);
        m->program.signIn(u"anna"_s);
        QTRY_COMPARE(whose(), "Bearer anna"_ba);
        m->program.signIn(u"vera"_s); // without a sign-out before
        QTRY_COMPARE(whose(), "Bearer vera"_ba);
    }

    void unsentWordsStayTheirWritersOwn()
    {
        const QString anna = token(R"({"sub":"anna"})");
        const QString boris = token(R"({"sub":"boris"})");
        bool down = true;
        QByteArray sent;
        m->program.server.reply = [&](QTcpSocket* socket, const Server::Request& request) {
            const bool annas = request.header("Authorization").contains(anna.toLatin1());
            if (request.method == "PATCH" && !down)
                sent += annas ? "anna " + request.body : "boris " + request.body;
            const QByteArray words = annas ? R"([{"glossary":"её"}])" : R"([{"glossary":"его"}])";
            socket->write(request.method == "GET" ? Server::answer(200, words)
                          : down                  ? Server::answer(500, "{}")
                                                  : Server::answer(204, ""));
        };
        const auto store = m->makeStore();
        m->program.signIn(boris);
        QTRY_COMPARE(told(store->entries()), u"его"_s);
        std::optional<bool> saved;
        store->save(glossaryText::parseAll(u"его\nновое"_s), [&](bool s) { saved = s; });
        QTRY_COMPARE(saved, false);
        down = false;
        m->program.account.logout();
        m->program.signIn(anna);
        QCOMPARE(told(store->entries()), QString{}); // not even for a moment
        QTRY_COMPARE(told(store->entries()), u"её"_s);
        QCOMPARE(m->program.prefs.string(u"glossary"_s, {}), u"её"_s);
        QVERIFY(store->syncError().isEmpty() && !store->savedAt().isValid());
        m->program.account.logout();
        m->program.signIn(boris);
        QTRY_COMPARE(told(store->entries()), u"его|новое"_s);
        QTRY_VERIFY(store->savedAt().isValid());
        QCOMPARE(sent, "boris {\"glossary\":\"его\\nновое\"}"_ba);
    }

    void unsentWordsStayTheirWritersOwnAcrossRuns()
    {
        const QString boris = token(R"({"sub":"boris"})");
        m->reply(Server::answer(500, "{}"));
        m->program.signIn(boris);
        m->makeStore()->save(glossaryText::parseAll(u"его"_s));
        m->program.account.logout();
        auto nextRun = m->makeStore();
        QCOMPARE(told(nextRun->entries()), u"его"_s);
        m->backendHas(R"([{"glossary":"её"}])");
        m->program.signIn(token(R"({"sub":"anna"})"));
        QTRY_COMPARE(told(nextRun->entries()), u"её"_s);
        QVERIFY(std::ranges::none_of(m->program.server.requests, [](const Server::Request& request) {
            return request.method == "PATCH" && request.body.contains("её");
        }));
        m->backendHas(R"([{"glossary":"прежнее"}])");
        m->program.signIn(boris);
        QTRY_COMPARE(told(nextRun->entries()), u"прежнее|его"_s);
    }

    void wordsThatNoFileKeepsAreSentAllTheSame()
    {
        QVERIFY(QDir{}.mkpath(m->program.paths.prefsFile)); // no preferences can be written
        const auto store = m->makeStore();
        store->save(glossaryText::parseAll(u"моё"_s));
        m->backendHas(R"([{"glossary":"там"}])");
        m->program.signIn();
        QTRY_VERIFY(store->savedAt().isValid());
        QCOMPARE(told(store->entries()), u"там|моё"_s);
        QVERIFY(m->program.server.requestsTo("/rest/v1/profiles").last().body.contains("там\\nмоё"));
    }

    void aTermWithAnArrowIsARule()
    {
        m->reply(Server::answer(500, "{}"));
        m->program.signIn();
        const auto store = m->makeStore();
        AssistantModel model{*store};
        QVERIFY(model.add({}, u"а → б"_s));
        model.save();
        QTRY_VERIFY(!model.saving());
        QCOMPARE(model.total(), 1);
    }

    void editingTheGlossary()
    {
        m->program.prefs.set(u"glossary"_s, u"Квен → Qwen\nOKR"_s);
        const auto store = m->makeStore();
        AssistantModel model{*store};
        const QAbstractItemModelTester tester{&model};
        const auto rows = [&] {
            QStringList lines;
            for (int row = 0; row < model.rowCount(); ++row)
                lines.append(model.data(model.index(row), AssistantModel::LineRole).toString());
            return lines.join(u'|');
        };
        QCOMPARE(rows(), u"Квен → Qwen|OKR"_s);
        QVERIFY(!model.add(u"x"_s, u"  "_s));
        QVERIFY(!model.dirty());
        QVERIFY(model.add(u" кубер "_s, u"Kubernetes"_s));
        QVERIFY(model.dirty());
        QCOMPARE(rows(), u"кубер → Kubernetes|Квен → Qwen|OKR"_s);
        model.setQuery(u" qWEN "_s);
        QCOMPARE(rows(), u"Квен → Qwen"_s);
        model.removeAt(0); // the right one, although others are hidden
        QCOMPARE(rows(), QString{});
        model.add({}, u"Лаптева"_s);
        model.setQuery({});
        QCOMPARE(rows(), u"Лаптева|кубер → Kubernetes|OKR"_s);
        store->save(glossaryText::parseAll(u"со стороны"_s)); // a working copy is kept
        QCOMPARE(model.total(), 3);
        model.revert();
        QCOMPARE(rows(), u"со стороны"_s);
        QVERIFY(!model.dirty());

        model.add({}, u"новое"_s);
        m->backendHas(R"([{"glossary":"там"}])");
        m->program.signIn();
        QTRY_VERIFY(store->savedAt().isValid());
        model.save();
        QVERIFY(model.saving());
        QTRY_VERIFY(!model.dirty());
        QCOMPARE(rows(), u"новое|там|со стороны"_s);
        QVERIFY(m->program.server.requests.last().body.contains("новое\\nтам\\nсо стороны"));
    }

private:
    struct Fixture {
        Program program;
        QString path = program.paths.logs + u"/a.protocol.json"_s;
        QStringList copied;
        QObject background;
        std::unique_ptr<ProtocolEditor> ownEditor = std::make_unique<ProtocolEditor>(
            ProtocolEditor::Place{.webOrigin = program.server.origin(),
                                  .python = program.paths.python,
                                  .rebuildScript = program.paths.rebuildScript},
            program.account, program.http, program.processes, program.language, program.scheduler,
            background);
        ProtocolEditor& editor = *ownEditor;
        ProtocolFileMaker files{program.paths, program.processes, program.language,
                                [this](const QString& file) { copied.append(file); }};

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
        void backendHas(const QByteArray& profiles)
        {
            program.server.reply = [profiles](QTcpSocket* socket, const Server::Request& request) {
                socket->write(request.method == "GET" ? Server::answer(200, profiles)
                                                      : Server::answer(204, ""));
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
        [[nodiscard]] std::unique_ptr<GlossaryStore> makeStore()
        {
            return std::make_unique<GlossaryStore>(program.account, program.http, program.prefs,
                                                   program.language, program.scheduler);
        }
    };
    std::unique_ptr<Fixture> m;
};

MURMELI_TEST(ProtocolTest)
#include "ProtocolTest.moc"
