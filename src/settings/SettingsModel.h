#pragma once

#include "SettingsCatalog.h"
#include "permissions/PermissionsModel.h"
#include "receipts/SentModel.h"
#include "service/InstructionsFile.h"

#include <QJsonObject>
#include <QObject>
#include <QWindow>
#include <QtQml/qqmlregistration.h>

#include <functional>
#include <memory>
#include <optional>

namespace murmeli {

class AppState;
class AuthManager;
class Desktop;
class Language;
class OwnSettings;
struct Paths;
class Prefs;
class Processes;
class SearchIndex;
class Updater;

/// Reads and writes what the settings show, and carries out their actions. Main thread only.
class SettingsModel final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made once and handed to the settings")
    Q_PROPERTY(QList<murmeli::SettingSection> sections READ sections CONSTANT FINAL)
    Q_PROPERTY(QVariantMap states READ states NOTIFY changed FINAL) ///< a SettingState by its row's id
    Q_PROPERTY(bool telegramConnected READ telegramConnected NOTIFY changed FINAL)
    Q_PROPERTY(murmeli::SentModel* sent READ sent NOTIFY sentChanged FINAL) ///< null while nobody looks
    Q_PROPERTY(bool hasInstructions READ hasInstructions NOTIFY changed FINAL)

public:
    /// What the settings stand among; all of it outlives the model.
    struct Ground {
        const Paths& paths;
        Prefs& prefs;
        OwnSettings& own;
        const AppState& state;
        AuthManager& account;
        Updater& updater;
        SearchIndex& index;
        const Receipts& receipts;
        const Scheduler& scheduler;
        Language& language;
        Processes& processes;
        Desktop& desktop;
    };

    explicit SettingsModel(const Ground& ground, QObject* parent = nullptr);
    ~SettingsModel() override;
    Q_DISABLE_COPY_MOVE(SettingsModel)

    [[nodiscard]] const QList<SettingSection>& sections() const { return m_sections; }
    [[nodiscard]] const QVariantMap& states();
    [[nodiscard]] SettingState stateOf(const QString& id) { return states()[id].value<SettingState>(); }
    [[nodiscard]] bool telegramConnected() const;
    [[nodiscard]] bool hasInstructions() const { return m_instructionsSize.has_value(); }

    [[nodiscard]] SentModel* sent() const { return m_sent.get(); }
    Q_INVOKABLE void closeSent();

    /// What a pane of the settings asks of the permissions; goes with the pane.
    Q_INVOKABLE [[nodiscard]] murmeli::PermissionsModel* permissionsFor(QObject* pane);

    /// The settings have been opened: what was said of a file that was chosen earlier is past.
    Q_INVOKABLE void opened();

    /// Stores a preference, of a number the nearest within its bounds; nothing for an action.
    Q_INVOKABLE void set(const QString& id, const QVariant& value);

    /// A file dialog stands in front of `window`.
    Q_INVOKABLE void run(int action, QWindow* window);

    /// Takes a file as the instructions, as run() does once it is chosen.
    void loadInstructions(const QString& file);

    /// Looks what has changed on the disk.
    void refresh();

signals:
    void changed();
    void stored();            ///< by us
    void notStored();         ///< what was set
    void permissionsWanted(); ///< in sight
    void sentChanged();

private:
    /// The preference, or the default for a missing value, one of another type or one that is no option; of a
    /// number outside of its bounds the nearest bound.
    [[nodiscard]] QVariant value(const SettingRow& row) const;
    [[nodiscard]] Message subtitle(const SettingRow& row) const;
    [[nodiscard]] QString lead(const SettingRow& row) const;
    [[nodiscard]] QString buttonKey(const SettingRow& row) const;
    [[nodiscard]] QString secondKey(const SettingRow& row) const;
    [[nodiscard]] Message ownDataSubtitle() const;
    [[nodiscard]] Message indexSubtitle() const;
    void measureOwnData();
    void deleteOwnData();
    void store(const QString& key, const QJsonValue& value);
    void setLaunchAtLogin(bool on);
    void touch();

    Ground m_ground;
    std::unique_ptr<SentModel> m_sent;
    QList<SettingSection> m_sections;
    QVariantMap m_states; ///< empty until somebody looks
    QJsonObject m_seen;
    std::optional<qint64> m_instructionsSize; ///< bytes
    std::optional<qint64> m_ownBytes;         ///< of our own data; nothing until they are counted
    enum class Deletion { None, Asked, Failed };
    Deletion m_deletion = Deletion::None;                                ///< of them
    instructionsFile::Loaded m_loaded = instructionsFile::Loaded::Taken; ///< the file chosen last
};

} // namespace murmeli
