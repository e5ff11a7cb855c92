#include "ProtocolEditor.h"

#include "ProtocolItems.h"
#include "account/AuthManager.h"
#include "base/Background.h"
#include "base/Files.h"
#include "base/Http.h"
#include "base/Json.h"
#include "base/Text.h"
#include "meetings/Meeting.h"
#include "meetings/SummaryFile.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>
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

QByteArray requestBody(const QString& remark, const QList<ProtocolItem>& items)
{
    QJsonArray list;
    for (const ProtocolItem& item : items)
        list.append(
            QJsonObject{{u"section"_s, item.section}, {u"index"_s, item.index}, {u"text"_s, item.text}});
    return QJsonDocument{QJsonObject{{u"remark"_s, remark}, {u"items"_s, list}}}.toJson(
        QJsonDocument::Compact);
}

} // namespace

/// What has come of a remark so far.
struct ProtocolEditor::Result {
    Outcome outcome = Outcome::Working;
    Message failure = {};

    static Result failed(const char* errorKey, const QString& text = {})
    {
        return {.outcome = Outcome::Failed, .failure = Message::foreignOr(text, errorKey)};
    }
    static Result of(ProtocolWriter::Written written)
    {
        using Written = ProtocolWriter::Written;
        switch (written) {
        case Written::Yes:
        case Written::Unlisted:
            return {.outcome = Outcome::Fixed};
        case Written::Changed:
            return failed("ledger.changed_meanwhile");
        case Written::NotFound:
            return {.outcome = Outcome::NotFound};
        case Written::Failed:
            break;
        }
        return failed("editor.error.save");
    }
};

/// One remark on its way.
struct ProtocolEditor::Attempt {
    QString remark;
    Meeting meeting;
    QList<ProtocolItem> items = {}; ///< as they were sent
    QByteArray body = {};

    Result read();
    [[nodiscard]] std::optional<ProtocolChange> taken(const QJsonObject& answer) const;
};

ProtocolEditor::Result ProtocolEditor::Attempt::read()
{
    const auto bytes = files::readWhole(meeting.jsonPath, summaryFile::sizeLimit);
    const auto object = bytes ? json::object(*bytes) : std::nullopt;
    if (!object) return Result::failed("editor.error.read");
    items = protocolItems::editable(*object);
    if (items.isEmpty()) return {.outcome = Outcome::NotFound};
    body = requestBody(remark, items);
    return {};
}

/// What the answer wants changed; nothing when it found nothing that was sent.
std::optional<ProtocolChange> ProtocolEditor::Attempt::taken(const QJsonObject& answer) const
{
    const auto section = json::optionalText(answer, "section"_L1);
    const auto index = json::integer(answer, "index"_L1);
    const QString text = text::trimmed(json::text(answer, "text"_L1));
    if (!json::boolean(answer, "found"_L1).value_or(false) || !section || !index || text.isEmpty())
        return std::nullopt;
    const auto isMeant = [&](const ProtocolItem& item) {
        return item.section == *section && (item.index == *index || item.isAlone);
    };
    const auto item = std::ranges::find_if(items, isMeant);
    if (item == items.end()) return std::nullopt;
    return ProtocolChange{.section = item->section,
                          .index = item->index,
                          .before = item->text,
                          .after = text,
                          .remark = remark};
}

ProtocolEditor::ProtocolEditor(QString webOrigin, const AuthManager& account, Http& http,
                               ProtocolWriter& writer, QObject* parent)
    : QObject(parent), m_webOrigin(std::move(webOrigin)), m_account(account), m_http(http), m_writer(writer)
{
}

ProtocolEditor::~ProtocolEditor() = default;

QString ProtocolEditor::symbol() const { return QString::fromLatin1(lookOf(m_outcome).symbol); }

accent::Accent ProtocolEditor::accent() const { return lookOf(m_outcome).accent; }

Message ProtocolEditor::message() const
{
    switch (m_outcome) {
    case Outcome::Working:
        return Message::of("editor.working");
    case Outcome::Fixed:
        return m_unlisted ? Message::of("ledger.failed") : Message::of("editor.done", m_change.after);
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

void ProtocolEditor::apply(const QString& remark, const Meeting& meeting)
{
    if (m_outcome == Outcome::Working) return;
    m_outcome = Outcome::Working;
    emit changed();
    const auto read = [attempt = Attempt{.remark = remark, .meeting = meeting}]() mutable {
        const Result result = attempt.read();
        return std::pair{attempt, result};
    };
    inBackground(this, read, [this](const auto& prepared) { ask(prepared.first, prepared.second); });
}

void ProtocolEditor::ask(const Attempt& attempt, const Result& prepared)
{
    const QString token = m_account.freshToken();
    if (prepared.outcome != Outcome::Working) return end(prepared);
    if (token.isEmpty()) return end(Result::failed(signInKey));
    m_http.send(Purpose{u"remark"_s, attempt.meeting.id, {u"remark"_s, u"items"_s}, attempt.items.size()},
                {.method = "POST",
                 .url = QUrl{m_webOrigin + u"/api/assist/edit"_s},
                 .headers = {{"Content-Type", "application/json"}},
                 .body = attempt.body,
                 .bearer = token.toUtf8(),
                 .timeout = 120s},
                this, [this, attempt](const HttpAnswer& answer) { take(attempt, answer); });
}

void ProtocolEditor::take(const Attempt& attempt, const HttpAnswer& answer)
{
    if (answer.failure == HttpAnswer::Failure::Refused) return end(Result::failed("lock.closed"));
    const auto object = answer.failure == HttpAnswer::Failure::None && answer.status == 200
                            ? json::object(answer.body)
                            : std::nullopt;
    if (!object) return end(Result::failed("editor.error.server", answer.errorText));
    const auto change = attempt.taken(*object);
    if (!change) return end({.outcome = Outcome::NotFound});
    m_writer.write(attempt.meeting, *change, ProtocolWriter::Where::There, this,
                   [this](ProtocolWriter::Written written, const ProtocolChange& change) {
                       m_change = change;
                       m_unlisted = written == ProtocolWriter::Written::Unlisted;
                       end(Result::of(written));
                   });
}

void ProtocolEditor::end(const Result& result)
{
    m_outcome = result.outcome;
    m_failure = result.failure;
    emit changed();
    if (result.outcome == Outcome::Fixed) emit fixed(m_change.remark);
}

} // namespace murmeli
