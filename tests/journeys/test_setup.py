"""The first minutes: the engine is installed in front of the user, and what happens when that does not go well."""

from __future__ import annotations

import os
import re
import signal
from pathlib import Path

from session import JourneyTest, Session
from waiting import stays, wait_for

TITLE = "Готовим Murmeli"
DONE = "Murmeli готов"
FAILED = "Установка прервалась"
START = "Начать"
START_ANYWAY = "Всё равно начать"
RETRY = "Повторить"
LOG = "Журнал"
QUIT = "Выйти из Murmeli (снова открыть — через меню приложений)"
STEPS = {
    "ru": ["Подготовка системы", "Приложение", "Среда Python", "Движок записи", "Распознавание речи", "Модели",
           "Фоновая служба"],
    "en": ["System tools", "Application", "Python environment", "Recording engine", "Speech recognition", "Models",
           "Background service"],
}
WORDS = {"готово": "done", "ожидает": "waiting", "ошибка": "failed", "done": "done", "waiting": "waiting",
         "failed": "failed"}  # whatever else is said is said of a step at work
PACE = ["--pace", "0.4"]
QUICK_ENGINE = ["--engine-arguments=--poll-seconds 0.05 --processing-seconds 0.4"]


def steps(session: Session) -> list[tuple[str, str]]:
    """Each step with how it goes."""
    shown = session.tree.wait("list")

    def look() -> list[tuple[str, str]]:
        told = (name.partition(", ") for name in shown.names_below())
        return [(label, WORDS.get(word, "running")) for label, _, word in told]

    looks = [look()]

    def holds() -> bool:
        looks.append(look())
        return looks[-1] == looks[-2]

    # A step may end while its row is read.
    wait_for(holds, "the steps to be read")
    return looks[-1]


def watch(test: JourneyTest, session: Session, language: str) -> None:
    """Follows an installation to its end: the steps go one after the other, and the figure only grows."""
    order = {"done": 0, "running": 1, "waiting": 2}
    bar = session.tree.wait("progress bar")
    ran, figures = [], []

    def ended() -> bool:
        seen = steps(session)
        test.assertEqual([label for label, _ in seen], STEPS[language])
        how = [order[word] for _, word in seen]
        test.assertEqual(how, sorted(how), seen)
        at_work = [label for label, word in seen if word == "running"]
        test.assertLessEqual(len(at_work), 1, seen)
        ran.extend(label for label in at_work if label not in ran)
        figures.append(int(re.search(r"\d+", bar.name_now())[0]))
        return figures[-1] == 100 and all(word == "done" for _, word in seen)

    wait_for(ended, "the installation to end", 20)
    # The first steps may be over before the tray and the window are there for us.
    test.assertGreaterEqual(len(ran), 5, ran)
    test.assertEqual(ran, STEPS[language][-len(ran):])
    test.assertEqual(figures, sorted(figures))
    test.assertGreater(len(set(figures)), 7, "there are figures between the steps")


def starting(test: JourneyTest, *web: str, language="ru", **options) -> Session:
    """Nothing is installed yet, and the program has just begun."""
    session = test.open_session(notes=False, program=False, language=language, web=[*QUICK_ENGINE, *web], **options)
    session.start_program()
    return session


def log_of(session: Session) -> Path:
    return session.home / ".local/state/murmeli/setup.log"


def close_window(session: Session) -> None:
    wait_for(session.screen.has_active_window, "the window manager to know the window")
    session.screen.key("alt+F4")
    session.tree.wait_gone("heading")


def requests(session: Session, path: str) -> int:
    return sum(request["path"] == path for request in session.ask_web("/sandbox/requests"))


