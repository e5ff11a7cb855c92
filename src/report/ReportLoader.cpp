#include "ReportLoader.h"

#include "account/AuthManager.h"
#include "base/Background.h"
#include "base/Files.h"
#include "base/Http.h"
#include "base/Json.h"
#include "base/Scheduler.h"
#include "base/Text.h"
#include "localisation/DrawnDifference.h"
#include "localisation/Language.h"
#include "meetings/Hearing.h"
#include "meetings/MeetingCaptions.h"
#include "meetings/ProtocolFile.h"
#include "meetings/ProtocolFinder.h"
#include "meetings/SummaryFile.h"
#include "platform/Desktop.h"

#include <QFileInfo>
#include <QJsonDocument>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace murmeli {

namespace {

constexpr qint64 analysisLimit = 16 * 1024 * 1024; // bytes
constexpr qsizetype quoteLength = 2000;            // characters
constexpr qsizetype stampLength = 40;              // characters; a stamp has ten

std::optional<QString> transcriptText(const Meeting& meeting, ProtocolFinder& protocols)
{
    const auto path = protocols.find(meeting);
    return path ? protocolFile::transcript(*path) : std::nullopt;
}

std::optional<QJsonObject> objectIn(const QString& file, qint64 limit)
{
    const auto bytes = files::readWhole(file, limit);
    return bytes ? json::object(*bytes) : std::nullopt;
}

void addAnalytics(MeetingReport& report, const Meeting& meeting)
{
    const auto summary = objectIn(meeting.jsonPath, summaryFile::sizeLimit).value_or(QJsonObject{});
    const QJsonValue analytics = summary[u"_meta"_s].toObject()[u"analytics"_s];
    if (analytics.isObject()) report.applyAnalytics(analytics.toObject());
}

ReportLoader::Analysis analysisOf(const QJsonObject& object, const Meeting& meeting)
{
    MeetingReport report = MeetingReport::parse(object);
    addAnalytics(report, meeting);
    return {report, reportRows::of(report)};
}

/// The analysis in an answer, which is stored too; nothing when there is none.
std::optional<ReportLoader::Analysis> taken(const HttpAnswer& answer, const Meeting& meeting)
{
    if (answer.failure != HttpAnswer::Failure::None || answer.status != 200) return std::nullopt;
    const auto analysis = json::object(answer.body);
    if (!analysis) return std::nullopt;
    // For people to read, unless it would then be too large for us. What cannot be stored is shown all the
    // same.
    const QByteArray pretty = json::pretty(answer.body);
    std::ignore = files::writeAtomic(ReportLoader::storedFile(meeting),
                                     pretty.size() <= analysisLimit ? pretty : answer.body);
    return analysisOf(*analysis, meeting);
}

} // namespace

ReportLoader::ReportLoader(Ground ground, QObject* parent) : QObject(parent), m_ground(std::move(ground))
{
    connect(&m_rows, &QAbstractItemModel::modelReset, this, [this] { unfold({}); });
}

void ReportLoader::copy(int row)
{
    const QString text = m_rows.copied(row, m_ground.language.current());
    if (text.isEmpty()) return;
    m_ground.desktop.copyText(text);
    emit copied(text.toUtf8().size());
}

QString ReportLoader::storedFile(const Meeting& meeting)
{
    return QFileInfo{meeting.jsonPath}.path() + u'/' + meeting.id + u".report.json"_s;
}

ReportLoader::Analysis ReportLoader::stored(const Meeting& meeting)
{
    return analysisOf(objectIn(storedFile(meeting), analysisLimit).value_or(QJsonObject{}), meeting);
}

void ReportLoader::show(const std::optional<Analysis>& analysis, const Transcript& lines)
{
    const QStringList said = quotation();
    m_lines = lines;
    m_report = analysis ? std::optional{analysis->report} : std::nullopt;
    const QList<ReportRow> rows = analysis ? analysis->rows : QList<ReportRow>{};
    if (rows != m_rows.rows()) m_rows.setRows(rows);
    if (quotation() != said) emit openStampChanged(); // it may be known only now
    emit changed();
    checkQuotes();
}

void ReportLoader::checkQuotes()
{
    const QList<ReportRow>& rows = m_rows.rows();
    const auto isCompared = [](const ReportRow& row) {
        const auto* const claim = std::get_if<Commitment>(&row.value);
        return !row.stamps().isEmpty() || (claim && !claim->quote.isEmpty());
    };
    if (std::ranges::none_of(rows, isCompared)) {
        m_check.end();
        return;
    }
    inBackground(
        m_check.renew(), [lines = m_lines, rows] { return QuoteFindings::of(lines, rows); },
        [this](const QuoteFindings& findings) {
            m_rows.setFindings(findings);
            ++m_checks;
            emit checked();
        });
}

