#include <atspi/atspi.h>
#include <functional>
#include <iostream>
#include <memory>
#include <string>

// What assistive technologies get to know of the session's programs. Commands: `tree` lists the objects, `press OBJECT`
// does an object's first action, `listen` has each event printed from now on that screen readers speak of, with the
// object that it is of. An object is its role and, in quotes, its name.

namespace {

struct Unreference {
    void operator()(void* object) const { g_object_unref(object); }
};

using Accessible = std::unique_ptr<AtspiAccessible, Unreference>;

void print(const std::string& line) {
    std::cout << line << '\n' << std::flush;
}

std::string text(gchar* given) {
    const std::unique_ptr<gchar, decltype(&g_free)> owned(given, g_free);
    return given ? given : "";
}

std::string name(AtspiAccessible* object) {
    auto role = text(atspi_accessible_get_role_name(object, nullptr));
    // As Debian 12 calls it.
    if (role == "button") {
        role = "push button";
    }
    return role + " '" + text(atspi_accessible_get_name(object, nullptr)) + "'";
}

std::string states(AtspiAccessible* object) {
    const std::unique_ptr<AtspiStateSet, Unreference> set(atspi_accessible_get_state_set(object));
    std::string names;
    for (const auto& [state, word] : {std::pair{ATSPI_STATE_ACTIVE, " active"}, {ATSPI_STATE_FOCUSED, " focused"}}) {
        names += set && atspi_state_set_contains(set.get(), state) ? word : "";
    }
    return names;
}

void visit(AtspiAccessible* object, const std::function<void(AtspiAccessible*)>& visitor) {
    visitor(object);
    const auto count = atspi_accessible_get_child_count(object, nullptr);
    for (int index = 0; index < count; ++index) {
        if (const Accessible child(atspi_accessible_get_child_at_index(object, index, nullptr)); child) {
            visit(child.get(), visitor);
        }
    }
}

void onEvent(AtspiEvent* event, void* /*data*/) {
    print(text(g_strdup(event->type)) + " " + std::to_string(event->detail1) + " " + name(event->source));
    g_boxed_free(ATSPI_TYPE_EVENT, event);
}

void listen() {
    auto* const listener = atspi_event_listener_new(onEvent, nullptr, nullptr);
    for (const auto* const kind :
         {"object:announcement", "object:property-change:accessible-name", "object:property-change:accessible-value",
          "object:state-changed:focused", "window:activate"}) {
        atspi_event_listener_register(listener, kind, nullptr);
    }
}

gboolean onInput(GIOChannel* input, GIOCondition /*condition*/, void* loop) {
    gchar* line = nullptr;
    gsize end = 0;
    if (g_io_channel_read_line(input, &line, nullptr, &end, nullptr) != G_IO_STATUS_NORMAL) {
        g_main_loop_quit(static_cast<GMainLoop*>(loop));
        return FALSE;
    }
    const auto command = text(line).substr(0, end);
    if (command == "listen") {
        listen();
    }
    const Accessible desktop(atspi_get_desktop(0));
    visit(desktop.get(), [&](AtspiAccessible* object) {
        if (command == "tree") {
            print("has " + name(object) + states(object));
        } else if (command == "press " + name(object)) {
            const std::unique_ptr<AtspiAction, Unreference> action(atspi_accessible_get_action_iface(object));
            print(action && atspi_action_do_action(action.get(), 0, nullptr) != FALSE ? "pressed" : "refused");
        }
    });
    print("end of " + command);
    return TRUE;
}

} // namespace

int main() {
    if (atspi_init() != 0) {
        return 1;
    }
    auto* const loop = g_main_loop_new(nullptr, FALSE);
    g_io_add_watch(g_io_channel_unix_new(0), static_cast<GIOCondition>(G_IO_IN | G_IO_HUP), onInput, loop);
    print("ready");
    g_main_loop_run(loop);
}
