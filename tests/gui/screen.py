"""A screen of a test's own, the keyboard of the program that shows there, and waiting for either."""
import os
import signal
import subprocess
import time
from pathlib import Path

SKIPPED = 77  # the exit status of a test that cannot run here
DISPLAY = Path(__file__).resolve().parents[2] / "tools/tour/display.sh"
PATIENCE = 60  # seconds


def wait_for(condition, what):
    """What the condition gives as soon as that is something."""
    end = time.monotonic() + PATIENCE
    while time.monotonic() < end:
        found = condition()
        if found:
            return found
        time.sleep(0.05)
    raise AssertionError(f"waited in vain for {what}")


class Screen:
    """An X server; programs that are started while there is one show on it."""

    def __init__(self):
        words = []
        for _ in range(3):  # another server may take the number first
            self.shell = subprocess.Popen(
                ["sh", "-c", '. "$0"; open_display 1024x768x24; echo "$DISPLAY $display_pid"; wait', DISPLAY],
                stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
            words = self.shell.stdout.readline().split()
            if words:
                break
        assert words, "no X server starts"
        os.environ["DISPLAY"], self.pid = words[0], int(words[1])
        os.environ["QT_QPA_PLATFORM"] = "xcb"

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.take_away()

    def take_away(self):
        """At once, as when the connection to a distant screen breaks."""
        if self.shell.poll() is None:
            os.kill(self.pid, signal.SIGKILL)
            self.shell.wait(PATIENCE)


def xdotool(*words):
    return subprocess.run(["xdotool", *words], capture_output=True, text=True, check=False, timeout=PATIENCE).stdout


def press(*keys):
    xdotool("key", "--clearmodifiers", "--delay", "20", *keys)


def keyboard_to(program):
    """Without a window manager nobody gives the keyboard to a window."""
    windows = wait_for(lambda: xdotool("search", "--onlyvisible", "--pid", str(program.pid)).split(), "a window")
    xdotool("windowfocus", "--sync", windows[-1])
