#include "desktop/linux/wallpaper/DesktopWallpapers.h"

#include <QDBusArgument>
#include <QFileInfo>
#include <QMetaObject>
#include <QObject>
#include <QVariantMap>
#include <algorithm>
#include <array>
#include <span>
#include <utility>
#include <vector>

#include "desktop/linux/bus/XfconfChannel.h"

namespace linux_desktop {
namespace {

// By the number that the property holds.
constexpr std::array kStyles{
    BackdropStyle::None,   BackdropStyle::Centered, BackdropStyle::Tiled,  BackdropStyle::Stretched,
    BackdropStyle::Fitted, BackdropStyle::Zoomed,   BackdropStyle::Zoomed,
};
constexpr int kZoomed = 5;
constexpr int kSpanning = 6;
constexpr std::array kShadings{BackdropShading::Solid, BackdropShading::Horizontal,
                               BackdropShading::Vertical};

/// What xfdesktop shows where nobody chose anything; it is compiled in.
struct Release {
  /// A property that this release and later ones write.
  const char* mark;
  const char* picture;
  QColor colour;
};
constexpr std::array kReleases{
    // 4.20
    Release{"/last-settings-migration-version", "/usr/share/backgrounds/xfce/xfce-x.svg",
            QColor(0xf8, 0xf8, 0xf8)},
    Release{nullptr, "/usr/share/backgrounds/xfce/xfce-shapes.svg", QColor(0x15, 0x22, 0x33)},
};

const Release& releaseOf(const QVariantMap& properties) {
  return *std::ranges::find_if(kReleases, [&](const Release& release) {
    return release.mark == nullptr || properties.contains(QLatin1String(release.mark));
  });
}

QString existing(const char* picture) {
  return QFileInfo::exists(QLatin1String(picture)) ? QLatin1String(picture) : QString();
}

template <class Table>
auto rowOf(const Table& table, int number) {
  return number < 0 || static_cast<std::size_t>(number) >= table.size()
             ? table.front()
             : table.at(static_cast<std::size_t>(number));
}

/// Four numbers from 0 to 1.
QColor colourOf(const QVariant& value, const QColor& otherwise) {
  const auto parts = qdbus_cast<QVariantList>(value);
  if (parts.size() < 3) return otherwise;
  const auto part = [&](int index) {
    return static_cast<float>(std::clamp(parts.at(index).toDouble(), 0.0, 1.0));
  };
  return QColor::fromRgbF(part(0), part(1), part(2));
}

/// What xfdesktop makes of its properties, of which those of one monitor and workspace begin with
/// `prefix`, with the slash. None where nobody knows what it shows.
std::optional<Backdrop> backdropIn(const QVariantMap& properties, const QString& prefix) {
  const auto number = [&](const char* key, int otherwise) {
    const QVariant value = properties.value(prefix + QLatin1String(key));
    return value.isValid() ? value.toInt() : otherwise;
  };
  const Release& release = releaseOf(properties);
  const int style = number("image-style", kZoomed);
  Backdrop backdrop;
  backdrop.style = rowOf(kStyles, style);
  backdrop.spansMonitors = style == kSpanning;
  backdrop.shading = rowOf(kShadings, number("color-style", 0));
  backdrop.primary = colourOf(properties.value(prefix + QLatin1String("rgba1")), release.colour);
  backdrop.secondary = colourOf(properties.value(prefix + QLatin1String("rgba2")), release.colour);
  if (backdrop.style == BackdropStyle::None) return backdrop;
  const QVariant chosen = properties.value(prefix + QLatin1String("last-image"));
  backdrop.file = chosen.isValid() ? chosen.toString() : existing(release.picture);
  if (backdrop.file.isEmpty()) return std::nullopt;
  return backdrop;
}

using Change = XfconfChannel::Change;
using platform::Dictionary;
using platform::Value;

const QString kBase = QStringLiteral("/backdrop");
constexpr QLatin1String kPicture("last-image");
constexpr QLatin1String kStyle("image-style");
constexpr QLatin1String kCycle("backdrop-cycle-enable");
constexpr const char* kWorkspaces = "workspaces";
constexpr const char* kNoAnswer = "Xfce's settings service does not answer.";

// What a set may change, in the order in which the old is put back: the style first, so that a
// desktop of one colour never draws a picture, and the slide show last, since it starts at once.
constexpr std::array kChanged{kStyle, kPicture, kCycle};
constexpr std::array kOptions{kStyle, kCycle};

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

class XfceWallpaper final : public WallpaperAdapter {
 public:
  explicit XfceWallpaper(const WallpaperSurroundings& surroundings) : facts_(surroundings.facts) {}

  std::optional<Backdrop> backdrop(const Monitor& monitor) override {
    const Seen* seen = look(BusPeer::deadline());
    if (seen == nullptr) return std::nullopt;
    return backdropIn(seen->properties, prefixOf(monitor, seen->workspaces.present));
  }

