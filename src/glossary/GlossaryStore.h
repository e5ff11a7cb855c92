#pragma once

#include "GlossaryText.h"
#include "base/Lease.h"
#include "localisation/Message.h"

#include <QDateTime>
#include <QObject>
#include <QtQml/qqmlregistration.h>

#include <functional>
#include <optional>
#include <vector>

namespace murmeli {

class AuthManager;
class Http;
struct HttpAnswer;
class Prefs;
class Scheduler;

/// The user's glossary: kept in the profile on the backend, with a copy in the preferences for the service.
/// What could not be sent stays in the copy and is sent with the next load by the same person. Main thread
/// only.
class GlossaryStore final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made once and handed to each view")
    Q_PROPERTY(bool loading READ loading NOTIFY changed FINAL)
    Q_PROPERTY(bool known READ known NOTIFY changed FINAL) ///< nothing here means that there is nothing
    Q_PROPERTY(murmeli::Message syncError READ syncError NOTIFY changed FINAL) ///< empty when all is well
    Q_PROPERTY(QDateTime savedAt READ savedAt NOTIFY changed FINAL) ///< invalid until a save succeeds

public:
    using Then = std::function<void(bool saved)>;

    /// Begins with the copy in the preferences, and asks the backend whenever somebody has signed in.
    GlossaryStore(AuthManager& account, Http& http, Prefs& prefs, Scheduler& scheduler,
                  QObject* parent = nullptr);

    [[nodiscard]] const QList<GlossaryEntry>& entries() const { return m_entries; }
    [[nodiscard]] bool known() const;
    /// Whose it is, as far as known: the account's identifier.
    [[nodiscard]] QString person() const { return m_person.value_or(QString{}); }
    [[nodiscard]] bool loading() const { return bool(m_load); }
    [[nodiscard]] Message syncError() const { return m_syncError; }
    [[nodiscard]] QDateTime savedAt() const { return m_savedAt; }

    /// Fetches the glossary; nothing when signed out.
    Q_INVOKABLE void reload();

    /// Replaces the glossary, here at once and then on the backend. \return false when it could be kept in
    /// neither place.
    bool save(const QList<GlossaryEntry>& entries, Then then = {});

    /// Adds or changes one rule and saves. \return its line, empty when there is nothing to learn, or it
    /// could not be kept.
    Q_INVOKABLE QString learn(const QString& heard, const QString& correct);

signals:
    void changed();
    void personChanged(); ///< what stands here now is another's
    void entriesChanged();
    void notStored(); ///< the copy in the preferences

private:
    void setEntries(const QString& text);
    void followPerson();
    bool keepCopy(const QString& text, bool sent);
    bool store(const QJsonObject& members);
    void loaded(const HttpAnswer& answer);
    void send();
    void finish(bool saved);

    AuthManager& m_account;
    Http& m_http;
    Prefs& m_prefs;
    Scheduler& m_scheduler;
    QList<GlossaryEntry> m_entries;
    QString m_base; ///< the text that we and the backend had in common last
    bool m_unsent;  ///< the backend has not got what is here; true also when the preferences cannot keep it
    std::optional<QString> m_person; ///< whose words these are, as far as known: the account's identifier
    std::vector<Then> m_waiting;     ///< for the running save
    bool m_loaded = false;           ///< what the backend has is known
    Message m_syncError;
    QDateTime m_savedAt;
    Lease m_load;
    Lease m_save; ///< a later save carries an earlier one's words too
};

} // namespace murmeli
