#include "QtDesktop.h"
#include "base/Files.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QSysInfo>
#include <QTimer>

#include <chrono>
#include <tuple>

using namespace Qt::StringLiterals;

namespace murmeli {

namespace {

const QString fileManager = u"org.freedesktop.FileManager1"_s;
constexpr qint64 sizeLimit = 64 * 1024; // bytes of /etc/machine-info
constexpr int answerTime = 500;         // milliseconds that a small question is worth
constexpr auto mailAnswerTime = std::chrono::seconds{3};

struct Command {
    QString program;
    QStringList arguments;
};

/// The microphone's privacy or sound; GNOME keeps what a program may see under its name.
QList<Command> commands(Desktop::SettingsPage page)
{
    if (page == Desktop::SettingsPage::Microphone) {
        return {{u"gnome-control-center"_s, {u"microphone"_s}},
                {u"systemsettings"_s, {u"kcm_pulseaudio"_s}},
                {u"systemsettings5"_s, {u"kcm_pulseaudio"_s}}};
    }
    return {{u"gnome-control-center"_s, {u"applications"_s}}};
}

/// The folder that an environment variable of the desktop's names, else the usual one.
QString baseFolder(const char* variable, const QString& usual)
{
    const QString named = qEnvironmentVariable(variable);
    return named.startsWith(u'/') ? named : usual;
}

class LinuxDesktop final : public QtDesktop {
public:
    explicit LinuxDesktop(QString home) : m_home(std::move(home)) {}

    void reveal(const QString& path, const QString& root) override;
    bool share(const QString&, QWindow*, const QPoint&) override { return false; }
    void mail(const Letter& letter) override;
    void askForMailProgram(QObject* context, std::function<void(bool)> answer) override;
    bool openSettings(SettingsPage page) override;
    void setLoginItem(bool on, const QString& agentFile) override;
    [[nodiscard]] bool startedByAgent(const QString&) const override { return false; }
    // The browser starts the handler of the scheme: us, as a second instance.
    void signIn(const QUrl& page, const QString&, CameBack) override { openUrl(page); }
    [[nodiscard]] bool signsInThroughBrowser() const override { return true; }
    void askForPeace(QObject* context, std::function<void(bool)> answer) override;
    [[nodiscard]] QString computerName() const override;
    [[nodiscard]] QString stateFolder() const override
    {
        return baseFolder("XDG_STATE_HOME", m_home + u"/.local/state"_s) + u"/murmeli"_s;
    }
    [[nodiscard]] OwnFolders ownFolders() const override
    {
        return {.data = baseFolder("XDG_DATA_HOME", m_home + u"/.local/share"_s) + u"/murmeli"_s,
                .cache = baseFolder("XDG_CACHE_HOME", m_home + u"/.cache"_s) + u"/murmeli"_s,
                .config = baseFolder("XDG_CONFIG_HOME", m_home + u"/.config"_s) + u"/murmeli"_s};
    }

private:
    QString m_home;
};

void LinuxDesktop::reveal(const QString& path, const QString&)
{
    QDBusMessage call = QDBusMessage::createMethodCall(fileManager, u"/org/freedesktop/FileManager1"_s,
                                                       fileManager, u"ShowItems"_s);
    call << QStringList{QUrl::fromLocalFile(path).toString()} << QString{};
    auto* watcher = new QDBusPendingCallWatcher{QDBusConnection::sessionBus().asyncCall(call), qApp};
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher, [this, path, watcher] {
        watcher->deleteLater();
        if (watcher->isError()) openFolder(QFileInfo{path}.absolutePath());
    });
}

void LinuxDesktop::mail(const Letter& letter)
{
    QStringList arguments;
    if (!letter.subject.isEmpty() || !letter.text.isEmpty()) arguments.append(u"--utf8"_s);
    if (!letter.subject.isEmpty()) arguments += {u"--subject"_s, letter.subject};
    if (!letter.text.isEmpty()) arguments += {u"--body"_s, letter.text};
    if (!letter.file.isEmpty()) arguments += {u"--attach"_s, letter.file};
    QProcess::startDetached(u"xdg-email"_s, arguments);
}

void LinuxDesktop::askForMailProgram(QObject* context, std::function<void(bool)> answer)
{
    auto* query = new QProcess{context};
    const auto end = [query, answer = std::move(answer)] {
        query->deleteLater();
        answer(!query->readAllStandardOutput().trimmed().isEmpty());
    };
    QObject::connect(query, &QProcess::finished, context, end);
    QObject::connect(query, &QProcess::errorOccurred, context, [end](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart) end();
    });
    query->start(u"xdg-mime"_s, {u"query"_s, u"default"_s, u"x-scheme-handler/mailto"_s});
    QTimer::singleShot(mailAnswerTime, query, &QProcess::kill);
}

