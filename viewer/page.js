// The page: what each command does, and what a click in the drawing does.
(function (viewer) {
    'use strict';

    const byId = (id) => document.getElementById(id);

    function saveBlob(blob, name) {
        const link = document.createElement('a');
        link.href = URL.createObjectURL(blob);
        link.download = name;
        link.click();
        setTimeout(() => URL.revokeObjectURL(link.href), 10000);
    }

    function cameraActions(parts) {
        const { camera, drawing, states, refresh } = parts;
        const boundsToFit = (component) => {
            const branch = drawing.bounds(component);
            if (!viewer.isEmptyBounds(branch)) return branch;
            return viewer.isEmptyBounds(drawing.all) ? parts.room : drawing.all;
        };
        const fit = (component) => camera.fit(boundsToFit(component));
        return {
            fit: () => fit(states.selected),
            fitComponent: fit,
            look: (name) => { camera.look(name); fit(states.selected); },
            orbit: (x, y) => camera.orbit(x, y),
            pan: (x, y) => camera.pan(x, y),
            zoom: (factor) => camera.zoom(factor),
            isParallel: () => camera.isParallel,
            toggleProjection: () => { camera.toggleProjection(); refresh(); },
        };
    }

    function showActions(parts) {
        const { references, view, states, refresh } = parts;
        return {
            isReferenceShown: (kind) => references.isShown(kind),
            toggleReference: (kind) => { references.toggle(kind); view.request(); refresh(); },
            areGhostsShown: () => states.showGhosts,
            toggleGhosts: () => { states.setGhosts(!states.showGhosts); refresh(); },
            togglePanel: () => {
                const isClosed = document.body.classList.toggle('closed');
                byId('panel-button').setAttribute('aria-expanded', String(!isClosed));
            },
        };
    }

    function toolActions(parts) {
        const { measure, sectionPanel, section, view, model, refresh } = parts;
        return {
            isMeasuring: () => measure.isOn,
            toggleMeasure: () => { measure.toggle(); refresh(); },
            pickMiddle: () => parts.clickMiddle(),
            isCut: () => section.state.axis >= 0,
            toggleSection: () => sectionPanel.setAxis(section.state.axis < 0 ? 0
                : section.state.axis),
            section: sectionPanel,
            savePicture: () => view.takePicture(
                (blob) => saveBlob(blob, `${viewer.fileName(model.title)}.png`)),
        };
    }

    function componentActions(parts) {
        const { states, details, differences } = parts;
        const ifSelected = (action) => () => {
            if (states.selected >= 0) action(states.selected);
        };
        return {
            search: () => { viewer.openTab('components'); byId('search').focus(); },
            toggleSelected: ifSelected((i) => states.setHidden(i, !states.isHidden(i))),
            isolate: ifSelected((i) => states.isolate(states.isolated === i ? -1 : i)),
            showAll: () => states.showAll(),
            copy: ifSelected(() => { details.copy(); viewer.announce('Copied'); }),
            nextDifference: differences.next,
            previousDifference: differences.previous,
        };
    }

    function pageActions(parts) {
        const { states, measure, section, sectionPanel, refresh } = parts;
        const help = byId('help');
        const closers = [
            [() => help.open, () => help.close()],
            [() => measure.isOn, () => { measure.toggle(); refresh(); }],
            [() => section.state.axis >= 0, () => sectionPanel.setAxis(section.state.axis)],
            [() => states.isolated >= 0, () => states.isolate(-1)],
            [() => states.selected >= 0, () => states.select(-1)],
        ];
        return {
            toggleHelp: () => { if (help.open) help.close(); else help.showModal(); },
            /** Closes what was opened last in this order: help, tools, isolation, selection. */
            escape: () => {
                const closer = closers.find(([isOpen]) => isOpen());
                if (closer) closer[1]();
            },
        };
    }

    /** A short text at the bottom, which screen readers read. */
    viewer.announce = function (text) {
        byId('notice').textContent = text;
        clearTimeout(viewer.announce.timer);
        viewer.announce.timer = setTimeout(() => { byId('notice').textContent = ''; }, 2500);
    };

    /** Shows one of the lists beside the drawing. */
    viewer.openTab = function (name) {
        for (const tab of document.querySelectorAll('[role=tab]')) {
            const isOpen = tab.id === `${name}-tab`;
            tab.setAttribute('aria-selected', String(isOpen));
            byId(tab.getAttribute('aria-controls')).hidden = !isOpen;
        }
    };

    /** What the commands do, for commandsOf(). */
    viewer.makePage = function (parts) {
        return Object.assign({}, cameraActions(parts), showActions(parts), toolActions(parts),
            componentActions(parts), pageActions(parts));
    };

    /** What a pointer in the drawing does, for connectPointer(). */
    viewer.pointerActions = function (parts, pickAt) {
        const { states, measure, fitComponent } = parts;
        let waiting = null;
        const componentAt = (x, y) => {
            const hit = pickAt(x, y);
            return hit ? hit.item.component : -1;
        };
        return {
            click: (x, y) => {
                const hit = pickAt(x, y);
                if (!measure.isOn) states.select(hit ? hit.item.component : -1);
                else if (hit) measure.add(hit.point);
            },
            doubleClick: (x, y) => {
                const component = componentAt(x, y);
                if (component >= 0) fitComponent(component);
            },
            // One search for each frame is enough.
            hover: (x, y) => {
                if (!waiting) {
                    requestAnimationFrame(() => {
                        const at = waiting;
                        waiting = null;
                        if (at) states.hover(componentAt(...at));
                    });
                }
                waiting = [x, y];
            },
            leave: () => { waiting = null; states.hover(-1); },
        };
    };
})(window.viewer);
