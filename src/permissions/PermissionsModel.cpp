#include "PermissionsModel.h"

#include "base/Files.h"
#include "base/Json.h"
#include "base/Processes.h"
#include "localisation/Language.h"
#include "platform/Desktop.h"
#include "service/Paths.h"

#include <QFileInfo>
#include <QGuiApplication>
#include <QMetaObject>
#include <QPointer>

#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace murmeli {

namespace {

constexpr auto answerTime = 30s;          // for a question that no person has to answer
constexpr auto decisionTime = 10min;      // for one that a person may have to think over
constexpr qint64 sizeLimit = 1024 * 1024; // bytes of the state file
constexpr qint64 answerLimit = 64 * 1024; // bytes

} // namespace

PermissionsModel::PermissionsModel(const Paths& paths, Processes& processes, Desktop& desktop,
                                   QObject& background)
    : m_python(paths.python),
      m_script(paths.recorderScript),
      m_stateFile(paths.stateFile),
      m_processes(processes),
      m_desktop(desktop),
      m_background(background)
{
    refresh();
    connect(qGuiApp, &QGuiApplication::applicationStateChanged, this, [this](Qt::ApplicationState state) {
        if (state == Qt::ApplicationActive) refresh();
    });
}

PermissionsModel::State PermissionsModel::stateOf(Kind kind) const
{
    return kind == Kind::Microphone ? m_microphone : m_screen;
}

bool PermissionsModel::allGranted() const
{
    return m_microphone == State::Granted && m_screen == State::Granted;
}

QStringList PermissionsModel::missingTitleKeys() const
{
    QStringList keys;
    if (m_microphone != State::Granted) keys.append(u"perm.microphone.title"_s);
    if (m_screen != State::Granted) keys.append(u"perm.screen.title"_s);
    return keys;
}

QString PermissionsModel::names(const QStringList& titleKeys, const QString& language)
{
    QStringList names;
    for (const QString& key : titleKeys)
        names.append(Language::text(language, key));
    return names.join(u", "_s);
}

bool PermissionsModel::recordingNow() const
{
    const auto bytes = files::readWhole(m_stateFile, sizeLimit);
    const auto object = bytes ? json::object(*bytes) : std::nullopt;
    return object && json::text(*object, "status"_L1) == "recording"_L1;
}

void PermissionsModel::refresh()
{
    if (m_look || recordingNow()) return;
    run(u"--status"_s, false, [this, look = QPointer{m_look.renew()}](const QByteArray& output) {
        if (!look) return; // what was granted meanwhile is newer
        m_look.end();
        apply(output);
    });
}

void PermissionsModel::run(const QString& flag, bool userDecides, std::function<void(const QByteArray&)> done)
{
    const QFileInfo python{m_python};
    if (!python.isFile() || !python.isExecutable() || !QFileInfo::exists(m_script)) {
        QMetaObject::invokeMethod(
            this, [done = std::move(done)] { done({}); }, Qt::QueuedConnection);
        return;
    }
    m_processes.run({.program = m_python,
                     .arguments = {m_script, flag},
                     .timeout = userDecides ? std::chrono::seconds{decisionTime} : answerTime,
                     .outputLimit = answerLimit},
                    &m_background,
                    [self = QPointer{this}, done = std::move(done)](const ProcessResult& result) {
                        if (self) done(result.output);
                    });
}

void PermissionsModel::apply(const QByteArray& output)
{
    m_microphone = State::Unknown;
    m_screen = State::Unknown;
    if (const auto answer = json::object(output)) {
        const QString microphone = json::text(*answer, "microphone"_L1);
        if (microphone == "authorized"_L1) m_microphone = State::Granted;
        if (microphone == "denied"_L1 || microphone == "restricted"_L1) m_microphone = State::Denied;
        if (microphone == "notDetermined"_L1) m_microphone = State::NotAsked;
        // The recorder cannot tell a refused screen from one that was never asked for.
        m_screen = json::boolean(*answer, "screen"_L1).value_or(false) ? State::Granted : State::NotAsked;
    }
    emit changed();
}

void PermissionsModel::request(Kind kind)
{
    if (stateOf(kind) == State::Denied) {
        openSettings(kind);
        return;
    }
    if (recordingNow()) return;
    m_asking = kind == Kind::Microphone ? Asking::Microphone : Asking::Screen;
    emit changed();
    run(kind == Kind::Microphone ? u"--request-mic"_s : u"--request-screen"_s, true,
        [this, kind](const QByteArray& output) {
            m_asking = Asking::Nothing;
            m_look.end();
            apply(output);
            if (stateOf(kind) == State::Granted) return;
            if (kind == Kind::Screen) m_screenLooksStale = true;
            openSettings(kind);
        });
}

void PermissionsModel::openSettings(Kind kind)
{
    m_settingsMissing =
        !m_desktop.openSettings(kind == Kind::Microphone ? Desktop::SettingsPage::Microphone
                                                         : Desktop::SettingsPage::ScreenRecording);
    emit changed();
}

} // namespace murmeli
