"""A first day with Murmeli, from nothing installed to leaving: by mouse, by keyboard, through assistive programs."""

from __future__ import annotations

import json
import re
from datetime import date, timedelta
from functools import cache

from main_window import answer_dialog, fill, glossary, paste, summaries, write_library
from session import REPOSITORY, JourneyTest, Session
from test_sign_in import address_of, wait_signed_in
from test_updates import install_updater, runs
from waiting import wait_for

WEB = ["--pace", "0.1", "--assist-seconds", "0.1", "--engine-arguments=--poll-seconds 0.05 --processing-seconds 0.5"]
RUSSIAN_WORD = re.compile("[А-Яа-яЁё]+")


@cache
def texts(language: str) -> dict[str, str]:
    """What the interface says, by its keys."""
    table = REPOSITORY / f"src/localisation/Texts{dict(ru='Russian', en='English')[language]}.cpp"
    pairs = re.findall(r'\{"([a-z_.]+)",\s*((?:u"(?:[^"\\]|\\.)*"\s*)+)\}', table.read_text("utf-8"))
    return {key: "".join(re.findall(r'u"((?:[^"\\]|\\.)*)"', text)).replace("\\n", "\n") for key, text in pairs}


class Mouse:
    def __init__(self, session: Session):
        self.session = session

    def press(self, role: str | None, name) -> None:
        self.session.press(role, name)

    def write(self, field: str, text: str) -> None:
        fill(self.session, field, text)

    def open_row(self, name) -> None:
        self.press("list item", name)

    def scroll_to(self, name: str) -> None:
        for _ in range(20):
            if self.session.tree.find(None, name):
                return
            self.session.screen.click(*self.session.tree.find("frame").extents.middle, button=5)
        raise AssertionError(f"«{name}» is not where one can scroll to")

    def choose(self, name: str, _step: str) -> None:
        self.press("list item", name)

    def remove(self, _row: str, button: str) -> None:
        self.press("push button", button)

    def pick(self, entry: str) -> None:
        """The last one of the menu that has just come up."""
        self.press("menu item", entry)


class Keyboard(Mouse):
    def press(self, role: str | None, name) -> None:
        self.session.tree.wait(role, name)
        self.session.tab_to(name)
        self.session.screen.key("Return")

    def scroll_to(self, name: str) -> None:
        self.session.tab_to(name)

    def write(self, field: str, text: str) -> None:
        self.session.tree.wait("text", field)
        self.session.tab_to(field)
        paste(self.session, text)

    def open_row(self, name) -> None:
        self.session.tree.wait("list item", name)
        self.session.screen.key("ctrl+f", "Down", "Return")

    def choose(self, name: str, step: str) -> None:
        """The entry beside the chosen one, in the list that has opened."""
        self.session.tree.wait("list item", name)
        self.session.screen.key(step, "Return")

    def remove(self, row: str, _button: str) -> None:
        rows = [node.name for node in self.session.tree.all("list item")]
        self.session.tab_to(lambda name: name in rows)
        steps = rows.index(row) - rows.index(self.session.tree.focused().name)
        self.session.screen.key(*["Down"] * steps, "Delete")

    def pick(self, entry: str) -> None:
        self.session.tree.wait("menu item", entry)
        self.session.screen.key("Down", "Down", "Down", "Return")


class Assistive(Keyboard):
    """What a screen reader does: it tells controls to act, and the person types."""

    remove = Mouse.remove

    def press(self, role: str | None, name) -> None:
        self.session.tree.wait(role, name).act("Press", "Toggle")

    def open_row(self, name) -> None:
        self.press("list item", name)

    def choose(self, name: str, _step: str) -> None:
        self.press("list item", name)

    def scroll_to(self, name: str) -> None:
        next(node for node in self.session.tree.nodes() if node.name == name).act("SetFocus")

    def write(self, field: str, text: str) -> None:
        self.session.tree.wait("text", field).act("SetFocus")
        wait_for(lambda: self.session.tree.focus_is_on(field), f"«{field}» to have the focus")
        paste(self.session, text)


