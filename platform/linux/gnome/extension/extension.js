// The two things that only the shell can do for Dormel: cover the monitors and take the keys. It decides nothing: the
// program tells it what to hold and until when (../PROTOCOL.md), and it lets go by itself only where the program told
// it beforehand that it may: at the end hour, or when the program has been gone for too long.
//
// What is held is kept on the disk, because the shell may disable and enable an extension at any time, and because a
// shell that crashes takes the login with it.

import GLib from 'gi://GLib';
import Meta from 'gi://Meta';
import System from 'system';

import * as Main from 'resource:///org/gnome/shell/ui/main.js';
import * as Keyboard from 'resource:///org/gnome/shell/ui/status/keyboard.js';
import {Extension} from 'resource:///org/gnome/shell/extensions/extension.js';

import {Cover} from './cover.js';
import {Keys, Settings} from './keys.js';
import {Door, Peer, Pool} from './peers.js';
import * as Protocol from './protocol.js';

const WORDS_AFTER = 1500;  // milliseconds without the program until its words stand there instead of its picture
// Bytes of pictures that may lie around. The garbage collector sees no more than their wrappers, a few bytes each, and
// would let a gigabyte gather.
const LITTER = 64 * 1024 * 1024;
const LOOK_EVERY = 1;      // seconds between two looks at the clock while something is held

const uptime = () => GLib.get_monotonic_time() / 1e6;
const isLockScreen = () => Main.sessionMode.currentMode === 'unlock-dialog';

export default class Dormel extends Extension {
    enable() {
        // On an X server the program takes keys and monitors by itself. No door means: not here.
        if (Meta.is_wayland_compositor?.() === false)
            return;
        const identifier = this.metadata['dormel-identifier'];
        const state = GLib.get_user_state_dir();
        this._file = GLib.build_filenamev([state, `${identifier}.gnome.json`]);
        this._list = GLib.build_filenamev([state, `${identifier}.gnome.programs`]);
        this._peers = new Set();
        this._holder = null;      // the peer whose hold is in force
        this._holderPath = null;  // its executable, also after it has gone
        this._hold = null;
        this._settings = [];      // of the user's, that rest
        this._leftAt = null;      // when the holder went, in uptime
        this._wordsLater = 0;
        this._look = 0;
        this._told = '';
        this._litter = 0;
        this._cover = new Cover();
        this._keys = new Keys(this._cover.actor, key => this._tell({key}), () => this._announce());
        this._modeId = Main.sessionMode.connect('updated', () => this._apply());
        const sayMonitors = () => this._sayAll({monitors: this._monitors()});
        this._monitorsId = Main.layoutManager.connect('monitors-changed', sayMonitors);
        this._workareasId = global.display.connect('workareas-changed', sayMonitors);
        this._sources = Keyboard.getInputSourceManager();
        this._sourceId = this._sources.connect('current-source-changed',
            () => this._sayAll({layout: this._layout()}));
        this._takeUp();
        this._door = new Door(identifier, (connection, executable) => this._arrived(connection, executable));
    }

    // Also while the lock screen is up (session-modes), because what is held must be there the moment it is gone. What
    // is on the disk stays there: enabled again, we go on.
    disable() {
        if (!this._door)
            return;
        this._door.destroy();
        for (const peer of [...this._peers])
            peer.close();
        this._stopLooking();
        this._keys.destroy();
        this._cover.destroy();
        Settings.giveBack(this._settings);
        if (this._hold !== null)
            this._keep([]);
        Main.sessionMode.disconnect(this._modeId);
        Main.layoutManager.disconnect(this._monitorsId);
        global.display.disconnect(this._workareasId);
        this._sources.disconnect(this._sourceId);
        this._cover = this._keys = this._door = this._hold = this._holder = this._sources = null;
        this._settings = [];
    }

    // What an earlier start has left.

    _takeUp() {
        let kept = null;
        try {
            const [, bytes] = GLib.file_get_contents(this._file);
            kept = Protocol.readKept(new TextDecoder().decode(bytes));
        } catch (error) {
            return;  // there is none
        }
        if (kept !== null) {
            Settings.giveBack(kept.settings);
            if (kept.hold !== null && !Protocol.isOver(kept.hold, Date.now() / 1000, null)) {
                this._holderPath = kept.holder;
                this._begin(kept.hold);
                this._left();
                return;
            }
        }
        GLib.unlink(this._file);
    }

