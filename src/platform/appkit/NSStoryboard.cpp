#include "platform/appkit/NSStoryboard.h"

#include <algorithm>
#include <map>
#include <optional>
#include <pugixml.hpp>
#include <set>

#include "platform/appkit/NSControl.h"
#include "platform/appkit/NSImage.h"
#include "platform/appkit/NSTextField.h"
#include "platform/appkit/NSView.h"
#include "platform/appkit/NSViewController.h"
#include "platform/appkit/NSWindowController.h"
#include "platform/foundation/NSCoder.h"
#include "platform/foundation/Process.h"

namespace platform {
namespace {

using Problems = std::vector<std::string>;

/// Elements that stand for a class of the layer. Any other element names its class itself.
constexpr NamedValue<ClassRegistry::Maker> kElements[] = {
    {"view", &ClassRegistry::make<NSView>},
    {"stackView", &ClassRegistry::make<NSStackView>},
    {"textField", &ClassRegistry::make<NSTextField>},
    {"imageView", &ClassRegistry::make<NSImageView>},
    {"separator", &ClassRegistry::make<NSSeparator>},
    {"button", &ClassRegistry::make<NSButton>},
    {"checkbox", &ClassRegistry::make<NSCheckbox>},
    {"box", &ClassRegistry::make<NSBox>},
};

ClassRegistry::Maker makerOf(const pugi::xml_node& node) {
  if (const auto maker = valueNamed(node.name(), kElements)) return *maker;
  return ClassRegistry::shared().maker(node.attribute("class").as_string());
}

/// How a problem names what the element stands for.
std::string className(const pugi::xml_node& node) {
  return std::string(node.attribute("class").as_string(node.name()));
}

/// The attributes that users read.
constexpr std::string_view kTexts[] = {"text", "title", "accessibilityLabel", "accessibilityHelp"};

class XmlCoder final : public NSCoder {
 public:
  explicit XmlCoder(const pugi::xml_node& node) : node_(node) {}

  [[nodiscard]] std::optional<std::string_view> attribute(std::string_view name) const override {
    read_.emplace(name);
    const pugi::xml_attribute attribute = node_.attribute(std::string(name).c_str());
    if (!attribute) return std::nullopt;
    if (std::ranges::find(kTexts, name) == std::end(kTexts)) return attribute.value();
    return texts_.insert_or_assign(std::string(name), NSLocalizedString(attribute.value()))
        .first->second;
  }

  /// An attribute that is there and that the class did not ask for, if there is one.
  [[nodiscard]] std::optional<std::string> unread() const {
    for (const pugi::xml_attribute& attribute : node_.attributes()) {
      const std::string_view name = attribute.name();
      if (name != "class" && name != "id" && !read_.contains(name)) return std::string(name);
    }
    return std::nullopt;
  }

 private:
  const pugi::xml_node& node_;
  mutable std::set<std::string, std::less<>> read_;
  /// In the user's language.
  mutable std::map<std::string, std::string> texts_;
};

/// Where in the description something is wrong, and what.
std::string problem(const pugi::xml_node& node, std::string_view what) {
  return std::string(what) + " at <" + node.name() + "> (byte " +
         std::to_string(node.offset_debug()) + ")";
}

std::shared_ptr<NSObject> makeObject(const pugi::xml_node& node, Problems& problems) {
  const ClassRegistry::Maker maker = makerOf(node);
  if (maker == nullptr) {
    problems.push_back(problem(node, "no class '" + className(node) + "'"));
    return nullptr;
  }
  const XmlCoder coder(node);
  std::shared_ptr<NSObject> object = maker(coder);
  if (!object)
    problems.push_back(problem(node, "attributes that '" + className(node) + "' cannot read"));
  else if (const auto name = coder.unread())
    problems.push_back(problem(node, "no attribute '" + *name + "' of '" + className(node) + "'"));
  return object;
}

/// Builds one tree of views and remembers the views that have an id.
class ViewBuilder {
 public:
  explicit ViewBuilder(Problems& problems) : problems_(problems) {}

