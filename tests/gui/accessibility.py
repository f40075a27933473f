#!/usr/bin/env python3
"""Walks the running program as a screen reader does: over AT-SPI, on a bus and a screen of its own.

Usage: accessibility.py PROGRAM_FOLDER"""
import os
import shutil
import signal
import subprocess
import sys
import tempfile
import warnings
from pathlib import Path

from screen import PATIENCE, SKIPPED, Screen, keyboard_to, press, wait_for

SYSTEM_PYTHON = "/usr/bin/python3"
REPLY_MS = 3000
EVENTS = 0.2  # seconds in which those of one key arrive
START_MS = 20000
BUS_LAUNCHER = "/usr/libexec/at-spi-bus-launcher"
# What a person meets as a control of its own, and so must be told apart by name.
CONTROLS = {"push button", "radio button", "check box", "combo box", "text", "entry", "list", "table",
            "tree table", "tree", "page tab", "page tab list", "menu", "menu item", "check menu item",
            "table cell", "list item", "tool bar", "dialog", "alert", "password text"}


def skip(reason):
    print(f"skipped: {reason}")
    sys.exit(SKIPPED)


def import_atspi():
    try:
        import gi
        gi.require_version("Atspi", "2.0")
        from gi.repository import Atspi, GLib
        Atspi.set_timeout(REPLY_MS, START_MS)
        return Atspi, GLib
    except (ImportError, ValueError):
        if sys.executable != SYSTEM_PYTHON and os.path.exists(SYSTEM_PYTHON):
            os.execv(SYSTEM_PYTHON, [SYSTEM_PYTHON, "-B", *sys.argv])
        skip("python3-gi or gir1.2-atspi-2.0 is not installed")


class Session:
    """An X server, the accessibility bus and the program, all of them ended with the test."""

    def __init__(self, folder):
        self.folder = Path(folder)
        self.running = []
        self.screen = Screen()
        os.environ["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"] = "1"
        os.environ["QT_ASSUME_STDERR_HAS_CONSOLE"] = "1"
        self.start(BUS_LAUNCHER, "--launch-immediately")
        self.program = None

    def start(self, *command, **options):
        options = {"stdin": subprocess.DEVNULL, "stdout": subprocess.DEVNULL, **options}
        process = subprocess.Popen([str(part) for part in command], start_new_session=True, **options)
        self.running.append(process)
        return process

    def start_program(self, *arguments, name="tarnprep"):
        self.end_program()
        self.program = self.start(self.folder / name, *arguments)

    def end_program(self):
        if self.program is not None and self.program.poll() is None:
            self.program.terminate()
            code = self.program.wait(PATIENCE)
            assert code == 0, f"the program ended with {code}"

    def close(self):
        for process in reversed(self.running):
            if process.poll() is None:
                os.killpg(process.pid, signal.SIGKILL)
                process.wait()
        self.screen.take_away()


