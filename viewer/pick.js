// Finds the nearest placement under a ray, in double precision and without the graphics hardware.
(function (viewer) {
    'use strict';

    /** The inverse of the axes of a placement as three rows, or null if they lie in a plane. */
    function inverseOf(m) {
        const cross = (a, b) => [0, 1, 2].map((k) => {
            const i = (k + 1) % 3, j = (k + 2) % 3;
            return m[a + i] * m[b + j] - m[a + j] * m[b + i];
        });
        const rows = [cross(3, 6), cross(6, 0), cross(0, 3)];
        const determinant = m[0] * rows[0][0] + m[1] * rows[0][1] + m[2] * rows[0][2];
        if (!(Math.abs(determinant) > 1e-30)) return null;
        return rows.map((row) => row.map((x) => x / determinant));
    }

    function dot(a, b) {
        return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
    }

    /** The ray in the frame of a placement. The parameter along the ray stays the same. */
    function localRay(ray, matrix) {
        const inverse = inverseOf(matrix);
        if (!inverse) return null;
        const from = ray.origin.map((x, k) => x - matrix[9 + k]);
        return {
            origin: inverse.map((row) => dot(row, from)),
            direction: inverse.map((row) => dot(row, ray.direction)),
        };
    }

    /** Where a ray enters a box, or Infinity. */
    function enterBox(ray, bounds) {
        let near = -Infinity, far = Infinity;
        for (let k = 0; k < 3; ++k) {
            const a = (bounds.min[k] - ray.origin[k]) / ray.direction[k];
            const b = (bounds.max[k] - ray.origin[k]) / ray.direction[k];
            // A ray in the plane of a face makes NaN, which limits nothing.
            if (Math.min(a, b) > near) near = Math.min(a, b);
            if (Math.max(a, b) < far) far = Math.max(a, b);
        }
        return near <= far ? near : Infinity;
    }

    /** Where a ray hits the triangle at an index of the positions, or Infinity. */
    function hitTriangle(o, d, p, i) {
        const ax = p[i + 3] - p[i], ay = p[i + 4] - p[i + 1], az = p[i + 5] - p[i + 2];
        const bx = p[i + 6] - p[i], by = p[i + 7] - p[i + 1], bz = p[i + 8] - p[i + 2];
        const hx = d[1] * bz - d[2] * by, hy = d[2] * bx - d[0] * bz, hz = d[0] * by - d[1] * bx;
        const scale = 1 / (ax * hx + ay * hy + az * hz);
        const sx = o[0] - p[i], sy = o[1] - p[i + 1], sz = o[2] - p[i + 2];
        const u = scale * (sx * hx + sy * hy + sz * hz);
        if (!(u >= 0 && u <= 1)) return Infinity;
        const qx = sy * az - sz * ay, qy = sz * ax - sx * az, qz = sx * ay - sy * ax;
        const v = scale * (d[0] * qx + d[1] * qy + d[2] * qz);
        if (!(v >= 0 && u + v <= 1)) return Infinity;
        return scale * (bx * qx + by * qy + bz * qz);
    }

    /** The nearest hit of a shape's triangles in the part of the ray that is allowed. */
    function hitShape(ray, positions, range) {
        let nearest = Infinity;
        for (let i = 0; i < positions.length; i += 9) {
            const t = hitTriangle(ray.origin, ray.direction, positions, i);
            if (t < nearest && t >= range[0] && t <= range[1]) nearest = t;
        }
        return nearest;
    }

    function missesSphere(ray, sphere) {
        const to = [sphere.center.x, sphere.center.y, sphere.center.z]
            .map((x, k) => x - ray.origin[k]);
        const along = dot(to, ray.direction);
        return dot(to, to) - along * along > sphere.radius * sphere.radius * (1 + 1e-9);
    }

    /** The items whose boxes the ray meets, the nearest first. */
    function candidates(chunks, ray) {
        const found = [];
        for (const chunk of chunks) {
            if (chunk.shown.length === 0 || missesSphere(ray, chunk.sphere)) continue;
            for (const item of chunk.shown) {
                const own = localRay(ray, item.matrix);
                const near = own ? enterBox(own, chunk.shape.bounds) : Infinity;
                if (near < Infinity) found.push({ item: item, ray: own, near: near });
            }
        }
        return found.sort((a, b) => a.near - b.near);
    }

    /**
     * The nearest placement along a ray.
     *
     * @param ray    origin and unit direction, three numbers each
     * @param range  the smallest and the greatest distance, which a section plane limits
     * @return item, distance and point, or null
     */
    viewer.pick = function (chunks, ray, range) {
        let best = null;
        for (const { item, ray: own, near } of candidates(chunks, ray)) {
            if (best && near > best.distance) break;
            const distance = hitShape(own, item.chunk.shape.positions, range);
            if (distance < (best ? best.distance : Infinity)) {
                best = { item: item, distance: distance };
            }
        }
        if (best) best.point = ray.origin.map((x, k) => x + best.distance * ray.direction[k]);
        return best;
    };
})(window.viewer);
