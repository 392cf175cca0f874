// The panel of the selected component: its texts and its placement in numbers.
(function (viewer) {
    'use strict';

    function pathOf(model, component) {
        const names = [];
        for (let i = component; i >= 0; i = model.components.parent[i]) {
            names.unshift(model.components.name[i]);
        }
        return names.join('/');
    }

    function rotationRows(matrix) {
        const rotation = viewer.rotationOf(matrix);
        const texts = rotation.angles ? rotation.angles.map(viewer.numberText)
            : [rotation.note, '', ''];
        return [['Angles x, y, z (°)', texts]];
    }

    /** A placement as rows: a heading and three texts each. */
    function placementRows(matrix) {
        const numbers = (i) => Array.from(matrix.slice(i, i + 3)).map(viewer.numberText);
        return [
            ['Position (mm)', numbers(9)],
            ...rotationRows(matrix),
            ['x axis', numbers(0)], ['y axis', numbers(3)], ['z axis', numbers(6)],
        ];
    }

    function factsOf(model, component, reasonOf) {
        const { comment, file, enabled } = model.components;
        const facts = [['Path', pathOf(model, component)]];
        if (comment[component] !== '') facts.push(['Comment', comment[component]]);
        if (file[component] >= 0) {
            const reason = reasonOf(file[component]);
            const path = model.files[file[component]].path;
            facts.push(['File', reason === null ? path : `${path} (drawn as a box: ${reason})`]);
        }
        if (!enabled[component]) facts.push(['State', 'disabled']);
        return facts;
    }

    function addTable(parent, title, rows) {
        const table = document.createElement('table');
        table.createCaption().textContent = title;
        for (const [heading, texts] of rows) {
            const row = table.insertRow();
            const cell = document.createElement('th');
            cell.scope = 'row';
            cell.textContent = heading;
            row.append(cell);
            texts.forEach((text) => { row.insertCell().textContent = text; });
        }
        parent.append(table);
    }

    function addFacts(parent, facts) {
        const list = document.createElement('dl');
        for (const [term, text] of facts) {
            list.append(document.createElement('dt'), document.createElement('dd'));
            list.children[list.children.length - 2].textContent = term;
            list.lastElementChild.textContent = text;
        }
        parent.append(list);
    }

    function textOf(facts, tables) {
        const lines = facts.map(([term, text]) => `${term}: ${text}`);
        for (const [title, rows] of tables) {
            lines.push('', title);
            rows.forEach(([heading, texts]) => lines.push(`${heading}: ${texts.join(' ').trim()}`));
        }
        return `${lines.join('\n')}\n`;
    }

    /** The clipboard of the browser; a page without it copies a selection. */
    viewer.copyText = async function (text) {
        try {
            await navigator.clipboard.writeText(text);
        } catch (error) {
            const field = document.createElement('textarea');
            field.value = text;
            document.body.append(field);
            field.select();
            document.execCommand('copy');
            field.remove();
        }
    };

    /**
     * The panel.
     *
     * @param reasonOf  why a file is a box, or null
     */
    viewer.makeDetails = function (model, states, reasonOf) {
        const panel = document.getElementById('details');
        const body = document.getElementById('details-body');
        let text = '';

        function show(component) {
            panel.hidden = component < 0;
            body.replaceChildren();
            if (component < 0) return;
            document.getElementById('details-name').textContent = model.components.name[component];
            const facts = factsOf(model, component, reasonOf);
            const tables = [['In its parent', 'local'], ['In the assembly', 'world']].map(
                ([title, column]) =>
                    [title, placementRows(viewer.placementOf(model, component, column))]);
            addFacts(body, facts);
            tables.forEach(([title, rows]) => addTable(body, title, rows));
            text = textOf(facts, tables);
        }

        states.selectionChanged.connect(show);
        return { copy: () => viewer.copyText(text), text: () => text };
    };
})(window.viewer);
