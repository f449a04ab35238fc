#pragma once

namespace quorvale::app {

/// Stands for the bundle that holds the helper's resources. That is the bundle of the program which this class is
/// compiled into, so resources are looked up by name in `platform::bundle::Bundle::main()`.
class ResourceBundleClass {};

} // namespace quorvale::app
