// The materials of instanced shapes.
//
// A placement's translation is stored as the sum of two single-precision numbers. The shader
// subtracts the eye, stored in the same way, before it adds the shape. So a placement that is 1e5
// mm from the origin is drawn as exactly as one at the origin, and does not jitter.
(function (viewer) {
    'use strict';

    const vertexShader = `
        uniform vec3 eyeHigh;
        uniform vec3 eyeLow;
        attribute vec3 axisX;
        attribute vec3 axisY;
        attribute vec3 axisZ;
        attribute vec3 placeHigh;
        attribute vec3 placeLow;
        attribute vec4 tint;
        varying vec3 fromEye;
        varying vec4 colour;
        varying float hand;

        void main() {
            mat3 axes = mat3(axisX, axisY, axisZ);
            fromEye = axes * position + ((placeHigh - eyeHigh) + (placeLow - eyeLow));
            colour = tint;
            hand = dot(cross(axisX, axisY), axisZ);
            vec3 seen = mat3(viewMatrix) * fromEye;
            // Edges are a little nearer than their faces. In a perspective this moves no pixel.
            bool isParallel = projectionMatrix[3][3] == 1.0;
            seen *= isParallel ? vec3(1.0, 1.0, NEARER) : vec3(NEARER);
            gl_Position = projectionMatrix * vec4(seen, 1.0);
        }`;

    const boxVertexShader = `
        attribute vec4 tint;
        varying vec3 fromEye;
        varying vec4 colour;
        varying float hand;

        void main() {
            vec4 seen = modelViewMatrix * vec4(position, 1.0);
            // The inverse of a rotation is its transpose.
            fromEye = seen.xyz * mat3(viewMatrix);
            colour = tint;
            hand = 1.0;
            gl_Position = projectionMatrix * seen;
        }`;

    // The normal is that of the triangle and turned to the eye: mirrored placements and files with
    // wrong normals look right.
    const faceShader = `
        uniform vec4 cut;
        uniform vec3 cutColour;
        uniform float isCut;
        varying vec3 fromEye;
        varying vec4 colour;
        varying float hand;

        void main() {
            if (dot(cut.xyz, fromEye) > cut.w) discard;
            vec3 across = normalize(cross(dFdx(fromEye), dFdy(fromEye)));
            vec3 normal = mat3(viewMatrix) * across;
            if (normal.z < 0.0) { normal = -normal; across = -across; }
            float key = max(dot(normal, normalize(vec3(-0.45, 0.6, 0.75))), 0.0);
            float fill = max(dot(normal, normalize(vec3(0.8, 0.1, 0.5))), 0.0);
            float light = 0.56 + 0.38 * key + 0.10 * fill + 0.07 * across.z;
            bool isInside = gl_FrontFacing != (hand > 0.0);
            vec3 shade = isCut * float(isInside) > 0.5 ? cutColour : colour.rgb * light;
            gl_FragColor = vec4(shade, colour.a);
        }`;

    const edgeShader = `
        uniform vec4 cut;
        uniform vec3 edgeColour;
        varying vec3 fromEye;
        varying vec4 colour;
        varying float hand;

        void main() {
            if (dot(cut.xyz, fromEye) > cut.w) discard;
            gl_FragColor = vec4(mix(colour.rgb, edgeColour, 0.72), min(1.0, 1.6 * colour.a));
        }`;

    function makeUniforms() {
        return {
            eyeHigh: { value: new THREE.Vector3() },
            eyeLow: { value: new THREE.Vector3() },
            cut: { value: new THREE.Vector4(0, 0, 0, 1) },
            cutColour: { value: new THREE.Color() },
            edgeColour: { value: new THREE.Color() },
            isCut: { value: 0 },
        };
    }

    /** The materials for solids and for ghosts. */
    function makePair(settings) {
        return [false, true].map((isGhost) => new THREE.ShaderMaterial(Object.assign({
            side: THREE.DoubleSide, transparent: isGhost, depthWrite: !isGhost,
        }, settings)));
    }

    /** Materials of solids and of ghosts, all with the same uniforms. */
    viewer.makeMaterials = function () {
        const uniforms = makeUniforms();
        const face = {
            uniforms: uniforms, vertexShader: vertexShader, fragmentShader: faceShader,
            defines: { NEARER: '1.0' }, extensions: { derivatives: true },
            polygonOffset: true, polygonOffsetFactor: 1, polygonOffsetUnits: 1,
        };
        return {
            uniforms: uniforms,
            faces: makePair(face),
            boxes: makePair(Object.assign({}, face, { vertexShader: boxVertexShader })),
            edges: makePair({
                uniforms: uniforms, vertexShader: vertexShader, fragmentShader: edgeShader,
                defines: { NEARER: '0.9995' },
            }),
        };
    };

    /** Splits a number in two of single precision; their sum has 48 bits. */
    viewer.splitDouble = function (value) {
        const high = Math.fround(value);
        return [high, Math.fround(value - high)];
    };
})(window.viewer);
