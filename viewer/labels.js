// Texts in the drawing: elements over the canvas, because a text from a file is never markup and
// stays sharp. Only the labels near the eye are shown.
(function (viewer) {
    'use strict';

    const maxLabels = 40;

    function makeElement(layer, label) {
        const element = document.createElement('div');
        element.className = `label label-${label.kind}`;
        element.textContent = label.text;
        element.title = label.text;
        layer.append(element);
        return element;
    }

    /** The labels that are shown, the nearest to the eye, at most 40. */
    function choose(labels, eye) {
        const shown = labels.filter((label) => label.isShown());
        if (shown.length <= maxLabels) return shown;
        const distances = new Map(shown.map((label) => [label, label.at.distanceToSquared(eye)]));
        return shown.sort((a, b) => distances.get(a) - distances.get(b)).slice(0, maxLabels);
    }

    /**
     * The labels of the drawing.
     *
     * @param layer  the element over the canvas
     * @return add() takes kind, text, a point and a function that says whether it is shown
     */
    viewer.makeLabels = function (layer, camera) {
        const labels = [];
        const elements = new Map();

        function place(label) {
            const pixel = camera.pixelOf(label.at);
            const element = elements.get(label) || makeElement(layer, label);
            elements.set(label, element);
            element.hidden = pixel === null;
            if (pixel) {
                element.style.transform =
                    `translate(${pixel[0].toFixed(1)}px, ${pixel[1].toFixed(1)}px)`;
            }
        }

        function update() {
            const chosen = new Set(choose(labels, camera.current.position));
            for (const [label, element] of elements) {
                if (chosen.has(label)) continue;
                element.remove();
                elements.delete(label);
            }
            chosen.forEach(place);
        }

        return {
            add: (label) => labels.push(label),
            clear: () => { labels.length = 0; },
            update: update,
        };
    };
})(window.viewer);
