// STL and OBJ files by the loaders of three.js.
(function (viewer) {
    'use strict';

    /** Runs a loader. What it would print in the console is an error, apart from its timing. */
    function runQuietly(load) {
        const kept = {};
        let report = '';
        for (const name of ['error', 'warn', 'time', 'timeEnd']) {
            kept[name] = console[name];
            console[name] = (text) => { if (name === 'error') report = report || text; };
        }
        try {
            const result = load();
            if (report !== '') throw new Error(report);
            return result;
        } finally {
            Object.assign(console, kept);
        }
    }

    function exactBuffer(bytes) {
        return bytes.buffer.slice(bytes.byteOffset, bytes.byteOffset + bytes.length);
    }

    viewer.readers.stl = function (bytes) {
        const geometry = runQuietly(() => new THREE.STLLoader().parse(exactBuffer(bytes)));
        return geometry.attributes.position.array;
    };

    viewer.readers.obj = function (bytes) {
        const group = runQuietly(() => new THREE.OBJLoader().parse(viewer.latin1(bytes)));
        const parts = [];
        group.traverse((object) => {
            if (object.isMesh) parts.push(object.geometry.attributes.position.array);
        });
        const positions = new Float32Array(parts.reduce((sum, part) => sum + part.length, 0));
        parts.reduce((offset, part) => {
            positions.set(part, offset);
            return offset + part.length;
        }, 0);
        return positions;
    };
})(window.viewer);
