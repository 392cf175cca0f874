// The boxes of a chunk's placements as one mesh. A software renderer takes 30 microseconds for each
// instance, but less than one for each triangle. So boxes without instances are 20 times faster.
(function (viewer) {
    'use strict';

    const maxBoxes = viewer.maxInstances;

    /** Two triangles for each face of each box; the corners are those of boxTriangles(). */
    function makeIndex() {
        const index = new Uint16Array(36 * maxBoxes);
        for (let box = 0; box < maxBoxes; ++box) {
            viewer.cubeCorners.forEach((corner, i) => { index[36 * box + i] = 8 * box + corner; });
        }
        return new THREE.BufferAttribute(index, 1);
    }

    let index = null;

    function makeMesh(chunk, scene, materials) {
        const count = chunk.items.length;
        const geometry = new THREE.BufferGeometry();
        index = index || makeIndex();
        geometry.setIndex(index);
        geometry.setAttribute('position',
            new THREE.BufferAttribute(new Float32Array(24 * count), 3));
        geometry.setAttribute('tint',
            new THREE.BufferAttribute(new Uint8Array(32 * count), 4, true));
        const mesh = new THREE.Mesh(geometry, materials.boxes[chunk.isGhost ? 1 : 0]);
        mesh.position.copy(chunk.sphere.center);
        mesh.frustumCulled = false;
        mesh.renderOrder = chunk.isGhost ? 1 : 0;
        scene.add(mesh);
        return mesh;
    }

    /** Writes the corners of a placed box, relative to the center of the chunk. */
    function writeCorners(shape, matrix, origin, array, offset) {
        const { min, max } = shape.bounds;
        for (let corner = 0; corner < 8; ++corner) {
            const x = corner & 1 ? max[0] : min[0];
            const y = corner & 2 ? max[1] : min[1];
            const z = corner & 4 ? max[2] : min[2];
            for (let k = 0; k < 3; ++k) {
                array[offset++] = matrix[k] * x + matrix[3 + k] * y + matrix[6 + k] * z
                    + (matrix[9 + k] - origin[k]);
            }
        }
    }

    function writePlaces(chunk) {
        const position = chunk.box.geometry.attributes.position;
        const origin = chunk.sphere.center.toArray();
        chunk.shown.forEach((item, slot) =>
            writeCorners(chunk.shape, item.matrix, origin, position.array, 24 * slot));
        position.needsUpdate = true;
    }

    function writeTints(chunk) {
        const tint = chunk.box.geometry.attributes.tint;
        const words = new Uint32Array(tint.array.buffer);
        const colours = new Uint32Array(chunk.tints.array.buffer);
        for (let i = 0; i < 8 * chunk.shown.length; ++i) words[i] = colours[i >> 3];
        tint.needsUpdate = true;
    }

    /** The mesh of a chunk's boxes, made and brought up to date when it is drawn. */
    viewer.boxesOf = function (chunk, scene, materials) {
        chunk.box = chunk.box || makeMesh(chunk, scene, materials);
        if (chunk.arePlacesNew) writePlaces(chunk);
        if (chunk.areTintsNew) writeTints(chunk);
        chunk.arePlacesNew = chunk.areTintsNew = false;
        return chunk.box;
    };
})(window.viewer);
