#include "Commands.h"
#include "base/Files.h"
#include "base/Scheduler.h"
#include "glossary/GlossaryText.h"
#include "localisation/Language.h"
#include "meetings/MeetingScanner.h"
#include "meetings/SummaryFile.h"
#include "platform/Desktop.h"
#include "search/Indexer.h"
#include "search/Searcher.h"
#include "service/Prefs.h"

#include <QFile>
#include <QJsonArray>
#include <QSet>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace murmeli::commands {

namespace {

constexpr int fewMeetings = 10;
constexpr int fewPlaces = 3;
constexpr qint64 clockTick = 2'000'000'000; // nanoseconds that a file system's clock may be behind

/// Brings the index up to the meetings' files: to all of them, or to the touched and those that it lacks.
int bringUp(const Context& context, const Library& library, const Indexer::Scope& scope, bool rebuild)
{
    MeetingScanner scanner{context.paths.logs};
    Indexer indexer{context.paths, library.files()};
    if (rebuild) indexer.discard();
    const auto outcome = indexer.bringUp(scanner.scan().meetings, scope, [&](qsizetype done, qsizetype all) {
        if (all > 1)
            context.terminal.progress(context.text("command.indexing", u"%1/%2"_s.arg(done).arg(all)));
        return true;
    });
    context.terminal.progress({});
    switch (outcome) {
    case Indexer::Outcome::Done:
    case Indexer::Outcome::Restless:
        return Done;
    case Indexer::Outcome::Elsewhere:
        context.terminal.message(context.text("command.index_elsewhere"));
        return Done;
    case Indexer::Outcome::NoSpace:
        return context.fail(Unavailable, "command.index_no_space");
    case Indexer::Outcome::Stopped:
    case Indexer::Outcome::Failed:
        break;
    }
    return context.fail(Unavailable, "command.index_failed", indexer.path());
}

/// The meetings whose summary the index does not know as it is: cheap, since the whole of a large library
/// is looked at by the program that runs, or by "index". Nothing when there is no index.
std::optional<QSet<QString>> unknown(const QString& index, const QString& logs, Library& library)
{
    const files::Identity written = files::identity(index);
    const files::Identity log = files::identity(index + u"-wal"_s);
    if (written.size < 0) return std::nullopt;
    IndexFile file{index, IndexFile::Mode::Read};
    if (!file.isOpen()) return std::nullopt;
    const QHash<QString, QByteArray> known = file.known();
    QSet<QString> stems;
    const qint64 last = std::max(written.modifiedNs, log.size >= 0 ? log.modifiedNs : 0) - clockTick;
    for (const QString& stem : library.stems()) {
        const bool later = files::identity(logs + u'/' + stem + summaryFile::suffix).changedNs > last;
        // Some files are no meetings, and never come in.
        if (known.contains(stem) ? later : library.read(stem).has_value()) stems.insert(stem);
    }
    for (auto it = known.keyBegin(); it != known.keyEnd(); ++it) {
        if (!std::ranges::binary_search(library.stems(), *it, std::greater{})) stems.insert(*it);
    }
    return stems;
}

QJsonObject toJson(const FoundPlace& place)
{
    QJsonArray hits;
    for (const words::Span& hit : place.hits)
        hits.append(QJsonArray{hit.begin, hit.size});
    QJsonObject object{{u"text"_s, place.text}, {u"hits"_s, hits}};
    if (!place.stamp().isEmpty()) object[u"stamp"_s] = place.stamp();
    if (!place.speaker().isEmpty()) object[u"speaker"_s] = place.speaker();
    if (!place.kindKey().isEmpty()) object[u"kind"_s] = place.kindKey().section(u'.', -1);
    return object;
}

} // namespace

int index(const Context& context)
{
    const Library library{context.paths};
    return bringUp(context, library, {.all = true, .touched = {}}, context.line.has("--rebuild"));
}

int search(const Context& context)
{
    const auto most = context.number("--limit", fewMeetings);
    const auto places = context.number("--places", fewPlaces);
    if (!most || !places) return Misused;
    Library library{context.paths};
    const QString path = Indexer{context.paths, library.files()}.path();
    if (!context.line.has("--no-update")) {
        const auto stems = unknown(path, context.paths.logs, library);
        if (!stems || !stems->isEmpty()) {
            const int exit =
                bringUp(context, library, {.all = !stems, .touched = stems.value_or(QSet<QString>{})}, false);
            if (exit != Done && !stems) return exit;
        }
    }
    SearchQuestion question{.typed = context.line.text() + u' ', // the last word is whole
                            .filters = {},
                            .pairs = {},
                            .today = context.scheduler.moment().date(),
                            .order = context.line.has("--best") ? IndexQuery::Order::Best
                                                                : IndexQuery::Order::Newest,
                            .most = *most};
    const QString glossary = Prefs{context.paths.prefsFile}.get(pref::glossary);
    for (const GlossaryEntry& entry : glossaryText::parseAll(glossary)) {
        if (entry.isRule()) question.pairs.append({entry.heard, entry.correct});
    }
    Searcher searcher{path};
    const SearchAnswer answer = searcher.ask(question);
    if (!answer.indexed) return context.fail(Unavailable, "command.no_index");
    if (!answer.layout.isEmpty()) context.terminal.message(context.text("search.layout", answer.layout));

    QJsonArray results;
    int shown = 0;
    for (const QString& stem : answer.ids) {
        if (shown >= *most) break;
        const auto meeting = library.read(stem);
        if (!meeting) continue;
        const bool reads = answer.candidates || *places > 0;
        const MeetingText text = reads ? library.files().read(*meeting, context.language) : MeetingText{};
        if (answer.candidates && !answer.query.isMetBy(text, searcher.keys())) continue;
        ++shown;
        const QList<FoundPlace> found =
            reads ? FoundPlace::in(text, answer.query, searcher.keys()) : QList<FoundPlace>{};
        const auto few = found.first(std::min<qsizetype>(*places, found.size()));
        if (context.json()) {
            QJsonObject object = toJson(*meeting);
            QJsonArray list;
            for (const FoundPlace& place : few)
                list.append(toJson(place));
            object[u"places"_s] = list;
            object[u"place_count"_s] = found.size();
            results.append(object);
            continue;
        }
        context.terminal.row(context.terminal.faint(meeting->startedAt.toString(u"yyyy-MM-dd HH:mm"_s)) +
                             u"  "_s + meeting->title + u"  "_s + context.terminal.faint(u'(' + stem + u')'));
        for (const FoundPlace& place : few) {
            QStringList head{place.stamp(), place.speaker()};
            if (!place.kindKey().isEmpty()) head.append(context.text(place.kindKey().toLatin1().constData()));
            head.removeAll({});
            const QString who = head.join(u' ');
            context.terminal.row(
                u"    "_s + (who.isEmpty() ? QString{} : context.terminal.faint(who + u": "_s)) + place.text);
        }
    }
    if (context.json()) {
        QJsonObject object{{u"v"_s, 1}, {u"query"_s, context.line.text()}, {u"results"_s, results}};
        if (!answer.candidates) object[u"meetings"_s] = answer.meetings; // else nobody has counted them
        context.terminal.json(object);
    }
    return shown > 0 ? Done : Nothing;
}

} // namespace murmeli::commands
