#include "account/AuthManager.h"
#include "base/Drafts.h"
#include "base/Files.h"
#include "base/Http.h"
#include "glossary/AssistantModel.h"
#include "glossary/GlossaryStore.h"
#include "glossary/GlossaryText.h"
#include "registeredTests.h"
#include "service/Paths.h"
#include "service/Prefs.h"
#include "support/Cases.h"
#include "support/Faults.h"
#include "support/ManualScheduler.h"
#include "support/MemorySecrets.h"
#include "support/RecordingDesktop.h"
#include "support/Token.h"

#include <QAbstractItemModelTester>
#include <QDir>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QThreadPool>

#include <optional>

using namespace Qt::StringLiterals;
using namespace murmeli;
using namespace std::chrono_literals;

namespace {

const QString annas = token(R"({"sub":"anna"})");
const QString borises = token(R"({"sub":"boris"})");

QString told(const QList<GlossaryEntry>& entries)
{
    QStringList lines;
    for (const GlossaryEntry& entry : entries)
        lines.append(entry.isRule() ? u"%1>%2"_s.arg(entry.heard, entry.correct) : entry.correct);
    return lines.join(u'|');
}

QByteArray profile(const QByteArray& glossary)
{
    return Server::answer(200, R"([{"glossary":")" + glossary + R"("}])");
}

} // namespace

class GlossaryTest : public QObject {
    Q_OBJECT

private slots:
    void init()
    {
        m = std::make_unique<Fixture>();
        m->scheduler.advance(0ms);
        QCoreApplication::processEvents();
        QThreadPool::globalInstance()->waitForDone(); // the account has been looked for
    }
    void cleanup() { m.reset(); }

    void glossaryLines()
    {
        const Cases<QString, QString, QString> cases{
            // a text, what it says, and how it is written again
            {"rule", u"Квен → Qwen"_s, u"Квен>Qwen"_s, u"Квен → Qwen"_s},
            {"term", u"Qwen"_s, u"Qwen"_s, u"Qwen"_s},
            {"spaces", u"  x→y \n\n \t\n z "_s, u"x>y|z"_s, u"x → y\nz"_s},
            {"nothing heard", u"→ Qwen"_s, u"→ Qwen"_s, u"→ Qwen"_s},
            {"nothing written", u"Квен →"_s, u"Квен →"_s, u"Квен →"_s},
            {"the first arrow parts", u"a → b → c"_s, u"a>b → c"_s, u"a → b → c"_s},
            {"an arrow of two characters", u"a -> b"_s, u"a -> b"_s, u"a -> b"_s},
            {"empty", {}, {}, {}},
            {"carriage returns", u"a → b\r\nc\r"_s, u"a>b|c"_s, u"a → b\nc"_s},
        };
        for (const auto& [name, text, entries, written] : cases) {
            CASE(name);
            QCOMPARE(told(glossaryText::parseAll(text)), entries);
            QCOMPARE(glossaryText::serialised(glossaryText::parseAll(text)), written);
        }
    }

    void learning()
    {
        const auto known = glossaryText::parseAll(u"Квен → Qwen\nQwen\nквен → другое"_s);
        const Cases<QString, QString, QString> cases{
            // what was heard, what is right, and the glossary, if there is something to learn
            {"new", u" кубер "_s, u" Kubernetes "_s, u"Квен>Qwen|Qwen|квен>другое|кубер>Kubernetes"_s},
            {"the first of equals", u"КВЕН"_s, u"QWEN"_s, u"Квен>QWEN|Qwen|квен>другое"_s},
            {"nothing heard", u" "_s, u"x"_s, {}},
            {"nothing written", u"x"_s, {}, {}},
            {"the same word", u"qwen"_s, u" QWEN"_s, {}},
        };
        for (const auto& [name, heard, correct, glossary] : cases) {
            CASE(name);
            const auto learned = glossaryText::learned(known, heard, correct);
            QCOMPARE(learned ? told(*learned) : QString{}, glossary);
        }
    }

