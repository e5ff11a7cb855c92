#pragma once

#include <QByteArray>

/// An analysis with something in every section, and what else the pane shows of its meeting.
namespace murmeli::sampleReport {

inline const QByteArray russian =
    R"({"commitments":[{"who":"Анна","what":"Подготовить тексты экрана установки","due":"до вторника","quote":"«Тексты точно принесу во вторник, не позже обеда»","at":"[00:14:05]","firmness":"твёрдое","definition_of_done":"черновик на русском и английском лежит в общей папке"},{"who":"Илья","what":"Проверить обновление с 0.8.0 на чистой машине","due":"null","quote":"«Попробую на неделе, если освободится стенд»","at":"[00:22:48]","firmness":"с оговоркой"},{"who":"Ольга","what":"Назвать заказчику дату релиза","due":"28 ноября","quote":"«Я им уже пообещала двадцать восьмое»","at":"[00:33:02]","firmness":"твёрдое"},{"who":"Илья","what":"Поднять вопрос о бюджете стенда","quote":"«Бюджет на стенд согласую сам»","at":"[00:41:50]","firmness":"мягкое"}],)"
    R"("disagreements":[{"topic":"Нужна ли поэтапная раскатка","sides":[{"who":"Ольга","position":"Сначала пилотные команды, остальным — через неделю.","at":"[00:26:10]"},{"who":"Илья","position":"Раскатывать всем: откат занимает пять минут.","at":"[00:27:55]"}],"outcome":"выпускаем всем сразу, следим за журналом первые сутки"}],)"
    R"("blockers":["Первые девять минут ждали доступа к отчёту по сборкам.","Вопрос о канале ночных сборок поднимали трижды и не закрыли."],)"
    R"("numbers":[{"metric":"Время ночной сборки","value":"68 мин","at":"[00:32:14]","note":"месяц назад было 41 мин"},{"metric":"Пилотные команды","value":"3","at":"[00:41:50]"}],)"
    R"("insights":[{"kind":"risk","title":"Срок релиза держится на одном человеке","detail":"Тексты, список изменений и проверка установки сходятся к Анне в один день; запасного исполнителя не назвали.","at":["[00:12:31]","[00:31:07]"]},{"kind":"promise","title":"Заказчику уже обещана дата","detail":"Ольга мельком сказала, что назвала «Северному ветру» 28 ноября. Перенос теперь стоит дороже, чем обсуждали.","at":["[00:38:40]"]}],)"
    R"("agenda_coverage":[{"topic":"Дата релиза","status":"пройдена","at":"[00:09:12]"},{"topic":"Экран установки","status":"пройдена полностью","at":"[00:13:20]"},{"topic":"Ночные сборки","status":"частично","at":"[00:33:02]"},{"topic":"План после релиза","status":"не обсуждали","at":"[00:46:30]"}],)"
    R"("concepts":[{"idea":"Отдельный канал для ночных сборок","pros":["Пилотные команды получают правки раньше","Ошибки видны до релиза"],"cons":["Два потока обновлений поддерживать дороже"],"at":"[00:34:26]"}],)"
    R"("roles":[{"who":"Ольга","role":"держит рамку","evidence":"Трижды возвращала разговор к дате релиза.","at":"[00:18:33]"},{"who":"Илья","role":"проверяет на прочность","evidence":"Называл, что сломается, прежде чем согласиться.","at":"[00:27:55]"}]})";

inline const QByteArray english =
    R"({"commitments":[{"who":"Anna","what":"Write the setup screen copy","due":"by Tuesday","quote":"“You will have it on Tuesday, by lunch at the latest”","at":"[00:14:05]","firmness":"твёрдое","definition_of_done":"a draft in both languages is in the shared folder"},{"who":"Ilya","what":"Try the update from 0.8.0 on a clean machine","quote":"“I will try this week if the rig is free”","at":"[00:22:48]","firmness":"мягкое"},{"who":"Olga","what":"Name the release date to the customer","due":"28 November","quote":"“I have already promised them the twenty-eighth”","at":"[00:33:02]","firmness":"твёрдое"},{"who":"Ilya","what":"Raise the budget of the rig","quote":"“I will settle the budget of the rig myself”","at":"[00:41:50]","firmness":"мягкое"}],)"
    R"("disagreements":[{"topic":"Whether to roll out in stages","sides":[{"who":"Olga","position":"Pilot teams first, the rest a week later.","at":"[00:26:10]"},{"who":"Ilya","position":"Everyone at once: going back takes five minutes.","at":"[00:27:55]"}],"outcome":"everyone at once, with an eye on the log for a day"}],)"
    R"("blockers":["The first nine minutes went into waiting for the build report.","The channel for nightly builds came up three times and stayed open."],)"
    R"("numbers":[{"metric":"Nightly build time","value":"68 min","at":"[00:32:14]","note":"41 min a month ago"},{"metric":"Pilot teams","value":"3","at":"[00:41:50]"}],)"
    R"("insights":[{"kind":"risk","title":"The release date hangs on one person","detail":"Copy, change list and setup check all land on Anna on one day; nobody was named to step in.","at":["[00:12:31]","[00:31:07]"]},{"kind":"promise","title":"The customer has been given a date","detail":"Olga mentioned in passing that North Wind was told 28 November.","at":["[00:38:40]"]}],)"
    R"("agenda_coverage":[{"topic":"Nightly builds","status":"moved to Thursday","at":"[00:33:02]"},{"topic":"After the release","status":"not discussed","at":"[00:46:30]"}],)"
    R"("concepts":[{"idea":"A channel of its own for nightly builds","pros":["Pilot teams get fixes sooner","Faults show before the release"],"cons":["Two update streams cost more to keep"],"at":"[00:34:26]"}],)"
    R"("roles":[{"who":"Olga","role":"keeps the frame","evidence":"Brought the talk back to the release date three times.","at":"[00:18:33]"},{"who":"Ilya","role":"tests for strength","evidence":"Named what will break before he agreed.","at":"[00:27:55]"}]})";

inline const QByteArray russianProtocol =
    "# Синк\n\n## Транскрипт\n\n> [00:00:20] Ольга: начнём.\n> [00:12:02] Анна: тексты экрана установки "
    "будут во вторник.\n"
    "> [00:12:31] Илья: если тексты не будут готовы во вторник, в пятницу мы не успеем собрать установку — "
    "там ещё день на проверку.\n> [00:13:20] Ольга: тогда назначаем вторник сроком.\n"
    "> [00:14:05] Анна: тексты точно принесу во вторник, не позже обеда.\n"
    "> [00:22:48] Илья: ну, может быть, попробую на этой неделе, если вдруг освободится стенд.\n"
    "> [00:38:40] Ольга: я им уже пообещала двадцать восьмое.\n> [00:46:50] Ольга: тогда на сегодня всё.\n";
inline const QByteArray englishProtocol =
    "# Sync\n\n## Транскрипт\n\n> [00:00:20] Olga: let us begin.\n> [00:12:02] Anna: the setup screen copy "
    "will be there on Tuesday.\n"
    "> [00:12:31] Ilya: if the copy is not ready on Tuesday, we cannot build the setup by Friday — checking "
    "takes a day.\n> [00:13:20] Olga: then Tuesday it is.\n"
    "> [00:14:05] Anna: you will have it on Tuesday, by lunch at the latest.\n"
    "> [00:22:48] Ilya: well, maybe I will try it this week if by chance the rig is free.\n"
    "> [00:38:40] Olga: I have already promised them the twenty-eighth.\n> [00:46:50] Olga: that is all for "
    "today.\n";

inline QByteArray analytics(bool inRussian, bool exact)
{
    const QByteArray names[] = {inRussian ? "Ольга" : "Olga", inRussian ? "Илья" : "Ilya",
                                inRussian ? "Анна" : "Anna"};
    return R"({"duration_sec":2832.4,"speech_share":0.83,"turns":164,"pauses":40,"long_pauses":7,"source":")" +
           QByteArray{exact ? "segments" : "starts"} + R"(","speakers":[{"name":")" + names[0] +
           R"(","seconds":1058,"share":0.45},{"name":")" + names[1] +
           R"(","seconds":729,"share":0.31},{"name":")" + names[2] + R"(","seconds":564,"share":0.24}]})";
}

} // namespace murmeli::sampleReport
