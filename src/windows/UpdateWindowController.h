#pragma once

#include <QtGlobal>

#include <memory>

class QQmlEngine;

namespace murmeli {

class AppWindow;
class Language;
class Updater;

/// Opens the update window, which is there until it is closed. Main thread only.
class UpdateWindowController final {
public:
    UpdateWindowController(QQmlEngine& engine, const Language& language, Updater& updater);
    ~UpdateWindowController();
    Q_DISABLE_COPY_MOVE(UpdateWindowController)

    /// Starts a check and brings the window forward.
    void show();

private:
    QQmlEngine& m_engine;
    const Language& m_language;
    Updater& m_updater;
    std::unique_ptr<AppWindow> m_window;
};

} // namespace murmeli
