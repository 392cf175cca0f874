// Clicks, taps and the pointer over the canvas. OrbitControls has what drags, wheels and pinches.
(function (viewer) {
    'use strict';

    const clickPixels = 5;
    const doubleTime = 400;  // milliseconds

    function distanceOf(a, b) {
        return Math.hypot(a[0] - b[0], a[1] - b[1]);
    }

    /**
     * Connects the canvas with actions.
     *
     * @param actions  click(x, y), doubleClick(x, y), hover(x, y), leave(); pixels of the canvas
     */
    viewer.connectPointer = function (canvas, actions) {
        const down = new Set();
        let start = null;   // the place of a press that may become a click
        let last = { time: -Infinity, place: [0, 0] };

        const placeOf = (event) => {
            const box = canvas.getBoundingClientRect();
            return [event.clientX - box.left, event.clientY - box.top];
        };

        function click(event) {
            const place = placeOf(event);
            if (!start || distanceOf(start, place) >= clickPixels) return;
            const isDouble = event.timeStamp - last.time < doubleTime
                && distanceOf(last.place, place) < 4 * clickPixels;
            last = { time: isDouble ? -Infinity : event.timeStamp, place: place };
            (isDouble ? actions.doubleClick : actions.click)(...place);
        }

        canvas.addEventListener('pointerdown', (event) => {
            down.add(event.pointerId);
            const isPlain = event.button === 0 && !event.shiftKey && !event.ctrlKey;
            start = isPlain && down.size === 1 ? placeOf(event) : null;
        });
        canvas.addEventListener('pointermove', (event) => {
            if (start && distanceOf(start, placeOf(event)) >= clickPixels) start = null;
            if (event.buttons === 0 && event.pointerType !== 'touch') {
                actions.hover(...placeOf(event));
            }
        });
        canvas.addEventListener('pointerup', (event) => {
            down.delete(event.pointerId);
            if (down.size === 0) click(event);
        });
        canvas.addEventListener('pointercancel', (event) => {
            down.delete(event.pointerId);
            start = null;
        });
        canvas.addEventListener('pointerleave', actions.leave);
    };
})(window.viewer);
