#!/usr/bin/python3
"""Uses the helper as a user does, on one panel, within scripts/desktop_session.

Usage: session.py PANEL HELPER AGENT_SIMULATOR FOLDER; FOLDER gets result.json and the screenshots.

What is shown is read from the screen alone: the compositors of Wayland run nested in the session's X server, so their
screens are this one's too. The icon is found by its colours, the window by the colour of its status, words by an OCR
program, wherever they stand.
"""

import io
import json
import os
import re
import subprocess
import sys
import time
from pathlib import Path

from PIL import Image, ImageChops, ImageGrab, ImageOps, ImageStat

from panels import ITEMS, PANELS, Opens, call

GREEN, RED = (0x1D, 0x87, 0x3B), (0xD7, 0x2C, 0x26)
OTHER_WINDOW = (0xC0, 0x20, 0xC0)
BARE_DESKTOP = (500, 560)
FINGER = 40  # pixels, about 10 mm
DOUBLE_CLICK = 0.5  # seconds within which two clicks are one double click
LEFT, RIGHT = 1, 3
MENU = {"unprotected", "settings", "log", "quit"}


class Failure(Exception):
    pass


class NotApplicable(Exception):
    pass


def until(what, condition, seconds=10):
    """What `condition` returns once it is something; `what` is said of it otherwise."""
    end = time.monotonic() + seconds
    while not (result := condition()):
        if time.monotonic() > end:
            raise Failure(what)
        time.sleep(0.05)
    return result


def run(*command):
    return subprocess.run(command, stdin=subprocess.DEVNULL, capture_output=True, text=True).stdout


def is_in(image, low, high):
    """Where the colour is between `low` and `high`, as a mask."""
    bands = [
        band.point(lambda value, a=a, b=b: 255 * (a <= value <= b)) for band, a, b in zip(image.split(), low, high)
    ]
    return ImageChops.darker(ImageChops.darker(bands[0], bands[1]), bands[2])


def area(image, color):
    """The bounds of what has exactly this colour, if that is most of them."""
    mask = is_in(image, color, color)
    box = mask.getbbox()
    if box and box[2] - box[0] >= 100 and box[3] - box[1] >= 20 and ImageStat.Stat(mask.crop(box)).mean[0] > 128:
        return box
    return None


