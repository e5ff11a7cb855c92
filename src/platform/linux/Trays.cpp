#include "Trays.h"

#include "X11.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QDBusVariant>

#include <cstdlib>
#include <memory>
#include <numeric>

using namespace Qt::StringLiterals;

namespace murmeli {

namespace {

constexpr auto watcherName = "org.kde.StatusNotifierWatcher"_L1;
constexpr auto watcherPath = "/StatusNotifierWatcher"_L1;
constexpr int patience = 5000; // milliseconds

constexpr auto traySelection = "_NET_SYSTEM_TRAY_S0";

} // namespace

NotifierHost::NotifierHost()
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        m_state = State::Absent;
        return;
    }
    auto* owners = new QDBusServiceWatcher{watcherName, bus, QDBusServiceWatcher::WatchForOwnerChange, this};
    connect(owners, &QDBusServiceWatcher::serviceOwnerChanged, this, &NotifierHost::ask);
    // From whomever it comes: to name the sender would make Qt wait for its address.
    for (const auto* signal : {"StatusNotifierHostRegistered", "StatusNotifierHostUnregistered"})
        bus.connect({}, watcherPath, watcherName, QLatin1StringView{signal}, this, SLOT(ask()));
    ask();
}

void NotifierHost::ask()
{
    QDBusMessage call = QDBusMessage::createMethodCall(watcherName, watcherPath,
                                                       u"org.freedesktop.DBus.Properties"_s, u"Get"_s);
    call.setArguments({QString{watcherName}, u"IsStatusNotifierHostRegistered"_s});
    call.setAutoStartService(false);
    auto* answer = new QDBusPendingCallWatcher{QDBusConnection::sessionBus().asyncCall(call, patience), this};
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer, asked = ++m_asked] {
        answer->deleteLater();
        if (asked != m_asked) return;
        const QDBusPendingReply<QDBusVariant> reply = *answer;
        if (reply.isError() && reply.error().type() == QDBusError::NoReply) {
            become(State::Unknown);
            ask(); // a busy machine is no desktop without a bar
        } else if (reply.isError()) {
            become(State::Absent);
        } else {
            become(reply.value().variant().toBool() ? State::There : State::Absent);
        }
    });
}

void NotifierHost::become(State state)
{
    if (m_state == state) return;
    m_state = state;
    emit changed();
}

XEmbedTray::XEmbedTray()
{
    m_announcement = x11::atom("MANAGER");
    if (m_announcement) qApp->installNativeEventFilter(this);
}

XEmbedTray::~XEmbedTray() = default;

bool XEmbedTray::isThere() { return x11::ownerOf(traySelection) != XCB_NONE; }

std::optional<bool> XEmbedTray::isDark()
{
    const xcb_window_t tray = x11::ownerOf(traySelection);
    if (tray == XCB_NONE) return std::nullopt;
    constexpr uint32_t channels = 3; // of the first of four colours, which is that of the icons
    const std::unique_ptr<xcb_get_property_reply_t, decltype(&std::free)> colours{
        xcb_get_property_reply(x11::connection(),
                               xcb_get_property(x11::connection(), 0, tray,
                                                x11::atom("_NET_SYSTEM_TRAY_COLORS"), XCB_ATOM_CARDINAL, 0,
                                                channels),
                               nullptr),
        &std::free};
    if (!colours || colours->format != 32 || colours->value_len != channels) return std::nullopt;
    const auto* rgb = static_cast<const uint32_t*>(xcb_get_property_value(colours.get()));
    constexpr uint32_t middle = 0x7fff; // of a channel
    return std::accumulate(rgb, rgb + channels, 0U) > channels * middle;
}

bool XEmbedTray::nativeEventFilter(const QByteArray&, void* message, qintptr*)
{
    const auto* event = static_cast<const xcb_generic_event_t*>(message);
    constexpr uint8_t sentByOthers = 0x80;
    if ((event->response_type & ~sentByOthers) != XCB_CLIENT_MESSAGE) return false;
    if (reinterpret_cast<const xcb_client_message_event_t*>(event)->type == m_announcement) emit came();
    return false;
}

} // namespace murmeli
