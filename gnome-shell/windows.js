import * as Main from 'resource:///org/gnome/shell/ui/main.js';

import {isForWork, isIcons} from './kinds.js';

const INTERFACE = `<node>
  <interface name="org.calmdeck.Shell.Windows">
    <method name="Hide"><arg name="staying" type="u" direction="out"/></method>
    <method name="Show"/>
    <signal name="Hiding"><arg name="hiding" type="b"/></signal>
  </interface>
</node>`;

/// What stands on a window that was hidden: whether it had the keyboard. Like the window's being
/// minimised it lasts as long as the window, whatever becomes of the program and of this extension.
const MARK = 'calmdeckHidden';

/// Hides and shows what the user works in, but for the program's own windows.
export class Windows {
  constructor(program) {
    this._program = program;
    this._offered = program.offer(INTERFACE, this);
    this._followed = new Map();
    this._follow();
  }

  destroy() {
    this._offered.destroy();
    for (const [window, signals] of this._followed) disconnect(window, signals);
  }

  Hide() {
    const others = this._others().filter(window => !window.minimized);
    const going = others.filter(window => window.can_minimize());
    const last = going.includes(global.display.focus_window) ? global.display.focus_window
      : going.filter(isHere).pop();
    // From the lowest on: so the keyboard moves once.
    for (const window of going) {
      window[MARK] = {focused: window === last};
      atOnce(window);
      window.minimize();
    }
    this._follow();
    return [others.length - going.length];
  }

  Show() {
    const hidden = this._hidden();
    const here = hidden.filter(isHere);
    const last = here.find(window => window[MARK].focused) ?? here.pop();
    const isAtWork = this._isAtWork();
    for (const window of hidden) {
      atOnce(window);
      window.unminimize();
    }
    // That does not raise it.
    if (last && !isAtWork) last.focus(global.get_current_time());
    this._follow();
  }

  /// From the lowest to the highest.
  _others() {
    const windows = global.display.list_all_windows()
      .filter(window => isForWork(window) && !this._program.ownsWindow(window));
    return global.display.sort_windows_by_stacking(windows);
  }

  _hidden() {
    return this._others().filter(window => window.minimized && window[MARK]);
  }

  _isAtWork() {
    const window = global.display.focus_window;
    return window && !window.minimized && !isIcons(window);
  }

  /// Looks after what is hidden now, and tells whether anything is.
  _follow() {
    for (const [window, signals] of this._followed) disconnect(window, signals);
    this._followed.clear();
    for (const window of this._hidden()) {
      this._followed.set(window, [
        window.connect('notify::minimized', () => this._cameBack(window)),
        window.connect('unmanaged', () => this._cameBack(window)),
      ]);
    }
    this._offered.emit('Hiding', '(b)', [this._followed.size > 0]);
  }

  _cameBack(window) {
    delete window[MARK];
    disconnect(window, this._followed.get(window));
    this._followed.delete(window);
    if (this._followed.size === 0) this._offered.emit('Hiding', '(b)', [false]);
  }
}

function disconnect(window, signals) {
  signals.forEach(signal => window.disconnect(signal));
}

function isHere(window) {
  return window.located_on_workspace(global.workspace_manager.get_active_workspace());
}

function atOnce(window) {
  // Elsewhere nothing moves anyhow, and the next thing that does would be skipped.
  if (isHere(window)) Main.wm.skipNextEffect(window.get_compositor_private());
}
