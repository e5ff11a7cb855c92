#include "base/Files.h"
#include "base/Json.h"
#include "protocol/ChangeHistory.h"
#include "protocol/ProtocolChanges.h"
#include "protocol/ProtocolWriter.h"
#include "registeredTests.h"
#include "support/Cases.h"
#include "support/TestProgram.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace murmeli;
using Kind = ProtocolChange::Kind;
using Written = ProtocolWriter::Written;

class LedgerTest : public QObject {
    Q_OBJECT

private slots:
    void init()
    {
        m = std::make_unique<TestProgram>();
        writer = std::make_unique<ProtocolWriter>(m->paths, m->processes, m->scheduler);
        changes = std::make_unique<ProtocolChanges>(ProtocolChanges::Ground{.paths = m->paths,
                                                                            .writer = *writer,
                                                                            .language = m->language,
                                                                            .desktop = m->desktop,
                                                                            .scheduler = m->scheduler},
                                                    meeting());
    }
    void cleanup()
    {
        changes.reset();
        writer.reset();
        m.reset();
    }

    void whatHasBecomeOfChanges()
    {
        const QByteArray first = begun(u"1"_s, u"remark"_s, u"a"_s, u"b"_s);
        const QByteArray second = begun(u"2"_s, u"remark"_s, u"b"_s, u"c"_s);
        const QByteArray undo = begun(u"3"_s, u"undo"_s, u"b"_s, u"a"_s, u"1"_s);
        const Cases<QByteArray, QStringList, QString> cases{
            // the ledger, the items, and what is told: the changes with their state, foreign texts
            {"holds", first + ended(u"1"_s), {u"b"_s}, u"1 holds"_s},
            {"its end was not noted, but it was made", first, {u"b"_s}, u"1 holds"_s},
            {"it was never made", first, {u"a"_s}, {}},
            {"it was never made, and another one reads so", first, {u"a"_s, u"b"_s}, {}},
            {"it failed, and another one wrote the same", first + ended(u"1"_s, u"failed"_s), {u"b"_s}, {}},
            {"its place has moved", first + ended(u"1"_s), {u"x"_s, u"b"_s}, u"1 holds"_s},
            {"changed once more",
             first + ended(u"1"_s) + second + ended(u"2"_s),
             {u"c"_s},
             u"1 holds|2 holds"_s},
            {"changed once more, no end noted", first + second, {u"c"_s}, u"1 holds|2 holds"_s},
            {"taken back", first + ended(u"1"_s) + undo + ended(u"3"_s), {u"a"_s}, u"1 undone"_s},
            {"and made again",
             first + undo + ended(u"3"_s) + begun(u"4"_s, u"redo"_s, u"a"_s, u"b"_s, u"1"_s) + ended(u"4"_s),
             {u"b"_s},
             u"1 holds"_s},
            {"the service put it back", first + ended(u"1"_s), {u"a"_s}, u"1 overwritten"_s},
            {"and was let", first + ended(u"1"_s) + kept(u"1"_s), {u"a"_s}, u"1 kept"_s},
            {"let, then made again, then put back",
             first + ended(u"1"_s) + kept(u"1"_s) + begun(u"4"_s, u"redo"_s, u"a"_s, u"b"_s, u"1"_s) +
                 ended(u"4"_s),
             {u"a"_s},
             u"1 overwritten"_s},
            {"somebody wrote another text",
             begun(u"1"_s, u"remark"_s, u"a"_s, u"b c d"_s) + ended(u"1"_s),
             {u"x"_s, u"b c e"_s},
             u"1 holds|b c d → b c e"_s},
            {"somebody removed it", first + ended(u"1"_s), {}, u"1 holds|b → "_s},
            {"a line of tomorrow, and one cut off",
             "{\"v\":2,\"id\":\"1\"}\n" + first + "{\"id",
             {u"b"_s},
             u"1 holds"_s},
            {"no ledger", {}, {u"a"_s}, {}},
        };
        for (const auto& [name, lines, texts, told] : cases) {
            CASE(name);
            m->write(ledgerFile(), lines);
            const auto [entries, foreign] =
                ChangeHistory::of(Ledger{m->paths, u"a"_s}.read(), itemsOf(texts));
            const QStringList names{u"holds"_s, u"undone"_s, u"overwritten"_s, u"kept"_s};
            QStringList found;
            for (const auto& entry : entries)
                found.append(entry.change.id + u' ' + names[int(entry.state)]);
            for (const auto& text : foreign)
                found.append(text.before + u" → "_s + text.after);
            QCOMPARE(found.join(u'|'), told);
        }
    }

