import Clutter from 'gi://Clutter';
import * as Main from 'resource:///org/gnome/shell/ui/main.js';

const INTERFACE = `<node>
  <interface name="org.calmdeck.Shell.Popover">
    <method name="Expect"/>
    <method name="Forget"/>
    <signal name="Pressed">
      <arg name="time" type="u"/>
      <arg name="onPanel" type="b"/>
    </signal>
  </interface>
</node>`;

/// Between the panel and the popover.
const GAP = 4;

/// Keeps the window that the program says is a popover at its button and in front of the others,
/// and tells of presses that take the keyboard from nobody.
export class Popover {
  constructor(program) {
    this._program = program;
    this._offered = program.offer(INTERFACE, this);
    this._expected = false;
    this._window = null;
    this._signals = [];
    this._created = global.display.connect(
      'window-created', (_display, window) => this._came(window));
  }

  destroy() {
    global.display.disconnect(this._created);
    this.Forget();
    this._offered.destroy();
  }

  /// The next window of the program's is one.
  Expect() {
    this.Forget();
    this._expected = true;
  }

  Forget() {
    this._expected = false;
    this._signals.forEach(([object, id]) => object.disconnect(id));
    this._signals = [];
    this._window = null;
  }

  _came(window) {
    if (!this._expected || !this._program.ownsWindow(window)) return;
    this._expected = false;
    this._window = window;
    Main.wm.skipNextEffect(window.get_compositor_private());
    window.make_above();
    window.stick();
    this._follow(window, 'size-changed', () => this._place());
    // The shell has placed it elsewhere just now, but not painted it yet.
    this._follow(window, 'shown', () => {
      this._place();
      window.activate(global.get_current_time());
    });
    this._follow(window, 'unmanaged', () => this.Forget());
    this._follow(global.stage, 'captured-event', (_stage, event) => this._happened(event));
  }

  _follow(object, signal, act) {
    this._signals.push([object, object.connect(signal, act)]);
  }

  _place() {
    const {width, height} = this._window.get_frame_rect();
    const button = Main.panel.statusArea.calmdeck ?? Main.panel;
    const [left, top] = button.get_transformed_position();
    const {layoutManager} = Main;
    const monitor = layoutManager.findMonitorForActor(button) ?? layoutManager.primaryMonitor;
    const room = this._window.get_work_area_for_monitor(monitor.index);
    const rightmost = room.x + room.width - GAP - width;
    const x = Math.max(room.x + GAP, Math.min(left + (button.width - width) / 2, rightmost));
    const isBelow = top < monitor.y + monitor.height / 2;
    const y = isBelow ? room.y + GAP : room.y + room.height - GAP - height;
    this._window.move_frame(true, Math.round(x), Math.round(y));
  }

  /// Windows of programs take the keyboard when they are pressed; what the shell draws does not.
  _happened(event) {
    const type = event.type();
    if (type === Clutter.EventType.BUTTON_PRESS || type === Clutter.EventType.TOUCH_BEGIN) {
      const isOnPanel = isOn(Main.panel, ...event.get_coords());
      this._offered.emit('Pressed', '(ub)', [event.get_time(), isOnPanel]);
    }
    return Clutter.EVENT_PROPAGATE;
  }
}

function isOn(actor, x, y) {
  const [left, top] = actor.get_transformed_position();
  return x >= left && x < left + actor.width && y >= top && y < top + actor.height;
}