def inside(image, color):
    """A place with nothing but this colour around it; nothing if there is none."""
    cell = 8
    mask = is_in(image, color, color)
    coarse = mask.resize((image.width // cell, image.height // cell), Image.BOX)
    found = [number for number, value in enumerate(coarse.tobytes()) if value == 255]
    if not found:
        return None
    row, column = divmod(found[len(found) // 2], coarse.width)
    return (column * cell + cell // 2, row * cell + cell // 2)


def gap(one, other):
    """How many pixels are between two rectangles, across and down."""
    return tuple(max(0, one[i] - other[i + 2], other[i] - one[i + 2]) for i in (0, 1))


def largest_change(before, after):
    """The bounds of the largest area that has changed, or nothing if that is no more than an icon."""
    cell = 16
    changed = ImageChops.difference(before, after).convert("L").point(lambda value: 255 * (value > 0))
    coarse = changed.resize((changed.width // cell, changed.height // cell), Image.BOX)
    left = {(x, y) for x in range(coarse.width) for y in range(coarse.height) if coarse.getpixel((x, y)) > 8}
    largest = set()
    while left:
        reached, edge = set(), {left.pop()}
        while edge:
            reached |= edge
            edge = {(x + i, y + j) for x, y in edge for i, j in ((0, 1), (1, 0), (0, -1), (-1, 0))} & left
            left -= edge
        largest = max(largest, reached, key=len)
    if len(largest) < 15:
        return None
    columns, rows = zip(*largest)
    return tuple(cell * value for value in (min(columns), min(rows), max(columns) + 1, max(rows) + 1))


def words(image):
    """The words in the picture with their centres."""
    scale = 3 if image.width * image.height < 150_000 else 2
    gray = image.convert("L").resize((image.width * scale, image.height * scale), Image.LANCZOS)
    if ImageStat.Stat(gray).median[0] < 128:
        gray = ImageOps.invert(gray)
    data = io.BytesIO()
    ImageOps.expand(gray, 20, fill=ImageStat.Stat(gray).median[0]).save(data, "PPM")
    lines = subprocess.run(
        ["tesseract", "-", "-", "--psm", "11", "tsv"],
        input=data.getvalue(),
        stdout=subprocess.PIPE,
        stderr=subprocess.DEVNULL,
        env=os.environ | {"OMP_THREAD_LIMIT": "1"},
        check=True,
    ).stdout.decode()
    found = {}
    for line in lines.splitlines()[1:]:
        fields = line.split("\t")
        if word := re.sub(r"\W", "", fields[-1]).lower():
            x, y, width, height = map(int, fields[6:10])
            found.setdefault(word, (((x + width / 2 - 20) // scale), ((y + height / 2 - 20) // scale)))
    return found


class Session:
    def __init__(self, panel, helper, agent, folder):
        self.panel = panel
        self.folder = folder
        self.logs = Path(os.environ["QUORVALE_SESSION"])
        self.home = Path(os.environ["HOME"])
        self.programs = []
        self.icon_clicked = 0
        self.helper_command, self.agent_command = helper, agent

    # The session's programs

    def spawn(self, name, command, **options):
        with open(self.logs / f"{name}.log", "wb") as log:
            process = subprocess.Popen(command, stdout=log, stderr=log, **({"stdin": subprocess.DEVNULL} | options))
        self.programs.append(process)
        return process

    def start(self):
        # What the session looks like is the panel's own affair.
        for name in ("QT_QPA_PLATFORMTHEME", "KDE_SESSION_VERSION", "GTK_THEME"):
            del os.environ[name]
        os.environ.update(self.panel.environment)
        for name, text in self.panel.files.items():
            path = self.home / name
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(text)
        # The panels' own services; nothing of them is started unless it is asked for.
        for file in Path("/usr/share/dbus-1/services").glob("*.service"):
            if not re.search(self.panel.without_services, file.name):
                (self.logs / "services" / file.name).unlink(missing_ok=True)
                (self.logs / "services" / file.name).symlink_to(file)
        run("sh", "-c", call("org.freedesktop.DBus", "/", "org.freedesktop.DBus.ReloadConfig"))
        self.agent = self.spawn("agent", [self.agent_command, "--state", '{"active":false}'], stdin=subprocess.PIPE)
        until("no agent", lambda: self.logged("agent", "ready"))
        for number, (command, ready) in enumerate(self.panel.programs):
            self.spawn(f"panel-{number}", ["sh", "-c", command])
            until(
                f"{command}: not ready",
                lambda ready=ready: subprocess.run(["sh", "-c", ready], capture_output=True).returncode == 0,
                60,
            )
        self.helper = self.spawn("helper", [self.helper_command])
        until("the helper doesn't start", lambda: self.logged("helper", "Quorvale Helper launched"), 30)
        run("gdbus", "emit", "--session", "--object-path", "/com/quorvale/Updater", "--signal",
            "com.quorvale.DistributedNotification.QuorvaleHelper",
            "'{\"running\":false,\"restart\":true,\"terminate\":false}'")
        until("the helper doesn't register", lambda: self.logged("agent", "registered"), 30)

    def logged(self, name, text):
        return text in (self.logs / f"{name}.log").read_text(errors="replace")

    def set_status(self, is_on):
        self.agent.stdin.write(f"updateProtectionStatus {str(is_on).lower()}\n".encode())
        self.agent.stdin.flush()

    # The user's eyes and hands

    def screen(self):
        return ImageGrab.grab(xdisplay="").convert("RGB")

    def keep(self, name):
        self.screen().save(self.folder / f"{name}.png")

    def click(self, place, button=LEFT):
        run("xdotool", "mousemove", *(str(int(value)) for value in place))
        run("xdotool", "click", str(button))

    def click_icon(self, button=LEFT):
        """Not so soon after the last time that it would be a double click, which hosts give a meaning of its own."""
        time.sleep(max(0, self.icon_clicked + DOUBLE_CLICK - time.monotonic()))
        self.click(self.icon, button)
        self.icon_clicked = time.monotonic()

    def press(self, key):
        run("xdotool", "key", key)

    def settled(self):
        """The screen once it has stopped to change."""
        before = self.screen()
        for _ in range(100):
            time.sleep(0.15)
            after = self.screen()
            if not ImageChops.difference(before, after).getbbox():
                break
            before = after
        return after

    def find_icon(self):
        """The bounds of the shield along the edges of the screen."""
        screen = self.screen()
        height = screen.height
        for top, bottom in ((0, 64), (height - 64, height)):
            strip = screen.crop((0, top, screen.width, bottom))
            # The shield's gradient, and what scaling makes of it.
            box = is_in(strip, (36, 100, 205), (72, 150, 245)).getbbox()
            if box and 8 <= box[2] - box[0] <= 48 and 8 <= box[3] - box[1] <= 48:
                return (box[0], box[1] + top, box[2], box[3] + top)
        return None

    @property
    def icon(self):
        x, y, right, bottom = self.icon_box
        return ((x + right) / 2, (y + bottom) / 2)

    def new_words(self):
        """The words in what is on the screen now and wasn't on the bare one."""
        screen = self.screen()
        box = largest_change(self.bare, screen)
        if not box:
            return {}
        return {word: (box[0] + x, box[1] + y) for word, (x, y) in words(screen.crop(box)).items()}

    def shows(self, is_on):
        """What tells this status: the window's box, or the menu's item."""
        if self.panel.opens == Opens.WINDOW:
            return area(self.screen(), GREEN if is_on else RED)
        place = self.new_words().get("protected" if is_on else "unprotected")
        return place and (*place, *place)

    def shows_nothing(self):
        """Whether neither window nor menu is open."""
        screen = self.screen()
        if self.panel.opens == Opens.WINDOW:
            return not area(screen, GREEN) and not area(screen, RED)
        return not self.new_words().keys() & (MENU | {"protected"})

    def open(self):
        self.click_icon()
        what = "the window" if self.panel.opens == Opens.WINDOW else "a menu with the status"
        return until(f"a click doesn't open {what}", lambda: self.shows(False))

    def close(self):
        """Whatever is open goes, however."""
        run("xdotool", "mousemove", *map(str, BARE_DESKTOP))
        if not self.new_words():
            return
        for action in (
            lambda: self.press("Escape"),
            lambda: self.click(BARE_DESKTOP),
            self.click_icon,
        ):
            action()
            try:
                until("", lambda: not self.new_words(), 3)
                return
            except Failure:
                pass

    def open_menu(self):
        self.click_icon(LEFT if self.panel.opens == Opens.MENU else RIGHT)
        return until("no menu opens", lambda: (found := self.new_words()).keys() & {"log", "quit"} and found)

    def choose(self, item):
        found = self.open_menu()
        if item not in found:
            raise Failure(f"no \"{item}\" in the menu, but {' '.join(found)}")
        self.click(found[item])

    # The checks, in their order

    def check_icon(self):
        try:
            self.icon_box = until("no icon is in the panel", self.find_icon, 60)
        except Failure as failure:
            known = run("sh", "-c", ITEMS).strip() or "nothing, there is none"
            raise Failure(f"{failure}; the watcher knows {known}") from None
        self.settled()
        self.icon_box = until("the icon is gone again", self.find_icon)
        # A highlight or a tooltip of the host must not count as a menu.
        run("xdotool", "mousemove", *map(str, BARE_DESKTOP))
        self.bare = self.settled()
        self.keep("icon")

    def check_open(self):
        self.box = self.open()
        self.keep("open")

    def around(self, box):
        """What has come up around `box`, up to where nothing has."""
        changed = ImageChops.difference(self.bare, self.screen()).convert("L").point(lambda value: 255 * (value > 0))
        left, top, right, bottom = map(int, box)
        while top > 0 and changed.crop((left, top - 1, right + 1, top)).getbbox():
            top -= 1
        while bottom < changed.height and changed.crop((left, bottom, right + 1, bottom + 1)).getbbox():
            bottom += 1
        return (left, top, right, bottom)

    def check_place(self):
        across, down = gap(self.around(self.box), self.icon_box)
        if self.panel.at_edge:
            across = 0
        if max(across, down) > FINGER:
            raise Failure(f"{across} px across and {down} px down from the icon")

    def check_live(self):
        self.set_status(True)
        until("Protected is not shown", lambda: self.shows(True))
        self.keep("protected")
        self.set_status(False)
        until("Unprotected is not shown again", lambda: self.shows(False))

    def dismissed(self, how):
        until(f"{how} doesn't dismiss it", self.shows_nothing)
        self.settled()
        if not self.shows_nothing():
            raise Failure(f"{how} dismisses it and it opens again")

    def check_escape(self):
        if self.shows_nothing():
            self.open()
        self.press("Escape")
        self.dismissed("Escape")

    def check_elsewhere(self):
        self.open()
        self.click(BARE_DESKTOP)
        self.dismissed("a click elsewhere")

    def check_second(self):
        self.open()
        self.click_icon()
        self.dismissed("a second click")

    def check_menu(self):
        found = self.open_menu()
        self.keep("menu")
        missing = [item for item in sorted(MENU) if item not in found]
        if missing:
            raise Failure(f"the menu lacks {', '.join(missing)}; it reads: {' '.join(found)}")

    def check_status(self):
        self.choose("unprotected")
        until("the menu's first line doesn't open the window", lambda: area(self.screen(), RED))
        self.keep("status")
        self.press("Escape")
        until("Escape doesn't dismiss the window", lambda: not area(self.screen(), RED))

    def log_shown(self):
        return "launched" in self.new_words()

    def check_log(self):
        self.other = self.spawn("other", [sys.executable, str(Path(__file__).with_name("other_window.py"))])
        until("the other window isn't shown", lambda: area(self.screen(), OTHER_WINDOW), 30)
        self.click(BARE_DESKTOP)
        self.bare = self.settled()
        self.choose("log")
        until("the log isn't shown", self.log_shown)
        self.keep("log")

    def check_raise(self):
        if not self.log_shown():
            raise NotApplicable("no log")
        # Where the log window isn't, or else the other one's tab.
        if not (place := inside(self.screen(), OTHER_WINDOW) or self.panel.other_tab):
            raise NotApplicable("the log covers all")
        self.click(place)
        until("the other window doesn't come to the front", lambda: not self.log_shown())
        self.bare = self.settled()
        self.choose("log")
        until("the log stays behind", self.log_shown)
        self.keep("raised")

    def end_other(self):
        """Ends the other window and the log."""
        self.other.terminate()
        self.other.wait()
        if place := words(self.settled()).get("launched"):
            self.click(place)
            self.press("Escape")
            until("Escape doesn't close the log", lambda: not self.log_shown())
        self.bare = self.settled()

    def check_quit(self):
        self.choose("quit")
        try:
            status = self.helper.wait(10)
        except subprocess.TimeoutExpired:
            raise Failure("the helper goes on") from None
        if status:
            raise Failure(f"the helper ends with {status}")

    def check(self):
        results = {}
        names = [name.removeprefix("check_") for name in vars(Session) if name.startswith("check_")]
        for name in names:
            started = time.monotonic()
            try:
                if reason := self.panel.not_applicable.get(name):
                    raise NotApplicable(reason)
                if name != "icon" and results.get("icon", [""])[0] == "FAIL":
                    raise NotApplicable("no icon")
                if name == "place" and results["open"][0] != "pass":
                    raise NotApplicable("nothing opens")
                if name == "quit" and hasattr(self, "other"):
                    self.end_other()
                if name in ("elsewhere", "second", "menu", "status", "log", "quit"):
                    self.close()
                getattr(self, f"check_{name}")()
                results[name] = ["pass", ""]
            except NotApplicable as reason:
                results[name] = ["n/a", str(reason)]
            except Failure as failure:
                results[name] = ["FAIL", str(failure)]
                self.keep(f"{name}-failed")
            print(f"  {name:10} {time.monotonic() - started:5.1f} s  {' '.join(results[name])}", flush=True)
        return results


def main():
    name, helper, agent, folder = sys.argv[1:]
    session = Session(PANELS[name], helper, agent, Path(folder))
    try:
        session.start()
        results = session.check()
    except Failure as failure:
        results = {"icon": ["FAIL", str(failure)]}
        session.keep("failed")
        print(f"  {failure}")
    finally:
        for program in reversed(session.programs):
            program.terminate()
    for log in session.logs.glob("*.log"):
        (Path(folder) / log.name).write_bytes(log.read_bytes())
    (Path(folder) / "result.json").write_text(json.dumps(results))


main()
