#include "Commands.h"
#include "base/Background.h"
#include "base/Dates.h"
#include "base/Files.h"
#include "base/Json.h"
#include "base/Scheduler.h"
#include "handout/HandoutPages.h"
#include "handout/HandoutText.h"
#include "localisation/Language.h"
#include "meetings/SummaryFile.h"
#include "platform/Desktop.h"
#include "platform/SingleInstance.h"
#include "protocol/ChangeHistory.h"
#include "protocol/ProtocolItems.h"
#include "receipts/ReceiptWords.h"
#include "receipts/Receipts.h"
#include "report/ReportLoader.h"
#include "search/Indexer.h"
#include "search/Searcher.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLocale>
#include <QProcess>
#include <QRegularExpression>
#include <QUrl>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace murmeli::commands {

namespace {

constexpr int fewMeetings = 50;
constexpr int narrow = 48; // columns in which no more than the titles fit
constexpr int listedAmbiguous = 10;
constexpr int manyNames = 200;

constexpr HandoutParts protocolParts = HandoutPart::Summary | HandoutPart::Decisions | HandoutPart::Tasks |
                                       HandoutPart::Steps | HandoutPart::Questions | HandoutPart::Risks;

/// A day as it is typed, "2026-11-21", "today", "вчера".
std::optional<QDate> dayOf(const QString& text, const QDate& today)
{
    const QString word = text.toLower();
    if (word == "today"_L1 || word == u"сегодня") return today;
    if (word == "yesterday"_L1 || word == u"вчера") return today.addDays(-1);
    const QDate day = QDate::fromString(text, Qt::ISODate);
    return day.isValid() ? std::optional{day} : std::nullopt;
}

bool takeDay(const Context& context, const char* option, std::optional<QDate>& day)
{
    if (!context.line.has(option)) return true;
    day = dayOf(context.line.value(option), context.scheduler.moment().date());
    if (!day) std::ignore = context.fail(Misused, "command.fault.day", context.line.value(option));
    return day.has_value();
}

QStringList analysisLines(const Meeting& meeting, const QString& language)
{
    QStringList lines;
    for (const ReportRow& row : ReportLoader::stored(meeting).rows) {
        if (const auto* heading = std::get_if<ReportHeading>(&row.value)) {
            if (!lines.isEmpty()) lines.append(QString{});
            lines.append(u"## "_s + Language::text(language, heading->key));
        } else if (const QStringList words = row.words(language, Wording::Copied); !words.isEmpty()) {
            lines.append(u"- "_s + words.join(u" · "_s));
        }
    }
    return lines;
}

ChangeHistory changesOf(const Context& context, const Meeting& meeting)
{
    const auto bytes = files::readWhole(meeting.jsonPath, summaryFile::sizeLimit);
    const auto summary = bytes ? json::object(*bytes) : std::nullopt;
    return ChangeHistory::of(Ledger{context.paths, meeting.id}.read(),
                             protocolItems::editable(summary.value_or(QJsonObject{})));
}

QString nameOf(ChangeHistory::State state)
{
    switch (state) {
    case ChangeHistory::State::Holds:
        return u"holds"_s;
    case ChangeHistory::State::Undone:
        return u"undone"_s;
    case ChangeHistory::State::Overwritten:
        return u"overwritten"_s;
    case ChangeHistory::State::Kept:
        break;
    }
    return u"kept"_s;
}

QJsonArray toJson(const ChangeHistory& history)
{
    QJsonArray list;
    for (const ChangeHistory::Entry& entry : history.entries) {
        const ProtocolChange& change = entry.change;
        list.append(QJsonObject{{u"id"_s, change.id},
                                {u"time"_s, isoTime(change.time)},
                                {u"section"_s, change.section},
                                {u"index"_s, qint64(change.index)},
                                {u"before"_s, change.before},
                                {u"after"_s, change.after},
                                {u"remark"_s, change.remark},
                                {u"state"_s, nameOf(entry.state)}});
    }
    return list;
}

QString minute(double seconds)
{
    return QDateTime::fromMSecsSinceEpoch(qint64(seconds * 1000)).toString(u"yyyy-MM-dd HH:mm"_s);
}

void printChanges(const Context& context, const ChangeHistory& history)
{
    for (const ChangeHistory::Entry& entry : history.entries) {
        const ProtocolChange& change = entry.change;
        context.terminal.line(
            context.terminal.faint(minute(change.time)) + u"  "_s +
            Language::text(context.language, u"detail."_s + change.section) +
            (change.remark.isEmpty() ? QString{}
                                     : u": "_s + QLocale{context.language}.quoteString(change.remark)) +
            (entry.state == ChangeHistory::State::Holds ? QString{} : u" ["_s + nameOf(entry.state) + u']'));
        context.terminal.line(u"  - "_s + change.before);
        context.terminal.line(u"  + "_s + change.after);
    }
}

void printSent(const Context& context, const QList<Receipt>& receipts)
{
    for (const Receipt& receipt : receipts) {
        QStringList parts{
            minute(receipt.time), receiptWords::title(receipt, context.language),
            u"→ "_s + receiptWords::place(receipt, context.language),
            receipt.bytes > 0 ? Language::count(context.language, u"sent.bytes"_s, receipt.bytes) : QString{},
            receiptWords::result(receipt, context.language)};
        parts.removeAll({});
        context.terminal.line(parts.join(u"  "_s));
    }
}

enum class Format { Markdown, Html, Pdf, Text, Json };
std::optional<Format> formatOf(const QString& name)
{
    static const QHash<QString, Format> formats{
        {u"md"_s, Format::Markdown}, {u"markdown"_s, Format::Markdown}, {u"html"_s, Format::Html},
        {u"htm"_s, Format::Html},    {u"pdf"_s, Format::Pdf},           {u"txt"_s, Format::Text},
        {u"json"_s, Format::Json}};
    const auto found = formats.constFind(name.toLower());
    return found == formats.cend() ? std::nullopt : std::optional{*found};
}

QString outputOf(const CommandLine& line) { return line.has("-o") ? line.value("-o") : u"-"_s; }

QString formatNameOf(const CommandLine& line)
{
    if (line.has("--format")) return line.value("--format");
    return outputOf(line) == "-"_L1 ? u"md"_s : QFileInfo{outputOf(line)}.suffix();
}

std::optional<HandoutParts> partsOf(const QString& list)
{
    HandoutParts parts;
    for (const QString& name : list.split(u',', Qt::SkipEmptyParts)) {
        const auto& all = allHandoutParts();
        const auto part =
            std::ranges::find(all, name.trimmed(), [](HandoutPart one) { return murmeli::nameOf(one); });
        if (part == all.end()) return std::nullopt;
        parts.setFlag(*part);
    }
    return parts == HandoutParts{} ? std::nullopt : std::optional{parts};
}

QByteArray bytesOf(const Handout& handout, Format format)
{
    switch (format) {
    case Format::Markdown:
        return handoutText::markdown(handout).toUtf8();
    case Format::Html:
        return handoutText::htmlDocument(handout).toUtf8();
    case Format::Text:
        return handoutText::plain(handout).toUtf8();
    case Format::Json:
        return QJsonDocument{handoutText::json(handout)}.toJson();
    case Format::Pdf:
        break;
    }
    return HandoutPages{handout}.pdf();
}

} // namespace

