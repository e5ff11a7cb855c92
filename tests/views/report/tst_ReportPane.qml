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
        compare(pane.loader.openStamp, "[00:00]");
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
        compare(pane.loader.openStamp, "[00:05]");
        keyClick(Qt.Key_Escape);
        compare(pane.loader.openStamp, "");
        compare(closings, 0);
        keyClick("k");
        keyClick(Qt.Key_Up);
        keyClick(Qt.Key_C, Qt.ControlModifier);
        compare(fixture.clipboard(), "Ждали доступа");
        keyClick(Qt.Key_Escape);
        compare(closings, 1);
    }

    function many(count) {
        const insights = [];
        for (let i = 1; i <= count; ++i)
            insights.push({ title: `Пункт ${i}`, at: [`[01:${String(i).padStart(2, "0")}]`, `[02:${String(i).padStart(2, "0")}]`] });
        return JSON.stringify({ insights });
    }
    function reached(key, count) {
        const names = [];
        for (let i = 0; i < count; ++i) {
            keyClick(key);
            const item = pane.Window.activeFocusItem;
            names.push(item.stamp ?? item.text ?? item.Accessible.name);
        }
        return names;
    }

    function test_theKeyboardGoesFromStampToStampInReadingOrder() {
        open(many(30));
        const stamps = [];
        for (let i = 1; i <= 30; ++i) stamps.push(...[1, 2].map(minute => `[0${minute}:${String(i).padStart(2, "0")}]`));
        compare(named("Закрыть").activeFocus, false);
        keyClick(Qt.Key_Tab);
        verify(named("Закрыть").activeFocus);
        compare(reached(Qt.Key_Tab, 60), stamps);
        compare(reached(Qt.Key_Backtab, 60), [...stamps.slice(0, -1).reverse(), named("Закрыть").text]);
        const list = all(item => item.positionViewAtIndex !== undefined)[0];
        verify(list.contentY <= 0 || chip(stamps[0]) !== undefined);
    }

    function test_anItemSteppedToLeadsToItsOwnStamps() {
        open(analysis);
        keyClick("j");
        keyClick("j");
        compare(reached(Qt.Key_Tab, 2), ["[00:05]", "[00:07]"]);
        keyClick(Qt.Key_Return);
        tryVerify(() => quotations().length === 1);
        compare(reached(Qt.Key_Tab, 2), ["Илья: два", "[00:09]"]);
        compare(reached(Qt.Key_Backtab, 1), ["Илья: два"]);
    }

    function test_theCopyButtonIsTheRowsOwn_data() {
        return [{ tag: "above", part: 0.15 }, { tag: "middle", part: 0.5 }, { tag: "below", part: 0.9 }];
    }
    function test_theCopyButtonIsTheRowsOwn(data) {
        open(JSON.stringify({ blockers: ["раз", "два", "три"], insights: [{ title: "Один", at: ["[00:05]"] }, { title: "Два" }] }));
        for (const text of ["раз", "два", "три", "Один", "Два"]) {
            const row = all(item => item.Accessible.role === Accessible.ListItem && item.spoken === text)[0];
            mouseMove(row, row.width - 40, row.height * data.part);
            tryVerify(() => named("Скопировать") !== null, 1000, text);
            const button = named("Скопировать");
            mouseClick(button, button.width / 2, Math.min(button.height / 2, row.height / 2));
            compare(fixture.clipboard().split("\n")[0], text);
        }
    }

    function test_whatIsNoItemIsNotCopied() {
        open(analysis);
        keyClick("j");
        keyClick(Qt.Key_C, Qt.ControlModifier);
        compare(fixture.clipboard(), "Ждали доступа");
        const note = all(item => item.text !== undefined && String(item.text).startsWith("Оценивается встреча"))[0];
        mouseClick(note, 5, 25);
        keyClick(Qt.Key_C, Qt.ControlModifier);
        compare(fixture.clipboard(), "Ждали доступа");
        pane.focusFirst();
        keyClick(Qt.Key_C, Qt.ControlModifier);
        compare(fixture.clipboard(), "Ждали доступа");
    }

    function test_aPressDoesNotMoveTheText() {
        open(JSON.stringify({ insights: [{ title: "Один", detail: "слово ".repeat(1500), at: ["[00:05]"] }, { title: "Два" }] }));
        const list = all(item => item.positionViewAtIndex !== undefined)[0];
        list.contentY = 500;
        mouseClick(list, 300, 300);
        compare(list.contentY, 500);
    }

    function test_theFirstLineHasNothingBeforeIt() {
        open(JSON.stringify({ insights: [{ title: "Один", at: ["[00:01]"] }] }));
        mouseClick(chip("[00:01]"));
        const quotation = () => all(item => item.unfolded === true)[0];
        tryVerify(() => quotation() !== undefined);
        tryCompare(quotation(), "extent", 1);
        const height = quotation().implicitHeight;
        mouseClick(quotation(), 200, 24);
        tryVerify(() => named("Илья: два"));
        tryVerify(() => quotation().implicitHeight - height === named("Илья: два").height + 3);
    }

    function test_aNewAnalysisBeginsFolded() {
        open(analysis);
        fixture.signIn();
        keyClick("j");
        mouseClick(chip("[00:05]"));
        tryVerify(() => quotations().length === 1);
        fixture.serviceAnswers(200, JSON.stringify({ insights: [{ title: "Новое", at: ["[00:09]"] }] }));
        named("Разобрать заново").clicked();
        tryVerify(() => named("Новое"));
        compare(pane.loader.openStamp, "");
        pane.focusFirst();
        keyClick(Qt.Key_Escape);
        compare(closings, 1);
    }
}
