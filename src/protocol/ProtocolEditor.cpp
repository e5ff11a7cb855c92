#include "ProtocolEditor.h"

#include "ProtocolItems.h"
#include "account/AuthManager.h"
#include "base/Files.h"
#include "base/Http.h"
#include "base/Json.h"
#include "base/Processes.h"
#include "base/Scheduler.h"
#include "base/Text.h"
#include "localisation/Language.h"
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

/// The file as it is now, when the service has written to it since it was read; as it was when it cannot be
/// read now; empty when the very item has changed, since the correction was meant for another text.
QByteArray current(const QString& file, const QByteArray& summary, const QString& section, qsizetype index)
{
    const auto now = files::readWhole(file, summaryFile::sizeLimit);
    if (!now || *now == summary || !json::object(*now)) return summary;
    return itemText(*now, section, index) == itemText(summary, section, index) ? *now : QByteArray{};
}

} // namespace

ProtocolEditor::ProtocolEditor(Place place, const AuthManager& account, Http& http, Processes& processes,
                               const Language& language, const Scheduler& scheduler, QObject& rebuilding,
                               QObject* parent)
    : QObject(parent),
      m_place(std::move(place)),
      m_account(account),
      m_http(http),
      m_processes(processes),
      m_language(language),
      m_scheduler(scheduler),
      m_rebuilding(rebuilding)
{
}

QString ProtocolEditor::t(const char* key) const { return m_language.t(QString::fromLatin1(key)); }

void ProtocolEditor::end(Outcome outcome, const QString& text, const Done& done)
{
    m_outcome = outcome;
    m_text = text;
    emit changed();
    done(outcome == Outcome::Fixed);
}

void ProtocolEditor::reset()
{
    if (std::exchange(m_outcome, Outcome::Idle) != Outcome::Idle) emit changed();
}

void ProtocolEditor::apply(const QString& remark, const Meeting& meeting, const Done& done)
{
    const auto bytes = files::readWhole(meeting.jsonPath, summaryFile::sizeLimit);
    const auto summary = bytes ? json::object(*bytes) : std::nullopt;
    if (!summary) {
        end(Outcome::Failed, t("editor.error.read"), done);
        return;
    }
    const QList<ProtocolItem> items = protocolItems::editable(*summary);
    if (items.isEmpty()) {
        end(Outcome::NotFound, {}, done);
        return;
    }
    const QString token = m_account.freshToken();
    if (token.isEmpty()) {
        end(Outcome::Failed, t("editor.error.auth"), done);
        return;
    }
    m_outcome = Outcome::Working;
    emit changed();
    m_http.send({.method = "POST",
                 .url = QUrl{m_place.webOrigin + u"/api/assist/edit"_s},
                 .headers = {{"Content-Type", "application/json"}},
                 .body = requestBody(remark, items),
                 .bearer = token.toUtf8(),
                 .timeout = 120s},
                this, [this, bytes = *bytes, file = meeting.jsonPath, done](const HttpAnswer& answer) {
                    take(answer, bytes, file, done);
                });
}

void ProtocolEditor::take(const HttpAnswer& answer, const QByteArray& summary, const QString& file,
                          const Done& done)
{
    const auto object = answer.failure == HttpAnswer::Failure::None && answer.status == 200
                            ? json::object(answer.body)
                            : std::nullopt;
    if (!object) {
        end(Outcome::Failed, answer.errorText.isEmpty() ? t("editor.error.server") : answer.errorText, done);
        return;
    }
    const bool found = json::boolean(*object, "found"_L1).value_or(false);
    const auto section = json::optionalText(*object, "section"_L1);
    const auto index = json::integer(*object, "index"_L1);
    const QString text = murmeli::text::trimmed(json::text(*object, "text"_L1));
    const auto corrected = found && section && index && !text.isEmpty()
                               ? protocolItems::corrected(current(file, summary, *section, *index), *section,
                                                          *index, text, m_scheduler.now())
                               : std::nullopt;
    if (!corrected) {
        end(Outcome::NotFound, {}, done);
        return;
    }
    if (!files::writeAtomic(file, *corrected)) {
        end(Outcome::Failed, t("editor.error.save"), done);
        return;
    }
    m_section = *section;
    m_index = *index;
    rebuild(file);
    end(Outcome::Fixed, text, done);
}

void ProtocolEditor::rebuild(const QString& file)
{
    // Nobody waits for it: the protocol follows when it follows, also after the meeting has been left.
    if (!QFileInfo::exists(m_place.python)) return;
    m_processes.run({.program = m_place.python, .arguments = {m_place.rebuildScript, file}}, &m_rebuilding,
                    [](const ProcessResult&) {});
}

} // namespace murmeli
