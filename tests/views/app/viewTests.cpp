#include "app/PanelModel.h"
#include "base/Files.h"
#include "base/ManualScheduler.h"
#include "localisation/Language.h"
#include "service/Prefs.h"
#include "ui/Look.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QQmlContext>
#include <QQmlEngine>
#include <QTemporaryDir>
#include <QtQuickTest>

using namespace Qt::StringLiterals;
using namespace murmeli;

namespace {

/// A home of its own with real state objects; the clock stands still until a test moves it.
class Fixture : public QObject {
    Q_OBJECT
    Q_PROPERTY(QObject* appState READ appState CONSTANT)
    Q_PROPERTY(QObject* record READ record CONSTANT)
    Q_PROPERTY(QObject* panel READ panel CONSTANT)

public:
    Fixture()
    {
        QDir{}.mkpath(m_paths.logs);
        m_state = std::make_unique<AppState>(m_paths, m_scheduler);
        m_record = std::make_unique<RecordControl>(m_paths, *m_state, m_scheduler);
        m_panel = std::make_unique<PanelModel>(*m_state, *m_record, m_prefs, m_language, m_scheduler);
        connect(m_state.get(), &AppState::statusRead, &m_language, &Language::refresh);
    }
    void install(QQmlEngine& engine)
    {
        m_language.install(engine);
        m_look.install(engine);
    }

    [[nodiscard]] QObject* appState() const { return m_state.get(); }
    [[nodiscard]] QObject* record() const { return m_record.get(); }
    [[nodiscard]] QObject* panel() const { return m_panel.get(); }

    /// Back to an idle service, empty preferences, no flag, nothing pending, motion reduced.
    Q_INVOKABLE void reset()
    {
        for (const QString& file :
             {m_paths.stateFile, m_paths.commandFile, m_paths.prefsFile, m_paths.authFlagFile}) {
            QFile::remove(file);
        }
        m_panel->setSignedIn(false);
        m_panel->setUpdate({}, false);
        m_panel->setHoverOrb(false);
        m_look.setReducedMotion(true);
        advance(13'000);
    }
    Q_INVOKABLE void advance(int milliseconds)
    {
        m_scheduler.advance(std::chrono::milliseconds{milliseconds});
    }
    Q_INVOKABLE void serviceWrites(const QString& state)
    {
        write(m_paths.stateFile, state);
        advance(1500);
    }
    Q_INVOKABLE void raiseFlag(const QString& content)
    {
        write(m_paths.authFlagFile, content);
        advance(1500);
    }
    Q_INVOKABLE [[nodiscard]] bool flagExists() const { return QFile::exists(m_paths.authFlagFile); }
    Q_INVOKABLE void prefer(const QString& key, const QJsonValue& value)
    {
        m_prefs.set(key, value);
        advance(1500);
    }
    Q_INVOKABLE [[nodiscard]] QJsonObject preferences() const { return m_prefs.load(); }
    Q_INVOKABLE [[nodiscard]] QJsonObject lastCommand() const
    {
        return QJsonDocument::fromJson(files::readWhole(m_paths.commandFile, 1000).value_or("{}")).object();
    }
    Q_INVOKABLE void reduceMotion(bool reduced) { m_look.setReducedMotion(reduced); }
    Q_INVOKABLE void signIn() { m_panel->setSignedIn(true); }
    Q_INVOKABLE void offerUpdate(const QString& version, bool installing)
    {
        m_panel->setUpdate(version, installing);
    }

private:
    static void write(const QString& path, const QString& content)
    {
        if (!files::writeAtomic(path, content.toUtf8())) qFatal("The temporary home cannot be written");
    }

    QTemporaryDir m_home;
    Paths m_paths{m_home.path()};
    ManualScheduler m_scheduler;
    Prefs m_prefs{m_paths.prefsFile};
    Language m_language{m_prefs, [] { return QStringList{}; }};
    Look m_look{nullptr};
    std::unique_ptr<AppState> m_state;
    std::unique_ptr<RecordControl> m_record;
    std::unique_ptr<PanelModel> m_panel;
};

class Setup : public QObject {
    Q_OBJECT

public slots:
    void qmlEngineAvailable(QQmlEngine* engine)
    {
        engine->addImportPath(u"qrc:/qt/qml"_s);
        m_fixture.install(*engine);
        engine->rootContext()->setContextProperty(u"fixture"_s, &m_fixture);
    }

private:
    Fixture m_fixture;
};

} // namespace

QUICK_TEST_MAIN_WITH_SETUP(views, Setup)
#include "viewTests.moc"
