#pragma once

#include <QPoint>
#include <QString>
#include <QStringList>
#include <QUrl>

#include <functional>
#include <memory>

class QObject;
class QWindow;

namespace murmeli {

/// What the desktop does for us. Nothing waits for the programs that it starts. Main thread only.
class Desktop {
public:
    using Chosen = std::function<void(const QString& path)>;
    using CameBack = std::function<void(const QString& address)>;
    enum class SettingsPage { Microphone, ScreenRecording };

    struct FileQuestion {
        QString title;
        QString suggested;   ///< path of the proposed file, or the folder to begin with
        QString kind;        ///< as "PDF (*.pdf)"
        QString suffix = {}; ///< the ending of a file to save, as "pdf"
    };

    virtual ~Desktop() = default;

    /// In the default browser, or the mail program, or what else the desktop has for it.
    virtual void openUrl(const QUrl& url) = 0;

    /// In the file browser; the nearest folder above it that exists when it does not.
    virtual void openFolder(const QString& path) = 0;

    /// Selects the file in the file browser. On systems whose browser can, the window is rooted at `root`.
    virtual void reveal(const QString& path, const QString& root) = 0;

    /// Puts a file on the clipboard, for programs that take files and for those that take text.
    virtual void copyFile(const QString& path) = 0;
    /// A text, and the same for programs that take formatted text or Markdown, where there is any.
    struct Clip {
        QString text;
        QString html = {};
        QString markdown = {};
    };
    virtual void copy(const Clip& clip) = 0;
    void copyText(const QString& text) { copy({.text = text}); }

    /// Asks in front of `window` for a file to read, or where to save one, under the very name that was
    /// typed, with its ending. `chosen` gets the path, or is not called when the user cancels or `context`
    /// has gone.
    virtual void askForFile(const FileQuestion& question, QWindow* window, QObject* context,
                            Chosen chosen) = 0;
    virtual void askWhereToSave(const FileQuestion& question, QWindow* window, QObject* context,
                                Chosen chosen) = 0;

    /// Offers the system's own ways to pass a file on, at a place in `window`. \return false where it has
    /// none.
    virtual bool share(const QString& path, QWindow* window, const QPoint& at) = 0;

    struct Letter {
        QString subject = {};
        QString text = {};
        QString file = {}; ///< path of what goes with it
    };
    /// Begins a letter in the default mail program.
    virtual void mail(const Letter& letter) = 0;
    /// Asks whether there is one. `answer` may come later; it does not come when `context` has gone.
    virtual void askForMailProgram(QObject* context, std::function<void(bool there)> answer) = 0;

    /// Shows the desktop's own page for a permission. \return false where the desktop has no such page.
    virtual bool openSettings(SettingsPage page) = 0;

    /// Puts this program on the list of what is started when the user logs in, or takes it off. A failure is
    /// silent: the preference itself is stored elsewhere. \param agentFile written when it is missing, where
    /// the system has login agents.
    virtual void setLoginItem(bool on, const QString& agentFile) = 0;

    /// Whether the login agent of that name has started this very process, which would end with it.
    [[nodiscard]] virtual bool startedByAgent(const QString& label) const = 0;

    /// Lets a person sign in on a web page. Where the system itself hands the address of `scheme` back,
    /// `cameBack` gets it, or nothing when the person has given up or it could not begin; elsewhere the
    /// browser starts the program with it. An earlier session is dropped.
    virtual void signIn(const QUrl& page, const QString& scheme, CameBack cameBack) = 0;

    /// Whether a browser that the user knows is used for it, which may fail to hand the address back.
    [[nodiscard]] virtual bool signsInThroughBrowser() const = 0;

    /// Asks whether the user wants to be left in peace, as while a screen is shared. `answer` may come later,
    /// and is no where the desktop does not say; it does not come when `context` has gone.
    virtual void askForPeace(QObject* context, std::function<void(bool wanted)> answer) = 0;

    /// The computer's name as its owner reads it; empty when it has none.
    [[nodiscard]] virtual QString computerName() const = 0;

    /// The user's languages in order of preference, as "ru-RU".
    [[nodiscard]] virtual QStringList preferredLanguages() const = 0;

    /// Where the program keeps drafts and logs of its own; not made here.
    [[nodiscard]] virtual QString stateFolder() const = 0;

    struct OwnFolders {
        QString data, cache, config;
    };
    /// Where the system wants a program to keep what is its own; not made here.
    [[nodiscard]] virtual OwnFolders ownFolders() const = 0;
};

/// Of the user with that home folder.
std::unique_ptr<Desktop> makeDesktop(const QString& home);

} // namespace murmeli
