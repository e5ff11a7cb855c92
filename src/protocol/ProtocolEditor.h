#pragma once

#include "ProtocolWriter.h"
#include "localisation/Message.h"
#include "ui/Accent.h"

#include <QObject>
#include <QtQml/qqmlregistration.h>

namespace murmeli {

class AuthManager;
class Http;
struct HttpAnswer;
struct Meeting;

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
    Q_PROPERTY(bool needsSignIn READ needsSignIn NOTIFY changed FINAL)
    Q_PROPERTY(int accent READ accent NOTIFY changed FINAL) ///< an Accent

public:
    enum class Outcome { Idle, Working, Fixed, NotFound, Failed };
    Q_ENUM(Outcome)

    ProtocolEditor(QString webOrigin, const AuthManager& account, Http& http, ProtocolWriter& writer,
                   QObject* parent = nullptr);
    ~ProtocolEditor() override;
    Q_DISABLE_COPY_MOVE(ProtocolEditor)

    [[nodiscard]] Outcome outcome() const { return m_outcome; }
    [[nodiscard]] Message message() const;
    [[nodiscard]] bool needsSignIn() const { return message() == Message::of(signInKey); }
    [[nodiscard]] QString symbol() const; ///< empty while there is nothing to tell
    [[nodiscard]] accent::Accent accent() const;
    [[nodiscard]] const ProtocolChange& change() const { return m_change; } ///< that fixed it

    /// Sends a remark on `meeting`; nothing while another is on its way.
    void apply(const QString& remark, const Meeting& meeting);
    Q_INVOKABLE void reset();

signals:
    void changed();
    void fixed(const QString& remark); ///< the file was changed

private:
    static constexpr auto signInKey = "editor.error.auth";

    struct Attempt;
    struct Result;
    void ask(const Attempt& attempt, const Result& prepared);
    void take(const Attempt& attempt, const HttpAnswer& answer);
    void end(const Result& result);

    const QString m_webOrigin;
    const AuthManager& m_account;
    Http& m_http;
    ProtocolWriter& m_writer;
    Outcome m_outcome = Outcome::Idle;
    Message m_failure;
    ProtocolChange m_change;
    bool m_unlisted = false; ///< the change cannot be taken back
};

} // namespace murmeli
