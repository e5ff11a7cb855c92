#include "FileDialog.h"

#include <QFileDialog>
#include <QWindow>

namespace murmeli::fileDialog {

void save(const Question& question, QWindow* window, std::function<void(const QString& path)> chosen)
{
    auto* dialog = new QFileDialog{nullptr, question.title, question.suggested, question.kind};
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setFileMode(QFileDialog::AnyFile);
    dialog->setDefaultSuffix(question.suffix);
    dialog->selectFile(question.suggested);
    dialog->winId(); // makes its window
    if (dialog->windowHandle()) dialog->windowHandle()->setTransientParent(window);
    QObject::connect(dialog, &QFileDialog::fileSelected, dialog, std::move(chosen));
    if (window) QObject::connect(window, &QObject::destroyed, dialog, &QObject::deleteLater);
    dialog->open();
}

} // namespace murmeli::fileDialog
