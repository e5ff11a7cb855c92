#include "handout/HandoutModel.h"
#include "handout/HandoutText.h"
#include "receipts/ReceiptFiles.h"
#include "registeredTests.h"
#include "support/Cases.h"
#include "support/TestProgram.h"
#include "windows/MainModel.h"

#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>
#include <QTextDocument>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace murmeli;

namespace {

const QString id = u"2026-03-04 10-15-00"_s;

Handout handoutOf(const QStringList& items, HandoutPart part = HandoutPart::Decisions)
{
    Handout handout{.language = u"ru"_s, .title = u"Итоги"_s, .dateLine = u"4 марта 2026"_s, .edits = 2};
    Handout::Section section{.part = part, .heading = u"Решения"_s, .items = {}};
    for (const QString& item : items)
        section.items.append({.text = item, .speaker = {}, .stamp = {}});
    handout.sections = {section};
    return handout;
}

/// What another program reads in the file.
QString told(const QString& program, const QByteArray& pdf, const QStringList& arguments = {})
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"a.pdf"_s);
    QFile file{path};
    if (!file.open(QIODevice::WriteOnly) || file.write(pdf) != pdf.size()) return {};
    file.close();
    QProcess process;
    process.start(program, QStringList{path} + arguments);
    if (!process.waitForFinished() || process.exitCode() != 0) return u"it failed"_s;
    return QString::fromUtf8(process.readAllStandardOutput());
}

} // namespace

class HandoutTest : public QObject {
    Q_OBJECT

private slots:
    void init() { m = std::make_unique<Fixture>(); }
    void cleanup() { m.reset(); }

    void markdownIsReadAsItWasWritten()
    {
        const Cases<QString> cases{
            {"signs", u"a*b* _c_ `d` [e](f) <g> ~~h~~ i|j \\ & &amp; #k"_s},
            {"a heading", u"# a"_s},
            {"a list", u"- a"_s},
            {"a number", u"12. a"_s},
            {"brackets", u"3) a"_s},
            {"a quotation", u"> a"_s},
            {"a rule", u"---"_s},
            {"a heading's line", u"==="_s},
            {"a task", u"[x] a"_s},
            {"a table", u"|a|b|"_s},
        };
        for (const auto& [name, text] : cases) {
            for (const HandoutPart part :
                 {HandoutPart::Summary, HandoutPart::Decisions, HandoutPart::Tasks}) {
                CASE(name);
                QTextDocument document;
                document.setMarkdown(handoutText::markdown(handoutOf({text}, part)));
                QVERIFY2(document.toPlainText().trimmed().endsWith(u'\n' + text),
                         qPrintable(document.toPlainText()));
                document.setHtml(handoutText::html(handoutOf({text}, part)));
                QVERIFY2(document.toPlainText().trimmed().endsWith(u'\n' + text),
                         qPrintable(document.toPlainText()));
            }
        }
    }

