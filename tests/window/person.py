"""A person in front of the window: finds controls by role and name, presses them, types, and sees where the focus is.

Everything is read and done the way assistive programs do it, over the accessibility bus (AT-SPI2), without a cache.
"""


from gi.repository import Gio, GLib

from desktop_session import LIMIT, Gone, until

STATES = {"active": 1, "checked": 4, "editable": 7, "enabled": 8, "focusable": 11, "focused": 12, "selected": 23,
          "sensitive": 24, "showing": 25, "visible": 30}
REGISTRY = ("org.a11y.atspi.Registry", "/org/a11y/atspi/accessible/root")
PASSWORD_TEXT = 40
# Roles by the names that AT-SPI gives them.
BUTTON, CHECK, HEADING, LABEL, ROW, LIST = "button", "check box", "heading", "label", "list item", "list"
FIELD, SECRET, MENU, ENTRY, DIALOG, PROGRESS = "text", "password text", "popup menu", "menu item", "dialog", "progress bar"


class Control:
    """One node of the tree that assistive programs see."""

    def __init__(self, bus, name, path):
        self.bus, self.service, self.path = bus, name, path

    def __eq__(self, other):
        return isinstance(other, Control) and (self.service, self.path) == (other.service, other.path)

    def __hash__(self):
        return hash((self.service, self.path))

    def __repr__(self):
        try:
            return f"{self.role} “{self.name}”"
        except Gone:
            return "a control that is gone"

    def ask(self, interface, member, arguments=None):
        try:
            return self.bus.call_sync(self.service, self.path, interface, member, arguments, None,
                                      Gio.DBusCallFlags.NONE, int(LIMIT * 1000), None).unpack()
        except GLib.Error as error:
            raise Gone(str(error)) from error

    def tell(self, member, *arguments, interface="Accessible"):
        given = GLib.Variant("(" + "".join("i" if isinstance(each, int) else "u" for each in arguments) + ")", arguments)
        return self.ask("org.a11y.atspi." + interface, member, given)

    def fact(self, name, interface="Accessible"):
        return self.ask("org.freedesktop.DBus.Properties", "Get",
                        GLib.Variant("(ss)", ("org.a11y.atspi." + interface, name)))[0]

    @property
    def name(self):
        return self.fact("Name")

    @property
    def description(self):
        return self.fact("Description")

    @property
    def role(self):
        # Qt gives the right number and a wrong word for fields that hide what they hold.
        if self.tell("GetRole")[0] == PASSWORD_TEXT:
            return SECRET
        role = self.tell("GetRoleName")[0]
        return "button" if role == "push button" else role

    @property
    def children(self):
        return [Control(self.bus, *each) for each in self.tell("GetChildren")[0] if each[1] != "/org/a11y/atspi/null"]

    @property
    def states(self):
        low, high = self.tell("GetState")[0]
        bits = low | high << 32
        return {name for name, bit in STATES.items() if bits >> bit & 1}

    def has(self, state):
        return state in self.states

    @property
    def box(self):
        """Left, top, width and height on the screen."""
        return self.ask("org.a11y.atspi.Component", "GetExtents", GLib.Variant("(u)", (0,)))[0]

    @property
    def text(self):
        return self.ask("org.a11y.atspi.Text", "GetText", GLib.Variant("(ii)", (0, -1)))[0]

    @property
    def actions(self):
        return [each[0] for each in self.ask("org.a11y.atspi.Action", "GetActions")[0]]

    def press(self):
        """What a switch device or a screen reader does."""
        wanted = [action for action in self.actions if action in ("Press", "Toggle", "press", "toggle", "click")]
        assert wanted, f"{self!r} cannot be pressed: {self.actions}"
        self.ask("org.a11y.atspi.Action", "DoAction", GLib.Variant("(i)", (self.actions.index(wanted[0]),)))

    @property
    def is_shown(self):
        """It belongs to what is on the screen, if only after scrolling: what is hidden takes no place."""
        _, _, width, height = self.box
        return width > 0 and height > 0


def _matches(said, wanted):
    return wanted(said) if callable(wanted) else said == wanted


def starting(words):
    """A name that begins with the words."""
    return lambda name: name.startswith(words)


def holding(words):
    """A name with the words in it."""
    return lambda name: words in name


