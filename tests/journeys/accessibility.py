"""Murmeli as assistive programs see it: a small AT-SPI client that speaks the protocol directly."""

from __future__ import annotations

from dataclasses import dataclass
from functools import cached_property

from gi.repository import Gio, GLib

from screen import Rectangle
from waiting import wait_for

ROOT = "/org/a11y/atspi/accessible/root"
REGISTRY = "org.a11y.atspi.Registry"
ACCESSIBLE = "org.a11y.atspi.Accessible"
COMPONENT = "org.a11y.atspi.Component"
ACTION = "org.a11y.atspi.Action"
PATIENCE = 5000  # milliseconds
STATES = {1: "active", 4: "checked", 7: "editable", 8: "enabled", 11: "focusable", 12: "focused", 24: "sensitive",
          25: "showing", 30: "visible"}


def _connect(address: str) -> Gio.DBusConnection:
    return Gio.DBusConnection.new_for_address_sync(
        address, Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION,
        None, None)


def _call(bus: Gio.DBusConnection, name: str, path: str, interface: str, method: str, arguments=None):
    answer = bus.call_sync(name, path, interface, method, arguments, None, Gio.DBusCallFlags.NO_AUTO_START,
                           PATIENCE, None)
    return answer.unpack()


@dataclass(frozen=True)
class Node:
    bus: Gio.DBusConnection
    owner: str
    path: str
    role: str
    name: str
    states: frozenset[str]

    @property
    def showing(self) -> bool:
        return "showing" in self.states

    @cached_property
    def description(self) -> str:
        return _call(self.bus, self.owner, self.path, "org.freedesktop.DBus.Properties", "Get",
                     GLib.Variant("(ss)", (ACCESSIBLE, "Description")))[0]

    @cached_property
    def extents(self) -> Rectangle:
        on_screen = GLib.Variant("(u)", (0,))
        return Rectangle(*_call(self.bus, self.owner, self.path, COMPONENT, "GetExtents", on_screen)[0])

    def act(self, *names: str) -> None:
        """Has it do the first of these that it can."""
        offered = [name for name, _, _ in _call(self.bus, self.owner, self.path, ACTION, "GetActions")[0]]
        for name in names:
            if name in offered:
                _call(self.bus, self.owner, self.path, ACTION, "DoAction", GLib.Variant("(i)", (offered.index(name),)))
                return
        raise AssertionError(f"{self} does none of {names}, but {offered}")

    def __str__(self) -> str:
        return f"{self.role} «{self.name}» {' '.join(sorted(self.states))}"


class Tree:
    def __init__(self, session: Gio.DBusConnection, bus: Gio.DBusConnection):
        self._session = session
        self._bus = bus
        self._pid = 0
        self._owner = ""

    @classmethod
    def open(cls, session_address: str) -> Tree | None:
        """None while the desktop's accessibility service is not up yet."""
        try:
            session = _connect(session_address)
            address = _call(session, "org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress")[0]
            return cls(session, _connect(address))
        except GLib.Error:
            return None

    def close(self) -> None:
        for bus in (self._session, self._bus):
            try:
                bus.close_sync(None)
            except GLib.Error:
                pass

    def session_has(self, name: str) -> bool:
        return _call(self._session, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                     "NameHasOwner", GLib.Variant("(s)", (name,)))[0]

    def follow(self, pid: int) -> None:
        self._pid = pid
        self._owner = ""

    def application(self) -> str:
        """The name on the bus of the program that is followed; empty while it has not come."""
        if self._owner:
            return self._owner
        try:
            for owner, _ in _call(self._bus, REGISTRY, ROOT, ACCESSIBLE, "GetChildren")[0]:
                pid = _call(self._bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                            "GetConnectionUnixProcessID", GLib.Variant("(s)", (owner,)))[0]
                if pid == self._pid:
                    self._owner = owner
        except GLib.Error:
            pass  # the registry is not up yet, or still lists one that has ended
        return self._owner

    def nodes(self, *, of_hidden_windows=True) -> list[Node]:
        """All that the program tells of; what vanishes while we look is left out."""
        owner = self.application()
        if not owner:
            return []
        try:
            return self._below(owner, ROOT, of_hidden_windows)
        except GLib.Error as error:
            # An empty answer would look like a closed panel.
            raise AssertionError(f"Murmeli does not answer: {error.message}") from error

    def _in_windows(self) -> list[Node]:
        """A look at a window that nobody sees takes as long as one at a window that all see."""
        return self.nodes(of_hidden_windows=False)

    def _below(self, owner: str, path: str, of_hidden: bool) -> list[Node]:
        found = []
        for child_owner, child in _call(self._bus, owner, path, ACCESSIBLE, "GetChildren")[0]:
            try:
                node = self._node(child_owner, child)
                found.append(node)
                if of_hidden or node.showing or path != ROOT:
                    found += self._below(child_owner, child, of_hidden)
            except GLib.Error:
                continue
        return found

    def _node(self, owner: str, path: str) -> Node:
        role = _call(self._bus, owner, path, ACCESSIBLE, "GetRoleName")[0]
        low, high = _call(self._bus, owner, path, ACCESSIBLE, "GetState")[0]
        bits = low | high << 32
        name = _call(self._bus, owner, path, "org.freedesktop.DBus.Properties", "Get",
                     GLib.Variant("(ss)", (ACCESSIBLE, "Name")))[0]
        states = frozenset(word for bit, word in STATES.items() if bits >> bit & 1)
        return Node(self._bus, owner, path, role, name, states)

    def all(self, role: str | None, name=None) -> list[Node]:
        """What is on screen with this role (any: None) and this name, one of these names or a fitting one."""
        def fits(found: str) -> bool:
            if name is None or isinstance(name, str):
                return name in (None, found)
            return name(found) if callable(name) else found in name

        return [node for node in self._in_windows() if node.showing and role in (None, node.role) and fits(node.name)]

    def find(self, role: str | None, name=None) -> Node | None:
        found = self.all(role, name)
        return found[0] if found else None

    def wait(self, role: str | None, name=None, seconds: float = 5) -> Node:
        return wait_for(lambda: self.find(role, name), f"{role or 'something'} «{name}» to appear", seconds)

    def wait_gone(self, role: str | None, name=None, seconds: float = 5) -> None:
        wait_for(lambda: not self.find(role, name), f"{role or 'something'} «{name}» to vanish", seconds)

    def focused(self) -> Node | None:
        # What contains the one with the focus may say that it has it too.
        found = [node for node in self._in_windows() if node.showing and "focused" in node.states]
        return found[-1] if found else None

    def focus_is_on(self, name: str) -> bool:
        node = self.focused()
        return node is not None and node.name == name

    def text(self) -> str:
        """Every name on screen, for what must be nowhere."""
        return "\n".join(node.name for node in self._in_windows() if node.showing)
