#include "app/LaunchOnStartup.h"

#include <array>
#include <string>

#include "platform/foundation/NSBundle.h"
#include "platform/foundation/Process.h"

namespace app {

using namespace platform;

namespace {

/// What is on the list at present; none when it cannot be had.
std::optional<std::vector<LSSharedFileListItemRef>> snapshot() {
  const auto list = LSSharedFileListCreate(kLSSharedFileListSessionLoginItems);
  return list ? LSSharedFileListCopySnapshot(*list) : std::nullopt;
}

/// The last entry that starts this program; none where there is none.
std::optional<LSSharedFileListItemRef> lastItemOfOurs() {
  const std::string path = NSBundle::mainBundle().bundlePath();
  NSURL url = NSURL::fileURLWithPath(path);
  const auto items = snapshot();
  if (!items) return std::nullopt;
  std::optional<LSSharedFileListItemRef> found;
  for (const LSSharedFileListItemRef& item : *items) {
    if (LSSharedFileListItemResolve(item, url) == noErr && url.path() == path) found = item;
  }
  return found;
}

}  // namespace

std::optional<LSSharedFileListItemRef> addLoginitem::itemRefInLoginItems() {
  auto found = lastItemOfOurs();
  if (!found) return std::nullopt;
  const auto list = LSSharedFileListCreate(kLSSharedFileListSessionLoginItems);
  if (list) LSSharedFileListItemRemove(*list, *found);
  return found;
}

const ClassDescription& addLoginitem::classDescription() const {
  static constexpr std::array messages{
      message<&addLoginitem::itemRefInLoginItems>("itemRefInLoginItems"),
  };
  static constexpr ClassDescription description{.className = "addLoginitem", .messages = messages};
  return description;
}

std::optional<LaunchOnStartup::References> LaunchOnStartup::itemReferencesInLoginItems() {
  const NSURL application = NSURL::fileURLWithPath(NSBundle::mainBundle().bundlePath());
  const auto items = snapshot();
  if (!items) return std::nullopt;
  if (items->empty()) return References{std::nullopt, kLSSharedFileListItemBeforeFirst};
  for (const LSSharedFileListItemRef& item : *items) {
    if (LSSharedFileListItemCopyResolvedURL(item) == application) {
      return References{item, items->back()};
    }
  }
  return References{std::nullopt, items->back()};
}

void LaunchOnStartup::setLaunchAtStartup(bool launches) {
  const auto references = itemReferencesInLoginItems();
  const auto list = LSSharedFileListCreate(kLSSharedFileListSessionLoginItems);
  if (!references || !list) return;
  const auto& [existing, last] = *references;
  if (launches == existing.has_value()) return;
  if (launches) {
    const NSURL application = NSURL::fileURLWithPath(NSBundle::mainBundle().bundlePath());
    LSSharedFileListInsertItemURL(*list, last, application);
  } else {
    const auto removed = std::make_shared<addLoginitem>()->itemRefInLoginItems();
    print(removed ? "Optional(" + removed->description() + ")" : "nil");
  }
}

}  // namespace app
