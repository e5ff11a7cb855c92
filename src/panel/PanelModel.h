#pragma once

#include "base/Lease.h"
#include "localisation/Message.h"
#include "service/RecordControl.h"

#include <QObject>
#include <QtQml/qqmlregistration.h>

#include <optional>

namespace murmeli {

class Language;
class Prefs;

/// What the panel says and what its controls do. Main thread only.
class PanelModel final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made once and handed to the panel")
    Q_PROPERTY(Face face READ face NOTIFY changed FINAL)
    Q_PROPERTY(Line lineKind READ lineKind NOTIFY changed FINAL)
    Q_PROPERTY(murmeli::Message title READ title NOTIFY changed FINAL)
    Q_PROPERTY(
        murmeli::Message line READ line NOTIFY changed FINAL) ///< under the title, unless the time runs there
    Q_PROPERTY(murmeli::Message usualLine READ usualLine NOTIFY changed FINAL) ///< while a summary is written
    Q_PROPERTY(murmeli::Message jobsLine READ jobsLine NOTIFY changed FINAL)
    Q_PROPERTY(murmeli::Message orbName READ orbName NOTIFY changed FINAL)
    Q_PROPERTY(murmeli::Message orbHelp READ orbHelp NOTIFY changed FINAL)
    Q_PROPERTY(murmeli::Message authTitle READ authTitle NOTIFY changed FINAL)
    Q_PROPERTY(murmeli::Message authBody READ authBody NOTIFY changed FINAL)
    Q_PROPERTY(murmeli::Message quitHelp READ quitHelp NOTIFY changed FINAL)
    Q_PROPERTY(QString format READ format WRITE setFormat NOTIFY preferencesChanged FINAL)
    Q_PROPERTY(bool autoRecord READ autoRecord WRITE setAutoRecord NOTIFY preferencesChanged FINAL)
    Q_PROPERTY(QString time READ time NOTIFY timeChanged FINAL) ///< of the running recording, as "24:31"
    Q_PROPERTY(QString spokenTime READ spokenTime NOTIFY timeChanged FINAL)
    Q_PROPERTY(bool hoverOrb READ hoverOrb WRITE setHoverOrb NOTIFY changed FINAL)
    Q_PROPERTY(QString version READ version CONSTANT FINAL)

public:
    enum class Face { Idle, Recording, Processing };
    Q_ENUM(Face)
    enum class Line { Waiting, Refused, Invitation, RunningTime, Subtitle };
    Q_ENUM(Line)

    PanelModel(const AppState& state, const RecordControl& record, Prefs& prefs, const Language& language,
               Scheduler& scheduler, QObject* parent = nullptr);

    [[nodiscard]] Face face() const;
    [[nodiscard]] Line lineKind() const;
    [[nodiscard]] Message title() const;
    [[nodiscard]] Message line() const;
    [[nodiscard]] Message usualLine() const;
    [[nodiscard]] Message jobsLine() const;
    [[nodiscard]] Message orbName() const;
    [[nodiscard]] Message orbHelp() const;
    [[nodiscard]] Message authTitle() const;
    [[nodiscard]] Message authBody() const;
    [[nodiscard]] Message quitHelp() const;
    [[nodiscard]] QString format() const { return m_format; }
    [[nodiscard]] bool autoRecord() const { return m_autoRecord; }
    [[nodiscard]] QString time() const;
    [[nodiscard]] QString spokenTime() const;
    [[nodiscard]] bool hoverOrb() const { return m_hoverOrb; }
    [[nodiscard]] static QString version();

    /// A panel has come on screen, or gone from it. While there is none, no clock runs.
    Q_INVOKABLE void watch();
    Q_INVOKABLE void unwatch();

    void setFormat(const QString& format);
    void setAutoRecord(bool on);
    void setHoverOrb(bool over);

    /// In which the summary that is being written is usually ready; nothing when nobody knows.
    void setUsualMinutes(std::optional<qint64> minutes);

    /// Looks which preferences have changed.
    void readPreferences();

signals:
    void changed();
    void preferencesChanged();
    void notStored(); ///< a preference
    void timeChanged();

    // What the panel's buttons ask for.
    void mainWindowRequested();
    void meetingsRequested();
    void settingsRequested();
    void botRequested();
    void updateRequested();
    void quitRequested();

private:
    [[nodiscard]] qint64 elapsedSeconds() const;
    void runClock();

    const AppState& m_state;
    const RecordControl& m_record;
    Prefs& m_prefs;
    const Language& m_language;
    Scheduler& m_scheduler;
    QString m_format;
    bool m_autoRecord = true;
    bool m_hoverOrb = false;
    std::optional<qint64> m_usualMinutes;
    int m_watchers = 0; ///< panels on screen
    Lease m_clock;      ///< tells the time once a second
};

} // namespace murmeli
