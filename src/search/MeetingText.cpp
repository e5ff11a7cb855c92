#include "MeetingText.h"

#include "base/Files.h"
#include "base/Json.h"
#include "base/Text.h"
#include "meetings/ProtocolFile.h"
#include "meetings/ProtocolFinder.h"
#include "meetings/SummaryFile.h"
#include "report/ReportLoader.h"
#include "service/Paths.h"
#include "transcript/Transcript.h"

#include <QDataStream>
#include <QIODevice>
#include <QJsonArray>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace murmeli {

namespace {

using Kind = Passage::Kind;

constexpr qint64 longestTranscript = 16 * 1024 * 1024; // bytes of a protocol that are read

struct Section {
    QLatin1StringView key;
    QLatin1StringView text; ///< of an element that is an object
    Kind kind;
};
constexpr std::array sections = {
    Section{"decisions"_L1, "text"_L1, Kind::Decision}, Section{"action_items"_L1, "task"_L1, Kind::Task},
    Section{"next_steps"_L1, "text"_L1, Kind::Step}, Section{"open_questions"_L1, "text"_L1, Kind::Question},
    Section{"risks"_L1, "text"_L1, Kind::Risk}};

class Collector {
public:
    explicit Collector(MeetingText& text) : m_text(text) {}

    void passage(Passage passage)
    {
        passage.text = text::oneLine(passage.text).trimmed();
        passage.speaker = text::oneLine(passage.speaker);
        passage.stamp = text::oneLine(passage.stamp);
        if (!passage.text.isEmpty()) m_text.passages.append(std::move(passage));
    }
    void person(const QString& name)
    {
        const QString trimmed = text::oneLine(name).trimmed();
        if (!trimmed.isEmpty() && !m_text.people.contains(trimmed)) m_text.people.append(trimmed);
    }

private:
    MeetingText& m_text;
};

void addPeople(Collector& to, const QJsonArray& people)
{
    for (const auto& one : people)
        to.person(one.isObject() ? json::text(one.toObject(), "name"_L1) : one.toString());
}

void addSummary(Collector& to, const QJsonObject& summary)
{
    to.passage({.kind = Kind::Summary, .text = json::text(summary, "tldr"_L1)});
    const QJsonValue whole = summary["summary"_L1];
    if (whole.isString()) to.passage({.kind = Kind::Summary, .text = whole.toString()});
    for (const auto& part : QJsonArray{whole.toArray()})
        to.passage({.kind = Kind::Summary, .text = part.toString()});
    for (const Section& section : sections) {
        const QJsonArray items = summary[section.key].toArray();
        for (qsizetype i = 0; i < items.size(); ++i) {
            const QJsonObject object = items[i].toObject();
            QString text = items[i].isObject() ? json::text(object, section.text) : items[i].toString();
            if (text.trimmed().isEmpty()) continue;
            const QString owner = json::text(object, "owner"_L1).trimmed();
            const QString due = json::text(object, "due"_L1).trimmed();
            if (!owner.isEmpty()) text = owner + u" — "_s + text;
            if (!due.isEmpty()) text += u", "_s + due;
            to.passage({.kind = section.kind, .text = text, .section = section.key, .index = i});
        }
    }
    addPeople(to, summary["participants"_L1].toArray());
    addPeople(to, summary["_meta"_L1].toObject()["analytics"_L1].toObject()["speakers"_L1].toArray());
}

void addAnalysis(Collector& to, const Meeting& meeting, const QString& language)
{
    const QList<ReportRow> rows = ReportLoader::stored(meeting).rows;
    for (qsizetype i = 0; i < rows.size(); ++i) {
        const ReportRow& row = rows[i];
        QStringList words = row.words(language, Wording::Copied);
        const QStringList stamps = row.stamps();
        if (!stamps.isEmpty() && !words.isEmpty()) words.removeLast(); // the stamps
        to.passage({.kind = row.kind() == reportKind::Commitment ? Kind::Promise : Kind::Analysis,
                    .text = words.join(u" · "_s),
                    .stamp = {},
                    .index = i});
    }
}

} // namespace

MeetingFiles::MeetingFiles(const Paths& paths, std::shared_ptr<ProtocolFinder> protocols)
    : m_margin(paths.ownData + u"/margin/"_s), m_marks(paths), m_protocols(std::move(protocols))
{
}

MeetingText MeetingFiles::read(const Meeting& meeting, const QString& language) const
{
    MeetingText text;
    Collector to{text};
    to.passage({.kind = Kind::Title, .text = meeting.title});
    if (const auto bytes = files::readWhole(meeting.jsonPath, summaryFile::sizeLimit))
        addSummary(to, json::object(*bytes).value_or(QJsonObject{}));
    addAnalysis(to, meeting, language);
    for (const Mark& mark : m_marks.of(meeting.id).marks)
        to.passage({.kind = Kind::Mark, .text = mark.text, .stamp = mark.stamp()});
    const auto path = m_protocols->find(meeting);
    bool cut = false;
    const auto said = path ? protocolFile::transcript(*path, longestTranscript, &cut) : std::nullopt;
    for (const TranscriptLine& line : Transcript{said.value_or(QString{})}.lines()) {
        to.passage({.kind = Kind::Said, .text = line.words, .speaker = line.speaker, .stamp = line.stamp});
        to.person(line.speaker);
    }
    return text;
}

QByteArray MeetingFiles::state(const Meeting& meeting) const
{
    QByteArray state;
    QDataStream out{&state, QIODevice::WriteOnly};
    bool settled = true;
    for (const QString& path : {meeting.jsonPath, m_protocols->find(meeting).value_or(QString{}),
                                ReportLoader::storedFile(meeting), m_margin + meeting.id + u".json"_s}) {
        const files::Identity file = path.isEmpty() ? files::Identity{} : files::identity(path);
        settled = settled && (file.size < 0 || files::isSettled(file));
        // Without its device, whose number may be another one after every start of the system.
        out << file.inode << file.size << file.modifiedNs;
    }
    out << settled;
    return state;
}

bool MeetingFiles::isSettled(const QByteArray& state) { return state.endsWith('\1'); }

std::optional<IndexDocument> documentOf(const Meeting& meeting, const MeetingText& text, words::Keys& keys,
                                        const std::atomic<bool>& stop)
{
    IndexDocument document{
        .stem = meeting.id, .start = meeting.startedAt.toSecsSinceEpoch(), .names = text.people};
    const auto add = [&keys](QByteArray& column, const QString& words) {
        for (const words::Span& word : words::split(words))
            column.append(keys.of(word.in(words))).append(' ');
    };
    for (const Passage& passage : text.passages) {
        if (stop) return std::nullopt;
        switch (passage.kind) {
        case Kind::Title:
            add(document.title, passage.text);
            break;
        case Kind::Analysis:
        case Kind::Promise:
        case Kind::Mark:
            add(document.analysis, passage.text);
            break;
        case Kind::Said:
            add(document.said, passage.text);
            break;
        default:
            add(document.protocol, passage.text);
        }
    }
    for (const QString& name : text.people)
        add(document.people, name);
    return document;
}

} // namespace murmeli