  std::optional<WallpaperState> state(const Monitor& monitor) override {
    const Seen* seen = look(BusPeer::deadline());
    if (seen == nullptr) return std::nullopt;
    WallpaperState state{valuesOf(*seen, monitor, kChanged), {}};
    state.kept.emplace(kWorkspaces, seen->workspaces.count);
    const QString shown = prefixOf(monitor, seen->workspaces.present);
    if (seen->properties.value(shown + kCycle).toBool()) return state;
    if (const auto backdrop = backdropIn(seen->properties, shown)) state.file = backdrop->file;
    return state;
  }

  std::optional<Dictionary> options(const Monitor& monitor) override {
    const Seen* seen = look(BusPeer::deadline());
    if (seen == nullptr) return std::nullopt;
    return valuesOf(*seen, monitor, kOptions);
  }

  Fault show(const Monitor& monitor, const QString& file, const Dictionary& options) override {
    const QDeadlineTimer deadline = BusPeer::deadline();
    const Seen* now = look(deadline);
    if (now == nullptr) return kNoAnswer;
    std::vector<Change> wanted;
    for (int workspace = 0; workspace < now->workspaces.count; ++workspace) {
      const QString prefix = prefixOf(monitor, workspace);
      const auto given = [&](QLatin1String key) {
        const auto option = propertyOf(options, entryOf(workspace, key));
        return option ? option : present(now->properties, prefix + key);
      };
      if (given(kCycle) == true) wanted.push_back({prefix + kCycle, false});
      wanted.push_back({prefix + kPicture, file});
      const auto style = given(kStyle);
      wanted.push_back({prefix + kStyle, style == 0 ? kZoomed : style});
    }
    return write(*now, wanted, deadline);
  }

  Fault restore(const Monitor& monitor, const Dictionary& kept) override {
    const QDeadlineTimer deadline = BusPeer::deadline();
    const Seen* now = look(deadline);
    if (now == nullptr) return kNoAnswer;
    const auto count = platform::valueOf<std::int64_t>(kept, kWorkspaces).value_or(0);
    std::vector<Change> wanted;
    for (int workspace = 0; workspace < static_cast<int>(count); ++workspace) {
      for (const QLatin1String key : kChanged) {
        wanted.push_back(
            {prefixOf(monitor, workspace) + key, propertyOf(kept, entryOf(workspace, key))});
      }
    }
    return write(*now, wanted, deadline);
  }

  void setChanged(std::function<void()> changed) override {
    if (!changed) return channel_.setChanged({});
    channel_.setChanged([changed = std::move(changed)](const Change& change) {
      if (change.property.startsWith(kBase)) changed();
    });
  }

  [[nodiscard]] BackdropManner manner() const override {
    return {.rounding = SizeRounding::DownInDouble, .turnsUpright = true};
  }

 private:
  /// What one turn of the event loop needs, asked for once.
  struct Seen {
    QVariantMap properties;
    /// The present one is the one whose picture is shown.
    Workspaces workspaces;
  };

  /// Null when the settings service does not answer.
  [[nodiscard]] const Seen* look(const QDeadlineTimer& deadline) {
    if (seen_) return &*seen_;
    auto properties = channel_.read(QStringLiteral("/"), deadline);
    if (!properties) return nullptr;
    const auto single = present(*properties, kBase + QLatin1String("/single-workspace-mode"));
    auto workspaces = facts_.workspaces();
    if (!single || single->toBool() || !workspaces) {
      workspaces = Workspaces{
          workspaces.value_or(Workspaces()).count,
          properties->value(kBase + QLatin1String("/single-workspace-number"), 0).toInt()};
    }
    seen_ = Seen{std::move(*properties), *workspaces};
    QMetaObject::invokeMethod(
        &turn_, [this] { seen_.reset(); }, Qt::QueuedConnection);
    return &*seen_;
  }

  [[nodiscard]] static Dictionary valuesOf(const Seen& seen, const Monitor& monitor,
                                           std::span<const QLatin1String> keys) {
    Dictionary values;
    for (int workspace = 0; workspace < seen.workspaces.count; ++workspace) {
      for (const QLatin1String key : keys) {
        const auto value = valueOf(seen.properties.value(prefixOf(monitor, workspace) + key));
        if (value) values.insert_or_assign(entryOf(workspace, key), *value);
      }
    }
    return values;
  }

  [[nodiscard]] Fault write(const Seen& now, const std::vector<Change>& wanted,
                            const QDeadlineTimer& deadline) {
    std::vector<Change> changes;
    std::vector<Change> undo;
    for (const Change& change : wanted) {
      const auto old = present(now.properties, change.property);
      if (old == change.value) continue;
      changes.push_back(change);
      undo.insert(undo.begin(), {change.property, old});
    }
    auto reason = channel_.write(changes, undo, deadline);
    if (reason) {
      seen_.reset();
      return reason;
    }
    for (const auto& [property, value] : changes) {
      value ? void(seen_->properties.insert(property, *value))
            : void(seen_->properties.remove(property));
    }
    return std::nullopt;
  }

  DesktopFacts& facts_;
  XfconfChannel channel_{QStringLiteral("xfce4-desktop")};
  std::optional<Seen> seen_;
  QObject turn_;
};

}  // namespace

std::shared_ptr<WallpaperAdapter> xfceWallpaper(const WallpaperSurroundings& surroundings) {
  return std::make_shared<XfceWallpaper>(surroundings);
}

}  // namespace linux_desktop
