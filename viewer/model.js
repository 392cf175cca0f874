// The data of the document as typed arrays: components, items (what is drawn), files, frames.
(function (viewer) {
    'use strict';

    /** Bytes of a base64 text. */
    viewer.bytesOf = function (base64) {
        const text = atob(base64);
        const bytes = new Uint8Array(text.length);
        for (let i = 0; i < text.length; ++i) bytes[i] = text.charCodeAt(i);
        return bytes;
    };

    function doublesOf(base64) {
        return new Float64Array(viewer.bytesOf(base64).buffer);
    }

    function matrixAt(column, i) {
        return column.subarray(12 * i, 12 * i + 12);
    }

    /** The columns of one assembly, with its component indices shifted to those of the model. */
    function addComponents(columns, first, assembly, into) {
        const count = columns.parent.length;
        into.local.push(doublesOf(columns.local));
        into.world.push(doublesOf(columns.world));
        for (let i = 0; i < count; ++i) {
            const parent = columns.parent[i];
            into.parent.push(parent < 0 ? -1 : parent + first);
            into.name.push(columns.name[i]);
            into.comment.push(columns.comment[i]);
            into.file.push(columns.file[i]);
            into.enabled.push(columns.enabled[i]);
            into.assembly.push(assembly);
        }
        return count;
    }

    /**
     * Sets depth and end. A component's descendants are the components from the next index up to
     * its end, because the order is that of the document, depth first.
     */
    function addExtents(components) {
        const count = components.count;
        components.depth = new Uint16Array(count);
        components.end = new Int32Array(count);
        for (let i = 0; i < count; ++i) {
            const parent = components.parent[i];
            components.depth[i] = parent < 0 ? 0 : components.depth[parent] + 1;
            components.end[i] = i + 1;
        }
        for (let i = count - 1; i >= 0; --i) {
            const parent = components.parent[i];
            if (parent >= 0) {
                components.end[parent] = Math.max(components.end[parent], components.end[i]);
            }
        }
    }

    function addItems(columns, first, assembly, isGhost, items) {
        const matrix = doublesOf(columns.matrix);
        for (let i = 0; i < columns.component.length; ++i) {
            items.push({
                component: columns.component[i] + first,
                file: columns.file[i],
                matrix: matrixAt(matrix, i),
                assembly: assembly,
                isGhost: isGhost,
            });
        }
    }

    /** For each component the number of items before its own. Items are sorted by component. */
    function firstItems(items, count) {
        const first = new Int32Array(count + 1);
        for (const item of items) ++first[item.component + 1];
        for (let i = 0; i < count; ++i) first[i + 1] += first[i];
        return first;
    }

    /** The items of a component and of everything below it. */
    viewer.itemsBelow = function (model, component) {
        const end = model.components.end[component];
        return model.items.slice(model.firstItem[component], model.firstItem[end]);
    };

    // Beyond this a single-precision renderer shows nothing useful.
    const maxCoordinate = 1e12;

    /** Whether a placement can be drawn. A comparison with NaN is false. */
    viewer.isDrawable = function (matrix) {
        return Array.prototype.every.call(matrix, (x) => Math.abs(x) <= maxCoordinate);
    };

    /** The placement of a component, from the column "local" or "world": 12 numbers. */
    viewer.placementOf = function (model, component, column) {
        const assembly = model.components.assembly[component];
        const first = model.assemblies[assembly].first;
        return matrixAt(model.components[column][assembly], component - first);
    };

    /** The model of the page from the parsed data block. */
    viewer.readModel = function (data) {
        const components = {
            parent: [], name: [], comment: [], file: [], enabled: [], local: [], world: [],
            assembly: [],
        };
        const items = [];
        const assemblies = data.assemblies.map((source, index) => {
            const first = components.parent.length;
            const count = addComponents(source.components, first, index, components);
            addItems(source.placements, first, index, false, items);
            addItems(source.ghosts, first, index, true, items);
            return { path: source.path, dimension: source.dimension, first: first, count: count };
        });
        components.count = components.parent.length;
        addExtents(components);
        items.sort((a, b) => a.component - b.component);
        return {
            title: data.title, files: data.files, frames: data.frames, assemblies: assemblies,
            components: components, items: items, differences: data.diff,
            firstItem: firstItems(items, components.count),
        };
    };

    /** Reads the data block of the document and removes its text. */
    viewer.readDocument = function () {
        const block = document.getElementById('scene-data');
        const model = viewer.readModel(JSON.parse(block.textContent));
        block.remove();
        return model;
    };
})(window.viewer = window.viewer || {});
