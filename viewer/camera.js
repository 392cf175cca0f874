// The camera: a point that it looks at, a distance and two angles. Lengths in mm, z is up.
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

    /** Unit vectors of the view: to the right, up, and from the target to the eye. */
    function basisOf(state) {
        const sa = Math.sin(state.azimuth), ca = Math.cos(state.azimuth);
        const se = Math.sin(state.elevation), ce = Math.cos(state.elevation);
        return {
            right: new THREE.Vector3(ca, sa, 0),
            up: new THREE.Vector3(-se * sa, se * ca, ce),
            back: new THREE.Vector3(ce * sa, -ce * ca, se),
        };
    }

    function cornersOf(bounds) {
        const corners = [];
        for (let i = 0; i < 8; ++i) {
            corners.push(new THREE.Vector3(...[0, 1, 2].map(
                (k) => (i >> k & 1 ? bounds.max : bounds.min)[k])));
        }
        return corners;
    }

    /** The smallest distance from which all corners are in the view. */
    function fittingDistance(corners, state, aspect) {
        const { right, up, back } = basisOf(state);
        const distances = corners.map((corner) => {
            const at = corner.clone().sub(state.target);
            const side = Math.max(Math.abs(at.dot(right)) / aspect, Math.abs(at.dot(up))) / tangent;
            return side + (state.isParallel ? 0 : at.dot(back));
        });
        return margin * Math.max(...distances);
    }

    function setPose(camera, state) {
        const { right, up, back } = basisOf(state);
        camera.position.copy(state.target).addScaledVector(back, state.distance);
        camera.quaternion.setFromRotationMatrix(new THREE.Matrix4().makeBasis(right, up, back));
        camera.updateMatrixWorld(true);
    }

    /** Sets near and far so that they enclose a sphere with the best depth resolution. */
    function setDepth(camera, state, sphere) {
        const { back } = basisOf(state);
        const depth = -sphere.center.clone().sub(camera.position).dot(back);
        camera.far = Math.max(depth + sphere.radius, state.distance) * 1.01;
        const near = depth - sphere.radius;
        camera.near = state.isParallel ? near - sphere.radius : Math.max(near, camera.far / 20000);
        if (state.isParallel) camera.far += sphere.radius;
    }

    viewer.makeCamera = function () {
        const perspective = new THREE.PerspectiveCamera(fieldOfView, 1, 1, 1000);
        const parallel = new THREE.OrthographicCamera(-1, 1, 1, -1, 1, 1000);
        const state = {
            target: new THREE.Vector3(), distance: 1000,
            azimuth: viewer.standardViews.iso[0], elevation: viewer.standardViews.iso[1],
            isParallel: false,
        };
        let width = 1;
        let height = 1;

        const current = () => (state.isParallel ? parallel : perspective);
        const halfHeight = () => state.distance * tangent;

        function setFrame() {
            perspective.aspect = width / height;
            parallel.top = halfHeight();
            parallel.bottom = -parallel.top;
            parallel.right = parallel.top * perspective.aspect;
            parallel.left = -parallel.right;
        }

        /** The camera of three.js for the next frame; the sphere encloses what is drawn. */
        function update(sphere) {
            const camera = current();
            setFrame();
            setPose(camera, state);
            setDepth(camera, state, sphere);
            camera.updateProjectionMatrix();
            return camera;
        }

        function pan(right, up) {
            const basis = basisOf(state);
            state.target.addScaledVector(basis.right, right).addScaledVector(basis.up, up);
        }

        return {
            state: state,
            current: current,
            update: update,
            basis: () => basisOf(state),
            resize: (newWidth, newHeight) => { width = newWidth; height = newHeight; },
            orbit: (azimuth, elevation) => {
                state.azimuth += azimuth;
                state.elevation += elevation;
                state.elevation = Math.min(quarter, Math.max(-quarter, state.elevation));
            },
            /** Moves the picture by pixels. */
            panPixels: (x, y) => {
                const scale = 2 * halfHeight() / height;
                pan(-x * scale, y * scale);
            },
            /** Zooms; the point at x, y (both from -1 to 1) stays where it is. */
            zoom: (factor, x, y) => {
                const change = 1 - factor;
                pan(x * halfHeight() * width / height * change, y * halfHeight() * change);
                state.distance *= factor;
            },
            look: (name) => { [state.azimuth, state.elevation] = viewer.standardViews[name]; },
            fit: (bounds) => {
                const corners = cornersOf(bounds);
                state.target.copy(corners[0]).lerp(corners[7], 0.5);
                const distance = fittingDistance(corners, state, width / height);
                state.distance = distance > 0 ? distance : 100;
            },
            frustum: () => new THREE.Frustum().setFromMatrix(new THREE.Matrix4().multiplyMatrices(
                current().projectionMatrix, current().matrixWorldInverse)),
            /** The length that a pixel shows at the near side of a sphere. */
            mmPerPixelAt: (sphere) => {
                const away = current().position.distanceTo(sphere.center) - sphere.radius;
                const distance = state.isParallel ? state.distance : Math.max(away, 1e-3);
                return 2 * distance * tangent / height;
            },
            /** The ray through a point of the view (x and y from -1 to 1). */
            ray: (x, y) => {
                const { right, up, back } = basisOf(state);
                const origin = current().position.clone();
                const sideways = right.multiplyScalar(x * tangent * width / height)
                    .addScaledVector(up, y * tangent);
                if (!state.isParallel) {
                    return { origin: origin, direction: sideways.sub(back).normalize() };
                }
                origin.addScaledVector(sideways, state.distance);
                return { origin: origin, direction: back.negate() };
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
