// What is drawn in full, and what as boxes: as many triangles as the time of a frame allows.
(function (viewer) {
    'use strict';

    // Costs in the time of a triangle. That of an instance is measured in a software renderer.
    const boxCost = 12;
    const edgeCost = 0.5;
    const instanceCost = 100;
    const drawCost = 100;

    function costOf(chunk) {
        const { faces, edges } = chunk.shape.attributes;
        const cost = instanceCost + faces.count / 3 + edgeCost * edges.count / 2;
        return drawCost + chunk.shown.length * cost;
    }

    function setFull(chunk, isFull) {
        const { faces, edges } = chunk;
        faces.visible = isFull;
        edges.visible = isFull && chunk.shape.attributes.edges.count > 0;
        faces.geometry.maxInstancedCount = chunk.shown.length;
        edges.geometry.maxInstancedCount = chunk.shown.length;
    }

    /** Draws a share of a chunk's boxes. */
    function setBoxes(chunk, share, boxesOf) {
        const count = Math.ceil(share * chunk.shown.length);
        const box = boxesOf(chunk);
        box.visible = true;
        box.geometry.setDrawRange(0, 36 * count);
        return chunk.shown.length - count;
    }

    function hideAll(chunks) {
        for (const chunk of chunks) {
            setFull(chunk, false);
            if (chunk.box) chunk.box.visible = false;
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

    function boxCostOf(chunk) {
        return drawCost + boxCost * chunk.shown.length;
    }

    /**
     * Chooses what a frame of a moving camera draws: the largest in full, the others as boxes, and
     * if the time is too short for them, only a share of the boxes.
     *
     * @param budget   triangles that the frame may have
     * @param boxesOf  the mesh of a chunk's boxes
     * @return its cost in triangles; how many placements are boxes, and how many are left out
     */
    viewer.chooseDraft = function (chunks, camera, budget, boxesOf) {
        hideAll(chunks);
        const visible = inView(chunks, camera);
        const choice = { cost: visible.reduce((sum, chunk) => sum + boxCostOf(chunk), 0), boxes: 0,
            omitted: 0 };
        const share = Math.min(1, budget / choice.cost);
        for (const chunk of visible) {
            const extra = costOf(chunk) - boxCostOf(chunk);
            if (choice.cost + extra <= budget) {
                choice.cost += extra;
                setFull(chunk, true);
            } else {
                choice.boxes += chunk.shown.length;
                choice.omitted += setBoxes(chunk, share, boxesOf);
            }
        }
        choice.cost *= share;
        return choice;
    };

    /** What a still picture draws: everything in the view, ghosts last. */
    viewer.listStill = function (chunks, camera) {
        const visible = inView(chunks, camera);
        return [...visible.filter((chunk) => !chunk.isGhost),
            ...visible.filter((chunk) => chunk.isGhost)];
    };

    /**
     * Chooses the next part of a still picture and removes it from a list.
     *
     * @return its cost in triangles
     */
    viewer.chooseSlice = function (chunks, list, budget) {
        hideAll(chunks);
        let cost = 0;
        while (list.length > 0 && (cost === 0 || cost + costOf(list[0]) <= budget)) {
            const chunk = list.shift();
            cost += costOf(chunk);
            setFull(chunk, true);
        }
        return { cost: cost, boxes: 0, omitted: 0 };
    };
})(window.viewer);
