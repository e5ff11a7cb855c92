#include "TranscriptModel.h"

#include "base/Background.h"
#include "base/Dates.h"
#include "base/Text.h"
#include "language/Terms.h"
#include "localisation/Language.h"
#include "meetings/ProtocolFile.h"
#include "meetings/ProtocolFinder.h"
#include "platform/Desktop.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace murmeli {

namespace {

constexpr qsizetype mostHits = 10'000; // more nobody steps through

} // namespace

TranscriptModel::TranscriptModel(Ground ground, QObject* parent)
    : QAbstractListModel(parent), m_ground(std::move(ground))
{
    connect(&m_ground.marks, &MeetingMarks::changed, this, &TranscriptModel::placeMarks);
}

void TranscriptModel::load(const Meeting& meeting)
{
    m_meeting = meeting;
    const auto read = [meeting, protocols = m_ground.protocols] {
        Content content;
        if (const auto path = protocols->find(meeting)) {
            const auto text = protocolFile::transcript(*path, longest, &content.cut);
            content.lines = Transcript{text.value_or(QString{})}.lines();
        }
        return content;
    };
    inBackground(m_load.renew(), read, [this](const Content& content) { take(content); });
}

void TranscriptModel::close()
{
    m_load.end();
    m_query.clear();
    m_wanted.clear();
    take({});
    m_loaded = false;
    emit loadedChanged();
    emit queryChanged();
}

void TranscriptModel::take(const Content& content)
{
    const bool first = !std::exchange(m_loaded, true);
    if (content.lines != m_lines) {
        beginResetModel();
        m_lines = content.lines;
        m_places.clear();
        for (const TranscriptLine& line : std::as_const(m_lines)) {
            if (!line.speaker.isEmpty() && !m_places.contains(line.speaker))
                m_places.insert(line.speaker, int(m_places.size()));
        }
        m_hits.clear();
        m_hit = m_first = m_last = -1;
        endResetModel();
        placeMarks();
        find();
        emit selectionChanged();
        settleHere();
    } else if (first) {
        settleHere();
    }
    m_cut = content.cut;
    emit loadedChanged();
}

void TranscriptModel::openAt(const QString& stamp)
{
    m_wanted = stamp;
    if (m_loaded) settleHere();
}

void TranscriptModel::settleHere()
{
    const auto seconds = Transcript::seconds(m_wanted);
    const int here = seconds ? rowAt(*seconds) : -1;
    const int before = std::exchange(m_here, here);
    for (const int row : {before, here})
        tellRows(row, row, {});
    emit hereChanged();
}

int TranscriptModel::rowAt(qint64 seconds) const
{
    int found = -1;
    qint64 latest = -1;
    for (qsizetype row = 0; row < m_lines.size(); ++row) {
        const auto at = m_lines[row].seconds;
        if (!at || *at > seconds || *at <= latest) continue;
        latest = *at;
        found = int(row);
    }
    return found;
}

void TranscriptModel::placeMarks()
{
    QHash<int, QStringList> marks;
    for (const Mark& mark : m_ground.marks.marks())
        marks[std::max(0, rowAt(qint64(mark.time - mark.begin)))].append(mark.text);
    if (std::exchange(m_marks, marks) != marks) tellRows(0, rowCount() - 1, {MarksRole});
}

void TranscriptModel::tellRows(int first, int last, const QList<int>& roles)
{
    if (first >= 0 && last >= first && last < rowCount()) emit dataChanged(index(first), index(last), roles);
}

void TranscriptModel::setQuery(const QString& query)
{
    if (std::exchange(m_query, query) == query) return;
    emit queryChanged();
    find();
}

void TranscriptModel::find()
{
    if (m_query.trimmed().isEmpty()) {
        m_find.end();
        takeHits({});
        return;
    }
    const auto look = [query = m_query, lines = m_lines] {
        words::Keys keys;
        const words::Terms terms{query, keys};
        QList<Hit> hits;
        for (qsizetype row = 0; row < lines.size() && hits.size() < mostHits; ++row) {
            for (const words::Span& span : terms.hits(lines[row].words, keys))
                hits.append({int(row), span});
        }
        return hits;
    };
    inBackground(m_find.renew(), look, [this](const QList<Hit>& hits) { takeHits(hits); });
}

void TranscriptModel::takeHits(const QList<Hit>& hits)
{
    if (hits.isEmpty() && m_hits.isEmpty()) {
        emit hitsChanged();
        return;
    }
    m_hits = hits;
    // From where somebody reads, onwards.
    const int from = std::max(m_last, m_here);
    const auto next = std::ranges::lower_bound(m_hits, from, {}, &Hit::row);
    m_hit = m_hits.isEmpty() ? -1 : next == m_hits.end() ? 0 : int(next - m_hits.begin());
    tellRows(0, rowCount() - 1, {FoundRole, CurrentRole});
    emit hitsChanged();
    if (m_hit >= 0) emit hitShown(m_hits[m_hit].row);
}

void TranscriptModel::step(int direction)
{
    if (m_hits.isEmpty()) return;
    const int count = int(m_hits.size());
    const int before = std::exchange(m_hit, (m_hit + direction + count) % count);
    for (const int hit : {before, m_hit})
        tellRows(m_hits[hit].row, m_hits[hit].row, {FoundRole, CurrentRole});
    emit hitsChanged();
    emit hitShown(m_hits[m_hit].row);
}

std::pair<int, int> TranscriptModel::selected() const { return std::minmax(m_first, m_last); }

