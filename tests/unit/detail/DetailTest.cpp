#include "registeredTests.h"
#include "support/TestProgram.h"
#include "windows/MainModel.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace murmeli;
using namespace std::chrono_literals;

namespace {

const QString id = u"2026-03-04 10-15-00"_s;

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

    void whatChangesIsShown()
    {
        m->write({u"раз"_s});
        MeetingDetailModel& detail = m->open();
        QCOMPARE(told(*detail.sections()), u"раз"_s);
        QVERIFY(!detail.edited());
        QVERIFY2(!detail.dateLine().contains(u'–'), qPrintable(detail.dateLine()));

        m->write({u"раз"_s, u"два"_s}, {{u"edited"_s, true}}); // nothing that the list would show
        m->reload();
        QCOMPARE(told(*detail.sections()), u"раз два"_s);
        QVERIFY(detail.edited());

        m->TestProgram::write(m->file, "{\"title\":\"Пл"); // it is being written
        m->reload();
        QCOMPARE(told(*detail.sections()), u"раз два"_s);

        m->write({u"три"_s}, {{u"duration_min"_s, 47}});
        m->reload();
        QCOMPARE(told(*detail.sections()), u"три"_s);
        QVERIFY2(detail.dateLine().contains(u"10:15 – 11:02"_s), qPrintable(detail.dateLine()));

        const QSignalSpy changed{&detail, &MeetingDetailModel::changed};
        m->prefs.set(u"locale"_s, u"en"_s);
        m->language.refresh();
        QVERIFY(!changed.isEmpty());
        QVERIFY2(detail.dateLine().contains(u"Mar"_s), qPrintable(detail.dateLine()));
    }

    void aProtocolCanBeTaken()
    {
        m->write({u"раз"_s, u"два"_s});
        MeetingDetailModel& detail = m->open();
        detail.copyItem(1);
        QCOMPARE(m->desktop.copiedText, u"два"_s);
        detail.copyItem(7);
        QCOMPARE(m->desktop.copiedText, u"два"_s);
        detail.copyProtocol();
        QCOMPARE(m->desktop.copiedText, u"План\n"_s + detail.dateLine() + u"\n\nРешения\n– раз\n– два"_s);
    }

    void whatIsReadStaysWhereItIs()
    {
        SectionListModel model{nullptr};
        model.setSections(sections({u"а"_s, u"б"_s, u"в"_s}));
        const QPersistentModelIndex read = model.index(1);
        QSignalSpy reset{&model, &QAbstractItemModel::modelReset};
        for (const QStringList& now : {QStringList{u"а"_s, u"б"_s, u"в"_s, u"г"_s},
                                       {u"а"_s, u"б"_s},
                                       {u"а"_s, u"б"_s, u"д"_s, u"е"_s}}) {
            model.setSections(sections(now));
            QCOMPARE(told(model), now.join(u' '));
            QCOMPARE(read.data(SectionListModel::TextRole), u"б"_s);
        }
        model.setSections({});
        QCOMPARE(model.rowCount(), 0);
        QVERIFY(reset.isEmpty());
    }

    void aProtocolThatHasGoneIsNotOffered()
    {
        const QString protocol = m->home.filePath(u"план.md"_s);
        m->TestProgram::write(protocol, "# План");
        m->write({u"раз"_s}, {{u"protocol_md"_s, protocol}});
        const MeetingDetailModel& detail = m->open();
        QVERIFY(detail.hasProtocol());
        QFile::remove(protocol);
        m->reload();
        QVERIFY(!detail.hasProtocol());
    }

    void theAnalysisFollowsItsMeeting()
    {
        m->write({u"раз"_s});
        MeetingDetailModel& detail = m->open();
        detail.openReport();
        QTRY_VERIFY(detail.report()->asked());
        QVERIFY(detail.report()->empty());
        const QJsonObject figures{{u"speakers"_s, QJsonArray{QJsonObject{{u"name"_s, u"Анна"_s}}}}};
        m->write({u"раз"_s}, {{u"analytics"_s, figures}});
        m->reload();
        QTRY_VERIFY(!detail.report()->empty());
    }