QString ReportLoader::quoteSum(const QString& language, int) const { return m_rows.findings().sum(language); }

QString ReportLoader::spokenDifference(const QuoteFinding& finding, const QString& language)
{
    return finding.lead() + drawnDifference::spoken(finding.pieces, language);
}

bool ReportLoader::isOutside(const QString& stamp, int) const
{
    return m_rows.findings().outside.contains(stamp);
}

void ReportLoader::load(const Meeting& meeting)
{
    unfold({});
    follow(meeting);
}

void ReportLoader::follow(const Meeting& meeting)
{
    struct Content {
        Transcript lines;
        Analysis analysis;
    };
    const auto read = [meeting, protocols = m_ground.protocols] {
        return Content{Transcript{transcriptText(meeting, *protocols).value_or(QString{})}, stored(meeting)};
    };
    inBackground(m_load.renew(), read, [this](const Content& content) {
        const MeetingReport& report = content.analysis.report;
        const bool nothing = report.isEmpty() && report.speakers.isEmpty();
        m_asked = true;
        show(nothing ? std::nullopt : std::optional{content.analysis}, content.lines);
    });
}

void ReportLoader::fail(const Message& error)
{
    m_busy = false;
    m_loading = false;
    m_error = error;
    emit changed();
}

void ReportLoader::build(const Meeting& meeting)
{
    if (m_busy) return;
    const QString token = m_ground.account.freshToken();
    if (token.isEmpty()) {
        fail(Message::of(signInKey));
        return;
    }
    m_busy = true;
    const auto read = [meeting, protocols = m_ground.protocols] {
        const QString text = transcriptText(meeting, *protocols).value_or(QString{});
        return std::pair{text, Transcript{text}};
    };
    inBackground(this, read, [this, meeting, token](const std::pair<QString, Transcript>& found) {
        if (text::characterCount(found.first) < Hearing::fewestCharacters) {
            fail(Message::of("report.error.no_transcript"));
        } else {
            ask(meeting, found.first, found.second, token);
        }
    });
}

void ReportLoader::ask(const Meeting& meeting, const QString& transcript, const Transcript& lines,
                       const QString& token)
{
    m_loading = true;
    m_error = {};
    emit changed();
    const QDate today = m_ground.scheduler.moment().date();
    const QJsonObject body{
        {u"transcript"_s, transcript},
        {u"meeting_date"_s, captions::dateLine(meeting, today, m_ground.language.current())},
        {u"duration_min"_s, meeting.durationMin.value_or(0)},
    };
    m_ground.http.send(Purpose{u"analysis"_s, meeting.id, body.keys()},
                       {.method = "POST",
                        .url = QUrl{m_ground.webOrigin + u"/api/assist/report"_s},
                        .headers = {{"Content-Type", "application/json"}},
                        .body = QJsonDocument{body}.toJson(QJsonDocument::Compact),
                        .bearer = token.toUtf8(),
                        .timeout = 330s},
                       this, [this, meeting, lines](const HttpAnswer& answer) {
                           if (answer.failure == HttpAnswer::Failure::Refused)
                               return fail(Message::of("lock.closed"));
                           const auto take = [answer, meeting] { return taken(answer, meeting); };
                           const auto done = [this, answer, lines](const std::optional<Analysis>& analysis) {
                               if (!analysis) {
                                   fail(Message::foreignOr(answer.errorText, "report.error.server"));
                                   return;
                               }
                               m_load.end(); // what it would show is older
                               m_busy = false;
                               m_loading = false;
                               show(analysis, lines);
                           };
                           inBackground(this, take, done);
                       });
}

void ReportLoader::toggle(const QString& stamp) { unfold(m_openStamp == stamp ? QString{} : stamp); }

void ReportLoader::unfold(const QString& stamp)
{
    m_openStamp = stamp;
    emit openStampChanged();
}

QStringList ReportLoader::quotation() const
{
    const auto found = m_lines.quote(m_openStamp);
    if (!found) return {};
    return {text::shortened(found->text, quoteLength), text::shortened(found->before, quoteLength),
            text::shortened(found->after, quoteLength)};
}

QString ReportLoader::spoken(const QString& stamp, const QString& language) const
{
    const auto seconds = Transcript::seconds(stamp);
    return seconds && *seconds >= 0 ? Language::spokenDuration(language, double(*seconds))
                                    : text::shortened(stamp, stampLength);
}

} // namespace murmeli
