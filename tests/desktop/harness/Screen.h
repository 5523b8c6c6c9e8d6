#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "desktop/harness/PrivateHome.h"
#include "desktop/harness/XConnection.h"

namespace harness {

/// Pixels as 0xRRGGBB, row by row.
struct Image {
  int width = 0;
  int height = 0;
  std::vector<std::uint32_t> pixels;

  [[nodiscard]] std::uint32_t at(int x, int y) const;
  [[nodiscard]] Image part(const Rect& area) const;
  bool operator==(const Image&) const = default;
};

/// The smallest rectangle that holds every pixel in which two images of one size differ; absent
/// when they are equal.
[[nodiscard]] std::optional<Rect> changedArea(const Image& before, const Image& after);

/// Throws std::runtime_error when the file cannot be written.
void writePng(const Image& image, const std::filesystem::path& path);
/// What is in the bytes of such a file; throws std::runtime_error where that is no picture.
[[nodiscard]] Image readPng(const std::string& bytes);

/// What a person in front of the screen sees, compositing included.
class Screen {
 public:
  /// Those that draw on it live in that home.
  explicit Screen(const PrivateHome& home) : home_(home) {}
  virtual ~Screen() = default;
  Screen(const Screen&) = delete;
  Screen& operator=(const Screen&) = delete;

  [[nodiscard]] virtual Image whole() const = 0;
  /// Cut to what there is.
  [[nodiscard]] virtual Image area(const Rect& wanted) const = 0;
  [[nodiscard]] std::uint32_t pixel(int x, int y) const { return area({x, y, 1, 1}).at(0, 0); }

  /// The image of `wanted` once it has stayed the same for `calm` and no program has anything left
  /// to do; the last one seen when it never came to rest within `patience`. For programs that paint
  /// in several steps and tell nobody when they are done. `calm` covers the steps that a timer
  /// begins; how long a busy machine keeps a program from painting does not count.
  [[nodiscard]] Image settled(const Rect& wanted, std::chrono::milliseconds calm,
                              std::chrono::milliseconds patience = kPatience) const;

 private:
  const PrivateHome& home_;
};

/// Of a drawable as large as the X screen.
[[nodiscard]] Image imageOf(const XConnection& x, xcb_drawable_t drawable, const Rect& wanted);

/// That of an X server.
class XScreen final : public Screen {
 public:
  XScreen(const PrivateHome& home, const XConnection& x) : Screen(home), x_(x) {}

  [[nodiscard]] Image whole() const override { return area(x_.screenArea()); }
  [[nodiscard]] Image area(const Rect& wanted) const override {
    return imageOf(x_, x_.root(), wanted);
  }

 private:
  const XConnection& x_;
};

/// Finds a tray icon by eye: it is what changed in the panels since the finder was made. So make
/// it before the program starts, with panels on which nothing else moves.
class TrayIconFinder {
 public:
  TrayIconFinder(const Screen& screen, const std::vector<Rect>& panels);

  /// The icon's pixels' bounds once they have come to rest, in root coordinates; absent when
  /// nothing appears within `patience`.
  [[nodiscard]] std::optional<Rect> find(std::chrono::milliseconds patience = kPatience) const;

 private:
  struct Panel {
    Rect area;
    Image before;
  };
  [[nodiscard]] std::optional<Rect> changed(const Panel& panel, const Image& now) const;

  const Screen& screen_;
  std::vector<Panel> panels_;
};

[[nodiscard]] Image plain(std::uint32_t colour, int width = 64, int height = 64);
/// Pictures for desktops: soft, so that whatever stands on one shows by its edges. Every row has
/// one colour.
[[nodiscard]] Image dusk(int width, int height);
[[nodiscard]] Image meadow(int width, int height);

/// Puts both into a home, as "dusk.png" and "meadow.png", and two files on its desktop.
void furnish(const PrivateHome& home);

/// Whether anything with sharp edges, an icon or its name, is to be seen in an image that is
/// otherwise one of these pictures. What lies in `apart`, in the image's own coordinates, does not
/// count.
[[nodiscard]] bool showsIcons(const Image& image, const std::vector<Rect>& apart = {});

/// True when no channel of two colours differs by more than a scaler's rounding can make it.
[[nodiscard]] bool alike(std::uint32_t one, std::uint32_t other);
/// Whether that is a colour of one of those pictures, however it is scaled.
[[nodiscard]] bool isOf(Image (*picture)(int width, int height), std::uint32_t colour);

}  // namespace harness
