#include "SettingsModel.h"

#include "account/AuthManager.h"
#include "base/Background.h"
#include "base/Json.h"
#include "base/Processes.h"
#include "localisation/Language.h"
#include "platform/Desktop.h"
#include "search/SearchIndex.h"
#include "service/AppState.h"
#include "service/OwnData.h"
#include "service/OwnSettings.h"
#include "service/Paths.h"
#include "service/Prefs.h"
#include "update/Updater.h"

#include <QFile>

#include <algorithm>
#include <unistd.h>
#include <utility>

using namespace Qt::StringLiterals;

namespace murmeli {

namespace {

constexpr qint64 kilobyte = 1024;

} // namespace

SettingsModel::SettingsModel(const Ground& ground, QObject* parent)
    : QObject(parent),
      m_ground(ground),
      m_sections(SettingsCatalog::sections(ground.language.locale())),
      m_seen(ground.prefs.load()),
      m_instructionsSize(instructionsFile::size(ground.paths.userInstructions))
{
    connect(&ground.state, &AppState::statusRead, this, &SettingsModel::refresh);
    connect(&ground.state, &AppState::changed, this, &SettingsModel::touch);
    connect(&ground.updater, &Updater::changed, this, &SettingsModel::touch);
    connect(&ground.account, &AuthManager::changed, this, &SettingsModel::touch);
    connect(&ground.own, &OwnSettings::changed, this, &SettingsModel::touch);
    connect(&ground.language, &Language::changed, this, &SettingsModel::touch);
    connect(&ground.index, &SearchIndex::measured, this, &SettingsModel::touch);
}

SettingsModel::~SettingsModel() = default;

PermissionsModel* SettingsModel::permissionsFor(QObject* pane)
{
    auto* permissions = new PermissionsModel{m_ground.paths, m_ground.processes, m_ground.desktop, *this};
    permissions->setParent(pane);
    return permissions;
}

void SettingsModel::opened()
{
    m_loaded = instructionsFile::Loaded::Taken;
    m_deletion = Deletion::None;
    closeSent();
    touch();
    measureOwnData();
    m_ground.index.measure();
}

void SettingsModel::measureOwnData()
{
    inBackground(
        this, [paths = m_ground.paths] { return ownData::size(paths); },
        [this](qint64 bytes) {
            m_ownBytes = bytes;
            touch();
        });
}

void SettingsModel::deleteOwnData()
{
    inBackground(
        this, [paths = m_ground.paths] { return ownData::removeAll(paths); },
        [this](bool gone) {
            m_deletion = gone ? Deletion::None : Deletion::Failed;
            m_ground.own.load();
            measureOwnData();
        });
}

void SettingsModel::touch()
{
    m_states.clear(); // made when somebody looks
    emit changed();
}

const QVariantMap& SettingsModel::states()
{
    if (!m_states.isEmpty()) return m_states;
    for (const SettingSection& section : m_sections) {
        for (const SettingRow& row : section.rows) {
            SettingState state;
            state.value = value(row);
            state.lead = lead(row);
            state.subtitle = subtitle(row);
            state.buttonKey = buttonKey(row);
            state.secondKey = secondKey(row);
            m_states[row.id] = QVariant::fromValue(state);
        }
    }
    for (const SettingSection& section : m_sections) {
        for (const SettingRow& row : section.rows) {
            if (row.hiddenWhenOn.isEmpty()) continue;
            SettingState state = stateOf(row.id);
            state.hidden = stateOf(row.hiddenWhenOn).value.toBool();
            m_states[row.id] = QVariant::fromValue(state);
        }
    }
    return m_states;
}

void SettingsModel::refresh()
{
    const auto size = instructionsFile::size(m_ground.paths.userInstructions);
    const QJsonObject& now = m_ground.prefs.load();
    if (now == m_seen && size == m_instructionsSize) return;
    m_seen = now;
    if (std::exchange(m_instructionsSize, size) != size) m_loaded = instructionsFile::Loaded::Taken;
    touch();
}

bool SettingsModel::telegramConnected() const { return m_ground.state.telegramConnected(); }

QVariant SettingsModel::value(const SettingRow& row) const
{
    const Prefs& prefs = m_ground.prefs;
    const auto* toggle = std::get_if<ToggleSetting>(&row.control);
    if (toggle && row.own) return m_ground.own.get({row.id.toLatin1().constData(), toggle->fallback});
    if (toggle) return prefs.boolean(row.id, toggle->fallback);
    if (const auto* choice = std::get_if<ChoiceSetting>(&row.control)) {
        const QString stored = prefs.string(row.id, choice->fallback);
        const bool known = std::ranges::any_of(
            choice->options, [&](const SettingOption& option) { return option.value == stored; });
        return known ? stored : choice->fallback;
    }
    if (const auto* stepper = std::get_if<StepperSetting>(&row.control)) {
        const auto stored = json::integer(prefs.load(), QLatin1StringView{row.id.toLatin1()});
        return int(std::clamp<qint64>(stored.value_or(stepper->fallback), stepper->least, stepper->most));
    }
    return {};
}

void SettingsModel::set(const QString& id, const QVariant& value)
{
    for (const SettingSection& section : m_sections) {
        for (const SettingRow& row : section.rows) {
            if (row.id != id) continue;
            if (row.own) {
                m_ground.own.set(id, value.toBool());
                continue;
            }
            if (std::holds_alternative<ToggleSetting>(row.control)) store(id, value.toBool());
            if (std::holds_alternative<ChoiceSetting>(row.control)) store(id, value.toString());
            if (const auto* stepper = std::get_if<StepperSetting>(&row.control))
                store(id, std::clamp(value.toInt(), stepper->least, stepper->most));
        }
    }
    if (id == QLatin1StringView{pref::launchAtLogin.name}) setLaunchAtLogin(value.toBool());
    if (id == QLatin1StringView{pref::locale.name}) m_ground.language.refresh();
}

void SettingsModel::store(const QString& key, const QJsonValue& value)
{
    if (!m_ground.prefs.set(key, value)) emit notStored();
    m_seen = m_ground.prefs.load();
    touch();
    emit stored();
}

void SettingsModel::setLaunchAtLogin(bool on)
{
    const Paths& paths = m_ground.paths;
    m_ground.desktop.setLoginItem(on, paths.appAgentFile);
    // Nobody waits for it: where it is not there, the desktop's own list counts. An agent that is not
    // disabled would be loaded again at the next log-in; and one that has started us is left to end with us.
    const QString label = QString::fromLatin1(Paths::appAgentLabel);
    const bool stays = !on && m_ground.desktop.startedByAgent(label);
    const QString unload = stays ? QString{} : u"unload"_s;
    m_ground.processes.startDetached(
        u"/bin/sh"_s,
        {u"-c"_s, uR"sh(exec 2>/dev/null; "$0" "$1" "$2"; [ -z "$3" ] || "$0" "$3" "$4")sh"_s,
         paths.agentLoader, on ? u"enable"_s : u"disable"_s, u"gui/%1/%2"_s.arg(::getuid()).arg(label),
         on ? u"load"_s : unload, paths.appAgentFile});
}

Message SettingsModel::subtitle(const SettingRow& row) const
{
    using Loaded = instructionsFile::Loaded;
    const auto* action = std::get_if<ActionSetting>(&row.control);
    switch (action ? action->action : -1) {
    case settingAction::ConnectTelegram:
        return Message::of(telegramConnected() ? "telegram.subtitle.on" : "telegram.subtitle.off");
    case settingAction::CheckUpdate:
        if (m_ground.updater.phase() != Updater::Phase::Idle) return m_ground.updater.subtitle();
        break;
    case settingAction::ShowOwnData:
        return ownDataSubtitle();
    case settingAction::RebuildSearchIndex:
        return indexSubtitle();
    case settingAction::LoadInstructions:
        if (m_loaded == Loaded::NoText) return Message::of("instructions.subtitle.refused");
        if (m_loaded == Loaded::NotSaved) return Message::of("instructions.subtitle.not_saved");
        if (!m_instructionsSize) return Message::of("instructions.subtitle.none");
        return Message::of("instructions.subtitle.loaded",
                           QString::number((*m_instructionsSize + kilobyte - 1) / kilobyte));
    case settingAction::OpenRecordings:
        if (QSysInfo::kernelType() != "darwin"_L1) return Message::of("open_recordings.subtitle.linux");
        break;
    default:
        break;
    }
    return {.key = row.id + u".subtitle"_s, .argument = {}, .own = {}};
}

Message SettingsModel::ownDataSubtitle() const
{
    if (m_deletion == Deletion::Asked) return Message::of("own_data.subtitle.sure");
    if (m_deletion == Deletion::Failed) return Message::of("own_data.subtitle.failed");
    if (m_ownBytes.value_or(0) == 0) return Message::of("own_data.subtitle.none");
    const QString size = Language::size(m_ground.language.current(), *m_ownBytes);
    return Message::of("own_data.subtitle", size);
}

Message SettingsModel::indexSubtitle() const
{
    const SearchIndex& index = m_ground.index;
    if (index.meetings() == 0) return Message::of("search_index.subtitle.none");
    const QString& language = m_ground.language.current();
    return Message::ofWords(Language::size(language, index.bytes()) +
                            Language::text(language, u"common.dot"_s) +
                            Language::count(language, u"search.meetings"_s, index.meetings()));
}

QString SettingsModel::secondKey(const SettingRow& row) const
{
    const auto* action = std::get_if<ActionSetting>(&row.control);
    if (!action || action->second < 0 || m_ownBytes.value_or(0) == 0) return {};
    return m_deletion == Deletion::Asked ? u"own_data.delete.sure"_s : u"own_data.delete"_s;
}

QString SettingsModel::lead(const SettingRow& row) const
{
    const auto* action = std::get_if<ActionSetting>(&row.control);
    if (!action) return {};
    if (action->action == settingAction::CheckUpdate) return m_ground.updater.current();
    return action->action == settingAction::OpenAccount ? m_ground.account.email() : QString{};
}

QString SettingsModel::buttonKey(const SettingRow& row) const
{
    const auto* action = std::get_if<ActionSetting>(&row.control);
    if (!action) return {};
    if (action->action == settingAction::LoadInstructions && m_instructionsSize)
        return u"instructions.replace"_s;
    if (action->action == settingAction::ConnectTelegram && telegramConnected())
        return u"telegram.action.open"_s;
    if (action->action == settingAction::ShowOwnData && m_deletion == Deletion::Asked)
        return u"own_data.keep"_s;
    return action->buttonKey;
}

void SettingsModel::loadInstructions(const QString& file)
{
    inBackground(
        this,
        [file, target = m_ground.paths.userInstructions] { return instructionsFile::load(file, target); },
        [this](instructionsFile::Loaded loaded) {
            m_loaded = loaded;
            m_instructionsSize = instructionsFile::size(m_ground.paths.userInstructions);
            touch();
        });
}

void SettingsModel::closeSent()
{
    if (!m_sent) return;
    auto* const old = m_sent.release();
    emit sentChanged();
    old->deleteLater(); // its view still reads it
}

void SettingsModel::run(int action, QWindow* window)
{
    switch (action) {
    case settingAction::LoadInstructions:
        m_ground.desktop.askForFile({.title = m_ground.language.t(u"instructions.title"_s),
                                     .suggested = m_ground.paths.home,
                                     .kind = m_ground.language.t(u"instructions.kind"_s)},
                                    window, this, [this](const QString& path) { loadInstructions(path); });
        break;
    case settingAction::ClearInstructions:
        QFile::remove(m_ground.paths.userInstructions);
        m_loaded = instructionsFile::Loaded::Taken;
        m_instructionsSize = instructionsFile::size(m_ground.paths.userInstructions);
        touch();
        break;
    case settingAction::ConnectTelegram:
    case settingAction::OpenAccount:
        m_ground.account.openAccount();
        break;
    case settingAction::OpenRecordings:
        m_ground.desktop.openFolder(m_ground.paths.recordings);
        break;
    case settingAction::OpenLogs:
        m_ground.desktop.openFolder(m_ground.paths.logs);
        break;
    case settingAction::CheckUpdate:
        m_ground.updater.check();
        break;
    case settingAction::ShowOwnData:
        if (std::exchange(m_deletion, Deletion::None) == Deletion::Asked) { // it says "keep" now
            touch();
        } else {
            m_ground.desktop.openFolder(m_ground.paths.ownData);
        }
        break;
    case settingAction::RebuildSearchIndex:
        m_ground.index.makeAnew();
        touch();
        break;
    case settingAction::ShowSent:
        m_sent =
            std::make_unique<SentModel>(m_ground.receipts, m_ground.language, m_ground.scheduler, QString{});
        m_sent->load();
        emit sentChanged();
        break;
    case settingAction::DeleteOwnData:
        if (std::exchange(m_deletion, Deletion::Asked) == Deletion::Asked) {
            m_deletion = Deletion::None;
            deleteOwnData();
        }
        touch();
        break;
    default:
        break;
    }
}

} // namespace murmeli
