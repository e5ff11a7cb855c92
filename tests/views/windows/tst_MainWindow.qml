import QtQuick
import Murmeli.Windows
import ".."

ViewCase {
    name: "MainWindow"
    width: 980
    height: 680

    Loader {
        id: window
        anchors.fill: parent
        active: false
        sourceComponent: MainWindowView {
            model: fixture.library
            appState: fixture.appState
            record: fixture.record
            board: fixture.board
        }
    }

    function init() { fixture.reset(); }
    function cleanup() {
        window.active = false;
        fixture.closeLibrary();
    }

    // The first Space must not record people.
    function test_theKeyboardBeginsWhereOneReads_data() {
        return [
            { tag: "nothing there", meetings: 0, tab: 0, name: "Встречи" },
            { tag: "the list", meetings: 2, tab: 0, name: "Встречи" },
            { tag: "a protocol", meetings: 2, opened: true, tab: 0, name: "К списку встреч" },
            { tag: "another tab", meetings: 1, tab: 2, name: "Разделы, Настройки" }
        ];
    }
    function test_theKeyboardBeginsWhereOneReads(data) {
        for (let i = 0; i < data.meetings; ++i) fixture.writeMeeting("2026-03-04 1" + i + "-00-00", { title: "План" });
        fixture.openLibrary();
        fixture.library.tab = data.tab;
        if (data.opened) fixture.library.open("2026-03-04 10-00-00");
        window.active = true;
        tryVerify(() => window.Window.activeFocusItem && window.Window.activeFocusItem.Accessible.name === data.name);
        keyClick(Qt.Key_Space);
        compare(fixture.lastCommand(), {});
    }

    function test_aWindowThatWasLetGoComesBackAsItWas() {
        const paragraphs = Array.from({ length: 40 }, (_, i) => "Решение " + i);
        for (let i = 0; i < 40; ++i) {
            fixture.writeMeeting("2026-03-04 1" + Math.floor(i / 10) + "-0" + i % 10 + "-00", { title: "План", decisions: paragraphs });
        }
        fixture.openLibrary();
        window.active = true;
        const anew = () => {
            window.active = false;
            wait(0);
            window.active = true;
        };
        const list = name => find(item => item.positionViewAtIndex && item.Accessible.name === name && item.visible, window.item);
        list("Встречи").currentIndex = 1; // out of sight
        list("Встречи").positionViewAtIndex(20, ListView.Beginning);
        const meetings = list("Встречи").contentY;
        anew();
        tryVerify(() => Math.abs(list("Встречи").contentY - meetings) < 1);

        fixture.library.open("2026-03-04 10-00-00");
        tryVerify(() => list("План")?.count > 30);
        list("План").positionViewAtIndex(15, ListView.Beginning);
        const protocol = list("План").contentY - list("План").originY;
        anew();
        tryVerify(() => list("План")?.count > 30 && Math.abs(list("План").contentY - list("План").originY - protocol) < 30);

        fixture.library.tab = MainModel.Assistant;
        const field = () => find(item => item.name === "Слышится" && item.visible, window.item);
        tryVerify(() => field() !== null);
        field().text = "мурмели";
        anew();
        tryVerify(() => field()?.text === "мурмели");
    }

    function test_aRefusedRequestIsTold() {
        fixture.openLibrary();
        window.active = true;
        fixture.refuseCommands();
        fixture.record.toggle();
        const told = () => find(item => item.text === "Не удалось передать запрос службе", window.item) !== null;
        tryVerify(told);
        fixture.advance(12000);
        verify(!told());
    }
}
