#pragma once

#include "MainModel.h"

#include <QQmlEngine>

#include <functional>
#include <memory>

namespace murmeli {

class AppState;
class AppWindow;
class RecordControl;

/// Opens the main window, which is made with the first look at it, with what it shows. Main thread only.
class MainWindowController final {
public:
    /// Tells what became of a file whose meeting is out of sight.
    using FileEnded = std::function<void(const QString& meeting, bool saved, const QString& line)>;

    MainWindowController(QQmlEngine& engine, const MainModel::Ground& ground, AppState& state,
                         RecordControl& record, QString placeFile, FileEnded fileEnded);
    ~MainWindowController();
    Q_DISABLE_COPY_MOVE(MainWindowController)

    /// Has the meetings looked for anew and brings the window forward.
    void show();

private:
    QQmlEngine& m_engine;
    MainModel::Ground m_ground;
    AppState& m_state;
    RecordControl& m_record;
    QString m_placeFile; ///< remembers the window's size and place
    FileEnded m_fileEnded;
    std::unique_ptr<MainModel> m_model;
    std::unique_ptr<AppWindow> m_window;
};

} // namespace murmeli
