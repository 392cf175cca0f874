// Draws the scene, only when something has changed.
//
// While the camera moves, a frame has as many triangles as were drawn in 30 ms before, or in 80 ms
// by a software renderer. When it rests, the still picture is drawn in full, in slices of 200 ms:
// each adds to the picture, and the next motion ends it. So no slow renderer blocks the page.
(function (viewer) {
    'use strict';

    const movingTime = 30;
    const slowMovingTime = 80;
    const slowSpeed = 10000;  // triangles in a millisecond
    const sliceTime = 200;
    const settleTime = 200;
    const minBudget = 50000;
    // A browser reports each wait in its console, so small frames are not measured.
    const minMeasured = 20000;

    function makeRenderer(canvas) {
        const renderer = new THREE.WebGLRenderer({
            canvas: canvas, antialias: true, preserveDrawingBuffer: true,
        });
        renderer.setPixelRatio(Math.min(window.devicePixelRatio || 1, 2));
        renderer.autoClear = false;
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
        let perMillisecond = 1000;
        let isMeasured = false;
        return {
            budget: (time) => Math.max(minBudget, perMillisecond * time),
            movingTime: () => (perMillisecond < slowSpeed ? slowMovingTime : movingTime),
            note: (cost, time) => {
                const last = cost / Math.max(time, 0.5);
                perMillisecond = isMeasured ? (perMillisecond + last) / 2 : last;
                isMeasured = true;
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
        const view = { frames: 0, firstTime: 0, worstTime: 0, isStill: false,
            drawn: viewer.makeSignal() };
        let requested = 0;
        let settle = 0;
        let current = null;
        let rest = [];

        function setUp() {
            current = camera.update(sphere);
            setEye(materials.uniforms, current.position);
            section.setUniforms(materials.uniforms, current.position);
            renderer.clear();
            labels.update();
        }

        /** Draws what is chosen, and measures it. */
        function draw(choose) {
            const start = performance.now();
            const choice = choose();
            renderer.render(drawing.scene, current);
            const isMeasured = choice.cost >= minMeasured;
            if (isMeasured) finish(renderer);
            const time = performance.now() - start;
            view.worstTime = Math.max(view.worstTime, time);
            // Since the browser began to load the page.
            view.firstTime = view.firstTime || performance.now();
            ++view.frames;
            if (isMeasured) speed.note(choice.cost, time);
            view.drawn.emit(choice);
            return choice;
        }

        function drawDraft() {
            setUp();
            const boxesOf = (chunk) => viewer.boxesOf(chunk, drawing.scene, materials);
            const budget = speed.budget(speed.movingTime());
            return draw(() => viewer.chooseDraft(drawing.chunks, camera, budget, boxesOf));
        }

        function drawSlice() {
            draw(() => viewer.chooseSlice(drawing.chunks, rest, speed.budget(sliceTime)));
            view.isStill = rest.length === 0;
        }

        function beginStill() {
            setUp();
            rest = viewer.listStill(drawing.chunks, camera);
            drawSlice();
        }

        function nextFrame(action) {
            requested = requestAnimationFrame(() => { requested = 0; action(); });
        }

        function continueStill() {
            if (view.isStill) return;
            drawSlice();
            nextFrame(continueStill);
        }

        /** Ends a still picture that is being drawn. */
        function interrupt() {
            clearTimeout(settle);
            cancelAnimationFrame(requested);
            view.isStill = false;
        }

        function drawMoving() {
            const choice = drawDraft();
            view.isStill = choice.boxes === 0;
            if (view.isStill) return;
            settle = setTimeout(() => nextFrame(() => {
                beginStill();
                nextFrame(continueStill);
            }), settleTime);
        }

        /** Asks for a frame that is quick, and for the still picture after it. */
        function request() {
            interrupt();
            nextFrame(drawMoving);
        }

        /** Draws the still picture as a whole. */
        function drawAll() {
            interrupt();
            beginStill();
            while (!view.isStill) drawSlice();
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
            drawNow: () => { interrupt(); drawMoving(); },
            setBackground: (colour) => { renderer.setClearColor(colour, 1); request(); },
            /** The picture as a PNG, passed to a function. */
            takePicture: (receive) => {
                drawAll();
                canvas.toBlob(receive, 'image/png');
            },
            /** Bytes of a pixel, counted from the upper left corner in CSS pixels. */
            pixel: (x, y) => {
                drawAll();
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