bool LinuxDesktop::openSettings(SettingsPage page)
{
    for (const Command& command : commands(page)) {
        const QString program = QStandardPaths::findExecutable(command.program);
        if (!program.isEmpty()) return QProcess::startDetached(program, command.arguments);
    }
    return false;
}

void LinuxDesktop::setLoginItem(bool on, const QString&)
{
    const QString folder = baseFolder("XDG_CONFIG_HOME", m_home + u"/.config"_s) + u"/autostart"_s;
    QDir{}.mkpath(folder);
    // A package may have an entry for everybody; the user's own of the same name counts instead.
    QString program = QCoreApplication::applicationFilePath();
    program.replace(u'\\', u"\\\\\\\\"_s)
        .replace(u'"', u"\\\\\""_s)
        .replace(u'`', u"\\\\`"_s)
        .replace(u'$', u"\\\\$"_s);
    program.replace(u'%', u"%%"_s);
    const QString entry =
        u"[Desktop Entry]\nType=Application\nName=Murmeli\nIcon=murmeli\nExec=\"%1\"\nHidden=%2\n"_s.arg(
            program, on ? u"false"_s : u"true"_s);
    std::ignore = files::writeAtomic(folder + u"/murmeli.desktop"_s, entry.toUtf8(), files::Durable::No);
}

void LinuxDesktop::askForPeace(QObject* context, std::function<void(bool)> answer)
{
    const QString service = u"org.freedesktop.Notifications"_s;
    QDBusMessage call = QDBusMessage::createMethodCall(service, u"/org/freedesktop/Notifications"_s,
                                                       u"org.freedesktop.DBus.Properties"_s, u"Get"_s);
    call.setAutoStartService(false);
    call.setArguments({service, u"Inhibited"_s});
    auto* watcher =
        new QDBusPendingCallWatcher{QDBusConnection::sessionBus().asyncCall(call, answerTime), context};
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, context,
                     [watcher, answer = std::move(answer)] {
                         const QDBusPendingReply<QDBusVariant> reply = *watcher;
                         watcher->deleteLater();
                         answer(!reply.isError() && reply.value().variant().toBool());
                     });
}

QString LinuxDesktop::computerName() const
{
    // The owner's own words for it stand where hostnamed keeps them.
    const QByteArray info = files::readWhole(u"/etc/machine-info"_s, sizeLimit).value_or(QByteArray{});
    for (const QByteArray& line : info.split('\n')) {
        constexpr auto key = "PRETTY_HOSTNAME=";
        if (!line.startsWith(key)) continue;
        QByteArray name = line.mid(qsizetype(qstrlen(key))).trimmed();
        const bool quoted = name.size() > 1 && name.front() == name.back();
        if (quoted && (name.front() == '"' || name.front() == '\'')) {
            const bool escapes = name.front() == '"';
            name = name.sliced(1, name.size() - 2);
            for (const char c : {'"', '$', '`', '\\'}) {
                if (escapes) name.replace(QByteArray{"\\"} + c, QByteArray{1, c});
            }
        }
        if (!name.isEmpty()) return QString::fromUtf8(name);
    }
    return QSysInfo::machineHostName();
}

} // namespace

std::unique_ptr<Desktop> makeDesktop(const QString& home) { return std::make_unique<LinuxDesktop>(home); }

} // namespace murmeli
