#include "ProtocolEditor.h"

#include "ProtocolItems.h"
#include "account/AuthManager.h"
#include "base/Background.h"
#include "base/Files.h"
#include "base/Http.h"
#include "base/Json.h"
#include "base/Processes.h"
#include "base/Scheduler.h"
#include "base/Text.h"
#include "meetings/Meeting.h"
#include "meetings/SummaryFile.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QPointer>

#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace murmeli {

namespace {

using Outcome = ProtocolEditor::Outcome;

struct OutcomeLook {
    const char* symbol;
    accent::Accent accent;
};

OutcomeLook lookOf(Outcome outcome)
{
    switch (outcome) {
    case Outcome::Working:
        return {"hourglass", accent::Progress};
    case Outcome::Fixed:
        return {"checkmark.circle.fill", accent::Success};
    case Outcome::NotFound:
        return {"magnifyingglass", accent::Absence};
    case Outcome::Failed:
        return {"exclamationmark.triangle", accent::Failure};
    case Outcome::Idle:
        break;
    }
    return {"", accent::Progress};
}

/// What has come of a remark.
struct Result {
    Outcome outcome = Outcome::NotFound;
    Message failure = {};
    QString text = {};
    QString section = {};
    qsizetype index = 0;
};

Result failure(const char* errorKey, const QString& text = {})
{
    return {.outcome = Outcome::Failed, .failure = Message::foreignOr(text, errorKey)};
}

/// One remark on its way. Needs no editor, so that it goes on when its view has been left.
struct Exchange {
    ProtocolEditor::Place place;
    const AuthManager& account;
    Http& http;
    Processes& processes;
    const Scheduler& scheduler;
    QObject& background;
    QString file;
    std::function<void(const Result&)> ended;
};

QByteArray requestBody(const QString& remark, const QList<ProtocolItem>& items)
{
    QJsonArray list;
    for (const ProtocolItem& item : items)
        list.append(
            QJsonObject{{u"section"_s, item.section}, {u"index"_s, item.index}, {u"text"_s, item.text}});
    return QJsonDocument{QJsonObject{{u"remark"_s, remark}, {u"items"_s, list}}}.toJson(
        QJsonDocument::Compact);
}

struct Question {
    std::optional<Result> answered; ///< there is nothing to ask
    QByteArray summary;
    QByteArray body;
};

Question question(const QString& remark, const QString& file)
{
    const auto bytes = files::readWhole(file, summaryFile::sizeLimit);
    const auto summary = bytes ? json::object(*bytes) : std::nullopt;
    if (!summary) return {.answered = failure("editor.error.read")};
    const QList<ProtocolItem> items = protocolItems::editable(*summary);
    if (items.isEmpty()) return {.answered = Result{}};
    return {.answered = {}, .summary = *bytes, .body = requestBody(remark, items)};
}

std::optional<QString> itemText(const QByteArray& summary, const QString& section, qsizetype index)
{
    const auto object = json::object(summary);
    if (!object) return std::nullopt;
    for (const ProtocolItem& item : protocolItems::editable(*object)) {
        if (item.section == section && (item.index == index || object->value(section).isString()))
            return item.text;
    }
    return std::nullopt;
}

/// The file as it is now, when the service has written to it since it was read; as it was when it cannot be
/// read now; empty when the very item has changed, since the correction was meant for another text.
QByteArray current(const QString& file, const QByteArray& summary, const QString& section, qsizetype index)
{
    const auto now = files::readWhole(file, summaryFile::sizeLimit);
    if (!now || *now == summary || !json::object(*now)) return summary;
    return itemText(*now, section, index) == itemText(summary, section, index) ? *now : QByteArray{};
}

Result correct(const HttpAnswer& answer, const QByteArray& summary, const QString& file, double now)
{
    const auto object = answer.failure == HttpAnswer::Failure::None && answer.status == 200
                            ? json::object(answer.body)
                            : std::nullopt;
    if (!object) return failure("editor.error.server", answer.errorText);
    const bool found = json::boolean(*object, "found"_L1).value_or(false);
    const auto section = json::optionalText(*object, "section"_L1);
    const auto index = json::integer(*object, "index"_L1);
    const QString text = text::trimmed(json::text(*object, "text"_L1));
    if (!found || !section || !index || text.isEmpty()) return {};
    const auto corrected =
        protocolItems::corrected(current(file, summary, *section, *index), *section, *index, text, now);
    if (!corrected) return {};
    if (!files::writeAtomic(file, *corrected)) return failure("editor.error.save");
    return {.outcome = Outcome::Fixed, .text = text, .section = *section, .index = *index};
}

void rebuild(const Exchange& exchange)
{
    // Nobody waits for it: the protocol follows when it follows.
    if (!QFileInfo::exists(exchange.place.python)) return;
    exchange.processes.run(
        {.program = exchange.place.python, .arguments = {exchange.place.rebuildScript, exchange.file}},
        &exchange.background, [](const ProcessResult&) {});
}

void ask(const Exchange& exchange, const Question& question)
{
    const QString token = exchange.account.freshToken();
    if (question.answered || token.isEmpty()) {
        exchange.ended(question.answered.value_or(failure("editor.error.auth")));
        return;
    }
    const auto take = [exchange, summary = question.summary](const HttpAnswer& answer) {
        inBackground(
            &exchange.background,
            [answer, summary, file = exchange.file, now = exchange.scheduler.now()] {
                return correct(answer, summary, file, now);
            },
            [exchange](const Result& result) {
                if (result.outcome == Outcome::Fixed) rebuild(exchange);
                exchange.ended(result);
            });
    };
    exchange.http.send({.method = "POST",
                        .url = QUrl{exchange.place.webOrigin + u"/api/assist/edit"_s},
                        .headers = {{"Content-Type", "application/json"}},
                        .body = question.body,
                        .bearer = token.toUtf8(),
                        .timeout = 120s},
                       &exchange.background, take);
}

} // namespace

