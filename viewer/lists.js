// The lists beside the tree: the differences, and the files that are drawn as boxes.
(function (viewer) {
    'use strict';

    function addItem(list, className, texts) {
        const item = document.createElement('li');
        item.className = className;
        texts.filter((text) => text !== '').forEach((text, i) => {
            const part = document.createElement(i === 0 ? 'strong' : 'span');
            part.textContent = text;
            item.append(part);
        });
        list.append(item);
        return item;
    }

    /** What is wrong with placements: their number, and why nothing is drawn. */
    function undrawable(model) {
        const count = model.items.filter((item) => !viewer.isDrawable(item.matrix)).length;
        if (count === 0) return [];
        const what = count === 1 ? '1 placement' : `${count} placements`;
        return [[what, 'not drawn: a number is not finite or is beyond 1e12']];
    }

    /** The list of what is not drawn as its file says. */
    viewer.showProblems = function (model, shapes) {
        const list = document.getElementById('problems');
        const problems = model.files.map((file, i) => [file.path, shapes[i].reason])
            .filter(([, reason]) => reason !== null);
        problems.push(...undrawable(model));
        problems.forEach((texts) => addItem(list, 'problem', texts));
        document.getElementById('problems-tab').hidden = problems.length === 0;
        document.getElementById('problems-count').textContent = String(problems.length);
    };

    function stepText(at, count) {
        return at < 0 ? `${count} differences` : `${at + 1} of ${count}`;
    }

    /**
     * The list of differences, which one steps through.
     *
     * @param open  shows a component in the view
     */
    viewer.makeDifferences = function (model, states, open) {
        const entries = model.differences || [];
        const list = document.getElementById('differences');
        const position = document.getElementById('difference-position');
        let at = -1;

        function show(index) {
            if (entries.length === 0) return;
            at = (index + entries.length) % entries.length;
            [...list.children].forEach((item, i) =>
                item.setAttribute('aria-current', String(i === at)));
            list.children[at].scrollIntoView({ block: 'nearest' });
            position.textContent = stepText(at, entries.length);
            const component = viewer.subjectOf(entries[at]);
            states.select(component);
            if (component >= 0) open(component);
        }

        entries.forEach((entry, index) => {
            const item = addItem(list, `difference kind-${entry.kind}`, [entry.path, entry.text]);
            item.tabIndex = 0;
            item.addEventListener('click', () => show(index));
            item.addEventListener('keydown', (event) => {
                if (event.key !== 'Enter') return;
                event.stopPropagation();
                show(index);
            });
        });
        document.getElementById('differences-tab').hidden = model.differences === null;
        position.textContent = stepText(at, entries.length);
        return {
            next: () => show(at + 1),
            previous: () => show(at < 0 ? -1 : at - 1),
            position: () => at,
        };
    };
})(window.viewer);
