import Clutter from 'gi://Clutter';
import Gio from 'gi://Gio';
import GLib from 'gi://GLib';
import St from 'gi://St';
import * as Main from 'resource:///org/gnome/shell/ui/main.js';
import * as PanelMenu from 'resource:///org/gnome/shell/ui/panelMenu.js';

import {ItemMenu} from './itemMenu.js';

const INTERFACE = `<node>
  <interface name="org.calmdeck.Shell.Button">
    <method name="Show">
      <arg name="item" type="s" direction="in"/>
      <arg name="picture" type="ay" direction="in"/>
    </method>
  </interface>
</node>`;

/// By which the panel knows it.
const ROLE = 'calmdeck';
const ITEM = 'org.kde.StatusNotifierItem';

/// What is wanted by keys when the button has the keyboard.
const KEYS = {
  [Clutter.KEY_Return]: 'panel',
  [Clutter.KEY_space]: 'panel',
  [Clutter.KEY_Menu]: 'menu',
};

/// What the shell wants to know of one that starts, which ours does not.
const PROGRAM = Gio.AppInfo.create_from_commandline(
  'calmdeck', 'Calmdeck', Gio.AppInfoCreateFlags.SUPPORTS_STARTUP_NOTIFICATION);

/// The program's status item as a button on the panel. It tells the item of clicks as a tray does,
/// by org.kde.StatusNotifierItem, but of the first one already.
export class Button {
  constructor(program) {
    this._program = program;
    this._offered = program.offer(INTERFACE, this);
    this._button = null;
  }

  destroy() {
    this.Hide();
    this._offered.destroy();
  }

  /// `item` is who offers the item on the bus, `picture` a file's content.
  Show(item, picture) {
    this._item = item;
    if (!this._button) this._make();
    this._icon.gicon = Gio.BytesIcon.new(new GLib.Bytes(picture));
  }

  Hide() {
    this._button?.destroy();
    this._button = null;
  }

  _make() {
    this._button = new PanelMenu.Button(0.5, 'Calmdeck');
    this._icon = new St.Icon({style_class: 'system-status-icon'});
    this._button.add_child(this._icon);
    this._menu = new ItemMenu(this._button.menu, (...call) => this._tell(...call));
    // Before the button itself, which would open its menu.
    this._button.connect('event', (_actor, event) => this._happened(event));
    Main.panel.addToStatusArea(ROLE, this._button);
  }

  _happened(event) {
    const wanted = wantedBy(event);
    if (!wanted) return Clutter.EVENT_PROPAGATE;
    this._giveToken(event.get_time());
    if (wanted === 'menu') {
      this._menu.toggle();
    } else {
      this._button.menu.close();
      const [x, y] = this._button.get_transformed_position();
      const place = [x + this._button.width / 2, y + this._button.height / 2].map(Math.round);
      this._tell('', ITEM, 'Activate', '(ii)', place);
    }
    return Clutter.EVENT_STOP;
  }

  /// With which the program's windows may take the keyboard.
  _giveToken(time) {
    const token = global.create_app_launch_context(time, -1).get_startup_notify_id(PROGRAM, []);
    if (token) this._tell('', ITEM, 'ProvideXdgActivationToken', '(s)', [token]);
  }

  _tell(path, interfaceName, method, type, values, answered) {
    this._program.call(
      this._item, `/StatusNotifierItem${path}`, interfaceName, method,
      new GLib.Variant(type, values), answered);
  }
}

function wantedBy(event) {
  switch (event.type()) {
    case Clutter.EventType.TOUCH_BEGIN:
      return 'panel';
    case Clutter.EventType.BUTTON_PRESS:
      return event.get_button() === Clutter.BUTTON_SECONDARY ? 'menu' : 'panel';
    case Clutter.EventType.KEY_PRESS:
      return KEYS[event.get_key_symbol()];
    default:
      return null;
  }
}