class Person:
    """Opens the application and uses its window."""

    def __init__(self, desktop, program, watcher=()):
        self.desktop = desktop
        self.process = desktop.start("application", *watcher, program)
        self.application = until(self._find_application, lambda: "the window: " + desktop.log("application"))
        self.window = until(lambda: next(iter(self.application.children), None), "the window")
        self.window_number = until(lambda: desktop.run("xdotool", "search", "--onlyvisible", "--name",
                                                       "^Quillbook$").stdout.split(), "the window's number")[-1]

    def _find_application(self):
        assert self.process.poll() is None, "the application has ended: " + self.desktop.log("application")
        registry = Control(self.desktop.accessibility, *REGISTRY)
        try:
            found = [each for each in registry.children if each.name == "Quillbook" and each.children]
            return found[-1] if found else None
        except Gone:
            return None

    # Seeing.

    def everything(self, within=None):
        """All that is on show, from the outside to the inside."""
        found = []

        def walk(control):
            try:
                if control.is_shown:
                    found.append(control)
                    for child in control.children:
                        walk(child)
            except Gone:
                pass

        walk(within or self.window)
        return found

    def all(self, role, within=None):
        found = []
        for control in self.everything(within):
            try:
                if control.role == role:
                    found.append(control)
            except Gone:
                continue
        return found

    def look(self, role, name):
        """The control if it is on show now."""
        for control in self.everything():
            try:
                if control.role == role and _matches(control.name, name):
                    return control
            except Gone:
                continue
        return None

    def find(self, role, name, limit=None):
        wanted = name if isinstance(name, str) else "something"
        return until(lambda: self.look(role, name), lambda: f"{role} “{wanted}” among {self.words()}", limit)

    def words(self):
        """Everything that can be read now."""
        return [control.name for control in self._alive() if control.name]

    def _alive(self):
        for control in self.everything():
            try:
                control.states  # Asks whether it is still there.
                yield control
            except Gone:
                continue

    def reads(self, words, limit=None):
        """Waits for a text on show."""
        return until(lambda: next((each for each in self._names() if _matches(each, words)), None),
                     lambda: f"the words {words if isinstance(words, str) else ''} among {self.words()}", limit)

    def _names(self):
        names = []
        for control in self.everything():
            try:
                names.append(control.name)
            except Gone:
                continue
        return names

    def sees(self, words):
        return any(_matches(each, words) for each in self._names())

    def no_longer_reads(self, words, limit=None):
        until(lambda: not self.sees(words), lambda: f"“{words}” to go", limit)

    @property
    def focus(self):
        """The innermost controls that have the keyboard; there should be one."""
        focused = []
        for control in self.everything():
            try:
                if control.has("focused"):
                    focused.append(control)
            except Gone:
                continue
        outer = set()
        for control in focused:
            inside = self.everything(control)[1:]
            if any(each in focused for each in inside):
                outer.add(control)
        return [control for control in focused if control not in outer]

    def focused_on(self, role, name):
        """Waits until this one control has the keyboard."""
        def is_there():
            focus = self.focus
            return len(focus) == 1 and focus[0].role == role and _matches(focus[0].name, name)
        until(is_there, lambda: f"the focus on {role} “{name}”, it is on {self.focus}")

    # Doing.

    def press(self, role, name):
        self.find(role, name).press()

    def keys(self, *keys):
        self.desktop.run("xdotool", "key", "--delay", "20", *keys)

    def types(self, words):
        self.desktop.run("xdotool", "type", "--delay", "20", words)

    def click(self, control):
        left, top, width, height = control.box
        self.desktop.run("xdotool", "mousemove", left + width // 2, top + height // 2, "click", "1")

    def tab_to(self, role, name, limit=40):
        """Presses Tab until the control has the focus; gives what had it on the way."""
        way = []
        for _ in range(limit):
            focus = self.settled_focus()
            way.append((focus.role, focus.name))
            if focus.role == role and _matches(focus.name, name):
                return way
            self.keys("Tab")
            until(lambda before=focus: self.focus != [before], lambda before=focus: f"Tab to leave {before!r}")
        raise AssertionError(f"no way by Tab to {role} “{name}”: {way}")

    def take_from_menu(self, key, name):
        """Opens a menu by its key, goes down to the entry and takes it."""
        self.keys(key)
        self.find(ENTRY, name)
        for _ in range(8):
            self.keys("Down")
            try:
                until(lambda: [each for each in self.focus if each.role == ENTRY and each.name == name], "", 0.5)
                break
            except AssertionError:
                continue
        self.focused_on(ENTRY, name)
        self.keys("Return")

    def settled_focus(self):
        """The one control that has the focus. It is on show, within the window, and tells what it is."""
        until(lambda: len(self.focus) == 1, lambda: f"one focus: {self.focus}")
        focus = self.focus[0]
        # Qt gives fields for passwords a description and no name.
        assert focus.name or focus.role == SECRET, f"{focus!r} at {focus.box} has the focus and no name"
        left, top, width, height = focus.box
        outer_left, outer_top, outer_width, outer_height = self.window.box
        assert width > 0 and height > 0, f"{focus!r} has no size"
        assert outer_left <= left and left + width <= outer_left + outer_width, f"{focus!r} is beside the window"
        assert outer_top <= top and top + height <= outer_top + outer_height, f"{focus!r} is out of the window's sight"
        return focus

    def activate(self):
        self.desktop.run("xdotool", "windowactivate", "--sync", self.window_number)
        until(lambda: self.window.has("active"), "the window to be active")

    # The end.

    def has_ended(self):
        return self.process.poll() is not None

    def waits_for_end(self, limit=None):
        until(self.has_ended, "the application to end", limit)
        return self.process.returncode

    def quits(self):
        """By the menu's key, as a person would; in every case it is gone afterwards."""
        if not self.has_ended():
            self.keys("ctrl+q")
            self.waits_for_end()
        return self.process.returncode
