#pragma once

#include <QByteArray>

#include <xcb/xcb.h>

/// Short questions to the X server that Qt is connected to. Main thread only.
namespace murmeli::x11 {

/// Null where Qt draws on something else.
xcb_connection_t* connection();

xcb_atom_t atom(const QByteArray& name);

/// The window that owns a selection, by which its owner says what it does for the desktop; none without X.
xcb_window_t ownerOf(const QByteArray& selection);

} // namespace murmeli::x11
