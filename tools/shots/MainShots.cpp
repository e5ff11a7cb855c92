#include "Shot.h"
#include "base/Json.h"
#include "protocol/ProtocolWriter.h"
#include "sampleReport.h"
#include "support/TestProgram.h"
#include "windows/AppWindow.h"
#include "windows/MainModel.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QQuickItem>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace murmeli {

namespace {

struct Sample {
    int daysAgo;
    const char* start;
    int minutes; ///< 0: unknown
    const char* title;
    const char* tldr;
};

constexpr std::array russian = {
    Sample{0, "16:30", 48, "Ретро команды платформы",
           "Релиз прошёл без откатов, но ночные сборки идут дольше часа: решили разнести тесты по двум "
           "очередям."},
    Sample{0, "12:00", 47, "Синк по релизу 0.9",
           "Дата релиза — 28 ноября, обновление ставится само. Главный риск — не готовы тексты экрана "
           "установки; Анна берёт их на себя и покажет черновик в среду."},
    Sample{0, "10:15", 27, "Собеседование: Мария Лаптева, дизайнер",
           "Сильное портфолио, тестовое не нужно; вернуться с предложением до среды."},
    Sample{1, "18:05", 65, "Бюджет на первый квартал",
           "Согласовали рост затрат на хранение на 12 %, закупку серверов перенесли на март."},
    Sample{1, "11:30", 28, "Демо для «Северного ветра»",
           "Заказчику нужна выгрузка в PDF и список поручений; договорились о пилоте на две недели."},
    Sample{2, "15:00", 84, "Архитектура очереди расшифровки",
           "Остаёмся на одной очереди, приоритет у коротких встреч; замер нагрузки — на Илье."},
    Sample{2, "09:30", 0, "Звонок с бухгалтерией", ""},
    Sample{3, "14:00", 36, "План найма", "Две вакансии открываем сразу, третью — после пилота."},
    Sample{3, "10:00", 25, "Статус недели", ""},
};
constexpr std::array english = {
    Sample{0, "16:30", 48, "Platform team retro",
           "The release went out without rollbacks, but nightly builds take over an hour."},
    Sample{0, "12:00", 47, "Release 0.9 sync",
           "Ship on 28 November; the update installs itself. Risk: setup screen copy is late."},
    Sample{0, "10:15", 27, "Interview: Maria Lapteva, designer",
           "Strong portfolio, no test task needed; make an offer by Wednesday."},
    Sample{1, "18:05", 65, "First quarter budget", "Storage costs up 12 %; server purchase moved to March."},
    Sample{1, "11:30", 28, "Demo for North Wind",
           "They need PDF export and a task list; two-week pilot agreed."},
    Sample{2, "15:00", 84, "Transcription queue design",
           "One queue stays, short meetings go first; Ilya measures the load."},
    Sample{2, "09:30", 0, "Call with accounting", ""},
    Sample{3, "14:00", 36, "Hiring plan", "Two openings now, the third after the pilot."},
    Sample{3, "10:00", 25, "Weekly status", ""},
};

const QByteArray russianItems =
    R"("decisions":["Выпускаем 0.9 в пятницу, 28 ноября, без поэтапной раскатки.","Образ диска больше не собираем: установка идёт только скриптом.","Короткий протокол остаётся вторым форматом, по умолчанию — развёрнутый."],"action_items":[{"task":"Анна — подготовить тексты экрана установки до вторника."},{"task":"Илья — проверить обновление с 0.8.0 на чистой машине."},"Ольга — собрать список изменений для окна обновления."],"next_steps":["Созвон по готовности в четверг в 11:00.","Разослать пилотным командам приглашение после релиза."],"open_questions":["Нужен ли отдельный канал для ночных сборок?"],"risks":["Загрузка моделей на медленном канале занимает больше часа."])";
const QByteArray englishItems =
    R"("decisions":["Ship 0.9 on Friday, 28 November, in one go.","No more disk image: the script is the only way to install."],"action_items":[{"task":"Anna: setup screen copy by Tuesday."},{"task":"Ilya: try the update from 0.8.0 on a clean machine."}],"next_steps":["Readiness call on Thursday at 11:00."],"open_questions":["Do nightly builds need a channel of their own?"],"risks":["Models take over an hour to download on a slow line."])";

struct MainShot {
    QString name;
    bool meetings = true;
    QString query = {};
    SearchModel::Period period = SearchModel::Ever;
    bool best = false;
    bool recording = false;
    bool detail = false;
    bool marks = false;
    bool transcript = false;
    bool homeless = false;                                    ///< marks are
    bool quiet = false;                                       ///< one voice only
    enum { NoChanges, Listed, Compared } changes = NoChanges; ///< of the protocol
    bool handOut = false;                                     ///< under hidden names
    bool sent = false; ///< what has left the computer is listed: of the meeting, or in the settings of all
    QByteArray answer = {}; ///< to a remark; null: none is made
    bool signedIn = true;
    bool protocol = true;
    QByteArray pdf = {}; ///< script of the build; null: none
    bool teach = false;
    bool assistant = false;
    QString glossary = {};
    bool dirty = false;
    int profileStatus = 200;
    bool report = false;   ///< the analysis pane is open
    bool stored = true;    ///< and has an analysis
    QByteArray build = {}; ///< answer to a request for one; null: none is made
    bool exact = true;
    bool settings = false;
    int height = 680;
};

QList<MainShot> mainShots(bool inRussian)
{
    const QString words =
        inRussian
            ? u"мурмели → Murmeli\nКвен → Qwen\nсеверный ветер → «Северный ветер»\nMurmeli\nпостгрест → PostgREST\nэн эс кью → NSQ\nЛаптева\nкубер → Kubernetes\nOKR"_s
            : u"murmly → Murmeli\ncue when → Qwen\nnorth wind → North Wind\nMurmeli\npost grest → PostgREST\nan ess queue → NSQ\nLapteva\ncuber netties → Kubernetes\nOKR"_s;
    const QByteArray fixed =
        inRussian
            ? R"({"found":true,"section":"action_items","index":0,"text":"Анна — подготовить тексты экрана установки до среды."})"
            : R"({"found":true,"section":"action_items","index":0,"text":"Anna: setup screen copy by Wednesday."})";
    return {
        {.name = u"main-meetings"_s},
        {.name = u"search-places"_s,
         .query = inRussian ? u"тексты установки"_s : u"setup copy"_s,
         .period = SearchModel::Month},
        {.name = u"search-best"_s, .query = inRussian ? u"релиз"_s : u"release"_s, .best = true},
        {.name = u"search-layout"_s, .query = inRussian ? u"ntrcns"_s : u"ыуегз"_s},
        {.name = u"search-nothing"_s,
         .query = inRussian ? u"устоновка"_s : u"instoler"_s,
         .period = SearchModel::Week},
        {.name = u"main-search"_s, .query = inRussian ? u"релиз"_s : u"release"_s, .recording = true},
        {.name = u"main-homeless"_s, .homeless = true},
        {.name = u"detail-one-voice"_s, .detail = true, .quiet = true},
        {.name = u"main-empty"_s, .meetings = false},
        {.name = u"main-nothing-found"_s, .query = inRussian ? u"отпуск"_s : u"holiday"_s},
        {.name = u"detail"_s, .detail = true},
        {.name = u"detail-marks"_s, .detail = true, .marks = true},
        {.name = u"transcript"_s, .detail = true, .marks = true, .transcript = true},
        {.name = u"detail-changes"_s, .detail = true, .changes = MainShot::Listed},
        {.name = u"detail-changes-compared"_s, .detail = true, .changes = MainShot::Compared},
        {.name = u"detail-sent"_s, .detail = true, .sent = true},
        {.name = u"detail-desk"_s, .detail = true, .handOut = true},
        {.name = u"detail-no-protocol"_s, .detail = true, .protocol = false},
        {.name = u"detail-fixed-teach"_s,
         .detail = true,
         .answer = fixed,
         .pdf = "cp \"$1\" \"$2\"",
         .teach = true},
        {.name = u"detail-not-found"_s, .detail = true, .answer = R"({"found":false})", .pdf = "exit 1"},
        {.name = u"detail-failed"_s, .detail = true, .answer = "<html>"},
        {.name = u"detail-working"_s, .detail = true, .answer = "", .pdf = "sleep 60"},
        {.name = u"detail-signed-out"_s, .detail = true, .answer = "{}", .signedIn = false},
        {.name = u"assistant"_s, .assistant = true, .glossary = words},
        {.name = u"assistant-dirty"_s, .assistant = true, .glossary = words, .dirty = true},
        {.name = u"assistant-sync-error"_s, .assistant = true, .glossary = words, .profileStatus = 500},
        {.name = u"assistant-empty"_s, .assistant = true},
        {.name = u"settings-tab"_s, .settings = true},
        {.name = u"settings-tab-unrolled"_s, .settings = true, .height = 1560},
        {.name = u"settings-sent"_s, .sent = true, .settings = true},
        {.name = u"report"_s, .detail = true, .report = true},
        {.name = u"report-unrolled"_s, .detail = true, .report = true, .exact = false, .height = 2330},
        {.name = u"report-loading"_s, .detail = true, .report = true, .build = ""},
        {.name = u"report-empty"_s, .detail = true, .report = true, .stored = false},
        {.name = u"report-error"_s, .detail = true, .report = true, .stored = false, .build = "<html>"},
        {.name = u"report-signed-out"_s, .detail = true, .signedIn = false, .report = true, .build = "{}"},
    };
}

void writeMeetings(TestProgram& m, const Frame& frame, const MainShot& shot)
{
    const bool inRussian = frame.language == "ru"_L1;
    const QDate today = QDateTime::fromSecsSinceEpoch(qint64(m.scheduler.now())).date();
    m.write(m.paths.vaultDir + u"/a.md"_s,
            inRussian ? sampleReport::russianProtocol : sampleReport::englishProtocol);
    for (const Sample& sample : inRussian ? russian : english) {
        const QDateTime start{today.addDays(-sample.daysAgo),
                              QTime::fromString(QString::fromLatin1(sample.start), u"HH:mm"_s)};
        QByteArray meta = "\"started_at\":\"" + start.toUTC().toString(Qt::ISODate).toUtf8() + '"';
        if (sample.minutes > 0) meta += ",\"duration_min\":" + QByteArray::number(sample.minutes);
        if (shot.protocol) meta += ",\"protocol_md\":\"" + m.paths.vaultDir.toUtf8() + "/a.md\"";
        if (shot.stored) meta += ",\"analytics\":" + sampleReport::analytics(inRussian, shot.exact);
        const QString stem = m.paths.logs + u'/' + start.toString(u"yyyy-MM-dd HH-mm-ss"_s);
        if (shot.stored)
            m.write(stem + u".report.json"_s, inRussian ? sampleReport::russian : sampleReport::english);
        if (shot.quiet) meta += R"(,"analytics":{"speakers":[{}]})";
        m.write(stem + u".protocol.json"_s,
                "{\"title\":\"" + QByteArray{sample.title} + "\",\"tldr\":\"" + sample.tldr + "\"," +
                    (inRussian ? russianItems : englishItems) + ",\"_meta\":{" + meta + "}}");
    }
}

/// Corrections of the opened meeting: two that hold, one taken back, one that the service has put back, and
/// one over which it has written.
void changeProtocol(TestProgram& m, MainModel& model, bool ru)
{
    const Meeting meeting = *model.store()->list()->find(model.detail()->id());
    ProtocolWriter writer{m.paths, m.processes, m.scheduler};
    const auto write = [&](ProtocolChange change, const QString& from, const QString& to) {
        const auto items =
            protocolItems::editable(*json::object(*files::readWhole(meeting.jsonPath, 1'000'000)));
        const auto item = std::ranges::find_if(items, [&](const ProtocolItem& one) {
            return one.section == change.section && one.text.contains(from);
        });
        change.index = item->index;
        change.before = item->text;
        change.after = QString{item->text}.replace(from, to);
        bool done = false;
        writer.write(meeting, change, ProtocolWriter::Where::There, &writer, [&](auto, const auto& made) {
            change = made;
            done = true;
        });
        await([&] { return done; });
        m.scheduler.advance(9min);
        return change;
    };
    write({.section = u"tldr"_s, .remark = ru ? u"не экраны, а тексты"_s : u"the text, not the screen"_s},
          ru ? u"тексты экрана"_s : u"setup screen copy"_s, ru ? u"тексты экранов"_s : u"setup screens"_s);
    const ProtocolChange risk =
        write({.section = u"risks"_s, .remark = ru ? u"дольше"_s : u"longer"_s},
              ru ? u"больше часа"_s : u"over an hour"_s, ru ? u"больше двух часов"_s : u"over two hours"_s);
    write({.kind = ProtocolChange::Kind::Undo, .section = u"risks"_s, .of = risk.id},
          ru ? u"больше двух часов"_s : u"over two hours"_s, ru ? u"больше часа"_s : u"over an hour"_s);
    write({.section = u"decisions"_s,
           .remark = ru ? u"не в пятницу, а в четверг, 27"_s : u"Thursday the 27th"_s},
          ru ? u"пятницу, 28"_s : u"Friday, 28"_s, ru ? u"четверг, 27"_s : u"Thursday, 27"_s);
    const QString tuesday = ru ? u"вторника"_s : u"Tuesday"_s;
    const QString wednesday = ru ? u"среды"_s : u"Wednesday"_s;
    write({.section = u"action_items"_s,
           .remark = ru ? u"срок по текстам — среда"_s : u"copy is due on Wednesday"_s},
          tuesday, wednesday);
    QByteArray bytes = *files::readWhole(meeting.jsonPath, 1'000'000);
    bytes.replace((u"до "_s + wednesday).toUtf8(), (u"до "_s + tuesday).toUtf8());
    bytes.replace((u"by "_s + wednesday).toUtf8(), (u"by "_s + tuesday).toUtf8());
    bytes.replace(ru ? "тексты экранов" : "setup screens", ru ? "экраны" : "the setup");
    m.write(meeting.jsonPath, bytes);
    model.detail()->changes()->load(meeting);
    settle(200);
    m.scheduler.advance(20s);
    await([&] { return model.detail()->changes()->overwrittenCount() == 1; });
}

/// What was sent of a meeting, and besides.
void noteSent(TestProgram& m, const QString& meeting)
{
    const QString host = u"https://murmeli.example"_s;
    const auto note = [&](Receipt receipt, int minutesAgo) {
        Receipt made = m.program.receipts.begun();
        receipt.id = made.id;
        receipt.time = made.time - minutesAgo * 60;
        m.program.receipts.note(receipt);
    };
    note({.kind = u"version"_s, .to = host, .result = u"answered"_s, .status = 200}, 60 * 24 * 40);
    note({.stem = meeting,
          .kind = u"analysis"_s,
          .to = host,
          .bytes = 58'214,
          .result = u"answered"_s,
          .status = 200},
         150);
    note({.stem = meeting,
          .kind = u"remark"_s,
          .to = host,
          .bytes = 3'902,
          .items = 14,
          .result = u"answered"_s,
          .status = 200},
         60);
    note({.stem = meeting,
          .kind = u"remark"_s,
          .to = host,
          .bytes = 3'911,
          .items = 14,
          .result = u"failed"_s,
          .reason = u"offline"_s},
         57);
    note({.stem = meeting, .kind = u"clipboard"_s, .to = u"clipboard"_s, .bytes = 24'048}, 22);
    note({.stem = meeting, .kind = u"file"_s, .to = u"Downloads"_s, .bytes = 24'048}, 20);
    settle(300);
}

/// Sets a property of the views that have it.
void setInViews(const AppWindow& window, const char* property, const QVariant& value)
{
    for (QQuickItem* item : window.rootObject()->findChildren<QQuickItem*>()) {
        if (item->metaObject()->indexOfProperty(property) >= 0) item->setProperty(property, value);
    }
}

bool shoot(const MainShot& shot, const Frame& frame)
{
    TestProgram m;
    dress(m, frame);
    QQmlEngine engine;
    m.install(engine);
    if (shot.meetings) writeMeetings(m, frame, shot);
    if (shot.recording) m.write(m.paths.stateFile, R"({"status":"recording","since":1731688529})");
    if (!shot.pdf.isNull()) {
        m.write(m.paths.pdfScript, shot.pdf + '\n');
        QDir{}.mkpath(QFileInfo{m.paths.python}.path());
        QFile::link(u"/bin/bash"_s, m.paths.python);
    }
    m.server.reply = [&](QTcpSocket* socket, const Server::Request& request) {
        const QJsonArray profile{QJsonObject{{u"glossary"_s, shot.glossary}}};
        if (request.path.startsWith("/rest/v1/profiles")) {
            // What fails is the second look; the first has brought the words.
            const bool fails =
                shot.profileStatus != 200 && m.server.requestsTo("/rest/v1/profiles").size() > 1;
            socket->write(fails ? Server::answer(shot.profileStatus, "{}")
                                : Server::answer(200, QJsonDocument{profile}.toJson()));
        } else if (request.path.startsWith("/api/assist/report") && !shot.build.isEmpty()) {
            socket->write(Server::answer(200, shot.build));
        } else if (request.path.startsWith("/api/") && !shot.answer.isEmpty()) {
            socket->write(Server::answer(200, shot.answer));
        }
    };
    if (shot.signedIn) {
        m.signIn();
        await([&] { return !m.glossary.loading(); });
    }
    m.scheduler.advance(1500ms);
    if (shot.marks) {
        const QDateTime start{QDateTime::fromSecsSinceEpoch(qint64(m.scheduler.now())).date(), QTime{12, 0}};
        const QString id = start.toString(u"yyyy-MM-dd HH-mm-ss"_s);
        const bool ru = frame.language == "ru"_L1;
        const double begin = double(start.toSecsSinceEpoch());
        for (const auto& [at, text] :
             {std::pair{581.0, ru ? u"спросить про стенд"_s : u"ask about the test rig"_s},
              std::pair{1724.0, ru ? u"важно, проверить"_s : u"important, check"_s}}) {
            Mark mark;
            mark.begin = begin;
            mark.time = begin + at;
            mark.text = text;
            std::ignore = MarkFiles{m.paths}.addTo(id, mark);
        }
    }
    if (shot.homeless) {
        const bool ru = frame.language == "ru"_L1;
        for (const QString& text : {ru ? u"спросить про стенд"_s : u"ask about the test rig"_s,
                                    ru ? u"важно, проверить"_s : u"important, check"_s}) {
            Mark mark;
            mark.begin = m.scheduler.now() - 100'000;
            mark.time = mark.begin + double(text.size() * 60);
            mark.text = text;
            std::ignore = MarkFiles{m.paths}.add(mark);
        }
    }
    MainModel model{m.mainGround()};
    AppWindow window{engine,
                     m.language,
                     {.url = u"qrc:/qt/qml/Murmeli/Windows/MainWindowView.qml"_s,
                      .properties = {{u"model"_s, QVariant::fromValue(&model)},
                                     {u"appState"_s, QVariant::fromValue(&m.state)},
                                     {u"record"_s, QVariant::fromValue(&m.record)},
                                     {u"board"_s, QVariant::fromValue(&m.program.board)}},
                      .titleKey = u"meetings.title"_s,
                      .size = {980, shot.height}}};
    window.present();
    await([&] { return model.store()->loaded() && !model.glossary()->loading(); });
    if (!shot.query.isEmpty()) {
        SearchModel& search = *model.search();
        // Which waits for the end of a recording.
        if (!shot.recording) await([&] { return m.program.index.state() == SearchIndex::State::Ready; });
        search.setPeriod(shot.period);
        search.setBest(shot.best);
        search.setQuery(shot.query);
        await([&] { return search.isSettled(); });
        settle(700); // places and pictures
    }
    if (shot.detail) {
        model.open(model.store()->list()->idAt(1));
        await([&] { return model.detail()->loaded(); });
        settle(300);
    }
    if (shot.changes != MainShot::NoChanges) {
        changeProtocol(m, model, frame.language == "ru"_L1);
        model.detail()->openSheet(MeetingDetailModel::Sheet::Changes);
        model.detail()->changes()->setComparing(shot.changes == MainShot::Compared);
    }
    if (shot.sent) noteSent(m, shot.detail ? model.detail()->id() : model.store()->list()->idAt(1));
    if (shot.sent && shot.detail) {
        model.detail()->setLocked(true);
        model.detail()->openSheet(MeetingDetailModel::Sheet::Sent);
    }
    if (shot.handOut) {
        model.detail()->openSheet(MeetingDetailModel::Sheet::HandOut);
        HandoutModel& handout = *model.detail()->handout();
        handout.setHideNames(true);
        await([&] { return handout.isReady() && handout.hidden() > 0; });
        settle(600);
    }
    if (!shot.answer.isNull()) {
        model.detail()->setDraft(u"Срок по текстам — среда"_s);
        model.detail()->sendRemark();
        if (!shot.answer.isEmpty())
            await([&] { return model.detail()->editor()->outcome() != ProtocolEditor::Outcome::Working; });
    }
    if (!shot.pdf.isNull()) {
        const Meeting* meeting = model.store()->list()->find(model.detail()->id());
        model.detail()->files()->save(*meeting, m.home.filePath(ProtocolFileMaker::suggestedName(*meeting)));
        if (!shot.pdf.startsWith("sleep"))
            await([&] { return model.detail()->files()->outcome() != ProtocolFileMaker::Outcome::Working; });
    }
    if (shot.homeless) {
        await([&] { return !model.homeless()->marks().isEmpty(); });
        setInViews(window, "unfolded", true);
    }
    if (shot.assistant) model.setTab(MainModel::Tab::Assistant);
    if (shot.settings) model.setTab(MainModel::Tab::Settings);
    if (shot.sent && shot.settings) {
        settle(300);
        m.settings.run(settingAction::ShowSent, nullptr);
    }
    if (shot.dirty)
        model.assistant()->add(frame.language == "ru"_L1 ? u"тау кит"_s : u"tow kit"_s, u"Tau Kit"_s);
    if (shot.teach) setInViews(window, "teaching", true);
    if (shot.transcript) {
        TranscriptModel& lines = *model.detail()->transcript();
        model.detail()->openTranscript(u"[00:12:31]"_s);
        await([&] { return lines.loaded(); });
        settle(400);
        lines.setQuery(frame.language == "ru"_L1 ? u"текст"_s : u"copy"_s);
        await([&] { return lines.hitCount() > 0; });
        lines.select(lines.here() + 1, false);
    }
    if (shot.report) {
        model.detail()->openReport();
        await([&] { return model.detail()->report()->asked(); });
        if (!shot.build.isNull()) model.detail()->buildReport();
        settle(300);
        model.detail()->report()->toggle(u"[00:12:31]"_s);
    }
    settle(600);
    return save(window, frame, shot.name);
}

} // namespace

bool shootMain(const Frame& frame, const QString& only)
{
    bool good = true;
    for (const MainShot& shot : mainShots(frame.language == "ru"_L1)) {
        if (shot.name.contains(only)) good = shoot(shot, frame) && good;
    }
    return good;
}

} // namespace murmeli
