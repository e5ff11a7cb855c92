#include "GlossaryStore.h"

#include "account/AuthManager.h"
#include "account/Tokens.h"
#include "base/Http.h"
#include "base/Json.h"
#include "base/Scheduler.h"
#include "base/Text.h"
#include "service/Prefs.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <utility>

using namespace Qt::StringLiterals;

namespace murmeli {

namespace {

constexpr qint64 mostWords = 8 * 1024 * 1024; // bytes of an answer; 20 000 rules have about one and a half

const QString copyKey = QString::fromLatin1(pref::glossary.name);
const QString baseKey = QString::fromLatin1(pref::glossaryBase.name);
const QString personKey = QString::fromLatin1(pref::glossaryPerson.name);
const QString othersKey = QString::fromLatin1(pref::glossaryUnsent);

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

std::optional<QString> ownerOfCopy(const Prefs& prefs)
{
    const QString owner = prefs.string(personKey, {});
    return owner.isEmpty() ? std::nullopt : std::optional{owner};
}

} // namespace

GlossaryStore::GlossaryStore(AuthManager& account, Http& http, Prefs& prefs, Scheduler& scheduler,
                             QObject* parent)
    : QObject(parent),
      m_account(account),
      m_http(http),
      m_prefs(prefs),
      m_scheduler(scheduler),
      m_entries(glossaryText::parseAll(prefs.string(copyKey, {}))),
      m_base(prefs.string(baseKey, prefs.string(copyKey, {}))),
      m_unsent(prefs.load().value(baseKey).isString()),
      m_person(ownerOfCopy(prefs))
{
    followPerson();
    reload();
    connect(&account, &AuthManager::changed, this, [this, was = account.accessToken()]() mutable {
        if (std::exchange(was, m_account.accessToken()) == m_account.accessToken()) return;
        // Another person's glossary, perhaps: what is on its way is nobody's now.
        m_loaded = false;
        m_load.end();
        m_save.end();
        finish(false);
        followPerson();
        reload();
        emit changed();
    });
}

void GlossaryStore::followPerson()
{
    const auto person = tokens::subject(m_account.accessToken());
    if (!person) return; // signed out: whose words they are is known only at the next sign-in
    const auto before = std::exchange(m_person, person);
    if (before == person) return;
    if (!before) { // the first to sign in here
        if (m_unsent || !m_entries.isEmpty()) store({{personKey, *person}});
        return;
    }
    QJsonObject others = m_prefs.load().value(othersKey).toObject();
    if (m_unsent) {
        others[*before] = QJsonObject{{u"text"_s, glossaryText::serialised(m_entries)}, {u"base"_s, m_base}};
    }
    const QJsonObject own = others.take(*person).toObject();
    const QString text = own[u"text"_s].toString();
    m_base = own[u"base"_s].toString();
    m_unsent = !own.isEmpty();
    m_savedAt = {};
    m_syncError = {};
    setEntries(text);
    emit personChanged();
    // In one write, so that no interruption gives one person's words to another.
    store({{othersKey, others},
           {baseKey, m_unsent ? QJsonValue{m_base} : QJsonValue{}},
           {copyKey, text},
           {personKey, *person}});
    emit changed();
}

void GlossaryStore::setEntries(const QString& text)
{
    const auto entries = glossaryText::parseAll(text);
    if (std::exchange(m_entries, entries) != entries) emit entriesChanged();
}

bool GlossaryStore::keepCopy(const QString& text, bool sent)
{
    m_unsent = !sent;
    if (sent) m_base = text;
    QJsonObject members{{copyKey, text}};
    if (!sent) members[baseKey] = m_base;
    if (sent && m_prefs.load().contains(baseKey)) members[baseKey] = QJsonValue::Null;
    if (m_person) members[personKey] = *m_person;
    return store(members);
}

bool GlossaryStore::store(const QJsonObject& members)
{
    const bool stored = m_prefs.set(members);
    if (!stored) emit notStored();
    return stored;
}

bool GlossaryStore::known() const { return m_loaded || !m_account.isAuthed(); }

void GlossaryStore::reload()
{
    const QString token = m_account.freshToken();
    if (token.isEmpty() || m_load) return;
    QObject* load = m_load.renew();
    emit changed();
    auto request = m_account.backend().request("GET", u"/rest/v1/profiles?select=glossary"_s, token);
    request.answerLimit = mostWords;
    m_http.send(Purpose{u"glossary"_s}, request, load, [this](const HttpAnswer& answer) {
        m_load.end();
        loaded(answer);
        emit changed();
    });
}

void GlossaryStore::loaded(const HttpAnswer& answer)
{
    const auto text = textIn(answer.body);
    if (!text) {
        m_syncError = Message::foreignOr(answer.errorText,
                                         m_waiting.empty() ? "assistant.error.load" : "assistant.error.save");
        finish(false);
        return;
    }
    m_loaded = true;
    if (!m_unsent) {
        m_syncError = {};
        setEntries(*text);
        keepCopy(*text, true);
        finish(true);
        return;
    }
    // What was written here meanwhile joins what came there meanwhile.
    const auto base = glossaryText::parseAll(m_base);
    const QString merged =
        glossaryText::serialised(glossaryText::merged(base, m_entries, glossaryText::parseAll(*text)));
    setEntries(merged);
    keepCopy(merged, false);
    send();
}

bool GlossaryStore::save(const QList<GlossaryEntry>& entries, Then then)
{
    const QString text = glossaryText::serialised(entries);
    setEntries(text);
    const bool kept = keepCopy(text, false);
    if (m_account.freshToken().isEmpty()) {
        m_syncError = Message::of("assistant.error.auth");
        emit changed();
        if (then) then(false);
        return kept;
    }
    if (then) m_waiting.push_back(std::move(then));
    if (m_loaded) {
        send();
    } else {
        reload(); // what is there must not be overwritten unseen
    }
    return true;
}

void GlossaryStore::send()
{
    const QString text = glossaryText::serialised(m_entries);
    auto request = m_account.backend().request("PATCH", u"/rest/v1/profiles"_s, m_account.freshToken(),
                                               {{u"glossary"_s, text}});
    request.headers.emplaceBack("Prefer", "return=minimal");
    m_http.send(Purpose{u"glossary"_s, {}, {u"glossary"_s}}, request, m_save.renew(),
                [this, text](const HttpAnswer& answer) {
                    if (answer.ok()) {
                        m_syncError = {};
                        m_savedAt = m_scheduler.moment();
                        keepCopy(text, true);
                    } else {
                        m_syncError = Message::foreignOr(answer.errorText, "assistant.error.save");
                    }
                    finish(answer.ok());
                    emit changed();
                });
}

void GlossaryStore::finish(bool saved)
{
    for (const Then& then : std::exchange(m_waiting, {}))
        then(saved);
}

QString GlossaryStore::learn(const QString& heard, const QString& correct)
{
    // A line break would make two rules of it.
    const GlossaryEntry entry{text::trimmed(text::oneLine(heard)), text::trimmed(text::oneLine(correct))};
    const auto entries = glossaryText::learned(m_entries, entry.heard, entry.correct);
    if (!entries) return {};
    return save(*entries) ? entry.line() : QString{};
}

} // namespace murmeli
