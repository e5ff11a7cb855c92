import QtQuick
import Murmeli.Settings
import Murmeli.Ui
import ".."

ViewCase {
    id: testCase

    name: "SettingsView"
    width: 560
    height: 640

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
        make(settings);
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
        tryVerify(() => yOf(screen) >= yOf(microphone) + 40);
        for (const button of [microphone, screen]) verify(button.mapToItem(view, 0, 0).x > view.width / 2);
    }

    function test_thePermissionsAreBroughtIntoSight() {
        view.windowed = true;
        fixture.settings.permissionsWanted();
        const screen = named("Разрешить: Запись экрана");
        tryVerify(() => yOf(screen) < view.height - screen.height);
        compare(view.Window.activeFocusItem, named("Разрешить: Микрофон"));
    }

    function test_aToggleShowsAndHidesARow() {
        const toggle = named("Удалять аудио после записи", Accessible.CheckBox);
        toggle.forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Space);
        compare(fixture.preferences().delete_source_on_success, false);
        tryVerify(() => text("Хранить записи") !== null);
        tryVerify(() => yOf(text("Удалять аудио после записи")) < yOf(text("Хранить записи")));
        tryVerify(() => yOf(text("Хранить записи")) < yOf(text("Папка записей")));
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

    function test_anOpenedListTakesTheKeyboard() {
        named("Язык интерфейса, Русский", Accessible.ComboBox).forceActiveFocus(Qt.TabFocusReason);
        const choice = named("Формат протокола, Развёрнутый", Accessible.ComboBox);
        choice.popup.open(); // as a press with the mouse does
        tryVerify(() => choice.popup.opened);
        keyClick(Qt.Key_Down);
        keyClick(Qt.Key_Return);
        compare(fixture.preferences().protocol_format, "short");
        compare(fixture.preferences().locale, undefined);
    }

    Component {
        id: refused
        Choice {
            options: [{ value: "a", text: "А" }, { value: "b", text: "Б" }]
            current: "a"
            name: "Выбор"
        }
    }
    function test_whatIsNotStoredIsNotShown() {
        const choice = createTemporaryObject(refused, testCase);
        choice.forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Down);
        compare(choice.displayText, "А");
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
        tryVerify(() => yOf(last) >= 0 && yOf(last) + last.height <= view.height);
        const first = named("Язык интерфейса, Русский", Accessible.ComboBox);
        first.forceActiveFocus(Qt.TabFocusReason);
        tryVerify(() => yOf(first) >= 0);
    }
}
