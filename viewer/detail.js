// What is drawn in full, and what as boxes: as many triangles as the time of a frame allows.
(function (viewer) {
    'use strict';

    const boxTriangles = 12;
    // An edge takes about half the time of a triangle.
    const edgeCost = 0.5;

    function costOf(chunk) {
        const { faces, edges } = chunk.shape.attributes;
        return chunk.shown.length * (faces.count / 3 + edgeCost * edges.count / 2);
    }

    function setDetail(chunk, isFull, isBox) {
        const count = chunk.shown.length;
        const hasEdges = chunk.shape.attributes.edges.count > 0;
        chunk.faces.visible = isFull;
        chunk.edges.visible = isFull && hasEdges;
        chunk.box.visible = isBox;
        for (const mesh of [chunk.faces, chunk.edges, chunk.box]) {
            mesh.geometry.maxInstancedCount = count;
        }
    }

    /** The chunks in the view, those with the largest pictures first. */
    function inView(chunks, camera) {
        const frustum = camera.frustum();
        const visible = chunks.filter(
            (chunk) => chunk.shown.length > 0 && frustum.intersectsSphere(chunk.sphere));
        for (const chunk of visible) {
            chunk.picture = chunk.size / camera.mmPerPixelAt(chunk.sphere);
        }
        return visible.sort((a, b) => b.picture - a.picture);
    }

    /**
     * Chooses what the next frame draws.
     *
     * @param budget  triangles that the frame may have
     * @return its cost in triangles, and how many placements are drawn as boxes
     */
    viewer.chooseDetail = function (chunks, camera, budget) {
        chunks.forEach((chunk) => setDetail(chunk, false, false));
        const visible = inView(chunks, camera);
        let cost = visible.reduce((sum, chunk) => sum + boxTriangles * chunk.shown.length, 0);
        let boxes = 0;
        for (const chunk of visible) {
            const extra = costOf(chunk) - boxTriangles * chunk.shown.length;
            const isFull = extra <= 0 || cost + extra <= budget;
            setDetail(chunk, isFull, !isFull);
            if (isFull) cost += extra;
            else boxes += chunk.shown.length;
        }
        return { cost: cost, boxes: boxes };
    };
})(window.viewer);
