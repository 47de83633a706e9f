// The programs at the other end: who may connect, what they say, and the memory that they share.

import Gio from 'gi://Gio';
import GLib from 'gi://GLib';

import * as Protocol from './protocol.js';

const DESCRIPTOR_WAIT = 50000;  // microseconds that the shell may stand still for a program

/** Frames in memory that the program shares. They are read, never mapped: a file that shrinks under a reader is a short
 *  read, under a mapping it is the end of the session. */
export class Pool {
    constructor(fd) {
        const path = `/proc/self/fd/${fd}`;
        try {
            // A pipe or a file on a disk that hangs would hold up the whole shell.
            if (!GLib.file_read_link(path).startsWith('/memfd:'))
                throw new Protocol.Refused('a pool that is no shared memory');
            this._stream = Gio.File.new_for_path(path).read(null);
        } finally {
            GLib.close(fd);
        }
    }

    read({offset, size}) {
        this._stream.seek(offset, GLib.SeekType.SET, null);
        const bytes = this._stream.read_bytes(size, null);
        if (bytes.get_size() !== size)
            throw new Protocol.Refused('a frame that is not there');
        return bytes;
    }

    close() {
        this._stream.close(null);
    }
}

/** One program that is connected. */
export class Peer {
    constructor(connection, executable, owner) {
        this.executable = executable;
        this.pools = new Map();
        this._connection = connection;
        this._owner = owner;
        this._cancellable = new Gio.Cancellable();
        this._queue = [];
        this._listen().catch(error => {
            if (error instanceof Protocol.Refused)
                console.warn(`Dormel: ${executable}: ${error.message}`);
            else
                console.warn(`Dormel: ${executable} is gone: ${error.message}`);
        }).finally(() => this.close());
    }

    close() {
        if (this._owner === null)
            return;
        const owner = this._owner;
        this._owner = null;
        this._cancellable.cancel();
        for (const pool of this.pools.values())
            pool.close();
        this._connection.close_async(GLib.PRIORITY_DEFAULT, null, null);
        owner.left(this);
    }

    say(message) {
        // A program that does not read what it is told is stuck, and its watchdog ends it.
        if (this._owner === null || this._queue.length > 10000)
            return;
        this._queue.push(Protocol.encode(message));
        if (this._queue.length === 1)
            this._send();
    }

    _send() {
        const stream = this._connection.get_output_stream();
        stream.write_all_async(this._queue[0], GLib.PRIORITY_HIGH, this._cancellable, (_, result) => {
            try {
                stream.write_all_finish(result);
            } catch (error) {
                this.close();
                return;
            }
            this._queue.shift();
            if (this._queue.length > 0)
                this._send();
        });
    }

    async _listen() {
        while (this._owner !== null) {
            const header = await this._read(4);  // eslint-disable-line no-await-in-loop
            const bytes = await this._read(Protocol.lengthOf(header));  // eslint-disable-line no-await-in-loop
            const {kind, body} = Protocol.decode(bytes);
            if (Protocol.BRINGS_DESCRIPTOR.has(kind))
                body.fd = this._descriptor();
            if (this._owner !== null)
                this._owner.heard(this, kind, body);
            else if (body.fd !== undefined)
                GLib.close(body.fd);
        }
    }

    async _read(count) {
        const all = new Uint8Array(count);
        for (let filled = 0; filled < count;) {
            const part = await this._readSome(count - filled);  // eslint-disable-line no-await-in-loop
            all.set(part, filled);
            filled += part.length;
        }
        return all;
    }

    _readSome(count) {
        const stream = this._connection.get_input_stream();
        return new Promise((resolve, reject) => {
            stream.read_bytes_async(count, GLib.PRIORITY_DEFAULT, this._cancellable, (_, result) => {
                try {
                    const bytes = stream.read_bytes_finish(result).toArray();
                    if (bytes.length === 0)
                        throw new Error('it closed the connection');
                    resolve(bytes);
                } catch (error) {
                    reject(error);
                }
            });
        });
    }

    // Only the call that blocks can be had from here, so it is made once the descriptor is there.
    _descriptor() {
        if (!this._connection.get_socket().condition_timed_wait(GLib.IOCondition.IN, DESCRIPTOR_WAIT, null))
            throw new Protocol.Refused('a descriptor that does not come');
        return this._connection.receive_fd(null);
    }
}

/** The socket in the runtime folder, and who may talk through it: the same user's processes of our own program. */
export class Door {
    constructor(identifier, onPeer) {
        this._path = GLib.build_filenamev([GLib.get_user_runtime_dir(), `${identifier}.gnome`]);
        GLib.unlink(this._path);
        this._service = new Gio.SocketService();
        this._service.add_address(Gio.UnixSocketAddress.new(this._path), Gio.SocketType.STREAM,
            Gio.SocketProtocol.DEFAULT, null);
        Gio.File.new_for_path(this._path).set_attribute_uint32('unix::mode', 0o600, Gio.FileQueryInfoFlags.NONE, null);
        this._service.connect('incoming', (_, connection) => {
            try {
                onPeer(connection, Door._executable(connection));
            } catch (error) {
                console.warn(`Dormel: a connection was refused: ${error.message}`);
                connection.close(null);
            }
            return true;
        });
        this._service.start();
    }

    static _executable(connection) {
        const credentials = connection.get_socket().get_credentials();
        if (!credentials.is_same_user(new Gio.Credentials()))
            throw new Error('another user');
        // An update replaces the executable under the program that runs.
        return GLib.file_read_link(`/proc/${credentials.get_unix_pid()}/exe`).replace(/ \(deleted\)$/, '');
    }

    destroy() {
        this._service.stop();
        this._service.close();
        GLib.unlink(this._path);
    }
}
