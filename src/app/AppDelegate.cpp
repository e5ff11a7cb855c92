#include "AppDelegate.h"

#include "base/Scheduler.h"
#include "localisation/Language.h"
#include "panel/KeyPanel.h"
#include "platform/LoginItem.h"
#include "platform/PanelPlacement.h"
#include "platform/StatusItem.h"
#include "platform/WindowSystem.h"
#include "platform/Workspace.h"
#include "service/AppInfo.h"
#include "ui/Look.h"
#include "ui/SymbolImage.h"

#include <QCursor>
#include <QGuiApplication>
#include <QLibraryInfo>
#include <QScreen>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace murmeli {

namespace {

constexpr auto blinkInterval = 700ms;
constexpr auto handOver = 500ms;  ///< in which a window manager activates a window that asks for it
constexpr auto trayPatience = 2s; ///< at log-in the tray may come later than we do
constexpr auto samePress = 400ms; ///< in which a press can both close the panel and reach the icon

const QColor recordingRed = QColor::fromRgbF(0.855F, 0.243F, 0.31F);
constexpr float dimAlpha = 0.4F;

QIcon iconOf(const std::function<QImage(int)>& draw)
{
    QIcon icon;
    for (const int side : {16, 22, 24, 32, 44, 48, 64})
        icon.addPixmap(QPixmap::fromImage(draw(side)));
    return icon;
}

} // namespace

AppDelegate::AppDelegate(const Ground& ground, QObject* parent)
    : QObject(parent),
      m_ground(ground),
      m_state(ground.paths, ground.scheduler),
      m_record(ground.paths, m_state, ground.scheduler),
      m_panel(m_state, m_record, ground.prefs, ground.language, ground.scheduler),
      m_account({.accountSite = AppInfo::accountSite(),
                 .accountFile = ground.paths.accountFile,
                 .computerName = workspace::computerName()},
                {.base = AppInfo::backend(), .anonymousKey = AppInfo::backendKey()}, ground.http,
                ground.signInSession, ground.scheduler),
      m_updater({.versionUrl = AppInfo::versionURL(),
                 .script = ground.paths.updateScript,
                 .current = AppInfo::version,
                 .installation = ground.installation},
                ground.http, ground.processes, ground.scheduler, [this] { return m_state.status(); }),
      m_settings({.paths = ground.paths,
                  .prefs = ground.prefs,
                  .state = m_state,
                  .account = m_account,
                  .updater = m_updater,
                  .language = ground.language,
                  .processes = ground.processes,
                  .setLoginItem = [this](bool on) { loginItem::set(on, m_ground.paths.home); }}),
      m_glossary(m_account, ground.http, ground.prefs, ground.language, ground.scheduler),
      m_toasts(m_engine, ground.scheduler,
               [] {
                   const QScreen* screen = QGuiApplication::primaryScreen();
                   return screen ? screen->availableGeometry() : QRect{};
               }),
      m_notifier(ground.paths, ground.prefs, ground.language, ground.scheduler,
                 [this](const ToastText& toast) { showToast(toast); }),
      m_updateWindow(m_engine, ground.language, m_updater),
      m_settingsWindow(m_engine, ground.language, m_settings),
      m_mainWindow(m_engine,
                   {.paths = ground.paths,
                    .prefs = ground.prefs,
                    .account = m_account,
                    .http = ground.http,
                    .processes = ground.processes,
                    .language = ground.language,
                    .scheduler = ground.scheduler,
                    .settings = m_settings,
                    .glossary = m_glossary,
                    .webOrigin = AppInfo::webOrigin()},
                   m_state, m_record, workspace::stateFolder(ground.paths.home) + u"/window.ini"_s,
                   [this](const QString& meeting, bool saved, const QString& line) {
                       showToast({.title = meeting,
                                  .message = line,
                                  .symbol = saved ? u"checkmark"_s : u"exclamationmark.triangle"_s});
                   })
{
    m_engine.addImportPath(u"qrc:/qt/qml"_s);
    m_ground.language.install(m_engine);
    m_ground.look.install(m_engine);

    connect(&m_state, &AppState::changed, this, &AppDelegate::followStatus);
    connect(&m_state, &AppState::authRequired, this, &AppDelegate::openPanel);
    connect(&m_state, &AppState::statusRead, this, [this](const QString& from, const QString& to) {
        m_ground.language
            .refresh(); // whoever changed the preference, it shows within one reading of the state
        m_notifier.recordingChanged(from, to);
    });
    connect(&m_ground.language, &Language::changed, this, &AppDelegate::updateTexts);
    connect(&m_ground.language, &Language::changed, this, &AppDelegate::translateQt);
    connect(&m_record, &RecordControl::pendingChanged, this, &AppDelegate::updateTexts);
    connect(&m_ground.look, &Look::changed, this, &AppDelegate::updateIcon);
    connect(&m_ground.statusItem, &StatusItem::pressed, this, &AppDelegate::toggle);
    connect(&m_ground.statusItem, &StatusItem::recordChosen, this, [this] {
        m_record.toggle();
        if (m_record.refused()) openPanel(); // a menu has no place to say so
    });
    connect(&m_ground.statusItem, &StatusItem::openChosen, this, &AppDelegate::openPanel);
    connect(&m_ground.statusItem, &StatusItem::settingsChosen, this, [this] { m_settingsWindow.show(); });
    connect(&m_ground.statusItem, &StatusItem::quitChosen, qApp, &QCoreApplication::quit,
            Qt::QueuedConnection);
    connectPanel();
    connectAccount();
}

