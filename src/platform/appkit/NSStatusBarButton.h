#pragma once

#include <memory>
#include <string>

#include "platform/appkit/NSEvent.h"
#include "platform/appkit/NSImage.h"
#include "platform/appkit/NSView.h"
#include "platform/port/Windows.h"

namespace platform {

/// What a status button is part of.
class StatusButtonOwner {
 public:
  virtual ~StatusButtonOwner() = default;
  virtual void buttonImageDidChange(const NSImage* image) = 0;
  virtual void buttonToolTipDidChange(const std::string& text) = 0;
  /// Opens the attached menu; false when none is attached.
  virtual bool openAttachedMenu() = 0;
  [[nodiscard]] virtual port::StatusItemPeer& peer() = 0;
};

/// The clickable part of a status item.
class NSStatusBarButton final : public NSView {
 public:
  explicit NSStatusBarButton(StatusButtonOwner& owner) : owner_(&owner) {}

  [[nodiscard]] const std::shared_ptr<NSImage>& image() const { return image_; }
  void setImage(std::shared_ptr<NSImage> image);
  /// What the button says when the pointer rests on it, and to assistive technology.
  [[nodiscard]] const std::string& toolTip() const { return toolTip_; }
  void setToolTip(std::string text);

  [[nodiscard]] const SEL& action() const { return action_; }
  void setAction(SEL action) { action_ = std::move(action); }
  /// Null, as at first: the action travels the responder chain.
  void setTarget(const std::shared_ptr<NSObject>& target) { target_ = target; }
  /// The kinds of events on which the action is sent; left-mouse-up at first.
  void sendActionOn(NSEventMask mask) { sendsActionOn_ = mask; }

  /// Acts like a click: opens the attached menu if there is one, else sends the action.
  void performClick(NSObject* sender);
  /// A real click. The action goes out for the kinds of `sendActionOn` only.
  void click(NSEventType type);

  /// Where windows that hang on the button are placed.
  [[nodiscard]] port::StatusItemPeer& statusItemPeer() const { return owner_->peer(); }

 private:
  void sendAction();

  StatusButtonOwner* owner_;
  std::shared_ptr<NSImage> image_;
  std::string toolTip_;
  SEL action_;
  std::weak_ptr<NSObject> target_;
  NSEventMask sendsActionOn_ = maskOf(NSEventType::LeftMouseUp);
};

}  // namespace platform