class FirstDay(JourneyTest):
    def test_by_mouse_in_russian(self):
        self.live("ru", Mouse)

    def test_by_keyboard_in_english(self):
        self.live("en", Keyboard)

    def test_through_the_accessibility_tree_in_russian(self):
        self.live("ru", Assistive)

    def live(self, language: str, hands) -> None:
        self.session = self.open_session(notes=False, program=False, language=language, keyring=True, web=WEB)
        self.hands = hands(self.session)
        self.texts = texts(language)
        self.language = language
        # Whatever the hour, today's recording is the newest.
        write_library(self.session, date.today() - timedelta(days=1))
        for summary in summaries(self.session):
            if summary.members.get("language") != language:
                summary.path.unlink()
        self.known = {summary.path for summary in summaries(self.session)}
        self.meeting = None
        self.session.start_program()
        for chapter in (self.install, self.sign_in, self.record, self.read_and_correct, self.pass_on, self.analyse,
                        self.teach, self.set, self.update, self.leave):
            chapter()

    def t(self, key: str, argument="") -> str:
        return self.texts[key].replace("%@", argument)

    def press(self, key: str, argument="", role: str | None = "push button") -> None:
        self.hands.press(role, self.t(key, argument))

    def wait(self, key: str, argument="", role: str | None = None, seconds=5) -> None:
        self.session.tree.wait(role, self.t(key, argument), seconds)
        if self.language == "en":
            self.assertEqual(set(RUSSIAN_WORD.findall(self.session.tree.text())) - self.russian_said(), set())

    def russian_said(self) -> set[str]:
        """The recorded meeting, and what it is corrected to, are Russian whatever the interface speaks."""
        if not self.meeting:
            return set()
        stem = self.meeting.path.name.removesuffix(".protocol.json")
        files = [self.meeting.protocol, *self.session.logs.glob(f"{stem}.*.json")]
        return {"Рассвет", *RUSSIAN_WORD.findall("".join(file.read_text("utf-8") for file in files))}

    def install(self) -> None:
        self.wait("setup.action.start_anyway", role="push button", seconds=30)
        for kind in ("microphone", "screen"):
            self.press("perm.allow.name", self.t(f"perm.{kind}.title"))
            self.session.tree.wait_gone("push button", self.t("perm.allow.name", self.t(f"perm.{kind}.title")))
        self.press("setup.action.start")
        self.session.wait_open()
        self.wait("panel.title.idle")

    def sign_in(self) -> None:
        self.press("panel.sign_in")
        self.hands.write(self.t("account.paste.name"), "https://example.org/#access_token=x")
        self.press("account.paste.action")
        self.wait("account.paste.refused", role="status bar")
        self.hands.write(self.t("account.paste.name"), f"  {address_of(self.session)} ")
        self.press("account.paste.action")
        self.wait("panel.account")
        wait_signed_in(self.session)
        self.wait_kept(*glossary(self.session).splitlines())  # the service needs it, though no window is opened

    def record(self) -> None:
        self.press("panel.orb.name.record")
        wait_for(lambda: self.session.status() == "recording", "the service to record")
        self.press("panel.orb.name.stop")
        self.meeting = wait_for(lambda: next((one for one in summaries(self.session) if one.path not in self.known),
                                             None), "the meeting", 30)
        wait_for(lambda: self.session.status() == "idle", "the service to be idle")
        self.wait("panel.title.idle")
        self.press("panel.auth.dismiss")  # that it is ready
        self.session.tree.wait_gone("alert message", seconds=30)  # banners move what is below them

    def read_and_correct(self) -> None:
        self.press("panel.open_app")
        self.session.wait_closed()
        self.session.tree.wait("frame", self.t("meetings.title"))
        self.hands.open_row(lambda name: name.startswith(f"{self.meeting.title}, "))
        self.session.tree.wait("heading", self.meeting.title)
        old = next(text for text in self.meeting.members["decisions"])
        self.session.tree.wait("list item", old)
        word = re.findall(r"\w{5,}", old)[0]
        new = old.replace(word, "Рассвет", 1)
        wish = f"в первом решении замени {word} на Рассвет"
        self.hands.write(self.t("detail.remark"), wish)
        self.press("detail.send")
        self.wait("editor.done", new, "status bar")
        self.assertEqual(self.session.tree.wait("list item", new).description, self.t("detail.before", old))
        stored = json.loads(self.meeting.path.read_text("utf-8"))
        self.assertEqual(stored["decisions"][0], new)
        self.wait("detail.edited")
        wait_for(lambda: new in self.meeting.protocol.read_text("utf-8"), "the protocol to be written again")

    def pass_on(self) -> None:
        target = self.session.home / "Protocol.pdf"
        self.press("file.save")
        answer_dialog(self.session, self.t("file.dialog"), target)
        self.wait("file.saved", target.name, "status bar", 30)
        self.assertTrue(target.read_bytes().startswith(b"%PDF-"))
        self.press("file.share")
        self.hands.pick(self.t("file.share.copy"))
        wait_for(lambda: self.session.clipboard("text/uri-list").split() == [target.as_uri()], "the copied file")

    def analyse(self) -> None:
        self.press("report.open")
        self.hands.press("push button", lambda name: name in (self.t("report.build"), self.t("report.rebuild")))
        self.wait("report.insights", role="heading", seconds=20)
        chip = self.t("report.stamp.name")
        self.hands.press(None, lambda name: name.startswith(chip))
        quotation = self.session.tree.wait("push button", lambda name: re.match(r"\w+( \w+)?: ", name))
        self.assertIn(quotation.name.partition(": ")[2], self.meeting.protocol.read_text("utf-8"))
        self.session.screen.key("Escape", "Escape")
        self.session.tree.wait("heading", self.meeting.title)

    def teach(self) -> None:
        words = glossary(self.session).splitlines()
        self.press("editor.teach")
        self.hands.write(self.t("assistant.placeholder.heard"), "markel")
        self.hands.write(self.t("assistant.placeholder.correct"), "Murmeli")
        self.press("assistant.add.name")
        self.wait("detail.learned", "markel → Murmeli", "status bar")
        self.wait_kept(*words, "markel → Murmeli")
        self.session.screen.key("Escape", "Escape")
        self.session.screen.key("ctrl+2")
        row = self.session.tree.wait("list item", lambda name: name.startswith("markel ") and name.endswith(" Murmeli"))
        self.hands.remove(row.name, self.t("assistant.remove", "markel"))
        self.session.screen.key("ctrl+s")
        self.session.tree.wait("status bar", self.t("assistant.saved"))
        self.wait_kept(*words)

    def wait_kept(self, *words: str) -> None:
        """On the backend, and in the copy that the service reads."""
        text = "\n".join(words)
        wait_for(lambda: glossary(self.session) == text == self.session.preferences().get("glossary"),
                 f"{words} to be kept")

    def set(self) -> None:
        self.session.screen.key("ctrl+3")
        self.wait("settings.title", role="heading")
        self.press("notifications.title", role="check box")
        self.session.wait_preference("notifications", False)
        self.hands.press("combo box", f"{self.t('locale.title')}, {self.t('locale.' + self.language)}")
        other = dict(ru="en", en="ru")[self.language]
        self.hands.choose(self.t(f"locale.{other}"), "Down" if other == "en" else "Up")
        self.session.wait_preference("locale", other)
        self.language, self.texts = other, texts(other)
        self.wait("settings.title", role="heading")
        self.wait("notifications.title", role="check box")

    def update(self) -> None:
        install_updater(self.session)
        self.session.ask_web("/sandbox/release", {"version": "9.0.0"})
        check = f"{self.t('check_update.action')}: {self.t('version.title')}"
        self.hands.scroll_to(check)
        self.hands.press("push button", check)
        wait_for(lambda: runs(self.session) == 1, "the updater to run")

    def leave(self) -> None:
        self.session.open_panel()  # the tray is the desktop's: how it is reached is not ours to say
        self.press("panel.sign_out")
        self.wait("panel.sign_in", role="push button")
        started = {pid for pid, line in self.session.processes_in_home().items() if "murmeli" in line.split()[0]}
        self.press("panel.quit.help.linux")
        self.assertEqual(self.session.program.wait(5), 0)
        wait_for(lambda: not started & self.session.processes_in_home().keys(), "every process to end")
        self.assertTrue(self.meeting.path.exists())