ProtocolEditor::ProtocolEditor(Place place, const AuthManager& account, Http& http, Processes& processes,
                               const Scheduler& scheduler, QObject& background, QObject* parent)
    : QObject(parent),
      m_place(std::move(place)),
      m_account(account),
      m_http(http),
      m_processes(processes),
      m_scheduler(scheduler),
      m_background(background)
{
}

QString ProtocolEditor::symbol() const { return QString::fromLatin1(lookOf(m_outcome).symbol); }

accent::Accent ProtocolEditor::accent() const { return lookOf(m_outcome).accent; }

Message ProtocolEditor::message() const
{
    switch (m_outcome) {
    case Outcome::Working:
        return Message::of("editor.working");
    case Outcome::Fixed:
        return Message::of("editor.done", m_text);
    case Outcome::NotFound:
        return Message::of("editor.not_found");
    case Outcome::Failed:
        return m_failure;
    case Outcome::Idle:
        break;
    }
    return {};
}

void ProtocolEditor::reset()
{
    if (std::exchange(m_outcome, Outcome::Idle) != Outcome::Idle) emit changed();
}

void ProtocolEditor::apply(const QString& remark, const Meeting& meeting, const Done& done,
                           const std::function<void()>& carriedOut)
{
    m_outcome = Outcome::Working;
    emit changed();
    const auto ended = [self = QPointer{this}, done, carriedOut](const Result& result) {
        if (result.outcome == Outcome::Fixed && carriedOut) carriedOut();
        if (!self) return;
        self->m_outcome = result.outcome;
        self->m_failure = result.failure;
        self->m_text = result.text;
        self->m_section = result.section;
        self->m_index = result.index;
        emit self->changed();
        done(result.outcome == Outcome::Fixed);
    };
    const Exchange exchange{.place = m_place,
                            .account = m_account,
                            .http = m_http,
                            .processes = m_processes,
                            .scheduler = m_scheduler,
                            .background = m_background,
                            .file = meeting.jsonPath,
                            .ended = ended};
    inBackground(
        &m_background, [remark, file = meeting.jsonPath] { return question(remark, file); },
        [exchange](const Question& question) { ask(exchange, question); });
}

} // namespace murmeli
