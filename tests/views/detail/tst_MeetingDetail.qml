import QtQuick
import Murmeli.Detail
import ".."

ViewCase {
    id: testCase

    name: "MeetingDetail"
    width: 530 // beside the sidebar of the smallest window
    height: 520

    Component {
        id: meeting
        MeetingDetail {
            width: testCase.width
            height: testCase.height
            detail: fixture.library.detail
        }
    }

    function init() {
        fixture.reset();
        fixture.writeMeeting("2026-03-04 10-15-00", { title: "План", decisions: ["раз"] }, "# План");
        fixture.openLibrary();
        fixture.library.open("2026-03-04 10-15-00");
        tryVerify(() => fixture.library.detail.loaded);
        make(meeting);
    }
    function cleanup() { closeLibrary(); }

    function test_everyActionIsInSight() {
        for (const name of ["Разбор встречи", "Сохранить PDF", "Поделиться", "Показать в папке"]) {
            const button = named(name);
            const end = button.mapToItem(view, button.width, 0).x;
            verify(end <= view.width, name + " ends at " + end);
        }
    }

    function test_theKeyboardWalksThroughTheItems() {
        fixture.writeMeeting("2026-03-04 10-15-00", { title: "План", tldr: "Итог", decisions: Array.from({ length: 40 }, (_, i) => "пункт " + i) }, "# План");
        fixture.library.store.reload();
        tryVerify(() => shows("пункт 3"));
        const list = named("План", Accessible.List);
        list.forceActiveFocus(Qt.TabFocusReason);
        compare(list.currentIndex, 0);
        keyClick(Qt.Key_Down);
        compare(list.currentIndex, 1);
        keyClick(Qt.Key_C, Qt.ControlModifier);
        compare(fixture.clipboard(), "пункт 1");
        keyClick(Qt.Key_Down);
        keyClick(Qt.Key_Menu);
        tryVerify(() => !list.activeFocus);
        keyClick(Qt.Key_Return); // the first that applies: nothing is selected
        tryVerify(() => list.activeFocus);
        compare(fixture.clipboard(), "пункт 2");
        keyClick(Qt.Key_End);
        verify(list.atYEnd);
        keyClick(Qt.Key_PageUp);
        verify(!list.atYEnd);
        keyClick(Qt.Key_Home);
        verify(list.atYBeginning);
    }

    function test_aTakenBackDraftLeavesTheField() {
        const field = named("Замечание к протоколу");
        field.text = "замени";
        compare(fixture.library.detail.draft, "замени");
        fixture.library.detail.draft = "";
        compare(field.text, "");
    }
}
