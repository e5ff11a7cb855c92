#include "QuitQuestion.h"

#include "service/AppState.h"
#include "service/RecordControl.h"

namespace murmeli {

QuitQuestion::QuitQuestion(const AppState& state, RecordControl& record, QObject* parent)
    : QObject(parent), m_state(state), m_record(record)
{
}

void QuitQuestion::ask()
{
    if (m_state.isRecording()) {
        emit asked();
    } else {
        emit agreed();
    }
}

void QuitQuestion::stopAndQuit()
{
    if (m_state.isRecording()) {
        m_record.toggle();
        if (m_record.refused()) return;
    }
    emit agreed();
}

} // namespace murmeli
