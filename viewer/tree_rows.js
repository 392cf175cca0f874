// The rows of the tree: which components are listed, after folding and searching.
(function (viewer) {
    'use strict';

    // A small tree is unfolded from the start.
    const maxUnfolded = 300;

    function firstUnfolded(components) {
        const unfolded = new Uint8Array(components.count);
        const isSmall = components.count <= maxUnfolded;
        for (let i = 0; i < components.count; ++i) {
            unfolded[i] = isSmall || components.parent[i] < 0 ? 1 : 0;
        }
        return unfolded;
    }

    function matches(model, component, wanted) {
        const { name, comment, file } = model.components;
        const path = file[component] < 0 ? '' : model.files[file[component]].path;
        return [name[component], comment[component], path]
            .some((text) => text.toLowerCase().includes(wanted));
    }

    /**
     * The rows of a model's tree. A row is a component, or -1 minus the number of an assembly: its
     * heading if there are two.
     */
    viewer.makeTreeRows = function (model) {
        const components = model.components;
        const unfolded = firstUnfolded(components);
        let found = null;   // whether a component is or has a match
        let matching = [];

        function search(text) {
            const wanted = text.trim().toLowerCase();
            matching = [];
            found = null;
            if (wanted === '') return;
            found = new Uint8Array(components.count);
            for (let i = components.count - 1; i >= 0; --i) {
                if (matches(model, i, wanted)) {
                    matching.push(i);
                    found[i] = 1;
                }
                const parent = components.parent[i];
                if (found[i] && parent >= 0) found[parent] = 1;
            }
            matching.reverse();
        }

        const hasChildren = (i) => components.end[i] > i + 1;
        const isUnfolded = (i) => unfolded[i] === 1 || found !== null;

        function addRows(assembly, index, rows) {
            const end = assembly.first + assembly.count;
            if (model.assemblies.length > 1) rows.push(-1 - index);
            for (let i = assembly.first; i < end;) {
                const isListed = found === null || found[i] === 1;
                if (isListed) rows.push(i);
                i = isListed && isUnfolded(i) ? i + 1 : components.end[i];
            }
        }

        return {
            rows: () => {
                const rows = [];
                model.assemblies.forEach((assembly, index) => addRows(assembly, index, rows));
                return rows;
            },
            search: search,
            matching: () => matching,
            hasChildren: hasChildren,
            isUnfolded: isUnfolded,
            setUnfolded: (i, value) => { unfolded[i] = value ? 1 : 0; },
            /** Unfolds what is above a component. */
            reveal: (i) => {
                const { parent } = components;
                for (let above = parent[i]; above >= 0; above = parent[above]) unfolded[above] = 1;
            },
        };
    };
})(window.viewer);
