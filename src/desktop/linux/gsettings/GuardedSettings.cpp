#include "desktop/linux/gsettings/GuardedSettings.h"

#include <gio/gio.h>

#include <algorithm>
#include <chrono>
#include <future>
#include <thread>
#include <utility>

#include "desktop/linux/log/Log.h"

namespace linux_desktop {
namespace {

constexpr std::chrono::milliseconds kLongestFlush{500};

struct Unref {
  void operator()(GSettings* settings) const { g_object_unref(settings); }
  void operator()(GSettingsSchema* schema) const { g_settings_schema_unref(schema); }
  void operator()(GVariant* value) const { g_variant_unref(value); }
  void operator()(char* text) const { g_free(text); }
  void operator()(char** list) const { g_strfreev(list); }
};
using Schema = std::unique_ptr<GSettingsSchema, Unref>;
using Variant = std::unique_ptr<GVariant, Unref>;
using Text = std::unique_ptr<char, Unref>;
using Texts = std::unique_ptr<char*, Unref>;

std::vector<std::string> stringsOf(const Texts& texts) {
  std::vector<std::string> strings;
  for (char** text = texts.get(); *text != nullptr; ++text) strings.emplace_back(*text);
  return strings;
}

/// A string has to be text for GLib, and it ends the process over what is not.
bool isText(const std::string& string) {
  return g_utf8_validate(string.c_str(), -1, nullptr) != 0;
}

std::string withType(GVariant& value) {
  return Text(g_variant_print(&value, 1)).get();
}

Schema schemaNamed(const std::string& name) {
  GSettingsSchemaSource* installed = g_settings_schema_source_get_default();
  if (installed == nullptr) return nullptr;
  return Schema(g_settings_schema_source_lookup(installed, name.c_str(), 1));
}

/// As GLib wants a path to be, over which it ends the process.
bool isPath(const std::string& path) {
  return path.starts_with('/') && path.ends_with('/') && path.find("//") == std::string::npos &&
         isText(path);
}

/// Without the module for a real store GLib keeps settings in memory, and says nothing of it.
bool isKeptInMemory(GSettings* settings) {
  GObject* backend = nullptr;
  g_object_get(settings, "backend", &backend, nullptr);
  const std::string type = G_OBJECT_TYPE_NAME(backend);
  g_object_unref(backend);
  return type == "GMemorySettingsBackend";
}

}  // namespace

struct GuardedSettings::Glib {
  explicit Glib(GSettings* opened) : settings(opened) {
    g_signal_connect_data(opened, "changed", G_CALLBACK(tell), this, nullptr,
                          static_cast<GConnectFlags>(0));
  }
  ~Glib() { g_signal_handlers_disconnect_by_data(settings.get(), this); }
  Glib(const Glib&) = delete;
  Glib& operator=(const Glib&) = delete;

  static void tell(GSettings* /*settings*/, char* key, gpointer self) {
    const auto changed = static_cast<Glib*>(self)->changed;
    if (changed) changed(key);
  }
  /// Null when the key is of another type.
  [[nodiscard]] Variant value(const std::string& key, const GVariantType* type) const {
    Variant value(g_settings_get_value(settings.get(), key.c_str()));
    return g_variant_is_of_type(value.get(), type) != 0 ? std::move(value) : nullptr;
  }

