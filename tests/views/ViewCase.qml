import QtQuick
import QtTest

// A test of one view, and what there is to be found in it.
TestCase {
    property Item view

    when: windowShown
    visible: true

    function make(component) {
        view = createTemporaryObject(component, this);
        verify(view);
    }

    // Of a view of the main window: it goes before what it shows.
    function closeLibrary() {
        view.destroy();
        wait(0);
        fixture.closeLibrary();
    }

    // What fits under `item`: of what is in sight, or of everything.
    function all(fits, item = view, unseen = false) {
        let found = [];
        for (const child of Array.from(item.children)) {
            if (!unseen && (!child.visible || child.opacity === 0)) continue;
            if (fits(child)) found.push(child);
            found = found.concat(all(fits, child, unseen));
        }
        return found;
    }
    function find(fits, item = view, unseen = false) { return all(fits, item, unseen)[0] ?? null; }

    // What a reader of the screen is told of.
    function named(name, role) {
        return find(item => item.Accessible.name === name && !item.Accessible.ignored
                    && (role === undefined || item.Accessible.role === role));
    }
    function shows(name) { return named(name) !== null; }
    function text(text) { return find(item => item.text === text && item.Accessible.role === Accessible.StaticText); }

    // The names of what the keyboard reaches, in its order.
    function reached(from, steps) {
        from.forceActiveFocus(Qt.TabFocusReason);
        const names = [];
        for (let i = 0; i < steps; ++i) {
            names.push(view.Window.activeFocusItem.Accessible.name);
            keyClick(Qt.Key_Tab);
        }
        return names;
    }
    function yOf(item) { return item.mapToItem(view, 0, 0).y; }
}
