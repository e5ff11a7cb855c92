import QtQuick
import QtTest
import Murmeli.Report

TestCase {
    id: testCase

    name: "ReportPane"
    when: windowShown
    visible: true
    width: 750
    height: 680

    readonly property string protocol: "## Транскрипт\n\n> [00:01] Анна: раз " + "слово ".repeat(40)
        + "\n> [00:05] Илья: два\n> [00:09] Ольга: три\n"
    readonly property string analysis: JSON.stringify({
        blockers: ["Ждали доступа"],
        insights: [{ title: "Первое", detail: "подробно", at: ["[00:05]", "[00:07]"] }, { title: "Второе <b>жирно</b>", at: ["[00:09]"] }],
        agenda_coverage: [{ topic: "Сроки", status: "пройдена", at: "[00:00]" }]
    })
    property var pane

    Component {
        id: view
        ReportPane {
            width: 750
            height: 680
            loader: fixture.library.detail.report
            meetingLine: "План"
            onBuildAsked: fixture.library.detail.buildReport()
            onClosed: testCase.closings += 1
        }
    }
    property int closings

    function open(stored) {
        fixture.writeMeeting("2026-03-04 10-15-00", { title: "План" }, protocol, stored);
        fixture.openLibrary();
        fixture.library.open("2026-03-04 10-15-00");
        fixture.library.detail.openReport();
        tryVerify(() => fixture.library.detail.report.asked);
        closings = 0;
        pane = createTemporaryObject(view, testCase);
        verify(pane);
        pane.focusFirst();
    }
    function init() { fixture.reset(); }
    function cleanup() {
        pane.destroy();
        pane = null;
        wait(0);
        fixture.closeLibrary();
    }

    function all(fits, item = pane) {
        let found = [];
        for (let i = 0; i < item.children.length; ++i) {
            const child = item.children[i];
            if (!child.visible || child.opacity === 0) continue;
            if (fits(child)) found.push(child);
            found = found.concat(all(fits, child));
        }
        return found;
    }
    function named(name) { return all(item => item.Accessible.name === name && !item.Accessible.ignored)[0] ?? null; }
    function chip(stamp) { return all(item => item.stamp === stamp)[0]; }
    function quotations() { return all(item => item.unfolded === true).map(item => item.shown[0]); }

    function test_withoutAnAnalysisItSaysHowToGetOne() {
        open("");
        verify(named("Разбора ещё нет.\nНажмите «Разобрать» — агент пройдёт по расшифровке"));
        verify(named("Разобрать"));
        fixture.signIn();
        fixture.serviceAnswers(0, "");
        named("Разобрать").clicked();
        tryVerify(() => named("Разбираю встречу — это занимает до двух минут"));
        verify(!named("Разобрать").enabled);
        verify(!named("Разбора ещё нет.\nНажмите «Разобрать» — агент пройдёт по расшифровке"));
    }

    function test_anAnswerIsShownAndAFailureLeavesIt() {
        open("");
        fixture.signIn();
        fixture.serviceAnswers(200, analysis);
        named("Разобрать").clicked();
        tryVerify(() => named("ПОКРЫТИЕ ПОВЕСТКИ"));
        fixture.serviceAnswers(500, "");
        named("Разобрать заново").clicked();
        tryVerify(() => named("Сервер не ответил — попробуйте ещё раз"));
        verify(named("ПОКРЫТИЕ ПОВЕСТКИ"));
    }

    function test_sectionsWithoutContentAreLeftOut() {
        open(analysis);
        const keys = ["ИЗМЕРИМОЕ", "ЧТО МЕШАЛО", "ГЛАВНОЕ — ЧТО ЛЕГКО ПРОПУСТИТЬ", "ОБЯЗАТЕЛЬСТВА", "РАЗНОГЛАСИЯ",
                      "ПОКРЫТИЕ ПОВЕСТКИ", "ЧИСЛА ВСТРЕЧИ", "ОБСУЖДАВШИЕСЯ ИДЕИ", "РОЛИ НА ВСТРЕЧЕ", "ДИНАМИКА ВСТРЕЧИ"];
        compare(keys.filter(key => named(key)), [keys[0], keys[1], keys[2], keys[5]]);
        verify(named("Пройдено по повестке: 1 из 1"));
        verify(named("Второе <b>жирно</b>"), "markup is shown as text");
    }

    function test_oneStampIsOpenAtATime() {
        open(analysis);
        mouseClick(chip("[00:05]"));
        tryVerify(() => quotations().join() === "Илья: два");
        mouseClick(chip("[00:09]"));
        tryVerify(() => quotations().join() === "Ольга: три");
        mouseClick(chip("[00:07]"));
        tryVerify(() => quotations().join() === "Илья: два", 5000, "what was being said in between");
        mouseClick(chip("[00:07]"));
        tryVerify(() => quotations().length === 0);
        mouseClick(chip("[00:00]"));
        compare(pane.openStamp, "[00:00]");
        verify(!all(item => item.unfolded === true).length, "nothing was said before the first line");
    }

    function test_aQuotationShowsItsNeighbours() {
        open(analysis);
        mouseClick(chip("[00:05]"));
        tryVerify(() => named("Илья: два"));
        verify(!named("Ольга: три"));
        const quotation = all(item => item.unfolded === true)[0];
        tryCompare(quotation, "extent", 1);
        mouseClick(quotation, 200, 24);
        tryVerify(() => named("Ольга: три"));
        mouseClick(chip("[00:09]"));
        mouseClick(chip("[00:05]"));
        tryVerify(() => quotations().join() === "Илья: два");
        tryVerify(() => !named("Ольга: три"));
    }

    function test_keys() {
        open(analysis);
        keyClick("j");
        keyClick(Qt.Key_Down);
        keyClick(Qt.Key_C, Qt.ControlModifier);
        compare(fixture.clipboard(), "Первое\nподробно\n[00:05] [00:07]");
        keyClick(Qt.Key_Return);
        compare(pane.openStamp, "[00:05]");
        keyClick(Qt.Key_Escape);
        compare(pane.openStamp, "");
        compare(closings, 0);
        keyClick("k");
        keyClick(Qt.Key_Up);
        keyClick(Qt.Key_C, Qt.ControlModifier);
        compare(fixture.clipboard(), "Ждали доступа");
        keyClick(Qt.Key_Escape);
        compare(closings, 1);
    }
}
