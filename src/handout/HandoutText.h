#pragma once

#include "Handout.h"

#include <QJsonObject>

/// A handout as text, in the forms that programs take. Pure functions, any thread.
namespace murmeli::handoutText {

/// For reading: headings in capitals, "•" before what is listed.
QString plain(const Handout& handout);

/// CommonMark with task lists; what is said in it is never taken for a sign of it.
QString markdown(const Handout& handout);

/// A fragment with bold type and lists alone, for the clipboard, and the same as a document of its own.
QString html(const Handout& handout);
QString htmlDocument(const Handout& handout);

/// One JSON document: "v", "stem", "title", "start", "end", "duration_min", "edit_count", and in "sections"
/// their "key", "title" and "items", each with its "text" and, where there are any, "speaker" and "stamp".
QJsonObject json(const Handout& handout);

} // namespace murmeli::handoutText