void TranscriptModel::select(int row, bool extend)
{
    if (row < 0 || row >= rowCount()) return;
    const auto [from, to] = selected();
    m_last = row;
    if (!extend || m_first < 0) m_first = row;
    const auto [nowFrom, nowTo] = selected();
    tellRows(from < 0 ? nowFrom : std::min(from, nowFrom), std::max(to, nowTo), {SelectedRole});
    emit selectionChanged();
}

void TranscriptModel::clearSelection()
{
    const auto [from, to] = selected();
    m_first = m_last = -1;
    tellRows(from, to, {SelectedRole});
    emit selectionChanged();
}

QString TranscriptModel::reference(const TranscriptLine& line) const
{
    const QString& language = m_ground.language.current();
    QStringList parts;
    if (!line.speaker.isEmpty()) parts.append(line.speaker);
    parts.append(line.stamp);
    parts.append(
        Language::text(language, u"transcript.quoted"_s).replace(u"%@"_s, text::oneLine(m_meeting.title)));
    parts.append(dates::bySkeleton(m_meeting.startedAt, language, u"yMMdd"_s));
    return parts.join(u", "_s);
}

void TranscriptModel::copyQuote()
{
    if (m_last < 0) return;
    const auto [from, to] = selected();
    const QString& language = m_ground.language.current();
    QStringList said;
    for (int row = from; row <= to; ++row) {
        const bool other = row > from && m_lines[row].speaker != m_lines[from].speaker;
        said.append(other && !m_lines[row].speaker.isEmpty()
                        ? m_lines[row].speaker + u": "_s + m_lines[row].words
                        : m_lines[row].words);
    }
    const QString whole = Language::text(language, u"transcript.quoted"_s);
    const QString source = reference(m_lines[from]);
    const QString html = u"<blockquote>%1</blockquote><p>— %2</p>"_s;
    const QString text = QString{whole}.replace(u"%@"_s, said.join(u'\n')) + u" — "_s + source;
    m_ground.desktop.copy({.text = text,
                           .html = html.arg(said.join(u'\n').toHtmlEscaped().replace(u'\n', u"<br>"_s),
                                            source.toHtmlEscaped())});
    emit copied(false, text.toUtf8().size());
}

void TranscriptModel::copyAll()
{
    QStringList lines{text::oneLine(m_meeting.title)};
    for (const TranscriptLine& line : std::as_const(m_lines))
        lines.append(line.stamp + u' ' + (line.speaker.isEmpty() ? QString{} : line.speaker + u": "_s) +
                     line.words);
    const QString text = lines.join(u'\n');
    m_ground.desktop.copyText(text);
    emit copied(true, text.toUtf8().size());
}

void TranscriptModel::mark()
{
    if (m_last < 0) return;
    Mark mark;
    mark.begin = double(m_meeting.startedAt.toMSecsSinceEpoch()) / 1000;
    mark.time = mark.begin + double(m_lines[m_last].seconds.value_or(0));
    mark.text = Language::text(m_ground.language.current(), u"mark.important"_s);
    m_ground.marks.add(mark);
}

QString TranscriptModel::marked(int row, const QColor& ground, const QColor& current, const QColor& ink) const
{
    if (row < 0 || row >= rowCount()) return {};
    const QString& words = m_lines[row].words;
    QString rich;
    qsizetype at = 0;
    const auto first = std::ranges::lower_bound(m_hits, row, {}, &Hit::row);
    for (auto hit = first; hit != m_hits.end() && hit->row == row; ++hit) {
        const bool isCurrent = hit - m_hits.begin() == m_hit;
        rich += words.sliced(at, hit->span.begin - at).toHtmlEscaped();
        rich += u"<span style=\"background-color:%1%2\">"_s.arg(
            (isCurrent ? current : ground).name(QColor::HexArgb),
            isCurrent ? u";color:"_s + ink.name() : QString{});
        rich += hit->span.in(words).toString().toHtmlEscaped() + u"</span>"_s;
        at = hit->span.begin + hit->span.size;
    }
    return rich + words.sliced(at).toHtmlEscaped();
}

QString TranscriptModel::spoken(int row, const QString& language) const
{
    if (row < 0 || row >= rowCount()) return {};
    const TranscriptLine& line = m_lines[row];
    const QString when =
        line.seconds && *line.seconds >= 0 ? dates::spokenDuration(*line.seconds, language) : line.stamp;
    QString text =
        when + (line.speaker.isEmpty() ? QString{} : u", "_s + line.speaker) + u": "_s + line.words;
    for (const QString& mark : m_marks.value(row))
        text += u". "_s + Language::text(language, u"transcript.mark"_s) + u' ' + mark;
    return text;
}

int TranscriptModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_lines.size());
}

QVariant TranscriptModel::data(const QModelIndex& index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
    const int row = index.row();
    const TranscriptLine& line = m_lines[row];
    switch (role) {
    case StampRole:
        return line.stamp;
    case SpeakerRole:
        return line.speaker;
    case WordsRole:
        return line.words;
    case PlaceRole:
        return m_places.value(line.speaker, -1);
    case MarksRole:
        return m_marks.value(row);
    case FoundRole:
        return std::ranges::binary_search(m_hits, row, {}, &Hit::row);
    case CurrentRole:
        return m_hit >= 0 ? (m_hits[m_hit].row == row ? m_hit : -1) : -1;
    case SelectedRole: {
        const auto [from, to] = selected();
        return row >= from && row <= to;
    }
    default:
        return {};
    }
}

QHash<int, QByteArray> TranscriptModel::roleNames() const
{
    return {{StampRole, "stamp"},        {SpeakerRole, "speaker"},  {WordsRole, "words"},
            {PlaceRole, "place"},        {MarksRole, "marks"},      {FoundRole, "found"},
            {CurrentRole, "currentHit"}, {SelectedRole, "selected"}};
}

} // namespace murmeli
