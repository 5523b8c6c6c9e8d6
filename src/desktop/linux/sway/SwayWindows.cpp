#include "desktop/linux/sway/SwayWindows.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QString>
#include <QStringList>
#include <algorithm>
#include <utility>

#include "desktop/linux/log/Log.h"
#include "desktop/linux/sway/SwayConfig.h"

namespace linux_desktop {

struct SwayWindow {
  SwayId id = 0;
  /// This process's.
  bool isOurs = false;
  bool isSticky = false;
  QStringList marks = {};
};

struct SwayWorkspace {
  SwayId id = 0;
  QString name = {};
  QString output = {};
  /// The one that its output shows.
  bool isVisible = false;
  /// What stands in it side by side, each with all that is in it, and what floats over it.
  std::vector<SwayId> groups = {};
  std::vector<SwayWindow> windows = {};
};

/// What sway, or i3, shows, at one moment.
struct SwayTree {
  std::vector<SwayWorkspace> workspaces;
  /// The output that the user works on; empty without any.
  QString output;
  /// The window that has the keyboard, or would have it if no panel had it.
  SwayId focused = 0;
};

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

bool isOurs(const QJsonObject& node) {
  const QJsonValue pid = node[QLatin1String("pid")];
  if (!pid.isUndefined()) return pid.toInteger() == QCoreApplication::applicationPid();
  const QString name = node[QLatin1String("window_properties")][QLatin1String("class")].toString();
  return name.compare(QLatin1String("calmdeck"), Qt::CaseInsensitive) == 0;
}

void collectWindows(const QJsonObject& node, std::vector<SwayWindow>& windows) {
  const QJsonArray children = childrenOf(node);
  for (const auto& child : children) collectWindows(child.toObject(), windows);
  if (!children.isEmpty() || !isWindow(node)) return;
  windows.push_back({idOf(node), isOurs(node), node[QLatin1String("sticky")].toBool(),
                     node[QLatin1String("marks")].toVariant().toStringList()});
}

SwayWorkspace workspaceOf(const QJsonObject& node, const QString& output) {
  SwayWorkspace workspace{idOf(node), node[QLatin1String("name")].toString(), output};
  for (const auto& child : childrenOf(node)) {
    workspace.groups.push_back(idOf(child.toObject()));
    collectWindows(child.toObject(), workspace.windows);
  }
  return workspace;
}

/// I3 has them in a container beside those for the bars.
void collectWorkspaces(const QJsonObject& node, const QString& output,
                       std::vector<SwayWorkspace>& workspaces) {
  const SwayId visible = firstInFocus(node);
  for (const auto& value : childrenOf(node)) {
    const QJsonObject child = value.toObject();
    if (child[QLatin1String("type")].toString() == QLatin1String("workspace")) {
      workspaces.push_back(workspaceOf(child, output));
      workspaces.back().isVisible = idOf(child) == visible;
    } else {
      collectWorkspaces(child, output, workspaces);
    }
  }
}

/// The first in the node's order of focus.
QJsonObject focusedChildOf(const QJsonObject& node) {
  const SwayId first = firstInFocus(node);
  for (const auto& child : childrenOf(node)) {
    if (idOf(child.toObject()) == first) return child.toObject();
  }
  return {};
}

const QString kEmptyPrefix = QStringLiteral("calmdeck ");
/// Noted on a window, as is its number, that sway otherwise shows on every workspace. Sway shows no
/// mark that begins like this.
const QString kStickyMark = QStringLiteral("_calmdeck_sticky_");

bool isEmptyOne(const QString& workspace) {
  return workspace.startsWith(kEmptyPrefix);
}

QString emptyOneOf(const QString& workspace) {
  return kEmptyPrefix + workspace;
}

QByteArray quoted(QString name) {
  name.replace(QLatin1Char('\\'), QLatin1String("\\\\"));
  name.replace(QLatin1Char('"'), QLatin1String("\\\""));
  return '"' + name.toUtf8() + '"';
}

QByteArray with(SwayId id, const QByteArray& command) {
  return "[con_id=" + QByteArray::number(static_cast<qint64>(id)) + "] " + command;
}

QByteArray moveTo(SwayId id, const QString& workspace) {
  return with(id, "move container to workspace " + quoted(workspace));
}

/// Commands that turn monitors to other workspaces.
class Turns {
 public:
  explicit Turns(const SwayTree& tree) : tree_(tree), output_(tree.output) {}

