#include "TrayFace.h"

#include "base/Scheduler.h"
#include "localisation/Language.h"
#include "panel/PanelModel.h"
#include "platform/StatusItem.h"
#include "service/AppState.h"
#include "service/RecordControl.h"
#include "ui/Look.h"
#include "ui/SymbolImage.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace murmeli {

namespace {

constexpr auto blinkInterval = 700ms;
constexpr auto trayPatience = 2s; ///< at log-in the tray may come later than we do

QIcon iconOf(const std::function<QImage(int)>& draw)
{
    QIcon icon;
    for (const int side : {16, 22, 24, 32, 44, 48, 64})
        icon.addPixmap(QPixmap::fromImage(draw(side)));
    return icon;
}

} // namespace

TrayFace::TrayFace(StatusItem& statusItem, const AppState& state, const RecordControl& record,
                   const PanelModel& panel, const Language& language, const Look& look, Scheduler& scheduler)
    : m_statusItem(statusItem),
      m_state(state),
      m_record(record),
      m_panel(panel),
      m_language(language),
      m_look(look),
      m_scheduler(scheduler)
{
    connect(&state, &AppState::changed, this, &TrayFace::followStatus);
    connect(&language, &Language::changed, this, &TrayFace::updateTexts);
    connect(&record, &RecordControl::pendingChanged, this, &TrayFace::updateTexts);
    connect(&look, &Look::changed, this, &TrayFace::updateIcon);
    connect(&statusItem, &StatusItem::trayCame, this, &TrayFace::updateIcon);
}

TrayFace::~TrayFace() = default;

void TrayFace::show()
{
    updateTexts();
    updateIcon();
    m_statusItem.show();
    m_scheduler.after(trayPatience, this, [this] { emit trayDecided(m_statusItem.hasTray()); });
}

void TrayFace::followStatus()
{
    if (m_state.isRecording() != bool(m_blinking)) {
        m_bright = true;
        m_blinking.end();
        if (m_state.isRecording()) {
            m_scheduler.every(blinkInterval, m_blinking.renew(), [this] {
                m_bright = !m_bright;
                updateIcon();
            });
        }
    }
    updateIcon();
    updateTexts();
}

void TrayFace::updateIcon()
{
    StatusItem::Look look;
    if (m_state.isRecording()) {
        look.isTemplate = false;
        look.installedName = m_bright ? u"murmeli-recording"_s : u"murmeli-recording-dim"_s;
        look.icon = iconOf([&](int side) { return symbols::recording(side, m_bright); });
    } else {
        const bool processing = m_state.isProcessing();
        const QString symbol = processing ? u"gearshape.2.fill"_s : u"waveform.tray"_s;
        look.installedName = processing ? u"murmeli-processing-symbolic"_s : u"murmeli-idle-symbolic"_s;
        const auto ground = m_statusItem.ground();
        const bool dark =
            ground == StatusItem::Ground::Dark || (ground != StatusItem::Ground::Light && m_look.dark());
        const auto draw = ground == StatusItem::Ground::Unknown ? &symbols::onAnyBar : &symbols::onBar;
        look.icon = iconOf([&](int side) { return draw(symbol, side, dark); });
    }
    m_statusItem.setLook(look);
}

void TrayFace::updateTexts()
{
    m_statusItem.setName(m_language.t(u"tray.name"_s, m_language.say(m_panel.title())));
    m_statusItem.setMenu(
        {m_language.say(m_record.waiting() || m_record.refused() ? m_panel.line() : m_panel.title()),
         m_language.t(m_state.isRecording() ? u"tray.stop"_s : u"tray.start"_s), m_language.t(u"tray.open"_s),
         m_language.t(u"tray.window"_s), m_language.t(u"tray.settings"_s), m_language.t(u"tray.quit"_s)});
}

} // namespace murmeli
