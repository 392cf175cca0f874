// The section plane: what is on its positive side is not drawn.
(function (viewer) {
    'use strict';

    const axes = ['x', 'y', 'z'];

    /** The section through a box; axis is -1 while there is none. */
    viewer.makeSection = function (bounds) {
        const state = { axis: -1, position: 0, isFlipped: false };
        const sign = () => (state.isFlipped ? -1 : 1);

        return {
            state: state,
            range: () => [bounds.min[state.axis], bounds.max[state.axis]],
            /** Puts the plane across an axis, in the middle; the same axis again removes it. */
            setAxis: (axis) => {
                state.axis = axis === state.axis ? -1 : axis;
                if (state.axis < 0) return;
                state.position = (bounds.min[state.axis] + bounds.max[state.axis]) / 2;
            },
            setUniforms: (uniforms, eye) => {
                uniforms.isCut.value = state.axis < 0 ? 0 : 1;
                uniforms.cut.value.set(0, 0, 0, 1);
                if (state.axis < 0) return;
                const name = axes[state.axis];
                uniforms.cut.value[name] = sign();
                uniforms.cut.value.w = sign() * (state.position - eye[name]);
            },
            /** The part of a ray that is not cut away: the smallest and the greatest distance. */
            limit: (ray) => {
                if (state.axis < 0) return [0, Infinity];
                const slope = sign() * ray.direction[state.axis];
                const start = sign() * (ray.origin[state.axis] - state.position);
                if (slope === 0) return start > 0 ? [Infinity, Infinity] : [0, Infinity];
                const at = -start / slope;
                return slope > 0 ? [0, at] : [Math.max(0, at), Infinity];
            },
        };
    };

    /** The panel of the section: axis, position, side. */
    viewer.connectSection = function (section, changed) {
        const panel = document.getElementById('section-panel');
        const slider = document.getElementById('section-slider');
        const field = document.getElementById('section-position');

        function show() {
            panel.hidden = section.state.axis < 0;
            axes.forEach((name, i) => document.getElementById(`section-${name}`)
                .setAttribute('aria-pressed', String(i === section.state.axis)));
            if (section.state.axis >= 0) {
                [slider.min, slider.max] = section.range().map(String);
                slider.step = String((slider.max - slider.min) / 400 || 1);
                slider.value = String(section.state.position);
                field.value = viewer.numberText(section.state.position);
            }
            changed();
        }

        function setPosition(text) {
            const position = Number(text);
            if (text === '' || !Number.isFinite(position)) return;
            section.state.position = position;
            changed();
        }

        slider.addEventListener('input', () => {
            setPosition(slider.value);
            field.value = viewer.numberText(section.state.position);
        });
        field.addEventListener('input', () => {
            setPosition(field.value);
            slider.value = field.value;
        });
        return {
            setAxis: (axis) => { section.setAxis(axis); show(); },
            flip: () => { section.state.isFlipped = !section.state.isFlipped; show(); },
            /** Moves the plane by a share of the range. */
            move: (share) => {
                if (section.state.axis < 0) return;
                const [min, max] = section.range();
                const position = section.state.position + share * (max - min);
                section.state.position = Math.min(max, Math.max(min, position));
                show();
            },
        };
    };
})(window.viewer);