    void aPdfReadsAsItWasWritten()
    {
        const QString plain =
            u"В 12:00 – 12:47 «лодки» — “boats” 1 250 ₽, 0.9, е-mail; ещё № 5… naïve Łódź"_s;
        const QString long_ =
            QString{u"Слова и ещё слова, которых хватит на строку. "_s}.repeated(3).trimmed();
        QStringList items{plain, u"中文会议"_s, u"مرحبا بالعالم"_s, u"a 🧿 b"_s};
        for (int i = 0; i < 60; ++i)
            items.append(long_);
        const HandoutPages pages{handoutOf(items)};
        QVERIFY(pages.count() >= 3);
        const QByteArray pdf = pages.pdf();
        QVERIFY2(pdf.size() < pages.count() * 20'000, qPrintable(QString::number(pdf.size())));
        QString text = told(u"pdftotext"_s, pdf, {u"-raw"_s, u"-"_s});
        text.remove(QRegularExpression{u"[\u202a-\u202e\u2066-\u2069]"_s});
        for (const QString& expected :
             {plain, u"中文会议"_s, u"a \u25a1 b"_s, u"Murmeli · правка 2"_s, u"1 / %1"_s.arg(pages.count())})
            QVERIFY2(text.contains(expected), qPrintable(expected + u"\n"_s + text.left(1500)));
        const QString shaped =
            told(u"pdftotext"_s, pdf, {u"-"_s}); // its letters have another form at each place
        QVERIFY(shaped.normalized(QString::NormalizationForm_KC).contains(u"مرحبا بالعالم"_s));
        const QStringList fonts = told(u"pdffonts"_s, pdf).split(u'\n', Qt::SkipEmptyParts).mid(2);
        QVERIFY(!fonts.isEmpty());
        for (const QString& font : fonts)
            QVERIFY2(font.simplified().section(u' ', -5, -5) == u"yes", qPrintable(font));
        // What is read back is what another program reads.
        const QString own = textInPdf(pdf).value_or(QString{}).simplified();
        for (const QString& expected : {u"Итоги"_s, plain, u"中文会议"_s, long_.left(40)})
            QVERIFY2(own.contains(expected), qPrintable(own.left(1500)));
    }

    void handedOutWithoutNames()
    {
        HandoutModel& desk = m->desk();
        const QString rows = m->rowsOf(desk);
        QVERIFY2(rows == u"Итог+ Решения 1+ Задачи 1+ Цитаты со временем 1- Расшифровка 30 мин-",
                 qPrintable(rows));
        desk.setHideNames(true);
        desk.setHideNumbers(true);
        desk.choose(int(HandoutPart::Quotes), true);
        QTRY_VERIFY(desk.isReady() && desk.hidden() == 2);
        QCOMPARE(desk.example(), u"Анна Ковалёва → Участник 1"_s);

        desk.handOut(HandoutModel::Way::Clipboard, nullptr);
        QTRY_VERIFY(!desk.message().isEmpty() && desk.isReady());
        QCOMPARE(desk.message().key, u"desk.copied"_s);
        const QString text = m->desktop.copiedText;
        QVERIFY2(text.contains(u"План для Участник 1\n"_s) &&
                     text.contains(u"ЗАДАЧИ\n• Участник 2 — отдать Участник 1 … рублей, среда"_s) &&
                     text.contains(u"• «Сделаю сама» — Участник 1, 00:01:00"_s),
                 qPrintable(text));

        m->desktop.answer = m->home.filePath(u"вещи/a.pdf"_s);
        QDir{}.mkpath(m->home.filePath(u"вещи"_s));
        desk.handOut(HandoutModel::Way::Pdf, nullptr);
        QTRY_COMPARE(desk.message().key, u"desk.saved"_s);
        QCOMPARE(QFileInfo{m->desktop.questions.last().suggested}.fileName(),
                 u"2026-03-04 План для Участник 1.pdf"_s);
        const QByteArray pdf = files::readWhole(m->desktop.answer, 1'000'000).value_or("");
        QVERIFY(told(u"pdfinfo"_s, pdf).contains(u"План для Участник 1\n"_s));
        QVERIFY(!told(u"pdftotext"_s, pdf, {u"-"_s}).contains(u"Анн"_s));

        desk.handOut(HandoutModel::Way::Mail, nullptr);
        QTRY_COMPARE(m->desktop.letters.size(), 1);
        QCOMPARE(m->desktop.letters[0].subject, u"План для Участник 1"_s);
        QCOMPARE(m->desktop.letters[0].text, text);
        m->desktop.hasMail = false;
        m->desktop.copiedText.clear();
        QTRY_VERIFY(desk.isReady());
        desk.handOut(HandoutModel::Way::Mail, nullptr);
        QTRY_COMPARE(m->desktop.copiedText, text);
        QCOMPARE(desk.message().key, u"desk.no_mail"_s);

        const auto noted = [&] { return m->program.receipts.files().of(id).receipts; };
        QTRY_COMPARE(noted().size(), 4);
        const QList<Receipt> receipts = noted();
        const Receipt file = *std::ranges::find(receipts, u"file"_s, &Receipt::kind);
        QCOMPARE(file.to, u"вещи"_s);
        QCOMPARE(file.bytes, qint64(pdf.size()));
        QVERIFY(file.parts.contains(u"quotes"_s) && file.parts.contains(u"names"_s) &&
                file.parts.contains(u"numbers"_s));
    }

    // names.txt has a name a line and behind it the forms that texts have it in.
    void noFormIsLeftInAnyOutput()
    {
        QFile file{QStringLiteral(MURMELI_TEST_DATA "/names.txt")};
        QVERIFY(file.open(QIODevice::ReadOnly));
        HandoutSource source{.meeting = m->meetingOfNoFile(), .text = {}, .quotes = {}};
        for (const QString& line : QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts)) {
            const QString name = line.section(u'\t', 0, 0).trimmed();
            source.text.people.append(name);
            for (const QString& form : QStringList{name} + line.section(u'\t', 1).split(u" | "_s))
                source.text.passages.append(
                    {.kind = Passage::Kind::Decision, .text = form.trimmed(), .speaker = {}, .stamp = {}});
        }
        source.meeting.title = source.text.people.join(u", "_s);
        const Handout handout = Handout::of(
            source, {.parts = HandoutPart::Decisions, .hideNames = true, .hideNumbers = false}, u"ru"_s);
        QTextDocument html;
        html.setHtml(handoutText::html(handout));
        QTextDocument markdown;
        markdown.setMarkdown(handoutText::markdown(handout));
        const QByteArray pdf = HandoutPages{handout}.pdf();
        for (const QString& output :
             {handoutText::plain(handout), html.toPlainText(), markdown.toPlainText(),
              told(u"pdftotext"_s, pdf, {u"-"_s}),
              told(u"pdfinfo"_s, pdf).section(u'\n', 0, 0).section(u':', 1), handout.fileName(u"pdf"_s)}) {
            QString left = output;
            left.remove(QRegularExpression{u"Участник(\\s+\\d+)?(['’]s?)?"_s})
                .remove(handout.dateLine)
                .remove(QRegularExpression{u"Решения|РЕШЕНИЯ|Murmeli|pdf|[-\\s\\d•,./·]"_s});
            QVERIFY2(left.size() < 10, qPrintable(left.left(300)));
        }
    }

