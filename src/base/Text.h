#pragma once

#include <QString>

#include <optional>

/// Text as a reader sees it: characters are grapheme clusters, white space and case are Unicode's.
namespace murmeli::text {

/// Without white space and line breaks at both ends.
QString trimmed(const QString& text);

/// Without any of `characters` at both ends.
QStringView stripped(QStringView text, QStringView characters);

/// First character upper-cased, the rest unchanged.
QString capitalizedFirst(const QString& text);

/// The first `count` characters, or the whole text when it is shorter.
QString first(const QString& text, qsizetype count);

/// The text, or its beginning and an ellipsis when it has more than `count` characters: what can be laid out
/// without a halt.
QString shortened(const QString& text, qsizetype count = 10'000);

/// With spaces for line breaks and other control characters.
QString oneLine(const QString& text);

/// A whole number in base 10 with an optional sign, and nothing else; nothing when the text is no such
/// number.
std::optional<qint64> wholeNumber(QStringView text);

/// How many characters a reader would count.
qsizetype characterCount(const QString& text);

} // namespace murmeli::text
