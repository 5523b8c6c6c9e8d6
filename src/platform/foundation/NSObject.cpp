#include "platform/foundation/NSObject.h"

#include <algorithm>

namespace platform {
namespace {

template <typename Row>
const Row* findRow(std::span<const Row> rows, std::string_view Row::*name,
                   std::string_view wanted) {
  const auto row = std::ranges::find(rows, wanted, name);
  return row == rows.end() ? nullptr : &*row;
}

const MessageRow* findMessage(const NSObject& object, std::string_view selector) {
  return findRow(object.classDescription().messages, &MessageRow::selector, selector);
}

}  // namespace

const ClassDescription& NSObject::classDescription() const {
  static constexpr ClassDescription description{.className = "NSObject"};
  return description;
}

bool NSObject::respondsToSelector(std::string_view selector) const {
  return findMessage(*this, selector) != nullptr;
}

void NSObject::performSelector(std::string_view selector, NSObject* argument) {
  const MessageRow* row = findMessage(*this, selector);
  if (row == nullptr) {
    programmingError(std::string(classDescription().className) + " does not answer " +
                     std::string(selector));
  }
  row->send(*this, argument);
}

bool NSObject::connectOutlet(std::string_view name, const std::shared_ptr<NSObject>& object) {
  const OutletRow* row = findRow(classDescription().outlets, &OutletRow::name, name);
  return row != nullptr && row->connect(*this, object);
}

bool NSObject::setValueForKey(std::string_view key, std::string_view text) {
  const KeyRow* row = findRow(classDescription().keys, &KeyRow::key, key);
  return row != nullptr && row->set(*this, text);
}

}  // namespace platform
