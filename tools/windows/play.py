#!/usr/bin/env python3
"""Plays the main job twice with the same real keys: with the archive for Windows, unpacked for a new Wine, and with
the program of this system. Both have to make the same data file, byte for byte, and a report of the same words.

Usage: tools/windows/play.py [here|windows]...    where to play; both, if nothing is said
Leaves data files and pictures in build-windows-program/played.
"""
import os
import shutil
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
SCRIPTS = Path(__file__).resolve().parent / "play"
BUILT, BUILT_FOR_WINDOWS = ROOT / "build", ROOT / "build-windows-program"
PLAYED = BUILT_FOR_WINDOWS / "played"
WINE = shutil.which("wine64") or "/usr/lib/wine/wine64"
PATIENCE = 300  # seconds, for one script
KEY_DELAY = "40"  # milliseconds; Wine leaves out keys that follow faster
# A file's catalog says when its tables were made.
SHARED = {"SOURCE_DATE_EPOCH": "1767225600", "TZ": "UTC"}
PLAYER = {"QT_QPA_GENERIC_PLUGINS": "tarntour", "TARN_TOUR_OUTSIDE": "1"}


class Trouble(Exception):
    pass


class Side:
    """The program of one system, in a folder of its own."""

    def __init__(self, name):
        self.name = name
        self.folder = PLAYED / name
        self.program = self.folder / "program"
        shutil.rmtree(self.folder, ignore_errors=True)
        self.folder.mkdir(parents=True)

    def data_file(self):
        found = list((self.program / "Costs").glob("MHF*.FCD"))
        if len(found) != 1:
            raise Trouble(f"{self.name}: {len(found)} data files were made")
        return found[0]

    def play(self, script, *arguments):
        pictures = self.folder / script
        pictures.mkdir()
        path = pictures / "script.txt"
        text = (SCRIPTS / f"{script}.txt").read_text(encoding="utf-8")
        if "$DATA_FILE" in text:
            text = text.replace("$DATA_FILE", self.data_file().name)
        path.write_text(text, encoding="utf-8")
        process = subprocess.Popen(self.command("tarnprep", *arguments), stdout=subprocess.PIPE, text=True,
                                   env=self.player_environment(str(path), str(pictures)))
        try:
            self.attend(process, pictures)
            return process.wait(PATIENCE)
        finally:
            process.kill()

    def attend(self, process, pictures):
        """Does what the player inside the program asks for."""
        for line in process.stdout:
            verb, _, rest = line.rstrip("\r\n").partition(" ")
            if verb == "key":
                subprocess.run(["xdotool", "key", "--delay", KEY_DELAY, rest], check=True)
            elif verb == "type":
                subprocess.run(["xdotool", "type", "--delay", KEY_DELAY, "--", rest], check=True)
            elif verb == "kill":
                process.kill()
            elif verb == "end":
                self.end_session(process)
            elif verb == "second":
                self.expect(self.play("second", self.named(self.data_file())), 0)
                (pictures / "answered").touch()
            elif rest.endswith(".png"):
                print(f"  {rest}", flush=True)

    def expect(self, status, wanted):
        if status != wanted:
            raise Trouble(f"{self.name}: the program ended with status {status} instead of {wanted}")

    def run(self, *command):
        done = subprocess.run(self.command(*command), env=self.environment(), check=False)
        self.expect(done.returncode, 0)


class Here(Side):
    def __init__(self):
        super().__init__("here")
        shutil.copytree(BUILT / "TARNPrep", self.program)

    def named(self, path):
        return str(path)

    def command(self, program, *arguments):
        return [str(self.program / program), *arguments]

    def end_session(self, process):
        process.terminate()

    def environment(self):
        return {**os.environ, **SHARED, "QT_QPA_PLATFORM": "offscreen"}

    def player_environment(self, script, pictures):
        return {**os.environ, **SHARED, **PLAYER, "QT_QPA_PLATFORM": "xcb",
                "QT_PLUGIN_PATH": str(BUILT / "tour-player"),
                "TARN_TOUR_SCRIPT": script, "TARN_TOUR_PICTURES": pictures}