    void theTranscriptIsAskedFor()
    {
        HandoutModel& desk = m->desk();
        desk.setHideNames(true);
        desk.choose(int(HandoutPart::Transcript), true);
        QTRY_VERIFY(desk.isReady() && desk.hidden() == 3);
        desk.handOut(HandoutModel::Way::Clipboard, nullptr);
        QVERIFY(desk.isAsking());
        desk.answer(false, nullptr);
        QVERIFY(!desk.isAsking() && m->desktop.copiedText.isEmpty());
        desk.handOut(HandoutModel::Way::Clipboard, nullptr);
        desk.answer(true, nullptr);
        QTRY_VERIFY(m->desktop.copiedText.contains(u"[00:01:00] Участник 1: Сделаю сама"_s));
        // A long one does not fit a letter.
        QTRY_VERIFY(desk.isReady());
        desk.handOut(HandoutModel::Way::Mail, nullptr);
        desk.answer(true, nullptr);
        QTRY_COMPARE(m->desktop.letters.size(), 1);
        QVERIFY(m->desktop.letters[0].text.isEmpty());
        QVERIFY(files::readWhole(m->desktop.letters[0].file, 1'000'000).value_or("").startsWith("%PDF"));
    }

    void whatCannotBeHandedOut()
    {
        HandoutModel& desk = m->desk();
        // A slip that no form of the name explains.
        m->writeMeeting(u"Решили с Ковалёвгю"_s);
        desk.load(m->meeting());
        desk.setHideNames(true);
        QTRY_VERIFY(desk.isReady() && desk.hidden() > 0);
        desk.handOut(HandoutModel::Way::Clipboard, nullptr);
        QTRY_COMPARE(desk.message(), Message::of("desk.left_over", u"Ковалёвгю"_s));
        QVERIFY(desk.hasFailed() && m->desktop.copiedText.isEmpty());
        desk.setHideNames(false);
        for (const auto& [name, reason] :
             {std::pair{u"нет/a.md"_s, u"папки больше нет"_s}, {u"."_s, u"сюда нельзя записывать"_s}}) {
            m->desktop.answer = m->home.filePath(name);
            QTRY_VERIFY(desk.isReady());
            desk.handOut(HandoutModel::Way::Markdown, nullptr);
            QTRY_COMPARE(desk.message(), Message::of("desk.not_saved", reason));
        }
        for (const HandoutPart part : allHandoutParts())
            desk.choose(int(part), false);
        QTRY_VERIFY(desk.isReady());
        desk.handOut(HandoutModel::Way::Clipboard, nullptr);
        QCOMPARE(desk.message(), Message::of("desk.nothing"));
    }

private:
    struct Fixture : TestProgram {
        Fixture()
        {
            QByteArray talk = "## Транскрипт\n[00:00:00] Пётр: Начнём\n[00:01:00] Анна: Сделаю сама\n";
            for (int i = 0; i < 60; ++i)
                talk += "[00:02:00] Ольга: Слова и ещё слова\n";
            write(paths.vaultDir + u"/a.md"_s, talk);
            write(
                paths.logs + u'/' + id + u".report.json"_s,
                R"({"commitments":[{"who":"Анна","what":"план","quote":"Сделаю сама","at":"[00:01:00]"}]})");
            writeMeeting(u"Решили"_s);
        }
        void writeMeeting(const QString& decision) const
        {
            const QString summary =
                uR"({"title":"План для Анны","tldr":"Коротко.","participants":["Анна Ковалёва"],"decisions":["%1"],
                "action_items":[{"task":"отдать Анне 500 рублей","owner":"Пётр","due":"среда"}],
                "_meta":{"duration_min":30,"protocol_md":"%2"}})"_s.arg(decision,
                                                                        paths.vaultDir + u"/a.md"_s);
            write(paths.logs + u'/' + id + u".protocol.json"_s, summary.toUtf8());
        }
        [[nodiscard]] const Meeting& meeting() { return *main->store()->list()->find(id); }
        [[nodiscard]] static Meeting meetingOfNoFile()
        {
            return {.id = id, .startedAt = {{2026, 3, 4}, {10, 15}}, .jsonPath = u"/nowhere"_s};
        }
        HandoutModel& desk()
        {
            main = std::make_unique<MainModel>(mainGround());
            [this] { QTRY_VERIFY(main->store()->loaded()); }();
            main->open(id);
            main->detail()->openSheet(MeetingDetailModel::Sheet::HandOut);
            HandoutModel& desk = *main->detail()->handout();
            [&] { QTRY_VERIFY(desk.isReady()); }();
            return desk;
        }
        static QString rowsOf(const HandoutModel& desk)
        {
            QStringList rows;
            for (const HandoutRow& row : desk.rows())
                rows.append((row.title + u' ' + row.amount).trimmed() + (row.chosen ? u'+' : u'-'));
            return rows.join(u' ').replace(u'\u00a0', u' ');
        }
        std::unique_ptr<MainModel> main;
    };
    std::unique_ptr<Fixture> m;
};

MURMELI_TEST(HandoutTest)
#include "HandoutTest.moc"
