// The cameras: OrbitControls moves them by mouse and fingers, this file by keys and standard views.
// Lengths in mm, z is up.
(function (viewer) {
    'use strict';

    const fieldOfView = 30;
    const tangent = Math.tan(fieldOfView / 2 * Math.PI / 180);
    const margin = 1.08;
    const quarter = Math.PI / 2;

    /** Azimuth 0 looks from the front (along +y); azimuth 90 degrees from the right (along -x). */
    viewer.standardViews = {
        front: [0, 0],
        right: [quarter, 0],
        top: [0, quarter],
        iso: [Math.PI / 4, Math.atan(Math.SQRT1_2)],
    };

    /** The unit vector from the target to the eye. */
    function directionOf(azimuth, elevation) {
        const level = Math.cos(elevation);
        return new THREE.Vector3(level * Math.sin(azimuth), -level * Math.cos(azimuth),
            Math.sin(elevation));
    }

    /** Unit vectors of the view: to the right, up, and from the target to the eye. */
    function basisOf(camera) {
        const basis = { right: new THREE.Vector3(), up: new THREE.Vector3(),
            back: new THREE.Vector3() };
        camera.updateMatrixWorld(true);
        camera.matrixWorld.extractBasis(basis.right, basis.up, basis.back);
        return basis;
    }

    function cornersOf(bounds) {
        const corners = [];
        for (let i = 0; i < 8; ++i) {
            corners.push(new THREE.Vector3(...[0, 1, 2].map(
                (k) => (i >> k & 1 ? bounds.max : bounds.min)[k])));
        }
        return corners;
    }

    /** The smallest distance from which a camera sees all corners. */
    function fittingDistance(corners, camera, target, aspect) {
        const { right, up, back } = basisOf(camera);
        const distances = corners.map((corner) => {
            const at = corner.clone().sub(target);
            const side = Math.max(Math.abs(at.dot(right)) / aspect, Math.abs(at.dot(up))) / tangent;
            return side + (camera.isOrthographicCamera ? 0 : at.dot(back));
        });
        return margin * Math.max(...distances);
    }

    /** Sets near and far so that they enclose a sphere with the best depth resolution. */
    function setDepth(camera, distance, sphere) {
        const { back } = basisOf(camera);
        const depth = -sphere.center.clone().sub(camera.position).dot(back);
        const near = depth - sphere.radius;
        camera.far = Math.max(depth + sphere.radius, distance) * 1.01;
        camera.near = Math.max(near, camera.far / 20000);
        if (!camera.isOrthographicCamera) return;
        // A parallel view also shows what is beside and behind the eye.
        camera.near = near - sphere.radius;
        camera.far += sphere.radius;
    }

    function makeControls(camera, canvas) {
        const controls = new THREE.OrbitControls(camera, canvas);
        controls.enableKeys = false;
        controls.screenSpacePanning = true;
        return controls;
    }

    function makeCameras() {
        const perspective = new THREE.PerspectiveCamera(fieldOfView, 1, 1, 1000);
        const parallel = new THREE.OrthographicCamera(-1, 1, 1, -1, 1, 1000);
        for (const camera of [perspective, parallel]) {
            camera.up.set(0, 0, 1);
            camera.position.copy(directionOf(...viewer.standardViews.iso));
        }
        return { perspective: perspective, parallel: parallel };
    }

    /** The camera of a canvas; it calls `changed` when it has moved. */
    viewer.Camera = class {
        constructor(canvas, changed) {
            Object.assign(this, makeCameras(), { width: 1, height: 1, changed: changed });
            this.controls = makeControls(this.perspective, canvas);
            this.controls.addEventListener('change', changed);
        }

        /** The camera of three.js that is in use. */
        get current() { return this.controls.object; }
        get target() { return this.controls.target; }
        get isParallel() { return this.current === this.parallel; }
        get distance() { return this.current.position.distanceTo(this.target); }
        get azimuth() { return this.controls.getAzimuthalAngle(); }
        get elevation() { return quarter - this.controls.getPolarAngle(); }
        get aspect() { return this.width / this.height; }

        /** Half of the height that the picture has at the target. */
        get halfHeight() { return this.distance * tangent / this.current.zoom; }

        get state() {
            return {
                target: this.target.toArray(), distance: this.distance / this.current.zoom,
                azimuth: this.azimuth, elevation: this.elevation, isParallel: this.isParallel,
            };
        }

        resize(width, height) {
            Object.assign(this, { width: width, height: height });
        }

        /** Puts the eye at two angles and a distance from the target. */
        place(azimuth, elevation, distance) {
            const up = Math.min(quarter, Math.max(-quarter, elevation));
            this.current.position.copy(this.target)
                .addScaledVector(directionOf(azimuth, up), distance);
            this.controls.update();
            this.changed();
        }

        /** The camera of three.js for the next frame; the sphere encloses what is drawn. */
        update(sphere) {
            const { perspective, parallel } = this;
            perspective.aspect = this.aspect;
            parallel.top = this.distance * tangent;
            parallel.bottom = -parallel.top;
            parallel.right = parallel.top * this.aspect;
            parallel.left = -parallel.right;
            setDepth(this.current, this.distance, sphere);
            this.current.updateProjectionMatrix();
            this.current.updateMatrixWorld(true);
            return this.current;
        }

        orbit(x, y) {
            this.place(this.azimuth + x, this.elevation + y, this.distance);
        }

        /** Moves the picture by pixels. */
        pan(x, y) {
            const scale = 2 * this.halfHeight / this.height;
            const { right, up } = basisOf(this.current);
            for (const point of [this.target, this.current.position]) {
                point.addScaledVector(right, -x * scale).addScaledVector(up, y * scale);
            }
            this.controls.update();
            this.changed();
        }

        zoom(factor) {
            this.place(this.azimuth, this.elevation, this.distance * factor);
        }

        look(name) {
            this.place(...viewer.standardViews[name], this.distance);
        }

        /** Looks from the same side with the other projection, at the same size. */
        toggleProjection() {
            const { state } = this;
            this.current.zoom = 1;
            this.controls.object = state.isParallel ? this.perspective : this.parallel;
            this.place(state.azimuth, state.elevation, state.distance);
        }

        fit(bounds) {
            const { azimuth, elevation } = this;
            const corners = cornersOf(bounds);
            this.target.copy(corners[0]).lerp(corners[7], 0.5);
            this.current.zoom = 1;
            this.place(azimuth, elevation, 1);
            const distance = fittingDistance(corners, this.current, this.target, this.aspect);
            this.place(azimuth, elevation, distance > 0 ? distance : 100);
        }

        frustum() {
            const { projectionMatrix, matrixWorldInverse } = this.current;
            return new THREE.Frustum().setFromMatrix(
                new THREE.Matrix4().multiplyMatrices(projectionMatrix, matrixWorldInverse));
        }

        /** The length that a pixel shows at the near side of a sphere. */
        mmPerPixelAt(sphere) {
            if (this.isParallel) return 2 * this.halfHeight / this.height;
            const away = this.current.position.distanceTo(sphere.center) - sphere.radius;
            return 2 * Math.max(away, 1e-3) * tangent / this.height;
        }

        /** The ray through a point of the view (x and y from -1 to 1). */
        ray(x, y) {
            const { right, up, back } = basisOf(this.current);
            const sideways = right.multiplyScalar(x * this.halfHeight * this.aspect)
                .addScaledVector(up, y * this.halfHeight);
            const origin = this.current.position.clone();
            if (this.isParallel) return { origin: origin.add(sideways), direction: back.negate() };
            const direction = sideways.addScaledVector(back, -this.distance);
            return { origin: origin, direction: direction.normalize() };
        }

        /** Pixels of a point, or null if it is not in front of the camera. */
        pixelOf(point) {
            const at = point.clone().project(this.current);
            if (!(Math.abs(at.z) <= 1)) return null;
            return [(at.x + 1) / 2 * this.width, (1 - at.y) / 2 * this.height];
        }
    };
})(window.viewer);
