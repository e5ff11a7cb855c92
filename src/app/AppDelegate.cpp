#include "AppDelegate.h"

#include "base/Background.h"
#include "base/Scheduler.h"
#include "platform/Desktop.h"
#include "platform/Memory.h"
#include "platform/StatusItem.h"
#include "platform/WindowSystem.h"
#include "ui/Look.h"

#include <QCoreApplication>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QLibraryInfo>
#include <QScreen>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace murmeli {

namespace {

constexpr auto startTime = 20s;  ///< after which what has to be done at the start is done
constexpr auto handOver = 500ms; ///< in which a window manager activates a window that asks for it

/// For a card: one that takes clicks keeps off the open panel.
QRect roomFor(const ToastText& toast, const QRect& panel)
{
    const QScreen* screen = QGuiApplication::primaryScreen();
    QRect room = screen ? screen->availableGeometry() : QRect{};
    if (!toast.actions.isEmpty() && !panel.isEmpty() && panel.center().x() > room.center().x())
        room.setRight(std::min(room.right(), panel.left()));
    return room;
}

QString view(const char* name) { return u"qrc:/qt/qml/Murmeli/"_s + QLatin1StringView{name} + u".qml"_s; }

} // namespace

AppDelegate::AppDelegate(Program& program, Desktop& desktop, Scheduler& scheduler, Look& look,
                         StatusItem& statusItem)
    : m_program(program),
      m_scheduler(scheduler),
      m_look(look),
      m_statusItem(statusItem),
      m_placeFile(desktop.stateFolder() + u"/window.ini"_s),
      m_views(scheduler,
              [this, &program, &look](QQmlEngine& engine) {
                  engine.addImportPath(u"qrc:/qt/qml"_s);
                  program.language.install(engine);
                  look.install(engine);
                  translateQt();
              }),
      m_toasts(m_views, scheduler,
               [this](const ToastText& toast) { return roomFor(toast, m_panel.shape()); }),
      m_face(statusItem, program.state, program.record, program.panel, program.language, look, scheduler),
      m_panel(m_views, look, scheduler, statusItem,
              {program.state, program.record, program.panel, program.account, program.updater, program.board,
               program.marks}),
      m_settings(m_views, program.language,
                 {.url = view("Settings/SettingsView"),
                  .properties = {{u"model"_s, QVariant::fromValue(&program.settings)}, {u"windowed"_s, true}},
                  .titleKey = u"settings.window.title"_s,
                  .titleStays = true,
                  .size = {560, 640},
                  .escapeCloses = true,
                  .placeFile = desktop.stateFolder() + u"/settings.ini"_s,
                  .quit = [this] { m_program.quitQuestion.ask(); }}),
      m_update(m_views, program.language,
               {.url = view("Update/UpdateView"),
                .properties = {{u"updater"_s, QVariant::fromValue(&program.updater)}},
                .titleKey = u"update.title.available"_s,
                .size = {520, 560},
                .resizable = false,
                .escapeCloses = true,
                .placeFile = desktop.stateFolder() + u"/update.ini"_s,
                .quit = [this] { m_program.quitQuestion.ask(); }}),
      m_quit(m_views, program.language,
             {.url = view("Windows/QuitView"),
              .properties = {{u"question"_s, QVariant::fromValue(&program.quitQuestion)},
                             {u"record"_s, QVariant::fromValue(&program.record)}},
              .titleKey = u"quit.title"_s,
              .size = {560, 190},
              .resizable = false,
              .escapeCloses = true})
{
    connect(&program.language, &Language::changed, this, &AppDelegate::translateQt);
    connect(&program, &Program::toastWanted, this, &AppDelegate::showToast);
    connect(&program, &Program::quitWanted, qApp, &QCoreApplication::quit, Qt::QueuedConnection);
    connectTray();
    connectWindows();
}

AppDelegate::~AppDelegate() = default;

void AppDelegate::connectTray()
{
    connect(&m_face, &TrayFace::trayDecided, this, [this](bool there) {
        m_trayDecided = true;
        if (!there) {
            m_panel.openOrdinary();
        } else if (m_panelWanted && !m_panel.isOpen()) {
            m_panel.open();
        }
    });
    connect(&m_statusItem, &StatusItem::pointedAt, &m_panel, &PanelHost::prepare);
    connect(&m_statusItem, &StatusItem::pressed, &m_panel, &PanelHost::toggle);
    connect(&m_statusItem, &StatusItem::openChosen, &m_panel, &PanelHost::open);
    connect(&m_statusItem, &StatusItem::settingsChosen, &m_program.panel, &PanelModel::settingsRequested);
    connect(&m_statusItem, &StatusItem::windowChosen, &m_program.panel, &PanelModel::mainWindowRequested);
    connect(&m_statusItem, &StatusItem::quitChosen, &m_program.quitQuestion, &QuitQuestion::ask);
    connect(&m_statusItem, &StatusItem::recordChosen, this, [this] {
        m_program.record.toggle();
        if (m_program.record.refused()) m_panel.open(); // a menu has no place to say so
    });
}

