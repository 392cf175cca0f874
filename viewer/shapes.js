// The shapes of the geometry files: triangles, bounds, and the reason why a file is a box instead.
(function (viewer) {
    'use strict';

    // The corners of each face of a box, in order around it.
    const cubeFaces = [
        [0, 2, 3, 1], [4, 5, 7, 6], [0, 1, 5, 4], [2, 6, 7, 3], [0, 4, 6, 2], [1, 3, 7, 5],
    ];

    /** The corners of the triangles of a box. Bits 0, 1 and 2 choose the side in x, y and z. */
    viewer.cubeCorners = cubeFaces.flatMap(([a, b, c, d]) => [a, b, c, a, c, d]);

    /** The triangles of the box between two corners. */
    function boxTriangles(min, max) {
        const positions = viewer.cubeCorners.flatMap(
            (corner) => [0, 1, 2].map((k) => (corner >> k & 1 ? max : min)[k]));
        return new Float32Array(positions);
    }

    /** The corners of the box around coordinates. NaN and infinity remain in them. */
    viewer.boundsOf = function (positions) {
        const min = [Infinity, Infinity, Infinity];
        const max = [-Infinity, -Infinity, -Infinity];
        for (let i = 0; i < positions.length; ++i) {
            const k = i % 3;
            if (!(positions[i] >= min[k])) min[k] = positions[i];
            if (!(positions[i] <= max[k])) max[k] = positions[i];
        }
        return { min: min, max: max };
    };

    /** The positions of a file. Throws an Error whose message is the reason for a box. */
    function readPositions(file, bytes) {
        if (!Object.hasOwn(viewer.readers, file.format)) throw new Error('unknown format');
        const positions = viewer.readers[file.format](bytes);
        if (positions.length === 0) throw new Error('the file has no triangles');
        if (positions.length % 9 !== 0) throw new Error('the file ends in a triangle');
        if (!positions.every(Number.isFinite)) {
            throw new Error('a coordinate is not a finite number');
        }
        return positions;
    }

    function makeShape(positions, reason) {
        const bounds = viewer.boundsOf(positions);
        return {
            positions: positions, bounds: bounds, reason: reason,
            center: bounds.min.map((x, k) => (x + bounds.max[k]) / 2),
            half: bounds.min.map((x, k) => (bounds.max[k] - x) / 2),
        };
    }

    /** Decodes a data block and removes it, so that its text does not stay in memory. */
    function takeBlock(index) {
        const block = document.getElementById(`geometry-${index}`);
        if (!block) throw new Error('the page has no data of this file');
        const bytes = viewer.bytesOf(block.textContent);
        block.remove();
        return bytes;
    }

    /** The readers of bytes throw a RangeError at the end of a file. */
    function reasonOf(error) {
        return error instanceof RangeError ? 'the file ends too early' : error.message;
    }

    /**
     * The shape of a file.
     *
     * @param file        its entry in the model
     * @param index       its number in the model
     * @param boxSize     edge of the box that is drawn instead, in mm
     */
    viewer.readShape = function (file, index, boxSize) {
        try {
            if (file.format === null) throw new Error(file.reason || 'unknown format');
            return makeShape(readPositions(file, takeBlock(index)), null);
        } catch (error) {
            const half = boxSize / 2;
            const box = boxTriangles([-half, -half, -half], [half, half, half]);
            return makeShape(box, reasonOf(error));
        }
    };
})(window.viewer);
