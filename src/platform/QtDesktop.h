#pragma once

#include "Desktop.h"

namespace murmeli {

/// What Qt does alike on every desktop.
class QtDesktop : public Desktop {
public:
    void openUrl(const QUrl& url) override;
    void openFolder(const QString& path) override;
    void copyFile(const QString& path) override;
    void copy(const Clip& clip) override;
    void askForFile(const FileQuestion& question, QWindow* window, QObject* context, Chosen chosen) override;
    void askWhereToSave(const FileQuestion& question, QWindow* window, QObject* context,
                        Chosen chosen) override;
    [[nodiscard]] QStringList preferredLanguages() const override;
};

} // namespace murmeli
