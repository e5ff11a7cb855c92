#include "SummaryFile.h"

#include "base/Json.h"
#include "base/Text.h"

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

/// Reads fields of digits between given separators: a date has no use for more.
class Digits {
public:
    explicit Digits(QStringView text) : m_text(text) {}

    /// A number of exactly `count` digits.
    int number(int count)
    {
        int value = 0;
        for (int i = 0; i < count; ++i) {
            const ushort c = m_at < m_text.size() ? m_text[m_at].unicode() : 0;
            m_good = m_good && c >= '0' && c <= '9';
            value = m_good ? value * 10 + (c - '0') : 0;
            ++m_at;
        }
        return value;
    }
    bool take(QChar c)
    {
        if (m_at >= m_text.size() || m_text[m_at] != c) return false;
        ++m_at;
        return true;
    }
    void expect(QChar c) { m_good = take(c) && m_good; }
    [[nodiscard]] bool atEnd() const { return m_good && m_at == m_text.size(); }
    [[nodiscard]] bool digitNext() const
    {
        return m_at < m_text.size() && m_text[m_at] >= u'0' && m_text[m_at] <= u'9';
    }

private:
    QStringView m_text;
    qsizetype m_at = 0;
    bool m_good = true;
};

struct Moment {
    QDate date;
    QTime time;
    [[nodiscard]] bool isValid() const { return date.isValid() && time.isValid(); }
};

Moment moment(Digits& digits, QChar between, QChar inTime)
{
    const int year = digits.number(4);
    digits.expect(u'-');
    const int month = digits.number(2);
    digits.expect(u'-');
    const int day = digits.number(2);
    digits.expect(between);
    const int hour = digits.number(2);
    digits.expect(inTime);
    const int minute = digits.number(2);
    digits.expect(inTime);
    const int second = digits.number(2);
    return {QDate{year, month, day}, QTime{hour, minute, second}};
}

/// With the offset that local time has at that moment. A date in local time as such would make the system
/// look at its time zone's file, several times for each of the thousands of meetings of a scan.
QDateTime localMoment(qint64 seconds, int milliseconds)
{
    const auto moment = time_t(seconds + milliseconds / 1000);
    std::tm local{};
    const int offset = ::localtime_r(&moment, &local) ? int(local.tm_gmtoff) : 0;
    return QDateTime::fromMSecsSinceEpoch(seconds * 1000 + milliseconds, Qt::OffsetFromUTC, offset);
}

} // namespace

std::optional<QDateTime> internetDate(const QString& text)
{
    Digits digits{text};
    const Moment utc = moment(digits, u'T', u':');
    int milliseconds = 0;
    if (digits.take(u'.')) {
        milliseconds = digits.number(1) * 100;
        for (int worth = 10; digits.digitNext(); worth /= 10)
            milliseconds += digits.number(1) * worth;
    }
    int offset = 0; // seconds
    if (!digits.take(u'Z')) {
        const int sign = digits.take(u'-') ? -1 : 1;
        if (sign > 0) digits.expect(u'+');
        offset = digits.number(2) * 3600;
        digits.expect(u':');
        offset = sign * (offset + digits.number(2) * 60);
    }
    if (!digits.atEnd() || !utc.isValid()) return std::nullopt;
    constexpr qint64 epoch = 2'440'588; // as a Julian day
    const qint64 seconds = (utc.date.toJulianDay() - epoch) * 86'400 - offset;
    return localMoment(seconds, utc.time.msecsSinceStartOfDay() + milliseconds);
}

std::optional<QDateTime> dateFromStem(const QString& stem)
{
    Digits digits{stem};
    const Moment local = moment(digits, u' ', u'-');
    return digits.atEnd() && local.isValid() ? std::optional{QDateTime{local.date, local.time}}
                                             : std::nullopt;
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
