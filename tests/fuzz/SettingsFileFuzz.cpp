// Any bytes as the settings file: whatever can be read is equal after it was written, as text kept
// from the file and as text made anew from the value.
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "desktop/linux/defaults/JsonMembers.h"

namespace {

using namespace linux_desktop;

void demand(bool condition, const char* claim) {
  if (condition) return;
  std::fprintf(stderr, "Not so: %s\n", claim);
  std::abort();
}

JsonMembers readAgain(const JsonMembers& members) {
  auto result = readJson(writeJson(members));
  demand(std::holds_alternative<JsonMembers>(result), "what was written can be read");
  return std::get<JsonMembers>(std::move(result));
}

// Members without a value have no text but the one they came with.
JsonMembers withFreshTexts(JsonMembers members) {
  for (auto& [name, member] : members) {
    if (!member.value) continue;
    std::optional<std::string> text = jsonText(*member.value);
    demand(text.has_value(), "what was read can be written");
    member.text = std::move(*text);
  }
  return members;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto result = readJson({reinterpret_cast<const char*>(data), size});
  if (const auto* members = std::get_if<JsonMembers>(&result)) {
    demand(readAgain(*members) == *members, "kept members come back");
    const JsonMembers fresh = withFreshTexts(*members);
    demand(readAgain(fresh) == fresh, "values set again come back");
  }
  return 0;
}
