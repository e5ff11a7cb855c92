#include "SetupRunner.h"

#include "base/Background.h"
#include "base/Files.h"
#include "base/Processes.h"
#include "base/Scheduler.h"
#include "base/Text.h"
#include "platform/Desktop.h"
#include "service/Paths.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStringDecoder>

#include <algorithm>
#include <tuple>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace murmeli {

namespace {

constexpr auto publishInterval = 16ms;
constexpr qsizetype tailLength = 90;          // characters
constexpr qint64 logLimit = 10 * 1024 * 1024; // bytes, about; enough for any installer that is sound
const QString marker = u"@@"_s;

std::optional<int> percent(const QString& text)
{
    const auto number = text::wholeNumber(text);
    return number && *number == int(*number) ? std::optional{int(*number)} : std::nullopt;
}

} // namespace

SetupRunner::SetupRunner(Place place, Processes& processes, Desktop& desktop, Scheduler& scheduler,
                         QObject* parent)
    : QAbstractListModel(parent),
      m_place(std::move(place)),
      m_processes(processes),
      m_desktop(desktop),
      m_scheduler(scheduler)
{
    m_logWriter.setMaxThreadCount(1);
}

SetupRunner::~SetupRunner() = default;

bool SetupRunner::needed(const Paths& paths)
{
    return !QFileInfo::exists(paths.python) || !QFileInfo::exists(paths.modelsMarker);
}

QString SetupRunner::installCommand()
{
    // A download that broke off is no success, although the shell ran what it got. But a script may well end
    // before its last byte has come, and then it is curl that cannot write (23).
    return uR"sh(curl -fsSL --proto-redir =https "$0" | MURMELI_UI=1 bash
ends=("${PIPESTATUS[@]}")
[ "${ends[1]}" -eq 0 ] || exit "${ends[1]}"
[ "${ends[0]}" -eq 23 ] || exit "${ends[0]}")sh"_s;
}

QString SetupRunner::strip(const QString& line)
{
    static const QRegularExpression terminalCodes{u"\x1b\\[[0-9;]*[A-Za-z]"_s};
    QString plain = line;
    return text::trimmed(plain.remove(terminalCodes).remove(u'\r'));
}

double SetupRunner::overallPercent() const
{
    double sum = 0;
    for (const StepState& state : m_states) {
        if (state.kind == StepState::Done) sum += 1;
        if (state.kind == StepState::Running) sum += state.percent.value_or(0) / 100.0;
    }
    return std::min(sum / double(m_states.size()), 1.0);
}

void SetupRunner::start()
{
    if (isRunning()) return;
    m_finished = false;
    m_failed = false;
    m_failedStep.reset();
    m_states.fill({});
    startOn(m_logWriter, [log = m_place.logFile] {
        QDir{}.mkpath(QFileInfo{log}.path());
        std::ignore = files::writePrivate(log, {}); // what an installer prints is nobody else's
    });
    m_logRoom = logLimit;
    m_processes.run({.program = u"/bin/bash"_s,
                     .arguments = {u"-c"_s, installCommand(), m_place.webOrigin + u"/app/install.sh"_s},
                     .onOutput = [this](const QByteArray& chunk) { read(chunk); }},
                    m_task.renew(), [this](const ProcessResult& result) {
                        if (result.outcome == ProcessResult::Outcome::NotStarted)
                            m_failedStep = SetupStep::System;
                        m_task.end();
                        ended(result.ok());
                    });
    publish();
}

void SetupRunner::cancel()
{
    if (!isRunning()) return;
    m_task.end();
    ended(false);
}

void SetupRunner::markReady()
{
    if (isRunning() || m_finished) return;
    m_states.fill({.kind = StepState::Done});
    m_finished = true;
    m_failed = false;
    m_failedStep.reset();
    publish();
}

void SetupRunner::openLog() { m_desktop.openUrl(QUrl::fromLocalFile(m_place.logFile)); }

void SetupRunner::read(const QByteArray& chunk)
{
    // Gigabytes of models are being written meanwhile, so this may take its time. Where it fails, nothing
    // stops.
    if (m_logRoom > 0)
        startOn(m_logWriter, [log = m_place.logFile, chunk] { return files::append(log, chunk); });
    m_logRoom -= chunk.size();
    QStringDecoder decoder{QStringDecoder::Utf8, QStringDecoder::Flag::Stateless};
    const QString text = decoder(chunk);
    if (decoder.hasError()) return;
    // Reads are not joined, so that a line without its end is shown as soon as it is there.
    for (const QString& line : text.split(u'\n', Qt::SkipEmptyParts))
        handle(line);
    publishSoon();
}

void SetupRunner::handle(const QString& line)
{
    if (line.startsWith(marker)) {
        handleMarker(line.mid(marker.size()).split(u'|'));
        return;
    }
    const QString plain = strip(line);
    if (!plain.isEmpty()) m_tail = text::first(plain, tailLength);
}

void SetupRunner::handleMarker(const QStringList& fields)
{
    if (fields.size() < 2) return;
    const auto step = setupSteps::byRawValue(fields[1]);
    if (!step) return;
    StepState& state = m_states.at(size_t(*step));
    if (fields[0] == "start"_L1) {
        state = {.kind = StepState::Running};
    } else if (fields[0] == "progress"_L1) {
        state = {.kind = StepState::Running, .percent = percent(fields.value(2))};
    } else if (fields[0] == "done"_L1) {
        state = {.kind = StepState::Done};
    } else if (fields[0] == "fail"_L1) {
        state = {.kind = StepState::Failed};
        m_failedStep = step;
    }
}

void SetupRunner::ended(bool success)
{
    if (success) {
        m_states.fill({.kind = StepState::Done});
        m_finished = true;
    } else {
        m_failed = true;
        const auto* const blamed = std::ranges::find_if(
            allSetupSteps, [this](SetupStep step) { return state(step).kind != StepState::Done; });
        if (!m_failedStep && blamed != allSetupSteps.end()) m_failedStep = *blamed;
    }
    publish();
}

void SetupRunner::publishSoon()
{
    if (std::exchange(m_publishing, true)) return;
    m_scheduler.after(publishInterval, this, [this] {
        if (m_publishing) publish();
    });
}

void SetupRunner::publish()
{
    m_publishing = false;
    emit dataChanged(index(0), index(rowCount() - 1));
    emit changed();
}

StepState::Kind SetupRunner::shownKind(SetupStep step) const
{
    const StepState::Kind kind = state(step).kind;
    if (m_failed && step == m_failedStep) return StepState::Failed;
    return kind == StepState::Running && !isRunning() ? StepState::Waiting : kind;
}

int SetupRunner::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(allSetupSteps.size());
}

QVariant SetupRunner::data(const QModelIndex& index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
    const SetupStep step = allSetupSteps.at(size_t(index.row()));
    switch (role) {
    case LabelKeyRole:
        return setupSteps::labelKey(step);
    case SymbolRole:
        return setupSteps::symbol(step);
    case KindRole:
        return int(shownKind(step));
    case PercentRole:
        return state(step).percent.value_or(-1);
    default:
        return {};
    }
}

QHash<int, QByteArray> SetupRunner::roleNames() const
{
    return {{LabelKeyRole, "labelKey"}, {SymbolRole, "symbol"}, {KindRole, "kind"}, {PercentRole, "percent"}};
}

} // namespace murmeli