  std::unique_ptr<GSettings, Unref> settings;
  std::function<void(const std::string&)> changed;
};

std::unique_ptr<GuardedSettings> GuardedSettings::open(const std::string& schema,
                                                       std::vector<std::string> keys,
                                                       const std::string& path) {
  const Schema found = schemaNamed(schema);
  if (!found || (!path.empty() && !isPath(path))) return nullptr;
  for (const std::string& key : keys) {
    if (g_settings_schema_has_key(found.get(), key.c_str()) != 0) continue;
    qCWarning(lcGSettings, "%s has no key %s", schema.c_str(), key.c_str());
    return nullptr;
  }
  auto glib = std::make_unique<Glib>(
      g_settings_new_full(found.get(), nullptr, path.empty() ? nullptr : path.c_str()));
  if (isKeptInMemory(glib->settings.get())) {
    qCWarning(lcGSettings, "%s is kept in memory only: the module for dconf is not installed",
              schema.c_str());
    return nullptr;
  }
  return std::unique_ptr<GuardedSettings>(new GuardedSettings(std::move(glib), std::move(keys)));
}

std::vector<std::string> GuardedSettings::keysOf(const std::string& schema) {
  const Schema found = schemaNamed(schema);
  if (!found) return {};
  return stringsOf(Texts(g_settings_schema_list_keys(found.get())));
}

GuardedSettings::GuardedSettings(std::unique_ptr<Glib> glib, std::vector<std::string> keys)
    : glib_(std::move(glib)), keys_(std::move(keys)) {}

GuardedSettings::~GuardedSettings() = default;

void GuardedSettings::require(const std::string& key) const {
  if (std::ranges::find(keys_, key) != keys_.end()) return;
  qFatal("GuardedSettings: the key %s was not named when the schema was opened", key.c_str());
}

std::optional<std::string> GuardedSettings::text(const std::string& key) const {
  require(key);
  const Variant value = glib_->value(key, G_VARIANT_TYPE_STRING);
  if (!value) return std::nullopt;
  return std::string(g_variant_get_string(value.get(), nullptr));
}

std::optional<bool> GuardedSettings::flag(const std::string& key) const {
  require(key);
  const Variant value = glib_->value(key, G_VARIANT_TYPE_BOOLEAN);
  if (!value) return std::nullopt;
  return g_variant_get_boolean(value.get()) != 0;
}

std::optional<std::vector<std::string>> GuardedSettings::list(const std::string& key) const {
  require(key);
  const Variant value = glib_->value(key, G_VARIANT_TYPE_STRING_ARRAY);
  if (!value) return std::nullopt;
  return stringsOf(Texts(g_variant_dup_strv(value.get(), nullptr)));
}

std::optional<std::string> GuardedSettings::userValue(const std::string& key) const {
  require(key);
  const Variant value(g_settings_get_user_value(glib_->settings.get(), key.c_str()));
  return value ? std::optional(withType(*value)) : std::nullopt;
}

std::optional<std::string> GuardedSettings::printed(const std::string& text) {
  if (!isText(text)) return std::nullopt;
  const Variant value(g_variant_ref_sink(g_variant_new_string(text.c_str())));
  return withType(*value);
}

bool GuardedSettings::setText(const std::string& key, const std::string& value) {
  if (!text(key) || !isText(value)) return false;
  return g_settings_set_string(glib_->settings.get(), key.c_str(), value.c_str()) != 0;
}

bool GuardedSettings::setFlag(const std::string& key, bool value) {
  if (!flag(key)) return false;
  return g_settings_set_boolean(glib_->settings.get(), key.c_str(), value ? 1 : 0) != 0;
}

bool GuardedSettings::setList(const std::string& key, const std::vector<std::string>& value) {
  if (!list(key) || !std::ranges::all_of(value, isText)) return false;
  // The last one ends them.
  std::vector<const char*> strings(value.size() + 1);
  std::ranges::transform(value, strings.begin(),
                         [](const std::string& string) { return string.c_str(); });
  return g_settings_set_strv(glib_->settings.get(), key.c_str(), strings.data()) != 0;
}

bool GuardedSettings::setUserValue(const std::string& key,
                                   const std::optional<std::string>& value) {
  require(key);
  if (g_settings_is_writable(glib_->settings.get(), key.c_str()) == 0) return false;
  if (!value) {
    g_settings_reset(glib_->settings.get(), key.c_str());
    return true;
  }
  const Variant now(g_settings_get_value(glib_->settings.get(), key.c_str()));
  const Variant wanted(
      g_variant_parse(g_variant_get_type(now.get()), value->c_str(), nullptr, nullptr, nullptr));
  return wanted && g_settings_set_value(glib_->settings.get(), key.c_str(), wanted.get()) != 0;
}

bool GuardedSettings::flush() {
  // GLib's own wait has no end, so it goes to a thread that may be left behind.
  std::promise<void> done;
  const std::future<void> stored = done.get_future();
  std::thread([promise = std::move(done)]() mutable {
    g_settings_sync();
    promise.set_value();
  }).detach();
  return stored.wait_for(kLongestFlush) == std::future_status::ready;
}

void GuardedSettings::setChanged(std::function<void(const std::string& key)> changed) {
  glib_->changed = std::move(changed);
}

}  // namespace linux_desktop
