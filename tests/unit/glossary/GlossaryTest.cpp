#include "account/AuthManager.h"
#include "base/Files.h"
#include "base/Http.h"
#include "glossary/AssistantModel.h"
#include "glossary/GlossaryStore.h"
#include "glossary/GlossaryText.h"
#include "localisation/Language.h"
#include "registeredTests.h"
#include "service/Paths.h"
#include "service/Prefs.h"
#include "support/ManualScheduler.h"
#include "support/MemorySecrets.h"
#include "support/RecordingDesktop.h"
#include "support/Server.h"
#include "support/Token.h"

#include <QAbstractItemModelTester>
#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <optional>

using namespace Qt::StringLiterals;
using namespace murmeli;
using namespace std::chrono_literals;

namespace {

QString told(const QList<GlossaryEntry>& entries)
{
    QStringList lines;
    for (const GlossaryEntry& entry : entries)
        lines.append(entry.isRule() ? u"%1>%2"_s.arg(entry.heard, entry.correct) : entry.correct);
    return lines.join(u'|');
}

} // namespace

class GlossaryTest : public QObject {
    Q_OBJECT

private slots:
    void init()
    {
        m = std::make_unique<Fixture>();
        m->scheduler.advance(0ms);
        QTRY_VERIFY(m->secrets.asked == 3); // the account has been looked for
    }
    void cleanup() { m.reset(); }

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
        m->prefs.set(u"glossary"_s, u"старое"_s);
        m->reply(wire);
        const auto store = m->makeStore();
        QCOMPARE(told(store->entries()), u"старое"_s); // also while the answer is awaited, and signed out
        m->signIn();
        QTRY_VERIFY(store->loading());
        QTRY_VERIFY(!store->loading());
        QCOMPARE(told(store->entries()), entries);
        QCOMPARE(store->syncError().isEmpty(), entries != u"старое");
        QCOMPARE(m->prefs.string(u"glossary"_s, u"?"_s), glossaryText::serialised(store->entries()));
    }

    void savingTheGlossary()
    {
        const auto store = m->makeStore();
        std::optional<bool> saved;
        const auto note = [&](bool s) { saved = s; };
        store->save(glossaryText::parseAll(u" x →y "_s), note);
        QCOMPARE(saved, false);
        QCOMPARE(store->syncError(), Message::of("assistant.error.auth"));
        QCOMPARE(m->prefs.string(u"glossary"_s, {}), u"x → y"_s);

        // What could not be sent is sent instead of being overwritten.
        m->backendHas(R"([{"glossary":"там"}])");
        m->signIn();
        QTRY_VERIFY(store->savedAt().isValid());
        const auto requests = m->server.requestsTo("/rest/v1/profiles");
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
        QCOMPARE(store->syncError(), Message::of("assistant.error.save"));
        QCOMPARE(m->prefs.string(u"glossary"_s, {}), u"z"_s);
    }

    void aWordTaughtWhileLoadingLosesNothing()
    {
        const auto store = m->makeStore();
        QTcpSocket* waiting = nullptr;
        m->server.reply = [&](QTcpSocket* socket, const Server::Request& request) {
            if (request.path.startsWith("/rest/v1/profiles") && request.method == "GET") waiting = socket;
            if (request.method == "PATCH") socket->write(Server::answer(204, ""));
        };
        m->signIn();
        QTRY_VERIFY(waiting);
        QCOMPARE(store->learn(u" Квен"_s, u"Qwen "_s), u"Квен → Qwen"_s);
        waiting->write(Server::answer(200, R"([{"glossary":"до этого"}])"));
        QTRY_COMPARE(told(store->entries()), u"до этого|Квен>Qwen"_s);
        QTRY_VERIFY(store->savedAt().isValid());
    }

    void anotherPersonsAnswerIsDropped()
    {
        QList<QTcpSocket*> waiting;
        m->server.reply = [&](QTcpSocket* socket, const Server::Request& request) {
            if (request.path.startsWith("/rest/v1/profiles")) waiting.append(socket);
        };
        const auto store = m->makeStore();
        m->signIn();
        QTRY_COMPARE(waiting.size(), 1);
        m->account.logout();
        m->signIn();
        QTRY_COMPARE(waiting.size(), 2);
        waiting[0]->write(Server::answer(200, R"([{"glossary":"чужое"}])"));
        waiting[0]->flush();
        waiting[1]->write(Server::answer(200, R"([{"glossary":"моё"}])"));
        QTRY_COMPARE(told(store->entries()), u"моё"_s);
    }

    void aNewPersonIsNotServedTheLastOnesWords()
    {
        m->write(m->paths.accountFile, R"({"access_token":"boris"})");
        m->backendHas(R"([{"glossary":"чьё"}])");
        const auto store = m->makeStore();
        QTRY_COMPARE(told(store->entries()), u"чьё"_s);
        const auto whose = [&] {
            const auto requests = m->server.requestsTo("/rest/v1/profiles");
            return requests.isEmpty() ? QByteArray{} : requests.last().header("Authorization");
        };
        QCOMPARE(whose(), "Bearer boris"_ba);
        m->signIn(u"anna"_s);
        QTRY_COMPARE(whose(), "Bearer anna"_ba);
        m->signIn(u"vera"_s); // without a sign-out before
        QTRY_COMPARE(whose(), "Bearer vera"_ba);
    }

    void unsentWordsStayTheirWritersOwn()
    {
        const QString anna = token(R"({"sub":"anna"})");
        const QString boris = token(R"({"sub":"boris"})");
        bool down = true;
        QByteArray sent;
        m->server.reply = [&](QTcpSocket* socket, const Server::Request& request) {
            const bool annas = request.header("Authorization").contains(anna.toLatin1());
            if (request.method == "PATCH" && !down)
                sent += annas ? "anna " + request.body : "boris " + request.body;
            const QByteArray words = annas ? R"([{"glossary":"её"}])" : R"([{"glossary":"его"}])";
            socket->write(request.method == "GET" ? Server::answer(200, words)
                          : down                  ? Server::answer(500, "{}")
                                                  : Server::answer(204, ""));
        };
        const auto store = m->makeStore();
        m->signIn(boris);
        QTRY_COMPARE(told(store->entries()), u"его"_s);
        std::optional<bool> saved;
        store->save(glossaryText::parseAll(u"его\nновое"_s), [&](bool s) { saved = s; });
        QTRY_COMPARE(saved, false);
        down = false;
        m->account.logout();
        m->signIn(anna);
        QCOMPARE(told(store->entries()), QString{}); // not even for a moment
        QTRY_COMPARE(told(store->entries()), u"её"_s);
        QCOMPARE(m->prefs.string(u"glossary"_s, {}), u"её"_s);
        QVERIFY(store->syncError().isEmpty() && !store->savedAt().isValid());
        m->account.logout();
        m->signIn(boris);
        QTRY_COMPARE(told(store->entries()), u"его|новое"_s);
        QTRY_VERIFY(store->savedAt().isValid());
        QCOMPARE(sent, "boris {\"glossary\":\"его\\nновое\"}"_ba);
    }

    void unsentWordsStayTheirWritersOwnAcrossRuns()
    {
        const QString boris = token(R"({"sub":"boris"})");
        m->reply(Server::answer(500, "{}"));
        m->signIn(boris);
        m->makeStore()->save(glossaryText::parseAll(u"его"_s));
        m->account.logout();
        auto nextRun = m->makeStore();
        QCOMPARE(told(nextRun->entries()), u"его"_s);
        m->backendHas(R"([{"glossary":"её"}])");
        m->signIn(token(R"({"sub":"anna"})"));
        QTRY_COMPARE(told(nextRun->entries()), u"её"_s);
        QVERIFY(std::ranges::none_of(m->server.requests, [](const Server::Request& request) {
            return request.method == "PATCH" && request.body.contains("её");
        }));
        m->backendHas(R"([{"glossary":"прежнее"}])");
        m->signIn(boris);
        QTRY_COMPARE(told(nextRun->entries()), u"прежнее|его"_s);
    }

    void wordsThatNoFileKeepsAreSentAllTheSame()
    {
        QVERIFY(QDir{}.mkpath(m->paths.prefsFile)); // no preferences can be written
        const auto store = m->makeStore();
        store->save(glossaryText::parseAll(u"моё"_s));
        m->backendHas(R"([{"glossary":"там"}])");
        m->signIn();
        QTRY_VERIFY(store->savedAt().isValid());
        QCOMPARE(told(store->entries()), u"там|моё"_s);
        QVERIFY(m->server.requestsTo("/rest/v1/profiles").last().body.contains("там\\nмоё"));
    }

    void aTermWithAnArrowIsARule()
    {
        m->reply(Server::answer(500, "{}"));
        m->signIn();
        const auto store = m->makeStore();
        AssistantModel model{*store};
        QVERIFY(model.add({}, u"а → б"_s));
        model.save();
        QTRY_VERIFY(!model.saving());
        QCOMPARE(model.total(), 1);
    }

    void editingTheGlossary()
    {
        m->prefs.set(u"glossary"_s, u"Квен → Qwen\nOKR"_s);
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
        m->signIn();
        QTRY_VERIFY(store->savedAt().isValid());
        model.save();
        QVERIFY(model.saving());
        QTRY_VERIFY(!model.dirty());
        QCOMPARE(rows(), u"новое|там|со стороны"_s);
        QVERIFY(m->server.requests.last().body.contains("новое\\nтам\\nсо стороны"));
    }

