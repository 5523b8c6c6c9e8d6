import Gio from 'gi://Gio';
import {Extension} from 'resource:///org/gnome/shell/extensions/extension.js';

import {Button} from './button.js';
import {Covers} from './covers.js';
import {Keys} from './keys.js';
import {Popover} from './popover.js';
import {Program} from './program.js';
import {Windows} from './windows.js';

const OWN_NAME = 'org.calmdeck.Shell';
const PROGRAM_NAME = 'org.calmdeck.Calmdeck';

/// Each is made when the program comes and destroyed when it goes, and undoes then what it did.
const SERVICES = [Button, Covers, Keys, Popover, Windows];

/// Serves the program for as long as that is on the session bus; does nothing without it.
export default class CalmdeckExtension extends Extension {
  enable() {
    this._program = null;
    this._services = [];
    this._nameId = Gio.bus_own_name(
      Gio.BusType.SESSION, OWN_NAME, Gio.BusNameOwnerFlags.DO_NOT_QUEUE, null, null, null);
    this._watchId = Gio.bus_watch_name(
      Gio.BusType.SESSION, PROGRAM_NAME, Gio.BusNameWatcherFlags.NONE,
      (connection, _name, owner) => this._come(connection, owner), () => this._leave());
  }

  disable() {
    Gio.bus_unwatch_name(this._watchId);
    this._leave();
    Gio.bus_unown_name(this._nameId);
  }

  _come(connection, owner) {
    this._leave();
    this._program = new Program(connection, owner, program => {
      this._services = SERVICES.map(Service => new Service(program));
      program.emit('org.calmdeck.Shell', 'Ready');
    });
  }

  _leave() {
    this._services.forEach(service => service.destroy());
    this._services = [];
    this._program?.destroy();
    this._program = null;
  }
}
