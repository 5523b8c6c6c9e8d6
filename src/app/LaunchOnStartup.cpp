#include "app/LaunchOnStartup.h"

#include <string>

#include "app/addLoginitem.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/Print.h"

namespace app {

using namespace platform;

std::optional<LaunchOnStartup::References> LaunchOnStartup::itemReferencesInLoginItems() {
  const NSURL application = NSURL::fileURLWithPath(NSBundle::mainBundle().bundlePath());
  const auto list = LSSharedFileListCreate(kLSSharedFileListSessionLoginItems);
  if (!list) return std::nullopt;
  const auto items = LSSharedFileListCopySnapshot(*list);
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
