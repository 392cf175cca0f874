// The distance between two points that are picked.
(function (viewer) {
    'use strict';

    function makeLine(scene, colours) {
        const geometry = new THREE.BufferGeometry();
        geometry.setAttribute('position', new THREE.Float32BufferAttribute(new Float32Array(6), 3));
        const material = new THREE.LineBasicMaterial({
            color: colours.number('measure'), depthTest: false,
        });
        const line = new THREE.LineSegments(geometry, material);
        line.frustumCulled = false;
        line.renderOrder = 3;
        line.visible = false;
        scene.add(line);
        return line;
    }

    /** The end is relative to the start, which keeps single precision exact far from the origin. */
    function setLine(line, from, to) {
        line.position.set(...from);
        line.geometry.attributes.position.array.set([0, 0, 0, ...to.map((x, k) => x - from[k])]);
        line.geometry.attributes.position.needsUpdate = true;
        line.visible = true;
    }

    function textOf(points) {
        if (points.length === 0) return 'Pick the first point.';
        const first = points[0].map(viewer.numberText).join('  ');
        if (points.length === 1) return `From ${first}. Pick the second point.`;
        const parts = points[1].map((x, k) => x - points[0][k]);
        const texts = parts.map((x, k) => `Δ${'xyz'[k]} ${viewer.numberText(x)}`);
        return `${viewer.numberText(Math.hypot(...parts))} mm (${texts.join(', ')})`;
    }

    viewer.makeMeasure = function (scene, labels, colours, changed) {
        const panel = document.getElementById('measure-panel');
        const output = document.getElementById('measure-text');
        const line = makeLine(scene, colours);
        const measure = { isOn: false, points: [] };

        function show() {
            panel.hidden = !measure.isOn;
            document.getElementById('crosshair').hidden = !measure.isOn;
            output.textContent = textOf(measure.points);
            line.visible = measure.isOn && measure.points.length === 2;
            if (line.visible) setLine(line, ...measure.points);
            changed();
        }

        [0, 1].forEach((index) => labels.add({
            kind: 'point',
            text: index === 0 ? 'A' : 'B',
            at: new THREE.Vector3(),
            isShown() {
                const point = measure.isOn && measure.points[index];
                if (point) this.at.set(...point);
                return Boolean(point);
            },
        }));

        return Object.assign(measure, {
            text: () => output.textContent,
            toggle: () => {
                measure.isOn = !measure.isOn;
                measure.points = [];
                show();
            },
            /** Takes the next point; a third one begins again. */
            add: (point) => {
                measure.points = measure.points.length === 2 ? [point] : [...measure.points, point];
                show();
            },
            readColours: () => line.material.color.set(colours.number('measure')),
        });
    };
})(window.viewer);