class Walk:
    def __init__(self, atspi, glib, session):
        self.atspi = atspi
        self.glib = glib
        self.failure = glib.Error
        self.context = glib.MainContext.default()
        self.session = session
        self.offenders = []
        self.seen = 0
        self.heard = []
        self.listener = atspi.EventListener.new(self.hear)
        self.listener.register("object:state-changed:focused")

    def hear(self, event):
        try:
            self.heard.append(event.source.get_name())
        except self.failure:
            pass  # gone since

    def told_of_focus(self, *keys):
        """The names that a screen reader is told when these keys move the keyboard."""
        self.heard.clear()
        press(*keys)
        self.listen(EVENTS)
        return list(self.heard)

    def told_last(self, name, *keys):
        """Whether this name is the last that a screen reader is told when these keys move the keyboard."""
        self.heard.clear()
        press(*keys)

        def hears():
            self.listen(EVENTS)
            return name in self.heard
        wait_for(hears, f"{name!r} to be said")
        self.listen(EVENTS)
        return self.heard[-1:] == [name]

    def listen(self, seconds):
        over = []
        self.glib.timeout_add(int(seconds * 1000), lambda: over.append(True) and False)
        while not over:
            self.context.iteration(True)

    def alive(self):
        assert self.session.program.poll() is None, \
            f"the program ended with {self.session.program.returncode}"

    def application(self):
        self.alive()
        desktop = self.atspi.get_desktop(0)
        for at in range(desktop.get_child_count()):
            child = desktop.get_child_at_index(at)
            if child is not None and child.get_process_id() == self.session.program.pid:
                return child
        return None

    def children(self, thing, most=400):
        for at in range(min(thing.get_child_count(), most)):
            child = thing.get_child_at_index(at)
            if child is not None:
                yield child

    def states(self, thing):
        return thing.get_state_set()

    def showing(self, thing):
        return self.states(thing).contains(self.atspi.StateType.SHOWING)

    def all(self, root, depth=0):
        yield root
        if depth < 25:
            for child in self.children(root):
                yield from self.all(child, depth + 1)

    def find(self, role, name=None, root=None):
        def look():
            start = root or self.application()
            try:
                for thing in self.all(start) if start is not None else ():
                    if thing.get_role_name() == role and name in (None, thing.get_name()):
                        return thing
            except self.failure:
                self.alive()  # something went while it was being looked at
            return None
        return wait_for(look, f"{role} {name or ''}")

    def close_with(self, caption):
        """Presses a dialog's button and waits for the dialog to go."""
        windows = self.application().get_child_count()
        self.press(self.find("push button", caption))
        wait_for(lambda: self.application().get_child_count() < windows, "the dialog to close")

    def press(self, thing):
        actions = [thing.get_action_name(at) for at in range(thing.get_n_actions())]
        for wanted in ("Press", "Toggle", "ShowMenu"):
            if wanted in actions:
                try:
                    thing.do_action(actions.index(wanted))
                except self.failure:
                    # The item has opened a window that waits, and answers when that is closed.
                    self.alive()
                return
        raise AssertionError(f"{thing.get_name()}: no action to press among {actions}")

    def tree(self, where):
        """Looks at everything, once more where something went while it was being looked at."""
        for _ in range(3):
            found = len(self.offenders)
            try:
                self.look(where)
                return
            except self.failure:
                self.alive()
                del self.offenders[found:]
        raise AssertionError(f"{where}: the tree does not come to rest")

    def look(self, where):
        """Everything under the application: names of controls, tables with their cells."""
        self.alive()
        for window in self.children(self.application()):
            if not window.get_name():
                self.offenders.append(f"{where}: a window without a name")
        for thing in self.all(self.application()):
            self.seen += 1
            role, name = thing.get_role_name(), thing.get_name()
            thing.get_description()
            if role in CONTROLS and self.showing(thing) and not name:
                self.offenders.append(f"{where}: a {role} without a name, in "
                                      f"{thing.get_parent().get_name()!r}")
            if thing.get_table_iface() is not None:
                self.table(where, thing)
        self.alive()

    def table(self, where, table):
        rows, columns = table.get_n_rows(), table.get_n_columns()
        table.get_selected_rows()
        table.get_caption()
        for row in range(min(rows, 6)):
            for column in range(columns):
                cell = table.get_accessible_at(row, column)
                if cell is not None and self.showing(cell) and not cell.get_name():
                    self.offenders.append(f"{where}: cell {row}, {column} of {table.get_name()!r} "
                                          "has no name")
                table.is_selected(row, column)
        for column in range(columns):
            table.get_column_header(column)
        # Beyond the ends there is nothing, and nothing happens.
        for row, column in ((rows, 0), (0, columns), (-1, -1)):
            try:
                table.get_accessible_at(row, column)
            except Exception as error:  # pylint: disable=broad-except
                str(error)

    def labeled(self, where):
        """Boxes to type into and to choose from have a label that is related to them."""
        for thing in self.all(self.application()):
            if thing.get_role_name() in ("text", "combo box") and self.showing(thing):
                kinds = [relation.get_relation_type() for relation in thing.get_relation_set()]
                if self.atspi.RelationType.LABELLED_BY not in kinds:
                    self.offenders.append(f"{where}: {thing.get_name()!r} has no label")

    def reached_by_tab(self, where, form_name):
        """The controls of the form that can take the keyboard, against those that Tab reaches."""
        kind = self.atspi.StateType

        def in_form():
            form = self.find("filler", form_name)
            return [thing for thing in self.all(form)
                    if self.states(thing).contains(kind.FOCUSABLE) and self.showing(thing) and
                    self.states(thing).contains(kind.ENABLED) and
                    thing.get_role_name() in CONTROLS - {"table cell", "list item", "page tab"}]
        wanted = {(thing.get_role_name(), thing.get_name()) for thing in in_form()}
        reached = set()
        in_grid = False
        for _ in range(5 * len(wanted) + 10):
            told = self.told_of_focus("ctrl+Tab" if in_grid else "Tab")
            focused = [(thing.get_role_name(), thing.get_name()) for thing in in_form()
                       if self.states(thing).contains(kind.FOCUSED)]
            # A grid keeps Tab for its cells and is left by Ctrl+Tab. Its cell editor is not part of
            # the tree, but says its name.
            in_cell = any(", " in name for name in told) and not focused
            in_grid = in_cell or any(role == "table" for role, _ in focused)
            reached.update(focused)
            if in_cell:
                reached.update(thing for thing in wanted if thing[0] == "table")
            if reached >= wanted:
                break
        for missing in sorted(wanted - reached):
            self.offenders.append(f"{where}: Tab never reaches {missing}")


