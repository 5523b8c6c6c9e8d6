#include "desktop/linux/wallpaper/XfceBackdrop.h"

#include <QDBusArgument>
#include <QFileInfo>
#include <algorithm>
#include <array>

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

/// What xfdesktop shows where no picture was ever chosen; it is compiled in. 4.20 has the first and
/// leaves the choice unwritten, before that it was the second.
constexpr std::array kBuiltIn{"/usr/share/backgrounds/xfce/xfce-x.svg",
                              "/usr/share/backgrounds/xfce/xfce-shapes.svg"};

QString builtInPicture() {
  const auto* found = std::ranges::find_if(
      kBuiltIn, [](const char* file) { return QFileInfo::exists(QLatin1String(file)); });
  return found == kBuiltIn.end() ? QString() : QLatin1String(*found);
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

}  // namespace

std::optional<Backdrop> xfceBackdrop(const QVariantMap& properties, const QString& prefix) {
  const auto number = [&](const char* key, int otherwise) {
    const QVariant value = properties.value(prefix + QLatin1String(key));
    return value.isValid() ? value.toInt() : otherwise;
  };
  const int style = number("image-style", kZoomed);
  Backdrop backdrop;
  backdrop.style = rowOf(kStyles, style);
  backdrop.spansMonitors = style == kSpanning;
  backdrop.shading = rowOf(kShadings, number("color-style", 0));
  backdrop.primary =
      colourOf(properties.value(prefix + QLatin1String("rgba1")), QColor(0x15, 0x22, 0x33));
  backdrop.secondary =
      colourOf(properties.value(prefix + QLatin1String("rgba2")), QColor(0x15, 0x22, 0x33));
  if (backdrop.style == BackdropStyle::None) return backdrop;
  const QVariant chosen = properties.value(prefix + QLatin1String("last-image"));
  backdrop.file = chosen.isValid() ? chosen.toString() : builtInPicture();
  if (backdrop.file.isEmpty()) return std::nullopt;
  return backdrop;
}

}  // namespace linux_desktop
