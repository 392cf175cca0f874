// Placements of one shape, drawn together: at most 256 that are near each other.
(function (viewer) {
    'use strict';

    viewer.maxInstances = 256;
    // A frame draws whole chunks, so a chunk has to be quick to draw.
    const maxTriangles = 200000;
    const floatsPerInstance = 15;  // three axes, translation as high and low part

    /** Spreads the lower ten bits of a number: every third bit of the result. */
    function spread(x) {
        x = (x | x << 16) & 0x030000ff;
        x = (x | x << 8) & 0x0300f00f;
        x = (x | x << 4) & 0x030c30c3;
        return (x | x << 2) & 0x09249249;
    }

    /** The place of a translation on a Morton curve through a box. */
    function codeOf(matrix, bounds) {
        let code = 0;
        for (let k = 0; k < 3; ++k) {
            const size = bounds.max[k] - bounds.min[k] || 1;
            code |= spread(Math.floor(1023 * (matrix[9 + k] - bounds.min[k]) / size)) << k;
        }
        return code;
    }

    /** Sorts items so that those which follow each other are near each other. */
    function sortByPlace(items) {
        const bounds = viewer.emptyBounds();
        for (const item of items) {
            const place = item.matrix.subarray(9, 12);
            viewer.growBounds(bounds, { min: place, max: place });
        }
        const codes = new Map(items.map((item) => [item, codeOf(item.matrix, bounds)]));
        return items.slice().sort((a, b) => codes.get(a) - codes.get(b));
    }

    /** The box of a placed shape in the assembly. */
    viewer.placedBounds = function (shape, matrix) {
        const { center, half } = shape;
        const min = [], max = [];
        for (let k = 0; k < 3; ++k) {
            const x = matrix[k], y = matrix[3 + k], z = matrix[6 + k];
            const middle = x * center[0] + y * center[1] + z * center[2] + matrix[9 + k];
            const reach = Math.abs(x) * half[0] + Math.abs(y) * half[1] + Math.abs(z) * half[2];
            min.push(middle - reach);
            max.push(middle + reach);
        }
        return { min: min, max: max };
    };

    viewer.emptyBounds = function () {
        return viewer.boundsOf([]);
    };

    viewer.growBounds = function (bounds, other) {
        for (let k = 0; k < 3; ++k) {
            bounds.min[k] = Math.min(bounds.min[k], other.min[k]);
            bounds.max[k] = Math.max(bounds.max[k], other.max[k]);
        }
    };

    /** The sphere around a box. */
    viewer.sphereOf = function (bounds) {
        const min = new THREE.Vector3(...bounds.min);
        const max = new THREE.Vector3(...bounds.max);
        return new THREE.Sphere(min.clone().lerp(max, 0.5), min.distanceTo(max) / 2);
    };

    function makeGeometry(chunk, positions) {
        const geometry = new THREE.InstancedBufferGeometry();
        geometry.setAttribute('position', positions);
        const names = ['axisX', 'axisY', 'axisZ', 'placeHigh', 'placeLow'];
        names.forEach((name, i) => geometry.setAttribute(name,
            new THREE.InterleavedBufferAttribute(chunk.places, 3, 3 * i)));
        geometry.setAttribute('tint', chunk.tints);
        return geometry;
    }

    function addMesh(chunk, scene, Type, positions, material) {
        const mesh = new Type(makeGeometry(chunk, positions), material);
        mesh.frustumCulled = false;
        mesh.matrixAutoUpdate = false;
        mesh.visible = false;
        mesh.renderOrder = chunk.isGhost ? 1 : 0;
        scene.add(mesh);
        return mesh;
    }

    function makeChunk(shape, items, isGhost) {
        const bounds = viewer.emptyBounds();
        let size = 0;
        for (const item of items) {
            const box = viewer.placedBounds(shape, item.matrix);
            viewer.growBounds(bounds, box);
            size = Math.max(size, viewer.sphereOf(box).radius);
        }
        const count = items.length;
        const places = new Float32Array(floatsPerInstance * count);
        const chunk = {
            shape: shape, items: items, isGhost: isGhost, shown: [], size: size,
            bounds: bounds, sphere: viewer.sphereOf(bounds), box: null,
            places: new THREE.InstancedInterleavedBuffer(places, floatsPerInstance, false, 1),
            tints: new THREE.InstancedBufferAttribute(new Uint8Array(4 * count), 4, true),
        };
        items.forEach((item) => { item.chunk = chunk; });
        return chunk;
    }

    function addMeshes(chunk, scene, materials) {
        const kind = chunk.isGhost ? 1 : 0;
        const { faces, edges } = chunk.shape.attributes;
        chunk.faces = addMesh(chunk, scene, THREE.Mesh, faces, materials.faces[kind]);
        chunk.edges = addMesh(chunk, scene, THREE.LineSegments, edges, materials.edges[kind]);
        return chunk;
    }

    /** The attributes of a shape, shared by its chunks. */
    viewer.addAttributes = function (shape) {
        const attribute = (positions) => new THREE.BufferAttribute(positions, 3);
        shape.attributes = {
            faces: attribute(shape.positions),
            edges: attribute(viewer.edgesOf(shape.positions)),
        };
    };

    /** Orders items so that each beginning of the list is spread over all of them. */
    function scatter(items, seed) {
        const count = items.length;
        const step = count % 97 === 0 ? 89 : 97;  // without a common factor with the count
        return items.map((item, i) => items[(step * (i + seed)) % count]);
    }

    function chunkSizeOf(shape) {
        const fitting = Math.floor(maxTriangles / (shape.positions.length / 9));
        return Math.max(1, Math.min(viewer.maxInstances, fitting));
    }

    /** Chunks for the items of one shape; their meshes are added to the scene. */
    viewer.makeChunks = function (shape, items, isGhost, scene, materials) {
        const sorted = sortByPlace(items);
        const chunks = [];
        const size = chunkSizeOf(shape);
        for (let i = 0; i < sorted.length; i += size) {
            const chunk = makeChunk(shape, scatter(sorted.slice(i, i + size), i), isGhost);
            chunks.push(addMeshes(chunk, scene, materials));
        }
        return chunks;
    };

    function writePlace(matrix, array, offset) {
        for (let i = 0; i < 9; ++i) array[offset + i] = matrix[i];
        for (let k = 0; k < 3; ++k) {
            [array[offset + 9 + k], array[offset + 12 + k]] = viewer.splitDouble(matrix[9 + k]);
        }
    }

    /** Writes the items that are shown to the attributes of a chunk. */
    viewer.packChunk = function (chunk, isShown) {
        chunk.shown = chunk.items.filter(isShown);
        chunk.shown.forEach((item, slot) => {
            item.slot = slot;
            writePlace(item.matrix, chunk.places.array, floatsPerInstance * slot);
        });
        chunk.places.needsUpdate = true;
        chunk.arePlacesNew = true;
    };

    /** Writes the colours of the items that are shown: four bytes each. */
    viewer.tintChunk = function (chunk, colourOf) {
        chunk.shown.forEach((item, slot) => chunk.tints.array.set(colourOf(item), 4 * slot));
        chunk.tints.needsUpdate = true;
        chunk.areTintsNew = true;
    };

    /** The placement of an item as the attributes hold it: 12 numbers. */
    viewer.drawnMatrix = function (item) {
        const offset = floatsPerInstance * item.slot;
        const place = Array.from(item.chunk.places.array.slice(offset, offset + floatsPerInstance));
        return [...place.slice(0, 9), ...[9, 10, 11].map((i) => place[i] + place[i + 3])];
    };
})(window.viewer);
