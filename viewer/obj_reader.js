// OBJ files: points and faces. Groups, materials, curves and lines are ignored.
(function (viewer) {
    'use strict';

    /** "7/1/3" is point 6; a negative number counts back from the last point. */
    function indexOf(text, pointCount) {
        const number = viewer.numberOf(text.split('/', 1)[0]);
        return number < 0 ? pointCount + number : number - 1;
    }

    function readLine(fields, triangles) {
        if (fields[0] === 'v') {
            const [x, y, z] = fields.slice(1, 4).map(viewer.numberOf);
            triangles.addPoint(x, y, viewer.numberOf(z));
        } else if (fields[0] === 'f') {
            const count = triangles.pointCount();
            triangles.addPolygon(fields.slice(1).map((field) => indexOf(field, count)));
        }
    }

    viewer.readers.obj = function (bytes) {
        const triangles = viewer.makeTriangles();
        const text = viewer.latin1(bytes).replace(/\\\r?\n/g, ' ');
        text.split(/\r\n|\n|\r/).forEach((line, index) => {
            try {
                readLine(line.trim().split(/\s+/), triangles);
            } catch (error) {
                throw new Error(`line ${index + 1}: ${error.message}`);
            }
        });
        return triangles.positions();
    };
})(window.viewer);
