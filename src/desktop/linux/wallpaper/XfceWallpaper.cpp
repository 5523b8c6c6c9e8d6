#include "desktop/linux/wallpaper/XfceWallpaper.h"

#include <algorithm>
#include <array>

#include "desktop/linux/wallpaper/XfceBackdrop.h"
#include "desktop/linux/xserver/XServer.h"

namespace linux_desktop {
namespace {

using Change = XfconfChannel::Change;
using platform::Dictionary;
using platform::Value;

const QString kBase = QStringLiteral("/backdrop");
constexpr QLatin1String kPicture("last-image");
constexpr QLatin1String kStyle("image-style");
constexpr QLatin1String kCycle("backdrop-cycle-enable");
constexpr int kZoomed = 5;
constexpr const char* kWorkspaces = "workspaces";

// What a set may change, in the order in which the old is put back: the style first, so that a
// desktop of one colour never draws a picture, and the slide show last, since it starts at once.
constexpr std::array kChanged{kStyle, kPicture, kCycle};

QString prefixOf(const Monitor& monitor, int workspace) {
  return QStringLiteral("%1/screen0/monitor%2/workspace%3/")
      .arg(kBase, monitor.name, QString::number(workspace));
}

std::string entryOf(int workspace, QLatin1String key) {
  return std::to_string(workspace) + '/' + key.data();
}

std::optional<Value> valueOf(const QVariant& property) {
  switch (property.typeId()) {
    case QMetaType::QString:
      return Value(property.toString().toStdString());
    case QMetaType::Int:
      return Value(property.toInt());
    case QMetaType::Bool:
      return Value(property.toBool());
    default:
      return std::nullopt;
  }
}

std::optional<QVariant> propertyOf(const Dictionary& state, const std::string& entry) {
  const auto found = state.find(entry);
  if (found == state.end()) return std::nullopt;
  const Value& value = found->second;
  if (const auto text = value.as<std::string>()) return QVariant(QString::fromStdString(*text));
  if (const auto number = value.as<std::int64_t>()) return QVariant(static_cast<int>(*number));
  return QVariant(value.as<bool>().value_or(false));
}

std::optional<QVariant> present(const QVariantMap& properties, const QString& name) {
  const auto found = properties.find(name);
  return found == properties.end() ? std::nullopt : std::optional(*found);
}

}  // namespace

XfceWallpaper::XfceWallpaper(const WallpaperSurroundings& surroundings)
    : server_(surroundings.x11 == nullptr ? nullptr : &surroundings.x11->server()) {}

int XfceWallpaper::workspaces() const {
  if (server_ == nullptr) return 1;
  const auto count = server_->numbers(server_->root(), "_NET_NUMBER_OF_DESKTOPS");
  return count.empty() ? 1 : std::max(1, static_cast<int>(count.front()));
}

int XfceWallpaper::presentWorkspace(const QVariantMap& properties) const {
  const auto single = present(properties, kBase + QLatin1String("/single-workspace-mode"));
  if (!single || single->toBool() || server_ == nullptr) {
    return properties.value(kBase + QLatin1String("/single-workspace-number"), 0).toInt();
  }
  const auto now = server_->numbers(server_->root(), "_NET_CURRENT_DESKTOP");
  return now.empty() ? 0 : static_cast<int>(now.front());
}

std::optional<Backdrop> XfceWallpaper::backdrop(const Monitor& monitor) {
  const auto properties = channel_.read(kBase, BusPeer::deadline());
  if (!properties) return std::nullopt;
  return xfceBackdrop(*properties, prefixOf(monitor, presentWorkspace(*properties)));
}

std::optional<Dictionary> XfceWallpaper::state(const Monitor& monitor) {
  const auto properties = channel_.read(kBase, BusPeer::deadline());
  if (!properties) return std::nullopt;
  Dictionary state{{kWorkspaces, workspaces()}};
  for (int workspace = 0; workspace < workspaces(); ++workspace) {
    for (const QLatin1String key : kChanged) {
      const auto value = valueOf(properties->value(prefixOf(monitor, workspace) + key));
      if (value) state.insert_or_assign(entryOf(workspace, key), *value);
    }
  }
  const QString shown = prefixOf(monitor, presentWorkspace(*properties));
  if (properties->value(shown + kCycle).toBool()) state.insert_or_assign(kSlideShow, true);
  return state;
}

std::optional<std::string> XfceWallpaper::show(const Monitor& monitor, const QString& file) {
  const QDeadlineTimer deadline = BusPeer::deadline();
  const auto now = channel_.read(kBase, deadline);
  if (!now) return "Xfce's settings service does not answer.";
  std::vector<Change> wanted;
  for (int workspace = 0; workspace < workspaces(); ++workspace) {
    const QString prefix = prefixOf(monitor, workspace);
    if (now->value(prefix + kCycle).toBool()) wanted.push_back({prefix + kCycle, false});
    wanted.push_back({prefix + kPicture, file});
    if (now->value(prefix + kStyle, kZoomed) == 0) wanted.push_back({prefix + kStyle, kZoomed});
  }
  return write(*now, wanted, deadline);
}

std::optional<std::string> XfceWallpaper::restore(const Monitor& monitor, const Dictionary& state) {
  const QDeadlineTimer deadline = BusPeer::deadline();
  const auto now = channel_.read(kBase, deadline);
  if (!now) return "Xfce's settings service does not answer.";
  const auto count = platform::valueOf<std::int64_t>(state, kWorkspaces).value_or(0);
  std::vector<Change> wanted;
  for (int workspace = 0; workspace < static_cast<int>(count); ++workspace) {
    for (const QLatin1String key : kChanged) {
      wanted.push_back(
          {prefixOf(monitor, workspace) + key, propertyOf(state, entryOf(workspace, key))});
    }
  }
  return write(*now, wanted, deadline);
}

std::optional<std::string> XfceWallpaper::write(const QVariantMap& now,
                                                const std::vector<Change>& wanted,
                                                const QDeadlineTimer& deadline) {
  std::vector<Change> changes;
  std::vector<Change> undo;
  for (const Change& change : wanted) {
    const auto old = present(now, change.property);
    if (old == change.value) continue;
    changes.push_back(change);
    undo.insert(undo.begin(), {change.property, old});
  }
  return channel_.write(changes, undo, deadline);
}

void XfceWallpaper::setChanged(std::function<void()> changed) {
  if (!changed) return channel_.setChanged({});
  channel_.setChanged([changed = std::move(changed)](const QString& property) {
    if (property.startsWith(kBase)) changed();
  });
}

}  // namespace linux_desktop
