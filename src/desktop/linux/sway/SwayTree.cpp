#include "desktop/linux/sway/SwayTree.h"

#include <QJsonArray>

namespace linux_desktop {
namespace {

SwayId idOf(const QJsonObject& node) {
  return node[QLatin1String("id")].toInteger();
}

QJsonArray childrenOf(const QJsonObject& node) {
  QJsonArray children = node[QLatin1String("nodes")].toArray();
  for (const auto& floating : node[QLatin1String("floating_nodes")].toArray()) {
    children.append(floating);
  }
  return children;
}

void collectWindows(const QJsonObject& node, std::vector<SwayWindow>& windows) {
  const QJsonArray children = childrenOf(node);
  for (const auto& child : children) collectWindows(child.toObject(), windows);
  if (!children.isEmpty() || !node.contains(QLatin1String("pid"))) return;
  windows.push_back({idOf(node), node[QLatin1String("pid")].toInteger(),
                     node[QLatin1String("sticky")].toBool(),
                     node[QLatin1String("marks")].toVariant().toStringList()});
}

SwayWorkspace workspaceOf(const QJsonObject& node, const QJsonObject& output) {
  SwayWorkspace workspace{idOf(node), node[QLatin1String("name")].toString(),
                          output[QLatin1String("name")].toString()};
  workspace.isVisible = output[QLatin1String("current_workspace")].toString() == workspace.name;
  for (const auto& child : childrenOf(node)) {
    workspace.groups.push_back(idOf(child.toObject()));
    collectWindows(child.toObject(), workspace.windows);
  }
  return workspace;
}

/// The first in the node's order of focus.
QJsonObject focusedChildOf(const QJsonObject& node) {
  const SwayId first = node[QLatin1String("focus")].toArray().first().toInteger();
  for (const auto& child : childrenOf(node)) {
    if (idOf(child.toObject()) == first) return child.toObject();
  }
  return {};
}

}  // namespace

SwayTree swayTree(const QJsonObject& root) {
  SwayTree tree;
  for (const auto& value : root[QLatin1String("nodes")].toArray()) {
    const QJsonObject output = value.toObject();
    // Where sway keeps the windows of its scratchpad.
    if (output[QLatin1String("name")].toString() == QLatin1String("__i3")) continue;
    for (const auto& workspace : childrenOf(output)) {
      tree.workspaces.push_back(workspaceOf(workspace.toObject(), output));
    }
  }
  QJsonObject node = focusedChildOf(root);
  tree.output = node[QLatin1String("name")].toString();
  for (; !node.isEmpty(); node = focusedChildOf(node)) {
    tree.focused = node.contains(QLatin1String("pid")) ? idOf(node) : 0;
  }
  return tree;
}

}  // namespace linux_desktop
