#include "support/TestProgram.h"
#include "windows/MainModel.h"

#include <QFile>
#include <QGuiApplication>
#include <QJsonDocument>
#include <QQmlContext>
#include <QTest>
#include <QtQuickTest>

using namespace Qt::StringLiterals;
using namespace murmeli;

namespace {

/// The program's state objects for views, and what the world around them does.
class Fixture : public QObject {
    Q_OBJECT
    Q_PROPERTY(QObject* appState READ appState CONSTANT)
    Q_PROPERTY(QObject* record READ record CONSTANT)
    Q_PROPERTY(QObject* panel READ panel CONSTANT)
    Q_PROPERTY(QObject* account READ account CONSTANT)
    Q_PROPERTY(QObject* updater READ updater CONSTANT)
    Q_PROPERTY(QObject* board READ board CONSTANT)
    Q_PROPERTY(QObject* marks READ marks CONSTANT)
    Q_PROPERTY(QObject* settings READ settings CONSTANT)
    Q_PROPERTY(murmeli::MainModel* library READ library NOTIFY libraryChanged)

public:
    Fixture() { connect(&m.state, &AppState::statusRead, &m.language, &Language::refresh); }
    void install(QQmlEngine& engine) { m.install(engine); }

    [[nodiscard]] QObject* appState() { return &m.state; }
    [[nodiscard]] QObject* record() { return &m.record; }
    [[nodiscard]] QObject* panel() { return &m.panel; }
    [[nodiscard]] QObject* account() { return &m.account; }
    [[nodiscard]] QObject* updater() { return &m.updater; }
    [[nodiscard]] QObject* board() { return &m.program.board; }
    [[nodiscard]] QObject* marks() { return &m.program.marks; }
    [[nodiscard]] QObject* settings() { return &m.settings; }
    [[nodiscard]] MainModel* library() { return m_library.get(); }

    /// Back to an idle service, empty preferences, no flag, no account, no release, nothing pending.
    Q_INVOKABLE void reset()
    {
        for (const QString& file :
             {m.paths.stateFile, m.paths.commandFile, m.paths.prefsFile, m.paths.authFlagFile}) {
            QFile::remove(file);
        }
        QDir{}.rmdir(m.paths.commandFile);
        m.account.cancelLogin();
        m.account.logout();
        advance(90'000); // an installation is given up
        publishRelease(u"0.8.0"_s);
        m.panel.setHoverOrb(false);
        m.look.setReducedMotion(true);
        advance(13'000);
        m.program.pulse.dismissTrouble();
    }
    Q_INVOKABLE void advance(int milliseconds)
    {
        m.scheduler.advance(std::chrono::milliseconds{milliseconds});
    }
    Q_INVOKABLE void serviceWrites(const QString& state) { m.serviceWrites(state.toUtf8()); }
    Q_INVOKABLE void raiseFlag(const QString& content)
    {
        m.write(m.paths.authFlagFile, content.toUtf8());
        advance(1500);
    }
    Q_INVOKABLE [[nodiscard]] bool flagExists() const { return QFile::exists(m.paths.authFlagFile); }
    Q_INVOKABLE void prefer(const QString& key, const QJsonValue& value)
    {
        m.prefs.set(key, value);
        advance(1500);
    }
    Q_INVOKABLE [[nodiscard]] QJsonObject preferences() const { return m.prefs.load(); }
    Q_INVOKABLE [[nodiscard]] QJsonObject lastCommand() const
    {
        return QJsonDocument::fromJson(files::readWhole(m.paths.commandFile, 1000).value_or("{}")).object();
    }
    Q_INVOKABLE void greet() { m.state.greet(); }
    /// Until the next reset() no command can be written.
    Q_INVOKABLE void refuseCommands() { QDir{}.mkpath(m.paths.commandFile); }
    Q_INVOKABLE void reduceMotion(bool reduced) { m.look.setReducedMotion(reduced); }
    Q_INVOKABLE void signIn() { m.signIn(); }
    Q_INVOKABLE [[nodiscard]] int pagesOpened() const
    {
        return int(m.desktop.opened.size() + m.desktop.folders.size());
    }

    /// The next check finds `version`.
    Q_INVOKABLE void publishRelease(const QString& version)
    {
        m.publish("{\"version\":\"" + version.toUtf8() +
                  "\",\"notes\":\"Один\\nДва\",\"released\":\"сегодня\"}");
        m.check();
    }

    /// A summary file of a meeting that begins at `stem`, with its protocol and, if any, its analysis.
    Q_INVOKABLE void writeMeeting(const QString& stem, const QJsonObject& members,
                                  const QString& protocol = {}, const QString& analysis = {})
    {
        const QString base = m.paths.logs + u'/' + stem;
        QJsonObject summary = members;
        QJsonObject meta = summary[u"_meta"_s].toObject();
        meta[u"protocol_md"_s] = base + u".md"_s;
        summary[u"_meta"_s] = meta;
        m.write(base + u".md"_s, protocol.toUtf8());
        if (!analysis.isEmpty()) m.write(base + u".report.json"_s, analysis.toUtf8());
        m.write(base + u".protocol.json"_s, QJsonDocument{summary}.toJson());
    }
    /// Makes the state of the main window anew, with what was written.
    Q_INVOKABLE void openLibrary()
    {
        m_library = std::make_unique<MainModel>(m.mainGround());
        emit libraryChanged();
        if (!QTest::qWaitFor([this] { return m_library->store()->loaded(); }))
            qFatal("The scan does not end");
    }
    /// Leaves no meeting behind.
    Q_INVOKABLE void closeLibrary()
    {
        m_library.reset();
        emit libraryChanged();
        QDir{m.paths.logs}.removeRecursively();
        QDir{}.mkpath(m.paths.logs);
    }
    /// What the service answers from now on; nothing: it never does.
    Q_INVOKABLE void serviceAnswers(int status, const QString& body)
    {
        m.server.says(status == 0 ? QByteArray{} : Server::answer(status, body.toUtf8()));
    }
    Q_INVOKABLE [[nodiscard]] QString clipboard() const { return m.desktop.copiedText; }

signals:
    void libraryChanged();

private:
    TestProgram m;
    std::unique_ptr<MainModel> m_library;
};

class ViewSetup : public QObject {
    Q_OBJECT

public slots:
    void qmlEngineAvailable(QQmlEngine* engine)
    {
        if (!m_fixture) m_fixture = std::make_unique<Fixture>(); // only now is there an application
        m_fixture->install(*engine);
        engine->rootContext()->setContextProperty(u"fixture"_s, m_fixture.get());
    }
    void cleanupTestCase() { m_fixture.reset(); }

private:
    std::unique_ptr<Fixture> m_fixture;
};

} // namespace

QUICK_TEST_MAIN_WITH_SETUP(views, ViewSetup)
#include "viewTests.moc"
