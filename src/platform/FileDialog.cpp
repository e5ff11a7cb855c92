#include "FileDialog.h"

#include <QFileDialog>
#include <QWindow>

namespace murmeli::fileDialog {

namespace {

void ask(QFileDialog* dialog, QWindow* window, std::function<void(const QString& path)> chosen)
{
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->winId(); // makes its window
    if (dialog->windowHandle()) dialog->windowHandle()->setTransientParent(window);
    QObject::connect(dialog, &QFileDialog::fileSelected, dialog, std::move(chosen));
    if (window) QObject::connect(window, &QObject::destroyed, dialog, &QObject::deleteLater);
    dialog->open();
}

} // namespace

void open(const Question& question, QWindow* window, std::function<void(const QString& path)> chosen)
{
    auto* dialog = new QFileDialog{nullptr, question.title, question.suggested, question.kind};
    dialog->setFileMode(QFileDialog::ExistingFile);
    ask(dialog, window, std::move(chosen));
}

void save(const Question& question, QWindow* window, std::function<void(const QString& path)> chosen)
{
    auto* dialog = new QFileDialog{nullptr, question.title, question.suggested, question.kind};
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setFileMode(QFileDialog::AnyFile);
    dialog->setDefaultSuffix(question.suffix);
    dialog->selectFile(question.suggested);
    ask(dialog, window, std::move(chosen));
}

} // namespace murmeli::fileDialog
