// What is heard: every key, and the settings of the user that would keep keys from being heard.

import Clutter from 'gi://Clutter';
import Gio from 'gi://Gio';
import GLib from 'gi://GLib';
import Shell from 'gi://Shell';

import * as Main from 'resource:///org/gnome/shell/ui/main.js';

import * as Protocol from './protocol.js';

// The press of Super is swallowed while it opens the overview. Slow, bounced and sticky keys keep a pressed key from
// counting as down, and nobody could get out.
const A11Y = 'org.gnome.desktop.a11y.keyboard';
const RESTING = [
    ['org.gnome.mutter', 'overlay-key', "''"],
    [A11Y, 'enable', 'false'],
    [A11Y, 'slowkeys-enable', 'false'],
    [A11Y, 'bouncekeys-enable', 'false'],
    [A11Y, 'stickykeys-enable', 'false'],
    [A11Y, 'mousekeys-enable', 'false'],
];

/** The user's settings that rest while the keys are held. */
export class Settings {
    /** @returns {Array} what it will be, for the disk, before anything is touched */
    static plan() {
        return RESTING.map(([schema, key, rests]) => {
            const was = new Gio.Settings({schema_id: schema}).get_user_value(key);
            return {schema, key, rests, was: was === null ? null : was.print(true)};
        });
    }

    static rest(planned) {
        for (const {schema, key, rests} of planned)
            new Gio.Settings({schema_id: schema}).set_value(key, GLib.Variant.parse(null, rests, null, null));
    }

    /** What somebody else has changed meanwhile stays as it is. */
    static giveBack(planned) {
        for (const {schema, key, rests, was} of planned) {
            const settings = new Gio.Settings({schema_id: schema});
            if (settings.get_value(key).print(true) !== rests)
                continue;
            if (was === null)
                settings.reset(key);
            else
                settings.set_value(key, GLib.Variant.parse(null, was, null, null));
        }
        Gio.Settings.sync();
    }
}

/** All keys, by a modal of the shell's own. Any later one (a dialog, a menu, the overview) takes them away and tells
 *  nobody but the grab itself. */
export class Keys {
    constructor(actor, onKey, onChange) {
        this._actor = actor;
        this._onChange = onChange;
        this._grab = null;
        this._later = 0;
        this._isWanted = false;
        this._budget = new Protocol.Budget(40, 1);
        // Pointers, touches and gestures end here, too.
        actor.connect('event', (_, event) => {
            if (!this._isWanted)
                return Clutter.EVENT_PROPAGATE;
            const down = event.type() === Clutter.EventType.KEY_PRESS;
            if ((down || event.type() === Clutter.EventType.KEY_RELEASE) &&
                !(event.get_flags() & Clutter.EventFlags.FLAG_REPEATED))
                onKey({code: event.get_event_code(), down, time: event.get_time_us()});
            return Clutter.EVENT_STOP;
        });
    }

    destroy() {
        this.want(false);
    }

    get areHeld() {
        return this._grab !== null && !this._grab.revoked &&
            (this._grab.get_seat_state() & Clutter.GrabState.KEYBOARD) !== 0;
    }

    want(wanted) {
        if (wanted === this._isWanted)
            return;
        this._isWanted = wanted;
        if (wanted) {
            this._take();
            return;
        }
        if (this._later !== 0)
            GLib.source_remove(this._later);
        this._later = 0;
        this._letGo(this._grab);
        this._grab = null;
    }

    _take() {
        const old = this._grab;
        const grab = Main.pushModal(this._actor, {actionMode: Shell.ActionMode.NONE});
        this._grab = grab;
        this._letGo(old);
        grab.connect('notify::revoked', () => {
            if (grab === this._grab && grab.revoked) {
                this._onChange();
                this._takeLater(0);
            }
        });
        if (!this.areHeld)
            this._takeLater(0.1);
    }

    _letGo(grab) {
        if (grab !== null)
            Main.popModal(grab);
    }

    // Not inside the call that took them: whoever made it is not done yet.
    _takeLater(delay) {
        if (this._later !== 0)
            return;
        const again = () => {
            this._later = 0;
            const wait = this._budget.spend(GLib.get_monotonic_time() / 1e6);
            if (wait > 0)
                this._takeLater(wait);
            else
                this._take();
            this._onChange();
            return GLib.SOURCE_REMOVE;
        };
        this._later = delay === 0 ? GLib.idle_add(GLib.PRIORITY_HIGH, again)
            : GLib.timeout_add(GLib.PRIORITY_DEFAULT, Math.ceil(delay * 1000), again);
    }
}
