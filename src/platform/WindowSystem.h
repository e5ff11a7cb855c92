#pragma once

class QString;
class QWindow;

/// Small questions to the window system that Qt has no answer for.
namespace murmeli::windowSystem {

/// Before the application object is made: chooses a window system that lets a program place its windows,
/// unless the user has chosen one, and gives up a session bus that does not answer within a second, since Qt
/// would wait for it without end.
void prepare();

/// Whether there is nothing that draws but the processor, by what the kernel tells under `root` ("/"), and
/// the user has not named another way to draw: then Qt Quick's own renderer is quicker and smaller than a
/// graphics library that stands in for hardware.
bool drawsInSoftware(const QString& root);

/// After it is made: keeps the program out of the Dock, where there is one, and gives fonts the screen's
/// resolution where Qt has made the first of them without knowing it.
void settle();

/// Whether a program can say where its windows stand; natively on Wayland none can.
bool placesWindows();

/// Whether the pointer's place is known while it is not over one of our windows.
bool knowsPointer();

/// Tells the user something in passing through the desktop's own notifications, for programs that cannot
/// place a window. Does not wait; nothing comes of it where nobody shows notifications.
void notify(const QString& title, const QString& message);

/// Whether windows may be translucent right now; without it rounded corners would be black.
bool compositing();

/// Lets `window` show above full-screen programs and on all desktops, where the system can. Before it is
/// shown.
void floatEverywhere(QWindow* window);

/// Brings such a window to the front, and the keyboard with it if wanted. Where the system tells programs
/// apart by who is active, that stays the one that the user works in.
void bringForward(QWindow* window, bool withKeyboard);

/// Lets the content of an ordinary window reach under its title, where views leave room for that.
void extendUnderTitle(QWindow* window);

} // namespace murmeli::windowSystem
