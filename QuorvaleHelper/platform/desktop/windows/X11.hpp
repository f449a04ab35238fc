#pragma once

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <xcb/xcb.h>

/// The connection that Qt has to the X server. GUI thread; every answer is waited for.
namespace quorvale::platform::desktop::x11 {

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};

/// A null one is an error, or the server's end.
template <class Value>
using Reply = std::unique_ptr<Value, Free>;

/// Null where the program's windows are not on X11.
xcb_connection_t* connection();

xcb_window_t root();

xcb_atom_t atom(std::string_view name);

/// Asks for events of `window`, beside those that Qt has asked for.
void listen(xcb_window_t window, std::uint32_t events);

/// Whether a window's transparent parts show what is under it; true where windows are not on X11.
/// https://specifications.freedesktop.org/wm-spec/latest/ar01s08.html
bool isComposited();

} // namespace quorvale::platform::desktop::x11
