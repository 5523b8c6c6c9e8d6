#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/foundation/SmallValues.h"

namespace platform {

class NSWindow;

/// How serious an alert is, with the platform's numbers.
enum class NSAlertStyle { Warning = 0, Informational = 1, Critical = 2 };

/// A message that the user must answer. Main thread only.
class NSAlert {
 public:
  /// What `runModal` returns for the first button; the next ones count up from it.
  static constexpr int kFirstButtonReturn = 1000;

  [[nodiscard]] const std::string& messageText() const { return messageText_; }
  void setMessageText(std::string text) { messageText_ = std::move(text); }
  /// Smaller, below the message; empty at first.
  [[nodiscard]] const std::string& informativeText() const { return informativeText_; }
  void setInformativeText(std::string text) { informativeText_ = std::move(text); }
  [[nodiscard]] NSAlertStyle alertStyle() const { return style_; }
  void setAlertStyle(NSAlertStyle style) { style_ = style; }
  [[nodiscard]] const std::vector<std::string>& buttonTitles() const { return buttonTitles_; }
  /// The first button is the default one.
  void addButtonWithTitle(std::string title) { buttonTitles_.push_back(std::move(title)); }

  /// Shows the alert and handles events until it is answered.
  [[nodiscard]] int runModal() const;
  /// Puts a copy of the alert on `window` and returns at once; several wait for each other. A
  /// window that is off the screen is shown first, by its controller if it has one.
  /// `completionHandler`, which may be empty, gets what `runModal` would return.
  void beginSheetModalForWindow(NSWindow& window,
                                std::function<void(int response)> completionHandler) const;

 private:
  std::string messageText_;
  std::string informativeText_;
  NSAlertStyle style_ = NSAlertStyle::Warning;
  std::vector<std::string> buttonTitles_;
};

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
