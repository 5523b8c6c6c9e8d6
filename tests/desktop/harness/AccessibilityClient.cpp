#include "desktop/harness/AccessibilityClient.h"

#include <algorithm>
#include <sstream>

namespace harness {

namespace {

// Debian's own: its modules are not for an interpreter from elsewhere.
constexpr const char* kPython = "/usr/bin/python3";
constexpr const char* kApplication = "calmdeck";  // the executable's name
constexpr const char* kScript = HARNESS_FOLDER "/accessibility.py";

std::vector<std::string> split(const std::string& text, char separator) {
  std::vector<std::string> parts;
  std::istringstream stream(text);
  for (std::string part; std::getline(stream, part, separator);) parts.push_back(part);
  return parts;
}

std::optional<AccessibleElement> parsed(const std::string& line) {
  const std::vector<std::string> fields = split(line, '\t');
  if (fields.size() != 7) return std::nullopt;
  const auto number = [&](std::size_t index) { return std::stoi(fields.at(index)); };
  return AccessibleElement{
      fields[0], fields[1], split(fields[2], ','), {number(3), number(4), number(5), number(6)}};
}

}  // namespace

bool AccessibleElement::is(std::string_view state) const {
  return std::find(states.begin(), states.end(), state) != states.end();
}

Environment AccessibilityClient::accessibleEnvironment() {
  return {{"QT_LINUX_ACCESSIBILITY_ALWAYS_ON", "1"}};
}

std::vector<AccessibleElement> AccessibilityClient::elements() const {
  std::vector<AccessibleElement> elements;
  for (const std::string& line :
       split(desk_.run({kPython, kScript, "tree", kApplication}).output, '\n')) {
    if (auto element = parsed(line)) elements.push_back(std::move(*element));
  }
  return elements;
}

std::optional<AccessibleElement> AccessibilityClient::find(std::string_view name,
                                                           std::string_view role,
                                                           std::string_view state) const {
  for (AccessibleElement& element : elements()) {
    const bool fits = element.name == name && (role.empty() || element.role == role);
    if (fits && element.is("showing") && element.is(state)) return std::move(element);
  }
  return std::nullopt;
}

std::optional<AccessibleElement> AccessibilityClient::await(
    const std::string& name, std::chrono::milliseconds patience) const {
  std::optional<AccessibleElement> found;
  desk_.until([&] { return (found = find(name, {}, "focusable")).has_value(); }, patience);
  return found;
}

bool AccessibilityClient::act(const AccessibleElement& element) const {
  return desk_.run({kPython, kScript, "act", kApplication, element.role, element.name}).succeeded();
}

}  // namespace harness