    void everyChangeCanBeTakenBackAndMadeAgain()
    {
        writeItems({u"раз два"_s, u"три"_s});
        QCOMPARE(write({.section = u"decisions"_s,
                        .before = u"раз два"_s,
                        .after = u"раз четыре"_s,
                        .remark = u"не два"_s}),
                 Written::Yes);
        QCOMPARE(write({.section = u"decisions"_s, .index = 1, .before = u"три"_s, .after = u"пять"_s}),
                 Written::Yes);
        load();
        QCOMPARE(changes->rowCount(), 2);
        QCOMPARE(row(1).spoken, u"Решения, Сегодня, "_s + row(1).time.last(5) +
                                    u". убрано: два, вставлено: четыре. Замечание: «не два»"_s);
        writeItems({u"новое"_s, u"раз четыре"_s, u"пять"_s}); // the service has put one before them
        acts([&] { changes->undo(1); });
        QCOMPARE(items(), (QStringList{u"новое"_s, u"раз два"_s, u"пять"_s}));
        QVERIFY(row(1).redoable && !row(1).undoable && row(1).note.startsWith(u"Отменено"_s));
        QCOMPARE(changes->counts(), u"2 правки, 1 отменена"_s);
        acts([&] { changes->redo(1); });
        QCOMPARE(items()[1], u"раз четыре"_s);
        acts([&] { changes->undoLast(); });
        QCOMPARE(items()[2], u"три"_s);

        writeItems({u"другое"_s, u"раз четыре!"_s, u"три"_s});
        acts([&] { changes->undo(row(0).foreign ? 2 : 1); });
        QCOMPARE(items()[1], u"раз четыре!"_s);
        QVERIFY(row(0).foreign && row(2).gone);
        changes->copyBefore(2);
        QCOMPARE(m->desktop.copiedText, u"раз два"_s);
    }

    void whatTheServicePutsBackCanBeRestoredOrLet()
    {
        writeItems({u"раз"_s, u"два"_s});
        write({.section = u"decisions"_s, .before = u"раз"_s, .after = u"три"_s});
        write({.section = u"decisions"_s, .index = 1, .before = u"два"_s, .after = u"четыре"_s});
        writeItems({u"раз"_s, u"два"_s});
        load();
        QCOMPARE(changes->overwrittenCount(), 2);
        QCOMPARE(changes->overwritten(), u"Решения"_s);
        changes->restore();
        QTRY_COMPARE(items(), (QStringList{u"три"_s, u"четыре"_s}));
        QTRY_COMPARE(changes->overwrittenCount(), 0);
        writeItems({u"раз"_s, u"четыре"_s});
        load();
        QCOMPARE(changes->overwrittenCount(), 1);
        acts([&] { changes->keep(); });
        QCOMPARE(changes->overwrittenCount(), 0);
        QCOMPARE(items()[0], u"раз"_s);
        changes->setComparing(true);
        QTRY_COMPARE(changes->rowCount(), 2);
        QCOMPARE(row(1).spoken, u"Решения. убрано: два, вставлено: четыре"_s);
    }

    void pressedTwiceItTakesTwoBack()
    {
        writeItems({u"раз"_s, u"два"_s});
        write({.section = u"decisions"_s, .before = u"раз"_s, .after = u"три"_s});
        write({.section = u"decisions"_s, .index = 1, .before = u"два"_s, .after = u"четыре"_s});
        load();
        changes->undoLast();
        changes->undoLast();
        QTRY_COMPARE(items(), (QStringList{u"раз"_s, u"два"_s}));
        QVERIFY(!changes->failed());
    }

