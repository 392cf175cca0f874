// What tests and scripts ask about the drawing.
(function (viewer) {
    'use strict';

    function describe(item, drawing) {
        return {
            component: item.component, file: item.file, role: item.role, isGhost: item.isGhost,
            isShown: drawing.isDrawn(item),
        };
    }

    function drawnTint(item) {
        const start = 4 * item.slot;
        return Array.from(item.chunk.tints.array.slice(start, start + 4));
    }

    viewer.makeScene = function (parts, pickAt) {
        const { model, drawing, view, states, camera, measure, section, shapes } = parts;
        const shown = () => drawing.items.filter((item) => drawing.isDrawn(item));
        return {
            /** The placements that are drawn, read from the attributes: 12 numbers each. */
            placements: () => shown().map((item) => Object.assign(describe(item, drawing),
                { matrix: viewer.drawnMatrix(item), tint: drawnTint(item) })),
            /** The box around a component's branch, or around everything that is shown. */
            bounds: (component) => drawing.bounds(component === undefined ? -1 : component),
            visible: (component) => viewer.itemsBelow(model, component)
                .some((item) => drawing.isDrawn(item)),
            name: (component) => model.components.name[component],
            /** The placement of a component in the assembly. */
            matrix: (component) => Array.from(viewer.placementOf(model, component, 'world')),
            component: (name) => model.components.name.indexOf(name),
            reasons: () => shapes.map((shape) => shape.reason),
            selected: () => states.selected,
            select: states.select,
            pick: (x, y) => {
                const hit = pickAt(x, y);
                return hit && { component: hit.item.component, point: hit.point };
            },
            camera: () => camera.state,
            pixelOf: (point) => camera.pixelOf(new THREE.Vector3(...point)),
            pixel: (x, y) => view.pixel(x, y),
            measured: () => measure.points,
            section: () => Object.assign({}, section.state),
            /** Milliseconds of frames, the graphics hardware included. */
            timing: () => ({
                frames: view.frames, first: view.firstTime, worst: view.worstTime,
                isStill: view.isStill,
            }),
            resetTiming: () => { view.worstTime = 0; view.frames = 0; },
        };
    };
})(window.viewer);
