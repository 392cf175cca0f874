// What is selected, pointed at, hidden and isolated, and who is told about changes.
(function (viewer) {
    'use strict';

    /** A list of functions that are called with each event of a kind. */
    viewer.makeSignal = function () {
        const receivers = [];
        return {
            connect: (receiver) => receivers.push(receiver),
            emit: (...values) => receivers.forEach((receiver) => receiver(...values)),
        };
    };

    viewer.makeStates = function (components) {
        const hidden = new Uint8Array(components.count);
        let covered = new Uint8Array(components.count);
        const states = {
            selected: -1, hovered: -1, isolated: -1, showGhosts: false,
            visibilityChanged: viewer.makeSignal(),
            selectionChanged: viewer.makeSignal(),
            hoverChanged: viewer.makeSignal(),
        };

        const isIn = (component, root) =>
            root >= 0 && component >= root && component < components.end[root];

        function isOutsideIsolated(component) {
            return states.isolated >= 0
                && components.assembly[component] === components.assembly[states.isolated]
                && !isIn(component, states.isolated);
        }

        function update() {
            covered = new Uint8Array(components.count);
            for (let i = 0; i < components.count; ++i) {
                const parent = components.parent[i];
                const above = parent >= 0 && covered[parent] & 1;
                // Bit 0: hidden itself or by an ancestor. Bit 1: outside of the isolated branch.
                covered[i] = (hidden[i] || above ? 1 : 0) | (isOutsideIsolated(i) ? 2 : 0);
            }
            states.visibilityChanged.emit();
        }

        return Object.assign(states, {
            isIn: isIn,
            isHidden: (component) => hidden[component] === 1,
            /** Whether a component's geometry may be drawn, ghosts apart. */
            isVisible: (component) => covered[component] === 0,
            setHidden: (component, value) => { hidden[component] = value ? 1 : 0; update(); },
            isolate: (component) => { states.isolated = component; update(); },
            showAll: () => { hidden.fill(0); states.isolated = -1; update(); },
            setGhosts: (value) => { states.showGhosts = value; update(); },
            select: (component) => {
                states.selected = component;
                states.selectionChanged.emit(component);
            },
            hover: (component) => {
                if (component === states.hovered) return;
                const before = states.hovered;
                states.hovered = component;
                states.hoverChanged.emit(component, before);
            },
        });
    };
})(window.viewer);