class Installing(JourneyTest):
    def test_by_mouse(self):
        session = starting(self, *PACE)
        session.tree.wait("heading", TITLE)
        session.tree.wait("label", "Идёт установка. Тем временем выдайте разрешения.")
        watch(self, session, "ru")
        session.tree.wait("heading", DONE)
        session.tree.wait("label", "Не хватает: Микрофон, Запись экрана")
        session.press("push button", "Разрешить: Микрофон")
        session.tree.wait("panel", "Микрофон, доступ есть")
        session.tree.wait("label", "Не хватает: Запись экрана")
        session.press("push button", "Разрешить: Запись экрана")
        session.tree.wait("status bar", "Все разрешения выданы — запись встреч работает")
        session.press("push button", START)
        session.tree.wait_gone("heading", DONE)
        session.wait_open()
        self.record(session, lambda name: session.press("push button", name))

    def test_by_keyboard_alone_in_english(self):
        session = starting(self, *PACE, language="en")
        session.look_away()
        session.tree.wait("heading", "Setting up Murmeli")
        watch(self, session, "en")
        session.tree.wait("heading", "Murmeli is ready")
        wait_for(lambda: session.tree.focus_is_on("Start anyway"), "the focus on the last button")
        for asked, granted in (("Allow: Microphone", "Microphone, granted"),
                               ("Allow: Screen recording", "Screen recording, granted")):
            self.assertNotRegex(session.tree.text(), "[А-Яа-яЁё]")
            session.tab_to(asked)
            session.screen.key("Return")
            session.tree.wait("panel", granted)
        session.tree.wait("push button", "Start")
        session.tab_to("Start")
        self.assertNotRegex(session.tree.text(), "[А-Яа-яЁё]")
        session.screen.key("Return")
        session.tree.wait_gone("heading")
        session.wait_open()
        wait_for(lambda: session.tree.focus_is_on("Start recording"), "the focus on the orb")
        self.record(session, lambda name: session.screen.key("Return"), "Start recording", "Stop recording")

    def test_the_keyboard_always_knows_where_it_is(self):
        """The button that had the focus vanishes with each answer."""
        session = starting(self)
        session.tree.wait("heading", DONE, 15)
        for asked, granted in (("Разрешить: Микрофон", "Микрофон, доступ есть"),
                               ("Разрешить: Запись экрана", "Запись экрана, доступ есть")):
            with self.case(asked):
                session.tab_to(asked)
                session.screen.key("Return")
                session.tree.wait("panel", granted)
                wait_for(session.tree.focused, "a visible focus", 2)

    def record(self, session: Session, press, start="Начать запись", stop="Остановить запись") -> None:
        """The engine that has just been installed does its work."""
        self.assertTrue(session.ask_web("/sandbox/service")["running"])
        session.tree.wait("push button", start)
        press(start)
        session.tree.wait("push button", stop)
        self.assertEqual(session.status(), "recording")
        press(stop)
        wait_for(lambda: list(session.logs.glob("*.json")), "the meeting's summary")


