#pragma once

#include "base/Files.h"
#include "localisation/Message.h"
#include "ui/Accent.h"

#include <QObject>
#include <QtQml/qqmlregistration.h>

#include <functional>
#include <memory>
#include <optional>

class QTemporaryDir;

namespace murmeli {

class Desktop;
struct Meeting;
struct Paths;
class Processes;

/// Makes a PDF of a protocol through the engine's script, which may take minutes. What stood at its
/// destination stays untouched until the new file is whole. Main thread only; a build ends with this object.
class ProtocolFileMaker final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made for a meeting and handed to its view")
    Q_PROPERTY(Outcome outcome READ outcome NOTIFY changed FINAL)
    Q_PROPERTY(
        murmeli::Message message READ message NOTIFY changed FINAL) ///< of the outcome; so are its looks
    Q_PROPERTY(QString symbol READ symbol NOTIFY changed FINAL)
    Q_PROPERTY(int accent READ accent NOTIFY changed FINAL) ///< an Accent

public:
    enum class Outcome { Idle, Working, Saved, Outdated, Failed };
    Q_ENUM(Outcome)

    ProtocolFileMaker(const Paths& paths, Processes& processes, Desktop& desktop, QObject* parent = nullptr);
    ~ProtocolFileMaker() override;
    Q_DISABLE_COPY_MOVE(ProtocolFileMaker)

    [[nodiscard]] Outcome outcome() const { return m_outcome; }
    [[nodiscard]] Message message() const;
    [[nodiscard]] QString symbol() const; ///< empty while a spinner tells
    [[nodiscard]] accent::Accent accent() const;

    [[nodiscard]] const QString& lastBuilt() const { return m_lastBuilt; } ///< its path

    /// Day and title, as a file may be called. \param ending after the dot.
    static QString suggestedName(const Meeting& meeting, const QString& ending = QStringLiteral("pdf"));

    /// Builds at `destination`, which the user has chosen, and puts the file on the clipboard.
    void save(const Meeting& meeting, const QString& destination);

    /// Builds for passing on, or takes what was built before; then shared() tells where. What was built
    /// before the summary's latest change is Outdated.
    void share(const Meeting& meeting);
    void shareAnew(const Meeting& meeting);

    Q_INVOKABLE void reset();

signals:
    void changed();
    void saveEnded(); ///< as the outcome says
    void shared(const QString& path);

private:
    void build(const Meeting& meeting, const QString& destination, std::function<void(bool built)> done);
    void end(Outcome outcome, const QString& saved = {});

    QString m_python;
    QString m_script;
    Processes& m_processes;
    Desktop& m_desktop;
    Outcome m_outcome = Outcome::Idle;
    QString m_saved;      ///< the file's name
    QString m_unfinished; ///< what the script is writing, beside its destination
    QString m_lastSource;
    files::Identity m_lastState; ///< of the source, when it was built from
    QString m_lastBuilt;
    std::unique_ptr<QTemporaryDir> m_shareFolder;
};

} // namespace murmeli
