// Draws the scene, only when something has changed.
//
// While the camera moves, a frame has as many triangles as were drawn in 30 ms before, or in 80 ms
// by a software renderer. When it rests, the still picture is drawn in full, in slices of 120 ms:
// each adds to the picture, and the next motion ends it. So no slow renderer blocks the page.
(function (viewer) {
    'use strict';

    const movingTime = 30;
    const slowMovingTime = 80;
    const slowSpeed = 10000;  // triangles in a millisecond
    const sliceTime = 120;
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

    /** The view of a drawing. */
    viewer.View = class {
        /**
         * @param parts   drawing, camera, materials, section, labels
         * @param sphere  encloses everything that can be drawn
         */
        constructor(canvas, parts, sphere) {
            Object.assign(this, parts, {
                canvas: canvas, sphere: sphere, renderer: makeRenderer(canvas), speed: makeSpeed(),
                frames: 0, firstTime: 0, worstTime: 0, isStill: false, drawn: viewer.makeSignal(),
                current: null,  // the camera of the last frame
                rest: [],       // the chunks that the still picture lacks
                requested: 0, settle: 0,
            });
            canvas.addEventListener('webglcontextrestored', () => this.request());
        }

        setUp() {
            this.current = this.camera.update(this.sphere);
            setEye(this.materials.uniforms, this.current.position);
            this.section.setUniforms(this.materials.uniforms, this.current.position);
            this.renderer.clear();
            this.labels.update();
        }

        /** Draws what is chosen, and measures it. */
        draw(choose) {
            const start = performance.now();
            const choice = choose();
            this.renderer.render(this.drawing.scene, this.current);
            const isMeasured = choice.cost >= minMeasured;
            if (isMeasured) finish(this.renderer);
            const time = performance.now() - start;
            this.worstTime = Math.max(this.worstTime, time);
            // Since the browser began to load the page.
            this.firstTime = this.firstTime || performance.now();
            ++this.frames;
            if (isMeasured) this.speed.note(choice.cost, time);
            this.drawn.emit(choice);
            return choice;
        }

        drawDraft() {
            this.setUp();
            const { drawing, materials, camera, speed } = this;
            const boxesOf = (chunk) => viewer.boxesOf(chunk, drawing.scene, materials);
            const budget = speed.budget(speed.movingTime());
            return this.draw(() => viewer.chooseDraft(drawing.chunks, camera, budget, boxesOf));
        }

        drawSlice() {
            this.draw(() => viewer.chooseSlice(this.drawing.chunks, this.rest,
                this.speed.budget(sliceTime)));
            this.isStill = this.rest.length === 0;
        }

        beginStill() {
            this.setUp();
            this.rest = viewer.listStill(this.drawing.chunks, this.camera);
            this.drawSlice();
        }

        nextFrame(action) {
            this.requested = requestAnimationFrame(action);
        }

        continueStill() {
            if (this.isStill) return;
            this.drawSlice();
            this.nextFrame(() => this.continueStill());
        }

        /** Ends a still picture that is being drawn. */
        interrupt() {
            clearTimeout(this.settle);
            cancelAnimationFrame(this.requested);
            this.isStill = false;
        }

        drawMoving() {
            const choice = this.drawDraft();
            this.isStill = choice.boxes === 0;
            if (this.isStill) return;
            this.settle = setTimeout(() => this.nextFrame(() => {
                this.beginStill();
                this.nextFrame(() => this.continueStill());
            }), settleTime);
        }

        /** Draws a frame that is quick, and asks for the still picture after it. */
        drawNow() {
            this.interrupt();
            this.drawMoving();
        }

        /** Asks for a frame that is quick, and for the still picture after it. */
        request() {
            this.interrupt();
            this.nextFrame(() => this.drawMoving());
        }

        /** Draws the still picture as a whole. */
        drawAll() {
            this.interrupt();
            this.beginStill();
            while (!this.isStill) this.drawSlice();
        }

        resize() {
            const { clientWidth, clientHeight } = this.canvas.parentElement;
            const width = Math.max(1, clientWidth), height = Math.max(1, clientHeight);
            this.renderer.setSize(width, height, false);
            this.camera.resize(width, height);
            this.request();
        }

        setBackground(colour) {
            this.renderer.setClearColor(colour, 1);
            this.request();
        }

        /** The picture as a PNG, passed to a function. */
        takePicture(receive) {
            this.drawAll();
            this.canvas.toBlob(receive, 'image/png');
        }

        /** Bytes of a pixel, counted from the upper left corner in CSS pixels. */
        pixel(x, y) {
            this.drawAll();
            const gl = this.renderer.getContext();
            const ratio = this.renderer.getPixelRatio();
            const bytes = new Uint8Array(4);
            gl.readPixels(Math.floor(x * ratio), gl.drawingBufferHeight - 1 - Math.floor(y * ratio),
                1, 1, gl.RGBA, gl.UNSIGNED_BYTE, bytes);
            return Array.from(bytes);
        }
    };
})(window.viewer);
