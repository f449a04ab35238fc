#include "app/AppDelegate.hpp"

#include "app/HelperIdentity.hpp"

namespace quorvale::app {

void AppDelegate::applicationWillTerminate() {
    logger().info("Quorvale Helper terminated");
}

void AppDelegate::applicationDidFinishLaunching() {
    logger().info("Quorvale Helper launched");
}

} // namespace quorvale::app
