// What is seen: black on every monitor, the panels of the program above it, and words for when it is gone.

import Clutter from 'gi://Clutter';
import Cogl from 'gi://Cogl';
import GObject from 'gi://GObject';
import St from 'gi://St';

import * as Main from 'resource:///org/gnome/shell/ui/main.js';

import * as Protocol from './protocol.js';

const BLACK = 'background-color: #000;';

/** A child of the stage itself: what lies in the shell's own group is below menus and the screenshot's tools. */
export class Cover {
    constructor() {
        this._isUp = false;
        this._hears = false;
        this._words = [];
        this.panels = new Map();  // of the actors, by the program's own numbers
        this.actor = new Clutter.Actor({name: 'dormel', reactive: false});
        this._black = new Clutter.Actor();
        this._panels = new Clutter.Actor();
        this._wordsGroup = new Clutter.Actor();
        for (const child of [this._black, this._panels, this._wordsGroup])
            this.actor.add_child(child);
        global.stage.add_child(this.actor);
        const added = GObject.signal_lookup('child-added', Clutter.Actor.$gtype) ? 'child-added' : 'actor-added';
        this._stageId = global.stage.connect(added, () => this._raise());  // the magnifier comes later and above
        this._monitorsId = Main.layoutManager.connect('monitors-changed', () => this.layOut());
        this.layOut();
    }

    destroy() {
        global.stage.disconnect(this._stageId);
        Main.layoutManager.disconnect(this._monitorsId);
        this.actor.destroy();
    }

    _raise() {
        if (global.stage.get_last_child() !== this.actor)
            global.stage.set_child_above_sibling(this.actor, null);
    }

    /** Black everywhere or nowhere; at once. `hears`: keys and pointers come here, also while nothing is black. */
    set(up, hears) {
        if (this._isUp === up && this._hears === hears)
            return;
        this._isUp = up;
        this._hears = hears;
        this.layOut();
    }

    layOut() {
        this.actor.set_size(global.stage.width, global.stage.height);
        this._black.destroy_all_children();
        this.actor.reactive = this._isUp || this._hears;  // others are passed over even where they have the grab
        for (const {x, y, width, height} of this._isUp ? Main.layoutManager.monitors : [])
            this._black.add_child(new St.Widget({x, y, width, height, style: BLACK}));
        this._layOutWords();
        this._raise();
    }

    _layOutWords() {
        this._wordsGroup.destroy_all_children();
        for (const monitor of this._isUp && this._words.length > 0 ? Main.layoutManager.monitors : [])
            this._wordsGroup.add_child(this._label(monitor));
    }

    _label({x, y, width, height}) {
        const group = new St.BoxLayout({x, y, width, height});
        const label = new St.Label({
            text: this._words.join('\n'),
            style: 'color: rgba(255, 255, 255, 0.6); font-size: 20px; text-align: center;',
            x_expand: true,
            y_expand: true,
            x_align: Clutter.ActorAlign.CENTER,
            y_align: Clutter.ActorAlign.CENTER,
        });
        label.clutter_text.line_wrap = true;
        group.add_child(label);
        return group;
    }

    /** What stands there while the program is gone; nothing while it is there. */
    setWords(words) {
        this._words = words;
        this._panels.visible = words.length === 0;
        this._layOutWords();
    }

    /** The cover stands aside, panels and all, while the lock screen has the monitors. */
    setVisible(visible) {
        this.actor.visible = visible;
    }

