#pragma once

#include <QList>
#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

namespace murmeli {

namespace settingKind {
Q_NAMESPACE
QML_NAMED_ELEMENT(SettingKind)
enum SettingKind { Toggle, Choice, Stepper, Action };
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

/// A row of the settings: a preference under a key of its own, or an action. Title and subtitle are the texts
/// "<id>.title" and "<id>.subtitle".
class SettingRow {
    Q_GADGET
    QML_VALUE_TYPE(settingRow)
    Q_PROPERTY(QString id MEMBER id FINAL)
    Q_PROPERTY(QString icon MEMBER icon FINAL)
    Q_PROPERTY(int kind MEMBER kind FINAL)
    Q_PROPERTY(bool dynamicSubtitle MEMBER dynamicSubtitle FINAL)
    Q_PROPERTY(bool on MEMBER on FINAL)
    Q_PROPERTY(QString choice MEMBER choice FINAL)
    Q_PROPERTY(QList<murmeli::SettingOption> options MEMBER options FINAL)
    Q_PROPERTY(int number MEMBER number FINAL)
    Q_PROPERTY(int least MEMBER least FINAL)
    Q_PROPERTY(int most MEMBER most FINAL)
    Q_PROPERTY(QString unitKey MEMBER unitKey FINAL)
    Q_PROPERTY(int action MEMBER action FINAL)
    Q_PROPERTY(QString buttonKey MEMBER buttonKey FINAL)
    Q_PROPERTY(QString hiddenWhenOn MEMBER hiddenWhenOn FINAL)

public:
    QString id;   ///< the preference's key too
    QString icon; ///< a symbol's name
    int kind = settingKind::Toggle;
    QString hiddenWhenOn; ///< the toggle that hides the row while it is on; empty: none does
    bool dynamicSubtitle = false;

    bool on = false; ///< a toggle's default
    QString choice;  ///< a choice's default
    QList<SettingOption> options;
    int number = 0; ///< a stepper's default, and its bounds
    int least = 0;
    int most = 0;
    QString unitKey;
    int action = settingAction::LoadInstructions;
    QString buttonKey;
    bool operator==(const SettingRow&) const = default;
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
