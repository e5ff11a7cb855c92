import QtQuick
import Murmeli.Panel
import Murmeli.Ui
import ".."

ViewCase {
    id: testCase

    name: "PanelView"
    width: 460
    height: 900

    Component {
        id: panel
        PanelView {
            appState: fixture.appState
            record: fixture.record
            panel: fixture.panel
            account: fixture.account
            updater: fixture.updater
            board: fixture.board
            marks: fixture.marks
            actions: WindowActions { }
            open: true
        }
    }

    function init() {
        fixture.reset();
        make(panel);
        tryVerify(() => shows("Telegram")); // it fades in
    }

    function test_states_data() {
        const idle = '{"status":"idle","telegram_connected":true}';
        const recording = '{"status":"recording","since":1731690000,"jobs":2}';
        return [
            { tag: "idle", state: idle, shown: ["Готов к записи", "Начни звонок — запишу автоматически", "Начать запись", "Подключено"], hidden: ["Подключить"] },
            { tag: "recording", state: recording, shown: ["Идёт запись", "Остановить запись", "Разбирается встреч: 2", "Подключить"], hidden: ["Слушаю встречу…", "Подключено"] },
            { tag: "start unknown", state: '{"status":"recording"}', shown: ["Слушаю встречу…"], hidden: [] },
            { tag: "processing", state: '{"status":"processing","jobs":2}', shown: ["Готовлю протокол", "Расшифровка и разбор…"], hidden: ["Разбирается встреч: 2"] },
            { tag: "detail with markup", state: '{"detail":"<b>не</b> разметка"}', shown: ["<b>не</b> разметка"], hidden: [] },
            { tag: "signed out", state: "{}", shown: ["Войти в Murmeli"], hidden: ["аккаунт Murmeli", "Выйти из аккаунта Murmeli"] },
            { tag: "signed out with a chat", state: idle, shown: ["Войти в Murmeli", "Телеграм: подключён"], hidden: ["аккаунт Murmeli"] },
            { tag: "signed in", state: idle, signedIn: true, shown: ["аккаунт Murmeli", "Выйти из аккаунта Murmeli", "Телеграм: подключён"], hidden: ["Войти в Murmeli"] },
            { tag: "signed in without Telegram", state: "{}", signedIn: true, shown: ["аккаунт Murmeli"], hidden: ["Телеграм: подключён"] },
            { tag: "update", state: recording, update: "0.9.0", shown: ["Доступна новая версия (0.9.0)", "Обновить"], hidden: [] }
        ];
    }
    function test_states(data) {
        if (data.signedIn) fixture.signIn();
        fixture.serviceWrites(data.state);
        if (data.update) fixture.publishRelease(data.update); // a running recording keeps it from being installed
        for (const name of data.shown) tryVerify(() => shows(name), 2000, name);
        for (const name of data.hidden) tryVerify(() => !shows(name), 2000, name);
    }

    function test_orbShowsTheSymbolOfTheStatus() {
        const orb = named("Начать запись");
        const symbol = find(item => item.ink !== undefined && item.name === "mic.fill", orb);
        verify(symbol);
        for (const [status, name] of [["recording", "waveform"], ["processing", "gearshape.2.fill"], ["idle", "mic.fill"]]) {
            fixture.serviceWrites(`{"status":"${status}"}`);
            tryCompare(symbol, "name", name);
            tryCompare(symbol, "opacity", 1);
        }
    }

    function test_clickWhileIdleAsksForAStart() {
        const orb = named("Начать запись");
        mouseClick(orb);
        compare(fixture.lastCommand().action, "start");
        verify(fixture.record.waiting);
        tryVerify(() => shows("Запускаем запись…"));
        fixture.serviceWrites('{"status":"recording"}');
        verify(!fixture.record.waiting);
        mouseClick(named("Остановить запись"));
        compare(fixture.lastCommand().action, "stop");
    }

    function test_orbByKeyboard_data() {
        return [{ tag: "space", key: Qt.Key_Space }, { tag: "return", key: Qt.Key_Return }, { tag: "enter", key: Qt.Key_Enter }];
    }
    function test_orbByKeyboard(data) {
        view.focusFirst();
        verify(named("Начать запись").activeFocus);
        keyClick(data.key);
        compare(fixture.lastCommand().action, "start");
    }

    function test_hoverInvites() {
        const orb = named("Начать запись");
        mouseMove(orb, orb.width / 2, orb.height / 2);
        tryVerify(() => shows("Нажать, чтобы записать"));
        mouseMove(testCase, 1, 1);
        tryVerify(() => shows("Начни звонок — запишу автоматически"));
    }

    function test_formatByMouseAndKeyboard() {
        mouseClick(named("Короткий"));
        compare(fixture.preferences().protocol_format, "short");
        verify(named("Короткий").Accessible.checked);
        verify(!named("Развёрнутый").Accessible.checked);
        verify(shows("Короткий: только итоги, открытые вопросы и поручения"));
        const group = find(item => item.Accessible.role === Accessible.Grouping);
        group.forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Left);
        compare(fixture.preferences().protocol_format, "full");
        keyClick(Qt.Key_Left); // no further
        compare(fixture.preferences().protocol_format, "full");
        keyClick(Qt.Key_Right);
        compare(fixture.preferences().protocol_format, "short");
    }

    function test_formatFollowsAChangeElsewhere() {
        fixture.prefer("protocol_format", "short");
        tryVerify(() => named("Короткий").Accessible.checked);
        fixture.prefer("auto_record", false);
        tryVerify(() => !named("Авто-запись при активном микрофоне").Accessible.checked);
    }

    function test_autoRecord() {
        const box = named("Авто-запись при активном микрофоне");
        verify(box.Accessible.checked);
        mouseClick(box);
        compare(fixture.preferences().auto_record, false);
        box.forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Space);
        compare(fixture.preferences().auto_record, true);
        compare(box.Accessible.description.indexOf("Если микрофон занят"), 0);
    }

    function test_authorisationBanner() {
        const before = view.implicitHeight;
        fixture.raiseFlag('{"body":"Войди"}');
        tryVerify(() => shows("Не найден пользователь — авторизуйтесь. Войди"));
        tryVerify(() => view.implicitHeight > before + 60);
        mouseClick(named("Закрыть уведомление"));
        fixture.advance(0);
        verify(!fixture.flagExists());
        tryVerify(() => view.implicitHeight === before);
        verify(!shows("Закрыть уведомление"));
    }

    function test_updateBusyCannotBePressedTwice() {
        fixture.serviceWrites('{"status":"recording"}');
        fixture.publishRelease("0.9.0");
        let asked = 0;
        const count = () => ++asked;
        fixture.panel.updateRequested.connect(count);
        tryVerify(() => shows("Обновить"));
        const banner = named("Доступна новая версия (0.9.0)");
        tryCompare(banner, "unfolded", 1);
        mouseClick(named("Обновить"));
        compare(asked, 1);
        fixture.updater.runUpdate();
        const button = named("Устанавливаем…");
        mouseClick(button);
        compare(asked, 1);
        fixture.advance(90000);
        tryVerify(() => !shows("Устанавливаем…"));
        fixture.panel.updateRequested.disconnect(count);
    }

    function test_languageChangesWhileOpen() {
        verify(shows("Готов к записи"));
        fixture.prefer("locale", "en");
        tryVerify(() => shows("Ready to record"));
        verify(shows("Record when the microphone is in use"));
        verify(!shows("Готов к записи"));
    }

    function test_tabOrderIsReadingOrder() {
        fixture.signIn();
        fixture.raiseFlag("{}");
        tryVerify(() => shows("Закрыть уведомление"));
        const expected = ["Закрыть уведомление", "Начать запись", "Формат протокола, Развёрнутый", "Авто-запись при активном микрофоне",
            "Подключить", "Выйти из аккаунта Murmeli", "Протоколы", "Открыть окно"];
        compare(reached(named("Закрыть уведомление"), expected.length), expected);
    }

    // The lowest panel that a screen of 600 points leaves room for, with everything up.
    function test_lowScreens() {
        fixture.raiseFlag('{"title":"' + "Т".repeat(60000) + '","body":"' + "слово ".repeat(30000) + '"}');
        fixture.publishRelease("0.9.0");
        fixture.account.login();
        fixture.greet();
        tryVerify(() => shows("Закрыть уведомление") && shows("Отменить вход"));
        view.height = view.topMargin + 560 + view.bottomMargin;
        verify(view.contentSize.height < 1200);
        const inSight = name => {
            const item = named(name);
            return yOf(item) >= view.topMargin && yOf(item) + item.height <= view.height - view.bottomMargin;
        };
        view.focusFirst();
        tryVerify(() => inSight("Начать запись"));
        for (const name of ["Протоколы", "Выйти из Murmeli (снова открыть — через меню приложений)"]) verify(inSight(name), name);
        for (const name of ["Отменить вход", "Адрес для входа", "Подключить", "Закрыть уведомление"]) {
            const item = named(name);
            item.forceActiveFocus(Qt.TabFocusReason);
            tryVerify(() => inSight(name), 1000, name);
        }
        verify(inSight("Протоколы"));
        fixture.account.cancelLogin();
        tryVerify(() => !shows("Отменить вход"));
        view.focusFirst();
        fixture.account.login();
        tryVerify(() => shows("Отменить вход") && inSight("Отменить вход")); // without being looked for
    }

    function test_nothingMovesWhileClosed() {
        fixture.reduceMotion(false);
        const orb = named("Начать запись");
        tryVerify(() => find(item => item.turned > 0, orb));
        const turning = find(item => item.turned > 0, orb);
        view.open = false;
        tryVerify(() => !view.onScreen);
        const still = turning.turned;
        wait(100);
        compare(turning.turned, still);
    }
}
