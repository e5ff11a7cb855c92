#pragma once

#include <QString>

#include <functional>

class QWindow;

namespace murmeli::fileDialog {

struct Question {
    QString title;
    QString suggested; ///< path of the proposed file, or the folder to begin with
    QString kind;      ///< as "PDF (*.pdf)"
    QString suffix;    ///< added to a name without one, as "pdf"
};

/// Asks for a file to read; else as save().
void open(const Question& question, QWindow* window, std::function<void(const QString& path)> chosen);

/// Asks where a file is to be saved, in front of `window`. `chosen` gets the path, or is not called when the
/// user cancels. Returns at once. Main thread only.
void save(const Question& question, QWindow* window, std::function<void(const QString& path)> chosen);

} // namespace murmeli::fileDialog
