// Grid, origin, frames and the box of the overall dimension: lines with labels.
(function (viewer) {
    'use strict';

    const axisColours = [0xd9363e, 0x2f9e44, 0x2f6fed];
    const maxGridLines = 40;

    function makeLines(points, colours) {
        const geometry = new THREE.BufferGeometry();
        geometry.setAttribute('position', new THREE.Float32BufferAttribute(points, 3));
        geometry.setAttribute('color', new THREE.Float32BufferAttribute(colours, 3));
        const material = new THREE.LineBasicMaterial({ vertexColors: THREE.VertexColors });
        const lines = new THREE.LineSegments(geometry, material);
        lines.frustumCulled = false;
        return lines;
    }

    viewer.lengthOfBox = function (bounds) {
        return Math.hypot(...bounds.min.map((x, k) => bounds.max[k] - x));
    };

    /** 1, 2 or 5 times a power of ten, so that a length has at most 40 steps. */
    function gridStep(length) {
        const power = 10 ** Math.floor(Math.log10(length / maxGridLines));
        return [1, 2, 5, 10].map((x) => x * power).find((x) => x * maxGridLines >= length);
    }

    /** Where the grid is: in the plane z = 0, unless the assembly is far from it. */
    function gridHeight(bounds, length) {
        const isNear = bounds.min[2] <= length && bounds.max[2] >= -length;
        return isNear ? 0 : bounds.min[2];
    }

    function makeGrid(bounds, colours) {
        const length = viewer.lengthOfBox(bounds);
        const step = gridStep(1.5 * length);
        const reach = step * Math.ceil(0.75 * length / step);
        const middle = [0, 1].map((k) =>
            step * Math.round((bounds.min[k] + bounds.max[k]) / 2 / step));
        const points = [];
        const shades = [];
        for (let at = -reach; at <= reach + step / 2; at += step) {
            points.push(-reach, at, 0, reach, at, 0, at, -reach, 0, at, reach, 0);
            for (const k of [1, 0]) {
                const isStrong = Math.round((middle[k] + at) / step) % 5 === 0;
                const shade = new THREE.Color(colours.number(isStrong ? 'grid-strong' : 'grid'));
                shades.push(...shade.toArray(), ...shade.toArray());
            }
        }
        const grid = makeLines(points, shades);
        grid.position.set(middle[0], middle[1], gridHeight(bounds, length));
        grid.userData.step = step;
        return grid;
    }

    /** The axes x (red), y (green) and z (blue) of a placement. */
    function makeFrame(matrix, length) {
        const points = [];
        const shades = [];
        for (let axis = 0; axis < 3; ++axis) {
            points.push(0, 0, 0, ...[0, 1, 2].map((k) => matrix[3 * axis + k] * length));
            const colour = new THREE.Color(axisColours[axis]).toArray();
            shades.push(...colour, ...colour);
        }
        const frame = makeLines(points, shades);
        frame.position.set(matrix[9], matrix[10], matrix[11]);
        frame.material.depthTest = false;
        frame.renderOrder = 2;
        return frame;
    }

    function makeBox(size, bounds, colours) {
        const points = [];
        for (let corner = 0; corner < 8; ++corner) {
            for (const bit of [1, 2, 4].filter((one) => !(corner & one))) {
                for (const end of [corner, corner | bit]) {
                    points.push(...[0, 1, 2].map((k) => (end >> k & 1) * size[k]));
                }
            }
        }
        const colour = new THREE.Color(colours.number('dimension')).toArray();
        const box = makeLines(points, points.flatMap((x, i) => (i % 3 === 0 ? colour : [])));
        const start = (k) => (bounds.min[k] + bounds.max[k] - size[k]) / 2;
        box.position.set(start(0), start(1), bounds.min[2]);
        return box;
    }

    function sizeText(size) {
        return `${size.map(viewer.numberText).join(' × ')} mm`;
    }

    /** The box of the assembly that is current. The file has its size and no place. */
    function addDimension(parts, model, bounds, colours) {
        const assembly = model.assemblies[model.assemblies.length - 1];
        if (!assembly || !assembly.dimension) return;
        const size = assembly.dimension[1].map((x, k) => x - assembly.dimension[0][k]);
        const box = makeBox(size, bounds, colours);
        const at = box.position.clone().add(new THREE.Vector3(size[0] / 2, 0, size[2]));
        parts.push({ kind: 'dimension', object: box, text: sizeText(size), at: at });
    }

    function addFrame(parts, kind, text, matrix, length) {
        const frame = makeFrame(matrix, length);
        parts.push({ kind: kind, object: frame, text: text, at: frame.position.clone() });
    }

    const identity = [1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0];

    /**
     * The lines beside the placements.
     *
     * @param bounds  the box of what is drawn, not empty
     * @return a list of kind ("grid", "frames", "dimension"), object, and label text and point
     */
    viewer.makeReferences = function (model, bounds, colours) {
        const length = viewer.lengthOfBox(bounds);
        const parts = [{ kind: 'grid', object: makeGrid(bounds, colours), text: '' }];
        addFrame(parts, 'frames', 'Origin', identity, 0.1 * length);
        for (const frame of model.frames) {
            addFrame(parts, 'frames', frame.label, frame.matrix, 0.14 * length);
        }
        addDimension(parts, model, bounds, colours);
        return parts;
    };
})(window.viewer);
