#include <array>
#include <stdexcept>
#include <string_view>

#include "desktop/harness/DesktopPrograms.h"

namespace harness {

namespace {

// Each panel's own words for an edge, in the order of Edge.
struct EdgeWords {
  std::string_view xfceSnap;  // its number for a panel snapped to the whole edge
  std::string_view xfceMode;  // 0 lies, 1 stands
  std::string_view tint2;
  std::string_view lxqt;
  std::string_view mate;
};
constexpr std::array<EdgeWords, 4> kEdgeWords{{
    {"11", "0", "top center horizontal", "Top", "top"},
    {"12", "0", "bottom center horizontal", "Bottom", "bottom"},
    {"5", "1", "center left vertical", "Left", "left"},
    {"1", "1", "center right vertical", "Right", "right"},
}};

const EdgeWords& wordsFor(Edge edge) {
  return kEdgeWords.at(static_cast<std::size_t>(edge));
}

/// Replaces each `{name}` of `text`.
std::string filled(std::string text, const Environment& values) {
  for (const auto& [name, value] : values) {
    const std::string mark = "{" + name + "}";
    for (std::size_t at = 0; (at = text.find(mark, at)) != std::string::npos; at += value.size())
      text.replace(at, mark.size(), value);
  }
  return text;
}

constexpr std::string_view kXfcePanel = R"(<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-panel" version="1.0">
  <property name="configver" type="int" value="2"/>
  <property name="panels" type="array">
    <value type="int" value="1"/>
    <property name="dark-mode" type="bool" value="false"/>
    <property name="panel-1" type="empty">
      <property name="position" type="string" value="p={snap};x=0;y=0"/>
      <property name="output-name" type="string" value="VNC-{monitor}"/>
      <property name="mode" type="uint" value="{mode}"/>
      <property name="length" type="uint" value="100"/>
      <property name="position-locked" type="bool" value="true"/>
      <property name="size" type="uint" value="32"/>
      <property name="plugin-ids" type="array">
        <value type="int" value="1"/>
        <value type="int" value="2"/>
      </property>
    </property>
  </property>
  <property name="plugins" type="empty">
    <property name="plugin-1" type="string" value="separator">
      <property name="expand" type="bool" value="true"/>
      <property name="style" type="uint" value="0"/>
    </property>
    <property name="plugin-2" type="string" value="systray">
      <property name="square-icons" type="bool" value="true"/>
    </property>
  </property>
</channel>
)";

constexpr std::string_view kTint2 = R"(rounded = 0
border_width = 0
background_color = #303030 100
border_color = #303030 100
panel_items = FS
panel_size = 100% 32
panel_position = {edge}
panel_monitor = {number}
panel_layer = top
panel_dock = 0
panel_background_id = 1
strut_policy = follow_size
autohide = 0
systray_padding = 4 4 4
systray_icon_size = 24
systray_monitor = {number}
)";

constexpr std::string_view kLxqtPanel = R"([General]
__userfile__=true
panels=panel1

[panel1]
plugins=spacer,statusnotifier
position={edge}
desktop={monitor}
panelSize=32
iconSize=22
width=100
width-percent=true
animation-duration=0

[spacer]
type=spacer
expandable=true

[statusnotifier]
type=statusnotifier
alignment=Right
)";

constexpr std::string_view kWaybar = R"({
  "layer": "top", "position": "top", "height": 32, "output": "{monitor}",
  "modules-right": ["tray"],
  "tray": {"icon-size": 24, "spacing": 4}
})";
constexpr std::string_view kWaybarStyle = "window#waybar { background: #303030; }\n";

struct MateSetting {
  std::string_view schema;
  std::string_view key;
  std::string_view value;
};
constexpr MateSetting kMatePanel[] = {
    {"org.mate.panel.toplevel:/org/mate/panel/toplevels/one/", "orientation", "{edge}"},
    {"org.mate.panel.toplevel:/org/mate/panel/toplevels/one/", "monitor", "{monitor}"},
    {"org.mate.panel.toplevel:/org/mate/panel/toplevels/one/", "size", "32"},
    {"org.mate.panel.toplevel:/org/mate/panel/toplevels/one/", "expand", "true"},
    {"org.mate.panel.object:/org/mate/panel/objects/tray/", "object-type", "applet"},
    {"org.mate.panel.object:/org/mate/panel/objects/tray/", "applet-iid",
     "NotificationAreaAppletFactory::NotificationArea"},
    {"org.mate.panel.object:/org/mate/panel/objects/tray/", "toplevel-id", "one"},
    {"org.mate.panel.object:/org/mate/panel/objects/tray/", "position", "0"},
    {"org.mate.panel.object:/org/mate/panel/objects/tray/", "relative-to-edge", "end"},
    {"org.mate.panel.object:/org/mate/panel/objects/tray/", "panel-right-stick", "true"},
    {"org.mate.panel", "toplevel-id-list", "['one']"},
    {"org.mate.panel", "object-id-list", "['tray']"},
};

}  // namespace

void configurePanel(Panel kind, const PanelPlace& place, const PrivateHome& home,
                    const Environment& environment) {
  const EdgeWords& words = wordsFor(place.edge);
  Environment values{{"monitor", std::to_string(place.monitor)},
                     {"number", std::to_string(place.monitor + 1)},
                     {"snap", std::string(words.xfceSnap)},
                     {"mode", std::string(words.xfceMode)}};
  switch (kind) {
    case Panel::None:
      break;
    case Panel::XfcePanel:
      home.writeConfig("xfce4/xfconf/xfce-perchannel-xml/xfce4-panel.xml",
                       filled(std::string(kXfcePanel), values));
      break;
    case Panel::Tint2:
      values["edge"] = words.tint2;
      home.writeConfig("tint2/tint2rc", filled(std::string(kTint2), values));
      break;
    case Panel::LxqtPanel:
      values["edge"] = words.lxqt;
      home.writeConfig("lxqt/panel.conf", filled(std::string(kLxqtPanel), values));
      break;
    case Panel::MatePanel:
      values["edge"] = words.mate;
      for (const MateSetting& row : kMatePanel) {
        const RunResult set =
            runToEnd({{"gsettings", "set", std::string(row.schema), std::string(row.key),
                       filled(std::string(row.value), values)},
                      environment});
        if (!set.succeeded()) throw std::runtime_error("gsettings: " + set.errorOutput);
      }
      break;
  }
}

void configureBar(Bar kind, const std::string& output, const PrivateHome& home) {
  switch (kind) {
    case Bar::None:
      break;
    case Bar::Waybar:
      home.writeConfig("waybar/config", filled(std::string(kWaybar), {{"monitor", output}}));
      home.writeConfig("waybar/style.css", std::string(kWaybarStyle));
      break;
    case Bar::LxqtPanel:
      configurePanel(Panel::LxqtPanel, {.edge = Edge::Top}, home, {});
      break;
  }
}

}  // namespace harness
