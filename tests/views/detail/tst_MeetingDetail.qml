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

    function test_aTakenBackDraftLeavesTheField() {
        const field = named("Замечание к протоколу");
        field.text = "замени";
        compare(fixture.library.detail.draft, "замени");
        fixture.library.detail.draft = "";
        compare(field.text, "");
    }
}
