// The edges of a shape that a drawing shows: borders, and folds of more than 30 degrees.
(function (viewer) {
    'use strict';

    // Finding edges takes 1 s for 500,000 triangles; such shapes are dense enough without.
    const maxTriangles = 100000;
    const minFoldCosine = Math.cos(Math.PI / 6);

    function hashOf(bits, i) {
        return (Math.imul(bits[i], 73856093) ^ Math.imul(bits[i + 1], 19349663)
            ^ Math.imul(bits[i + 2], 83492791)) >>> 0;
    }

    /** For each corner the number of the first corner with equal coordinates: open addressing. */
    function weld(positions) {
        const count = positions.length / 3;
        const bits = new Int32Array(positions.map((x) => x + 0).buffer);  // -0 becomes 0
        const size = 2 ** Math.ceil(Math.log2(2 * count + 1));
        const slots = new Int32Array(size).fill(-1);
        const welded = new Int32Array(count);
        for (let corner = 0; corner < count; ++corner) {
            const i = 3 * corner;
            let slot = hashOf(bits, i) & (size - 1);
            while (slots[slot] >= 0 && !sameBits(bits, 3 * slots[slot], i)) {
                slot = (slot + 1) & (size - 1);
            }
            if (slots[slot] < 0) slots[slot] = corner;
            welded[corner] = slots[slot];
        }
        return welded;
    }

    function sameBits(bits, i, j) {
        return bits[i] === bits[j] && bits[i + 1] === bits[j + 1] && bits[i + 2] === bits[j + 2];
    }

    /** The unit normal of a triangle; a zero vector if it has no area. */
    function normalOf(p, i) {
        const ax = p[i + 3] - p[i], ay = p[i + 4] - p[i + 1], az = p[i + 5] - p[i + 2];
        const bx = p[i + 6] - p[i], by = p[i + 7] - p[i + 1], bz = p[i + 8] - p[i + 2];
        const normal = [ay * bz - az * by, az * bx - ax * bz, ax * by - ay * bx];
        const length = Math.hypot(...normal) || 1;
        return normal.map((x) => x / length);
    }

    /** Notes an edge of a triangle, and whether its second triangle makes a fold. */
    function noteEdge(edges, a, b, count, normal) {
        const key = a < b ? a * count + b : b * count + a;
        const known = edges.get(key);
        if (known === undefined) {
            edges.set(key, { a: a, b: b, normal: normal, isSharp: true });
        } else {
            const cosine = known.normal.reduce((sum, x, k) => sum + x * normal[k], 0);
            known.isSharp = known.isSharp && cosine < minFoldCosine;
        }
    }

    function collectEdges(positions) {
        const welded = weld(positions);
        const edges = new Map();
        for (let i = 0; i < welded.length; i += 3) {
            const normal = normalOf(positions, 3 * i);
            for (let k = 0; k < 3; ++k) {
                const a = welded[i + k];
                const b = welded[i + (k + 1) % 3];
                if (a !== b) noteEdge(edges, a, b, welded.length, normal);
            }
        }
        return edges;
    }

    /** End points of the edges, six coordinates for each. */
    viewer.edgesOf = function (positions) {
        if (positions.length > 9 * maxTriangles) return new Float32Array(0);
        const result = [];
        for (const edge of collectEdges(positions).values()) {
            if (!edge.isSharp) continue;
            for (const end of [edge.a, edge.b]) {
                for (let k = 0; k < 3; ++k) result.push(positions[3 * end + k]);
            }
        }
        return new Float32Array(result);
    };
})(window.viewer);
