#include "registeredTests.h"
#include "support/TestProgram.h"
#include "windows/MainModel.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QSignalSpy>
#include <QTest>
#include <QThreadPool>

using namespace Qt::StringLiterals;
using namespace murmeli;

namespace {

const QString id = u"2026-03-04 10-15-00"_s;

QByteArray summary(const QStringList& decisions, const QJsonObject& meta = {})
{
    return QJsonDocument{QJsonObject{{u"title"_s, u"План"_s},
                                     {u"decisions"_s, QJsonArray::fromStringList(decisions)},
                                     {u"_meta"_s, meta}}}
        .toJson();
}

/// Each row's text, with what it tells of a correction.
QString told(const SectionListModel& model)
{
    QStringList rows;
    for (int row = 0; row < model.rowCount(); ++row) {
        const auto at = [&](int role) { return model.data(model.index(row), role); };
        const QString before = at(SectionListModel::BeforeRole).toString();
        rows.append(at(SectionListModel::TextRole).toString() +
                    (before.isEmpty() ? QString{} : u'<' + before) +
                    (at(SectionListModel::CorrectedRole).toBool() ? u"!"_s : QString{}));
    }
    return rows.join(u' ');
}

QList<ProtocolSection> sections(const QStringList& texts)
{
    ProtocolSection section{.key = u"decisions"_s, .titleKey = u"detail.decisions"_s};
    for (const QString& text : texts)
        section.items.append({.index = section.items.size(), .text = text});
    return {section};
}

} // namespace

class DetailTest : public QObject {
    Q_OBJECT

private slots:
    void init() { m = std::make_unique<Fixture>(); }
    void cleanup() { m.reset(); }

    void correctionsStayWithTheirText()
    {
        SectionListModel model{nullptr};
        model.setSections(sections({u"б"_s, u"в"_s}));
        QCOMPARE(model.markCorrected(u"decisions"_s, 0, u"а"_s), 0);
        QCOMPARE(told(model), u"б<а! в"_s);
        model.setSections(sections({u"новое"_s, u"б"_s, u"в"_s})); // by the service
        QCOMPARE(told(model), u"новое б в"_s);
        model.setSections(sections({u"б"_s, u"в"_s}));
        QCOMPARE(told(model), u"б<а! в"_s);
        model.setSections(sections({u"г"_s, u"в"_s}));
        model.markCorrected(u"decisions"_s, 0, u"б"_s);
        QCOMPARE(told(model), u"г<а! в"_s); // what stood there when the meeting was opened
        model.markCorrected(u"decisions"_s, 1, u"прежнее"_s);
        QCOMPARE(told(model), u"г<а в<прежнее!"_s);
        QCOMPARE(model.markCorrected(u"decisions"_s, 7, u"нет такого"_s), -1);
    }

    void whatTheServiceWritesIsShown()
    {
        m->write(summary({u"раз"_s}));
        MeetingDetailModel& detail = m->open();
        QTRY_COMPARE(told(*detail.sections()), u"раз"_s);
        QVERIFY(!detail.edited());
        m->write(summary({u"раз"_s, u"два"_s}, {{u"edited"_s, true}})); // nothing that the list would show
        m->main->store()->reload();
        QTRY_COMPARE(told(*detail.sections()), u"раз два"_s);
        QVERIFY(detail.edited());

        m->write("{\"title\":\"Пл"); // in the middle of being written
        QSignalSpy scanned{m->main->store(), &MeetingStore::scanned};
        m->main->store()->reload();
        QVERIFY(scanned.wait());
        m->write(summary({u"три"_s}));
        m->main->store()->reload();
        QTRY_COMPARE(told(*detail.sections()), u"три"_s);
    }

    void theDateLineFollows()
    {
        m->write(summary({}));
        const MeetingDetailModel& detail = m->open();
        QVERIFY2(!detail.dateLine().contains(u'–'), qPrintable(detail.dateLine()));
        QSignalSpy changed{&detail, &MeetingDetailModel::changed};
        m->write(summary({}, {{u"duration_min"_s, 47}}));
        m->main->store()->reload();
        QTRY_VERIFY(detail.dateLine().contains(u"10:15 – 11:02"_s));
        changed.clear();
        m->program.prefs.set(u"locale"_s, u"en"_s);
        m->program.language.refresh();
        QVERIFY(!changed.isEmpty());
        QVERIFY2(detail.dateLine().contains(u"Mar"_s), qPrintable(detail.dateLine()));
    }

