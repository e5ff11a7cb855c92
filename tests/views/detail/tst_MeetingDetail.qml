import QtQuick
import QtTest
import Murmeli.Detail

TestCase {
    id: testCase

    name: "MeetingDetail"
    when: windowShown
    visible: true
    width: 530 // beside the sidebar of the smallest window
    height: 520

    property var view

    Component {
        id: maker
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
        view = createTemporaryObject(maker, testCase);
        verify(view);
    }
    function cleanup() {
        view.destroy();
        view = null;
        wait(0);
        fixture.closeLibrary();
    }

    function named(name, item = view) {
        for (let i = 0; i < item.children.length; ++i) {
            const child = item.children[i];
            if (!child.visible) continue;
            const found = child.Accessible.name === name && !child.Accessible.ignored ? child : named(name, child);
            if (found) return found;
        }
        return null;
    }

    function test_everyActionIsInSight() {
        for (const name of ["Разбор встречи", "Сохранить PDF", "Поделиться", "Показать в папке"]) {
            const button = named(name);
            verify(button, name);
            const corner = button.mapToItem(view, button.width, button.height);
            verify(corner.x <= view.width, name + " ends at " + corner.x);
        }
    }

    function test_aTakenBackDraftLeavesTheField() {
        const field = named("Замечание к протоколу");
        verify(field);
        field.text = "замени";
        compare(fixture.library.detail.draft, "замени");
        fixture.library.detail.draft = "";
        compare(field.text, "");
    }
}