int withMeeting(const Context& context, const std::function<int(Library&, const Meeting&)>& work)
{
    Library library{context.paths};
    const QList<Meeting> found = library.find(context.line.text());
    if (found.isEmpty()) return context.fail(Nothing, "command.no_meeting", context.line.text());
    if (found.size() == 1) return work(library, found.first());
    context.terminal.message(context.text("command.several", QString::number(found.size())));
    for (const Meeting& meeting : found.first(std::min<qsizetype>(listedAmbiguous, found.size())))
        context.terminal.message(meeting.id + u"  "_s + meeting.title);
    return Ambiguous;
}

int list(const Context& context)
{
    const auto most = context.number("--limit", fewMeetings);
    Library::Span span;
    if (!most || !takeDay(context, "--since", span.since) || !takeDay(context, "--until", span.until))
        return Misused;
    Library library{context.paths};
    const QList<Meeting> meetings = library.newest(*most, span);
    if (context.json()) {
        QJsonArray array;
        for (const Meeting& meeting : meetings)
            array.append(toJson(meeting));
        context.terminal.json({{u"v"_s, 1}, {u"meetings"_s, array}});
        return meetings.isEmpty() ? Nothing : Done;
    }
    if (context.terminal.width() > 0 && context.terminal.width() < narrow) {
        for (const Meeting& meeting : meetings)
            context.terminal.row(context.terminal.faint(meeting.startedAt.toString(u"MM-dd"_s)) + u' ' +
                                 meeting.title);
        return meetings.isEmpty() ? Nothing : Done;
    }
    QStringList lengths;
    int widest = 0;
    for (const Meeting& meeting : meetings) {
        const auto seconds =
            meeting.durationMin ? std::optional{qint64(*meeting.durationMin * 60)} : std::nullopt;
        lengths.append(seconds ? Language::shortDuration(context.language, *seconds) : QString{});
        widest = std::max(widest, Terminal::columns(lengths.last()));
    }
    for (qsizetype i = 0; i < meetings.size(); ++i) {
        const QString time = meetings[i].startedAt.toString(u"yyyy-MM-dd HH:mm"_s);
        const QString gap(widest - Terminal::columns(lengths[i]), u' ');
        context.terminal.row(context.terminal.faint(time + u"  "_s + gap + lengths[i]) + u"  "_s +
                             meetings[i].title);
    }
    return meetings.isEmpty() ? Nothing : Done;
}

