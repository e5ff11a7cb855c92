#pragma once

#include <QObject>
#include <QtQml/qqmlregistration.h>

namespace murmeli {

class AppState;
class RecordControl;

/// Whether to quit while a recording runs, and what is to become of it. Main thread only.
class QuitQuestion final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made once and handed to its window")

public:
    QuitQuestion(const AppState& state, RecordControl& record, QObject* parent = nullptr);

    /// Agrees at once where nothing is recorded.
    void ask();

    Q_INVOKABLE void stopAndQuit(); ///< stays where the service cannot be told to stop
    Q_INVOKABLE void quit() { emit agreed(); }

signals:
    void asked();
    void agreed();

private:
    const AppState& m_state;
    RecordControl& m_record;
};

} // namespace murmeli
