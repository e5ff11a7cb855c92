#include "SettingsModel.h"

#include "account/AuthManager.h"
#include "base/Background.h"
#include "base/Json.h"
#include "base/Processes.h"
#include "localisation/Language.h"
#include "platform/Desktop.h"
#include "service/AppState.h"
#include "service/Paths.h"
#include "service/Prefs.h"
#include "update/Updater.h"

#include <QFile>

#include <algorithm>
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
    touch();
}

void SettingsModel::touch()
{
    ++m_revision;
    emit changed();
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

const SettingRow* SettingsModel::find(const QString& key) const
{
    for (const SettingSection& section : m_sections) {
        for (const SettingRow& row : section.rows) {
            if (row.id == key) return &row;
        }
    }
    return nullptr;
}

bool SettingsModel::boolean(const QString& key, int) const
{
    const SettingRow* row = find(key);
    return row && m_ground.prefs.boolean(key, row->on);
}

QString SettingsModel::string(const QString& key, int) const
{
    const SettingRow* row = find(key);
    if (!row) return {};
    const QString value = m_ground.prefs.string(key, row->choice);
    const bool known =
        std::ranges::any_of(row->options, [&](const SettingOption& option) { return option.value == value; });
    return known ? value : row->choice;
}

int SettingsModel::integer(const QString& key, int) const
{
    const SettingRow* row = find(key);
    if (!row) return 0;
    const auto stored = json::integer(m_ground.prefs.load(), QLatin1StringView{key.toLatin1()});
    return int(std::clamp<qint64>(stored.value_or(row->number), row->least, row->most));
}

void SettingsModel::store(const QString& key, const QJsonValue& value)
{
    m_ground.prefs.set(key, value);
    m_seen = m_ground.prefs.load();
    touch();
    emit stored();
}

void SettingsModel::setBool(const QString& key, bool value)
{
    store(key, value);
    if (key != QLatin1StringView{pref::launchAtLogin.name}) return;
    // Nobody waits for it: where it is not there, the desktop's own list counts.
    m_ground.processes.startDetached(m_ground.paths.agentLoader,
                                     {value ? u"load"_s : u"unload"_s, m_ground.paths.appAgentFile});
    m_ground.desktop.setLoginItem(value);
}

void SettingsModel::setString(const QString& key, const QString& value)
{
    store(key, value);
    if (key == QLatin1StringView{pref::locale.name}) m_ground.language.refresh();
}

void SettingsModel::setInt(const QString& key, int value)
{
    const SettingRow* row = find(key);
    if (row) store(key, std::clamp(value, row->least, row->most));
}

bool SettingsModel::hides(const SettingRow& row, int revision) const
{
    return !row.hiddenWhenOn.isEmpty() && boolean(row.hiddenWhenOn, revision);
}

QString SettingsModel::subtitle(const SettingRow& row, const QString& language, int) const
{
    const auto t = [&](const char* key) { return Language::text(language, QString::fromLatin1(key)); };
    if (!row.dynamicSubtitle) {
        const QString key = row.id + u".subtitle"_s;
        const bool finder =
            row.action == settingAction::OpenRecordings && QSysInfo::kernelType() == "darwin"_L1;
        return Language::text(
            language, row.action == settingAction::OpenRecordings && !finder ? key + u".linux"_s : key);
    }
    switch (row.action) {
    case settingAction::ConnectTelegram:
        return telegramConnected() ? t("telegram.subtitle.on") : t("telegram.subtitle.off");
    case settingAction::CheckUpdate:
        return versionSubtitle(language);
    default:
        if (m_loaded == instructionsFile::Loaded::NoText) return t("instructions.subtitle.refused");
        if (m_loaded == instructionsFile::Loaded::NotSaved) return t("instructions.subtitle.not_saved");
        if (!m_instructionsSize) return t("instructions.subtitle.none");
        return Language::text(language, u"instructions.subtitle.loaded"_s,
                              QString::number((*m_instructionsSize + kilobyte - 1) / kilobyte));
    }
}

QString SettingsModel::versionSubtitle(const QString& language) const
{
    const Updater& updater = m_ground.updater;
    const auto t = [&](const char* key, const QString& argument = {}) {
        return Language::text(language, QString::fromLatin1(key), argument);
    };
    switch (updater.phase()) {
    case Updater::Phase::Checking:
        return t("update.subtitle.checking");
    case Updater::Phase::UpToDate:
        return t("update.subtitle.uptodate", updater.current());
    case Updater::Phase::Available:
        return t("update.subtitle.available", updater.latest());
    case Updater::Phase::Installing:
        return t("update.subtitle.installing");
    case Updater::Phase::Failed:
        return t("update.subtitle.failed");
    case Updater::Phase::Idle:
        break;
    }
    return updater.current() + t("common.dot") + t("version.subtitle");
}

QString SettingsModel::buttonKey(const SettingRow& row, int) const
{
    if (row.action == settingAction::LoadInstructions && m_instructionsSize) return u"instructions.replace"_s;
    if (row.action == settingAction::ConnectTelegram && telegramConnected()) return u"telegram.action.open"_s;
    return row.buttonKey;
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
    default:
        break;
    }
}

} // namespace murmeli
