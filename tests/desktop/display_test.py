#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""The program on a display of its own, as a screen reader, a keyboard and another program's drags meet it.

   display_test.py QUILLFORTH GALLERY_SERVER DRAG_SOURCE BROWSER GALLERY      (status 77: skipped, and says why)"""
import os, pathlib, shutil, subprocess, sys, tempfile, time, unittest

if "IN_SESSION" not in os.environ:
    if missing := [tool for tool in ("xvfb-run", "dbus-run-session", "xdotool", "openbox") if not shutil.which(tool)]:
        sys.exit(print("skipped: there is no", *missing) or 77)
    with tempfile.TemporaryDirectory() as home:
        own = {"HOME": home, "XDG_RUNTIME_DIR": home, "LC_ALL": "C.UTF-8", "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1"}
        kept = {name: value for name, value in os.environ.items() if name == "PATH" or name.endswith("SAN_OPTIONS")}
        display = ["xvfb-run", "-a", "-s", "-screen 0 1280x960x24", "dbus-run-session", "--"]
        sys.exit(subprocess.run(display + sys.argv, env=kept | own | {"IN_SESSION": "1"}, timeout=100).returncode)
try:
    import gi
    gi.require_version("Atspi", "2.0")
    from gi.repository import Atspi, GLib
except (ImportError, ValueError) as error:
    sys.exit(print("skipped:", error) or 77)

QUILLFORTH, SERVER, DRAG_SOURCE, BROWSER, GALLERY = sys.argv[1:]
FILE = pathlib.Path.home() / ".local/share/Tessary Software/Quillforth/reef.gif"
FOCUSED = Atspi.StateType.FOCUSED
UNNAMED = {"filler", "panel", "frame", "menu bar", "separator", "popup menu", "layered pane"}  # hold the others


def until(answer):
    """What `answer` gives as soon as it gives something."""
    deadline = time.monotonic() + 20
    while time.monotonic() < deadline:
        try:
            if result := answer():
                return result
        except GLib.Error:  # what was asked has gone meanwhile
            pass
    raise AssertionError("in vain")


def below(node):
    for child in filter(None, map(node.get_child_at_index, range(node.get_child_count()))):
        yield from (child, *below(child))


def shown(state=Atspi.StateType.SHOWING):
    return [node for node in below(Atspi.get_desktop(0)) if node.get_state_set().contains(state)]


def find(name, role):
    return next((node for node in shown() if (node.get_name(), node.get_role_name()) == (name, role)), None)


def xdotool(*words):
    subprocess.run(["xdotool", *map(str, words)], check=True)


class Display(unittest.TestCase):
    def start(self, *command):
        process = subprocess.Popen(command, stdout=subprocess.PIPE, text=True)
        for end in (process.stdout.close, process.wait, process.terminate):  # from the last
            self.addCleanup(end)
        return process

    def setUp(self):
        managed = pathlib.Path.home() / "managed"  # no window comes before openbox: it would not be made active
        managed.unlink(missing_ok=True)
        self.start("openbox", "--sm-disable", "--startup", f"touch {managed}")
        until(managed.exists)
        Atspi.get_desktop(0)  # wakes its bus, which programs look for when they start
        self.origin = self.start(SERVER, "--rate", "20", GALLERY).stdout.readline().strip()
        self.start(QUILLFORTH, "--local")
        self.table = until(lambda: find("Queued URLs", "table"))

    def tab_order(self, first):
        """The roles that Tab leads through, from the control of that name until it is back there."""
        def step(before=None):
            xdotool("key", "Tab", "sleep", 0.1)
            controls = lambda: [(node.get_name(), node.get_role_name()) for node in shown(FOCUSED)]
            # The toolkit says of a tab that is shown, and of what holds the one that has it, that they have the keyboard, too.
            focused = lambda: next((control for control in controls() if control[1] not in {"page tab", *UNNAMED}), None)
            return until(lambda: (now := focused()) != before and now)
        control = step()
        while control[0] != first:
            control = step(control)
        roles = [control[1]]
        while (control := step(control))[0] != first:
            roles.append(control[1])
        return roles

    def look_at(self, title, first, tab_order):
        until(lambda: any(title in node.get_name() for node in shown(Atspi.StateType.ACTIVE)))
        for node in shown():
            named = node.get_name() or node.get_description() or node.get_role_name() in UNNAMED
            self.assertTrue(named, (title, node.get_role_name()))
        self.assertEqual(self.tab_order(first), tab_order)

    def drag(self, text):
        source = self.start(DRAG_SOURCE, text)
        until(lambda: find(text, "label"))
        box = self.table.get_extents(Atspi.CoordType.SCREEN)
        xdotool("mousemove", 1100, 100, "mousedown", 1, "sleep", 0.3)
        for step in range(10):
            xdotool("mousemove", box.x + 50 + step, box.y + 50, "sleep", 0.1)
        xdotool("mouseup", 1)
        return source.stdout.readline().strip()

    def test_every_control_has_a_name_and_a_role_and_is_reached_by_keys(self):
        button, box, field = "push button", "check box", "text"
        self.look_at("Quillforth", "Queued URLs", ["table", button, button, "page tab list", button, button])
        xdotool("key", "ctrl+comma")
        self.look_at("Preferences", "Bring the status window forward when URLs come in", [box, box, "spin button", box, box, button, "page tab list"])
        xdotool("key", "Escape", "sleep", 0.5, "key", "ctrl+i")
        self.look_at("Import URL", "URL of a web page", [field, button, button])

    def test_drags_from_another_program_are_judged_taken_and_shown(self):
        self.assertEqual(self.drag("two words"), "refused")
        self.assertTrue(find("0 urls queued", "label"))
        self.assertEqual(self.drag(self.origin + "/photos/reef.gif"), "taken")
        until(FILE.exists)
        self.assertEqual(FILE.read_bytes(), pathlib.Path(GALLERY, "photos/reef.gif").read_bytes())
        self.assertEqual(self.drag(self.origin + "/index.html"), "taken")
        until(lambda: find(self.origin + "/photos/market.png", "table cell"))

    def test_keys_ask_a_browser_that_does_not_say_its_address_but_only_for_who_allows_it(self):
        arrived = FILE.with_name("market.png")
        arrived.unlink(missing_ok=True)
        self.start(BROWSER, self.origin + "/photos/market.png")
        until(lambda: find("Page", "frame"))
        def ask():
            xdotool("search", "--onlyvisible", "--name", "^Quillforth$", "windowactivate", "--sync")
            until(lambda: self.table.get_state_set().contains(FOCUSED))
            xdotool("key", "ctrl+b")
        def confirm_alert():
            xdotool("key", "Return")
            until(lambda: not find("OK", "push button"))
        def has_arrived():
            if find("OK", "push button"):  # a browser on a busy machine may need longer than it is given
                confirm_alert()
                ask()
            return arrived.exists()
        ask()
        until(lambda: find("OK", "push button"))
        self.assertFalse(find("Page", "frame").get_state_set().contains(Atspi.StateType.ACTIVE))
        confirm_alert()
        settings = pathlib.Path.home() / ".config/Tessary Software/Quillforth.conf"
        settings.parent.mkdir(parents=True, exist_ok=True)
        settings.write_text("[General]\nallowKeystrokesForBrowserURL=true\n")
        ask()
        until(has_arrived)


unittest.main(argv=sys.argv[:1], verbosity=2)
