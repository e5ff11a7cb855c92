#include "SummaryFile.h"

#include "base/Json.h"
#include "base/Text.h"

#include <QRegularExpression>

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
};

std::optional<QString> text(const dom::object& object, std::string_view key)
{
    std::string_view value;
    if (object.at_key(key).get(value) != simdjson::SUCCESS) return std::nullopt;
    return QString::fromUtf8(value.data(), qsizetype(value.size()));
}

std::optional<double> number(const dom::object& object, std::string_view key)
{
    double value = 0;
    return object.at_key(key).get(value) == simdjson::SUCCESS ? std::optional{value} : std::nullopt;
}

Said readFast(const dom::object& summary)
{
    Said said{.title = text(summary, "title"), .tldr = text(summary, "tldr")};
    if (dom::object meta; summary.at_key("_meta").get(meta) == simdjson::SUCCESS) {
        said.durationMin = number(meta, "duration_min");
        said.protocol = text(meta, "protocol_md");
        said.startedAt = text(meta, "started_at");
    }
    return said;
}

std::optional<Said> read(const QByteArray& bytes)
{
    thread_local dom::parser parser;
    dom::object summary;
    const auto error = parser.parse(bytes.constData(), size_t(bytes.size())).get(summary);
    if (error == simdjson::SUCCESS) return readFast(summary);
    if (error != simdjson::NUMBER_ERROR) return std::nullopt;
    // A number of more than 64 bits is none to the fast parser, but JSON all the same.
    const auto object = json::object(bytes);
    if (!object) return std::nullopt;
    const QJsonObject meta = object->value("_meta"_L1).toObject();
    return Said{.title = json::optionalText(*object, "title"_L1),
                .tldr = json::optionalText(*object, "tldr"_L1),
                .durationMin = json::number(meta, "duration_min"_L1),
                .protocol = json::optionalText(meta, "protocol_md"_L1),
                .startedAt = json::optionalText(meta, "started_at"_L1)};
}

std::optional<QDateTime> dateTime(const QRegularExpressionMatch& match, int offsetSeconds, Qt::TimeSpec spec)
{
    const auto part = [&](int group) { return match.capturedView(group).toInt(); };
    const QDate date{part(1), part(2), part(3)};
    const QTime time{part(4), part(5), part(6)};
    if (!date.isValid() || !time.isValid()) return std::nullopt;
    const QDateTime moment{date, time, spec};
    return moment.addSecs(-offsetSeconds).toLocalTime();
}

} // namespace

std::optional<QDateTime> internetDate(const QString& text)
{
    static const QRegularExpression pattern{
        u"\\A([0-9]{4})-([0-9]{2})-([0-9]{2})T([0-9]{2}):([0-9]{2}):([0-9]{2})(?:\\.([0-9]+))?"
        "(?:Z|([+-])([0-9]{2}):([0-9]{2}))\\z"_s};
    const auto match = pattern.match(text);
    if (!match.hasMatch()) return std::nullopt;
    const int sign = match.capturedView(8) == u"-" ? -1 : 1;
    const int offset = sign * (match.capturedView(9).toInt() * 60 + match.capturedView(10).toInt()) * 60;
    const auto whole = dateTime(match, offset, Qt::UTC);
    const QString fraction = match.captured(7).leftJustified(3, u'0', true);
    return whole ? std::optional{whole->addMSecs(fraction.toInt())} : std::nullopt;
}

std::optional<QDateTime> dateFromStem(const QString& stem)
{
    static const QRegularExpression pattern{
        u"\\A([0-9]{4})-([0-9]{2})-([0-9]{2}) ([0-9]{2})-([0-9]{2})-([0-9]{2})\\z"_s};
    const auto match = pattern.match(stem);
    return match.hasMatch() ? dateTime(match, 0, Qt::LocalTime) : std::nullopt;
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
    return meeting;
}

} // namespace murmeli::summaryFile
