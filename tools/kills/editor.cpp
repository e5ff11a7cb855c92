#include "base/Files.h"
#include "base/Json.h"
#include "base/Processes.h"
#include "base/Scheduler.h"
#include "meetings/Meeting.h"
#include "protocol/ChangeHistory.h"
#include "protocol/ProtocolWriter.h"
#include "receipts/Receipts.h"
#include "service/Paths.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QFile>

#include <cstdio>

using namespace Qt::StringLiterals;
using namespace murmeli;
using Kind = ProtocolChange::Kind;

// Corrects a protocol, takes corrections back and makes them again, and notes receipts, until it is killed;
// tells before each step what it is about to write, and after it that it is written.

namespace {

void tell(const QString& what)
{
    std::puts(qPrintable(what));
    std::fflush(stdout);
}

/// The change that comes next: now and then back, or forth again, as the ledger tells.
ProtocolChange next(const Paths& paths, const Meeting& meeting, int round, int step)
{
    const auto summary = json::object(files::readWhole(meeting.jsonPath, 1'000'000).value_or(QByteArray{}));
    const QList<ProtocolItem> items = protocolItems::editable(summary.value_or(QJsonObject{}));
    if (items.isEmpty()) qFatal("There is no protocol");
    const auto history = ChangeHistory::of(Ledger{paths, meeting.id}.read(), items);
    if (step % 3 != 0 && !history.entries.isEmpty()) {
        const auto& [change, state, undoneAt] = history.entries.last();
        const bool undo = state == ChangeHistory::State::Holds;
        return {.kind = undo ? Kind::Undo : Kind::Redo,
                .section = change.section,
                .index = change.index,
                .before = undo ? change.after : change.before,
                .after = undo ? change.before : change.after,
                .of = change.id};
    }
    const ProtocolItem& item = items[step % items.size()];
    return {.section = item.section,
            .index = item.index,
            .before = item.text,
            .after = u"%1.%2"_s.arg(round).arg(step),
            .remark = u"remark"_s};
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 3) return 2;
    const QCoreApplication app{argc, argv};
    const QString home = QFile::decodeName(argv[1]);
    const int round = QByteArray{argv[2]}.toInt();
    const Paths paths{home, {home + u"/data"_s, home + u"/cache"_s, home + u"/config"_s}};
    const Meeting meeting{.id = u"meeting"_s, .jsonPath = paths.logs + u"/meeting.protocol.json"_s};
    SystemScheduler scheduler;
    SystemProcesses processes;
    ProtocolWriter writer{paths, processes, scheduler};
    Receipts receipts{paths, scheduler};
    for (int step = 0;; ++step) {
        QEventLoop loop;
        Receipt receipt = receipts.begun();
        receipt.stem = meeting.id;
        receipt.kind = u"remark"_s;
        receipts.note(receipt, &loop, [&] { loop.quit(); });
        loop.exec();
        tell(u"sent "_s + receipt.id);
        const ProtocolChange change = next(paths, meeting, round, step);
        tell(u"try "_s + change.before + u' ' + change.after);
        writer.write(meeting, change, ProtocolWriter::Where::Anywhere, &loop,
                     [&](ProtocolWriter::Written written, const ProtocolChange& made) {
                         tell(u"%1 "_s.arg(written == ProtocolWriter::Written::Yes ? u"did"_s : u"not"_s) +
                              made.id);
                         loop.quit();
                     });
        loop.exec();
        receipt.result = u"answered"_s;
        receipts.note(receipt, &loop, [&] { loop.quit(); });
        loop.exec();
    }
}
