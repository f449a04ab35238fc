"""The panels: what runs in a session of each, and what of it a user meets differently."""

from dataclasses import dataclass, field
from enum import Enum


class Opens(Enum):
    """What the host does on a primary click."""

    WINDOW = 1
    MENU = 2


@dataclass
class Panel:
    # Commands with the condition, another command, under which the next one starts.
    programs: list[tuple[str, str]]
    opens: Opens = Opens.WINDOW
    # Files under the home folder.
    files: dict[str, str] = field(default_factory=dict)
    environment: dict[str, str] = field(default_factory=dict)
    # Whether the window is at the icon's edge of the screen rather than at the icon.
    at_edge: bool = False
    not_applicable: dict[str, str] = field(default_factory=dict)
    without_services: str = "portal|Tracker|a11y"
    menu_keys: bool = False


WINDOW_MANAGER = "xprop -root _NET_SUPPORTING_WM_CHECK | grep -q 0x"
XFWM = ("xfwm4 --compositor=off --sm-client-disable", WINDOW_MANAGER)
HOST = (
    "gdbus call --session -d org.kde.StatusNotifierWatcher -o /StatusNotifierWatcher"
    " -m org.freedesktop.DBus.Properties.Get org.kde.StatusNotifierWatcher IsStatusNotifierHostRegistered | grep -q true"
)

PANELS = {
    "xfce4-panel": Panel([XFWM, ("xfce4-panel --disable-wm-check", HOST)], environment={"XDG_CURRENT_DESKTOP": "XFCE"}),
    "tint2": Panel(
        [XFWM, ("tint2", "xdotool search --onlyvisible --class tint2")],
        environment={"XDG_CURRENT_DESKTOP": "tint2"},
    ),
    "lxqt": Panel(
        [XFWM, ("lxqt-panel", HOST)],
        environment={"XDG_CURRENT_DESKTOP": "LXQt"},
        files={
            ".config/lxqt/panel.conf": """panels=panel1
[panel1]
plugins=taskbar, statusnotifier, worldclock
position=Bottom
panelSize=32
[statusnotifier]
type=statusnotifier
[taskbar]
type=taskbar
[worldclock]
type=worldclock
"""
        },
    ),
    "mate": Panel(
        [("marco --no-composite", WINDOW_MANAGER), ("mate-panel", HOST)],
        environment={"XDG_CURRENT_DESKTOP": "MATE"},
    ),
    "plasma": Panel(
        [
            ("kwin_x11 --no-kactivities", WINDOW_MANAGER),
            (
                "kded5",
                "gdbus call --session -d org.kde.kded5 -o /kded"
                " -m org.kde.kded5.loadModule statusnotifierwatcher | grep -q true",
            ),
            ("plasmashell --no-respawn", HOST),
        ],
        environment={"XDG_CURRENT_DESKTOP": "KDE", "KDE_FULL_SESSION": "true", "KDE_SESSION_VERSION": "5"},
    ),
}
