// The analysis of a long meeting: report_bench. Prints figures and bounds.

#include "meetings/ProtocolFinder.h"
#include "report/ReportLoader.h"
#include "support/Program.h"

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

} // namespace

int main(int argc, char* argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    const QApplication app{argc, argv};
    Program m;
    QQmlEngine engine;
    m.install(engine);

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
                         .scheduler = m.scheduler,
                         .protocols = std::make_shared<ProtocolFinder>(m.paths.vaultDir),
                         .webOrigin = m.server.origin()}};
    row("loading 12 000 lines and 500 items",
        median(9, [&] { return until(&loader, &ReportLoader::changed, [&] { loader.load(meeting); }); }),
        "ms", 20);

    QQuickWindow window;
    window.resize(750, 680);
    window.show();
    QQmlComponent component{&engine, QUrl{u"qrc:/qt/qml/Murmeli/Report/ReportPane.qml"_s}};
    std::unique_ptr<QObject> pane;
    const auto open = [&] {
        pane.reset(component.createWithInitialProperties({{u"loader"_s, QVariant::fromValue(&loader)},
                                                          {u"meetingLine"_s, u"План"_s},
                                                          {u"width"_s, 750},
                                                          {u"height"_s, 680}}));
        if (!pane) qFatal("%s", qPrintable(component.errorString()));
        qobject_cast<QQuickItem*>(pane.get())->setParentItem(window.contentItem());
    };
    until(&window, &QQuickWindow::frameSwapped, open); // reads fonts and symbols
    row("opening it, to the first picture",
        median(9, [&] { return until(&window, &QQuickWindow::frameSwapped, open); }), "ms", 50);
    auto* item = qobject_cast<QQuickItem*>(pane.get());
    row("rows alive", countWith(item, "edge"), "", 2 * 680 / 78.0);
    int second = 0;
    row("a press on a stamp, to the next picture",
        median(9,
               [&] {
                   return until(&window, &QQuickWindow::frameSwapped, [&] {
                       item->setProperty("openStamp", QString::fromLatin1(stamp(20 * (second++ % 3))));
                   });
               }),
        "ms", 16.7);
    return 0;
}
