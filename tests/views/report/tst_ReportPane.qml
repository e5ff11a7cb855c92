import QtQuick
import Murmeli.Report
import ".."

ViewCase {
    id: testCase

    name: "ReportPane"
    width: 750
    height: 680

    readonly property string protocol: "## Транскрипт\n\n> [00:01] Анна: раз " + "слово ".repeat(40)
        + "\n> [00:05] Илья: два\n> [00:09] Ольга: три\n"
    readonly property string analysis: JSON.stringify({
        blockers: ["Ждали доступа"],
        insights: [{ title: "Первое", detail: "подробно", at: ["[00:05]", "[00:07]"] }, { title: "Второе <b>жирно</b>", at: ["[00:09]"] }],
        agenda_coverage: [{ topic: "Сроки", status: "пройдена", at: "[00:00]" }]
    })
    property int closings

    Component {
        id: pane
        ReportPane {
            width: 750
            height: 680
            account: fixture.account
            loader: fixture.library.detail.report
            meetingLine: "План"
            onBuildAsked: fixture.library.detail.buildReport()
            onClosed: testCase.closings += 1
        }
    }

    function open(stored) {
        fixture.writeMeeting("2026-03-04 10-15-00", { title: "План" }, protocol, stored);
        fixture.openLibrary();
        fixture.library.open("2026-03-04 10-15-00");
        fixture.library.detail.openReport();
        tryVerify(() => fixture.library.detail.report.asked);
        closings = 0;
        make(pane);
        view.focusFirst();
    }
    function openInsights(...insights) { open(JSON.stringify({ insights })); }
    function init() { fixture.reset(); }
    function cleanup() { closeLibrary(); }

    function list() { return find(item => item.positionViewAtIndex !== undefined); }
    function chip(stamp) { return find(item => item.stamp === stamp); }
    function quotation() { return find(item => item.unfolded === true); }
    function quoted() { return all(item => item.unfolded === true).map(item => item.shown[0]).join(); }
    function copied() {
        keyClick(Qt.Key_C, Qt.ControlModifier);
        return fixture.clipboard();
    }

    function test_untilThereIsAnAnalysis() {
        open("");
        const invitation = "Разбора ещё нет.\nНажмите «Разобрать» — агент пройдёт по расшифровке";
        verify(shows(invitation));
        fixture.signIn();
        fixture.serviceAnswers(0, "");
        named("Разобрать").clicked();
        tryVerify(() => shows("Разбираю встречу — это занимает до двух минут"));
        verify(!named("Разобрать").enabled);
        verify(!shows(invitation));
    }

    function test_sectionsWithoutContentAreLeftOut() {
        open(analysis);
        const keys = ["ИЗМЕРИМОЕ", "ЧТО МЕШАЛО", "ГЛАВНОЕ — ЧТО ЛЕГКО ПРОПУСТИТЬ", "ОБЯЗАТЕЛЬСТВА", "РАЗНОГЛАСИЯ",
                      "ПОКРЫТИЕ ПОВЕСТКИ", "ЧИСЛА ВСТРЕЧИ", "ОБСУЖДАВШИЕСЯ ИДЕИ", "РОЛИ НА ВСТРЕЧЕ", "ДИНАМИКА ВСТРЕЧИ"];
        compare(keys.filter(shows), [keys[0], keys[1], keys[2], keys[5]]);
        verify(shows("Пройдено по повестке: 1 из 1"));
        verify(shows("Второе <b>жирно</b>"), "markup is shown as text");
    }

    function test_oneStampIsOpenAtATime() {
        open(analysis);
        mouseClick(chip("[00:05]"));
        tryVerify(() => quoted() === "Илья: два");
        mouseClick(chip("[00:09]"));
        tryVerify(() => quoted() === "Ольга: три");
        mouseClick(chip("[00:09]"));
        tryVerify(() => quotation() === null);
        mouseClick(chip("[00:00]"));
        compare(view.loader.openStamp, "[00:00]");
        verify(!quotation(), "nothing was said before the first line");
    }

    function test_aQuotationShowsItsNeighbours() {
        open(analysis);
        mouseClick(chip("[00:05]"));
        tryVerify(() => shows("Илья: два"));
        verify(!shows("Ольга: три"));
        tryCompare(quotation(), "extent", 1);
        mouseClick(quotation(), 200, 24);
        tryVerify(() => shows("Ольга: три"));
        mouseClick(chip("[00:09]"));
        mouseClick(chip("[00:05]"));
        tryVerify(() => quoted() === "Илья: два");
        tryVerify(() => !shows("Ольга: три"));
    }

    function test_aQuotationOpensInSight() {
        openInsights(...Array.from({ length: 20 }, (_, i) => ({ title: "мысль " + i, at: [i < 19 ? "[00:01]" : "[00:05]"] })));
        list().positionViewAtEnd();
        mouseClick(chip("[00:05]"));
        tryVerify(() => quoted() === "Илья: два");
        tryVerify(() => yOf(quotation()) + quotation().height <= view.height);
    }

    function test_theFirstLineHasNothingBeforeIt() {
        openInsights({ title: "Один", at: ["[00:01]"] });
        mouseClick(chip("[00:01]"));
        tryVerify(() => quotation() !== null);
        tryCompare(quotation(), "extent", 1);
        const height = quotation().implicitHeight;
        mouseClick(quotation(), 200, 24);
        tryVerify(() => shows("Илья: два"));
        tryVerify(() => quotation().implicitHeight - height === named("Илья: два").height + 3);
    }

    function test_keys() {
        open(analysis);
        keyClick("j");
        keyClick(Qt.Key_Down);
        compare(copied(), "Первое\nподробно\n[00:05] [00:07]");
        keyClick(Qt.Key_Return);
        compare(view.loader.openStamp, "[00:05]");
        keyClick(Qt.Key_Escape);
        compare(view.loader.openStamp, "");
        compare(closings, 0);
        keyClick("k");
        keyClick(Qt.Key_Up); // no further
        compare(copied(), "Ждали доступа");
        for (let i = 0; i < 5; ++i) keyClick("j");
        compare(copied(), "Сроки · пройдена\n[00:00]");
        keyClick(Qt.Key_Escape);
        compare(closings, 1);
    }

    function test_whatIsNoItemIsNotCopied() {
        open(analysis);
        keyClick("j");
        compare(copied(), "Ждали доступа");
        mouseClick(find(item => String(item.text).startsWith("Оценивается встреча")), 5, 25);
        compare(copied(), "Ждали доступа");
        view.focusFirst();
        compare(copied(), "Ждали доступа");
    }

    function stepped(key, count) {
        const names = [];
        for (let i = 0; i < count; ++i) {
            keyClick(key);
            const item = view.Window.activeFocusItem;
            names.push(item.stamp ?? item.text ?? item.Accessible.name);
        }
        return names;
    }

    function test_theKeyboardGoesFromStampToStampInReadingOrder() {
        const insights = [];
        for (let i = 10; i < 40; ++i) insights.push({ title: `Пункт ${i}`, at: [`[01:${i}]`, `[02:${i}]`] });
        openInsights(...insights);
        const stamps = [].concat(...insights.map(insight => insight.at));
        verify(!named("Закрыть").activeFocus);
        keyClick(Qt.Key_Tab);
        verify(named("Закрыть").activeFocus);
        compare(stepped(Qt.Key_Tab, 60), stamps);
        compare(stepped(Qt.Key_Backtab, 60), [...stamps.slice(0, -1).reverse(), named("Закрыть").text]);
    }

    function test_anItemSteppedToLeadsToItsOwnStamps() {
        open(analysis);
        keyClick("j");
        keyClick("j");
        compare(stepped(Qt.Key_Tab, 2), ["[00:05]", "[00:07]"]);
        keyClick(Qt.Key_Return);
        tryVerify(() => quotation() !== null);
        compare(stepped(Qt.Key_Tab, 2), ["Илья: два", "[00:09]"]);
        compare(stepped(Qt.Key_Backtab, 1), ["Илья: два"]);
    }

    function test_theCopyButtonIsTheRowsOwn() {
        open(JSON.stringify({ blockers: ["раз", "два", "три"], insights: [{ title: "Один", at: ["[00:05]"] }, { title: "Два" }] }));
        for (const part of [0.15, 0.5, 0.9]) {
            for (const text of ["раз", "два", "три", "Один", "Два"]) {
                const row = find(item => item.Accessible.role === Accessible.ListItem && item.spoken === text);
                mouseMove(row, row.width - 40, row.height * part);
                tryVerify(() => shows("Скопировать"), 1000, text);
                const button = named("Скопировать");
                mouseClick(button, button.width / 2, Math.min(button.height / 2, row.height / 2));
                compare(fixture.clipboard().split("\n")[0], text);
            }
        }
    }

    function test_aPressDoesNotMoveTheText() {
        openInsights({ title: "Один", detail: "слово ".repeat(1500), at: ["[00:05]"] }, { title: "Два" });
        list().contentY = 500;
        mouseClick(list(), 300, 300);
        compare(list().contentY, 500);
    }

    function test_aNewAnalysisBeginsFoldedAndAFailureLeavesIt() {
        open(analysis);
        fixture.signIn();
        keyClick("j");
        mouseClick(chip("[00:05]"));
        tryVerify(() => quotation() !== null);
        fixture.serviceAnswers(200, JSON.stringify({ insights: [{ title: "Новое", at: ["[00:09]"] }] }));
        named("Разобрать заново").clicked();
        tryVerify(() => shows("Новое"));
        compare(view.loader.openStamp, "");
        fixture.serviceAnswers(500, "");
        named("Разобрать заново").clicked();
        tryVerify(() => shows("Сервер не ответил — попробуйте ещё раз"));
        verify(shows("Новое"));
        view.focusFirst();
        keyClick(Qt.Key_Escape);
        compare(closings, 1);
    }
}