  std::shared_ptr<NSView> build(const pugi::xml_node& node) {
    auto view = std::dynamic_pointer_cast<NSView>(makeObject(node, problems_));
    if (!view) {
      problems_.push_back(problem(node, "no view"));
      return nullptr;
    }
    if (const char* id = node.attribute("id").as_string(nullptr)) remember(node, id, view);
    for (const pugi::xml_node& child : node.children()) addChild(*view, child);
    if (view->kind() == NSViewKind::Box && view->subviews().size() != 1)
      problems_.push_back(problem(node, "not one view in a box"));
    if (const auto control = std::dynamic_pointer_cast<NSControl>(view))
      if (!control->action().empty()) controls_.emplace_back(node, control);
    return view;
  }

  void connect(NSObject& owner, const pugi::xml_node& node) {
    const std::string_view property = node.attribute("property").as_string();
    const auto found = views_.find(node.attribute("destination").as_string());
    if (found == views_.end()) {
      problems_.push_back(problem(node, "an outlet without destination"));
    } else if (!owner.connectOutlet(property, found->second)) {
      problems_.push_back(problem(node, "no outlet '" + std::string(property) + "' of that class"));
    }
  }

  /// Makes `owner` the target of every control that was built.
  void connectActions(NSObject& owner) {
    for (const auto& [node, control] : controls_) {
      control->setTarget(owner.shared_from_this());
      if (!owner.respondsToSelector(control->action()))
        problems_.push_back(problem(node, "no message '" + control->action() + "' of that class"));
    }
  }

 private:
  void remember(const pugi::xml_node& node, const char* id, const std::shared_ptr<NSView>& view) {
    if (!views_.emplace(id, view).second)
      problems_.push_back(problem(node, "a second use of an id"));
  }

  void addChild(NSView& view, const pugi::xml_node& child) {
    if (std::string_view(child.name()) != "attribute") {
      if (const auto subview = build(child)) view.addSubview(subview);
      return;
    }
    const std::string_view key = child.attribute("key").as_string();
    if (!view.setValueForKey(key, child.attribute("value").as_string())) {
      problems_.push_back(problem(child, "no key '" + std::string(key) + "' of such a value"));
    }
  }

  Problems& problems_;
  std::map<std::string, std::shared_ptr<NSView>, std::less<>> views_;
  std::vector<std::pair<pugi::xml_node, std::shared_ptr<NSControl>>> controls_;
};

/// The one view of a controller's description, with the controller's outlets and actions
/// connected.
std::shared_ptr<NSView> loadView(NSViewController& controller, const pugi::xml_node& node,
                                 Problems& problems) {
  ViewBuilder builder(problems);
  std::shared_ptr<NSView> view;
  for (const pugi::xml_node& child : node.children()) {
    if (std::string_view(child.name()) == "outlet")
      builder.connect(controller, child);
    else if (view)
      problems.push_back(problem(child, "a second view of a controller"));
    else
      view = builder.build(child);
  }
  if (!view) problems.push_back(problem(node, "no view of a controller"));
  builder.connectActions(controller);
  for (const OutletRow& row : controller.classDescription().outlets) {
    const std::string name(row.name);
    if (!node.find_child_by_attribute("outlet", "property", name.c_str()))
      problems.push_back(problem(node, "outlet '" + name + "' is not connected"));
  }
  return view;
}

void failOn(const Problems& problems) {
  if (!problems.empty()) programmingError("storyboard: " + problems.front());
}

/// Keeps the description alive for controllers whose views are not loaded yet.
using Document = std::shared_ptr<const void>;

template <typename Controller>
std::shared_ptr<Controller> makeController(const pugi::xml_node& node, std::string_view what,
                                           Problems& problems) {
  const std::shared_ptr<NSObject> object = makeObject(node, problems);
  auto controller = std::dynamic_pointer_cast<Controller>(object);
  if (object && !controller)
    problems.push_back(problem(node, "a class that is no " + std::string(what)));
  return controller;
}

std::shared_ptr<NSViewController> makeViewController(const pugi::xml_node& node,
                                                     const Document& document, Problems& problems) {
  auto controller = makeController<NSViewController>(node, "view controller", problems);
  if (!controller) return nullptr;
  controller->setLoader([document, node](NSViewController& owner) {
    Problems found;
    std::shared_ptr<NSView> view = loadView(owner, node, found);
    failOn(found);
    return view;
  });
  return controller;
}

std::shared_ptr<NSWindowController> makeWindowController(const pugi::xml_node& node,
                                                         const Document& document,
                                                         Problems& problems) {
  auto controller = makeController<NSWindowController>(node, "window controller", problems);
  if (!controller) return nullptr;
  controller->setLoader([document, node] {
    Problems found;
    auto content = makeViewController(node.child("viewController"), document, found);
    failOn(found);
    return content;
  });
  return controller;
}

void checkScene(const pugi::xml_node& scene, Problems& problems) {
  const pugi::xml_node window = scene.child("windowController");
  if (window) static_cast<void>(makeWindowController(window, nullptr, problems));
  const pugi::xml_node holder = window ? window : scene;
  const pugi::xml_node content = holder.child("viewController");
  if (!content)
    problems.push_back(problem(holder, "no view controller"));
  else if (const auto controller = makeViewController(content, nullptr, problems))
    static_cast<void>(loadView(*controller, content, problems));
}

}  // namespace

struct NSStoryboard::Document {
  pugi::xml_document xml;
  Problems problems;

