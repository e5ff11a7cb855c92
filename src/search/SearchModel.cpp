#include "SearchModel.h"

#include "base/Background.h"
#include "base/Dates.h"
#include "base/Scheduler.h"
#include "glossary/GlossaryStore.h"
#include "localisation/Language.h"
#include "meetings/MeetingStore.h"
#include "transcript/Transcript.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace murmeli {

namespace {

constexpr int page = 200;           // meetings that are shown at first, and more each time
constexpr int candidatePage = 2000; // the same for those whose files have to be looked at
constexpr qsizetype chunk = 20;     // candidates at a time
constexpr int looked = 24;          // meetings whose places are looked for: those on screen and as many more
constexpr int mostSpeakers = 30;
constexpr auto sleepTime = 60s;  // after the last query the index is closed
constexpr int idleThread = 1000; // milliseconds for which threads wait for more

} // namespace

SearchModel::SearchModel(const Ground& ground, QObject* parent)
    : QObject(parent), m_ground(ground), m_most(page), m_candidates(candidatePage)
{
    for (QThreadPool* pool : {&m_asking, &m_reading}) {
        pool->setMaxThreadCount(1);
        pool->setExpiryTimeout(idleThread);
    }
    connect(&ground.index, &SearchIndex::changed, this, [this] {
        if (isSearching()) ask();
        tell();
    });
    connect(&ground.glossary, &GlossaryStore::entriesChanged, this, [this] {
        if (isSearching()) begin();
    });
    connect(ground.store.list(), &MeetingListModel::countChanged, this, [this] {
        if (isSearching()) lookAgain();
    });
}

SearchModel::~SearchModel() { *m_current = 0; }

bool SearchModel::isSearching() const
{
    return !m_query.trimmed().isEmpty() || !m_speaker.isEmpty() || m_period != Ever || m_where != Everywhere;
}

void SearchModel::setQuery(const QString& query)
{
    if (std::exchange(m_query, query) == query) return;
    m_asTyped = false;
    m_ground.store.list()->setQuery(query);
    begin();
}

void SearchModel::setSpeaker(const QString& speaker)
{
    if (std::exchange(m_speaker, speaker) != speaker) begin();
}

void SearchModel::setPeriod(Period period)
{
    if (std::exchange(m_period, period) != period) begin();
}

void SearchModel::setWhere(Where where)
{
    if (std::exchange(m_where, where) != where) begin();
}

void SearchModel::setBest(bool best)
{
    if (std::exchange(m_best, best) != best) begin();
}

void SearchModel::searchAsTyped()
{
    m_asTyped = true;
    begin();
}

void SearchModel::takeWayOut(const SearchWayOut& way)
{
    if (!way.query.isEmpty()) return setQuery(way.query);
    if (way.key == "search.any_time"_L1) return setPeriod(Ever);
    if (way.key == "search.anyone"_L1) return setSpeaker({});
    setWhere(Everywhere);
}

SearchQuestion SearchModel::question() const
{
    SearchQuestion question{.typed = m_query,
                            .today = m_ground.scheduler.moment().date(),
                            .order = m_best ? IndexQuery::Order::Best : IndexQuery::Order::Newest,
                            .most = m_most,
                            .candidates = m_candidates,
                            .otherLayout = !m_asTyped && !m_ground.store.list()->findsTitles()};
    question.filters.speaker = m_speaker;
    switch (m_period) {
    case Ever:
        break;
    case Week:
        question.filters.since = question.today.addDays(-7);
        break;
    case Month:
        question.filters.since = question.today.addMonths(-1);
        break;
    case Year:
        question.filters.since = question.today.addYears(-1);
        break;
    }
    if (m_where != Everywhere) question.filters.place = SearchPlace(m_where - InTitle);
    for (const GlossaryEntry& entry : m_ground.glossary.entries()) {
        if (entry.isRule()) question.pairs.append({entry.heard, entry.correct});
    }
    return question;
}

void SearchModel::begin()
{
    m_most = page;
    m_candidates = candidatePage;
    m_waysOut.clear();
    m_firstRow = 0;
    *m_current = ++m_search;
    if (isSearching()) {
        m_settled = false;
        ask();
    } else {
        m_answering.end();
        m_answer = {};
        m_confirmed.clear();
        m_places.clear();
        m_settled = true;
        m_ground.store.list()->setFound(std::nullopt);
        sleepLater();
    }
    emit queryChanged();
    tell();
}

// What is shown of places, counts and the index.
void SearchModel::tell()
{
    ++m_revision;
    emit changed();
    emit placesChanged();
}

