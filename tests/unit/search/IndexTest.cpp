#include "registeredTests.h"
#include "search/IndexExpression.h"
#include "search/IndexFile.h"
#include "support/Cases.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace murmeli;
using indexExpression::Column;

/// What the index file holds, and what is found in it.
class IndexTest : public QObject {
    Q_OBJECT

private slots:
    void init() { m_dir = std::make_unique<QTemporaryDir>(); }

    void questions()
    {
        const Cases<QString, QString> cases{
            // what somebody types, and the meetings that it finds, the newest first
            {"a word in any form", u"отчёта "_s, u"b a"_s},
            {"all words", u"отчёты Анне "_s, u"a"_s},
            {"the beginning of a word", u"отч"_s, u"b a"_s},
            {"a whole word", u"отч "_s, {}},
            {"one that is not there", u"отчёт -Анна"_s, u"b"_s},
            {"words in a row", u"\"срок релиза\""_s, u"b"_s},
            {"what the engine would take for its own", u"title:отчёт OR NEAR* (\""_s, {}},
            {"a number", u"0.9 "_s, u"c"_s},
            {"nothing but what is not wanted", u"-отчёт"_s, u"c"_s},
        };
        IndexFile index{path(), IndexFile::Mode::Write};
        QVERIFY(index.put({document(u"a"_s, 10, u"Отчёты"_s, u"Анна принесла"_s),
                           document(u"b"_s, 20, u"План"_s, u"срок релиза, отчёт"_s),
                           document(u"c"_s, 30, u"Релиз 0.9"_s, u"срок для релиза"_s)}));
        for (const auto& [name, typed, found] : cases) {
            CASE(name);
            const words::Terms terms{typed, m_keys};
            const IndexQuery query{.match = indexExpression::of(terms),
                                   .without = indexExpression::unwanted(terms)};
            QCOMPARE(index.find(query).join(u' '), found);
            QCOMPARE(index.count(query), found.isEmpty() ? 0 : found.count(u' ') + 1);
        }
        const auto in = [&](const QString& typed, const QList<Column>& columns) {
            return index.find({.match = indexExpression::of(words::Terms{typed, m_keys}, columns)})
                .join(u' ');
        };
        QCOMPARE(in(u"релиз "_s, {Column::Title}), u"c"_s);
        QCOMPARE(in(u"релиз "_s, {Column::Title, Column::Said}), u"c b"_s);
        IndexQuery some{.match = indexExpression::of(words::Terms{u"релиз "_s, m_keys}),
                        .from = 20,
                        .until = 20,
                        .order = IndexQuery::Order::Best};
        QCOMPARE(index.find(some), QStringList{u"b"_s});
        some.from = some.until = {};
        QCOMPARE(index.find(some), (QStringList{u"c"_s, u"b"_s})); // in its title
    }

    void whatHasChangedIsFoundAsItIsNow()
    {
        IndexFile index{path(), IndexFile::Mode::Write};
        QVERIFY(index.put({document(u"a"_s, -5, u"старое"_s, {}), document(u"b"_s, 0, u"старое"_s, {})}));
        QVERIFY(index.put({document(u"a"_s, -5, u"новое"_s, {})}));
        QCOMPARE(found(index, u"старое "_s), u"b"_s);
        QCOMPARE(found(index, u"новое "_s), u"a"_s);
        QCOMPARE(index.known().keys().size(), 2);
        QVERIFY(index.forget({u"b"_s}));
        QCOMPARE(found(index, u"старое "_s), QString{});
        QCOMPARE(index.size().alive, 1);
        QCOMPARE(index.size().dead, 2);
        QCOMPARE(QFile::permissions(path()) & 0x77, QFile::Permissions{});

        const IndexFile reader{path(), IndexFile::Mode::Read};
        QVERIFY(reader.isOpen());
    }

    void whatIsNoIndexIsToldAndLeftAlone()
    {
        const Cases<QByteArray, bool> cases{
            {"another file", QByteArray(10'000, 'x'), true},
            {"empty", "", false},
        };
        for (const auto& [name, content, broken] : cases) {
            CASE(name);
            QFile file{path()};
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
            file.close();
            IndexFile index{path(), IndexFile::Mode::Read};
            QVERIFY(!index.isOpen());
            QCOMPARE(index.broken(), broken);
            QVERIFY(!index.put({document(u"a"_s, 0, u"x"_s, {})}));
            QCOMPARE(found(index, u"x "_s), QString{});
        }
        QVERIFY(!IndexFile(m_dir->filePath(u"no/folder.db"_s), IndexFile::Mode::Write).isOpen());
    }

private:
    [[nodiscard]] QString path() const { return m_dir->filePath(u"index-1.db"_s); }
    QByteArray keysOf(const QString& text)
    {
        QByteArrayList keys;
        for (const words::Span& word : words::split(text))
            keys.append(m_keys.of(word.in(text)));
        return keys.join(' ');
    }
    IndexDocument document(const QString& stem, qint64 start, const QString& title, const QString& said)
    {
        return {.stem = stem, .start = start, .files = "1", .title = keysOf(title), .said = keysOf(said)};
    }
    QString found(IndexFile& index, const QString& typed)
    {
        return index.find({.match = indexExpression::of(words::Terms{typed, m_keys})}).join(u' ');
    }

    std::unique_ptr<QTemporaryDir> m_dir;
    words::Keys m_keys;
};

MURMELI_TEST(IndexTest)
#include "IndexTest.moc"
