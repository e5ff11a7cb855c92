// Feeds a reader of foreign text with whatever comes; it has to end without a fault, and to keep what it
// promises. The environment names the reader.
#include "base/Json.h"
#include "glossary/GlossaryText.h"
#include "meetings/ProtocolFile.h"
#include "meetings/SummaryFile.h"
#include "protocol/ProtocolItems.h"
#include "report/MeetingReport.h"
#include "report/ReportRow.h"
#include "setup/SetupRunner.h"
#include "transcript/Transcript.h"

#include <QHash>
#include <QJsonDocument>

#include <cstdio>
#include <cstdlib>

using namespace Qt::StringLiterals;
using namespace murmeli;

namespace {

void expect(bool holds, const char* what)
{
    if (holds) return;
    std::fprintf(stderr, "broken promise: %s\n", what);
    std::abort();
}

void readSummary(const QByteArray& bytes)
{
    const auto meeting = summaryFile::meeting(bytes, u"/logs/x.protocol.json"_s, u"x"_s, 0);
    expect(!meeting || json::object(bytes).has_value(), "what is a meeting is a JSON object");
    if (const auto object = json::object(bytes)) {
        for (const ProtocolSection& section : protocolItems::sections(*object))
            expect(!section.items.isEmpty(), "no section is empty");
    }
    summaryFile::internetDate(QString::fromUtf8(bytes));
    summaryFile::dateFromStem(QString::fromUtf8(bytes));
}

void rewriteJson(const QByteArray& bytes)
{
    const auto object = json::object(bytes);
    if (!object) return;
    expect(json::object(json::pretty(bytes)) == object, "indented, it says the same");
    const auto changed = json::object(json::withMember(bytes, u"new"_s, 1));
    expect(changed.has_value(), "a changed object is one");
    QJsonObject wanted = *object;
    wanted[u"new"_s] = 1;
    expect(*changed == wanted, "one member is changed and no other");
}

void readAnalysis(const QByteArray& bytes)
{
    const auto object = json::object(bytes);
    if (!object) return;
    MeetingReport report = MeetingReport::parse(*object);
    report.applyAnalytics(*object);
    for (const ReportRow& row : reportRows::of(report)) {
        if (const auto* speaker = std::get_if<SpeakerFigures>(&row.value)) {
            expect(speaker->share >= 0 && speaker->share <= 1, "a bar is as long as its line at the most");
        }
        row.words(u"ru"_s, Wording::Copied);
        row.words(u"en"_s, Wording::Spoken);
    }
}

void readTranscript(const QByteArray& bytes)
{
    const QString text = QString::fromUtf8(bytes);
    const Transcript transcript{protocolFile::transcriptIn(text).value_or(text)};
    for (const QString& stamp : text.split(u'\n')) {
        const auto seconds = Transcript::seconds(stamp);
        expect(!seconds || *seconds >= 0 || stamp.contains(u'-'), "time runs forward");
        const auto quote = transcript.quote(stamp);
        expect(!quote || text.contains(quote->text), "a quotation was said");
    }
}

void readGlossary(const QByteArray& bytes)
{
    const QList<GlossaryEntry> entries = glossaryText::parseAll(QString::fromUtf8(bytes));
    expect(glossaryText::parseAll(glossaryText::serialised(entries)) == entries,
           "a glossary is read as it was written");
    expect(glossaryText::merged(entries, entries, entries) == entries, "where nobody changed it, it stays");
}

void readSetup(const QByteArray& bytes)
{
    for (const QString& line : QString::fromUtf8(bytes).split(u'\n'))
        expect(!SetupRunner::strip(line).contains(u"\x1b["_s + u'm'), "no colours are left");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, size_t size)
{
    static const auto read = [] {
        const QHash<QByteArray, void (*)(const QByteArray&)> readers{
            {"summary", readSummary},       {"json", rewriteJson},      {"analysis", readAnalysis},
            {"transcript", readTranscript}, {"glossary", readGlossary}, {"setup", readSetup}};
        const auto found = readers.find(qgetenv("MURMELI_READER"));
        expect(found != readers.end(), "MURMELI_READER names a reader");
        return *found;
    }();
    read(QByteArray{reinterpret_cast<const char*>(data), qsizetype(size)});
    return 0;
}