int show(const Context& context)
{
    return withMeeting(context, [&](Library& library, const Meeting& meeting) {
        const bool transcript = context.line.has("--transcript");
        const bool analysis = context.line.has("--analysis");
        const bool edits = context.line.has("--edits");
        const bool sent = context.line.has("--sent");
        const bool protocol = !transcript && !analysis && !edits && !sent;
        HandoutChoice choice;
        choice.parts = transcript ? HandoutParts{HandoutPart::Transcript} : protocolParts;
        const auto handout = [&] {
            return Handout::of(HandoutSource::read(meeting, library.files(), context.language), choice,
                               context.language);
        };
        const QList<Receipt> receipts =
            sent ? ReceiptFiles{context.paths}.of(meeting.id).receipts : QList<Receipt>{};
        if (context.json()) {
            QJsonObject object = toJson(meeting);
            object[u"v"_s] = 1;
            if (protocol || transcript) object = handoutText::json(handout());
            if (analysis) {
                const auto stored =
                    files::readWhole(ReportLoader::storedFile(meeting), summaryFile::sizeLimit);
                object[u"analysis"_s] =
                    stored ? json::object(*stored).value_or(QJsonObject{}) : QJsonObject{};
            }
            if (edits) object[u"edits"_s] = toJson(changesOf(context, meeting));
            if (sent) {
                QJsonArray list;
                for (const Receipt& receipt : receipts)
                    list.append(receipt.line());
                object[u"sent"_s] = list;
            }
            context.terminal.json(object);
            return Done;
        }
        if (protocol || transcript) context.terminal.line(handoutText::markdown(handout()).chopped(1));
        if (analysis) context.terminal.line(analysisLines(meeting, context.language).join(u'\n'));
        if (edits) printChanges(context, changesOf(context, meeting));
        if (sent) printSent(context, receipts);
        return Done;
    });
}

bool makesPdf(const CommandLine& line)
{
    return line.spec().name == "export"_L1 && formatOf(formatNameOf(line)) == Format::Pdf;
}

int exportMeeting(const Context& context)
{
    const QString output = outputOf(context.line);
    const QString named = formatNameOf(context.line);
    const auto format = formatOf(named);
    if (!format) return context.fail(Misused, "command.fault.format", named);
    if (*format == Format::Pdf && output == "-"_L1 && context.terminal.isTerminal())
        return context.fail(Misused, "command.fault.pdf");
    HandoutChoice choice;
    choice.parts = protocolParts;
    choice.hideNames = context.line.has("--hide-names");
    choice.hideNumbers = context.line.has("--hide-numbers");
    if (context.line.has("--sections")) {
        const auto parts = partsOf(context.line.value("--sections"));
        if (!parts) return context.fail(Misused, "command.fault.sections", context.line.value("--sections"));
        choice.parts = *parts;
    }
    return withMeeting(context, [&](Library& library, const Meeting& meeting) -> int {
        const Handout handout = Handout::of(HandoutSource::read(meeting, library.files(), context.language),
                                            choice, context.language);
        const QByteArray bytes = bytesOf(handout, *format);
        // Marks of a format are no words of the meeting.
        const auto made = *format == Format::Pdf ? textInPdf(bytes) : handoutText::plain(handout);
        if (!made) return context.fail(Unavailable, "command.not_saved", output);
        const QString left = handout.nameLeftIn(handout.title + u'\n' + *made);
        if (!left.isEmpty()) return context.fail(Unavailable, "desk.left_over", left);
        const bool toFile = output != "-"_L1;
        const QString path = QDir::current().absoluteFilePath(output);
        if (toFile && !files::writeAtomic(path, bytes))
            return context.fail(Unavailable, "command.not_saved", output);
        Receipt receipt = Receipt::begun(context.scheduler.now());
        receipt.stem = meeting.id;
        receipt.kind = u"file"_s;
        receipt.to = toFile ? QFileInfo{path}.dir().dirName() : u"stdout"_s;
        receipt.bytes = bytes.size();
        receipt.parts = Handout::receiptParts(choice);
        receipt.result.clear(); // nobody answers
        if (ReceiptFiles{context.paths}.add(receipt) != OwnWritten::Yes)
            context.terminal.message(context.text("own.failed", u"sent"_s));
        if (choice.hideNames)
            context.terminal.message(context.text("desk.hidden", QString::number(handout.redaction.count())));
        if (!toFile) context.terminal.bytes(bytes); // last: whoever reads may go away
        return Done;
    });
}

