#pragma once

#include "base/Lease.h"

#include <QObject>

namespace murmeli {

class AppState;
class Language;
class Look;
class PanelModel;
class RecordControl;
class Scheduler;
class StatusItem;

/// How the status item looks, blinks and is called, and the words of its menu. Main thread only.
class TrayFace final : public QObject {
    Q_OBJECT

public:
    TrayFace(StatusItem& statusItem, const AppState& state, const RecordControl& record,
             const PanelModel& panel, const Language& language, const Look& look, Scheduler& scheduler);
    ~TrayFace() override;
    Q_DISABLE_COPY_MOVE(TrayFace)

    /// Shows the icon at once. Two seconds later it says whether the desktop has a tray.
    void show();

signals:
    void trayDecided(bool there);

private:
    void followStatus();
    void updateIcon();
    void updateTexts();

    StatusItem& m_statusItem;
    const AppState& m_state;
    const RecordControl& m_record;
    const PanelModel& m_panel;
    const Language& m_language;
    const Look& m_look;
    Scheduler& m_scheduler;
    Lease m_blinking;
    bool m_bright = true;
};

} // namespace murmeli
