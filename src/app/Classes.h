#pragma once

namespace app {

/// Registers the application's classes with the current Runtime, under the names that the
/// storyboard uses. Once for each Runtime, before anything else of the application.
void registerClasses();

}  // namespace app
