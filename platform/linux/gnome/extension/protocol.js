// What the extension can say and hear, and what it keeps and counts, without the shell: plain computation, tested by
// gjs alone. ../PROTOCOL.md is the contract with the program.

/** What both sides must agree on; raised with every change that an older side would misread. */
export const PROTOCOL = 1;

/** The longest message, in bytes. */
export const LONGEST_MESSAGE = 65536;

/** The largest picture, in bytes. */
export const LARGEST_FRAME = 64 * 1024 * 1024;

/** How many panels one program may have. */
export const MOST_PANELS = 64;

const FARTHEST = 65536;  // no coordinate is beyond it

/** Something that the peer must not say. Its connection is closed. */
export class Refused extends Error {}

function refuse(what) {
    throw new Refused(what);
}

function number(value, what, least, most) {
    if (typeof value !== 'number' || !(value >= least && value <= most))
        refuse(`${what} is ${JSON.stringify(value)}`);
    return value;
}

function whole(value, what, least, most) {
    if (!Number.isInteger(number(value, what, least, most)))
        refuse(`${what} is ${value}`);
    return value;
}

function flag(value, what) {
    return typeof value === 'boolean' ? value : refuse(`${what} is ${JSON.stringify(value)}`);
}

function rectangle(value, what) {
    if (!Array.isArray(value) || value.length !== 4)
        refuse(`${what} is no rectangle`);
    const [x, y, width, height] = value;
    number(x, what, -FARTHEST, FARTHEST);
    number(y, what, -FARTHEST, FARTHEST);
    number(width, what, 0, FARTHEST);
    number(height, what, 0, FARTHEST);
    return {x, y, width, height};
}

/**
 * @param {object} message - what is to be said
 * @returns {Uint8Array} as it goes over the wire
 */
export function encode(message) {
    const text = new TextEncoder().encode(JSON.stringify(message));
    const bytes = new Uint8Array(4 + text.length);
    new DataView(bytes.buffer).setUint32(0, text.length, true);
    bytes.set(text, 4);
    return bytes;
}

/**
 * @param {Uint8Array} header - the four bytes before a message
 * @returns {number} how many bytes follow
 */
export function lengthOf(header) {
    const length = new DataView(header.buffer, header.byteOffset, 4).getUint32(0, true);
    return whole(length, 'the length of a message', 2, LONGEST_MESSAGE);
}

const CHECKS = {
    hello: raw => ({protocol: whole(raw.protocol, 'the protocol', 1, 1e6)}),

    hold: raw => {
        const hold = {
            cover: flag(raw.cover, 'cover'),
            keys: flag(raw.keys, 'keys'),
            until: raw.until === null ? null : number(raw.until, 'until', 0, 1e11),
            absence: number(raw.absence, 'absence', 0, 86400),
            words: raw.words,
        };
        if (!Array.isArray(hold.words) || hold.words.length > 16 || !hold.words.every(line => typeof line === 'string'))
            refuse('words are no lines');
        if (hold.absence > 0 && hold.until === null)
            refuse('a hold that outlives its program needs an end');
        return hold;
    },

    release: () => ({}),

    panel: raw => ({
        id: whole(raw.id, 'the panel', 1, 1e9),
        at: rectangle(raw.at, 'the place of a panel'),
        black: flag(raw.black, 'black'),
        level: whole(raw.level, 'the level', 0, 2),
        alpha: number(raw.alpha, 'alpha', 0, 1),
        fade: number(raw.fade, 'the time of a fade', 0, 60000),
        curve: whole(raw.curve, 'the curve of a fade', 0, 3),
        pointer: flag(raw.pointer, 'pointer'),
        reach: raw.reach === undefined ? null : rectangle(raw.reach, 'the reach of a panel'),
    }),

    drop: raw => ({id: whole(raw.id, 'the panel', 1, 1e9)}),

    pool: raw => ({id: whole(raw.id, 'the pool', 1, 1e9)}),

    unpool: raw => ({id: whole(raw.id, 'the pool', 1, 1e9)}),

    frame: raw => {
        const frame = {
            serial: whole(raw.serial, 'the serial of a frame', 0, Number.MAX_SAFE_INTEGER),
            pool: whole(raw.pool, 'the pool', 1, 1e9),
            offset: whole(raw.offset, 'the offset', 0, 1e12),
            width: whole(raw.width, 'the width', 1, 16384),
            height: whole(raw.height, 'the height', 1, 16384),
            stride: whole(raw.stride, 'the stride', 4, LARGEST_FRAME),
            panels: raw.panels,
            at: rectangle(raw.at, 'the place of a frame'),
        };
        if (frame.stride < 4 * frame.width)
            refuse('rows overlap');
        frame.size = frame.stride * (frame.height - 1) + 4 * frame.width;
        number(frame.size, 'the size of a frame', 4, LARGEST_FRAME);
        if (!Array.isArray(frame.panels) || frame.panels.length > MOST_PANELS)
            refuse('panels of a frame');
        frame.panels.forEach(id => whole(id, 'the panel', 1, 1e9));
        return frame;
    },
};

