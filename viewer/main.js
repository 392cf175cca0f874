// Starts the page: reads the document, makes the drawing, connects the parts.
(function (viewer) {
    'use strict';

    const byId = (id) => document.getElementById(id);
    // The page answers to its user at least this often while it reads geometry.
    const sliceTime = 40;
    const emptyRoom = { min: [-100, -100, -100], max: [100, 100, 100] };

    function setState(state) {
        document.documentElement.dataset.state = state;
    }

    function fail(text) {
        byId('message').textContent = text;
        byId('message').hidden = false;
        setState('failed');
    }

    const pause = () => new Promise((resume) => { setTimeout(resume, 0); });

    /** The edge of the box for a file without geometry: a share of the assembly's size. */
    function placeholderSize(model) {
        const bounds = viewer.emptyBounds();
        for (const { matrix } of model.items.filter((item) => viewer.isDrawable(item.matrix))) {
            const place = matrix.subarray(9, 12);
            viewer.growBounds(bounds, { min: place, max: place });
        }
        const size = viewer.isEmptyBounds(bounds) ? 0 : viewer.lengthOfBox(bounds);
        return size > 0 ? size / 15 : 50;
    }

    async function readShapes(model) {
        const boxSize = placeholderSize(model);
        const shapes = [];
        let start = performance.now();
        for (const [index, file] of model.files.entries()) {
            shapes.push(viewer.readShape(file, index, boxSize));
            if (performance.now() - start < sliceTime) continue;
            byId('message').textContent =
                `Reading geometry: ${index + 1} of ${model.files.length} files`;
            await pause();
            start = performance.now();
        }
        return shapes;
    }

    /** The box that the camera, the grid and the section are made for. */
    function roomOf(drawing, model) {
        const drawn = drawing.everything;
        if (!viewer.isEmptyBounds(drawn)) return viewer.lengthOfBox(drawn) > 0 ? drawn : emptyRoom;
        const room = viewer.emptyBounds();
        for (const frame of model.frames) {
            const place = frame.matrix.slice(9, 12);
            viewer.growBounds(room, {
                min: place.map((x) => x - 100), max: place.map((x) => x + 100),
            });
        }
        return viewer.isEmptyBounds(room) ? emptyRoom : room;
    }

    /** A sphere around all that is drawn, lines included. */
    function sphereAround(room, references) {
        const sphere = viewer.sphereOf(room);
        const box = new THREE.Box3().setFromCenterAndSize(sphere.center, new THREE.Vector3(1, 1, 1)
            .multiplyScalar(3 * sphere.radius));
        references.parts.forEach((part) => box.expandByPoint(part.object.position));
        return box.getBoundingSphere(new THREE.Sphere());
    }

    /** The lines of the drawing and which kinds of them are shown. */
    function connectReferences(model, room, scene, labels, colours) {
        const shown = { grid: true, frames: true, dimension: false };
        const references = { parts: [], isShown: (kind) => shown[kind] };
        const apply = () => references.parts.forEach((part) => {
            part.object.visible = shown[part.kind];
        });
        references.toggle = (kind) => { shown[kind] = !shown[kind]; apply(); };
        references.build = () => {
            references.parts.forEach((part) => scene.remove(part.object));
            references.parts = viewer.makeReferences(model, room, colours);
            references.parts.forEach((part) => scene.add(part.object));
            apply();
        };
        references.build();
        references.parts.filter((part) => part.text !== '').forEach((part) => labels.add({
            kind: part.kind, text: part.text, at: part.at, isShown: () => shown[part.kind],
        }));
        return references;
    }

    function addMissingLabels(model, drawing, labels) {
        for (const item of drawing.items.filter((one) => one.chunk.shape.reason !== null)) {
            labels.add({
                kind: 'missing', text: viewer.fileName(model.files[item.file].path),
                at: new THREE.Vector3(...item.matrix.slice(9, 12)),
                isShown: () => drawing.isShown(item),
            });
        }
    }

    function statusText(drawing, choice, step) {
        const count = drawing.chunks.reduce((sum, chunk) => sum + chunk.shown.length, 0);
        const boxes = choice.boxes > 0 ? `, ${choice.boxes} simplified` : '';
        return `${count} placements${boxes} · grid ${viewer.numberText(step)} mm`;
    }

    function connectStates(parts) {
        const { states, drawing, view, refresh } = parts;
        states.visibilityChanged.connect(() => { drawing.pack(); view.request(); refresh(); });
        states.hoverChanged.connect((after, before) => {
            drawing.tint([after, before]);
            view.request();
        });
        let selected = -1;
        states.selectionChanged.connect((component) => {
            drawing.tint([selected, component]);
            selected = component;
            view.request();
        });
    }

    function applyTheme(parts) {
        const { colours, materials, references, measure, drawing, view } = parts;
        colours.read();
        materials.uniforms.edgeColour.value.set(colours.number('edge'));
        materials.uniforms.cutColour.value.set(colours.number('cut'));
        references.build();
        measure.readColours();
        drawing.pack();
        view.setBackground(colours.number('canvas'));
    }

    function connectTabs() {
        for (const tab of document.querySelectorAll('[role=tab]')) {
            tab.addEventListener('click', () => viewer.openTab(tab.id.replace('-tab', '')));
        }
    }

    function connectButtons(page) {
        const run = {
            'panel-button': page.togglePanel, 'details-copy': page.copy,
            'details-fit': page.fit, 'details-hide': page.toggleSelected,
            'details-isolate': page.isolate, 'details-close': () => page.escape(),
            'show-all': page.showAll, 'measure-close': page.toggleMeasure,
            'section-x': () => page.section.setAxis(0), 'section-y': () => page.section.setAxis(1),
            'section-z': () => page.section.setAxis(2), 'section-flip': page.section.flip,
            'section-close': page.toggleSection, 'difference-next': page.nextDifference,
            'difference-previous': page.previousDifference, 'help-close': page.toggleHelp,
        };
        Object.keys(run).forEach((id) => byId(id).addEventListener('click', () => run[id]()));
    }

    /** A function that finds what is under a pixel of the canvas. */
    function makePicker(parts, canvas) {
        const { camera, drawing, section } = parts;
        return (x, y) => {
            const { origin, direction } = camera.ray(
                2 * x / canvas.clientWidth - 1, 1 - 2 * y / canvas.clientHeight);
            const ray = { origin: origin.toArray(), direction: direction.toArray() };
            return viewer.pick(drawing.chunks, ray, section.limit(ray));
        };
    }

    function makeParts(model, shapes, canvas) {
        const components = model.components;
        const states = viewer.makeStates(components);
        const colours = viewer.makeColours(states);
        const materials = viewer.makeMaterials();
        const roles = viewer.rolesOf(model);
        const drawing = viewer.makeDrawing(model, shapes, roles, states, materials, colours);
        const room = roomOf(drawing, model);
        const camera = new viewer.Camera(canvas, () => view.request());
        const labels = viewer.makeLabels(byId('labels'), camera);
        const references = connectReferences(model, room, drawing.scene, labels, colours);
        const section = viewer.makeSection(room);
        const sphere = sphereAround(room, references);
        const view = new viewer.View(canvas, { drawing, camera, materials, section, labels },
            sphere);
        return { model, shapes, states, colours, materials, roles, drawing, room, camera, labels,
            references, section, view };
    }

    function connectParts(parts, canvas) {
        const { model, states, view, shapes } = parts;
        parts.refresh = () => parts.commands && parts.commands.refresh();
        const changed = () => { view.request(); parts.refresh(); };
        parts.measure = viewer.makeMeasure(parts.drawing.scene, parts.labels, parts.colours,
            changed);
        parts.sectionPanel = viewer.connectSection(parts.section, changed);
        parts.details = viewer.makeDetails(model, states, (file) => shapes[file].reason);
        connectStates(parts);
        const rows = viewer.makeTreeRows(model);
        const open = (component) => parts.fitComponent(component);
        parts.tree = new viewer.Tree({ model, states, rows, roles: parts.roles }, open);
        parts.differences = viewer.makeDifferences(model, states, open);
        const page = viewer.makePage(parts);
        parts.fitComponent = page.fitComponent;
        parts.commands = viewer.connectCommands(viewer.commandsOf(page));
        const pickAt = makePicker(parts, canvas);
        const actions = viewer.pointerActions(parts, pickAt);
        viewer.connectPointer(canvas, actions);
        parts.clickMiddle = () => actions.click(canvas.clientWidth / 2, canvas.clientHeight / 2);
        connectButtons(page);
        if (matchMedia('(max-width: 700px)').matches) page.togglePanel();
        return pickAt;
    }

    function firstView(parts) {
        const { model, drawing, view, camera, references } = parts;
        view.drawn.connect((choice) => {
            const grid = references.parts[0].object;
            byId('status').textContent = statusText(drawing, choice, grid.userData.step);
        });
        applyTheme(parts);
        matchMedia('(prefers-color-scheme: dark)').addEventListener('change',
            () => applyTheme(parts));
        view.resize();
        camera.fit(viewer.isEmptyBounds(drawing.all) ? parts.room : drawing.all);
        new ResizeObserver(() => view.resize()).observe(byId('stage'));
        view.drawNow();
    }

    function showHead(model) {
        const title = model.differences === null ? model.title
            : model.assemblies.map((assembly) => assembly.path).join(' → ');
        byId('title').textContent = title;
        byId('title').title = title;
        const isEmpty = model.items.length === 0;
        byId('message').hidden = !isEmpty || model.frames.length > 0;
        byId('message').textContent = 'This assembly has no placed geometry.';
    }

    async function start() {
        setState('reading');
        const model = viewer.readDocument();
        const shapes = await readShapes(model);
        if (!document.createElement('canvas').getContext('webgl')) {
            fail('This browser has no WebGL, which the drawing needs.');
            return;
        }
        connectTabs();
        const canvas = byId('canvas');
        const parts = makeParts(model, shapes, canvas);
        const pickAt = connectParts(parts, canvas);
        addMissingLabels(model, parts.drawing, parts.labels);
        viewer.showProblems(model, shapes);
        showHead(model);
        firstView(parts);
        viewer.openTab(model.differences === null ? 'components' : 'differences');
        viewer.scene = viewer.makeScene(parts, pickAt);
        setState('ready');
    }

    start().catch((error) => {
        fail(`The page could not be shown: ${error.message}`);
        throw error;
    });
})(window.viewer);
