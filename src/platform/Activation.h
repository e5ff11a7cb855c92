#pragma once

#include <QString>

#include <functional>

class QObject;

namespace murmeli {

/// Lets the desktop reach the running program by its name instead of by a second start. `told` gets
/// "activate", an address of ours, or the name of an action of the menu's entry. Main thread only.
void listenToDesktop(const QString& name, QObject* context, std::function<void(const QString&)> told);

} // namespace murmeli
