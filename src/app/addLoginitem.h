#pragma once

#include <optional>

#include "platform/foundation/NSObject.h"
#include "platform/launchservices/LSSharedFileList.h"

namespace app {

/// Takes the application out of the login items. Main thread only.
class addLoginitem final : public platform::NSObject {
 public:
  /// Removes the application's last entry and returns it; none when there was none.
  std::optional<platform::LSSharedFileListItemRef> itemRefInLoginItems();

  [[nodiscard]] const platform::ClassDescription& classDescription() const override;
};

}  // namespace app
