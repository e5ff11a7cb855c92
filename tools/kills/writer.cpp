#include "margin/MarkFiles.h"
#include "meetings/Meeting.h"
#include "service/Paths.h"

#include <QFile>

#include <cstdio>
#include <tuple>

using namespace Qt::StringLiterals;
using namespace murmeli;

// Writes marks, margins and settings in a home until it is killed, and tells after each step what is written.

namespace {

void tell(const QString& what)
{
    std::puts(qPrintable(what));
    std::fflush(stdout);
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 3) return 2;
    const QString home = QFile::decodeName(argv[1]);
    const int round = QByteArray{argv[2]}.toInt();
    const Paths paths{home, {home + u"/data"_s, home + u"/cache"_s, home + u"/config"_s}};
    const MarkFiles files{paths};
    const OwnFile settings{{paths.ownConfig, u"settings.json"_s, 1024 * 1024}};

    const double begin = 1'763'719'620;
    const Meeting meeting{
        .id = u"meeting"_s, .startedAt = QDateTime::fromSecsSinceEpoch(qint64(begin)), .durationMin = 60};
    for (int step = 0;; ++step) {
        Mark mark;
        mark.begin = begin;
        mark.time = begin + step % 3600;
        mark.text = u"%1.%2"_s.arg(round).arg(step);
        if (files.add(mark) == OwnWritten::Yes) tell(u"mark "_s + mark.text);
        if (step % 3 == 2 && files.settle({meeting}) == OwnWritten::Yes) tell(u"settled"_s);
        const QJsonObject value{{u"round"_s, round}, {u"step"_s, step}};
        if (settings.change([&](const QJsonObject&) { return value; }) == OwnWritten::Yes)
            tell(u"set %1 %2"_s.arg(round).arg(step));
    }
}
