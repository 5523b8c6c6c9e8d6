#pragma once

#include <functional>
#include <string>
#include <vector>

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

}  // namespace platform