class Failing(JourneyTest):
    def test_a_step_that_fails_and_then_does_not(self):
        session = starting(self, "--fail-install", "engine")
        session.tree.wait("heading", FAILED, 15)
        self.assertEqual(steps(session), [*((label, "done") for label in STEPS["ru"][:3]), ("Движок записи", "failed"),
                                          *((label, "waiting") for label in STEPS["ru"][4:])])
        session.tree.wait("alert message", "Ошибка: так попросили в песочнице.")
        wait_for(lambda: session.tree.focus_is_on(RETRY), "the focus on the way out")

        session.press("push button", LOG)
        wait_for(session.opened_urls, "the log to open")
        log = log_of(session)
        self.assertEqual(session.opened_urls(), [f"file://{log}"])
        told = log.read_text("utf-8")
        self.assertTrue(told.startswith("@@start|system\n"), told[:80])
        self.assertTrue(told.endswith("@@fail|engine\n"), told[-80:])
        for line in ("Система: ", "@@done|app\n", "@@progress|venv|100\n", "Загружаю движок", "Ошибка: так попросили"):
            self.assertIn(line, told)

        session.ask_web("/sandbox/install", {"fail_at": None})
        session.press("push button", RETRY)
        session.tree.wait("heading", DONE, 15)
        self.assertEqual([word for _, word in steps(session)], 7 * ["done"])
        again = log.read_text("utf-8")
        self.assertEqual(again.count("@@start|system\n"), 1, "the log is the latest run's")
        self.assertIn("Уже готово.", again)
        self.assertNotIn("@@fail", again)

    def test_nobody_answers_at_first(self):
        def break_connections(session: Session):
            session.ask_web("/sandbox/faults", {"path": "/app/", "fault": "reset"})
            return lambda: session.ask_web("/sandbox/faults", {})

        def take_away(session: Session):
            port = session.origin.rpartition(":")[2]
            session.stop(session.web)
            return lambda: session.start_web("--port", port, *QUICK_ENGINE)

        for breaks in (break_connections, take_away):
            with self.case(breaks.__name__):
                session = self.open_session(notes=False, program=False, web=QUICK_ENGINE)
                repair = breaks(session)
                session.start_program()
                session.tree.wait("heading", FAILED)
                self.assertEqual([word for _, word in steps(session)], ["failed", *(6 * ["waiting"])])
                # A line that was cut by a read is two lines, of which the last is shown.
                said = log_of(session).read_text("utf-8").splitlines()[-1]
                self.assertTrue(said.startswith("curl: ("), said)
                session.tree.wait("alert message",
                                  lambda name: name and (said.startswith(name) or said.endswith(name)))

                session.open_panel()
                session.tree.wait("label", "Готов к записи")
                session.press_icon()
                session.wait_closed()
                repair()
                session.press("push button", RETRY)
                session.tree.wait("heading", DONE, 15)
                session.close()


class Window(JourneyTest):
    def test_nothing_is_to_do_where_all_is_installed(self):
        session = self.open_session(web=[], program=False)
        session.start_program()
        stays(lambda: not session.screen.windows(), "no window", 1)
        session.stop(session.program)
        session.start_program("--setup")
        session.tree.wait("heading", DONE)
        self.assertEqual([word for _, word in steps(session)], 7 * ["done"])
        self.assertEqual(requests(session, "/app/install.sh"), 0)
        close_window(session)
        session.open_panel()

    def test_closing_it_does_not_end_the_installation(self):
        for label, web, ending in (("and all goes well", PACE, DONE),
                                   ("and a step fails", [*PACE, "--fail-install", "service"], FAILED)):
            with self.case(label):
                session = starting(self, *web)
                session.tree.wait("heading", TITLE)
                close_window(session)
                session.open_panel()
                session.press_icon()
                session.wait_closed()
                self.assertFalse(session.state_file.exists(), "the installation is still at work")
                session.tree.wait("heading", ending, 15)
                wait_for(lambda: "active" in session.tree.wait("frame", TITLE).states, "the window to be in front")
                session.close()

    def test_quitting_ends_all_that_the_installation_began(self):
        def by_the_panel(session: Session) -> None:
            session.open_panel()
            session.press("push button", QUIT)

        def by_a_signal(number: int):
            return lambda session: os.kill(session.program.pid, number)

        works, fetched = ["--pace", "60"], ["--fault", "/app/install.sh=hang"]
        for label, web, at_work, end in (("while a step works", works, "sleep 60", by_the_panel),
                                         ("while the installer is fetched", fetched, "curl ", by_the_panel),
                                         ("terminated", works, "sleep 60", by_a_signal(signal.SIGTERM)),
                                         ("interrupted", works, "sleep 60", by_a_signal(signal.SIGINT)),
                                         ("its terminal gone", works, "sleep 60", by_a_signal(signal.SIGHUP))):
            with self.case(label):
                session = self.open_session(notes=False, program=False, web=web)
                others = session.processes_in_home()
                session.start_program()
                session.tree.wait("heading", TITLE)
                # A shell, its pipeline, and what that runs.
                wait_for(lambda: any(at_work in line for line in session.processes_in_home().values()), at_work)
                begun = session.processes_in_home().keys() - others.keys()
                self.assertGreater(len(begun), 2)
                end(session)
                self.assertEqual(session.program.wait(5), 0)
                left = {pid: line for pid, line in session.processes_in_home().items() if pid not in others}
                self.assertEqual(left, {})
                session.close()
