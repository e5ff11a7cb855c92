#pragma once

#include <QString>

#include <functional>

class QQuickWindow;

namespace murmeli {

struct TestProgram;

/// In which language and theme a picture is taken, and where it goes.
struct Frame {
    QString language;
    bool dark = true;
    double textScale = 1;
    QString folder;
};

/// Prepares a program for the frame.
void dress(TestProgram& program, const Frame& frame);

/// Lets animations of the given time come to their end.
void settle(int milliseconds);

/// Waits for `done`, which must come true.
void await(const std::function<bool()>& done);

/// Saves what the window shows as `name` in the frame's folder. \return false when it could not.
bool save(QQuickWindow& window, const Frame& frame, const QString& name);

/// Every state of a screen whose name holds `only`. \return false when a picture failed.
bool shootPanels(const Frame& frame, const QString& only);
bool shootToasts(const Frame& frame, const QString& only);
bool shootUpdates(const Frame& frame, const QString& only);
bool shootSetups(const Frame& frame, const QString& only);
bool shootMain(const Frame& frame, const QString& only);
bool shootPermissions(const Frame& frame, const QString& only);
bool shootSettings(const Frame& frame, const QString& only);

} // namespace murmeli
