import QtQuick
import Murmeli.Glossary
import ".."

ViewCase {
    id: testCase

    name: "AssistantPane"
    width: 530 // beside the sidebar of the smallest window
    height: 520

    Component {
        id: pane
        AssistantPane {
            width: testCase.width
            height: testCase.height
            account: fixture.account
            model: fixture.library.assistant
            store: fixture.library.glossary
        }
    }

    function init() {
        fixture.reset();
        fixture.openLibrary();
        make(pane);
    }
    function cleanup() { closeLibrary(); }

    function test_whatFailedStandsBesideTheButtons() {
        verify(fixture.library.assistant.add("квен", "Qwen"));
        fixture.library.assistant.save(); // nobody is signed in
        const status = named("Войдите в аккаунт, чтобы сохранить словарь");
        const end = status.mapToItem(view, status.width, 0).x;
        verify(status.width > 100);
        const way = named("Войти в Murmeli");
        tryVerify(() => yOf(way) >= yOf(status) + status.height && yOf(way) + way.height <= view.height);
        verify(way.mapToItem(view, way.width, 0).x < named("Вернуть").mapToItem(view, 0, 0).x);
        verify(end < named("Вернуть").mapToItem(view, 0, 0).x, "the status ends at " + end);
    }
}