    _keep(settings) {
        const kept = {hold: this._hold, holder: this._holderPath, settings};
        try {
            GLib.mkdir_with_parents(GLib.path_get_dirname(this._file), 0o700);
            GLib.file_set_contents(this._file, JSON.stringify(kept));
        } catch (error) {
            console.warn(`Dormel: ${this._file}: ${error.message}`);
        }
    }

    // Programs that come and go.

    _arrived(connection, executable) {
        let list = '';
        try {
            list = new TextDecoder().decode(GLib.file_get_contents(this._list)[1]);
        } catch (error) {
            // The program has never run.
        }
        if (!Protocol.mayTalk(executable, list, this._holderPath))
            throw new Error(`${executable} is not the program`);
        this._peers.add(new Peer(connection, executable, this));
    }

    left(peer) {
        this._peers.delete(peer);
        if (peer !== this._holder)
            return;
        this._holder = null;
        if (this._hold !== null && this._hold.absence > 0)
            this._left();
        else
            this._end();
    }

    /** The cover and the keys stay, and words come instead of a picture that would be wrong from now on. */
    _left() {
        this._leftAt = uptime();
        this._wordsLater = GLib.timeout_add(GLib.PRIORITY_DEFAULT, WORDS_AFTER, () => {
            this._wordsLater = 0;
            this._cover.dropAll();
            this._cover.setWords(this._hold.words);
            return GLib.SOURCE_REMOVE;
        });
    }

    heard(peer, kind, body) {
        if (kind === 'hello') {
            this._greet(peer);
        } else if (kind === 'pool') {
            this._replacePool(peer, body.id, new Pool(body.fd));
        } else if (kind === 'unpool') {
            this._replacePool(peer, body.id, null);
        } else if (kind === 'hold') {
            this._held(peer, body);
        } else if (kind === 'release') {
            if (this._isIts(peer))
                this._end();
        } else if (this._holder === peer) {
            this._onPanels(peer, kind, body);
        }
    }

    _greet(peer) {
        const hello = {
            protocol: Protocol.PROTOCOL,
            version: this.metadata.version,
            monitors: this._monitors(),
            layout: this._layout(),
            held: this._state(),
            covered: this._hold !== null && this._hold.cover,
        };
        peer.say({hello});
    }

    _replacePool(peer, id, pool) {
        if (peer.pools.has(id))
            peer.pools.get(id).close();
        peer.pools.delete(id);
        if (pool !== null)
            peer.pools.set(id, pool);
        if (peer.pools.size > Protocol.MOST_PANELS)
            throw new Protocol.Refused('too many pools');
    }

    // Only whoever holds has panels: another program of ours must not paint over a lock.
    _onPanels(peer, kind, body) {
        if (kind === 'panel')
            this._cover.setPanel(body, pointer => peer.say({pointer}));
        else if (kind === 'drop')
            this._cover.drop(body.id);
        else if (kind === 'frame')
            this._onFrame(peer, body);
    }

    // A frame that cannot be shown is told, never fatal: it is the painter's fault, and the program goes on without it.
    _onFrame(peer, frame) {
        let shown = false;
        try {
            const pool = peer.pools.get(frame.pool);
            if (pool !== undefined) {
                this._cover.show(frame, pool.read(frame));
                shown = true;
            }
        } catch (error) {
            console.warn(`Dormel: a frame was refused: ${error.message}`);
        }
        // The program sends the next one after this answer. First comes whatever else the shell has to do, the painting
        // of this one and the keys above all.
        this._litter += frame.size;
        GLib.idle_add(GLib.PRIORITY_LOW, () => {
            if (this._litter > LITTER) {
                this._litter = 0;
                System.gc();
            }
            peer.say({frame: {serial: frame.serial, shown}});
            return GLib.SOURCE_REMOVE;
        });
    }

    // Holding.