    void aRemarkWhoseMeetingWasLeft_data()
    {
        QTest::addColumn<QByteArray>("wire");
        QTest::addColumn<QString>("draft");
        QTest::addColumn<QString>("shown");
        QTest::newRow("carried out") << Server::answer(
                                            200,
                                            R"({"found":true,"section":"decisions","index":0,"text":"два"})")
                                     << QString{} << u"два"_s;
        QTest::newRow("refused") << Server::answer(500, "{}") << u"замени"_s << u"раз"_s;
    }
    void aRemarkWhoseMeetingWasLeft()
    {
        QFETCH(QByteArray, wire);
        m->write(summary({u"раз"_s}));
        QTcpSocket* waiting = nullptr;
        m->program.server.reply = [&](QTcpSocket* socket, const Server::Request& request) {
            if (request.path == "/api/assist/edit") waiting = socket;
            if (request.path == "/later") socket->write(Server::answer(200, ""));
        };
        m->program.signIn();
        MeetingDetailModel& left = m->open();
        left.setDraft(u"замени"_s);
        left.sendRemark();
        QTRY_VERIFY(waiting);
        m->main->back();
        const MeetingDetailModel& again = m->open();
        QCOMPARE(again.draft(), u"замени"_s); // nobody knows yet what will come of it
        waiting->write(wire);
        QTRY_COMPARE(waiting->bytesToWrite(), 0);
        bool ended = false; // after the remark's answer, which then is worked on beside the main thread
        m->program.http.send({.url = m->program.server.url(u"/later"_s)}, this,
                             [&](const HttpAnswer&) { ended = true; });
        QTRY_VERIFY(ended);
        QThreadPool::globalInstance()->waitForDone();
        QCoreApplication::processEvents();
        QTEST(again.draft(), "draft");
        QFETCH(QString, shown);
        QTRY_COMPARE(told(*m->main->detail()->sections()), shown);
        m->main->back();
        QTEST(m->open().draft(), "draft");
    }

    void aFileIsMadeThoughItsMeetingWasLeft_data()
    {
        QTest::addColumn<bool>("again"); ///< the meeting is in sight again when it ends
        QTest::newRow("elsewhere") << false;
        QTest::newRow("opened again") << true;
    }
    void aFileIsMadeThoughItsMeetingWasLeft()
    {
        QFETCH(bool, again);
        const QString go = m->program.home.filePath(u"go"_s);
        m->program.write(m->program.paths.pdfScript,
                         "until [ -e '" + go.toUtf8() + "' ]; do sleep 0.01; done; cp \"$1\" \"$2\"\n");
        QDir{}.mkpath(QFileInfo{m->program.paths.python}.path());
        QFile::link(u"/bin/bash"_s, m->program.paths.python);
        m->write(summary({u"раз"_s}));
        MeetingDetailModel& left = m->open();
        m->main->setOnScreen(true);
        QSignalSpy ended{m->main.get(), &MainModel::fileEnded};
        const QString destination = m->program.home.filePath(u"План.pdf"_s);
        left.files()->save(*m->main->store()->list()->find(id), destination);
        m->main->back();
        if (again) QCOMPARE(m->open().files()->outcome(), ProtocolFileMaker::Outcome::Working);
        m->program.write(go, "");
        QTRY_VERIFY(QFile::exists(destination));
        QTRY_COMPARE(m->program.desktop.copiedFiles, QStringList{destination});
        QCOMPARE(ended.size(), again ? 0 : 1);
        if (!again) {
            QCOMPARE(ended[0][0], u"План"_s);
            QCOMPARE(ended[0][2].value<Message>(), Message::of("file.saved", u"План.pdf"_s));
        }
        QCOMPARE(m->open().files()->outcome(), ProtocolFileMaker::Outcome::Saved);
    }

private:
    struct Fixture {
        TestProgram program;
        std::unique_ptr<MainModel> main;

        void write(const QByteArray& bytes) const
        {
            program.write(program.paths.logs + u'/' + id + u".protocol.json"_s, bytes);
        }
        MeetingDetailModel& open()
        {
            if (!main) main = std::make_unique<MainModel>(program.mainGround());
            [this] { QTRY_VERIFY(main->store()->loaded()); }();
            main->open(id);
            [this] { QTRY_VERIFY(main->detail() && main->detail()->loaded()); }();
            return *main->detail();
        }
    };
    std::unique_ptr<Fixture> m;
};

MURMELI_TEST(DetailTest)
#include "DetailTest.moc"
