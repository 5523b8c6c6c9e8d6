import Clutter from 'gi://Clutter';
import {BackgroundManager} from 'resource:///org/gnome/shell/ui/background.js';
import * as Main from 'resource:///org/gnome/shell/ui/main.js';

import {isIcons} from './kinds.js';

const INTERFACE = `<node>
  <interface name="org.calmdeck.Shell.Covers">
    <method name="Show"/>
    <method name="Hide"/>
    <signal name="Pressed"><arg name="time" type="u"/></signal>
  </interface>
</node>`;

/// Covers on all monitors: the shell's own background once more, above the windows with the icons
/// and below all others. They keep what is done to them from what they cover.
export class Covers {
  constructor(program) {
    this._offered = program.offer(INTERFACE, this);
    this._sheet = null;
    this._backgrounds = [];
    this._signals = [];
  }

  destroy() {
    this.Hide();
    this._offered.destroy();
  }

  Show() {
    if (this._sheet) return;
    this._sheet = new Clutter.Actor({name: 'calmdeck-covers'});
    global.window_group.add_child(this._sheet);
    this._cover();
    this._follow(Main.layoutManager, 'monitors-changed', () => this._cover());
    this._follow(global.display, 'restacked', () => this._stack());
  }

  Hide() {
    this._signals.forEach(([object, id]) => object.disconnect(id));
    this._signals = [];
    this._uncover();
    this._sheet?.destroy();
    this._sheet = null;
  }

  _follow(object, signal, act) {
    this._signals.push([object, object.connect(signal, act)]);
  }

  _cover() {
    this._uncover();
    for (const {index, x, y, width, height} of Main.layoutManager.monitors) {
      const container = new Clutter.Actor({reactive: true, x, y, width, height});
      container.connect('event', (_actor, event) => this._happened(event));
      this._sheet.add_child(container);
      this._backgrounds.push(
        new BackgroundManager({container, monitorIndex: index, controlPosition: false}));
    }
    this._stack();
  }

  _uncover() {
    this._backgrounds.forEach(background => background.destroy());
    this._backgrounds = [];
    this._sheet?.destroy_all_children();
  }

  _happened(event) {
    const type = event.type();
    if (type === Clutter.EventType.BUTTON_PRESS || type === Clutter.EventType.TOUCH_BEGIN)
      this._offered.emit('Pressed', '(u)', [event.get_time()]);
    const isMotion = [Clutter.EventType.MOTION, Clutter.EventType.ENTER, Clutter.EventType.LEAVE];
    return isMotion.includes(type) ? Clutter.EVENT_PROPAGATE : Clutter.EVENT_STOP;
  }

  /// Above the highest of the windows with icons, or else below all windows.
  _stack() {
    const others = global.window_group.get_children().filter(actor => actor !== this._sheet);
    const icons = others.filter(actor => isIcons(actor.meta_window)).pop();
    const window = others.find(actor => actor.meta_window);
    if (icons) {
      global.window_group.set_child_above_sibling(this._sheet, icons);
    } else if (window) {
      global.window_group.set_child_below_sibling(this._sheet, window);
    }
  }
}
