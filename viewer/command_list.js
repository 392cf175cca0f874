// Every command of the page, with its keys.
(function (viewer) {
    'use strict';

    const step = 0.1;      // radians of an arrow key
    const panStep = 40;    // pixels of an arrow key
    const zoomStep = 1.2;

    function cameraCommands(page) {
        const look = (name, title, key) => ({
            id: name, title: `${title} view`, group: 'Camera', keys: [key], text: title,
            run: () => page.look(name),
        });
        return [
            { id: 'fit', title: 'Fit everything, or the selected branch', group: 'Camera',
                keys: ['f'], icon: 'fit', run: page.fit },
            look('front', 'Front', '1'), look('top', 'Top', '2'), look('right', 'Right', '3'),
            look('iso', 'Iso', '4'),
            { id: 'projection', title: 'Parallel projection', group: 'Camera', keys: ['p'],
                icon: 'parallel', run: page.toggleProjection, isOn: page.isParallel },
        ];
    }

    function motionCommands(page) {
        const orbit = (key, x, y, title) => ({
            id: key, title: title, group: 'Camera', keys: [key],
            run: () => page.orbit(x * step, y * step),
        });
        const pan = (key, x, y, title) => ({
            id: `pan-${key}`, title: title, group: 'Camera', keys: [`Shift+${key}`],
            run: () => page.pan(x * panStep, y * panStep),
        });
        return [
            orbit('ArrowLeft', -1, 0, 'Orbit to the left'),
            orbit('ArrowRight', 1, 0, 'Orbit to the right'),
            orbit('ArrowUp', 0, 1, 'Orbit up'), orbit('ArrowDown', 0, -1, 'Orbit down'),
            pan('ArrowLeft', 1, 0, 'Pan to the left'), pan('ArrowRight', -1, 0, 'Pan to the right'),
            pan('ArrowUp', 0, 1, 'Pan up'), pan('ArrowDown', 0, -1, 'Pan down'),
            { id: 'zoom-in', title: 'Zoom in', group: 'Camera', keys: ['+', '='],
                run: () => page.zoom(1 / zoomStep) },
            { id: 'zoom-out', title: 'Zoom out', group: 'Camera', keys: ['-'],
                run: () => page.zoom(zoomStep) },
        ];
    }

    function showCommands(page) {
        const toggle = (kind, title, key, icon) => ({
            id: kind, title: title, group: 'Show', keys: [key], icon: icon,
            run: () => page.toggleReference(kind), isOn: () => page.isReferenceShown(kind),
        });
        return [
            toggle('grid', 'Grid', 'g', 'grid'),
            toggle('frames', 'Origin and frames', 'o', 'frame'),
            toggle('dimension', 'Overall dimension', 'b', 'box'),
            { id: 'ghosts', title: 'Disabled components as ghosts', group: 'Show', keys: ['d'],
                icon: 'ghost', run: page.toggleGhosts, isOn: page.areGhostsShown },
            { id: 'panel', title: 'Tree', group: 'Show', keys: ['t'], run: page.togglePanel },
        ];
    }

    function toolCommands(page) {
        const across = (axis, title, key) => ({
            id: `section-${key}`, title: title, group: 'Tools', keys: [key],
            run: () => page.section.setAxis(axis),
        });
        return [
            { id: 'measure', title: 'Measure a distance', group: 'Tools', keys: ['m'],
                icon: 'measure', run: page.toggleMeasure, isOn: page.isMeasuring },
            { id: 'pick', title: 'Pick what is in the middle of the view', group: 'Tools',
                keys: ['Enter'], run: page.pickMiddle },
            { id: 'section', title: 'Section plane', group: 'Tools', keys: ['s'],
                icon: 'section', run: page.toggleSection, isOn: page.isCut },
            across(0, 'Section across x', 'x'), across(1, 'Section across y', 'y'),
            across(2, 'Section across z', 'z'),
            { id: 'section-back', title: 'Move the section back', group: 'Tools', keys: ['['],
                run: () => page.section.move(-0.02) },
            { id: 'section-on', title: 'Move the section on', group: 'Tools', keys: [']'],
                run: () => page.section.move(0.02) },
            { id: 'section-flip', title: 'Flip the section', group: 'Tools', keys: ['r'],
                run: page.section.flip },
            { id: 'picture', title: 'Save the view as PNG', group: 'Tools', keys: ['k'],
                icon: 'picture', run: page.savePicture },
        ];
    }

    function componentCommands(page) {
        return [
            { id: 'search', title: 'Search', group: 'Components', keys: ['/'], run: page.search },
            { id: 'hide', title: 'Hide or show the selected branch', group: 'Components',
                keys: ['h', ' '], run: page.toggleSelected },
            { id: 'isolate', title: 'Isolate the selected branch', group: 'Components',
                keys: ['i'], run: page.isolate },
            { id: 'all', title: 'Show everything', group: 'Components', keys: ['a'],
                run: page.showAll },
            { id: 'copy', title: 'Copy the placement of the selected component',
                group: 'Components', keys: ['c'], run: page.copy },
            { id: 'next', title: 'Next difference', group: 'Components', keys: ['n', '.'],
                run: page.nextDifference },
            { id: 'previous', title: 'Previous difference', group: 'Components',
                keys: ['N', ','], run: page.previousDifference },
        ];
    }

    /** The commands of a page. Their order is that of the toolbar and of the help. */
    viewer.commandsOf = function (page) {
        return [
            ...cameraCommands(page), ...motionCommands(page), ...showCommands(page),
            ...toolCommands(page), ...componentCommands(page),
            { id: 'help', title: 'Keys and mouse', group: 'Page', keys: ['?', 'F1'], icon: 'help',
                run: page.toggleHelp },
            { id: 'escape', title: 'Close, or select nothing', group: 'Page', keys: ['Escape'],
                run: page.escape },
        ];
    };
})(window.viewer);
