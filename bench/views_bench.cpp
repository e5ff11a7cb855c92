// What a long list, a long analysis and a long transcript take to be seen, and to become a PDF: views_bench.
// Prints figures and bounds.

#include "handout/HandoutPages.h"
#include "meetings/MeetingStore.h"
#include "meetings/ProtocolFinder.h"
#include "report/QuoteCheck.h"
#include "report/ReportLoader.h"
#include "support/TestProgram.h"
#include "transcript/TranscriptModel.h"
#include "windows/MainModel.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QQmlComponent>
#include <QQuickItem>
#include <QQuickWindow>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

using namespace Qt::StringLiterals;
using namespace murmeli;

namespace {

constexpr int lines = 12'000; // three hours
constexpr int items = 500;
constexpr int transcriptLines = 20'000; // eight hours

void row(const char* what, double figure, const char* unit, double bound)
{
    std::printf("%-52s %10.2f %-4s   bound %g%s\n", what, figure, unit, bound,
                figure > bound ? "   EXCEEDED" : "");
}

QByteArray stamp(int second)
{
    const auto two = [](int number) { return QByteArray::number(number).rightJustified(2, '0'); };
    return '[' + two(second / 3600) + ':' + two(second / 60 % 60) + ':' + two(second % 60) + ']';
}

/// Milliseconds from `begin` until `signal` is sent.
template <typename Sender, typename Signal>
double until(Sender* sender, Signal signal, const std::function<void()>& begin)
{
    QEventLoop loop;
    QObject::connect(sender, signal, &loop, &QEventLoop::quit, Qt::QueuedConnection);
    QElapsedTimer timer;
    timer.start();
    begin();
    loop.exec();
    return double(timer.nsecsElapsed()) / 1e6;
}

double median(int rounds, const std::function<double()>& measure)
{
    std::vector<double> times;
    for (int i = 0; i < rounds; ++i)
        times.push_back(measure());
    std::ranges::sort(times);
    return times[times.size() / 2];
}

/// How many items of the tree below `item` have a property.
int countWith(const QQuickItem* item, const char* property)
{
    int count = item->metaObject()->indexOfProperty(property) >= 0 ? 1 : 0;
    for (const QQuickItem* child : item->childItems())
        count += countWith(child, property);
    return count;
}

/// A view that is made again and again in one window.
class View {
public:
    View(QQmlEngine& engine, QQuickWindow& window, const QString& file, QVariantMap properties)
        : m_window(window),
          m_component(&engine, QUrl{u"qrc:/qt/qml/Murmeli/"_s + file}),
          m_properties(std::move(properties))
    {
        m_properties[u"width"_s] = window.width();
        m_properties[u"height"_s] = window.height();
    }

