// The index and the search over many long meetings, against the least that they could do: search_bench
// [MEETINGS]. Prints figures, ratios and bounds.

#include "base/Files.h"
#include "language/Words.h"
#include "meetings/MeetingStore.h"
#include "meetings/ProtocolFinder.h"
#include "search/Indexer.h"
#include "search/SearchModel.h"
#include "search/Searcher.h"
#include "support/TestProgram.h"
#include "windows/MainModel.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QRandomGenerator>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <functional>
#include <malloc.h>
#include <vector>

using namespace Qt::StringLiterals;
using namespace murmeli;
using namespace std::chrono_literals;

namespace {

constexpr qsizetype transcriptSize = 60 * 1024; // bytes
constexpr int typings = 7;
constexpr int vocabularySize = 60'000;

void row(const QString& what, double figure, const char* unit, double bound, double ratio = 0)
{
    const QByteArray name = what.toUtf8() + QByteArray(std::max<qsizetype>(0, 58 - what.size()), ' ');
    std::printf("%s %10.2f %-4s", name.constData(), figure, unit);
    if (ratio > 0) std::printf(" %6.2f x", ratio);
    if (bound > 0)
        std::printf("   bound %g%s", bound, (ratio > 0 ? ratio : figure) > bound ? "   EXCEEDED" : "");
    std::printf("\n");
    std::fflush(stdout);
}

double milliseconds(const std::function<void()>& work)
{
    QElapsedTimer timer;
    timer.start();
    work();
    return double(timer.nsecsElapsed()) / 1e6;
}

double median(int rounds, const std::function<void()>& work)
{
    std::vector<double> times;
    for (int i = 0; i < rounds; ++i)
        times.push_back(milliseconds(work));
    std::ranges::sort(times);
    return times[times.size() / 2];
}

double residentMegabytes()
{
    ::malloc_trim(0);
    QFile file{u"/proc/self/statm"_s};
    if (!file.open(QIODevice::ReadOnly)) return 0;
    return double(file.readAll().split(' ').value(1).toLongLong()) * 4096 / (1024 * 1024);
}

/// Words as often as in a language: the n-th one 1/n times as often as the first.
class Talk {
public:
    Talk()
    {
        const QStringList beginnings = u"под на про раз от за вы пере до об с в по из"_s.split(u' ');
        const QStringList middles =
            u"реш говор дел став вод нос пис чит смотр работ план срок тест сбор груз мер"_s.split(u' ');
        const QStringList more = u"ан ов ер ик ост ен ат ок ур им"_s.split(u' ');
        const QStringList endings =
            u"ать али ение ения ку ой ый ого ому ами ах ы а у е ит ют ил"_s.split(u' ');
        const auto any = [this](const QStringList& list) { return list[m_random.bounded(int(list.size()))]; };
        for (int i = 0; i < vocabularySize; ++i) {
            QString word = any(beginnings) + any(middles);
            for (int part = m_random.bounded(3); part > 0; --part)
                word += any(more);
            m_words.append((word + any(endings)).toUtf8());
            m_weights.push_back((m_weights.empty() ? 0 : m_weights.back()) + 1.0 / (i + 1));
        }
    }
    QByteArray word()
    {
        const double at = m_random.generateDouble() * m_weights.back();
        return m_words[std::ranges::lower_bound(m_weights, at) - m_weights.begin()];
    }
    /// The n-th most frequent.
    [[nodiscard]] QString nth(int n) const { return QString::fromUtf8(m_words[n]); }
    QByteArray sentence()
    {
        QByteArray text = word();
        for (int count = 5 + m_random.bounded(12); count > 0; --count)
            text += ' ' + word();
        return text + '.';
    }

private:
    QRandomGenerator m_random{1};
    QByteArrayList m_words;
    std::vector<double> m_weights;
};

QByteArray two(int number) { return QByteArray::number(number).rightJustified(2, '0'); }

qint64 writeMeeting(TestProgram& m, Talk& talk, int number)
{
    const QString stem = QString::number(number).rightJustified(6, u'0');
    const QString protocol = m.paths.vaultDir + u'/' + stem + u".md"_s;
    QByteArray text = "# Протокол\n\n## Транскрипт\n";
    for (int second = 0; text.size() < transcriptSize; second += 9)
        text += '[' + two(second / 3600) + ':' + two(second / 60 % 60) + ':' + two(second % 60) + "] " +
                (second % 2 ? "Анна" : "Илья") + ": " + talk.sentence() + '\n';
    m.write(protocol, text);
    const QDateTime start = QDateTime::fromSecsSinceEpoch(1'700'000'000 - qint64(number) * 3600, Qt::UTC);
    m.write(m.paths.logs + u'/' + stem + u".protocol.json"_s,
            "{\"title\":\"" + talk.word() + ' ' + talk.word() + ' ' + talk.word() + ' ' + talk.word() +
                "\",\"tldr\":\"" + talk.sentence() + "\",\"decisions\":[\"" + talk.sentence() +
                "\"],\"_meta\":{\"started_at\":\"" + start.toString(Qt::ISODate).toUtf8() +
                "\",\"protocol_md\":\"" + protocol.toUtf8() + "\"}}");
    return text.size();
}

QList<ListedMeeting> scanned(const TestProgram& m) { return MeetingScanner{m.paths.logs}.scan().meetings; }

/// The same work with nothing around it: read, split, stem, insert.
double plainBuild(const QList<ListedMeeting>& meetings, const QString& path)
{
    return milliseconds([&] {
        words::Keys keys;
        IndexFile index{path, IndexFile::Mode::Write};
        QList<IndexDocument> documents;
        for (const auto& [meeting, titled] : meetings) {
            IndexDocument document{.stem = meeting.id, .start = meeting.startedAt.toSecsSinceEpoch()};
            for (const QString& file : {meeting.jsonPath, *meeting.protocolPath}) {
                const QString text =
                    QString::fromUtf8(files::readWhole(file, transcriptSize * 2).value_or(QByteArray{}));
                for (const words::Span& word : words::split(text))
                    document.said.append(keys.of(word.in(text))).append(' ');
            }
            documents.append(document);
            if (documents.size() < 50) continue;
            if (!index.put(documents)) qFatal("The index cannot be written");
            documents.clear();
        }
    });
}

double plainSearch(const QList<ListedMeeting>& meetings, const QByteArray& word)
{
    return milliseconds([&] {
        int found = 0;
        for (const auto& [meeting, titled] : meetings) {
            const QByteArray text =
                files::readWhole(*meeting.protocolPath, transcriptSize * 2).value_or(QByteArray{});
            if (::memmem(text.constData(), size_t(text.size()), word.constData(), size_t(word.size())))
                ++found;
        }
        if (found == 0) qFatal("Nothing was found");
    });
}

void measureBuild(TestProgram& m, const QList<ListedMeeting>& meetings, qint64 textSize)
{
    const auto protocols = std::make_shared<ProtocolFinder>(m.paths.vaultDir);
    Indexer indexer{m.paths, {m.paths, protocols}};
    const double before = residentMegabytes();
    double peak = 0, hundred = 0;
    QElapsedTimer timer;
    timer.start();
    const auto outcome =
        indexer.bringUp(meetings, {.all = true, .touched = {}}, [&](qsizetype done, qsizetype) {
            if (hundred == 0 && done >= 100) hundred = double(timer.elapsed());
            if (done % 1000 == 0) peak = std::max(peak, residentMegabytes());
            return true;
        });
    const double whole = double(timer.elapsed());
    if (outcome != Indexer::Outcome::Done && outcome != Indexer::Outcome::Restless)
        qFatal("The index was not built");
    const QList<ListedMeeting> some = meetings.first(std::min<qsizetype>(3000, meetings.size()));
    const double plain = plainBuild(some, m.home.filePath(u"plain.db"_s));
    const double ours = milliseconds([&] {
        Indexer other{Paths{m.home.path(), {m.paths.ownData, m.home.filePath(u"other"_s), m.paths.ownConfig}},
                      {m.paths, protocols}};
        other.bringUp(some, {.all = true, .touched = {}}, [](auto, auto) { return true; });
    });
    row(u"first build of %1 meetings"_s.arg(meetings.size()), whole / 1000, "s", 0);
    row(u"the same of %1, against read, split, stem, insert alone"_s.arg(some.size()), ours / 1000, "s", 1.25,
        ours / plain);
    row(u"until the first 100 are found"_s, hundred, "ms", 3000);
    row(u"memory while building"_s, peak - before, "MB", 24);
    row(u"on the disk, of the text"_s, 100.0 * double(QFileInfo{indexer.path()}.size()) / double(textSize),
        "%", 30);
    // Files that were just written count as being written for a moment.
    while (indexer.bringUp(meetings, {}, [](auto, auto) { return true; }) == Indexer::Outcome::Restless) {
    }
    row(u"comparing the files of all with it"_s,
        median(3,
               [&] {
                   indexer.bringUp(meetings, {.all = true, .touched = {}}, [](auto, auto) { return true; });
               }),
        "ms", 0);
    Talk talk;
    writeMeeting(m, talk, int(meetings.size()));
    const QList<ListedMeeting> more = scanned(m);
    row(u"work for one new meeting"_s, milliseconds([&] {
            indexer.bringUp(more, {.all = false, .touched = {more.last().meeting.id}},
                            [](auto, auto) { return true; });
        }),
        "ms", 50);
}

void measureQueries(const TestProgram& m, const QList<ListedMeeting>& meetings, const Talk& talk)
{
    const std::vector<std::pair<QString, QString>> queries{
        {u"a word in every meeting"_s, talk.nth(3) + u' '},
        {u"a word in many"_s, talk.nth(300) + u' '},
        {u"a rare word"_s, talk.nth(40'000) + u' '},
        {u"two letters"_s, u"по"_s},
        {u"two words"_s, talk.nth(5) + u' ' + talk.nth(700) + u' '},
        {u"four words, one excluded"_s,
         talk.nth(5) + u' ' + talk.nth(7) + u' ' + talk.nth(60) + u" -"_s + talk.nth(1000)},
    };
    Searcher searcher{m.paths.ownCache + u"/index-1.db"_s};
    words::Keys keys;
    const double before = residentMegabytes();
    for (const auto& [name, typed] : queries) {
        const SearchQuestion newest{.typed = typed, .today = {2026, 3, 4}, .most = 50};
        SearchQuestion best = newest;
        best.order = IndexQuery::Order::Best;
        IndexFile index{m.paths.ownCache + u"/index-1.db"_s, IndexFile::Mode::Read};
        const SearchQuery query{typed, {}, newest.today, {}, keys};
        const auto question = [&](IndexQuery::Order order) {
            return query.question(
                order, 50, [&](const QByteArray& beginning) { return index.beginnings(beginning, order); });
        };
        const auto ask = [&](IndexQuery::Order order) {
            return median(7, [&] { std::ignore = index.find(question(order)); });
        };
        row(name + u": newest 50"_s, ask(IndexQuery::Order::Newest), "ms", 15);
        row(name + u": their number"_s, median(7, [&] { std::ignore = index.count(question(newest.order)); }),
            "ms", 40);
        row(name + u": best 50"_s, ask(IndexQuery::Order::Best), "ms", 60);
        std::ignore = searcher.ask(newest);
    }
    row(u"memory while searching"_s, residentMegabytes() - before, "MB", 6);
    const QList<ListedMeeting> some = meetings.first(std::min<qsizetype>(1000, meetings.size()));
    row(u"reading %1 transcripts for one word with memmem"_s.arg(some.size()),
        plainSearch(some, talk.nth(300).toUtf8()), "ms", 0);
    const MeetingFiles files{m.paths, std::make_shared<ProtocolFinder>(m.paths.vaultDir)};
    const SearchQuery query{talk.nth(5) + u' ' + talk.nth(300), {}, {2026, 3, 4}, {}, keys};
    row(u"places in 12 meetings, after other ones"_s,
        median(3,
               [&] {
                   for (const auto& [meeting, titled] : meetings.first(12))
                       FoundPlace::in(files.read(meeting, u"ru"_s), query, keys);
               }),
        "ms", 80);
}

/// How long the event loop stands still while somebody types, and what a key costs by itself.
void measureTyping(TestProgram& m, const Talk& talk)
{
    MainModel model{m.mainGround()};
    const auto turn = [] { QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents); };
    QTimer ticking;
    ticking.start(1);
    while (!model.store()->loaded() || m.program.index.state() != SearchIndex::State::Ready)
        turn();
    const QString text = talk.nth(5) + u' ' + talk.nth(300);
    std::vector<double> keys, turns, answers;
    for (int round = 0; round < typings; ++round) {
        double slowestKey = 0, longestTurn = 0, latest = 0;
        for (qsizetype letters = 1; letters <= text.size(); ++letters) {
            slowestKey =
                std::max(slowestKey, milliseconds([&] { model.search()->setQuery(text.first(letters)); }));
            QElapsedTimer since, last;
            since.start();
            last.start();
            while (!model.search()->isSettled()) {
                turn();
                longestTurn = std::max(longestTurn, double(last.nsecsElapsed()) / 1e6 - 1);
                last.start();
            }
            latest = std::max(latest, double(since.nsecsElapsed()) / 1e6);
        }
        model.search()->setQuery({});
        keys.push_back(slowestKey);
        turns.push_back(longestTurn);
        answers.push_back(latest);
    }
    const auto middle = [](std::vector<double> figures) {
        std::ranges::sort(figures);
        return figures[figures.size() / 2];
    };
    row(u"the slowest key of a query, on the main thread"_s, middle(keys), "ms", 4);
    row(u"the longest turn of the event loop until the answer"_s, middle(turns), "ms", 4);
    row(u"from a key to the answer"_s, middle(answers), "ms", 80);
}

} // namespace

int main(int argc, char* argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication app{argc, argv};
    const int count = argc > 1 ? std::atoi(argv[1]) : 10'000;
    TestProgram m;
    QDir{}.mkpath(m.paths.vaultDir);
    Talk talk;
    qint64 textSize = 0;
    for (int i = 0; i < count; ++i)
        textSize += writeMeeting(m, talk, i);
    const QList<ListedMeeting> meetings = scanned(m);
    measureBuild(m, meetings, textSize);
    measureQueries(m, meetings, talk);
    measureTyping(m, talk);
}