int open(const Context& context)
{
    const auto tell = [&](const QString& stem) {
        QStringList parts{u"open"_s, stem, context.line.value("--at"), context.line.value("--find")};
        for (QString& part : parts)
            part = QString::fromLatin1(QUrl::toPercentEncoding(part));
        const QString wish = parts.join(u' ');
        if (SingleInstance::tell(SingleInstance::runtimeFolder(), wish)) return int(Done);
        QProcess program; // with nothing of ours, which a shell may be waiting for
        program.setProgram(QCoreApplication::applicationFilePath());
        program.setArguments({u"--wish="_s + wish});
        program.setStandardInputFile(QProcess::nullDevice());
        program.setStandardOutputFile(QProcess::nullDevice());
        program.setStandardErrorFile(QProcess::nullDevice());
        return program.startDetached() ? int(Done) : context.fail(Unavailable, "command.not_started");
    };
    if (context.line.operands().isEmpty()) return tell({});
    return withMeeting(context, [&](Library&, const Meeting& meeting) { return tell(meeting.id); });
}

int complete(const Context& context)
{
    // The words of the line so far, without the program; the last one is being written.
    const QStringList words = context.line.operands();
    const QString last = words.isEmpty() ? QString{} : words.last();
    QStringList offers;
    const CommandSpec* spec = words.size() > 1 ? CommandLine::find(words.first()) : nullptr;
    const QString before = words.size() > 1 ? words[words.size() - 2] : QString{};
    if (words.size() <= 1) {
        for (const CommandSpec& one : CommandLine::commands())
            if (one.name != "complete"_L1) offers.append(one.name);
    } else if (!spec) {
        return Done;
    } else if (before == "--format"_L1) {
        offers = {u"md"_s, u"html"_s, u"pdf"_s, u"txt"_s, u"json"_s};
    } else if (before == "--sections"_L1) {
        for (const HandoutPart part : allHandoutParts())
            offers.append(murmeli::nameOf(part));
    } else if (before == "--lang"_L1) {
        offers = {u"ru"_s, u"en"_s};
    } else if (last.startsWith(u'-')) {
        for (const QList<CommandOption>& options : {spec->options, CommandLine::commonOptions()}) {
            for (const CommandOption& option : options)
                offers.append(option.name);
        }
    } else if (spec->operands.contains("MEETING"_L1)) {
        Library library{context.paths};
        offers = library.stems();
        offers.append(u"last"_s);
    } else if (spec->operands == "[COMMAND]"_L1) {
        for (const CommandSpec& one : CommandLine::commands())
            offers.append(one.name);
    } else if (spec->operands == "QUERY"_L1) {
        const Library library{context.paths};
        Searcher searcher{Indexer{context.paths, library.files()}.path()};
        for (const QString& prefix : {u"от:"_s, u"from:"_s}) {
            if (!last.startsWith(prefix)) continue;
            for (const QString& name : searcher.names(manyNames))
                offers.append(prefix + (name.contains(u' ') ? u'"' + name + u'"' : name));
        }
    }
    for (const QString& offer : std::as_const(offers)) {
        if (offer.startsWith(last)) context.terminal.line(offer);
    }
    return Done;
}

} // namespace murmeli::commands
