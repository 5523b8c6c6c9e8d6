#include "desktop/linux/x11/CoverSurface.h"

#include <array>
#include <utility>
#include <vector>

namespace linux_desktop {
namespace {

constexpr std::string_view kName = "Calmdeck desktop cover";
// Instance and class, each with the null byte that ends it.
constexpr std::string_view kClass("calmdeck-cover\0calmdeck-cover\0", 30);

// ICCCM 4.1.2.3 and 4.1.2.4: the user chose place and size, whose origin is the window's own.
constexpr std::uint32_t kUserPlaceAndSize = 1U << 0 | 1U << 1;
constexpr std::uint32_t kGravityGiven = 1U << 9;
constexpr std::uint32_t kInputGiven = 1U << 0;
constexpr std::size_t kNormalHintsLength = 18;
constexpr std::size_t kHintsLength = 9;
// Motif: the flag of its decorations, of which there are none.
constexpr std::uint32_t kDecorationsGiven = 1U << 1;
// EWMH 1.5.
constexpr std::uint32_t kAllWorkspaces = 0xffffffff;
constexpr std::uint32_t kFromPager = 2;

}  // namespace

CoverSurface::CoverSurface(XEvents& events, const QRect& area,
                           std::shared_ptr<const XPicture> picture, const CoverStand& stand,
                           std::function<void()> mapped)
    : server_(events.server()),
      area_(area),
      picture_(std::move(picture)),
      stand_(stand),
      window_(xcb_generate_id(server_.get())) {
  create();
  describe();
  watch_ = events.watch(window_, XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_BUTTON_PRESS,
                        [this, mapped = std::move(mapped)](const xcb_generic_event_t& event) {
                          if (typeOf(event) != XCB_MAP_NOTIFY) return;
                          insistOnPlace();
                          mapped();
                        });
}

CoverSurface::~CoverSurface() {
  watch_.reset();
  xcb_destroy_window(server_.get(), window_);
  xcb_flush(server_.get());
}

void CoverSurface::create() {
  const std::array<std::uint32_t, 2> values{picture_->pixmap(), stand_.managed ? 0U : 1U};
  xcb_create_window(server_.get(), XCB_COPY_FROM_PARENT, window_, server_.root(),
                    static_cast<std::int16_t>(area_.x()), static_cast<std::int16_t>(area_.y()),
                    static_cast<std::uint16_t>(area_.width()),
                    static_cast<std::uint16_t>(area_.height()), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                    XCB_COPY_FROM_PARENT, XCB_CW_BACK_PIXMAP | XCB_CW_OVERRIDE_REDIRECT,
                    values.data());
}

void CoverSurface::describe() {
  setText("WM_NAME", "STRING", kName);
  setText("_NET_WM_NAME", "UTF8_STRING", kName);
  setText("WM_CLASS", "STRING", kClass);
  server_.setNumbers(window_, "_NET_WM_WINDOW_TYPE", XCB_ATOM_ATOM,
                     {server_.atom("_NET_WM_WINDOW_TYPE_DESKTOP")});
  std::vector states{server_.atom("_NET_WM_STATE_STICKY"),
                     server_.atom("_NET_WM_STATE_SKIP_TASKBAR"),
                     server_.atom("_NET_WM_STATE_SKIP_PAGER")};
  if (!stand_.byTypeAlone) states.push_back(server_.atom("_NET_WM_STATE_BELOW"));
  server_.setNumbers(window_, "_NET_WM_STATE", XCB_ATOM_ATOM, states);
  server_.setNumbers(window_, "_NET_WM_DESKTOP", XCB_ATOM_CARDINAL, {kAllWorkspaces});
  // Mapping it takes the keyboard from nobody.
  server_.setNumbers(window_, "_NET_WM_USER_TIME", XCB_ATOM_CARDINAL, {0});
  server_.setNumbers(window_, "_MOTIF_WM_HINTS", server_.atom("_MOTIF_WM_HINTS"),
                     {kDecorationsGiven, 0, 0, 0, 0});
  // Says that it has a shadow of its own, or muffin 5.6 casts one over the next monitor's cover.
  server_.setNumbers(window_, "_GTK_FRAME_EXTENTS", XCB_ATOM_CARDINAL, {0, 0, 0, 0});
  std::vector<std::uint32_t> hints(kHintsLength);
  hints[0] = kInputGiven;  // and the input itself stays 0: no keyboard
  server_.setNumbers(window_, "WM_HINTS", XCB_ATOM_WM_HINTS, hints);
  std::vector<std::uint32_t> normal(kNormalHintsLength);
  normal[0] = kUserPlaceAndSize | kGravityGiven;
  normal[kNormalHintsLength - 1] = XCB_GRAVITY_STATIC;
  server_.setNumbers(window_, "WM_NORMAL_HINTS", XCB_ATOM_WM_SIZE_HINTS, normal);
  if (stand_.managed) setTransient();
}

void CoverSurface::map() {
  if (!stand_.managed) placeAmongUnmanaged();
  xcb_map_window(server_.get(), window_);
  xcb_flush(server_.get());
}

void CoverSurface::insistOnPlace() {
  // awesome 4.3 and Enlightenment 0.25 put new desktop windows where they like, in the end only
  // after they are on the screen, and move them when asked once more.
  if (!stand_.managed) return;
  const std::array<std::uint32_t, 4> place{
      static_cast<std::uint32_t>(area_.x()), static_cast<std::uint32_t>(area_.y()),
      static_cast<std::uint32_t>(area_.width()), static_cast<std::uint32_t>(area_.height())};
  xcb_configure_window(server_.get(), window_,
                       XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                           XCB_CONFIG_WINDOW_HEIGHT,
                       place.data());
  xcb_flush(server_.get());
}

void CoverSurface::setPicture(std::shared_ptr<const XPicture> picture) {
  const xcb_pixmap_t pixmap = picture->pixmap();
  xcb_change_window_attributes(server_.get(), window_, XCB_CW_BACK_PIXMAP, &pixmap);
  xcb_clear_area(server_.get(), 0, window_, 0, 0, 0, 0);
  picture_ = std::move(picture);
  xcb_flush(server_.get());
}

void CoverSurface::restack(const CoverStand& stand) {
  stand_ = stand;
  if (!stand.managed) {
    placeAmongUnmanaged();
  } else {
    server_.askManager(window_, "_NET_RESTACK_WINDOW",
                       {kFromPager, XCB_NONE, XCB_STACK_MODE_ABOVE});
  }
  xcb_flush(server_.get());
}

void CoverSurface::follow(const CoverStand& stand) {
  stand_ = stand;
  if (stand_.managed) setTransient();
  xcb_flush(server_.get());
}

void CoverSurface::setTransient() {
  std::vector<std::uint32_t> icons{stand_.iconWindow};
  std::erase(icons, XCB_NONE);
  server_.setNumbers(window_, "WM_TRANSIENT_FOR", XCB_ATOM_WINDOW, icons);
}

void CoverSurface::placeAmongUnmanaged() {
  if (stand_.iconTopLevel == XCB_NONE) {
    const std::uint32_t below = XCB_STACK_MODE_BELOW;
    xcb_configure_window(server_.get(), window_, XCB_CONFIG_WINDOW_STACK_MODE, &below);
    return;
  }
  const std::array<std::uint32_t, 2> values{stand_.iconTopLevel, XCB_STACK_MODE_ABOVE};
  xcb_configure_window(server_.get(), window_,
                       XCB_CONFIG_WINDOW_SIBLING | XCB_CONFIG_WINDOW_STACK_MODE, values.data());
}

void CoverSurface::setText(std::string_view property, std::string_view type,
                           std::string_view value) {
  xcb_change_property(server_.get(), XCB_PROP_MODE_REPLACE, window_, server_.atom(property),
                      server_.atom(type), 8, static_cast<std::uint32_t>(value.size()),
                      value.data());
}

}  // namespace linux_desktop
