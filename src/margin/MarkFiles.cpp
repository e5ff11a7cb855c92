#include "MarkFiles.h"

#include "base/Json.h"
#include "base/Text.h"
#include "meetings/Meeting.h"
#include "service/Paths.h"

#include <QJsonArray>

#include <algorithm>
#include <cmath>
#include <functional>

using namespace Qt::StringLiterals;

namespace murmeli {

namespace {

constexpr qint64 marginLimit = 4 * 1024 * 1024; // bytes
constexpr qint64 waitingLimit = 16 * 1024 * 1024;
constexpr double nearBegin = 120; // seconds by which the service's two starts may differ
constexpr double afterEnd = 60;   // in which a mark still belongs to the meeting
constexpr double unknownLength = 6 * 3600;

Mark markOf(const QJsonObject& object, double begin)
{
    Mark mark;
    mark.time = json::number(object, "t"_L1).value_or(0);
    mark.begin = begin;
    mark.text = text::first(text::oneLine(json::text(object, "text"_L1)), Mark::longest);
    return mark;
}

bool isMark(const QJsonObject& object, const Mark& mark)
{
    return json::number(object, "t"_L1) == mark.time && json::text(object, "text"_L1) == mark.text;
}

MarkFiles::Read sorted(QList<Mark> marks, bool unreadable)
{
    marks.removeIf([](const Mark& mark) { return mark.text.isEmpty(); });
    std::ranges::stable_sort(marks, {}, &Mark::time);
    return {marks, unreadable};
}

double secondsOf(const QDateTime& moment) { return double(moment.toMSecsSinceEpoch()) / 1000; }

} // namespace

bool belongs(const Mark& mark, const Meeting& meeting)
{
    const double begin = secondsOf(meeting.startedAt);
    const auto end = meeting.endedAt();
    const double last = end ? secondsOf(*end) + afterEnd : begin + unknownLength;
    return std::abs(mark.begin - begin) <= nearBegin && mark.time >= begin - nearBegin && mark.time <= last;
}

MarkFiles::MarkFiles(const Paths& paths)
    : m_folder(paths.ownData), m_waiting({paths.ownData, u"marks.jsonl"_s, waitingLimit})
{
}

OwnFile MarkFiles::margin(const QString& meeting) const
{
    // An id is a file's name; one that is not would lead out of the folder.
    const bool name = !meeting.isEmpty() && meeting != ".."_L1 && !meeting.contains(u'/');
    return OwnFile{{name ? m_folder : QString{}, u"margin/"_s + meeting + u".json"_s, marginLimit}};
}

MarkFiles::Read MarkFiles::waiting() const
{
    const OwnLines::Content content = m_waiting.read();
    QList<Mark> marks;
    for (const QJsonObject& line : content.lines)
        marks.append(markOf(line, json::number(line, "since"_L1).value_or(0)));
    return sorted(marks, content.unreadable);
}

OwnWritten MarkFiles::add(const Mark& mark) const
{
    return m_waiting.append({{u"t"_s, mark.time}, {u"since"_s, mark.begin}, {u"text"_s, mark.text}});
}

OwnWritten MarkFiles::removeWaiting(const Mark& mark) const
{
    return m_waiting.remove([&](const QJsonObject& line) { return isMark(line, mark); });
}

MarkFiles::Read MarkFiles::of(const QString& meeting) const
{
    const OwnFile::Content content = margin(meeting).read();
    QList<Mark> marks;
    for (const auto& value : content.object[u"marks"_s].toArray()) {
        const QJsonObject object = value.toObject();
        const double at = json::number(object, "at"_L1).value_or(0);
        marks.append(markOf(object, json::number(object, "t"_L1).value_or(0) - at));
    }
    return sorted(marks, content.unreadable);
}

OwnWritten MarkFiles::addTo(const QString& meeting, const Mark& mark) const
{
    return margin(meeting).change([&](const QJsonObject& object) {
        QJsonArray marks = object[u"marks"_s].toArray();
        const bool there =
            std::ranges::any_of(marks, [&](const QJsonValue& one) { return isMark(one.toObject(), mark); });
        if (there) return QJsonObject{};
        marks.append(
            QJsonObject{{u"t"_s, mark.time}, {u"at"_s, mark.time - mark.begin}, {u"text"_s, mark.text}});
        return QJsonObject{{u"marks"_s, marks}};
    });
}

OwnWritten MarkFiles::change(const QString& meeting, const Mark& before, const Mark& now) const
{
    return margin(meeting).change([&](const QJsonObject& object) {
        QJsonArray marks = object[u"marks"_s].toArray();
        const auto found = std::ranges::find_if(
            marks, [&](const QJsonValue& one) { return isMark(one.toObject(), before); });
        if (found == marks.end()) return QJsonObject{};
        if (now.text.isEmpty()) {
            marks.erase(found);
        } else {
            QJsonObject changed = QJsonValue{*found}.toObject();
            changed[u"text"_s] = now.text;
            *found = changed;
        }
        return QJsonObject{{u"marks"_s, marks}};
    });
}

OwnWritten MarkFiles::settle(const QList<Meeting>& meetings) const
{
    OwnWritten worst = OwnWritten::Yes;
    const auto keep = [&](OwnWritten written) {
        if (written != OwnWritten::Yes) worst = written;
        return written == OwnWritten::Yes;
    };
    for (const Mark& mark : waiting().marks) {
        const auto home =
            std::ranges::find_if(meetings, [&](const Meeting& meeting) { return belongs(mark, meeting); });
        if (home == meetings.end()) continue;
        Mark settled = mark;
        settled.begin = secondsOf(home->startedAt);
        if (keep(addTo(home->id, settled))) keep(removeWaiting(mark));
    }
    return worst;
}

} // namespace murmeli