    // Else a change whose program was killed would vanish once the service writes over it.
    void whatAnEarlierRunHasBegunIsEnded()
    {
        writeItems({u"b"_s});
        m->write(ledgerFile(), begun(u"1"_s, u"remark"_s, u"a"_s, u"b"_s).replace("2026", "2006"));
        load();
        const auto ended = [&] { return Ledger{m->paths, u"a"_s}.read().ended.contains(u"1"_s); };
        QTRY_VERIFY(ended());
        writeItems({u"a"_s});
        load();
        QCOMPARE(changes->overwrittenCount(), 1);
    }

    void withoutALedgerItIsCorrectedAllTheSame()
    {
        for (const bool folder : {true, false}) {
            init();
            if (folder) {
                QDir{}.mkpath(ledgerFile());
            } else {
                m->write(ledgerFile(), QByteArray(17 * 1024 * 1024, ' '));
            }
            writeItems({u"раз"_s});
            QCOMPARE(write({.section = u"decisions"_s, .before = u"раз"_s, .after = u"два"_s}),
                     Written::Unlisted);
            QCOMPARE(items(), QStringList{u"два"_s});
            QCOMPARE(
                write({.kind = Kind::Undo, .section = u"decisions"_s, .before = u"два"_s, .after = u"раз"_s}),
                Written::Failed);
            QCOMPARE(items(), QStringList{u"два"_s});
            load();
            QVERIFY(changes->unreadable());
        }
    }

