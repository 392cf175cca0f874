// The placements as chunks of instances: what is shown and in which colour.
(function (viewer) {
    'use strict';

    /** The role that draws an item, or null if it is not drawn. */
    function roleOf(item, roles) {
        const role = roles[item.component];
        // What was disabled before and moved is a ghost at its new place only.
        return item.isGhost && role === 'old' ? null : role;
    }

    /** Items by shape and by whether they are transparent. */
    function groupItems(items) {
        const groups = new Map();
        for (const item of items) {
            const key = 2 * item.file + (item.isGhost || item.role === 'old' ? 1 : 0);
            if (!groups.has(key)) groups.set(key, []);
            groups.get(key).push(item);
        }
        return groups;
    }

    function boundsOfChunks(chunks) {
        const bounds = viewer.emptyBounds();
        for (const chunk of chunks) viewer.growBounds(bounds, chunk.bounds);
        return bounds;
    }

    viewer.isEmptyBounds = function (bounds) {
        return !(bounds.min[0] <= bounds.max[0]);
    };

    /**
     * The drawing of a model.
     *
     * @param shapes     one for each file of the model
     * @param materials  of makeMaterials()
     */
    viewer.makeDrawing = function (model, shapes, roles, states, materials, colours) {
        const scene = new THREE.Scene();
        const drawn = model.items.filter((item) => {
            item.role = roleOf(item, roles);
            return item.role !== null && viewer.isDrawable(item.matrix);
        });
        const chunks = [];
        for (const [key, items] of groupItems(drawn)) {
            const shape = shapes[key >> 1];
            if (!shape.attributes) viewer.addAttributes(shape);
            chunks.push(...viewer.makeChunks(shape, items, key % 2 === 1, scene, materials));
        }

        const isShown = (item) =>
            states.isVisible(item.component) && (!item.isGhost || states.showGhosts);

        function pack() {
            for (const chunk of chunks) {
                viewer.packChunk(chunk, isShown);
                viewer.tintChunk(chunk, colours.ofItem);
            }
        }

        /** Colours the branches of components again. */
        function tint(components) {
            const dirty = new Set();
            for (const component of components.filter((one) => one >= 0)) {
                for (const item of viewer.itemsBelow(model, component)) {
                    if (item.chunk) dirty.add(item.chunk);
                }
            }
            dirty.forEach((chunk) => viewer.tintChunk(chunk, colours.ofItem));
        }

        /** The box around the items of a component's branch, or around everything shown. */
        function bounds(component) {
            const items = component >= 0 ? viewer.itemsBelow(model, component) : drawn;
            const result = viewer.emptyBounds();
            for (const item of items) {
                if (!item.chunk || !isShown(item)) continue;
                viewer.growBounds(result, viewer.placedBounds(item.chunk.shape, item.matrix));
            }
            return result;
        }

        return {
            scene: scene, chunks: chunks, items: drawn, isShown: isShown,
            /** Whether an item is in the attributes of the graphics hardware now. */
            isDrawn: (item) => item.chunk !== undefined && item.chunk.shown[item.slot] === item,
            pack: pack, tint: tint, bounds: bounds,
            all: boundsOfChunks(chunks.filter((chunk) => !chunk.isGhost)),
            everything: boundsOfChunks(chunks),
        };
    };
})(window.viewer);
