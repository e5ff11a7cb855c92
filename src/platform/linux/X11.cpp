#include "X11.h"

#include <QGuiApplication>

#include <cstdlib>
#include <memory>

namespace murmeli::x11 {

xcb_connection_t* connection()
{
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 ? x11->connection() : nullptr;
}

xcb_atom_t atom(const QByteArray& name)
{
    xcb_connection_t* server = connection();
    if (!server) return XCB_ATOM_NONE;
    const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> reply{
        xcb_intern_atom_reply(server, xcb_intern_atom(server, 0, uint16_t(name.size()), name.constData()),
                              nullptr),
        &std::free};
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

xcb_window_t ownerOf(const QByteArray& selection)
{
    xcb_connection_t* server = connection();
    if (!server) return XCB_NONE;
    const std::unique_ptr<xcb_get_selection_owner_reply_t, decltype(&std::free)> reply{
        xcb_get_selection_owner_reply(server, xcb_get_selection_owner(server, atom(selection)), nullptr),
        &std::free};
    return reply ? reply->owner : xcb_window_t{XCB_NONE};
}

} // namespace murmeli::x11
