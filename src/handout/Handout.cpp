#include "Handout.h"

#include "base/Dates.h"
#include "base/Files.h"
#include "base/Json.h"
#include "base/Text.h"
#include "localisation/Language.h"
#include "meetings/MeetingCaptions.h"
#include "meetings/SummaryFile.h"
#include "protocol/ProtocolFileMaker.h"
#include "report/ReportLoader.h"
#include "transcript/Transcript.h"

#include <QJsonArray>
#include <QLocale>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace murmeli {

namespace {

using Kind = Passage::Kind;

bool isOf(const Passage& passage, HandoutPart part)
{
    switch (part) {
    case HandoutPart::Summary:
        return passage.kind == Kind::Summary;
    case HandoutPart::Decisions:
        return passage.kind == Kind::Decision;
    case HandoutPart::Tasks:
        return passage.kind == Kind::Task;
    case HandoutPart::Steps:
        return passage.kind == Kind::Step;
    case HandoutPart::Questions:
        return passage.kind == Kind::Question;
    case HandoutPart::Risks:
        return passage.kind == Kind::Risk;
    case HandoutPart::Transcript:
        return passage.kind == Kind::Said;
    case HandoutPart::Quotes:
        break;
    }
    return false;
}

QList<Passage> passagesOf(const HandoutSource& source, HandoutPart part)
{
    if (part == HandoutPart::Quotes) return source.quotes;
    QList<Passage> passages;
    for (const Passage& passage : source.text.passages) {
        if (!isOf(passage, part)) continue;
        passages.append(passage);
        if (part == HandoutPart::Summary) break; // the long one says the same
    }
    return passages;
}

/// Whether all words begin as those of a name.
bool looksLikeAName(const QString& text)
{
    const QList<words::Span> words = words::split(text);
    return !words.isEmpty() && words.size() <= 4 && std::ranges::all_of(words, [&](const words::Span& word) {
        return word.in(text).front().isUpper();
    });
}

QString dateLineOf(const Meeting& meeting, const QString& language)
{
    QString day = dates::bySkeleton(meeting.startedAt, language, u"yMMMMd"_s);
    if (day.endsWith(u"г.")) day = day.chopped(2).trimmed();
    return day + Language::text(language, u"common.dot"_s) + captions::timeRange(meeting, language);
}

} // namespace

const QList<HandoutPart>& allHandoutParts()
{
    static const QList<HandoutPart> parts{HandoutPart::Summary, HandoutPart::Decisions, HandoutPart::Tasks,
                                          HandoutPart::Steps,   HandoutPart::Questions, HandoutPart::Risks,
                                          HandoutPart::Quotes,  HandoutPart::Transcript};
    return parts;
}

QString nameOf(HandoutPart part)
{
    switch (part) {
    case HandoutPart::Summary:
        return u"summary"_s;
    case HandoutPart::Decisions:
        return u"decisions"_s;
    case HandoutPart::Tasks:
        return u"action_items"_s;
    case HandoutPart::Steps:
        return u"next_steps"_s;
    case HandoutPart::Questions:
        return u"open_questions"_s;
    case HandoutPart::Risks:
        return u"risks"_s;
    case HandoutPart::Quotes:
        return u"quotes"_s;
    case HandoutPart::Transcript:
        return u"transcript"_s;
    }
    return {};
}

QString titleOf(HandoutPart part, const QString& language)
{
    if (part == HandoutPart::Quotes) return Language::text(language, u"desk.quotes"_s);
    return Language::text(language, u"detail."_s + nameOf(part));
}

