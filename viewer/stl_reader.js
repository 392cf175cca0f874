// STL files, binary and text.
(function (viewer) {
    'use strict';

    const headerSize = 84;
    const facetSize = 50;

    function beginsWithSolid(bytes) {
        return /^\s*solid/i.test(viewer.latin1(bytes.subarray(0, 80)));
    }

    function facetCount(bytes) {
        return new DataView(bytes.buffer, bytes.byteOffset).getUint32(80, true);
    }

    /** The size decides, because headers of binary files may also begin with "solid". */
    function isBinary(bytes) {
        if (bytes.length < headerSize) return false;
        return bytes.length === headerSize + facetSize * facetCount(bytes)
            || !beginsWithSolid(bytes);
    }

    function readBinary(bytes) {
        const count = facetCount(bytes);
        const present = Math.floor((bytes.length - headerSize) / facetSize);
        if (present < count) {
            throw new Error(`the header says ${count} triangles, the file has ${present}`);
        }
        const view = new DataView(bytes.buffer, bytes.byteOffset);
        const positions = new Float32Array(9 * count);
        for (let facet = 0; facet < count; ++facet) {
            const start = headerSize + facetSize * facet + 12;
            for (let i = 0; i < 9; ++i) {
                positions[9 * facet + i] = view.getFloat32(start + 4 * i, true);
            }
        }
        return positions;
    }

    function checkLoop(corners, loop) {
        if (corners !== 3) throw new Error(`facet ${loop} has ${corners} corners`);
    }

    function readText(bytes) {
        const text = viewer.latin1(bytes);
        if (!beginsWithSolid(bytes)) throw new Error('not an STL file');
        const token = /\bvertex\s+(\S+)\s+(\S+)\s+(\S+)|\bendloop\b/gi;
        const positions = [];
        let corners = 0;
        let loop = 0;
        for (let match = token.exec(text); match; match = token.exec(text)) {
            if (match[1] === undefined) {
                checkLoop(corners, ++loop);
                corners = 0;
            } else {
                ++corners;
                for (let i = 1; i <= 3; ++i) positions.push(viewer.numberOf(match[i]));
            }
        }
        if (corners !== 0) throw new Error(`the file ends in facet ${loop + 1}`);
        return new Float32Array(positions);
    }

    viewer.readers.stl = function (bytes) {
        return isBinary(bytes) ? readBinary(bytes) : readText(bytes);
    };
})(window.viewer);
