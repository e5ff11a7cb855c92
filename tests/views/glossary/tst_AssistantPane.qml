import QtQuick
import QtTest
import Murmeli.Glossary

TestCase {
    id: testCase

    name: "AssistantPane"
    when: windowShown
    visible: true
    width: 530 // beside the sidebar of the smallest window
    height: 520

    property var view

    Component {
        id: maker
        AssistantPane {
            width: testCase.width
            height: testCase.height
            model: fixture.library.assistant
            store: fixture.library.glossary
        }
    }

    function init() {
        fixture.reset();
        fixture.openLibrary();
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

    function test_whatFailedStandsBesideTheButtons() {
        verify(fixture.library.assistant.add("квен", "Qwen"));
        fixture.library.assistant.save(); // nobody is signed in
        const status = named("Войдите в аккаунт, чтобы сохранить словарь");
        verify(status);
        const revert = named("Вернуть");
        verify(revert);
        const end = status.mapToItem(view, status.width, 0).x;
        verify(status.width > 100);
        verify(end < revert.mapToItem(view, 0, 0).x, "the status ends at " + end);
    }
}