    setPanel(panel, onPointer) {
        let actor = this.panels.get(panel.id);
        if (actor === undefined) {
            if (this.panels.size >= Protocol.MOST_PANELS)
                throw new Protocol.Refused('too many panels');
            actor = new St.Widget({opacity: 0, clip_to_allocation: true});
            this.panels.set(panel.id, actor);
            this._panels.add_child(actor);
            actor.dormelReach = this._reach(actor, panel.id, onPointer);
        }
        const {x, y, width, height} = panel.at;
        actor.set_position(x, y);
        actor.set_size(width, height);
        actor.style = panel.black ? BLACK : null;
        const reach = panel.reach ?? {x: 0, y: 0, width, height};
        actor.dormelReach.set_position(reach.x, reach.y);
        actor.dormelReach.set_size(reach.width, reach.height);
        actor.dormelReach.reactive = panel.pointer;
        actor.dormelLevel = panel.level;
        actor.remove_all_transitions();
        const opacity = Math.round(255 * panel.alpha);
        if (panel.fade > 0 && actor.mapped)  // what nobody sees has no frames to move by
            this._fade(actor, opacity, panel);
        else
            actor.opacity = opacity;
        const above = this._panels.get_children().find(other => other !== actor && other.dormelLevel > panel.level);
        if (above === undefined)
            this._panels.set_child_above_sibling(actor, null);
        else
            this._panels.set_child_below_sibling(actor, above);
    }

    // A transition made by hand: where the desktop has animations switched off (as it does by itself in most virtual
    // machines) the shell makes `ease` and `set_easing_duration` end at once, and the program, which waits for the end,
    // would show black where it means to darken slowly.
    _fade(actor, opacity, {fade, curve}) {
        const modes = [Clutter.AnimationMode.LINEAR, Clutter.AnimationMode.EASE_IN,
            Clutter.AnimationMode.EASE_OUT, Clutter.AnimationMode.EASE_IN_OUT];
        const transition = new Clutter.PropertyTransition({
            property_name: 'opacity',
            interval: new Clutter.Interval({value_type: GObject.TYPE_UINT}),
            duration: fade,
            progress_mode: modes[curve],
            remove_on_complete: true,
        });
        actor.add_transition('opacity', transition);
        transition.set_to(opacity);
    }

    // What the mouse can touch of a panel.
    _reach(panel, id, onPointer) {
        const actor = new Clutter.Actor();
        panel.add_child(actor);
        const tell = action => (_, event) => {
            const [, x, y] = panel.transform_stage_point(...event.get_coords());
            const isButton = action === 'press' || action === 'release';
            if (!isButton || event.get_button() === Clutter.BUTTON_PRIMARY)
                onPointer({panel: id, action, x, y});
            return Clutter.EVENT_STOP;
        };
        actor.connect('button-press-event', tell('press'));
        actor.connect('button-release-event', tell('release'));
        actor.connect('motion-event', tell('move'));
        actor.connect('leave-event', tell('leave'));
        return actor;
    }

    drop(id) {
        const actor = this.panels.get(id);
        if (actor !== undefined) {
            this.panels.delete(id);
            actor.destroy();
        }
    }

    dropAll() {
        for (const id of [...this.panels.keys()])
            this.drop(id);
    }

    /** One picture, shared by all panels that show it. */
    show(frame, bytes) {
        const actors = frame.panels.map(id => this.panels.get(id)).filter(actor => actor !== undefined);
        if (actors.length === 0)
            return;
        let content = actors[0].dormelContent;
        if (content === undefined || content.preferred_width !== frame.width ||
            content.preferred_height !== frame.height)
            content = St.ImageContent.new_with_preferred_size(frame.width, frame.height);
        const picture = [bytes, Cogl.PixelFormat.BGRA_8888_PRE, frame.width, frame.height, frame.stride];
        if (content.set_bytes.length === 6)  // since GNOME 48
            content.set_bytes(global.stage.context.get_backend().get_cogl_context(), ...picture);
        else
            content.set_bytes(...picture);
        for (const actor of actors) {
            actor.dormelContent = content;
            if (actor.dormelPicture === undefined) {
                actor.dormelPicture = new Clutter.Actor();
                actor.add_child(actor.dormelPicture);
            }
            actor.dormelPicture.content = content;
            actor.dormelPicture.set_position(frame.at.x, frame.at.y);
            actor.dormelPicture.set_size(frame.at.width, frame.at.height);
        }
    }
}