    void merging()
    {
        const Cases<QString, QString, QString, QString> cases{
            // what both had, mine, theirs, and what comes of it
            {"nothing done", u"a b"_s, u"a b"_s, u"a b c"_s, u"a b c"_s},
            {"added at the top", u"a b"_s, u"x a b"_s, u"a b c"_s, u"x a b c"_s},
            {"added at the end", u"a b"_s, u"a b x"_s, u"a b c"_s, u"a b c x"_s},
            {"removed here", u"a b"_s, u"b"_s, u"a b c"_s, u"b c"_s},
            {"removed there", u"a b"_s, u"a b"_s, u"b"_s, u"b"_s},
            {"removed there, added here", u"a b"_s, u"a b x"_s, {}, u"x"_s},
            {"both added the same", u"a"_s, u"a x"_s, u"a x"_s, u"a x"_s},
            {"both changed one rule", u"x→1 b"_s, u"x→2 b"_s, u"X→3 b c"_s, u"x→2 b c"_s},
            {"nothing in common", {}, u"x y"_s, u"a"_s, u"a x y"_s},
        };
        const auto entries = [](QString words) { return glossaryText::parseAll(words.replace(u' ', u'\n')); };
        for (const auto& [name, base, mine, theirs, merged] : cases) {
            CASE(name);
            QCOMPARE(glossaryText::merged(entries(base), entries(mine), entries(theirs)), entries(merged));
        }
    }

    void answers()
    {
        const Cases<QByteArray, QString> cases{
            {"text", R"([{"glossary":"a → b\nc"}])", u"a → b\nc"_s},
            {"none yet", R"([{"glossary":null}])", {}},
            {"no profile", "[]", {}},
        };
        for (const auto& [name, profiles, glossary] : cases) {
            CASE(name);
            init();
            m->server.says(Server::answer(200, profiles));
            const auto store = m->loadedStore();
            QCOMPARE(glossaryText::serialised(store->entries()), glossary);
            QVERIFY(store->syncError().isEmpty());
            QCOMPARE(m->copy(), glossary);
        }
    }

    void whatIsNoAnswerLeavesWhatIsKept()
    {
        for (const Fault& fault : faultsAround(R"([{"glossary":"чужое"}])")) {
            CASE(fault.name);
            init();
            m->server.reply = fault;
            const auto store = m->loadedStore();
            QCOMPARE(told(store->entries()), u"старое"_s);
            QVERIFY(!store->syncError().isEmpty());
            QCOMPARE(m->copy(), u"старое"_s);
        }
    }

    void savingTheGlossary()
    {
        const auto store = m->makeStore();
        std::optional<bool> saved;
        const auto note = [&](bool s) { saved = s; };
        store->save(glossaryText::parseAll(u" x →y "_s), note);
        QCOMPARE(saved, false);
        QCOMPARE(store->syncError(), Message::of("assistant.error.auth"));
        QCOMPARE(m->copy(), u"x → y"_s);

        // What could not be sent is sent instead of being overwritten.
        m->backendHas("там");
        m->signIn();
        QTRY_VERIFY(store->savedAt().isValid());
        QCOMPARE(m->asked().size(), 2); // first a look at what is there
        const Server::Request patch = m->asked()[1];
        QCOMPARE(patch.method, "PATCH"_ba);
        QCOMPARE(patch.path, "/rest/v1/profiles"_ba);
        QCOMPARE(patch.header("Prefer"), "return=minimal"_ba);
        QCOMPARE(patch.body, R"({"glossary":"там\nx → y"})"_ba);
        QVERIFY(store->syncError().isEmpty());

        m->server.says(Server::answer(500, "{}"));
        saved.reset();
        store->save(glossaryText::parseAll(u"z"_s), note);
        QTRY_COMPARE(saved, false);
        QCOMPARE(store->syncError(), Message::of("assistant.error.save"));
        QCOMPARE(m->copy(), u"z"_s);
    }

