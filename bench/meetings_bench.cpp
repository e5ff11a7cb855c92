// The meetings library against the least that it could do: meetings_bench. Prints figures, ratios and bounds.

#include "base/Files.h"
#include "localisation/Language.h"
#include "meetings/MeetingListModel.h"
#include "meetings/MeetingScanner.h"
#include "meetings/SummaryFile.h"
#include "service/Prefs.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QThread>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <malloc.h>
#include <memory>
#include <simdjson.h>
#include <vector>

using namespace Qt::StringLiterals;
using namespace murmeli;

namespace {

constexpr int files10k = 10'000;
constexpr qsizetype fileSize = 6 * 1024;

/// Milliseconds, the median of several runs.
double median(int rounds, const std::function<void()>& work)
{
    std::vector<double> times;
    for (int i = 0; i < rounds; ++i) {
        QElapsedTimer timer;
        timer.start();
        work();
        times.push_back(double(timer.nsecsElapsed()) / 1e6);
    }
    std::ranges::sort(times);
    return times[times.size() / 2];
}

QByteArray summary(int number)
{
    QByteArray json =
        "{\"title\":\"Встреча номер " + QByteArray::number(number) +
        " про релиз и планы команды\",\"tldr\":\"Договорились о сроках, разобрали риски и решили, кто "
        "пишет тексты; вернёмся к бюджету на следующей неделе.\",\"_meta\":{\"started_at\":\"2025-" +
        QByteArray::number(1 + number % 12).rightJustified(2, '0') + "-" +
        QByteArray::number(1 + number % 28).rightJustified(2, '0') +
        "T10:15:30Z\",\"duration_min\":47.5},\"decisions\":[";
    for (int item = 0; json.size() < fileSize - 200; ++item)
        json += QByteArray{item > 0 ? "," : ""} + "\"Решение " + QByteArray::number(item) +
                ": выпускаем в пятницу, без поэтапной раскатки.\"";
    return json + "]}";
}

void row(const char* what, double figure, const char* unit, double ratio, double bound)
{
    std::printf("%-52s %10.2f %-4s", what, figure, unit);
    if (ratio > 0) std::printf(" %8.2f x", ratio);
    std::printf("   bound %g%s\n", bound, (ratio > 0 ? ratio : figure) > bound ? "   EXCEEDED" : "");
}

std::vector<QByteArray> summaryNames(const QByteArray& folder)
{
    std::vector<QByteArray> names;
    for (const QByteArray& name : files::namesIn(folder).value_or(QList<QByteArray>{})) {
        if (name.endsWith(summaryFile::suffix.data())) names.push_back(name);
    }
    return names;
}

double heapMegabytes() { return double(::mallinfo2().uordblks) / (1024 * 1024); }

QList<ListedMeeting> invented(int count)
{
    QList<ListedMeeting> meetings;
    meetings.reserve(count);
    for (int i = 0; i < count; ++i) {
        const QString stem = QString::number(i);
        Meeting known{.id = stem, .title = u"Встреча номер %1 про релиз и планы команды"_s.arg(i)};
        known.tldr =
            u"Договорились о сроках, разобрали риски и решили, кто пишет тексты; вернёмся к бюджету."_s;
        known.startedAt = QDateTime::fromSecsSinceEpoch(1'700'000'000 - i * 3600);
        meetings.append({known, (known.title + u'\n' + known.tldr).toLower()});
    }
    return meetings;
}

void measureScans()
{
    const QTemporaryDir home;
    const QByteArray folder = QFile::encodeName(home.path());
    for (int i = 0; i < files10k; ++i) {
        QFile file{home.filePath(u"2025-01-01 %1.protocol.json"_s.arg(i))};
        if (!file.open(QIODevice::WriteOnly) || file.write(summary(i)) < 0)
            qFatal("The bench's home cannot be written");
    }
    const double reading = median(5, [&] {
        simdjson::dom::parser parser;
        size_t members = 0;
        for (const QByteArray& name : summaryNames(folder)) {
            const auto bytes =
                files::readWhole(QFile::decodeName(folder + '/' + name), summaryFile::sizeLimit);
            simdjson::dom::object object;
            if (parser.parse(bytes->constData(), size_t(bytes->size())).get(object) == simdjson::SUCCESS)
                members += object.size();
        }
        if (members == 0) qFatal("Nothing was read");
    });
    const double stating = median(9, [&] {
        qint64 bytes = 0;
        for (const QByteArray& name : summaryNames(folder))
            bytes += files::identity(folder + '/' + name).size;
        if (bytes == 0) qFatal("Nothing was found");
    });
    std::vector<std::unique_ptr<MeetingScanner>> scanners; // kept, as the program keeps its own
    const double first = median(5, [&] {
        scanners.push_back(std::make_unique<MeetingScanner>(home.path()));
        scanners.back()->scan();
    });
    MeetingScanner scanner{home.path()};
    const double before = heapMegabytes();
    scanner.scan();
    const double grown = heapMegabytes() - before;
    QThread::msleep(100); // so that the files count as settled
    scanner.scan();
    const double unchanged = median(9, [&] { scanner.scan(); });
    int round = 0;
    const double oneChanged = median(5, [&] {
        if (!files::writeAtomic(home.filePath(u"2025-01-01 7.protocol.json"_s), summary(++round)))
            qFatal("The bench's home cannot be written");
        scanner.scan();
    });
    row("read and parse 10 000 files of 6 KB", reading, "ms", 0, 1e9);
    row("first scan of them", first, "ms", first / reading, 1.5);
    row("list and stat them", stating, "ms", 0, 1e9);
    row("rescan, nothing changed", unchanged, "ms", unchanged / stating, 2);
    row("rescan, one changed", oneChanged, "ms", oneChanged / stating, 3);
    const double text =
        10'000 * 2 * (45 + 110) * 2 / (1024.0 * 1024); // title and summary, as read and lower-cased
    row("memory per meeting beyond its text", (grown - text) * 1024 / files10k, "KB", 0, 1.5);
}

void measureSearch()
{
    const Prefs prefs{{}};
    const Language language{prefs, [] { return QStringList{}; }};
    for (const auto& [count, bound] : {std::pair{10'000, 4.0}, std::pair{100'000, 40.0}}) {
        MeetingListModel model{language};
        model.setMeetings(invented(count), {2026, 1, 1});
        bool odd = false;
        const double key = median(15, [&] {
            model.setQuery((odd = !odd) ? u"р"_s : u"бюджет на"_s);
            model.setQuery({});
        });
        row(count == 10'000 ? "a key in the search over 10 000" : "a key in the search over 100 000", key / 2,
            "ms", 0, bound);
    }
}

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication app{argc, argv};
    measureScans();
    measureSearch();
    return 0;
}