  void turn(const QString& output, const QString& workspace) {
    goTo(output);
    commands += "workspace --no-auto-back-and-forth " + quoted(workspace);
  }
  /// Back to the monitor on which the user works.
  void finish() { goTo(tree_.output); }

  QByteArrayList commands;

 private:
  void goTo(const QString& output) {
    if (std::exchange(output_, output) != output) commands += "focus output " + quoted(output);
  }

  const SwayTree& tree_;
  QString output_;
};

std::set<SwayId> emptyOnesIn(const SwayTree& tree) {
  std::set<SwayId> empties;
  for (const SwayWorkspace& workspace : tree.workspaces) {
    if (isEmptyOne(workspace.name)) empties.insert(workspace.id);
  }
  return empties;
}

void hide(const SwayWorkspace& workspace, Turns& turns) {
  const QString empty = emptyOneOf(workspace.name);
  for (const SwayWindow& window : workspace.windows) {
    if (!window.isSticky || window.isOurs) continue;
    const QByteArray mark = quoted(kStickyMark + QString::number(window.id));
    turns.commands += with(window.id, "sticky disable, mark --add " + mark);
  }
  turns.turn(workspace.output, empty);
  for (const SwayWindow& window : workspace.windows) {
    if (window.isOurs) turns.commands += moveTo(window.id, empty);
  }
}

/// What was opened since the first time.
void hideOnceMore(const SwayWorkspace& empty, Turns& turns) {
  for (const SwayWindow& window : empty.windows) {
    if (window.isOurs) continue;
    turns.commands += moveTo(window.id, empty.name.mid(kEmptyPrefix.size()));
  }
}

void makeStickyAgain(const SwayTree& tree, QByteArrayList& commands) {
  for (const SwayWorkspace& workspace : tree.workspaces) {
    for (const SwayWindow& window : workspace.windows) {
      for (const QString& mark : window.marks) {
        if (!mark.startsWith(kStickyMark)) continue;
        commands += with(window.id, "sticky enable, unmark " + quoted(mark));
      }
    }
  }
}

/// Of the answer to GET_TREE.
SwayTree swayTree(const QJsonObject& root) {
  SwayTree tree;
  for (const auto& value : root[QLatin1String("nodes")].toArray()) {
    const QJsonObject output = value.toObject();
    // Where the windows of the scratchpad are kept.
    const QString name = output[QLatin1String("name")].toString();
    if (name != QLatin1String("__i3")) collectWorkspaces(output, name, tree.workspaces);
  }
  QJsonObject node = focusedChildOf(root);
  tree.output = node[QLatin1String("name")].toString();
  for (; !node.isEmpty(); node = focusedChildOf(node)) {
    tree.focused = isWindow(node) ? idOf(node) : 0;
  }
  return tree;
}

/// The commands that hide what is on the monitors, but for windows of this process.
QByteArrayList hideCommands(const SwayTree& tree) {
  Turns turns(tree);
  QByteArray refocus;
  for (const SwayWorkspace& workspace : tree.workspaces) {
    const auto foreign = std::ranges::find(workspace.windows, false, &SwayWindow::isOurs);
    if (!workspace.isVisible || foreign == workspace.windows.end()) continue;
    if (isEmptyOne(workspace.name)) {
      hideOnceMore(workspace, turns);
      continue;
    }
    hide(workspace, turns);
    for (const SwayWindow& window : workspace.windows) {
      if (window.id == tree.focused && window.isOurs) {
        refocus = with(window.id, "focus");
      }
    }
  }
  turns.finish();
  if (!refocus.isEmpty()) turns.commands += refocus;
  return turns.commands;
}

/// The commands that show it again, where the user has not done so, with what was opened meanwhile.
/// `focusedBefore` had the focus when it was hidden; 0: that is not known.
QByteArrayList showCommands(const SwayTree& tree, SwayId focusedBefore) {
  Turns turns(tree);
  QByteArray refocus;
  for (const SwayWorkspace& workspace : tree.workspaces) {
    if (!isEmptyOne(workspace.name)) continue;
    const QString before = workspace.name.mid(kEmptyPrefix.size());
    if (workspace.isVisible) turns.turn(workspace.output, before);
    for (const SwayId group : workspace.groups) turns.commands += moveTo(group, before);
    // Ours had nothing beside it there that could have the focus.
    for (const SwayWindow& window : workspace.windows) {
      const bool isMeant = !window.isOurs || window.id == focusedBefore;
      if (window.id == tree.focused && isMeant) refocus = with(window.id, "focus");
    }
  }
  turns.finish();
  makeStickyAgain(tree, turns.commands);
  if (!refocus.isEmpty()) turns.commands += refocus;
  return turns.commands;
}

}  // namespace