    /// Milliseconds from nothing to its first picture.
    double opening()
    {
        const auto open = [this] {
            m_pane.reset(m_component.createWithInitialProperties(m_properties));
            if (!m_pane) qFatal("%s", qPrintable(m_component.errorString()));
            item()->setParentItem(m_window.contentItem());
        };
        until(&m_window, &QQuickWindow::frameSwapped, open); // reads fonts and symbols
        return median(9, [&] { return until(&m_window, &QQuickWindow::frameSwapped, open); });
    }
    [[nodiscard]] QQuickItem* item() const { return qobject_cast<QQuickItem*>(m_pane.get()); }

private:
    QQuickWindow& m_window;
    QQmlComponent m_component;
    QVariantMap m_properties;
    std::unique_ptr<QObject> m_pane;
};

void measureList(TestProgram& m, QQmlEngine& engine, QQuickWindow& window)
{
    MainModel model{m.mainGround()};
    MeetingStore& store = *model.store();
    until(&store, &MeetingStore::scanned, [] {});
    const auto opening = [&](int count) {
        QList<ListedMeeting> meetings;
        for (int i = 0; i < count; ++i) {
            Meeting meeting{.id = QString::number(i), .title = u"Встреча %1 про релиз"_s.arg(i)};
            meeting.tldr = u"Договорились о сроках, разобрали риски и решили, кто пишет тексты."_s;
            meeting.startedAt = QDateTime::fromSecsSinceEpoch(1'700'000'000 - i * 7200);
            meetings.append({meeting, meeting.title.toLower()});
        }
        store.list()->setMeetings(meetings, {2026, 1, 1});
        return View{
            engine,
            window,
            u"Search/MeetingsPane.qml"_s,
            {{u"store"_s, QVariant::fromValue(&store)}, {u"search"_s, QVariant::fromValue(model.search())}}}
            .opening();
    };
    const double few = opening(10);
    row("10 meetings, to the first picture", few, "ms", 50);
    row("10 000 meetings, to the first picture", opening(10'000), "ms", 1.25 * few);
}

void measureReport(TestProgram& m, QQmlEngine& engine, QQuickWindow& window)
{
    const Meeting meeting{.id = u"a"_s,
                          .title = u"План"_s,
                          .startedAt = QDateTime{{2026, 3, 4}, {10, 15}},
                          .protocolPath = m.home.filePath(u"a.md"_s),
                          .jsonPath = m.paths.logs + u"/a.protocol.json"_s};
    QByteArray protocol = "## Транскрипт\n\n";
    for (int i = 0; i < lines; ++i)
        protocol += "> " + stamp(i) + " Анна: надо решить, кто пишет тексты и когда мы их увидим.\n";
    m.write(*meeting.protocolPath, protocol);
    QByteArray analysis = R"({"insights":[)";
    for (int i = 0; i < items; ++i) {
        analysis +=
            QByteArray{i > 0 ? "," : ""} + R"({"title":"Срок держится на одном человеке","detail":)" +
            R"("Тексты и проверка сходятся к Анне в один день, запасного исполнителя не назвали.","at":[")" +
            stamp(i * 20) + R"(",")" + stamp(i * 21) + R"("]})";
    }
    m.write(ReportLoader::storedFile(meeting), analysis + "]}");
    m.write(meeting.jsonPath, R"({"title":"План","_meta":{"analytics":{"speakers":[{"name":"Анна"}]}}})");

    ReportLoader loader{{.account = m.account,
                         .http = m.http,
                         .language = m.language,
                         .desktop = m.desktop,
                         .scheduler = m.scheduler,
                         .protocols = std::make_shared<ProtocolFinder>(m.paths.vaultDir),
                         .webOrigin = m.server.origin()}};
    row("loading 12 000 lines and 500 items",
        median(9, [&] { return until(&loader, &ReportLoader::changed, [&] { loader.load(meeting); }); }),
        "ms", 20);

    View view{engine,
              window,
              u"Report/ReportPane.qml"_s,
              {{u"account"_s, QVariant::fromValue(&m.account)},
               {u"loader"_s, QVariant::fromValue(&loader)},
               {u"meetingLine"_s, u"План"_s}}};
    row("opening it, to the first picture", view.opening(), "ms", 50);
    row("rows alive", countWith(view.item(), "edge"), "", 2 * 680 / 78.0);
    int second = 0;
    row("a press on a stamp, to the next picture",
        median(9,
               [&] {
                   return until(&window, &QQuickWindow::frameSwapped,
                                [&] { loader.toggle(QString::fromLatin1(stamp(20 * (second++ % 3)))); });
               }),
        "ms", 16.7);
}

/// Off the main thread, though measured on it.
void measureQuotes()
{
    quint32 random = 1;
    const auto word = [&random] {
        random = random * 1'664'525U + 1'013'904'223U;
        return u"слово%1 "_s.arg(random >> 20U);
    };
    QString text;
    for (int line = 0; line < 1'000; ++line) {
        text += u"[%1:%2:%3] Анна: "_s.arg(line / 900).arg(line / 15 % 60).arg(line % 15 * 4);
        for (int i = 0; i < 20; ++i)
            text += word();
        text += u'\n';
    }
    QList<ReportRow> rows;
    for (int i = 0; i < 60; ++i) {
        Commitment claim;
        claim.at = u"[0:%1:00]"_s.arg(i);
        for (int j = 0; j < 14; ++j)
            claim.quote += word();
        rows.append({.value = claim});
    }
    const Transcript transcript{text};
    const double time = median(3, [&] {
        QElapsedTimer timer;
        timer.start();
        std::ignore = QuoteFindings::of(transcript, rows);
        return double(timer.nsecsElapsed()) / 1e6;
    });
    row("comparing 60 quotations with 20 000 words", time, "ms", 300);
}

