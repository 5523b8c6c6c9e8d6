#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/foundation/SmallValues.h"

namespace platform {

/// How a modal panel was left, with the platform's numbers.
enum class NSModalResponse { Cancel = 0, OK = 1 };

/// Asks the user for one file. Main thread only.
class NSOpenPanel {
 public:
  [[nodiscard]] bool canChooseFiles() const { return canChooseFiles_; }
  void setCanChooseFiles(bool can) { canChooseFiles_ = can; }
  [[nodiscard]] bool canChooseDirectories() const { return canChooseDirectories_; }
  void setCanChooseDirectories(bool can) { canChooseDirectories_ = can; }
  /// What the user is asked for.
  [[nodiscard]] const std::string& message() const { return message_; }
  void setMessage(std::string message) { message_ = std::move(message); }
  /// File-name extensions, without a dot; their letter case does not matter. Empty: every file.
  [[nodiscard]] const std::vector<std::string>& allowedFileTypes() const { return types_; }
  void setAllowedFileTypes(std::vector<std::string> types) { types_ = std::move(types); }
  /// The title of the button that ends the choice.
  [[nodiscard]] const std::string& prompt() const { return prompt_; }
  void setPrompt(std::string prompt) { prompt_ = std::move(prompt); }

  /// Shows the panel and handles events until the user is done with it.
  NSModalResponse runModal();
  /// What was chosen; none before that, and after a cancel.
  [[nodiscard]] const std::optional<NSURL>& URL() const { return url_; }

 private:
  bool canChooseFiles_ = true;
  bool canChooseDirectories_ = false;
  std::string message_;
  std::vector<std::string> types_;
  std::string prompt_ = "Open";
  std::optional<NSURL> url_;
};

}  // namespace platform
