import QtQuick
import Murmeli.Search
import ".."

ViewCase {
    id: testCase

    name: "MeetingsPane"
    width: 750
    height: 680

    property var openings

    Component {
        id: pane
        MeetingsPane {
            width: 750
            height: 680
            store: fixture.library.store
            search: fixture.library.search
            onOpened: id => testCase.openings.push(id)
        }
    }

    function open(count) {
        for (let i = 0; i < count; ++i) {
            const two = number => String(number).padStart(2, "0");
            fixture.writeMeeting("2026-03-" + two(1 + Math.floor(i / 20)) + " 10-" + two(i % 20) + "-00",
                                 { title: "Встреча " + i, tldr: i === 7 ? "про отпуск" : "" });
        }
        fixture.openLibrary();
        openings = [];
        make(pane);
    }
    function init() { fixture.reset(); }
    function cleanup() {
        view.destroy();
        wait(0);
        fixture.closeLibrary();
    }

    function list() { return find(item => item.cacheBuffer !== undefined && item.model !== undefined); }
    function rows() { return all(item => item.meetingId !== undefined, view, true); }
    function says(words) { return find(item => item.text === words) !== null; }

    function test_nothingAndNothingFound() {
        open(0);
        tryVerify(() => says("Встреч пока нет — первая появится после звонка"));
        fixture.writeMeeting("2026-04-01 09-00-00", { title: "Новая" });
        fixture.library.store.reload();
        tryVerify(() => says("Новая"));
        fixture.library.search.query = "x";
        tryVerify(() => says("Ничего не нашлось"));
        fixture.library.search.query = "";
    }

    function test_searchAndOpenByKeyboard() {
        open(30);
        view.find();
        for (const letter of "otpusk") keyClick(letter);
        compare(fixture.library.store.list.rowCount(), 0);
        fixture.library.search.query = "ОТПУСК";
        compare(fixture.library.store.list.rowCount(), 1);
        keyClick(Qt.Key_Down);
        keyClick(Qt.Key_Return);
        compare(openings, ["2026-03-01 10-07-00"]);
    }

    function test_scrollingReusesRows() {
        open(400);
        const shown = list();
        const scroll = () => { for (let y = 0; y < 8000; y += 40) shown.contentY = shown.originY + y; };
        scroll(); // fills the pool
        const warm = rows();
        scroll();
        compare(rows().filter(row => !warm.includes(row)).length, 0, "no row was made");
        verify(warm.length < 60, "of " + warm.length);
    }

    function test_theSelectionStaysWhereItWas() {
        open(60);
        view.focusList("2026-03-02 10-05-00");
        const shown = list();
        shown.positionViewAtIndex(shown.currentIndex, ListView.Center);
        const before = yOf(shown.currentItem);
        fixture.writeMeeting("2026-04-01 09-00-00", { title: "Новая" });
        fixture.library.store.reload();
        tryVerify(() => fixture.library.store.list.rowCount() === 61);
        compare(shown.currentItem.meetingId, "2026-03-02 10-05-00");
        tryVerify(() => Math.abs(yOf(shown.currentItem) - before) < 1);
    }
}