    /** What is held is this program's, or was left by an earlier run of it. */
    _isIts(peer) {
        return this._holder === peer || this._holder === null && this._holderPath === peer.executable;
    }

    _held(peer, hold) {
        const isRehearsal = this._hold !== null && this._hold.absence === 0;  // it makes room for a lock
        if (this._hold !== null && !this._isIts(peer) && !(isRehearsal && hold.absence > 0)) {
            peer.say({refused: {why: 'held by another program'}});
            return;
        }
        if (this._holder !== peer) {
            if (this._holder !== null)
                this._holder.say({refused: {why: 'taken over'}});
            this._cover.dropAll();
            this._cover.setWords([]);
            this._holder = peer;
            this._holderPath = peer.executable;
        }
        this._stopWaiting();
        this._begin(hold);
        this._announce(true);
    }

    _begin(hold) {
        this._hold = hold;
        const planned = hold.keys && this._settings.length === 0 ? Settings.plan() : null;
        if (hold.absence > 0)
            this._keep(hold.keys ? planned || this._settings : []);
        else
            GLib.unlink(this._file);
        if (planned !== null) {
            this._settings = planned;
            Settings.rest(planned);
        } else if (!hold.keys) {
            Settings.giveBack(this._settings);
            this._settings = [];
        }
        if (this._look === 0) {
            this._look = GLib.timeout_add_seconds(GLib.PRIORITY_DEFAULT, LOOK_EVERY, () => {
                const absent = this._leftAt === null ? null : uptime() - this._leftAt;
                if (this._hold !== null && Protocol.isOver(this._hold, Date.now() / 1000, absent))
                    this._end('over');
                return GLib.SOURCE_CONTINUE;
            });
        }
        this._apply();
    }

    /** Nothing is held any more, and nothing is left of it. A program that is still there stays connected, and is told
     *  unless it asked for it. */
    _end(why = null) {
        if (why !== null && this._holder !== null)
            this._holder.say({refused: {why}});
        this._stopLooking();
        this._hold = null;
        this._holder = null;
        this._holderPath = null;
        this._cover.dropAll();
        this._cover.setWords([]);
        this._apply();
        Settings.giveBack(this._settings);
        this._settings = [];
        GLib.unlink(this._file);
        this._announce();
    }

    _stopWaiting() {
        this._leftAt = null;
        if (this._wordsLater !== 0)
            GLib.source_remove(this._wordsLater);
        this._wordsLater = 0;
    }

    _stopLooking() {
        this._stopWaiting();
        if (this._look !== 0)
            GLib.source_remove(this._look);
        this._look = 0;
    }

    // The desktop's own lock screen comes first: whoever stands before it must see it and type the password.
    _apply() {
        const yields = isLockScreen();
        const hold = this._hold;
        this._cover.setVisible(!yields);
        const keys = hold !== null && hold.keys && !yields;
        this._cover.set(hold !== null && hold.cover, keys);
        this._keys.want(keys);
        this._announce();
    }

    _state() {
        const held = this._hold !== null;
        const yields = isLockScreen();
        return {
            cover: held && this._hold.cover && !yields,
            keys: held && this._keys.areHeld,
            lockScreen: yields,
        };
    }

    _announce(always = false) {
        if (this._keys === null)
            return;
        const held = this._state();
        const told = JSON.stringify(held);
        if (told === this._told && !always)
            return;
        this._told = told;
        this._sayAll({held});
    }

    _tell(message) {
        if (this._holder !== null)
            this._holder.say(message);
    }

    _sayAll(message) {
        for (const peer of this._peers)
            peer.say(message);
    }

    _monitors() {
        return Main.layoutManager.monitors.map(({index, x, y, width, height}) => {
            const work = Main.layoutManager.getWorkAreaForMonitor(index);
            return {
                at: [x, y, width, height],
                work: [work.x, work.y, work.width, work.height],
                scale: global.display.get_monitor_scale(index),
                primary: index === Main.layoutManager.primaryIndex,
            };
        });
    }

    /** @returns {string} "layout" or "layout+variant", as the shell gives it to the keyboard */
    _layout() {
        const source = this._sources.currentSource;
        return source === null || source === undefined ? '' : source.xkbId;
    }
}
