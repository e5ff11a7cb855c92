import QtQuick
import QtTest
import Murmeli.Meetings

TestCase {
    id: testCase

    name: "MeetingsPane"
    when: windowShown
    visible: true
    width: 750
    height: 680

    property var pane
    property var openings

    Component {
        id: view
        MeetingsPane {
            width: 750
            height: 680
            store: fixture.library.store
            onOpened: id => testCase.openings.push(id)
        }
    }

    function write(count) {
        for (let i = 0; i < count; ++i) {
            const two = number => String(number).padStart(2, "0");
            fixture.writeMeeting("2026-03-" + two(1 + Math.floor(i / 20)) + " 10-" + two(i % 20) + "-00",
                                 { title: "Встреча " + i, tldr: i === 7 ? "про отпуск" : "" });
        }
    }
    function open(count) {
        write(count);
        fixture.openLibrary();
        openings = [];
        pane = createTemporaryObject(view, testCase);
        verify(pane);
    }
    function init() { fixture.reset(); }
    function cleanup() {
        pane.destroy();
        wait(0);
        fixture.closeLibrary();
    }

    function all(fits, item = pane) {
        let found = [];
        for (let i = 0; i < item.children.length; ++i) {
            const child = item.children[i];
            if (fits(child)) found.push(child);
            found = found.concat(all(fits, child));
        }
        return found;
    }
    function list() { return all(item => item.cacheBuffer !== undefined && item.model !== undefined)[0]; }
    function rows() { return all(item => item.meetingId !== undefined); }
    function texts() { return all(item => item.visible && item.text !== undefined).map(item => item.text); }

    function test_nothingAndNothingFound() {
        open(0);
        tryVerify(() => texts().includes("Встреч пока нет — первая появится после звонка"));
        fixture.writeMeeting("2026-04-01 09-00-00", { title: "Новая" });
        fixture.library.store.reload();
        tryVerify(() => texts().includes("Новая"));
        fixture.library.store.list.query = "x";
        tryVerify(() => texts().includes("Ничего не нашлось"));
    }

    function test_searchAndOpenByKeyboard() {
        open(30);
        pane.search();
        for (const letter of "otpusk") keyClick(letter);
        compare(fixture.library.store.list.rowCount(), 0);
        fixture.library.store.list.query = "ОТПУСК";
        compare(fixture.library.store.list.rowCount(), 1);
        keyClick(Qt.Key_Down);
        keyClick(Qt.Key_Return);
        compare(openings, ["2026-03-01 10-07-00"]);
    }

    function test_scrollingReusesRows() {
        open(400);
        const view = list();
        const scroll = () => { for (let y = 0; y < 8000; y += 40) view.contentY = view.originY + y; };
        scroll(); // fills the pool
        const warm = rows();
        scroll();
        const later = rows();
        compare(later.filter(row => !warm.includes(row)).length, 0, "no row was made");
        verify(warm.length < 60, "of " + warm.length);
    }

    function test_theSelectionStaysWhereItWas() {
        open(60);
        pane.focusList("2026-03-02 10-05-00");
        const view = list();
        view.positionViewAtIndex(view.currentIndex, ListView.Center);
        const before = view.currentItem.mapToItem(pane, 0, 0).y;
        fixture.writeMeeting("2026-04-01 09-00-00", { title: "Новая" });
        fixture.library.store.reload();
        tryCompare(fixture.library.store.list, "empty", false);
        tryVerify(() => fixture.library.store.list.rowCount() === 61);
        compare(view.currentItem.meetingId, "2026-03-02 10-05-00");
        tryVerify(() => Math.abs(view.currentItem.mapToItem(pane, 0, 0).y - before) < 1);
    }
}
