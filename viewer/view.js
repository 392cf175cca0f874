// Draws the scene, only when something has changed.
//
// While the camera moves, a frame has the triangles that were drawn in 30 ms before. A second later
// the still picture follows, with those of 500 ms.
(function (viewer) {
    'use strict';

    const movingTime = 30;
    const stillTime = 500;
    const settleTime = 250;
    const minBudget = 100000;
    // Smaller frames say little about the speed.
    const minMeasured = 50000;

    function makeRenderer(canvas) {
        const renderer = new THREE.WebGLRenderer({ canvas: canvas, antialias: true });
        renderer.setPixelRatio(Math.min(window.devicePixelRatio || 1, 2));
        return renderer;
    }

    /** Waits until the graphics hardware has finished. Reading a pixel does that. */
    function finish(renderer) {
        const gl = renderer.getContext();
        gl.readPixels(0, 0, 1, 1, gl.RGBA, gl.UNSIGNED_BYTE, new Uint8Array(4));
    }

    function setEye(uniforms, eye) {
        ['x', 'y', 'z'].forEach((key) => {
            const [high, low] = viewer.splitDouble(eye[key]);
            uniforms.eyeHigh.value[key] = high;
            uniforms.eyeLow.value[key] = low;
        });
    }

    /** The number of triangles that fit in a time, from the frames measured before. */
    function makeSpeed() {
        let perMillisecond = 5000;
        return {
            budget: (time) => Math.max(minBudget, perMillisecond * time),
            note: (cost, time) => {
                if (cost < minMeasured) return;
                perMillisecond += (cost / Math.max(time, 0.5) - perMillisecond) / 2;
            },
        };
    }

    /**
     * The view of a drawing.
     *
     * @param section  of makeSection()
     * @param sphere   encloses everything that can be drawn
     */
    viewer.makeView = function (canvas, drawing, camera, materials, section, labels, sphere) {
        const renderer = makeRenderer(canvas);
        const speed = makeSpeed();
        const view = { frames: 0, lastTime: 0, worstTime: 0, boxes: 0,
            drawn: viewer.makeSignal() };
        let requested = 0;
        let settle = 0;

        function draw(time) {
            const current = camera.update(sphere);
            setEye(materials.uniforms, current.position);
            section.setUniforms(materials.uniforms, current.position);
            const choice = viewer.chooseDetail(drawing.chunks, camera, speed.budget(time));
            renderer.render(drawing.scene, current);
            labels.update();
            return choice;
        }

        function measure(time) {
            const start = performance.now();
            const choice = draw(time);
            finish(renderer);
            view.lastTime = performance.now() - start;
            view.worstTime = Math.max(view.worstTime, view.lastTime);
            ++view.frames;
            view.boxes = choice.boxes;
            speed.note(choice.cost, view.lastTime);
            view.drawn.emit(choice);
        }

        function requestStill() {
            clearTimeout(settle);
            settle = setTimeout(() => {
                cancelAnimationFrame(requested);
                requested = requestAnimationFrame(() => { requested = 0; measure(stillTime); });
            }, settleTime);
        }

        /** Asks for a frame that has to be quick, and for the still picture after it. */
        function request() {
            if (requested === 0) {
                requested = requestAnimationFrame(() => {
                    requested = 0;
                    measure(movingTime);
                    if (view.boxes > 0) requestStill();
                });
            }
        }

        function resize() {
            const { clientWidth, clientHeight } = canvas.parentElement;
            const width = Math.max(1, clientWidth), height = Math.max(1, clientHeight);
            renderer.setSize(width, height, false);
            camera.resize(width, height);
            request();
        }

        return Object.assign(view, {
            request: request,
            resize: resize,
            drawNow: () => measure(stillTime),
            setBackground: (colour) => { renderer.setClearColor(colour, 1); request(); },
            /** The picture as a PNG, passed to a function. The canvas is only filled while drawing. */
            takePicture: (receive) => {
                measure(stillTime);
                canvas.toBlob(receive, 'image/png');
            },
            /** Bytes of a pixel, counted from the upper left corner in CSS pixels. */
            pixel: (x, y) => {
                draw(stillTime);
                const gl = renderer.getContext();
                const ratio = renderer.getPixelRatio();
                const bytes = new Uint8Array(4);
                gl.readPixels(Math.floor(x * ratio),
                    gl.drawingBufferHeight - 1 - Math.floor(y * ratio), 1, 1, gl.RGBA,
                    gl.UNSIGNED_BYTE, bytes);
                return Array.from(bytes);
            },
        });
    };
})(window.viewer);