AppDelegate::~AppDelegate()
{
    m_floating.reset(); // before the engine and the objects that their views read
    m_window.reset();
    m_setupWindow.reset();
}

void AppDelegate::showToast(const ToastText& toast)
{
    m_ground.look.setCompositing(windowSystem::compositing());
    m_toasts.show(toast);
}

void AppDelegate::connectPanel()
{
    connect(&m_panel, &PanelModel::meetingsRequested, this, [this] {
        closePanel();
        workspace::openFolder(m_ground.paths.vaultDir);
    });
    connect(&m_panel, &PanelModel::mainWindowRequested, this, [this] {
        closePanel();
        m_mainWindow.show();
    });
    connect(&m_panel, &PanelModel::settingsRequested, this, [this] {
        closePanel();
        m_settingsWindow.show();
    });
    // The panel and the settings show some of the same preferences.
    connect(&m_settings, &SettingsModel::stored, &m_panel, &PanelModel::readPreferences);
    connect(&m_panel, &PanelModel::preferencesChanged, &m_settings, &SettingsModel::refresh);
    connect(&m_panel, &PanelModel::botRequested, this, [] { workspace::openUrl(QUrl{AppInfo::botLink()}); });
    connect(&m_panel, &PanelModel::updateRequested, this, [this] {
        closePanel();
        m_updateWindow.show();
    });
    connect(&m_panel, &PanelModel::quitRequested, qApp, &QCoreApplication::quit, Qt::QueuedConnection);
}

void AppDelegate::connectAccount()
{
    connect(&m_account, &AuthManager::didLogin, this, [this] {
        if (!panelIsOpen()) openPanel();
        m_state.greet();
    });
}

void AppDelegate::start(bool forceSetup)
{
    updateTexts();
    updateIcon();
    m_ground.statusItem.show();
    m_ground.scheduler.after(0ms, this, [this, forceSetup] {
        translateQt();
        floatingPanel();
        if (forceSetup || SetupRunner::needed(m_ground.paths)) showSetup();
        m_updater.startAutoCheck();
    });
    m_ground.scheduler.after(trayPatience, this, [this] {
        if (!m_ground.statusItem.hasTray()) showWindow();
    });
}

void AppDelegate::showSetup()
{
    const QString log = workspace::stateFolder(m_ground.paths.home) + u"/setup.log"_s;
    m_setupWindow = std::make_unique<SetupWindowController>(
        m_ground.paths, SetupRunner::Place{.webOrigin = AppInfo::webOrigin(), .logFile = log},
        m_ground.processes, m_ground.scheduler, m_engine, m_ground.language, m_updater, *this);
    connect(m_setupWindow.get(), &SetupWindowController::installed, &m_account, &AuthManager::handOver);
    connect(m_setupWindow.get(), &SetupWindowController::done, this, &AppDelegate::afterSetup);
    m_setupWindow->show();
}

void AppDelegate::afterSetup()
{
    m_state.load();
    m_updater.check();
    openPanel();
    // Only when the panel has the keyboard: else the window manager, looking for who is to have it after the
    // window, would take it from the panel, which then closes.
    const auto close = [this] {
        if (!m_setupWindow) return;
        m_setupWindow->close();
        m_setupWindow.release()->deleteLater();
    };
    connect(floatingPanel(), &QWindow::activeChanged, m_setupWindow.get(), close, Qt::SingleShotConnection);
    m_ground.scheduler.after(handOver, m_setupWindow.get(), close);
}

bool AppDelegate::panelIsOpen() const
{
    return (m_floating && m_floating->isOpen()) || (m_window && m_window->isOpen());
}

KeyPanel* AppDelegate::floatingPanel()
{
    if (m_floating) return m_floating.get();
    m_ground.look.setCompositing(windowSystem::compositing());
    m_floating = std::make_unique<KeyPanel>(m_engine, KeyPanel::Kind::Floating, panelParts());
    connect(m_floating.get(), &KeyPanel::contentSizeChanged, this, [this] {
        if (m_floating && m_floating->isOpen()) placePanel();
    });
    connect(m_floating.get(), &KeyPanel::pressedOutside, this, [this] {
        if (m_ground.statusItem.geometry().contains(QCursor::pos())) {
            // The icon's own action will toggle. Unless the pointer merely lies there, and something else has
            // taken the activation.
            KeyPanel* panel = m_floating.get();
            m_ground.scheduler.after(samePress, panel, [this, panel] {
                if (panel == m_floating.get() && !panel->isActive()) closePanel();
            });
            return;
        }
        m_closedFromOutside.start();
        closePanel();
    });
    // It is made anew in a blink; a program that sits in the tray all day keeps no memory for it.
    connect(m_floating.get(), &QWindow::visibleChanged, this, [this](bool visible) {
        if (!visible && m_floating) m_floating.release()->deleteLater();
    });
    return m_floating.get();
}

