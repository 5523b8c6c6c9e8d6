#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/foundation/Geometry.h"
#include "platform/foundation/NSNotificationCenter.h"
#include "platform/foundation/NSObject.h"
#include "platform/foundation/SmallValues.h"
#include "platform/port/Program.h"
#include "platform/port/RunningApplications.h"
#include "platform/port/Screens.h"

namespace platform {

/// Posted to the default notification center when screens came, went or changed.
inline constexpr const char* NSApplicationDidChangeScreenParametersNotification =
    "NSApplicationDidChangeScreenParametersNotification";

/// A screen as it was when it was asked for; it does not follow later changes.
class NSScreen final : public NSObject {
 public:
  explicit NSScreen(port::ScreenInfo info) : info_(std::move(info)) {}

  /// All of them, in the platform's order.
  [[nodiscard]] static std::vector<std::shared_ptr<NSScreen>> screens();

  [[nodiscard]] const port::ScreenId& id() const { return info_.id; }
  /// In points.
  [[nodiscard]] const NSRect& frame() const { return info_.frame; }
  [[nodiscard]] double backingScaleFactor() const { return info_.backingScaleFactor; }

 private:
  port::ScreenInfo info_;
};

/// An application that runs, or ran when it was listed.
class NSRunningApplication final : public NSObject {
 public:
  NSRunningApplication(port::RunningApplications& service, port::ApplicationInfo info)
      : service_(service), info_(std::move(info)) {}

  [[nodiscard]] const std::optional<std::string>& localizedName() const {
    return info_.localizedName;
  }
  [[nodiscard]] NSApplicationActivationPolicy activationPolicy() const {
    return info_.activationPolicy;
  }
  /// Now, not when it was listed.
  [[nodiscard]] bool isHidden() const { return service_.isHidden(info_.id); }
  /// Whether the request could be delivered.
  bool hide() const { return service_.hide(info_.id); }
  bool unhide() const { return service_.unhide(info_.id); }

 private:
  port::RunningApplications& service_;
  port::ApplicationInfo info_;
};

/// Posted to the workspace's own notification center when the user went to another space.
inline constexpr const char* NSWorkspaceActiveSpaceDidChangeNotification =
    "NSWorkspaceActiveSpaceDidChangeNotification";

/// Posted there when the answer to `obstacleTo` may have become another one.
inline constexpr const char* NSWorkspaceAvailabilityDidChangeNotification =
    "NSWorkspaceAvailabilityDidChangeNotification";

using NSWorkspaceCapability = port::Capability;

/// Why a request to the workspace was refused.
struct NSError {
  std::string localizedDescription;
};

/// What is on the desktop besides ourselves: applications, desktop pictures, spaces. Main thread
/// only. What the desktop has no service for is empty, and setting it fails.
class NSWorkspace final : public NSObject,
                          private port::SpacesClient,
                          private port::AvailabilityClient {
 public:
  NSWorkspace();
  ~NSWorkspace() override;

  [[nodiscard]] static NSWorkspace& sharedWorkspace();

  /// Where the notifications of the workspace are posted.
  [[nodiscard]] NSNotificationCenter& notificationCenter() { return *notificationCenter_; }

  [[nodiscard]] std::vector<std::shared_ptr<NSRunningApplication>> runningApplications() const;

  /// Why this desktop cannot do it, to be read by the user; none where it can or may.
  [[nodiscard]] std::optional<std::string> obstacleTo(NSWorkspaceCapability capability) const;

  [[nodiscard]] std::optional<NSURL> desktopImageURLForScreen(const NSScreen& screen) const;
  [[nodiscard]] std::optional<Dictionary> desktopImageOptionsForScreen(
      const NSScreen& screen) const;
  /// None on success.
  [[nodiscard]] std::optional<NSError> setDesktopImageURL(const NSURL& url, const NSScreen& screen,
                                                          const Dictionary& options);

 private:
  void activeSpaceDidChange() override;
  void availabilityDidChange() override;

  std::shared_ptr<NSNotificationCenter> notificationCenter_;
};

}  // namespace platform
