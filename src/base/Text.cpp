#include "Text.h"

#include <algorithm>
#include <memory>
#include <unicode/ubrk.h>

namespace murmeli::text {

namespace {

struct CloseIterator {
    void operator()(UBreakIterator* iterator) const { ubrk_close(iterator); }
};

/// Walks at most `limit` characters into `text`: how many there were, and where the walk ended.
struct Walk {
    qsizetype characters = 0;
    qsizetype end = 0;
};

Walk walk(const QString& text, qsizetype limit)
{
    Walk result;
    if (text.isEmpty() || limit <= 0) return result;
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<UBreakIterator, CloseIterator> iterator{ubrk_open(
        UBRK_CHARACTER, "", reinterpret_cast<const UChar*>(text.utf16()), int32_t(text.size()), &status)};
    if (U_FAILURE(status)) { // ICU without its data: code units are the next best thing
        result.end = result.characters = qMin(limit, text.size());
        return result;
    }
    while (result.characters < limit) {
        const int32_t next = ubrk_next(iterator.get());
        if (next == UBRK_DONE) break;
        result.end = next;
        ++result.characters;
    }
    return result;
}

} // namespace

QString trimmed(const QString& text) { return text.trimmed(); }

QStringView stripped(QStringView text, QStringView characters)
{
    while (!text.isEmpty() && characters.contains(text.front()))
        text = text.sliced(1);
    while (!text.isEmpty() && characters.contains(text.back()))
        text.chop(1);
    return text;
}

QString capitalizedFirst(const QString& text)
{
    const qsizetype end = walk(text, 1).end;
    return text.left(end).toUpper() + text.mid(end);
}

QString first(const QString& text, qsizetype count) { return text.left(walk(text, count).end); }

QString shortened(const QString& text, qsizetype count)
{
    const QString begin = text.size() > count ? first(text, count) : text;
    return begin.size() < text.size() ? begin + u'…' : text;
}

QString oneLine(const QString& text)
{
    QString line = text;
    for (QChar& c : line) {
        if (c.category() == QChar::Other_Control || c == QChar::LineSeparator ||
            c == QChar::ParagraphSeparator)
            c = u' ';
    }
    return line;
}

std::optional<qint64> wholeNumber(QStringView text)
{
    // toLongLong() alone would take white space too.
    const bool plain =
        std::ranges::all_of(text, [](QChar c) { return (c >= u'0' && c <= u'9') || c == u'-' || c == u'+'; });
    bool good = false;
    const qint64 number = text.toLongLong(&good);
    return plain && good ? std::optional{number} : std::nullopt;
}

qsizetype characterCount(const QString& text) { return walk(text, text.size()).characters; }

} // namespace murmeli::text
