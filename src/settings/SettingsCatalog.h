#pragma once

#include "localisation/Message.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QVariant>
#include <QtQml/qqmlregistration.h>

#include <variant>

namespace murmeli {

namespace settingKind {
Q_NAMESPACE
QML_NAMED_ELEMENT(SettingKind)
enum SettingKind { Toggle, Choice, Stepper, Action }; // in the order of SettingRow::control
Q_ENUM_NS(SettingKind)
} // namespace settingKind

/// What the buttons of the settings do.
namespace settingAction {
Q_NAMESPACE
QML_NAMED_ELEMENT(SettingAction)
enum SettingAction {
    LoadInstructions,
    ClearInstructions,
    ConnectTelegram,
    OpenRecordings,
    CheckUpdate,
    OpenLogs,
    OpenAccount,
    ShowOwnData,
    RebuildSearchIndex,
    ShowSent,
    DeleteOwnData, ///< asks first
};
Q_ENUM_NS(SettingAction)
} // namespace settingAction

/// One value of a choice, and the key of its text.
class SettingOption {
    Q_GADGET
    QML_VALUE_TYPE(settingOption)
    Q_PROPERTY(QString value MEMBER value FINAL)
    Q_PROPERTY(QString labelKey MEMBER labelKey FINAL)

public:
    QString value;
    QString labelKey;
    bool operator==(const SettingOption&) const = default;
};

// What changes a setting, by its kind, with the value that counts where none is stored.

struct ToggleSetting {
    Q_GADGET
    QML_VALUE_TYPE(toggleSetting)

public:
    bool fallback = false;
    bool operator==(const ToggleSetting&) const = default;
};

struct ChoiceSetting {
    Q_GADGET
    QML_VALUE_TYPE(choiceSetting)
    Q_PROPERTY(QList<murmeli::SettingOption> options MEMBER options FINAL)

public:
    QString fallback;
    QList<SettingOption> options;
    bool operator==(const ChoiceSetting&) const = default;
};

struct StepperSetting {
    Q_GADGET
    QML_VALUE_TYPE(stepperSetting)
    Q_PROPERTY(int least MEMBER least FINAL)
    Q_PROPERTY(int most MEMBER most FINAL)
    Q_PROPERTY(QString unitKey MEMBER unitKey FINAL)

public:
    int fallback = 0;
    int least = 0;
    int most = 0;
    QString unitKey;
    bool operator==(const StepperSetting&) const = default;
};

struct ActionSetting {
    Q_GADGET
    QML_VALUE_TYPE(actionSetting)
    Q_PROPERTY(int action MEMBER action FINAL)
    Q_PROPERTY(int second MEMBER second FINAL)

public:
    int action = settingAction::LoadInstructions;
    QString buttonKey; ///< unless something else is to be done now
    int second = -1;   ///< another action; none when negative
    bool operator==(const ActionSetting&) const = default;
};

/// A row of the settings: a preference under a key of its own, or an action. Its title is the text
/// "<id>.title".
class SettingRow {
    Q_GADGET
    QML_VALUE_TYPE(settingRow)
    Q_PROPERTY(QString id MEMBER id FINAL)
    Q_PROPERTY(QString icon MEMBER icon FINAL)
    Q_PROPERTY(int kind READ kind FINAL)
    Q_PROPERTY(QVariant control READ controlForViews FINAL) ///< of the kind's own type

public:
    QString id;   ///< the preference's key too
    QString icon; ///< a symbol's name
    std::variant<ToggleSetting, ChoiceSetting, StepperSetting, ActionSetting> control;
    bool own = false;     ///< a preference that the service need not know
    QString hiddenWhenOn; ///< the toggle that hides the row while it is on; empty: none does

    [[nodiscard]] int kind() const { return int(control.index()); } ///< a SettingKind
    [[nodiscard]] QVariant controlForViews() const
    {
        return std::visit([](const auto& kind) { return QVariant::fromValue(kind); }, control);
    }
    bool operator==(const SettingRow&) const = default;
};

/// What a row shows now.
struct SettingState {
    Q_GADGET
    QML_VALUE_TYPE(settingState)
    Q_PROPERTY(QVariant value MEMBER value FINAL)
    Q_PROPERTY(QString lead MEMBER lead FINAL)
    Q_PROPERTY(murmeli::Message subtitle MEMBER subtitle FINAL)
    Q_PROPERTY(QString buttonKey MEMBER buttonKey FINAL)
    Q_PROPERTY(QString secondKey MEMBER secondKey FINAL)
    Q_PROPERTY(bool hidden MEMBER hidden FINAL)

public:
    QVariant value; ///< a boolean, a text or a number; invalid for an action
    QString lead;   ///< what the subtitle begins with: a version, an address; empty for most
    Message subtitle;
    QString buttonKey; ///< of an action
    QString secondKey; ///< of its second
    bool hidden = false;
};

/// Its heading is the text "section.<id>".
class SettingSection {
    Q_GADGET
    QML_VALUE_TYPE(settingSection)
    Q_PROPERTY(QString id MEMBER id FINAL)
    Q_PROPERTY(QList<murmeli::SettingRow> rows MEMBER rows FINAL)

public:
    QString id;
    QList<SettingRow> rows;
};

namespace SettingsCatalog {

/// All sections in their order. \param language the interface's when the settings are first seen.
QList<SettingSection> sections(const QString& language);

} // namespace SettingsCatalog

} // namespace murmeli