private:
    struct Fixture {
        QTemporaryDir home;
        Paths paths{home.path()};
        bool made = QDir{}.mkpath(paths.root);
        Server server;
        ManualScheduler scheduler;
        Prefs prefs{paths.prefsFile};
        Language language{prefs, [] { return QStringList{}; }};
        NetworkHttp http;
        RecordingDesktop desktop;
        MemorySecrets secrets;
        AuthManager account{{.accountSite = server.origin(), .accountFile = paths.accountFile},
                            {.base = server.origin()},
                            http,
                            desktop,
                            secrets,
                            scheduler};

        void signIn(const QString& token = u"a"_s)
        {
            account.login();
            account.handle(u"murmeli://auth#access_token="_s + token);
        }
        void write(const QString& path, const QByteArray& content) const
        {
            QVERIFY(files::writeAtomic(path, content));
        }
        void reply(const QByteArray& wire)
        {
            server.reply = [wire](QTcpSocket* socket, const Server::Request&) {
                if (wire.isEmpty()) {
                    socket->abort();
                } else {
                    socket->write(wire);
                }
            };
        }
        void backendHas(const QByteArray& profiles)
        {
            server.reply = [profiles](QTcpSocket* socket, const Server::Request& request) {
                socket->write(request.method == "GET" ? Server::answer(200, profiles)
                                                      : Server::answer(204, ""));
            };
        }
        [[nodiscard]] std::unique_ptr<GlossaryStore> makeStore()
        {
            return std::make_unique<GlossaryStore>(account, http, prefs, scheduler);
        }
    };
    std::unique_ptr<Fixture> m;
};

MURMELI_TEST(GlossaryTest)
#include "GlossaryTest.moc"