def step(walk, where, body):
    print(f"-- {where}", flush=True)
    body()
    walk.tree(where)


def choose_worksheet(walk, menu_item):
    walk.press(walk.find("menu item", menu_item))


WORKSHEETS = [("Introduction", "Introduction"), ("Management Goals", "Management Goals"),
              ("Suppression Resources", "Edit resources and costs"),
              ("Fire Management Zones", "Fire Management Zones")]
TABLES = [("NVC Table (Impacts)", "Net Value Change"),
          ("Suppression Cost per Acre", "Edit suppression costs per acre")]


def main():
    warnings.simplefilter("ignore", DeprecationWarning)
    atspi, glib = import_atspi()
    for tool in ("Xvfb", "xdotool", "dbus-run-session"):
        if shutil.which(tool) is None:
            skip(f"{tool} is not installed")
    if not os.path.exists(BUS_LAUNCHER):
        skip("at-spi2-core is not installed")
    if "TARN_OWN_BUS" not in os.environ:
        os.environ["TARN_OWN_BUS"] = "1"
        os.execvp("dbus-run-session", ["dbus-run-session", "--", sys.executable, "-B", *sys.argv])
    with tempfile.TemporaryDirectory(prefix="TARN test ") as home:
        os.environ.update(HOME=home, XDG_CONFIG_HOME=home + "/config", XDG_RUNTIME_DIR=home)
        os.chmod(home, 0o700)
        program = Path(home) / "program folder"
        shutil.copytree(sys.argv[1], program)
        session = Session(program)
        try:
            walk = Walk(atspi, glib, session)
            drive(walk, session, program)
        finally:
            session.close()
    for offender in walk.offenders:
        print(offender)
    print(f"{walk.seen} things looked at, {len(walk.offenders)} offenders")
    sys.exit(1 if walk.offenders else 0)


def drive(walk, session, program):
    start_and_dialogs(walk, session)
    shutil.copy(program / "FCD.new", program / "Costs" / "An empty one.fcd")
    worksheets(walk, session, program / "Costs" / "An empty one.fcd", WORKSHEETS)
    sample = next((program / "Costs").glob("UM*.FCD"))
    worksheets(walk, session, sample, WORKSHEETS + TABLES)
    cells_while_walking(walk, session)
    review(walk, session, program / "Costs" / "UMFOR26.FCD")
    session.end_program()