class Windows(Side):
    def __init__(self):
        super().__init__("windows")
        archives = list((ROOT / "build-package").glob("TARNPrep-*-windows.zip"))
        if len(archives) != 1:
            raise Trouble(f"{len(archives)} archives for Windows lie in build-package")
        shutil.unpack_archive(archives[0], self.folder)
        next(self.folder.glob("TARNPrep-*")).rename(self.program)
        # The player presses no keys there, but is linked to what could.
        libraries = subprocess.run([ROOT / "tools/windows/libraries.py"], capture_output=True, text=True, check=True)
        self.qt_test = ";".join(f"Z:{folder}/bin" for folder in libraries.stdout.strip().split(";"))

    def named(self, path):
        return "Z:" + str(path).replace("/", "\\")

    def command(self, program, *arguments):
        return [WINE, str(self.program / f"{program}.exe"), *arguments]

    def end_session(self, process):
        subprocess.run([WINE, "wineboot", "--end-session"], env=self.environment(), check=False)

    # Wine keeps Qt's variables from its programs, and gives them what has its own name before theirs.
    def environment(self):
        return {**os.environ, **SHARED, "WINEPREFIX": str(self.folder / "wine"), "WINEDEBUG": "-all",
                "WINEDLLOVERRIDES": "mscoree,mshtml=", "WINEQT_QPA_PLATFORM": "offscreen"}

    def player_environment(self, script, pictures):
        player = {name.replace("QT_", "WINEQT_"): value for name, value in PLAYER.items()}
        return {**self.environment(), **player, "WINEQT_QPA_PLATFORM": "windows", "WINEPATH": self.qt_test,
                "WINEQT_PLUGIN_PATH": f"Z:{BUILT_FOR_WINDOWS}/tour-player",
                "TARN_TOUR_SCRIPT": f"Z:{script}", "TARN_TOUR_PICTURES": f"Z:{pictures}"}


def play(side):
    print(f"{side.name}:", flush=True)
    side.expect(side.play("first-day"), 0)
    side.play("killed", side.named(side.data_file()))
    print(f"  killed, which left {', '.join(path.name for path in side.data_file().parent.glob('MHF*'))}")
    side.expect(side.play("next-day"), 0)
    side.play("ended", side.named(side.data_file()))
    side.expect(side.play("after", side.named(side.data_file())), 0)
    report = side.folder / "report.pdf"
    side.run("fcdtool", "report", side.named(side.data_file()), "--to", side.named(report))
    return side.data_file().read_bytes(), words_of(report)


# In no order: letters are a little wider on one system than on the other, and words beside each other are found in
# another order then.
def words_of(report):
    done = subprocess.run(["pdftotext", str(report), "-"], capture_output=True, text=True, check=True)
    return sorted(done.stdout.split())


def on_display(work):
    answer, number = os.pipe()
    display = subprocess.Popen(["Xvfb", "-displayfd", str(number), "-screen", "0", "1280x900x24", "-nolisten", "tcp"],
                               pass_fds=[number], stderr=subprocess.DEVNULL)
    os.close(number)
    try:
        with os.fdopen(answer) as line:
            os.environ["DISPLAY"] = ":" + line.readline().strip()
        work()
    finally:
        display.terminate()
        display.wait()


def main(names):
    sides = {"here": Here, "windows": Windows}
    made = [play(sides[name]()) for name in names or sides]
    for what, parts in zip(("data files", "words of the reports"), zip(*made)):
        if any(part != parts[0] for part in parts):
            raise Trouble(f"the {what} are not the same")
    if len(made) > 1:
        print("Both data files are the same, and so are the words of the reports.")


try:
    on_display(lambda: main(sys.argv[1:]))
except Trouble as trouble:
    sys.exit(str(trouble))