/** Which messages bring a descriptor, in one byte after them. */
export const BRINGS_DESCRIPTOR = new Set(['pool']);

/**
 * Reads one message and checks every value of it. Throws Refused.
 *
 * @param {Uint8Array} bytes - a message without its length
 * @returns {{kind: string, body: object}} its one key, and what stands there
 */
export function decode(bytes) {
    let message;
    try {
        message = JSON.parse(new TextDecoder('utf-8', {fatal: true}).decode(bytes));
    } catch (error) {
        refuse('a message is no JSON');
    }
    const kinds = message !== null && typeof message === 'object' ? Object.keys(message) : [];
    if (kinds.length !== 1 || !Object.prototype.hasOwnProperty.call(CHECKS, kinds[0]))
        refuse(`nothing is known by the name ${kinds}`);
    const body = message[kinds[0]];
    if (body === null || typeof body !== 'object')
        refuse(`${kinds[0]} says nothing`);
    return {kind: kinds[0], body: CHECKS[kinds[0]](body)};
}

/**
 * Whether a process may talk to us, by its executable.
 *
 * @param {string} executable - where the kernel says that it lies
 * @param {string} list - the list that the program keeps, a path a line
 * @param {string|null} holder - the executable of whoever locked, which may always come back
 * @returns {boolean}
 */
export function mayTalk(executable, list, holder) {
    if (!executable.startsWith('/'))
        return false;
    return executable === holder || list.split('\n').includes(executable);
}

/**
 * Whether a hold must end now.
 *
 * @param {object} hold - as decoded
 * @param {number} now - seconds since 1970
 * @param {number|null} absent - for how many seconds its program has been gone; null while it is there
 * @returns {boolean}
 */
export function isOver(hold, now, absent) {
    return hold.until !== null && now >= hold.until || absent !== null && absent >= hold.absence;
}

/** Lets something happen a few times at once and then slowly, so that two who both insist do not fight for ever. */
export class Budget {
    constructor(most, seconds) {
        this._most = most;
        this._seconds = seconds;
        this._spent = [];
    }

    /**
     * @param {number} now - seconds of any clock that runs evenly
     * @returns {number} how long to wait before it may happen; 0 counts as having happened
     */
    spend(now) {
        this._spent = this._spent.filter(at => now - at < this._seconds);
        if (this._spent.length >= this._most)
            return this._spent[0] + this._seconds - now;
        this._spent.push(now);
        return 0;
    }
}

/**
 * What is kept on the disk while something is held, so that the next start of the extension goes on with it.
 *
 * @param {string} text - the file
 * @returns {{hold: object, holder: string, settings: Array}|null} nothing if it cannot be understood
 */
export function readKept(text) {
    try {
        const raw = JSON.parse(text);
        const hold = raw.hold === null ? null : CHECKS.hold(raw.hold);
        const kept = {hold, holder: raw.holder, settings: raw.settings};
        const isRested = one => [one.schema, one.key, one.rests].every(value => typeof value === 'string') &&
            (one.was === null || typeof one.was === 'string');
        return typeof kept.holder === 'string' && kept.settings.every(isRested) ? kept : null;
    } catch (error) {
        return null;
    }
}