def start_and_dialogs(walk, session):
    session.start_program()
    step(walk, "start screen", lambda: walk.find("push button", "New data file"))
    walk.press(walk.find("push button", "New data file"))
    step(walk, "naming dialog, empty", lambda: walk.find("text", "Unit identifier"))
    walk.labeled("naming dialog")
    walk.find("text", "Unit identifier").set_text_contents("SNF")
    step(walk, "naming dialog, filled", lambda: walk.find("table cell"))
    walk.close_with("Cancel")
    walk.press(walk.find("push button", "Open data file"))
    step(walk, "open dialog", lambda: walk.find("push button", "Cancel"))
    walk.close_with("Cancel")
    walk.press(walk.find("menu item", "About ..."))
    step(walk, "about box", lambda: walk.find("push button", "OK"))
    walk.close_with("OK")
    walk.press(walk.find("menu item", "Contents"))
    step(walk, "help", lambda: walk.find("frame", "TARN Prep Help"))


def worksheets(walk, session, path, wanted):
    session.start_program(str(path))
    walk.find("menu item", "Introduction")
    keyboard_to(session.program)
    for menu_item, form in wanted:
        where = f"{form}, {path.name}"
        step(walk, where, lambda m=menu_item, f=form: (choose_worksheet(walk, m),
                                                        walk.find("filler", f)))
        walk.labeled(where)
        walk.reached_by_tab(where, form)


def cells_while_walking(walk, session):
    """The current cell moves and is edited while the tree is being read."""
    where = "entering the NVC table"
    choose_worksheet(walk, "NVC Table (Impacts)")
    walk.find("filler", "Net Value Change")
    walk.listen(EVENTS)
    # Arriving marks the current cell and opens no editor; F2 does.
    if (not walk.told_last("1", "Tab")
            or not walk.told_last("Net value change, dollars per acre", "Tab")
            or not walk.told_last("Resource, row 1", "F2")):
        walk.offenders.append(f"{where}: its editor is not told last: {walk.heard}")
    table = walk.find("table")
    headers = (table.get_column_header(0).get_name(), table.get_row_header(3).get_name())
    if headers != ("Resource", "Forage"):
        walk.offenders.append(f"{where}: its headers are called {headers}")
    choose_worksheet(walk, "Suppression Cost per Acre")
    walk.find("filler", "Edit suppression costs per acre")
    where = "cells of the cost table"
    walk.listen(EVENTS)
    press("Tab")  # from the zones' box on to the grid
    told = walk.told_of_focus("ctrl+Home", "Right")
    if "Fire size, in acres, To, Class 1" not in told:
        walk.offenders.append(f"{where}: the open cell editor does not say its cell: {told}")
    for keys in (["Down"], ["Right"], ["1", "2"], ["Down"], ["ctrl+End"], ["Escape"], ["ctrl+Home"]):
        press(*keys)
        walk.find("table", "Suppression cost per acre by fire size")
        walk.tree(where)


def review(walk, session, path):
    """TARN Review: its pages, and what a chart says of the figure that the keys reach."""
    session.start_program(str(path), name="tarnreview")
    walk.find("page tab", "Charts")
    keyboard_to(session.program)
    for page, part in (("Findings", "Findings"), ("Charts", "Costs of suppression resources"),
                       ("Report", "Report"), ("Compare", "What is compared")):
        where = f"TARN Review, {page}"
        step(walk, where, lambda p=page, n=part: (walk.press(walk.find("page tab", p)),
                                                  named(walk, n)))
    walk.press(walk.find("page tab", "Charts"))
    chart = named(walk, "Costs of suppression resources")
    if not chart.get_description().startswith("Costs, the dearest first: "):
        walk.offenders.append(f"TARN Review: a chart says {chart.get_description()!r}")


def named(walk, name):
    """What has this name and shows."""
    def look():
        try:
            for thing in walk.all(walk.application()):
                if thing.get_name() == name and walk.showing(thing):
                    return thing
        except walk.failure:
            walk.alive()  # something went while it was being looked at
        return None
    return wait_for(look, name)


if __name__ == "__main__":
    main()
