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
    # The release of Debian it is taken from.
    release: int = 12
    # Whether all has held in each of twenty runs.
    is_steady: bool = False
    opens: Opens = Opens.WINDOW
    # Files under the home folder.
    files: dict[str, str] = field(default_factory=dict)
    environment: dict[str, str] = field(default_factory=dict)
    # The services that are not to be started when someone asks for them.
    without_services: str = "portal|Tracker|a11y"
    # Whether the window is at the icon's edge of the screen rather than at the icon.
    at_edge: bool = False
    # Where the tab of a covered window is, if windows have tabs.
    other_tab: tuple[int, int] | None = None
    # Checks that make no sense here, with the reason.
    not_applicable: dict[str, str] = field(default_factory=dict)


WINDOW_MANAGER = "xprop -root _NET_SUPPORTING_WM_CHECK | grep -q 0x"
XFWM = ("xfwm4 --compositor=off --sm-client-disable", WINDOW_MANAGER)


def call(name, path, method, arguments=""):
    return f"gdbus call --session -d {name} -o {path} -m {method} {arguments}"


WATCHER = call("org.kde.StatusNotifierWatcher", "/StatusNotifierWatcher", "org.freedesktop.DBus.Properties.Get",
               "org.kde.StatusNotifierWatcher {}")
HOST = WATCHER.format("IsStatusNotifierHostRegistered") + " | grep -q true"
ITEMS = WATCHER.format("RegisteredStatusNotifierItems")
WATCHER_MODULE = "statusnotifierwatcher | grep -q true"
OVERVIEW = call("org.gnome.Shell", "/org/gnome/Shell", "org.freedesktop.DBus.Properties.{}",
                "org.gnome.Shell OverviewActive {}")


def gnome(start, release=12, is_steady=False, **environment):
    """GNOME Shell with the AppIndicator extension, started by `start`, out of its overview."""
    return Panel(
        [
            (
                "/usr/bin/python3 -m dbusmock --system --template logind",
                "gdbus call --system -d org.freedesktop.login1 -o /org/freedesktop/login1"
                " -m org.freedesktop.DBus.Mock.AddSession c1 seat0 $(id -u) $(id -un) true",
            ),
            # An overview that is left before it is all there keeps the shell from ever showing an icon.
            (start, f"{HOST} && grep -q 'GNOME Shell started' $QUORVALE_SESSION/panel-1.log"),
            (OVERVIEW.format("Set", "'<false>'"), f"{OVERVIEW.format('Get', '')} | grep -q false"),
        ],
        release=release,
        is_steady=is_steady,
        opens=Opens.MENU,
        files={
            ".config/glib-2.0/settings/keyfile": """[org/gnome/shell]
enabled-extensions=['ubuntu-appindicators@ubuntu.com']
disable-user-extensions=false
welcome-dialog-last-shown-version='999'
[org/gnome/desktop/interface]
enable-animations=false
[org/gnome/desktop/notifications]
show-banners=false
[org/gnome/desktop/background]
picture-options='none'
picture-uri=''
"""
        },
        environment={"XDG_CURRENT_DESKTOP": "GNOME", "XDG_SESSION_ID": "c1", "GSETTINGS_BACKEND": "keyfile"} | environment,
        not_applicable={"place": "the host opens its menu"},
    )


def sway(release, **not_applicable):
    """sway with waybar in its default look; windows that cover one another have tabs."""
    return Panel(
        [
            (
                "WLR_BACKENDS=x11 WLR_RENDERER=pixman WLR_NO_HARDWARE_CURSORS=1 WAYLAND_DISPLAY= sway",
                "test -S $XDG_RUNTIME_DIR/wayland-1",
            ),
            ("waybar", HOST),
        ],
        release=release,
        is_steady=True,
        other_tab=(100, 28),
        not_applicable=not_applicable,
        at_edge=True,
        environment={"XDG_CURRENT_DESKTOP": "sway", "XDG_SESSION_TYPE": "wayland", "WAYLAND_DISPLAY": "wayland-1"},
        files={
            ".config/sway/config": """output X11-1 resolution 1280x800 background #404858 solid_color
workspace_layout tabbed
xwayland disable
""",
            ".config/waybar/config": """{ "layer": "top", "modules-right": ["tray", "clock"] }
""",
        },
    )


# KWin gives a panel its rights only if it finds it in the applications' menu.
KDE = {"XDG_CURRENT_DESKTOP": "KDE", "KDE_FULL_SESSION": "true", "XDG_MENU_PREFIX": "plasma-"}

NESTED_GNOME = (
    "MUTTER_DEBUG_DUMMY_MODE_SPECS=1280x800 gnome-shell --nested --wayland --wayland-display=wayland-9"
)

PANELS = {
    "xfce4-panel": Panel(
        [XFWM, ("xfce4-panel --disable-wm-check", HOST)],
        is_steady=True,
        environment={"XDG_CURRENT_DESKTOP": "XFCE"},
    ),
    "tint2": Panel(
        [XFWM, ("tint2", "xdotool search --onlyvisible --class tint2")],
        is_steady=True,
        environment={"XDG_CURRENT_DESKTOP": "tint2"},
    ),
    "lxqt": Panel(
        [XFWM, ("lxqt-panel", HOST)],
        is_steady=True,
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
        is_steady=True,
        environment={"XDG_CURRENT_DESKTOP": "MATE"},
    ),
    "plasma": Panel(
        [
            ("kwin_x11 --no-kactivities", WINDOW_MANAGER),
            (
                "kded5",
                call("org.kde.kded5", "/kded", "org.kde.kded5.loadModule", WATCHER_MODULE),
            ),
            ("plasmashell --no-respawn", HOST),
        ],
        is_steady=True,
        environment=KDE | {"KDE_SESSION_VERSION": "5"},
    ),
    "cinnamon": Panel(
        [
            ("/usr/bin/python3 -m dbusmock --system --template logind", "sleep 1"),
            ("/usr/libexec/xapps/sn-watcher/xapp-sn-watcher", "true"),
            ("cinnamon --replace", HOST),
        ],
        environment={"XDG_CURRENT_DESKTOP": "X-Cinnamon", "GSETTINGS_BACKEND": "keyfile"},
    ),
    "gnome-x11": gnome("gnome-shell --x11", is_steady=True),
    "gnome-wayland": gnome(NESTED_GNOME, XDG_SESSION_TYPE="wayland", WAYLAND_DISPLAY="wayland-9"),
    "gnome48-x11": gnome("gnome-shell --x11", release=13, is_steady=True),
    "gnome48-wayland": gnome(
        NESTED_GNOME, release=13, is_steady=True, XDG_SESSION_TYPE="wayland", WAYLAND_DISPLAY="wayland-9"
    ),
    "sway": sway(12, place="Debian 12 has no layer-shell for Qt 6"),
    "sway-1.10": sway(13),
    "plasma6-wayland": Panel(
        [
            (
                "kwin_wayland --x11-display $DISPLAY --width 1280 --height 800 --socket wayland-9 --no-lockscreen",
                "test -S $XDG_RUNTIME_DIR/wayland-9",
            ),
            ("kded6", call("org.kde.kded6", "/kded", "org.kde.kded6.loadModule", WATCHER_MODULE)),
            ("plasmashell --no-respawn", HOST),
        ],
        release=13,
        is_steady=True,
        at_edge=True,
        environment=KDE
        | {"KDE_SESSION_VERSION": "6", "XDG_SESSION_TYPE": "wayland", "WAYLAND_DISPLAY": "wayland-9"},
    ),
}
