import QtQuick
import QtTest
import Murmeli.Settings
import Murmeli.Ui

TestCase {
    id: testCase

    name: "SettingsView"
    when: windowShown
    visible: true
    width: 560
    height: 640

    property var view

    Component {
        id: settings
        SettingsView {
            width: testCase.width
            height: testCase.height
            model: fixture.settings
            windowed: true
        }
    }

    function init() {
        fixture.reset();
        view = createTemporaryObject(settings, testCase);
        verify(view);
    }

    // As the main window makes it: before it has its size.
    Component {
        id: tab
        Loader {
            anchors.fill: parent
            sourceComponent: SettingsView { model: fixture.settings }
        }
    }
    function test_permissionsInATab() {
        view.destroy();
        const loader = createTemporaryObject(tab, testCase);
        view = loader.item;
        const microphone = named("Разрешить: Микрофон");
        const screen = named("Разрешить: Запись экрана");
        tryVerify(() => screen.mapToItem(view, 0, 0).y >= microphone.mapToItem(view, 0, 0).y + 40);
        for (const button of [microphone, screen]) verify(button.mapToItem(view, 0, 0).x > view.width / 2);
    }

    function find(fits, item = view) {
        for (let i = 0; i < item.children.length; ++i) {
            const child = item.children[i];
            if (!child.visible) continue;
            if (fits(child)) return child;
            const found = find(fits, child);
            if (found) return found;
        }
        return null;
    }
    function named(name, role) {
        return find(item => item.Accessible.name === name && (role === undefined || item.Accessible.role === role));
    }
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

    function test_everySectionAndRowStands() {
        for (const heading of ["Настройки", "Основное", "Запись", "Протокол", "Доставка", "Хранение", "О программе", "Разрешения"])
            verify(named(heading, Accessible.Heading), heading);
        for (const title of ["Язык интерфейса", "Своя инструкция к протоколу", "Удалять аудио после записи", "Журнал работы"])
            verify(text(title), title);
        verify(!text("Хранить записи"));
    }

    function test_aToggleShowsAndHidesARow() {
        const toggle = named("Удалять аудио после записи", Accessible.CheckBox);
        toggle.forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Space);
        compare(fixture.preferences().delete_source_on_success, false);
        tryVerify(() => text("Хранить записи") !== null);
        const y = item => item.mapToItem(view, 0, 0).y;
        verify(y(text("Удалять аудио после записи")) < y(text("Хранить записи")));
        verify(y(text("Хранить записи")) < y(text("Папка записей")));
        keyClick(Qt.Key_Return);
        compare(fixture.preferences().delete_source_on_success, true);
        tryVerify(() => text("Хранить записи") === null);
    }

    function test_hiddenRowsAreOutOfTheKeyboardsReach() {
        compare(reached(named("Удалять аудио после записи", Accessible.CheckBox), 2),
                ["Удалять аудио после записи", "Открыть: Папка записей"]);
    }

    function test_theStepperStopsAtItsBounds() {
        const stepper = named("Предел длительности, 3 ч");
        stepper.forceActiveFocus(Qt.TabFocusReason);
        for (let i = 0; i < 5; ++i) keyClick(Qt.Key_Up);
        compare(fixture.preferences().max_record_hours, 6);
        compare(stepper.Accessible.name, "Предел длительности, 6 ч");
        verify(!named("Больше: Предел длительности").enabled);
        for (let i = 0; i < 7; ++i) keyClick(Qt.Key_Left);
        compare(fixture.preferences().max_record_hours, 1);
        verify(!named("Меньше: Предел длительности").enabled);
        mouseClick(named("Больше: Предел длительности"));
        compare(fixture.preferences().max_record_hours, 2);
    }

    function test_theChoiceByMouseAndKeyboard() {
        const choice = named("Формат протокола, Развёрнутый", Accessible.ComboBox);
        choice.forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Return);
        tryVerify(() => choice.popup.opened);
        keyClick(Qt.Key_Down);
        keyClick(Qt.Key_Return);
        tryVerify(() => !choice.popup.visible);
        compare(fixture.preferences().protocol_format, "short");
        compare(choice.Accessible.name, "Формат протокола, Короткий");
        keyClick(Qt.Key_Space);
        tryVerify(() => choice.popup.opened);
        keyClick(Qt.Key_Escape);
        tryVerify(() => !choice.popup.visible);
        compare(fixture.preferences().protocol_format, "short");
    }

    function test_theLanguageRelabelsAllOfIt() {
        const choice = named("Язык интерфейса, Русский", Accessible.ComboBox);
        choice.forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Down);
        compare(fixture.preferences().locale, "en");
        tryVerify(() => named("Settings", Accessible.Heading) !== null);
        verify(text("Recordings folder"));
        verify(named("Length limit, 3 h"));
        compare(choice.Accessible.name, "Interface language, English");
        verify(!find(item => typeof item.text === "string" && /[а-я]/.test(item.text) && item.text !== "Русский"));
    }

    function test_whatOthersChangeIsShown() {
        const format = named("Формат протокола, Развёрнутый", Accessible.ComboBox);
        fixture.prefer("protocol_format", "short");
        tryCompare(format.Accessible, "name", "Формат протокола, Короткий");
        fixture.prefer("auto_record", false);
        tryVerify(() => !named("Автозапись звонков", Accessible.CheckBox).Accessible.checked);
    }

    function test_theViewFollowsTheKeyboard() {
        const last = named("Открыть: Журнал работы");
        last.forceActiveFocus(Qt.TabFocusReason);
        tryVerify(() => {
            const y = last.mapToItem(view, 0, 0).y;
            return y >= 0 && y + last.height <= view.height;
        });
        named("Язык интерфейса, Русский", Accessible.ComboBox).forceActiveFocus(Qt.TabFocusReason);
        tryVerify(() => named("Язык интерфейса, Русский", Accessible.ComboBox).mapToItem(view, 0, 0).y >= 0);
    }
}
