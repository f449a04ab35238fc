#pragma once

namespace quorvale::platform::desktop {

/// Has assistive technologies told of windows as windows, by their titles, and of what lays others out in them as
/// panels. The toolkit calls both fillers, which screen readers keep silent about. For the whole process; GUI thread.
void describeWindows();

} // namespace quorvale::platform::desktop