void SearchModel::ask()
{
    if (!m_searcher) m_searcher = std::make_shared<Searcher>(m_ground.index.path());
    const auto look = [searcher = m_searcher, question = question(), current = m_current,
                       search = m_search]() -> SearchAnswer {
        return *current == search ? searcher->ask(question) : SearchAnswer{}; // nobody waits for it any more
    };
    whenFinished(startOn(m_asking, look), m_answering.renew(),
                 [this](const SearchAnswer& answer) { take(answer); });
    sleepLater();
}

void SearchModel::take(const SearchAnswer& answer)
{
    m_answer = answer;
    m_answered = m_search;
    m_confirmed.clear();
    m_read = 0;
    if (!m_answer.indexed) m_ground.index.mend();
    if (m_answer.candidates) {
        confirm();
    } else {
        m_settled = true;
        publish();
    }
}

void SearchModel::confirm()
{
    if (m_read >= m_answer.ids.size() || m_confirmed.size() >= m_most) {
        m_settled = true;
        publish();
        return;
    }
    if (!m_readers) m_readers = std::make_shared<Readers>(m_ground.index.files());
    QList<Meeting> meetings;
    for (const QString& id : m_answer.ids.sliced(m_read, std::min(chunk, m_answer.ids.size() - m_read))) {
        ++m_read;
        if (const Meeting* meeting = m_ground.store.list()->find(id)) meetings.append(*meeting);
    }
    const auto read = [readers = m_readers, query = m_answer.query, meetings, current = m_current,
                       search = m_search] {
        QStringList met;
        for (const Meeting& meeting : meetings) {
            if (*current != search) break;
            if (query.isMetBy(readers->files.read(meeting, Language::fallback), readers->keys))
                met.append(meeting.id);
        }
        return met;
    };
    whenFinished(startOn(m_reading, read), m_answering.renew(), [this](const QStringList& met) {
        m_confirmed.append(met);
        if (!met.isEmpty()) publish();
        confirm();
    });
}

void SearchModel::publish()
{
    MeetingListModel& list = *m_ground.store.list();
    if (m_answer.indexed) {
        const bool alone = m_answer.query.isFiltered() || m_answer.candidates;
        list.setFound(MeetingListModel::Found{
            .ids = m_answer.candidates ? m_confirmed : m_answer.ids, .inOrder = m_best, .alone = alone});
    } else {
        list.setFound(std::nullopt);
    }
    if (m_settled && list.count() == 0 && m_answer.indexed) findWaysOut();
    lookAgain();
    tell();
}

void SearchModel::findWaysOut()
{
    if (!m_readers) m_readers = std::make_shared<Readers>(m_ground.index.files());
    QHash<QString, Meeting> meetings;
    for (const ListedMeeting& one : m_ground.store.list()->all())
        meetings.insert(one.meeting.id, one.meeting);
    // On the reading thread and with an index of its own, since it reads a file too.
    const auto look = [readers = m_readers, path = m_ground.index.path(), question = question(), meetings] {
        Searcher searcher{path};
        return searcher.waysOut(question, [&](const QString& id) {
            return meetings.contains(id) ? readers->files.read(meetings[id], Language::fallback)
                                         : MeetingText{};
        });
    };
    whenFinished(startOn(m_reading, look), m_answering.renew(), [this](const QList<SearchWayOut>& ways) {
        m_waysOut = ways;
        emit changed();
    });
}

void SearchModel::lookFrom(int row)
{
    m_firstRow = std::max(0, row);
    lookAgain();
}

void SearchModel::lookAgain()
{
    if (!isSearching() || m_answered != m_search || !m_answer.indexed) return;
    const MeetingListModel& list = *m_ground.store.list();
    if (!m_readers) m_readers = std::make_shared<Readers>(m_ground.index.files());
    for (int row = m_firstRow; row < std::min(list.count(), m_firstRow + looked); ++row) {
        const QString id = list.idAt(row);
        const Meeting* meeting = list.find(id);
        Places& places = m_places[id];
        if (!meeting || places.search == m_search) continue;
        places.search = m_search;
        places.known = false; // those of the search before show for as long
        const auto read = [readers = m_readers, query = m_answer.query, meeting = *meeting,
                           language = m_ground.language.current(), current = m_current, search = m_search] {
            if (*current != search) return QList<FoundPlace>{};
            return FoundPlace::in(readers->files.read(meeting, language), query, readers->keys);
        };
        whenFinished(startOn(m_reading, read), this,
                     [this, id, search = m_search](const QList<FoundPlace>& found) {
                         if (search != m_search) return;
                         m_places[id] = {search, true, found};
                         tell();
                     });
    }
}