SwayWindows::SwayWindows(SwaySocket& sway) : sway_(sway) {
  sway_.listen(SwaySocket::Event::Workspace,
               [this](const QJsonObject& event) { workspaceChanged(event); });
  const QJsonDocument tree = sway_.call(SwaySocket::Question::Tree);
  empties_ = emptyOnesIn(swayTree(tree.object()));
}

void SwayWindows::hide(Done done) {
  carryOut(
      [this](const SwayTree& tree) {
        focusedBefore_ = tree.focused;
        return hideCommands(tree);
      },
      done);
}

void SwayWindows::show(Done done) {
  carryOut([this](const SwayTree& tree) { return showCommands(tree, focusedBefore_); }, done);
}

void SwayWindows::carryOut(const std::function<QByteArrayList(const SwayTree& tree)>& plan,
                           const Done& done) {
  sway_.ask(SwaySocket::Question::Tree, {}, [=, this](const QJsonDocument& answer) {
    const SwayTree tree = swayTree(answer.object());
    // An i3 that has started anew has given all of them other numbers.
    empties_ = emptyOnesIn(tree);
    const QByteArrayList commands = plan(tree);
    if (commands.isEmpty()) {
      done();
      return;
    }
    sway_.ask(SwaySocket::Question::Command, withoutWarping(commands),
              [done](const QJsonDocument& results) {
                qCDebug(lcSway) << "turned:" << results.toJson(QJsonDocument::Compact);
                done();
              });
  });
}

// Sway takes the pointer along to a monitor that gets the focus, and it would stay there. I3 does
// so when all is done, and by then the focus is back.
QByteArray SwayWindows::withoutWarping(const QByteArrayList& commands) {
  QByteArray all = commands.join(';');
  if (sway_.isI3() || !all.contains("focus output")) return all;
  const QByteArray usual = SwayConfig::read(sway_).valueOf("mouse_warping", "output");
  return "mouse_warping none;" + all + ";mouse_warping " + usual;
}

void SwayWindows::workspaceChanged(const QJsonObject& event) {
  const QString change = event[QLatin1String("change")].toString();
  const QJsonObject workspace = event[QLatin1String("current")].toObject();
  const SwayId id = workspace[QLatin1String("id")].toInteger();
  if (change == QLatin1String("empty")) {
    empties_.erase(id);
  } else if (change == QLatin1String("init") || change == QLatin1String("rename")) {
    if (isEmptyOne(workspace[QLatin1String("name")].toString())) {
      empties_.insert(id);
    } else {
      empties_.erase(id);
    }
  }
}

}  // namespace linux_desktop
