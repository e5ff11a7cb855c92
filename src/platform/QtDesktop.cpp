#include "QtDesktop.h"

#include <QClipboard>
#include <QDesktopServices>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QGuiApplication>
#include <QLineEdit>
#include <QLocale>
#include <QMessageBox>
#include <QMimeData>
#include <QPointer>
#include <QWindow>

using namespace Qt::StringLiterals;

namespace murmeli {

namespace {

/// Keeps the name that was typed, which Qt's own dialog splits at quotation marks, with the ending of its
/// kind. Desktops with a dialog of their own hand the name over as it is, and lack the ending only.
class SaveDialog final : public QFileDialog {
public:
    SaveDialog(const Desktop::FileQuestion& question, Desktop::Chosen chosen)
        : QFileDialog(nullptr, question.title, question.suggested, question.kind),
          m_ending(u'.' + question.suffix),
          m_chosen(std::move(chosen))
    {
        setAcceptMode(AcceptSave);
        setFileMode(AnyFile);
        selectFile(question.suggested);
    }

protected:
    void accept() override
    {
        auto* field = findChild<QLineEdit*>(u"fileNameEdit"_s);
        QString path = field ? field->text() : selectedFiles().value(0);
        if (path.startsWith("~/"_L1)) path.replace(0, 1, QDir::homePath());
        if (!path.isEmpty()) path = directory().absoluteFilePath(path);
        if (path.isEmpty()) return;
        if (QFileInfo{path}.isDir()) {
            if (field) QFileDialog::accept(); // goes there
            return;
        }
        const QString named = path.endsWith(m_ending, Qt::CaseInsensitive) ? path : path + m_ending;
        const bool asked = !field && named == path; // by the desktop's dialog
        if (asked || !QFileInfo::exists(named)) {
            take(named);
        } else {
            askToReplace(named);
        }
    }

private:
    void take(const QString& path)
    {
        m_chosen(path);
        done(Accepted);
    }

    void askToReplace(const QString& path)
    {
        const QString question =
            tr("%1 already exists.\nDo you want to replace it?").arg(QFileInfo{path}.fileName());
        auto* box = new QMessageBox{QMessageBox::Warning, windowTitle(), question,
                                    QMessageBox::Yes | QMessageBox::No, this};
        box->setDefaultButton(QMessageBox::No);
        box->setAttribute(Qt::WA_DeleteOnClose);
        connect(box, &QDialog::finished, this, [this, path](int answer) {
            if (answer == QMessageBox::Yes) take(path);
        });
        box->open();
    }

    QString m_ending;
    Desktop::Chosen m_chosen;
};

void present(QFileDialog* dialog, QWindow* window)
{
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->winId(); // makes its window
    if (dialog->windowHandle()) dialog->windowHandle()->setTransientParent(window);
    if (window) QObject::connect(window, &QObject::destroyed, dialog, &QObject::deleteLater);
    dialog->open();
}

/// Drops the answer when nobody is there for it any more.
Desktop::Chosen whileAlive(QObject* context, Desktop::Chosen chosen)
{
    return [context = QPointer{context}, chosen = std::move(chosen)](const QString& path) {
        if (context) chosen(path);
    };
}

} // namespace

void QtDesktop::openUrl(const QUrl& url) { QDesktopServices::openUrl(url); }

void QtDesktop::openFolder(const QString& path)
{
    QFileInfo folder{path};
    while (!folder.isDir() && !folder.isRoot())
        folder.setFile(folder.absolutePath());
    openUrl(QUrl::fromLocalFile(folder.absoluteFilePath()));
}

void QtDesktop::copyFile(const QString& path)
{
    const QUrl url = QUrl::fromLocalFile(path);
    auto* data = new QMimeData;
    data->setUrls({url});
    data->setText(path);
    data->setData(u"x-special/gnome-copied-files"_s, "copy\n" + url.toEncoded());
    QGuiApplication::clipboard()->setMimeData(data);
}

void QtDesktop::copy(const Clip& clip)
{
    auto* data = new QMimeData;
    data->setText(clip.text);
    if (!clip.html.isEmpty()) data->setHtml(clip.html);
    if (!clip.markdown.isEmpty()) data->setData(u"text/markdown"_s, clip.markdown.toUtf8());
    QGuiApplication::clipboard()->setMimeData(data);
}

void QtDesktop::askForFile(const FileQuestion& question, QWindow* window, QObject* context, Chosen chosen)
{
    auto* dialog = new QFileDialog{nullptr, question.title, question.suggested, question.kind};
    dialog->setFileMode(QFileDialog::ExistingFile);
    QObject::connect(dialog, &QFileDialog::fileSelected, dialog, whileAlive(context, std::move(chosen)));
    present(dialog, window);
}

void QtDesktop::askWhereToSave(const FileQuestion& question, QWindow* window, QObject* context, Chosen chosen)
{
    present(new SaveDialog{question, whileAlive(context, std::move(chosen))}, window);
}

QStringList QtDesktop::preferredLanguages() const { return QLocale::system().uiLanguages(); }

} // namespace murmeli
