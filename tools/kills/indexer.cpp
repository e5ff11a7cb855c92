#include "search/Indexer.h"

#include "meetings/MeetingScanner.h"
#include "meetings/ProtocolFinder.h"
#include "service/Paths.h"

#include <QFile>

#include <cstdio>

using namespace Qt::StringLiterals;
using namespace murmeli;

// Brings the index of a home up to what its meetings say, once, and tells how many it has looked at.
int main(int argc, char** argv)
{
    if (argc != 2) return 2;
    const QString home = QFile::decodeName(argv[1]);
    const Paths paths{home, {home + u"/data"_s, home + u"/cache"_s, home + u"/config"_s}};
    const QList<ListedMeeting> meetings = MeetingScanner{paths.logs}.scan().meetings;
    Indexer indexer{paths, {paths, std::make_shared<ProtocolFinder>(paths.vaultDir)}};
    const auto outcome = indexer.bringUp(meetings, {.all = true, .touched = {}}, [](auto done, auto all) {
        std::printf("%lld of %lld\n", (long long)done, (long long)all);
        std::fflush(stdout);
        return true;
    });
    return outcome == Indexer::Outcome::Done ? 0 : 1;
}
