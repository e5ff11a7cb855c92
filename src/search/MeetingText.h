#pragma once

#include "IndexFile.h"
#include "language/Words.h"
#include "margin/MarkFiles.h"
#include "meetings/Meeting.h"

#include <QList>
#include <QString>

#include <atomic>
#include <memory>

namespace murmeli {

class ProtocolFinder;

/// Something that a meeting says, and where in it.
struct Passage {
    enum class Kind { Title, Summary, Decision, Task, Step, Question, Risk, Promise, Analysis, Mark, Said };

    Kind kind = Kind::Title;
    QString text;
    QString speaker;      ///< who said it; empty when that is not known
    QString stamp;        ///< when; empty for what has no moment
    QString section;      ///< of an item of the protocol: its key in the summary file
    qsizetype index = -1; ///< of an item in its section, of a claim in the report's rows

    bool operator==(const Passage&) const = default;
};

/// All that a meeting says, as its files stand.
struct MeetingText {
    QList<Passage> passages; ///< title, protocol, analysis, marks, transcript
    QStringList people;      ///< each once
};

/// The files of which a meeting's text is made. Waits for the disk; any thread.
class MeetingFiles {
public:
    MeetingFiles(const Paths& paths, std::shared_ptr<ProtocolFinder> protocols);

    /// Of files that are missing, no files or too large there is nothing. \param language of the few words
    /// that an analysis does not bring itself.
    [[nodiscard]] MeetingText read(const Meeting& meeting, const QString& language) const;

    /// In which state the files are; of one that changed a moment ago, none that it ever has again.
    [[nodiscard]] QByteArray state(const Meeting& meeting) const;
    /// Whether all of them have been left alone for long enough that a change would show.
    static bool isSettled(const QByteArray& state);

private:
    QString m_margin;
    MarkFiles m_marks;
    std::shared_ptr<ProtocolFinder> m_protocols;
};

/// A meeting's text in keys, column by column. \return nothing once `stop` is set. One thread at a time.
std::optional<IndexDocument> documentOf(const Meeting& meeting, const MeetingText& text, words::Keys& keys,
                                        const std::atomic<bool>& stop);

} // namespace murmeli
