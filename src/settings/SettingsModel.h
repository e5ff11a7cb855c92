#pragma once

#include "SettingsCatalog.h"
#include "permissions/PermissionsModel.h"
#include "service/InstructionsFile.h"

#include <QJsonObject>
#include <QObject>
#include <QWindow>
#include <QtQml/qqmlregistration.h>

#include <functional>
#include <optional>

namespace murmeli {

class AppState;
class AuthManager;
class Desktop;
class Language;
struct Paths;
class Prefs;
class Processes;
class Updater;

/// Reads and writes what the settings show, and carries out their actions. Main thread only.
class SettingsModel final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made once and handed to the settings")
    Q_PROPERTY(QList<murmeli::SettingSection> sections READ sections CONSTANT FINAL)
    /// Grows whenever a value or a subtitle may have changed; views hand it to the functions that they read
    /// by.
    Q_PROPERTY(int revision READ revision NOTIFY changed FINAL)
    Q_PROPERTY(bool telegramConnected READ telegramConnected NOTIFY changed FINAL)
    Q_PROPERTY(bool hasInstructions READ hasInstructions NOTIFY changed FINAL)

public:
    /// What the settings stand among; all of it outlives the model.
    struct Ground {
        const Paths& paths;
        Prefs& prefs;
        const AppState& state;
        AuthManager& account;
        Updater& updater;
        Language& language;
        Processes& processes;
        Desktop& desktop;
    };

    explicit SettingsModel(const Ground& ground, QObject* parent = nullptr);
    ~SettingsModel() override;
    Q_DISABLE_COPY_MOVE(SettingsModel)

    [[nodiscard]] const QList<SettingSection>& sections() const { return m_sections; }
    [[nodiscard]] int revision() const { return m_revision; }
    [[nodiscard]] bool telegramConnected() const;
    [[nodiscard]] bool hasInstructions() const { return m_instructionsSize.has_value(); }

    /// What a pane of the settings asks of the permissions; goes with the pane.
    Q_INVOKABLE [[nodiscard]] murmeli::PermissionsModel* permissionsFor(QObject* pane);

    /// The settings have been opened: what was said of a file that was chosen earlier is past.
    Q_INVOKABLE void opened();

    // The preferences, each with its default for a missing value or one of another type. Of a number outside
    // of its bounds the nearest bound counts, and is stored.
    Q_INVOKABLE [[nodiscard]] bool boolean(const QString& key, int revision) const;
    Q_INVOKABLE void setBool(const QString& key, bool value);
    Q_INVOKABLE [[nodiscard]] QString string(const QString& key, int revision) const;
    Q_INVOKABLE void setString(const QString& key, const QString& value);
    Q_INVOKABLE [[nodiscard]] int integer(const QString& key, int revision) const;
    Q_INVOKABLE void setInt(const QString& key, int value);

    /// Whether a row is hidden by a toggle.
    Q_INVOKABLE [[nodiscard]] bool hides(const murmeli::SettingRow& row, int revision) const;
    Q_INVOKABLE [[nodiscard]] QString subtitle(const murmeli::SettingRow& row, const QString& language,
                                               int revision) const;
    Q_INVOKABLE [[nodiscard]] QString buttonKey(const murmeli::SettingRow& row, int revision) const;

    /// A file dialog stands in front of `window`.
    Q_INVOKABLE void run(int action, QWindow* window);

    /// Takes a file as the instructions, as run() does once it is chosen.
    void loadInstructions(const QString& file);

    /// Looks what has changed on the disk.
    void refresh();

signals:
    void changed();
    void stored(); ///< by us

private:
    [[nodiscard]] const SettingRow* find(const QString& key) const;
    [[nodiscard]] QString versionSubtitle(const QString& language) const;
    void store(const QString& key, const QJsonValue& value);
    void touch();

    Ground m_ground;
    QList<SettingSection> m_sections;
    int m_revision = 0;
    QJsonObject m_seen;
    std::optional<qint64> m_instructionsSize;                            ///< bytes
    instructionsFile::Loaded m_loaded = instructionsFile::Loaded::Taken; ///< the file chosen last
};

} // namespace murmeli
