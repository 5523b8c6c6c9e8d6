#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/foundation/SmallValues.h"
#include "platform/port/Program.h"

namespace platform {

// The list of programs that are started at login. Main thread only; each call may touch the file
// system.

inline constexpr std::string_view kLSSharedFileListSessionLoginItems =
    "com.apple.LSSharedFileList.SessionLoginItems";

/// The item, the list or the entry behind it is not there.
inline constexpr OSStatus kLSSharedFileListItemNotFound = -50;  // paramErr

/// An open list. A value that is good for as long as the Runtime's desktop lives.
using LSSharedFileListRef = std::reference_wrapper<port::LoginItems>;

/// An item of a snapshot, which the list may have lost since; or the marker for the front.
class LSSharedFileListItemRef {
 public:
  /// The marker.
  LSSharedFileListItemRef() = default;
  explicit LSSharedFileListItemRef(port::LoginItem item) : item_(std::move(item)) {}

  /// None for the marker.
  [[nodiscard]] const std::optional<port::LoginItem>& item() const { return item_; }
  /// What the platform prints of it, with the desktop's name for the entry.
  [[nodiscard]] std::string description() const;
  bool operator==(const LSSharedFileListItemRef&) const = default;

 private:
  std::optional<port::LoginItem> item_;
};

/// As the item to insert after: in front of all.
inline const LSSharedFileListItemRef kLSSharedFileListItemBeforeFirst;

/// Opens the list of login items, the only one there is; another one is a programming error. None
/// on a desktop without login items.
[[nodiscard]] std::optional<LSSharedFileListRef> LSSharedFileListCreate(std::string_view listType);

/// The items in the order of the list; none when they cannot be had.
[[nodiscard]] std::optional<std::vector<LSSharedFileListItemRef>> LSSharedFileListCopySnapshot(
    const LSSharedFileListRef& list);

/// Where the item points; none when it cannot be resolved.
[[nodiscard]] std::optional<NSURL> LSSharedFileListItemCopyResolvedURL(
    const LSSharedFileListItemRef& item);

/// The older form: `url` is written only when the status is noErr.
[[nodiscard]] OSStatus LSSharedFileListItemResolve(const LSSharedFileListItemRef& item, NSURL& url);

/// Adds an item for `url` after that one and returns it; none when it cannot be added.
std::optional<LSSharedFileListItemRef> LSSharedFileListInsertItemURL(
    const LSSharedFileListRef& list, const LSSharedFileListItemRef& after, const NSURL& url);

OSStatus LSSharedFileListItemRemove(const LSSharedFileListRef& list,
                                    const LSSharedFileListItemRef& item);

}  // namespace platform
