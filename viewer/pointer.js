// Mouse, pen and fingers on the canvas.
(function (viewer) {
    'use strict';

    const clickPixels = 5;
    const orbitPerPixel = 0.008;

    function middleOf(pointers) {
        const all = [...pointers.values()];
        return [0, 1].map((k) => all.reduce((sum, at) => sum + at[k], 0) / all.length);
    }

    function spreadOf(pointers) {
        const [a, b] = [...pointers.values()];
        return b ? Math.hypot(a[0] - b[0], a[1] - b[1]) : 0;
    }

    /**
     * Connects the canvas with the camera.
     *
     * @param actions  changed(), click(x, y), doubleClick(x, y), hover(x, y), leave(); pixels of
     *                 the canvas
     */
    viewer.connectPointer = function (canvas, camera, actions) {
        const pointers = new Map();
        let travelled = 0;
        let isPan = false;

        const placeOf = (event) => {
            const box = canvas.getBoundingClientRect();
            return [event.clientX - box.left, event.clientY - box.top];
        };
        const share = ([x, y]) =>
            [2 * x / canvas.clientWidth - 1, 1 - 2 * y / canvas.clientHeight];

        function drag(before, after) {
            if (isPan || pointers.size > 1) camera.panPixels(...after.map((x, k) => x - before[k]));
            else {
                camera.orbit(...after.map((x, k) => (before[k] - x) * orbitPerPixel)
                    .map((x, k) => (k === 0 ? x : -x)));
            }
        }

        function moveDown(event) {
            const before = middleOf(pointers);
            const spreadBefore = spreadOf(pointers);
            pointers.set(event.pointerId, placeOf(event));
            const after = middleOf(pointers);
            travelled += Math.hypot(after[0] - before[0], after[1] - before[1]);
            if (travelled < clickPixels && pointers.size === 1) return;
            drag(before, after);
            if (pointers.size === 2 && spreadOf(pointers) > 0) {
                camera.zoom(spreadBefore / spreadOf(pointers), ...share(after));
                travelled += clickPixels;
            }
            actions.changed();
        }

        function end(event) {
            const isLast = pointers.delete(event.pointerId) && pointers.size === 0;
            if (isLast && travelled < clickPixels && !isPan && event.type === 'pointerup') {
                actions.click(...placeOf(event));
            }
        }

        canvas.addEventListener('pointerdown', (event) => {
            canvas.focus({ preventScroll: true });
            canvas.setPointerCapture(event.pointerId);
            if (pointers.size === 0) travelled = 0;
            isPan = event.button !== 0 || event.shiftKey || event.ctrlKey;
            pointers.set(event.pointerId, placeOf(event));
        });
        canvas.addEventListener('pointermove', (event) => {
            if (pointers.has(event.pointerId)) moveDown(event);
            else if (event.pointerType !== 'touch') actions.hover(...placeOf(event));
        });
        canvas.addEventListener('pointerup', end);
        canvas.addEventListener('pointercancel', end);
        canvas.addEventListener('pointerleave', actions.leave);
        canvas.addEventListener('dblclick', (event) => actions.doubleClick(...placeOf(event)));
        canvas.addEventListener('contextmenu', (event) => event.preventDefault());
        canvas.addEventListener('wheel', (event) => {
            event.preventDefault();
            const lines = event.deltaMode === 1 ? 20 : 1;
            camera.zoom(Math.exp(event.deltaY * lines * 0.0012), ...share(placeOf(event)));
            actions.changed();
        }, { passive: false });
        return { share: share };
    };
})(window.viewer);
