#include "desktop/linux/kwin/KWinScript.h"

namespace linux_desktop {

const QByteArray& kwinScript() {
  static const QByteArray text = R"js(
// KWin 5 has other names.
const isKWin5 = typeof workspace.clientList === "function";
const activeName = isKWin5 ? "activeClient" : "activeWindow";

function bottomToTop() {
  if (!isKWin5) return Array.from(workspace.stackingOrder);
  return workspace.clientList().slice().sort((a, b) => a.stackingOrder - b.stackingOrder);
}

const idOf = window => String(window.internalId);
const isOurs = window => window.pid === wish.pid;
// Dialogs of a window go where it goes.
const isToWorkIn = window => window.normalWindow || (window.dialog && !window.transient);
const isHidden = window => window.minimized && window.skipPager && !isOurs(window);

function isHere(window) {
  if (window.onAllDesktops) return true;
  return isKWin5 ? window.desktop === workspace.currentDesktop
                 : window.desktops.includes(workspace.currentDesktop);
}

// What this process knows beside the marks: which window was active, and which were left out of the
// pager anyhow.
const known = wish.known;

function unmark(window) {
  if (!known.leftOut.includes(idOf(window))) window.skipPager = false;
}

function hide() {
  const going = bottomToTop().filter(window =>
      isToWorkIn(window) && window.minimizable && !window.minimized && !isOurs(window));
  const active = workspace[activeName];
  if (going.includes(active)) {
    known.active = idOf(active);
  } else if (active && !active.desktopWindow && !active.dock) {
    // A panel, ours perhaps, has the keyboard from the one on top.
    known.active = going.filter(isHere).map(idOf).pop() || "";
  }
  for (const window of going) {
    if (window.skipPager) known.leftOut.push(idOf(window));
    window.skipPager = true;
    window.minimized = true;
  }
}

function activate(window, order) {
  workspace[activeName] = window;
  // That has raised it, and KWin 5 has nothing against it.
  if (isKWin5) return;
  for (const above of order.slice(order.indexOf(window) + 1)) workspace.raiseWindow(above);
}

function show() {
  // Minimised windows keep their places in it.
  const order = bottomToTop();
  const hidden = order.filter(isHidden);
  const active = workspace[activeName];
  // Panels of others cannot be minimised, nor can some dialogs.
  const isAtWork = active && !active.minimized &&
      (isOurs(active) || active.minimizable || active.dialog);
  for (const window of hidden) {
    window.minimized = false;
    unmark(window);
  }
  const here = hidden.filter(isHere);
  const last = here.find(window => idOf(window) === known.active) || here.pop();
  if (last && !isAtWork) activate(last, order);
}

if (wish.what === "hide") hide();
if (wish.what === "show") show();
const hidden = bottomToTop().filter(isHidden);
for (const window of hidden) {
  window.minimizedChanged.connect(() => {
    if (!window.minimized) unmark(window);
  });
}
const staying = wish.what !== "hide" ? [] : bottomToTop().filter(window =>
    isToWorkIn(window) && !window.minimized && !isOurs(window));
callDBus(wish.service, wish.path, wish.interface, "Done",
         JSON.stringify({ number: wish.number, hidden: hidden.length, staying: staying.length,
                          known: known }));
)js";
  return text;
}

}  // namespace linux_desktop
