#pragma once

#include <QString>
#include <QStringList>
#include <QUrl>

/// What the desktop does for us. Nothing waits for the program that it starts.
namespace murmeli::workspace {

/// In the default browser, or the mail program, or what else the desktop has for it.
void openUrl(const QUrl& url);

/// In the file browser; the nearest folder above it that exists when it does not.
void openFolder(const QString& path);

/// Selects the file in the file browser. On systems whose browser can, the window is rooted at `root`.
void reveal(const QString& path, const QString& root = {});

/// Puts a file on the clipboard, for programs that take files and for those that take text.
void copyFile(const QString& path);

void copyText(const QString& text);

/// The computer's name as its owner reads it; empty when it has none.
QString computerName();

/// Where the program keeps logs of its own, below the home folder; not made here.
QString stateFolder(const QString& home);

/// The user's languages in order of preference, as "ru-RU".
QStringList preferredLanguages();

} // namespace murmeli::workspace
