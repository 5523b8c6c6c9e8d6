#include "desktop/linux/automation/LinuxAutomation.h"

#include <algorithm>
#include <utility>

#include "desktop/linux/language/Language.h"

namespace linux_desktop {

using platform::Dictionary;
using platform::Value;
using platform::port::ElementSpecifier;
using platform::port::ScriptError;
using platform::port::ScriptObject;
using platform::port::ScriptResult;

namespace {

constexpr int kNotUnderstood = -1708;
constexpr int kInvalidIndex = -1719;
constexpr int kNoSuchObject = -1728;
constexpr int kServiceFailed = -10000;

constexpr std::string_view kSystemEvents = "System Events";
constexpr std::int64_t kEscape = 53;

std::string inQuotes(std::string_view name) {
  return "\"" + std::string(name) + "\"";
}

std::string sourceForm(std::string_view className, const ElementSpecifier& which) {
  std::string text(className);
  if (const auto* name = std::get_if<std::string>(&which)) text += " " + inQuotes(*name);
  if (const auto* index = std::get_if<std::int64_t>(&which)) text += " " + std::to_string(*index);
  return text;
}

/// What the program's own scripts show, as users read it.
constexpr const char* kOwnTexts[] = {localizedLater("Mic muted"), localizedLater("Mic unmuted")};

ScriptError errorFor(VolumeTrouble trouble) {
  switch (trouble) {
    case VolumeTrouble::NoServer:
      return {kServiceFailed, "No sound server answers."};
    case VolumeTrouble::NoMicrophone:
      return {kServiceFailed, "There is no microphone."};
    case VolumeTrouble::Refused:
      break;
  }
  return {kServiceFailed, "The sound server refused to change the input volume."};
}

}  // namespace

ScriptElement& ScriptElement::add(std::string className, std::string name,
                                  std::function<bool()> exists) {
  const std::string own = name.empty() ? className + " 1" : className + " " + inQuotes(name);
  auto object = std::make_shared<ScriptElement>(own + " of " + description_);
  ScriptElement& added = *object;
  children_.push_back(
      {std::move(className), std::move(name), std::move(exists), std::move(object)});
  return added;
}

ScriptResult<std::shared_ptr<ScriptObject>> ScriptElement::element(std::string_view className,
                                                                   const ElementSpecifier& which) {
  const auto* name = std::get_if<std::string>(&which);
  const auto* index = std::get_if<std::int64_t>(&which);
  std::int64_t position = 0;
  for (const Child& child : children_) {
    if (child.className != className || (child.exists && !child.exists())) continue;
    ++position;
    if (name != nullptr ? child.name == *name : position == (index != nullptr ? *index : 1)) {
      return child.object;
    }
  }
  return ScriptError{name != nullptr ? kNoSuchObject : kInvalidIndex,
                     "Can’t get " + sourceForm(className, which) + " of " + description_ + "."};
}

ScriptResult<Value> ScriptElement::property(std::string_view name) {
  if (value && name == "value") return value();
  return ScriptError{kNoSuchObject, "Can’t get " + std::string(name) + " of " + description_ + "."};
}

std::optional<ScriptError> ScriptElement::click() {
  if (onClick) return onClick();
  return ScriptError{kNotUnderstood, description_ + " doesn’t understand the “click” message."};
}

LinuxAutomation::LinuxAutomation(DoNotDisturbSwitch& doNotDisturb, VolumeControl& volume,
                                 Notifier& notifier)
    : doNotDisturb_(doNotDisturb),
      volume_(volume),
      notifier_(notifier),
      systemEvents_(std::make_shared<ScriptElement>("application \"System Events\"")) {
  addFocusMenu(systemEvents_->add("application process", "ControlCenter"));
}

void LinuxAutomation::addFocusMenu(ScriptElement& controlCenter) {
  controlCenter.add("menu bar", "").add("menu bar item", "Focus").onClick =
      [this]() -> std::optional<ScriptError> {
    isFocusMenuOpen_ = true;
    return std::nullopt;
  };
  addDoNotDisturb(controlCenter.add("window", "", [this] { return isFocusMenuOpen_; }));
}

void LinuxAutomation::addDoNotDisturb(ScriptElement& focusWindow) {
  ScriptElement& checkbox =
      focusWindow.add("checkbox", "Do Not Disturb", [this] { return doNotDisturb_.exists(); });
  checkbox.value = [this]() -> ScriptResult<Value> {
    return Value(std::int64_t{doNotDisturb_.isOn() ? 1 : 0});
  };
  checkbox.onClick = [this]() -> std::optional<ScriptError> {
    if (doNotDisturb_.set(!doNotDisturb_.isOn())) return std::nullopt;
    return ScriptError{kServiceFailed, "Do Not Disturb can’t be switched."};
  };
}

ScriptResult<std::shared_ptr<ScriptObject>> LinuxAutomation::application(std::string_view name) {
  if (name == kSystemEvents) return systemEvents_;
  return ScriptError{kNoSuchObject, "Can’t get application \"" + std::string(name) + "\"."};
}

std::optional<ScriptError> LinuxAutomation::keyCode(std::int64_t code) {
  if (code != kEscape) {
    return ScriptError{kServiceFailed,
                       "Key code " + std::to_string(code) + " can’t be pressed on this desktop."};
  }
  isFocusMenuOpen_ = false;
  return std::nullopt;
}

ScriptResult<Dictionary> LinuxAutomation::volumeSettings() {
  const auto level = volume_.inputLevel();
  if (const auto* trouble = std::get_if<VolumeTrouble>(&level)) return errorFor(*trouble);
  return Dictionary{{"input volume", std::get<int>(level)}};
}

std::optional<ScriptError> LinuxAutomation::setInputVolume(int level) {
  const std::optional<VolumeTrouble> trouble = volume_.setInputLevel(level);
  return trouble ? std::optional(errorFor(*trouble)) : std::nullopt;
}

std::optional<ScriptError> LinuxAutomation::displayNotification(std::string_view text) {
  const auto* own =
      std::ranges::find(kOwnTexts, text, [](auto each) { return std::string_view(each); });
  const std::string shown =
      own == std::end(kOwnTexts) ? std::string(text) : localized(*own).toStdString();
  const std::optional<std::string> obstacle = notifier_.show(shown);
  return obstacle ? std::optional(ScriptError{kServiceFailed, *obstacle}) : std::nullopt;
}

}  // namespace linux_desktop
