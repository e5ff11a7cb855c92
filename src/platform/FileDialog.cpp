#include "FileDialog.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QLineEdit>
#include <QMessageBox>
#include <QWindow>

using namespace Qt::StringLiterals;

namespace murmeli::fileDialog {

namespace {

/// Keeps the name that was typed, which Qt's own dialog splits at quotation marks, with the ending of its
/// kind. Desktops with a dialog of their own hand the name over as it is, and lack the ending only.
class SaveDialog final : public QFileDialog {
public:
    SaveDialog(const Question& question, std::function<void(const QString& path)> chosen)
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
    std::function<void(const QString& path)> m_chosen;
};

void present(QFileDialog* dialog, QWindow* window)
{
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->winId(); // makes its window
    if (dialog->windowHandle()) dialog->windowHandle()->setTransientParent(window);
    if (window) QObject::connect(window, &QObject::destroyed, dialog, &QObject::deleteLater);
    dialog->open();
}

} // namespace

void open(const Question& question, QWindow* window, std::function<void(const QString& path)> chosen)
{
    auto* dialog = new QFileDialog{nullptr, question.title, question.suggested, question.kind};
    dialog->setFileMode(QFileDialog::ExistingFile);
    QObject::connect(dialog, &QFileDialog::fileSelected, dialog, std::move(chosen));
    present(dialog, window);
}

void save(const Question& question, QWindow* window, std::function<void(const QString& path)> chosen)
{
    present(new SaveDialog{question, std::move(chosen)}, window);
}

} // namespace murmeli::fileDialog
