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

#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace murmeli {

namespace {

using Outcome = ProtocolEditor::Outcome;

// The service may be rewriting the file at the very moment of an answer.
constexpr auto lookPause = 100ms;
constexpr int mostLooks = 20;

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

} // namespace

/// What has come of a remark so far.
struct ProtocolEditor::Result {
    Outcome outcome = Outcome::Working;
    Message failure = {};

    static Result failed(const char* errorKey, const QString& text = {})
    {
        return {.outcome = Outcome::Failed, .failure = Message::foreignOr(text, errorKey)};
    }
};

/// One remark on its way.
struct ProtocolEditor::Attempt {
    QString remark;
    QString stem;
    QString file;
    QByteArray summary = {}; ///< as it was when it was asked about
    QByteArray body = {};
    QString section = {};
    qsizetype index = 0;
    QString text = {}; ///< the item's new one
    int looks = 0;     ///< at the file, to write to it

    Result read();
    Result take(const HttpAnswer& answer);
    [[nodiscard]] Result write(double now) const;
};

ProtocolEditor::Result ProtocolEditor::Attempt::read()
{
    const auto bytes = files::readWhole(file, summaryFile::sizeLimit);
    const auto object = bytes ? json::object(*bytes) : std::nullopt;
    if (!object) return Result::failed("editor.error.read");
    const QList<ProtocolItem> items = protocolItems::editable(*object);
    if (items.isEmpty()) return {.outcome = Outcome::NotFound};
    summary = *bytes;
    body = requestBody(remark, items);
    return {};
}

ProtocolEditor::Result ProtocolEditor::Attempt::take(const HttpAnswer& answer)
{
    const auto object = answer.failure == HttpAnswer::Failure::None && answer.status == 200
                            ? json::object(answer.body)
                            : std::nullopt;
    if (!object) return Result::failed("editor.error.server", answer.errorText);
    const bool found = json::boolean(*object, "found"_L1).value_or(false);
    const auto foundSection = json::optionalText(*object, "section"_L1);
    const auto foundIndex = json::integer(*object, "index"_L1);
    text = text::trimmed(json::text(*object, "text"_L1));
    if (!found || !foundSection || !foundIndex || text.isEmpty()) return {.outcome = Outcome::NotFound};
    section = *foundSection;
    index = *foundIndex;
    return {};
}

/// Changes the file as it is now, since the service may have written to it. Still working while the service
/// is in the middle of that.
ProtocolEditor::Result ProtocolEditor::Attempt::write(double now) const
{
    files::removeUnfinished(file);
    const auto bytes = files::readWhole(file, summaryFile::sizeLimit);
    if (!bytes) return Result::failed("editor.error.save");
    if (!json::object(*bytes)) return looks < mostLooks ? Result{} : Result::failed("editor.error.save");
    // The correction was meant for another text.
    if (*bytes != summary && itemText(*bytes, section, index) != itemText(summary, section, index))
        return Result::failed("editor.error.changed");
    const auto corrected = protocolItems::corrected(*bytes, section, index, text, now);
    if (!corrected) return {.outcome = Outcome::NotFound};
    const auto unchanged = [&] { return files::readWhole(file, summaryFile::sizeLimit) == bytes; };
    switch (files::writeAtomicIf(file, *corrected, unchanged)) {
    case files::Written::Yes:
        return {.outcome = Outcome::Fixed};
    case files::Written::Overtaken:
        if (looks < mostLooks) return {};
        break;
    case files::Written::Failed:
        break;
    }
    return Result::failed("editor.error.save");
}

ProtocolEditor::ProtocolEditor(Place place, const AuthManager& account, Http& http, Processes& processes,
                               Scheduler& scheduler, QObject* parent)
    : QObject(parent),
      m_place(std::move(place)),
      m_account(account),
      m_http(http),
      m_processes(processes),
      m_scheduler(scheduler)
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

void ProtocolEditor::apply(const QString& remark, const Meeting& meeting)
{
    if (m_outcome == Outcome::Working) return;
    m_outcome = Outcome::Working;
    emit changed();
    const auto read =
        [attempt = Attempt{.remark = remark, .stem = meeting.id, .file = meeting.jsonPath}]() mutable {
            const Result result = attempt.read();
            return std::pair{attempt, result};
        };
    inBackground(this, read, [this](const auto& prepared) { ask(prepared.first, prepared.second); });
}

void ProtocolEditor::ask(const Attempt& attempt, const Result& prepared)
{
    const QString token = m_account.freshToken();
    if (prepared.outcome != Outcome::Working || token.isEmpty()) {
        end(attempt, prepared.outcome != Outcome::Working ? prepared : Result::failed(signInKey));
        return;
    }
    const auto take = [this, asked = attempt](const HttpAnswer& answer) {
        Attempt attempt = asked;
        const Result result = attempt.take(answer);
        if (result.outcome == Outcome::Working) {
            write(attempt);
        } else {
            end(attempt, result);
        }
    };
    m_http.send(Purpose{u"remark"_s, attempt.stem},
                {.method = "POST",
                 .url = QUrl{m_place.webOrigin + u"/api/assist/edit"_s},
                 .headers = {{"Content-Type", "application/json"}},
                 .body = attempt.body,
                 .bearer = token.toUtf8(),
                 .timeout = 120s},
                this, take);
}

void ProtocolEditor::write(const Attempt& attempt)
{
    const auto written = [attempt, now = m_scheduler.now()] { return attempt.write(now); };
    inBackground(this, written, [this, attempt](const Result& result) {
        if (result.outcome != Outcome::Working) {
            end(attempt, result);
            return;
        }
        Attempt again = attempt;
        ++again.looks;
        m_scheduler.after(lookPause, this, [this, again] { write(again); });
    });
}

void ProtocolEditor::end(const Attempt& attempt, const Result& result)
{
    m_outcome = result.outcome;
    m_failure = result.failure;
    m_text = attempt.text;
    m_section = attempt.section;
    m_index = attempt.index;
    emit changed();
    if (result.outcome != Outcome::Fixed) return;
    // Nobody waits for it: the protocol follows when it follows, also when we have gone.
    if (QFileInfo::exists(m_place.python))
        m_processes.startDetached(m_place.python, {m_place.rebuildScript, attempt.file});
    emit fixed(attempt.remark);
}

} // namespace murmeli
