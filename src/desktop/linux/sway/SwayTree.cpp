#include "desktop/linux/sway/SwayTree.h"

#include <QJsonArray>

namespace linux_desktop {
namespace {

SwayId idOf(const QJsonObject& node) {
  return node[QLatin1String("id")].toInteger();
}

SwayId firstInFocus(const QJsonObject& node) {
  return node[QLatin1String("focus")].toArray().first().toInteger();
}

QJsonArray childrenOf(const QJsonObject& node) {
  QJsonArray children = node[QLatin1String("nodes")].toArray();
  for (const auto& floating : node[QLatin1String("floating_nodes")].toArray()) {
    children.append(floating);
  }
  return children;
}

/// Sway tells the process of a window, i3 the window's number at the X server.
bool isWindow(const QJsonObject& node) {
  return node.contains(QLatin1String("pid")) || node[QLatin1String("window")].isDouble();
}

bool isOurs(const QJsonObject& node, std::int64_t ourPid) {
  const QJsonValue pid = node[QLatin1String("pid")];
  if (!pid.isUndefined()) return pid.toInteger() == ourPid;
  const QString name = node[QLatin1String("window_properties")][QLatin1String("class")].toString();
  return name.compare(QLatin1String("calmdeck"), Qt::CaseInsensitive) == 0;
}

/// Reads what an output shows.
class OutputReader {
 public:
  OutputReader(const QJsonObject& output, std::int64_t ourPid, SwayTree& tree)
      : name_(output[QLatin1String("name")].toString()), ourPid_(ourPid), tree_(tree) {
    collectWorkspaces(output);
  }

 private:
  /// I3 has them in a container beside those for the bars.
  void collectWorkspaces(const QJsonObject& node) {
    const SwayId visible = firstInFocus(node);
    for (const auto& value : childrenOf(node)) {
      const QJsonObject child = value.toObject();
      if (child[QLatin1String("type")].toString() == QLatin1String("workspace")) {
        tree_.workspaces.push_back(workspaceOf(child));
        tree_.workspaces.back().isVisible = idOf(child) == visible;
      } else {
        collectWorkspaces(child);
      }
    }
  }

  [[nodiscard]] SwayWorkspace workspaceOf(const QJsonObject& node) const {
    SwayWorkspace workspace{idOf(node), node[QLatin1String("name")].toString(), name_};
    for (const auto& child : childrenOf(node)) {
      workspace.groups.push_back(idOf(child.toObject()));
      collectWindows(child.toObject(), workspace.windows);
    }
    return workspace;
  }

  void collectWindows(const QJsonObject& node, std::vector<SwayWindow>& windows) const {
    const QJsonArray children = childrenOf(node);
    for (const auto& child : children) collectWindows(child.toObject(), windows);
    if (!children.isEmpty() || !isWindow(node)) return;
    windows.push_back({idOf(node), isOurs(node, ourPid_), node[QLatin1String("sticky")].toBool(),
                       node[QLatin1String("marks")].toVariant().toStringList()});
  }

  QString name_;
  std::int64_t ourPid_;
  SwayTree& tree_;
};

/// The first in the node's order of focus.
QJsonObject focusedChildOf(const QJsonObject& node) {
  const SwayId first = firstInFocus(node);
  for (const auto& child : childrenOf(node)) {
    if (idOf(child.toObject()) == first) return child.toObject();
  }
  return {};
}

}  // namespace

SwayTree swayTree(const QJsonObject& root, std::int64_t ourPid) {
  SwayTree tree;
  for (const auto& value : root[QLatin1String("nodes")].toArray()) {
    const QJsonObject output = value.toObject();
    // Where the windows of the scratchpad are kept.
    if (output[QLatin1String("name")].toString() == QLatin1String("__i3")) continue;
    OutputReader(output, ourPid, tree);
  }
  QJsonObject node = focusedChildOf(root);
  tree.output = node[QLatin1String("name")].toString();
  for (; !node.isEmpty(); node = focusedChildOf(node)) {
    tree.focused = isWindow(node) ? idOf(node) : 0;
  }
  return tree;
}

}  // namespace linux_desktop
