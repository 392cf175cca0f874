// The tree of components. Only the rows in sight are elements of the page.
(function (viewer) {
    'use strict';

    const maxIndent = 24;
    const extraRows = 6;

    function span(className) {
        const element = document.createElement('span');
        element.className = className;
        return element;
    }

    function makeRow() {
        const row = document.createElement('div');
        row.className = 'row';
        row.setAttribute('role', 'treeitem');
        const eye = document.createElement('button');
        eye.type = 'button';
        eye.className = 'eye';
        eye.tabIndex = -1;
        row.append(...['twisty', 'swatch', 'name', 'comment', 'file'].map(span), eye);
        return row;
    }

    function fillHeading(row, assembly, index) {
        row.className = 'row heading';
        row.removeAttribute('aria-expanded');
        row.setAttribute('aria-level', '1');
        row.setAttribute('aria-selected', 'false');
        row.querySelector('.twisty').textContent = '';
        row.querySelector('.name').textContent = `${['Before', 'After'][index]}: ${assembly.path}`;
        row.querySelector('.comment').textContent = '';
        row.querySelector('.file').textContent = '';
        row.querySelector('.swatch').className = 'swatch';
        row.querySelector('.eye').hidden = true;
    }

    /** Fills a row with a component. Texts from files are text content, never markup. */
    function fillRow(row, i, context) {
        const { model, states, rows, roles } = context;
        const { name, comment, file, enabled, depth } = model.components;
        const isFolder = rows.hasChildren(i);
        const isOff = !enabled[i];
        row.className = 'row';
        row.classList.toggle('off', isOff);
        row.classList.toggle('unseen', !states.isVisible(i));
        row.classList.toggle('hovered', i === states.hovered);
        row.classList.toggle('selected', i === states.selected);
        row.setAttribute('aria-level', String(depth[i] + 1));
        row.setAttribute('aria-selected', String(i === states.selected));
        if (isFolder) row.setAttribute('aria-expanded', String(rows.isUnfolded(i)));
        else row.removeAttribute('aria-expanded');
        const arrow = rows.isUnfolded(i) ? '▾' : '▸';
        row.querySelector('.twisty').textContent = isFolder ? arrow : '';
        row.querySelector('.twisty').style.marginLeft = `${Math.min(depth[i], maxIndent) * 14}px`;
        row.querySelector('.swatch').className = `swatch role-${roles[i]}`;
        row.querySelector('.name').textContent = name[i] === '' ? '(no name)' : name[i];
        row.querySelector('.comment').textContent = comment[i];
        row.title = comment[i];
        row.querySelector('.file').textContent = isOff ? 'disabled'
            : file[i] < 0 ? '' : viewer.fileName(model.files[file[i]].path);
        fillEye(row.querySelector('.eye'), states.isHidden(i), name[i]);
    }

    function fillEye(eye, isHidden, name) {
        eye.hidden = false;
        eye.classList.toggle('closed', isHidden);
        eye.setAttribute('aria-label', `${isHidden ? 'Show' : 'Hide'} ${name.slice(0, 80)}`);
        eye.setAttribute('aria-pressed', String(!isHidden));
    }

    /** What the arrow keys do: the row to select, after folding or unfolding. */
    function moveBy(key, i, list, context) {
        const { rows, model } = context;
        const at = list.indexOf(i);
        const last = list.length - 1;
        if (key === 'Home') return list.find((row) => row >= 0);
        if (key === 'End') return list[last];
        const isComponent = (row) => row >= 0;
        if (key === 'ArrowDown') return list.slice(at + 1).find(isComponent);
        if (key === 'ArrowUp') return list.slice(0, Math.max(at, 0)).reverse().find(isComponent);
        const isOpen = at >= 0 && rows.hasChildren(i) && rows.isUnfolded(i);
        if (key === 'ArrowRight' && isOpen) return list[at + 1];
        if (key === 'ArrowLeft' && !isOpen && i >= 0) return model.components.parent[i];
        if (at >= 0) rows.setUnfolded(i, key === 'ArrowRight');
        return i;
    }

    const moveKeys = ['Home', 'End', 'ArrowDown', 'ArrowUp', 'ArrowRight', 'ArrowLeft'];

    /** The tree. */
    viewer.Tree = class {
        /**
         * @param context  model, states, rows, roles
         * @param open     shows a component in the view
         */
        constructor(context, open) {
            Object.assign(this, { context: context, open: open, pool: [], list: [], height: 26 });
            this.tree = document.getElementById('tree');
            this.space = document.getElementById('tree-space');
            this.search = document.getElementById('search');
            this.connectTree();
            this.connectSearch();
            this.connectStates(context.states);
            new ResizeObserver(() => this.rebuild()).observe(this.tree);
            this.rebuild();
        }

        connectTree() {
            const { tree } = this;
            const { states } = this.context;
            tree.addEventListener('scroll', () => this.show(), { passive: true });
            tree.addEventListener('click', (event) => this.clicked(event));
            tree.addEventListener('dblclick', (event) => {
                const i = this.componentAt(event);
                if (i >= 0 && !event.target.closest('.eye, .twisty')) this.open(i);
            });
            tree.addEventListener('keydown', (event) => this.pressed(event));
            tree.addEventListener('pointermove', (event) => {
                if (event.pointerType === 'mouse') states.hover(this.componentAt(event));
            });
            tree.addEventListener('pointerleave', () => states.hover(-1));
        }

        connectSearch() {
            this.search.addEventListener('input', () => this.searched());
            this.search.addEventListener('keydown', (event) => {
                if (event.key === 'Enter') this.nextMatch();
            });
        }

        connectStates(states) {
            states.selectionChanged.connect((component) => this.select(component));
            states.hoverChanged.connect(() => this.show());
            states.visibilityChanged.connect(() => this.show());
        }

        /** The element of a row in sight; they are made when they are needed first. */
        element(index) {
            if (index >= this.pool.length) {
                this.pool.push(makeRow());
                this.space.append(this.pool[index]);
            }
            return this.pool[index];
        }

        placeRow(row, index) {
            const i = this.list[index];
            const { assemblies } = this.context.model;
            row.hidden = false;
            row.dataset.index = String(index);
            row.id = `row-${i < 0 ? `heading${-1 - i}` : i}`;
            row.style.transform = `translateY(${index * this.height}px)`;
            if (i < 0) fillHeading(row, assemblies[-1 - i], -1 - i);
            else fillRow(row, i, this.context);
        }

        /** Fills the rows in sight and hides the other elements. */
        show() {
            const { tree, list, height, pool } = this;
            const { selected } = this.context.states;
            const first = Math.max(0, Math.floor(tree.scrollTop / height) - extraRows);
            const count = Math.ceil(tree.clientHeight / height) + 2 * extraRows;
            const last = Math.min(list.length, first + count);
            for (let index = first; index < last; ++index) {
                this.placeRow(this.element(index - first), index);
            }
            pool.slice(last - first).forEach((row) => { row.hidden = true; row.id = ''; });
            tree.setAttribute('aria-activedescendant', selected >= 0 ? `row-${selected}` : '');
        }

        /** Lists the rows again, after folding or searching. */
        rebuild() {
            this.list = this.context.rows.rows();
            this.height = matchMedia('(pointer: coarse)').matches ? 40 : 26;
            this.space.style.height = `${this.list.length * this.height}px`;
            document.getElementById('tree-empty').hidden = this.list.length > 0;
            this.show();
        }

        scrollTo(component) {
            const { tree, height } = this;
            const top = this.list.indexOf(component) * height;
            if (top < 0) return;
            if (top < tree.scrollTop) tree.scrollTop = top;
            const bottom = top + height - tree.clientHeight;
            if (bottom > tree.scrollTop) tree.scrollTop = bottom;
        }

        select(component) {
            if (component >= 0) this.context.rows.reveal(component);
            this.rebuild();
            if (component >= 0) this.scrollTo(component);
            this.show();
        }

        /** The component of an event, or -1. */
        componentAt(event) {
            const row = event.target.closest('.row');
            return row ? Math.max(-1, this.list[Number(row.dataset.index)]) : -1;
        }

        clicked(event) {
            const i = this.componentAt(event);
            const { states, rows } = this.context;
            if (i < 0) return;
            if (event.target.closest('.eye')) {
                states.setHidden(i, !states.isHidden(i));
            } else if (event.target.closest('.twisty') && rows.hasChildren(i)) {
                rows.setUnfolded(i, !rows.isUnfolded(i));
                this.rebuild();
            } else {
                states.select(i);
            }
        }

        pressed(event) {
            const { states } = this.context;
            if (event.key === 'Enter' && states.selected >= 0) {
                event.stopPropagation();
                this.open(states.selected);
            }
            if (!moveKeys.includes(event.key)) return;
            event.preventDefault();
            event.stopPropagation();
            const next = moveBy(event.key, states.selected, this.list, this.context);
            if (next !== undefined && next >= 0) states.select(next);
        }

        searched() {
            const { rows } = this.context;
            const text = this.search.value;
            rows.search(text);
            this.tree.scrollTop = 0;
            this.rebuild();
            document.getElementById('search-count').textContent =
                text.trim() === '' ? '' : `${rows.matching().length} found`;
        }

        /** Selects the next component that the search finds. */
        nextMatch() {
            const { states, rows } = this.context;
            const found = rows.matching();
            if (found.length === 0) return;
            const next = found.find((i) => i > states.selected);
            states.select(next === undefined ? found[0] : next);
        }
    };
})(window.viewer);