  [[nodiscard]] pugi::xml_node root() const { return xml.child("storyboard"); }
};

std::shared_ptr<NSStoryboard> NSStoryboard::storyboardWithName(std::string_view name,
                                                               NSBundle* bundle) {
  const NSBundle& source = bundle == nullptr ? NSBundle::mainBundle() : *bundle;
  const auto text = source.resource(name, "storyboard");
  if (!text) programmingError("no storyboard '" + std::string(name) + "'");
  return std::make_shared<NSStoryboard>(*text);
}

NSStoryboard::NSStoryboard(std::string_view text) {
  auto document = std::make_shared<Document>();
  const pugi::xml_parse_result result = document->xml.load_buffer(text.data(), text.size());
  if (!result) document->problems.emplace_back(result.description());
  document_ = document;
}

NSStoryboard::~NSStoryboard() = default;

std::shared_ptr<NSObject> NSStoryboard::instantiateControllerWithIdentifier(
    std::string_view identifier) {
  failOn(document_->problems);
  const pugi::xml_node scene = document_->root().find_child_by_attribute(
      "scene", "identifier", std::string(identifier).c_str());
  Problems problems;
  std::shared_ptr<NSObject> controller;
  if (const pugi::xml_node window = scene.child("windowController"))
    controller = makeWindowController(window, document_, problems);
  else if (const pugi::xml_node view = scene.child("viewController"))
    controller = makeViewController(view, document_, problems);
  else
    programmingError("storyboard: no scene '" + std::string(identifier) + "'");
  failOn(problems);
  return controller;
}

std::shared_ptr<NSObject> NSStoryboard::instantiateApplicationDelegate() {
  failOn(document_->problems);
  const pugi::xml_node node = document_->root().child("applicationDelegate");
  Problems problems;
  std::shared_ptr<NSObject> delegate = makeObject(node, problems);
  failOn(problems);
  return delegate;
}

std::vector<std::string> NSStoryboard::problems() {
  Problems problems = document_->problems;
  std::set<std::string> identifiers;
  for (const pugi::xml_node& node : document_->root().children()) {
    if (std::string_view(node.name()) == "applicationDelegate") continue;
    if (std::string_view(node.name()) != "scene") {
      problems.push_back(problem(node, "neither a scene nor an application delegate"));
      continue;
    }
    const std::string identifier = node.attribute("identifier").as_string();
    if (identifier.empty() || !identifiers.insert(identifier).second)
      problems.push_back(problem(node, "no identifier of its own"));
    checkScene(node, problems);
  }
  const pugi::xml_node delegate = document_->root().child("applicationDelegate");
  if (makerOf(delegate) == nullptr) {
    problems.push_back(problem(delegate, "no application delegate"));
  }
  return problems;
}

}  // namespace platform
