#include "GlossaryStore.h"

#include "account/AuthManager.h"
#include "base/Http.h"
#include "base/Json.h"
#include "base/Scheduler.h"
#include "localisation/Language.h"
#include "service/Prefs.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <utility>

using namespace Qt::StringLiterals;

namespace murmeli {

namespace {

const QString copyKey = u"glossary"_s;
const QString unsentKey = u"glossary_unsent"_s; // the copy holds what the backend has not got yet

/// The glossary in an answer; nothing when the answer is no list of profiles.
std::optional<QString> textIn(const QByteArray& answer)
{
    const QJsonDocument document = QJsonDocument::fromJson(answer);
    if (!document.isArray()) return std::nullopt;
    const QJsonArray profiles = document.array();
    if (profiles.isEmpty()) return QString{};
    if (!profiles[0].isObject()) return std::nullopt; // rather no glossary than a lost one
    return profiles[0][u"glossary"_s].toString();
}

} // namespace

GlossaryStore::GlossaryStore(AuthManager& account, Http& http, Prefs& prefs, const Language& language,
                             Scheduler& scheduler, QObject* parent)
    : QObject(parent),
      m_account(account),
      m_http(http),
      m_prefs(prefs),
      m_language(language),
      m_scheduler(scheduler),
      m_entries(glossaryText::parseAll(prefs.string(copyKey, {})))
{
    reload();
    connect(&account, &AuthManager::changed, this, [this, was = account.isAuthed()]() mutable {
        if (std::exchange(was, m_account.isAuthed()) != m_account.isAuthed()) reload();
    });
}

void GlossaryStore::setEntries(const QString& text)
{
    const auto entries = glossaryText::parseAll(text);
    if (std::exchange(m_entries, entries) != entries) emit entriesChanged();
}

void GlossaryStore::keepCopy(const QString& text, bool sent)
{
    if (m_prefs.string(copyKey, {}) != text || !m_prefs.load().contains(copyKey)) m_prefs.set(copyKey, text);
    if (m_prefs.boolean(unsentKey, false) == sent) m_prefs.set(unsentKey, !sent);
}

QString GlossaryStore::problem(const HttpAnswer& answer, const char* key) const
{
    return answer.errorText.isEmpty() ? m_language.t(QString::fromLatin1(key)) : answer.errorText;
}

void GlossaryStore::reload()
{
    const QString token = m_account.freshToken();
    if (token.isEmpty() || m_loading) return;
    if (m_prefs.boolean(unsentKey, false)) {
        save(m_entries);
        return;
    }
    m_loading = true;
    emit changed();
    const auto request = m_account.backend().request("GET", u"/rest/v1/profiles?select=glossary"_s, token);
    m_http.send(request, this, [this, save = m_save](const HttpAnswer& answer) {
        m_loading = false;
        if (save == m_save) loaded(answer);
        emit changed();
        afterLoading();
    });
}

void GlossaryStore::loaded(const HttpAnswer& answer)
{
    const auto text = textIn(answer.body);
    if (!text) {
        m_syncError = problem(answer, "assistant.error.load");
        return;
    }
    m_syncError.clear();
    setEntries(*text);
    keepCopy(*text, true);
}

void GlossaryStore::afterLoading()
{
    for (const GlossaryEntry& rule : std::exchange(m_toLearn, {}))
        learn(rule.heard, rule.correct);
}

void GlossaryStore::save(const QList<GlossaryEntry>& entries, Then then)
{
    const QString text = glossaryText::serialised(entries);
    setEntries(text);
    keepCopy(text, false);
    const QString token = m_account.freshToken();
    if (token.isEmpty()) {
        m_syncError = m_language.t(u"assistant.error.auth"_s);
        emit changed();
        if (then) then(false);
        return;
    }
    auto request =
        m_account.backend().request("PATCH", u"/rest/v1/profiles"_s, token, {{u"glossary"_s, text}});
    request.headers.emplaceBack("Prefer", "return=minimal");
    m_http.send(request, this,
                [this, text, then = std::move(then), save = ++m_save](const HttpAnswer& answer) {
                    const bool saved = answer.ok();
                    if (saved) {
                        m_syncError.clear();
                        m_savedAt = QDateTime::fromMSecsSinceEpoch(qint64(m_scheduler.now() * 1000));
                        if (save == m_save) keepCopy(text, true);
                    } else {
                        m_syncError = problem(answer, "assistant.error.save");
                    }
                    emit changed();
                    if (then) then(saved);
                });
}

bool GlossaryStore::learn(const QString& heard, const QString& correct)
{
    const auto entries = glossaryText::learned(m_entries, heard, correct);
    if (!entries) return false;
    if (m_loading) {
        m_toLearn.append({heard, correct}); // the list that is on its way must not be overwritten unseen
    } else {
        save(*entries);
    }
    return true;
}

} // namespace murmeli
