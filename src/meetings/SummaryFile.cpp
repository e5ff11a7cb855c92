#include "SummaryFile.h"

#include "Hearing.h"
#include "base/Json.h"
#include "base/Text.h"

#include <QJsonArray>
#include <QRegularExpression>

#include <ctime>
#include <simdjson.h>

using namespace Qt::StringLiterals;

namespace murmeli::summaryFile {

namespace {

namespace dom = simdjson::dom;

/// The members that a list needs, as they stand in the file.
struct Said {
    std::optional<QString> title;
    std::optional<QString> tldr;
    std::optional<double> durationMin;
    std::optional<QString> protocol;
    std::optional<QString> startedAt;
    std::optional<double> speechShare; ///< where it is exact
    std::optional<qsizetype> speakers;
};

/// Of members with one name the last counts, as everywhere else. \return false when it is of another type.
template <typename Value>
bool take(const dom::object& object, std::string_view key, Value& value)
{
    std::optional<dom::element> found;
    for (const dom::key_value_pair& pair : object) {
        if (pair.key == key) found = pair.value;
    }
    return found && found->get(value) == simdjson::SUCCESS;
}

std::optional<QString> text(const dom::object& object, std::string_view key)
{
    std::string_view value;
    if (!take(object, key, value)) return std::nullopt;
    return QString::fromUtf8(value.data(), qsizetype(value.size()));
}

std::optional<double> number(const dom::object& object, std::string_view key)
{
    double value = 0;
    return take(object, key, value) ? std::optional{value} : std::nullopt;
}

Said readFast(const dom::object& summary)
{
    Said said{.title = text(summary, "title"), .tldr = text(summary, "tldr")};
    if (dom::object meta; take(summary, "_meta", meta)) {
        said.durationMin = number(meta, "duration_min");
        said.protocol = text(meta, "protocol_md");
        said.startedAt = text(meta, "started_at");
        if (dom::object analytics; take(meta, "analytics", analytics)) {
            if (text(analytics, "source") == u"segments"_s)
                said.speechShare = number(analytics, "speech_share");
            if (dom::array speakers; take(analytics, "speakers", speakers))
                said.speakers = qsizetype(speakers.size());
        }
    }
    return said;
}

constexpr qsizetype usualSize = 64 * 1024; // bytes

std::optional<Said> read(const QByteArray& bytes)
{
    // It keeps room for the largest text that it has seen, so an unusual one gets one of its own.
    thread_local dom::parser usual;
    dom::parser own;
    dom::parser& parser = bytes.size() <= usualSize ? usual : own;
    dom::object summary;
    const qsizetype begin = json::markLength(bytes);
    const auto error = parser.parse(bytes.constData() + begin, size_t(bytes.size() - begin)).get(summary);
    if (error == simdjson::SUCCESS) return readFast(summary);
    // Some that is none to the fast parser is JSON to the one that decides elsewhere: a number of more than
    // 64 bits, half a pair of surrogates, a control character.
    const auto object = json::object(bytes);
    if (!object) return std::nullopt;
    const QJsonObject meta = object->value("_meta"_L1).toObject();
    const QJsonObject analytics = meta["analytics"_L1].toObject();
    const bool exact = json::text(analytics, "source"_L1) == "segments"_L1;
    const QJsonValue speakers = analytics["speakers"_L1];
    return Said{.title = json::optionalText(*object, "title"_L1),
                .tldr = json::optionalText(*object, "tldr"_L1),
                .durationMin = json::number(meta, "duration_min"_L1),
                .protocol = json::optionalText(meta, "protocol_md"_L1),
                .startedAt = json::optionalText(meta, "started_at"_L1),
                .speechShare = exact ? json::number(analytics, "speech_share"_L1) : std::nullopt,
                .speakers = speakers.isArray() ? std::optional{speakers.toArray().size()} : std::nullopt};
}

/// With the offset that local time has at that moment. A date in local time as such would make the system
/// look at its time zone's file, several times for each of the thousands of meetings of a scan.
QDateTime inLocalTime(qint64 milliseconds)
{
    const auto moment = time_t(milliseconds / 1000);
    std::tm local{};
    const int offset = ::localtime_r(&moment, &local) ? int(local.tm_gmtoff) : 0;
    return QDateTime::fromMSecsSinceEpoch(milliseconds, Qt::OffsetFromUTC, offset);
}

} // namespace

// Qt would also take dates without a time, without a zone or with spaces, and the end of a day as 24:00.
std::optional<QDateTime> internetDate(const QString& text)
{
    static const QRegularExpression shape{
        uR"(\A\d{4}-\d\d-\d\dT(?!24)\d\d:\d\d:\d\d(\.\d+)?(Z|[+-]\d\d:\d\d)\z)"_s};
    if (!shape.match(text).hasMatch()) return std::nullopt;
    const QDateTime moment = QDateTime::fromString(text, Qt::ISODateWithMs);
    return moment.isValid() ? std::optional{inLocalTime(moment.toMSecsSinceEpoch())} : std::nullopt;
}

std::optional<QDateTime> dateFromStem(const QString& stem)
{
    static const QRegularExpression shape{uR"(\A(\d{4}-\d\d-\d\d) (?!24)(\d\d)-(\d\d)-(\d\d)\z)"_s};
    QString spelt = stem;
    spelt.replace(shape, u"\\1T\\2:\\3:\\4"_s);
    const QDateTime local = QDateTime::fromString(spelt, Qt::ISODate);
    return spelt != stem && local.isValid() ? std::optional{local} : std::nullopt;
}

std::optional<Meeting> meeting(const QByteArray& bytes, const QString& path, const QString& stem,
                               std::optional<qint64> modifiedMs)
{
    const auto said = read(bytes);
    if (!said) return std::nullopt;

    Meeting meeting{.id = stem, .title = stem, .jsonPath = path};
    if (said->title) meeting.title = murmeli::text::trimmed(*said->title);
    if (said->tldr) meeting.tldr = murmeli::text::trimmed(*said->tldr);
    meeting.durationMin = said->durationMin;
    meeting.protocolPath = said->protocol;
    auto started = said->startedAt ? internetDate(*said->startedAt) : std::nullopt;
    if (!started) started = dateFromStem(stem);
    if (!started) started = QDateTime::fromMSecsSinceEpoch(modifiedMs.value_or(0));
    meeting.startedAt = *started;
    meeting.heard = Hearing::of(said->speechShare, said->speakers, said->durationMin);
    return meeting;
}

} // namespace murmeli::summaryFile