QList<FoundPlace> SearchModel::placesIn(const QString& meeting) const { return m_places.value(meeting).list; }

void SearchModel::more()
{
    const bool moreFound = m_answer.candidates
                               ? m_read < m_answer.ids.size() || m_answer.ids.size() >= m_candidates
                               : m_answer.meetings > m_answer.ids.size();
    if (!isSearching() || !m_settled || !moreFound) return;
    m_most += page;
    if (m_answer.candidates && m_read < m_answer.ids.size()) {
        m_settled = false;
        return confirm();
    }
    if (m_answer.candidates) m_candidates += candidatePage;
    ask();
}

void SearchModel::findSpeakers()
{
    if (!m_searcher) m_searcher = std::make_shared<Searcher>(m_ground.index.path());
    whenFinished(startOn(m_asking, [searcher = m_searcher] { return searcher->names(mostSpeakers); }), this,
                 [this](const QStringList& names) {
                     if (std::exchange(m_speakers, names) != names) emit changed();
                 });
    sleepLater();
}

// What is closed waits for the disk, so it ends on the thread that has used it.
void SearchModel::sleepLater()
{
    m_ground.scheduler.after(sleepTime, m_sleep.renew(), [this] {
        startOn(m_asking, [searcher = std::exchange(m_searcher, nullptr)]() mutable { searcher.reset(); });
        startOn(m_reading, [readers = std::exchange(m_readers, nullptr)]() mutable { readers.reset(); });
    });
}

QString SearchModel::counts(const QString& language) const
{
    if (!isSearching() || !m_answer.indexed) return {};
    const MeetingListModel& list = *m_ground.store.list();
    const bool allShown =
        m_answer.candidates ? m_settled && m_read >= m_answer.ids.size() && m_answer.ids.size() < m_candidates
                            : m_answer.meetings <= m_answer.ids.size();
    qint64 meetings = list.count();
    if (!m_answer.candidates) meetings = std::max(meetings, m_answer.meetings);
    if (meetings == 0) return {};
    const QString count = Language::count(language, u"search.meetings"_s, meetings);
    if (m_answer.candidates && !allShown) return Language::text(language, u"search.at_least"_s, count);
    qint64 places = 0;
    for (int row = 0; allShown && row < std::min(list.count(), looked + 1); ++row) {
        const auto here = m_places.constFind(list.idAt(row));
        if (here == m_places.cend() || !here->known || here->search != m_search) return count;
        places += here->list.size();
    }
    if (!allShown || places == 0 || list.count() > looked) return count;
    return count + Language::text(language, u"common.dot"_s) +
           Language::count(language, u"search.places"_s, places);
}

QString SearchModel::trouble(const QString& language) const
{
    const SearchIndex& index = m_ground.index;
    switch (index.state()) {
    case SearchIndex::State::NoSpace:
        return Language::text(language, u"search.index.nospace"_s);
    case SearchIndex::State::Failed:
        return Language::text(language, u"search.index.failed"_s);
    default:
        break;
    }
    if (!index.isIncomplete()) return {};
    const QString all = Language::count(language, u"search.of_meetings"_s, index.all());
    return Language::text(language, u"search.building"_s,
                          Language::number(language, index.done()) + u' ' + all);
}

QString SearchModel::marked(const FoundPlace& place, const QColor& ground, const QColor& ink)
{
    QString rich;
    if (!place.passage.speaker.isEmpty())
        rich = u"<span style=\"color:%1;font-weight:500\">%2:</span> "_s.arg(
            ink.name(), place.passage.speaker.toHtmlEscaped());
    qsizetype at = 0;
    const QString mark =
        u"<span style=\"background-color:%1;color:%2\">"_s.arg(ground.name(QColor::HexArgb), ink.name());
    for (const words::Span& hit : place.hits) {
        rich += place.text.sliced(at, hit.begin - at).toHtmlEscaped() + mark;
        rich += hit.in(place.text).toString().toHtmlEscaped() + u"</span>"_s;
        at = hit.begin + hit.size;
    }
    return rich + place.text.sliced(at).toHtmlEscaped();
}

QString SearchModel::spoken(const FoundPlace& place, const QString& language)
{
    QStringList parts;
    if (!place.kindKey().isEmpty()) parts.append(Language::text(language, place.kindKey()));
    if (const auto seconds = Transcript::seconds(place.passage.stamp))
        parts.append(dates::spokenDuration(*seconds, language));
    if (!place.passage.speaker.isEmpty()) parts.append(place.passage.speaker);
    return parts.join(u", "_s) + u": "_s + place.text;
}

} // namespace murmeli