void AppDelegate::toggle()
{
    m_pressedAt = QCursor::pos();
    // Where the icon's place is unknown, the press that closed the panel may have been on the icon itself.
    const bool unknownPlace = m_ground.statusItem.geometry().isEmpty();
    if (unknownPlace && m_closedFromOutside.isValid() && m_closedFromOutside.elapsed() < samePress.count())
        return;
    if (floatingPanel()->isOpen()) {
        closePanel();
    } else {
        openPanel();
    }
}

QRect AppDelegate::anchor() const
{
    const QRect icon = m_ground.statusItem.geometry();
    if (!icon.isEmpty()) return icon;
    if (!m_pressedAt.isNull()) return {m_pressedAt, QSize{1, 1}};
    const QScreen* screen = QGuiApplication::primaryScreen();
    return screen ? QRect{screen->availableGeometry().topRight(), QSize{1, 1}} : QRect{};
}

void AppDelegate::openPanel()
{
    if (!m_ground.statusItem.hasTray()) {
        showWindow();
        return;
    }
    m_ground.look.setCompositing(windowSystem::compositing());
    placePanel();
}

void AppDelegate::placePanel()
{
    const QRect icon = anchor();
    const QScreen* screen = QGuiApplication::screenAt(icon.center());
    if (!screen) screen = QGuiApplication::primaryScreen();
    if (!screen) return;
    KeyPanel* panel = floatingPanel();
    const PanelPlacement place = murmeli::placePanel(icon, screen->availableGeometry(), panel->contentSize());
    m_state.setArrowX(place.arrowX);
    panel->openAt(place.panel, icon);
}

void AppDelegate::closePanel()
{
    if (m_floating) m_floating->closePanel();
}

void AppDelegate::showWindow()
{
    if (!m_window) {
        m_window = std::make_unique<KeyPanel>(m_engine, KeyPanel::Kind::Ordinary, panelParts());
    }
    m_window->openOrdinary();
}

void AppDelegate::told(const QString& line)
{
    if (m_account.handle(line)) return;
    if (line != "activate"_L1) return;
    // A second start shows nothing by itself where the icon is there to be pressed.
    if (m_setupWindow) {
        m_setupWindow->present();
    } else if (!m_ground.statusItem.hasTray()) {
        showWindow();
    }
}

void AppDelegate::followStatus()
{
    if (m_state.isRecording() == bool(m_blinking)) {
        updateIcon();
        updateTexts();
        return;
    }
    m_blinkBright = true;
    if (m_state.isRecording()) {
        m_blinking = std::make_unique<QObject>();
        m_ground.scheduler.every(blinkInterval, m_blinking.get(), [this] {
            m_blinkBright = !m_blinkBright;
            updateIcon();
        });
    } else {
        m_blinking.reset();
    }
    updateIcon();
    updateTexts();
}

void AppDelegate::updateIcon()
{
    StatusItem::Look look;
    if (m_state.isRecording()) {
        QColor disc = recordingRed;
        if (!m_blinkBright) disc.setAlphaF(dimAlpha);
        look.isTemplate = false;
        look.icon = iconOf([&](int side) { return symbols::recording(side, disc); });
    } else {
        const bool processing = m_state.isProcessing();
        const QString symbol = processing ? u"gearshape.2.fill"_s : u"waveform.tray"_s;
        const QColor ink = m_ground.look.dark() ? QColor{0xff, 0xff, 0xff} : QColor{0x1b, 0x1c, 0x22};
        look.symbolName = processing ? u"murmeli-processing-symbolic"_s : u"murmeli-idle-symbolic"_s;
        look.icon = iconOf([&](int side) { return symbols::inked(symbol, side, ink); });
    }
    m_ground.statusItem.setLook(look);
}

void AppDelegate::translateQt()
{
    QCoreApplication::removeTranslator(&m_qtTexts);
    if (m_qtTexts.load(u"qtbase_"_s + m_ground.language.current(),
                       QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QCoreApplication::installTranslator(&m_qtTexts);
}

void AppDelegate::updateTexts()
{
    m_ground.statusItem.setName(m_ground.language.t(u"tray.name"_s, m_panel.title()));
    m_ground.statusItem.setMenu(
        {m_record.waiting() || m_record.refused() ? m_panel.line() : m_panel.title(),
         m_ground.language.t(m_state.isRecording() ? u"tray.stop"_s : u"tray.start"_s),
         m_ground.language.t(u"tray.open"_s), m_ground.language.t(u"tray.settings"_s),
         m_ground.language.t(u"tray.quit"_s)});
}

} // namespace murmeli
