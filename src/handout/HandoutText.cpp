#include "HandoutText.h"

#include "base/Dates.h"
#include "base/Text.h"

#include <QJsonArray>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace murmeli::handoutText {

namespace {

/// Text in which Markdown reads no signs.
QString escaped(const QString& text)
{
    static const QString signs = uR"(\`*_[]<>|~&)"_s;
    static const QRegularExpression begin{uR"~(^(\s*)(?:([-+#=>:])|(\d+)([.)])))~"_s};
    QString result;
    for (const QChar c : text::oneLine(text)) {
        if (signs.contains(c)) result += u'\\';
        result += c;
    }
    if (result.endsWith(u'#')) result.insert(result.size() - 1, u'\\'); // would close a heading
    if (const auto match = begin.match(result); match.hasMatch()) {
        const int sign = match.capturedStart(2) >= 0 ? 2 : 4; // "1.": its dot
        result.insert(match.capturedStart(sign), u'\\');
    }
    return result;
}

QString bold(const QString& text) { return u"<b>"_s + text.toHtmlEscaped() + u"</b>"_s; }

QString markdownOf(const Handout& handout, const Handout::Section& section)
{
    QString result;
    for (const Passage& item : section.items) {
        const QString text = escaped(item.text);
        switch (section.part) {
        case HandoutPart::Summary:
            result += text + u'\n';
            break;
        case HandoutPart::Tasks:
            result += u"- [ ] "_s + text + u'\n';
            break;
        case HandoutPart::Quotes: {
            const QString source = escaped(Handout::sourceOf(item));
            if (!result.isEmpty()) result += u'\n';
            result += u"> "_s + escaped(handout.quoted(item));
            if (!source.isEmpty()) result += u"\\\n> — "_s + source;
            result += u'\n';
            break;
        }
        case HandoutPart::Transcript: {
            if (!result.isEmpty()) result += u'\n';
            result += escaped(u'[' + Handout::moment(item) + u']') + u' ';
            if (!item.speaker.isEmpty()) result += u"**"_s + escaped(item.speaker) + u":** "_s;
            result += text + u'\n';
            break;
        }
        default:
            result += u"- "_s + text + u'\n';
        }
    }
    return result;
}

QString lineOf(const Handout& handout, const Handout::Section& section, const Passage& item)
{
    if (section.part == HandoutPart::Quotes) {
        const QString source = Handout::sourceOf(item);
        return source.isEmpty() ? handout.quoted(item) : handout.quoted(item) + u" — "_s + source;
    }
    if (section.part != HandoutPart::Transcript) return item.text;
    return u'[' + Handout::moment(item) + u"] "_s +
           (item.speaker.isEmpty() ? QString{} : item.speaker + u": "_s) + item.text;
}

bool isList(HandoutPart part) { return part != HandoutPart::Summary && part != HandoutPart::Transcript; }

} // namespace

QString plain(const Handout& handout)
{
    QString result = handout.title + u'\n' + handout.dateLine + u'\n';
    for (const Handout::Section& section : handout.sections) {
        result += u'\n' + section.heading.toUpper() + u'\n';
        for (const Passage& item : section.items)
            result += (isList(section.part) ? u"• "_s : QString{}) + lineOf(handout, section, item) + u'\n';
    }
    return result;
}

QString markdown(const Handout& handout)
{
    QString result = u"# "_s + escaped(handout.title) + u"\n\n"_s + escaped(handout.dateLine) + u'\n';
    for (const Handout::Section& section : handout.sections)
        result += u"\n## "_s + escaped(section.heading) + u"\n\n"_s + markdownOf(handout, section);
    return result;
}

QString html(const Handout& handout)
{
    QString result =
        u"<p>"_s + bold(handout.title) + u"<br>"_s + handout.dateLine.toHtmlEscaped() + u"</p>"_s;
    for (const Handout::Section& section : handout.sections) {
        result += u"\n<p>"_s + bold(section.heading) + u"</p>"_s;
        const bool list = isList(section.part);
        if (list) result += u"\n<ul>"_s;
        for (const Passage& item : section.items) {
            const QString line = lineOf(handout, section, item).toHtmlEscaped();
            result += list ? u"\n<li>"_s + line + u"</li>"_s : u"\n<p>"_s + line + u"</p>"_s;
        }
        if (list) result += u"\n</ul>"_s;
    }
    return result + u'\n';
}

QString htmlDocument(const Handout& handout)
{
    return u"<!DOCTYPE html>\n<html lang=\"%1\">\n<meta charset=\"utf-8\">\n<title>%2</title>\n"_s.arg(
               handout.language, handout.title.toHtmlEscaped()) +
           html(handout) + u"</html>\n"_s;
}

QJsonObject json(const Handout& handout)
{
    QJsonArray sections;
    for (const Handout::Section& section : handout.sections) {
        QJsonArray items;
        for (const Passage& item : section.items) {
            QJsonObject object{{u"text"_s, item.text}};
            if (!item.speaker.isEmpty()) object[u"speaker"_s] = item.speaker;
            if (!item.stamp.isEmpty()) object[u"stamp"_s] = Handout::moment(item);
            items.append(object);
        }
        sections.append(QJsonObject{
            {u"key"_s, nameOf(section.part)}, {u"title"_s, section.heading}, {u"items"_s, items}});
    }
    const Meeting& meeting = handout.meeting;
    QJsonObject object{{u"v"_s, 1},
                       {u"stem"_s, meeting.id},
                       {u"title"_s, handout.title},
                       {u"start"_s, dates::iso8601Local(meeting.startedAt)},
                       {u"edit_count"_s, handout.edits},
                       {u"sections"_s, sections}};
    if (const auto end = meeting.endedAt()) object[u"end"_s] = dates::iso8601Local(*end);
    if (meeting.durationMin) object[u"duration_min"_s] = *meeting.durationMin;
    return object;
}

} // namespace murmeli::handoutText
