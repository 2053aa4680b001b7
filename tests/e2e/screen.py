"""A screen of its own with the program's window on it, worked with mouse and keys as a person would.

    with screen.Screen() as desk:
        window = desk.start("plan.dxf")
        window.command("ZOOM", "C", "0,0", "1000")
        window.click((100, 200))            # world coordinates of the view that was set last
        desk.picture("after.png")
"""

import os
import shutil
import subprocess
import time
from pathlib import Path

import program

TOOLS = ("Xvfb", "openbox", "xdotool", "import")
SIZE = (1400, 900)

try:
    from PIL import Image
except ImportError:
    Image = None


def missing():
    """What a test of the window lacks on this machine; nothing when it can run."""
    return [tool for tool in TOOLS if not shutil.which(tool)] + ([] if Image else ["PIL"])


def wait_for(what, condition, seconds=20.0):
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        value = condition()
        if value:
            return value
        time.sleep(0.05)
    raise program.Trouble(f"waited in vain: {what}")


class Screen:
    def __enter__(self):
        reader, writer = os.pipe()
        size = f"{SIZE[0]}x{SIZE[1]}x24"
        self.server = subprocess.Popen(["Xvfb", "-displayfd", str(writer), "-screen", "0", size, "-wr", "-noreset"],
                                       pass_fds=[writer], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)  # fmt: skip
        os.close(writer)
        with open(reader, encoding="ascii") as lines:
            number = lines.readline().strip()
        self.environment = {**os.environ, "DISPLAY": f":{number}", "QT_QPA_PLATFORM": "xcb",
                            "QUILLNOTE_FIXED_TIME": program.FIXED_TIME, "LC_ALL": "C.UTF-8", "LANGUAGE": "zh_CN"}  # fmt: skip
        # Somebody has to hand the keyboard back when a dialog closes.
        self.manager = subprocess.Popen(["openbox"], env=self.environment, stdout=subprocess.DEVNULL,
                                        stderr=subprocess.DEVNULL)  # fmt: skip
        # It answers a little before it can be trusted with windows.
        wait_for("the window manager", lambda: self.xdotool("get_desktop"))
        time.sleep(1.0)
        self.windows = []
        return self

    def __exit__(self, kind, value, trace):
        if kind:
            self.picture("failed.png")
        for window in self.windows:
            window.kill()
        for process in (self.manager, self.server):
            process.terminate()
            process.wait()

    def xdotool(self, *words):
        result = subprocess.run(["xdotool", *map(str, words)], env=self.environment, capture_output=True, text=True)
        return result.stdout.split()

    def picture(self, name):
        """What the screen shows; kept beside the test's other files."""
        subprocess.run(["import", "-window", "root", name], env=self.environment, check=True)
        return Image.open(name).convert("RGB")

    def start(self, *arguments):
        window = Window(self, arguments)
        window.find()
        return window


class Window:
    def __init__(self, screen, arguments):
        self.screen = screen
        command = [program.QUILLNOTE, *map(str, arguments)]
        self.log = open("window.log", "a", encoding="utf-8")
        self.process = subprocess.Popen(command, env=screen.environment, stdout=self.log, stderr=self.log)
        screen.windows.append(self)

    def find(self):
        """Waits for the window and gives it the whole screen."""
        screen = self.screen
        self.id = wait_for("the window", lambda: screen.xdotool("search", "--onlyvisible", "--name", "Quillnote"))[-1]
        screen.xdotool("windowmove", "--sync", self.id, 4, 24)
        screen.xdotool("windowsize", "--sync", self.id, SIZE[0] - 10, SIZE[1] - 40)
        self.area = wait_for("the drawing", self.settled_area)
        self.centre, self.height = (0.0, 0.0), 1.0

    def settled_area(self):
        """The drawing area once it stays as it is: toolbars come and the window grows."""
        before = self.find_area()
        time.sleep(0.7)
        return before if before == self.find_area() else None

    def find_area(self):
        """The drawing area: black, left, top, right and bottom pixel."""
        picture = self.screen.picture("area.png")
        is_black = picture.convert("L").point(lambda value: 255 if value == 0 else 0)
        columns = [x for x in range(0, SIZE[0], 1) if self.share(is_black.crop((x, 0, x + 1, SIZE[1]))) > 0.3]
        rows = [y for y in range(0, SIZE[1], 1) if self.share(is_black.crop((0, y, SIZE[0], y + 1))) > 0.3]
        if not columns or not rows or rows[-1] > SIZE[1] - 20:
            return None
        return columns[0], rows[0], columns[-1] + 1, rows[-1] + 1

    @staticmethod
    def share(strip):
        return strip.histogram()[255] / (strip.width * strip.height)

    # What a person does ----------------------------------------------------------------------------

    def keys(self, *combinations):
        for combination in combinations:
            self.screen.xdotool("key", "--clearmodifiers", combination)
            time.sleep(0.15)

    def type(self, text):
        self.screen.xdotool("type", "--clearmodifiers", "--delay", 12, text)
        time.sleep(0.1)

    def command(self, *answers):
        """Typed at the command line, each answer ended with Enter."""
        for answer in answers:
            if answer:
                self.type(answer)
            self.keys("Return")

    def show(self, centre, height):
        """Puts a place into the middle of the view, so that clicks can be given in world coordinates."""
        self.command("ZOOM", "C", f"{centre[0]},{centre[1]}", str(height))
        self.centre, self.height = centre, height
        time.sleep(0.5)

    def unit(self):
        """World units of a pixel."""
        return self.height / (self.area[3] - self.area[1])

    def pixel(self, place):
        left, top, right, bottom = self.area
        x = (left + right) / 2 + (place[0] - self.centre[0]) / self.unit()
        y = (top + bottom) / 2 - (place[1] - self.centre[1]) / self.unit()
        return round(x), round(y)

    def point(self, place):
        self.screen.xdotool("mousemove", *self.pixel(place))
        time.sleep(0.15)

    def click(self, place, button=1):
        self.point(place)
        self.screen.xdotool("click", button)
        time.sleep(0.25)

    def double_click(self, place):
        self.point(place)
        self.screen.xdotool("click", "--repeat", 2, "--delay", 60, 1)
        time.sleep(0.25)

    def title(self):
        return " ".join(self.screen.xdotool("getwindowname", self.id))

    def drag(self, start, end, button=1):
        self.point(start)
        self.screen.xdotool("mousedown", button)
        for part in (0.25, 0.5, 0.75, 1.0):
            self.point(tuple(a + (b - a) * part for a, b in zip(start, end)))
        self.screen.xdotool("mouseup", button)
        time.sleep(0.3)

    def wait_closed(self):
        wait_for("the program to end", lambda: self.process.poll() is not None)
        return self.process.returncode

    def is_running(self):
        return self.process.poll() is None

    def kill(self):
        if self.is_running():
            self.process.kill()
        self.process.wait()
        self.log.close()


def read(path):
    return Path(path).read_bytes()
