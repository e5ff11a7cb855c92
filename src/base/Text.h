#pragma once

#include <QString>

/// Text as a reader sees it: characters are grapheme clusters, white space and case are Unicode's.
namespace murmeli::text {

/// Without white space and line breaks at both ends.
QString trimmed(const QString& text);

/// First character upper-cased, the rest unchanged.
QString capitalizedFirst(const QString& text);

/// The first `count` characters, or the whole text when it is shorter.
QString first(const QString& text, qsizetype count);

/// How many characters a reader would count.
qsizetype characterCount(const QString& text);

} // namespace murmeli::text
