#pragma once

#include "localisation/Message.h"
#include "ui/Accent.h"

#include <QObject>
#include <QtQml/qqmlregistration.h>

#include <functional>

namespace murmeli {

class AuthManager;
class Http;
struct Meeting;
struct Paths;
class Processes;
class Scheduler;

/// Corrects a protocol by a remark in plain words: the service finds the item that is meant and its new text,
/// which is written into the summary file. Main thread only.
class ProtocolEditor final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made for a meeting and handed to its view")
    Q_PROPERTY(Outcome outcome READ outcome NOTIFY changed FINAL)
    Q_PROPERTY(
        murmeli::Message message READ message NOTIFY changed FINAL) ///< of the outcome; so are its looks
    Q_PROPERTY(QString symbol READ symbol NOTIFY changed FINAL)
    Q_PROPERTY(int accent READ accent NOTIFY changed FINAL) ///< an Accent

public:
    enum class Outcome { Idle, Working, Fixed, NotFound, Failed };
    Q_ENUM(Outcome)

    struct Place {
        QString webOrigin;
        QString python;
        QString rebuildScript; ///< renders the protocol anew from its summary file
    };
    /// `changed` tells whether the file was.
    using Done = std::function<void(bool changed)>;

    /// \param background for as long as it lives, a remark that was sent is carried out, also when the editor
    /// has gone with its meeting's view.
    ProtocolEditor(Place place, const AuthManager& account, Http& http, Processes& processes,
                   const Scheduler& scheduler, QObject& background, QObject* parent = nullptr);

    [[nodiscard]] Outcome outcome() const { return m_outcome; }
    [[nodiscard]] Message message() const;
    [[nodiscard]] QString symbol() const; ///< empty while there is nothing to tell
    [[nodiscard]] accent::Accent accent() const;
    [[nodiscard]] QString section() const { return m_section; } ///< of the fixed item
    [[nodiscard]] qsizetype index() const { return m_index; }

    /// \param carriedOut runs after a change of the file, also when the editor has gone.
    void apply(const QString& remark, const Meeting& meeting, const Done& done,
               const std::function<void()>& carriedOut = {});
    Q_INVOKABLE void reset();

signals:
    void changed();

private:
    const Place m_place;
    const AuthManager& m_account;
    Http& m_http;
    Processes& m_processes;
    const Scheduler& m_scheduler;
    QObject& m_background;
    Outcome m_outcome = Outcome::Idle;
    Message m_failure;
    QString m_text; ///< the new one of the fixed item
    QString m_section;
    qsizetype m_index = 0;
};

} // namespace murmeli
