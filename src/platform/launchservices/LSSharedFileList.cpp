#include "platform/launchservices/LSSharedFileList.h"

#include "platform/Runtime.h"
#include "platform/foundation/Process.h"

namespace platform {

std::string LSSharedFileListItemRef::description() const {
  return "<LSSharedFileListItem " + (item_ ? item_->identifier : "before first") + ">";
}

std::optional<LSSharedFileListRef> LSSharedFileListCreate(std::string_view listType) {
  if (listType != kLSSharedFileListSessionLoginItems) {
    programmingError("a shared file list other than the login items was asked for");
  }
  port::LoginItems* items = Runtime::current().desktop().loginItems;
  if (items == nullptr) return std::nullopt;
  return LSSharedFileListRef(*items);
}

std::optional<std::vector<LSSharedFileListItemRef>> LSSharedFileListCopySnapshot(
    const LSSharedFileListRef& list) {
  const auto items = list.get().items();
  if (!items) return std::nullopt;
  return std::vector<LSSharedFileListItemRef>(items->begin(), items->end());
}

std::optional<NSURL> LSSharedFileListItemCopyResolvedURL(const LSSharedFileListItemRef& item) {
  port::LoginItems* items = Runtime::current().desktop().loginItems;
  if (items == nullptr || !item.item()) return std::nullopt;
  auto path = items->resolve(*item.item());
  if (!path) return std::nullopt;
  return NSURL::fileURLWithPath(std::move(*path));
}

OSStatus LSSharedFileListItemResolve(const LSSharedFileListItemRef& item, NSURL& url) {
  auto resolved = LSSharedFileListItemCopyResolvedURL(item);
  if (!resolved) return kLSSharedFileListItemNotFound;
  url = std::move(*resolved);
  return noErr;
}

std::optional<LSSharedFileListItemRef> LSSharedFileListInsertItemURL(
    const LSSharedFileListRef& list, const LSSharedFileListItemRef& after, const NSURL& url) {
  auto item = list.get().insert(url.path(), after.item());
  if (!item) return std::nullopt;
  return LSSharedFileListItemRef(std::move(*item));
}

OSStatus LSSharedFileListItemRemove(const LSSharedFileListRef& list,
                                    const LSSharedFileListItemRef& item) {
  const bool removed = item.item() && list.get().remove(*item.item());
  return removed ? noErr : kLSSharedFileListItemNotFound;
}

}  // namespace platform