HandoutSource HandoutSource::read(const Meeting& meeting, const MeetingFiles& files, const QString& language)
{
    HandoutSource source{.meeting = meeting, .text = files.read(meeting, language), .quotes = {}};
    QStringList owners;
    QStringList participants;
    if (const auto bytes = files::readWhole(meeting.jsonPath, summaryFile::sizeLimit)) {
        const QJsonObject summary = json::object(*bytes).value_or(QJsonObject{});
        source.edits =
            std::max<qint64>(0, json::integer(summary.value("_meta"_L1).toObject(), "edits"_L1).value_or(0));
        const QJsonObject meta = summary.value("_meta"_L1).toObject();
        for (const QJsonArray& people :
             {summary.value("participants"_L1).toArray(),
              meta.value("analytics"_L1).toObject().value("speakers"_L1).toArray()}) {
            for (const auto& one : people)
                participants.append(one.isObject() ? json::text(one.toObject(), "name"_L1) : one.toString());
        }
        const QJsonArray tasks = summary.value("action_items"_L1).toArray();
        for (const auto& task : tasks)
            owners.append(json::text(task.toObject(), "owner"_L1));
    }
    for (const Commitment& promise : ReportLoader::stored(meeting).report.commitments) {
        owners.append(promise.who);
        const QString quote = text::oneLine(promise.quote).trimmed();
        if (quote.isEmpty()) continue;
        source.quotes.append(
            {.text = quote,
             .speaker = text::oneLine(promise.who).trimmed(),
             .stamp = Transcript::seconds(promise.at) ? text::oneLine(promise.at) : QString{}});
    }
    // Where lines have no speakers, what stands before a colon is speech: "Important: …".
    const auto isSaid = [](const Passage& one) { return one.kind == Kind::Said; };
    const auto said = std::ranges::count_if(source.text.passages, isSaid);
    const auto named = std::ranges::count_if(
        source.text.passages, [&](const Passage& one) { return isSaid(one) && !one.speaker.isEmpty(); });
    if (named * 2 < said) {
        for (const Passage& one : std::as_const(source.text.passages)) {
            if (isSaid(one) && !participants.contains(one.speaker)) source.text.people.removeAll(one.speaker);
        }
    }
    for (const QString& owner : owners) {
        const QString name = text::oneLine(owner).trimmed();
        if (looksLikeAName(name) && !source.text.people.contains(name)) source.text.people.append(name);
    }
    return source;
}

qsizetype HandoutSource::count(HandoutPart part) const
{
    if (part == HandoutPart::Quotes) return quotes.size();
    const auto all =
        std::ranges::count_if(text.passages, [&](const Passage& one) { return isOf(one, part); });
    return part == HandoutPart::Summary ? std::min<qsizetype>(all, 1) : all;
}

QStringList HandoutSource::names() const { return text.people; }

Handout Handout::of(const HandoutSource& source, const HandoutChoice& choice, const QString& language)
{
    Handout handout{.language = language,
                    .title = text::oneLine(source.meeting.title).trimmed(),
                    .dateLine = dateLineOf(source.meeting, language),
                    .edits = source.edits,
                    .sections = {},
                    .redaction = {},
                    .meeting = source.meeting};
    if (choice.hideNames)
        handout.redaction = Redaction{source.names(), Language::text(language, u"desk.somebody"_s)};
    const auto redact = [&](QString& text) {
        if (choice.hideNumbers) text = Redaction::withoutNumbers(text);
        if (choice.hideNames) text = handout.redaction.withoutNames(text);
    };
    redact(handout.title);
    handout.meeting.title = handout.title;
    for (const HandoutPart part : allHandoutParts()) {
        if (!choice.parts.testFlag(part)) continue;
        Section section{.part = part, .heading = titleOf(part, language), .items = passagesOf(source, part)};
        for (Passage& item : section.items) {
            if (choice.hideNames) item.speaker = handout.redaction.withoutNames(item.speaker);
            redact(item.text);
        }
        if (!section.items.isEmpty()) handout.sections.append(section);
    }
    return handout;
}

QString Handout::quoted(const Passage& quote) const { return QLocale{language}.quoteString(quote.text); }

QString Handout::sourceOf(const Passage& quote)
{
    QStringList source{quote.speaker, moment(quote)};
    source.removeAll({});
    return source.join(u", "_s);
}

QString Handout::moment(const Passage& passage) { return text::stripped(passage.stamp, u"[] ").toString(); }

QString Handout::nameLeftIn(QString made) const
{
    made.remove(dateLine);
    for (const Section& section : sections)
        made.remove(section.heading).remove(section.heading.toUpper());
    return redaction.leftIn(made);
}

QString Handout::fileName(const QString& ending) const
{
    return ProtocolFileMaker::suggestedName(meeting, ending);
}

QStringList Handout::receiptParts(const HandoutChoice& choice)
{
    QStringList parts;
    for (const HandoutPart part : allHandoutParts()) {
        if (choice.parts.testFlag(part)) parts.append(nameOf(part));
    }
    if (choice.hideNames) parts.append(u"names"_s);
    if (choice.hideNumbers) parts.append(u"numbers"_s);
    return parts;
}

} // namespace murmeli