void AppDelegate::connectWindows()
{
    connect(&m_views, &ViewEngine::letGo, this, [this] {
        m_main.reset();
        m_setup.reset();
    });
    const PanelModel* panel = &m_program.panel;
    for (const auto request : {&PanelModel::meetingsRequested, &PanelModel::mainWindowRequested,
                               &PanelModel::settingsRequested, &PanelModel::updateRequested}) {
        connect(panel, request, &m_panel, &PanelHost::close);
    }
    for (const auto request : {&NoticeBoard::folderOpened, &NoticeBoard::installRequested})
        connect(&m_program.board, request, &m_panel, &PanelHost::close);
    connect(&m_program, &Program::mainWindowWanted, this, &AppDelegate::showMain);
    connect(&m_program.quitQuestion, &QuitQuestion::asked, this, [this] {
        m_panel.close();
        m_quit.show();
    });
    connect(panel, &PanelModel::settingsRequested, this, [this] {
        m_program.settings.refresh();
        m_settings.show();
    });
    connect(panel, &PanelModel::updateRequested, this, [this] {
        m_program.updater.check();
        m_update.show();
    });
    connect(&m_program, &Program::panelWanted, this, [this] {
        m_panelWanted = !m_trayDecided && !m_statusItem.hasTray(); // it may come in a moment
        if (!m_panelWanted && !m_panel.isOpen()) m_panel.open();
    });
    // A second start shows nothing by itself where the icon is there to be pressed, or may be in a moment.
    connect(&m_program, &Program::somethingWanted, this, [this] {
        if (!m_trayDecided || m_statusItem.hasTray()) return;
        if (m_setup && m_setup->isVisible()) {
            m_setup->present();
        } else {
            m_panel.openOrdinary();
        }
    });
    connect(&m_program, &Program::setupWanted, this, &AppDelegate::showSetup);
    connect(&m_program, &Program::setupEnded, this, [this] {
        if (!m_program.setup()) return;
        if (m_setup && m_setup->isVisible()) {
            m_setup->alert(0); // and the keyboard stays where it is
        } else {
            showSetup();
        }
    });
    connect(&m_program, &Program::setupFinished, this, &AppDelegate::endSetup);
}

void AppDelegate::start(bool forceSetup)
{
    m_face.show();
    m_program.start(forceSetup);
    m_scheduler.after(startTime, this, [this] {
        startOn(*QThreadPool::globalInstance(), [resting = !m_views.isThere()] {
            memory::readAhead();
            std::ignore = QFontDatabase::families();
            if (resting) memory::rest(); // else once the views have gone
        });
    });
}

void AppDelegate::showMain()
{
    MainModel& model = m_program.main();
    if (!m_main) {
        m_main = std::make_unique<AppWindow>(
            m_views.get(), m_program.language,
            AppWindow::View{.url = view("Windows/MainWindowView"),
                            .properties = {{u"model"_s, QVariant::fromValue(&model)},
                                           {u"appState"_s, QVariant::fromValue(&m_program.state)},
                                           {u"record"_s, QVariant::fromValue(&m_program.record)},
                                           {u"board"_s, QVariant::fromValue(&m_program.board)}},
                            .titleKey = u"meetings.title"_s,
                            .size = {980, 680},
                            .least = {760, 520},
                            .placeFile = m_placeFile,
                            .quit = [this] { m_program.quitQuestion.ask(); }});
        connect(m_main.get(), &QWindow::visibleChanged, &model, &MainModel::setOnScreen);
    }
    if (m_main->isVisible()) model.store()->reload(); // else it looks when it comes
    m_main->present();
}

void AppDelegate::showSetup()
{
    if (m_setup) {
        m_setup->present();
        return;
    }
    m_setup = std::make_unique<AppWindow>(
        m_views.get(), m_program.language,
        AppWindow::View{.url = view("Setup/SetupView"),
                        .properties = {{u"setup"_s, QVariant::fromValue(m_program.setup())},
                                       {u"updater"_s, QVariant::fromValue(&m_program.updater)}},
                        .titleKey = u"setup.title"_s,
                        .size = {560, 720},
                        .least = {560, 440},
                        .quit = [this] { m_program.quitQuestion.ask(); }});
    m_setup->present();
}

void AppDelegate::endSetup()
{
    m_panel.open();
    if (!m_setup) return;
    // Only when the panel has the keyboard: else the window manager, looking for who is to have it after the
    // window, would take it from the panel, which then closes.
    connect(m_setup.get(), &QObject::destroyed, m_program.takeSetup().release(), &QObject::deleteLater);
    const auto close = [this] {
        if (!m_setup) return;
        m_setup->close();
        m_setup.release()->deleteLater();
    };
    connect(&m_panel, &PanelHost::activated, m_setup.get(), close, Qt::SingleShotConnection);
    m_scheduler.after(handOver, m_setup.get(), close);
}

void AppDelegate::showToast(const ToastText& toast)
{
    m_look.setCompositing(windowSystem::compositing());
    m_toasts.show(toast);
    m_panel.raise();
}

void AppDelegate::translateQt()
{
    QCoreApplication::removeTranslator(&m_qtTexts);
    if (m_qtTexts.load(u"qtbase_"_s + m_program.language.current(),
                       QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QCoreApplication::installTranslator(&m_qtTexts);
}

} // namespace murmeli
