#include "MainWindowController.h"

#include "AppWindow.h"
#include "service/AppState.h"
#include "service/RecordControl.h"

using namespace Qt::StringLiterals;

namespace murmeli {

MainWindowController::MainWindowController(QQmlEngine& engine, const MainModel::Ground& ground,
                                           AppState& state, RecordControl& record, QString placeFile,
                                           FileEnded fileEnded)
    : m_engine(engine),
      m_ground(ground),
      m_state(state),
      m_record(record),
      m_placeFile(std::move(placeFile)),
      m_fileEnded(std::move(fileEnded))
{
}

MainWindowController::~MainWindowController() = default;

void MainWindowController::show()
{
    if (!m_window) {
        m_model = std::make_unique<MainModel>(m_ground);
        QObject::connect(m_model.get(), &MainModel::fileEnded, m_model.get(), m_fileEnded);
        m_window = std::make_unique<AppWindow>(
            m_engine, m_ground.language,
            AppWindow::View{.url = u"qrc:/qt/qml/Murmeli/Windows/MainWindowView.qml"_s,
                            .properties = {{u"model"_s, QVariant::fromValue(m_model.get())},
                                           {u"appState"_s, QVariant::fromValue(&m_state)},
                                           {u"record"_s, QVariant::fromValue(&m_record)}},
                            .titleKey = u"meetings.title"_s,
                            .size = {980, 680},
                            .least = {760, 520},
                            .placeFile = m_placeFile});
        QObject::connect(m_window.get(), &QWindow::visibleChanged, m_model.get(), &MainModel::setOnScreen);
    } else {
        m_model->store()->reload();
    }
    m_window->present();
}

} // namespace murmeli
