// Numbers and file names as texts for a person. Lengths are in mm, angles in degrees.
(function (viewer) {
    'use strict';

    /** The file name of a path that may be one of Windows. */
    viewer.fileName = function (path) {
        return path.replace(/^.*[\\/]/, '');
    };

    /** Six decimals at most; "-0" is 0. */
    viewer.numberText = function (value) {
        if (!Number.isFinite(value)) return String(value);
        if (Math.abs(value) >= 1e15) return value.toExponential(6);
        return String(Number(value.toFixed(6)) + 0);
    };

    function dot(a, b) {
        return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
    }

    function axesOf(matrix) {
        return [0, 3, 6].map((i) => Array.from(matrix.slice(i, i + 3)));
    }

    function determinant(axes) {
        const [x, y, z] = axes;
        return x[0] * (y[1] * z[2] - y[2] * z[1]) - x[1] * (y[0] * z[2] - y[2] * z[0])
            + x[2] * (y[0] * z[1] - y[1] * z[0]);
    }

    function isRotation(axes) {
        for (let i = 0; i < 3; ++i) {
            for (let j = i; j < 3; ++j) {
                if (!(Math.abs(dot(axes[i], axes[j]) - (i === j ? 1 : 0)) <= 1e-5)) return false;
            }
        }
        return determinant(axes) > 0;
    }

    /**
     * Angles of the rotation: first about x, then about y, then about z, all of them axes of the
     * parent. In a gimbal lock the angle about z is 0.
     */
    function anglesOf(axes) {
        const [x, y, z] = axes;
        const level = Math.hypot(x[0], x[1]);
        const radians = level > 1e-9
            ? [Math.atan2(y[2], z[2]), Math.atan2(-x[2], level), Math.atan2(x[1], x[0])]
            : [Math.atan2(-z[1], y[1]), Math.atan2(-x[2], level), 0];
        return radians.map((angle) => Number((angle * 180 / Math.PI).toFixed(4)) + 0);
    }

    /** Three angles in degrees, or why the axes are not a rotation. */
    viewer.rotationOf = function (matrix) {
        const axes = axesOf(matrix);
        if (isRotation(axes)) return { angles: anglesOf(axes), note: '' };
        if (!axes.flat().every(Number.isFinite)) return { angles: null, note: 'not finite' };
        const isMirrored = determinant(axes) < 0;
        return { angles: null, note: isMirrored ? 'mirrored' : 'scaled or sheared' };
    };
})(window.viewer);
