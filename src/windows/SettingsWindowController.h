#pragma once

#include <QtGlobal>

#include <memory>

class QQmlEngine;

namespace murmeli {

class AppWindow;
class Language;
class SettingsModel;

/// Opens the settings in a window of their own, which is there until it is closed. Main thread only.
class SettingsWindowController final {
public:
    SettingsWindowController(QQmlEngine& engine, const Language& language, SettingsModel& model);
    ~SettingsWindowController();
    Q_DISABLE_COPY_MOVE(SettingsWindowController)

    void show();

private:
    QQmlEngine& m_engine;
    const Language& m_language;
    SettingsModel& m_model;
    std::unique_ptr<AppWindow> m_window;
};

} // namespace murmeli
