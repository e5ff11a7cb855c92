#pragma once

#include "platform/Desktop.h"

#include <optional>

namespace murmeli {

/// A desktop that does nothing and remembers what it was asked for.
class RecordingDesktop : public Desktop {
public:
    explicit RecordingDesktop(QString stateFolder = {}) : states(std::move(stateFolder)) {}

    QList<QUrl> opened;
    QStringList folders;
    QStringList revealed;
    QStringList copiedFiles;
    QString copiedText;
    QString copiedHtml;
    QList<FileQuestion> questions;
    QString answer; ///< to the next question; empty: the user cancels
    bool shares = true;
    QStringList shared;
    QList<Letter> letters;
    bool hasMail = true;
    QList<SettingsPage> pages;
    bool hasPages = true;
    bool throughBrowser = true;
    std::optional<bool> loginItem;
    bool byAgent = false;
    bool peace = false;
    QString name; ///< of the computer
    QStringList languages;
    QString states; ///< folder

    void openUrl(const QUrl& url) override { opened.append(url); }
    void openFolder(const QString& path) override { folders.append(path); }
    void reveal(const QString& path, const QString&) override { revealed.append(path); }
    void copyFile(const QString& path) override { copiedFiles.append(path); }
    void copy(const Clip& clip) override
    {
        copiedText = clip.text;
        copiedHtml = clip.html;
    }
    void askForFile(const FileQuestion& question, QWindow*, QObject*, Chosen chosen) override
    {
        questions.append(question);
        if (!answer.isEmpty()) chosen(answer);
    }
    void askWhereToSave(const FileQuestion& question, QWindow* window, QObject* context,
                        Chosen chosen) override
    {
        askForFile(question, window, context, std::move(chosen));
    }
    bool share(const QString& path, QWindow*, const QPoint&) override
    {
        if (shares) shared.append(path);
        return shares;
    }
    void mail(const Letter& letter) override { letters.append(letter); }
    void askForMailProgram(QObject*, std::function<void(bool)> answer) override { answer(hasMail); }
    bool openSettings(SettingsPage page) override
    {
        if (hasPages) pages.append(page);
        return hasPages;
    }
    void setLoginItem(bool on, const QString&) override { loginItem = on; }
    [[nodiscard]] bool startedByAgent(const QString&) const override { return byAgent; }
    void signIn(const QUrl& page, const QString&, CameBack) override { opened.append(page); }
    [[nodiscard]] bool signsInThroughBrowser() const override { return throughBrowser; }
    void askForPeace(QObject*, std::function<void(bool)> answer) override { answer(peace); }
    [[nodiscard]] QString computerName() const override { return name; }
    [[nodiscard]] QStringList preferredLanguages() const override { return languages; }
    [[nodiscard]] QString stateFolder() const override { return states; }
    [[nodiscard]] OwnFolders ownFolders() const override { return {}; }
};

} // namespace murmeli
