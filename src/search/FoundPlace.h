#pragma once

#include "MeetingText.h"
#include "SearchQuery.h"

#include <QObject>
#include <QtQml/qqmlregistration.h>

namespace murmeli {

/// A sentence in a meeting in which something was found.
struct FoundPlace {
    Q_GADGET
    QML_VALUE_TYPE(foundPlace)
    Q_PROPERTY(QString kind READ kindKey FINAL) ///< key of what it is; empty for what was said
    Q_PROPERTY(QString stamp READ stamp FINAL)
    Q_PROPERTY(QString speaker READ speaker FINAL)
    Q_PROPERTY(QString text MEMBER text FINAL)

public:
    Passage passage;
    QString text;            ///< of it, a sentence at most
    QList<words::Span> hits; ///< in the text

    static constexpr qsizetype longest = 160; ///< characters of the text, without what says that it goes on

    [[nodiscard]] QString kindKey() const;
    [[nodiscard]] QString stamp() const { return passage.stamp; }
    [[nodiscard]] QString speaker() const { return passage.speaker; }

    /// All of a meeting, those with most of the words first. Any thread; the keys are the caller's.
    static QList<FoundPlace> in(const MeetingText& text, const SearchQuery& query, words::Keys& keys);

    bool operator==(const FoundPlace&) const = default;
};

} // namespace murmeli