void measureTranscript(TestProgram& m, QQmlEngine& engine, QQuickWindow& window)
{
    const Meeting meeting{
        .id = u"b"_s, .title = u"План"_s, .protocolPath = m.home.filePath(u"b.md"_s), .jsonPath = u"/b"_s};
    QByteArray protocol = "## Транскрипт\n\n";
    for (int i = 0; i < transcriptLines; ++i) {
        protocol += "> " + stamp(i) + (i % 3 > 0 ? " Анна: " : " Илья: ") +
                    QByteArray{"надо решить, кто пишет тексты и когда мы их увидим. "}.repeated(1 + i % 4) +
                    '\n';
    }
    m.write(*meeting.protocolPath, protocol);
    MeetingMarks marks{m.paths, meeting.id, m.scheduler};
    TranscriptModel transcript{{.protocols = std::make_shared<ProtocolFinder>(m.paths.vaultDir),
                                .language = m.language,
                                .desktop = m.desktop,
                                .marks = marks}};
    const double loading =
        until(&transcript, &TranscriptModel::loadedChanged, [&] { transcript.load(meeting); });
    View view{engine,
              window,
              u"Transcript/TranscriptPane.qml"_s,
              {{u"transcript"_s, QVariant::fromValue(&transcript)}, {u"meetingLine"_s, u"План"_s}}};
    row("20 000 lines of a transcript, from the file to the first picture", loading + view.opening(), "ms",
        100);
    QQuickItem* list = nullptr;
    for (QQuickItem* item : view.item()->childItems()) {
        if (item->inherits("QQuickListView")) list = item;
    }
    double worst = 0;
    for (int step = 0; step < 300; ++step) {
        worst = std::max(worst, until(&window, &QQuickWindow::frameSwapped, [&] {
                             list->setProperty("contentY", list->property("contentY").toDouble() + 120);
                         }));
    }
    row("scrolling it, the slowest of 300 pictures", worst, "ms", 16.7);
    row("finding a word in all of it",
        until(&transcript, &TranscriptModel::hitsChanged, [&] { transcript.setQuery(u"увидел"_s); }), "ms",
        100);
}

/// Megabytes of memory that the process has had at most, or has now.
double megabytes(const QByteArray& key)
{
    QFile file{u"/proc/self/status"_s};
    if (!file.open(QIODevice::ReadOnly)) return 0;
    const QByteArray all = file.readAll();
    return all.mid(all.indexOf(key) + key.size() + 1, 20).simplified().split(' ')[0].toDouble() / 1024;
}

void measureHandout()
{
    Handout handout{.language = u"ru"_s, .title = u"План"_s, .dateLine = u"4 марта 2026"_s};
    Handout::Section talk{.part = HandoutPart::Transcript, .heading = u"Расшифровка"_s, .items = {}};
    for (int i = 0; i < 1800; ++i) { // three hours, as people talk
        talk.items.append(
            {.text = u"Надо решить, кто пишет тексты и когда мы их увидим: в 12:00 или завтра."_s,
             .speaker = i % 2 ? u"Анна"_s : u"Илья"_s,
             .stamp = QString::fromLatin1(stamp(i * 6))});
    }
    const auto timed = [&] {
        QElapsedTimer timer;
        timer.start();
        const HandoutPages pages{handout};
        std::ignore = textInPdf(pages.pdf());
        return double(timer.nsecsElapsed()) / 1e6;
    };
    row("an empty page as a PDF (the floor)", median(3, timed), "ms", 2000);
    handout.sections = {talk};
    QFile forget{u"/proc/self/clear_refs"_s}; // the most so far
    if (forget.open(QIODevice::WriteOnly)) forget.write("5");
    forget.close();
    const double before = megabytes("VmRSS:");
    row("three hours of transcript as a PDF, read back", median(3, timed), "ms", 2000);
    row("memory for it", megabytes("VmHWM:") - before, "MB", 60);
}

} // namespace

int main(int argc, char* argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    const QApplication app{argc, argv};
    measureHandout(); // while nothing else has left room in the memory
    TestProgram m;
    QQmlEngine engine;
    m.install(engine);
    QQuickWindow window;
    window.resize(750, 680);
    window.show();
    measureList(m, engine, window);
    measureReport(m, engine, window);
    measureTranscript(m, engine, window);
    measureQuotes();
    return 0;
}
