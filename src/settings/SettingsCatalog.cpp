#include "SettingsCatalog.h"

using namespace Qt::StringLiterals;

namespace murmeli::SettingsCatalog {

namespace {

SettingRow toggle(const QString& key, const QString& icon, bool on)
{
    return {.id = key, .icon = icon, .kind = settingKind::Toggle, .on = on};
}

SettingRow choice(const QString& key, const QString& icon, const QString& value,
                  const QList<SettingOption>& options)
{
    return {.id = key, .icon = icon, .kind = settingKind::Choice, .choice = value, .options = options};
}

SettingRow stepper(const QString& key, const QString& icon, int number, SettingsDefaults::Range range,
                   const QString& unitKey)
{
    return {.id = key,
            .icon = icon,
            .kind = settingKind::Stepper,
            .number = number,
            .least = range.least,
            .most = range.most,
            .unitKey = unitKey};
}

SettingRow action(const QString& id, const QString& icon, settingAction::SettingAction action,
                  const QString& buttonKey, bool dynamicSubtitle)
{
    return {.id = id,
            .icon = icon,
            .kind = settingKind::Action,
            .dynamicSubtitle = dynamicSubtitle,
            .action = action,
            .buttonKey = buttonKey};
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
    using namespace SettingsDefaults;
    SettingRow keepDays =
        stepper(u"keep_source_days"_s, u"calendar"_s, keepSourceDays, keepSourceDaysRange, u"unit.days"_s);
    keepDays.hiddenWhenOn = u"delete_source_on_success"_s;

    return {
        section(u"general"_s, {choice(u"locale"_s, u"globe"_s, language,
                                      {option(u"ru"_s, u"locale.ru"_s), option(u"en"_s, u"locale.en"_s)}),
                               toggle(u"notifications"_s, u"bell"_s, notifications),
                               toggle(u"launch_at_login"_s, u"power"_s, launchAtLogin)}),
        section(u"recording"_s, {toggle(u"auto_record"_s, u"waveform"_s, autoRecord),
                                 stepper(u"max_record_hours"_s, u"timer"_s, maxRecordHours,
                                         maxRecordHoursRange, u"unit.hours"_s)}),
        section(u"protocol"_s, {action(u"instructions"_s, u"doc.badge.gearshape"_s,
                                       settingAction::LoadInstructions, u"instructions.load"_s, true)}),
        section(
            u"delivery"_s,
            {choice(u"protocol_format"_s, u"doc.text"_s, QString::fromLatin1(protocolFormat),
                    {option(u"full"_s, u"protocol_format.full"_s),
                     option(u"short"_s, u"protocol_format.short"_s)}),
             toggle(u"send_telegram"_s, u"paperplane"_s, sendTelegram),
             action(u"telegram"_s, u"link"_s, settingAction::ConnectTelegram, u"telegram.action"_s, true)}),
        section(u"storage"_s,
                {toggle(u"delete_source_on_success"_s, u"trash"_s, deleteSourceOnSuccess), keepDays,
                 action(u"open_recordings"_s, u"folder"_s, settingAction::OpenRecordings,
                        u"open_recordings.action"_s, false)}),
        section(u"about"_s, {action(u"version"_s, u"arrow.down.circle"_s, settingAction::CheckUpdate,
                                    u"check_update.action"_s, true),
                             action(u"account"_s, u"person.crop.circle"_s, settingAction::OpenAccount,
                                    u"account.action"_s, false),
                             action(u"open_logs"_s, u"doc.plaintext"_s, settingAction::OpenLogs,
                                    u"open_logs.action"_s, false)}),
    };
}

} // namespace murmeli::SettingsCatalog