    void aWordThatCannotBeKeptIsNotLearned()
    {
        const auto store = m->makeStore();
        QSignalSpy told{store.get(), &GlossaryStore::notStored};
        QVERIFY(QDir{}.mkpath(m->paths.prefsFile)); // a folder in the file's place
        QCOMPARE(store->learn(u"а"_s, u"б"_s), QString{});
        QCOMPARE(told.size(), 1);
        m->backendHas({});
        m->signIn();
        QTRY_VERIFY(!store->loading());
        QCOMPARE(store->learn(u"а"_s, u"в"_s), u"а → в"_s); // the account keeps it
    }

    void whatIsThereIsNotOverwrittenUnseen()
    {
        const auto store = m->makeStore();
        m->server.says(Server::answer(500, "{}"));
        m->signIn();
        QTRY_VERIFY(!store->syncError().isEmpty());
        m->server.holds("/rest/v1/profiles");
        QCOMPARE(store->learn(u" Квен"_s, u"Qwen "_s), u"Квен → Qwen"_s);
        QTRY_COMPARE(m->server.held.size(), 1);
        QCOMPARE(m->asked().last().method, "GET"_ba);
        store->learn(u"а"_s, u"б"_s); // while it is loading
        m->server.held[0]->write(profile("до этого"));
        QTRY_COMPARE(m->server.held.size(), 2);
        QCOMPARE(m->asked().last().body, R"({"glossary":"до этого\nКвен → Qwen\nа → б"})"_ba);
    }

    void aNewPersonIsNotServedTheLastOnesWords()
    {
        QVERIFY(files::writeInPlace(m->paths.accountFile, R"({"access_token":"eva"})"));
        m->server.holds("/rest/v1/profiles");
        const auto store = m->makeStore();
        const auto& held = m->server.held;
        QTRY_COMPARE(held.size(), 1);
        m->signIn(borises);
        QTRY_COMPARE(held.size(), 2);
        held[0]->write(profile("чужое"));
        held[0]->flush();
        held[1]->write(profile("его"));
        QTRY_COMPARE(told(store->entries()), u"его"_s);
        store->save(glossaryText::parseAll(u"новое"_s));
        QTRY_COMPARE(held.size(), 3);
        m->signIn(annas); // without a sign-out before
        QTRY_COMPARE(held.size(), 4);
        held[2]->write(Server::answer(204, ""));
        held[2]->flush();
        held[3]->write(profile("её"));
        QTRY_COMPARE(told(store->entries()), u"её"_s);
        QVERIFY(!store->savedAt().isValid());
        const QStringList whose{u"eva"_s, borises, borises, annas};
        for (int i = 0; i < whose.size(); ++i)
            QCOMPARE(m->asked()[i].header("Authorization"), "Bearer " + whose[i].toLatin1());
    }

    void unsentWordsStayTheirWritersOwn()
    {
        auto store = m->makeStore();
        m->backendHas("его");
        m->signIn(borises);
        QTRY_COMPARE(told(store->entries()), u"его"_s);
        m->server.says(Server::answer(500, "{}"));
        store->save(glossaryText::parseAll(u"его\nновое"_s));
        m->account.logout();
        store = m->makeStore(); // at the next start
        QCOMPARE(told(store->entries()), u"его|новое"_s);

        m->backendHas("её");
        m->signIn(annas);
        QCOMPARE(told(store->entries()), QString{}); // not even for a moment
        QTRY_COMPARE(told(store->entries()), u"её"_s);
        QCOMPARE(m->copy(), u"её"_s);
        QVERIFY(store->syncError().isEmpty() && !store->savedAt().isValid());

        m->account.logout();
        m->backendHas("другое");
        m->signIn(borises);
        QTRY_COMPARE(told(store->entries()), u"другое|новое"_s);
        QTRY_VERIFY(store->savedAt().isValid());
        QCOMPARE(m->asked().last().body, R"({"glossary":"другое\nновое"})"_ba);
    }

