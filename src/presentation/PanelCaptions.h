#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>
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
  /// A switch and its line.
  struct Row {
    std::shared_ptr<controls::CToggleButton> toggle;
    std::shared_ptr<platform::NSTextField> line;
    /// None: it takes nothing of the desktop.
    std::optional<platform::NSWorkspaceCapability> capability;
    /// What the line says as long as nothing is in the way: what the switch does.
    std::string usual = line->stringValue();
  };

  void setMaster(Row row) { master_ = std::move(row); }
  void add(Row row) { features_.push_back(std::move(row)); }
  /// Brings the lines in line with the switches and with the desktop.
  void refresh() const;

 private:
  static void show(const Row& row, const std::string& text);
  [[nodiscard]] static std::string textOf(const Row& row);

  std::optional<Row> master_;
  std::vector<Row> features_;
};

}  // namespace presentation
