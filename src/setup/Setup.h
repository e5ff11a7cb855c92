#pragma once

#include "SetupRunner.h"
#include "permissions/PermissionsModel.h"

#include <QObject>
#include <QtQml/qqmlregistration.h>

namespace murmeli {

/// The first-run setup: the installation and the permissions. Main thread only.
class Setup final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made once and handed to the setup window")
    Q_PROPERTY(murmeli::SetupRunner* runner READ runner CONSTANT FINAL)
    Q_PROPERTY(murmeli::PermissionsModel* permissions READ permissions CONSTANT FINAL)

public:
    /// \param background as PermissionsModel takes it.
    Setup(const Paths& paths, SetupRunner::Place place, Processes& processes, Desktop& desktop,
          Scheduler& scheduler, QObject& background);

    [[nodiscard]] SetupRunner* runner() { return &m_runner; }
    [[nodiscard]] PermissionsModel* permissions() { return &m_permissions; }

    /// Installs what is missing.
    void start();

    /// The user is through with it.
    Q_INVOKABLE void finish() { emit finished(); }

signals:
    void ended(bool installed); ///< the installation
    void finished();

private:
    SetupRunner m_runner;
    PermissionsModel m_permissions;
    bool m_needed;
};

} // namespace murmeli
