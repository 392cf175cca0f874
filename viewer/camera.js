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
    viewer.makeCamera = function (canvas, changed) {
        const { perspective, parallel } = makeCameras();
        const controls = makeControls(perspective, canvas);
        let width = 1;
        let height = 1;
        controls.addEventListener('change', changed);

        const current = () => controls.object;
        const isParallel = () => current() === parallel;
        const distance = () => current().position.distanceTo(controls.target);
        // The height at the target is that of the picture. A parallel camera has a zoom instead.
        const halfHeight = () => distance() * tangent / current().zoom;
        const azimuth = () => controls.getAzimuthalAngle();
        const elevation = () => quarter - controls.getPolarAngle();

        function place(newAzimuth, newElevation, newDistance) {
            const up = Math.min(quarter, Math.max(-quarter, newElevation));
            current().position.copy(controls.target)
                .addScaledVector(directionOf(newAzimuth, up), newDistance);
            controls.update();
            changed();
        }

        function setFrame() {
            perspective.aspect = width / height;
            parallel.top = distance() * tangent;
            parallel.bottom = -parallel.top;
            parallel.right = parallel.top * perspective.aspect;
            parallel.left = -parallel.right;
        }

        /** The camera of three.js for the next frame; the sphere encloses what is drawn. */
        function update(sphere) {
            setFrame();
            setDepth(current(), distance(), sphere);
            current().updateProjectionMatrix();
            current().updateMatrixWorld(true);
            return current();
        }

        function pan(right, up) {
            const basis = basisOf(current());
            for (const point of [controls.target, current().position]) {
                point.addScaledVector(basis.right, right).addScaledVector(basis.up, up);
            }
            controls.update();
            changed();
        }

        return {
            current: current,
            update: update,
            isParallel: isParallel,
            state: () => ({
                target: controls.target.toArray(), distance: distance() / current().zoom,
                azimuth: azimuth(), elevation: elevation(), isParallel: isParallel(),
            }),
            resize: (newWidth, newHeight) => { width = newWidth; height = newHeight; },
            orbit: (x, y) => place(azimuth() + x, elevation() + y, distance()),
            /** Moves the picture by pixels. */
            panPixels: (x, y) => {
                const scale = 2 * halfHeight() / height;
                pan(-x * scale, y * scale);
            },
            zoom: (factor) => place(azimuth(), elevation(), distance() * factor),
            look: (name) => place(...viewer.standardViews[name], distance()),
            /** Looks from the same side with the other projection, at the same size. */
            toggleProjection: () => {
                const before = controls.object;
                const size = distance() / before.zoom;
                controls.object = isParallel() ? perspective : parallel;
                before.zoom = 1;
                place(azimuth(), elevation(), size);
            },
            fit: (bounds) => {
                const corners = cornersOf(bounds);
                const direction = [azimuth(), elevation()];
                controls.target.copy(corners[0]).lerp(corners[7], 0.5);
                current().zoom = 1;
                place(...direction, 1);
                const away = fittingDistance(corners, current(), controls.target, width / height);
                place(...direction, away > 0 ? away : 100);
            },
            frustum: () => new THREE.Frustum().setFromMatrix(new THREE.Matrix4().multiplyMatrices(
                current().projectionMatrix, current().matrixWorldInverse)),
            /** The length that a pixel shows at the near side of a sphere. */
            mmPerPixelAt: (sphere) => {
                if (isParallel()) return 2 * halfHeight() / height;
                const away = current().position.distanceTo(sphere.center) - sphere.radius;
                return 2 * Math.max(away, 1e-3) * tangent / height;
            },
            /** The ray through a point of the view (x and y from -1 to 1). */
            ray: (x, y) => {
                const { right, up, back } = basisOf(current());
                const sideways = right.multiplyScalar(x * halfHeight() * width / height)
                    .addScaledVector(up, y * halfHeight());
                const origin = current().position.clone();
                if (isParallel()) return { origin: origin.add(sideways), direction: back.negate() };
                const direction = sideways.addScaledVector(back, -distance());
                return { origin: origin, direction: direction.normalize() };
            },
            /** Pixels of a point, or null if it is not in front of the camera. */
            pixelOf: (point) => {
                const at = point.clone().project(current());
                if (!(Math.abs(at.z) <= 1)) return null;
                return [(at.x + 1) / 2 * width, (1 - at.y) / 2 * height];
            },
        };
    };
})(window.viewer);