    void wordsThatNoFileKeepsAreSentAllTheSame()
    {
        QVERIFY(QDir{}.mkpath(m->paths.prefsFile)); // no preferences can be written
        const auto store = m->makeStore();
        store->save(glossaryText::parseAll(u"моё"_s));
        m->backendHas("там");
        m->signIn();
        QTRY_VERIFY(store->savedAt().isValid());
        QCOMPARE(told(store->entries()), u"там|моё"_s);
        QCOMPARE(m->asked().last().body, R"({"glossary":"там\nмоё"})"_ba);
    }

    void editingTheGlossary()
    {
        m->prefs.set(u"glossary"_s, u"Квен → Qwen\nOKR"_s);
        const auto store = m->makeStore();
        Drafts drafts{m->home.filePath(u"drafts.json"_s), m->scheduler};
        AssistantModel model{*store, drafts};
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
        QCOMPARE((AssistantModel{*store, drafts}.total()),
                 3); // as it comes back when the program starts again
        store->save(glossaryText::parseAll(u"со стороны"_s)); // a working copy is kept
        QCOMPARE(model.total(), 3);
        model.revert();
        QVERIFY((!AssistantModel{*store, drafts}.dirty()));
        QVERIFY(drafts.of(u"glossary of "_s).isEmpty());
        QCOMPARE(rows(), u"со стороны"_s);
        QVERIFY(!model.dirty());

        model.add({}, u"а → б"_s); // a term with an arrow is a rule, as it will be read again
        m->backendHas("там");
        m->signIn();
        QTRY_VERIFY(store->savedAt().isValid());
        QVERIFY((AssistantModel{*store, drafts}.dirty())); // the draft has gone to whoever has signed in
        model.save();
        QVERIFY(model.saving());
        QCOMPARE(model.total(), 3);
        QTRY_VERIFY(!model.dirty());
        QCOMPARE(rows(), u"а → б|там|со стороны"_s);
        QCOMPARE(m->asked().last().body, R"({"glossary":"а → б\nтам\nсо стороны"})"_ba);
    }

private:
    struct Fixture {
        QTemporaryDir home;
        Paths paths{home.path()};
        bool made = QDir{}.mkpath(paths.root);
        Server server;
        ManualScheduler scheduler;
        Prefs prefs{paths.prefsFile};
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
        /// It takes what is saved, and goes on telling this.
        void backendHas(const QByteArray& glossary)
        {
            server.reply = [glossary](QTcpSocket* socket, const Server::Request& request) {
                socket->write(request.method == "GET" ? profile(glossary) : Server::answer(204, ""));
            };
        }
        [[nodiscard]] QList<Server::Request> asked() const { return server.requestsTo("/rest/v1/profiles"); }
        /// What the service reads.
        [[nodiscard]] QString copy() const { return prefs.string(u"glossary"_s, u"?"_s); }

        [[nodiscard]] std::unique_ptr<GlossaryStore> makeStore()
        {
            return std::make_unique<GlossaryStore>(account, http, prefs, scheduler);
        }
        /// One that had a copy, and has then asked.
        [[nodiscard]] std::unique_ptr<GlossaryStore> loadedStore()
        {
            prefs.set(u"glossary"_s, u"старое"_s);
            auto store = makeStore();
            [&] { QCOMPARE(told(store->entries()), u"старое"_s); }();
            signIn();
            [&] { QTRY_VERIFY(store->loading()); }();
            [&] { QTRY_VERIFY(!store->loading()); }();
            return store;
        }
    };
    std::unique_ptr<Fixture> m;
};

MURMELI_TEST(GlossaryTest)
#include "GlossaryTest.moc"
