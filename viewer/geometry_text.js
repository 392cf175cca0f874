// What the readers of geometry files share. A reader takes the bytes of a file and returns its
// triangles, nine coordinates each. It throws an Error whose message is the reason for a person.
(function (viewer) {
    'use strict';

    viewer.readers = {};

    const decoder = new TextDecoder('latin1');

    /** Text of bytes; each byte is one character. */
    viewer.latin1 = function (bytes) {
        return decoder.decode(bytes);
    };

    /** A text from a file, short enough for a message. */
    function excerpt(text) {
        return text.length > 20 ? `${text.slice(0, 20)}…` : text;
    }

    viewer.numberOf = function (text) {
        const number = text === undefined || text === '' ? NaN : Number(text);
        if (Number.isNaN(number)) throw new Error(`"${excerpt(String(text))}" is not a number`);
        return number;
    };

    /** Collects triangles from polygons over numbered points. */
    viewer.makeTriangles = function () {
        const points = [];
        const corners = [];
        function addCorner(index) {
            if (!(index >= 0 && index < points.length / 3)) {
                throw new Error(`a face has point ${index + 1} of ${points.length / 3}`);
            }
            corners.push(index);
        }
        return {
            addPoint: (x, y, z) => points.push(x, y, z),
            pointCount: () => points.length / 3,
            /** A fan from the first corner, which is exact for convex polygons. */
            addPolygon: (indices) => {
                for (let i = 2; i < indices.length; ++i) {
                    [indices[0], indices[i - 1], indices[i]].forEach(addCorner);
                }
            },
            positions: () => {
                const result = new Float32Array(3 * corners.length);
                corners.forEach((corner, i) => {
                    for (let k = 0; k < 3; ++k) result[3 * i + k] = points[3 * corner + k];
                });
                return result;
            },
        };
    };
})(window.viewer);