    void aRemarkIsCarriedOutThoughItsMeetingWasLeft()
    {
        m->write({u"раз"_s});
        m->server.holds("/api/assist/edit");
        m->signIn();
        MeetingDetailModel& left = m->open();
        left.setDraft(u"замени"_s);
        left.sendRemark();
        QTRY_COMPARE(m->server.held.size(), 1);
        m->main->back();
        const MeetingDetailModel& again = m->open();
        QCOMPARE(again.draft(), u"замени"_s); // nobody knows yet what will come of it
        QCOMPARE(m->main->detail()->editor()->outcome(), ProtocolEditor::Outcome::Working);
        m->server.held[0]->write(
            Server::answer(200, R"({"found":true,"section":"decisions","index":0,"text":"два"})"));
        QTRY_COMPARE(again.draft(), QString{});
        QTRY_COMPARE(told(*m->main->detail()->sections()), u"два<раз!"_s);
        m->main->back();
        QCOMPARE(m->open().draft(), QString{});
    }

    void aDraftOutlivesTheProgram()
    {
        m->write({u"раз"_s});
        const QString file = m->desktop.states + u"/drafts.json"_s;
        m->open().setDraft(u"слова"_s);
        m->main.reset();
        QVERIFY(files::isPrivate(file));
        MeetingDetailModel& again = m->open();
        QTRY_COMPARE(again.draft(), u"слова"_s);
        again.setDraft({});
        m->scheduler.advance(1s);
        QTRY_VERIFY(!QFile::exists(file));
    }

    void aFileIsMadeThoughItsMeetingWasLeft()
    {
        for (const bool again : {false, true}) { // whether the meeting is in sight when it ends
            init();
            const QString go = m->home.filePath(u"go"_s);
            m->installScript(m->paths.pdfScript,
                             "until [ -e '" + go.toUtf8() + R"(' ]; do sleep 0.01; done; cp "$1" "$2")");
            m->write({u"раз"_s});
            MeetingDetailModel& left = m->open();
            m->main->setOnScreen(true);
            QSignalSpy ended{m->main.get(), &MainModel::fileEnded};
            const QString pdf = m->home.filePath(u"План.pdf"_s);
            left.files()->save(*m->main->store()->list()->find(id), pdf);
            m->main->back();
            if (again) QCOMPARE(m->open().files()->outcome(), ProtocolFileMaker::Outcome::Working);
            m->TestProgram::write(go, "");
            QTRY_COMPARE(m->desktop.copiedFiles, QStringList{pdf});
            QVERIFY(QFile::exists(pdf));
            QCOMPARE(ended.size(), again ? 0 : 1);
            if (!again) {
                QCOMPARE(ended[0][0], u"План"_s);
                QCOMPARE(ended[0][2].value<Message>(), Message::of("file.saved", u"План.pdf"_s));
            }
            QCOMPARE(m->open().files()->outcome(), ProtocolFileMaker::Outcome::Saved);
        }
    }

private:
    struct Fixture : TestProgram {
        QString file = paths.logs + u'/' + id + u".protocol.json"_s;
        std::unique_ptr<MainModel> main;

        void write(const QStringList& decisions, const QJsonObject& meta = {}) const
        {
            TestProgram::write(
                file, QJsonDocument{QJsonObject{{u"title"_s, u"План"_s},
                                                {u"decisions"_s, QJsonArray::fromStringList(decisions)},
                                                {u"_meta"_s, meta}}}
                          .toJson());
        }
        MeetingDetailModel& open()
        {
            if (!main) main = std::make_unique<MainModel>(mainGround());
            [this] { QTRY_VERIFY(main->store()->loaded()); }();
            main->open(id);
            [this] { QTRY_VERIFY(main->detail() && main->detail()->loaded()); }();
            return *main->detail();
        }
        /// Looks for meetings, and reads the open one again.
        void reload()
        {
            QSignalSpy read{main->detail(), &MeetingDetailModel::changed};
            main->store()->reload();
            QVERIFY(read.wait());
        }
    };
    std::unique_ptr<Fixture> m;
};

MURMELI_TEST(DetailTest)
#include "DetailTest.moc"
