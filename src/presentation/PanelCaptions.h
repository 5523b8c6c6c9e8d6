#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "controls/CToggleButton.h"
#include "platform/appkit/NSTextField.h"
#include "platform/appkit/NSWorkspace.h"

namespace presentation {

/// The second lines of the panel. Each says what its switch does, or why this desktop cannot do
/// that; the master switch's says when nothing is chosen. A screen reader is told the same of the
/// switch. Main thread only.
class PanelCaptions {
 public:
  /// A switch and its line, which says what the switch does as long as nothing is in the way.
  struct Row {
    std::shared_ptr<controls::CToggleButton> toggle;
    std::shared_ptr<platform::NSTextField> line;
    /// None: it takes nothing of the desktop.
    std::optional<platform::NSWorkspaceCapability> capability;
  };

  void setMaster(Row row);
  void add(Row row);
  /// Brings the lines in line with the switches and with the desktop.
  void refresh() const;

 private:
  struct Caption {
    Row row;
    std::string usual;
  };
  static Caption captionOf(Row row);
  static void show(const Row& row, const std::string& text);
  [[nodiscard]] static std::string textOf(const Caption& caption);

  std::optional<Caption> master_;
  std::vector<Caption> features_;
};

}  // namespace presentation