    // Whatever happens in whatever order: what is written replaces the one text that it was meant for.
    void nothingElseIsEverTouched()
    {
        QRandomGenerator random{20261123};
        int number = 0;
        QStringList texts{u"a"_s, u"b"_s, u"c"_s};
        writeItems(texts);
        int done = 0;
        int refused = 0;
        for (int step = 0; step < 100; ++step) {
            const QStringList before = items();
            const auto some = [&](qsizetype size) { return qsizetype(random.bounded(int(size))); };
            const QString fresh = u"t%1"_s.arg(++number);
            switch (random.bounded(4)) {
            case 0: { // somebody else
                texts = before;
                const auto way = random.bounded(4);
                if (way == 0 || texts.size() < 2)
                    texts = QStringList{fresh} + texts + texts.mid(some(texts.size()), 2); // some read alike
                else if (way == 1)
                    texts.removeAt(some(texts.size()));
                else if (way == 2)
                    texts.swapItemsAt(0, some(texts.size()));
                else
                    texts[some(texts.size())] = random.bounded(2) ? fresh : texts.first();
                writeItems(texts);
                continue;
            }
            case 1: { // a remark, now and then on what is no longer there
                const qsizetype index = some(before.size());
                const QString meant = random.bounded(5) ? before[index] : u"gone"_s;
                const auto written =
                    write({.section = u"decisions"_s, .index = index, .before = meant, .after = fresh});
                QStringList expected = before;
                if (meant == before[index]) expected[index] = fresh;
                QCOMPARE(written, meant == before[index] ? Written::Yes : Written::Changed);
                QCOMPARE(items(), expected);
                break;
            }
            default: { // back or forth
                const auto history = ChangeHistory::of(Ledger{m->paths, u"a"_s}.read(), itemsOf(before));
                if (history.entries.isEmpty()) continue;
                const auto& entry = history.entries[some(history.entries.size())];
                const bool undo = entry.state == ChangeHistory::State::Holds;
                const ProtocolChange change{.kind = undo ? Kind::Undo : Kind::Redo,
                                            .section = u"decisions"_s,
                                            .index = entry.change.index,
                                            .before = undo ? entry.change.after : entry.change.before,
                                            .after = undo ? entry.change.before : entry.change.after,
                                            .of = entry.change.id};
                qsizetype at = before.value(change.index) == change.before ? change.index : -1;
                if (at < 0 && before.count(change.before) == 1) at = before.indexOf(change.before);
                QStringList expected = before;
                if (at >= 0) expected[at] = change.after;
                QCOMPARE(write(change, ProtocolWriter::Where::Anywhere),
                         at >= 0 ? Written::Yes : Written::Changed);
                QCOMPARE(items(), expected);
                ++(at >= 0 ? done : refused);
            }
            }
            const QJsonObject file = *json::object(files::readWhole(path(), 100'000).value_or(""));
            QCOMPARE(file[u"else"_s].toString(), u"stays"_s);
            QVERIFY(
                files::readWhole(path(), 100'000).value_or("").contains("123456789012345678901234567890"));
        }
        QVERIFY(done > 5 && refused > 5);
    }

private:
    [[nodiscard]] QString path() const { return m->paths.logs + u"/a.protocol.json"_s; }
    [[nodiscard]] QString ledgerFile() const { return m->paths.ownData + u"/edits/a.jsonl"_s; }
    [[nodiscard]] Meeting meeting() const { return {.id = u"a"_s, .jsonPath = path()}; }
    static QByteArray begun(const QString& id, const QString& kind, const QString& before,
                            const QString& after, const QString& of = {})
    {
        return line({{u"v"_s, 1},
                     {u"id"_s, id},
                     {u"t"_s, u"2026-11-21T14:32:05Z"_s},
                     {u"kind"_s, kind},
                     {u"section"_s, u"decisions"_s},
                     {u"index"_s, 0},
                     {u"before"_s, before},
                     {u"after"_s, after},
                     {u"of"_s, of},
                     {u"step"_s, u"begun"_s}});
    }
    static QByteArray ended(const QString& id, const QString& step = u"done"_s)
    {
        return line({{u"id"_s, id}, {u"step"_s, step}});
    }
    static QByteArray kept(const QString& of)
    {
        return line({{u"id"_s, u"k"_s}, {u"kind"_s, u"kept"_s}, {u"of"_s, of}});
    }
    static QByteArray line(const QJsonObject& object)
    {
        return QJsonDocument{object}.toJson(QJsonDocument::Compact) + '\n';
    }
    static QList<ProtocolItem> itemsOf(const QStringList& texts)
    {
        return protocolItems::editable({{u"decisions"_s, QJsonArray::fromStringList(texts)}});
    }
    void writeItems(const QStringList& texts)
    {
        const QByteArray list =
            QJsonDocument{QJsonArray::fromStringList(texts)}.toJson(QJsonDocument::Compact);
        QDir{}.mkpath(m->paths.logs);
        QFile file{path()};
        if (!file.open(QIODevice::WriteOnly)) qFatal("The temporary home cannot be written");
        file.write(R"({"else":"stays","big":123456789012345678901234567890,"decisions":)" + list + '}');
    }
    [[nodiscard]] QStringList items() const
    {
        QStringList texts;
        for (const ProtocolItem& item :
             protocolItems::editable(*json::object(files::readWhole(path(), 100'000).value_or(""))))
            texts.append(item.text);
        return texts;
    }
    Written write(const ProtocolChange& change, ProtocolWriter::Where where = ProtocolWriter::Where::There)
    {
        std::optional<Written> result;
        writer->write(meeting(), change, where, this, [&](Written written, auto) { result = written; });
        return QTest::qWaitFor([&] { return result.has_value(); }) ? *result : Written::Failed;
    }
    /// What the model tells once the work is done and read again.
    void acts(const std::function<void()>& act)
    {
        QSignalSpy told{changes.get(), &ProtocolChanges::changed};
        act();
        [&] { QTRY_VERIFY(!told.isEmpty()); }();
        load();
    }
    void load()
    {
        QSignalSpy told{changes.get(), &ProtocolChanges::changed};
        changes->load(meeting());
        [&] { QTRY_VERIFY(!told.isEmpty()); }();
    }
    [[nodiscard]] ChangeRow row(int index) const
    {
        return changes->data(changes->index(index), Qt::UserRole).value<ChangeRow>();
    }

    std::unique_ptr<TestProgram> m;
    std::unique_ptr<ProtocolWriter> writer;
    std::unique_ptr<ProtocolChanges> changes;
};

MURMELI_TEST(LedgerTest)
#include "LedgerTest.moc"
