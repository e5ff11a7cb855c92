#include "SettingsCatalog.h"

#include "service/OwnSettings.h"
#include "service/PrefKeys.h"

using namespace Qt::StringLiterals;

namespace murmeli::SettingsCatalog {

namespace {

SettingRow toggle(const PrefKey<bool>& key, const QString& icon)
{
    return {.id = QString::fromLatin1(key.name), .icon = icon, .control = ToggleSetting{key.fallback}};
}

SettingRow choice(const PrefKey<const char*>& key, const QString& icon, const QString& fallback,
                  const QList<SettingOption>& options)
{
    return {.id = QString::fromLatin1(key.name), .icon = icon, .control = ChoiceSetting{fallback, options}};
}

SettingRow stepper(const NumberPrefKey& key, const QString& icon, const QString& unitKey)
{
    return {.id = QString::fromLatin1(key.name),
            .icon = icon,
            .control = StepperSetting{key.fallback, key.least, key.most, unitKey}};
}

SettingRow action(const QString& id, const QString& icon, settingAction::SettingAction action,
                  const QString& buttonKey)
{
    return {.id = id, .icon = icon, .control = ActionSetting{action, buttonKey}};
}

SettingOption option(const QString& value, const QString& labelKey)
{
    SettingOption result;
    result.value = value;
    result.labelKey = labelKey;
    return result;
}

SettingSection section(const QString& id, const QList<SettingRow>& rows)
{
    SettingSection result;
    result.id = id;
    result.rows = rows;
    return result;
}

} // namespace

QList<SettingSection> sections(const QString& language)
{
    SettingRow keepDays = stepper(pref::keepSourceDays, u"calendar"_s, u"unit.days"_s);
    keepDays.hiddenWhenOn = QString::fromLatin1(pref::deleteSourceOnSuccess.name);

    SettingRow remindLong = toggle(ownSetting::remindLong, u"timer"_s);
    remindLong.own = true;
    SettingRow lockAll = toggle(ownSetting::lockAll, u"lock"_s);
    lockAll.own = true;
    const SettingRow ownData{.id = u"own_data"_s,
                             .icon = u"folder"_s,
                             .control = ActionSetting{settingAction::ShowOwnData, u"own_data.action"_s,
                                                      settingAction::DeleteOwnData}};

    return {
        section(u"general"_s,
                {choice(pref::locale, u"globe"_s, language,
                        {option(u"ru"_s, u"locale.ru"_s), option(u"en"_s, u"locale.en"_s)}),
                 toggle(pref::notifications, u"bell"_s), toggle(pref::launchAtLogin, u"power"_s)}),
        section(u"recording"_s, {toggle(pref::autoRecord, u"waveform"_s),
                                 stepper(pref::maxRecordHours, u"timer"_s, u"unit.hours"_s)}),
        section(u"protocol"_s, {action(u"instructions"_s, u"doc.badge.gearshape"_s,
                                       settingAction::LoadInstructions, u"instructions.load"_s)}),
        section(
            u"delivery"_s,
            {choice(pref::protocolFormat, u"doc.text"_s, QString::fromLatin1(pref::protocolFormat.fallback),
                    {option(u"full"_s, u"protocol_format.full"_s),
                     option(u"short"_s, u"protocol_format.short"_s)}),
             toggle(pref::sendTelegram, u"paperplane"_s),
             action(u"telegram"_s, u"link"_s, settingAction::ConnectTelegram, u"telegram.action"_s)}),
        section(u"storage"_s, {toggle(pref::deleteSourceOnSuccess, u"trash"_s), keepDays,
                               action(u"open_recordings"_s, u"folder"_s, settingAction::OpenRecordings,
                                      u"open_recordings.action"_s)}),
        section(
            u"about"_s,
            {action(u"version"_s, u"arrow.down.circle"_s, settingAction::CheckUpdate,
                    u"check_update.action"_s),
             action(u"account"_s, u"person.crop.circle"_s, settingAction::OpenAccount, u"account.action"_s),
             action(u"open_logs"_s, u"doc.plaintext"_s, settingAction::OpenLogs, u"open_logs.action"_s)}),
        section(u"own"_s,
                {remindLong, lockAll,
                 action(u"sent"_s, u"arrow.up"_s, settingAction::ShowSent, u"sent.action"_s), ownData,
                 action(u"search_index"_s, u"magnifyingglass"_s, settingAction::RebuildSearchIndex,
                        u"search_index.action"_s)}),
    };
}

} // namespace murmeli::SettingsCatalog
