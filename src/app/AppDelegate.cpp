#include "app/AppDelegate.h"

#include <array>

#include "app/ControllerFactory.h"
#include "app/LaunchOnStartup.h"
#include "app/MicrophoneAction.h"
#include "hotkeys/HotKeysController.h"
#include "platform/foundation/Geometry.h"
#include "platform/foundation/NSRunLoop.h"
#include "platform/foundation/NSUserDefaults.h"
#include "platform/foundation/Process.h"
#include "platform/foundation/SmallValues.h"
#include "shared/SettingsKeys.h"

namespace app {

using platform::NSApplication;
using platform::NSEventType;
using platform::NSLocalizedString;
using platform::NSUserDefaults;
using preferences::ShortcutRow;

namespace {

constexpr double kPopoverDelay = 0.5;
/// An action as those of ShortcutRow are.
constexpr std::string_view kShowPreferences = "preferences";

std::string purposeOf(const ShortcutRow& row) {
  return row.isMuteMic ? NSLocalizedString("Microphone On or Off")
                       : NSLocalizedString("Presentation Mode On or Off");
}

}  // namespace

AppDelegate::AppDelegate()
    : popover_(std::make_shared<platform::NSPopover>()),
      statusItem_(platform::NSStatusBar::systemStatusBar().statusItemWithLength(
          platform::NSStatusItem::kVariableLength)) {}

// --- Launch ---

void AppDelegate::launchSetup() {
  applyLaunchAtLogin();
  if (statusItem_->button()) {
    statusbutton_ = statusItem_->button();
    statusbutton_->setImage(platform::NSImage::imageNamed("logo-initial-small"));
    statusbutton_->setToolTip(NSLocalizedString("Calmdeck: presentation mode is off"));
  }
  statusItemSetup();
  setUpUpdater();
}

void AppDelegate::applyLaunchAtLogin() {
  NSUserDefaults& defaults = NSUserDefaults::standardUserDefaults();
  const auto choice = defaults.objectOfType<bool>(shared::kUserdeaultsLaunchAtLogin);
  if (!choice) defaults.setBool(true, shared::kUserdeaultsLaunchAtLogin);
  setLaunchAtStartup(choice.value_or(true));
}

void AppDelegate::setLaunchAtStartup(bool launches) {
  LaunchOnStartup::setLaunchAtStartup(launches);
}

void AppDelegate::statusItemSetup() {
  if (statusItem_->button()) setUpStatusButton();
  registerStoredHotKeys();
}

void AppDelegate::setUpStatusButton() {
  popover_->setContentViewController(sharedViewController());
  statusbutton_->setAction("togglePopover:");
  popover_->setBehavior(platform::NSPopoverBehavior::Transient);
  buildStatusBarMenu();
  statusbutton_->sendActionOn(platform::maskOf(NSEventType::LeftMouseUp) |
                              platform::maskOf(NSEventType::RightMouseUp));
  platform::NSRunLoop::mainRunLoop().performSelectorAfterDelay(shared_from_this(), "showPopover",
                                                               nullptr, kPopoverDelay);
}

void AppDelegate::buildStatusBarMenu() {
  statusBarMenu_ = std::make_shared<platform::NSMenu>("Status Bar Menu");
  statusBarMenu_->setDelegate(std::static_pointer_cast<AppDelegate>(shared_from_this()));
  statusBarMenu_->addItemWithTitle(NSLocalizedString("Preferences"), "showPreferences", "");
  statusBarMenu_->addItemWithTitle(NSLocalizedString("Check for Updates"), "checkForUpdate", "");
  statusBarMenu_->addItemWithTitle(NSLocalizedString("Quit"), "quitApp", "");
}

void AppDelegate::setUpUpdater() {
  updater_ = platform::SUUpdater::initForBundle(platform::NSBundle::mainBundle());
  updater_->setAutomaticallyChecksForUpdates(true);
  updater_->setAutomaticallyDownloadsUpdates(false);
  updater_->checkForUpdatesInBackground();
}

// --- Shortcuts ---

void AppDelegate::registerStoredHotKeys() {
  hotkeys::HotKeysController::setUnavailableHandler(
      [] { sharedPreferencesWindowController()->showShortcutUnavailableAlert(); });
  preferences::ShortcutState& state = preferences::shortcutState();
  for (const ShortcutRow* row : {&ShortcutRow::toggleApp, &ShortcutRow::muteMic}) {
    state.loadShortcut(*row);
    if (!state.currentShortcutModifiers.isEmpty()) registerHotKey(*row);
  }
}

void AppDelegate::registerHotKey(const ShortcutRow& row) {
  const preferences::ShortcutState& state = preferences::shortcutState();
  std::shared_ptr<hotkeys::HotKey>& hotKey = fieldOf(row);
  // The new one is registered while the old one still is.
  hotKey = hotkeys::HotKey::make(
      hotkeys::KeyCombo(state.currentShortcutKey, state.currentShortcutModifiers), actionOf(row),
      nullptr, purposeOf(row));
  hotKey->assignmentHandler = [&row] { preferences::shortcutState().reload(row); };
}

hotkeys::HotKey::Handler AppDelegate::actionOf(const ShortcutRow& row) {
  if (row.isMuteMic) return muteMicPressed;
  return [this] { toggleAppPressed(); };
}

void AppDelegate::toggleAppPressed() {
  platform::print("Pressed at " + platform::NSDate::date().description());
  sharedViewController()->togglePresentationMode();
}

std::function<void()> AppDelegate::applicationAction(std::string_view name) {
  for (const ShortcutRow* row : {&ShortcutRow::toggleApp, &ShortcutRow::muteMic}) {
    if (name == row->action) return actionOf(*row);
  }
  if (name == kShowPreferences) return [this] { showPreferences(); };
  return {};
}

// --- Clicks ---

void AppDelegate::handleStatusItemClick(platform::NSObject* sender) {
  const auto& event = NSApplication::sharedApplication().currentEvent();
  if (!event) return;
  if (event->type == NSEventType::RightMouseUp) {
    platform::print("Right click!");
    statusItem_->setMenu(statusBarMenu_);
    statusItem_->button()->performClick(nullptr);
    return;
  }
  platform::print("Left click!");
  if (popover_->isShown())
    popover_->performClose(sender);
  else
    showPopover();
}

void AppDelegate::showPopover() {
  const auto& button = statusItem_->button();
  if (!button) return;
  popover_->showRelativeToRect(button->bounds(), *button, platform::NSRectEdge::MinY);
}

void AppDelegate::menuDidClose(platform::NSMenu&) {
  statusItem_->setMenu(nullptr);
}

// --- Menu ---

void AppDelegate::checkForUpdate() {
  if (updater_) updater_->checkForUpdates(this);
}

void AppDelegate::showPreferences() {
  sharedPreferencesWindowController()->showWindow(this);
  NSApplication::sharedApplication().activateIgnoringOtherApps(true);
}

void AppDelegate::quitApp() {
  NSApplication::sharedApplication().terminate(this);
}

const platform::ClassDescription& AppDelegate::classDescription() const {
  static constexpr std::array messages{
      platform::message<&AppDelegate::applicationWillFinishLaunching>(
          "applicationWillFinishLaunching:"),
      platform::message<&AppDelegate::applicationDidFinishLaunching>(
          "applicationDidFinishLaunching:"),
      platform::message<&AppDelegate::applicationWillTerminate>("applicationWillTerminate:"),
      platform::message<&AppDelegate::checkForUpdate>("checkForUpdate"),
      platform::message<&AppDelegate::showPreferences>("showPreferences"),
      platform::message<&AppDelegate::quitApp>("quitApp"),
      platform::message<&AppDelegate::togglePopover>("togglePopover:"),
      platform::message<&AppDelegate::showPopover>("showPopover"),
      platform::message<&AppDelegate::menuDidClose>("menuDidClose:"),
      platform::message<&AppDelegate::registerToggleAppHotKey>("register_ToggleApp:"),
      platform::message<&AppDelegate::unregisterToggleAppHotKey>("unregister_ToggleApp:"),
      platform::message<&AppDelegate::registerMuteMicHotKey>("register_MuteMic:"),
      platform::message<&AppDelegate::unregisterMuteMicHotKey>("unregister_MuteMic:"),
  };
  static constexpr platform::ClassDescription description{.className = "AppDelegate",
                                                          .messages = messages};
  return description;
}

}  // namespace app
